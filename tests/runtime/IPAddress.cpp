#include <velmara/IPAddress.h>

#include <gtest/gtest.h>

#include <cstring>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <sys/un.h>

namespace Velmara {
namespace {

TEST(IPAddress, IsNullWithoutAText)
{
    EXPECT_TRUE(IPAddress().isNull());
    EXPECT_EQ("", IPAddress().asString(true));
    EXPECT_EQ("", IPAddress().asString(false));
}

struct Text {
    char const *text, *compressed, *full;
};

TEST(IPAddress, IsPrintedShortOrWithAllGroups)
{
    for (Text const& row : {
             Text{"192.0.2.1", "192.0.2.1", "192.0.2.1"},
             Text{"0.0.0.0", "0.0.0.0", "0.0.0.0"},
             Text{"255.255.255.255", "255.255.255.255", "255.255.255.255"},
             Text{"2001:DB8::1", "2001:db8::1", "2001:db8:0:0:0:0:0:1"},
             Text{"2001:0db8:0000:0000:0001:0000:0000:0001", "2001:db8::1:0:0:1", "2001:db8:0:0:1:0:0:1"},
             Text{"2001:db8:0:1:1:1:1:1", "2001:db8:0:1:1:1:1:1", "2001:db8:0:1:1:1:1:1"},
             Text{"::", "::", "0:0:0:0:0:0:0:0"},
             Text{"::1", "::1", "0:0:0:0:0:0:0:1"},
             Text{"::ffff:192.0.2.1", "::ffff:192.0.2.1", "0:0:0:0:0:ffff:c000:201"},
             Text{"fe80::", "fe80::", "fe80:0:0:0:0:0:0:0"},
         }) {
        IPAddress const address((std::string(row.text)));
        EXPECT_TRUE(IPAddress::isValidIPAddress(row.text)) << row.text;
        EXPECT_EQ(row.compressed, address.asString(true)) << row.text;
        EXPECT_EQ(row.full, address.asString(false)) << row.text;
    }
}

TEST(IPAddress, OtherTextIsNoAddress)
{
    for (std::string const& text :
         {std::string(), std::string("192.0.2"), std::string("192.0.2.256"), std::string("192.0.2.01"),
          std::string("192.0.2.1."), std::string(" 192.0.2.1"), std::string("192.0.2.1 "), std::string("0xc0.0.2.1"),
          std::string("3221225985"), std::string("[192.0.2.1]"), std::string("[::1]"), std::string("::1%lo"),
          std::string("1::2::3"), std::string("12345::"), std::string(":::"), std::string("IPv6:::1"),
          std::string("a.example"), std::string("192.0.2.1\0", 10), std::string("192.0.2.1\0.x", 12)}) {
        EXPECT_FALSE(IPAddress::isValidIPAddress(text)) << text;
        EXPECT_TRUE(IPAddress(text).isNull()) << text;
    }
}

TEST(IPAddress, AMappedAddressIsAnAddressOfItsOwn)
{
    EXPECT_NE(IPAddress("::ffff:192.0.2.1"), IPAddress("192.0.2.1"));
    EXPECT_EQ(IPAddress("::ffff:192.0.2.1"), IPAddress("::FFFF:c000:201"));
}

TEST(IPAddress, NullSortsFirstThenIPv4ThenIPv6)
{
    std::vector<IPAddress> const sorted{IPAddress(), IPAddress("9.0.0.0"), IPAddress("10.0.0.0"), IPAddress("::1"),
                                        IPAddress("2001:db8::")};
    for (size_t i = 0; i < sorted.size(); ++i)
        for (size_t k = 0; k < sorted.size(); ++k) EXPECT_EQ(i < k, sorted[i] < sorted[k]) << i << " " << k;
}

struct Network {
    char const *mask, *printed;
    std::vector<char const*> inside, outside;
};

TEST(IPAddressMask, HoldsTheAddressesThatShareItsLeadingBits)
{
    for (Network const& row : {
             Network{"192.0.2.0/24", "192.0.2.0/24", {"192.0.2.0", "192.0.2.255"}, {"192.0.3.0", "192.0.1.255"}},
             Network{"192.0.2.0/255.255.255.0", "192.0.2.0/24", {"192.0.2.9"}, {"192.0.3.9"}},
             Network{"192.0.2.77/24", "192.0.2.0/24", {"192.0.2.1"}, {"192.0.3.77"}},
             Network{"10.0.0.128/25", "10.0.0.128/25", {"10.0.0.128", "10.0.0.255"}, {"10.0.0.127"}},
             Network{"192.0.2.1", "192.0.2.1/32", {"192.0.2.1"}, {"192.0.2.0", "192.0.2.2"}},
             Network{"0.0.0.0/0", "0.0.0.0/0", {"1.2.3.4"}, {"::1", "::ffff:1.2.3.4"}},
             Network{"10.0.0.0/255.128.0.0", "10.0.0.0/9", {"10.127.0.1"}, {"10.128.0.1"}},
             Network{"2001:db8::/32", "2001:db8::/32", {"2001:db8:ffff::1"}, {"2001:db9::", "32.1.13.184"}},
             Network{"2001:db8::1", "2001:db8::1/128", {"2001:db8::1"}, {"2001:db8::2"}},
             Network{"2001:db8::/ffff:ffff::", "2001:db8::/32", {"2001:db8::5"}, {"2001:db9::5"}},
             Network{"::/0", "::/0", {"::1"}, {"1.2.3.4"}},
         }) {
        IPAddressMask const mask((std::string(row.mask)));
        EXPECT_EQ(row.printed, mask.asString());
        EXPECT_EQ(mask, IPAddressMask(mask.asString()));
        for (char const* text : row.inside) EXPECT_TRUE(mask.matches(IPAddress(text))) << row.mask << " " << text;
        for (char const* text : row.outside) EXPECT_FALSE(mask.matches(IPAddress(text))) << row.mask << " " << text;
    }
}

TEST(IPAddressMask, UnreadableTextGivesANullMask)
{
    for (char const* text :
         {"", "/", "/24", "192.0.2.0/", "192.0.2.0/33", "192.0.2.0/-1", "192.0.2.0/+1", "192.0.2.0/1a",
          "192.0.2.0/0024", "192.0.2.0/255.0.255.0", "192.0.2.0/255.255.255.1", "192.0.2.0/ffff::", "2001:db8::/129",
          "2001:db8::/255.0.0.0", "192.0.2/24", "a.example/8", "192.0.2.0/24/24"}) {
        IPAddressMask const mask((std::string(text)));
        EXPECT_TRUE(mask.isNull()) << text;
        EXPECT_EQ("", mask.asString());
        EXPECT_FALSE(mask.matches(IPAddress("192.0.2.1"))) << text;
    }
}

TEST(IPAddressMask, ANullMaskDoesNotEvenMatchANullAddress)
{
    EXPECT_FALSE(IPAddressMask().matches(IPAddress()));
    EXPECT_FALSE(IPAddressMask("0.0.0.0/0").matches(IPAddress()));
}

TEST(IPAddressMask, EqualMeansTheSameNetworkOfTheSameWidth)
{
    IPAddressMask const mask("10.0.0.0/8");
    EXPECT_TRUE(mask == IPAddressMask("10.1.2.3/255.0.0.0"));
    EXPECT_TRUE(mask != IPAddressMask("11.0.0.0/8"));
    EXPECT_TRUE(mask != IPAddressMask("10.0.0.0/9"));
}

TEST(IPAddressMask, SortsByAddressThenWiderNetworksFirst)
{
    std::vector<IPAddressMask> const sorted{IPAddressMask(), IPAddressMask("10.0.0.0/8"), IPAddressMask("10.0.0.0/24"),
                                            IPAddressMask("10.0.1.0/24"), IPAddressMask("::/0")};
    for (size_t i = 0; i < sorted.size(); ++i)
        for (size_t k = 0; k < sorted.size(); ++k) EXPECT_EQ(i < k, sorted[i] < sorted[k]) << i << " " << k;
}

sockaddr_in peer4(char const* address, unsigned short port)
{
    sockaddr_in peer = {};
    peer.sin_family = AF_INET;
    peer.sin_port = htons(port);
    inet_pton(AF_INET, address, &peer.sin_addr);
    return peer;
}

sockaddr_in6 peer6(char const* address, unsigned short port)
{
    sockaddr_in6 peer = {};
    peer.sin6_family = AF_INET6;
    peer.sin6_port = htons(port);
    inet_pton(AF_INET6, address, &peer.sin6_addr);
    return peer;
}

template <class Peer> SocketAddress socketAddress(Peer const& peer, bool foldMapped)
{
    return SocketAddress(reinterpret_cast<sockaddr const&>(peer), foldMapped);
}

TEST(SocketAddress, HasAddressAndPortOfEitherFamily)
{
    SocketAddress const four = socketAddress(peer4("198.51.100.7", 25), false);
    EXPECT_EQ("198.51.100.7", four.asINET().asString(true));
    EXPECT_EQ(25, four.port());
    SocketAddress const six = socketAddress(peer6("2001:db8::7", 65535), true);
    EXPECT_EQ("2001:db8::7", six.asINET().asString(true));
    EXPECT_EQ(65535, six.port());
}

TEST(SocketAddress, TheFlagFoldsAMappedAddress)
{
    EXPECT_EQ(IPAddress("192.0.2.1"), socketAddress(peer6("::ffff:192.0.2.1", 25), true).asINET());
    EXPECT_EQ(IPAddress("::ffff:192.0.2.1"), socketAddress(peer6("::ffff:192.0.2.1", 25), false).asINET());
    EXPECT_EQ(IPAddress("192.0.2.1"), socketAddress(peer4("192.0.2.1", 25), true).asINET());
}

TEST(SocketAddress, OfAnotherFamilyNothingIsTaken)
{
    sockaddr_un local = {};
    local.sun_family = AF_UNIX;
    EXPECT_TRUE(socketAddress(local, true).isNull());
    EXPECT_TRUE(SocketAddress().isNull());
    EXPECT_EQ(0, SocketAddress().port());
}

TEST(SocketAddress, ComparesAddressThenPort)
{
    SocketAddress const a = socketAddress(peer4("192.0.2.1", 25), false);
    SocketAddress const b = socketAddress(peer4("192.0.2.1", 26), false);
    SocketAddress const c = socketAddress(peer4("192.0.2.2", 1), false);
    EXPECT_TRUE(a == a && a != b && a != c);
    EXPECT_TRUE(a < b && b < c && !(b < a));
}

} // namespace
} // namespace Velmara
