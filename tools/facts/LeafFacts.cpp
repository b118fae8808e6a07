// What is made of one body, each time from the same decoded bytes.
#include "LeafFacts.h"

#include <algorithm>
#include <initializer_list>

#include <velmara/Buffer.h>
#include <velmara/ContentType.h>
#include <velmara/HasherFactory.h>
#include <velmara/SharedMimeInfo.h>
#include <velmara/StringOperations.h>
#include <velmara/TD.h>
#include <velmara/VmaraConv.h>

#include "HtmlReading.h"
#include "PartLabels.h"
#include "Signing.h"
#include "Text.h"
#include "TokenText.h"
#include "TypeReasons.h"
#include "Utf8.h"

namespace VelmaraCommand {

using namespace Velmara;

namespace {

constexpr size_t _typeLooksAt = 64u << 10; // as `velmara type`

/// More than what tokens are made of: 80 lines of 8095 bytes.
constexpr std::uint64_t _mostText = 1u << 20;

// ---- the type ---------------------------------------------------------------------------------

/// An installation without the database has no types. That is found out once: each attempt reads a file.
bool _typesAreKnown()
{
    static bool const known = [] {
        try {
            SharedMimeInfo::init();
            return true;
        } catch (Exception const&) {
            return false;
        }
    }();
    return known;
}

std::string _topLevel(std::string const& mimeType)
{
    return mimeType.substr(0, mimeType.find('/'));
}

bool _isOneOf(std::string const& text, std::initializer_list<char const*> list)
{
    return std::find(list.begin(), list.end(), text) != list.end();
}

/// A declared type that the database does not have says only what family it belongs to.
bool _isOfAnotherFamily(std::string const& declared, std::string const& detected)
{
    std::string const family = _topLevel(declared);
    return _isOneOf(family, {"text", "image", "audio", "video"}) && family != _topLevel(detected);
}

/// Types that mean the same to a reader, though neither is a kind of the other.
bool _areAlike(std::string const& declared, std::string const& detected)
{
    unsigned int const code = SharedMimeInfo::type(detected);
    if (declared == detected || (code != 0 && SharedMimeInfo::type(declared) == code)) return true;
    return _isOneOf(declared, {"text/html", "application/xhtml+xml"}) &&
           _isOneOf(detected, {"text/html", "application/xhtml+xml"});
}

/// Whether anything is said of the content, and by whom.
bool _isComparable(std::string const& declared, MimeTypeExplanation const& why)
{
    return !declared.empty() && !_isOneOf(_topLevel(declared), {"multipart", "message"}) &&
           why.reason != MimeTypeExplanation::LooksBinary && why.mimeType->find('/') != std::string::npos;
}

bool _isMismatch(std::string const& declared, MimeTypeExplanation const& why)
{
    std::string const& detected = *why.mimeType;
    if (!_isComparable(declared, why) || _areAlike(declared, detected)) return false;
    if (SharedMimeInfo::mimeTypeList().count(declared) == 0) return _isOfAnotherFamily(declared, detected);
    return !SharedMimeInfo::isMimeTypeEqualOrSubclassOf(declared, detected) &&
           !SharedMimeInfo::isMimeTypeEqualOrSubclassOf(detected, declared);
}

TypeFacts _typeOf(std::string const& body, std::string const& declared, std::string const& name)
{
    Buffer const start(body.data(), static_cast<unsigned int>(std::min(body.size(), _typeLooksAt)), false);
    MimeTypeExplanation const why = SharedMimeInfo::explain(start, name);
    TypeFacts type;
    type.detected = *why.mimeType;
    type.code = SharedMimeInfo::type(type.detected);
    type.reason = nameOf(why.reason);
    type.decidedBy = decidedBy(why);
    type.mismatch = _isMismatch(declared, why);
    return type;
}

// ---- the signature ----------------------------------------------------------------------------

SignatureFacts _signatureOf(ContentType const& type, BodyBytes const& body)
{
    Signing signing(HasherFactory::createHasher(type, 0).dataType());
    // Beyond what is kept, a hasher would ask for more than it can get.
    std::uint64_t const whole = std::min<std::uint64_t>(body.bytes.size(), 0xFFFFFFFF);
    signing.process(body.bytes, HasherFactory::maxHashBufSize(type), whole);
    SignatureFacts facts;
    facts.kind = signing.kind();
    facts.signature = signing.signature();
    facts.lookedAt = signing.lookedAt();
    facts.entered = signing.entered();
    facts.whyNone = signing.whyNone();
    return facts;
}

// ---- the text ---------------------------------------------------------------------------------

/// A converted text: counted whole, kept up to a bound.
class TextSink : public MediaOutImpl {
public:
    explicit TextSink(Deadline const& deadline) : m_deadline(deadline) {}
    using MediaOutImpl::write;
    void write(uchar_t const* bytes, uint_t n) override
    {
        if ((++m_writes & 63) == 0) m_deadline.check();
        total += n;
        text.append(reinterpret_cast<char const*>(bytes), std::min<std::uint64_t>(n, _mostText - text.size()));
    }
    std::uint64_t total = 0;
    std::string text;

private:
    Deadline const& m_deadline;
    unsigned int m_writes = 0;
};

struct Converted {
    std::string text;
    std::uint64_t bytes = 0, undecodable = 0, unencodable = 0;
    bool ok = false;
};

Converted _convert(std::string const& bytes, std::string const& charset, Deadline const& deadline)
{
    auto* sink = new TextSink(deadline);
    MediaOut const out(sink, false);
    VmaraConv converter(out, charset, "utf-8", true); // forced, so that UTF-8 is looked at as well
    Converted result;
    result.ok = converter.ok();
    converter.substitute_unknown(true);
    converter.write(reinterpret_cast<uchar_t const*>(bytes.data()), static_cast<uint_t>(bytes.size()));
    converter.end();
    result.undecodable = converter.ferrCnt();
    result.unencodable = converter.terrCnt();
    result.bytes = sink->total;
    result.text = std::move(sink->text);
    return result;
}

/// The text as tokens are made of it. It differs from what people see where UTF-8 is broken, which is
/// copied as it is, and where the character set is unknown, which gives no text.
std::string const& _tokenText(Converted const& converted, std::string const& body, std::string const& charset,
                              std::string& room)
{
    if (converted.ok && converted.undecodable == 0) return converted.text;
    Buffer const text =
        VmaraConv::toUtf8(charset, body.data(), static_cast<unsigned int>(body.size()), _mostText, true, true);
    return room = stringOf(text);
}

void _addTokens(std::string const& text, std::string const& charset, TextFacts& facts)
{
    waitForWordLists();
    TD const tokens(text, charset);
    facts.language = languageOf(tokens);
    for (wchar_t number : tokens.tokens()) facts.tokens.push_back(static_cast<unsigned int>(number));
}

void _keep(std::string const& text, Wanted const& wanted, TextFacts& facts)
{
    facts.text = beginningOf(text, wanted.textBytes);
}

void _addPlain(std::string const& body, std::string const& charset, Wanted const& wanted, Deadline const& deadline,
               TextFacts& facts)
{
    Converted const converted = _convert(body, charset, deadline);
    facts.charset = charset;
    facts.undecodable = converted.undecodable;
    facts.unencodable = converted.unencodable;
    facts.charsetKnown = converted.ok;
    facts.textBytes = converted.bytes;
    _keep(converted.text, wanted, facts);
    std::string room;
    if (wanted.tokens) _addTokens(_tokenText(converted, body, charset, room), charset, facts);
}

void _addPage(std::string const& body, std::string const& charset, Wanted const& wanted, Deadline const& deadline,
              PartFacts& part)
{
    TextFacts& facts = *part.text;
    HtmlWanted how;
    how.charset = charset;
    how.runs = wanted.html && wanted.runs;
    how.links = how.images = wanted.html;
    HtmlReading reading = readHtml(BufferMediaIn(body.data(), body.size()), how);
    deadline.check();
    facts.charset =
        facts.declaredCharset.empty() && !reading.declaredCharset.empty() ? reading.declaredCharset : charset;
    Converted const converted = _convert(body, facts.charset, deadline);
    facts.undecodable = converted.undecodable;
    facts.charsetKnown = converted.ok;
    facts.textBytes = reading.text.size();
    _keep(reading.text, wanted, facts);
    if (wanted.tokens) _addTokens(reading.text, charset, facts);
    if (part.signature) part.signature->tagTokens = reading.tagTokens;
    if (wanted.html) part.html = std::move(reading.facts);
}

} // namespace

void addLeafFacts(HeaderContainer const& headers, BodyBytes const& body, Wanted const& wanted, Deadline const& deadline,
                  PartFacts& part)
{
    ContentType const type(headers.find(ContentType::htype));
    if (wanted.types && !body.bytes.empty() && _typesAreKnown())
        part.type = _typeOf(body.bytes, part.mediaType, part.name);
    deadline.check();
    if (wanted.signatures) part.signature = _signatureOf(type, body);
    deadline.check();
    if (!isText(type)) return;
    part.text.emplace();
    part.text->declaredCharset = part.charset;
    std::string const charset = part.charset.empty() ? defaultCharset : part.charset;
    if (isHtml(type))
        _addPage(body.bytes, charset, wanted, deadline, part);
    else
        _addPlain(body.bytes, charset, wanted, deadline, *part.text);
}

void addPlainText(BodyBytes const& body, Wanted const& wanted, PartFacts& part)
{
    part.text.emplace();
    part.text->textBytes = body.bytes.size();
    part.text->charsetKnown = true;
    _keep(body.bytes, wanted, *part.text);
}

} // namespace VelmaraCommand
