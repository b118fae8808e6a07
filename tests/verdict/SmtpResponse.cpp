#include <velmara/SmtpResponse.h>

#include <gtest/gtest.h>

#include <array>

namespace Velmara::SMTP {
namespace {

struct Row {
    char const* rule;
    char const* line;
    std::array<int, 3> reply; // class, category, detail
    bool present;
    std::array<int, 3> enhanced;
};

class ResponseTest : public testing::TestWithParam<Row> {};

TEST_P(ResponseTest, IsClassified)
{
    Row const& row = GetParam();
    Response const response(row.line);
    EnhancedStatusCode const& code = response.enhancedStatusCode();
    EXPECT_EQ(row.reply, (std::array<int, 3>{response.classValue(), response.category(), response.detail()}));
    EXPECT_EQ(row.reply[0] != 0, response.isValid());
    EXPECT_EQ(row.present, code.isPresent());
    EXPECT_EQ(row.enhanced, (std::array<int, 3>{code.classValue(), code.category(), code.detail()}));
}

INSTANTIATE_TEST_SUITE_P(
    Lines, ResponseTest,
    testing::Values(Row{"WithAnEnhancedCode", "250 2.1.0 Ok", {2, 5, 0}, true, {2, 1, 0}},
                    Row{"ClassThreeHasNoEnhancedCode", "354 Start mail input", {3, 5, 4}, false, {0, 0, 0}},
                    Row{"AContinuationMayCarryACode", "421-4.7.0 Try again", {4, 2, 1}, true, {4, 7, 0}},
                    Row{"AContinuationWithoutACode", "250-SIZE 1000", {2, 5, 0}, false, {0, 0, 0}},
                    Row{"TheTextMayBeEmpty", "550 5.7.1", {5, 5, 0}, true, {5, 7, 1}},
                    Row{"TheLineEndMayStillBeThere", "550 5.7.1 no\r\n", {5, 5, 0}, true, {5, 7, 1}},
                    Row{"CategoryThreeIsNone", "530 Authentication required", {5, -1, 0}, false, {0, 0, 0}},
                    Row{"CategoryFourIsNone", "541 x", {5, -1, 1}, false, {0, 0, 0}},
                    Row{"CategoriesZeroAndOne", "211 x", {2, 1, 1}, false, {0, 0, 0}},
                    Row{"CategoryZero", "500 x", {5, 0, 0}, false, {0, 0, 0}},
                    Row{"CategorySixIsNone", "269 x", {2, -1, 9}, false, {0, 0, 0}},
                    Row{"ClassOneIsNotValid", "199 x", {0, -1, 9}, false, {0, 0, 0}},
                    Row{"ClassSixIsNotValid", "650 x", {0, 5, 0}, false, {0, 0, 0}},
                    Row{"TooShort", "25", {0, -1, 0}, false, {0, 0, 0}}, Row{"Empty", "", {0, -1, 0}, false, {0, 0, 0}},
                    Row{"NoThreeDigits", "2x0 foo", {0, -1, 0}, false, {0, 0, 0}},
                    Row{"ThreeDigitsAlone", "250", {2, 5, 0}, false, {0, 0, 0}},
                    Row{"AnEnhancedClassOfThreeIsNone", "354 3.1.2 x", {3, 5, 4}, true, {0, 1, 2}},
                    Row{"OfSeveralDigitsTheLastCounts", "250 52.10.345 x", {2, 5, 0}, true, {2, 0, 345}},
                    Row{"FourDigitsAreNoCode", "250 2.1.1234 x", {2, 5, 0}, true, {2, 1, 123}}),
    [](auto const& row) { return std::string(row.param.rule); });

TEST(Response, IsMadeFromALineWhereOneIsAskedFor)
{
    auto const isRefusal = [](Response const& response) { return response.classValue() == 5; };
    EXPECT_TRUE(isRefusal(std::string("550 5.7.1 no")));
    EXPECT_FALSE(isRefusal(std::string("250 ok")));
}

TEST(ResponseParser, IsTheExpressionOfTheWholeProcess)
{
    std::vector<std::string> groups;
    auto const& parser = Singleton<SMTP::_ResponseParser>::instance();
    EXPECT_TRUE(parser("421-4.7.0 Try again", groups));
    EXPECT_EQ((std::vector<std::string>{"421-4.7.0 Try again", "421", "4.7.0", "Try again"}), groups);
    EXPECT_FALSE(parser("354 Start mail input", groups));
}

TEST(EnhancedStatusCode, AnEmptyTextDoesNothing)
{
    EnhancedStatusCode code;
    code.value("");
    EXPECT_FALSE(code.isPresent());
    EXPECT_EQ(0, code.classValue());
}

TEST(EnhancedStatusCode, FieldsAreNotClearedFirst)
{
    EnhancedStatusCode code;
    code.value("5.7.1");
    code.value("4.2.2");
    EXPECT_EQ(4, code.classValue());
    EXPECT_EQ(2, code.category());
    EXPECT_EQ(12, code.detail());
    code.value("2");
    EXPECT_EQ(2, code.classValue());
    EXPECT_EQ(2, code.category());
    EXPECT_TRUE(code.isPresent());
}

TEST(EnhancedStatusCode, IsNotPresentWithoutADetail)
{
    EnhancedStatusCode code;
    code.value("5.7.");
    EXPECT_FALSE(code.isPresent());
    EXPECT_EQ(7, code.category());
}

TEST(EnhancedStatusCode, AClassThatIsNoDigitIsZero)
{
    EnhancedStatusCode code;
    code.value("x.1.1");
    EXPECT_EQ(0, code.classValue());
}

} // namespace
} // namespace Velmara::SMTP
