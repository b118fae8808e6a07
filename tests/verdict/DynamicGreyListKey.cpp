#include <velmara/DynamicGreyListKey.h>

#include <gtest/gtest.h>

namespace Velmara {
namespace {

IPAddressMask const network("192.0.2.0/24");
EmailAddress const sender("writer@a.example");

TEST(DynamicGreyListKey, IsEmptyByDefault)
{
    DynamicGreyListKey const key;
    EXPECT_TRUE(key.network.isNull());
    EXPECT_EQ("", key.domain);
    EXPECT_TRUE(key.empty());
}

TEST(DynamicGreyListKey, HasTheNetworkAndTheDomainOfTheSender)
{
    DynamicGreyListKey const key(network, sender);
    EXPECT_EQ(network, key.network);
    EXPECT_EQ("a.example", key.domain);
    EXPECT_FALSE(key.empty());
}

TEST(DynamicGreyListKey, IsEmptyWithoutASenderEvenWithANetwork)
{
    DynamicGreyListKey const key(network, EmailAddress());
    EXPECT_EQ(network, key.network);
    EXPECT_EQ("", key.domain);
    EXPECT_TRUE(key.empty());
}

TEST(DynamicGreyListKey, IsEmptyForASenderWithoutADomain)
{
    EXPECT_TRUE(DynamicGreyListKey(network, EmailAddress("postmaster")).empty());
}

TEST(DynamicGreyListKey, IsEmptyWithoutANetworkEvenWithASender)
{
    EXPECT_TRUE(DynamicGreyListKey(IPAddressMask(), sender).empty());
}

} // namespace
} // namespace Velmara
