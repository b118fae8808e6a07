#include <velmara/Velmara.h>

#include <memory>
#include <random>
#include <thread>

#include <gtest/gtest.h>

#include "support/Collected.h"
#include "support/Rule.h"

namespace Velmara {
namespace {

using std::string;

constexpr bool _forced = true, _unforced = false;

void write(VmaraConv& converter, string const& text)
{
    converter.write(bytes(text));
}

string text(Buffer const& buffer)
{
    return string(reinterpret_cast<char const*>(buffer.data()), buffer.length());
}

/// What a conversion gives, with its counters.
struct Outcome {
    string bytes;
    unsigned int bad, missing;
    bool operator==(Outcome const& other) const
    {
        return bytes == other.bytes && bad == other.bad && missing == other.missing;
    }
};

std::ostream& operator<<(std::ostream& out, Outcome const& outcome)
{
    return out << testing::PrintToString(outcome.bytes) << " bad " << outcome.bad << " missing " << outcome.missing;
}

Outcome converted(Pieces const& writes, string const& from, string const& to, bool substitute)
{
    Collected out;
    VmaraConv converter(out.media(), from, to, _forced);
    converter.substitute_unknown(substitute);
    for (string const& piece : writes) write(converter, piece);
    converter.end();
    return {out.take(), converter.ferrCnt(), converter.terrCnt()};
}

// ---- each character set, cut everywhere

struct Row {
    char const* rule;
    char const* charset;
    string source;
    string substituted;   // with U+FFFD for what is bad
    unsigned int bad;     // its bytes
    string unsubstituted; // without
};

class Charset : public testing::TestWithParam<Row> {};

TEST_P(Charset, SameAtEveryCut)
{
    Row const& row = GetParam();
    for (Pieces const& writes : everyCut(row.source)) {
        EXPECT_EQ((Outcome{row.substituted, row.bad, 0}), converted(writes, row.charset, "UTF-8", true));
        EXPECT_EQ((Outcome{row.unsubstituted, 0, 0}), converted(writes, row.charset, "UTF-8", false));
    }
}

Row sound(char const* rule, char const* charset, string const& source, string const& expected)
{
    return {rule, charset, source, expected, 0, expected};
}

INSTANTIATE_TEST_SUITE_P(
    Sound, Charset,
    testing::Values(sound("Utf8", "UTF-8",
                          "Gr\xc3\xbc\xc3\x9f"
                          "e, \xe4\xb8\x96\xe7\x95\x8c \xf0\x9f\x98\x80!",
                          "Grüße, 世界 😀!"),
                    sound("Gb18030", "GB18030", "\xbb\xe1\xd2\xe9 A \xb1\xa8\xb8\xe6 \x94\x39\xfc\x36 \x81\x30\x84\x36",
                          "会议 A 报告 😀 ¥"),
                    sound("Gb2312IsReadAsGb18030", "gb2312", "\xbb\xe1 \x94\x39\xfc\x36", "会 😀"),
                    sound("GbkIsReadAsGb18030", "Gbk", "\xbb\xe1 \x94\x39\xfc\x36", "会 😀"),
                    sound("ShiftJis", "Shift_JIS", "\x82\xa8\x90\xa2\x98\x62 \xb1\xb2 A", "お世話 ｱｲ A"),
                    sound("Iso2022Jp", "ISO-2022-JP", "\x1b$B\x32\x71\x35\x44\x1b(B A \x1b$B\x3b\x71\x4e\x41\x1b(B",
                          "会議 A 資料"),
                    sound("EucKr", "EUC-KR", "\xbe\xc8\xb3\xe7 A \xbc\xbc\xb0\xe8", "안녕 A 세계"),
                    sound("Big5", "Big5", "\xb7\x7c\xc4\xb3 A \xb3\xf8\xa7\x69", "會議 A 報告"),
                    sound("Windows1251", "windows-1251",
                          "\xc2\xf1\xf2\xf0\xe5\xf7\xe0 A \xb9"
                          "5",
                          "Встреча A №5"),
                    sound("Koi8R", "KOI8-R", "\xf0\xd2\xc9\xd7\xc5\xd4 A \xb3", "Привет A Ё"),
                    sound("ABadIso2022EscapeLeavesNoMark", "ISO-2022-JP", "A\x1b$ZB", "A$ZB")),
    ruleName);

INSTANTIATE_TEST_SUITE_P(
    Damaged, Charset,
    testing::Values(Row{"Utf8ByteThatStartsNothing", "UTF-8",
                        "a\xff"
                        "b",
                        "a\uFFFDb", 1, "ab"},
                    Row{"Utf8CutCharacterIsOneSequence", "UTF-8",
                        "\xf0\x9f\x98"
                        "A",
                        "\uFFFDA", 3, "A"},
                    Row{"Utf8OverlongFormIsASequenceForEachByte", "UTF-8", "\xe0\x80\xafz", "\uFFFD\uFFFD\uFFFDz", 3,
                        "z"},
                    Row{"Utf8OverlongFormOfFourIsASequenceForEachByte", "UTF-8", "\xf0\x8f\xbf\xbfz",
                        "\uFFFD\uFFFD\uFFFD\uFFFDz", 4, "z"},
                    Row{"Utf8SurrogateIsASequenceForEachByte", "UTF-8", "\xed\xa0\x80z", "\uFFFD\uFFFD\uFFFDz", 3, "z"},
                    Row{"Utf8AboveTheLastCodePoint", "UTF-8", "\xf4\x90\x80\x80z", "\uFFFD\uFFFD\uFFFD\uFFFDz", 4, "z"},
                    Row{"Utf8CutAtTheEnd", "UTF-8", "ab\xe4\xb8", "ab\uFFFD", 2, "ab"},
                    Row{"FirstByteOfTwoAtTheEnd", "EUC-KR", "\xbe\xc8\xb3", "안\uFFFD", 1, "안"},
                    Row{"Gb18030CutAtTheEnd", "GB18030", "\xbb\xe1\x94\x39\xfc", "会\uFFFD", 3, "会"},
                    Row{"AByteThatASingleByteSetLacks", "ISO-8859-6", "\xc7\xa1\xc7", "ا\uFFFDا", 1, "اا"}),
    ruleName);

// ---- names

TEST(VmaraConv, EmptyNamesMeanLatin1AndUtf8)
{
    Collected out;
    VmaraConv converter(out.media(), "", "", _unforced);
    write(converter, "\xe4");
    EXPECT_EQ("ä", out.take());
}

TEST(VmaraConv, EqualNamesCopyWithoutLooking)
{
    Collected out;
    VmaraConv converter(out.media(), "utf-8", "UTF-8", _unforced);
    EXPECT_TRUE(converter.ok());
    write(converter, "\xff\xc3");
    EXPECT_EQ(Pieces({"\xff\xc3"}), out.takePieces());
    converter.flush();
    converter.end();
    EXPECT_TRUE(converter.ok());
    write(converter, "\xff");
    EXPECT_EQ("\xff", out.take());
}

TEST(VmaraConv, PassThroughHandsOnTheCallersOwnBytes)
{
    struct Sink : MediaOutImpl {
        using MediaOutImpl::write;
        void write(uchar_t const* bytes, uint_t) override { seen = bytes; }
        uchar_t const* seen = nullptr;
    };
    auto* sink = new Sink;
    MediaOut const out(sink, false);
    VmaraConv converter(out, "x", "X", _unforced);
    uchar_t const bytes[] = {'a', 'b'};
    converter.write(bytes, 2);
    EXPECT_EQ(bytes, sink->seen);
}

TEST(VmaraConv, ForceValidatesBetweenEqualNames)
{
    EXPECT_EQ((Outcome{"a\uFFFDb", 1, 0}), converted({"a\xff"
                                                      "b"},
                                                     "utf-8", "UTF-8", true));
}

TEST(VmaraConv, AReplacedNameMayEqualTheTarget)
{
    Collected out;
    VmaraConv converter(out.media(), "gb2312", "gb18030", _unforced);
    EXPECT_TRUE(converter.ok());
    write(converter, "\x81");
    EXPECT_EQ("\x81", out.take());
}

TEST(VmaraConv, ForceConvertsAReplacedNameThatEqualsTheTarget)
{
    EXPECT_EQ((Outcome{"A", 0, 0}), converted({"A\x81"}, "gb2312", "gb18030", false));
}

TEST(VmaraConv, OnlyTheSourceNameIsReplaced)
{
    Collected out;
    VmaraConv converter(out.media(), "GB18030", "GB2312", _unforced);
    write(converter, "\x81\x30\x84\x36");
    converter.end();
    EXPECT_EQ("", out.take());
    EXPECT_EQ(1u, converter.terrCnt());
}

TEST(VmaraConv, UnknownNamesCopy)
{
    for (auto const& names : {std::pair<string, string>{"no-such-charset", "UTF-8"}, {"UTF-8", "no-such-charset"}}) {
        Collected out;
        VmaraConv converter(out.media(), names.first, names.second, _forced);
        EXPECT_FALSE(converter.ok());
        write(converter, "a\xff");
        EXPECT_EQ("a\xff", out.take());
        converter.end();
        EXPECT_EQ(1, out.ends());
    }
}

TEST(VmaraConv, ANameEndsAtItsFirstNul)
{
    Collected out;
    VmaraConv converter(out.media(), string("utf-8\0x", 7), "UTF-8", _unforced);
    EXPECT_TRUE(converter.ok());
    write(converter, "\xff");
    EXPECT_EQ("\xff", out.take());
}

// ---- counters, flushes, ends

TEST(VmaraConv, AMissingCharacterIsDroppedAndItsUnitsCounted)
{
    EXPECT_EQ((Outcome{"ab", 0, 3}), converted({"a", "会", "😀b"}, "UTF-8", "ISO-8859-1", false));
}

TEST(VmaraConv, CountersOnlyGrow)
{
    Collected out;
    VmaraConv converter(out.media(), "UTF-8", "ISO-8859-1", _unforced);
    converter.substitute_unknown(true);
    write(converter, "\xff");
    EXPECT_EQ(1u, converter.ferrCnt());
    EXPECT_EQ(1u, converter.terrCnt()) << "the mark itself is missing in the target";
    converter.end();
    EXPECT_EQ(1u, converter.ferrCnt());
}

TEST(VmaraConv, SubstitutionCanBeSwitchedBetweenWrites)
{
    Collected out;
    VmaraConv converter(out.media(), "UTF-8", "UTF-8", _forced);
    write(converter, "\xff");
    converter.substitute_unknown(true);
    write(converter, "\xff");
    converter.substitute_unknown(false);
    write(converter, "\xff");
    EXPECT_EQ("\uFFFD", out.take());
    EXPECT_EQ(1u, converter.ferrCnt());
}

TEST(VmaraConv, AFlushEndsTheTextButNotTheConverter)
{
    Collected out;
    VmaraConv converter(out.media(), "UTF-8", "UTF-16BE", _unforced);
    converter.substitute_unknown(true);
    write(converter, "\xc3");
    converter.flush();
    EXPECT_EQ("\xff\xfd", out.take());
    write(converter, "\xa4");
    EXPECT_EQ("\xff\xfd", out.take());
    EXPECT_TRUE(converter.ok());
    EXPECT_EQ(0, out.ends());
}

TEST(VmaraConv, AFlushReturnsTheTargetToItsInitialState)
{
    Collected out;
    VmaraConv converter(out.media(), "UTF-8", "ISO-2022-JP", _unforced);
    write(converter, "会");
    EXPECT_EQ("\x1b$B2q", out.take());
    converter.flush();
    EXPECT_EQ("\x1b(B", out.take());
    write(converter, "会");
    EXPECT_EQ("\x1b$B2q", out.take());
}

// Its converter has the header ready again after each flush, so there is always something to write.
TEST(VmaraConv, AnEndIntoIso2022KrWritesOneHeader)
{
    EXPECT_EQ((Outcome{"\x1b$)C\x0e\x30\x21\x0f", 0, 0}), converted({"가"}, "UTF-8", "ISO-2022-KR", true));
    EXPECT_EQ((Outcome{"\x1b$)C" + string(2000, 'a'), 0, 0}),
              converted({string(2000, 'a')}, "UTF-8", "ISO-2022-KR", true));
}

TEST(VmaraConv, WriteThroughComesBehindWhatWaits)
{
    Collected out;
    VmaraConv converter(out.media(), "UTF-8", "UTF-16BE", _unforced);
    converter.substitute_unknown(true);
    write(converter, "A\xc3");
    converter.writeThrough(reinterpret_cast<uchar_t const*>("raw"), 3);
    EXPECT_EQ(string("\0A\xff\xfdraw", 7), out.take());
}

TEST(VmaraConv, AWriteAfterTheEndIsCopied)
{
    Collected out;
    VmaraConv converter(out.media(), "ISO-8859-1", "UTF-8", _unforced);
    write(converter, "\xe4");
    converter.end();
    EXPECT_FALSE(converter.ok());
    write(converter, "\xe4");
    EXPECT_EQ("ä\xe4", out.take());
}

TEST(VmaraConv, TheLastHandleEndsTheDownstreamAgain)
{
    Collected out;
    {
        VmaraConv converter(out.media(), "ISO-8859-1", "UTF-8", _unforced);
        VmaraConv const copy = converter;
        converter.end();
        EXPECT_EQ(1, out.ends());
    }
    EXPECT_EQ(2, out.ends());
}

TEST(VmaraConv, TheLastHandleGivesOutWhatWaits)
{
    Collected out;
    {
        VmaraConv converter(out.media(), "UTF-8", "UTF-16BE", _unforced);
        converter.substitute_unknown(true);
        write(converter, "\xc3");
    }
    EXPECT_EQ("\xff\xfd", out.take());
    EXPECT_EQ(1, out.ends());
}

TEST(VmaraConv, AConverterMayOutliveTheOthersOfItsThread)
{
    Collected out;
    std::thread([&] {
        // Made first, it goes last: what is kept of closed converters for the thread has gone by then.
        static thread_local std::unique_ptr<VmaraConv> late;
        late = std::make_unique<VmaraConv>(out.media(), "UTF-8", "UTF-16BE", _unforced);
        late->substitute_unknown(true);
        write(*late, "\xc3");
        EXPECT_EQ("\xe4", converted({"\xc3\xa4"}, "UTF-8", "ISO-8859-1", false).bytes);
    }).join();
    EXPECT_EQ("\xff\xfd", out.take());
    EXPECT_EQ(1, out.ends());
}

TEST(VmaraConv, ADetachedConverterGoesWithoutATrace)
{
    Collected out;
    {
        VmaraConv converter(out.media(), "UTF-8", "UTF-16BE", _unforced);
        converter.substitute_unknown(true);
        write(converter, "\xc3");
        converter.detach();
    }
    EXPECT_EQ("", out.take());
    EXPECT_EQ(0, out.ends());
}

TEST(VmaraConv, AnEndWithoutADownstreamClosesAllTheSame)
{
    Collected out;
    VmaraConv converter(MediaOut(), "ISO-8859-1", "UTF-8", _unforced);
    EXPECT_THROW(write(converter, "x"), Exception);
    converter.end();
    converter.attach(out.media());
    write(converter, "\xe4");
    EXPECT_EQ("\xe4", out.take());
}

TEST(VmaraConv, WhatADownstreamThrowsTravelsFromAWriteButNotFromTheLastHandle)
{
    struct Refusing : MediaOutImpl {
        using MediaOutImpl::write;
        void write(uchar_t const*, uint_t) override { throw Exception("full", 6, nullptr, 0); }
        void end() override { throw Exception("full", 6, nullptr, 0); }
    };
    VmaraConv converter(MediaOut(new Refusing, false), "ISO-8859-1", "UTF-8", _unforced);
    EXPECT_THROW(write(converter, "x"), Exception);
}

template <class Call> void throwsOnNull(Call call)
{
    VmaraConv converter;
    try {
        call(converter);
        ADD_FAILURE() << "no exception";
    } catch (MediaException const& e) {
        EXPECT_EQ(1, e.code());
        EXPECT_EQ("VmaraCharSet", e.fileName());
        EXPECT_NE(0u, e.lineNumber());
    }
}

TEST(VmaraConv, EveryOperationOfItsOwnThrowsOnANullHandle)
{
    throwsOnNull([](VmaraConv& c) { c.flush(); });
    throwsOnNull([](VmaraConv& c) { c.writeThrough(nullptr, 0); });
    throwsOnNull([](VmaraConv& c) { c.ok(); });
    throwsOnNull([](VmaraConv& c) { c.ferrCnt(); });
    throwsOnNull([](VmaraConv& c) { c.terrCnt(); });
    throwsOnNull([](VmaraConv& c) { c.retry_on_failure(true); });
    throwsOnNull([](VmaraConv& c) { c.substitute_unknown(true); });
    EXPECT_TRUE(VmaraConv().isNull());
}

TEST(VmaraConv, BadBytesOfAJapaneseTextAreNoReasonToRetry)
{
    for (bool retry : {true, false}) {
        Collected out;
        VmaraConv converter(out.media(), "iso-2022-jp", "UTF-8", _unforced);
        converter.retry_on_failure(retry);
        converter.substitute_unknown(true);
        write(converter, "A\x82\xa8"); // Shift_JIS
        converter.end();
        EXPECT_EQ("A\uFFFD\uFFFD", out.take());
        EXPECT_EQ(2u, converter.ferrCnt());
    }
}

// ---- what arrives in one write

std::vector<size_t> sizes(Pieces const& pieces)
{
    std::vector<size_t> all;
    for (string const& piece : pieces) all.push_back(piece.size());
    return all;
}

Pieces writesFor(string const& source, string const& from, string const& to)
{
    Collected out;
    VmaraConv converter(out.media(), from, to, _forced);
    converter.substitute_unknown(true);
    write(converter, source);
    Pieces pieces = out.takePieces();
    converter.end();
    for (string const& piece : out.takePieces()) pieces.push_back(piece);
    return pieces;
}

string repeated(string const& piece, int n)
{
    string all;
    for (int i = 0; i < n; ++i) all += piece;
    return all;
}

TEST(VmaraConvWrites, HoldAtMost512UnitsAnd1064Bytes)
{
    using Sizes = std::vector<size_t>;
    for (char const* to : {"UTF-8", "utf8"}) {
        EXPECT_EQ((Sizes{512, 88}), sizes(writesFor(string(600, 'a'), "UTF-8", to)));
        EXPECT_EQ((Sizes{1024, 176}), sizes(writesFor(repeated("ä", 600), "UTF-8", to)));
        EXPECT_EQ((Sizes{1064, 472, 264}), sizes(writesFor(repeated("会", 600), "UTF-8", to)));
        // Two bytes of the last character find no room in the first write and wait for the end.
        EXPECT_EQ((Sizes{1064, 2}), sizes(writesFor("a" + repeated("会", 355), "UTF-8", to)));
        // The second unit of the pair waits for the next piece, and the character with it.
        EXPECT_EQ((Sizes{511, 5}), sizes(writesFor(string(511, 'a') + "😀b", "UTF-8", to)));
    }
}

/// Random text from a few characters of each length, with bad bytes when asked for.
string randomText(std::mt19937& random, bool damaged)
{
    static Pieces const characters{"a", "b", "\n", "ä", "Ж", "会", "\uFFFD", "😀", "\U0010FFFF"};
    static Pieces const bad{"\xff", "\xc3", "\xe4\xb8", "\xf0\x9f\x98", "\xed\xa0\x80", "\xc0\x80"};
    string text;
    size_t const mostly = random() % characters.size();
    for (unsigned int n = random() % 3000; n != 0; --n) {
        if (damaged && random() % 400 == 0) text += bad[random() % bad.size()];
        text += characters[random() % 4 == 0 ? random() % characters.size() : mostly];
    }
    return text;
}

string const utf16(string const& utf8)
{
    return converted({utf8}, "UTF-8", "UTF-16LE", true).bytes;
}

TEST(VmaraConvWrites, ValidUtf8TakesAShortWayThatDoesNotShow)
{
    std::mt19937 random(4711);
    for (int i = 0; i < 400; ++i) {
        string const source = randomText(random, i % 2 != 0);
        Pieces const expected = writesFor(source, "UTF-8", "utf8"); // by ICU alone
        EXPECT_EQ(expected, writesFor(source, "UTF-8", "UTF-8"));
        EXPECT_EQ(expected, writesFor(utf16(source), "UTF-16LE", "UTF-8"));
    }
}

/// Units as big-endian UTF-16 in SCSU, the one set whose converter lets half a pair through.
string halvesOfPairs(std::mt19937& random)
{
    static Pieces const units{string("\0a", 2), string("\xd8\x3d", 2), string("\xde\x00", 2), string("\x4f\x1a", 2)};
    string text = "\x0f";
    size_t const mostly = random() % units.size();
    for (unsigned int n = random() % 1500; n != 0; --n)
        text += units[random() % 4 == 0 ? random() % units.size() : mostly];
    return text;
}

TEST(VmaraConvWrites, HalvesOfPairsAreDroppedAndCountedAsByIcu)
{
    EXPECT_EQ((Outcome{"ab", 0, 3}),
              converted({string("\x0f\0a\xd8\x3d\xd8\x3d\0b\xde\x00", 11)}, "SCSU", "UTF-8", true));
    std::mt19937 random(42);
    for (int i = 0; i < 400; ++i) {
        string const source = halvesOfPairs(random);
        EXPECT_EQ(writesFor(source, "SCSU", "utf8"), writesFor(source, "SCSU", "UTF-8"));
        EXPECT_EQ(converted({source}, "SCSU", "utf8", true), converted({source}, "SCSU", "UTF-8", true));
    }
}

TEST(VmaraConvWrites, TheShortWayNeverOvertakesWhatWaits)
{
    std::mt19937 random(815);
    for (int i = 0; i < 400; ++i) {
        string const source = randomText(random, true);
        Pieces pieces;
        for (size_t at = 0; at < source.size();) {
            pieces.push_back(source.substr(at, 1 + random() % 700));
            at += pieces.back().size();
        }
        Outcome const whole = converted({source}, "UTF-8", "UTF-16LE", true);
        Outcome const cut = converted(pieces, "UTF-8", "UTF-8", true);
        EXPECT_EQ(whole.bytes, utf16(cut.bytes));
        EXPECT_EQ(whole.bad, cut.bad);
    }
}

// ---- one call for a whole text

TEST(VmaraConvHelpers, ConvNamesTheTargetFirst)
{
    Buffer out;
    EXPECT_TRUE(VmaraConv::conv(out, "UTF-8", "ISO-8859-1", "\xe4", 1, 0, true, true));
    EXPECT_EQ("ä", text(out));
    EXPECT_TRUE(VmaraConv::conv(out, "UTF-8", "utf-8", "b", 1, 0, true, true));
    EXPECT_EQ("äb", text(out));
}

TEST(VmaraConvHelpers, ConvWritesNothingForAnUnknownName)
{
    Buffer out;
    EXPECT_FALSE(VmaraConv::conv(out, "UTF-8", "no-such-charset", "a", 1, 0, true, true));
    EXPECT_EQ("", text(out));
    EXPECT_TRUE(VmaraConv::toUtf8("no-such-charset", "a", 1, 0, true, true).isEmpty());
    EXPECT_TRUE(VmaraConv::fromUtf8("no-such-charset", "a", 1, 0).isEmpty());
}

TEST(VmaraConvHelpers, MaxSizeBoundsTheBuffer)
{
    string const source = repeated("\xe4", 20000);
    Buffer out;
    EXPECT_TRUE(VmaraConv::conv(out, "UTF-8", "ISO-8859-1", source.data(), 20000, 5001, true, true));
    EXPECT_EQ(5001u, out.length());
    EXPECT_EQ(40000u, VmaraConv::toUtf8("ISO-8859-1", source.data(), 20000, 0, true, true).length());
}

TEST(VmaraConvHelpers, ToUtf8SubstitutesAsAsked)
{
    EXPECT_EQ("a\uFFFD", text(VmaraConv::toUtf8("EUC-KR", "a\xbe", 2, 0, true, true)));
    EXPECT_EQ("a", text(VmaraConv::toUtf8("EUC-KR", "a\xbe", 2, 0, true, false)));
}

TEST(VmaraConvHelpers, FromUtf8DropsWhatIsBadOrMissing)
{
    EXPECT_EQ("a\xe4", text(VmaraConv::fromUtf8("ISO-8859-1", "a\xc3\xa4\xff会", 7, 0)));
}

TEST(VmaraConvHelpers, ASecondTextOfTheSameNamesStartsAfresh)
{
    EXPECT_EQ("会", text(VmaraConv::toUtf8("ISO-2022-JP", "\x1b$B2q", 5, 0, true, true)));
    EXPECT_EQ("2q", text(VmaraConv::toUtf8("ISO-2022-JP", "2q", 2, 0, true, true)));
    EXPECT_EQ("\uFFFD", text(VmaraConv::toUtf8("EUC-KR", "\xbe", 1, 0, true, true)));
    EXPECT_EQ("안", text(VmaraConv::toUtf8("EUC-KR", "\xbe\xc8", 2, 0, true, true)));
}

// ---- trial conversion

struct Trial {
    char const* rule;
    std::list<string> charsets;
    string source;
    bool found;
    string out, used;
};

class TrialConversion : public testing::TestWithParam<Trial> {};

TEST_P(TrialConversion, GivesTheFirstThatReadsIt)
{
    Trial const& row = GetParam();
    Buffer out = bytes("before");
    string used = "none";
    EXPECT_EQ(row.found, VmaraConv::m_conv(out, used, row.source.data(), static_cast<uint_t>(row.source.size()),
                                           row.charsets, "UTF-8"));
    EXPECT_EQ(row.out, text(out));
    EXPECT_EQ(row.used, used);
}

INSTANTIATE_TEST_SUITE_P(
    Rules, TrialConversion,
    testing::Values(Trial{"AnEmptyListFindsNothingAndLeavesTheBufferAlone", {}, "a", false, "before", "none"},
                    Trial{"TheFirstWithoutABadByteWins", {"UTF-8", "ISO-8859-1"}, "\xe4", true, "ä", "ISO-8859-1"},
                    Trial{"TheOrderDecides", {"ISO-8859-1", "UTF-8"}, "ä", true, "Ã¤", "ISO-8859-1"},
                    Trial{"EmptyNamesArePassedOver", {"", "UTF-8"}, "ä", true, "ä", "UTF-8"},
                    Trial{"UnknownNamesArePassedOver", {"no-such-charset", "UTF-8"}, "ä", true, "ä", "UTF-8"},
                    Trial{"ACutCharacterAtTheEndIsABadByte", {"UTF-8", "KOI8-R"}, "\xd1", true, "я", "KOI8-R"},
                    Trial{"NoneFits", {"UTF-8", "EUC-KR"}, "\xff", false, "before", "none"},
                    Trial{"ABadByteBehindALongGoodText",
                          {"UTF-8", "ISO-8859-1"},
                          string(9000, 'a') + "\xff",
                          true,
                          string(9000, 'a') + "ÿ",
                          "ISO-8859-1"},
                    Trial{"EqualNamesAreValidatedToo", {"UTF-8"}, "\xff", false, "before", "none"}),
    ruleName);

TEST(TrialConversionTarget, MissingCharactersPlayNoPart)
{
    Buffer out;
    string used;
    VMRStaticCharSetFallbacksImpl<int> fallbacks(1);
    EXPECT_TRUE(VmaraConv::m_conv(out, used, "a会", 4, fallbacks, "ISO-8859-1"));
    EXPECT_EQ("a", text(out));
}

// ---- IMAP mailbox names

TEST(ImapMailboxName, GoesToModifiedUtf7AndBack)
{
    // The example of RFC 3501.
    EXPECT_EQ("~peter/mail/&U,BTFw-/&ZeVnLIqe-", utf82utf7imap("~peter/mail/台北/日本語"));
    EXPECT_EQ("~peter/mail/台北/日本語", utf7imp2utf8("~peter/mail/&U,BTFw-/&ZeVnLIqe-"));
    EXPECT_EQ("a&-b", utf82utf7imap("a&b"));
    EXPECT_EQ("a&b", utf7imp2utf8("a&-b"));
    EXPECT_EQ("", utf82utf7imap(""));
}

TEST(ImapMailboxName, BadBytesVanishOneWayAndGiveAMarkTheOther)
{
    EXPECT_EQ("ab", utf82utf7imap("a\xff"
                                  "b"));
    EXPECT_EQ("a\uFFFDb", utf7imp2utf8("a\xff"
                                       "b"));
}

TEST(ImapMailboxName, TheCFormCopiesNoTerminatorOfItsOwn)
{
    char name[8] = "xxxxxxx";
    EXPECT_EQ(4, vmaral_convert_to_utf7imap("a&b", name, 8));
    EXPECT_EQ("a&-bxxx", string(name));
    EXPECT_EQ('\0', name[7]);
}

TEST(ImapMailboxName, TheCFormNeverWritesPastItsSize)
{
    char name[8] = "xxxxxxx";
    EXPECT_EQ(8, vmaral_convert_to_utf7imap("abcdefgh", name, 4));
    EXPECT_EQ("abc", string(name));
    EXPECT_EQ("xxx", string(name + 4));
    EXPECT_EQ(2, vmaral_convert_to_utf7imap("yz", name, 0));
    EXPECT_EQ(2, vmaral_convert_to_utf7imap("yz", name, -1));
    EXPECT_EQ("abc", string(name));
    EXPECT_EQ(2, vmaral_convert_to_utf7imap("yz", name, 1));
    EXPECT_EQ("", string(name));
}

} // namespace
} // namespace Velmara
