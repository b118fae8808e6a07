#include <velmara/ContentDisposition.h>

#include <gtest/gtest.h>

#include <vector>

#include <velmara/ContentType.h>
#include <velmara/Exception.h>
#include <velmara/Logger.h>

#include "support/HeaderText.h"
#include "support/Rule.h"

namespace Velmara {
namespace {

/// Gathers what is logged while it lives, as "id text".
class Logged {
public:
    Logged()
    {
        Logger::setSink(
            [this](unsigned int id, std::string const& text) { entries.push_back(std::to_string(id) + ' ' + text); });
    }
    ~Logged() { Logger::setSink({}); }

    std::vector<std::string> entries;
};

std::string const unknownDisposition = std::to_string(0x3000025) + ' ';

struct Row {
    char const* rule;
    std::string value;
    int code;
    std::string parameters;
    std::vector<std::string> logged;
};

class ContentDispositionValue : public testing::TestWithParam<Row> {};

TEST_P(ContentDispositionValue, IsReadAs)
{
    Row const& row = GetParam();
    Logged logged;
    ContentDisposition disposition(row.value);
    EXPECT_EQ(row.code, disposition.fileType());
    EXPECT_EQ(row.parameters, parametersOf(disposition));
    EXPECT_EQ(row.logged, logged.entries);
}

INSTANTIATE_TEST_SUITE_P(
    Rules, ContentDispositionValue,
    testing::Values(Row{"Inline", "INLINE; filename=a.txt", 2, "filename=a.txt", {}},
                    Row{"Attachment", "attachment", 1, "", {}},
                    Row{"InlineIsKnownByItsBeginning", "inlinefoo", 2, "", {}},
                    Row{"AttachmentIsKnownByItsBeginning", "attachmentfoo", 1, "", {}},
                    Row{"TheBeginningMustBeWhole", "inlin", 1, "", {unknownDisposition + "inlin"}},
                    Row{"AnUnknownWordIsAnAttachmentAndLogged",
                        "Form-Data; name=x",
                        1,
                        "name=x",
                        {unknownDisposition + "form-data"}},
                    Row{"TheLoggedWordIsNotTrimmed", "foo ; name=x", 1, "name=x", {unknownDisposition + "foo "}},
                    Row{"APercentSignIsLoggedAsItIs", "%s%n", 1, "", {unknownDisposition + "%s%n"}},
                    Row{"AnEmptyWordIsAnAttachmentAndNotLogged", "; name=x", 1, "name=x", {}},
                    Row{"BlanksAreSkippedAndLeaveAnEmptyWord", " \t ", 1, "", {}},
                    Row{"BlanksAheadAreSkipped", " \tinline", 2, "", {}},
                    Row{"ALineEndAheadBelongsToTheWord", "\ninline", 1, "", {unknownDisposition + "\ninline"}},
                    Row{"ALineEndEndsNoWord", "inline\r\n filename=a; b=c", 2, "b=c", {}},
                    Row{"NamesKeepTheirCase", "inline; FileName=A", 2, "FileName=A", {}},
                    Row{"ALineFeedEndsNoName", "inline; a\n b=c", 2, "a\n b=c", {}},
                    Row{"ACarriageReturnEndsANameAndTakesTheNextByteWithIt", "inline; a\r\n b", 2, "a=b", {}},
                    Row{"NamesAreTrimmedOnTheRight", "inline; a \r\n\t=b", 2, "a==b", {}},
                    Row{"WithoutCarriageReturnNamesAreTrimmedOverTheLineFeed", "inline; a \n\t=b", 2, "a=b", {}},
                    Row{"ANameWithoutValueIsNoParameter", "inline; filename", 2, "", {}},
                    Row{"QuotesKeepSemicolons", "inline; a=\"b;c\"; d=e", 2, "a=b;c|d=e", {}},
                    Row{"TheByteBehindAClosingQuoteIsSkippedUnseen", "inline; a=\"b\" ; c=d", 2, "a=b|; c=d", {}},
                    Row{"AnUnclosedQuoteCostsTheLastCharacter", "inline; filename=\"a.txt", 2, "filename=a.tx", {}}),
    ruleName);

TEST(ContentDisposition, AnEmptyHeaderIsUnknown)
{
    ContentDisposition disposition(Header("Content-Disposition", ""));
    EXPECT_EQ(0, disposition.fileType());
    EXPECT_TRUE(disposition.parameters().empty());
}

TEST(ContentDisposition, TheUnknownWordIsLoggedOnce)
{
    Logged logged;
    ContentDisposition disposition("foo");
    disposition.fileType();
    disposition.fileType();
    disposition.parameters();
    EXPECT_EQ(1u, logged.entries.size());
}

TEST(ContentDisposition, ParametersDifferFromThoseOfContentTypeInCaseAndLineFeeds)
{
    std::string const parameters = "; Name\n Part=x";
    EXPECT_EQ("Name\n Part=x", parametersOf(ContentDisposition("inline" + parameters)));
    EXPECT_EQ("name=Part=x", parametersOf(ContentType("a/b" + parameters)));
}

TEST(ContentDisposition, CodesHavePrintedForms)
{
    std::pair<int, char const*> const forms[] = {
        {0, "Unknown"}, {1, "Attachment"}, {2, "Inline"}, {3, "Unknown"}, {-1, "Unknown"}};
    for (auto const& [code, form] : forms)
        EXPECT_EQ(form, ContentDisposition::dispositionAsString(static_cast<ContentDisposition::FileType>(code)));
}

TEST(ContentDisposition, WholeTextsHaveCodes)
{
    EXPECT_EQ(1, ContentDisposition::stringAsDisposition("ATTACHMENT"));
    EXPECT_EQ(2, ContentDisposition::stringAsDisposition("inline"));
    EXPECT_EQ(0, ContentDisposition::stringAsDisposition("inlinefoo"));
    EXPECT_EQ(0, ContentDisposition::stringAsDisposition(""));
}

TEST(ContentDisposition, EmptyValueLeavesANullHandle)
{
    EXPECT_TRUE(ContentDisposition("").isNull());
    EXPECT_EQ("Content-Disposition", ContentDisposition().type());
}

TEST(ContentDisposition, AccessorsOfANullHandleThrow)
{
    EXPECT_THROW(ContentDisposition().fileType(), HeaderException);
    EXPECT_THROW(ContentDisposition().parameters(), HeaderException);
}

} // namespace
} // namespace Velmara
