// The tree of a message and its bodies, on raw bytes and on text made of fragments of mail. What must
// hold for any input:
//   - walking by visit and by nextChild gives the same parts, each of the kind its type asks for;
//   - a source whose lines can be used where they lie gives what one of single bytes gives;
//   - leaves cover stretches of the source that follow each other;
//   - where line ends are LF, what is written out has the same shape, and written once more it is the same.
#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <iterator>
#include <string>
#include <string_view>
#include <vector>

#include <velmara/Velmara.h>

#include "tests/support/Shape.h"

using namespace Velmara;

namespace {

void require(bool holds, char const* claim)
{
    if (holds) return;
    std::fprintf(stderr, "does not hold: %s\n", claim);
    std::abort();
}

bool endsWith(std::string const& text, std::string const& end)
{
    return text.size() >= end.size() && text.compare(text.size() - end.size(), end.size(), end) == 0;
}

std::string headerText(MimePart& part)
{
    if (part.hlen() == 0) return std::string(); // an empty stream cannot be rewound
    part.source().setpos(0);
    return textOf(part.source());
}

/// Visits without reading, notes the kinds, and checks what each part says of itself.
class Kinds : public MimePartVisitor {
public:
    void visitSkippedPart(MimeSkippedPart& part) override
    {
        text += " skipped";
        require(isContainer(part), "what is skipped is a container");
    }
    void visitRfc822Msg(MimeRfc822Msg& part) override
    {
        text += " leaf";
        require(!isContainer(part), "a container is no leaf");
    }
    void visitPreamble(MimePreamble&) override { text += " preamble"; }
    void visitEpilogue(MimeEpilogue&) override { text += " epilogue"; }
    bool visitMPart(MimeRfc822MPart& part) override
    {
        text += " multipart";
        require(typeOf(part).mediatype() == ContentType::MediaTypeMultipart, "a multipart says so");
        return true;
    }
    bool visitSPart(MimeRfc822SPart& part) override
    {
        text += " message";
        require(typeOf(part).mediatype() == ContentType::MediaTypeMessage, "a message says so");
        return true;
    }

    std::string text;

private:
    static ContentType typeOf(MimePart& part) { return ContentType(part.headers().find(ContentType::htype)); }
    static bool isContainer(MimePart& part)
    {
        ContentType const type = typeOf(part);
        if (type.isNull()) return false;
        return type.mediatype() == ContentType::MediaTypeMessage ||
               (type.mediatype() == ContentType::MediaTypeMultipart && !type.boundary().empty());
    }
};

/// Of a tree that was read to its end.
class Ranges : public MimePartVisitor {
public:
    explicit Ranges(size_t size) : m_size(size) {}
    void visitRfc822Msg(MimeRfc822Msg& part) override { take(part); }
    void visitSkippedPart(MimeSkippedPart& part) override { take(part); }

private:
    void take(MimePart& part)
    {
        require(part.sourcePosition() >= m_end, "leaves follow each other");
        m_end = part.sourcePosition() + part.hlen() + part.blen();
        require(m_end <= m_size, "leaves lie in the source");
    }

    size_t const m_size;
    size_t m_end = 0;
};

/// Whether a tree can be told from its written form. A header block that no empty line ends runs into
/// what is written behind it, a boundary longer than a line is never found again, and a multipart that
/// an outer delimiter left without a preamble gets a delimiter that ends its headers.
class Writable : public MimePartVisitor {
public:
    void visitRfc822Msg(MimeRfc822Msg& part) override { take(part); }
    void visitSkippedPart(MimeSkippedPart& part) override { take(part); }
    bool visitSPart(MimeRfc822SPart& part) override { return take(part); }
    bool visitMPart(MimeRfc822MPart& part) override
    {
        take(part);
        holds = holds && ContentType(part.headers().find(ContentType::htype)).boundary().size() < 1000;
        holds = holds && dynamic_cast<MimePreamble*>(part.firstChild().get());
        return true;
    }

    bool holds = true;

private:
    bool take(MimePart& part)
    {
        std::string const block = headerText(part);
        holds = holds && (block == "\n" || endsWith(block, "\n\n"));
        return true;
    }
};

/// One file for the process: opening and reading it again costs less than a stream for each input.
class Written {
public:
    /// What comes of a tree all of which was read.
    static std::string of(MimePart& root)
    {
        static Written const file;
        FileMediaOut out(file.m_path);
        root.write(out);
        out.end();
        std::string text(out.tell(), '\0');
        require(::pread(file.m_descriptor, text.data(), text.size(), 0) == ssize_t(text.size()),
                "what is told is there");
        return text;
    }

private:
    Written()
        : m_path("/dev/shm/velmara_fuzz_" + std::to_string(::getpid())),
          m_descriptor(::open(m_path.c_str(), O_RDONLY | O_CREAT | O_CLOEXEC, 0600))
    {
        require(m_descriptor >= 0, "a file can be made");
    }
    ~Written()
    {
        ::close(m_descriptor);
        ::unlink(m_path.c_str());
    }

    std::string const m_path;
    int const m_descriptor;
};

/// The names of the parts in a shape.
std::string flat(std::string shape)
{
    for (char& c : shape)
        if (c == '(' || c == ')') c = ' ';
    std::string names;
    for (size_t at = 0; (at = shape.find_first_not_of(' ', at)) != std::string::npos;) {
        size_t const end = std::min(shape.find(' ', at), shape.size());
        names += ' ' + shape.substr(at, end - at);
        at = end;
    }
    return names;
}

/// A shape with an epilogue in each multipart that has none: writing closes what the message left open.
std::string closed(std::string const& shape)
{
    std::string result;
    std::vector<bool> multipart;
    for (char c : shape) {
        if (c == '(') multipart.push_back(endsWith(result, "multipart"));
        if (c == ')') {
            if (multipart.back() && !endsWith(result, "epilogue")) result += " epilogue";
            multipart.pop_back();
        }
        result += c;
    }
    return result;
}

void checkWalks(std::string const& text)
{
    Mail visited(text);
    Kinds kinds;
    visited.root().visit(&kinds);
    require(kinds.text == flat(shape(text)), "both walks see the same parts");
}

void checkUnread(std::string const& text)
{
    require(shape(text) == shape(Mail(bytewise(text)).root()), "every source gives the same unread");
}

void checkRead(std::string const& text)
{
    Mail mail(text);
    std::string const found = contents(mail.root());
    require(found == contents(Mail(bytewise(text)).root()), "every source gives the same");
    Ranges ranges(text.size());
    mail.root().visit(&ranges);
}

void checkWritten(std::string const& text)
{
    Mail mail(text);
    contents(mail.root());
    Writable writable;
    mail.root().visit(&writable);
    if (!writable.holds || text.find('\r') != std::string::npos) return;
    std::string const once = Written::of(mail.root());
    require(shape(once) == closed(shape(mail.root())), "what is written has the same shape");
    Mail again(once);
    contents(again.root());
    require(Written::of(again.root()) == once, "what is written is a fixed point");
}

constexpr std::string_view fragments[] = {
    "\n",
    "\r\n",
    "\n\n",
    " ",
    "--",
    "--a\n",
    "--a--\n",
    "--b\n",
    "--b--\n",
    "--ab\n",
    "--ab--\n",
    "--a",
    "x",
    "text\n",
    "A: 1\n",
    " folded\n",
    "A : 1\n",
    "Content-Type: ",
    "multipart/mixed; boundary=a\n\n",
    "multipart/mixed; boundary=b\n\n",
    "multipart/digest; boundary=ab\n\n",
    "message/rfc822\n\n",
    "text/plain\n\n",
    "Content-Type: multipart/mixed; boundary=a\n\n--a\n",
    "Content-Type: multipart/mixed; boundary=b\n\n--b\n",
    "Content-Type: multipart/mixed; boundary=ab\n\n--ab\n",
    "Content-Type: message/rfc822\n\n",
    "\t\n",
    "--ax\n\n",
    "--b\n\n",
    std::string_view("\0", 1),
    ":",
};

/// With `runs` some are long enough to be cut by the reader's buffers; they cost more than all the rest.
std::string mailText(std::uint8_t const* data, std::size_t n, bool runs)
{
    std::string text;
    text.reserve(n * 16);
    for (std::size_t i = 0; i < n && text.size() < 4800; ++i)
        if (runs && data[i] >= 0xF0)
            text.append((data[i] & 15u) * 293u, '-');
        else
            text += fragments[data[i] % std::size(fragments)];
    return text;
}

} // namespace

// The first byte chooses: raw bytes or fragments, which of the claims are looked at, and whether
// there are long runs.
extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t n)
{
    static constexpr void (*checks[])(std::string const&) = {checkWalks, checkUnread, checkRead, checkWritten};
    if (n == 0) return 0;
    std::uint8_t const how = *data++;
    std::string const raw(reinterpret_cast<char const*>(data), --n);
    checks[how / 2 % std::size(checks)](how % 2 == 0 ? raw : mailText(data, n, how >= 240));
    return 0;
}
