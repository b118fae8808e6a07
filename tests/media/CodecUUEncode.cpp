#include <velmara/Velmara.h>

#include <gtest/gtest.h>

#include "support/Collected.h"
#include "support/Rule.h"

namespace Velmara {
namespace {

using std::string;

struct Row {
    char const* rule;
    Pieces lines;
    string arrives;
};

class UUEncode : public testing::TestWithParam<Row> {};

TEST_P(UUEncode, GivesThePayload)
{
    EXPECT_EQ(GetParam().arrives, through<CodecUUEncode>(GetParam().lines));
}

string _times(int n, string const& text)
{
    string all;
    while (n-- > 0) all += text;
    return all;
}

string const _begin = "begin 644 a\n";
string const _cat = "#0V%T\n";

INSTANTIATE_TEST_SUITE_P(
    Begin, UUEncode,
    testing::Values(Row{"WholeFile", {_begin, _cat, "`\n", "end\n"}, "Cat"},
                    Row{"LineEndsMayBeCrLf", {"begin 644 a\r\n", "#0V%T\r\n", "`\r\n", "end\r\n"}, "Cat"},
                    Row{"LinesBeforeItAreIgnored", {"Hello\n", "", "\n", "end\n", _cat, _begin, _cat}, "Cat"},
                    Row{"TenBytesAreNoBeginLine", {"begin 6 a\n", _cat}, ""},
                    Row{"ElevenBytesAreOne", {"begin 64 a\n", _cat}, "Cat"},
                    Row{"CaseDoesNotCount", {"BeGiN 644 a\n", _cat}, "Cat"},
                    Row{"ItNeedsItsBlank", {"beginning of it\n", _cat}, ""},
                    Row{"ModeAndNameAreNotRead", {"begin xxxxxxxx", _cat}, "Cat"}),
    ruleName);

INSTANTIATE_TEST_SUITE_P(
    Body, UUEncode,
    testing::Values(Row{"PaddingOfTheLastGroupIsCutOff", {_begin, "$0V%T0V%T\n"}, "CatC"},
                    Row{"ADeclaredCountPastTheLineGivesWhatIsThere", {_begin, "&0V%T\n"}, "Cat"},
                    Row{"GroupsPastTheDeclaredCountAreDropped", {_begin, "#0V%T0V%T0V%T\n"}, "Cat"},
                    Row{"AGroupThatTouchesTheEndOfTheLineIsLeftOut", {_begin, "#0V%T", "&0V%T0V%T"}, "Cat"},
                    Row{"TheLongestCount", {_begin, "_" + _times(21, "!!!!") + "\n"}, _times(21, "\x04\x10\x41")},
                    Row{"CountsAndCharactersAreTakenModulo64", {_begin, "c\xb0\x96\xa5\x94\n"}, "Cat"},
                    Row{"ACountOf0DeliversNothingAndDoesNotEnd", {_begin, "`0V%T\n", _cat}, "Cat"},
                    Row{"EmptyLinesAreIgnored", {_begin, "\n", "\r\n", "\r", _cat}, "Cat"}),
    ruleName);

INSTANTIATE_TEST_SUITE_P(
    End, UUEncode,
    testing::Values(Row{"EndLine", {_begin, _cat, "end\n", _cat}, "Cat"},
                    Row{"EndWithoutALineEnd", {_begin, _cat, "end", _cat}, "Cat"},
                    Row{"EndInAnyCaseAndWithMore", {_begin, _cat, "ENDING.....\n", _cat}, "Cat"},
                    Row{"BlankAndLineEnd", {_begin, _cat, " \n", _cat}, "Cat"},
                    Row{"BlankAndCrLf", {_begin, _cat, " \r\n", _cat}, "Cat"},
                    Row{"GraveAccentAndLineEnd", {_begin, _cat, "`\n", _cat}, "Cat"},
                    Row{"LongerLineWithAFirstByteBelow33", {_begin, _cat, "    \n", _cat}, "Cat"},
                    Row{"EmptyWrite", {_begin, _cat, "", _cat}, "Cat"},
                    Row{"ASecondBeginLineIsIgnored", {_begin, _cat, "end\n", _begin, _cat}, "Cat"}),
    ruleName);

// Nothing is carried: the second half of a cut line is read as a line of its own.
TEST(CodecUUEncode, ACutLineIsLost)
{
    for (size_t at = 1; at < _cat.size(); ++at)
        EXPECT_EQ("", through<CodecUUEncode>({_begin, _cat.substr(0, at), _cat.substr(at)})) << at;
    string const two = "&0V%T0V%T\n";
    char const* const arrives[] = {"", "", "", "Cat", "", "Cat", "Cat", "Cat", "Cat"};
    for (size_t at = 1; at < two.size(); ++at)
        EXPECT_EQ(arrives[at - 1], through<CodecUUEncode>({_begin, two.substr(0, at), two.substr(at)})) << at;
}

// A line within the body of which 1 to 3 bytes come first ends the body: here all further lines are lost.
TEST(CodecUUEncode, SingleBytesGiveNothing)
{
    EXPECT_EQ("", through<CodecUUEncode>(singleBytes(_begin + _cat)));
    Pieces writes{_begin};
    for (string const& byte : singleBytes(_cat + _cat)) writes.push_back(byte);
    writes.push_back(_cat);
    EXPECT_EQ("", through<CodecUUEncode>(writes));
}

TEST(CodecUUEncode, EndIsPassedOn)
{
    Collected out;
    CodecUUEncode codec;
    codec.attach(out.media());
    CodecUUEncode(codec).end();
    EXPECT_EQ(1, out.ends());
}

} // namespace
} // namespace Velmara
