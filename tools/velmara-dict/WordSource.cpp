#include "WordSource.h"

#include <algorithm>
#include <cstring>
#include <fstream>
#include <iterator>
#include <list>
#include <string_view>

#include <velmara/Velmara.h>

namespace VelmaraDict {

namespace {

using Words = std::vector<std::wstring>;
using Line = std::wstring_view;

/// A line of a file, and where complaints about it are to point.
struct Place {
    std::string const& file;
    size_t line;

    [[noreturn]] void refuse(std::string const& reason) const { throw BadInput(file, line, reason); }
};

std::string _bytesOf(std::string const& file)
{
    try {
        std::string bytes;
        Velmara::FileMediaIn(file).read(bytes);
        return bytes;
    } catch (Velmara::Exception const& failure) {
        std::string const& reason = failure.stringParameter();
        bool const named = reason.compare(0, file.size() + 2, file + ": ") == 0;
        throw BadInput(file, named ? reason.substr(file.size() + 2) : reason);
    }
}

/// The text, read in the first of the character sets that fits it.
std::wstring _textOf(std::string const& file, std::list<std::string> const& charsets)
{
    std::string const bytes = _bytesOf(file);
    Velmara::Buffer wide;
    std::string used;
    if (!Velmara::VmaraConv::m_conv(wide, used, bytes.data(), static_cast<unsigned int>(bytes.size()), charsets,
                                    "utf-32LE"))
        throw BadInput(file, "is no text in " + charsets.back());
    std::wstring text(wide.length() / sizeof(wchar_t), L'\0');
    std::memcpy(text.data(), wide.data(), text.size() * sizeof(wchar_t));
    return text;
}

Line _upTo(Line line, wchar_t const* stops)
{
    return line.substr(0, line.find_first_of(stops));
}

void _plain(Line line, Place const&, Words& words)
{
    words.emplace_back(line);
}

bool _isDigit(wchar_t c)
{
    return c >= L'0' && c <= L'9';
}

void _hunspell(Line line, Place const& place, Words& words)
{
    Line const word = _upTo(line, L"/\t ");
    if (place.line > 1)
        words.emplace_back(word);
    else if (word.empty() || !std::all_of(word.begin(), word.end(), _isDigit))
        place.refuse("a hunspell list starts with the number of its words");
}

bool _isBase64Number(Line text)
{
    auto const isDigit = [](wchar_t c) {
        return c < 128 && c != L'=' && Velmara::Buffer::isValidBase64Char(static_cast<unsigned char>(c));
    };
    return !text.empty() && std::all_of(text.begin(), text.end(), isDigit);
}

void _dictd(Line line, Place const& place, Words& words)
{
    size_t const first = line.find(L'\t');
    size_t const second = first == Line::npos ? first : line.find(L'\t', first + 1);
    if (second == Line::npos) place.refuse("an index has a word, an offset and a length with tabs between");
    if (!_isBase64Number(line.substr(first + 1, second - first - 1)) ||
        !_isBase64Number(_upTo(line.substr(second + 1), L"\t")))
        place.refuse("offset and length of an index are Base64 digits");
    Line const word = line.substr(0, first);
    if (word.substr(0, 8) != L"00-datab" && word.substr(0, 10) != L"00database")
        words.emplace_back(word); // what dictd says of itself
}

void _edict(Line line, Place const& place, Words& words)
{
    size_t const meaning = line.find(L'/');
    if (meaning == Line::npos) place.refuse("an entry has its meanings between \"/\"");
    if (line.substr(0, 1) == L"\xFF1F" || line.substr(0, 1) == L"\x3000") return; // the line that names the edition
    Line const head = line.substr(0, meaning);
    words.emplace_back(_upTo(head, L" ["));
    size_t const reading = head.find(L'[');
    if (reading != Line::npos) words.emplace_back(_upTo(head.substr(reading + 1), L"]"));
}

struct Format {
    char const* name;
    void (*read)(Line, Place const&, Words&);
    std::list<std::string> charsets;
};

Format const& _formatOf(std::string const& name, std::string const& file)
{
    static Format const formats[] = {
        {"plain", _plain, {"utf-8"}},
        {"hunspell", _hunspell, {"utf-8"}},
        {"dictd", _dictd, {"utf-8"}},
        {"edict", _edict, {"utf-8", "euc-jp"}},
    };
    for (Format const& format : formats)
        if (name == format.name) return format;
    throw BadInput(file, "unknown format \"" + name + "\"; there are plain, hunspell, dictd and edict");
}

/// What the .aff file beside a .dic file says.
std::list<std::string> _hunspellCharset(std::string const& file)
{
    std::ifstream affixes(file.substr(0, file.rfind('.')) + ".aff");
    for (std::string line; std::getline(affixes, line);) {
        if (!line.empty() && line.back() == '\r') line.pop_back();
        if (line.compare(0, 4, "SET ") == 0) return {line.substr(4)};
    }
    return {"utf-8"};
}

} // namespace

BadInput::BadInput(std::string const& file, size_t line, std::string const& reason)
    : std::runtime_error(file + ":" + std::to_string(line) + ": " + reason)
{}

BadInput::BadInput(std::string const& file, std::string const& reason) : std::runtime_error(file + ": " + reason)
{}

std::vector<std::wstring> readWords(std::string const& format, std::string const& file)
{
    Format const& how = _formatOf(format, file);
    std::wstring const text = _textOf(file, format == "hunspell" ? _hunspellCharset(file) : how.charsets);
    Words words;
    Line rest = text;
    if (rest.substr(0, 1) == L"\xFEFF") rest.remove_prefix(1);
    for (size_t number = 1; !rest.empty(); ++number) {
        Line line = rest.substr(0, rest.find(L'\n'));
        rest.remove_prefix(std::min(rest.size(), line.size() + 1));
        if (!line.empty() && line.back() == L'\r') line.remove_suffix(1);
        if (!line.empty()) how.read(line, Place{file, number}, words);
    }
    return words;
}

std::vector<std::string> readTags(std::string const& file)
{
    std::string const bytes = _bytesOf(file);
    std::vector<std::string> tags;
    std::string_view rest = bytes;
    for (size_t number = 1; !rest.empty(); ++number) {
        std::string_view const line = rest.substr(0, rest.find('\n'));
        rest.remove_prefix(std::min(rest.size(), line.size() + 1));
        if (line.empty() || line.front() == '#') continue;
        if (line.find_first_of(" \t\r") != std::string_view::npos)
            throw BadInput(file, number, "a name of a tag holds no white space");
        tags.emplace_back(line);
    }
    return tags;
}

} // namespace VelmaraDict
