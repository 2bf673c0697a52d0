#include "VUKBasSharedPtr.h"
#include "VUKBasWeakPtr.h"

#include "Failures.h"
#include "LimitedMemory.h"

#include <gtest/gtest.h>

#include <type_traits>

namespace {

class Pool; // declared only, up to the middle of this file

// Handles are copied, compared and destroyed where the class that they point to is not known.
struct Handle
{
    VUKBasSharedPtr<Pool> strong;
    VUKBasWeakPtr<Pool> weak;
};

bool CopiesOfAnEmptyHandleAreEmpty()
{
    const Handle handle;
    Handle copy = handle;
    copy = handle;
    return !copy.strong && !copy.weak.lock() && copy.strong == handle.strong;
}

static_assert(std::is_same_v<decltype(VUKBasSharedPtr<Pool>().UseCount()), int>);

class Pool
{
public:
    explicit Pool(int& alive) : mAlive(alive) { ++mAlive; }
    Pool(const Pool&) = delete;
    Pool& operator=(const Pool&) = delete;
    ~Pool() { --mAlive; }

private:
    int& mAlive;
};
} // namespace

TEST(SharedPointerContract, NeedsOnlyADeclarationOfTheClass)
{
    EXPECT_TRUE(CopiesOfAnEmptyHandleAreEmpty());
}

TEST(SharedPointerContract, DestroysTheObjectWithTheLastStrongPointer)
{
    int alive = 0;
    auto first = VUKBasMakeShared<Pool>(alive);
    auto second = first;
    EXPECT_EQ(first.UseCount(), 2);
    first.reset();
    EXPECT_EQ(alive, 1);
    second = {};
    EXPECT_EQ(alive, 0);
}

TEST(SharedPointerContract, TakesOverAnObjectMadeWithNew)
{
    int alive = 0;
    {
        const VUKBasSharedPtr<Pool> adopted(new Pool(alive));
        EXPECT_EQ(alive, 1);
    }
    EXPECT_EQ(alive, 0);

    const LimitedMemory none(0);
    EXPECT_TRUE(RaisesBadAlloc([&] { VUKBasSharedPtr<Pool>(new Pool(alive)); }));
    EXPECT_EQ(alive, 0);
}

TEST(SharedPointerContract, NeedsOneAllocationForObjectAndCounts)
{
    int alive = 0;
    const LimitedMemory one(1);
    const auto pool = VUKBasMakeShared<Pool>(alive);
    EXPECT_EQ(alive, 1);
}

TEST(WeakPointerContract, LocksWhileTheObjectLivesAndThenNoMore)
{
    int alive = 0;
    auto strong = VUKBasMakeShared<Pool>(alive);
    const VUKBasWeakPtr<Pool> weak = strong;
    EXPECT_EQ(alive, 1);
    EXPECT_EQ(strong.UseCount(), 1);
    EXPECT_EQ(weak.lock(), strong);
    strong.reset();
    EXPECT_EQ(alive, 0);
    EXPECT_FALSE(weak.lock());
}

TEST(WeakPointerContract, LendsAnObjectThatLives)
{
    int alive = 0;
    auto strong = VUKBasMakeShared<Pool>(alive);
    const VUKBasWeakPtr<Pool> weak = strong;
    const VUKBasWeakPtr<Pool> again = strong;
    EXPECT_EQ(weak.Borrow(), strong.get());
    EXPECT_EQ(&weak.BorrowLiving(), strong.get());
    EXPECT_TRUE(weak.SameObject(again));
    strong.reset();
    EXPECT_EQ(weak.Borrow(), nullptr);
    EXPECT_FALSE(weak.SameObject(again));
}

TEST(WeakPointerContract, CountsItsCopies)
{
    int alive = 0;
    const auto strong = VUKBasMakeShared<Pool>(alive);
    VUKBasWeakPtr<Pool> weak = strong;
    {
        const VUKBasWeakPtr<Pool> copy = weak;
        EXPECT_EQ(weak.WeakCount(), 2);
    }
    EXPECT_EQ(weak.WeakCount(), 1);
    weak.reset();
    EXPECT_EQ(weak.WeakCount(), 0);
    EXPECT_FALSE(weak.lock());
    EXPECT_EQ(alive, 1);
}
