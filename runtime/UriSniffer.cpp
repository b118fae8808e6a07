// Text is cut into runs of characters that a URI can have, and each run is walked once. What can begin
// a URI is seen at two kinds of places: a colon, with the scheme behind us, and the first character of
// a word, with a name ahead. The first beginning opens a URI that reaches to the end of the run; a
// later one closes it only behind a separator, so a list without blanks falls apart and a URI in a
// query does not:
//
//     (see www.a.example/x),ftp://b.example.     www.a.example/x   ftp://b.example
//     http://a.example/?u=http://b.example       one
//
// Every character is looked at a bounded number of times: a scheme ends at the colon before it, and a
// word is asked for its name once.
#include <velmara/Uri.h>

#include <algorithm>
#include <array>
#include <string_view>

#include <velmara/IPAddress.h>

#include "runtime/Ascii.h"
#include "runtime/UriHost.h"

namespace Velmara {

namespace {

constexpr size_t _none = std::string_view::npos;

/// Unicode characters that end a URI, first and last of each range: spaces, quotes, CJK punctuation.
/// The full stops among the latter are not here: in a name they are dots.
struct Range {
    unsigned first, last;
};
constexpr Range _enders[] = {
    {0x00a0, 0x00a0}, {0x00ab, 0x00ab}, {0x00bb, 0x00bb}, {0x2000, 0x200a}, {0x2018, 0x201f},
    {0x2028, 0x2029}, {0x202f, 0x202f}, {0x3000, 0x3001}, {0x3008, 0x3011}, {0xff01, 0xff01},
    {0xff08, 0xff09}, {0xff0c, 0xff0c}, {0xff1a, 0xff1b}, {0xff1f, 0xff1f},
};

unsigned char _at(std::string_view text, size_t i)
{
    return i < text.size() ? static_cast<unsigned char>(text[i]) : 0;
}

/// How many bytes the ender at a place has; 0 where none stands.
size_t _enderLength(std::string_view text, size_t i)
{
    unsigned char const c = _at(text, i);
    if (c < 0x80) return c <= ' ' || c == 0x7f || c == '<' || c == '>' || c == '"' || c == '`';
    size_t const length = c >= 0xe0 ? 3 : 2;
    if (c < 0xc2 || c > 0xef || text.size() - i < length) return 0;
    unsigned code = c & (length == 3 ? 0x0f : 0x1f);
    for (size_t k = 1; k < length; ++k) {
        if ((_at(text, i + k) & 0xc0) != 0x80) return 0;
        code = code << 6 | (_at(text, i + k) & 0x3f);
    }
    bool const ends = std::any_of(std::begin(_enders), std::end(_enders),
                                  [code](Range const& range) { return range.first <= code && code <= range.last; });
    return ends ? length : 0;
}

/// Closing characters and their partners; a quote is its own.
constexpr std::string_view _closing = ")]}'", _opening = "([{'";

/// How many of each closing character have no partner.
std::array<long, _closing.size()> _surplus(std::string_view uri)
{
    std::array<long, _closing.size()> surplus{};
    for (char c : uri) {
        size_t const opened = _opening.find(c), closed = _closing.find(c);
        if (closed != _none)
            ++surplus[closed];
        else if (opened != _none)
            --surplus[opened];
    }
    surplus.back() %= 2;
    return surplus;
}

/// The text without punctuation at its end, and closing brackets and quotes that nothing opened.
std::string_view _trimmed(std::string_view uri)
{
    std::array<long, _closing.size()> surplus = _surplus(uri);
    for (; !uri.empty(); uri.remove_suffix(1)) {
        size_t const closed = _closing.find(uri.back());
        bool const strange = closed != _none && surplus[closed]-- > 0;
        if (!strange && std::string_view(".,;:!?").find(uri.back()) == _none) break;
    }
    return uri;
}

/// How a URI begins decides what it must have.
enum Kind { Nothing, WithHost, Opaque, WithoutScheme };

struct Beginning {
    Kind kind;
    size_t at;
};

/// Schemes that are found even behind other letters ("xhttp://"), and what has to follow the colon.
struct Known {
    std::string_view scheme;
    Kind kind;
    size_t slashes; // at least so many, of either kind
};
constexpr Known _known[] = {
    {"https", WithHost, 1}, {"http", WithHost, 1}, {"ftp", WithHost, 1}, {"mailto", Opaque, 0}, {"news", Opaque, 0},
    {"tel", Opaque, 0},     {"sms", Opaque, 0},    {"sips", Opaque, 0},  {"sip", Opaque, 0},    {"xmpp", Opaque, 0},
};

constexpr size_t _longestScheme = 40;

/// In text a dot ends a sentence, or is part of a name, before it is part of a scheme.
bool _isSchemeByte(unsigned char c)
{
    return isSchemeByte(c) && c != '.';
}

size_t _slashesFrom(std::string_view text, size_t at)
{
    size_t const end = std::min(text.find_first_not_of("/\\", at), text.size());
    return end - std::min(at, end);
}

/// Of the scheme characters between `from` and the colon.
Beginning _atColon(std::string_view text, size_t from, size_t colon)
{
    size_t first = colon;
    while (first > from && colon - first < _longestScheme && _isSchemeByte(_at(text, first - 1))) --first;
    std::string_view const scheme = text.substr(first, colon - first);
    for (Known const& row : _known) {
        if (scheme.size() < row.scheme.size()) continue;
        if (!sameNoCase(scheme.substr(scheme.size() - row.scheme.size()), row.scheme)) continue;
        bool const begins = _slashesFrom(text, colon + 1) >= row.slashes;
        return {begins ? row.kind : Nothing, colon - row.scheme.size()};
    }
    while (first < colon && !isAlpha(_at(text, first))) ++first;
    bool const begins = colon - first >= 2 && text.substr(colon + 1, 2) == "//";
    return {begins ? WithHost : Nothing, first};
}

bool _isNameByte(unsigned char c)
{
    return isAlnum(c) || c >= 0x80 || c == '-' || c == '_' || c == '.' || c == '%';
}

/// Of a place at which a word begins: whether "www." begins a URI there, not in the middle of a name, a path or
/// an address.
bool _isWww(std::string_view text, size_t at)
{
    std::string_view const www = "www.";
    if (!sameNoCase(text.substr(at, www.size()), www)) return false;
    unsigned char const next = _at(text, at + www.size());
    unsigned char const before = at > 0 ? _at(text, at - 1) : 0;
    return (isAlnum(next) || next >= 0x80 || next == '%') &&
           (before == 0 || std::string_view("-_.@/\\%&").find(static_cast<char>(before)) == _none);
}

constexpr size_t _longestBareName = 1024; // escapes and invisible characters included

/// Labels the last of which is no number, and not a single letter either.
bool _couldBeLookedUp(std::string_view host)
{
    size_t const dot = host.rfind('.');
    if (dot == _none || host.front() == '.' || host.find("..") != _none) return false;
    std::string_view const top = host.substr(dot + 1);
    return top.size() >= 2 && isAlpha(static_cast<unsigned char>(top[0])) &&
           std::all_of(top.begin(), top.end(), [](unsigned char c) { return isAlnum(c) || c == '-'; });
}

/// What stands where a host would; an IPv4 address counts in its four parts only, since "1.5" is a number.
bool _isBareName(std::string_view authority, std::string_view name)
{
    if (authority.size() > _longestBareName || authority.find_first_of(".%\xe3\xef") == _none) return false;
    while (!name.empty() && name.back() == '.') name.remove_suffix(1);
    return IPAddress::isValidIPAddress(std::string(name)) || _couldBeLookedUp(uriHostOfAuthority(authority));
}

/// Whether the word that begins here is a bare name, by what surrounds it too.
bool _isBare(std::string_view text, size_t at)
{
    if (at > 0 && std::string_view("'([{=,;|*").find(text[at - 1]) == _none) return false;
    size_t end = at;
    while (end < text.size() && _isNameByte(_at(text, end))) ++end;
    unsigned char const next = _at(text, end);
    if (next == '@' || (next == ':' && !isDigit(_at(text, end + 1)))) return false;
    std::string_view const name = text.substr(at, end - at);
    return _isBareName(name, name);
}

/// Whether a link such as "//user@a.example/x", which takes the scheme of its page, has its host here.
bool _isBehindSlashes(std::string_view text, size_t at)
{
    size_t const length = text.substr(at, _longestBareName + 1).find_first_of("/\\?#");
    std::string_view const authority = text.substr(at, std::min(length, _longestBareName + 1));
    return _isBareName(authority, authority);
}

class Sniffer {
public:
    Sniffer(UriContainer& out, bool bareNames) : m_out(out), m_bareNames(bareNames) {}

    void sniff(std::string_view text)
    {
        size_t begin = 0;
        for (size_t i = 0; i < text.size();) {
            size_t const ender = _enderLength(text, i);
            if (ender > 0) {
                sniffRun(text.substr(begin, i - begin));
                begin = i + ender;
            }
            i += std::max<size_t>(ender, 1);
        }
        sniffRun(text.substr(begin));
    }

private:
    /// One run of characters that a URI can have.
    void sniffRun(std::string_view run)
    {
        if (run.size() < 4) return; // "a.bc"
        size_t const slashes = _slashesFrom(run, 0);
        Beginning open = {Nothing, 0};
        if (m_bareNames && slashes >= 2 && _isBehindSlashes(run, slashes)) open = {WithoutScheme, slashes};
        size_t schemeFrom = 0; // behind the last colon
        for (size_t i = 0; i < run.size(); ++i) {
            Beginning const next = beginningAt(run, i, schemeFrom);
            if (run[i] == ':') schemeFrom = i + 1;
            if (next.kind == Nothing) continue;
            if (open.kind != Nothing) {
                bool const separated = next.at > open.at && std::string_view(",;|").find(run[next.at - 1]) != _none;
                if (!separated) continue;
                add(open.kind, run.substr(open.at, next.at - 1 - open.at));
            }
            open = next;
        }
        add(open.kind, run.substr(open.at));
    }

    Beginning beginningAt(std::string_view run, size_t i, size_t schemeFrom) const
    {
        if (run[i] == ':') return _atColon(run, schemeFrom, i);
        bool const wordBegins = _isNameByte(_at(run, i)) && (i == 0 || !isAlnum(_at(run, i - 1)));
        if (!wordBegins) return {Nothing, i};
        if (_isWww(run, i) || (m_bareNames && _isBare(run, i))) return {WithoutScheme, i};
        return {Nothing, i};
    }

    void add(Kind kind, std::string_view text)
    {
        if (kind == Nothing) return;
        std::string const trimmed(_trimmed(text));
        if (kind == Opaque && trimmed.find(':') == _none) return; // nothing stood behind it
        Uri const uri(kind == WithoutScheme ? "http://" + trimmed : trimmed);
        if (kind == Opaque || !uri.hostname().isNull()) m_out.add(uri, true);
    }

    UriContainer& m_out;
    bool const m_bareNames;
};

} // namespace

void UriSniffer::search(UriContainer& out, Buffer const& text, bool bareNames)
{
    Sniffer(out, bareNames).sniff(std::string_view(reinterpret_cast<char const*>(text.data()), text.length()));
}

void UriSniffer::search(UriContainer& out, std::string const& text, unsigned long from, bool bareNames)
{
    if (from < text.size()) Sniffer(out, bareNames).sniff(std::string_view(text).substr(from));
}

} // namespace Velmara
