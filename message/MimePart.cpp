// The tree. A part is written by copying its stretches of the source: header block, then body or
// children. Only delimiter lines are made anew, because no stream holds them; the line end in front of
// one is the last byte of the text before it. What visits, walks or writes a part that was not read yet
// drives the parser, so all of that ends where the message ends.
#include <velmara/MimePart.h>

#include <utility>

#include <velmara/ContentType.h>
#include <velmara/DecodeMediaIn.h>
#include <velmara/MimePartVisitor.h>
#include <velmara/Rfc822MsgParser.h>

namespace Velmara {

namespace {

/// Lines on their way to a file, which they reach in blocks: a system call for each line would take
/// most of the time.
class Gathered : public MediaOutImpl {
public:
    explicit Gathered(FileMediaOut& out) : m_out(out) {}

    using MediaOutImpl::write;
    void write(uchar_t const* bytes, uint_t n) override
    {
        constexpr uint_t enough = 64 * 1024;
        m_lines.append(bytes, n);
        if (m_lines.length() >= enough) pass();
    }

    void pass()
    {
        // Emptied first: after a failed write the same bytes must not be tried again.
        Buffer const lines(m_lines.data(), m_lines.length(), false);
        m_lines.length(0);
        if (!lines.isEmpty()) m_out.write(lines);
    }

private:
    FileMediaOut& m_out;
    Buffer m_lines;
};

void _write(MediaIn& bytes, FileMediaOut& out)
{
    if (bytes.isNull()) return;
    auto* gathered = new Gathered(out);
    MediaOut sink(gathered, false);
    try {
        bytes.write(sink);
    } catch (...) {
        gathered->pass();
        throw;
    }
    gathered->pass();
}

/// A body from its start, if the parser has been past it.
MediaIn const& _rewound(MediaIn& body)
{
    if (!body.isNull()) body.setpos(0);
    return body;
}

void _writeLeaf(MimePart& part, FileMediaOut& out)
{
    if (out.isNull()) return;
    _write(part.source(), out);
    MediaIn body = part.body(false);
    _write(body, out);
}

} // namespace

MPartAttribute::MPartAttribute() = default;

MPartAttribute::~MPartAttribute() = default;

MimePart::MimePart() = default;

MimePart::MimePart(MediaIn& source) : m_source(source)
{}

MimePart::MimePart(HeaderContainer const& headers, Rfc822MsgParser* parser, MediaIn& source)
    : m_parser(parser), m_source(source), m_headers(headers)
{}

MimePart::~MimePart() = default;

MediaIn MimePart::body(bool)
{
    return m_source;
}

MimePart::AttributeMap const& MimePart::attributeMap() const
{
    if (!m_attributes) m_attributes = std::make_unique<AttributeMap>();
    return *m_attributes;
}

void MimePart::attributeMap(AttributeMap const& attributes)
{
    for (auto const& entry : attributes) attributeSlot(entry.first) = entry.second;
}

void MimePart::setAttr(Ref<MPartAttribute> const& attribute)
{
    attributeSlot(attribute->type()) = attribute;
}

Ref<MPartAttribute>& MimePart::attributeSlot(MPartAttribute::Type type)
{
    attributeMap(); // makes the map
    return (*m_attributes)[type];
}

MPartAttribute* MimePart::findAttr(MPartAttribute::Type type) const
{
    if (!m_attributes) return nullptr; // most parts never have one
    auto const found = m_attributes->find(type);
    return found == m_attributes->end() ? nullptr : found->second.get();
}

MimeRfc822Msg::MimeRfc822Msg(HeaderContainer const& headers, Rfc822MsgParser*, MediaIn& source, MediaIn& body)
    : MimePart(headers, nullptr, source), m_body(body)
{}

MimeRfc822Msg::~MimeRfc822Msg() = default;

bool MimeRfc822Msg::visit(MimePartVisitor* visitor)
{
    visitor->visitRfc822Msg(*this);
    return true;
}

MediaIn MimeRfc822Msg::body(bool decode)
{
    MediaIn body = _rewound(m_body);
    if (!decode || body.isNull()) return body;
    ContentEncoding encoding(headers().find(ContentEncoding::htype));
    ContentType type(headers().find(ContentType::htype));
    return get_decoded(body, encoding, &type);
}

void MimeRfc822Msg::write(FileMediaOut& out)
{
    _writeLeaf(*this, out);
}

MimeSkippedPart::MimeSkippedPart(HeaderContainer const& headers, Rfc822MsgParser* parser, MediaIn& source,
                                 MediaIn& body)
    : MimePart(headers, parser, source), m_body(body)
{}

MimeSkippedPart::~MimeSkippedPart() = default;

bool MimeSkippedPart::visit(MimePartVisitor* visitor)
{
    visitor->visitSkippedPart(*this);
    return true;
}

MediaIn MimeSkippedPart::body(bool)
{
    return _rewound(m_body);
}

void MimeSkippedPart::write(FileMediaOut& out)
{
    _writeLeaf(*this, out);
}

MimeRfc822MPart::MimeRfc822MPart(HeaderContainer const& headers, Rfc822MsgParser* parser, MediaIn& source)
    : MimePart(headers, parser, source)
{}

MimeRfc822MPart::~MimeRfc822MPart() = default;

bool MimeRfc822MPart::visit(MimePartVisitor* visitor)
{
    if (!visitor->visitMPart(*this)) return false;
    for (size_t i = 0; hasChild(i); ++i) m_children[i]->visit(visitor);
    return true;
}

bool MimeRfc822MPart::hasChild(size_t index)
{
    while (index >= m_children.size())
        if (!hasMoreChild()) return false;
    return true;
}

bool MimeRfc822MPart::hasMoreChild()
{
    if (m_parser && !m_parser->getNextPart(this)) m_parser = nullptr;
    return m_parser != nullptr;
}

Ref<MimePart> MimeRfc822MPart::firstChild()
{
    m_nextIndex = 0;
    return nextChild();
}

Ref<MimePart> MimeRfc822MPart::nextChild()
{
    return hasChild(m_nextIndex) ? m_children[m_nextIndex++] : Ref<MimePart>();
}

std::vector<Ref<MimePart>>& MimeRfc822MPart::parts()
{
    while (hasMoreChild()) {
    }
    return m_children;
}

void MimeRfc822MPart::write(FileMediaOut& out)
{
    if (out.isNull()) return;
    _write(source(), out);
    ContentType const type(headers().find(ContentType::htype));
    std::string const delimiter = "--" + (type.isNull() ? std::string() : type.boundary());
    bool first = true;
    bool closed = false;
    for (Ref<MimePart> child = firstChild(); !child.isNull(); child = nextChild()) {
        if (!first || !dynamic_cast<MimePreamble*>(child.get())) {
            bool const closes = !closed && dynamic_cast<MimeEpilogue*>(child.get());
            out << delimiter + (closes ? "--\n" : "\n");
            closed = closed || closes;
        }
        child->write(out);
        first = false;
    }
    if (!closed) out << "\n" + delimiter + "--\n";
}

MimeRfc822SPart::MimeRfc822SPart(HeaderContainer const& headers, Rfc822MsgParser* parser, MediaIn& source)
    : MimePart(headers, parser, source)
{}

MimeRfc822SPart::~MimeRfc822SPart() = default;

bool MimeRfc822SPart::visit(MimePartVisitor* visitor)
{
    if (!visitor->visitSPart(*this)) return false;
    if (!child().isNull()) child()->visit(visitor);
    return true;
}

Ref<MimePart>& MimeRfc822SPart::child()
{
    if (m_parser) {
        Ref<MimePart> child(nullptr, false); // a place first: see Rfc822MsgParser::adopt
        child.holder->ptr = m_parser->createRfc822Msg(m_level + 1);
        m_child = std::move(child);
        m_parser = nullptr;
    }
    return m_child;
}

void MimeRfc822SPart::write(FileMediaOut& out)
{
    if (out.isNull()) return;
    _write(source(), out);
    if (!child().isNull()) child()->write(out);
}

MimePreamble::MimePreamble(MediaIn text) : MimePart(text)
{}

MimePreamble::~MimePreamble() = default;

bool MimePreamble::visit(MimePartVisitor* visitor)
{
    visitor->visitPreamble(*this);
    return true;
}

void MimePreamble::write(FileMediaOut& out)
{
    if (!out.isNull()) _write(source(), out);
}

MimeEpilogue::MimeEpilogue(MediaIn text) : MimePart(text)
{}

MimeEpilogue::~MimeEpilogue() = default;

bool MimeEpilogue::visit(MimePartVisitor* visitor)
{
    visitor->visitEpilogue(*this);
    return true;
}

void MimeEpilogue::write(FileMediaOut& out)
{
    if (!out.isNull()) _write(source(), out);
}

} // namespace Velmara
