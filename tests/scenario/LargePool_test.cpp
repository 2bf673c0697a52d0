// Pools larger than 4 GiB, in sparse files: positions and offsets beyond 2^32 in headers, locators
// and streams.
#include "OnePool.h"
#include "VUKSimRpm_BStreamAppendToPool.h"
#include "VUKSimRpm_BStreamReadLocator.h"
#include "VUKSimRpm_BStreamWriteLocator.h"
#include "VUKSimRpm_DirectLocator.h"
#include "VUKSimRpm_MemoryPool.h"

#include <gtest/gtest.h>

#include <fstream>
#include <string>

#include <sys/stat.h>

namespace {

// A file with a pool of 6 GiB, header included 6442451024 bytes, and one of 12 bytes behind it,
// which holds a locator to the last four bytes of the first.
class LargePool : public testing::Test
{
protected:
    LargePool()
    {
        VUKSimRpm_Document document("TEST");
        VUKSimRpm_File file = document.AddFile(mFolder.File("a.sim"), VUKSimRpm_Document::Write);
        const VUKSimRpm_Locator start = file.Allocate(6442450944);
        WriteTo(start, "first");
        WriteTo(start + 4294967294, "over"); // two bytes before 2^32, two behind
        WriteTo(start + 6442450940, "last");
        file.NewPool(false, nullptr);
        VUKSimRpm_BStreamAppendToPool stream(file.Pool(), 16);
        (start + 6442450940).ExternalizeImpl(stream);
        stream.Flush();
        document.Close();
    }

    VUKSimRpm_File Open(VUKSimRpm_Document::AccessMode mode)
    {
        return mDocument.AddFile(mFolder.File("a.sim"), mode);
    }

    // `length` bytes of the file itself.
    [[nodiscard]] std::string Stored(std::streamoff position, std::size_t length) const
    {
        std::ifstream in(mFolder.Path("a.sim"), std::ios::binary);
        std::string bytes(length, '?');
        in.seekg(position);
        in.read(bytes.data(), static_cast<std::streamsize>(length));
        return bytes;
    }

    TemporaryFolder mFolder;
    VUKSimRpm_Document mDocument{"TEST"};
};
} // namespace

TEST_F(LargePool, TakesNoMoreOfTheDiskThanWasWritten)
{
    EXPECT_EQ(mFolder.Size("a.sim"), 6442451148U); // and 48 + 64 + 12
    struct stat status = {};
    ASSERT_EQ(stat(mFolder.Path("a.sim").c_str(), &status), 0);
    EXPECT_LT(status.st_blocks, 1000); // of 512 bytes
}

TEST_F(LargePool, StandsWithItsLengthInTheHeader)
{
    EXPECT_EQ(Stored(20, 16), "0000006442451024");
    EXPECT_EQ(Stored(6442451024, 8), "\x89SIM\r\n\x1A\n");
    EXPECT_EQ(Stored(6442451024 + 20, 16), "0000000000000000");
    EXPECT_EQ(Stored(80 + 4294967294, 4), "over");
}

TEST_F(LargePool, HasARecordOfAnOffsetBeyond32Bits)
{
    EXPECT_EQ(Stored(6442451136, 12), std::string("\xFC\xFF\xFF\x7F\x01\x00\x00\x00" // 0x17FFFFFFC
                                                  "\x01\x00\x00\x00",                // the first
                                                  12));
}

TEST_F(LargePool, IsFoundAgainWithAllItHolds)
{
    const VUKSimRpm_File file = Open(VUKSimRpm_Document::Read);
    ASSERT_EQ(file.PoolCount(), 2U);
    EXPECT_EQ(file.Pool(0).Length(), 6442450944U);
    EXPECT_EQ(file.Pool(1).Length(), 12U);
    const VUKSimRpm_Locator start = file.Pool(0).Start();
    EXPECT_EQ(file.Pool(0).End() - start, 6442450944U);
    EXPECT_EQ(ReadFrom(start, 5), "first");
    EXPECT_EQ(ReadFrom(start + 4294967294, 4), "over");
    EXPECT_EQ(ReadFrom(start + 6442450940, 4), "last");
    EXPECT_EQ(ReadFrom(start + 5000000000, 4), std::string(4, '\0'));
}

TEST_F(LargePool, IsReachedByAStoredLocator)
{
    const VUKSimRpm_File file = Open(VUKSimRpm_Document::Read);
    VUKSimRpm_BStreamReadLocator stream(file.Start(), 12, 16);
    VUKSimRpm_Locator locator;
    locator.InternalizeImpl(stream);
    EXPECT_EQ(locator, file.Pool(0).Start() + 6442450940);
    EXPECT_EQ(ReadFrom(locator, 4), "last");
    char bytes[4] = {};
    EXPECT_EQ(locator.DirectLocator().Read(4, bytes), 4U);
    EXPECT_EQ(std::string(bytes, 4), "last");
}

TEST_F(LargePool, IsWrittenThroughStreamsAndMemoryPoolsBeyond32Bits)
{
    const VUKSimRpm_File file = Open(VUKSimRpm_Document::Update);
    const VUKSimRpm_Locator place = file.Pool(0).Start() + 5000000000;
    {
        VUKSimRpm_BStreamWriteLocator stream(place, 0, 16);
        stream.Write("a string that is longer than a chunk");
    }
    VUKSimRpm_MemoryPool image(place, 100, {}, nullptr);
    VUKSimRpm_BStreamReadLocator stream(VUKSimRpm_Locator(place, image), 100, 16);
    VUKString text;
    stream.Read(text);
    EXPECT_STREQ(text.UTF8(), "a string that is longer than a chunk");
    EXPECT_EQ(Stored(80 + 5000000004, 8), "a string");
}

TEST_F(LargePool, GrowsAgainWhenItIsTheLast)
{
    VUKSimRpm_File file = Open(VUKSimRpm_Document::Update);
    const VUKSimRpm_Locator added = file.Allocate(5000000000);
    WriteTo(added + 4999999996, "tail");
    mDocument.Close();
    EXPECT_EQ(mFolder.Size("a.sim"), 11442451148U);

    const VUKSimRpm_File again = Open(VUKSimRpm_Document::Read);
    EXPECT_EQ(again.Pool().Length(), 5000000012U);
    EXPECT_EQ(ReadFrom(again.End() - 4, 4), "tail");
}
