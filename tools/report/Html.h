#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace VelmaraCommand {

/// A text of strangers made fit for any place of a page, quoted attributes included: `&<>"'` become
/// references, bytes that are no UTF-8 U+FFFD. What could not be seen or would move its neighbours is
/// written out: a NUL as "␀" and the other C0 controls likewise, C1 controls, marks that turn the
/// direction of writing, tag characters and noncharacters as "⟨U+202E⟩". Tabs and line feeds stay; CR LF
/// becomes LF.
std::string escaped(std::string_view text);

/// "1,234,567".
std::string grouped(std::uint64_t number);

/// "1 part", "2 parts".
std::string counted(std::uint64_t number, char const* one, char const* many);

/// A piece of a page. What stands in the program as a literal is markup; every text that is handed over
/// is escaped and cut where it is too long for a name, so there is no way to forget it.
///
///     html << "<td title=\"" << name << "\">" << name << "</td>";
class Html {
public:
    template <size_t N> Html& operator<<(char const (&markup)[N])
    {
        m_text.append(markup, N - 1);
        return *this;
    }
    Html& operator<<(std::string_view text);
    Html& operator<<(Html const& piece)
    {
        m_text += piece.m_text;
        return *this;
    }
    /// At most so many bytes of the text, and a word on how much was left out.
    Html& beginning(std::string_view text, size_t limit);
    /// A text that is known to be short enough.
    Html& whole(std::string_view text)
    {
        m_text += escaped(text);
        return *this;
    }

    std::string const& asString() const { return m_text; }
    size_t size() const { return m_text.size(); }

private:
    std::string m_text;
};

} // namespace VelmaraCommand
