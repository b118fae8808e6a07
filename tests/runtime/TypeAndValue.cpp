#include <velmara/TypeAndValue.h>

#include <gtest/gtest.h>

namespace Velmara {
namespace {

TEST(TypeAndValue, IsNullByDefaultAndThenRefusesAccess)
{
    TypeAndValue const none;
    EXPECT_TRUE(none.isNull());
    EXPECT_THROW(none.type(), Exception);
    EXPECT_THROW(none.value(), Exception);
}

TEST(TypeAndValue, HoldsTwoStrings)
{
    TypeAndValue const pair("name", "");
    EXPECT_FALSE(pair.isNull());
    EXPECT_EQ("name", pair.type());
    EXPECT_EQ("", pair.value());
}

TEST(TypeAndValue, ComparesBothStringsToTheByte)
{
    EXPECT_TRUE(TypeAndValue("a", "b") == TypeAndValue("a", "b"));
    EXPECT_FALSE(TypeAndValue("a", "b") == TypeAndValue("A", "b"));
    EXPECT_FALSE(TypeAndValue("a", "b") == TypeAndValue("a", "c"));
    EXPECT_FALSE(TypeAndValue("a", "b") == TypeAndValue());
    EXPECT_FALSE(TypeAndValue() == TypeAndValue("a", "b"));
    EXPECT_TRUE(TypeAndValue() == TypeAndValue());
}

TEST(TypeAndValue, CopiesShareThePair)
{
    auto* impl = new TypeAndValueImpl("a", "b");
    TypeAndValue const one(impl, false);
    TypeAndValue const two(one);
    impl->value("changed");
    impl->type("other");
    EXPECT_EQ("changed", two.value());
    EXPECT_EQ("other", two.type());
}

TEST(TypeAndValueImpl, NullPointersCountAsEmpty)
{
    TypeAndValueImpl const impl(nullptr, nullptr);
    EXPECT_EQ("", impl.type());
    EXPECT_EQ("", impl.value());
}

} // namespace
} // namespace Velmara
