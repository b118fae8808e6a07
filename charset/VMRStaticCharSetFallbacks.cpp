#include <velmara/VMRStaticCharSetFallbacks.h>

#include <algorithm>

#include <velmara/VmaraConv.h>

namespace Velmara {

VMRStaticCharSetFallbacks::~VMRStaticCharSetFallbacks() = default;

VMRStaticCharSetFallbacksImpl<int>::VMRStaticCharSetFallbacksImpl(int const& number)
{
    add(number);
}

VMRStaticCharSetFallbacksImpl<int>::~VMRStaticCharSetFallbacksImpl() = default;

void VMRStaticCharSetFallbacksImpl<int>::add(int const& number)
{
    auto const& names = VmaraConv::getFallbackCharMap();
    auto const found = names.find(number);
    if (found == names.end()) return;
    if (std::find(m_charsets.begin(), m_charsets.end(), found->second) == m_charsets.end())
        m_charsets.push_back(found->second);
}

std::list<std::string> const& VMRStaticCharSetFallbacksImpl<int>::charsets() const
{
    return m_charsets;
}

RefVMRStaticCharSetFallbacks RefVMRStaticCharSetFallbacks::s_fallbacks;
Mutex RefVMRStaticCharSetFallbacks::s_mutex;

RefVMRStaticCharSetFallbacks RefVMRStaticCharSetFallbacks::instance()
{
    Synchronized guard(s_mutex);
    return s_fallbacks;
}

RefVMRStaticCharSetFallbacks RefVMRStaticCharSetFallbacks::instance(VMRStaticCharSetFallbacks* list, bool addRef)
{
    Synchronized guard(s_mutex);
    s_fallbacks = RefVMRStaticCharSetFallbacks(list, addRef);
    return s_fallbacks;
}

} // namespace Velmara
