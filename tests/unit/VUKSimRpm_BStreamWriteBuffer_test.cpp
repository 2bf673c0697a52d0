#include "VUKSimRpm_BStreamWriteBuffer.h"

#include "Failures.h"
#include "OnePool.h"
#include "VUKSimRpm_PoolDirectoryImpl.h"

#include <gtest/gtest.h>

#include <cstring>
#include <type_traits>

namespace {

constexpr char kSource[] = "VUKSim/VUKSimRpm.m/src/VUKSimRpm_BStreamWriteBuffer";

constexpr unsigned long kHuge = 18446744073709551615UL; // 2^64 - 1

using Stream = VUKSimRpm_BStreamWriteBuffer;
} // namespace

TEST(BStreamWriteBuffer, HasAnIdentity)
{
    EXPECT_FALSE(std::is_copy_constructible_v<Stream>);
    EXPECT_FALSE(std::is_copy_assignable_v<Stream>);
    EXPECT_FALSE(std::is_move_constructible_v<Stream>);
}

TEST(BStreamWriteBuffer, HandsOutTheCallersRoomInPlaceAndInOrder)
{
    char room[] = "??????????";
    Stream stream(room, 10);
    char* const first = stream.PrepWrite(4);
    EXPECT_EQ(first, room);
    std::memcpy(first, "abcd", 4);
    stream.Write("efg", 3);
    EXPECT_EQ(stream.PrepWrite(2), room + 7);
    EXPECT_STREQ(room, "abcdefg???");
}

TEST(BStreamWriteBuffer, TakesExactlyItsLengthAndNotOneByteMore)
{
    char room[] = "??????????";
    Stream stream(room, 9);
    stream.Write("abcdefghi", 9);
    EXPECT_TRUE(RaisesShortBuffer([&] { stream.Write("x", 1); }, 1, 0, kSource, 40));
    EXPECT_TRUE(RaisesShortBuffer([&] { (void)stream.PrepWrite(1); }, 1, 0, kSource, 40));
    EXPECT_STREQ(room, "abcdefghi?");
}

TEST(BStreamWriteBuffer, TakesAShorterRunAfterOneThatWasTooLong)
{
    char room[] = "??????";
    Stream stream(room, 6);
    EXPECT_TRUE(RaisesShortBuffer([&] { stream.Write("abcdefgh", 8); }, 8, 6, kSource, 40));
    EXPECT_STREQ(room, "??????");
    stream.Write("abcdef", 6);
    EXPECT_STREQ(room, "abcdef");
}

TEST(BStreamWriteBuffer, RefusesARunOfNothing)
{
    char room[] = "??????";
    Stream stream(room, 6);
    EXPECT_TRUE(
        RaisesAssertion([&] { (void)stream.PrepWrite(0); }, "requestedLength > 0", kSource, 36));
    EXPECT_TRUE(RaisesAssertion([&] { stream.Write("", 0); }, "requestedLength > 0", kSource, 36));
    stream.Write("abcdef", 6);
    EXPECT_TRUE( // at its end too
        RaisesAssertion([&] { stream.Write("", 0); }, "requestedLength > 0", kSource, 36));
}

TEST(BStreamWriteBuffer, IsNotFooledByARequestWhoseEndWraps)
{
    char room[] = "??????";
    Stream stream(room, 6);
    stream.Write("ab", 2);
    EXPECT_TRUE( // 2 + 2^64 - 1 is 1 in 64 bits; the exception carries the low 32 bits
        RaisesShortBuffer([&] { (void)stream.PrepWrite(kHuge); }, 4294967295U, 4, kSource, 40));
    EXPECT_TRUE( // in 32 bits this would be 1 byte
        RaisesShortBuffer([&] { (void)stream.PrepWrite(4294967297UL); }, 1, 4, kSource, 40));
    EXPECT_EQ(stream.PrepWrite(4), room + 2);
}

TEST(BStreamWriteBuffer, OverNoRoomTakesNothing)
{
    Stream stream(nullptr, 0);
    EXPECT_TRUE(RaisesShortBuffer([&] { (void)stream.PrepWrite(1); }, 1, 0, kSource, 40));
}

TEST(BStreamWriteBuffer, RefusesAnEmptyTextOnceItsLengthIsWritten)
{
    char room[] = "?????";
    Stream stream(room, 5);
    EXPECT_TRUE(
        RaisesAssertion([&] { stream.Write(VUKString()); }, "requestedLength > 0", kSource, 36));
    EXPECT_EQ(std::string(room, 5), std::string("\0\0\0\0?", 5));
    EXPECT_EQ(stream.PrepWrite(1), room + 4);
}

TEST(BStreamWriteBuffer, LeavesTheRoomAsItIsWhenItDies)
{
    char room[] = "????????";
    {
        Stream stream(room, 8);
        stream.Write("abc", 3);
    }
    EXPECT_STREQ(room, "abc?????");
}

TEST(BStreamWriteBuffer, UnboundHasNeitherDirectoryNorMemoryPool)
{
    char room[8];
    const Stream stream(room, 8);
    EXPECT_EQ(stream.SourceDir(), nullptr);
    EXPECT_EQ(stream.IMPool(), nullptr);
}

TEST(BStreamWriteBuffer, BoundHasThePoolsDirectoryAndNoMemoryPool)
{
    const OnePool store("x");
    char room[8];
    const Stream stream(room, 8, store.Pool());
    EXPECT_EQ(stream.SourceDir(), store.Start().Directory().get());
    EXPECT_EQ(stream.IMPool(), nullptr);
}

TEST(BStreamWriteBuffer, BoundKeepsTheDirectoryAliveAndNotThePool)
{
    OnePool store("x");
    const VUKSimRpm_Pool pool = store.Pool();
    const VUKString uuid = pool.GetGUID();
    const VUKBasWeakPtr<VUKSimRpm_PoolDirectoryImpl> directory(store.Start().Directory());
    char room[8];
    {
        const Stream stream(room, 8, pool);
        store.CloseFile();
        EXPECT_TRUE(pool.Null());
        EXPECT_EQ(stream.SourceDir()->Length(), 1);
        EXPECT_TRUE(stream.SourceDir()->GetGUID() == uuid);
        EXPECT_EQ(directory.UseCount(), 1);
    }
    EXPECT_TRUE(directory.expired());
}

TEST(BStreamWriteBuffer, CannotBeBoundToAPoolThatIsGone)
{
    OnePool store("x");
    const VUKSimRpm_Pool pool = store.Pool();
    store.CloseFile();
    char room[8];
    EXPECT_TRUE(Raises<VUKSimExcCantDerefLocator>([&] { Stream(room, 8, pool); }, kSource, 22));
}
