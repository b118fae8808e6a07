#include "header/ParameterReader.h"

#include <velmara/StringOperations.h>

#include "header/Scan.h"
#include "runtime/Ascii.h"

namespace Velmara {

bool ParameterReader::next()
{
    if (!skipSpace()) return false;
    readName();
    if (!skipSpace()) return false;
    readValue();
    return true;
}

/// False at the end of the text.
bool ParameterReader::skipSpace()
{
    m_at = findFrom(m_text, m_at, [](unsigned char c) { return !isHeaderSpace(c); });
    return m_at < m_text.size();
}

void ParameterReader::readName()
{
    bool const lowered = m_names == ParameterNames::LowerCase;
    size_t const end =
        findFrom(m_text, m_at, [&](unsigned char c) { return c == '=' || c == '\r' || (lowered && c == '\n'); });
    m_name.assign(m_text, m_at, end - m_at);
    if (lowered) stringToLowerNoCopy(m_name);
    stringRightTrim(m_name);
    moveBehind(end);
}

void ParameterReader::readValue()
{
    size_t end = findFrom(m_text, m_at, [](unsigned char c) { return c == '"' || c == ';' || isLineEnd(c); });
    if (end < m_text.size() && m_text[end] == '"') {
        m_at = end; // what stands ahead of the quote is dropped
        size_t const closing = m_text.find('"', end + 1);
        end = closing == std::string::npos ? m_text.size() : closing + 1;
    }
    m_value.assign(m_text, m_at, end - m_at);
    unquote();
    moveBehind(end);
}

void ParameterReader::unquote()
{
    stringRightTrim(m_value);
    if (m_value.empty() || m_value.front() != '"') return;
    m_value.erase(0, 1);
    // An unclosed quote costs the last character: `"utf-8` reads `utf-`. Names and charsets feed
    // statistics that installations exchange, so all of them have to lose it.
    if (!m_value.empty()) m_value.pop_back();
    stringRightTrim(m_value);
    stringLeftTrim(m_value);
}

/// A CR is taken to have its LF behind it, whatever stands there.
void ParameterReader::moveBehind(size_t stop)
{
    m_at = stop + (stop < m_text.size() && m_text[stop] == '\r' ? 2 : 1);
}

} // namespace Velmara
