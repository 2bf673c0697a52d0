#include "VUKBasTreeGeneric.h"

#include "VUKBasNodeAllocator.h"
#include "VUKBasPair.h"
#include "VUKBasStandardComparitor.h"
#include "mem_Watch.h"

#include <gtest/gtest.h>

#include <new>
#include <type_traits>

namespace {

// Orders by the number alone, and by the larger one first, as no built-in order would.
struct Key
{
    int number;
    char note;

    [[nodiscard]] bool Less(const Key& that) const { return number > that.number; }
};

using Element = VUKBasPair<const Key, int>;
using Tree =
    VUKBasTreeGeneric<VUKBasNodeAllocator, Element, VUKBasStandardComparitor<Key>::Compare>;

void* gContext = nullptr; // what the comparator below was last given

bool CompareAndNoteContext(const void* a, const void* b, void* context)
{
    gContext = context;
    return *static_cast<const int*>(a) < *static_cast<const int*>(b);
}

} // namespace

TEST(TreeGeneric, IsEmptyAtFirstAndTakesNoMemory)
{
    mem_Watch watch;
    const Tree tree;
    EXPECT_EQ(tree.size(), 0);
    EXPECT_EQ(tree.Find(Key{1, 'a'}), tree.End());
    EXPECT_EQ(tree.End(), nullptr);
    EXPECT_EQ(watch.Allocations(), 0);
}

TEST(TreeGeneric, FindsWhatWasInserted)
{
    Tree tree;
    for (int i = 0; i < 1000; ++i) {
        const int number = i * 7919 % 1000; // every number below 1000 once, out of order
        EXPECT_TRUE(tree.InsertUnique(Element{{number, 'k'}, i}));
    }
    EXPECT_EQ(tree.size(), 1000);
    for (int i = 0; i < 1000; ++i) {
        const int number = i * 7919 % 1000;
        const Element* found = tree.Find(Key{number, 'x'});
        ASSERT_NE(found, tree.End());
        EXPECT_EQ(found->first.number, number);
        EXPECT_EQ(found->second, i);
    }
    EXPECT_EQ(tree.Find(Key{1000, 'k'}), tree.End());
    EXPECT_EQ(tree.Find(Key{-1, 'k'}), tree.End());
}

TEST(TreeGeneric, KeepsTheFirstElementOfAKey)
{
    Tree tree;
    EXPECT_TRUE(tree.InsertUnique(Element{{5, 'a'}, 10}));
    EXPECT_FALSE(tree.InsertUnique(Element{{5, 'b'}, 20}));
    EXPECT_EQ(tree.size(), 1);
    EXPECT_EQ(tree.Find(Key{5, 'c'})->first.note, 'a');
    EXPECT_EQ(tree.Find(Key{5, 'c'})->second, 10);
}

TEST(TreeGeneric, FindsOrInsertsInOneStep)
{
    Tree tree;
    const Element& inserted = tree.FindOrInsert(Element{{5, 'a'}, 10});
    EXPECT_EQ(inserted.first.note, 'a');
    EXPECT_EQ(inserted.second, 10);
    const Element& found = tree.FindOrInsert(Element{{5, 'b'}, 20});
    EXPECT_EQ(&found, &inserted);
    EXPECT_EQ(found.second, 10);
    EXPECT_EQ(tree.size(), 1);
}

TEST(TreeGeneric, FindsWithoutMemoryWhatItWouldInsert)
{
    mem_Watch watch;
    Tree tree;
    tree.FindOrInsert(Element{{5, 'a'}, 10});
    EXPECT_EQ(tree.FindOrInsert(Element{{5, 'b'}, 20}).second, 10);
    EXPECT_EQ(watch.Allocations(), 1);
    watch.FailAt(1);
    EXPECT_THROW(tree.FindOrInsert(Element{{6, 'a'}, 30}), std::bad_alloc);
    EXPECT_EQ(tree.size(), 1);
}

TEST(TreeGeneric, LeavesElementsWhereTheyAreWhileItGrows)
{
    Tree tree;
    tree.InsertUnique(Element{{500, 'a'}, 1});
    const Element* before = tree.Find(Key{500, 'a'});
    for (int i = 0; i < 1000; ++i) {
        tree.InsertUnique(Element{{i, 'b'}, 2});
    }
    EXPECT_EQ(tree.Find(Key{500, 'a'}), before);
}

TEST(TreeGeneric, TakesItsNodesFromTheTableAndGivesThemBack)
{
    mem_Watch watch;
    {
        Tree tree;
        tree.InsertUnique(Element{{1, 'a'}, 1});
        tree.InsertUnique(Element{{2, 'a'}, 1});
        EXPECT_EQ(watch.Live(), 2);
        tree.InsertUnique(Element{{2, 'a'}, 1});
        EXPECT_EQ(watch.Live(), 2);
    }
    EXPECT_EQ(watch.Live(), 0);
}

TEST(TreeGeneric, StaysAsItWasWhenMemoryRunsOut)
{
    mem_Watch watch;
    Tree tree;
    tree.InsertUnique(Element{{1, 'a'}, 1});
    watch.FailAt(1);
    EXPECT_THROW(tree.InsertUnique(Element{{2, 'a'}, 2}), std::bad_alloc);
    EXPECT_EQ(tree.size(), 1);
    EXPECT_EQ(tree.Find(Key{2, 'a'}), tree.End());
    EXPECT_TRUE(tree.InsertUnique(Element{{2, 'a'}, 3}));
    EXPECT_EQ(tree.Find(Key{2, 'a'})->second, 3);
}

TEST(TreeGeneric, FindsWithoutAllocating)
{
    mem_Watch watch;
    Tree tree;
    tree.InsertUnique(Element{{1, 'a'}, 1});
    EXPECT_NE(tree.Find(Key{1, 'a'}), tree.End());
    EXPECT_EQ(tree.Find(Key{2, 'a'}), tree.End());
    EXPECT_EQ(watch.Allocations(), 1);
}

TEST(TreeGeneric, GivesItsComparatorTheKeysAndNoContext)
{
    VUKBasTreeGeneric<VUKBasNodeAllocator, VUKBasPair<const int, int>, CompareAndNoteContext> tree;
    static int marker = 0;
    gContext = &marker;
    tree.InsertUnique({1, 10});
    tree.InsertUnique({2, 20});
    EXPECT_EQ(gContext, nullptr);
    EXPECT_EQ(tree.Find(2)->second, 20);
}

TEST(StandardComparitor, AnswersWithTheKeysOwnOrder)
{
    const Key high{9, 'a'};
    const Key low{3, 'a'};
    int context = 0;
    EXPECT_TRUE(VUKBasStandardComparitor<Key>::Compare(&high, &low, nullptr));
    EXPECT_FALSE(VUKBasStandardComparitor<Key>::Compare(&low, &high, nullptr));
    EXPECT_FALSE(VUKBasStandardComparitor<Key>::Compare(&low, &low, &context));
}

TEST(NodeAllocator, RefusesACountThatDoesNotFitInBytes)
{
    mem_Watch watch;
    VUKBasNodeAllocator<int> allocator;
    EXPECT_THROW(static_cast<void>(allocator.allocate(0x4000'0000'0000'0000U)),
                 std::bad_array_new_length);
    EXPECT_EQ(watch.Allocations(), 0);
}

TEST(NodeAllocator, IsEqualToEveryOther)
{
    const VUKBasNodeAllocator<int> numbers;
    const VUKBasNodeAllocator<char> letters(numbers);
    EXPECT_TRUE(numbers == letters);
}

TEST(Pair, HoldsItsTwoValuesAndNothingElse)
{
    const VUKBasPair<const int, char> pair{3, 'x'};
    EXPECT_EQ(pair.first, 3);
    EXPECT_EQ(pair.second, 'x');
    EXPECT_EQ(sizeof(VUKBasPair<const int, int>), 8U);
    EXPECT_TRUE((std::is_trivially_copyable_v<VUKBasPair<int, int>>));
}
