#pragma once

#include <string>

namespace Velmara {

/// Where a parameter's name ends besides at "=", and how it is kept. The two differ because mail clients
/// write file names over line ends and callers look "FileName" and "filename" up as two names.
enum class ParameterNames {
    LowerCase, // a CR or LF ends a name
    AsWritten  // a CR ends a name, an LF does not
};

/// Reads the "name=value" pairs of a header value, front to back, each byte at most twice.
///
/// No ";" ends a name, "(...)" is text and a back slash an ordinary character. A value runs to ";", CR
/// or LF; one with a double quote in it starts there and runs to the next one. `a=1; b="x;y" ; c=2`
/// gives "a", "b" and, because the byte behind a closing quote is skipped unseen, "; c".
class ParameterReader {
public:
    /// From index `at` of `text`, which must stay as it is meanwhile.
    ParameterReader(std::string const& text, size_t at, ParameterNames names) : m_text(text), m_at(at), m_names(names)
    {}

    /// Reads the next pair; false at the end. A name that nothing follows is no parameter.
    bool next();

    std::string const& name() const { return m_name; }
    std::string const& value() const { return m_value; }

private:
    bool skipSpace();
    void readName();
    void readValue();
    void unquote();
    void moveBehind(size_t stop);

    std::string const& m_text;
    size_t m_at;
    ParameterNames const m_names;
    std::string m_name;
    std::string m_value;
};

} // namespace Velmara
