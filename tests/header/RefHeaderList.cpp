#include <velmara/RefHeaderList.h>

#include <gtest/gtest.h>

#include <set>

#include <velmara/Exception.h>

#include "support/HeaderText.h"
#include "support/Refusals.h"

namespace Velmara {
namespace {

RefHeaderList listOf(std::list<Header> const& headers)
{
    RefHeaderList list(true);
    list.add(headers);
    return list;
}

TEST(RefHeaderList, IsNewOrNullAsAsked)
{
    EXPECT_FALSE(RefHeaderList(true).isNull());
    EXPECT_TRUE(RefHeaderList(true).headers().empty());
    EXPECT_TRUE(RefHeaderList(false).isNull());
}

TEST(RefHeaderList, DeepCopiesHaveAListOfTheirOwnOthersShareIt)
{
    RefHeaderList list = listOf({Header("A", "1")});
    RefHeaderList deep(list, true), shared(list, false), copy(list);
    list.add(Header("B", "2"));
    EXPECT_EQ("A[1]", shown(deep.headers()));
    EXPECT_EQ("A[1] B[2]", shown(shared.headers()));
    EXPECT_EQ("A[1] B[2]", shown(copy.headers()));
    EXPECT_EQ(&list.find("A").value(), &deep.find("A").value());
}

TEST(RefHeaderList, SecondHandleOnANullListIsRefused)
{
    try {
        RefHeaderList shared(RefHeaderList(false), false);
        FAIL();
    } catch (Exception const& refusal) {
        EXPECT_EQ("RefCounted constructor for RefImpl failed.", refusal.message());
        EXPECT_EQ(4, refusal.code());
    }
    EXPECT_TRUE(RefHeaderList(RefHeaderList(false)).isNull());
}

TEST(RefHeaderList, AddsHeadersListsAndBlocks)
{
    RefHeaderList list(true);
    list.add(Header("A", "1"));
    list.add({Header("B", "2"), Header("A", "3")});
    BufferMediaIn in(std::string("C: 4\n folded\n\n"));
    list.add(in);
    list.add(list.headers());
    EXPECT_EQ("A[1] B[2] A[3] C[4\n folded] A[1] B[2] A[3] C[4\n folded]", shown(list.headers()));
}

TEST(RefHeaderList, FindsTheFirstAndTheLastWithoutRegardToCase)
{
    RefHeaderList list = listOf({Header("A", "1"), Header("a", "2"), Header("B", "3")});
    EXPECT_EQ("1", list.find("a").value());
    EXPECT_EQ("2", list.rfind("A")->value());
    EXPECT_EQ(&RefHeaderList::m_empty, &list.find("C"));
    EXPECT_TRUE(list.find("C").isNull());
    EXPECT_EQ(list.headers().end(), list.rfind("C"));
    RefHeaderList const empty(true);
    EXPECT_EQ(empty.headers().end(), empty.rfind("A"));
}

TEST(RefHeaderList, SearchesBackwardFromAndWithAPosition)
{
    RefHeaderList list = listOf({Header("A", "1"), Header("A", "2"), Header("B", "3"), Header("A", "4")});
    auto const last = list.rfind("A");
    auto const second = list.rfind("A", std::prev(last));
    EXPECT_EQ("4", list.rfind("A", last)->value());
    EXPECT_EQ("2", second->value());
    EXPECT_EQ("1", list.rfind("A", std::prev(second))->value());
    EXPECT_EQ(list.headers().end(), list.rfind("B", second));
    EXPECT_EQ("4", list.rfind("A", list.headers().end())->value());
}

TEST(RefHeaderList, EveryOperationOfANullHandleThrowsWithALineOfItsOwn)
{
    RefHeaderList null(false);
    BufferMediaIn in(std::string("A: 1\n\n"));
    std::list<Header> const none;
    std::set<unsigned int> lines;
    lines.insert(lineOfRefusal([&] { RefHeaderList(null, true); }));
    lines.insert(lineOfRefusal([&] { null.headers(); }));
    lines.insert(lineOfRefusal([&] { null.add(Header("A", "1")); }));
    lines.insert(lineOfRefusal([&] { null.add(none); }));
    lines.insert(lineOfRefusal([&] { null.add(in); }));
    lines.insert(lineOfRefusal([&] { null.find("A"); }));
    lines.insert(lineOfRefusal([&] { null.rfind("A"); }));
    lines.insert(lineOfRefusal([&] { null.rfind("A", none.end()); }));
    lines.insert(lineOfRefusal([&] { null.remove("A", true); }));
    lines.insert(lineOfRefusal([&] { null.replace(Header("A", "1")); }));
    EXPECT_EQ(10u, lines.size());
}

static_assert(!std::is_copy_constructible_v<HeaderList> && !std::is_copy_assignable_v<HeaderList>,
              "lists are shared through handles");

} // namespace
} // namespace Velmara
