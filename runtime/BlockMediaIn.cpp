#include "runtime/BlockMediaIn.h"

#include <algorithm>
#include <cstring>
#include <limits>

#include <velmara/MediaOut.h>

namespace Velmara {

namespace {

constexpr unsigned int _lineSize = 4096;
constexpr size_t _largestPiece = std::numeric_limits<int>::max();

} // namespace

void BlockMediaInImpl::present(unsigned char const* bytes, size_t n, unsigned long position)
{
    m_at = bytes;
    m_end = bytes + n;
    m_size = n;
    m_endPosition = position + n;
}

bool BlockMediaInImpl::moveWithin(unsigned long position)
{
    if (position > m_endPosition || m_endPosition - position > m_size) return false;
    m_at = m_end - (m_endPosition - position);
    return true;
}

bool BlockMediaInImpl::more()
{
    return m_at != m_end || nextBlock();
}

bool BlockMediaInImpl::atEnd() const
{
    // Whether a block follows can only be told by fetching it, which changes no byte and no position.
    return !const_cast<BlockMediaInImpl*>(this)->more();
}

int BlockMediaInImpl::peek() const
{
    return atEnd() ? -1 : *m_at;
}

void BlockMediaInImpl::readline(Buffer& line)
{
    line.length(0);
    if (line.size() == 0) line.size(_lineSize);
    // Counted here: a buffer whose `maxSize` is smaller than its capacity never gets full.
    for (size_t wanted = line.size(); wanted > 0 && more();) {
        size_t const most = std::min(left(), wanted);
        void const* lineFeed = std::memchr(m_at, '\n', most);
        size_t const n = lineFeed ? static_cast<size_t>(static_cast<unsigned char const*>(lineFeed) - m_at) + 1 : most;
        line.append(take(n), static_cast<unsigned int>(n));
        if (lineFeed) return;
        wanted -= n;
    }
}

int BlockMediaInImpl::read(Buffer& block, uint_t n)
{
    if (n == 0) n = block.size();
    block.length(0);
    for (size_t wanted = n; wanted > 0 && more();) { // counted as in readline
        size_t const piece = std::min(left(), wanted);
        block.append(take(piece), static_cast<unsigned int>(piece));
        wanted -= piece;
    }
    return static_cast<int>(block.length());
}

int BlockMediaInImpl::read(Buffer& all)
{
    all.length(0);
    while (more()) {
        size_t const piece = std::min(left(), _largestPiece);
        all.append(take(piece), static_cast<unsigned int>(piece));
    }
    return static_cast<int>(all.length());
}

int BlockMediaInImpl::read(std::string& all)
{
    all.clear();
    while (more()) {
        size_t const piece = left();
        all.append(reinterpret_cast<char const*>(take(piece)), piece);
    }
    return static_cast<int>(all.size());
}

int BlockMediaInImpl::read(uchar_t* bytes, uint_t n)
{
    uint_t stored = 0;
    while (bytes && stored < n && more()) {
        size_t const piece = std::min<size_t>(left(), n - stored);
        std::memcpy(bytes + stored, take(piece), piece);
        stored += static_cast<uint_t>(piece);
    }
    return static_cast<int>(stored);
}

void BlockMediaInImpl::write(MediaOut& out)
{
    while (more()) {
        size_t const piece = std::min(left(), _largestPiece);
        out.write(take(piece), static_cast<unsigned int>(piece));
    }
}

} // namespace Velmara
