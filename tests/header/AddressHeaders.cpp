#include <velmara/HeaderWithEmailAddress.h>

#include <gtest/gtest.h>

#include <velmara/Exception.h>
#include <velmara/HeaderContainer.h>
#include <velmara/ListId.h>
#include <velmara/References.h>
#include <velmara/Rfc2369ListHeader.h>

namespace Velmara {
namespace {

using Texts = std::vector<std::string>;

Texts textsOf(std::list<EmailAddress> const& addresses)
{
    Texts texts;
    for (EmailAddress const& address : addresses) texts.push_back(address.asString());
    return texts;
}

Texts textsOf(std::list<Uri> const& uris)
{
    Texts texts;
    for (Uri const& uri : uris) texts.push_back(uri.asString());
    return texts;
}

TEST(HeaderWithEmailAddress, HasTheFirstAddressOfItsValue)
{
    EXPECT_EQ("Jane <j@a.example>", HeaderFrom("Jane <j@a.example>").address().asString());
    EXPECT_EQ("j@a.example", HeaderReplyTo("j@a.example, k@b.example").address().asString());
    EXPECT_TRUE(HeaderReturnPath("<>").address().isNull());
}

TEST(HeaderWithEmailAddress, AMessageIdIsReadAsAnAddress)
{
    HeaderMessageId const id("<20240101.1@a.example>");
    EXPECT_EQ("20240101.1@a.example", id.address().address());
    EXPECT_EQ("a.example", id.address().domain());
}

TEST(HeaderWithEmailAddress, IsReadOnce)
{
    HeaderFrom const from("j@a.example");
    EmailAddress const* const address = &from.address();
    EXPECT_EQ(address, &HeaderFrom(from).address());
}

TEST(HeaderWithEmailAddressList, HasAllAddressesOfItsValue)
{
    EXPECT_EQ((Texts{"j@a.example", "K <k@b.example>"}),
              textsOf(HeaderTo("j@a.example, g: K <k@b.example>;").addresses()));
    EXPECT_EQ(Texts(), textsOf(HeaderCc("undisclosed-recipients:;").addresses()));
    HeaderCc const cc("j@a.example");
    cc.addresses();
    EXPECT_EQ(1u, cc.addresses().size());
}

// Which of the two a caller takes decides how "References" is cut.
TEST(References, IsCutAtWhiteSpaceItsListFormAtCommas)
{
    std::string const value = "<1@a.example>\r\n <2@b.example> <3@c.example>";
    EXPECT_EQ((Texts{"1@a.example", "2@b.example", "3@c.example"}), textsOf(References(value).addresses()));
    EXPECT_EQ(Texts{"a@a.example"}, textsOf(HeaderReferences("a@a.example,").addresses()));
    EXPECT_EQ((Texts{"1@a.example", "2@b.example"}), textsOf(HeaderReferences("1@a.example,2@b.example").addresses()));
    EXPECT_EQ(Texts{"1@a.example"}, textsOf(References("1@a.example,2@b.example").addresses()));
}

TEST(References, IsReadOnce)
{
    References const references("<1@a.example>");
    references.addresses();
    EXPECT_EQ(1u, references.addresses().size());
    EXPECT_EQ(Texts(), textsOf(References(Header("references", "")).addresses()));
}

struct Row {
    char const *rule, *value, *domain;
};

TEST(ListId, IsTheNameInItsFirstBrackets)
{
    for (Row const& row : {
             Row{"Plain", "Name <list.example.org>", "list.example.org"},
             Row{"OnlyBrackets", "<list.example.org>", "list.example.org"},
             Row{"BlanksInside", "Name < list.example.org\t>", "list.example.org"},
             Row{"CaseIsKept", "<List.Example.Org>", "List.Example.Org"},
             Row{"FirstOfTwo", "<a.example> <b.example>", "a.example"},
             Row{"TextBehind", "<a.example> (x)", "a.example"},
             Row{"NoBrackets", "list.example.org", ""},
             Row{"Unclosed", "<list.example.org", ""},
             Row{"ClosedAheadOnly", "> <list.example.org", ""},
             Row{"ClosedAheadToo", "> <list.example.org>", "list.example.org"},
             Row{"Empty", "<> <a.example>", ""},
             Row{"BlankOnly", "< >", ""},
             Row{"NoHostName", "<a list>", ""},
             Row{"Quoted", "\"a <b.example>\" <c.example>", "b.example"},
         }) {
        HostName const domain = ListId(row.value).domain();
        EXPECT_EQ(row.domain, domain.asString()) << row.rule;
        EXPECT_EQ(*row.domain == '\0', domain.isNull()) << row.rule;
    }
}

struct ListRow {
    char const *rule, *value;
    Texts uris;
};

TEST(Rfc2369ListHeader, HasTheUrisInItsBrackets)
{
    for (ListRow const& row : {
             ListRow{"Some", "<http://a.example/>, <mailto:b@c.example>", {"http://a.example/", "mailto:b@c.example"}},
             ListRow{"Comments",
                     "(x) <mailto:b@c.example?subject=help> (y), <ftp://d.example/e>",
                     {"mailto:b@c.example?subject=help", "ftp://d.example/e"}},
             ListRow{"BlanksInside", "<\r\n http://a.example/ >", {"http://a.example/"}},
             ListRow{"OutsideOfBrackets", "http://a.example/", {}},
             ListRow{"Nothing", "<>", {}},
             ListRow{"NoUri", "NO <x>", {}},
             ListRow{"ClosingRightBehindTheOpening", "<>http://a.example/>", {"http://a.example/"}},
             ListRow{"ClosingRightBehindTheOpeningAlone", "<> <http://a.example/>", {"http://a.example/"}},
             ListRow{"Unclosed", "<http://a.example/>, <http://b.example/", {"http://a.example/"}},
             ListRow{"TwoInOne", "<http://a.example/ http://b.example/>", {"http://a.example/", "http://b.example/"}},
             ListRow{"BareNameIsNoUri", "<a.example/x>", {}},
             ListRow{"WwwIsOne", "<www.a.example/x>", {"http://www.a.example/x"}},
             ListRow{
                 "SameTwice", "<http://a.example/>, <http://a.example/>", {"http://a.example/", "http://a.example/"}},
         })
        EXPECT_EQ(row.uris, textsOf(HeaderListHelp(row.value).uris())) << row.rule;
}

TEST(Rfc2369ListHeader, EachQuestionAppendsTheUrisAgain)
{
    HeaderListHelp const help("<http://a.example/>, <mailto:b@c.example>");
    EXPECT_EQ(2u, help.uris().size());
    EXPECT_EQ(4u, help.uris().size());
    EXPECT_EQ(6u, HeaderListHelp(help).uris().size());
    EXPECT_EQ("mailto:b@c.example", help.uris().back().asString());
}

TEST(Rfc2369ListHeader, MegabytesOfBracketsCostLittle)
{
    for (std::string const piece : {"<", "<>", ">", "< >", "<x", "<http://"}) {
        std::string value;
        while (value.size() < 2000000) value += piece;
        EXPECT_LE(HeaderListPost(value).uris().size(), 1u) << piece;
    }
}

struct Reply {
    char const* rule;
    std::vector<std::pair<char const*, char const*>> headers;
    bool matches;
};

HeaderContainer containerOf(std::vector<std::pair<char const*, char const*>> const& headers)
{
    HeaderContainer container;
    for (auto const& [name, value] : headers) container.add(Header(name, value));
    return container;
}

class InReplyTo : public testing::TestWithParam<Reply> {};

TEST_P(InReplyTo, TellsAReplyByItsDomain)
{
    EXPECT_EQ(GetParam().matches, inReplyToDomainMatch(containerOf(GetParam().headers)));
}

INSTANTIATE_TEST_SUITE_P(
    Rules, InReplyTo,
    testing::Values(
        Reply{"DomainOfTo", {{"In-Reply-To", "<1@a.example>"}, {"To", "x@a.example"}}, true},
        Reply{"DomainOfCc",
              {{"In-Reply-To", "<1@a.example>"}, {"To", "x@b.example"}, {"Cc", "y@c.example, z@a.example"}},
              true},
        Reply{"CaseCounts", {{"In-Reply-To", "<1@a.example>"}, {"To", "x@A.EXAMPLE"}}, false},
        Reply{"AnotherDomain", {{"In-Reply-To", "<1@a.example>"}, {"To", "x@b.example"}}, false},
        Reply{"SubdomainIsAnother", {{"In-Reply-To", "<1@mx.a.example>"}, {"To", "x@a.example"}}, false},
        Reply{"DomainInReferences", {{"References", "<1@b.example> <2@a.example>"}, {"To", "x@a.example"}}, true},
        Reply{"ReferencesBesideAnotherReply",
              {{"In-Reply-To", "<1@b.example>"}, {"References", "<1@a.example>"}, {"To", "x@a.example"}},
              true},
        Reply{"ReferencesWithAnEmptyReply",
              {{"In-Reply-To", "<>"}, {"References", "<1@a.example>"}, {"To", "x@a.example"}},
              true},
        Reply{"NoReply", {{"To", "x@a.example"}}, false},
        Reply{"NoRecipients", {{"In-Reply-To", "<1@a.example>"}}, false},
        Reply{"SenderDoesNotCount",
              {{"In-Reply-To", "<1@a.example>"}, {"From", "x@a.example"}, {"To", "y@b.example"}},
              false},
        Reply{"EmptyDomainIsOneLikeOthers", {{"In-Reply-To", "<1>"}, {"To", "root"}}, true},
        Reply{"EmptyDomainInReferences", {{"References", "<1@a.example> <1>"}, {"Cc", "root"}}, true},
        Reply{"EmptyDomainIsNotAnyDomain", {{"In-Reply-To", "<1>"}, {"To", "x@a.example"}}, false},
        Reply{"NullAddressHasNoDomain", {{"In-Reply-To", "<>"}, {"References", "<>"}, {"To", "root"}}, false},
        Reply{"NoHeaders", {}, false}),
    [](auto const& row) { return std::string(row.param.rule); });

TEST(InReplyTo, TellsAReplyByTheDomainOfAGivenAddress)
{
    HeaderContainer const headers =
        containerOf({{"In-Reply-To", "<1@a.example>"}, {"References", "<2@c.example>"}, {"To", "x@b.example"}});
    EXPECT_TRUE(inReplyToDomainMatch(headers, EmailAddress("y@a.example")));
    EXPECT_TRUE(inReplyToDomainMatch(headers, EmailAddress("y@c.example")));
    EXPECT_FALSE(inReplyToDomainMatch(headers, EmailAddress("y@b.example")));
    EXPECT_FALSE(inReplyToDomainMatch(headers, EmailAddress("y@A.example")));
    EXPECT_FALSE(inReplyToDomainMatch(headers, EmailAddress()));
    EXPECT_FALSE(inReplyToDomainMatch(containerOf({{"In-Reply-To", "<>"}}), EmailAddress()));
    EXPECT_TRUE(inReplyToDomainMatch(containerOf({{"In-Reply-To", "<1>"}}), EmailAddress("root")));
    EXPECT_FALSE(inReplyToDomainMatch(containerOf({}), EmailAddress("y@a.example")));
}

TEST(InReplyTo, AnExceptionCountsAsFalse)
{
    HeaderContainer const null(nullptr, false);
    EXPECT_FALSE(inReplyToDomainMatch(null));
    EXPECT_FALSE(inReplyToDomainMatch(null, EmailAddress("y@a.example")));
}

TEST(AddressHeaders, TheirBaseReadsAHeaderOfAnyName)
{
    HeaderWithEmailAddressBase sender(HeaderFrom("j@a.example"));
    EXPECT_EQ("j@a.example", sender.address().address());
    sender = Header("Sender", "k@b.example");
    EXPECT_EQ("Sender: k@b.example", sender.asString());
    EXPECT_EQ("k@b.example", sender.address().address());
    EXPECT_EQ("k@b.example", HeaderWithEmailAddressBase(Header("Sender", "k@b.example")).address().address());
    EXPECT_EQ("j@a.example", HeaderWithEmailAddressBase("j@a.example").address().address());

    HeaderWithEmailAddressListBase recipients(Header("Bcc", "j@a.example, k@b.example"));
    EXPECT_EQ((Texts{"j@a.example", "k@b.example"}), textsOf(recipients.addresses()));
    EXPECT_EQ(Texts{"j@a.example"}, textsOf(HeaderWithEmailAddressListBase("j@a.example").addresses()));
    recipients = Header();
    EXPECT_TRUE(recipients.isNull());

    Rfc2369ListHeaderBase list(HeaderListHelp("<http://a.example/>"));
    list = Header("List-Other", "<http://b.example/>");
    EXPECT_EQ(Texts{"http://b.example/"}, textsOf(list.uris()));
    EXPECT_EQ(Texts{"http://b.example/"}, textsOf(Rfc2369ListHeaderBase("<http://b.example/>").uris()));
}

TEST(AddressHeaders, TheirBaseTakesNameAndValueOfWhatIsAssigned)
{
    HeaderWithEmailAddressBase sender("j@a.example");
    sender.assign(Header("Sender", "k@b.example"));
    EXPECT_EQ("Sender: k@b.example", sender.asString());
    EXPECT_EQ("k@b.example", sender.address().address());
}

TEST(AddressHeaders, TheirBaseIsNullAtFirst)
{
    EXPECT_THROW(HeaderWithEmailAddressBase().address(), HeaderException);
    EXPECT_THROW(HeaderWithEmailAddressBase("").address(), HeaderException);
    EXPECT_THROW(Rfc2369ListHeaderBase("").uris(), HeaderException);
    EXPECT_THROW(HeaderWithEmailAddressListBase("").addresses(), HeaderException);
    EXPECT_THROW(Rfc2369ListHeaderBase(Header()).uris(), HeaderException);
}

template <class Call> std::string fileOf(Call call)
{
    try {
        call();
    } catch (HeaderException const& e) {
        EXPECT_EQ(1, e.code());
        return e.fileName();
    }
    return "no exception";
}

// Log processors tell by it what kind of header was asked.
TEST(AddressHeaders, NullHandlesOfTheTemplatesReportAnotherUnit)
{
    EXPECT_EQ("HeaderTemplate", fileOf([] { HeaderFrom().address(); }));
    EXPECT_EQ("HeaderTemplate", fileOf([] { HeaderTo().addresses(); }));
    EXPECT_EQ("HeaderTemplate", fileOf([] { HeaderListHelp().uris(); }));
    EXPECT_EQ("HeaderImpl", fileOf([] { References().addresses(); }));
    EXPECT_EQ("HeaderImpl", fileOf([] { ListId().domain(); }));
}

} // namespace
} // namespace Velmara
