#include "VUKBasSharedPtr.h"

#include "Counted.h"
#include "DeclaredOnly.h"
#include "mem_Watch.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <new>
#include <type_traits>
#include <utility>

class Hidden
{
public:
    explicit Hidden(int& alive) : mCounted(alive) {}

private:
    Counted mCounted;
};

namespace {

struct Base
{
    int baseValue = 1;
};

struct Derived : Base, mem_AllocationOperators
{
    explicit Derived(int& alive) : counted(alive) {}

    Counted counted;
};

struct alignas(16) Wide
{
    char bytes[16];
};

struct Throwing
{
    Throwing() { throw 42; }
};

// Looks, while it dies, at the pointer that held it.
struct Watcher
{
    explicit Watcher(bool& sawEmpty) : mSawEmpty(sawEmpty) {}
    Watcher(const Watcher&) = delete;
    Watcher& operator=(const Watcher&) = delete;
    ~Watcher() { mSawEmpty = holder->get() == nullptr; }

    VUKBasSharedPtr<Watcher>* holder = nullptr;

private:
    bool& mSawEmpty;
};

} // namespace

TEST(SharedPtr, IsEmptyByDefaultFromNullptrAndFromANullObject)
{
    mem_Watch watch;
    const VUKBasSharedPtr<Counted> byDefault;
    const VUKBasSharedPtr<Counted> fromNullptr(nullptr);
    const VUKBasSharedPtr<Counted> fromNullObject(static_cast<Counted*>(nullptr));
    for (const auto* pointer : {&byDefault, &fromNullptr, &fromNullObject}) {
        EXPECT_EQ(pointer->get(), nullptr);
        EXPECT_FALSE(*pointer);
        EXPECT_EQ(pointer->UseCount(), 0);
        EXPECT_TRUE(*pointer == nullptr);
    }
    EXPECT_EQ(watch.Allocations(), 0);
}

TEST(SharedPtr, IsTwoPlainPointersInSize)
{
    EXPECT_EQ(sizeof(VUKBasSharedPtr<Counted>), 16U);
    EXPECT_TRUE(std::is_nothrow_move_constructible_v<VUKBasSharedPtr<Counted>>);
    EXPECT_TRUE(std::is_nothrow_copy_constructible_v<VUKBasSharedPtr<Counted>>);
}

TEST(SharedPtr, DeletesAnAdoptedObjectWithItsLastCopy)
{
    mem_Watch watch;
    int alive = 0;
    {
        VUKBasSharedPtr<Counted> first(new Counted(alive, 7));
        EXPECT_EQ(alive, 1);
        {
            const VUKBasSharedPtr<Counted> second(first);
            EXPECT_EQ(first.UseCount(), 2);
            EXPECT_EQ(second->Number(), 7);
            EXPECT_EQ((*second).Number(), 7);
            EXPECT_EQ(second.get(), first.get());
            first.reset();
            EXPECT_EQ(second.UseCount(), 1);
            EXPECT_EQ(alive, 1);
        }
        EXPECT_EQ(alive, 0);
    }
    EXPECT_EQ(watch.Live(), 0);
}

TEST(SharedPtr, DeletesAnObjectThatItCannotCountFor)
{
    mem_Watch watch;
    int alive = 0;
    auto* object = new Counted(alive);
    watch.FailAt(1);
    EXPECT_THROW(VUKBasSharedPtr<Counted>{object}, std::bad_alloc);
    EXPECT_EQ(alive, 0);
    EXPECT_EQ(watch.Live(), 0);
}

TEST(SharedPtr, DeletesAnObjectAsTheClassThatItWasAdoptedAs)
{
    mem_Watch watch;
    int alive = 0;
    {
        const VUKBasSharedPtr<Base> base(new Derived(alive));
        EXPECT_EQ(base->baseValue, 1);
        EXPECT_EQ(alive, 1);
    }
    EXPECT_EQ(alive, 0);
    EXPECT_EQ(watch.Live(), 0);
}

TEST(SharedPtr, ConvertsToABaseAndSharesTheCount)
{
    int alive = 0;
    VUKBasSharedPtr<Derived> derived = VUKBasMakeShared<Derived>(alive);
    VUKBasSharedPtr<Base> base(derived);
    EXPECT_EQ(derived.UseCount(), 2);
    EXPECT_TRUE(base == derived);
    derived.reset();
    EXPECT_EQ(alive, 1);
    base.reset();
    EXPECT_EQ(alive, 0);
}

TEST(SharedPtr, OfABaseIsEmptyWhenMadeFromAnEmptyOne)
{
    const VUKBasSharedPtr<Base> base = VUKBasSharedPtr<Derived>();
    EXPECT_EQ(base.get(), nullptr);
    EXPECT_EQ(base.UseCount(), 0);
}

TEST(SharedPtr, MovingTakesTheObjectAndLeavesTheSourceEmpty)
{
    int alive = 0;
    VUKBasSharedPtr<Counted> first = VUKBasMakeShared<Counted>(alive);
    const Counted* object = first.get();
    VUKBasSharedPtr<Counted> second(std::move(first));
    // That the source is empty afterwards is what is tested.
    // NOLINTBEGIN(bugprone-use-after-move,clang-analyzer-cplusplus.Move)
    EXPECT_TRUE(first == nullptr);
    EXPECT_EQ(second.get(), object);
    EXPECT_EQ(second.UseCount(), 1);
    first = std::move(second);
    EXPECT_TRUE(second == nullptr);
    // NOLINTEND(bugprone-use-after-move,clang-analyzer-cplusplus.Move)
    EXPECT_EQ(first.get(), object);
    EXPECT_EQ(first.UseCount(), 1);
}

TEST(SharedPtr, AssigningLetsGoOfTheObjectBefore)
{
    int alive = 0;
    VUKBasSharedPtr<Counted> first = VUKBasMakeShared<Counted>(alive, 1);
    const VUKBasSharedPtr<Counted> second = VUKBasMakeShared<Counted>(alive, 2);
    EXPECT_EQ(alive, 2);
    first = second;
    EXPECT_EQ(alive, 1);
    EXPECT_EQ(first->Number(), 2);
    EXPECT_EQ(first.UseCount(), 2);
    first = VUKBasSharedPtr<Counted>();
    EXPECT_EQ(second.UseCount(), 1);
}

TEST(SharedPtr, KeepsItsObjectWhenAssignedToItself)
{
    int alive = 0;
    VUKBasSharedPtr<Counted> pointer = VUKBasMakeShared<Counted>(alive);
    VUKBasSharedPtr<Counted>& same = pointer;
    pointer = same;
    EXPECT_EQ(pointer.UseCount(), 1);
    pointer = std::move(same);
    EXPECT_EQ(pointer.UseCount(), 1);
    EXPECT_EQ(alive, 1);
}

TEST(SharedPtr, IsEmptyBeforeTheObjectThatItLetsGoIsDestroyed)
{
    bool sawEmpty = false;
    VUKBasSharedPtr<Watcher> pointer = VUKBasMakeShared<Watcher>(sawEmpty);
    pointer->holder = &pointer;
    pointer.reset();
    EXPECT_TRUE(sawEmpty);
}

TEST(SharedPtr, SwapsObjects)
{
    int alive = 0;
    VUKBasSharedPtr<Counted> first = VUKBasMakeShared<Counted>(alive, 1);
    VUKBasSharedPtr<Counted> second;
    first.swap(second);
    EXPECT_EQ(first, nullptr);
    EXPECT_EQ(second->Number(), 1);
    EXPECT_EQ(second.UseCount(), 1);
}

TEST(SharedPtr, ComparesByTheObject)
{
    int alive = 0;
    const VUKBasSharedPtr<Counted> first = VUKBasMakeShared<Counted>(alive);
    VUKBasSharedPtr<Counted> copy;
    copy = first;
    const VUKBasSharedPtr<Counted> other = VUKBasMakeShared<Counted>(alive);
    EXPECT_TRUE(first == copy);
    EXPECT_FALSE(first != copy);
    EXPECT_TRUE(first != other);
    EXPECT_TRUE(first != nullptr);
    EXPECT_TRUE(VUKBasSharedPtr<Counted>() == VUKBasSharedPtr<Counted>());
}

TEST(SharedPtr, WorksOnAClassThatIsOnlyDeclared)
{
    int alive = 0;
    HiddenHolder holder(VUKBasMakeShared<Hidden>(alive));
    {
        HiddenHolder copy(holder);
        EXPECT_TRUE(copy.Alive());
        EXPECT_TRUE(copy.SameAs(holder));
        EXPECT_EQ(holder.strong.UseCount(), 2);
        copy.DropStrong();
        EXPECT_TRUE(copy.LockWeak() == holder.strong);
        copy = HiddenHolder();
        EXPECT_FALSE(copy.Alive());
    }
    EXPECT_EQ(alive, 1);
    holder.DropStrong();
    EXPECT_EQ(alive, 0);
    EXPECT_TRUE(holder.LockWeak() == nullptr);
}

TEST(MakeShared, TakesOneAllocationForObjectAndCounts)
{
    mem_Watch watch;
    int alive = 0;
    {
        const VUKBasSharedPtr<Counted> pointer = VUKBasMakeShared<Counted>(alive, 3);
        EXPECT_EQ(pointer->Number(), 3);
        EXPECT_EQ(watch.Allocations(), 1);
    }
    EXPECT_EQ(alive, 0);
    EXPECT_EQ(watch.Live(), 0);
}

TEST(MakeShared, GivesTheBlockBackWhenTheConstructorThrows)
{
    mem_Watch watch;
    EXPECT_THROW(static_cast<void>(VUKBasMakeShared<Throwing>()), int);
    EXPECT_EQ(watch.Allocations(), 1);
    EXPECT_EQ(watch.Live(), 0);
}

TEST(MakeShared, BuildsNothingWithoutMemory)
{
    mem_Watch watch;
    int alive = 0;
    watch.FailAt(1);
    EXPECT_THROW(static_cast<void>(VUKBasMakeShared<Counted>(alive)), std::bad_alloc);
    EXPECT_EQ(alive, 0);
    EXPECT_EQ(watch.Live(), 0);
}

TEST(MakeShared, PassesItsArgumentsOnAsTheyAre)
{
    auto owned = std::make_unique<int>(5);
    const auto pointer = VUKBasMakeShared<std::unique_ptr<int>>(std::move(owned));
    EXPECT_EQ(**pointer, 5);
    EXPECT_EQ(owned, nullptr); // NOLINT(bugprone-use-after-move): that is what is tested
}

TEST(MakeShared, AlignsTheObject)
{
    const auto pointer = VUKBasMakeShared<Wide>();
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(pointer.get()) % 16, 0U);
}
