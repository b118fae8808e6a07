#include <velmara/SmtpClient.h>

#include <gtest/gtest.h>

#include <arpa/inet.h>
#include <netinet/in.h>

namespace Velmara {
namespace {

/// A socket address that converts to what system calls take.
struct Socket {
    explicit Socket(char const* text)
    {
        v6.sin6_family = AF_INET6;
        if (inet_pton(AF_INET6, text, &v6.sin6_addr) == 1) return;
        v4.sin_family = AF_INET;
        inet_pton(AF_INET, text, &v4.sin_addr);
    }
    sockaddr const& get() const
    {
        return v4.sin_family == AF_INET ? reinterpret_cast<sockaddr const&>(v4) : reinterpret_cast<sockaddr const&>(v6);
    }
    sockaddr_in v4{};
    sockaddr_in6 v6{};
};

TEST(SmtpClient, HoldsWhatItWasGiven)
{
    SmtpClient const client("mail.example", Socket("198.51.100.7").get(), false);
    EXPECT_FALSE(client.isNull());
    EXPECT_EQ("mail.example", client.hostname().asString());
    EXPECT_EQ("198.51.100.7", client.ipAddress().asString(true));
    EXPECT_EQ("198.51.100.7", client.address().asINET().asString(true));
    EXPECT_EQ("", client.envelopeFrom());
    EXPECT_EQ("", client.authenticationType());
    EXPECT_EQ("", client.authenticationCredentials());
}

TEST(SmtpClient, AnAddressLiteralIsReplacedByTheSocketsOwnAddress)
{
    SmtpClient const client("[192.0.2.1]", Socket("198.51.100.7").get(), false);
    EXPECT_EQ("198.51.100.7", client.hostname().asString());
    SmtpClient const six("[junk", Socket("2001:db8::1").get(), false);
    EXPECT_EQ("2001:db8::1", six.hostname().asString());
}

TEST(SmtpClient, AnyOtherNameIsTakenAsItIs)
{
    EXPECT_EQ("no host_name!", SmtpClient("no host_name!", Socket("192.0.2.1").get(), false).hostname().asString());
}

TEST(SmtpClient, WithoutANameTheHostIsNull)
{
    SmtpClient const client("", Socket("192.0.2.1").get(), false);
    EXPECT_TRUE(client.hostname().isNull());
    EXPECT_EQ("192.0.2.1", client.ipAddress().asString(true));
}

TEST(SmtpClient, TheFlagFoldsAMappedAddress)
{
    EXPECT_EQ("192.0.2.9", SmtpClient("a", Socket("::ffff:192.0.2.9").get(), true).ipAddress().asString(true));
    EXPECT_NE("192.0.2.9", SmtpClient("a", Socket("::ffff:192.0.2.9").get(), false).ipAddress().asString(true));
}

TEST(SmtpClient, CopiesShareTheRecord)
{
    SmtpClient client("a", Socket("192.0.2.1").get(), false);
    SmtpClient copy(client), assigned;
    assigned = copy;
    copy.envelopeFrom("ann@reader.example");
    assigned.authenticationType("PLAIN");
    client.authenticationCredentials("secret");
    EXPECT_EQ("ann@reader.example", client.envelopeFrom());
    EXPECT_EQ("PLAIN", copy.authenticationType());
    EXPECT_EQ("secret", assigned.authenticationCredentials());
}

TEST(SmtpClient, ACopyOfANullHandleIsNull)
{
    SmtpClient const none;
    SmtpClient const copy(none);
    EXPECT_TRUE(copy.isNull());
    SmtpClient client("a", Socket("192.0.2.1").get(), false);
    client = none;
    EXPECT_TRUE(client.isNull());
}

template <class Call> void _expectNamed(char const* operation, Call call)
{
    try {
        call();
        FAIL() << operation << ": no exception";
    } catch (Exception const& e) {
        EXPECT_EQ(operation, e.message());
        EXPECT_EQ(1, e.code());
        EXPECT_EQ("", e.fileName());
        EXPECT_EQ(0u, e.lineNumber());
    }
}

TEST(SmtpClient, EveryOperationOnANullHandleThrowsItsName)
{
    SmtpClient client;
    _expectNamed("hostname", [&] { client.hostname(); });
    _expectNamed("address", [&] { client.address(); });
    _expectNamed("ipAddress", [&] { client.ipAddress(); });
    _expectNamed("envelopeFrom", [&] { client.envelopeFrom(); });
    _expectNamed("envelopeFrom", [&] { client.envelopeFrom("x"); });
    _expectNamed("authenticationType", [&] { client.authenticationType(); });
    _expectNamed("authenticationType", [&] { client.authenticationType("x"); });
    _expectNamed("authenticationCredentials", [&] { client.authenticationCredentials(); });
    _expectNamed("authenticationCredentials", [&] { client.authenticationCredentials("x"); });
}

} // namespace
} // namespace Velmara
