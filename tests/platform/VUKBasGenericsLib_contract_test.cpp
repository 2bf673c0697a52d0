#include "VUKBasNodeAllocator.h"
#include "VUKBasPair.h"
#include "VUKBasStandardComparitor.h"
#include "VUKBasTreeGeneric.h"
#include "VUKBasVectorGeneric.h"

#include "Failures.h"
#include "LimitedMemory.h"

#include <gtest/gtest.h>

#include <type_traits>

namespace {

struct Key
{
    int value;

    [[nodiscard]] bool Less(const Key& that) const { return value < that.value; }
};

using Tree = VUKBasTreeGeneric<VUKBasNodeAllocator, VUKBasPair<Key const, int>,
                               &VUKBasStandardComparitor<Key>::Compare>;

// The value under `key`, or -1.
int Found(const Tree& tree, int key)
{
    const auto* element = tree.Find(Key{key});
    return element == tree.End() ? -1 : element->second;
}
} // namespace

// So that a slot, which is signed, and an index, which is not, both compare exactly.
static_assert(std::is_same_v<decltype(VUKBasVectorGeneric<int>().size()), long long>);

TEST(VectorContract, AddsWithoutMemoryUpToWhatWasReserved)
{
    VUKBasVectorGeneric<int> numbers;
    numbers.reserve(64);
    const LimitedMemory none(0);
    for (int i = 0; i < 64; ++i) {
        numbers.push_back(i);
    }
    EXPECT_EQ(numbers.size(), 64);
    EXPECT_EQ(numbers[63], 63);
    EXPECT_FALSE(none.RanOut());
}

TEST(VectorContract, StaysAsItIsWhenMemoryRunsOut)
{
    VUKBasVectorGeneric<int> numbers;
    numbers.push_back(7);
    const LimitedMemory none(0);
    EXPECT_TRUE(RaisesBadAlloc([&] { numbers.reserve(1000); }));
    EXPECT_EQ(numbers.size(), 1);
    EXPECT_EQ(numbers[0], 7);
}

TEST(VectorContract, DropsItsTail)
{
    VUKBasVectorGeneric<int> numbers;
    for (int i = 0; i < 5; ++i) {
        numbers.push_back(i);
    }
    numbers.pop_back();
    EXPECT_EQ(numbers.size(), 4);
    numbers.resize_down(1);
    EXPECT_EQ(numbers.size(), 1);
    EXPECT_EQ(numbers[0], 0);
}

TEST(TreeContract, FindsByKeyAndMarksWhatItDoesNotHave)
{
    Tree tree;
    EXPECT_EQ(Found(tree, 3), -1);
    EXPECT_TRUE(tree.InsertUnique({Key{3}, 30}));
    EXPECT_TRUE(tree.InsertUnique({Key{1}, 10}));
    EXPECT_EQ(Found(tree, 3), 30);
    EXPECT_EQ(Found(tree, 1), 10);
    EXPECT_EQ(Found(tree, 2), -1);
}

TEST(TreeContract, KeepsTheFirstElementOfAKey)
{
    Tree tree;
    tree.InsertUnique({Key{3}, 30});
    EXPECT_FALSE(tree.InsertUnique({Key{3}, 31}));
    EXPECT_EQ(Found(tree, 3), 30);
}

TEST(TreeContract, FindsTheElementOfAKeyOrInsertsIt)
{
    Tree tree;
    EXPECT_EQ(tree.FindOrInsert({Key{3}, 30}).second, 30);
    EXPECT_EQ(tree.FindOrInsert({Key{3}, 31}).second, 30);
    EXPECT_EQ(Found(tree, 3), 30);
}

TEST(TreeContract, StaysAsItIsWhenMemoryRunsOut)
{
    Tree tree;
    tree.InsertUnique({Key{3}, 30});
    const LimitedMemory none(0);
    EXPECT_TRUE(RaisesBadAlloc([&] { tree.InsertUnique({Key{1}, 10}); }));
    EXPECT_TRUE(RaisesBadAlloc([&] { tree.FindOrInsert({Key{1}, 10}); }));
    EXPECT_EQ(Found(tree, 1), -1);
    EXPECT_EQ(Found(tree, 3), 30);
}
