// The file passes through a window of 128 KiB. A separator, "\r\nFrom ann@a.example Fri Jul  8 ...\n", may
// be cut by the window's end anywhere, so the last bytes of the window wait for the next ones: always seven,
// which can be a separator's beginning without its "From "; and all from an empty line on, if "From "
// stands behind it and the line has not ended yet. As such a line has at most 1000 bytes, what waits
// always fits, and each byte is looked at twice at most.
#include "MboxReader.h"

#include <algorithm>
#include <cstring>

#include "facts/Text.h"

namespace VelmaraCommand {

namespace {

constexpr std::size_t _longestLine = 1000;
constexpr std::string_view _sought = "\nFrom ";
constexpr std::size_t _undecided = 7; // "\r\nFrom" without its blank

/// What is left of a line that is being read from its front.
struct Cursor {
    std::string_view text;

    bool blanks()
    {
        std::size_t const n = std::min(text.find_first_not_of(' '), text.size());
        text.remove_prefix(n);
        return n > 0;
    }
    /// One of the names, which have three letters each.
    bool oneOf(std::string_view names)
    {
        if (text.size() < 3) return false;
        for (std::size_t at = 0; at < names.size(); at += 3)
            if (text.compare(0, 3, names, at, 3) == 0) {
                text.remove_prefix(3);
                return true;
            }
        return false;
    }
    bool digits(std::size_t least, std::size_t most)
    {
        std::size_t n = 0;
        while (n < text.size() && isDigit(text[n])) ++n;
        if (n < least || n > most) return false;
        text.remove_prefix(n);
        return true;
    }
    bool one(char c)
    {
        if (text.empty() || text[0] != c) return false;
        text.remove_prefix(1);
        return true;
    }
    bool word()
    {
        std::size_t const n = std::min(text.find(' '), text.size());
        text.remove_prefix(n);
        return n > 0;
    }
};

constexpr std::string_view _days = "MonTueWedThuFriSatSun";
constexpr std::string_view _months = "JanFebMarAprMayJunJulAugSepOctNovDec";

/// One word; blanks within quotes do not end it.
void _skipSender(Cursor& at)
{
    bool quoted = false;
    std::size_t n = 0;
    for (; n < at.text.size() && (quoted || at.text[n] != ' '); ++n)
        if (at.text[n] == '"') quoted = !quoted;
    at.text.remove_prefix(n);
}

bool _clock(Cursor& at)
{
    if (!at.digits(1, 2) || !at.one(':') || !at.digits(2, 2)) return false;
    return !at.one(':') || at.digits(2, 2);
}

bool _isYear(Cursor at)
{
    return at.digits(4, 4) && (at.text.empty() || at.text[0] == ' ');
}

/// "Jul  8 12:08:34 2011", where up to two words for zones may stand in front of the year.
bool _monthFirst(Cursor at)
{
    if (!at.oneOf(_months) || !at.blanks() || !at.digits(1, 2) || !at.blanks() || !_clock(at)) return false;
    for (int zones = 0; zones <= 2 && at.blanks(); ++zones) {
        if (_isYear(at)) return true;
        at.word();
    }
    return false;
}

/// "8 Jul 2011 12:08:34".
bool _dayFirst(Cursor at)
{
    return at.digits(1, 2) && at.blanks() && at.oneOf(_months) && at.blanks() && at.digits(4, 4) && at.blanks() &&
           _clock(at);
}

bool _isDate(Cursor at)
{
    if (!at.oneOf(_days)) return false;
    at.one(',');
    return at.blanks() && (_monthFirst(at) || _dayFirst(at));
}

std::string_view _withoutLineEnd(std::string_view line)
{
    if (!line.empty() && line.back() == '\n') line.remove_suffix(1);
    if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
    return line;
}

/// 0, 1 for LF, 2 for CR LF.
std::size_t _emptyLine(std::string_view text)
{
    return startsWith(text, "\n") ? 1 : startsWith(text, "\r\n") ? 2 : 0;
}

} // namespace

bool looksLikeFromLine(std::string_view line)
{
    if (line.size() > _longestLine || !startsWith(line, "From ")) return false;
    Cursor at{_withoutLineEnd(line).substr(5)};
    at.blanks();
    if (_isDate(at)) return true;
    _skipSender(at);
    return at.blanks() && _isDate(at);
}

MboxReader::MboxReader(ByteStream& stream, std::size_t window) : m_stream(stream), m_window(window, '\0')
{}

bool MboxReader::refill()
{
    if (m_streamEnded) return false;
    if (m_end == m_window.size()) {
        std::memmove(m_window.data(), m_window.data() + m_at, m_end - m_at);
        m_windowOffset += m_at;
        m_end -= m_at;
        m_at = 0;
    }
    std::size_t const got = m_stream.read(m_window.data() + m_end, m_window.size() - m_end);
    m_streamEnded = got == 0;
    m_end += got;
    return got > 0;
}

std::string_view MboxReader::take(std::size_t n)
{
    std::string_view const taken = rest().substr(0, n);
    m_at += n;
    if (n > 0) m_afterLineFeed = taken.back() == '\n';
    return taken;
}

/// Tells where the separator that follows begins, and how long it is: both are of the rest of the window.
/// Without one, as much as belongs to the message for sure.
MboxReader::Cut MboxReader::nextCut() const
{
    std::string_view const text = rest();
    for (std::size_t lineFeed = text.find(_sought); lineFeed != text.npos;
         lineFeed = text.find(_sought, lineFeed + 1)) {
        std::size_t const begin = lineFeed > 0 && text[lineFeed - 1] == '\r' ? lineFeed - 1 : lineFeed;
        if (!(begin == 0 ? m_afterLineFeed : text[begin - 1] == '\n')) continue;
        std::string_view line = text.substr(lineFeed + 1, _longestLine);
        std::size_t const end = line.find('\n');
        if (end == line.npos && line.size() < _longestLine && !m_streamEnded) return {begin, 0};
        line = line.substr(0, end == line.npos ? end : end + 1);
        if (looksLikeFromLine(line)) return {begin, lineFeed + 1 - begin + line.size()};
    }
    if (m_streamEnded) return atTheEnd();
    return {text.size() - std::min(text.size(), _undecided), 0};
}

/// An empty line that ends the file belongs to no message.
MboxReader::Cut MboxReader::atTheEnd() const
{
    std::string_view const text = rest();
    for (std::size_t n : {2, 1}) {
        if (text.size() < n) continue;
        std::size_t const begin = text.size() - n;
        bool const atLineStart = begin == 0 ? m_afterLineFeed : text[begin - 1] == '\n';
        if (atLineStart && _emptyLine(text.substr(begin)) == n) return {begin, n};
    }
    return {text.size(), 0};
}

std::string_view MboxReader::nextBytes()
{
    while (m_inMessage) {
        Cut const cut = nextCut();
        if (cut.message > 0) return take(cut.message);
        if (cut.separator == 0 && refill()) continue;
        m_inMessage = cut.separator == 0 && m_at != m_end; // the end of the stream makes more of it known
        m_separatorLength = cut.separator;
    }
    return std::string_view();
}

/// The file may begin with such a line, or with an empty one in front of it.
std::size_t MboxReader::firstSeparator()
{
    while (rest().size() < _longestLine + 2 && refill()) {
    }
    std::size_t const empty = _emptyLine(rest());
    std::string_view line = rest().substr(empty, _longestLine);
    std::size_t const end = line.find('\n');
    line = line.substr(0, end == line.npos ? end : end + 1);
    return looksLikeFromLine(line) ? empty + line.size() : 0;
}

bool MboxReader::nextMessage()
{
    while (!nextBytes().empty()) {
    }
    if (!m_begun) m_separatorLength = firstSeparator();
    m_begun = true;
    m_separator.assign(take(m_separatorLength));
    m_afterLineFeed = true;
    m_messageOffset = m_windowOffset + m_at;
    // An empty line at the end of the file is followed by no message, but a line with "From " is, though
    // the file may have been cut right behind it.
    m_inMessage = m_separatorLength > 2 || m_at != m_end;
    m_separatorLength = 0;
    return m_inMessage;
}

} // namespace VelmaraCommand
