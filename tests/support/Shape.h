#pragma once

#include <string>

#include <velmara/MimePart.h>
#include <velmara/MimePartVisitor.h>
#include <velmara/Rfc822Msg.h>

namespace Velmara {

/// A message over its own copy of a text, or over a stream.
struct Mail {
    explicit Mail(std::string const& text) : Mail(BufferMediaIn(text)) {}
    explicit Mail(MediaIn const& source) : in(source), message(Rfc822Msg::parse(in)) {}

    MimePart& root() const { return *message->root(); }
    MimeRfc822MPart& multipart() const { return dynamic_cast<MimeRfc822MPart&>(root()); }
    MimeRfc822SPart& nested() const { return dynamic_cast<MimeRfc822SPart&>(root()); }
    /// A child of a root that is a multipart, all of which is parsed.
    MimePart& child(size_t index) const { return **multipart().parts().at(index); }

    MediaIn in;
    Ref<Rfc822Msg> message;
};

/// All lines from the present position on.
inline std::string textOf(MediaIn in)
{
    std::string text;
    Buffer line(4096, 0);
    for (in.readline(line); !line.isEmpty(); in.readline(line))
        text.append(reinterpret_cast<char const*>(line.data()), line.length());
    return text;
}

/// Writes the tree down as it is walked.
class Describer : public MimePartVisitor {
public:
    explicit Describer(bool bodies) : m_bodies(bodies) {}

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

inline std::string described(MimePart& part, bool bodies)
{
    Describer describer(bodies);
    part.visit(&describer);
    return describer.text;
}

/// The tree as one line of text, made without reading a body:
/// "multipart(preamble leaf message(leaf) skipped epilogue)".
inline std::string shape(MimePart& part)
{
    return described(part, false);
}

inline std::string shape(std::string const& text)
{
    return shape(Mail(text).root());
}

/// The same with what the parts hold, each body read while it is visited:
/// "multipart(preamble[] leaf[text\n] epilogue[])".
inline std::string contents(MimePart& part)
{
    return described(part, true);
}

inline std::string contents(std::string const& text)
{
    return contents(Mail(text).root());
}

/// A stream that has nothing but single bytes, so that each line of it is a copy.
class Bytewise : public MediaInImpl {
public:
    explicit Bytewise(std::string const& text) : m_text(text) {}
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

inline MediaIn bytewise(std::string const& text)
{
    return MediaIn(new Bytewise(text), false);
}

/// The text with each LF made CR LF.
inline std::string withCrLf(std::string const& text)
{
    std::string converted;
    for (char c : text) converted += c == '\n' ? std::string("\r\n") : std::string(1, c);
    return converted;
}

} // namespace Velmara
