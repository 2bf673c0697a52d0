// String records as every output stream writes them: length (4), text, zeros up to a multiple of 4.
#include "VUKSimRpm_BStreamWrite.h"

#include "Bytes.h"
#include "CountedMemory.h"
#include "Failures.h"
#include "HugeBlocks.h"
#include "LimitedMemory.h"
#include "OnePool.h"
#include "VUKSimRpm_BStreamWriteBuffer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <type_traits>
#include <vector>

namespace {

constexpr char kBufferSource[] = "VUKSim/VUKSimRpm.m/src/VUKSimRpm_BStreamWriteBuffer";

using Stream = VUKSimRpm_BStreamWrite;
using testing::ElementsAre;

// The record of `text`, and what is left behind it in a buffer full of '?'.
std::string Written(const VUKString& text, std::size_t room)
{
    std::string buffer(room, '?');
    VUKSimRpm_BStreamWriteBuffer stream(buffer.data(), buffer.size());
    stream.Write(text);
    return buffer;
}

// Notes the length of each run it is given, and the last four bytes of the last.
class LongRecord final : public VUKSimRpm_BStreamWrite
{
public:
    char* PrepWrite(unsigned long length) override
    {
        prefix.assign(length, '?');
        return prefix.data();
    }
    void Write(const char* source, unsigned int length) override
    {
        runs.push_back(length);
        tail.assign(source + (length < 4 ? 0 : length - 4), source + length);
    }
    using VUKSimRpm_BStreamWrite::Write;

    VUKSimRpm_PoolDirectoryImpl* SourceDir() const override { return nullptr; }
    VUKSimRpm_MemoryPool* IMPool() const override { return nullptr; }

    std::string prefix;
    std::string tail;
    std::vector<unsigned int> runs;
};
} // namespace

TEST(BStreamWrite, IsAnInterfaceWithoutDataWhoseDestructorMayThrow)
{
    EXPECT_TRUE(std::is_abstract_v<Stream>);
    EXPECT_TRUE(std::has_virtual_destructor_v<Stream>);
    EXPECT_FALSE(std::is_nothrow_destructible_v<Stream>);
    EXPECT_EQ(sizeof(Stream), 8U);
    const bool hasAllocationOperators = std::is_base_of_v<mem_AllocationOperators, Stream>;
    EXPECT_TRUE(hasAllocationOperators);
}

TEST(BStreamWrite, WritesATextPaddedToFourWithZeros)
{
    EXPECT_EQ(Written("abc", 8), std::string("\x03\x00\x00\x00"
                                             "abc\x00",
                                             8));
    EXPECT_EQ(Written("abcd", 8), std::string("\x04\x00\x00\x00"
                                              "abcd",
                                              8));
    EXPECT_EQ(Written("abcde", 13), std::string("\x05\x00\x00\x00"
                                                "abcde\x00\x00\x00?",
                                                13));
    EXPECT_EQ(Written("ab", 8), std::string("\x02\x00\x00\x00"
                                            "ab\x00\x00",
                                            8));
}

TEST(BStreamWrite, WritesUtf8ByteForByte)
{
    EXPECT_EQ(Written("\xC3\xBC\xE2\x82\xAC", 12),
              std::string("\x05\x00\x00\x00\xC3\xBC\xE2\x82\xAC\x00\x00\x00", 12));
}

TEST(BStreamWrite, WritesTextsOfEveryLengthAroundItsBuffers)
{
    for (const unsigned int length : {1U, 251U, 252U, 253U, 254U, 255U, 256U, 257U, 100001U}) {
        const unsigned int padded = (length + 3) / 4 * 4;
        EXPECT_EQ(Written(Letters(length).c_str(), padded + 5),
                  bytes::Word(length) + Letters(length) + bytes::Zeros(padded - length) + "?")
            << length;
    }
}

TEST(BStreamWrite, WritesAnEmptyTextAsItsLengthAndARunOfNothing)
{
    LongRecord stream;
    stream.Write(VUKString());
    EXPECT_EQ(stream.prefix, bytes::Zeros(4));
    EXPECT_THAT(stream.runs, ElementsAre(0U));
}

TEST(BStreamWrite, StopsWhereTheStreamIsFull)
{
    std::string buffer(9, '?');
    VUKSimRpm_BStreamWriteBuffer stream(buffer.data(), buffer.size());
    EXPECT_TRUE(
        RaisesShortBuffer([&] { stream.Write(VUKString("abcdef")); }, 8, 5, kBufferSource, 40));
    EXPECT_EQ(buffer, std::string("\x06\x00\x00\x00?????", 9));
}

TEST(BStreamWrite, TakesNothingOfTheStreamWhenThereIsNoMemory)
{
    const VUKString text = Letters(1000).c_str();
    std::string buffer(1004, '?');
    VUKSimRpm_BStreamWriteBuffer stream(buffer.data(), buffer.size());
    {
        const LimitedMemory memory(0);
        EXPECT_TRUE(RaisesBadAlloc([&] { stream.Write(text); }));
    }
    EXPECT_EQ(buffer, std::string(1004, '?'));
    stream.Write(text); // all the room is still there
    EXPECT_EQ(buffer, bytes::Word(1000) + Letters(1000));
}

TEST(BStreamWrite, GivesBackItsMemoryWhenTheStreamFails)
{
    const VUKString text = Letters(1000).c_str();
    std::string buffer(1000, '?');
    VUKSimRpm_BStreamWriteBuffer stream(buffer.data(), buffer.size());
    const CountedMemory memory;
    EXPECT_TRUE(RaisesShortBuffer([&] { stream.Write(text); }, 1000, 996, kBufferSource, 40));
    EXPECT_EQ(memory.Allocations(), 1);
    EXPECT_EQ(memory.Blocks(), 0U);
}

TEST(BStreamWrite, PadsALengthNear4GiBWithoutWrapping)
{
    const HugeBlocks huge;
    const auto pages = HugeBlocks::Make(4294967296ULL, 'a');
    std::memset(pages->Bytes() + 4278190080ULL, 'a', 16777213); // up to 2^32 - 3
    const VUKString text(pages->Bytes());
    ASSERT_EQ(text.GetLengthInByte(), 4294967293U);
    LongRecord stream;
    stream.Write(text);
    EXPECT_EQ(stream.prefix, "\xFD\xFF\xFF\xFF");
    // One run can be 2^32 - 1 bytes long at most.
    EXPECT_THAT(stream.runs, ElementsAre(4294967292U, 4U));
    EXPECT_EQ(stream.tail, std::string("a\0\0\0", 4));
}
