#include <velmara/ContentEncoding.h>

#include <gtest/gtest.h>

#include <velmara/Exception.h>

#include "support/Rule.h"

namespace Velmara {
namespace {

struct Row {
    char const* rule;
    std::string value;
    int code;
    std::string text;
};

class ContentEncodingValue : public testing::TestWithParam<Row> {};

TEST_P(ContentEncodingValue, IsReadAs)
{
    ContentEncoding encoding(GetParam().value);
    EXPECT_EQ(GetParam().code, encoding.encoding());
    EXPECT_EQ(GetParam().text, encoding.encodingAsString());
}

TEST_P(ContentEncodingValue, TextCanBeAskedForFirst)
{
    ContentEncoding encoding(GetParam().value);
    EXPECT_EQ(GetParam().text, encoding.encodingAsString());
}

INSTANTIATE_TEST_SUITE_P(
    Words, ContentEncodingValue,
    testing::Values(Row{"SevenBit", "7bit", 1, "7bit"}, Row{"EightBit", "8bit", 2, "8bit"},
                    Row{"Base64", "BASE64", 3, "base64"},
                    Row{"QuotedPrintableBetweenBlanks", "  quoted-printable  (x)", 4, "quoted-printable"},
                    Row{"Binary", "binary", 5, "binary"}, Row{"UUEncodeByItsBeginning", "x-uuencode", 7, "x-uuencode"},
                    Row{"UUEncodeExactly", "X-UUE", 7, "x-uue"},
                    Row{"YEncByItsBeginning", "X-YENC-EXTRA", 9, "x-yenc-extra"},
                    Row{"WithoutTheXItIsUnknown", "uuencode", 0, "uuencode"},
                    Row{"OthersAreNotKnownByTheirBeginning", "base64x", 0, "base64x"},
                    Row{"TheBeginningMustBeWhole", "x-uu", 0, "x-uu"}, Row{"UnknownIsUnknown", "unknown", 0, "unknown"},
                    Row{"EveryWhiteSpaceOfCIsSkippedAndEndsTheWord", "\v\f\r\n\t base64\vx", 3, "base64"},
                    Row{"ACommentTouchingTheWordBelongsToIt", "base64(x)", 0, "base64(x)"},
                    Row{"ASemicolonBelongsToTheWord", "7bit;", 0, "7bit;"}, Row{"BlanksAloneAreNoWord", "   ", 0, ""}),
    ruleName);

TEST(ContentEncoding, EachQuestionAppendsAnUnknownWordAgain)
{
    ContentEncoding encoding("foo");
    encoding.encoding();
    encoding.encoding();
    EXPECT_EQ("foofoo", encoding.encodingAsString());
    EXPECT_EQ("foofoo", encoding.encodingAsString());
}

TEST(ContentEncoding, AKnownWordIsReadOnce)
{
    ContentEncoding encoding("7bit");
    encoding.encoding();
    encoding.encoding();
    EXPECT_EQ("7bit", encoding.encodingAsString());
}

TEST(ContentEncoding, CodesHavePrintedForms)
{
    std::pair<int, char const*> const forms[] = {
        {0, "unknown"}, {1, "7bit"},   {2, "8bit"},    {3, "base64"},  {4, "quoted-printable"}, {5, "binary"},
        {7, "x-uue"},   {9, "x-yenc"}, {6, "unknown"}, {8, "unknown"}, {10, "unknown"},         {-1, "unknown"}};
    for (auto const& [code, form] : forms)
        EXPECT_EQ(form, ContentEncoding::encodingAsString(static_cast<ContentEncoding::EncodingType>(code))) << code;
}

TEST(ContentEncoding, EmptyValueLeavesANullHandle)
{
    EXPECT_TRUE(ContentEncoding("").isNull());
    EXPECT_EQ("Content-Transfer-Encoding", ContentEncoding().type());
}

TEST(ContentEncoding, AnEmptyHeaderHasNoEncoding)
{
    ContentEncoding encoding(Header("content-transfer-encoding", ""));
    EXPECT_EQ(0, encoding.encoding());
    EXPECT_EQ("", encoding.encodingAsString());
}

TEST(ContentEncoding, AccessorsOfANullHandleThrow)
{
    EXPECT_THROW(ContentEncoding().encoding(), HeaderException);
    EXPECT_THROW(ContentEncoding().encodingAsString(), HeaderException);
}

} // namespace
} // namespace Velmara
