// The library's readers against the plain ones, on the same few thousand texts each time; the fuzz
// targets do it on many more.
#include "tests/header/PlainHeaders.h"

#include <gtest/gtest.h>

#include <random>

#include "tests/header/HeaderChecks.h"
#include "tests/header/HeaderFragments.h"

namespace Velmara {
namespace {

std::string next(std::mt19937& random)
{
    unsigned char bytes[24];
    size_t const length = random() % sizeof bytes;
    for (size_t i = 0; i < length; ++i) bytes[i] = static_cast<unsigned char>(random());
    return headerText(bytes, length);
}

template <class Check> void expectNoneFails(Check failed)
{
    std::mt19937 random(1);
    for (int i = 0; i < 10000; ++i) {
        std::string const text = next(random);
        ASSERT_STREQ(nullptr, failed(text)) << testing::PrintToString(text);
    }
}

TEST(PlainHeaders, BlocksAreReadAlike)
{
    expectNoneFails(HeaderChecks::failedOfBlock);
}

TEST(PlainHeaders, TypesAreReadAlike)
{
    expectNoneFails(HeaderChecks::failedOfType);
}

TEST(PlainHeaders, OtherTypedHeadersAreReadAlike)
{
    expectNoneFails(HeaderChecks::failedOfOthers);
}

} // namespace
} // namespace Velmara
