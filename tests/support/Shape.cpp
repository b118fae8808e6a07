#include "support/Shape.h"

#include <velmara/MimePartVisitor.h>

namespace Velmara {

namespace {

class _Describer : public MimePartVisitor {
public:
    explicit _Describer(bool bodies) : m_bodies(bodies) {}

    void visitSkippedPart(MimeSkippedPart& part) override { leaf("skipped", part); }
    void visitRfc822Msg(MimeRfc822Msg& part) override { leaf("leaf", part); }
    void visitPreamble(MimePreamble& part) override { leaf("preamble", part); }
    void visitEpilogue(MimeEpilogue& part) override { leaf("epilogue", part); }

    // The tree goes into a container by itself, so that this one has to close the bracket.
    bool visitMPart(MimeRfc822MPart& part) override
    {
        open("multipart");
        for (Ref<MimePart> child = part.firstChild(); !child.isNull(); child = part.nextChild()) child->visit(this);
        text += ')';
        return false;
    }
    bool visitSPart(MimeRfc822SPart& part) override
    {
        open("message");
        part.child()->visit(this);
        text += ')';
        return false;
    }

    std::string text;

private:
    void name(char const* kind)
    {
        if (!text.empty() && text.back() != '(') text += ' ';
        text += kind;
    }
    void open(char const* kind)
    {
        name(kind);
        text += '(';
    }
    void leaf(char const* kind, MimePart& part)
    {
        name(kind);
        if (m_bodies) text += '[' + textOf(part.body(false)) + ']';
    }

    bool const m_bodies;
};

class _Bytewise : public MediaInImpl {
public:
    explicit _Bytewise(std::string const& text) : m_text(text) {}
    bool atEnd() const override { return m_at == m_text.size(); }
    int peek() const override { return atEnd() ? -1 : static_cast<uchar_t>(m_text[m_at]); }
    unsigned long tell() const override { return m_at; }
    void setpos(unsigned long position) override { m_at = position; }
    using MediaInImpl::read;
    int read(uchar_t* bytes, uint_t n) override
    {
        uint_t stored = 0;
        while (stored < n && !atEnd()) bytes[stored++] = static_cast<uchar_t>(m_text[m_at++]);
        return static_cast<int>(stored);
    }

private:
    std::string const m_text;
    size_t m_at = 0;
};

std::string _described(MimePart& part, bool bodies)
{
    _Describer describer(bodies);
    part.visit(&describer);
    return describer.text;
}

} // namespace

Mail::Mail(std::string const& text) : Mail(BufferMediaIn(text))
{}

Mail::Mail(MediaIn const& source) : in(source), message(Rfc822Msg::parse(in))
{}

std::string shape(MimePart& part)
{
    return _described(part, false);
}

std::string shape(std::string const& text)
{
    return shape(Mail(text).root());
}

std::string contents(MimePart& part)
{
    return _described(part, true);
}

std::string contents(std::string const& text)
{
    return contents(Mail(text).root());
}

MediaIn bytewise(std::string const& text)
{
    return MediaIn(new _Bytewise(text), false);
}

std::string textOf(MediaIn in)
{
    std::string text;
    Buffer line(4096, 0);
    for (in.readline(line); !line.isEmpty(); in.readline(line))
        text.append(reinterpret_cast<char const*>(line.data()), line.length());
    return text;
}

std::string withCrLf(std::string const& text)
{
    std::string converted;
    for (char c : text) converted += c == '\n' ? std::string("\r\n") : std::string(1, c);
    return converted;
}

} // namespace Velmara
