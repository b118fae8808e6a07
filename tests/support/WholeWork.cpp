#include "support/WholeWork.h"

#include <glob.h>

#include <chrono>
#include <cstdlib>
#include <memory>
#include <stdexcept>
#include <thread>

#include <velmara/Velmara.h>

#include "support/TypeDatabase.h"

namespace Velmara {

namespace {

std::string _string(Buffer const& bytes)
{
    return std::string(reinterpret_cast<char const*>(bytes.data()), bytes.length());
}

/// Words in a row, each in brackets, so that none can run into the next.
class Words {
public:
    Words& operator<<(std::string const& word)
    {
        m_text += '[' + word + ']';
        return *this;
    }
    Words& operator<<(char const* word) { return *this << std::string(word); }
    Words& operator<<(Buffer const& bytes) { return *this << _string(bytes); }
    Words& operator<<(unsigned long number) { return *this << std::to_string(number); }
    Words& operator<<(unsigned int number) { return *this << std::to_string(number); }
    Words& operator<<(int number) { return *this << std::to_string(number); }
    template <class Range, class Show> void each(Range const& range, Show show)
    {
        m_text += '(';
        for (auto const& item : range) show(item);
        m_text += ')';
    }
    std::string take() { return std::move(m_text); }

private:
    std::string m_text;
};

/// Reads every body, as the lengths of parts are known only then.
class Reader : public MimePartVisitor {
public:
    void visitSkippedPart(MimeSkippedPart& part) override { drain(part.body(false)); }
    void visitRfc822Msg(MimeRfc822Msg& part) override { drain(part.body(false)); }
    void visitPreamble(MimePreamble& part) override { drain(part.body(false)); }
    void visitEpilogue(MimeEpilogue& part) override { drain(part.body(false)); }

private:
    void drain(MediaIn body)
    {
        do body.readline(m_line);
        while (!m_line.isEmpty());
    }

    Buffer m_line{4096, 0};
};

/// Shows every part of a parsed tree, parents first.
template <class Show> void _forEachPart(MimePart& part, Show const& show)
{
    show(part);
    if (auto* multipart = dynamic_cast<MimeRfc822MPart*>(&part))
        for (Ref<MimePart> const& child : multipart->parts()) _forEachPart(*child.get(), show);
    auto* nested = dynamic_cast<MimeRfc822SPart*>(&part);
    if (nested && !nested->child().isNull()) _forEachPart(*nested->child().get(), show);
}

Ref<Rfc822Msg> _parsed(WorkPlace& place)
{
    Ref<Rfc822Msg> message = Rfc822Msg::parse(place.message);
    Reader reader;
    message->root()->visit(&reader);
    return message;
}

struct Leaf {
    ContentType type;
    std::string body;

    std::string charset() const { return type.isNull() || type.charset().empty() ? "us-ascii" : type.charset(); }
    Buffer utf8() const
    {
        return VmaraConv::toUtf8(charset(), body.data(), static_cast<unsigned int>(body.size()), 0, true, true);
    }
    Buffer bytes() const { return Buffer(body.data(), static_cast<unsigned int>(body.size()), true); }
};

template <class Show> void _forEachLeaf(WorkPlace& place, Show const& show)
{
    Ref<Rfc822Msg> message = _parsed(place);
    _forEachPart(*message->root(), [&](MimePart& part) {
        if (!dynamic_cast<MimeRfc822Msg*>(&part) || part.blen() == 0) return;
        Leaf leaf{ContentType(part.headers().find(ContentType::htype)), ""};
        part.body(true).read(leaf.body);
        show(leaf);
    });
}

std::string _tree(WorkPlace& place)
{
    Words words;
    Ref<Rfc822Msg> message = _parsed(place);
    _forEachPart(*message->root(), [&](MimePart& part) {
        words << typeid(part).name() << part.sourcePosition() << part.hlen() << part.blen();
        std::string body;
        if (part.blen() != 0 && dynamic_cast<MimeRfc822Msg*>(&part)) part.body(true).read(body);
        words << body;
    });
    return words.take();
}

void _show(Words& words, std::list<TypeAndValue> const& parameters)
{
    words.each(parameters, [&](TypeAndValue const& parameter) { words << parameter.type() << parameter.value(); });
}

void _show(Words& words, EmailAddress const& address)
{
    words << address.address() << address.domain() << address.displayName() << emailAddressAsRfc2047String(address);
}

void _showType(Words& words, HeaderContainer const& headers)
{
    ContentType const type(headers.find(ContentType::htype));
    if (type.isNull()) return;
    words << type.mediatype() << type.subtype() << type.mediatypeAsString() << type.subtypeAsString();
    _show(words, type.parameters());
    words << type.charset() << type.boundary() << type.utf8name();
}

void _showDisposition(Words& words, HeaderContainer const& headers)
{
    ContentDisposition const disposition(headers.find(ContentDisposition::htype));
    if (disposition.isNull()) return;
    words << disposition.fileType() << disposition.utf8fileName();
    _show(words, disposition.parameters());
}

void _showEncoding(Words& words, HeaderContainer const& headers)
{
    ContentEncoding const encoding(headers.find(ContentEncoding::htype));
    if (!encoding.isNull()) words << encoding.encoding() << encoding.encodingAsString();
    MimeVersion const version(headers.find(MimeVersion::htype));
    if (!version.isNull()) words << version.version();
}

template <class Named> void _showAddress(Words& words, HeaderContainer const& headers)
{
    Named const header(headers.find(Named::htype));
    if (!header.isNull()) _show(words, header.address());
}

template <class Named> void _showAddresses(Words& words, HeaderContainer const& headers)
{
    Named const header(headers.find(Named::htype));
    if (!header.isNull()) words.each(header.addresses(), [&](EmailAddress const& address) { _show(words, address); });
}

template <class Named> void _showUris(Words& words, HeaderContainer const& headers)
{
    Named const header(headers.find(Named::htype));
    if (!header.isNull())
        words.each(header.uris(), [&](Uri const& uri) { words << uri.asString() << uri.hostname().asString(); });
}

void _showRoute(Words& words, HeaderContainer const& headers)
{
    for (Header const& header : headers.headers()) {
        if (!stringCompareNoCase(header.type(), Received::htype)) continue;
        Received const received(header);
        words << received.date() << received.by() << received.from() << received.reverseName()
              << received.address().asString(true) << received.find("with");
    }
}

void _showListId(Words& words, HeaderContainer const& headers)
{
    ListId const list(headers.find(ListId::htype));
    if (!list.isNull()) words << list.domain().asString();
}

constexpr void (*_typed[])(Words&, HeaderContainer const&) = {
    _showType,
    _showDisposition,
    _showEncoding,
    _showRoute,
    _showListId,
    _showAddress<HeaderFrom>,
    _showAddress<HeaderReplyTo>,
    _showAddress<HeaderReturnPath>,
    _showAddress<HeaderMessageId>,
    _showAddresses<HeaderTo>,
    _showAddresses<HeaderCc>,
    _showAddresses<References>,
    _showUris<HeaderListPost>,
    _showUris<HeaderListUnsubscribe>,
};

void _showPlain(Words& words, Header const& header)
{
    words << header.type() << header.value() << header.asString() << header.typeLowerCase() << header.unfolded();
    words << stringToUtf8(header.unfolded(), nullptr) << stringDecodeRfc2047(header.value());
    words << stringToHtmlEscapedUTF8(header.value(), nullptr) << emailAddressToUTF8(header.value(), nullptr);
    words << vmara_encode_rfc2047(_string(stringToUtf8(header.value(), nullptr)), "utf-8");
    std::string subject;
    vmara_decode_subject(header.value(), subject);
    words << subject;
}

std::string _headers(WorkPlace& place)
{
    Words words;
    Ref<Rfc822Msg> message = _parsed(place);
    _forEachPart(*message->root(), [&](MimePart& part) {
        if (part.headers().isNull()) return;
        HeaderContainer const headers = part.headers().clone();
        for (Header const& header : headers.headers()) _showPlain(words, header);
        for (auto show : _typed) show(words, headers);
    });
    return words.take();
}

/// The header lists that callers edit, and the headers that a message lacks.
std::string _headerLists(WorkPlace& place)
{
    Words words;
    RefHeaderList list(true);
    list.add(place.message);
    list.replace(Header("Subject", "another"));
    list.remove("To", true);
    RefHeaderList const copy(list, true);
    HeaderContainer container;
    container = HeaderContainer(new HeaderContainerImpl, false);
    container.add(copy.headers());
    container.replace(Header("X-Mark", "1"), true);
    container.remove("Date");
    _HeaderComplianceFactory factory;
    factory.mimeRequired(true);
    tm time{};
    time.tm_year = 126;
    time.tm_mday = 1;
    words << LW::createHeaderDateValue(&time); // what is created has the present time, so only names are shown
    std::list<Header> created;
    factory.process(container, created, "mx.example", EmailAddress("a@b.example"));
    words.each(created, [&](Header const& header) { words << header.type(); });
    words.each(container.headers(), [&](Header const& header) { words << header.asString(); });
    return words.take();
}

Buffer _sent(WorkPlace& place, std::function<MediaOut(MediaOut const&)> const& stage, Buffer const& bytes)
{
    Buffer out;
    {
        MediaOut first = stage(place.sink(out));
        BufferMediaIn in(bytes);
        Buffer line(4096, 0);
        for (in.readline(line); !line.isEmpty(); in.readline(line)) first.write(line);
        first.end();
    }
    return out;
}

/// Through every encoder and back.
void _recode(WorkPlace& place, Words& words, Leaf const& leaf)
{
    for (auto encoding : {ContentEncoding::EncodingBase64, ContentEncoding::EncodingQuotedPrintable,
                          ContentEncoding::EncodingUUEncode}) {
        Buffer const encoded = _sent(
            place, [=](MediaOut const& out) { return get_encoder(out, encoding, nullptr); }, leaf.bytes());
        words << encoded;
        words << _sent(
            place, [=](MediaOut const& out) { return get_decoder(out, encoding, nullptr); }, encoded);
    }
    Buffer const binHex = _sent(
        place, [](MediaOut const& out) { return BinHex40Out(out); }, leaf.bytes());
    words << binHex
          << _sent(
                 place, [](MediaOut const& out) { return CodecBinHex40(out); }, binHex);
}

std::string _bodies(WorkPlace& place)
{
    Words words;
    _forEachLeaf(place, [&](Leaf const& leaf) {
        words << leaf.body;
        _recode(place, words, leaf);
        for (CRLFConvertor::CRLFConverType type : {CRLFConvertor::ToCRLF, CRLFConvertor::ToLF}) {
            CRLFConvertor converted(BufferMediaIn(leaf.body), type);
            std::string text;
            converted.read(text);
            words << text;
        }
    });
    return words.take();
}

std::string _filters(WorkPlace& place)
{
    Words words;
    _forEachLeaf(place, [&](Leaf const& leaf) {
        auto const through = [&](std::function<MediaOut(MediaOut const&)> const& stage) {
            words << _sent(place, stage, leaf.bytes());
        };
        through([](MediaOut const& out) { return FilterCRLFMediaOut(out); });
        through([](MediaOut const& out) { return FilterLFCRLFMediaOut(out); });
        through([](MediaOut const& out) { return FilterHtmlEscapeMediaOut(out); });
        through([&](MediaOut const& out) {
            FilterUTF8MediaOut filter{FilterHtmlEscapeMediaOut(out)};
            filter.characterSet(leaf.charset());
            return filter;
        });
        for (char const* to : {"utf-16be", "iso-2022-jp", "windows-1251"})
            through([&](MediaOut const& out) { return VmaraConv(out, leaf.charset(), to, true); });
    });
    return words.take();
}

std::string _text(WorkPlace& place)
{
    Words words;
    Ref<Rfc822Msg> message = _parsed(place);
    BayesianVisitor visitor;
    visitor.init(message->root());
    message->root()->visit(&visitor);
    visitor.done();
    Buffer const& text = find_MimeRfc822Msg_Text_buffer(Ref<MimePart>(message->root(), true), MPartAttribute::TypeText);
    UriContainer uris;
    UriSniffer::search(uris, text, true);
    words << text;
    words.each(uris.hrefs(0), [&](Uri const& uri) { words << uri.asString() << uri.hostname().asString(); });
    return words.take();
}

void _showPage(WorkPlace& place, Words& words, Leaf const& leaf)
{
    Buffer text, disclaimer;
    UriContainer uris;
    TDProperties tokens;
    ImageProperties images(1);
    {
        TextHtmlDoc document(false);
        document.characterSet(leaf.charset());
        auto const add = [&](HtmlDocVisitor* visitor) { document.addVisitor(Ref<HtmlDocVisitor>(visitor, false)); };
        add(new HtmlTxtExtract(&document, 0, place.sink(text), &uris));
        add(new HtmlTagExtract(&tokens, leaf.charset()));
        add(new HtmlImageExtract(&document, 0, &images));
        add(new HtmlToTxtDisclaimer(&document, place.sink(disclaimer)));
        BufferMediaIn in(leaf.body);
        document.parse(&in);
    }
    words << text << disclaimer;
    words.each(uris.hrefs(0), [&](Uri const& uri) { words << uri.asString(); });
    words.each(images.images(), [&](Ref<ImageSummary> const& image) {
        words << image->cid.value << image->width << image->height << image->textLine << image->firstInRun;
    });
    words.each(tokens.descriptors(), [&](Ref<TD> const& td) {
        for (wchar_t number : td->tokens()) words << static_cast<unsigned int>(number);
    });
}

/// As a document whatever the type: every text may turn out to be one.
std::string _html(WorkPlace& place)
{
    Words words;
    _forEachLeaf(place, [&](Leaf const& leaf) { _showPage(place, words, leaf); });
    return words.take();
}

std::string _signatures(WorkPlace& place)
{
    Words words;
    _forEachLeaf(place, [&](Leaf const& leaf) {
        Buffer const bytes = leaf.bytes();
        for (Hasher hasher : {HasherFactory::createHasher(leaf.type, 0), HasherFactory::createHasher(bytes),
                              Hasher(TextHasher(Hasher::DataText)), Hasher(TextHasher(Hasher::DataHtml))}) {
            hasher.process(bytes, bytes.length());
            words << hasher.isValid() << hasher.processedDataLength() << hasher.digestAsHexString();
        }
        Md5Hasher whole;
        whole.update(bytes.data(), bytes.length());
        whole.finalize();
        words << whole.digestAsHexString();
    });
    return words.take();
}

std::string _types(WorkPlace& place)
{
    Words words;
    _forEachLeaf(place, [&](Leaf const& leaf) {
        Buffer const bytes = leaf.bytes();
        for (char const* name : {"", "a.doc", "b.tar.gz"}) {
            words << SharedMimeInfo::mimeType(bytes, name) << FileMagic::mimeType(bytes, name);
            words << FileMagic::type(FileMagic::mimeTypeAll(bytes, name));
            words << SharedMimeInfo::explain(bytes, name).reason;
        }
    });
    return words.take();
}

std::string _tokens(WorkPlace& place)
{
    Words words;
    _forEachLeaf(place, [&](Leaf const& leaf) {
        TDProperties properties;
        properties.addText(leaf.utf8(), leaf.charset());
        TD const direct(_string(leaf.utf8()), "utf-8");
        words << direct.language() << direct.charset();
        for (wchar_t number : direct.tokens()) words << static_cast<unsigned int>(number);
        words << static_cast<unsigned long>(properties.descriptors().size());
        Utf2lang scripts;
        scripts.proc(_string(leaf.utf8()));
        words << scripts.chinese << scripts.japanese << scripts.korean << scripts.russian;
    });
    return words.take();
}

std::string _copy(WorkPlace& place)
{
    if (place.copyPath.empty()) return std::string();
    Ref<Rfc822Msg> message = _parsed(place);
    {
        FileMediaOut out(place.copyPath);
        message->root()->write(out);
        out.end();
    }
    return contentOf(place.copyPath);
}

void _showNames(Words& words, std::string const& text)
{
    ClassifierNames const& classifiers = ClassifierNames::instance();
    ActionNames const& actions = ActionNames::instance();
    auto const number = static_cast<unsigned int>(text.size());
    char buffer[128];
    words << classifiers.mapToString(number % ClassifierNames::count) << classifiers.categoryName(number % 75);
    words << actions.mapToString(number, buffer, sizeof buffer);
    words << classifiers.checkTypeByString(text.c_str(), true) << actions.checkTypeByString(text.c_str(), true);
}

/// The record that rides with a message, and the vocabulary of verdicts.
std::string _record(WorkPlace& place)
{
    Words words;
    Ref<Rfc822Msg> message = _parsed(place);
    RefMessageProperties record(true);
    HeaderContainer const& headers = message->root()->headers();
    for (Header const& header : headers.headers()) {
        record->headers.add(header);
        if (stringCompareNoCase(header.type(), Received::htype))
            record->received.records.emplace_back(Received(header));
        _showNames(words, header.value());
    }
    HeaderFrom const from(headers.find(HeaderFrom::htype));
    if (!from.isNull()) record->sender = EmailAddress::rfc5322Parse(from.value(), true);
    record->greyListKey = DynamicGreyListKey(IPAddressMask("192.0.2.0/24"), record->sender);
    record->attributes.attribute("text", Ref<MPartAttribute>(new MPartText(MPartAttribute::TypeText), false));
    record->message = Ref<MimePart>(message->root(), true);
    words << record->greyListKey.domain << MSISDN("+49123").asString();
    return words.take();
}

struct Patterns {
    StringPattern glob{"*a*b*", true, false};
    StringPattern number{"[0-9]+-[0-9]+", false, true};
    Regex::Expression address{"([a-z]+)@([a-z.]+)", Regex::Expression::IgnoreCase, true};
};

void _match(Words& words, Patterns const& patterns, HeaderContainer const& headers)
{
    for (Header const& header : headers.headers()) {
        words << patterns.glob.matches(header.value()) << patterns.number.matches(header.value());
        std::vector<std::string> groups;
        words << patterns.address(header.value(), groups);
        words.each(groups, [&](std::string const& group) { words << group; });
        SMTP::Response const response("550 5.7.1 " + header.value());
        words << response.classValue() << response.enhancedStatusCode().detail();
    }
}

/// Small ones of the tables that a daemon reads when it starts.
std::string _tables(WorkPlace& place)
{
    Words words;
    FileInMemory const list("alpha 1\nbeta 2\ngamma 3\n");
    dict numbers;
    numbers.read(list.path());
    for (auto const& [word, number] : numbers.words) words << static_cast<unsigned long>(word.size()) << number;
    auto const database =
        databaseWith("<mime-type type='a/b'><sub-class-of type='text/plain'/><glob pattern='*.ab' weight='60'/>"
                     "<magic priority='70'><match type='string' value='From' offset='0:9' mask='0xffffffff'>"
                     "<match type='big16' value='0x6f6d' offset='2'/></match></magic></mime-type>"
                     "<mime-type type='c/d'><glob pattern='c*d'/></mime-type>");
    Buffer head;
    place.message.read(head);
    words << database->mimeType(head, "x.ab") << database->mimeType(head, "cd") << database->mimeType(head, "");
    return words.take();
}

/// A message that is used again after something failed: it gives some tree.
std::string _treeAgain(WorkPlace& place)
{
    Ref<Rfc822Msg> message = Rfc822Msg::parse(place.message);
    for (int i = 0; i < 3; ++i) {
        try {
            Reader reader;
            message->root()->visit(&reader);
            std::string body;
            _forEachPart(*message->root(), [&body](MimePart& part) {
                if (dynamic_cast<MimeRfc822Msg*>(&part) && part.blen() != 0) part.body(true).read(body);
            });
        } catch (...) { // whatever it was
        }
    }
    return "some tree";
}

/// The patterns that a daemon has compiled when it starts.
std::string _matches(WorkPlace& place)
{
    static Patterns const patterns;
    Words words;
    _match(words, patterns, HeaderContainer(place.message));
    return words.take();
}

std::string _patterns(WorkPlace& place)
{
    Words words;
    _match(words, Patterns(), HeaderContainer(place.message));
    return words.take();
}

std::string _replies(WorkPlace& place)
{
    return inReplyToDomainMatch(_parsed(place)->root()->headers()) ? "a reply" : "no reply";
}

/// The C interfaces: handles and plain buffers.
std::string _plainFunctions(WorkPlace& place)
{
    Words words;
    std::string all;
    place.message.read(all);
    char out[2048];
    std::unique_ptr<cVmaraCnv, decltype(&vmaracnv_close)> const handle(vmaracnv_open("iso-8859-15", "utf-8"),
                                                                       vmaracnv_close);
    char* from = all.data();
    char* to = out;
    size_t left = all.size(), room = sizeof out;
    words << vmaracnv(handle.get(), &from, &left, &to, &room) << std::string(out, sizeof out - room);
    words << (vmara_to_utf8(all.c_str(), out, sizeof out) ? out : "");
    words << (vmara_decode_encoded_word("=?koi8-r?B?8NLJ18XU?=", out, sizeof out) ? out : "");
    words << utf82utf7imap("Entw\xC3\xBCrfe") << utf7imp2utf8("Entw&APw-rfe");
    return words.take();
}

} // namespace

std::vector<WorkStep> const& workSteps()
{
    static std::vector<WorkStep> const steps{
        {"tree", _tree},
        {"tree again", _treeAgain},
        {"tables", _tables},
        {"headers", _headers},
        {"header lists", _headerLists},
        {"bodies", _bodies},
        {"filters", _filters},
        {"text", _text},
        {"html", _html},
        {"signatures", _signatures},
        {"types", _types},
        {"tokens", _tokens},
        {"copy", _copy},
        {"record", _record},
        {"matches", _matches},
        {"patterns", _patterns},
        {"replies", _replies},
        {"plain functions", _plainFunctions},
    };
    return steps;
}

std::string wholeWork(std::string const& message)
{
    std::string all;
    for (WorkStep const& step : workSteps()) {
        WorkPlace place{BufferMediaIn(message.data(), message.size()), [](Buffer& out) { return BufferMediaOut(out); },
                        ""};
        all += std::string(step.name) + ": " + step.run(place) + '\n';
    }
    return all;
}

void loadTables()
{
    SharedMimeInfo::init();
    while (!TD::s_initConfig()) std::this_thread::sleep_for(std::chrono::milliseconds(2));
}

std::string contentOf(std::string const& path)
{
    std::string content;
    FileMediaIn(path).read(content);
    return content;
}

std::vector<std::string> samplePaths()
{
    glob_t found{};
    ::glob("samples/*.eml", 0, nullptr, &found);
    std::vector<std::string> paths(found.gl_pathv, found.gl_pathv + found.gl_pathc);
    ::globfree(&found);
    if (paths.empty()) throw std::runtime_error("no samples/*.eml: run this in the folder of the project");
    return paths;
}

} // namespace Velmara
