#include "media/MedianInAdapter.h"

#include <cstring>

namespace Velmara {

MedianInAdapterImpl::MedianInAdapterImpl(MediaIn const& source) : m_source(source)
{}

bool MedianInAdapterImpl::atEnd() const
{
    return m_source.atEnd();
}

int MedianInAdapterImpl::peek() const
{
    return m_source.peek();
}

int MedianInAdapterImpl::read(uchar_t* bytes, uint_t n)
{
    if (!bytes) return 0;
    while (m_pending.length() < n) {
        readline(m_line);
        if (m_line.isEmpty()) n = m_pending.length();
        m_pending.append(m_line);
    }
    if (n != 0) std::memcpy(bytes, m_pending.data(), n);
    m_pending.shiftLeft(n);
    return static_cast<int>(n);
}

} // namespace Velmara
