#include <velmara/ListId.h>

#include <string_view>

#include "runtime/Ascii.h"

namespace Velmara {

ListIdImpl::ListIdImpl()
{
    type(ListId::htype);
}

ListIdImpl::~ListIdImpl() = default;

void ListIdImpl::read() const
{
    size_t const open = value().find('<');
    if (open == std::string::npos) return;
    size_t const close = value().find('>', open);
    if (close == std::string::npos) return;
    std::string_view const name = trimmed(std::string_view(value()).substr(open + 1, close - open - 1));
    m_domain = HostName(std::string(name), false, true);
}

HostName const& ListIdImpl::domain() const
{
    parse();
    return m_domain;
}

HostName const& ListId::domain() const
{
    if (isNull()) throw HeaderException(__LINE__);
    return impl().domain();
}

} // namespace Velmara
