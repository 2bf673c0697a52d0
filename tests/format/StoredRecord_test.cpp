// The stored form of the records that pools hold, in both directions.
#include "OnePool.h"
#include "VUKSimRpm_BStreamAppendToPool.h"
#include "VUKSimRpm_BStreamReadBuffer.h"
#include "VUKSimRpm_BStreamReadLocator.h"
#include "VUKSimRpm_BStreamWriteBuffer.h"
#include "VUKSimRpm_BStreamWriteLocator.h"
#include "VUKSimRpm_Swapper.h"
#include "VUKSimRpm_UUID.h"

#include "Golden.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <string>

namespace {

// What `write` puts into a stream of `size` bytes, bound to `pool`.
template <class Write>
std::string Written(const VUKSimRpm_Pool& pool, unsigned long size, Write write)
{
    std::string stored(size, '?');
    VUKSimRpm_BStreamWriteBuffer stream(stored.data(), stored.size(), pool);
    write(static_cast<VUKSimRpm_BStreamWrite&>(stream));
    return stored;
}

template <class Scalar>
void WriteScalar(VUKSimRpm_BStreamWrite& stream, Scalar scalar)
{
    VUKSimRpm_Swapper::ExternalizeScalarUnsafe(stream.PrepWrite(sizeof scalar), &scalar,
                                               sizeof scalar);
}

template <class Scalar>
Scalar ReadScalar(VUKSimRpm_BStreamRead& stream)
{
    Scalar scalar{};
    VUKSimRpm_Swapper::InternalizeScalarUnsafe(stream.PrepRead(sizeof scalar), &scalar,
                                               sizeof scalar);
    return scalar;
}

// A string of six bytes.
const std::string kString("\x06\x00\x00\x00"         // length in bytes
                          "\xC3\xA4\xE2\x82\xAC\x21" // the text in UTF-8: a umlaut, euro, "!"
                          "\x00\x00",                // zeros up to a multiple of 4
                          12);

// A locator into the storing pool.
const std::string kOwnLocator("\x88\x77\x66\x55\x44\x33\x22\x11" // offset, low half first
                              "\x00\x00\x00\x00",                // index 0: the pool itself
                              12);

// A locator that names no pool, of offset 5.
const std::string kNullLocator("\x05\x00\x00\x00\x00\x00\x00\x00" // offset
                               "\xFF\xFF\xFF\xFF",                // index -1
                               12);

const std::string kScalars("\xFE\xFF"                          // 16 bits: -2
                           "\x78\x56\x34\x12"                  // 32 bits: 0x12345678
                           "\xF0\xDE\xBC\x9A\x78\x56\x34\x12"  // 64 bits: 0x123456789ABCDEF0
                           "\x00\x00\xC0\xBF"                  // float: -1.5
                           "\x00\x00\x00\x00\x00\x00\xD0\xBF", // double: -0.25
                           26);

class StoredRecord : public testing::Test
{
protected:
    OnePool mOne{"some bytes"};
};
} // namespace

TEST_F(StoredRecord, OfAString)
{
    EXPECT_EQ(Written(mOne.Pool(), 12, [](auto& stream) { stream.Write("\xC3\xA4\xE2\x82\xAC!"); }),
              kString);
    VUKSimRpm_BStreamReadBuffer stream(kString.data(), kString.size());
    VUKString text;
    stream.Read(text);
    EXPECT_STREQ(text.UTF8(), "\xC3\xA4\xE2\x82\xAC!");
}

TEST_F(StoredRecord, OfALocatorIntoTheStoringPool)
{
    const VUKSimRpm_Locator place = mOne.Start() + 0x1122334455667788;
    EXPECT_EQ(Written(mOne.Pool(), 12, [&](auto& stream) { place.ExternalizeImpl(stream); }),
              kOwnLocator);
    VUKSimRpm_BStreamReadBuffer stream(kOwnLocator.data(), kOwnLocator.size(), mOne.Pool());
    VUKSimRpm_Locator read;
    read.InternalizeImpl(stream);
    EXPECT_EQ(read, place);
}

TEST_F(StoredRecord, OfALocatorThatNamesNoPool)
{
    const VUKSimRpm_Locator none = VUKSimRpm_Locator() + 5;
    EXPECT_EQ(Written(mOne.Pool(), 12, [&](auto& stream) { none.ExternalizeImpl(stream); }),
              kNullLocator);
    VUKSimRpm_BStreamReadBuffer stream(kNullLocator.data(), kNullLocator.size(), mOne.Pool());
    VUKSimRpm_Locator read;
    read.InternalizeImpl(stream);
    EXPECT_TRUE(read.Null());
    EXPECT_EQ(read, VUKSimRpm_Locator()); // its offset is not taken
}

TEST_F(StoredRecord, OfScalars)
{
    EXPECT_EQ(Written(mOne.Pool(), 26,
                      [](auto& stream) {
                          WriteScalar(stream, std::int16_t{-2});
                          WriteScalar(stream, std::uint32_t{0x12345678});
                          WriteScalar(stream, std::uint64_t{0x123456789ABCDEF0});
                          WriteScalar(stream, -1.5F);
                          WriteScalar(stream, -0.25);
                      }),
              kScalars);
    VUKSimRpm_BStreamReadBuffer stream(kScalars.data(), kScalars.size());
    EXPECT_EQ(ReadScalar<std::int16_t>(stream), -2);
    EXPECT_EQ(ReadScalar<std::uint32_t>(stream), 0x12345678U);
    EXPECT_EQ(ReadScalar<std::uint64_t>(stream), 0x123456789ABCDEF0U);
    EXPECT_EQ(ReadScalar<float>(stream), -1.5F);
    EXPECT_EQ(ReadScalar<double>(stream), -0.25);
}

TEST_F(StoredRecord, ReachesAPoolInTheSameBytesByEveryStream)
{
    {
        VUKSimRpm_BStreamAppendToPool stream(mOne.Pool(), 16);
        stream.Write("\xC3\xA4\xE2\x82\xAC!");
        (mOne.Start() + 0x1122334455667788).ExternalizeImpl(stream);
    }
    EXPECT_EQ(mOne.Stored(), "some bytes" + kString + kOwnLocator);
    {
        VUKSimRpm_BStreamWriteLocator stream(mOne.Start() + 10, 24, 16);
        (VUKSimRpm_Locator() + 5).ExternalizeImpl(stream);
        stream.Write("\xC3\xA4\xE2\x82\xAC!");
    }
    EXPECT_EQ(mOne.Stored(), "some bytes" + kNullLocator + kString);
}

// The golden file of the documentation's worked example, made by the library.
TEST(StoredFile, OfTheWorkedExample)
{
    const TemporaryFolder folder;
    VUKSimRpm_Document document("DEMO");
    VUKSimRpm_UUID::TestForceUUID("00112233445546778899aabbccddeeff");
    VUKSimRpm_File file = document.AddFile(folder.File("a.sim"), VUKSimRpm_Document::Write);
    {
        VUKSimRpm_BStreamAppendToPool stream(file.Pool(), 64);
        stream.Write("plate");
    }
    const VUKSimRpm_Locator plate = file.Start();
    file.NewPool(false, "f0e1d2c3b4a54697b8798a9bacbdcedf");
    {
        VUKSimRpm_BStreamAppendToPool stream(file.Pool(), 64);
        plate.ExternalizeImpl(stream);
        VUKSimRpm_Locator().ExternalizeImpl(stream);
    }
    document.Close();
    EXPECT_EQ(folder.Read("a.sim"), GoldenBytes("worked_example"));
}
