#include "VUKSimRpm_BStreamReadBuffer.h"

#include "Failures.h"
#include "OnePool.h"
#include "VUKSimRpm_PoolDirectoryImpl.h"

#include <gtest/gtest.h>

#include <type_traits>

namespace {

constexpr char kSource[] = "VUKSim/VUKSimRpm.m/src/VUKSimRpm_BStreamReadBuffer";

constexpr unsigned long kHuge = 18446744073709551615UL; // 2^64 - 1

using Stream = VUKSimRpm_BStreamReadBuffer;

// What the next `length` bytes are.
std::string Next(Stream& stream, unsigned int length)
{
    std::string bytes(length, '.');
    stream.Read(bytes.data(), length);
    return bytes;
}
} // namespace

TEST(BStreamReadBuffer, HasAnIdentity)
{
    EXPECT_FALSE(std::is_copy_constructible_v<Stream>);
    EXPECT_FALSE(std::is_copy_assignable_v<Stream>);
    EXPECT_FALSE(std::is_move_constructible_v<Stream>);
}

TEST(BStreamReadBuffer, HandsOutTheCallersBytesInPlaceAndInOrder)
{
    const char bytes[] = "0123456789";
    Stream stream(bytes, 10);
    EXPECT_EQ(stream.PrepRead(4), bytes);
    EXPECT_EQ(stream.PrepRead(1), bytes + 4);
    EXPECT_EQ(Next(stream, 3), "567");
    EXPECT_EQ(stream.PrepRead(2), bytes + 8);
}

TEST(BStreamReadBuffer, ReadsExactlyItsLengthAndNotOneByteMore)
{
    Stream stream("0123456789", 10);
    EXPECT_EQ(Next(stream, 10), "0123456789");
    char byte = 'x';
    EXPECT_TRUE(RaisesShortBuffer([&] { stream.Read(&byte, 1); }, 1, 0, kSource, 40));
    EXPECT_TRUE(RaisesShortBuffer([&] { (void)stream.PrepRead(1); }, 1, 0, kSource, 40));
    EXPECT_EQ(byte, 'x');
}

TEST(BStreamReadBuffer, ServesAShorterRequestAfterOneThatWasTooLong)
{
    Stream stream("012345", 6);
    EXPECT_TRUE(RaisesShortBuffer([&] { (void)Next(stream, 8); }, 8, 6, kSource, 40));
    EXPECT_TRUE(RaisesShortBuffer([&] { (void)stream.PrepRead(7); }, 7, 6, kSource, 40));
    EXPECT_EQ(Next(stream, 6), "012345");
}

TEST(BStreamReadBuffer, RefusesARequestForNothing)
{
    Stream stream("012345", 6);
    char byte = 'x';
    EXPECT_TRUE(
        RaisesAssertion([&] { (void)stream.PrepRead(0); }, "requestedLength > 0", kSource, 36));
    EXPECT_TRUE(
        RaisesAssertion([&] { stream.Read(&byte, 0); }, "requestedLength > 0", kSource, 36));
    EXPECT_EQ(Next(stream, 6), "012345");
    EXPECT_TRUE( // at its end too
        RaisesAssertion([&] { stream.Read(&byte, 0); }, "requestedLength > 0", kSource, 36));
}

TEST(BStreamReadBuffer, IsNotFooledByARequestWhoseEndWraps)
{
    Stream stream("012345", 6);
    (void)Next(stream, 2);
    EXPECT_TRUE( // 2 + 2^64 - 1 is 1 in 64 bits; the exception carries the low 32 bits
        RaisesShortBuffer([&] { (void)stream.PrepRead(kHuge); }, 4294967295U, 4, kSource, 40));
    EXPECT_TRUE( // in 32 bits this would be 1 byte
        RaisesShortBuffer([&] { (void)stream.PrepRead(4294967297UL); }, 1, 4, kSource, 40));
    EXPECT_EQ(Next(stream, 4), "2345");
}

TEST(BStreamReadBuffer, OverNoBytesServesNothing)
{
    Stream stream(nullptr, 0);
    EXPECT_TRUE(RaisesShortBuffer([&] { (void)stream.PrepRead(1); }, 1, 0, kSource, 40));
}

TEST(BStreamReadBuffer, RefusesAnEmptyTextOnceItsLengthIsRead)
{
    const std::string record("\0\0\0\0!", 5);
    Stream stream(record.data(), record.size());
    VUKString text = "before";
    EXPECT_TRUE(RaisesAssertion([&] { stream.Read(text); }, "requestedLength > 0", kSource, 36));
    EXPECT_TRUE(text == "before");
    EXPECT_EQ(Next(stream, 1), "!");
}

TEST(BStreamReadBuffer, UnboundHasNeitherDirectoryNorMemoryPool)
{
    const Stream stream("012345", 6);
    EXPECT_EQ(stream.SourceDir(), nullptr);
    EXPECT_EQ(stream.IMPool(), nullptr);
}

TEST(BStreamReadBuffer, BoundHasThePoolsDirectoryAndNoMemoryPool)
{
    const OnePool store("x");
    const Stream stream("012345", 6, store.Pool());
    EXPECT_EQ(stream.SourceDir(), store.Start().Directory().get());
    EXPECT_EQ(stream.IMPool(), nullptr);
}

TEST(BStreamReadBuffer, BoundKeepsTheDirectoryAliveAndNotThePool)
{
    OnePool store("x");
    const VUKSimRpm_Pool pool = store.Pool();
    const VUKString uuid = pool.GetGUID();
    const VUKBasWeakPtr<VUKSimRpm_PoolDirectoryImpl> directory(store.Start().Directory());
    {
        const Stream stream("012345", 6, pool);
        store.CloseFile();
        EXPECT_TRUE(pool.Null());
        EXPECT_EQ(stream.SourceDir()->Length(), 1);
        EXPECT_TRUE(stream.SourceDir()->GetGUID() == uuid);
        EXPECT_EQ(directory.UseCount(), 1);
    }
    EXPECT_TRUE(directory.expired());
}

TEST(BStreamReadBuffer, CannotBeBoundToAPoolThatIsGone)
{
    OnePool store("x");
    const VUKSimRpm_Pool pool = store.Pool();
    store.CloseFile();
    EXPECT_TRUE(Raises<VUKSimExcCantDerefLocator>([&] { Stream("012345", 6, pool); }, kSource, 22));
}
