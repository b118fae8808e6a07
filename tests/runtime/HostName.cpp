#include <velmara/HostName.h>

#include <gtest/gtest.h>

namespace Velmara {
namespace {

enum Readings { No = 0, AnyThing = 1, Loose = 2, StrictOrAddress = 4, Strict = 8 };

struct Row {
    std::string text;
    int acceptedBy;
};

TEST(HostName, FlagsDecideWhatIsAccepted)
{
    int const all = AnyThing | Loose | StrictOrAddress | Strict;
    for (Row const& row : {
             Row{"a.example", all},
             Row{"localhost", all},
             Row{"A-1.EXAMPLE", all},
             Row{"a.example.", all},
             Row{"my_list.example.org", all},
             Row{"xn--bcher-kva.example", all},
             Row{"12345.example", all},
             Row{std::string(63, 'a') + ".example", all},
             Row{std::string(64, 'a') + ".example", AnyThing | Loose},
             Row{"-a.example", AnyThing | Loose},
             Row{"a-.example", AnyThing | Loose},
             Row{"a..example", AnyThing | Loose},
             Row{".example", AnyThing | Loose},
             Row{".", AnyThing | Loose},
             Row{"b\xc3\xbc"
                 "cher.example",
                 AnyThing | Loose},
             Row{"a!b", AnyThing | Loose},
             Row{"192.0.2.1", AnyThing | Loose | StrictOrAddress},
             Row{"2001:db8::1", AnyThing | StrictOrAddress},
             Row{"[192.0.2.1]", AnyThing},
             Row{"a.example/x", AnyThing},
             Row{"a@b.example", AnyThing},
             Row{"a b", AnyThing},
             Row{"a.example\n", AnyThing},
             Row{"a.example\x7f", AnyThing},
             Row{std::string("a\0b", 3), AnyThing},
             Row{"", No},
         }) {
        auto const accepted = [&](bool acceptAny, bool strict) {
            return !HostName(row.text, acceptAny, strict).isNull();
        };
        EXPECT_EQ(bool(row.acceptedBy & AnyThing), accepted(true, false)) << row.text;
        EXPECT_EQ(bool(row.acceptedBy & Loose), accepted(false, false)) << row.text;
        EXPECT_EQ(bool(row.acceptedBy & StrictOrAddress), accepted(true, true)) << row.text;
        EXPECT_EQ(bool(row.acceptedBy & Strict), accepted(false, true)) << row.text;
    }
}

TEST(HostName, ANameHas253BytesAtMost)
{
    std::string name;
    while (name.size() < 250) name += "abcdefghi.";
    EXPECT_FALSE(HostName(name + "abc", false, true).isNull());
    EXPECT_FALSE(HostName(name + "abc.", false, true).isNull());
    EXPECT_TRUE(HostName(name + "abcd", false, true).isNull());
}

TEST(HostName, TheTextIsKeptAsItCame)
{
    EXPECT_EQ("Mail.Example", HostName("Mail.Example", false, true).asString());
    EXPECT_EQ("", HostName().asString());
    EXPECT_EQ("", HostName("a b", false, true).asString());
}

TEST(HostName, ComparisonDoesNotRegardCase)
{
    HostName const lower("a.example", true, false), upper("A.EXAMPLE", true, false), other("b.example", true, false);
    EXPECT_TRUE(lower == upper && lower != other);
    EXPECT_FALSE(lower < upper || upper < lower);
    EXPECT_TRUE(upper < other && !(other < upper));
    EXPECT_TRUE(HostName() < lower);
}

} // namespace
} // namespace Velmara
