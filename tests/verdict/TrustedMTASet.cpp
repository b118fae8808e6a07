#include <velmara/TrustedMTASet.h>

#include <gtest/gtest.h>

#include <type_traits>

namespace Velmara {
namespace {

IPAddress const inside("192.0.2.7");
IPAddress const outside("198.51.100.7");
IPAddressMask const network("192.0.2.0/24");

TEST(TrustedMTASet, NobodyIsTrustedWithEmptySets)
{
    TrustedMTASetRef set;
    for (IPAddress const& address : {inside, outside, IPAddress()}) {
        EXPECT_FALSE(set->isTrustedMTA(address));
        EXPECT_FALSE(set->isTrustedAntiSpamMTA(address));
        EXPECT_FALSE(set->isTrusted(address));
    }
    EXPECT_EQ(set->trustedMTAs.end(), set->mtafind(inside));
    EXPECT_EQ(set->trustedAntiSpamMTAs.end(), set->antispamMtaFind(inside));
}

TEST(TrustedMTASet, AnAntiSpamMtaIsTrustedButNoTrustedMta)
{
    TrustedMTASetRef set;
    set->trustedAntiSpamMTAs.insert(network);
    EXPECT_FALSE(set->isTrustedMTA(inside));
    EXPECT_TRUE(set->isTrustedAntiSpamMTA(inside));
    EXPECT_TRUE(set->isTrusted(inside));
    EXPECT_FALSE(set->isTrusted(outside));
}

TEST(TrustedMTASet, ATrustedMtaIsTrustedButNoAntiSpamMta)
{
    TrustedMTASetRef set;
    set->trustedMTAs.insert(network);
    EXPECT_TRUE(set->isTrustedMTA(inside));
    EXPECT_FALSE(set->isTrustedAntiSpamMTA(inside));
    EXPECT_TRUE(set->isTrusted(inside));
    EXPECT_FALSE(set->isTrusted(outside));
}

TEST(TrustedMTASet, TheFirstNetworkInTheOrderOfTheSetIsFound)
{
    TrustedMTASetRef set;
    for (char const* text : {"192.0.2.0/28", "192.0.0.0/16", "198.51.100.0/24", "10.0.0.0/8"}) {
        set->trustedMTAs.insert(IPAddressMask(text));
        set->trustedAntiSpamMTAs.insert(IPAddressMask(text));
    }
    EXPECT_EQ("192.0.0.0/16", set->mtafind(inside)->asString()) << "192.0.0.0 stands ahead of 192.0.2.0";
    EXPECT_EQ("192.0.0.0/16", set->antispamMtaFind(inside)->asString());
    EXPECT_EQ("198.51.100.0/24", set->mtafind(outside)->asString()) << "found behind networks that do not hold it";
}

TEST(TrustedMTASet, HandlesShareTheSets)
{
    TrustedMTASetRef set;
    TrustedMTASetRef const copy(set);
    set->trustedMTAs.insert(network);
    EXPECT_TRUE(copy->isTrusted(inside));
    TrustedMTASetRef other;
    EXPECT_FALSE(other->isTrusted(inside));
    other = set;
    EXPECT_TRUE(other->isTrusted(inside));
}

TEST(TrustedMTASet, CannotBeCopied)
{
    EXPECT_FALSE(std::is_copy_constructible<TrustedMTASet>::value);
    EXPECT_FALSE(std::is_copy_assignable<TrustedMTASet>::value);
}

TEST(TrustedMTASetRef, TheProcessHasOneUntilItIsRenewed)
{
    TrustedMTASetRef& first = TrustedMTASetRef::instance(false);
    EXPECT_FALSE(first.isNull());
    EXPECT_EQ(&first, &TrustedMTASetRef::instance(false));
    first->trustedMTAs.insert(network);
    EXPECT_TRUE(TrustedMTASetRef::instance(false)->isTrusted(inside));
}

TEST(TrustedMTASetRef, ARenewalStartsOverWithEmptySets)
{
    TrustedMTASetRef::instance(false)->trustedMTAs.insert(network);
    TrustedMTASetRef::instance(false)->trustedAntiSpamMTAs.insert(network);
    TrustedMTASetRef const renewed = TrustedMTASetRef::instance(true);
    EXPECT_TRUE(renewed->trustedMTAs.empty());
    EXPECT_TRUE(renewed->trustedAntiSpamMTAs.empty());
}

TEST(TrustedMTASetRef, EachRenewalGivesAnotherObjectAndLaterCallsTheLast)
{
    TrustedMTASet* const first = TrustedMTASetRef::instance(true).get();
    TrustedMTASet* const second = TrustedMTASetRef::instance(true).get();
    EXPECT_NE(first, second);
    EXPECT_EQ(second, TrustedMTASetRef::instance(false).get());
}

TEST(TrustedMTASetRef, ACopyKeepsTheOldSetsAlive)
{
    TrustedMTASetRef const old = TrustedMTASetRef::instance(true);
    old->trustedMTAs.insert(network);
    TrustedMTASetRef::instance(true);
    EXPECT_TRUE(old->isTrusted(inside));
    EXPECT_FALSE(TrustedMTASetRef::instance(false)->isTrusted(inside));
}

} // namespace
} // namespace Velmara
