// A pull parser. Whoever asks for the next part moves the source on; nobody reads ahead, so a tree
// costs what is looked at. The parser and its streams lean on each other: a live stream reads through
// the parser, and the parser closes it when a delimiter comes.
//
// A delimiter of an outer part ends all inner ones: the stack of open containers is searched from the
// innermost, and what was passed is closed. Comparison is by prefix, so "--abcd" ends a part whose
// boundary is "abc", and "--abc--x" closes it. What was found is kept in m_state until the next step
// of the container that is then on top of the stack:
//
//     --outer          getNextPart(outer)   the next child
//     text --inner--   getNextPart(inner)   its epilogue; behind it, getNextPart(outer) goes on
//
// Cost: each byte passes once, whatever is asked. A walk over the stack either finds a delimiter, and
// is paid for by the containers that it closes, or finds none; of such walks only a few are made before
// the delimiters are indexed, so that a flood of "--x" in a deep nesting costs little more than text.
#include <velmara/Rfc822MsgParser.h>

#include <algorithm>
#include <memory>

#include <velmara/ContentType.h>
#include <velmara/MimePart.h>

#include "header/MediaTypeOf.h"
#include "runtime/Ascii.h"
#include "runtime/BlockMediaIn.h"

namespace Velmara {

namespace {

constexpr int _lineSize = 2048;
constexpr size_t _usualValue = 256; // of a header, folding included

// m_state. The lower four bits tell what ended the last line, the upper ones survive a normal line.
enum : unsigned short {
    BoundaryFound = 1,    // a delimiter of the container on top of the stack
    EndBoundaryFound = 2, // its closing delimiter
    MultipartOpened = 16, // a multipart that had no child yet
    LineEnd = 15,
};

std::string_view _text(Buffer const& buffer)
{
    return std::string_view(reinterpret_cast<char const*>(buffer.data()), buffer.length());
}

std::string_view _withoutLineEnd(std::string_view piece)
{
    while (!piece.empty() && isLineEnd(static_cast<unsigned char>(piece.back()))) piece.remove_suffix(1);
    return piece;
}

std::string_view _withoutLeadingSpace(std::string_view text)
{
    while (!text.empty() && isCSpace(static_cast<unsigned char>(text.front()))) text.remove_prefix(1);
    return text;
}

bool _startsWith(std::string_view text, std::string_view prefix)
{
    return text.size() >= prefix.size() && text.compare(0, prefix.size(), prefix) == 0;
}

/// The delimiter in front of a child, given the closing one.
std::string_view _opening(std::string const& closing)
{
    return std::string_view(closing).substr(0, closing.size() - 2);
}

struct _Bytes {
    bool wanted[256];
};

constexpr _Bytes _colonAndSpace()
{
    _Bytes bytes{};
    for (unsigned c = 0; c < 256; ++c) bytes.wanted[c] = c == ':' || isHeaderSpace(static_cast<unsigned char>(c));
    return bytes;
}

/// Index of the first colon or white space.
size_t _nameEnd(std::string_view line)
{
    static constexpr _Bytes ends = _colonAndSpace();
    size_t at = 0;
    while (at < line.size() && !ends.wanted[static_cast<unsigned char>(line[at])]) ++at;
    return at;
}

/// A header block, one piece of a line at a time. Pieces that continue a line are told from lines by
/// whether the piece before them had its LF, so a value may be of any length.
class _HeaderBlock {
public:
    _HeaderBlock() : m_list(new HeaderContainerImpl), m_headers(m_list, false) { m_value.reserve(_usualValue); }

    /// False for a line that is no part of the block.
    bool take(std::string_view piece)
    {
        bool taken = true;
        if (!m_name.empty() && !m_atLineStart)
            m_value.append(_withoutLineEnd(piece));
        else if (!m_name.empty() && isBlank(static_cast<unsigned char>(piece.front())))
            fold(_withoutLeadingSpace(_withoutLineEnd(piece)));
        else
            taken = start(piece);
        m_atLineStart = piece.back() == '\n';
        return taken;
    }

    HeaderContainer finished()
    {
        keep();
        return std::move(m_headers);
    }

private:
    /// A line of white space adds nothing, nor does it end the block.
    void fold(std::string_view text)
    {
        if (!text.empty()) m_value.append(1, ' ').append(text);
    }

    bool start(std::string_view line)
    {
        // "Subject : x" is no header, and neither is a mailbox's "From someone ..." line.
        size_t const colon = _nameEnd(line);
        if (colon == 0 || colon == line.size() || line[colon] != ':') return false;
        keep();
        m_name.assign(line, 0, colon);
        m_value.assign(_withoutLeadingSpace(_withoutLineEnd(line.substr(colon + 1))));
        return true;
    }

    void keep()
    {
        if (!m_name.empty()) m_list->list.emplace_back(m_name, m_value);
    }

    HeaderContainerImpl* m_list; // owned by m_headers
    HeaderContainer m_headers;
    std::string m_name; // empty before the first header
    std::string m_value;
    bool m_atLineStart = true;
};

} // namespace

Rfc822MsgParser::Rfc822MsgParser(MediaIn& in, unsigned int maxDepth)
    : m_source(in), m_block(dynamic_cast<BlockMediaInImpl*>(in.get())), m_linePos(in.tell()), m_lineSize(_lineSize),
      m_maxDepth(maxDepth)
{}

Rfc822MsgParser::~Rfc822MsgParser()
{
    // A body that someone still holds is at its end from now on.
    if (MsgParserMediaIn* live = liveStream()) live->close(m_linePos);
}

void Rfc822MsgParser::bufferSize(unsigned int n)
{
    m_lineSize = n;
    m_line.size(n);
}

// Lines.

void Rfc822MsgParser::readline(Buffer& line)
{
    std::string_view inPlace;
    if (!readInPlace(inPlace, line.size())) return readCopy(line);
    line.length(0);
    line.append(reinterpret_cast<uchar_t const*>(inPlace.data()), static_cast<unsigned int>(inPlace.size()));
}

/// The same without a copy where the source allows it; `room` is for the other cases.
std::string_view Rfc822MsgParser::nextLine(Buffer& room, unsigned int most)
{
    if (room.size() > most) most = room.size();
    std::string_view inPlace;
    if (readInPlace(inPlace, most)) return inPlace;
    if (room.size() < most) room.size(most);
    readCopy(room);
    return _text(room);
}

/// Reads a line that can be used where it lies; false, with nothing read, if there is none.
inline bool Rfc822MsgParser::readInPlace(std::string_view& line, unsigned int most)
{
    if (!m_block || !m_pushback.isEmpty()) return false;
    unsigned long const position = m_block->tell();
    line = m_block->lineInBlock(most);
    if (line.empty()) return false;
    m_linePos = position;
    if (endsStream(line)) line = std::string_view();
    return true;
}

void Rfc822MsgParser::readCopy(Buffer& line)
{
    line.length(0);
    if (!m_pushback.isEmpty()) {
        line.append(m_pushback);
        m_pushback.length(0);
        return;
    }
    m_linePos = m_source.get()->tell();
    m_source.get()->readline(line);
    if (endsStream(_text(line))) line.length(0);
}

/// Takes notice of the line just read. A delimiter closes the live stream in front of it.
inline bool Rfc822MsgParser::endsStream(std::string_view line)
{
    if (line.size() > 2 && line[0] == '-' && line[1] == '-' && findBoundary(line)) {
        endPStream();
        m_linePos = m_source.get()->tell();
        return true;
    }
    m_state &= static_cast<unsigned short>(~LineEnd);
    return false;
}

bool Rfc822MsgParser::isBoundary(Buffer& line)
{
    return findBoundary(_text(line));
}

bool Rfc822MsgParser::findBoundary(std::string_view line)
{
    if (!canBeDelimiter(line)) return false;
    for (size_t i = m_boundaries.size(); i-- > 0;) {
        std::string const& closing = m_boundaries[i].delimiter;
        if (closing.empty() || !_startsWith(line, _opening(closing))) continue;
        m_state &= static_cast<unsigned short>(~LineEnd);
        m_state |= _startsWith(line, closing) ? EndBoundaryFound : BoundaryFound;
        while (m_boundaries.size() > i + 1) msgPop();
        return true;
    }
    ++m_misses;
    return false;
}

/// False only if no delimiter on the stack is a prefix of the line.
bool Rfc822MsgParser::canBeDelimiter(std::string_view line)
{
    constexpr unsigned int patience = 16; // walks that pay for the index
    if (m_misses < patience) return true;
    if (m_shortest.empty()) indexDelimiters();
    auto const behind = std::upper_bound(m_shortest.begin(), m_shortest.end(), line);
    return behind != m_shortest.begin() && _startsWith(line, *(behind - 1));
}

/// A delimiter that begins with another one decides nothing here; without those, the only one that can
/// be a prefix of a line is the last that is not behind the line in the order of bytes.
void Rfc822MsgParser::indexDelimiters()
{
    for (MBoundary const& open : m_boundaries)
        if (!open.delimiter.empty()) m_shortest.push_back(_opening(open.delimiter));
    std::sort(m_shortest.begin(), m_shortest.end());
    auto const coveredBy = [](std::string_view kept, std::string_view next) { return _startsWith(next, kept); };
    m_shortest.erase(std::unique(m_shortest.begin(), m_shortest.end(), coveredBy), m_shortest.end());
}

// The stack of open containers.

void Rfc822MsgParser::push(MimePart* part, std::string const& delimiter, bool digest)
{
    m_boundaries.push_back(MBoundary{part, delimiter, digest});
    m_shortest.clear();
    m_misses = 0;
}

void Rfc822MsgParser::msgPop()
{
    if (m_boundaries.empty()) return;
    MimePart* part = m_boundaries.back().part;
    part->blen(blen(part));
    m_boundaries.pop_back();
    m_shortest.clear();
    m_misses = 0;
}

unsigned long Rfc822MsgParser::blen(MimePart* part)
{
    return m_linePos - part->hlen() - part->sourcePosition();
}

void Rfc822MsgParser::posLast()
{
    if (m_lastPart) m_lastPart->blen(blen(m_lastPart));
    m_lastPart = nullptr;
}

// Streams.

MsgParserMediaIn* Rfc822MsgParser::liveStream() const
{
    auto* stream = dynamic_cast<MsgParserMediaIn*>(m_pstream.get());
    return stream && stream->m_parser ? stream : nullptr;
}

MediaIn& Rfc822MsgParser::nextPStream()
{
    discardAll();
    m_pstream = MediaIn(new MsgParserMediaIn(this), false);
    return m_pstream;
}

void Rfc822MsgParser::discardAll()
{
    if (MsgParserMediaIn* live = liveStream())
        while (!live->nextLine(m_line, m_lineSize).empty()) {
        }
    posLast();
}

void Rfc822MsgParser::endPStream()
{
    dropStream();
    posLast();
}

void Rfc822MsgParser::dropStream()
{
    if (MsgParserMediaIn* live = liveStream()) {
        live->close(m_linePos);
        m_previous = std::move(m_pstream);
    }
    m_pstream.release();
}

// Header blocks.

HeaderContainer Rfc822MsgParser::header()
{
    _HeaderBlock block;
    std::string_view line;
    do line = nextLine(m_line, m_lineSize);
    while (!line.empty() && block.take(line));
    endHeader(line);
    return block.finished();
}

/// What stopped the block is its empty line, a delimiter, the end, or else the first line of the body.
void Rfc822MsgParser::endHeader(std::string_view line)
{
    if (_withoutLeadingSpace(line).empty())
        m_linePos = m_source.tell();
    else
        m_pushback.append(reinterpret_cast<uchar_t const*>(line.data()), static_cast<unsigned int>(line.size()));
    dropStream();
}

void Rfc822MsgParser::sanityCheck(HeaderContainer& headers)
{
    checkedType(headers);
}

/// The type that the headers have once they were checked; null if there is none.
Header const& Rfc822MsgParser::checkedType(HeaderContainer const& headers)
{
    Header const& type = headers.find(ContentType::htype);
    if (!type.isNull() || m_boundaries.empty() || !m_boundaries.back().digest) return type;
    // With the name in its value the header gives no known type, so the entity stays a leaf and only
    // shows what it is. Trees that are compared with stored ones count on it.
    HeaderContainer same(headers);
    same.add(ContentType("Content-Type: message/rfc822"), false);
    return headers.headers().back();
}

// Parts.

MimePart* Rfc822MsgParser::createRfc822Msg()
{
    return createRfc822Msg(0u);
}

MimePart* Rfc822MsgParser::createRfc822Msg(HeaderContainer const& headers)
{
    MediaIn none;
    return createEntity(headers, none);
}

MimePart* Rfc822MsgParser::createRfc822Msg(unsigned int level)
{
    nextPStream();
    unsigned long const position = m_source.tell();
    HeaderContainer const headers = header();
    MediaIn stream = std::move(m_previous); // the header block's, which ended with it
    MimePart* part = createEntity(headers, stream, level);
    auto const& block = static_cast<MsgParserMediaIn const&>(*stream.get());
    part->sourcePosition(position);
    part->hlen(block.m_end - block.m_start);
    return part;
}

MimePart* Rfc822MsgParser::createEntity(HeaderContainer const& headers, MediaIn& headerStream)
{
    return createEntity(headers, headerStream, 0);
}

/// `level` is the number of containers around the part. It is the size of the stack, unless a caller
/// came back late to the nested message of a part that is closed; such trees must not grow deeper.
MimePart* Rfc822MsgParser::createEntity(HeaderContainer const& headers, MediaIn& headerStream, unsigned int level)
{
    Header const& type = checkedType(headers);
    ContentType::MediaType const mediatype = type.isNull() ? ContentType::MediaTypeUnknown : mediaTypeOf(type.value());
    level = std::max(level, static_cast<unsigned int>(m_boundaries.size()));
    MimePart* part = nullptr;
    if (mediatype != ContentType::MediaTypeMultipart && mediatype != ContentType::MediaTypeMessage)
        part = createLeaf<MimeRfc822Msg>(headers, headerStream);
    else if (level >= m_maxDepth)
        part = createLeaf<MimeSkippedPart>(headers, headerStream);
    else if (mediatype == ContentType::MediaTypeMessage)
        part = createMessage(headers, headerStream);
    else
        part = createMultipart(headers, headerStream, type);
    part->m_level = level;
    return part;
}

/// The body is not read now: its stream is live.
template <class Leaf> MimePart* Rfc822MsgParser::createLeaf(HeaderContainer const& headers, MediaIn& headerStream)
{
    MediaIn& body = nextPStream();
    m_lastPart = new Leaf(headers, this, headerStream, body);
    return m_lastPart;
}

/// Without a boundary it is a leaf.
MimePart* Rfc822MsgParser::createMultipart(HeaderContainer const& headers, MediaIn& headerStream,
                                           ContentType const& type)
{
    if (type.boundary().empty()) return createLeaf<MimeRfc822Msg>(headers, headerStream);
    auto part = std::make_unique<MimeRfc822MPart>(headers, this, headerStream);
    push(part.get(), "--" + type.boundary() + "--", type.subtype() == ContentType::SubTypeDigest);
    m_state |= MultipartOpened;
    endPStream();
    m_lastPart = part.get();
    return part.release();
}

MimePart* Rfc822MsgParser::createMessage(HeaderContainer const& headers, MediaIn& headerStream)
{
    auto part = std::make_unique<MimeRfc822SPart>(headers, this, headerStream);
    push(part.get(), std::string(), false);
    m_lastPart = part.get();
    return part.release();
}

MimePart* Rfc822MsgParser::getNextPart(MimeRfc822MPart* parent)
{
    if (!abandonAbove(parent)) return nullptr;
    while (!m_boundaries.empty() && m_boundaries.back().part == parent) {
        if (m_state == MultipartOpened) return createPreamble(parent);
        // A delimiter of an outer level ended this part's header block: there is no preamble, and it
        // counts as this part's own.
        m_state &= static_cast<unsigned short>(~MultipartOpened);
        if (m_state & EndBoundaryFound) return createEpilogue(parent);
        if (m_state & BoundaryFound) return createChild(parent);
        if (!skipToDelimiter()) return nullptr;
    }
    return nullptr;
}

/// Closes the containers inside `parent`; false if that one is not open.
bool Rfc822MsgParser::abandonAbove(MimeRfc822MPart* parent)
{
    if (m_boundaries.empty()) return false;
    if (m_boundaries.back().part == parent) return true;
    auto const isParent = [parent](MBoundary const& open) { return open.part == parent; };
    if (std::none_of(m_boundaries.begin(), m_boundaries.end(), isParent)) return false;
    m_state = 0;
    while (m_boundaries.back().part != parent) msgPop();
    return true;
}

/// Runs over what the caller did not read. False at the end of the input.
bool Rfc822MsgParser::skipToDelimiter()
{
    if (!m_pstream.isNull()) {
        discardAll();
        m_pstream.release();
        return true;
    }
    m_state = 0;
    while (!nextLine(m_line, m_lineSize).empty()) {
    }
    return m_state != 0;
}

MimePart* Rfc822MsgParser::createPreamble(MimeRfc822MPart* parent)
{
    m_state = 0;
    return adopt(parent, [this] { return new MimePreamble(nextPStream()); });
}

MimePart* Rfc822MsgParser::createChild(MimeRfc822MPart* parent)
{
    m_state = 0;
    return adopt(parent, [this, parent] { return createRfc822Msg(parent->m_level + 1); });
}

/// Its stream runs to a delimiter of an outer level. The parent's body ends there too.
MimePart* Rfc822MsgParser::createEpilogue(MimeRfc822MPart* parent)
{
    m_state = 0;
    MimePart* epilogue = adopt(parent, [this] { return new MimeEpilogue(nextPStream()); });
    m_lastPart = parent;
    msgPop();
    return epilogue;
}

/// The child's place comes first: once the parser knows a part, nothing may fail until somebody holds it.
template <class Create> MimePart* Rfc822MsgParser::adopt(MimeRfc822MPart* parent, Create create)
{
    parent->m_children.emplace_back(nullptr, false);
    try {
        return parent->m_children.back().holder->ptr = create();
    } catch (...) {
        parent->m_children.pop_back();
        throw;
    }
}

// The stream over a part.

MsgParserMediaIn::MsgParserMediaIn(Rfc822MsgParser* parser) : m_parser(parser), m_in(parser->m_source.get())
{
    m_start = m_end = parser->m_pushback.isEmpty() ? m_in->tell() : parser->m_linePos;
    addReference(*m_in); // a handle would cost each part two more allocations; last, because tell() may throw
}

MsgParserMediaIn::~MsgParserMediaIn()
{
    RefCounted<MediaInImpl> const counted(m_in, false);
}

void MsgParserMediaIn::close(unsigned long end)
{
    m_parser = nullptr;
    m_end = end;
    m_spare.reset();
}

bool MsgParserMediaIn::atEnd() const
{
    return !m_parser && m_in->tell() >= m_end;
}

int MsgParserMediaIn::peek() const
{
    return 0;
}

void MsgParserMediaIn::readline(Buffer& line)
{
    line.length(0);
    if (atEnd()) return;
    if (!m_parser) return m_in->readline(line);
    m_parser->readline(line);
    if (line.isEmpty()) endOfInput();
}

/// The same without a copy where the source allows it; `room` is for the other cases.
std::string_view MsgParserMediaIn::nextLine(Buffer& room, unsigned int most)
{
    if (atEnd()) return std::string_view();
    if (!m_parser) return nextOfSource(room, most);
    std::string_view const line = m_parser->nextLine(room, most);
    if (line.empty()) endOfInput();
    return line;
}

std::string_view MsgParserMediaIn::nextOfSource(Buffer& room, unsigned int most)
{
    if (room.size() > most) most = room.size();
    auto* block = dynamic_cast<BlockMediaInImpl*>(m_in);
    std::string_view const line = block ? block->lineInBlock(most) : std::string_view();
    if (!line.empty()) return line;
    if (room.size() < most) room.size(most);
    m_in->readline(room);
    return _text(room);
}

/// An empty line that no delimiter made. Nobody else tells the part that the input ends here.
void MsgParserMediaIn::endOfInput()
{
    if (!m_parser) return;
    Rfc822MsgParser& parser = *m_parser;
    close(parser.m_linePos);
    parser.posLast();
}

/// Calls `deliver` with each line until it says no or the stream ends.
template <class Deliver> void MsgParserMediaIn::eachLine(Deliver deliver)
{
    // Taken out, because the stream may be closed while a line is read into it.
    Buffer room;
    if (m_spare) room = std::move(*m_spare);
    for (;;) {
        std::string_view const line = nextLine(room, _lineSize);
        if (line.empty()) return m_spare.reset();
        if (!deliver(reinterpret_cast<uchar_t const*>(line.data()), static_cast<unsigned int>(line.size()))) break;
    }
    if (room.size() == 0) return;
    if (!m_spare) m_spare = std::make_unique<Buffer>();
    *m_spare = std::move(room);
}

int MsgParserMediaIn::read(Buffer& block, uint_t n)
{
    if (n == 0) n = block.size();
    block.length(0);
    if (n == 0) return 0;
    eachLine([&block, n](uchar_t const* line, unsigned int length) {
        block.append(line, length);
        return block.length() < n;
    });
    return static_cast<int>(block.length());
}

int MsgParserMediaIn::read(uchar_t*, uint_t)
{
    Exception refused("virtual int Velmara::MsgParserMediaIn::read(Velmara::uchar_t*, Velmara::uint_t)", 4,
                      "Rfc822MsgParser", __LINE__);
    refused.stringParameter("N/A");
    throw refused;
}

void MsgParserMediaIn::setpos(unsigned long position)
{
    if (m_parser) return;
    unsigned long const length = m_end - m_start;
    unsigned long const target = position < length ? m_start + position : m_start + length - 1;
    if (target != ~0ul) m_in->setpos(target);
}

void MsgParserMediaIn::write(MediaOut& out)
{
    if (!m_parser) m_in->setpos(m_start);
    eachLine([&out](uchar_t const* line, unsigned int length) {
        out << Buffer(line, length, false);
        return true;
    });
}

unsigned long MsgParserMediaIn::tell()
{
    return m_in->tell() - m_start;
}

} // namespace Velmara
