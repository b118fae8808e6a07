#include <velmara/Config.h>
#include <velmara/TD.h>

#include <gtest/gtest.h>

#include "semantics/DictionaryFiles.h"

namespace Velmara {
namespace {

/// A configuration of the process whose lists the test writes.
class TDTest : public testing::Test {
protected:
    TDTest()
    {
        files.writeWords("e2i.idx", {L"garden", L"chair", L"spring", L"don't", L"naïve", std::wstring(50, L'x'),
                                     std::wstring(51, L'y'), L"a,b", L"word", L"1st", L"the"});
        files.writeWords("rus_eng_full.idx", {L"отчёт", L"неделю", L"готов"});
        files.writeWords("xdict-ce-gb.idx", {L"项目", L"会议", L"会议通", L"明天", L"下午", L"项目会议"});
        files.writeWords("jmdict-ja-en.idx", {L"会議", L"資料", L"です", L"ます"});
        config.readDict(files.dir());
        pconfig = &config;
    }
    ~TDTest() override { pconfig = nullptr; }

    static std::wstring tokens(std::string const& text, std::string const& charset)
    {
        return TD(text, charset).tokens();
    }

    DictionaryFiles files;
    Config config;
};

// The numbers of the western list.
constexpr wchar_t garden = 2, chair = 3, spring = 4, dont = 5, naive = 6, word = 10, the = 12;

TEST_F(TDTest, TheSameWordsInAnotherLayoutGiveTheSameTokens)
{
    std::wstring const expected = {garden, chair, spring};
    EXPECT_EQ(expected, tokens("Garden chair this spring", "us-ascii"));
    EXPECT_EQ(expected, tokens("garden   unknown CHAIR, xyzzy spring.\r\n", "iso-8859-1"));
}

TEST_F(TDTest, ALineUnderElevenBytesIsSkipped)
{
    EXPECT_EQ(L"", tokens("the garden", "us-ascii"));
    EXPECT_EQ((std::wstring{the, garden}), tokens("the garden ", "us-ascii"));
    EXPECT_EQ((std::wstring{the, garden}), tokens("the garden\r\n", "us-ascii"));
}

TEST_F(TDTest, ALineWithOneKnownWordAddsNothing)
{
    EXPECT_EQ(L"", tokens("only one garden here\n", "us-ascii"));
    EXPECT_EQ((std::wstring{garden, chair}), tokens("one garden alone\nbut a garden chair\n", "us-ascii"));
}

TEST_F(TDTest, ADisclaimerEndsTheWorkAndKeepsWhatWasFound)
{
    EXPECT_EQ((std::wstring{garden, chair}),
              tokens("garden chair here\nLegal DISCLAIMER: garden chair\ngarden chair here\n", "us-ascii"));
}

TEST_F(TDTest, AShortLineWithADisclaimerEndsNothing)
{
    EXPECT_EQ((std::wstring{garden, chair}), tokens("disclaimer\ngarden chair\n", "us-ascii"));
}

struct PieceRow {
    char const* rule;
    std::string piece;
    std::wstring tokens;
};

TEST_F(TDTest, PiecesAreTestedOneByOne)
{
    PieceRow const rows[] = {
        {"a comma at the end is dropped", "word,", {word}},
        {"a full stop too", "word.", {word}},
        {"a colon too", "word:", {word}},
        {"only one of them", "word,,", {}},
        {"other marks stay", "word;", {}},
        {"a time is no word", "12:30,", {}},
        {"a digit spoils it, though it is listed", "1st", {}},
        {"a full stop inside spoils it", "www.garden", {}},
        {"two characters are too short", "ab", {}},
        {"two are left of three", "ab,", {}},
        {"punctuation inside stays", "a,b", {9}},
        {"an apostrophe is a letter like others", "don't", {dont}},
        {"characters beyond ASCII are found", "naïve", {naive}},
        {"but not lowered", "NAÏVE", {}},
        {"fifty characters are a word", std::string(50, 'x'), {7}},
        {"fifty-one are none", std::string(51, 'y'), {}},
        {"a tab does not cut", "garden\tchair", {}},
    };
    for (PieceRow const& row : rows)
        EXPECT_EQ((std::wstring{the, the} + row.tokens), tokens("the the  " + row.piece + " ", "us-ascii")) << row.rule;
}

TEST_F(TDTest, FiftyLinesCountInTheWordsMode)
{
    std::string text;
    for (int i = 0; i < 49; ++i) text += "short\n";
    EXPECT_EQ((std::wstring{garden, chair}), tokens(text + "garden chair\ngarden chair\n", "us-ascii"));
    EXPECT_EQ(L"", tokens(text + "short\ngarden chair\n", "us-ascii"));
}

TEST_F(TDTest, SixHundredTokensAreTheMost)
{
    std::string line;
    for (int i = 0; i < 35; ++i) line += "garden chair ";
    std::string text;
    for (int i = 0; i < 20; ++i) text += line + "\n";
    EXPECT_EQ(600u, tokens(text, "us-ascii").size());
}

TEST_F(TDTest, ALineOf8095BytesIsReadAndALongerOneEndsTheWork)
{
    std::string const start = "garden chair ";
    std::string const longest = start + std::string(8095 - start.size(), 'z');
    EXPECT_EQ((std::wstring{garden, chair, garden, chair}), tokens(longest + "\ngarden chair\n", "us-ascii"));
    EXPECT_EQ(L"", tokens(longest + "z\ngarden chair\n", "us-ascii"));
}

TEST_F(TDTest, OnlyTheFirst500CharactersOfALineCount)
{
    std::string const padding(487, 'z'); // " garden chair" then ends with character 500
    EXPECT_EQ((std::wstring{garden, chair}), tokens(padding + " garden chair", "us-ascii"));
    EXPECT_EQ(L"", tokens(padding + "z garden chair", "us-ascii"));
}

TEST_F(TDTest, Utf8CyrillicUsesItsOwnListAndTheWordsMode)
{
    std::string const text = "отчёт за неделю готов\n";
    TD const described(text, "UTF-8");
    EXPECT_EQ(TD::LanguageCyrillic, described.language());
    EXPECT_EQ("utf-8", described.charset());
    EXPECT_EQ((std::wstring{2, 3, 4}), described.tokens());
    EXPECT_EQ((std::wstring{2, 3, 4}), tokens(text, "koi8-r"));
}

TEST_F(TDTest, ArabicAndHebrewAreCutAtBlanks)
{
    for (auto const& [file, charset] :
         {std::pair("Babylon_Hebrew_English.idx", "windows-1255"), std::pair("ara-eng.index", "windows-1256")}) {
        files.writeWords(file, {L"abcd", L"efgh"});
        config.readDict(files.dir());
        EXPECT_EQ((std::wstring{2, 3}), tokens("abcd xabcd efgh", charset)) << charset;
    }
}

TEST_F(TDTest, ALanguageWithoutBlanksIsCutByRunningMatch)
{
    // 项目 2, 会议 3, 会议通 4, 明天 5, 下午 6
    EXPECT_EQ((std::wstring{5, 6, 4}), tokens("明天下午,开会议通知\n", "gb2312"));
    EXPECT_EQ((std::wstring{5, 6, 4}), tokens("明天 下午 / 开_会-议通\\知:.\n", "big5"));
    EXPECT_EQ(TD::LanguageTraditionalChinese, TD("", "big5").language());
}

TEST_F(TDTest, RunningMatchIsNoSearchForTheLongestWord)
{
    // 项目会 is no word, so the listed 项目会议 is never reached.
    EXPECT_EQ((std::wstring{2, 3, 5, 6}), tokens("项目会议明天下午，\n", "gb2312"));
}

TEST_F(TDTest, ALineWithTwoKnownWordsAddsNothingInTheRunMode)
{
    EXPECT_EQ(L"", tokens("明天不下午不，\n", "gb2312"));
}

TEST_F(TDTest, FewerThanThreeCharactersAreNotTried)
{
    EXPECT_EQ((std::wstring{5, 6, 5}), tokens("明天下午明天会议", "gb2312"));
}

TEST_F(TDTest, WesternTextInAnEastAsianCharsetFallsToTheWesternList)
{
    EXPECT_EQ((std::wstring{garden, chair}), tokens("garden chair here", "gb2312"));
    EXPECT_EQ((std::wstring{garden, chair}), tokens("garden chair here", "tis-620"));
    EXPECT_EQ(L"", tokens("short\nlines\n", "gb2312"));
}

TEST_F(TDTest, Utf8ChoosesTheListByScript)
{
    EXPECT_EQ(TD::LanguageSimplifiedChinese, TD("日本語", "utf-8").language());
    EXPECT_EQ(TD::LanguageJapanese, TD("日本語です", "utf-8").language());
    EXPECT_EQ(TD::LanguageKorean, TD("hello 안", "utf-8").language());
    EXPECT_EQ(TD::LanguageWestern, TD("hello", "utf-8").language());
    EXPECT_EQ(TD::LanguageWestern, TD("utf-8").language());
}

TEST_F(TDTest, InvalidUtf8AndNulsAreReadToTheFirstNul)
{
    EXPECT_EQ((std::wstring{garden, chair}), tokens("garden chair \xFF\xC3 here", "us-ascii"));
    EXPECT_EQ((std::wstring{garden, chair}), tokens(std::string("garden chair\0 spring the", 24), "us-ascii"));
}

TEST_F(TDTest, TagsAreAddedUpTo201)
{
    TD tags("utf-8");
    for (int i = 0; i < 300; ++i) tags.add("b");
    EXPECT_EQ(std::wstring(201, 1), tags.tokens());
}

TEST_F(TDTest, ATagThatFindsTheTableFullIsLeftOut)
{
    for (int i = 0; i < 10000; ++i) config.getHtmlTagIdx("t" + std::to_string(i));
    TD tags("utf-8");
    tags.add("one more");
    EXPECT_EQ(L"", tags.tokens());
}

TEST_F(TDTest, PropertiesHoldFourDescriptorsAndTellTheirType)
{
    TDProperties properties;
    EXPECT_EQ(17, properties.type());
    Buffer const text("garden chair here", 17, true);
    for (int i = 0; i < 5; ++i) properties.addText(text, "us-ascii");
    ASSERT_EQ(4u, properties.descriptors().size());
    EXPECT_EQ((std::wstring{garden, chair}), properties.descriptors()[3]->tokens());
    EXPECT_EQ(&properties.descriptors(), &static_cast<TDProperties const&>(properties).descriptors());
}

TEST_F(TDTest, PropertiesAskForTheCapacityAndStopAtANul)
{
    TDProperties properties;
    properties.addText(Buffer(), "us-ascii");
    EXPECT_TRUE(properties.descriptors().empty());
    properties.addText(Buffer(16, 0), "us-ascii");
    EXPECT_EQ(1u, properties.descriptors().size());
    properties.addText(Buffer("garden chair\0\nspring the garden", 31, true), "us-ascii");
    EXPECT_EQ((std::wstring{garden, chair}), properties.descriptors()[1]->tokens());
}

TEST(TD, WithoutAConfigurationThereAreNoWords)
{
    pconfig = nullptr;
    EXPECT_EQ(L"", TD("garden chair here", "us-ascii").tokens());
}

} // namespace
} // namespace Velmara
