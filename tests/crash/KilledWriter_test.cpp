// Writers that are really killed, by SIGKILL and at random moments.
#include "KilledWriter.h"

#include "CrashOptions.h"
#include "TemporaryFolder.h"
#include "VUKBasException.h"
#include "VUKSimRpm_Document.h"
#include "VUKSimRpm_File.h"

#include <gtest/gtest.h>

#include <csignal>
#include <exception>
#include <filesystem>
#include <iostream>
#include <new>
#include <random>
#include <stdexcept>
#include <string>

#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

constexpr char kFile[] = "records.sim";

// The report of one file, shared with the writers.
class SharedReport
{
public:
    SharedReport()
        : mMemory(::mmap(nullptr, sizeof(WriterReport), PROT_READ | PROT_WRITE,
                         MAP_SHARED | MAP_ANONYMOUS, -1, 0))
    {
        if (mMemory == MAP_FAILED) {
            throw std::runtime_error("no shared memory");
        }
        Reset();
    }
    SharedReport(const SharedReport&) = delete;
    SharedReport& operator=(const SharedReport&) = delete;
    ~SharedReport() { ::munmap(mMemory, sizeof(WriterReport)); }

    void Reset() { mReport = new (mMemory) WriterReport{}; }
    WriterReport& operator*() const { return *mReport; }
    WriterReport* operator->() const { return mReport; }

private:
    void* mMemory; // owned
    WriterReport* mReport = nullptr;
};

class KilledWriter : public testing::Test
{
protected:
    // Runs a writer that flushes every so many records and kills it `microseconds` after its start,
    // or after its first flush, unless it has finished by then.
    void RunAndKill(std::uint32_t flushEach, bool afterAFlush, unsigned microseconds)
    {
        const std::uint32_t flushedBefore = mReport->flushed;
        const pid_t child = ::fork();
        ASSERT_NE(child, -1);
        if (child == 0) {
            try {
                WriteRecords(mFolder.File(kFile), flushEach, *mReport);
                ::_exit(0);
            } catch (const std::exception& raised) {
                std::cerr << "the writer: " << raised.what() << std::endl;
                ::_exit(1);
            }
        }
        constexpr int kPatience = 100000; // tenths of a millisecond
        for (int i = 0; afterAFlush && mReport->flushed == flushedBefore && i < kPatience; ++i) {
            ::usleep(100);
        }
        ::usleep(microseconds);
        ::kill(child, SIGKILL);
        int status = 0;
        ASSERT_EQ(::waitpid(child, &status, 0), child);
        const bool killed = WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL;
        ASSERT_TRUE(killed || (WIFEXITED(status) && WEXITSTATUS(status) == 0));
        mKills += killed ? 1 : 0;
    }

    // All that was told as written stands in the file at its place, flushed or not: the system
    // lives on. That holds too when the file cannot be opened.
    void CheckBytes()
    {
        ASSERT_LE(mReport->flushed, mReport->written);
        const std::string bytes = mFolder.Has(kFile) ? mFolder.Read(kFile) : "";
        for (std::uint32_t i = 0; i < mReport->written; ++i) {
            const auto& record = mReport->records[i];
            ASSERT_LE(record.position + record.length, bytes.size());
            ASSERT_EQ(bytes.substr(record.position, record.length), RecordBytes(i));
        }
        mFlushed += mReport->flushed;
        mWritten += mReport->written;
    }

    // Opens the file and reads the records from their pools. False when it is refused, which only
    // a kill in the middle of making a pool may do.
    bool CheckPools()
    {
        VUKSimRpm_Document document("TEST");
        try {
            const VUKSimRpm_File file =
                document.AddFile(mFolder.File(kFile), VUKSimRpm_Document::Read);
            for (std::uint32_t i = 0; i < mReport->written; ++i) {
                const auto& record = mReport->records[i];
                std::string bytes(record.length, '\0');
                const auto place = file.Pool(record.pool).Start() + record.offset;
                EXPECT_EQ(place.Read(bytes.size(), bytes.data()), bytes.size());
                EXPECT_EQ(bytes, RecordBytes(i));
            }
            return true;
        } catch (const VUKBasException& raised) {
            EXPECT_EQ(mReport->inPoolCall, 1U) << raised.what();
            return false;
        }
    }

    TemporaryFolder mFolder;
    SharedReport mReport;
    unsigned mKills = 0;
    std::uint64_t mFlushed = 0; // records that were checked, over all kills
    std::uint64_t mWritten = 0;
};
} // namespace

TEST_F(KilledWriter, LeavesAllThatItReported)
{
    const CrashOptions& options = CrashOptions::Current();
    const unsigned usual = options.longRun ? 2000 : 100;
    const unsigned wanted = options.kills > 0 ? options.kills : usual;
    std::mt19937_64 random(options.seed);
    unsigned inPoolCall = 0;
    unsigned refused = 0;
    while (mKills < wanted && !HasFailure()) {
        // A flush takes far longer than all else: the fewer there are, the more kills meet pools.
        const std::uint32_t flushEach = mKills % 2 == 0 ? 7 : 90;
        // On a busy machine 8 milliseconds may not be enough to begin.
        const bool afterAFlush = mKills % 10 == 0;
        RunAndKill(flushEach, afterAFlush, static_cast<unsigned>(random() % 8000));
        CheckBytes();
        if (HasFailure() || !mFolder.Has(kFile)) {
            continue; // killed before it could begin
        }
        inPoolCall += mReport->inPoolCall;
        const bool opened = CheckPools();
        refused += opened ? 0 : 1;
        if (!opened || mReport->written == WriterReport::kMost) {
            mReport.Reset();
            std::filesystem::remove(mFolder.Path(kFile)); // the next may be killed before it begins
        }
    }
    std::cout << mKills << " kills, " << inPoolCall << " of them while a pool was made, " << refused
              << " files refused; " << mFlushed << " flushed records and " << mWritten - mFlushed
              << " others checked, all there" << std::endl;
    EXPECT_GT(mFlushed, 0U);
}
