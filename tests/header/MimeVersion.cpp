#include <velmara/MimeVersion.h>

#include <gtest/gtest.h>

#include <velmara/Exception.h>

namespace Velmara {
namespace {

TEST(MimeVersion, IsTheFirstThreeCharactersWhateverTheyAre)
{
    EXPECT_EQ("1.0", MimeVersion("1.0 (comment)").version());
    EXPECT_EQ(" 1.", MimeVersion(" 1.0").version());
    EXPECT_EQ("abc", MimeVersion("abcdef").version());
}

TEST(MimeVersion, IsShorterIfTheValueIs)
{
    EXPECT_EQ("1", MimeVersion("1").version());
    EXPECT_EQ("", MimeVersion(Header("mime-version", "")).version());
}

TEST(MimeVersion, SecondQuestionGivesTheSame)
{
    MimeVersion version("1.0");
    EXPECT_EQ("1.0", version.version());
    EXPECT_EQ("1.0", version.version());
}

TEST(MimeVersion, ImplementationsAreNeverEqualHandlesAreComparedByText)
{
    MimeVersionImpl impl;
    EXPECT_FALSE(impl == impl);
    EXPECT_TRUE(static_cast<Header const&>(MimeVersion("1.0")) == MimeVersion("1.0"));
}

TEST(MimeVersion, EmptyValueLeavesANullHandle)
{
    EXPECT_TRUE(MimeVersion("").isNull());
    EXPECT_EQ("MIME-Version", MimeVersion().type());
    EXPECT_THROW(MimeVersion().version(), HeaderException);
}

} // namespace
} // namespace Velmara
