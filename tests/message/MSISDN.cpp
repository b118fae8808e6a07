#include <velmara/MSISDN.h>

#include <gtest/gtest.h>

#include <set>
#include <sstream>

namespace Velmara {
namespace {

TEST(MSISDN, IsNullWithoutText)
{
    EXPECT_TRUE(MSISDN().isNull());
    EXPECT_TRUE(MSISDN("").isNull());
    EXPECT_TRUE(MSISDN(std::string()).isNull());
    EXPECT_TRUE(MSISDN(static_cast<char const*>(nullptr)).isNull());
    EXPECT_EQ("", MSISDN().asString());
}

TEST(MSISDN, KeepsItsTextUnchecked)
{
    EXPECT_EQ("491701234567", MSISDN("491701234567").asString());
    EXPECT_EQ(" no number ", MSISDN(std::string(" no number ")).asString());
    EXPECT_FALSE(MSISDN(" ").isNull());
}

TEST(MSISDN, EqualsToTheByte)
{
    EXPECT_TRUE(MSISDN("12") == MSISDN("12"));
    EXPECT_FALSE(MSISDN("12") == MSISDN("123"));
    EXPECT_FALSE(MSISDN("a") == MSISDN("A"));
    EXPECT_TRUE(MSISDN() == MSISDN(""));
    EXPECT_FALSE(MSISDN(std::string("1\0", 2)) == MSISDN("1"));
}

TEST(MSISDN, IsOrderedByBytesAndTheShorterStandsFirst)
{
    EXPECT_TRUE(MSISDN("1") < MSISDN("12"));
    EXPECT_FALSE(MSISDN("12") < MSISDN("1"));
    EXPECT_TRUE(MSISDN("12") < MSISDN("2"));
    EXPECT_FALSE(MSISDN("1") < MSISDN("1"));
    EXPECT_TRUE(MSISDN("1") < MSISDN("\xFF")) << "bytes have no sign";
    EXPECT_TRUE(MSISDN() < MSISDN("1"));
}

TEST(MSISDN, CanBeAKey)
{
    std::set<MSISDN> const numbers{MSISDN("2"), MSISDN("12"), MSISDN("1"), MSISDN("12")};
    std::ostringstream out;
    for (MSISDN const& number : numbers) out << number << ' ';
    EXPECT_EQ("1 12 2 ", out.str());
}

} // namespace
} // namespace Velmara
