#include <velmara/Header.h>

#include <gtest/gtest.h>

#include <set>

#include <velmara/Exception.h>

#include "support/Refusals.h"
#include "support/Rule.h"

namespace Velmara {
namespace {

TEST(Header, KeepsNameAndValueAsTheyAre)
{
    Header header(" X-Name", " Value ");
    EXPECT_EQ(" X-Name", header.type());
    EXPECT_EQ(" Value ", header.value());
    EXPECT_EQ("a", Header(std::string("a"), std::string("b")).type());
    EXPECT_EQ("", Header(static_cast<char const*>(nullptr), nullptr).value());
}

TEST(Header, CopiesShareTheTextAndItsCaches)
{
    Header header("X-Name", "v");
    Header copy(header);
    EXPECT_EQ(&header.value(), &copy.value());
    EXPECT_EQ(&header.typeLowerCase(), &copy.typeLowerCase());
    EXPECT_EQ(&header.asString(), &copy.asString());
}

TEST(Header, LowerCaseNameIsMadeOnce)
{
    Header header("X-\xc3\x84Name", "v");
    EXPECT_EQ("x-\xc3\x84name", header.typeLowerCase());
    EXPECT_EQ(&header.typeLowerCase(), &header.typeLowerCase());
}

TEST(Header, TextHasNoLineEndAndIsMadeOnce)
{
    Header header("Subject", "a\r\n b");
    EXPECT_EQ("Subject: a\r\n b", header.asString());
    EXPECT_EQ(&header.asString(), &header.asString());
    EXPECT_EQ(": ", Header("", "").asString());
}

TEST(Header, IsWrittenAsItsText)
{
    Buffer written;
    BufferMediaOut out(written);
    EXPECT_EQ(&out, &(out << Header("Subject", "x")));
    EXPECT_EQ("Subject: x", std::string(reinterpret_cast<char const*>(written.data()), written.length()));
    EXPECT_THROW(out << Header(), HeaderException);
}

TEST(Header, EqualsWhenNameAndValueDoWithoutRegardToCase)
{
    Header const header("Subject", "Value");
    EXPECT_TRUE(header == Header("SUBJECT", "vALUE"));
    EXPECT_FALSE(header == Header("Subject", "Values"));
    EXPECT_FALSE(header == Header("Subjects", "Value"));
    Header const copy(header);
    EXPECT_TRUE(header == copy);
}

TEST(Header, NullEqualsOnlyItself)
{
    Header const null;
    EXPECT_TRUE(null == null);
    EXPECT_FALSE(null == Header());
    EXPECT_FALSE(null == Header("a", "b"));
    EXPECT_FALSE(Header("a", "b") == null);
}

TEST(Header, ComparesWithPlainPairsToTheByte)
{
    Header const header("a", "b");
    EXPECT_TRUE(header == TypeAndValue("a", "b"));
    EXPECT_FALSE(header == TypeAndValue("A", "b"));
}

TEST(Header, AssignmentOfAPlainHeaderSharesTheTextWhateverTheName)
{
    Header source("A", "1");
    Header assigned("B", "2"), taken("C", "3");
    assigned = source;
    taken.assign(source);
    EXPECT_EQ(&source.value(), &assigned.value());
    EXPECT_EQ(&source.value(), &taken.value());
    assigned = Header();
    EXPECT_TRUE(assigned.isNull());
    EXPECT_EQ("1", source.value());
}

TEST(Header, AssignmentToItselfChangesNothing)
{
    Header header("A", "1");
    Header& same = header;
    header = same;
    header.assign(same);
    EXPECT_EQ("1", header.value());
}

class PriorityImpl : public HeaderImpl {
public:
    PriorityImpl() { type("X-Priority"); }
};

/// Written in the plain way, outside of the library.
class Priority : public Header {
public:
    Priority() = default;
    Priority(Header const& other) { assign(other); }
    Priority(Priority const&) = default;
    std::string const& type() const override
    {
        static std::string const name("X-Priority");
        return name;
    }
    HeaderImpl* newImpl() override { return new PriorityImpl; }
    Header& operator=(Header const& other) override
    {
        assign(other);
        return *this;
    }
    virtual Priority& operator=(Priority const& other)
    {
        assign(other);
        return *this;
    }
};

TEST(Header, ClassesCanBuildTheirAssignmentOnAssign)
{
    Header const plain("x-priority", "1");
    Priority made(plain), assigned;
    assigned = made;
    Header& base = made;
    base = Header("X-PRIORITY", "2");
    EXPECT_EQ("X-Priority: 2", made.asString());
    EXPECT_EQ("X-Priority: 1", Header(assigned).asString()); // the name of its class
    EXPECT_NE(&plain.value(), &assigned.value());

    EXPECT_THROW(base = Header("Subject", "x"), Exception);
    EXPECT_TRUE(made.isNull());
    assigned.assign(Header());
    EXPECT_TRUE(assigned.isNull());
}

/// One that takes the accessors of a header and leaves the rest.
class Named : public Header {
public:
    using Header::operator=;
    std::string const& type() const override
    {
        static std::string const name("X-Named");
        return name;
    }
};

TEST(Header, AssignHeedsTheNameOfAClassWithoutAnAssignment)
{
    Named header;
    header.assign(Header("x-named", "v"));
    EXPECT_EQ("X-Named: v", header.asString());
    EXPECT_THROW(header.assign(Header("Subject", "x")), Exception);
    EXPECT_TRUE(header.isNull());
}

TEST(Header, NewImplementationIsEmpty)
{
    Ref<TypeAndValueImpl> made(Header("A", "1").newImpl(), false);
    EXPECT_EQ("", made->type());
    EXPECT_EQ("", made->value());
}

TEST(Header, EveryAccessorOfANullHandleThrowsWithALineOfItsOwn)
{
    Header const null;
    std::set<unsigned int> lines;
    lines.insert(lineOfRefusal([&] { null.typeLowerCase(); }));
    lines.insert(lineOfRefusal([&] { null.asString(); }));
    lines.insert(lineOfRefusal([&] { null.unfolded(); }));
    lines.insert(lineOfRefusal([&] { null.type(); }));
    lines.insert(lineOfRefusal([&] { null.value(); }));
    EXPECT_EQ(5u, lines.size());
}

struct Row {
    char const* rule;
    std::string value;
    std::string unfolded;
};

class HeaderUnfolded : public testing::TestWithParam<Row> {};

TEST_P(HeaderUnfolded, Gives)
{
    EXPECT_EQ(GetParam().unfolded, Header("A", GetParam().value).unfolded());
}

std::string const nul(1, '\0');

INSTANTIATE_TEST_SUITE_P(Rules, HeaderUnfolded,
                         testing::Values(Row{"WithoutALineFeedAllStays", "a\r b" + nul + "c ", "a\r b" + nul + "c "},
                                         Row{"NoBlankStandsInForTheBreak", "a\n b", "ab"},
                                         Row{"ACarriageReturnAheadOfTheBreakStays", "a\r\n b", "a\rb"},
                                         Row{"WhiteSpaceAheadOfTheBreakStays", "a \t\n b", "a \tb"},
                                         Row{"AllWhiteSpaceBehindTheBreakGoes", "a\n \t\r\n\r \n b", "ab"},
                                         Row{"ABreakWithoutWhiteSpaceGoesToo", "a\nb\nc", "abc"},
                                         Row{"ABreakAtTheStart", "\n a", "a"},
                                         Row{"NothingBehindTheLastBreak", "a\n b\n \t", "ab"},
                                         Row{"BehindTheLastBreakTheTextEndsAtANul",
                                             "a" + nul + "b\n c" + nul + "d\n e" + nul + "f",
                                             "a" + nul + "bc" + nul + "de"},
                                         Row{"Empty", "", ""}),
                         ruleName);

} // namespace
} // namespace Velmara
