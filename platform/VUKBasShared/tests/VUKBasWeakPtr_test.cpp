#include "VUKBasWeakPtr.h"

#include "Counted.h"
#include "mem_Watch.h"

#include <gtest/gtest.h>

#include <utility>

namespace {

// Keeps a weak pointer on itself, and notes while it dies what that leads to.
struct SelfAware
{
    explicit SelfAware(bool& sawItself) : mSawItself(sawItself) {}
    SelfAware(const SelfAware&) = delete;
    SelfAware& operator=(const SelfAware&) = delete;
    ~SelfAware() { mSawItself = self.lock() != nullptr; }

    VUKBasWeakPtr<SelfAware> self;

private:
    bool& mSawItself;
};

struct Base
{
    int value = 4;
};

struct Derived : Base
{};

} // namespace

TEST(WeakPtr, IsEmptyByDefaultAndFromAnEmptySharedPointer)
{
    mem_Watch watch;
    const VUKBasWeakPtr<Counted> byDefault;
    const VUKBasWeakPtr<Counted> fromEmpty{VUKBasSharedPtr<Counted>()};
    for (const auto* pointer : {&byDefault, &fromEmpty}) {
        EXPECT_TRUE(pointer->expired());
        EXPECT_TRUE(pointer->lock() == nullptr);
        EXPECT_EQ(pointer->UseCount(), 0);
        EXPECT_EQ(pointer->WeakCount(), 0);
    }
    EXPECT_EQ(watch.Allocations(), 0);
}

TEST(WeakPtr, LocksAnObjectThatLives)
{
    int alive = 0;
    const VUKBasSharedPtr<Counted> shared = VUKBasMakeShared<Counted>(alive, 8);
    const VUKBasWeakPtr<Counted> weak(shared);
    EXPECT_FALSE(weak.expired());
    const VUKBasSharedPtr<Counted> locked = weak.lock();
    EXPECT_EQ(locked->Number(), 8);
    EXPECT_EQ(shared.UseCount(), 2);
    EXPECT_EQ(weak.UseCount(), 2);
}

TEST(WeakPtr, DoesNotKeepTheObjectAlive)
{
    int alive = 0;
    VUKBasSharedPtr<Counted> shared = VUKBasMakeShared<Counted>(alive);
    const VUKBasWeakPtr<Counted> weak(shared);
    shared.reset();
    EXPECT_EQ(alive, 0);
    EXPECT_TRUE(weak.expired());
    EXPECT_TRUE(weak.lock() == nullptr);
    EXPECT_EQ(weak.UseCount(), 0);
    EXPECT_EQ(weak.WeakCount(), 1);
}

TEST(WeakPtr, ALockedPointerKeepsTheObjectAlive)
{
    int alive = 0;
    VUKBasSharedPtr<Counted> shared = VUKBasMakeShared<Counted>(alive);
    const VUKBasWeakPtr<Counted> weak(shared);
    VUKBasSharedPtr<Counted> locked = weak.lock();
    shared.reset();
    EXPECT_EQ(alive, 1);
    locked.reset();
    EXPECT_EQ(alive, 0);
}

TEST(WeakPtr, CountsTheWeakPointersAlone)
{
    int alive = 0;
    VUKBasSharedPtr<Counted> shared = VUKBasMakeShared<Counted>(alive);
    VUKBasWeakPtr<Counted> first(shared);
    EXPECT_EQ(first.WeakCount(), 1);
    {
        VUKBasWeakPtr<Counted> second;
        second = first;
        EXPECT_EQ(first.WeakCount(), 2);
        EXPECT_EQ(second.UseCount(), 1);
        shared.reset();
        EXPECT_EQ(first.WeakCount(), 2);
    }
    EXPECT_EQ(first.WeakCount(), 1);
    first.reset();
    EXPECT_EQ(first.WeakCount(), 0);
}

TEST(WeakPtr, KeepsTheCountsUntilTheLastWeakPointerGoes)
{
    mem_Watch watch;
    int alive = 0;
    VUKBasSharedPtr<Counted> joined = VUKBasMakeShared<Counted>(alive);
    VUKBasSharedPtr<Counted> adopted(new Counted(alive));
    EXPECT_EQ(watch.Live(), 3);
    VUKBasWeakPtr<Counted> weakJoined(joined);
    VUKBasWeakPtr<Counted> weakAdopted(adopted);
    joined.reset();
    adopted.reset();
    EXPECT_EQ(alive, 0);
    EXPECT_EQ(watch.Live(), 2); // the joined block, and the counts of the adopted object
    weakJoined.reset();
    weakAdopted.reset();
    EXPECT_EQ(watch.Live(), 0);
}

TEST(WeakPtr, FreesTheBlockWhenTheObjectHeldTheLastWeakPointerToItself)
{
    mem_Watch watch;
    bool sawItself = true;
    {
        const VUKBasSharedPtr<SelfAware> shared = VUKBasMakeShared<SelfAware>(sawItself);
        shared->self = shared;
        EXPECT_EQ(shared->self.WeakCount(), 1);
    }
    EXPECT_FALSE(sawItself); // no way back to an object that is being destroyed
    EXPECT_EQ(watch.Live(), 0);
}

TEST(WeakPtr, AssigningChangesTheObjectRemembered)
{
    int alive = 0;
    const VUKBasSharedPtr<Counted> first = VUKBasMakeShared<Counted>(alive, 1);
    const VUKBasSharedPtr<Counted> second = VUKBasMakeShared<Counted>(alive, 2);
    VUKBasWeakPtr<Counted> weak(first);
    const VUKBasWeakPtr<Counted> other(first);
    weak = second;
    EXPECT_EQ(weak.lock()->Number(), 2);
    EXPECT_EQ(other.WeakCount(), 1);
    weak = other;
    EXPECT_EQ(weak.lock()->Number(), 1);
    EXPECT_EQ(other.WeakCount(), 2);
}

TEST(WeakPtr, StaysWhenAssignedToItself)
{
    int alive = 0;
    const VUKBasSharedPtr<Counted> shared = VUKBasMakeShared<Counted>(alive);
    VUKBasWeakPtr<Counted> weak(shared);
    VUKBasWeakPtr<Counted>& same = weak;
    weak = same;
    EXPECT_EQ(weak.WeakCount(), 1);
    weak = std::move(same);
    EXPECT_EQ(weak.WeakCount(), 1);
    EXPECT_FALSE(weak.expired());
}

TEST(WeakPtr, MovingAndSwappingKeepTheCount)
{
    int alive = 0;
    const VUKBasSharedPtr<Counted> shared = VUKBasMakeShared<Counted>(alive, 6);
    VUKBasWeakPtr<Counted> first(shared);
    VUKBasWeakPtr<Counted> second(std::move(first));
    // NOLINTNEXTLINE(bugprone-use-after-move,clang-analyzer-cplusplus.Move): what is tested
    EXPECT_TRUE(first.expired());
    EXPECT_EQ(second.WeakCount(), 1);
    first.swap(second);
    EXPECT_TRUE(second.expired());
    EXPECT_EQ(first.lock()->Number(), 6);
    second = std::move(first);
    EXPECT_EQ(second.WeakCount(), 1);
}

TEST(WeakPtr, RemembersADerivedObjectByItsBase)
{
    const VUKBasSharedPtr<Derived> derived = VUKBasMakeShared<Derived>();
    const VUKBasWeakPtr<Base> weak(derived);
    EXPECT_EQ(weak.lock()->value, 4);
    EXPECT_EQ(derived.UseCount(), 1);
}

TEST(WeakPtr, BorrowsAnObjectThatLivesWithoutACount)
{
    int alive = 0;
    VUKBasSharedPtr<Counted> shared = VUKBasMakeShared<Counted>(alive, 8);
    const VUKBasWeakPtr<Counted> weak(shared);
    EXPECT_EQ(weak.Borrow(), shared.get());
    EXPECT_EQ(&weak.BorrowLiving(), shared.get());
    EXPECT_EQ(shared.UseCount(), 1);
    shared.reset();
    EXPECT_EQ(weak.Borrow(), nullptr);
    EXPECT_EQ(VUKBasWeakPtr<Counted>().Borrow(), nullptr);
}

TEST(WeakPtr, BorrowsNothingFromAnObjectThatDies)
{
    struct Dying
    {
        explicit Dying(bool& borrowed) : mBorrowed(borrowed) {}
        ~Dying() { mBorrowed = self.Borrow() != nullptr; }

        VUKBasWeakPtr<Dying> self;
        bool& mBorrowed;
    };
    bool borrowed = true;
    auto shared = VUKBasMakeShared<Dying>(borrowed);
    shared->self = shared;
    shared.reset();
    EXPECT_FALSE(borrowed);
}

TEST(WeakPtr, KnowsAnotherOfTheSameLivingObject)
{
    int alive = 0;
    VUKBasSharedPtr<Counted> shared = VUKBasMakeShared<Counted>(alive, 8);
    const VUKBasSharedPtr<Counted> other = VUKBasMakeShared<Counted>(alive, 8);
    const VUKBasWeakPtr<Counted> weak(shared);
    const VUKBasWeakPtr<Counted> again(shared);
    const VUKBasWeakPtr<Counted> another(other);
    const VUKBasWeakPtr<Counted> none;
    EXPECT_TRUE(weak.SameObject(again));
    EXPECT_FALSE(weak.SameObject(another));
    EXPECT_FALSE(weak.SameObject(none));
    EXPECT_FALSE(none.SameObject(none));
    shared.reset();
    EXPECT_FALSE(weak.SameObject(again));
}

TEST(WeakPtr, KeepsItsCountWhenItIsAssignedTheSameObject)
{
    int alive = 0;
    const VUKBasSharedPtr<Counted> shared = VUKBasMakeShared<Counted>(alive, 8);
    VUKBasWeakPtr<Counted> weak(shared);
    const VUKBasWeakPtr<Counted> again(shared);
    weak = again;
    EXPECT_EQ(weak.WeakCount(), 2);
    weak = VUKBasWeakPtr<Counted>(shared);
    EXPECT_EQ(weak.WeakCount(), 2);
    EXPECT_EQ(weak.Borrow(), shared.get());
    weak = VUKBasWeakPtr<Counted>();
    EXPECT_EQ(weak.WeakCount(), 0);
    EXPECT_EQ(again.WeakCount(), 1);
}
