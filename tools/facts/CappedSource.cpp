#include "CappedSource.h"

#include <algorithm>
#include <cstring>
#include <limits>

#include "Text.h"

namespace VelmaraCommand {

using namespace Velmara;

namespace {

constexpr size_t _blockSize = 16u << 10;
constexpr unsigned int _lineSize = 4096;
constexpr unsigned int _lineOfHeader = 128;

bool _isBlank(Buffer const& line)
{
    return std::all_of(line.data(), line.data() + line.length(),
                       [](unsigned char c) { return isSpace(static_cast<char>(c)); });
}

} // namespace

Deadline::Deadline(std::chrono::milliseconds time)
    : m_isSet(time.count() != 0), m_end(std::chrono::steady_clock::now() + time)
{}

CappedSource::CappedSource(MediaIn const& inner, std::uint64_t most, Deadline const& deadline)
    : m_inner(inner), m_left(most == 0 ? std::numeric_limits<std::uint64_t>::max() : most), m_deadline(deadline),
      m_block(new unsigned char[_blockSize]), m_at(m_block.get()), m_end(m_at)
{}

/// The time is looked at once a block: what is done with one takes no longer than that.
bool CappedSource::more()
{
    if (m_at != m_end) return true;
    m_deadline.check();
    auto const wanted = static_cast<uint_t>(std::min<std::uint64_t>(_blockSize, m_left));
    int const got = wanted == 0 ? 0 : m_inner.read(m_block.get(), wanted);
    if (got <= 0) return false;
    m_left -= static_cast<std::uint64_t>(got);
    m_at = m_block.get();
    m_end = m_at + got;
    return true;
}

bool CappedSource::atEnd() const
{
    // Whether a block follows can only be told by fetching it, which changes no byte and no position.
    return !const_cast<CappedSource*>(this)->more();
}

int CappedSource::peek() const
{
    return atEnd() ? -1 : *m_at;
}

bool CappedSource::isCut() const
{
    return m_left == 0 && m_at == m_end && !m_inner.atEnd();
}

/// Only the end of the block may still follow.
bool CappedSource::headersAreFull()
{
    if (m_headerLinesLeft > 0 || !m_notesStarts || !more()) return false;
    return !m_lineIsWhole || (*m_at != '\r' && *m_at != '\n');
}

void CappedSource::cutInHeaders()
{
    m_isCutInHeaders = true;
    m_left = 0;
    m_at = m_end;
}

void CappedSource::readline(Buffer& line)
{
    if (headersAreFull()) cutInHeaders();
    line.length(0);
    if (line.size() == 0) line.size(_lineSize);
    m_lineBegin = m_position;
    bool ended = false;
    while (!ended && line.length() < line.size() && more()) {
        size_t const most = std::min<size_t>(static_cast<size_t>(m_end - m_at), line.size() - line.length());
        auto const* lineFeed = static_cast<unsigned char const*>(std::memchr(m_at, '\n', most));
        size_t const n = lineFeed ? static_cast<size_t>(lineFeed - m_at) + 1 : most;
        line.append(m_at, static_cast<unsigned int>(n));
        m_at += n;
        m_position += n;
        ended = lineFeed != nullptr;
    }
    note(line);
}

void CappedSource::beginHeaders()
{
    m_starts.clear();
    m_notesStarts = true;
}

std::string CappedSource::lineStart() const
{
    return m_lineStart.substr(0, m_lineStart.find_last_not_of(" \t\r\n") + 1);
}

void CappedSource::noteHeader(Buffer const& line)
{
    constexpr unsigned int start = 256;
    if (m_lineIsWhole && line.at(0) != ' ' && line.at(0) != '\t') m_starts.push_back(m_lineBegin);
    std::uint64_t const lines = (_isBlank(line) ? 0 : 1) + line.length() / _lineOfHeader;
    m_headerLinesLeft -= std::min(m_headerLinesLeft, lines);
    m_lineStart.assign(reinterpret_cast<char const*>(line.data()), std::min(line.length(), start));
}

void CappedSource::note(Buffer const& line)
{
    if (m_notesStarts) noteHeader(line);
    m_lineIsWhole = line.isEmpty() || line.at(line.length() - 1) == '\n';
    m_lineIsBlank = _isBlank(line);
    m_dashedLine.clear();
    if (line.at(0) == '-' && line.at(1) == '-')
        m_dashedLine.assign(reinterpret_cast<char const*>(line.data()), line.length());
}

int CappedSource::read(uchar_t* bytes, uint_t n)
{
    uint_t stored = 0;
    while (bytes && stored < n && more()) {
        size_t const piece = std::min<size_t>(static_cast<size_t>(m_end - m_at), n - stored);
        std::memcpy(bytes + stored, m_at, piece);
        m_at += piece;
        m_position += piece;
        stored += static_cast<uint_t>(piece);
    }
    return static_cast<int>(stored);
}

} // namespace VelmaraCommand
