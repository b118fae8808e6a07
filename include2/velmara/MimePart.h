#pragma once

#include <map>
#include <memory>
#include <vector>

#include <velmara/HeaderContainer.h>
#include <velmara/MPartAttribute.h>
#include <velmara/MediaIn.h>
#include <velmara/MediaOut.h>
#include <velmara/VmaraRefcounted.h>

namespace Velmara {

class MimePartVisitor;
class Rfc822MsgParser;

/// One node of a message. It holds headers and places in the source, never the bytes of a body:
///
///     MimeRfc822Msg    a leaf                          MimeRfc822MPart  a multipart with a boundary
///     MimeSkippedPart  a container nested too deep     MimeRfc822SPart  a message/* part
///     MimePreamble, MimeEpilogue  the text of a multipart around its children
///
/// Children appear while someone walks; each step asks the parser for the next one. A body is live
/// while the parser has not been past it: reading it drives the parser, and it cannot be rewound.
/// Afterwards it is a window on the source that can be read again, but not before the whole message
/// has been parsed: all streams of a message share one position.
class VELMARA_EXPORT MimePart : virtual public RefImpl, private NonCopyable {
public:
    /// At most one attribute of each type.
    using AttributeMap = std::map<MPartAttribute::Type, Ref<MPartAttribute>>;

    MimePart();
    /// Without headers and without a parser.
    explicit MimePart(MediaIn& source);
    /// The parser is not owned; the headers are shared.
    MimePart(HeaderContainer const& headers, Rfc822MsgParser* parser, MediaIn& source);
    ~MimePart() override;

    /// Calls the visitor's operation for this kind and then goes into what lies below, parsing as it
    /// goes. What comes back is what the visitor said of a container, true for all others.
    virtual bool visit(MimePartVisitor* visitor) = 0;
    /// The bytes of a leaf behind its headers. Of a multipart or message/* part it is the header block,
    /// of a preamble or epilogue the text, and the flag changes nothing.
    virtual MediaIn body(bool decode);
    /// Writes the part as it stands in the source; see MimeRfc822MPart for delimiters. A null `out`
    /// leaves everything alone.
    virtual void write(FileMediaOut& out) = 0;

    /// The header block with its empty line; of a preamble or epilogue the text.
    MediaIn& source() { return m_source; }
    MediaIn const& source() const { return m_source; }
    void source(MediaIn& in) { m_source = in; }
    HeaderContainer& headers() { return m_headers; }
    HeaderContainer const& headers() const { return m_headers; }

    /// Position of the first byte in the source, and the lengths of header block (with its empty line)
    /// and body. The last is 0xFFFFFFFF until the parser has left the part; that of a multipart
    /// reaches to the end of its epilogue.
    unsigned long sourcePosition() const { return m_sourcePosition; }
    void sourcePosition(unsigned long position) { m_sourcePosition = position; }
    unsigned long hlen() const { return m_hlen; }
    void hlen(unsigned long length) { m_hlen = length; }
    unsigned long blen() const { return m_blen; }
    void blen(unsigned long length) { m_blen = length; }

    /// What is attached to the part, now and later: the reference holds as long as the part.
    AttributeMap const& attributeMap() const;
    /// Takes over each entry; others stay.
    void attributeMap(AttributeMap const& attributes);
    /// Replaces the attribute of the same type. A null handle throws Exception (code 1).
    void setAttr(Ref<MPartAttribute> const& attribute);
    /// Null if there is none.
    MPartAttribute* findAttr(MPartAttribute::Type type) const;

protected:
    Rfc822MsgParser* m_parser = nullptr; // not owned, null once nothing more is to be asked
    unsigned int m_level = 0;            // containers around this part

private:
    friend class Rfc822MsgParser;

    Ref<MPartAttribute>& attributeSlot(MPartAttribute::Type type);

    MediaIn m_source;
    HeaderContainer m_headers;
    mutable std::unique_ptr<AttributeMap> m_attributes; // null until somebody asks or sets one
    unsigned long m_sourcePosition = 0;
    unsigned long m_hlen = 0;
    unsigned long m_blen = 0xFFFFFFFF;
};

/// A leaf: everything that contains no other part.
class VELMARA_EXPORT MimeRfc822Msg : public MimePart {
public:
    /// The parser is not kept: the stream of the body carries the link.
    MimeRfc822Msg(HeaderContainer const& headers, Rfc822MsgParser* parser, MediaIn& source, MediaIn& body);
    ~MimeRfc822Msg() override;

    bool visit(MimePartVisitor* visitor) override;
    /// A closed body is rewound, a live one goes on where the parser stands. With `decode` true a body
    /// that has a codec, by its transfer encoding or as BinHex by its type, is given decoded, by a
    /// DecodeMediaIn of its own each time; any other as the plain stream.
    ///
    /// Limits: an empty body that is rewound delivers the byte in front of it.
    MediaIn body(bool decode) override;
    void write(FileMediaOut& out) override;

private:
    MediaIn m_body;
};

/// A container at the depth limit, kept as the text it is; its delimiters are part of it.
class VELMARA_EXPORT MimeSkippedPart : public MimePart {
public:
    /// The headers are shared; the parser is not owned.
    MimeSkippedPart(HeaderContainer const& headers, Rfc822MsgParser* parser, MediaIn& source, MediaIn& body);
    ~MimeSkippedPart() override;

    bool visit(MimePartVisitor* visitor) override;
    /// Never decoded, whatever is asked.
    MediaIn body(bool decode) override;
    void write(FileMediaOut& out) override;

private:
    MediaIn m_body;
};

/// A multipart with a boundary. Its children are a preamble, the parts, and an epilogue behind the
/// closing delimiter. The preamble is missing only when a delimiter of an outer multipart ended the
/// header block, the epilogue when the closing delimiter is.
class VELMARA_EXPORT MimeRfc822MPart : public MimePart {
public:
    /// The headers are shared; the parser is not owned.
    MimeRfc822MPart(HeaderContainer const& headers, Rfc822MsgParser* parser, MediaIn& source);
    ~MimeRfc822MPart() override;

    bool visit(MimePartVisitor* visitor) override;
    /// Delimiter lines are made anew and end with one LF; a missing closing one is added. What stood
    /// behind a delimiter on its line, and a CR there, is gone.
    void write(FileMediaOut& out) override;

    /// Walk the children; a null handle behind the last. The walk has one position, which `visit` and
    /// `parts` leave alone.
    virtual Ref<MimePart> firstChild();
    virtual Ref<MimePart> nextChild();
    /// All children: parses to the end of this level.
    virtual std::vector<Ref<MimePart>>& parts();
    /// Whether the parser had one more; it then is the last of the children.
    bool hasMoreChild();

private:
    friend class Rfc822MsgParser;

    bool hasChild(size_t index);

    unsigned int m_nextIndex = 0;
    std::vector<Ref<MimePart>> m_children;
};

/// A message/* part, which holds one nested message.
class VELMARA_EXPORT MimeRfc822SPart : public MimePart {
public:
    /// The headers are shared; the parser is not owned.
    MimeRfc822SPart(HeaderContainer const& headers, Rfc822MsgParser* parser, MediaIn& source);
    ~MimeRfc822SPart() override;

    bool visit(MimePartVisitor* visitor) override;
    void write(FileMediaOut& out) override;

    /// The root of the nested message, parsed from where the parser stands at the first call.
    Ref<MimePart>& child();

private:
    Ref<MimePart> m_child; // null until asked for
};

/// The text ahead of a multipart's first delimiter.
class VELMARA_EXPORT MimePreamble : public MimePart {
public:
    /// Over its text.
    explicit MimePreamble(MediaIn text);
    ~MimePreamble() override;

    bool visit(MimePartVisitor* visitor) override;
    void write(FileMediaOut& out) override;
};

/// The text behind a multipart's closing delimiter.
class VELMARA_EXPORT MimeEpilogue : public MimePart {
public:
    /// Over its text.
    explicit MimeEpilogue(MediaIn text);
    ~MimeEpilogue() override;

    bool visit(MimePartVisitor* visitor) override;
    void write(FileMediaOut& out) override;
};

} // namespace Velmara
