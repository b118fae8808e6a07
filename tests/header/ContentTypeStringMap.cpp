#include <gtest/gtest.h>

#include <set>

#include <velmara/ContentType.h>

namespace Velmara {
namespace {

struct Name {
    int code;
    char const* text;
};

// The numbers are stored by other programs, so they stand here as numbers.
constexpr Name mediaTypes[] = {{1, "text"},        {2, "image"},     {3, "audio"},  {4, "video"},
                               {5, "application"}, {6, "multipart"}, {7, "message"}};

constexpr Name subTypes[] = {{1, "delivery-status"},
                             {2, "enriched"},
                             {3, "html"},
                             {4, "plain"},
                             {5, "rfc822"},
                             {6, "richtext"},
                             {7, "sgml"},
                             {8, "tab-separated-values"},
                             {9, "x-setext"},
                             {10, "alternative"},
                             {11, "mixed"},
                             {12, "jpeg"},
                             {13, "gif"},
                             {14, "png"},
                             {15, "signed"},
                             {16, "encrypted"},
                             {17, "pkcs7-signature"},
                             {18, "pkcs7-mime"},
                             {19, "x-pkcs7-signature"},
                             {20, "x-pkcs7-mime"},
                             {21, "pgp-signature"},
                             {22, "pgp-encrypted"},
                             {23, "pgp-keys"},
                             {24, "ve-encrypted"},
                             {25, "pdf"},
                             {26, "msword"},
                             {27, "partial"},
                             {28, "external-body"},
                             {29, "digest"},
                             {30, "related"},
                             {31, "report"},
                             {32, "octet-stream"},
                             {33, "xml"},
                             {34, "zip"},
                             {35, "tiff"},
                             {36, "mpeg"},
                             {37, "vnd.ms-powerpoint"},
                             {38, "vnd.ms-excel"},
                             {39, "calendar"},
                             {40, "ics"},
                             {41, "mac-binhex40"},
                             {42, "ms-tnef"}};

ContentType::MediaType mediaType(int code)
{
    return static_cast<ContentType::MediaType>(code);
}

ContentType::SubType subType(int code)
{
    return static_cast<ContentType::SubType>(code);
}

TEST(ContentTypeStringMap, MediaTypesHaveTheseNumbers)
{
    for (Name const& name : mediaTypes) {
        EXPECT_EQ(name.code, ContentType::stringAsType(name.text));
        EXPECT_EQ(name.text, ContentType::mediaTypeAsString(mediaType(name.code)));
    }
}

TEST(ContentTypeStringMap, SubtypesHaveTheseNumbers)
{
    for (Name const& name : subTypes) {
        EXPECT_EQ(name.code, ContentType::stringAsSubType(name.text));
        EXPECT_EQ(name.text, ContentType::subTypeAsString(subType(name.code)));
    }
}

TEST(ContentTypeStringMap, EnumeratorsAreThoseNumbers)
{
    EXPECT_EQ(1, ContentType::MediaTypeText);
    EXPECT_EQ(7, ContentType::MediaTypeMessage);
    EXPECT_EQ(12, ContentType::SubTypeJpeg);
    EXPECT_EQ(24, ContentType::SubTypeVeEncrypted);
    EXPECT_EQ(33, ContentType::SubTypeXml);
    EXPECT_EQ(42, ContentType::SubTypeMsTnef);
}

TEST(ContentTypeStringMap, TwoTextsAreJpegAndTheFirstIsPrinted)
{
    EXPECT_EQ(12, ContentType::stringAsSubType("jpeg"));
    EXPECT_EQ(12, ContentType::stringAsSubType("pjpeg"));
    EXPECT_EQ("jpeg", ContentType::subTypeAsString(subType(12)));
}

TEST(ContentTypeStringMap, AnyCodeWithoutATextIsPrintedAsAnUnknownMediaType)
{
    for (int code : {0, 43, 99, -1}) EXPECT_EQ("MediaTypeUnknown", ContentType::subTypeAsString(subType(code)));
    for (int code : {0, 8, 99, -1}) EXPECT_EQ("MediaTypeUnknown", ContentType::mediaTypeAsString(mediaType(code)));
}

TEST(ContentTypeStringMap, NoTextStandsForUnknown)
{
    EXPECT_EQ(0, ContentType::stringAsType("MediaTypeUnknown"));
    EXPECT_EQ(0, ContentType::stringAsSubType("SubTypeUnknown"));
    EXPECT_EQ(0, ContentType::stringAsType(""));
    EXPECT_EQ(0, ContentType::stringAsSubType(""));
}

TEST(ContentTypeStringMap, OnlyTheOperationsOfTheHandleIgnoreCase)
{
    EXPECT_EQ(1, ContentType::stringAsType("TEXT"));
    EXPECT_EQ(3, ContentType::stringAsSubType("Html"));
    ContentTypeStringMap const& map = ContentTypeStringMap::instance();
    EXPECT_EQ(0, map.findMediaType("TEXT"));
    EXPECT_EQ(0, map.findSubType("Html"));
    EXPECT_EQ(1, map.findMediaType("text"));
    EXPECT_EQ(3, map.findSubType("html"));
    EXPECT_EQ("text", map.find(ContentType::MediaTypeText));
    EXPECT_EQ("html", map.find(ContentType::SubTypeHtml));
}

std::set<int> accepted(bool (*test)(ContentType::SubType))
{
    std::set<int> codes;
    for (int code = -1; code <= 50; ++code)
        if (test(subType(code))) codes.insert(code);
    return codes;
}

TEST(ContentTypeStringMap, EncryptedAndSignedAreTheseAndKeysCountAsEncrypted)
{
    EXPECT_EQ((std::set<int>{16, 18, 20, 22, 23, 24}), accepted(ContentType::subTypeIsEncrypted));
    EXPECT_EQ((std::set<int>{15, 17, 19, 21}), accepted(ContentType::subTypeIsSigned));
}

} // namespace
} // namespace Velmara
