#include "StoredFiles.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <stdexcept>

// Frames of two values take 80 bytes. The results' first pool knows one other pool, so that its
// data begins at byte 48 + 2 * 32 = 112 of the file.

namespace heat {
namespace {

constexpr FrameLayout kTwoInPool{2, 64};

HistoryEnd Found(const StoredFiles& files)
{
    return FindEndOfHistory(files.results, files.mesh, 2);
}

std::vector<double> Field(unsigned step)
{
    return {step + 0.25, step * -1000.0};
}

// Appends the steps up to `last`, with a checkpoint behind every third.
void Write(StoredFiles& files, const HistoryEnd& end, unsigned last, const FrameLayout& layout)
{
    FrameWriter writer(files.results, files.mesh, layout, end);
    for (unsigned step = end.frames; step <= last; ++step) {
        writer.Append(step * 0.5, Field(step));
        if (step % 3 == 2) {
            writer.Checkpoint();
        }
    }
    writer.Checkpoint();
}

void WriteFresh(const TemporaryFolder& folder, unsigned last, const FrameLayout& layout)
{
    StoredFiles files(folder, VUKSimRpm_Document::Write);
    Write(files, Found(files), last, layout);
    files.document.Close();
}

TEST(FrameWriter, LinksEachFrameToTheOneBefore)
{
    const TemporaryFolder folder;
    WriteFresh(folder, 7, kTwoInPool);
    const StoredFiles files(folder, VUKSimRpm_Document::Read);
    const HistoryEnd end = Found(files);

    ASSERT_EQ(end.frames, 8u);
    EXPECT_EQ(end.leftover, 0u);
    VUKSimRpm_Locator place = end.lastPlace;
    for (unsigned step = 8; step-- > 0;) {
        const FrameReading reading = ReadFrame(place, 80, 2);
        ASSERT_EQ(reading.state, FrameState::Whole);
        EXPECT_EQ(reading.frame.step, step);
        EXPECT_EQ(reading.frame.time, step * 0.5);
        EXPECT_EQ(reading.frame.values, Field(step));
        EXPECT_TRUE(reading.frame.mesh == files.mesh);
        place = reading.frame.previous;
    }
    EXPECT_TRUE(place.Null());
}

TEST(FrameWriter, LeavesAPoolOnlyBehindACheckpoint)
{
    const TemporaryFolder folder;
    WriteFresh(folder, 7, kTwoInPool);
    const StoredFiles files(folder, VUKSimRpm_Document::Read);

    // Two frames would be enough, but checkpoints come behind three.
    ASSERT_EQ(files.results.PoolCount(), 3u);
    EXPECT_EQ(files.results.Pool(0).Length(), 240u);
    EXPECT_EQ(files.results.Pool(1).Length(), 240u);
    EXPECT_EQ(files.results.Pool(2).Length(), 160u);
}

TEST(FrameWriter, CheckpointBringsAllFramesToTheFile)
{
    const TemporaryFolder folder;
    StoredFiles files(folder, VUKSimRpm_Document::Write);
    FrameWriter writer(files.results, files.mesh, {40, 65536}, Found(files));

    writer.Append(0.0, Field(0));
    writer.Append(0.5, Field(1));
    EXPECT_EQ(std::filesystem::file_size(folder.Path("results.sim")), 112u);
    writer.Checkpoint();
    EXPECT_EQ(std::filesystem::file_size(folder.Path("results.sim")), 272u);
    EXPECT_EQ(writer.Bytes(), 160u);
}

// Cuts a file of five frames at places all over and lets a new writer go on.
TEST(FrameWriter, GoesOnToTheSameBytesWhereverAFileWasCut)
{
    const TemporaryFolder folder;
    WriteFresh(folder, 4, {40, 64});
    const std::string whole = FileBytes(folder.Path("results.sim"));
    ASSERT_EQ(whole.size(), 512u);

    std::vector<std::size_t> lengths{192, 272, 352, 432, 511, 512}; // behind whole frames, too
    for (std::size_t length = 112; length < 512; length += 7) {
        lengths.push_back(length);
    }
    for (const std::size_t length : lengths) {
        WriteFileBytes(folder.Path("results.sim"), whole.substr(0, length));
        StoredFiles files(folder, VUKSimRpm_Document::Update);
        const HistoryEnd end = Found(files);
        EXPECT_EQ(end.frames, (length - 112) / 80);
        EXPECT_EQ(end.leftover, (length - 112) % 80);
        Write(files, end, 4, {40, 64});
        files.document.Close();
        ASSERT_EQ(FileBytes(folder.Path("results.sim")), whole) << "cut at " << length;
    }
}

TEST(FrameWriter, WritesOverWholeFramesBehindADamagedOne)
{
    const TemporaryFolder folder;
    WriteFresh(folder, 4, {40, 64});
    const std::string whole = FileBytes(folder.Path("results.sim"));
    std::string damaged = whole;
    damaged[112 + 2 * 80 + 60] = '?'; // in step 2
    WriteFileBytes(folder.Path("results.sim"), damaged);

    StoredFiles files(folder, VUKSimRpm_Document::Update);
    const HistoryEnd end = Found(files);
    EXPECT_EQ(end.frames, 2u);
    EXPECT_EQ(end.leftover, 240u);
    EXPECT_EQ(end.leftoverState, FrameState::Damaged);
    Write(files, end, 4, {2, 64}); // a new pool would be due, but this one is not whole yet
    files.document.Close();

    EXPECT_EQ(FileBytes(folder.Path("results.sim")), whole);
}

TEST(FrameWriter, StartsThePoolsOfAFileThatHasNone)
{
    const TemporaryFolder folder;
    WriteFresh(folder, 0, kTwoInPool);
    WriteFileBytes(folder.Path("results.sim"), "");

    StoredFiles files(folder, VUKSimRpm_Document::Update);
    EXPECT_EQ(Found(files).frames, 0u);
    Write(files, Found(files), 1, kTwoInPool);
    EXPECT_EQ(files.results.PoolCount(), 1u);
    EXPECT_EQ(Found(files).frames, 2u);
}

TEST(HistoryEnd, RefusesDamageInAPoolThatWasLeftWhole)
{
    const TemporaryFolder folder;
    WriteFresh(folder, 7, kTwoInPool);
    std::string damaged = FileBytes(folder.Path("results.sim"));
    damaged[112 + 80 + 60] = '?'; // in step 1
    WriteFileBytes(folder.Path("results.sim"), damaged);

    const StoredFiles files(folder, VUKSimRpm_Document::Read);
    try {
        static_cast<void>(Found(files));
        FAIL() << "nothing was thrown";
    } catch (const std::runtime_error& error) {
        EXPECT_EQ(error.what(), folder.Path("results.sim") +
                                    ": pool 0 is damaged 80 bytes behind its "
                                    "beginning, where step 1 should be");
    }
}

TEST(HistoryEnd, EndsBeforeAFrameThatDoesNotFollowTheOneBefore)
{
    const TemporaryFolder folder;
    WriteFresh(folder, 3, {40, 64});
    std::string repeated = FileBytes(folder.Path("results.sim"));
    repeated.replace(112 + 3 * 80, 80, repeated.substr(112 + 2 * 80, 80)); // step 2 once more
    WriteFileBytes(folder.Path("results.sim"), repeated);

    const StoredFiles files(folder, VUKSimRpm_Document::Read);
    const HistoryEnd end = Found(files);
    EXPECT_EQ(end.frames, 3u);
    EXPECT_EQ(end.leftover, 80u);
    EXPECT_EQ(end.leftoverState, FrameState::Damaged);
}

} // namespace
} // namespace heat
