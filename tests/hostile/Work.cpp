#include "hostile/Work.h"

#include <algorithm>

#include <velmara/Velmara.h>

#include "semantics/DictionaryFiles.h"

namespace Velmara::Hostile {

namespace {

std::string_view _view(Buffer const& bytes)
{
    return std::string_view(reinterpret_cast<char const*>(bytes.data()), bytes.length());
}

Buffer _buffer(std::string const& text)
{
    return Buffer(text.data(), static_cast<unsigned int>(text.size()), false);
}

/// Gives what arrives to a sink.
class _ToSink : public MediaOutImpl {
public:
    explicit _ToSink(Sink& sink) : m_sink(sink) {}
    using MediaOutImpl::write;
    void write(uchar_t const* bytes, uint_t n) override
    {
        m_sink.text(std::string_view(reinterpret_cast<char const*>(bytes), n));
    }
    void end() override { m_sink.number(-1); }
    void characterSet(std::string const& name) override { m_sink.text(name); }

private:
    Sink& m_sink;
};

MediaOut _toSink(Sink& sink)
{
    return MediaOut(new _ToSink(sink), false);
}

void _put(Sink& sink, EmailAddress const& address)
{
    sink.text(address.address());
    sink.text(address.domain());
    sink.text(address.displayName());
}

template <class Addresses> void _putAll(Sink& sink, Addresses const& addresses)
{
    sink.number(static_cast<long long>(addresses.size()));
    for (EmailAddress const& address : addresses) _put(sink, address);
}

void _put(Sink& sink, std::list<TypeAndValue> const& parameters)
{
    for (TypeAndValue const& parameter : parameters) {
        sink.text(parameter.type());
        sink.text(parameter.value());
    }
}

void _put(Sink& sink, Uri const& uri)
{
    sink.text(uri.asString());
    sink.text(uri.hostname().asString());
}

void _put(Sink& sink, TD const& tokens)
{
    sink.number(tokens.language());
    for (wchar_t token : tokens.tokens()) sink.number(static_cast<long long>(token));
}

/// What a failure says is part of the result too; nothing else may leave.
template <class Work> void _orFailure(Sink& sink, Work work)
{
    try {
        work();
    } catch (Exception const& failure) {
        sink.text(failure.message());
        sink.number(failure.code());
    }
}

// Headers.

void _put(Sink& sink, ContentType const& type)
{
    if (type.isNull()) return;
    sink.number(type.mediatype());
    sink.number(type.subtype());
    sink.text(type.mediatypeAsString());
    sink.text(type.subtypeAsString());
    sink.text(type.charset());
    sink.text(type.boundary());
    sink.text(type.utf8name());
    _put(sink, type.parameters());
}

void _put(Sink& sink, ContentDisposition const& disposition)
{
    if (disposition.isNull()) return;
    sink.number(disposition.fileType());
    sink.text(disposition.utf8fileName());
    _put(sink, disposition.parameters());
}

void _put(Sink& sink, Received const& received)
{
    if (received.isNull()) return;
    for (char const* clause : {"from", "by", "with", "id", "for", "via", "none"}) sink.text(received.find(clause));
    sink.text(received.date());
    sink.text(received.by());
    sink.text(received.from());
    sink.text(received.reverseName());
    sink.text(received.address().asString(true));
}

template <class AddressList> void _putList(Sink& sink, AddressList const& header)
{
    if (!header.isNull()) _putAll(sink, header.addresses());
}

void _putHeaderText(Sink& sink, std::string const& text)
{
    VMRStaticCharSetFallbacks const* none = nullptr;
    sink.number(vmara_is_Rfc2047_Encoded(text));
    sink.text(_view(stringDecodeRfc2047(text)));
    sink.text(_view(stringToUtf8(text, none)));
    sink.text(stringToHtmlEscapedUTF8(text, none));
}

/// A header as the typed class of its name, and as text.
void _putTyped(Sink& sink, Header const& header)
{
    std::string const& name = header.typeLowerCase();
    sink.text(name);
    sink.text(header.asString());
    sink.text(header.unfolded());
    if (name == "content-type") _put(sink, ContentType(header));
    if (name == "content-disposition") _put(sink, ContentDisposition(header));
    if (name == "received") _put(sink, Received(header));
    if (name == "to") _putList(sink, HeaderTo(header));
    if (name == "references") _putList(sink, References(header));
    if (name == "from" && !HeaderFrom(header).isNull()) _put(sink, HeaderFrom(header).address());
    if (name == "subject") _putHeaderText(sink, header.value());
}

// Bodies.

void _putText(Sink& sink, std::string const& text, std::string const& charset)
{
    Buffer const utf8 = VmaraConv::toUtf8(charset, text.data(), static_cast<unsigned int>(text.size()), 0, true, true);
    sink.text(_view(utf8));
    _put(sink, TD(std::string(_view(utf8)), charset));
    UriContainer links;
    UriSniffer::search(links, utf8, false);
    for (Uri const& uri : links.hrefs(0)) _put(sink, uri);
}

/// All that is collected of an HTML document.
class _HtmlResults {
public:
    explicit _HtmlResults(Sink& sink, bool ignoreEncoding)
        : document(ignoreEncoding), m_sink(sink), m_out(_toSink(sink))
    {
        loadWords();
        add(new HtmlTxtExtract(&document, 0, m_out, &m_links));
        add(new HtmlTagExtract(&m_tags, "utf-8"));
        add(new HtmlImageExtract(&document, 0, &m_images));
        add(new HtmlToTxtDisclaimer(&document, m_out));
    }
    _HtmlResults(_HtmlResults const&) = delete;
    _HtmlResults& operator=(_HtmlResults const&) = delete;

    void put()
    {
        for (Uri const& uri : m_links.hrefs(0)) m_sink.text(uri.asString());
        for (Ref<TD> const& tags : m_tags.descriptors()) _put(m_sink, *tags.get());
        for (Ref<ImageSummary> const& image : m_images.images()) {
            m_sink.text(image->cid.value);
            for (int value : {image->width, image->height, image->textLine}) m_sink.number(value);
        }
    }

    TextHtmlDoc document;

private:
    void add(HtmlDocVisitor* visitor) { document.addVisitor(Ref<HtmlDocVisitor>(visitor, false)); }

    Sink& m_sink;
    MediaOut m_out;
    UriContainer m_links;
    TDProperties m_tags;
    ImageProperties m_images{0};
};

void _putSignature(Sink& sink, Hasher hasher, std::string const& body, unsigned int first)
{
    auto const size = static_cast<unsigned int>(body.size());
    unsigned int n = std::min(std::max(first, 1u), size);
    hasher.process(Buffer(body.data(), n, false), size);
    while (hasher.isMoreDataRequired() && n < size) {
        n = std::min(2 * n, size);
        hasher.process(Buffer(body.data(), n, false), size);
    }
    sink.text(hasher.digestAsHexString());
    sink.number(hasher.hashedDataLength());
}

void _putBody(Sink& sink, MimePart& part, std::string const& body)
{
    ContentType const type(part.headers().find(ContentType::htype));
    ContentDisposition const disposition(part.headers().find(ContentDisposition::htype));
    sink.text(body);
    _putSignature(sink, HasherFactory::createHasher(type, 0), body, HasherFactory::maxHashBufSize(type));
    if (!disposition.isNull())
        _orFailure(sink, [&] { sink.text(SharedMimeInfo::mimeType(_buffer(body), disposition.utf8fileName())); });
    if (!type.isNull() && type.mediatype() != ContentType::MediaTypeText) return;
    if (type.isNull() || type.subtype() != ContentType::SubTypeHtml)
        return _putText(sink, body, type.isNull() || type.charset().empty() ? "us-ascii" : type.charset());
    _HtmlResults results(sink, true);
    BufferMediaIn in(body.data(), body.size());
    results.document.parse(&in);
    results.put();
}

/// Puts the walk, and for each part what `Work` finds in it.
class _Walk : public MimePartVisitor {
public:
    using Work = void (*)(Sink&, MimePart&);
    _Walk(Sink& sink, Work headers, Work body) : m_sink(sink), m_headers(headers), m_body(body) {}

    void visitSkippedPart(MimeSkippedPart& part) override { leaf("skipped", part); }
    void visitRfc822Msg(MimeRfc822Msg& part) override { leaf("leaf", part); }
    void visitPreamble(MimePreamble& part) override { leaf("preamble", part); }
    void visitEpilogue(MimeEpilogue& part) override { leaf("epilogue", part); }
    bool visitMPart(MimeRfc822MPart& part) override { return open("multipart", part); }
    bool visitSPart(MimeRfc822SPart& part) override { return open("message", part); }

private:
    bool open(char const* kind, MimePart& part)
    {
        m_sink.text(kind);
        m_sink.number(static_cast<long long>(part.sourcePosition()));
        m_sink.number(static_cast<long long>(part.hlen()));
        m_headers(m_sink, part);
        return true;
    }
    void leaf(char const* kind, MimePart& part)
    {
        open(kind, part);
        m_body(m_sink, part);
        m_sink.number(static_cast<long long>(part.blen()));
    }

    Sink& m_sink;
    Work m_headers, m_body;
};

void _nothing(Sink&, MimePart&)
{}

void _walk(Input const& input, Sink& sink, _Walk::Work headers, _Walk::Work body)
{
    MediaIn in = input.media();
    Ref<Rfc822Msg> message = Rfc822Msg::parse(in);
    _Walk walk(sink, headers, body);
    message->root()->visit(&walk);
}

/// By `write`, which holds no more than a line of the source. The reads by lines give a decoded line
/// whole, however long it is.
void _putBytes(Sink& sink, MediaIn body)
{
    MediaOut out = _toSink(sink);
    body.write(out);
}

} // namespace

// Messages.

void walkTree(Input const& input, Sink& sink)
{
    _walk(
        input, sink,
        [](Sink& out, MimePart& part) {
            for (Header const& header : part.headers().headers()) {
                out.text(header.type());
                out.text(header.value());
            }
        },
        _nothing);
}

void readBodies(Input const& input, Sink& sink)
{
    _walk(input, sink, _nothing, [](Sink& out, MimePart& part) { _putBytes(out, part.body(false)); });
    _walk(input, sink, _nothing, [](Sink& out, MimePart& part) { _putBytes(out, part.body(true)); });
}

void analyseMessage(Input const& input, Sink& sink)
{
    loadWords();
    _walk(
        input, sink,
        [](Sink& out, MimePart& part) {
            for (Header const& header : part.headers().headers()) _putTyped(out, header);
            out.number(inReplyToDomainMatch(part.headers()));
        },
        [](Sink& out, MimePart& part) {
            std::string body;
            part.body(true).read(body);
            _putBody(out, part, body);
        });
}

void collectText(Input const& input, Sink& sink)
{
    MediaIn in = input.media();
    Ref<Rfc822Msg> message = Rfc822Msg::parse(in);
    BayesianVisitor visitor(_toSink(sink));
    visitor.init(message->root());
    message->root()->visit(&visitor);
}

// Headers.

void useHeaderBlock(Input const& input, Sink& sink)
{
    MediaIn in = input.media();
    HeaderContainer headers;
    _orFailure(sink, [&] { headers = HeaderContainer(in); });
    for (Header const& header : headers.headers()) {
        sink.text(header.asString());
        sink.text(header.unfolded());
    }
    RefHeaderList list(true);
    list.add(headers.headers());
    HeaderContainer copy = headers.clone();
    for (char const* name : {"Subject", "X-9"}) {
        sink.number(copy.find(name).isNull());
        sink.number(list.rfind(name) == list.headers().end());
        if (!copy.find(name).isNull()) copy.replace(Header(name, "new"));
        copy.remove(name);
        list.remove(name, true);
    }
    copy.replace(std::list<Header>{Header("Subject", "new"), Header("b", "new")});
    sink.number(static_cast<long long>(copy.headers().size() + list.headers().size()));
}

void readContentType(Input const& input, Sink& sink)
{
    _put(sink, ContentType(input.text()));
}

void readDisposition(Input const& input, Sink& sink)
{
    _put(sink, ContentDisposition(input.text()));
}

void readReceived(Input const& input, Sink& sink)
{
    _put(sink, Received(input.text()));
}

void readReferences(Input const& input, Sink& sink)
{
    _putList(sink, References(input.text()));
    HeaderContainer headers;
    headers.add(Header("In-Reply-To", input.text()));
    headers.add(Header("References", input.text()));
    headers.add(Header("To", "reader@here.example"));
    sink.number(inReplyToDomainMatch(headers));
    sink.number(inReplyToDomainMatch(headers, EmailAddress("reader@here.example")));
}

void readListHeader(Input const& input, Sink& sink)
{
    HeaderListUnsubscribe const header(input.text());
    if (header.isNull()) return;
    for (Uri const& uri : header.uris()) _put(sink, uri);
}

void readListId(Input const& input, Sink& sink)
{
    ListId const header(input.text());
    if (!header.isNull()) sink.text(header.domain().asString());
}

void readAddresses(Input const& input, Sink& sink)
{
    std::string const& text = input.text();
    for (bool const lenient : {true, false}) {
        _orFailure(sink, [&] { _put(sink, EmailAddress::rfc5322Parse(text, lenient)); });
        _orFailure(sink, [&] { _putAll(sink, EmailAddress::rfc5322ParseList(text, lenient)); });
    }
    _orFailure(sink, [&] { _putAll(sink, EmailAddress::rfc5322ParseList(text, ",; ")); });
    _orFailure(sink, [&] { _putList(sink, HeaderTo(text)); });
    VMRStaticCharSetFallbacks const* none = nullptr;
    _orFailure(sink, [&] { sink.text(emailAddressToUTF8(text, none)); });
    _orFailure(sink, [&] { sink.text(emailAddressToHtmlEscapedUTF8(text, none)); });
    _orFailure(sink, [&] { sink.text(stringToValidEmailAddressRfc822HeaderValue(text)); });
    _orFailure(sink, [&] { sink.text(emailAddressAsRfc2047String(text)); });
}

void readHeaderText(Input const& input, Sink& sink)
{
    std::string const& text = input.text();
    _putHeaderText(sink, text);
    std::string subject;
    vmara_decode_subject(text, subject);
    sink.text(subject);
    sink.number(EncodedWord::isEncodedWord(text));
    for (bool const crlf : {false, true}) try {
            EncodedWord word(crlf);
            word.parse(text);
            sink.text(word.charset());
            sink.text(_view(word.decoded()));
            sink.text(_view(word.toUtf8()));
        } catch (Exception const& failure) {
            sink.number(failure.code());
            sink.number(failure.cause().code());
        }
    sink.text(vmara_encode_rfc2047(text, "utf-8"));
}

// Addresses and links.

void findLinks(Input const& input, Sink& sink)
{
    for (bool const bareNames : {false, true}) {
        UriContainer links;
        UriSniffer::search(links, input.text(), 0, bareNames);
        for (Uri const& uri : links.hrefs(0)) _put(sink, uri);
    }
}

void readNames(Input const& input, Sink& sink)
{
    std::string const& text = input.text();
    for (bool const flag : {false, true}) {
        sink.text(HostName(text, flag, false).asString());
        sink.text(HostName(text, flag, true).asString());
    }
    sink.text(IPAddress(text).asString(true));
    sink.text(IPAddressMask(text).asString());
    _orFailure(sink, [&] { _put(sink, Uri(text)); });
    sink.text(MSISDN(text).asString());
}

// HTML.

void readHtml(Input const& input, Sink& sink, char const* charset, bool ignoreEncoding)
{
    std::string const& html = input.text();
    _HtmlResults results(sink, ignoreEncoding);
    HTML::Parser::parseAll(results.document, ignoreEncoding, html.data(), static_cast<unsigned int>(html.size()),
                           charset);
    results.put();
}

void readHtmlBody(Input const& input, Sink& sink)
{
    _HtmlResults results(sink, true);
    MediaIn in = input.media();
    results.document.parse(&in);
    results.put();
}

// Signatures, tokens, types.

namespace {

void _putExtract(Sink& sink, std::string const& text, int mode)
{
    char extract[256];
    long written = 0;
    int const length =
        htm_txt_get_data(text.data(), static_cast<int>(text.size()), mode, extract, sizeof extract, &written);
    sink.text(std::string_view(extract, static_cast<size_t>(length)));
    sink.number(written);
}

} // namespace

void sign(Input const& input, Sink& sink)
{
    std::string const& body = input.text();
    _putExtract(sink, body, 1);
    _putExtract(sink, body, 2);
    _putSignature(sink, TextHasher(Hasher::DataHtml), body, 4096);
    _putSignature(sink, TextHasher(Hasher::DataText), body, 4096);
    _putSignature(sink, ImageHasher(Hasher::DataGif), body, 4096);
    _putSignature(sink, ImageHasher(Hasher::DataPng), body, 4096);
    _putSignature(sink, ImageHasher(Hasher::DataJpeg), body, 4096);
    _putSignature(sink, BinaryHasher(), body, 4096);
}

void readTokens(Input const& input, Sink& sink, char const* charset)
{
    loadWords();
    constexpr size_t piece = 50 * 8000; // of one text, no more than 50 lines count
    std::string const& text = input.text();
    for (size_t at = 0; at < text.size(); at += piece) {
        std::string const one = text.substr(at, piece);
        _put(sink, TD(one, charset));
        Utf2lang scripts;
        scripts.proc(one);
        for (bool const found : {scripts.chinese, scripts.japanese, scripts.korean, scripts.russian})
            sink.number(found);
    }
}

void detectType(Input const& input, Sink& sink)
{
    std::string const& text = input.text();
    Buffer const content = _buffer(text);
    _orFailure(sink, [&] {
        sink.text(SharedMimeInfo::mimeType(content, std::string()));
        sink.text(SharedMimeInfo::mimeType(Buffer(), text));
        sink.text(SharedMimeInfo::mimeType(content, text));
        sink.text(FileMagic::mimeType(content, "name"));
        sink.text(FileMagic::mimeTypeAll(content, "name"));
    });
}

void writeThrough(Input const& input, Sink& sink, MediaOut (*stage)(MediaOut const& out), unsigned int block)
{
    MediaOut out = stage(_toSink(sink));
    MediaIn in = input.media();
    Buffer bytes(static_cast<int>(block), 0);
    while (in.read(bytes, block) > 0) out.write(bytes);
    out.end();
}

void writeLinesThrough(Input const& input, Sink& sink, MediaOut (*stage)(MediaOut const& out))
{
    MediaOut out = stage(_toSink(sink));
    MediaIn in = input.media();
    Buffer line(4096, 0);
    for (in.readline(line); !line.isEmpty(); in.readline(line)) out.write(line);
    out.end();
}

void loadWords()
{
    static bool const loaded = [] {
        // Each word is the beginning of the next one, so every place of a text is looked up as often as
        // the longest word is long.
        DictionaryFiles files;
        std::vector<std::wstring> latin, han, kana, cyrillic;
        for (size_t n = 1; n <= 50; ++n) {
            latin.emplace_back(n, L'a');
            han.emplace_back(n, static_cast<wchar_t>(0x4E00));
            kana.emplace_back(n, static_cast<wchar_t>(0x3042));
            cyrillic.emplace_back(n, static_cast<wchar_t>(0x0430));
        }
        files.writeWords("e2i.idx", latin);
        files.writeWords("xdict-ce-gb.idx", han);
        files.writeWords("jmdict-ja-en.idx", kana);
        files.writeWords("rus_eng_full.idx", cyrillic);
        auto* config = new Config; // for the life of the process
        config->readDict(files.dir());
        pconfig = config;
        return true;
    }();
    static_cast<void>(loaded);
}

} // namespace Velmara::Hostile
