#include <velmara/Config.h>

#include <velmara/StringOperations.h>

#include <gtest/gtest.h>

#include "semantics/DictionaryFiles.h"

namespace Velmara {
namespace {

class ConfigTest : public testing::Test {
protected:
    using Words = std::map<std::wstring, unsigned int>;

    Words const& wordsAfterReading(TD::langID language)
    {
        config.readDict(files.dir());
        return config.dictionary(language).words;
    }

    DictionaryFiles files;
    Config config;
};

TEST_F(ConfigTest, NumbersStartAtTwoAndFollowTheOrderOfRecords)
{
    files.writeWords("e2i.idx", {L"zebra", L"apple"});
    EXPECT_EQ((Words{{L"zebra", 2}, {L"apple", 3}}), wordsAfterReading(TD::LanguageWestern));
}

TEST_F(ConfigTest, NumbersGoOnOverTheFilesOfOneList)
{
    files.writeWords("Dico_result_38.xdxf.idx", {L"third"});
    files.writeWords("e2i.idx", {L"second"});
    files.writeWords("xdict-ec-gb.idx", {L"first"});
    EXPECT_EQ((Words{{L"first", 2}, {L"second", 3}, {L"third", 4}}), wordsAfterReading(TD::LanguageWestern));
    EXPECT_EQ(files.dir() + "/xdict-ec-gb.idx", config.dictionary(TD::LanguageWestern).name);
}

TEST_F(ConfigTest, AWordReadAgainTakesTheNewNumber)
{
    files.writeWords("e2i.idx", {L"one", L"two", L"one", L"three"});
    EXPECT_EQ((Words{{L"one", 3}, {L"two", 3}, {L"three", 4}}), wordsAfterReading(TD::LanguageWestern));
}

TEST_F(ConfigTest, ASecondReadingKeepsTheWordsAndRenumbers)
{
    files.writeWords("e2i.idx", {L"one", L"two"});
    config.readDict(files.dir());
    EXPECT_EQ((Words{{L"one", 3}, {L"two", 3}}), wordsAfterReading(TD::LanguageWestern));
}

TEST_F(ConfigTest, EachFileBelongsToItsList)
{
    std::vector<std::pair<char const*, TD::langID>> const rows = {
        {"xdict-ec-gb.idx", TD::LanguageWestern},
        {"e2i.idx", TD::LanguageWestern},
        {"Dico_result_38.xdxf.idx", TD::LanguageWestern},
        {"xdict-ce-gb.idx", TD::LanguageSimplifiedChinese},
        {"xdict-ce-big5.idx", TD::LanguageSimplifiedChinese},
        {"jmdict-ja-en.idx", TD::LanguageJapanese},
        {"rus_eng_full.idx", TD::LanguageCyrillic},
        {"KoreanEnglishDic.idx", TD::LanguageKorean},
        {"Babylon_Hebrew_English.idx", TD::LanguageHebrew},
        {"ara-eng.index", TD::LanguageArabic},
    };
    for (auto const& row : rows) files.writeWords(row.first, {stringToWstring(row.first)});
    config.readDict(files.dir());
    for (auto const& row : rows)
        EXPECT_EQ(1u, config.dictionary(row.second).words.count(stringToWstring(row.first))) << row.first;
    EXPECT_TRUE(config.dictionary(TD::LanguageThai).words.empty());
    EXPECT_TRUE(config.dictionary(TD::LanguageByScript).words.empty());
    EXPECT_TRUE(config.dictionary(TD::LanguageTraditionalChinese).words.empty());
}

TEST_F(ConfigTest, MissingFilesAddNothing)
{
    config.readDict("/nowhere");
    for (int language = 0; language < 10; ++language)
        EXPECT_TRUE(config.dictionary(static_cast<TD::langID>(language)).words.empty());
}

struct RecordRow {
    char const* rule;
    std::string bytes;
    std::map<std::wstring, unsigned int> words;
};

class WordFile : public testing::TestWithParam<RecordRow> {};

TEST_P(WordFile, IsReadRecordByRecord)
{
    DictionaryFiles const files;
    files.write("list", GetParam().bytes);
    dict list;
    list.read(files.dir() + "/list");
    EXPECT_EQ(GetParam().words, list.words);
    for (auto const& [word, number] : GetParam().words) {
        unsigned int const* found = list.find(word.data(), word.size());
        ASSERT_NE(nullptr, found);
        EXPECT_EQ(number, *found);
    }
}

std::string _wide(std::wstring const& text)
{
    std::string bytes;
    for (wchar_t c : text) bytes += DictionaryFiles::number(static_cast<std::uint32_t>(c));
    return bytes;
}

INSTANTIATE_TEST_SUITE_P(
    Records, WordFile,
    testing::Values(
        RecordRow{"EmptyFile", "", {}},
        RecordRow{"AnEmptyRecordIsTheEmptyWord", "\n" + DictionaryFiles::record(L"a"), {{L"", 2}, {L"a", 3}}},
        RecordRow{"ARecordWithoutItsZeroEndsAtTheLineFeed",
                  _wide(L"ab") + "\n" + DictionaryFiles::record(L"c"),
                  {{L"ab", 2}, {L"c", 3}}},
        RecordRow{"TheLastRecordNeedsNoLineFeed", DictionaryFiles::record(L"a") + _wide(L"b"), {{L"a", 2}, {L"b", 3}}},
        RecordRow{"WhatStandsBehindTheZeroIsIgnored", _wide(std::wstring(L"a\0b", 3)) + "\n", {{L"a", 2}}},
        RecordRow{"TheMissingBytesOfACutCharacterAreZero", _wide(L"a") + std::string("b\0", 2) + "\n", {{L"ab", 2}}},
        // U+010A holds the byte of a line feed, which ends a record wherever it stands.
        RecordRow{"ALineFeedByteInsideACharacterEndsTheRecord", _wide(L"a\x10A"), {{L"a", 2}, {L"\x1", 3}}},
        RecordRow{"ARecordOf2047BytesIsRead",
                  std::string(2047, '\0') + "\n" + DictionaryFiles::record(L"a"),
                  {{L"", 2}, {L"a", 3}}},
        RecordRow{"ALongerRecordEndsTheReading",
                  DictionaryFiles::record(L"a") + std::string(2048, '\0') + "\n" + DictionaryFiles::record(L"b"),
                  {{L"a", 2}}}),
    [](auto const& row) { return std::string(row.param.rule); });

TEST(Dict, FilledByHandItIsSearchedAsItStands)
{
    dict list;
    list.words[L"abc"] = 7;
    EXPECT_EQ(7u, *list.find(L"abcd", 3));
    EXPECT_EQ(nullptr, list.find(L"abcd", 4));
}

TEST(Dict, WordsAddedByHandAfterReadingAreFoundToo)
{
    DictionaryFiles const files;
    files.writeWords("list", {L"read"});
    dict list;
    list.read(files.dir() + "/list");
    list.words[L"added"] = 9;
    EXPECT_EQ(9u, *list.find(L"added", 5));
    EXPECT_EQ(2u, *list.find(L"read", 4));
}

TEST(Dict, WordsReplacedByHandAfterReadingAreGone)
{
    DictionaryFiles const files;
    files.writeWords("list", {L"first", L"second"});
    dict list;
    list.read(files.dir() + "/list");
    list.words = {{L"third", 7}, {L"fourth", 8}}; // as many as before
    EXPECT_EQ(nullptr, list.find(L"first", 5));
    EXPECT_EQ(7u, *list.find(L"third", 5));
    list.read(files.dir() + "/list");
    EXPECT_EQ(4u, *list.find(L"first", 5));
    EXPECT_EQ(8u, *list.find(L"fourth", 6));
}

TEST(Dict, ACopyIsIndependentOfTheOriginal)
{
    DictionaryFiles const files;
    files.writeWords("list", {L"read"});
    dict copy;
    {
        dict list;
        list.read(files.dir() + "/list");
        copy = list;
        dict const moved(std::move(list));
        EXPECT_EQ(2u, *moved.find(L"read", 4));
    }
    EXPECT_EQ(2u, *copy.find(L"read", 4));
    EXPECT_EQ(nullptr, copy.find(L"rea", 3));
}

TEST(Dict, NumbersAreThoseOfOneRecordAfterAnotherWhateverTheSize)
{
    DictionaryFiles const files;
    std::vector<std::wstring> records;
    for (unsigned int i = 0; i < 200000; ++i) records.push_back(std::to_wstring(i * 7919 % 150000));
    files.writeWords("list", records);
    std::map<std::wstring, unsigned int> expected;
    for (std::wstring const& record : records) {
        expected.emplace(record, 0);
        expected[record] = static_cast<unsigned int>(expected.size() + 1);
    }
    dict list;
    list.read(files.dir() + "/list");
    EXPECT_EQ(expected, list.words);
    for (auto const& [word, number] : expected) ASSERT_EQ(number, *list.find(word.data(), word.size()));
}

TEST_F(ConfigTest, TagsComeFromTheirFile)
{
    files.write("html.dict",
                DictionaryFiles::tag("b", 70) + DictionaryFiles::tag("a", 3) + DictionaryFiles::tag("b", 71));
    config.readDict(files.dir());
    EXPECT_EQ(3u, config.getHtmlTagIdx("a"));
    EXPECT_EQ(71u, config.getHtmlTagIdx("b"));
}

TEST_F(ConfigTest, ATagRecordOfLengthZeroIsSkippedWhole)
{
    files.write("html.dict", DictionaryFiles::tag("", 5) + DictionaryFiles::tag("a", 3));
    config.readDict(files.dir());
    EXPECT_EQ(3u, config.getHtmlTagIdx("a"));
    EXPECT_EQ(2u, config.getHtmlTagIdx("")); // not in the table, so it is added behind the one
}

TEST_F(ConfigTest, ACutTagRecordEndsTheReading)
{
    std::string const whole = DictionaryFiles::tag("a", 30);
    files.write("html.dict", whole + DictionaryFiles::number(0xFFFFFFFF) + "bcd");
    config.readDict(files.dir());
    EXPECT_EQ(30u, config.getHtmlTagIdx("a"));
    EXPECT_EQ(2u, config.getHtmlTagIdx("bcd"));
    files.write("html.dict", whole + DictionaryFiles::number(1) + "b" + "\x01");
    config.readDict(files.dir());
    EXPECT_EQ(2u, config.getHtmlTagIdx("b"));
}

TEST_F(ConfigTest, AnUnknownTagTakesTheNextNumberThoughItMayBeTaken)
{
    files.write("html.dict", DictionaryFiles::tag("a", 2));
    config.readDict(files.dir());
    EXPECT_EQ(2u, config.getHtmlTagIdx("new"));
    EXPECT_EQ(3u, config.getHtmlTagIdx("NEW"));
    EXPECT_EQ(2u, config.getHtmlTagIdx("new"));
}

TEST_F(ConfigTest, ReadingClearsTheTags)
{
    EXPECT_EQ(1u, config.getHtmlTagIdx("x"));
    EXPECT_EQ(2u, config.getHtmlTagIdx("y"));
    config.readDict(files.dir());
    EXPECT_EQ(1u, config.getHtmlTagIdx("y"));
}

TEST_F(ConfigTest, TheTableOfTagsHoldsTenThousand)
{
    for (unsigned int i = 1; i <= 10000; ++i) ASSERT_EQ(i, config.getHtmlTagIdx("t" + std::to_string(i)));
    EXPECT_EQ(0u, config.getHtmlTagIdx("one more"));
    EXPECT_EQ(10000u, config.getHtmlTagIdx("t10000"));
}

TEST_F(ConfigTest, ALanguageThatIsNoneHasNoWords)
{
    files.writeWords("e2i.idx", {L"one"});
    config.readDict(files.dir());
    EXPECT_TRUE(config.dictionary(static_cast<TD::langID>(99)).words.empty());
}

TEST_F(ConfigTest, NamesTheFilesThatItReads)
{
    std::vector<std::string> const names = Config::fileNames();
    ASSERT_EQ(11u, names.size());
    EXPECT_EQ("html.dict", names[0]);
    // Each of the others adds its one word to some list.
    for (size_t i = 1; i < names.size(); ++i) files.writeWords(names[i], {std::to_wstring(i)});
    config.readDict(files.dir());
    std::set<std::wstring> words;
    for (int language = TD::LanguageWestern; language <= TD::LanguageByScript; ++language)
        for (auto const& entry : config.dictionary(static_cast<TD::langID>(language)).words) words.insert(entry.first);
    EXPECT_EQ(10u, words.size());
}

struct LanguageRow {
    TD::langID language;
    std::vector<std::string> charsets;
};

TEST_F(ConfigTest, EachCharsetHasItsLanguageInAnyCase)
{
    LanguageRow const rows[] = {
        {TD::LanguageArabic, {"ibm-864", "iso-8859-6", "macarabic", "windows-1256"}},
        {TD::LanguageSimplifiedChinese, {"gb18030", "gb2312", "gbk", "hz", "iso-2022-cn"}},
        {TD::LanguageTraditionalChinese, {"big5", "big5-hkscs", "euc-tw"}},
        {TD::LanguageCyrillic,
         {"koi8-r", "windows-1251", "ibm-855", "iso-8859-5", "iso-ir-111", "cp-866", "maccyrillic", "koi8-u",
          "macukrainian"}},
        {TD::LanguageHebrew, {"ibm-862", "iso-8859-8-i", "machebrew", "iso-8859-8", "windows-1255"}},
        {TD::LanguageJapanese, {"shift_jis", "euc-jp", "iso-2022-jp"}},
        {TD::LanguageKorean, {"euc-kr", "iso-2022-kr", "uhc", "johab"}},
        {TD::LanguageThai, {"iso-8859-11", "tis-620", "windows-874"}},
        {TD::LanguageByScript, {"utf-8", "UTF-8", "Utf-8"}},
        {TD::LanguageWestern, {"", "iso-8859-1", "us-ascii", "utf8", "no such"}},
    };
    config.initLang();
    for (LanguageRow const& row : rows)
        for (std::string const& charset : row.charsets) EXPECT_EQ(row.language, config.languageOf(charset)) << charset;
    EXPECT_EQ(TD::LanguageJapanese, config.languageOf("SHIFT_JIS"));
}

} // namespace
} // namespace Velmara
