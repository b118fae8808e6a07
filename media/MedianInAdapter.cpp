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
    n = fetched(n);
    if (n != 0) std::memcpy(bytes, m_pending.data(), n);
    m_pending.shiftLeft(n);
    return static_cast<int>(n);
}

int MedianInAdapterImpl::read(Buffer& block, uint_t n)
{
    n = fetched(n == 0 ? block.size() : n);
    block.length(0);
    block.append(m_pending.data(), n);
    m_pending.shiftLeft(n);
    return static_cast<int>(block.length());
}

int MedianInAdapterImpl::read(Buffer& all)
{
    Buffer rest;
    MediaInImpl::read(rest);
    all.length(0);
    all.append(m_pending);
    all.append(rest);
    m_pending.length(0);
    return static_cast<int>(all.length());
}

int MedianInAdapterImpl::read(std::string& all)
{
    MediaInImpl::read(all);
    all.insert(0, reinterpret_cast<char const*>(m_pending.data()), m_pending.length());
    m_pending.length(0);
    return static_cast<int>(all.size());
}

uint_t MedianInAdapterImpl::fetched(uint_t n)
{
    while (m_pending.length() < n) {
        readline(m_line);
        if (m_line.isEmpty()) return m_pending.length();
        m_pending.append(m_line);
    }
    return n;
}

} // namespace Velmara
