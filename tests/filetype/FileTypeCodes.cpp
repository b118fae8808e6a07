// The numbers are stored by other programs, so both tables are held here once more, by code.
#include <velmara/FileMagic.h>
#include <velmara/SharedMimeInfo.h>

#include <gtest/gtest.h>

#include "support/TypeDatabase.h"

namespace Velmara {
namespace {

struct CodeRow {
    unsigned int code;
    std::vector<std::string> types;
};

std::vector<CodeRow> const _ofDatabase = {
    {1, {"text/rtf", "application/rtf"}},
    {4, {"application/pdf", "application/x-pdf", "image/pdf", "application/acrobat"}},
    {5, {"text/epilogue"}},
    {6, {"text/preamble"}},
    {7,
     {"message/rfc822", "text/rfc822-headers", "text/rfc822", "text/x-mail", "application/data-smtp",
      "application/data-RFC", "application/data-MIME"}},
    {8,
     {"application/vnd.ms-powerpoint", "application/mspowerpoint", "application/x-mspowerpoint",
      "application/powerpoint", "application/msoffice", "application/msword", "application/vnd.ms-word",
      "application/x-msword", "zz-application/zz-winassoc-doc", "application/vnd.ms-excel", "application/msexcel",
      "application/x-msexcel", "zz-application/zz-winassoc-xls", "application/x-ole-storage"}},
    {9, {"application/ms-tnef", "application/vnd.ms-tnef"}},
    {10,
     {"Document/MSOffice", "application/vnd.openxmlformats-officedocument.wordprocessingml.document",
      "application/vnd.openxmlformats-officedocument.spreadsheetml.sheet",
      "application/vnd.openxmlformats-officedocument.presentationml.presentation"}},
    {11, {"internal-doc/vbadoc", "executable/vba"}},
    {13,
     {"application/x-karbon",
      "application/Karbon",
      "application/x-kchart",
      "application/KChart",
      "application/x-kformula",
      "application/KFormula",
      "application/x-kivio",
      "application/Kivio",
      "application/x-kontour",
      "application/Kontour",
      "application/x-kpresenter",
      "application/KPresenter",
      "application/x-kspread",
      "application/KSpread",
      "application/x-kword",
      "application/KWord",
      "application/vnd.sun.xml.writer",
      "application/OWriter1.x",
      "application/OWriter2.x",
      "application/vnd.sun.xml.calc",
      "application/OCalc1.x",
      "application/vnd.sun.xml.draw",
      "application/ODraw1.x",
      "application/ODrawing2.x",
      "application/vnd.sun.xml.impress",
      "application/OImpress1.x",
      "application/OPresentation2.x",
      "application/vnd.sun.xml.math",
      "application/OMath1.x",
      "application/OSpreadsheet2.x",
      "application/OChart2.x",
      "application/OFormula2.x",
      "application/ODatabase2.x",
      "application/OImage2.x",
      "application/vnd.oasis.opendocument.text",
      "application/vnd.oasis.opendocument.spreadsheet",
      "application/vnd.oasis.opendocument.presentation",
      "application/vnd.oasis.opendocument.graphics"}},
    {15, {"application/zip", "application/x-zip-compressed", "application/x-zip"}},
    {16, {"application/archive-tar", "application/x-tar", "application/x-gtar"}},
    {17,
     {"application/archive-gzip", "application/x-gzip", "application/gzip", "application/x-compressed-tar",
      "application/x-cpio-compressed"}},
    {18,
     {"application/archive-bzip2", "application/x-bzip2", "application/x-bzip", "application/x-bzip-compressed-tar"}},
    {19, {"application/archive-rar", "application/x-rar", "application/x-rar-compressed"}},
    {20, {"application/x-7z-compressed", "application/archive-7-zip"}},
    {21, {"application/vnd.ms-cab-compressed", "application/archive-Cabinet"}},
    {22,
     {"application/x-uuencode", "application/x-uuencode-explicit", "text/x-uuencode", "zz-application/zz-winassoc-uu"}},
    {23, {"text/plain"}},
    {24, {"text/real-plain", "text/vnd.rn-realtext"}},
    {25, {"text/html"}},
    {27, {"application/x-zerosize", "application/x-empty"}},
    {31, {"image/jpeg", "image/pjpeg"}},
    {32, {"image/gif"}},
    {33, {"image/png"}},
    {34, {"image/tiff"}},
    {35, {"image/x-photo-cd"}},
    {36, {"image/x-fpx"}},
    {41, {"video/vnd.rn-realvideo", "video/x-real-video"}},
    {42, {"video/mp4", "video/x-m4v"}},
    {43, {"video/x-msvideo"}},
    {44, {"application/vnd.ms-asf"}},
    {45, {"video/x-flv", "application/x-flash-video", "flv-application/octet-stream", "video/flv"}},
    {46, {"video/x-ms-wmv"}},
    {47, {"video/quicktime"}},
    {51, {"audio/mpeg", "audio/x-mp3", "audio/x-mpeg", "audio/mp3"}},
    {52, {"audio/x-ms-wma", "audio/wma"}},
    {53, {"audio/x-wav", "audio/wav", "audio/vnd.wave"}},
    {54, {"audio/midi"}},
    {55, {"audio/ogg", "audio/x-ogg"}},
    {56, {"audio/vnd.rn-realaudio", "audio/x-pn-realaudio", "audio/vnd.m-realaudio"}},
    {60, {"application/x-executable"}},
    {61,
     {"application/x-ms-dos-executable", "x-content/win32-software", "application/executable-MS",
      "application/executable-MS-DOS", "application/executable-COM"}},
    {62, {"application/x-pef-executable"}},
    {63, {"application/x-perl"}},
    {64, {"application/x-ruby"}},
    {65, {"application/x-shellscript", "text/x-sh"}},
    {66, {"text/x-python"}},
    {67,
     {"application/x-gamecube-rom", "application/x-wii-rom", "application/x-wii-iso-image", "application/x-wbfs",
      "application/x-wia"}},
    {70, {"application/vnd.openxmlformats-officedocument.visio"}},
    {71, {"application/vnd.visio", "application/visio", "image/visio"}},
};

std::vector<CodeRow> const _ofMagicFile = {
    {1, {"text/rtf", "application/rtf"}},
    {2, {"application/msword"}},
    {3, {"application/vnd.ms-excel"}},
    {4, {"application/pdf"}},
    {5, {"text/epilogue"}},
    {6, {"text/preamble"}},
    {7, {"text/rfc822", "text/x-mail", "application/data-smtp", "application/data-RFC", "application/data-MIME"}},
    {8, {"application/msoffice"}},
    {9, {"application/ms-tnef"}},
    {10, {"Document/MSOffice"}},
    {12, {"application/visio", "image/visio"}},
    {13, {"application/Karbon",          "application/KChart",
          "application/KFormula",        "application/Kivio",
          "application/Kontour",         "application/KPresenter",
          "application/KSpread",         "application/KWord",
          "application/OWriter1.x",      "application/OCalc1.x",
          "application/ODraw1.x",        "application/OImpress1.x",
          "application/OMath1.x",        "application/OWriter2.x",
          "application/ODrawing2.x",     "application/OPresentation2.x",
          "application/OSpreadsheet2.x", "application/OChart2.x",
          "application/OFormula2.x",     "application/ODatabase2.x",
          "application/OImage2.x"}},
    {15, {"application/zip", "application/archive-Zip"}},
    {16, {"application/archive-tar", "application/x-tar"}},
    {17, {"application/archive-gzip"}},
    {18, {"application/archive-bzip2"}},
    {19, {"application/archive-rar"}},
    {20, {"application/archive-7-zip"}},
    {21, {"application/archive-Cabinet"}},
    {22, {"application/x-uuencode", "application/x-uuencode-explicit"}},
    {23, {"text/plain"}},
    {24, {"text/real-plain"}},
    {25, {"text/html"}},
    {27, {"application/x-empty"}},
};

size_t _count(std::vector<CodeRow> const& rows)
{
    size_t count = 0;
    for (CodeRow const& row : rows) count += row.types.size();
    return count;
}

TEST(FileTypeCodes, OfTheDatabase)
{
    auto const database = databaseOf("<mime-info/>"); // the codes do not come from there
    ASSERT_EQ(162u, _count(_ofDatabase));
    for (CodeRow const& row : _ofDatabase)
        for (std::string const& type : row.types) EXPECT_EQ(row.code, database->type(type)) << type;
}

TEST(FileTypeCodes, OfTheMagicFile)
{
    MagicImpl const magic("data/magic");
    ASSERT_EQ(53u, _count(_ofMagicFile));
    for (CodeRow const& row : _ofMagicFile)
        for (std::string const& type : row.types) EXPECT_EQ(row.code, magic.type(type)) << type;
}

TEST(FileTypeCodes, AreNotTheSameInBothTables)
{
    auto const database = databaseOf("<mime-info/>");
    MagicImpl const magic("data/magic");
    EXPECT_EQ(8u, database->type("application/msword"));
    EXPECT_EQ(2u, magic.type("application/msword"));
    EXPECT_EQ(71u, database->type("application/visio"));
    EXPECT_EQ(12u, magic.type("application/visio"));
    EXPECT_EQ(15u, magic.type("application/archive-Zip"));
    EXPECT_EQ(0u, database->type("application/archive-Zip"));
    EXPECT_EQ(31u, database->type("image/jpeg"));
    EXPECT_EQ(0u, magic.type("image/jpeg"));
}

TEST(FileTypeCodes, AreZeroForWhatIsNotInTheTable)
{
    auto const database = databaseWith("<mime-type type=\"x/a\"/>");
    MagicImpl const magic("data/magic");
    for (char const* type : {"", "x/a", "TEXT/HTML", "text/html ", "text", "application/octet-stream"}) {
        EXPECT_EQ(0u, database->type(type)) << type;
        EXPECT_EQ(0u, magic.type(type)) << type;
    }
}

} // namespace
} // namespace Velmara
