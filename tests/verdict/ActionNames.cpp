#include <velmara/ActionNames.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>
#include <vector>

namespace Velmara {
namespace {

using Row = std::pair<int, std::string>;

std::vector<Row> const _rows = {
    {0, "Accept"},
    {1, "Accept"},
    {4, "Reject"},
    {8, "Add Header"},
    {16, "Modify Subject"},
    {32, "Quarantine"},
    {64, "Accept"},
    {128, "Discard"},
    {256, "Replace"},
    {512, "Delay"},
    {1024, "Rewrite"},
    {2048, "Disclaimer Body"},
    {4096, "Disclaimer Header"},
    {8192, "Defer Delivery"},
    {16384, "Quarantine to Review"},
    {32768, "Content Filter as Spam"},
    {65536, "Encrypt"},
    {131072, "Decrypt"},
    {262144, "Alternate Host"},
    {524288, "BCC"},
    {1048576, "Archive"},
    {2097152, "Customised repackage"},
    {4194304, "Repackage"},
    {8388608, "Notification"},
    {16777216, "Sign"},
    {33554432, "Defer Disposition"},
};

std::string _mapped(unsigned int mask, unsigned int size = 1000)
{
    std::vector<char> buffer(size, 'x');
    return ActionNames::instance().mapToString(mask, buffer.data(), size);
}

TEST(ActionNames, EachBitHasItsName)
{
    for (auto const& [value, name] : _rows)
        EXPECT_EQ(value == 0 ? "" : name, _mapped(static_cast<unsigned int>(value)));
}

TEST(ActionNames, SeveralBitsAreJoinedInTheOrderOfTheTable)
{
    EXPECT_EQ("Reject;Quarantine", _mapped(36));
    EXPECT_EQ("Accept;Accept", _mapped(65));
}

TEST(ActionNames, ZeroAndTwoHaveNoName)
{
    EXPECT_EQ("", _mapped(0));
    EXPECT_EQ("", _mapped(2));
    EXPECT_EQ("", _mapped(0x80000000u));
}

TEST(ActionNames, TextIsCutToTheBufferAndEnded)
{
    EXPECT_EQ("Reject;Quara", _mapped(36, 13));
    EXPECT_EQ("R", _mapped(36, 2));
    EXPECT_EQ("", _mapped(36, 1));
}

TEST(ActionNames, WithoutABufferThereIsNoText)
{
    char byte = 'x';
    EXPECT_EQ(nullptr, ActionNames::instance().mapToString(36, nullptr, 100));
    EXPECT_EQ(nullptr, ActionNames::instance().mapToString(36, &byte, 0));
    EXPECT_EQ('x', byte);
}

TEST(ActionNames, CheckIgnoresCaseAndCanLookInsideNames)
{
    ActionNames const& names = ActionNames::instance();
    EXPECT_TRUE(names.checkTypeByString("bcc", false));
    EXPECT_FALSE(names.checkTypeByString("repack", false));
    EXPECT_TRUE(names.checkTypeByString("REPACK", true));
    EXPECT_FALSE(names.checkTypeByString("x-", true));
    EXPECT_FALSE(names.checkTypeByString(nullptr, true));
}

TEST(ActionNames, AllRowsAreGivenInTheOrderOfTheTable)
{
    EXPECT_EQ(_rows,
              std::vector<Row>(ActionNames::instance().actions().begin(), ActionNames::instance().actions().end()));
}

TEST(ActionNames, StringsForCEndInZeroAndNull)
{
    ActionNames::ActionString* strings = ActionNames::instance().actionStrings();
    ASSERT_NE(nullptr, strings);
    for (size_t i = 0; i < _rows.size(); ++i) {
        EXPECT_EQ(_rows[i].first, strings[i].value);
        EXPECT_EQ(_rows[i].second, strings[i].name);
        std::free(strings[i].name);
    }
    EXPECT_EQ(0, strings[_rows.size()].value);
    EXPECT_EQ(nullptr, strings[_rows.size()].name);
    std::free(strings);
}

} // namespace
} // namespace Velmara
