#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include <velmara/HeaderContainer.h>
#include <velmara/MediaIn.h>
#include <velmara/VmaraRefcounted.h>

namespace Velmara {

class BlockMediaInImpl;
class ContentType;
class MimePart;
class MimeRfc822MPart;
class MsgParserMediaIn;

/// Makes the tree of a message, one part at a time and only when somebody asks: `Rfc822Msg::parse`
/// reads the root's headers, and each step of a walk reads on from there.
///
/// One stream is live at a time: a header block, a preamble, body or epilogue. Its lines pass through
/// `readline`, which looks for delimiters; one closes the stream and is noted for the next step.
/// Creating the next stream first runs the present one out, so nobody has to read anything.
///
/// Nothing is refused. A header block without its empty line ends at the first line that is no header;
/// a multipart without a boundary is a leaf; a boundary that never comes leaves one preamble; a
/// delimiter of an outer multipart closes all inner ones; what stands behind a delimiter on its line
/// is dropped. Exceptions of the source pass through, and the message is of no further use then.
///
/// Limits: a "line" is what one `readline` of the source delivers, so of a longer one a later piece
/// that begins like a delimiter is taken for one. A closed stream that is read before the parse has
/// ended moves the position on which the parser counts.
class VELMARA_EXPORT Rfc822MsgParser : virtual public RefImpl, virtual private NonCopyable {
public:
    /// Reads `in` from its present position. Containers are entered while fewer than `maxDepth` are open.
    Rfc822MsgParser(MediaIn& in, unsigned int maxDepth);
    ~Rfc822MsgParser() override;

    // What a tree is made with; each gives a new part that belongs to the caller.

    /// The next entity, with its headers read from the source.
    MimePart* createRfc822Msg();
    /// The entity whose headers were read elsewhere; the source stands at its body.
    MimePart* createRfc822Msg(HeaderContainer const& headers);
    /// The kind of part that the headers ask for, `headerStream` being their text.
    MimePart* createEntity(HeaderContainer const& headers, MediaIn& headerStream);
    /// The next child of `parent`, already among its children and owned by it; null behind the last.
    /// Going on with an outer part abandons the inner ones.
    MimePart* getNextPart(MimeRfc822MPart* parent);

    // The steps of which those are made.

    /// Reads a header block. Folded lines are joined with one blank, and a block that the end of the
    /// input cuts off keeps its last header (the reader of HeaderContainer does neither).
    HeaderContainer header();
    /// Gives an entity of a multipart/digest the type that its absence means.
    void sanityCheck(HeaderContainer& headers);
    /// Replaces the content of `line` by the next line; empty at a delimiter and at the end.
    void readline(Buffer& line);
    /// Whether an open multipart's delimiter is a prefix of the line. Multiparts inside it are closed.
    bool isBoundary(Buffer& line);
    /// Closes the innermost container.
    void msgPop();
    /// A new live stream, the present one being run out first.
    MediaIn& nextPStream();
    /// Closes the live stream in front of the line last read.
    void endPStream();
    /// Runs the live stream out.
    void discardAll();
    /// Sets the body length of the part last created, unless that is done.
    void posLast();
    /// The length of a body that ends in front of the line last read.
    unsigned long blen(MimePart* part);
    /// The longest piece of a header line or of skipped text that is read at once (2048).
    void bufferSize(unsigned int n);

private:
    friend class MsgParserMediaIn;
    friend class MimeRfc822SPart;

    /// An open container.
    struct MBoundary {
        MimePart* part;        // not owned
        std::string delimiter; // the closing one, whose last two bytes the other lacks; "" for message/*
        bool digest;           // entities without a type in it are messages
    };

    MimePart* createRfc822Msg(unsigned int level);
    MimePart* createEntity(HeaderContainer const& headers, MediaIn& headerStream, unsigned int level);
    template <class Leaf> MimePart* createLeaf(HeaderContainer const& headers, MediaIn& headerStream);
    MimePart* createMultipart(HeaderContainer const& headers, MediaIn& headerStream, ContentType const& type);
    MimePart* createMessage(HeaderContainer const& headers, MediaIn& headerStream);
    MimePart* createPreamble(MimeRfc822MPart* parent);
    MimePart* createChild(MimeRfc822MPart* parent);
    MimePart* createEpilogue(MimeRfc822MPart* parent);
    template <class Create> MimePart* adopt(MimeRfc822MPart* parent, Create create);
    bool abandonAbove(MimeRfc822MPart* parent);
    bool skipToDelimiter();
    void push(MimePart* part, std::string const& delimiter, bool digest);
    void endHeader(std::string_view line);
    void dropStream();
    std::string_view nextLine(Buffer& room, unsigned int most);
    bool readInPlace(std::string_view& line, unsigned int most);
    void readCopy(Buffer& line);
    bool endsStream(std::string_view line);
    bool findBoundary(std::string_view line);
    Header const& checkedType(HeaderContainer const& headers);
    MsgParserMediaIn* liveStream() const;
    bool canBeDelimiter(std::string_view line);
    void indexDelimiters();

    MediaIn m_source;                    // all streams share its position
    BlockMediaInImpl* m_block;           // the same if its lines can be used where they lie, or null
    std::vector<MBoundary> m_boundaries; // innermost last
    MimePart* m_lastPart = nullptr;      // not owned; its body length is set when the live stream ends
    unsigned long m_linePos;             // where the line last read starts; behind a delimiter or empty line
    Buffer m_pushback;                   // one line that the next readline delivers
    Buffer m_line;                       // header lines and skipped text that cannot stay where they lie
    unsigned int m_lineSize;             // the longest piece of those
    unsigned short m_state = 0;          // what ended the last line, and whether a multipart is new
    unsigned int m_maxDepth;
    MediaIn m_pstream;  // the live stream, null if there is none
    MediaIn m_previous; // the stream closed last: it may still be in the middle of its `readline`

    // For floods of lines that look like delimiters; both count from the last change of m_boundaries.
    std::vector<std::string_view> m_shortest; // sorted delimiters, without those that begin with another
    unsigned int m_misses = 0;                // lines for which the whole stack was walked in vain
};

/// A stream over a stretch of a message: live while the parser reads it, then a window on the source.
///
/// A live stream is never at its end before a `readline` came back empty, and `setpos` does nothing to
/// it. A closed one can be read again and again. Both deliver whole lines.
class VELMARA_EXPORT MsgParserMediaIn : public MediaInImpl {
public:
    /// From where the parser stands.
    explicit MsgParserMediaIn(Rfc822MsgParser* parser);
    ~MsgParserMediaIn() override;

    bool atEnd() const override;
    /// Always 0.
    int peek() const override;
    void readline(Buffer& line) override;
    /// Whole lines until `n` bytes (0: the capacity of `block`) have come, so there may be more. Gives
    /// their number.
    int read(Buffer& block, uint_t n) override;
    using MediaInImpl::read;
    /// Throws Exception (code 4): a cut inside a line would hide a delimiter.
    int read(uchar_t* bytes, uint_t n) override;
    /// Counted from the start of a closed stream; past its end it is the last byte.
    ///
    /// Limits: the last byte of an empty stream is the one in front of it.
    void setpos(unsigned long position) override;
    /// A closed stream from its start, a live one from where it stands.
    void write(MediaOut& out) override;

    /// Counted from the start. Not reached through a MediaIn, which gives 0.
    unsigned long tell();
    using MediaInImpl::tell;

private:
    friend class Rfc822MsgParser;

    void close(unsigned long end);
    void endOfInput();
    std::string_view nextLine(Buffer& room, unsigned int most);
    std::string_view nextOfSource(Buffer& room, unsigned int most);
    template <class Deliver> void eachLine(Deliver deliver);

    Rfc822MsgParser* m_parser; // not owned; null when closed
    MediaInImpl* m_in;         // the parser's source; holds one of its counts
    unsigned long m_start;
    unsigned long m_end;             // m_start until closed
    std::unique_ptr<Buffer> m_spare; // work buffer between two block reads, dropped at the end
};

} // namespace Velmara
