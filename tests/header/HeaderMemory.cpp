// Mail with a hundred thousand headers or parameters exists, so what one of them costs beyond its text
// is part of the contract: 300 bytes a header, 250 a parameter, the allocator's own part included.
#include <gtest/gtest.h>

#include <malloc.h>

#include <cstdlib>
#include <new>

#include <velmara/ContentType.h>
#include <velmara/HeaderContainer.h>

namespace {

size_t inUse = 0;

constexpr size_t allocatorPart = sizeof(void*); // of each block, beside what can be used of it

void* counted(void* block)
{
    if (!block) throw std::bad_alloc();
    inUse += malloc_usable_size(block) + allocatorPart;
    return block;
}

void uncount(void* block)
{
    if (block) inUse -= malloc_usable_size(block) + allocatorPart;
    std::free(block);
}

} // namespace

void* operator new(size_t n)
{
    return counted(std::malloc(n));
}

void operator delete(void* block) noexcept
{
    uncount(block);
}

void operator delete(void* block, size_t) noexcept
{
    uncount(block);
}

namespace Velmara {
namespace {

constexpr size_t count = 1000;
// Longer than what a string holds within itself, so that each is a block of its own.
std::string const name = "X-Header-Of-Middling-Length";
std::string const value = "a value of a length that is common in the headers of mail";

std::string repeated(std::string const& text)
{
    std::string all;
    for (size_t i = 0; i < count; ++i) all += text;
    return all;
}

size_t perItem(size_t before)
{
    return (inUse - before) / count - name.size() - value.size();
}

TEST(HeaderMemory, AHeaderTakesAtMost300BytesBeyondItsText)
{
    std::string const block = repeated(name + ": " + value + "\n") + "\n";
    BufferMediaIn in(block.data(), block.size());
    size_t const before = inUse;
    HeaderContainer const headers(in);
    ASSERT_EQ(count, headers.headers().size());
    EXPECT_TRUE(headers.find("missing").isNull());
    RecordProperty("bytes", static_cast<int>(perItem(before)));
    EXPECT_LE(perItem(before), 300u);
    EXPECT_GE(perItem(before), 100u) << "the count misses something";
}

TEST(HeaderMemory, AParameterTakesAtMost250BytesBeyondItsText)
{
    ContentType const type("a/b; " + repeated(name + "=" + value + ";"));
    size_t const before = inUse;
    ASSERT_EQ(count, type.parameters().size());
    RecordProperty("bytes", static_cast<int>(perItem(before)));
    EXPECT_LE(perItem(before), 250u);
    EXPECT_GE(perItem(before), 100u) << "the count misses something";
}

TEST(HeaderMemory, NothingStaysBehind)
{
    size_t const before = inUse;
    {
        std::string const block = repeated(name + ": " + value + "\n") + "\n";
        BufferMediaIn in(block.data(), block.size());
        HeaderContainer const headers(in);
        headers.headers().front().asString();
        headers.headers().front().typeLowerCase();
    }
    EXPECT_EQ(before, inUse);
}

} // namespace
} // namespace Velmara
