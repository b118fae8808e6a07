#include <velmara/Exception.h>

#include <gtest/gtest.h>

namespace Velmara {
namespace {

TEST(Exception, CarriesWhatTheThrowSiteGives)
{
    Exception const e("parse", 5, "HeaderImpl", 77);
    EXPECT_EQ("parse", e.message());
    EXPECT_STREQ("parse", e.what());
    EXPECT_EQ(5, e.code());
    EXPECT_EQ("HeaderImpl", e.fileName());
    EXPECT_EQ(77u, e.lineNumber());
    EXPECT_EQ("", e.stringParameter());
    EXPECT_EQ(0, e.intParameter());
    EXPECT_FALSE(e.hasCause());
}

TEST(Exception, FileAndLineAreOptional)
{
    Exception const e("assign", 2, nullptr, 0);
    EXPECT_EQ("", e.fileName());
    EXPECT_EQ(0u, e.lineNumber());
}

TEST(Exception, OriginAndParametersCanBeSetLater)
{
    Exception e("x", 1, nullptr, 0);
    e.fileName("unit");
    e.lineNumber(3);
    e.stringParameter("more");
    e.intParameter(-4);
    EXPECT_EQ("unit", e.fileName());
    EXPECT_EQ(3u, e.lineNumber());
    EXPECT_EQ("more", e.stringParameter());
    EXPECT_EQ(-4, e.intParameter());
    e.fileName(std::string("other"));
    EXPECT_EQ("other", e.fileName());
    e.fileName(static_cast<char const*>(nullptr));
    EXPECT_EQ("", e.fileName());
}

TEST(Exception, ACopyKeepsEveryFieldAndIsIndependent)
{
    Exception e("x", 1, "unit", 9);
    e.stringParameter("p");
    e.intParameter(2);
    e.cause(Exception("origin", 6, nullptr, 0));
    Exception copy(e);
    e.stringParameter("changed");
    EXPECT_EQ("p", copy.stringParameter());
    EXPECT_EQ("changed", e.stringParameter());
    EXPECT_EQ(2, copy.intParameter());
    EXPECT_EQ(9u, copy.lineNumber());
    EXPECT_EQ("origin", copy.cause().message());
    EXPECT_EQ(6, copy.cause().code());
}

TEST(Exception, WithoutACauseThereIsAnEmptyOne)
{
    Exception const e("x", 1, nullptr, 0);
    EXPECT_EQ("", e.cause().message());
    EXPECT_EQ(0, e.cause().code());
    EXPECT_FALSE(e.cause().hasCause());
}

TEST(Exception, MayCauseItself)
{
    Exception e("x", 1, nullptr, 0);
    e.cause(e);
    EXPECT_TRUE(e.hasCause());
    EXPECT_FALSE(e.cause().hasCause());
}

TEST(Exception, AsStringIsOneLineWithEachCause)
{
    Exception inner("read", 6, nullptr, 0);
    inner.stringParameter("a\r\nb");
    Exception outer("HeaderContainer Parse", 5, "HeaderImpl", 12);
    outer.intParameter(3);
    outer.cause(inner);
    EXPECT_EQ("HeaderContainer Parse (code 5) [3] at HeaderImpl:12, caused by read (code 6): a  b", outer.asString());
    EXPECT_EQ("read (code 6) at :7", Exception("read", 6, nullptr, 7).asString());
}

struct Row {
    char const* message;
    int code;
    char const* file;
    Exception exception;
};

TEST(Exception, EachClassHasItsMessageCodeAndFile)
{
    Row const rows[] = {
        {"HeaderException", 1, "HeaderImpl", HeaderException(5)},
        {"HeaderException", 1, "HeaderTemplate", HeaderException(5, "HeaderTemplate")},
        {"MediaException", 1, "Base64Codec", MediaException(5)},
        {"MediaException", 1, "VmaraCharSet", MediaException(5, "VmaraCharSet")},
        {"MediaException", 4, "MessageMediaImpl", MediaException(5, "MessageMediaImpl", 4)},
        {"EncodedWordException", 2, "EncodedWordImpl", EncodedWordException(2, 5)},
    };
    for (Row const& row : rows) {
        EXPECT_EQ(row.message, row.exception.message());
        EXPECT_EQ(row.code, row.exception.code()) << row.message;
        EXPECT_EQ(row.file, row.exception.fileName()) << row.message;
        EXPECT_EQ(5u, row.exception.lineNumber()) << row.message;
    }
}

template <class Kind> bool _caughtAsBase(Kind const& thrown)
{
    try {
        throw thrown;
    } catch (Exception const& e) {
        return e.message() == thrown.message();
    }
}

TEST(Exception, EveryClassIsCaughtAsTheBase)
{
    EXPECT_TRUE(_caughtAsBase(HeaderException(1)));
    EXPECT_TRUE(_caughtAsBase(MediaException(1)));
    EXPECT_TRUE(_caughtAsBase(EncodedWordException(1, 1)));
    EXPECT_TRUE(_caughtAsBase(BufferException("decodeBase64", 5, 1)));
}

} // namespace
} // namespace Velmara
