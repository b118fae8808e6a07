#include <velmara/EncodedWord.h>

#include <gtest/gtest.h>

#include <velmara/Exception.h>

#include "support/Rule.h"

namespace Velmara {
namespace {

using namespace std::string_literals;

std::string text(Buffer const& buffer)
{
    return std::string(reinterpret_cast<char const*>(buffer.data()), buffer.length());
}

EncodedWord parsed(std::string const& value, bool crlf = false)
{
    EncodedWord word(crlf);
    word.parse(value);
    return word;
}

struct Row {
    char const* rule;
    std::string value, charset;
    EncodedWord::Encoding encoding;
    std::string decoded;
};

class EncodedWordValue : public testing::TestWithParam<Row> {};

TEST_P(EncodedWordValue, IsDecoded)
{
    Row const& row = GetParam();
    EncodedWord const word = parsed(row.value);
    EXPECT_EQ(row.charset, word.charset());
    EXPECT_EQ(row.encoding, word.encoding());
    EXPECT_EQ(row.decoded, text(word.decoded()));
}

constexpr auto B = EncodedWord::EncodingB;
constexpr auto Q = EncodedWord::EncodingQ;

INSTANTIATE_TEST_SUITE_P(Rules, EncodedWordValue,
                         testing::Values(Row{"Base64", "=?utf-8?B?QUJD?=", "utf-8", B, "ABC"},
                                         Row{"Base64InLowerCase", "=?utf-8?b?QUJD?=", "utf-8", B, "ABC"},
                                         Row{"QuotedPrintable", "=?UTF-8?Q?a_b=3D?=", "UTF-8", Q, "a b="},
                                         Row{"QuotedPrintableInLowerCase", "=?utf-8?q?a?=", "utf-8", Q, "a"},
                                         Row{"DigitsInEitherCase", "=?x?Q?=e9=E9?=", "x", Q, "\xE9\xE9"},
                                         Row{"AQuestionMarkInTheText", "=?x?Q?a?b?=", "x", Q, "a?b"},
                                         Row{"TheLastEndCounts", "=?x?Q?a?=3Db?=", "x", Q, "a?=b"},
                                         Row{"TextBehindTheEndIsIgnored", "=?x?Q?a?= b", "x", Q, "a"},
                                         Row{"AnEmptyText", "=?x?Q?\?=", "x", Q, ""},
                                         Row{"AnEmptyBase64Text", "=?x?B?\?=", "x", B, ""},
                                         Row{"ABase64TextWithWhiteSpace", "=?x?B?QU JD?=", "x", B, "ABC"},
                                         Row{"AnEmptyCharset", "=?\?Q?a?=", "", Q, "a"},
                                         Row{"TheCharsetStartsAtIndexTwoWhereverTheWordDoes", "ab=?Q?c?=", "=", Q, "c"},
                                         Row{"TheByteBehindTheEncodingIsNotLookedAt", "=?x?Q.a?=", "x", Q, "a"},
                                         Row{"AnEndAheadOfTheTextLeavesItEmpty", "=?=x?Q?", "=x", Q, ""},
                                         Row{"EightBitTextIsCopied", "=?x?Q?\xE9?=", "x", Q, "\xE9"},
                                         Row{"ANulIsKept", "=?x?Q?a=00b?=", "x", Q, "a\0b"s},
                                         Row{"WhiteSpaceAroundIsTrimmed", " \t\r\n=?x?Q?a?=\n ", "x", Q, "a"}),
                         ruleName);

TEST(EncodedWord, OfNothingIsEmpty)
{
    for (char const* value : {"", " \t\r\n"}) {
        EncodedWord const word = parsed(value);
        EXPECT_EQ("", word.asString());
        EXPECT_EQ("", word.charset());
        EXPECT_EQ(EncodedWord::EncodingNone, word.encoding());
        EXPECT_TRUE(word.decoded().isEmpty());
        EXPECT_TRUE(word.toUtf8().isEmpty());
    }
}

TEST(EncodedWord, NumbersOfTheEncodingsAreFixed)
{
    EXPECT_EQ(0, EncodedWord::EncodingNone);
    EXPECT_EQ(1, EncodedWord::EncodingQ);
    EXPECT_EQ(2, EncodedWord::EncodingB);
}

struct Refusal {
    char const* rule;
    std::string value;
    int cause;
};

class EncodedWordRefusal : public testing::TestWithParam<Refusal> {};

TEST_P(EncodedWordRefusal, TellsTextAndCause)
{
    Refusal const& row = GetParam();
    EncodedWord word(false);
    try {
        word.parse(row.value);
        ADD_FAILURE() << "nothing thrown";
    } catch (EncodedWordException const& refusal) {
        EXPECT_EQ(4, refusal.code());
        EXPECT_EQ("EncodedWordException", refusal.message());
        EXPECT_EQ("EncodedWordImpl", refusal.fileName());
        EXPECT_EQ(row.value, refusal.stringParameter());
        ASSERT_TRUE(refusal.hasCause());
        EXPECT_EQ(row.cause, refusal.cause().code());
    }
    EXPECT_TRUE(word.decoded().isEmpty());
    EXPECT_EQ(row.value, word.asString());
}

INSTANTIATE_TEST_SUITE_P(
    Rules, EncodedWordRefusal,
    testing::Values(Refusal{"NoBeginning", "utf-8?Q?a?=", 2}, Refusal{"NoEnd", "=?utf-8?Q?a", 2},
                    Refusal{"NoMarkBehindTheSecondByte", "=?=", 5}, Refusal{"AnUnknownEncoding", "=?utf-8?X?abc?=", 5},
                    Refusal{"TheEndAsEncoding", "=?utf-8?=", 5}, Refusal{"NothingBehindTheMark", "=?=?", 5},
                    Refusal{"OneDigitAtTheEnd", "=?utf-8?Q?=4?=", 5}, Refusal{"NoDigitAtTheEnd", "=?utf-8?Q?a=?=", 5},
                    Refusal{"NoFirstDigit", "=?utf-8?Q?=G1?=", 5}, Refusal{"NoSecondDigit", "=?utf-8?Q?=1G?=", 5},
                    Refusal{"BadBase64", "=?utf-8?B?QU*D?=", 5}, Refusal{"CutBase64", "=?utf-8?B?QUJ?=", 5}),
    ruleName);

TEST(EncodedWord, ToUtf8ConvertsFromTheCharset)
{
    EXPECT_EQ("\xC3\xA9", text(parsed("=?iso-8859-1?Q?=E9?=").toUtf8()));
    EXPECT_EQ("\xE3\x81\x82", text(parsed("=?iso-2022-jp?B?GyRCJCIbKEI=?=").toUtf8()));
}

TEST(EncodedWord, ToUtf8DropsBadBytes)
{
    EXPECT_EQ("ab", text(parsed("=?us-ascii?Q?a=E9b?=").toUtf8()));
}

TEST(EncodedWord, ToUtf8CopiesUtf8Unvalidated)
{
    EXPECT_EQ("\xFF", text(parsed("=?UtF-8?Q?=FF?=").toUtf8()));
}

TEST(EncodedWord, ToUtf8CopiesBytesOfAnUnknownCharset)
{
    EXPECT_EQ("\xFF", text(parsed("=?no-such-set?Q?=FF?=").toUtf8()));
}

TEST(EncodedWord, ToUtf8OfAnEmptyCharsetIsThatOfLatin1)
{
    EXPECT_EQ("\xC3\xA9", text(parsed("=?\?Q?=E9?=").toUtf8()));
}

TEST(EncodedWord, ToUtf8IsMadeOnceAndKept)
{
    EncodedWord word = parsed("=?iso-8859-1?Q?=E9?=");
    EXPECT_EQ("\xC3\xA9", text(word.toUtf8()));
    word.parse("=?iso-8859-1?Q?a?=");
    EXPECT_EQ("\xC3\xA9", text(word.toUtf8()));
}

TEST(EncodedWord, ASecondValueIsAddedToTheFirst)
{
    EncodedWord word = parsed("=?utf-8?Q?a?=");
    word.parse("=?latin1?B?QUJD?=");
    EXPECT_EQ("aABC", text(word.decoded()));
    EXPECT_EQ("latin1", word.charset());
    EXPECT_EQ("=?latin1?B?QUJD?=", word.asString());
}

TEST(EncodedWord, TwoLinesAreTwoWords)
{
    EXPECT_EQ("ab", text(parsed("=?x?Q?a?=\n \t=?x?Q?b?=").decoded()));
    EXPECT_EQ("ab", text(parsed("=?x?Q?a?=\r\n =?x?Q?b?=", true).decoded()));
}

TEST(EncodedWord, LinesEndAsTheConstructorSays)
{
    EXPECT_EQ("ab", text(parsed("=?x?Q?a?=\r\n =?x?Q?b?=", false).decoded())) << "the CR is text behind the end";
    EXPECT_THROW(parsed("=?x?Q?a?=\n =?x?Q?b?=", true), EncodedWordException) << "one line, with \"=?\" in its text";
}

TEST(EncodedWord, ALaterLineIsReadOnByAsManyBytesAsStandAheadOfIt)
{
    // The second line begins at index 6 and is read on for 6 bytes: into the end that the third one has.
    EXPECT_EQ("b\nc", text(parsed("=?=?Q\n=?x?Q?b\nc?=?Q").decoded()));
    // What is read on holds no end here, so the line's own one counts.
    EXPECT_EQ("bc", text(parsed("=?=?Q\n=?x?Q?b?=\n=?x?Q?c?=").decoded()));
}

TEST(EncodedWord, MostValuesOfThreeLinesAreRefused)
{
    EXPECT_THROW(parsed("=?x?Q?a?=\n =?x?Q?b?=\n =?x?Q?c?="), EncodedWordException);
}

TEST(EncodedWord, AValueWhoseLinesAllReachToItsEndIsRefused)
{
    std::string value = "=?=?Q\n"; // lines that grow, each with an end of its own ...
    while (value.size() < 1 << 18) value += "xx?Q?" + std::string(2 * value.size(), 'x') + "?=?\n";
    size_t const reach = value.size() + value.size() / 2;
    while (value.size() < reach) value += "xx?Q?\n"; // ... and many that share one
    try {
        parsed(value + "?=?");
        ADD_FAILURE() << "nothing thrown";
    } catch (EncodedWordException const& refusal) {
        EXPECT_EQ(4, refusal.code());
        EXPECT_FALSE(refusal.hasCause()) << refusal.cause().asString();
    }
}

TEST(EncodedWord, CopiesShareTheWord)
{
    EncodedWord word(false);
    EncodedWord const copy(word);
    EncodedWord assigned;
    assigned = word;
    word.parse("=?x?Q?a?=");
    EXPECT_EQ("a", text(copy.decoded()));
    EXPECT_EQ("a", text(assigned.decoded()));
}

template <class Call> unsigned int lineOf(Call call)
{
    try {
        call(EncodedWord());
    } catch (EncodedWordException const& refusal) {
        EXPECT_EQ(1, refusal.code());
        EXPECT_EQ("EncodedWordImpl", refusal.fileName());
        return refusal.lineNumber();
    }
    ADD_FAILURE() << "nothing thrown";
    return 0;
}

TEST(EncodedWord, OperationsOfANullHandleTellTheirLines)
{
    EXPECT_TRUE(EncodedWord().isNull());
    EXPECT_FALSE(EncodedWord(false).isNull());
    EXPECT_EQ(32u, lineOf([](EncodedWord word) { word.parse("=?x?Q?a?="); }));
    EXPECT_EQ(46u, lineOf([](EncodedWord const& word) { word.asString(); }));
    EXPECT_EQ(70u, lineOf([](EncodedWord const& word) { word.decoded(); }));
    EXPECT_EQ(79u, lineOf([](EncodedWord const& word) { word.toUtf8(); }));
    EXPECT_NE(0u, lineOf([](EncodedWord const& word) { word.charset(); }));
    EXPECT_NE(0u, lineOf([](EncodedWord const& word) { word.encoding(); }));
}

TEST(EncodedWord, IsOneWhereItsThreeMarksOccurInAnyOrder)
{
    for (char const* value : {"=?x?Q?a?=", "a =?x?Q?a?= b", "x?=a=?", "=?=?", "?= =?"})
        EXPECT_TRUE(EncodedWord::isEncodedWord(value)) << value;
    for (char const* value : {"", "abc", "=?x?Q?a", "x?Q?a?=", "?=", "=?=", "=? ="})
        EXPECT_FALSE(EncodedWord::isEncodedWord(value)) << value;
}

} // namespace
} // namespace Velmara
