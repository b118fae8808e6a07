#include <velmara/StringConversions.h>

#include <gtest/gtest.h>

#include <vector>

#include "support/Rule.h"

namespace Velmara {
namespace {

using namespace std::string_literals;

/// UTF-8, then ISO-8859-1.
struct Fallbacks {
    Fallbacks() { list.add(99); }
    VMRStaticCharSetFallbacksImpl<int> list{1};
};

struct Row {
    char const* rule;
    std::string text, expected;
};

class HtmlEncode : public testing::TestWithParam<Row> {};

TEST_P(HtmlEncode, Gives)
{
    EXPECT_EQ(GetParam().expected, vmara_html_encode(GetParam().text));
}

INSTANTIATE_TEST_SUITE_P(
    Rules, HtmlEncode,
    testing::Values(Row{"NothingToDo", "abc", "abc"}, Row{"Empty", "", ""}, Row{"Ampersand", "a&b", "a&amp;b"},
                    Row{"Less", "<", "&lt;"}, Row{"Greater", ">", "&gt;"}, Row{"Quote", "\"", "&quot;"},
                    Row{"ASingleQuoteStaysAsItIs", "'&", "'&amp;"}, Row{"NothingIsEscapedTwice", "&lt;", "&amp;lt;"},
                    Row{"AllFourInOrder", "<a b=\"&\">", "&lt;a b=&quot;&amp;&quot;&gt;"},
                    Row{"OtherBytesAreCopied", "\x01\t\n\x7F\xC3\xA9\xFF&", "\x01\t\n\x7F\xC3\xA9\xFF&amp;"},
                    Row{"ANulIsDroppedWhereSomethingIsEscaped", "a\0b&\0"s, "ab&amp;"},
                    Row{"ANulStaysWhereNothingIsEscaped", "a\0b"s, "a\0b"s}),
    ruleName);

class HtmlEscapedUtf8 : public testing::TestWithParam<Row> {};

TEST_P(HtmlEscapedUtf8, Gives)
{
    EXPECT_EQ(GetParam().expected, stringToHtmlEscapedUTF8(GetParam().text, nullptr));
}

INSTANTIATE_TEST_SUITE_P(Rules, HtmlEscapedUtf8,
                         testing::Values(Row{"Empty", "", ""}, Row{"PlainText", "abc", "abc"},
                                         Row{"EscapedText", "<b>", "&lt;b&gt;"},
                                         Row{"EncodedWordsAreDecoded", "a =?utf-8?B?QUJD?= b", "a ABC b"},
                                         Row{"AndConverted", "=?iso-8859-1?Q?=E9?=", "\xC3\xA9"},
                                         Row{"WhatWasEncodedIsEscaped", "=?utf-8?Q?=3Cb=3E?=", "&lt;b&gt;"},
                                         Row{"AWordThatCannotBeDecodedStays", "=?utf-8?Q?=4?=", "=?utf-8?Q?=4?="},
                                         Row{"TheTextEndsAtItsFirstNul", "a<\0b"s, "a&lt;"},
                                         Row{"AlsoAtAnEncodedOne", "=?utf-8?Q?=C3=A9=00b?= c", "\xC3\xA9"},
                                         Row{"EightBitTextIsCopiedWithoutFallbacks", "\xE9", "\xE9"}),
                         ruleName);

TEST(HtmlEscapedUtf8, FallbacksAreTriedOnEightBitText)
{
    Fallbacks fallbacks;
    EXPECT_EQ("&lt;\xC3\xA9", stringToHtmlEscapedUTF8("<\xE9", &fallbacks.list));
    EXPECT_EQ("&lt;\xC3\xA9", stringToHtmlEscapedUTF8("<\xC3\xA9", &fallbacks.list));
}

struct AddressRow {
    char const* rule;
    std::string text, utf8, html, header;
};

class AddressLists : public testing::TestWithParam<AddressRow> {};

TEST_P(AddressLists, AreShownInUtf8)
{
    EXPECT_EQ(GetParam().utf8, emailAddressToUTF8(GetParam().text, nullptr));
}

TEST_P(AddressLists, AreShownInHtml)
{
    EXPECT_EQ(GetParam().html, emailAddressToHtmlEscapedUTF8(GetParam().text, nullptr));
}

TEST_P(AddressLists, AreMadeFitForAHeader)
{
    EXPECT_EQ(GetParam().header, stringToValidEmailAddressRfc822HeaderValue(GetParam().text));
}

INSTANTIATE_TEST_SUITE_P(
    Rules, AddressLists,
    testing::Values(
        AddressRow{"ABareAddressStaysBare", "a@b.example", "a@b.example", "a@b.example", "a@b.example"},
        AddressRow{"BracketsWithoutANameGo", "<a@b.example>", "a@b.example", "a@b.example", "a@b.example"},
        AddressRow{"AnAsciiNameStaysAsItStands", "Ann B <a@b.example>", "Ann B <a@b.example>",
                   "Ann B &lt;a@b.example&gt;", "Ann B <a@b.example>"},
        AddressRow{"QuotesOfANameAreNotPutBack", "\"B, Ann\" <a@b.example>", "B, Ann <a@b.example>",
                   "B, Ann &lt;a@b.example&gt;", "B, Ann <a@b.example>"},
        AddressRow{"AnEncodedNameIsDecodedForPeopleAndKeptForAHeader", "=?utf-8?B?QUJD?= <a@b.example>",
                   "ABC <a@b.example>", "ABC &lt;a@b.example&gt;", "=?utf-8?B?QUJD?= <a@b.example>"},
        AddressRow{"AnEncodedNameIsConverted", "=?iso-8859-1?Q?Ren=E9?= <a@b.example>", "Ren\xC3\xA9 <a@b.example>",
                   "Ren\xC3\xA9 &lt;a@b.example&gt;", "=?iso-8859-1?Q?Ren=E9?= <a@b.example>"},
        AddressRow{"AnEightBitNameIsEncodedForAHeader", "Ren\xC3\xA9 <a@b.example>", "Ren\xC3\xA9 <a@b.example>",
                   "Ren\xC3\xA9 &lt;a@b.example&gt;", "=?UTF-8?B?UmVuw6k=?= <a@b.example>"},
        AddressRow{"AnEncodedNameIsEscaped", "=?utf-8?Q?=3Cb=3E=26?= <a@b.example>", "<b>& <a@b.example>",
                   "&lt;b&gt;&amp; &lt;a@b.example&gt;", "=?utf-8?Q?=3Cb=3E=26?= <a@b.example>"},
        AddressRow{"AnEncodedNameEndsAtItsFirstNul", "=?utf-8?Q?A=C3=A9=00B?= <a@b.example>", "A\xC3\xA9 <a@b.example>",
                   "A\xC3\xA9 &lt;a@b.example&gt;", "=?utf-8?Q?A=C3=A9=00B?= <a@b.example>"},
        AddressRow{"ANameThatCannotBeDecodedStays", "=?utf-8?Q?=4?= <a@b.example>", "=?utf-8?Q?=4?= <a@b.example>",
                   "=?utf-8?Q?=4?= &lt;a@b.example&gt;", "=?utf-8?Q?=4?= <a@b.example>"},
        AddressRow{"AddressesAreJoined", "a@b.example,Ann <c@d.example>, <e@f.example>",
                   "a@b.example, Ann <c@d.example>, e@f.example", "a@b.example, Ann &lt;c@d.example&gt;, e@f.example",
                   "a@b.example, Ann <c@d.example>, e@f.example"},
        AddressRow{"GroupsAreFlattened", "Us: a@b.example, c@d.example;", "a@b.example, c@d.example",
                   "a@b.example, c@d.example", "a@b.example, c@d.example"},
        AddressRow{"AnEmptyListIsEmpty", "", "", "", ""}, AddressRow{"NothingReadableIsEmpty", " , ;", "", "", ""}),
    [](auto const& row) { return std::string(row.param.rule); });

TEST(AddressLists, FallbacksAreTriedOnEightBitNames)
{
    Fallbacks fallbacks;
    EXPECT_EQ("Ren\xE9 <a@b.example>", emailAddressToUTF8("Ren\xE9 <a@b.example>", nullptr));
    EXPECT_EQ("Ren\xC3\xA9 <a@b.example>", emailAddressToUTF8("Ren\xE9 <a@b.example>", &fallbacks.list));
    EXPECT_EQ("Ren\xC3\xA9 &lt;a@b.example&gt;",
              emailAddressToHtmlEscapedUTF8("Ren\xE9 <a@b.example>", &fallbacks.list));
}

TEST(AddressLists, TenMegabytesWithoutPartnersAreRead)
{
    std::string const open(10 << 20, '('), quotes(10 << 20, '"'), words(10 << 20, '<');
    for (std::string const& text : {open, quotes, words})
        EXPECT_EQ("a@b.example", emailAddressToUTF8("a@b.example, " + text, nullptr).substr(0, 11));
}

/// The text that the C function leaves in a buffer of that size, and its result.
std::pair<std::string, long> decodedHtml(EmailAddress const& address, size_t size)
{
    std::vector<char> dst(size + 1, '#');
    long const result = vmara_emailaddress_get_decoded_html(&address, dst.data(), size);
    EXPECT_EQ('#', dst[size]) << "written behind the end";
    return {std::string(dst.data()), result};
}

struct HtmlRow {
    char const* rule;
    std::string name, expected;
};

class DecodedHtml : public testing::TestWithParam<HtmlRow> {};

TEST_P(DecodedHtml, Gives)
{
    HtmlRow const& row = GetParam();
    auto const [text, length] = decodedHtml(EmailAddress("a@b.example", row.name), 100);
    EXPECT_EQ(row.expected, text);
    EXPECT_EQ(static_cast<long>(row.expected.size()), length);
}

INSTANTIATE_TEST_SUITE_P(
    Rules, DecodedHtml,
    testing::Values(HtmlRow{"WithoutAName", "", "&lt;a@b.example&gt;"},
                    HtmlRow{"WithAName", "Ann", "Ann &lt;a@b.example&gt;"},
                    HtmlRow{"TheNameIsEscaped", "<A&\">", "&lt;A&amp;&quot;&gt; &lt;a@b.example&gt;"},
                    HtmlRow{"AnEncodedNameIsDecoded", "=?utf-8?B?QUJD?=", "ABC &lt;a@b.example&gt;"},
                    HtmlRow{"ADecodedNameIsEscaped", "=?utf-8?Q?=3C?=", "&lt; &lt;a@b.example&gt;"},
                    HtmlRow{"ADecodedNameKeepsItsCharacterSet", "=?iso-8859-1?Q?=E9?=", "\xE9 &lt;a@b.example&gt;"},
                    HtmlRow{"EightBitBytesAreUsedAsTheyAre", "\xE9", "\xE9 &lt;a@b.example&gt;"},
                    HtmlRow{"ANameThatCannotBeDecodedStays", "=?x", "=?x &lt;a@b.example&gt;"},
                    HtmlRow{"ANameThatDecodesToNothingLeavesItsBlank", "=?utf-8?Q?\?=", " &lt;a@b.example&gt;"},
                    HtmlRow{"ANameEndsAtItsFirstNul", "A\0B"s, "A &lt;a@b.example&gt;"}),
    [](auto const& row) { return std::string(row.param.rule); });

TEST(DecodedHtml, RefusesMissingArguments)
{
    EmailAddress const address("a@b.example");
    char dst[8] = "kept";
    EXPECT_EQ(-1, vmara_emailaddress_get_decoded_html(nullptr, dst, sizeof dst));
    EXPECT_EQ(-1, vmara_emailaddress_get_decoded_html(&address, nullptr, sizeof dst));
    EXPECT_EQ(-1, vmara_emailaddress_get_decoded_html(&address, dst, 0));
    EXPECT_STREQ("kept", dst);
}

TEST(DecodedHtml, IsCutAheadOfWhatWouldBeHalved)
{
    EmailAddress const address("a@b", "x\xC3\xA9&"); // "xé&amp; &lt;a@b&gt;"
    std::pair<size_t, char const*> const cuts[] = {
        {1, ""},
        {2, "x"},
        {3, "x"},
        {4, "x\xC3\xA9"},
        {8, "x\xC3\xA9"},
        {9, "x\xC3\xA9&amp;"},
        {10, "x\xC3\xA9&amp; "},
        {13, "x\xC3\xA9&amp; "},
        {14, "x\xC3\xA9&amp; &lt;"},
        {17, "x\xC3\xA9&amp; &lt;a@b"},
        {20, "x\xC3\xA9&amp; &lt;a@b"},
        {21, "x\xC3\xA9&amp; &lt;a@b&gt;"},
    };
    for (auto const& [size, expected] : cuts) {
        auto const [text, length] = decodedHtml(address, size);
        EXPECT_EQ(expected, text) << size;
        EXPECT_EQ(static_cast<long>(text.size()), length) << size;
    }
}

TEST(DecodedHtml, AReferenceFarAheadOfTheCutDoesNotMatter)
{
    EXPECT_EQ("&amp;23456", decodedHtml(EmailAddress("a@b", "&23456789"), 11).first);
}

TEST(DecodedHtml, TextThatIsNoUtf8IsCutAnywhere)
{
    EXPECT_EQ(std::string(7, '\x80'), decodedHtml(EmailAddress("a@b", std::string(20, '\x80')), 8).first);
}

} // namespace
} // namespace Velmara
