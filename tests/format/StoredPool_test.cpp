// The stored form of pools, in both directions: what the library writes is held against bytes
// written by hand, and what it reads comes from such bytes.
#include "OnePool.h"
#include "TemporaryFolder.h"
#include "VUKSimRpm_Document.h"
#include "VUKSimRpm_File.h"
#include "VUKSimRpm_Pool.h"
#include "VUKSimRpm_UUID.h"

#include <gtest/gtest.h>

#include <string>

namespace {

// 80 bytes: the only pool of a file just created.
const std::string kFresh("\x89\x53\x49\x4D\x0D\x0A\x1A\x0A"  // signature
                         "\x06"                              // format version
                         "\x00\x00\x00\x00\x00\x00\x00"      // reserved
                         "FEM4"                              // user signature
                         "0000000000000000"                  // length: up to the end
                         "\x02\x00\x00\x00"                  // reserved1
                         "\x00\x00\x00\x00"                  // reserved2
                         "\x01\x00\x00\x00"                  // directory count
                         "00112233445566778899aabbccddeeff", // entry 0: the pool itself
                         80);

// 207 bytes: a pool with five bytes of data, and behind it one of ten bytes that names both.
const std::string kTwoPools("\x89\x53\x49\x4D\x0D\x0A\x1A\x0A" // 0: signature
                            "\x06"                             // format version
                            "\x00\x00\x00\x00\x00\x00\x00"     // reserved
                            "FEM4"                             // user signature
                            "0000000000000085"                 // length: 48 + 32 + 5
                            "\x02\x00\x00\x00"                 // reserved1
                            "\x00\x00\x00\x00"                 // reserved2
                            "\x01\x00\x00\x00"                 // directory count
                            "00112233445566778899aabbccddeeff" // entry 0: the pool itself
                            "hello"                            // data
                            "\x89\x53\x49\x4D\x0D\x0A\x1A\x0A" // 85: signature
                            "\x06"                             // format version
                            "\x00\x00\x00\x00\x00\x00\x00"     // reserved
                            "FEM4"                             // user signature
                            "0000000000000000"                 // length: up to the end
                            "\x02\x00\x00\x00"                 // reserved1
                            "\x00\x00\x00\x00"                 // reserved2
                            "\x02\x00\x00\x00"                 // directory count
                            "f0e1d2c3b4a5968778695a4b3c2d1e0f" // entry 0: the pool itself
                            "00112233445566778899aabbccddeeff" // entry 1: the pool before
                            "later data",                      // data
                            207);

constexpr char kFirst[] = "00112233445566778899aabbccddeeff";
constexpr char kSecond[] = "f0e1d2c3b4a5968778695a4b3c2d1e0f";

class StoredPool : public testing::Test
{
protected:
    VUKSimRpm_File Open(VUKSimRpm_Document::AccessMode mode)
    {
        return mDocument.AddFile(mFolder.File("a.sim"), mode);
    }

    TemporaryFolder mFolder;
    VUKSimRpm_Document mDocument{"FEM4"};
};
} // namespace

TEST_F(StoredPool, IsWrittenWhenAFileIsCreated)
{
    VUKSimRpm_UUID::TestForceUUID(kFirst);
    Open(VUKSimRpm_Document::Write);
    EXPECT_EQ(mFolder.Read("a.sim"), kFresh);
}

TEST_F(StoredPool, IsReadAsItIsWhenAFileIsCreated)
{
    mFolder.Write("a.sim", kFresh);
    const VUKSimRpm_File file = Open(VUKSimRpm_Document::Read);
    ASSERT_EQ(file.PoolCount(), 1U);
    EXPECT_EQ(file.Pool().Length(), 0U);
    EXPECT_EQ(file.Pool().HeaderSizeBytes(), 48U);
    EXPECT_EQ(file.Pool().DirectorySizeBytes(), 32U);
    EXPECT_STREQ(file.Pool().GetGUID().UTF8(), kFirst);
}

TEST_F(StoredPool, IsWrittenWithItsLengthWhenAnotherIsAddedBehind)
{
    VUKSimRpm_UUID::TestForceUUID(kFirst);
    VUKSimRpm_File file = Open(VUKSimRpm_Document::Write);
    WriteTo(file.Allocate(5), "hello");
    file.NewPool(false, kSecond);
    WriteTo(file.Allocate(10), "later data");
    mDocument.Close();
    EXPECT_EQ(mFolder.Read("a.sim"), kTwoPools);
}

TEST_F(StoredPool, IsReadUpToItsLengthOrTheEndOfTheFile)
{
    mFolder.Write("a.sim", kTwoPools);
    const VUKSimRpm_File file = Open(VUKSimRpm_Document::Read);
    ASSERT_EQ(file.PoolCount(), 2U);
    EXPECT_STREQ(file.Pool(0).GetGUID().UTF8(), kFirst);
    EXPECT_EQ(file.Pool(0).DirectorySizeBytes(), 32U);
    EXPECT_EQ(file.Pool(0).Length(), 5U);
    EXPECT_EQ(ReadFrom(file.Pool(0).Start(), 5), "hello");
    EXPECT_STREQ(file.Pool(1).GetGUID().UTF8(), kSecond);
    EXPECT_EQ(file.Pool(1).DirectorySizeBytes(), 64U);
    EXPECT_EQ(file.Pool(1).Length(), 10U);
    EXPECT_EQ(ReadFrom(file.Pool(1).Start(), 10), "later data");
}

TEST_F(StoredPool, IsWrittenBackAsItWasRead)
{
    mFolder.Write("a.sim", kTwoPools);
    Open(VUKSimRpm_Document::Update);
    mDocument.Close();
    EXPECT_EQ(mFolder.Read("a.sim"), kTwoPools);
}

TEST_F(StoredPool, IsCopiedByteForByteIntoAnotherFile)
{
    mFolder.Write("a.sim", kTwoPools);
    const VUKSimRpm_File source = Open(VUKSimRpm_Document::Read);
    VUKSimRpm_Document document("FEM4");
    VUKSimRpm_File target = document.AddFile(mFolder.File("b.sim"), VUKSimRpm_Document::Write);
    target.AppendPool(source.Pool(1));
    EXPECT_EQ(mFolder.Read("b.sim"), kTwoPools.substr(85));
    target.AppendPool(source.Pool(0));
    std::string expected = kTwoPools.substr(85) + kTwoPools.substr(0, 85);
    expected.replace(20, 16, "0000000000000122");       // 48 + 64 + 10
    expected.replace(122 + 20, 16, "0000000000000000"); // the current one now
    EXPECT_EQ(mFolder.Read("b.sim"), expected);
}
