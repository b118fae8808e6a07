// What a message costs beyond its text: memory for each part, none for the bytes of bodies, no
// allocation per line, and little stack, because mail daemons run many threads with small ones.
#include <gtest/gtest.h>

#include <malloc.h>

#include <algorithm>
#include <cstdlib>

#include <velmara/MimePartVisitor.h>
#include <velmara/Rfc822Msg.h>

#include "support/Shape.h"
#include "support/SmallStack.h"

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define VELMARA_SANITIZED
extern "C" { // gcc does not install the header that declares them
int __sanitizer_install_malloc_and_free_hooks(void (*)(void const volatile*, size_t), void (*)(void const volatile*));
size_t __sanitizer_get_allocated_size(void const volatile*);
}
#endif

namespace {

size_t inUse = 0, peak = 0, allocations = 0;

constexpr size_t allocatorPart = sizeof(void*); // of each block, beside what can be used of it

void count(size_t size)
{
    inUse += size + allocatorPart;
    peak = std::max(peak, inUse);
    ++allocations;
}

void uncount(size_t size)
{
    inUse -= size + allocatorPart;
}

} // namespace

#ifdef VELMARA_SANITIZED

// A sanitizer has an allocator of its own, and tells who asks of each block.
[[maybe_unused]] int const s_told = __sanitizer_install_malloc_and_free_hooks(
    [](void const volatile*, size_t n) { count(n); },
    [](void const volatile* block) { uncount(__sanitizer_get_allocated_size(block)); });

#else

extern "C" {

void* __libc_malloc(size_t);
void* __libc_calloc(size_t, size_t);
void* __libc_realloc(void*, size_t);
void __libc_free(void*);
}

namespace {

void* counted(void* block)
{
    if (block) count(malloc_usable_size(block));
    return block;
}

void uncounted(void* block)
{
    if (block) uncount(malloc_usable_size(block));
}

} // namespace

extern "C" {

void* malloc(size_t n) noexcept
{
    return counted(__libc_malloc(n));
}

void* calloc(size_t n, size_t size) noexcept
{
    return counted(__libc_calloc(n, size));
}

void* realloc(void* block, size_t n) noexcept
{
    uncounted(block);
    return counted(__libc_realloc(block, n));
}

void free(void* block) noexcept
{
    uncounted(block);
    __libc_free(block);
}
}

#endif

namespace Velmara {
namespace {

std::string repeated(size_t n, std::string const& text)
{
    std::string all;
    all.reserve(n * text.size());
    while (n-- > 0) all += text;
    return all;
}

/// Bytes that one of many equal parts of a parsed message takes.
size_t perPart(std::string const& part)
{
    constexpr size_t parts = 1000;
    std::string const text =
        "Content-Type: multipart/mixed; boundary=b\n\n" + repeated(parts, "--b\n" + part) + "--b--\n";
    BufferMediaIn in(text.data(), text.size());
    size_t const before = inUse;
    Ref<Rfc822Msg> message = Rfc822Msg::parse(in);
    shape(*message->root());
    size_t const taken = inUse - before;
    EXPECT_EQ(parts + 2, dynamic_cast<MimeRfc822MPart*>(message->root())->parts().size());
    return taken / parts;
}

struct PartRow {
    char const* rule;
    std::string part;
    size_t most; // 600 for each part, 300 for each header, and its text
};

class PartMemory : public testing::TestWithParam<PartRow> {};

TEST_P(PartMemory, IsBounded)
{
    size_t const taken = perPart(GetParam().part);
    RecordProperty("bytes", static_cast<int>(taken));
    EXPECT_LE(taken, GetParam().most);
    EXPECT_GE(taken, 200u) << "the count misses something";
}

INSTANTIATE_TEST_SUITE_P(
    Rows, PartMemory,
    testing::Values(PartRow{"Leaf", "\ntext\n", 600}, PartRow{"LeafWithAHeader", "A: 1\n\ntext\n", 900},
                    PartRow{"Message", "Content-Type: message/rfc822\n\n\ntext\n", 2 * 600 + 300 + 26},
                    PartRow{"Multipart", "Content-Type: multipart/mixed; boundary=i\n\n--i\n\ntext\n--i--\n",
                            4 * 600 + 300 + 40}),
    [](auto const& row) { return std::string(row.param.rule); });

/// A message that is never in memory: a multipart of leaves with text in lines of 76 bytes.
class GeneratedIn : public MediaInImpl {
public:
    explicit GeneratedIn(unsigned long size) : m_size(size) {}
    bool atEnd() const override { return m_position >= m_size; }
    int peek() const override { return 0; }
    using MediaInImpl::read;
    int read(uchar_t*, uint_t) override { return 0; }
    unsigned long tell() const override { return m_position; }
    void readline(Buffer& line) override
    {
        line.length(0);
        if (atEnd()) return;
        unsigned long const number = m_lines++;
        if (number < 2)
            append(line, number == 0 ? "Content-Type: multipart/mixed; boundary=b\n" : "\n");
        else
            append(line, number % 100000 == 2 ? "--b\n" : number % 100000 == 3 ? "\n" : m_text);
    }

private:
    void append(Buffer& line, std::string const& text)
    {
        line.append(reinterpret_cast<uchar_t const*>(text.data()), static_cast<unsigned int>(text.size()));
        m_position += text.size();
    }

    unsigned long const m_size;
    unsigned long m_position = 0, m_lines = 0;
    std::string const m_text = std::string(76, 'x') + "\n";
};

class BodyReader : public MimePartVisitor {
public:
    void visitRfc822Msg(MimeRfc822Msg& part) override
    {
        Buffer block(8192, 0);
        MediaIn body = part.body(false);
        while (body.read(block, 4096) > 0) bytes += block.length();
    }
    unsigned long bytes = 0;
};

TEST(MessageMemory, DoesNotGrowWithTheMessage)
{
    constexpr unsigned long size = 64 << 20;
    MediaIn in(new GeneratedIn(size), false);
    size_t const before = peak = inUse;
    Ref<Rfc822Msg> message = Rfc822Msg::parse(in);
    BodyReader reader;
    message->root()->visit(&reader);
    RecordProperty("bytes", static_cast<int>(peak - before));
    EXPECT_GT(reader.bytes, size / 100 * 99);
    EXPECT_LE(peak - before, 64u * 1024);
}

/// How often memory is asked for while a message is visited and its bodies are read.
size_t allocationsFor(std::string const& text)
{
    BufferMediaIn in(text.data(), text.size());
    size_t const before = allocations;
    Ref<Rfc822Msg> message = Rfc822Msg::parse(in);
    BodyReader reader;
    message->root()->visit(&reader);
    return allocations - before;
}

TEST(Allocations, AreNotMadePerLineOfABody)
{
    EXPECT_EQ(allocationsFor("A: 1\n\n" + repeated(1000, "text\n")),
              allocationsFor("A: 1\n\n" + repeated(100000, "text\n")));
}

TEST(Allocations, AreNotMadePerSkippedLine)
{
    std::string const head = "Content-Type: multipart/mixed; boundary=b\n\n";
    EXPECT_EQ(allocationsFor(head + repeated(1000, "text\n--x\n")),
              allocationsFor(head + repeated(50000, "text\n--x\n")));
}

TEST(Allocations, GrowWithTheLogarithmOfAFoldedHeader)
{
    size_t const few = allocationsFor("A: 1\n" + repeated(1000, " text\n") + "\n");
    size_t const many = allocationsFor("A: 1\n" + repeated(1000 << 10, " text\n") + "\n");
    EXPECT_LE(many - few, 10u);
}

// Stack.

TEST(Stack, OfASmallThreadIsEnoughForTheDeepestTree)
{
    std::string mail;
    for (int i = 1000; i < 1051; ++i) {
        std::string const boundary = "level-" + std::to_string(i);
        mail += "Content-Type: multipart/mixed; boundary=" + boundary + "\n\n--" + boundary +
                "\nContent-Type: message/rfc822\n\n";
    }
    onSmallStack([&mail] {
        Mail message(mail + "\ntext\n");
        std::string const tree = shape(message.root());
        EXPECT_EQ(100, std::count(tree.begin(), tree.end(), ')'));
        MimePartVisitor visitor;
        EXPECT_TRUE(message.root().visit(&visitor));
        FileMediaOut out("/dev/null");
        message.root().write(out);
    });
}

TEST(Stack, OfASmallThreadIsEnoughForLongHeadersAndLines)
{
    std::string const mail = "A: " + std::string(4 << 20, 'x') +
                             "\nContent-Type: multipart/mixed; boundary=" + std::string(1 << 20, 'b') + "\n\n" +
                             std::string(4 << 20, '-');
    onSmallStack([&mail] { EXPECT_EQ("multipart(preamble)", shape(mail)); });
}

} // namespace
} // namespace Velmara
