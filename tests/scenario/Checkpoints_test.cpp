// What a job finds of its work when it ended without closing its files.
#include "Records.h"

#include "Bytes.h"
#include "OnePool.h"
#include "TemporaryFolder.h"
#include "VUKSimRpm_BStreamWriteLocator.h"
#include "VUKSimRpm_Document.h"
#include "VUKSimRpm_File.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>
#include <filesystem>

#include <sys/wait.h>
#include <unistd.h>

namespace {

using Document = VUKSimRpm_Document;
using testing::ElementsAre;

// A job that keeps its mesh in one pool of job.sim and appends frames to the next. That pool begins
// with a link to the last frame that is sure to be whole; each frame links to the one before, the
// first one to the mesh.
class Job
{
public:
    Job(const TemporaryFolder& folder, Document::AccessMode mode)
        : mFile(mDocument.AddFile(folder.File("job.sim"), mode))
    {
        if (mode == Document::Write) {
            last = Append(mFile.Pool(), {"mesh", {}});
            mFile.NewPool(false, nullptr);
            WriteTo(mFile.Allocate(12), bytes::Zeros(12));
            Checkpoint();
        } else {
            VUKSimRpm_BStreamReadLocator stream(mFile.Start(), 12, 16);
            last.InternalizeImpl(stream);
        }
    }

    void AddFrame(const std::string& name) { last = Append(mFile.Pool(), {name, last}); }

    // The frames first, then the link, so that it never leads to bytes that are not there.
    void Checkpoint()
    {
        mDocument.Flush();
        {
            VUKSimRpm_BStreamWriteLocator stream(mFile.Start(), 12, 16);
            last.ExternalizeImpl(stream);
        }
        mDocument.Flush();
    }

    [[nodiscard]] VUKSimRpm_File& File() { return mFile; }

    VUKSimRpm_Locator last; // frame; the mesh while there is none

private:
    Document mDocument{"TEST"};
    VUKSimRpm_File mFile;
};

// Works for a while in a process of its own and is killed, with bytes in its hands.
void WorkAndBeKilled(const TemporaryFolder& folder)
{
    Job job(folder, Document::Update);
    job.AddFrame("frame 3");
    job.Checkpoint();
    job.AddFrame("frame 4, not sure");
    VUKSimRpm_BStreamAppendToPool stream(job.File().Pool(), 64);
    Store(stream, {"frame 5, in memory only", job.last});
    std::raise(SIGKILL);
}
} // namespace

TEST(Checkpoints, LeadAKilledJobBackToItsLastWholeFrame)
{
    const TemporaryFolder folder;
    {
        Job job(folder, Document::Write);
        job.AddFrame("frame 1");
        job.AddFrame("frame 2");
        job.Checkpoint();
    }
    const pid_t child = fork();
    ASSERT_NE(child, -1);
    if (child == 0) {
        try {
            WorkAndBeKilled(folder);
        } catch (...) {
        }
        _exit(1);
    }
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    ASSERT_TRUE(WIFSIGNALED(status));
    ASSERT_EQ(WTERMSIG(status), SIGKILL);

    Job job(folder, Document::Update);
    EXPECT_THAT(Chain(job.last), ElementsAre("frame 3", "frame 2", "frame 1", "mesh"));
    job.AddFrame("frame 4");
    job.Checkpoint();
    Job again(folder, Document::Read);
    EXPECT_THAT(Chain(again.last), ElementsAre("frame 4", "frame 3", "frame 2", "frame 1", "mesh"));
}

TEST(Checkpoints, AreWholeFilesThatCanBeCopiedWhileTheJobGoesOn)
{
    const TemporaryFolder folder;
    const TemporaryFolder backup;
    Job job(folder, Document::Write);
    for (int i = 1; i <= 3; ++i) {
        job.AddFrame("frame " + std::to_string(i));
        job.Checkpoint();
        std::filesystem::copy_file(folder.Path("job.sim"), backup.Path("job.sim"),
                                   std::filesystem::copy_options::overwrite_existing);
        Job copy(backup, Document::Read);
        EXPECT_EQ(Chain(copy.last).size(), static_cast<std::size_t>(i) + 1);
        EXPECT_EQ(Chain(copy.last).front(), "frame " + std::to_string(i));
    }
}

TEST(Checkpoints, AreNotNeededForBytesThatWereWritten)
{
    const TemporaryFolder folder;
    {
        Document document("TEST");
        VUKSimRpm_File file = document.AddFile(folder.File("a.sim"), Document::Write);
        Append(file.Pool(), {"written", {}});
    } // neither flushed nor closed
    Document document("TEST");
    const VUKSimRpm_File file = document.AddFile(folder.File("a.sim"), Document::Read);
    EXPECT_EQ(file.Pool().Length(), 24ULL);
    EXPECT_EQ(RecordAt(file.Start()).name, "written");
}

TEST(Checkpoints, DoNotKeepBytesThatWereAllocatedAndNeverWritten)
{
    const TemporaryFolder folder;
    {
        Document document("TEST");
        VUKSimRpm_File file = document.AddFile(folder.File("a.sim"), Document::Write);
        file.Allocate(5);
        document.Flush();
        EXPECT_EQ(file.Pool().Length(), 5ULL);
        EXPECT_EQ(folder.Size("a.sim"), 80U); // growth is logical
    }
    Document document("TEST");
    VUKSimRpm_File file = document.AddFile(folder.File("a.sim"), Document::Update);
    EXPECT_EQ(file.Pool().Length(), 0ULL);
    WriteTo(file.Allocate(5) + 4, "x"); // the last one alone
    document.Close();
    EXPECT_EQ(folder.Size("a.sim"), 85U);
    file = document.AddFile(folder.File("a.sim"), Document::Read);
    EXPECT_EQ(ReadFrom(file.Start(), 100), std::string("\0\0\0\0x", 5));
}

TEST(Checkpoints, AreMadeOfThePoolBeforeByEachNewPool)
{
    const TemporaryFolder folder;
    {
        Document document("TEST");
        VUKSimRpm_File file = document.AddFile(folder.File("a.sim"), Document::Write);
        for (const char* const name : {"first", "second", "third"}) {
            file.NewPool(false, nullptr);
            Append(file.Pool(), {name, file.Pool(0).Start()});
        }
    } // neither flushed nor closed
    Document document("TEST");
    const VUKSimRpm_File file = document.AddFile(folder.File("a.sim"), Document::Update);
    ASSERT_EQ(file.PoolCount(), 3U);
    EXPECT_EQ(file.Pool(0).Length(), 24ULL);
    EXPECT_EQ(file.Pool(1).Length(), 24ULL);
    EXPECT_EQ(file.Pool(2).Length(), 24ULL);
    EXPECT_EQ(RecordAt(file.Pool(2).Start()).name, "third");
    EXPECT_EQ(RecordAt(RecordAt(file.Pool(2).Start()).link).name, "first");
}

TEST(Checkpoints, ReachAllFilesOfTheDocument)
{
    const TemporaryFolder folder;
    Document document("TEST");
    VUKSimRpm_File a = document.AddFile(folder.File("a.sim"), Document::Write);
    VUKSimRpm_File b = document.AddFile(folder.File("b.sim"), Document::Write);
    a.NewPool(true, nullptr);
    b.NewPool(true, nullptr);
    Append(a.Pool(), {"in a", {}});
    Append(b.Pool(), {"in b", {}});
    document.Flush();
    Document other("TEST");
    EXPECT_EQ(RecordAt(other.AddFile(folder.File("a.sim"), Document::Read).Start()).name, "in a");
    EXPECT_EQ(RecordAt(other.AddFile(folder.File("b.sim"), Document::Read).Start()).name, "in b");
}
