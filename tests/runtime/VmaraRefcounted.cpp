#include <velmara/VmaraRefcounted.h>

#include <gtest/gtest.h>

#include <type_traits>

namespace Velmara {
namespace {

struct Counted : virtual RefImpl {
    explicit Counted(int* destroyed = nullptr) : m_destroyed(destroyed) {}
    ~Counted() override
    {
        if (m_destroyed) ++*m_destroyed;
    }
    int* m_destroyed;
};

TEST(RefImpl, ANewObjectAlreadyBelongsToItsFirstHolder)
{
    Counted object;
    EXPECT_EQ(1, object.count);
}

TEST(RefImpl, ACopyHasACountOfItsOwn)
{
    Counted object;
    object.count = 7;
    Counted const copy(object);
    EXPECT_EQ(1, copy.count);
}

TEST(RefImpl, AnAssignmentLeavesBothCountsAlone)
{
    Counted object, other;
    object.count = 7;
    other.count = 3;
    other = object;
    EXPECT_EQ(7, object.count);
    EXPECT_EQ(3, other.count);
}

struct First : virtual RefImpl {};
struct Second : virtual RefImpl {};
struct Both : First, Second {};

TEST(RefImpl, SeveralBasesShareOneCount)
{
    auto* both = new Both;
    Ref<First> first(both, false);
    Ref<Second> second(both, true);
    EXPECT_EQ(2, both->count);
}

TEST(RefCounted, AdoptsTheCountOfANewObject)
{
    int destroyed = 0;
    {
        RefCounted<Counted> holder(new Counted(&destroyed), false);
        EXPECT_EQ(1, holder.ptr->count);
    }
    EXPECT_EQ(1, destroyed);
}

TEST(RefCounted, WithAddRefTheCountGrows)
{
    Ref<Counted> owner(new Counted, false);
    {
        RefCounted<Counted> holder(owner.get(), true);
        EXPECT_EQ(2, owner->count);
    }
    EXPECT_EQ(1, owner->count);
}

TEST(RefCounted, AcceptsNullOnlyWithoutAddRef)
{
    EXPECT_NO_THROW(RefCounted<Counted>(nullptr, false));
    try {
        RefCounted<Counted> holder(nullptr, true);
        FAIL() << "no exception";
    } catch (Exception const& e) {
        EXPECT_EQ("RefCounted constructor for RefImpl failed.", e.message());
        EXPECT_EQ(4, e.code());
        EXPECT_EQ("", e.fileName());
        EXPECT_EQ(0u, e.lineNumber());
    }
}

TEST(RefCounted, ComparesThePointersAlone)
{
    Ref<Counted> owner(new Counted, false);
    RefCounted<Counted> one(owner.get(), true), two(owner.get(), true), none(nullptr, false), empty(nullptr, false);
    EXPECT_TRUE(one == two);
    EXPECT_FALSE(one == none);
    EXPECT_TRUE(none == empty);
}

TEST(RefCountedImplCopy, OnToItselfChangesNothing)
{
    auto* holder = new RefCounted<Counted>(new Counted, false);
    RefCounted<Counted>* target = holder;
    RefCountedImplCopy(target, holder);
    EXPECT_EQ(holder, target);
    EXPECT_EQ(1, target->ptr->count);
    delete target;
}

TEST(RefCountedImplCopy, ANullSourceLeavesANullTargetAndDropsTheOldReference)
{
    int destroyed = 0;
    auto* target = new RefCounted<Counted>(new Counted(&destroyed), false);
    RefCountedImplCopy(target, nullptr);
    EXPECT_EQ(nullptr, target);
    EXPECT_EQ(1, destroyed);
}

TEST(RefCountedImplCopy, GivesTheTargetAHolderOfItsOwn)
{
    RefCounted<Counted> source(new Counted, false);
    RefCounted<Counted>* target = nullptr;
    RefCountedImplCopy(target, &source);
    ASSERT_NE(nullptr, target);
    EXPECT_NE(&source, target);
    EXPECT_EQ(source.ptr, target->ptr);
    EXPECT_EQ(2, source.ptr->count);
    delete target;
}

TEST(RefCountedImplCopy, ToleratesAHolderOfNullUnlikeTheConstructorWithAddRef)
{
    RefCounted<Counted> source(nullptr, false);
    RefCounted<Counted>* target = nullptr;
    RefCountedImplCopy(target, &source);
    ASSERT_NE(nullptr, target);
    EXPECT_EQ(nullptr, target->ptr);
    delete target;
}

template <class Call> void _expectNullHandle(char const* operation, Call call)
{
    try {
        call();
        FAIL() << "no exception";
    } catch (Exception const& e) {
        EXPECT_EQ(operation, e.message());
        EXPECT_EQ(1, e.code());
        EXPECT_EQ("VmaraRefcounted", e.fileName());
        EXPECT_NE(0u, e.lineNumber());
    }
}

TEST(Ref, AccessThroughANullHandleThrows)
{
    Ref<Counted> handle;
    Ref<Counted> const& constant = handle;
    _expectNullHandle("operator->", [&] { handle.operator->(); });
    _expectNullHandle("operator->", [&] { constant.operator->(); });
    _expectNullHandle("operator*", [&] { *handle; });
    _expectNullHandle("operator*", [&] { *constant; });
}

template <class Call> unsigned int _lineOf(Call call)
{
    try {
        call();
    } catch (Exception const& e) {
        return e.lineNumber();
    }
    return 0;
}

TEST(Ref, EachAccessorIsAThrowSiteOfItsOwn)
{
    Ref<Counted> handle;
    Ref<Counted> const& constant = handle;
    unsigned int const arrow = _lineOf([&] { handle.operator->(); });
    unsigned int const constArrow = _lineOf([&] { constant.operator->(); });
    unsigned int const star = _lineOf([&] { *handle; });
    unsigned int const constStar = _lineOf([&] { *constant; });
    EXPECT_LT(arrow, constArrow);
    EXPECT_LT(constArrow, star);
    EXPECT_LT(star, constStar);
}

TEST(Ref, AHolderOfNullGivesNullAndThrowsNothing)
{
    Ref<Counted> handle(nullptr, false);
    EXPECT_EQ(nullptr, *handle);
    EXPECT_EQ(nullptr, handle.operator->());
    EXPECT_TRUE(handle.isNull());
    EXPECT_EQ(nullptr, handle.get());
}

TEST(Ref, NullWithAddRefThrows)
{
    EXPECT_THROW(Ref<Counted>(nullptr, true), Exception);
}

TEST(Ref, CopyingAHolderOfNullIsTolerated)
{
    Ref<Counted> const handle(nullptr, false);
    Ref<Counted> copy(handle);
    EXPECT_EQ(nullptr, *copy);
    Ref<Counted> assigned;
    assigned = handle;
    EXPECT_EQ(nullptr, *assigned);
}

TEST(Ref, AMovedHandleIsNullAndCountsNothing)
{
    int destroyed = 0;
    Ref<Counted> one(new Counted(&destroyed), false);
    Counted* const object = one.get();
    Ref<Counted> two(std::move(one));
    EXPECT_TRUE(one.isNull());
    EXPECT_EQ(object, two.get());
    one = std::move(two);
    EXPECT_TRUE(two.isNull());
    EXPECT_EQ(1, one->count);
    Ref<Counted>& same = one;
    one = std::move(same);
    EXPECT_EQ(object, one.get());
    one = Ref<Counted>();
    EXPECT_EQ(1, destroyed);
}

TEST(Ref, CopiesShareTheObject)
{
    int destroyed = 0;
    {
        Ref<Counted> one(new Counted(&destroyed), false);
        Ref<Counted> two(one);
        Ref<Counted> three;
        three = two;
        EXPECT_EQ(one.get(), three.get());
        EXPECT_EQ(3, one->count);
        three = *&three;
        EXPECT_EQ(3, one->count);
        one.release();
        EXPECT_EQ(0, destroyed);
    }
    EXPECT_EQ(1, destroyed);
}

struct Node : virtual RefImpl {
    Ref<Node> next;
};

TEST(Ref, CanBeAssignedFromAHandleInsideTheObjectThatGoes)
{
    Ref<Node> first(new Node, false), second(new Node, false);
    first->next = second;
    first = static_cast<Ref<Node> const&>(first->next);
    EXPECT_EQ(*second, *first);
    EXPECT_EQ(2, second->count);
}

TEST(Ref, CopiesOwnAHolderEach)
{
    Ref<Counted> const original(new Counted, false), copy(original);
    EXPECT_NE(original.holder, copy.holder);
    EXPECT_EQ(original.holder->ptr, copy.holder->ptr);
}

TEST(Ref, AReleasedHandleCanBeAssignedAgain)
{
    Ref<Counted> one(new Counted, false);
    Ref<Counted> two(one);
    two.release();
    EXPECT_TRUE(two.isNull());
    EXPECT_THROW(*two, Exception);
    two = one;
    EXPECT_EQ(one.get(), two.get());
}

struct Unique : private NonCopyable {};

TEST(NonCopyable, ForbidsCopying)
{
    EXPECT_FALSE(std::is_copy_constructible_v<Unique>);
    EXPECT_FALSE(std::is_copy_assignable_v<Unique>);
}

} // namespace
} // namespace Velmara
