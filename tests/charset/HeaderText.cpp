// Header values with encoded words.
#include <gtest/gtest.h>

#include <vector>

#include <velmara/EncodedWord.h>
#include <velmara/Logger.h>

#include "support/Rule.h"

namespace Velmara {
namespace {

using namespace std::string_literals;

std::string text(Buffer const& buffer)
{
    return std::string(reinterpret_cast<char const*>(buffer.data()), buffer.length());
}

struct Row {
    char const* rule;
    std::string value, utf8;
};

class HeaderText : public testing::TestWithParam<Row> {};

TEST_P(HeaderText, IsReadInUtf8)
{
    EXPECT_EQ(GetParam().utf8, text(stringToUtf8(GetParam().value, nullptr)));
}

TEST_P(HeaderText, OfASubjectIsTheSame)
{
    std::string subject = "old";
    vmara_decode_subject(GetParam().value, subject);
    EXPECT_EQ(GetParam().utf8, subject);
}

INSTANTIATE_TEST_SUITE_P(
    Rules, HeaderText,
    testing::Values(
        Row{"Nothing", "", ""}, Row{"PlainText", "a b", "a b"}, Row{"AWord", "=?utf-8?B?QUJD?=", "ABC"},
        Row{"TextAroundAWordStays", "pre =?utf-8?B?QUJD?= post", "pre ABC post"},
        Row{"TextThatTouchesAWordStays", "a=?utf-8?B?QUJD?=b", "aABCb"},
        Row{"WhiteSpaceBetweenWordsGoes", "=?utf-8?B?QUJD?= \r\n\t=?utf-8?Q?D?=", "ABCD"},
        Row{"WordsThatTouchAreJoined", "=?utf-8?B?QUJD?==?utf-8?B?RA==?=", "ABCD"},
        Row{"WordsOfEveryMarkAndAQuestion", "=?utf-8?B?QQ==?= =?utf-8?b?Qg==?= =?utf-8?Q?C?= =?utf-8?q?D?= E?",
            "ABCD E?"},
        Row{"ALetterBetweenWordsKeepsTheGap", "=?utf-8?B?QUJD?= x =?utf-8?B?RA==?=", "ABC x D"},
        Row{"WhiteSpaceAheadOfTheFirstWordStays", " =?utf-8?B?QUJD?=", " ABC"},
        Row{"WhiteSpaceBehindTheLastWordStays", "=?utf-8?B?QUJD?= ", "ABC "},
        Row{"OtherWhiteSpaceKeepsTheGap", "=?utf-8?B?QUJD?=\v=?utf-8?B?RA==?=", "ABC\vD"},
        Row{"EachWordHasItsCharset", "=?iso-8859-1?B?6Q==?= =?utf-8?B?w6k=?=", "\xC3\xA9\xC3\xA9"},
        Row{"EightBitTextAroundAWordStays", "\xE9 =?utf-8?B?QUJD?= \xE9", "\xE9 ABC \xE9"},
        Row{"EightBitTextAloneStays", "\xE9", "\xE9"}, Row{"AQuestionMarkInAWord", "=?utf-8?Q?a?c?= d", "a?c d"},
        Row{"TextThatLooksLikeABase64MarkHidesTheEnd", "=?utf-8?Q?a?b?= d", "=?utf-8?Q?a?b?= d"},
        Row{"AWordEndsAtTheFirstEndBehindItsMark", "=?utf-8?Q?a?= ?=", "a ?="},
        Row{"AnEndAheadOfTheMarkIsPartOfTheWord", "=?=?utf-8?Q?a?=", "=?=?utf-8?Q?a?="},
        // Its text ends where a later Base64 word does, so it cannot be decoded.
        Row{"ALaterBase64MarkIsTakenForThatOfTheWord",
            "=?utf-8?Q?a?= b =?utf-8?B?QUJD?=", "=?utf-8?Q?a?= b =?utf-8?B?QUJD?="},
        Row{"ALaterLowerCaseBase64MarkIsToo", "=?utf-8?Q?a?= b =?utf-8?b?QUJD?=", "=?utf-8?Q?a?= b =?utf-8?b?QUJD?="},
        Row{"AnUpperCaseQuotedMarkBeatsALowerCaseOne",
            "=?utf-8?q?a?= b =?utf-8?Q?c?=", "=?utf-8?q?a?= b =?utf-8?Q?c?="},
        Row{"ALaterMarkOfLessWeightDoesNotCount", "=?utf-8?B?QUJD?= b =?utf-8?q?c?=", "ABC b c"},
        Row{"AnUnknownEncodingStays", "=?utf-8?X?abc?=", "=?utf-8?X?abc?="},
        Row{"ABadEscapeStays", "=?utf-8?Q?=4?=", "=?utf-8?Q?=4?="},
        Row{"OneBadWordDiscardsAll", "=?utf-8?B?QUJD?= b =?utf-8?B?*?= c", "=?utf-8?B?QUJD?= b =?utf-8?B?*?= c"},
        Row{"AWordWithoutAnEndLosesTheRest", "a =?utf-8?B?QUJD?= b =?utf-8?B?QUJD", "a ABC"},
        Row{"AFirstWordWithoutAnEndIsText", "a =?utf-8?B?QUJD", "a =?utf-8?B?QUJD"},
        Row{"AnEmptyWordIsNothing", "a =?utf-8?Q?\?= b", "a  b"},
        Row{"ADecodedWordOfAsciiEndsAtItsNul", "=?utf-8?Q?a=00b?=c", "ac"},
        Row{"OneWithEightBitBytesDoesNot", "=?utf-8?Q?=C3=A9=00b?=c", "\xC3\xA9\0bc"s},
        Row{"TextKeepsItsNul", "a\0b"s, "a\0b"s},
        Row{"AFoldedWordWithoutItsEndInTheFirstLineStays", "=?utf-8?Q?a?\r\n =?utf-8?Q?b?= c",
            "=?utf-8?Q?a?\r\n =?utf-8?Q?b?= c"}),
    ruleName);

TEST(HeaderText, InItsCharsetsIsNotConverted)
{
    EXPECT_EQ("\xE9 \xC3\xA9", text(stringDecodeRfc2047("=?iso-8859-1?Q?=E9_?= =?utf-8?Q?=C3=A9?=")));
    EXPECT_EQ("=?x?Q?=4?=", text(stringDecodeRfc2047("=?x?Q?=4?=")));
}

TEST(HeaderText, IsAppendedToABuffer)
{
    Buffer out;
    out.append('>');
    stringToUtf8("=?utf-8?B?QUJD?=", out, nullptr);
    EXPECT_EQ(">ABC", text(out));
    stringDecodeRfc2047("=?utf-8?B?RA==?=", out);
    EXPECT_EQ(">ABCD", text(out));
    stringToUtf8("x", out, nullptr);
    EXPECT_EQ(">ABCDx", text(out));
}

TEST(HeaderText, ReplacesABufferWhereItIsEmptyOrUndecodable)
{
    Buffer out;
    out.append('>');
    stringToUtf8("=?x?Q?a?= =?x?Q?=4?=", out, nullptr);
    EXPECT_EQ("=?x?Q?a?= =?x?Q?=4?=", text(out));
    stringDecodeRfc2047("", out);
    EXPECT_EQ("", text(out));
}

TEST(HeaderText, WithoutWordsIsReadByTheFirstFallbackThatCan)
{
    VMRStaticCharSetFallbacksImpl<int> fallbacks(1); // UTF-8, then ISO-8859-1
    fallbacks.add(99);
    EXPECT_EQ("\xC3\xA9", text(stringToUtf8("\xE9", &fallbacks)));
    EXPECT_EQ("\xC3\xA9", text(stringToUtf8("\xC3\xA9", &fallbacks)));
    EXPECT_EQ("abc", text(stringToUtf8("abc", &fallbacks)));
}

TEST(HeaderText, StaysWhereNoFallbackReadsIt)
{
    VMRStaticCharSetFallbacksImpl<int> const fallbacks(1);
    EXPECT_EQ("\xE9", text(stringToUtf8("\xE9", &fallbacks)));
}

TEST(HeaderText, WithAWordIsNotGivenToFallbacks)
{
    VMRStaticCharSetFallbacksImpl<int> const fallbacks(99);
    EXPECT_EQ("\xE9 ABC", text(stringToUtf8("\xE9 =?utf-8?B?QUJD?=", &fallbacks)));
    EXPECT_EQ("\xC3\xA9 =?utf-8?B?QUJD", text(stringToUtf8("\xE9 =?utf-8?B?QUJD", &fallbacks))) << "no whole word";
}

TEST(HeaderText, SubjectMayBeItsOwnResult)
{
    std::string subject = "=?utf-8?B?QUJD?=";
    vmara_decode_subject(subject, subject);
    EXPECT_EQ("ABC", subject);
}

TEST(HeaderText, OfManyMarksIsReadInOnePass)
{
    std::string marks, beginnings;
    while (marks.size() < 1 << 20) marks += "=?x?q?a?= ";
    while (beginnings.size() < 1 << 20) beginnings += "=?";
    EXPECT_EQ(std::string(marks.size() / 10, 'a') + ' ', text(stringToUtf8(marks, nullptr)));
    EXPECT_EQ(beginnings, text(stringToUtf8(beginnings, nullptr)));
}

TEST(IsRfc2047Encoded, LooksForTheBeginningOfAWord)
{
    for (std::string const& value : {"=?utf-8?B?"s, "a =?utf-8?q?"s, "=?ab?Q?x"s, "=?" + std::string(20, 'x') + "?b?",
                                     "=?a_-,9?B?"s, "=?=?utf-8?Q?"s, "\n=?utf-8?Q?"s})
        EXPECT_TRUE(vmara_is_Rfc2047_Encoded(value)) << value;
    for (std::string const& value :
         {""s, "abc"s, "=?a?Q?x?="s, "=?" + std::string(21, 'x') + "?b?", "=?utf-8?X?"s, "=?utf-8?B"s, "=?utf 8?B?"s,
          "=?utf-8*de?B?"s, "=?\xC3\xA9?B?"s, "=?utf-8?BB?"s, "?utf-8?B?"s, "=?utf-8"s})
        EXPECT_FALSE(vmara_is_Rfc2047_Encoded(value)) << value;
}

TEST(IsRfc2047Encoded, LooksAt512BytesOnly)
{
    std::string const word = "=?utf-8?B?";
    EXPECT_TRUE(vmara_is_Rfc2047_Encoded(std::string(502, ' ') + word));
    EXPECT_FALSE(vmara_is_Rfc2047_Encoded(std::string(503, ' ') + word));
    EXPECT_FALSE(vmara_is_Rfc2047_Encoded(std::string(512, ' ') + word));
}

TEST(IsRfc2047Encoded, EndsAtANul)
{
    EXPECT_FALSE(vmara_is_Rfc2047_Encoded("a\0=?utf-8?B?"s));
}

TEST(EncodeRfc2047, EncodesTextWithEightBitBytesAsOneWord)
{
    EXPECT_EQ("", vmara_encode_rfc2047("", "UTF-8"));
    EXPECT_EQ("a =?b", vmara_encode_rfc2047("a =?b", "UTF-8"));
    EXPECT_EQ("=?UTF-8?B?w6kgYQ==?=", vmara_encode_rfc2047("\xC3\xA9 a", "UTF-8"));
    EXPECT_EQ("=?x?B?6Q==?=", vmara_encode_rfc2047("\xE9", "x"));
    std::string const longText(300, '\xE9');
    std::string const word = vmara_encode_rfc2047(longText, "x");
    EXPECT_EQ(2u + 1 + 3 + 400 + 2, word.size()) << "not split, not folded";
    EXPECT_EQ(longText, text(stringDecodeRfc2047(word)));
}

TEST(EncodeWord, UsesUtf8UnlessTheNameIsEmpty)
{
    char dst[64];
    EXPECT_EQ(dst, vmara_encode_word("\xC3\xA9", dst, sizeof dst, "iso-8859-1"));
    EXPECT_STREQ("=?utf-8?B?w6k=?=", dst);
    EXPECT_EQ(dst, vmara_encode_word("\xC3\xA9", dst, sizeof dst, ""));
    EXPECT_STREQ("=?\?B?w6k=?=", dst);
    EXPECT_EQ(dst, vmara_encode_word("abc", dst, sizeof dst, "x"));
    EXPECT_STREQ("abc", dst);
}

TEST(EncodeWord, CutsWhatDoesNotFit)
{
    char dst[] = "########";
    EXPECT_EQ(dst, vmara_encode_word("abcdef", dst, 4, "x"));
    EXPECT_EQ("abc\0####"s, std::string(dst, 8));
    EXPECT_EQ(dst, vmara_encode_word("abcdef", dst, 1, "x"));
    EXPECT_EQ("\0bc\0####"s, std::string(dst, 8));
}

TEST(EncodeWord, RefusesMissingArguments)
{
    char dst[] = "####";
    EXPECT_EQ(nullptr, vmara_encode_word(nullptr, dst, 4, "x"));
    EXPECT_EQ(nullptr, vmara_encode_word("abc", nullptr, 4, "x"));
    EXPECT_EQ(nullptr, vmara_encode_word("", dst, 4, "x"));
    EXPECT_EQ(nullptr, vmara_encode_word("abc", dst, 0, "x"));
    EXPECT_EQ(nullptr, vmara_encode_word("abc", dst, -1, "x"));
    EXPECT_EQ(nullptr, vmara_encode_word("abc", dst, 4, nullptr));
    EXPECT_STREQ("####", dst);
}

/// What a C function leaves in a buffer of that size.
template <class Function> std::string written(Function function, char const* src, unsigned int size)
{
    std::vector<char> dst(size + 1, '#');
    EXPECT_EQ(dst.data(), function(src, dst.data(), size));
    EXPECT_EQ('#', dst[size]) << "written behind the end";
    return std::string(dst.data());
}

TEST(DecodeIntoABuffer, EndsWithANul)
{
    char const* const value = "a =?iso-8859-1?Q?=E9?= b";
    EXPECT_EQ("a \xE9 b", written(vmara_decode_encoded_word, value, 100));
    EXPECT_EQ("a \xC3\xA9 b", written(vmara_to_utf8, value, 100));
    EXPECT_EQ("a \xC3\xA9 b", written(vmara_to_utf8, value, 7)) << "just enough";
    EXPECT_EQ("a \xC3\xA9 ", written(vmara_to_utf8, value, 6));
    EXPECT_EQ("", written(vmara_to_utf8, value, 1));
    EXPECT_EQ("", written(vmara_to_utf8, "", 10));
}

TEST(DecodeIntoABuffer, GivesWhatCannotBeDecodedAsItIs)
{
    EXPECT_EQ("=?x?Q?a?= =?x?Q?=4?=", written(vmara_to_utf8, "=?x?Q?a?= =?x?Q?=4?=", 100));
    EXPECT_EQ("=?x?Q", written(vmara_decode_encoded_word, "=?x?Q?a?= =?x?Q?=4?=", 6));
}

TEST(DecodeIntoABuffer, WithoutRoomWritesNothing)
{
    char dst[] = "#";
    EXPECT_EQ(dst, vmara_to_utf8("a", dst, 0));
    EXPECT_EQ(dst, vmara_decode_encoded_word("a", dst, 0));
    EXPECT_STREQ("#", dst);
}

TEST(DecodeIntoABuffer, RefusesMissingArguments)
{
    char dst[] = "#";
    EXPECT_EQ(nullptr, vmara_to_utf8(nullptr, dst, 1));
    EXPECT_EQ(nullptr, vmara_to_utf8("a", nullptr, 1));
    EXPECT_EQ(nullptr, vmara_decode_encoded_word(nullptr, dst, 1));
    EXPECT_EQ(nullptr, vmara_decode_encoded_word("a", nullptr, 1));
}

} // namespace
} // namespace Velmara
