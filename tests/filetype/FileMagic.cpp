#include <velmara/FileMagic.h>

#include <gtest/gtest.h>

#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <iterator>

#include <velmara/SharedMimeInfo.h>

#include "support/Collected.h"
#include "support/Rule.h"
#include "support/TypeDatabase.h"

namespace Velmara {
namespace {

using namespace std::string_literals;

/// The magic file that is installed, before it is compiled.
MagicImpl const& _installed()
{
    static MagicImpl const magic("data/magic");
    return magic;
}

std::string _padded(std::string text, size_t length, std::string const& tail)
{
    text.resize(length, '\0');
    return text + tail;
}

std::string _ole(std::string const& classOfRoot)
{
    std::string header = _padded("\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1", 48, "\2\0\0\0"s); // the directory in sector 2
    return _padded(header, 512 + 2 * 512 + 80, classOfRoot + std::string(100, '\0'));
}

std::string _ofMicrosoft(std::string const& number)
{
    return number + "\0\0\0\0\xC0\0\0\0\0\0\0F"s;
}

std::string _zip(std::string const& firstMember)
{
    return _padded("PK\3\4", 30, firstMember) + std::string(40, '\1');
}

std::string _kofficeArchive(std::string const& type)
{
    return "\x1F\x8B\x08\0\0\0\0\0\0\0"s + "KOffice " + type + "\4\6";
}

// ---- the magic file -----------------------------------------------------------------------------

struct FileRow {
    char const* rule;
    std::string data;
    char const* type;
    unsigned int code;
};

void PrintTo(FileRow const& row, std::ostream* out)
{
    *out << row.rule;
}

class MagicFile : public testing::TestWithParam<FileRow> {};

TEST_P(MagicFile, Tells)
{
    FileRow const& row = GetParam();
    EXPECT_EQ(row.type, _installed().mimeType(bytes(row.data), false));
    EXPECT_EQ(row.code, _installed().type(row.type));
}

INSTANTIATE_TEST_SUITE_P(
    Documents, MagicFile,
    testing::Values(FileRow{"Rtf", "{\\rtf1\\ansi Hello}", "text/rtf", 1},
                    FileRow{"Pdf", "%PDF-1.7\n1 0", "application/pdf", 4},
                    FileRow{"PdfBehindOtherBytes", "\xEF\xBB\xBF\r\n%PDF-1.7\n1 0", "application/pdf", 4},
                    FileRow{"Word", _ole(_ofMicrosoft("\6\x9\2\0"s)), "application/msword", 2},
                    FileRow{"Word6", _ole(_ofMicrosoft("\0\x9\2\0"s)), "application/msword", 2},
                    FileRow{"Word2", "\xDB\xA5-\0\0\0...."s, "application/msword", 2},
                    FileRow{"Excel", _ole(_ofMicrosoft("\x20\x8\2\0"s)), "application/vnd.ms-excel", 3},
                    FileRow{"Excel5", _ole(_ofMicrosoft("\x10\x8\2\0"s)), "application/vnd.ms-excel", 3},
                    FileRow{"Excel4", "\x9\4\6\0\0\0\x10\0...."s, "application/vnd.ms-excel", 3},
                    FileRow{"Visio", _ole(_ofMicrosoft("\x14\x1A\2\0"s)), "application/visio", 12},
                    FileRow{"OldVisio", _ole(_ofMicrosoft("\x13\x1A\2\0"s)), "application/visio", 12},
                    FileRow{"VisioStencil", _ole(_ofMicrosoft("\x11\x1A\2\0"s)), "image/visio", 12},
                    FileRow{"OleOfAnotherProgram", _ole("0123456789ABCDEF"), "application/msoffice", 8},
                    FileRow{"OleWithItsDirectoryFarBehind",
                            _padded("\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1", 48, "\0\1\0\0"s + std::string(464, '\1')),
                            "application/msoffice", 8},
                    FileRow{"Tnef", "\x78\x9F\x3E\x22....", "application/ms-tnef", 9}),
    ruleName);

INSTANTIATE_TEST_SUITE_P(
    OfficeArchives, MagicFile,
    testing::Values(
        FileRow{"ContentTypesFirst", _zip("[Content_Types].xml"), "Document/MSOffice", 10},
        FileRow{"RelationsFirst", _zip("_rels/.rels"), "Document/MSOffice", 10},
        FileRow{"WordFirst", _zip("word/document.xml"), "Document/MSOffice", 10},
        FileRow{"Writer1", _zip("mimetypeapplication/vnd.sun.xml.writer"), "application/OWriter1.x", 13},
        FileRow{"Calc1", _zip("mimetypeapplication/vnd.sun.xml.calc"), "application/OCalc1.x", 13},
        FileRow{"Draw1", _zip("mimetypeapplication/vnd.sun.xml.draw"), "application/ODraw1.x", 13},
        FileRow{"Impress1", _zip("mimetypeapplication/vnd.sun.xml.impress"), "application/OImpress1.x", 13},
        FileRow{"Math1", _zip("mimetypeapplication/vnd.sun.xml.math"), "application/OMath1.x", 13},
        FileRow{"Writer2", _zip("mimetypeapplication/vnd.oasis.opendocument.text"), "application/OWriter2.x", 13},
        FileRow{"Drawing2", _zip("mimetypeapplication/vnd.oasis.opendocument.graphics"), "application/ODrawing2.x", 13},
        FileRow{"Presentation2", _zip("mimetypeapplication/vnd.oasis.opendocument.presentation"),
                "application/OPresentation2.x", 13},
        FileRow{"Spreadsheet2", _zip("mimetypeapplication/vnd.oasis.opendocument.spreadsheet"),
                "application/OSpreadsheet2.x", 13},
        FileRow{"Chart2", _zip("mimetypeapplication/vnd.oasis.opendocument.chart"), "application/OChart2.x", 13},
        FileRow{"Formula2", _zip("mimetypeapplication/vnd.oasis.opendocument.formula"), "application/OFormula2.x", 13},
        FileRow{"Database2", _zip("mimetypeapplication/vnd.oasis.opendocument.base"), "application/ODatabase2.x", 13},
        FileRow{"Image2", _zip("mimetypeapplication/vnd.oasis.opendocument.image"), "application/OImage2.x", 13},
        FileRow{"ZippedKWord", _zip("mimetypeapplication/x-kword"), "application/KWord", 13},
        FileRow{"ZippedKSpread", _zip("mimetypeapplication/x-kspread"), "application/KSpread", 13},
        FileRow{"KWord", _kofficeArchive("application/x-kword"), "application/KWord", 13},
        FileRow{"Karbon", _kofficeArchive("application/x-karbon"), "application/Karbon", 13},
        FileRow{"KChart", _kofficeArchive("application/x-kchart"), "application/KChart", 13},
        FileRow{"KFormula", _kofficeArchive("application/x-kformula"), "application/KFormula", 13},
        FileRow{"Kivio", _kofficeArchive("application/x-kivio"), "application/Kivio", 13},
        FileRow{"Kontour", _kofficeArchive("application/x-kontour"), "application/Kontour", 13},
        FileRow{"KPresenter", _kofficeArchive("application/x-kpresenter"), "application/KPresenter", 13},
        FileRow{"KSpread", _kofficeArchive("application/x-kspread"), "application/KSpread", 13}),
    ruleName);

INSTANTIATE_TEST_SUITE_P(
    Archives, MagicFile,
    testing::Values(
        FileRow{"Zip", _zip("holiday.jpg"), "application/archive-Zip", 15},
        FileRow{"ZipWithAnUnknownMimetype", _zip("mimetypeapplication/epub+zip"), "application/archive-Zip", 15},
        FileRow{"EmptyZip", "PK\5\6" + std::string(18, '\0'), "application/archive-Zip", 15},
        FileRow{"Tar", _padded("name", 257, "ustar\0"s) + std::string(249, '\0'), "application/archive-tar", 16},
        FileRow{"Gzip", "\x1F\x8B\x08\0\0\0\0\0\0\3...."s, "application/archive-gzip", 17},
        FileRow{"Bzip2", "BZh91AY&SY....", "application/archive-bzip2", 18},
        FileRow{"Rar", "Rar!\x1A\7\0...."s, "application/archive-rar", 19},
        FileRow{"SevenZip", "7z\xBC\xAF\x27\x1C\0\4", "application/archive-7-zip", 20},
        FileRow{"Cabinet", "MSCF\0\0\0\0...."s, "application/archive-Cabinet", 21}),
    ruleName);

INSTANTIATE_TEST_SUITE_P(
    Texts, MagicFile,
    testing::Values(FileRow{"Mailbox", "From a@b.example Mon Jan  1 00:00:00 2024\nTo: x\n", "text/x-mail", 7},
                    FileRow{"Mail", "Received: from a by b; Mon, 1 Jan 2024\nTo: x\n", "text/rfc822", 7},
                    FileRow{"Headers", "Subject: hello\nTo: x\n\nyes\n", "application/data-RFC", 7},
                    FileRow{"MimePart", "Content-Type: text/plain\n\nyes\n", "application/data-MIME", 7},
                    FileRow{"Dialogue", "EHLO mail.example\r\nMAIL FROM:<>\r\n", "application/data-smtp", 7},
                    FileRow{"Uuencoded", "begin 644 a.txt\n#86)C\n`\nend\n", "application/x-uuencode-explicit", 22},
                    FileRow{"UuencodedBehindText", "See below.\nbegin 644 a.txt\n#86)C\n`\nend\n",
                            "application/x-uuencode", 22},
                    FileRow{"Plain", "Good morning, everybody.\n", "text/plain", 23},
                    FileRow{"Html", "<!DOCTYPE HTML>\n<html><body>Hi</body></html>\n", "text/html", 25},
                    FileRow{"HtmlWithoutItsHead", "\n\n<BODY>Hi</BODY>\n", "text/html", 25},
                    FileRow{"Empty", "", "application/x-empty", 27},
                    FileRow{"OneByte", "a", "application/x-empty", 27}),
    ruleName);

// ---- MagicImpl ----------------------------------------------------------------------------------

TEST(MagicImpl, WholeGivesAllThatLibmagicSays)
{
    std::string const pdf = "%PDF-1.7\nSee %PDF-1.4\n";
    EXPECT_EQ("application/pdf", _installed().mimeType(bytes(pdf), false));
    std::string const whole = _installed().mimeType(bytes(pdf), true);
    EXPECT_EQ(0u, whole.find("application/pdf\n")) << whole; // both tests of the magic file hold
    EXPECT_EQ("application/x-empty", _installed().mimeType(Buffer(), true));
}

/// A folder that is gone with this object.
struct Folder {
    Folder() { EXPECT_NE(nullptr, ::mkdtemp(path.data())); }
    ~Folder() { std::filesystem::remove_all(path); }
    std::string path = std::filesystem::temp_directory_path() / "velmara-magic-XXXXXX";
};

/// What libmagic says in the words of a compiled magic file. The compiler takes few characters, so a
/// word of as many letters is compiled and then overwritten; "" without the compiler.
std::string _said(std::string const& words, bool whole)
{
    Folder const folder;
    std::string const placeHolder = "x/" + std::string(words.size() - 2, 'y');
    std::ofstream(folder.path + "/source") << "0\tstring\t@@\tx\n!:mime\t" << placeHolder << "\n";
    std::string const compiler = "cd '" + folder.path + "' && file -C -m source >/dev/null 2>&1";
    if (std::system(compiler.c_str()) != 0) return "";
    std::string const file = folder.path + "/source.mgc";
    std::ifstream in(file, std::ios::binary);
    std::string compiled{std::istreambuf_iterator<char>(in), {}};
    compiled.replace(compiled.find(placeHolder), words.size(), words);
    std::ofstream(file, std::ios::binary) << compiled << std::flush;
    return MagicImpl(file).mimeType(bytes("@@\1\2"), whole);
}

struct WordsRow {
    char const* rule;
    char const* words;
    char const* type;
    char const* whole;
};

void PrintTo(WordsRow const& row, std::ostream* out)
{
    *out << row.rule;
}

class MagicWords : public testing::TestWithParam<WordsRow> {};

TEST_P(MagicWords, AreCutUnlessTheWholeIsWanted)
{
    ASSERT_NE("", _said("x/y", true)) << "install the package \"file\"";
    EXPECT_EQ(GetParam().type, _said(GetParam().words, false));
    std::string const whole = _said(GetParam().words, true);
    EXPECT_EQ(GetParam().whole, whole.substr(0, whole.find('\n'))); // further matches stand on further lines
}

INSTANTIATE_TEST_SUITE_P(Words, MagicWords,
                         testing::Values(WordsRow{"AtASemicolon", "text/x;charset=a", "text/x", "text/x;charset=a"},
                                         WordsRow{"AtAComma", "text/x,text/y", "text/x", "text/x,text/y"},
                                         WordsRow{"AtABlank", "text/x charset", "text/x", "text/x charset"},
                                         WordsRow{"AtAFormFeed", "text/x\fy", "text/x", "text/x\fy"},
                                         WordsRow{"BehindWhatIsNoLetterOrDigit", " -.;7x/y", "7x/y", "7x/y"},
                                         WordsRow{"WithoutWhatCannotBePrinted", "te\1xt/\xE9\x7Fx", "text/x",
                                                  "te\1xt/\xE9\x7Fx"}),
                         ruleName);

TEST(MagicImpl, AMagicFileThatIsNotThereThrowsWithTheWordsOfLibmagic)
{
    try {
        MagicImpl("/nowhere/magic.vmara");
        FAIL() << "was loaded";
    } catch (Exception const& failure) {
        EXPECT_EQ("MagicImpl", failure.message());
        EXPECT_EQ(6, failure.code());
        EXPECT_EQ("FileMagic", failure.fileName());
        EXPECT_NE("", failure.stringParameter());
    }
}

TEST(MagicImpl, TheObjectOfTheProcessIsOneOrThrowsEachTime)
{
    for (int i = 0; i < 2; ++i) {
        try {
            EXPECT_EQ(&MagicImpl::instance(), &MagicImpl::instance());
            EXPECT_EQ("application/pdf", MagicImpl::instance().mimeType(bytes("%PDF-1.7\n"), false));
        } catch (Exception const& failure) {
            EXPECT_EQ("MagicImpl", failure.message()); // no magic file is installed
        }
    }
}

// ---- the facade ---------------------------------------------------------------------------------

TEST(FileMagic, AnswersThroughTheTypeDatabase)
{
    ASSERT_NO_THROW(SharedMimeInfo::init()) << "there is no database: run data/stage-data.sh";
    Buffer const zip = bytes(_zip("a"));
    EXPECT_EQ("application/zip", FileMagic::mimeType(zip, "x.zzz"));
    EXPECT_EQ("application/zip", FileMagic::mimeTypeAll(zip, "x.zzz"));
    EXPECT_EQ("application/vnd.openxmlformats-officedocument.wordprocessingml.document",
              FileMagic::mimeType(zip, "report.docx"));
    EXPECT_EQ("application/pdf", FileMagic::mimeType(bytes("%PDF-1.4"), "photo.jpg"));
    EXPECT_EQ("application/x-compressed-tar", FileMagic::mimeType(Buffer(), "a.tar.gz"));
    EXPECT_EQ("ErrorEmptyInput", FileMagic::mimeTypeAll(Buffer(), ""));
    EXPECT_EQ(8u, FileMagic::type("application/msword"));
    EXPECT_EQ(15u, SharedMimeInfo::type("application/zip"));
    EXPECT_TRUE(SharedMimeInfo::isMimeTypeEqualOrSubclassOf("text/html", "text/plain"));
    EXPECT_EQ(1u, SharedMimeInfo::mimeTypeList().count("application/pdf"));
}

} // namespace
} // namespace Velmara
