#include <velmara/Utf2lang.h>

#include <gtest/gtest.h>

namespace Velmara {
namespace {

/// The families that are set, by their first letters.
std::string _scripts(std::string const& text)
{
    Utf2lang script;
    script.proc(text);
    EXPECT_EQ(script.chinese || script.japanese || script.korean, script.isCJK());
    return std::string(script.chinese ? "c" : "") + (script.japanese ? "j" : "") + (script.korean ? "k" : "") +
           (script.russian ? "r" : "");
}

std::string _repeat(std::string const& piece, int times)
{
    std::string text;
    while (times-- > 0) text += piece;
    return text;
}

struct Row {
    char const* rule;
    std::string text;
    char const* scripts;
};

class Scripts : public testing::TestWithParam<Row> {};

TEST_P(Scripts, AreTold)
{
    EXPECT_EQ(GetParam().scripts, _scripts(GetParam().text));
}

INSTANTIATE_TEST_SUITE_P(Texts, Scripts,
                         testing::Values(Row{"EmptyTextHasNone", "", ""}, Row{"WesternTextHasNone", "hello, wörld", ""},
                                         Row{"KanjiAloneAreChinese", "日本語", "c"},
                                         Row{"KanaMakeItJapanese", "日本語です", "j"},
                                         Row{"OneKanaInAPageOfChinese", _repeat("中", 300) + "の", "j"},
                                         Row{"EqualKanaAndHangulAreJapanese", "のか안녕", "j"},
                                         Row{"MoreHangulThanKanaIsKorean", "の안녕", "k"},
                                         Row{"OneHangulSyllableAmongAscii", "hello 안", "k"},
                                         Row{"HangulAndIdeographsAreKorean", "中中中안", "k"},
                                         Row{"CyrillicIsRussian", "Привет", "r"},
                                         Row{"OneIdeographOutweighsCyrillic", "Привет 中", "c"},
                                         Row{"BehindTheHangulSyllablesCountsAsKorean", "\xED\x9E\xB0", "k"}, // U+D7B0
                                         Row{"UD000CountsAsKorean", "\xED\x80\x80", "k"},
                                         Row{"TheFirst500CharactersCount", std::string(499, 'x') + "Я", "r"},
                                         Row{"WhatLiesBehindDoesNot", std::string(500, 'x') + "Я", ""},
                                         Row{"BadBytesCountAsOneCharacter", _repeat("\xFF", 499) + "Я", "r"}),
                         [](auto const& row) { return std::string(row.param.rule); });

struct RangeRow {
    bool (*test)(wchar_t);
    wchar_t first, last;
};

TEST(Utf2lang, RangesIncludeTheirBounds)
{
    RangeRow const rows[] = {
        {Utf2lang::isCN, 0x4E00, 0x9FFF}, {Utf2lang::isJP, 0x3040, 0x30FF}, {Utf2lang::isJP, 0x3190, 0x319F},
        {Utf2lang::isJP, 0x31F0, 0x31FF}, {Utf2lang::isKR, 0x1100, 0x11FF}, {Utf2lang::isKR, 0xAC00, 0xDFAF},
        {Utf2lang::isRU, 0x0400, 0x052F}, {Utf2lang::isRU, 0x2DE0, 0x2DFF}, {Utf2lang::isRU, 0xA640, 0xA69F},
    };
    for (RangeRow const& row : rows) {
        EXPECT_FALSE(row.test(row.first - 1)) << std::hex << row.first;
        EXPECT_TRUE(row.test(row.first)) << std::hex << row.first;
        EXPECT_TRUE(row.test(row.last)) << std::hex << row.last;
        EXPECT_FALSE(row.test(row.last + 1)) << std::hex << row.last;
    }
}

TEST(Utf2lang, AScanNeverClearsAFlag)
{
    Utf2lang script;
    script.scan(L"中", 1);
    script.scan(L"Я", 1);
    EXPECT_TRUE(script.chinese);
    EXPECT_TRUE(script.russian);
}

TEST(Utf2lang, ScanLooksAtTheCountAlone)
{
    Utf2lang script;
    script.scan(L"x中", 1);
    EXPECT_FALSE(script.isCJK());
}

TEST(Utf2lang, ConvertsToAnArrayThatIsAlwaysEnded)
{
    Utf2lang script;
    wchar_t out[4] = {9, 9, 9, 9};
    EXPECT_EQ(0, script.str2wc("aЯ\xFFzz", 6, out, 4, "UTF-8"));
    EXPECT_EQ(std::wstring(L"aЯ\xFFFD"), out);
    out[0] = 9;
    script.str2wc("abc", 3, out, 1, "UTF-8");
    EXPECT_EQ(0, out[0]);
    out[0] = 9;
    script.str2wc("abc", 3, out, 0, "UTF-8");
    EXPECT_EQ(9, out[0]);
    script.str2wc("abc", 3, out, 4, "no such set");
    EXPECT_EQ(0, out[0]);
}

TEST(Utf2lang, ConvertsAtMost500Characters)
{
    Buffer out;
    std::string const text(3000, 'x');
    EXPECT_EQ(0, Utf2lang().str2wc(text.data(), text.size(), out, "UTF-8"));
    EXPECT_EQ(2000u, out.length());
}

} // namespace
} // namespace Velmara
