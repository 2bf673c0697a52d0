#include "FrameRecord.h"
#include "StoredFiles.h"

#include <gtest/gtest.h>

namespace heat {
namespace {

const std::vector<unsigned char> kRecord{
    0x48, 0x45, 0x41, 0x54, 0x46, 0x52, 0x41, 0x4D, // "HEATFRAM"
    0x50, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, // 80 bytes in all
    0x03, 0x00, 0x00, 0x00,                         // step 3
    0x02, 0x00, 0x00, 0x00,                         // two values
    0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x1E, 0x40, // after 7.5 s
    0x05, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, // mesh: byte 5
    0x01, 0x00, 0x00, 0x00,                         // of the directory's second pool
    0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, // frame before:
    0xFF, 0xFF, 0xFF, 0xFF,                         // none
    0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0xF0, 0x3F, // 1.0
    0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0xC0, // -2.0
    0xAB, 0xE9, 0xE5, 0xE0, 0xDD, 0xE2, 0x8D, 0xDA, // checksum
};

std::string Bytes(const std::vector<unsigned char>& bytes)
{
    return {bytes.begin(), bytes.end()};
}

class FrameRecord : public testing::Test
{
protected:
    FrameRecord() : mFiles(mFolder, VUKSimRpm_Document::Write) {}

    // Stores `bytes` at the end of the results and reads them as a frame of `values` values.
    FrameReading Read(const std::string& bytes, std::size_t values)
    {
        const VUKSimRpm_Locator place = mFiles.results.End();
        {
            VUKSimRpm_BStreamAppendToPool stream(mFiles.results.Pool(), 4096);
            stream.Write(bytes.data(), static_cast<unsigned>(bytes.size()));
        }
        return ReadFrame(place, bytes.size(), values);
    }

    TemporaryFolder mFolder;
    StoredFiles mFiles;
};

TEST_F(FrameRecord, IsStoredAsDescribed)
{
    const Frame frame{3, 7.5, mFiles.mesh + 5, VUKSimRpm_Locator(), {1.0, -2.0}};

    const std::vector<char> record = EncodeFrame(frame, mFiles.results.Pool());

    EXPECT_EQ(std::string(record.begin(), record.end()), Bytes(kRecord));
    EXPECT_EQ(FrameBytes(2), 80u);
}

TEST_F(FrameRecord, IsReadAsItWasWritten)
{
    const FrameReading reading = Read(Bytes(kRecord), 2);

    ASSERT_EQ(reading.state, FrameState::Whole);
    EXPECT_EQ(reading.frame.step, 3u);
    EXPECT_EQ(reading.frame.time, 7.5);
    EXPECT_TRUE(reading.frame.mesh == mFiles.mesh + 5);
    EXPECT_TRUE(reading.frame.previous.Null());
    EXPECT_EQ(reading.frame.values, (std::vector<double>{1.0, -2.0}));
}

TEST_F(FrameRecord, IsCutWhereverItsEndIsMissing)
{
    for (std::size_t length = 1; length < kRecord.size(); ++length) {
        EXPECT_EQ(Read(Bytes(kRecord).substr(0, length), 2).state, FrameState::Cut)
            << "after " << length << " bytes";
    }
}

TEST_F(FrameRecord, IsCutAlsoWhereThePoolEndsButTheFileGoesOn)
{
    const VUKSimRpm_Locator place = mFiles.results.End();
    EXPECT_EQ(Read(Bytes(kRecord), 2).state, FrameState::Whole);
    EXPECT_EQ(ReadFrame(place, 79, 2).state, FrameState::Cut);
}

TEST_F(FrameRecord, IsDamagedWhicheverByteIsAnother)
{
    for (std::size_t at = 0; at < kRecord.size(); ++at) {
        std::string bytes = Bytes(kRecord);
        bytes[at] = static_cast<char>(bytes[at] ^ 0x40);
        EXPECT_EQ(Read(bytes, 2).state, FrameState::Damaged) << "byte " << at;
    }
}

TEST_F(FrameRecord, IsDamagedWhenItBelongsToAnotherMesh)
{
    EXPECT_EQ(Read(Bytes(kRecord), 1).state, FrameState::Damaged);
}

} // namespace
} // namespace heat
