// String records as every input stream reads them: length (4), text, zeros up to a multiple of 4.
#include "VUKSimRpm_BStreamRead.h"

#include "Bytes.h"
#include "CountedMemory.h"
#include "Failures.h"
#include "HugeBlocks.h"
#include "LimitedMemory.h"
#include "OnePool.h"
#include "VUKSimRpm_BStreamReadBuffer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <type_traits>
#include <vector>

namespace {

constexpr char kBufferSource[] = "VUKSim/VUKSimRpm.m/src/VUKSimRpm_BStreamReadBuffer";

using Stream = VUKSimRpm_BStreamRead;
using testing::ElementsAre;
using testing::IsEmpty;

VUKString TextIn(const std::string& record)
{
    VUKSimRpm_BStreamReadBuffer stream(record.data(), record.size());
    VUKString text = "replaced";
    stream.Read(text);
    return text;
}

std::string Record(const std::string& text)
{
    const std::size_t padding = (4 - text.size() % 4) % 4;
    return bytes::Word(static_cast<unsigned int>(text.size())) + text + bytes::Zeros(padding);
}

// Says that a text of `length` bytes follows and delivers `delivers` bytes of it: "text", then
// whatever stood in the caller's memory. Notes how long the runs are that it is asked for.
class LongRecord final : public VUKSimRpm_BStreamRead
{
public:
    LongRecord(unsigned int length, unsigned long long delivers)
        : mLength(bytes::Word(length)), mLeft(delivers)
    {}

    char* PrepRead(unsigned long) override { return mLength.data(); }

    void Read(char* destination, unsigned int length) override
    {
        if (length > mLeft) {
            VUKSimExcShortBuffer(length, static_cast<unsigned int>(mLeft)).Throw("LongRecord", 1);
        }
        if (total == 0 && length >= 5) {
            std::memcpy(destination, "text", 5); // with its zero
        }
        mLeft -= length;
        total += length;
        runs.push_back(length);
    }
    using VUKSimRpm_BStreamRead::Read;

    VUKSimRpm_PoolDirectoryImpl* SourceDir() const override { return nullptr; }
    VUKSimRpm_MemoryPool* IMPool() const override { return nullptr; }

    unsigned long long total = 0; // bytes delivered
    std::vector<unsigned int> runs;

private:
    std::string mLength;
    unsigned long long mLeft;
};
} // namespace

TEST(BStreamRead, IsAnInterfaceWithoutDataWhoseDestructorMayThrow)
{
    EXPECT_TRUE(std::is_abstract_v<Stream>);
    EXPECT_TRUE(std::has_virtual_destructor_v<Stream>);
    EXPECT_FALSE(std::is_nothrow_destructible_v<Stream>);
    EXPECT_EQ(sizeof(Stream), 8U);
    const bool hasAllocationOperators = std::is_base_of_v<mem_AllocationOperators, Stream>;
    EXPECT_TRUE(hasAllocationOperators);
}

TEST(BStreamRead, AllocatesStreamsFromThePlatform)
{
    const CountedMemory memory;
    auto* const stream = new LongRecord(0, 0);
    EXPECT_EQ(memory.Blocks(), 1U);
    delete stream;
    EXPECT_EQ(memory.Blocks(), 0U);
}

TEST(BStreamRead, ReadsATextPaddedToFour)
{
    EXPECT_TRUE(TextIn(std::string("\x03\x00\x00\x00"
                                   "abc\x00",
                                   8)) == "abc");
    EXPECT_TRUE(TextIn(std::string("\x04\x00\x00\x00"
                                   "abcd",
                                   8)) == "abcd");
    EXPECT_TRUE(TextIn(std::string("\x05\x00\x00\x00"
                                   "abcde\x00\x00\x00",
                                   12)) == "abcde");
}

TEST(BStreamRead, ReadsALengthOfAllFourBytesLowestFirst)
{
    EXPECT_TRUE(TextIn(std::string("\x2D\x01\x00\x00", 4) + std::string(301, 'x') +
                       bytes::Zeros(3)) == std::string(301, 'x').c_str());
}

TEST(BStreamRead, ConsumesLengthTextAndPadding)
{
    const std::string records = Record("abcde") + Record("fgh") + "!";
    VUKSimRpm_BStreamReadBuffer stream(records.data(), records.size());
    VUKString first;
    VUKString second;
    stream.Read(first);
    stream.Read(second);
    EXPECT_TRUE(first == "abcde");
    EXPECT_TRUE(second == "fgh");
    EXPECT_EQ(*stream.PrepRead(1), '!');
}

TEST(BStreamRead, ReadsUtf8ByteForByte)
{
    EXPECT_TRUE(TextIn(Record("\xC3\xBC\xE2\x82\xAC")) == "\xC3\xBC\xE2\x82\xAC");
}

TEST(BStreamRead, EndsATextAtItsFirstZeroByte)
{
    const std::string records = Record(std::string("ab\0cd", 5)) + "!";
    VUKSimRpm_BStreamReadBuffer stream(records.data(), records.size());
    VUKString text;
    stream.Read(text);
    EXPECT_TRUE(text == "ab");
    EXPECT_EQ(*stream.PrepRead(1), '!');
}

TEST(BStreamRead, LooksAtNoPaddingByte)
{
    EXPECT_TRUE(TextIn(bytes::Word(5) + "abcdeXYZ") == "abcde");
}

TEST(BStreamRead, ReadsTextsOfEveryLengthAroundItsBuffers)
{
    for (const unsigned int length : {1U, 251U, 252U, 253U, 255U, 256U, 257U, 1048575U, 1048576U,
                                      1048577U, 2097153U, 5000000U}) {
        EXPECT_TRUE(TextIn(Record(Letters(length))) == Letters(length).c_str()) << length;
    }
}

TEST(BStreamRead, AsksForAnEmptyTextToo)
{
    LongRecord stream(0, 0);
    VUKString text = "replaced";
    stream.Read(text);
    EXPECT_TRUE(text.IsEmpty());
    EXPECT_THAT(stream.runs, ElementsAre(0U));
}

TEST(BStreamRead, LeavesTheCallersTextWhenTheLengthIsCutShort)
{
    const std::string record = "\x03\x01";
    VUKSimRpm_BStreamReadBuffer stream(record.data(), record.size());
    VUKString text = "before";
    EXPECT_TRUE(RaisesShortBuffer([&] { stream.Read(text); }, 4, 2, kBufferSource, 40));
    EXPECT_TRUE(text == "before");
}

TEST(BStreamRead, LeavesTheCallersTextWhenTheTextIsCutShort)
{
    for (const unsigned int length : {9U, 1000U}) { // padded: 12 and 1000
        const std::string record = bytes::Word(length) + "abcdefgh";
        VUKSimRpm_BStreamReadBuffer stream(record.data(), record.size());
        VUKString text = "before";
        EXPECT_TRUE(RaisesShortBuffer([&] { stream.Read(text); }, length == 9 ? 12 : 1000, 8,
                                      kBufferSource, 40));
        EXPECT_TRUE(text == "before");
        EXPECT_EQ(std::string(stream.PrepRead(8), 8), "abcdefgh"); // only the length is consumed
    }
}

TEST(BStreamRead, HasConsumedTheWholePiecesOfALongTextThatIsCutShort)
{
    const std::string record = bytes::Word(3000000) + Letters(2000000);
    VUKSimRpm_BStreamReadBuffer stream(record.data(), record.size());
    VUKString text = "before";
    // The second piece reaches up to 2 MiB of the text.
    EXPECT_TRUE(RaisesShortBuffer([&] { stream.Read(text); }, 1048576, 951424, kBufferSource, 40));
    EXPECT_TRUE(text == "before");
    EXPECT_EQ(stream.PrepRead(951424), record.data() + 1048580);
}

TEST(BStreamRead, LeavesTheCallersTextWhenThereIsNoMemory)
{
    const std::string record = Record(Letters(3000000));
    for (int allocations = 0; allocations < 5; ++allocations) {
        VUKSimRpm_BStreamReadBuffer stream(record.data(), record.size());
        VUKString text = "before";
        {
            const LimitedMemory memory(allocations);
            // Room of 1, 2 and 3 million bytes, then the text itself.
            EXPECT_EQ(bool(RaisesBadAlloc([&] { stream.Read(text); })), allocations < 4);
        }
        EXPECT_TRUE(text == (allocations < 4 ? "before" : Letters(3000000).c_str()));
    }
}

TEST(BStreamRead, LeavesTheCallersTextWhenThereIsNoMemoryForAShortOne)
{
    const std::string record = Record(Letters(200));
    VUKSimRpm_BStreamReadBuffer stream(record.data(), record.size());
    VUKString text = "before";
    {
        const LimitedMemory memory(0);
        EXPECT_TRUE(RaisesBadAlloc([&] { stream.Read(text); }));
    }
    EXPECT_TRUE(text == "before");
}

TEST(BStreamRead, GivesBackAllItsMemoryWhateverHappens)
{
    const std::string whole = Record(Letters(3000000));
    const CountedMemory memory;
    for (const std::size_t size : {std::size_t{2}, std::size_t{2000000}, whole.size()}) {
        VUKSimRpm_BStreamReadBuffer stream(whole.data(), size);
        VUKString text;
        try {
            stream.Read(text);
            EXPECT_EQ(size, whole.size());
        } catch (const VUKSimExcShortBuffer&) {
            EXPECT_NE(size, whole.size());
        }
    }
    EXPECT_EQ(memory.Blocks(), 0U);
}

TEST(BStreamRead, SpendsNoMemoryOnALengthThatLies)
{
    for (const unsigned int length :
         {0x7FFFFFFFU, 0xFFFFFFFCU, 0xFFFFFFFDU, 0xFFFFFFFEU, 0xFFFFFFFFU}) {
        const std::string record = bytes::Word(length) + "only this";
        VUKSimRpm_BStreamReadBuffer stream(record.data(), record.size());
        VUKString text = "before";
        const CountedMemory memory;
        // A first piece of 1 MiB is asked for, and 9 bytes are there.
        EXPECT_TRUE(RaisesShortBuffer([&] { stream.Read(text); }, 1048576, 9, kBufferSource, 40));
        EXPECT_TRUE(text == "before");
        EXPECT_LE(memory.Peak(), 2097152U) << length;
    }
}

TEST(BStreamRead, SpendsMemoryInProportionToTheBytesDelivered)
{
    for (const unsigned long long delivered : {3000000ULL, 12000000ULL, 50000000ULL}) {
        LongRecord stream(0xFFFFFFFF, delivered);
        VUKString text = "before";
        const CountedMemory memory;
        EXPECT_TRUE(Raises<VUKSimExcShortBuffer>([&] { stream.Read(text); }, "LongRecord", 1));
        EXPECT_TRUE(text == "before");
        EXPECT_GE(stream.total, delivered / 4);
        EXPECT_LE(memory.Peak(), 4 * delivered);
    }
}

TEST(BStreamRead, PadsALengthNear4GiBWithoutWrapping)
{
    const HugeBlocks huge;
    LongRecord stream(0xFFFFFFFD, 4294967296ULL);
    VUKString text;
    stream.Read(text);
    EXPECT_EQ(stream.total, 4294967296ULL);
    EXPECT_TRUE(text == "text");
}
