#include <velmara/Velmara.h>

#include <gtest/gtest.h>

namespace Velmara {
namespace {

using Names = std::list<std::string>;

TEST(FallbackCharMap, HoldsTheNumbersOfConfigurations)
{
    std::map<int, std::string> const expected{
        {1, "UTF-8"},           {2, "ISO-8859-6"},   {3, "Windows-1256"},  {4, "GB2312"},     {5, "GBK"},
        {6, "GB18030"},         {7, "Big5"},         {8, "EUC-TW"},        {9, "ISO-8859-8"}, {10, "Windows-1255"},
        {11, "EUC-JP"},         {12, "ISO-2022-JP"}, {13, "Shift-JIS"},    {14, "EUC-KR"},    {15, "ISO-2022-KR"},
        {16, "KS_C_5601-1987"}, {17, "ISO-8859-9"},  {18, "Windows-1254"}, {99, "ISO-8859-1"}};
    EXPECT_EQ(expected, VmaraConv::getFallbackCharMap());
}

TEST(FallbackCharMap, NamesNothingThatIcuDoesNotKnow)
{
    for (auto const& row : VmaraConv::getFallbackCharMap()) {
        Buffer out;
        EXPECT_TRUE(VmaraConv(BufferMediaOut(out), row.second, "UTF-16", true).ok()) << row.second;
    }
}

TEST(CharSetFallbacks, KeepsTheOrderOfFirstAddition)
{
    VMRStaticCharSetFallbacksImpl<int> list(6);
    list.add(1);
    list.add(6);
    list.add(99);
    EXPECT_EQ((Names{"GB18030", "UTF-8", "ISO-8859-1"}), list.charsets());
}

TEST(CharSetFallbacks, IgnoresUnknownNumbers)
{
    VMRStaticCharSetFallbacksImpl<int> list(19);
    EXPECT_EQ(Names(), list.charsets());
    list.add(0);
    list.add(98);
    EXPECT_EQ(Names(), list.charsets());
}

TEST(SharedFallbacks, AHandleKeepsItsListWhenAnotherIsInstalled)
{
    EXPECT_TRUE(RefVMRStaticCharSetFallbacks::instance().isNull());
    auto const first = RefVMRStaticCharSetFallbacks::instance(new VMRStaticCharSetFallbacksImpl<int>(1), false);
    EXPECT_EQ(first.get(), RefVMRStaticCharSetFallbacks::instance().get());
    auto const second = RefVMRStaticCharSetFallbacks::instance(new VMRStaticCharSetFallbacksImpl<int>(99), false);
    EXPECT_EQ(Names{"UTF-8"}, first->charsets());
    EXPECT_EQ(Names{"ISO-8859-1"}, second->charsets());
    EXPECT_EQ(Names{"ISO-8859-1"}, RefVMRStaticCharSetFallbacks::instance()->charsets());
}

TEST(SharedFallbacks, AnObjectOfTheCallersIsCountedWhenAskedFor)
{
    Ref<VMRStaticCharSetFallbacks> const mine(new VMRStaticCharSetFallbacksImpl<int>(1), false);
    RefVMRStaticCharSetFallbacks::instance(mine.get(), true);
    EXPECT_EQ(2, mine.get()->count);
    RefVMRStaticCharSetFallbacks::instance(nullptr, false);
    EXPECT_EQ(1, mine.get()->count);
    EXPECT_TRUE(RefVMRStaticCharSetFallbacks::instance().isNull());
}

TEST(SharedFallbacks, TheSharedHandleCanBeReadUnderItsLock)
{
    auto const mine = RefVMRStaticCharSetFallbacks::instance(new VMRStaticCharSetFallbacksImpl<int>(1), false);
    {
        Synchronized const guard(RefVMRStaticCharSetFallbacks::s_mutex);
        EXPECT_EQ(mine.get(), RefVMRStaticCharSetFallbacks::s_fallbacks.get());
    }
    RefVMRStaticCharSetFallbacks::instance(nullptr, false);
}

} // namespace
} // namespace Velmara
