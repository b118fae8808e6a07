#include "facts/JsonLine.h"

#include <string>

#include <gtest/gtest.h>
#include <velmara/Buffer.h>

#include "facts/Fingerprint.h"

namespace VelmaraCommand {
namespace {

/// The line without what is in front of each.
std::string lineOf(Json const& object)
{
    std::string line;
    appendJsonLine(line, object);
    std::string const front = "{\"schema\":\"velmara/1\",\"fingerprint\":\"" + fingerprint() + '"';
    EXPECT_EQ(front, line.substr(0, front.size()));
    EXPECT_EQ('\n', line.back());
    return line.substr(front.size(), line.size() - front.size() - 2);
}

struct TextRow {
    char const* rule;
    std::string text, written;
};

class TextOfAField : public testing::TestWithParam<TextRow> {};

TEST_P(TextOfAField, IsWritten)
{
    EXPECT_EQ(",\"x\":" + GetParam().written, lineOf(Json{{"x", GetParam().text}}));
}

INSTANTIATE_TEST_SUITE_P(
    Rows, TextOfAField,
    testing::Values(TextRow{"Empty", "", R"("")"}, //
                    TextRow{"Plain", "a b~", R"("a b~")"}, TextRow{"QuoteAndBackSlash", R"(a"\)", R"("a\"\\")"},
                    TextRow{"LineEndsAndTabs", "\r\n\t", R"("\r\n\t")"},
                    TextRow{"Nul", std::string("a\0b", 3), R"("a\u0000b")"}, //
                    TextRow{"EscapeAndDel", "\033\177", R"("\u001b\u007f")"},
                    TextRow{"ControlOfC1", "\xC2\x9B", R"("\u009b")"}, // a terminal may take it for ESC [
                    TextRow{"TurnOfDirection", "\xE2\x80\xAE", R"("\u202e")"},
                    TextRow{"OtherCharactersAsTheyAre", "\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80",
                            "\"\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80\""},
                    TextRow{"LostByteStandsBeside", "a\xFF", "\"a\xEF\xBF\xBD\",\"xBase64\":\"Yf8=\""},
                    TextRow{"CutCharacterIsOneMark", "\xE2\x82", "\"\xEF\xBF\xBD\",\"xBase64\":\"4oI=\""},
                    TextRow{"CutCharacterOfFourBytes", "\xF0\x9F\x98x", "\"\xEF\xBF\xBDx\",\"xBase64\":\"8J+YeA==\""},
                    TextRow{"LongFormIsAMarkForEachByte", "\xE0\x80\xAF",
                            "\"\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD\",\"xBase64\":\"4ICv\""},
                    TextRow{"Surrogate", "\xED\xA0\x80",
                            "\"\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD\",\"xBase64\":\"7aCA\""},
                    TextRow{"ReplacementOfItsOwnLosesNothing", "\xEF\xBF\xBD", "\"\xEF\xBF\xBD\""}),
    [](auto const& row) { return std::string(row.param.rule); });

TEST(JsonLine, LostBytesOfAnArrayStandInOneOfTheSameLength)
{
    EXPECT_EQ(R"(,"x":["a","�"],"xBase64":[null,"/w=="])", lineOf(Json{{"x", {"a", "\xFF"}}}));
    EXPECT_EQ(R"(,"x":[["�",1],[]],"xBase64":[["/w==",null],null])",
              lineOf(Json{{"x", Json::array({Json::array({"\xFF", 1}), Json::array()})}}));
    EXPECT_EQ(R"(,"x":["a",[]])", lineOf(Json{{"x", Json::array({"a", Json::array()})}}));
}

TEST(JsonLine, LostBytesWithinAnObjectStandWithinIt)
{
    EXPECT_EQ(R"(,"x":[{"y":"�","yBase64":"/w==","z":1}],"u":{"v":"�","vBase64":"/w=="})",
              lineOf(Json{{"x", Json::array({Json{{"y", "\xFF"}, {"z", 1}}})}, {"u", Json{{"v", "\xFF"}}}}));
}

TEST(JsonLine, OtherValues)
{
    EXPECT_EQ(R"(,"a":null,"b":true,"c":-1,"d":18446744073709551615,"e":0.5,"f":[],"g":{})",
              lineOf(Json{{"a", nullptr},
                          {"b", true},
                          {"c", -1},
                          {"d", 18446744073709551615u},
                          {"e", 0.5},
                          {"f", Json::array()},
                          {"g", Json::object()}}));
}

/// A reader that decodes the bytes by itself gets the same text.
TEST(JsonLine, MarksAreThoseOfOtherPrograms)
{
    for (unsigned int i = 0; i < 1u << 20; ++i) {
        constexpr char const bytes[] = "a\x80\xA0\xBF\xC1\xC2\xE0\xE2\xED\xF0\xF1\xF4\xF5\xFF\xC3\x90";
        std::string text;
        for (unsigned int rest = i; text.size() < 5; rest >>= 4) text += bytes[rest & 15];
        std::string line;
        appendJsonLine(line, Json{{"x", text}});
        std::string const other = Json{{"x", text}}.dump(-1, ' ', false, Json::error_handler_t::replace);
        ASSERT_EQ(Json::parse(other)["x"], Json::parse(line)["x"]) << i;
        i += 10; // one in eleven
    }
}

TEST(JsonLine, NameOfAFieldIsAlwaysUtf8)
{
    EXPECT_EQ(R"(,"�":1)", lineOf(Json{{"\xFF", 1}}));
}

TEST(JsonLine, LinesAreAppended)
{
    std::string lines = "x\n";
    appendJsonLine(lines, Json::object());
    EXPECT_EQ("x\n{\"schema\":\"velmara/1\",\"fingerprint\":\"" + fingerprint() + "\"}\n", lines);
}

TEST(JsonLine, AnyBytesCanBeReadAgain)
{
    std::string all;
    for (int i = 0; i < 256 * 256; ++i) {
        all += static_cast<char>(i / 256);
        all += static_cast<char>(i % 256);
    }
    std::string line;
    appendJsonLine(line, Json{{"x", all}});
    Json const read = Json::parse(line);
    Velmara::Buffer bytes, encoded;
    std::string const base64 = read["xBase64"];
    encoded.append(reinterpret_cast<unsigned char const*>(base64.data()), static_cast<unsigned int>(base64.size()));
    encoded.decodeBase64(bytes);
    EXPECT_EQ(all, std::string(reinterpret_cast<char const*>(bytes.data()), bytes.length()));
}

} // namespace
} // namespace VelmaraCommand
