// What streams that hosts derive from the two bases rely on beyond the names of the operations.
#include "VUKSimRpm_BStreamRead.h"
#include "VUKSimRpm_BStreamWrite.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstring>

namespace {

// Where the operation stands in its class's table, counted from 0. By the C++ ABI of the targets a
// pointer to a virtual member holds that place in bytes, on most of them raised by 1.
template <class Member>
std::ptrdiff_t PlaceOf(Member member)
{
    std::ptrdiff_t words[2];
    static_assert(sizeof member == sizeof words);
    std::memcpy(words, &member, sizeof words);
    return words[0] / static_cast<std::ptrdiff_t>(sizeof(void*));
}
} // namespace

// The destructor takes the first two places.
TEST(BStreamRead, KeepsTheOrderOfItsVirtualOperations)
{
    using Stream = VUKSimRpm_BStreamRead;
    EXPECT_EQ(PlaceOf(&Stream::PrepRead), 2);
    EXPECT_EQ(PlaceOf<void (Stream::*)(char*, unsigned int)>(&Stream::Read), 3);
    EXPECT_EQ(PlaceOf(&Stream::SourceDir), 4);
    EXPECT_EQ(PlaceOf(&Stream::IMPool), 5);
}

TEST(BStreamWrite, KeepsTheOrderOfItsVirtualOperations)
{
    using Stream = VUKSimRpm_BStreamWrite;
    EXPECT_EQ(PlaceOf(&Stream::PrepWrite), 2);
    EXPECT_EQ(PlaceOf<void (Stream::*)(const char*, unsigned int)>(&Stream::Write), 3);
    EXPECT_EQ(PlaceOf(&Stream::SourceDir), 4);
    EXPECT_EQ(PlaceOf(&Stream::IMPool), 5);
}
