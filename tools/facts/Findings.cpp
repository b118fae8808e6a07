// One row for each code. A rule looks at one part and says where it found what, or nothing. The codes are
// an interface: scripts match on them, and docs/command.md lists them.
#include "Findings.h"

#include <algorithm>
#include <iterator>
#include <map>
#include <string_view>

#include <velmara/ContentEncoding.h>
#include <velmara/ContentType.h>
#include <velmara/StringOperations.h>

#include "Shown.h"
#include "Text.h"
#include "Utf8.h"

namespace VelmaraCommand {

using namespace Velmara;

namespace {

struct Found {
    Span where;
    std::string text;
};

using Answer = std::optional<Found>;

struct Asked {
    PartFacts const& part;
    PartContext const& context;
    HeaderContainer const& headers;
};

constexpr size_t _quotedBytes = 60;

std::string _quoted(std::string_view text)
{
    bool const isLong = text.size() > _quotedBytes;
    return '"' + shown(beginningOf(text, _quotedBytes)) + (isLong ? "...\"" : "\"");
}

std::string _bytes(std::uint64_t n)
{
    return std::to_string(n) + (n == 1 ? " byte" : " bytes");
}

Span _byteAt(std::uint64_t position)
{
    return Span{position, position + 1};
}

bool _isSame(std::string const& a, std::string const& b)
{
    return stringCompareNoCase(a, b);
}

// ---- lines of text around parts -----------------------------------------------------------------

struct Line {
    Span where;
    std::string_view text; // without its line end
};

/// Calls `work` with each line of the body until it says that it has enough.
template <class Work> void _eachLine(Asked const& asked, Work work)
{
    std::string_view rest = asked.context.body->bytes;
    std::uint64_t at = asked.part.body.begin;
    while (!rest.empty()) {
        size_t const lineFeed = rest.find('\n');
        size_t const n = lineFeed == std::string_view::npos ? rest.size() : lineFeed + 1;
        std::string_view text = rest.substr(0, n);
        while (!text.empty() && isSpace(text.back())) text.remove_suffix(1);
        if (work(Line{Span{at, at + n}, text})) return;
        at += n;
        rest.remove_prefix(n);
    }
}

/// What mailers write for readers that know no MIME, without the dots at the end. Any other text there
/// is not meant for those.
constexpr std::string_view _usualPreambles[] = {
    "This is a multi-part message in MIME format",
    "This is a multipart message in MIME format",
    "This is a multipart MIME message",
    "This is a message in MIME format",
    "This is a MIME encoded message",
    "This is a MIME-encapsulated message",
    "This is a MIME-formatted message",
    "This is a cryptographically signed message in MIME format",
    "This is an S/MIME signed message",
    "This is an OpenPGP/MIME signed message (RFC 2440 and 3156)",
    "This is an OpenPGP/MIME signed message (RFC 4880 and 3156)",
    "This is an OpenPGP/MIME encrypted message (RFC 2440 and 3156)",
    "This is an OpenPGP/MIME encrypted message (RFC 4880 and 3156)",
    "This message is in MIME format",
    "This message is in MIME format.  The first part should be readable text,",
    "while the remaining parts are likely unreadable without MIME-aware tools",
};

bool _isUsualPreamble(std::string_view line)
{
    while (!line.empty() && isSpace(line.front())) line.remove_prefix(1);
    while (!line.empty() && line.back() == '.') line.remove_suffix(1);
    return std::find(std::begin(_usualPreambles), std::end(_usualPreambles), line) != std::end(_usualPreambles);
}

/// The first line with text, all that follows included.
Answer _textOf(Asked const& asked, bool (*isUsual)(std::string_view))
{
    Answer found;
    _eachLine(asked, [&](Line const& line) {
        if (line.text.empty() || (isUsual && isUsual(line.text))) return false;
        found = Found{Span{line.where.begin, asked.part.body.end}, _quoted(line.text)};
        return true;
    });
    return found;
}

constexpr std::string_view _partHeaders[] = {
    "content-type:", "content-transfer-encoding:", "content-disposition:", "content-id:", "mime-version:"};

bool _isPartHeader(std::string_view line)
{
    std::string const start = stringToLower(std::string(line.substr(0, 32)));
    return std::any_of(std::begin(_partHeaders), std::end(_partHeaders),
                       [&](std::string_view name) { return startsWith(start, name); });
}

Answer _headerIn(Asked const& asked)
{
    Answer found;
    _eachLine(asked, [&](Line const& line) {
        if (!_isPartHeader(line.text)) return false;
        found = Found{line.where, _quoted(line.text) + " would head a part, but is text here"};
        return true;
    });
    return found;
}

Answer _preambleText(Asked const& asked)
{
    return asked.part.kind == PartKind::Preamble ? _textOf(asked, _isUsualPreamble) : std::nullopt;
}

Answer _preambleHeaders(Asked const& asked)
{
    return asked.part.kind == PartKind::Preamble ? _headerIn(asked) : std::nullopt;
}

Answer _epilogueText(Asked const& asked)
{
    return asked.part.kind == PartKind::Epilogue ? _textOf(asked, nullptr) : std::nullopt;
}

Answer _epilogueHeaders(Asked const& asked)
{
    return asked.part.kind == PartKind::Epilogue ? _headerIn(asked) : std::nullopt;
}

// ---- delimiters ---------------------------------------------------------------------------------

std::string_view _behindDelimiter(Ending const& ending)
{
    return std::string_view(ending.text).substr(ending.delimiter.size());
}

Answer _delimiterByPrefix(Asked const& asked)
{
    auto const& ending = asked.part.ending;
    if (!ending || ending->exact || isSpace(_behindDelimiter(*ending).front())) return std::nullopt;
    return Found{ending->line, _quoted(ending->text) + " ends the part, for it begins with the delimiter " +
                                   _quoted(ending->delimiter) + " of part " + ending->path};
}

Answer _textBehindDelimiter(Asked const& asked)
{
    auto const& ending = asked.part.ending;
    if (!ending || ending->exact || !isSpace(_behindDelimiter(*ending).front())) return std::nullopt;
    return Found{ending->line, _quoted(_behindDelimiter(*ending)) + " stands behind the delimiter and is no part's"};
}

Answer _delimiterInHeader(Asked const& asked)
{
    if (asked.context.headerEnd != HeaderEnd::Delimiter) return std::nullopt;
    return Found{asked.context.headerEndLine, _quoted(asked.context.headerEndText) + " ends the header block"};
}

/// The line ahead of a message in a mailbox, which is none of its headers.
bool _isMailboxLine(Asked const& asked)
{
    return asked.part.header.begin == asked.part.header.end && startsWith(asked.context.headerEndText, "From ");
}

Answer _mailboxLine(Asked const& asked)
{
    if (asked.context.headerEnd != HeaderEnd::OtherLine || !_isMailboxLine(asked)) return std::nullopt;
    return Found{asked.context.headerEndLine, _quoted(asked.context.headerEndText) +
                                                  " is the line ahead of a message in a mailbox, so this one has no "
                                                  "headers"};
}

Answer _headerWithoutColon(Asked const& asked)
{
    if (asked.context.headerEnd != HeaderEnd::OtherLine || _isMailboxLine(asked)) return std::nullopt;
    return Found{asked.context.headerEndLine,
                 _quoted(asked.context.headerEndText) + " is no header, so the body begins with it"};
}

Answer _depthLimit(Asked const& asked)
{
    if (asked.part.kind != PartKind::Skipped) return std::nullopt;
    return Found{asked.part.body, asked.part.mediaType + " is " + std::to_string(asked.part.depth) +
                                      " containers deep and is kept as text"};
}

Answer _noBoundary(Asked const& asked)
{
    if (asked.part.kind != PartKind::Leaf || !startsWith(asked.part.mediaType, "multipart/")) return std::nullopt;
    return Found{asked.part.header, asked.part.mediaType + " without a boundary is taken as one body"};
}

Answer _noParts(Asked const& asked)
{
    if (asked.part.kind != PartKind::Multipart || asked.context.parts > 0) return std::nullopt;
    return Found{asked.part.body, "no line begins with " + _quoted("--" + asked.part.boundary)};
}

Answer _unclosed(Asked const& asked)
{
    if (asked.part.kind != PartKind::Multipart || asked.context.isClosed || asked.context.parts == 0)
        return std::nullopt;
    return Found{Span{asked.part.body.end, asked.part.body.end},
                 "no closing delimiter " + _quoted("--" + asked.part.boundary + "--")};
}

/// One being the beginning of the other, lines of the one are taken for the other's.
Answer _overlappingBoundaries(Asked const& asked)
{
    if (asked.part.kind != PartKind::Multipart) return std::nullopt;
    std::string const own = "--" + asked.part.boundary;
    for (OpenMultipart const& outer : *asked.context.around)
        if (startsWith(own, outer.delimiter) || startsWith(outer.delimiter, own))
            return Found{asked.part.header,
                         _quoted(own) + " overlaps with " + _quoted(outer.delimiter) + " of part " + outer.path};
    return std::nullopt;
}

// ---- headers ------------------------------------------------------------------------------------

constexpr char const* _onceOnly[] = {"From",         "Sender",
                                     "Reply-To",     "To",
                                     "Cc",           "Subject",
                                     "Date",         "Message-ID",
                                     "In-Reply-To",  "References",
                                     "MIME-Version", "Content-Transfer-Encoding",
                                     "Content-ID",   "Content-Disposition"};

Span _placeOf(Asked const& asked, size_t header)
{
    return header < asked.context.headerPlaces.size() ? asked.context.headerPlaces[header] : asked.part.header;
}

/// The second header of a name, and how many there are.
Answer _repeated(Asked const& asked, std::string const& name)
{
    size_t count = 0;
    Answer found;
    for (size_t i = 0; i < asked.part.headers.size(); ++i) {
        if (!_isSame(asked.part.headers[i].first, name) || ++count != 2) continue;
        found = Found{_placeOf(asked, i), asked.part.headers[i].first + ": " + _quoted(asked.part.headers[i].second)};
    }
    if (found) found->text += " is one of " + std::to_string(count) + "; the first counts";
    return found;
}

Answer _duplicateContentType(Asked const& asked)
{
    return _repeated(asked, ContentType::htype);
}

Answer _duplicateHeader(Asked const& asked)
{
    for (char const* name : _onceOnly)
        if (Answer found = _repeated(asked, name)) return found;
    return std::nullopt;
}

Answer _duplicateParameter(Asked const& asked)
{
    ContentType const type(asked.headers.find(ContentType::htype));
    if (type.isNull()) return std::nullopt;
    std::map<std::string, unsigned int> counts;
    for (TypeAndValue const& parameter : type.parameters())
        if (++counts[parameter.type()] == 2 &&
            (parameter.type() == "boundary" || parameter.type() == "charset" || parameter.type() == "name"))
            return Found{asked.part.header, "Content-Type has more than one " + parameter.type() + ", one of them " +
                                                _quoted(parameter.value())};
    return std::nullopt;
}

Answer _nameConflict(Asked const& asked)
{
    std::string const &shownName = asked.part.name, &other = asked.context.typeName;
    if (other.empty() || shownName == other) return std::nullopt;
    return Found{asked.part.header,
                 "Content-Disposition names it " + _quoted(shownName) + ", Content-Type " + _quoted(other)};
}

/// Embeddings, overrides and isolates: "exe.fdp" can so be shown as "pdf.exe".
bool _turnsDirection(char32_t c)
{
    return (c >= 0x202A && c <= 0x202E) || (c >= 0x2066 && c <= 0x2069);
}

bool _turnsText(std::string_view text)
{
    for (Utf8Character c; !text.empty(); text.remove_prefix(std::max(c.length, 1u))) {
        c = firstCharacter(text);
        if (c.length != 0 && _turnsDirection(c.value)) return true;
    }
    return false;
}

Answer _turnedName(Asked const& asked)
{
    if (!_turnsText(asked.part.name)) return std::nullopt;
    return Found{asked.part.header, "the name " + _quoted(asked.part.name) + " turns the direction of writing"};
}

ContentEncoding::EncodingType _encodingOf(Asked const& asked)
{
    ContentEncoding const encoding(asked.headers.find(ContentEncoding::htype));
    return encoding.isNull() ? ContentEncoding::Encoding7Bit : encoding.encoding();
}

Answer _encodedContainer(Asked const& asked)
{
    if (asked.part.kind != PartKind::Multipart && asked.part.kind != PartKind::Message) return std::nullopt;
    ContentEncoding::EncodingType const code = _encodingOf(asked);
    if (code == ContentEncoding::Encoding7Bit || code == ContentEncoding::Encoding8Bit ||
        code == ContentEncoding::EncodingBinary)
        return std::nullopt;
    return Found{asked.part.header, _quoted(asked.part.encoding) + " of a container is not heeded"};
}

Answer _unknownEncoding(Asked const& asked)
{
    if (asked.part.kind != PartKind::Leaf || asked.part.encoding.empty() ||
        _encodingOf(asked) != ContentEncoding::EncodingUnknown)
        return std::nullopt;
    return Found{asked.part.header,
                 _quoted(asked.part.encoding) + " is no transfer encoding; the body is as it stands"};
}

// ---- bodies -------------------------------------------------------------------------------------

Answer _foreignInBase64(Asked const& asked)
{
    if (!asked.context.body || !asked.context.body->firstForeign) return std::nullopt;
    return Found{_byteAt(*asked.context.body->firstForeign), "a byte that is not of Base64: its line and all that "
                                                             "follow are taken as they stand"};
}

Answer _nul(Asked const& asked)
{
    for (size_t i = 0; i < asked.part.headers.size(); ++i)
        if (asked.part.headers[i].second.find('\0') != std::string::npos)
            return Found{_placeOf(asked, i), "a NUL in the header " + shown(asked.part.headers[i].first)};
    bool const isBinary = _encodingOf(asked) == ContentEncoding::EncodingBinary;
    if (isBinary || !asked.context.body || !asked.context.body->firstNul) return std::nullopt;
    return Found{_byteAt(*asked.context.body->firstNul), "the first NUL of the body"};
}

Answer _undecodable(Asked const& asked)
{
    if (!asked.part.text || !asked.part.text->charsetKnown || asked.part.text->undecodable == 0) return std::nullopt;
    return Found{asked.part.body,
                 _bytes(asked.part.text->undecodable) + " that " + shown(asked.part.text->charset) + " does not have"};
}

Answer _unknownCharset(Asked const& asked)
{
    if (!asked.part.text || asked.part.text->charsetKnown) return std::nullopt;
    return Found{asked.part.header, "nobody knows the character set " + _quoted(asked.part.text->charset)};
}

Answer _typeMismatch(Asked const& asked)
{
    if (!asked.part.type || !asked.part.type->mismatch) return std::nullopt;
    return Found{asked.part.body, "declared " + shown(asked.part.mediaType) + ", but it is " +
                                      asked.part.type->detected + ": " + asked.part.type->decidedBy};
}

Answer _hiddenText(Asked const& asked)
{
    if (!asked.part.html || asked.part.html->hiddenBytes == 0) return std::nullopt;
    return Found{asked.part.body, _bytes(asked.part.html->hiddenBytes) + " of text are hidden, " +
                                      _bytes(asked.part.html->visibleBytes) + " visible"};
}

// ---- the rules ----------------------------------------------------------------------------------

struct Rule {
    char const* code;
    Answer (*find)(Asked const&);
};

constexpr Rule _rules[] = {
    {"mailbox-line", _mailboxLine},
    {"header-without-colon", _headerWithoutColon},
    {"delimiter-in-header", _delimiterInHeader},
    {"duplicate-content-type", _duplicateContentType},
    {"duplicate-header", _duplicateHeader},
    {"duplicate-parameter", _duplicateParameter},
    {"name-conflict", _nameConflict},
    {"turned-name", _turnedName},
    {"depth-limit", _depthLimit},
    {"no-boundary", _noBoundary},
    {"no-parts", _noParts},
    {"unclosed-multipart", _unclosed},
    {"overlapping-boundaries", _overlappingBoundaries},
    {"encoded-container", _encodedContainer},
    {"unknown-encoding", _unknownEncoding},
    {"preamble-text", _preambleText},
    {"preamble-headers", _preambleHeaders},
    {"epilogue-text", _epilogueText},
    {"epilogue-headers", _epilogueHeaders},
    {"foreign-base64", _foreignInBase64},
    {"nul-byte", _nul},
    {"unknown-charset", _unknownCharset},
    {"undecodable-text", _undecodable},
    {"type-mismatch", _typeMismatch},
    {"hidden-text", _hiddenText},
    {"delimiter-by-prefix", _delimiterByPrefix},
    {"text-behind-delimiter", _textBehindDelimiter},
};

constexpr char _hostMismatch[] = "host-mismatch";
constexpr char _displayNameAddress[] = "display-name-address";
constexpr char _turnedHeader[] = "turned-header";

// ---- what there can be several of ---------------------------------------------------------------

bool _isSameSite(std::string_view a, std::string_view b)
{
    constexpr std::string_view www = "www.";
    if (startsWith(a, www)) a.remove_prefix(www.size());
    if (startsWith(b, www)) b.remove_prefix(www.size());
    return a == b;
}

void _addHosts(PartFacts const& part, std::vector<Finding>& findings)
{
    constexpr size_t most = 16; // of one part
    size_t count = 0;
    for (Link const& link : part.html->links) {
        std::string const* const other = pretendedHost(link);
        if (!other) continue;
        if (++count > most) return;
        findings.push_back(Finding{_hostMismatch, part.path, part.body,
                                   "shows " + shown(*other) + " and leads to " +
                                       (link.host.empty() ? "no host" : shown(link.host)) + ": " + _quoted(link.uri)});
    }
}

/// The domain of an address that stands in a display name; "" without one.
std::string _domainIn(std::string const& name)
{
    size_t const at = name.find('@');
    if (at == std::string::npos) return std::string();
    size_t const end = name.find_first_of(" \t<>()[]\"',;", at);
    return name.substr(at + 1, end == std::string::npos ? end : end - at - 1);
}

void _addSender(Address const& sender, Span const& where, std::vector<Finding>& findings)
{
    std::string const shownDomain = _domainIn(sender.displayName);
    std::string const domain = sender.address.substr(sender.address.rfind('@') + 1);
    if (shownDomain.find('.') == std::string::npos || _isSame(shownDomain, domain)) return;
    findings.push_back(
        Finding{_displayNameAddress, "1", where,
                "the name " + _quoted(sender.displayName) + " stands beside the address " + _quoted(sender.address)});
}

} // namespace

std::string const* pretendedHost(Link const& link)
{
    auto const other = std::find_if(link.otherHosts.begin(), link.otherHosts.end(),
                                    [&](std::string const& host) { return !_isSameSite(host, link.host); });
    return other == link.otherHosts.end() ? nullptr : &*other;
}

void addPartFindings(PartFacts const& part, PartContext const& context, HeaderContainer const& headers,
                     std::vector<Finding>& findings)
{
    Asked const asked{part, context, headers};
    for (Rule const& rule : _rules)
        if (Answer found = rule.find(asked))
            findings.push_back(Finding{rule.code, part.path, found->where, std::move(found->text)});
    if (part.html) _addHosts(part, findings);
}

void addMessageFindings(MessageFacts& facts)
{
    if (facts.parts.empty()) return;
    Span const where = facts.parts.front().header;
    for (auto const* senders : {&facts.from, &facts.sender, &facts.replyTo})
        for (Address const& sender : *senders) {
            _addSender(sender, where, facts.findings);
            if (_turnsText(sender.displayName))
                facts.findings.push_back(
                    Finding{_turnedHeader, "1", where,
                            "the name " + _quoted(sender.displayName) + " turns the direction of writing"});
        }
    if (_turnsText(facts.subject))
        facts.findings.push_back(Finding{_turnedHeader, "1", where, "the subject turns the direction of writing"});
}

void sortFindings(MessageFacts& facts)
{
    if (facts.findings.size() < 2) return;
    std::map<std::string_view, size_t> order;
    for (size_t i = 0; i < facts.parts.size(); ++i) order.emplace(facts.parts[i].path, i);
    std::stable_sort(facts.findings.begin(), facts.findings.end(),
                     [&](Finding const& a, Finding const& b) { return order[a.path] < order[b.path]; });
}

std::vector<std::string> findingCodes()
{
    std::vector<std::string> codes;
    for (Rule const& rule : _rules) codes.push_back(rule.code);
    for (char const* code : {_hostMismatch, _displayNameAddress, _turnedHeader}) codes.push_back(code);
    return codes;
}

} // namespace VelmaraCommand
