#include <velmara/HasherFactory.h>

#include <gtest/gtest.h>

#include <fstream>
#include <string>

#include <velmara/Velmara.h>

namespace Velmara {
namespace {

struct Row {
    char const* type;
    unsigned int read;
    Hasher::DataType dataType;
};

constexpr Row _rows[] = {
    {"text/html", 150000, Hasher::DataHtml},
    {"TEXT/HTML; charset=utf-8", 150000, Hasher::DataHtml},
    {"text/plain", 12288, Hasher::DataText},
    {"nonsense", 12288, Hasher::DataText}, // read as text/plain
    {"text/calendar", 4096, Hasher::DataBinary},
    {"text/calendar; name=a.doc", 4096, Hasher::DataBinary},
    {"text/x-unknown", 4096, Hasher::DataBinary},
    {"image/jpeg", 32768, Hasher::DataJpeg},
    {"image/pjpeg", 32768, Hasher::DataJpeg},
    {"image/gif", 32768, Hasher::DataGif},
    {"image/png", 32768, Hasher::DataPng},
    {"image/tiff", 4096, Hasher::DataBinary},
    {"image/tiff; name=a.doc", 4096, Hasher::DataBinary},
    {"application/html", 4096, Hasher::DataBinary},
    {"image/html", 4096, Hasher::DataBinary},
    {"text/jpeg", 4096, Hasher::DataBinary},
    {"application/octet-stream", 4096, Hasher::DataBinary},
    {"application/octet-stream; name=REPORT.DOCX", 12288, Hasher::DataBinary},
    {"application/octet-stream; name=\"report.docx.exe\"", 4096, Hasher::DataBinary},
    {"application/octet-stream; name*0*=us-ascii''a%2E; name*1=doc", 12288, Hasher::DataBinary},
    {"application/octet-stream; name=\"=?utf-8?Q?a=2Edoc?=\"", 12288, Hasher::DataBinary},
    {"x/y; name=.p7s", 12288, Hasher::DataBinary},
    {"x/y; name=docx", 4096, Hasher::DataBinary},
};

TEST(HasherFactory, ReadsAndHashesByDeclaredType)
{
    for (Row const& row : _rows) {
        ContentType const type((std::string(row.type)));
        EXPECT_EQ(row.read, HasherFactory::maxHashBufSize(type)) << row.type;
        EXPECT_EQ(row.dataType, HasherFactory::createHasher(type, 0).dataType()) << row.type;
    }
}

TEST(HasherFactory, PartWithoutATypeCountsAsText)
{
    EXPECT_EQ(12288u, HasherFactory::maxHashBufSize(ContentType()));
    EXPECT_EQ(Hasher::DataText, HasherFactory::createHasher(ContentType(), 0).dataType());
}

TEST(HasherFactory, ReadsMoreOfOfficeDocumentsAndSignatures)
{
    for (char const* ending : {"rtf",  "xlsx", "xlsm", "xlsb", "xltm", "xlam", "xls", "xla",  "xlb", "xlc",  "xld",
                               "xlk",  "xll",  "xlm",  "xlt",  "xlv",  "xlw",  "doc", "docx", "ppt", "pptx", "pps",
                               "ppsx", "vsdx", "vsdm", "odt",  "ods",  "odp",  "p7s", "asc",  "sig"})
        EXPECT_EQ(12288u, HasherFactory::maxHashBufSize(ContentType("application/x; name=a." + std::string(ending))))
            << ending;
    for (char const* ending : {"xl", "xlsxx", "pdf", "zip", "dot", "odg", "p7m", "xlx"})
        EXPECT_EQ(4096u, HasherFactory::maxHashBufSize(ContentType("application/x; name=a." + std::string(ending))))
            << ending;
}

TEST(HasherFactory, HandsTheLimitToTheBinaryHasher)
{
    std::string const body(2000, 'b');
    Hasher limited = HasherFactory::createHasher(ContentType("application/zip"), 10);
    limited.process(body);
    Hasher whole = HasherFactory::createHasher(ContentType("application/zip"), 0);
    whole.process(body);
    EXPECT_EQ("82136b4240d6ce4ea7d03e51469a393b", limited.digestAsHexString()) << "MD5 of ten b";
    EXPECT_NE(limited.digest(), whole.digest());
}

struct ContentRow {
    std::string content;
    Hasher::DataType dataType;
};

TEST(HasherFactory, ChoosesByContentThroughTheTypeDatabase)
{
    ASSERT_NO_THROW(SharedMimeInfo::init()) << "there is no database: run data/stage-data.sh";
    ContentRow const rows[] = {
        {"<!DOCTYPE html><html><body>text</body></html>", Hasher::DataHtml},
        {"just some plain text\n", Hasher::DataText},
        {"%!PS-Adobe-3.0\n", Hasher::DataBinary},
        {std::string("\xff\xd8\xff\xe0\0\x10JFIF\0", 11), Hasher::DataJpeg},
        {std::string("GIF89a\1\0\1\0\0\0\0", 13), Hasher::DataGif},
        {"\x89PNG\r\n\x1a\n" + std::string("\0\0\0\rIHDR", 8), Hasher::DataPng},
        {"%PDF-1.4\n", Hasher::DataBinary},
        {std::string("\0\1\2\3\4\5\6\7", 8), Hasher::DataBinary},
        {"", Hasher::DataBinary},
    };
    for (ContentRow const& row : rows) {
        Buffer const data(row.content.data(), static_cast<unsigned int>(row.content.size()), true);
        Hasher const hasher = HasherFactory::createHasher(data);
        EXPECT_EQ(row.dataType, hasher.dataType()) << row.content << ": " << FileMagic::mimeType(data, "");
        EXPECT_EQ(0u, hasher.processedDataLength()) << "the data is only looked at";
    }
}

} // namespace
} // namespace Velmara
