#include "Complaints.h"
#include "OSFileSupport.h"
#include "Operations.h"
#include "TemporaryFolder.h"
#include "VUKSimUttFileUtils.h"
#include "VUKSimUttOSFile.h"

#include <fcntl.h>
#include <optional>
#include <unistd.h>

namespace {

// An OS file, and `a.sim` with the bytes `12345` beside it in the working folder.
class OSFileOperation : public Operation
{
public:
    OSFileOperation() { mFolder.Write("a.sim", "12345"); }

protected:
    // What is open can be read, changed, flushed and closed.
    void ExpectWorks(Complaints& complaints)
    {
        complaints.Expect(mFile.IsOpen(), "the file is open");
        if (!mFile.ReadOnly()) {
            mFile.WriteAtomic(mFile.FileSize(), "next", 4);
            mFile.Flush();
            complaints.Same(ReadAt(mFile, mFile.FileSize() - 4, 9), "next", "what is read back");
        }
        mFile.Close();
        complaints.Expect(!mFile.IsOpen(), "the file is closed");
    }

    TemporaryFolder mFolder;
    WorkingFolder mHere{mFolder.Path("")};
    VUKSimUttOSFile mFile;
};

// An open that fails leaves the object closed, and it can be opened then.
class OpenOperation : public OSFileOperation
{
public:
    void Check(const Outcome& outcome, Complaints& complaints) override
    {
        complaints.Same(mFile.IsOpen(), !outcome.failed, "whether it is open");
        if (outcome.failed) {
            CheckLeftOver(outcome, complaints);
            Run();
        }
        ExpectWorks(complaints);
    }

private:
    virtual void CheckLeftOver(const Outcome& outcome, Complaints& complaints)
    {
        complaints.Same(mFolder.Read("a.sim"), "12345", "the file");
        // One that was made and could not be used is removed, unless that fails too.
        complaints.Expect(mFolder.Count() == 1 || outcome.Manifold(), "nothing else is left");
    }
};

class OpenAFileForReading : public OpenOperation
{
public:
    void Run() override { mFile.OpenRead("a.sim"); }
};

class OpenAFileForUpdate : public OpenOperation
{
public:
    void Run() override { mFile.OpenUpdate("a.sim"); }
};

class OpenAFileForWriting : public OpenOperation
{
public:
    void Run() override { mFile.OpenWrite("a.sim"); }
};

// What the open has made stays, empty.
class OpenANewFile : public OpenOperation
{
public:
    void Run() override { mFile.OpenWrite("b.sim"); }

private:
    void CheckLeftOver(const Outcome&, Complaints& complaints) override
    {
        complaints.Same(mFolder.Read("a.sim"), "12345", "the other file");
        complaints.Expect(!mFolder.Has("b.sim") || mFolder.Size("b.sim") == 0, "it is empty");
    }
};

// Where standard input is closed, a file would come into its place and has to be moved.
class OpenWithoutStandardInput : public OpenOperation
{
public:
    OpenWithoutStandardInput() { close(STDIN_FILENO); }
    ~OpenWithoutStandardInput() override
    {
        dup2(mStandardInput, STDIN_FILENO);
        close(mStandardInput);
    }

    void Run() override { mFile.OpenUpdate("a.sim"); }

private:
    int mStandardInput = fcntl(STDIN_FILENO, F_DUPFD_CLOEXEC, 3);
};

class CreateWithoutStandardInput : public OpenWithoutStandardInput
{
public:
    void Run() override { mFile.CreateTemporary("scratch"); }
};

class CreateAnOSFile : public OpenOperation
{
public:
    void Run() override { mFile.CreateGenerated("run", ".sim", false); }
};

class CreateATemporaryOSFile : public OpenOperation
{
public:
    void Run() override { mFile.CreateTemporary("scratch"); }
};

// Operations on `a.sim`, open for update.
class OpenFileOperation : public OSFileOperation
{
public:
    OpenFileOperation() { mFile.OpenUpdate("a.sim"); }
};

class MeasureAFile : public OpenFileOperation
{
public:
    void Run() override { mSize = mFile.FileSize(); }

    void Check(const Outcome& outcome, Complaints& complaints) override
    {
        complaints.Same(mSize, outcome.failed ? 0ULL : 5ULL, "the size");
        ExpectWorks(complaints);
    }

private:
    unsigned long long mSize = 0;
};

// A read that fails does not move on.
class ReadOn : public OpenFileOperation
{
public:
    ReadOn() { mFirst = mFile.Read(mBytes, 2); }

    void Run() override { mSecond = mFile.Read(mBytes + 2, 3); }

    void Check(const Outcome& outcome, Complaints& complaints) override
    {
        const bool ends = outcome.hits.size() == 1 && outcome.hits[0].Ends();
        complaints.Same(mSecond, outcome.failed || ends ? 0UL : 3UL, "how much was read");
        if (outcome.failed || ends) {
            Run();
        }
        complaints.Same(std::string(mBytes, 5), "12345", "what was read");
        ExpectWorks(complaints);
    }

private:
    char mBytes[5] = {};
    unsigned long mFirst = 0;
    unsigned long mSecond = 0;
};

// One that fails leaves the length, and the bytes as far as they went out.
class WriteToAFile : public OpenFileOperation
{
public:
    WriteToAFile() : WriteToAFile(4, "1234NEW") {}

    void Run() override { mFile.WriteAtomic(mPosition, "NEW", 3); }

    void Check(const Outcome& outcome, Complaints& complaints) override
    {
        const std::string left = mFolder.Read("a.sim");
        if (outcome.failed && !outcome.Manifold()) {
            complaints.Same(left.size(), 5U, "the length");
            const std::size_t moved = outcome.hits.empty() ? 0 : outcome.hits[0].trouble.flaw.moved;
            std::string expected = "12345" + std::string(5, '\0');
            expected.replace(mPosition, moved, std::string("NEW").substr(0, moved));
            complaints.Same(left, expected.substr(0, 5), "the bytes");
        }
        Run();
        complaints.Same(mFolder.Read("a.sim"), mWhole, "the whole file");
        ExpectWorks(complaints);
    }

protected:
    WriteToAFile(unsigned long long position, const std::string& whole)
        : mPosition(position), mWhole(whole)
    {}

private:
    unsigned long long mPosition;
    std::string mWhole;
};

class WriteBehindAFile : public WriteToAFile
{
public:
    WriteBehindAFile() : WriteToAFile(7, std::string("12345\0\0NEW", 10)) {}
    [[nodiscard]] std::string LooksFor(const Hit&) const override { return "write"; }
};

class TruncateAFile : public OpenFileOperation
{
public:
    void Run() override { mFile.Truncate(3); }

    void Check(const Outcome& outcome, Complaints& complaints) override
    {
        complaints.Same(mFolder.Read("a.sim"), outcome.failed ? "12345" : "123", "the bytes");
        Run();
        mFile.Truncate(6);
        complaints.Same(mFolder.Read("a.sim"), std::string("123\0\0\0", 6), "the bytes, longer");
        ExpectWorks(complaints);
    }
};

// Where a folder cannot be synced, the whole file system is.
class FlushANewFile : public OSFileOperation
{
public:
    FlushANewFile() { mFile.OpenWrite("b.sim"); }

    void Run() override { mFile.Flush(); }

    void Check(const Outcome& outcome, Complaints& complaints) override
    {
        if (outcome.syncFailed) {
            for (int i = 0; i < 2; ++i) {
                const int error = outcome.hits.back().trouble.flaw.errorNumber;
                complaints.Expect(static_cast<bool>(RaisesAt(
                                      {kFileSource, 223}, [&] { mFile.Flush(); }, "flush",
                                      outcome.Manifold() ? EIO : error, "b.sim")),
                                  "every later flush fails with the first one's error");
            }
            mFile.Close();
        } else {
            ExpectWorks(complaints);
        }
    }
};

// Closed it is, whatever the system says.
class CloseAnOSFile : public OpenFileOperation
{
public:
    void Run() override { mFile.Close(); }

    void Check(const Outcome&, Complaints& complaints) override
    {
        complaints.Expect(!mFile.IsOpen(), "the file is closed");
        mFile.Close();
        mFile.OpenUpdate("a.sim");
        ExpectWorks(complaints);
    }
};

class CloseATemporaryOSFile : public OSFileOperation
{
public:
    CloseATemporaryOSFile() { mFile.CreateTemporary("scratch"); }

    void Run() override { mFile.Close(); }

    void Check(const Outcome& outcome, Complaints& complaints) override
    {
        complaints.Expect(!mFile.IsOpen(), "the file is closed");
        complaints.Expect(outcome.failed || !outcome.hits.empty() || mFolder.Count() == 1,
                          "it is removed");
        mFile.Close();
    }

    [[nodiscard]] std::string LooksFor(const Hit&) const override { return "remove"; }
};

// A lookup that fails is no failure, but says that there may be a file.
class LookForFiles : public OSFileOperation
{
public:
    void Run() override
    {
        mExists = VUKSimUttFileUtils::FileExists("a.sim");
        mSame = VUKSimUttFileUtils::SameFile("a.sim", "./a.sim");
    }

    void Check(const Outcome& outcome, Complaints& complaints) override
    {
        const bool gone =
            !outcome.hits.empty() && outcome.hits[0].trouble.flaw.errorNumber == ENOENT;
        complaints.Expect(mExists || gone, "it may exist");
        Run();
        complaints.Expect(mExists && mSame, "it exists, and is itself");
    }

private:
    bool mExists = false;
    bool mSame = false;
};
} // namespace

std::vector<OperationEntry> OSFileOperations()
{
    return {
        Entry<OpenAFileForReading>("OpenAFileForReading", 3, 0),
        Entry<OpenAFileForUpdate>("OpenAFileForUpdate", 3, 0),
        Entry<OpenAFileForWriting>("OpenAFileForWriting", 4, 0),
        Entry<OpenANewFile>("OpenANewFile", 4, 2),
        Entry<OpenWithoutStandardInput>("OpenWithoutStandardInput", 5, 0),
        Entry<CreateWithoutStandardInput>("CreateWithoutStandardInput", 4, 2),
        Entry<CreateAnOSFile>("CreateAnOSFile", 2, 2),
        Entry<CreateATemporaryOSFile>("CreateATemporaryOSFile", 2, 2),
        Entry<MeasureAFile>("MeasureAFile", 1, 0),
        Entry<ReadOn>("ReadOn", 1, 0),
        Entry<WriteToAFile>("WriteToAFile", 1, 0),
        Entry<WriteBehindAFile>("WriteBehindAFile", 2, 0),
        Entry<TruncateAFile>("TruncateAFile", 1, 0),
        Entry<FlushANewFile>("FlushANewFile", 4, 1),
        Entry<CloseAnOSFile>("CloseAnOSFile", 1, 0),
        Entry<CloseATemporaryOSFile>("CloseATemporaryOSFile", 4, 0),
        Entry<LookForFiles>("LookForFiles", 3, 0),
    };
}
