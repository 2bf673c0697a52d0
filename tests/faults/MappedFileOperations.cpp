#include "Complaints.h"
#include "OSFileSupport.h"
#include "Operations.h"
#include "TemporaryFolder.h"
#include "VUKSimUttOSFile.h"
#include "VUKSimUttSystemCalls.h"

namespace {

constexpr std::size_t kSize = 131072; // bytes, enough for a map

// A file that is served from memory from its first access on. Whatever keeps it from that is no
// failure: calls do the same work.
class MappedFileOperation : public Operation
{
public:
    MappedFileOperation()
    {
        mFolder.Write("a.sim", std::string(kSize, 'a'));
        mFile.OpenUpdate(mFolder.Path("a.sim").c_str());
    }

protected:
    void ExpectWorks(Complaints& complaints)
    {
        mFile.WriteAtomic(2000, "next", 4);
        complaints.Same(ReadAt(mFile, 1999, 6), "anexta", "what is read back");
        mFile.Flush();
        complaints.Same(mFolder.Read("a.sim").substr(1999, 6), "anexta", "what the file has");
        mFile.Close();
    }

    TemporaryFolder mFolder;
    VUKSimUttOSFile mFile;
};

class ReadAMappedFile : public MappedFileOperation
{
public:
    void Run() override { mRead = ReadAt(mFile, 1000, 8); }

    void Check(const Outcome& outcome, Complaints& complaints) override
    {
        if (!outcome.failed) {
            const bool ends = !outcome.hits.empty() && outcome.hits.back().Ends();
            complaints.Same(mRead, ends ? "" : "aaaaaaaa", "what was read");
        }
        ExpectWorks(complaints);
    }

private:
    std::string mRead;
};

class WriteIntoAMappedFile : public MappedFileOperation
{
public:
    void Run() override { mFile.WriteAtomic(1000, "NEW", 3); }

    void Check(const Outcome& outcome, Complaints& complaints) override
    {
        std::string expected(kSize, 'a');
        expected.replace(1000, 3, "NEW");
        if (!outcome.failed) {
            complaints.Expect(mFolder.Read("a.sim") == expected, "all bytes are those written");
        }
        ExpectWorks(complaints);
    }
};

// The pages leave the map, or stay in it.
class WriteOftenIntoAMappedFile : public MappedFileOperation
{
public:
    WriteOftenIntoAMappedFile() { mFile.WriteAtomic(1000, "new", 3); }

    void Run() override
    {
        for (int i = 0; i < 16; ++i) {
            mFile.WriteAtomic(1000, "NEW", 3);
        }
    }

    void Check(const Outcome& outcome, Complaints& complaints) override
    {
        if (!outcome.failed) {
            complaints.Same(ReadAt(mFile, 999, 5), "aNEWa", "what was written");
        }
        ExpectWorks(complaints);
    }
};

class CloseAMappedFile : public MappedFileOperation
{
public:
    CloseAMappedFile() { mFile.WriteAtomic(1000, "NEW", 3); }

    void Run() override { mFile.Close(); }

    void Check(const Outcome&, Complaints& complaints) override
    {
        complaints.Expect(!mFile.IsOpen(), "the file is closed");
        complaints.Same(mFolder.Read("a.sim").substr(999, 5), "aNEWa", "what the file has");
        mFile.OpenUpdate(mFolder.Path("a.sim").c_str());
        ExpectWorks(complaints);
    }
};
} // namespace

std::vector<OperationEntry> MappedFileOperations()
{
    // Where the whole program runs without maps, one call does the work of each.
    const bool maps = VUKSimUttSystemCalls::Current().mmap == VUKSimUttSystemCalls::System().mmap;
    return {
        Entry<ReadAMappedFile>("ReadAMappedFile", maps ? 3 : 1, 0),
        Entry<WriteIntoAMappedFile>("WriteIntoAMappedFile", maps ? 3 : 1, 0),
        Entry<WriteOftenIntoAMappedFile>("WriteOftenIntoAMappedFile", maps ? 1 : 16, 0),
        Entry<CloseAMappedFile>("CloseAMappedFile", maps ? 4 : 1, 0),
    };
}
