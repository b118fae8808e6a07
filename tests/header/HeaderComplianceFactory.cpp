#include <velmara/HeaderComplianceFactory.h>

#include <gtest/gtest.h>

#include <velmara/HeaderValues.h>

#include "support/HeaderText.h"
#include "support/Rule.h"

namespace Velmara {
namespace {

EmailAddress const sender("writer@a.example", "A. Writer");

struct Flags {
    bool replace, mimeRequired;
};

HeaderComplianceFactory factoryWith(Flags flags)
{
    HeaderComplianceFactory factory(true);
    factory->replace(flags.replace);
    factory->mimeRequired(flags.mimeRequired);
    return factory;
}

std::string namesOf(std::list<Header> const& headers)
{
    std::string names;
    for (Header const& header : headers) names += (names.empty() ? "" : " ") + header.type();
    return names;
}

/// A container with those headers, each with the value "old".
HeaderContainer containerOf(std::vector<std::string> const& names)
{
    HeaderContainer headers;
    for (std::string const& name : names) headers.add(Header(name, "old"));
    return headers;
}

std::vector<std::string> const all = {"Return-Path", "Date", "MIME-Version", "Message-Id"};

struct Row {
    char const* rule;
    Flags flags;
    std::vector<std::string> present;
    std::string made;
};

class HeaderCompliance : public testing::TestWithParam<Row> {};

TEST_P(HeaderCompliance, Makes)
{
    Row const& row = GetParam();
    HeaderContainer const headers = containerOf(row.present);
    std::list<Header> out;
    factoryWith(row.flags)->process(headers, out, "host.a.example", sender);
    EXPECT_EQ(row.made, namesOf(out));
    EXPECT_EQ(row.present.size(), headers.headers().size()) << "the message is not changed";
    for (Header const& header : headers.headers()) EXPECT_EQ("old", header.value());
}

INSTANTIATE_TEST_SUITE_P(
    Rules, HeaderCompliance,
    testing::Values(Row{"NothingForACompleteMessage", {false, false}, all, ""},
                    Row{"NothingForACompleteMessageThatNeedsMime", {false, true}, all, ""},
                    Row{"AllInThisOrderForABareMessage", {false, true}, {}, "Message-Id Date MIME-Version Return-Path"},
                    Row{"NoMimeVersionWhereNoneIsRequired", {false, false}, {}, "Message-Id Date Return-Path"},
                    Row{"AMissingMessageId", {false, true}, {"Date", "MIME-Version", "Return-Path"}, "Message-Id"},
                    Row{"AMissingDate", {false, true}, {"Message-Id", "MIME-Version", "Return-Path"}, "Date"},
                    Row{"AMissingMimeVersion", {false, true}, {"Message-Id", "Date", "Return-Path"}, "MIME-Version"},
                    Row{"AMissingReturnPath", {false, true}, {"Message-Id", "Date", "MIME-Version"}, "Return-Path"},
                    Row{"MessageIdAndDateAnewWithReplace", {true, false}, all, "Message-Id Date"},
                    Row{"NoSecondMimeVersionOrReturnPathWithReplace", {true, true}, all, "Message-Id Date"},
                    Row{"NamesHaveNoCase", {false, true}, {"MESSAGE-ID", "date", "Mime-version", "return-path"}, ""}),
    ruleName);

TEST(HeaderCompliance, ReplaceIsSetAndMimeIsNotRequiredAtFirst)
{
    HeaderComplianceFactory const factory(false);
    EXPECT_TRUE(factory->replace());
    EXPECT_FALSE(factory->mimeRequired());
    std::list<Header> out;
    factory->process(containerOf({"Date", "Return-Path"}), out, "host", sender);
    EXPECT_EQ("Message-Id Date", namesOf(out));
}

TEST(HeaderCompliance, AppendsBehindWhatIsThere)
{
    std::list<Header> out{Header("X", "first")};
    factoryWith({false, false})->process(containerOf({"Message-Id", "Date"}), out, "host", sender);
    EXPECT_EQ("X[first] Return-Path[writer@a.example]", shown(out));
}

TEST(HeaderCompliance, TheReturnPathOfANullSenderIsEmptyBrackets)
{
    std::list<Header> out;
    factoryWith({false, false})->process(containerOf({"Message-Id", "Date"}), out, "host", EmailAddress());
    EXPECT_EQ("Return-Path[<>]", shown(out));
}

TEST(HeaderCompliance, TheMimeVersionIsOne)
{
    std::list<Header> out;
    factoryWith({false, true})->process(containerOf({"Message-Id", "Date", "Return-Path"}), out, "host", sender);
    EXPECT_EQ("MIME-Version[1.0]", shown(out));
}

TEST(HeaderCompliance, DateAndMessageIdTellTheSameSecond)
{
    std::list<Header> out;
    time_t const before = ::time(nullptr);
    factoryWith({true, false})->process(containerOf(all), out, "host.a.example", sender);
    time_t const after = ::time(nullptr);
    std::string const id = out.front().value(), date = out.back().value();
    bool found = false;
    for (time_t at = before; at <= after && !found; ++at) {
        tm local{};
        ::localtime_r(&at, &local);
        std::string const stamp = LW::createHeaderMessageIdValue("x", &local).substr(0, 16); // "<", 14 digits, "."
        found = date == LW::createHeaderDateValue(&local) && id.substr(0, 16) == stamp;
    }
    EXPECT_TRUE(found) << id << ' ' << date;
    EXPECT_EQ("@host.a.example>", id.substr(id.size() - 16));
}

TEST(HeaderCompliance, HeadersAreMadeForAGivenTime)
{
    tm time{};
    time.tm_year = 124;
    time.tm_mday = 1;
    HeaderComplianceFactory const factory(true);
    EXPECT_EQ("Date: Mon, 1 Jan 2024 00:00:00 +0000", factory->createDate(&time).asString());
    Header const id = factory->createMessageId("host.a.example", &time);
    EXPECT_EQ("Message-Id", id.type());
    EXPECT_EQ("<20240101000000.", id.value().substr(0, 16));
}

TEST(HeaderCompliance, CopiesShareTheFlags)
{
    HeaderComplianceFactory const factory(true);
    HeaderComplianceFactory const copy = factory; // NOLINT(performance-unnecessary-copy-initialization)
    copy->mimeRequired(true);
    copy->replace(false);
    EXPECT_TRUE(factory->mimeRequired());
    EXPECT_FALSE(factory->replace());
}

TEST(HeaderCompliance, CanBeAskedWhetherThereIsAnObject)
{
    EXPECT_TRUE(HeaderComplianceFactory().isNull());
    EXPECT_FALSE(HeaderComplianceFactory(false).isNull());
}

TEST(HeaderCompliance, WithoutAFlagThereIsNoObject)
{
    EXPECT_EQ(nullptr, HeaderComplianceFactory().get());
    EXPECT_NE(nullptr, HeaderComplianceFactory(false).get());
    EXPECT_NE(nullptr, HeaderComplianceFactory(true).get());
}

TEST(EmailAddressAsRfc2047String, OfOneAddress)
{
    EXPECT_EQ("", emailAddressAsRfc2047String(EmailAddress()));
    EXPECT_EQ("", emailAddressAsRfc2047String(EmailAddress("", "Ann")));
    EXPECT_EQ("a@b.example", emailAddressAsRfc2047String(EmailAddress("a@b.example")));
    EXPECT_EQ("Ann <a@b.example>", emailAddressAsRfc2047String(EmailAddress("a@b.example", "Ann")));
    EXPECT_EQ("=?UTF-8?B?UmVuw6k=?= <a@b.example>",
              emailAddressAsRfc2047String(EmailAddress("a@b.example", "Ren\xC3\xA9")));
}

TEST(EmailAddressAsRfc2047String, OfAList)
{
    EXPECT_EQ(
        "a@b.example, Ann <c@d.example>, =?UTF-8?B?UmVuw6k=?= <e@f.example>",
        emailAddressAsRfc2047String(std::string("<a@b.example> , \"Ann\" <c@d.example>,Ren\xC3\xA9 <e@f.example>")));
}

TEST(EmailAddressAsRfc2047String, OfAnUnreadableListIsEmpty)
{
    for (char const* list : {"", " ", ",,", "()"}) EXPECT_EQ("", emailAddressAsRfc2047String(std::string(list)));
}

} // namespace
} // namespace Velmara
