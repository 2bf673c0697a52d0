#include "VUKSimUttShortCopy.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <string>

namespace {

// 1, 2, 3 and so on: bytes that differ from their neighbours.
std::string Numbers(std::size_t count)
{
    std::string numbers;
    for (std::size_t i = 1; i <= count; ++i) {
        numbers += static_cast<char>(i);
    }
    return numbers;
}
} // namespace

TEST(ShortCopy, MovesExactlyTheBytesItIsToldTo)
{
    const std::string from = Numbers(70);
    for (unsigned long length = 0; length <= 64; ++length) {
        std::string to(70, '_');
        EXPECT_TRUE(
            VUKSimUttShortCopy::MoveIf(to.data() + 3, from.data(), length, [] { return true; }));
        EXPECT_EQ(to, "___" + from.substr(0, length) + std::string(67 - length, '_')) << length;
    }
}

TEST(ShortCopy, ReadsNoByteBesideThem)
{
    for (unsigned long length = 1; length <= 64; ++length) {
        const std::string bytes = Numbers(length);
        const auto block = std::make_unique<char[]>(length); // whose ends a sanitizer guards
        const auto copy = std::make_unique<char[]>(length);
        std::copy(bytes.begin(), bytes.end(), block.get());
        VUKSimUttShortCopy::Copy(copy.get(), block.get(), length);
        EXPECT_EQ(std::string(copy.get(), length), bytes);
    }
}

TEST(ShortCopy, AsksOnceAndPutsNothingWhereTheAnswerIsNo)
{
    const std::string from = Numbers(64);
    for (unsigned long length = 0; length <= 64; ++length) {
        std::string to(64, '_');
        int asked = 0;
        EXPECT_FALSE(VUKSimUttShortCopy::MoveIf(to.data(), from.data(), length, [&] {
            ++asked;
            return false;
        }));
        EXPECT_EQ(asked, 1);
        EXPECT_EQ(to, std::string(64, '_'));
    }
}

TEST(ShortCopy, AsksWhenItHoldsTheBytesAndBeforeItPutsThem)
{
    for (unsigned long length = 1; length <= 64; ++length) {
        std::string from = Numbers(64);
        std::string to(64, '_');
        VUKSimUttShortCopy::MoveIf(to.data(), from.data(), length, [&] {
            EXPECT_EQ(to, std::string(64, '_'));
            from.assign(64, '?');
            return true;
        });
        EXPECT_EQ(to.substr(0, length), Numbers(64).substr(0, length));
    }
}

TEST(ShortCopy, CopiesAnyLength)
{
    const std::string from = Numbers(200);
    for (const unsigned long length : {0UL, 1UL, 64UL, 65UL, 200UL}) {
        std::string to(200, '_');
        VUKSimUttShortCopy::Copy(to.data(), from.data(), length);
        EXPECT_EQ(to, from.substr(0, length) + std::string(200 - length, '_'));
    }
}
