// The driver of libxml2's push parser (2.9). All input goes in as one terminating chunk; what the push
// interface is used for is its way to recover and the position that it leaves behind.
//
// A further document costs a pass over all that follows, unless the parser sees less of it: from the
// second pass on it first gets a piece, twice the one that sufficed before, and ever larger ones while
// it does not stop well inside. It then cannot have noticed that something was missing, but for two
// things. At the first byte above 127 it looks through all that follows for HTTP-EQUIV, CONTENT and
// CHARSET= and takes the name it finds. So a piece ends in a hint, which answers that search as the rest
// of the document would. And the target of an instruction that reaches to the end of the input is no target:
// the parser stops in front of it, as if it had not looked so far. Such a piece was too small.
#include <velmara/HtmlParser.h>

#include <libxml/HTMLparser.h>
#include <libxml/parserInternals.h>

#include <algorithm>
#include <climits>
#include <cstring>
#include <fstream>
#include <list>
#include <memory>
#include <new>
#include <vector>

#include <velmara/StringOperations.h>

#include "html/AttributeLimit.h"
#include "html/LinearCosts.h"
#include "runtime/Ascii.h"
#include "runtime/QuietXml.h"

namespace Velmara {
namespace HTML {

namespace {

constexpr int _options = HTML_PARSE_RECOVER | HTML_PARSE_NOERROR | HTML_PARSE_NOWARNING | HTML_PARSE_NOBLANKS;

/// How far from the end of its input the parser must stop so that the end cannot have had an effect:
/// twice what libxml2 keeps in its buffer ahead of it.
constexpr size_t _farFromEnd = 1024;
constexpr size_t _firstPiece = 2048;

/// No character set has a longer name, so a name cut here is as unknown as the whole.
constexpr size_t _longestCharset = 200;

void _writeFile(std::string const& name, char const* bytes, size_t n)
{
    std::ofstream(name, std::ios::binary | std::ios::trunc).write(bytes, static_cast<std::streamsize>(n));
}

void _enter(xmlNode const* node, Builder& builder)
{
    switch (node->type) {
    case XML_ELEMENT_NODE:
        return builder.foundTag(node);
    case XML_TEXT_NODE:
        return builder.foundText(node);
    case XML_CDATA_SECTION_NODE:
        return builder.foundCdata(node);
    case XML_COMMENT_NODE:
        return builder.foundComment(node);
    default:
        return;
    }
}

/// Null for an unknown set. libxml2 does not tell that from a lack of memory, so it is asked again once it is
/// clear that there is some.
xmlCharEncodingHandler* _handlerOf(std::string const& set)
{
    if (xmlCharEncodingHandler* handler = xmlFindCharEncodingHandler(set.c_str())) return handler;
    void* const room = xmlMalloc(sizeof(xmlCharEncodingHandler));
    if (!room) throw std::bad_alloc();
    xmlFree(room);
    return xmlFindCharEncodingHandler(set.c_str());
}

/// The same for a set with a number: if there is a converter now, memory was all that was missing.
void _checkUnsupported(xmlCharEncoding set)
{
    xmlCharEncodingHandler* const handler = xmlGetCharEncodingHandler(set);
    if (!handler) return;
    xmlCharEncCloseFunc(handler);
    throw std::bad_alloc();
}

/// Whether libxml2 takes what follows "<?" for nothing because the name does not end.
bool _isAtCutName(xmlParserInput const& input)
{
    if (input.cur - input.base < 2 || input.cur[-2] != '<' || input.cur[-1] != '?') return false;
    return std::all_of(input.cur, input.end,
                       [](xmlChar c) { return isAlnum(c) || c == '_' || c == '-' || c == ':' || c == '.'; });
}

void _select(HTMLContext& context, char const* charset)
{
    if (charset && *charset) context.characterSet(charset);
}

/// The bytes that libxml2 takes as the name of a character set.
bool _isCharsetByte(unsigned char c)
{
    return isAlnum(c) || c == '-' || c == '_' || c == ':' || c == '/';
}

/// Answers libxml2's search for a character set behind any place of a buffer.
class CharsetSearch {
public:
    explicit CharsetSearch(std::string_view document)
        : m_document(document), m_nul(std::min(document.find('\0'), document.size()))
    {
        for (Word& word : m_words) word.places = placesOf(word.text);
    }

    /// The first place from `from` on at which a piece can end without cutting what is searched for.
    size_t boundary(size_t from) const
    {
        while (from < m_document.size() &&
               (_isCharsetByte(static_cast<unsigned char>(m_document[from])) || m_document[from] == '='))
            ++from;
        return from;
    }

    /// What a piece that ends at `from` gets behind it: for each state in which the search can arrive
    /// there, the words still missing and the name that it would find. The search ends at a NUL.
    std::string hint(size_t from)
    {
        size_t const end = nulFrom(from);
        std::string hint;
        for (size_t missing = 1; missing <= wordCount; ++missing) {
            size_t at = from;
            std::string words;
            for (size_t word = wordCount - missing; word < wordCount && at != std::string_view::npos; ++word) {
                at = next(m_words[word], at, end);
                words.append(" ").append(m_words[word].text);
            }
            if (at == std::string_view::npos) break;
            hint += words.append(nameAt(at + m_words[wordCount - 1].text.size()));
        }
        return hint.empty() ? hint : hint + ' ';
    }

private:
    static constexpr size_t wordCount = 3;
    struct Word {
        std::string_view text;
        std::vector<size_t> places;
    };

    std::vector<size_t> placesOf(std::string_view word) const
    {
        std::vector<size_t> places;
        for (size_t at = 0; at + word.size() <= m_document.size(); ++at)
            if (toLower(static_cast<unsigned char>(m_document[at])) == toLower(static_cast<unsigned char>(word[0])) &&
                sameNoCase(m_document.substr(at, word.size()), word))
                places.push_back(at);
        return places;
    }

    static size_t next(Word const& word, size_t from, size_t end)
    {
        auto const found = std::lower_bound(word.places.begin(), word.places.end(), from);
        return found == word.places.end() || *found >= end ? std::string_view::npos : *found;
    }

    /// The first NUL from there on, or the end. Looks at each byte once as long as places rise, which they mostly do.
    size_t nulFrom(size_t from)
    {
        if (from > m_nul) {
            m_nulFreeFrom = from;
            m_nul = std::min(m_document.find('\0', from), m_document.size());
        } else if (from < m_nulFreeFrom) {
            size_t const earlier = m_document.substr(0, m_nulFreeFrom).find('\0', from);
            if (earlier != std::string_view::npos) return earlier;
            m_nulFreeFrom = from;
        }
        return m_nul;
    }

    std::string_view nameAt(size_t from) const
    {
        size_t to = from;
        while (to < m_document.size() && _isCharsetByte(static_cast<unsigned char>(m_document[to]))) ++to;
        return m_document.substr(from, std::min(to - from, _longestCharset));
    }

    std::string_view m_document;
    size_t m_nulFreeFrom = 0, m_nul; // where no NUL stands, and the one behind
    Word m_words[wordCount] = {{"HTTP-EQUIV", {}}, {"CONTENT", {}}, {"CHARSET=", {}}}; // in the order of the search
};

} // namespace

Builder::~Builder() = default;
void Builder::beginParsing()
{}
void Builder::foundTag(xmlNode const*)
{}
void Builder::endTag(xmlNode const*)
{}
void Builder::foundText(xmlNode const*)
{}
void Builder::foundCdata(xmlNode const*)
{}
void Builder::foundComment(xmlNode const*)
{}
void Builder::endParsing()
{}

/// Where the parser stands in its input, which may be a converted form of what it was given.
struct HTMLContext::Position {
    size_t consumed, left;
    bool halted;  // too deep, or in a character set that cannot be converted: the input is gone
    bool cutName; // behind "<?", at a name that reaches to the end
};

void HTMLContext::Freed::operator()(xmlParserCtxt* context) const
{
    void* const attached = context->_private;
    if (context->myDoc) xmlFreeDoc(context->myDoc);
    htmlFreeParserCtxt(context);
    LinearCosts::free(attached);
}

HTMLContext::HTMLContext(bool ignoreEncoding)
{
    QuietXml const quiet(nullptr);
    m_context.reset(htmlCreatePushParserCtxt(nullptr, nullptr, nullptr, 0, nullptr, XML_CHAR_ENCODING_NONE));
    if (!m_context) throw std::bad_alloc();
    quiet.check();
    LinearCosts::attach(*m_context);
    // Nobody asks for an element by its ID, and libxml2's table of them stops growing.
    m_context->loadsubset |= XML_SKIP_IDS;
    htmlCtxtUseOptions(m_context.get(), ignoreEncoding ? _options | HTML_PARSE_IGNORE_ENC : _options);
}

HTMLContext::~HTMLContext() = default;

xmlNode* HTMLContext::parse(char const* chunk, unsigned int size)
{
    if (size > INT_MAX) return nullptr;
    QuietXml const quiet(m_context.get(), LinearCosts::complained);
    AttributeLimit const limit(std::string_view(chunk, size));
    if (!limit.certain) LinearCosts::limitNames(*m_context);
    char const* bytes = limit.blanked.empty() ? chunk : limit.blanked.data();
    htmlParseChunk(m_context.get(), bytes, static_cast<int>(size), 1);
    LinearCosts::finish(*m_context);
    quiet.check();
    return m_context->myDoc ? xmlDocGetRootElement(m_context->myDoc) : nullptr;
}

void HTMLContext::characterSet(char const* name)
{
    if (!name) return;
    std::string set(name);
    stringLeftTrim(set);
    stringRightTrim(set);
    if (stringCompareNoCase(set, "us-ascii") || stringCompareNoCase(set, "ascii")) return;
    QuietXml const quiet(m_context.get());
    if (!keepsTags(set)) LinearCosts::limitNames(*m_context);
    xmlCharEncoding const known = xmlParseCharEncoding(set.c_str());
    if (known != XML_CHAR_ENCODING_ERROR) {
        xmlSwitchEncoding(m_context.get(), known);
        if (quiet.unsupported()) _checkUnsupported(known);
    } else if (xmlCharEncodingHandler* handler = _handlerOf(set))
        xmlSwitchToEncoding(m_context.get(), handler);
    quiet.check();
}

int HTMLContext::characterSet() const
{
    return m_context->charset;
}

std::string HTMLContext::characterSetAsString() const
{
    char const* name = xmlGetCharEncodingName(static_cast<xmlCharEncoding>(characterSet()));
    return name ? name : std::string();
}

void HTMLContext::write(std::string const& fileName)
{
    if (!m_context->myDoc) return;
    QuietXml const quiet(nullptr);
    xmlChar* bytes = nullptr;
    int n = 0;
    xmlDocDumpFormatMemory(m_context->myDoc, &bytes, &n, 1);
    std::unique_ptr<xmlChar, void (*)(void*)> const owned(bytes, xmlFree);
    quiet.check();
    if (bytes) _writeFile(fileName, reinterpret_cast<char const*>(bytes), static_cast<size_t>(n));
}

HTMLContext::Position HTMLContext::position() const
{
    xmlParserInput const* input = m_context->input;
    if (!input) return {0, 0, true, false};
    return {static_cast<size_t>(input->cur - input->base), static_cast<size_t>(input->end - input->cur), !input->buf,
            _isAtCutName(*input)};
}

Parser::Parser(Builder& builder, bool ignoreEncoding) : m_builder(builder), m_ignoreEncoding(ignoreEncoding)
{}

Parser::~Parser() = default;

void Parser::parse(char const* data, unsigned int size, char const* charset)
{
    m_atEnd = false;
    m_consumed = 0;
    if (!m_rawName.empty()) _writeFile(m_rawName, data, size);
    HTMLContext context(m_ignoreEncoding);
    _select(context, charset);
    finish(context, context.parse(data, size), size);
}

/// What follows once libxml2 has done its part.
void Parser::finish(HTMLContext& context, xmlNode const* root, unsigned int size)
{
    if (!root) return;
    HTMLContext::Position const position = context.position();
    m_atEnd = position.left == 0;
    m_consumed = m_atEnd ? size : static_cast<unsigned int>(position.consumed);
    if (!m_parsedName.empty()) context.write(m_parsedName);
    traverseTree(root, m_builder);
}

void Parser::traverseTree(xmlNode const* node, Builder& builder)
{
    std::vector<xmlNode const*> open; // the elements around the node
    while (node) {
        _enter(node, builder);
        if (node->children) {
            open.push_back(node);
            node = node->children;
            continue;
        }
        builder.endTag(node);
        while (!node->next && !open.empty()) {
            node = open.back();
            open.pop_back();
            builder.endTag(node);
        }
        node = node->next;
    }
}

/// The passes over one buffer.
class Parser::Passes {
public:
    Passes(Builder& builder, bool ignoreEncoding, std::string_view data, char const* charset)
        : m_builder(builder), m_ignoreEncoding(ignoreEncoding), m_data(data), m_charset(charset)
    {}

    void run()
    {
        for (size_t offset = 0; offset < m_data.size();) {
            Parser parser(m_builder, m_ignoreEncoding);
            pass(parser, offset);
            if (parser.eof() || parser.gcount() == 0) return;
            offset += parser.gcount();
        }
    }

private:
    /// Over all the rest, unless a piece of it gives the same result.
    void pass(Parser& parser, size_t offset)
    {
        size_t const rest = m_data.size() - offset;
        for (size_t n = m_piece; n < rest / 2; n *= 2)
            if (passOverPiece(parser, offset, n)) return;
        HTMLContext context(m_ignoreEncoding);
        _select(context, m_charset);
        xmlNode const* root = context.parse(m_data.data() + offset, static_cast<unsigned int>(rest));
        remember(context, rest);
        parser.finish(context, root, static_cast<unsigned int>(rest));
    }

    bool passOverPiece(Parser& parser, size_t offset, size_t n)
    {
        HTMLContext context(m_ignoreEncoding);
        _select(context, m_charset);
        std::string hint;
        if (context.characterSet() != XML_CHAR_ENCODING_UTF8) {
            if (!m_search) m_search = std::make_unique<CharsetSearch>(m_data);
            n = m_search->boundary(offset + n) - offset;
            hint = m_search->hint(offset + n);
        }
        std::string piece(m_data.substr(offset, n));
        piece += hint;
        xmlNode const* root = context.parse(piece.data(), static_cast<unsigned int>(piece.size()));
        HTMLContext::Position const position = context.position();
        if (position.halted || position.cutName || position.left < _farFromEnd + 4 * hint.size()) return false;
        remember(context, n);
        parser.finish(context, root, static_cast<unsigned int>(n));
        return true;
    }

    /// The next pass will need about as much as this one did.
    void remember(HTMLContext const& context, size_t n)
    {
        m_piece = std::max(_firstPiece, 2 * (n - std::min(n, context.position().left)));
    }

    Builder& m_builder;
    bool m_ignoreEncoding;
    std::string_view m_data;
    char const* m_charset;
    size_t m_piece = SIZE_MAX;               // bytes that the next pass gets at first: at the beginning, all
    std::unique_ptr<CharsetSearch> m_search; // made when it is first needed
};

void Parser::parseAll(Builder& builder, bool ignoreEncoding, char const* data, unsigned int size, char const* charset)
{
    if (size == 0 || !data) return;
    Passes(builder, ignoreEncoding, std::string_view(data, size), charset).run();
}

void Parser::parseAll(Builder& builder, bool ignoreEncoding, Buffer const& data, char const* charset)
{
    parseAll(builder, ignoreEncoding, reinterpret_cast<char const*>(data.data()), data.length(), charset);
}

unsigned int xmlstrlen(unsigned char const* text)
{
    return static_cast<unsigned int>(std::strlen(reinterpret_cast<char const*>(text)));
}

unsigned char const* xmlstrstr(unsigned char const* text, unsigned char const* part)
{
    return xmlstrstr(text, reinterpret_cast<char const*>(part));
}

unsigned char const* xmlstrstr(unsigned char const* text, char const* part)
{
    return reinterpret_cast<unsigned char const*>(std::strstr(reinterpret_cast<char const*>(text), part));
}

StringPattern stringPatternFactory(char const** names)
{
    if (!names) return StringPattern();
    std::list<StringPattern> alternatives;
    for (; *names; ++names) alternatives.emplace_back(*names, true, false);
    return StringPattern(alternatives);
}

} // namespace HTML
} // namespace Velmara
