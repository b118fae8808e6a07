#include <velmara/Velmara.h>

#include <gtest/gtest.h>

#include <memory>

#include "support/Collected.h"
#include "support/Rule.h"

namespace Velmara {
namespace {

using std::string;

TEST(FilterUTF8MediaOut, ReadsIso88591UntilToldOtherwise)
{
    for (Pieces const& writes : everyCut("caf\xe9 \xa9"))
        EXPECT_EQ("caf\xc3\xa9 \xc2\xa9", through<FilterUTF8MediaOut>(writes));
}

struct Row {
    char const* rule;
    char const* charset;
    string text, utf8;
};

class NamedCharacterSet : public testing::TestWithParam<Row> {};

TEST_P(NamedCharacterSet, Decides)
{
    Collected out;
    FilterUTF8MediaOut filter(out.media());
    filter.characterSet(GetParam().charset);
    filter.write(bytes(GetParam().text));
    EXPECT_EQ(GetParam().utf8, out.take());
    EXPECT_EQ(Pieces{GetParam().charset}, out.characterSets()) << "the call is passed on";
}

INSTANTIATE_TEST_SUITE_P(Rules, NamedCharacterSet,
                         testing::Values(Row{"ConvertsFromIt", "windows-1251", "\xcf\xf0", "\xd0\x9f\xd1\x80"},
                                         Row{"UnknownOnesCopy", "no-such-charset", "\xe9\xff", "\xe9\xff"},
                                         Row{"BadBytesVanish", "gb18030", "a\xff.", "a."},
                                         Row{"Utf8IsNotValidated", "utf-8", "\xc3\xff", "\xc3\xff"}),
                         ruleName);

TEST(FilterUTF8MediaOut, JoinsACharacterThatWritesCut)
{
    Collected out;
    FilterUTF8MediaOut filter(out.media());
    filter.characterSet("shift_jis");
    filter.write(bytes("\x82"));
    EXPECT_EQ("", out.take());
    filter.write(bytes(""));
    filter.characterSet("shift_jis"); // the same name changes nothing
    filter.characterSet("");
    filter.write(bytes("\xa0"));
    EXPECT_EQ("\xe3\x81\x82", out.take());
    EXPECT_EQ((Pieces{"shift_jis", "shift_jis", ""}), out.characterSets()) << "each call is passed on";
}

TEST(FilterUTF8MediaOut, ANameThatDiffersInCaseAloneBeginsAnew)
{
    Collected out;
    FilterUTF8MediaOut filter(out.media());
    filter.characterSet("shift_jis");
    filter.write(bytes("\x82"));
    filter.characterSet("Shift_JIS");
    filter.write(bytes("\xa0"));
    EXPECT_NE("\xe3\x81\x82", out.take()) << "the first byte is lost";
    EXPECT_EQ(0, out.ends()) << "the old converter goes without a word";
}

TEST(FilterUTF8MediaOut, TheNameItBeganWithIsComparedByCaseToo)
{
    Collected out;
    FilterUTF8MediaOut filter(out.media());
    filter.write(bytes("\xe9"));
    filter.characterSet("ISO-8859-1");
    filter.write(bytes("\xe9"));
    EXPECT_EQ("\xc3\xa9\xc3\xa9", out.take());
}

TEST(FilterUTF8MediaOut, EndDoesNotEndTheConversion)
{
    Collected out;
    {
        FilterUTF8MediaOut filter(out.media());
        filter.characterSet("euc-kr");
        filter.write(bytes("\xb0"));
        filter.end();
        EXPECT_EQ(1, out.ends());
        filter.write(bytes("\xa1"));
        EXPECT_EQ("\xea\xb0\x80", out.take());
    }
    EXPECT_EQ(3, out.ends()) << "the converter ends in the destructor, and once more as it goes";
}

TEST(FilterUTF8MediaOut, WithoutAWriteThereIsNothingToEnd)
{
    Collected out;
    FilterUTF8MediaOut(out.media()).write(Buffer());
    EXPECT_EQ(0, out.ends());
}

TEST(FilterUTF8MediaOut, TheConverterKeepsTheDownstreamOfTheFirstWrite)
{
    Collected first, second;
    FilterUTF8MediaOut filter(first.media());
    filter.write(bytes("a"));
    filter.attach(second.media());
    filter.write(bytes("b"));
    EXPECT_EQ("ab", first.take());
    EXPECT_EQ("", second.take());
    filter.characterSet("koi8-r");
    filter.write(bytes("c"));
    EXPECT_EQ("c", second.take());
    filter.detach();
    filter.write(bytes("d"));
    EXPECT_EQ("d", second.take());
}

TEST(FilterUTF8MediaOut, TakesADownstreamLater)
{
    Collected out;
    FilterUTF8MediaOut filter;
    EXPECT_FALSE(filter.isNull());
    filter.attach(out.media());
    filter.write(bytes("\xE9"));
    EXPECT_EQ("\xC3\xA9", out.take());
}

TEST(FilterUTF8MediaOut, ADownstreamThatThrowsDoesNotBreakDestruction)
{
    struct Refusing : MediaOutImpl {
        using MediaOutImpl::write;
        void write(uchar_t const*, uint_t) override {}
        void end() override { throw Exception("end", 4, "Refusing", 0); }
    };
    auto filter = std::make_unique<FilterUTF8MediaOut>(MediaOut(new Refusing, false));
    filter->write(bytes("a"));
    filter.reset();
}

} // namespace
} // namespace Velmara
