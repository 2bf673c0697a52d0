// Failures with a story of their own.
#include "Bytes.h"
#include "Failures.h"
#include "FaultyCalls.h"
#include "OnePool.h"
#include "Store.h"
#include "VUKSimRpm_BStreamAppendToPool.h"
#include "VUKSimRpm_BStreamReadLocator.h"
#include "VUKSimRpm_BStreamWriteLocator.h"
#include "VUKSimRpm_MemoryPool.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <filesystem>
#include <stdexcept>

namespace {

constexpr char kFileSource[] = "VUKSim/VUKSimRpm.m/src/VUKSimRpm_FileImpl";
constexpr char kPoolSource[] = "VUKSim/VUKSimRpm.m/src/VUKSimRpm_PoolImpl";
constexpr char kDirectorySource[] = "VUKSim/VUKSimRpm.m/src/VUKSimRpm_PoolDirectoryImpl";

// Fails the test with every complaint.
void ExpectNone(const Complaints& complaints)
{
    for (const std::string& text : complaints.Texts()) {
        ADD_FAILURE() << text;
    }
}

void ExpectHeld(const Store& store, const std::vector<HeldPool>& pools,
                const std::string& name = "a.sim")
{
    Complaints complaints;
    store.ExpectPools(pools, complaints, name);
    ExpectNone(complaints);
}

// An object of the host that writes a last word into a store, and keeps what is said of it.
class WritesWhenItDies
{
public:
    WritesWhenItDies(VUKSimRpm_File& file, std::string& said) : mFile(file), mSaid(said) {}
    WritesWhenItDies(const WritesWhenItDies&) = delete;
    WritesWhenItDies& operator=(const WritesWhenItDies&) = delete;
    ~WritesWhenItDies()
    {
        try {
            VUKSimRpm_BStreamAppendToPool append(mFile.Pool(), 16);
            append.Write("abc", 3);
        } catch (const VUKSimUttOSFileException& raised) {
            mSaid = raised.what();
        }
    }

private:
    VUKSimRpm_File& mFile;
    std::string& mSaid;
};

class SpecialCases : public testing::Test
{
protected:
    const NoSyncs mSyncs;
    Store mStore;
};
} // namespace

// A disk that is full when a stream dies

TEST_F(SpecialCases, AStreamThatDiesOfAnotherFailureOnAFullDiskLeavesTheFirstToTheCaller)
{
    VUKSimRpm_File& file = mStore.File();
    const auto writeAndFail = [&] {
        VUKSimRpm_BStreamAppendToPool append(file.Pool(), 16);
        VUKSimRpm_BStreamWriteLocator write(file.Start(), 0, 16);
        append.Write("abc", 3);
        write.Write("XYZ", 3);
        throw std::runtime_error("the first");
    };
    {
        ScriptedSystemCalls calls;
        calls.FailAlways(SystemCall::Pwrite, ENOSPC);
        try {
            writeAndFail();
            FAIL() << "nothing was raised";
        } catch (const std::runtime_error& raised) {
            EXPECT_STREQ(raised.what(), "the first");
        }
        EXPECT_EQ(calls.Count(SystemCall::Pwrite), 2); // both tried
    }
    WriteTo(file.Allocate(4), "next");
    mStore.Document().Close();
    ExpectHeld(mStore, {{'a', "frozen one"}, {'b', std::string("growing\0\0\0next", 14)}});
}

TEST_F(SpecialCases, AStreamInADestructorDuringUnwindingDoesNotEndTheProcess)
{
    std::string said;
    ScriptedSystemCalls calls;
    calls.FailAlways(SystemCall::Pwrite, ENOSPC);
    const auto fail = [&] {
        const WritesWhenItDies last(mStore.File(), said);
        throw std::runtime_error("the first");
    };
    EXPECT_THROW(fail(), std::runtime_error);
    EXPECT_NE(said.find("No space left on device (ENOSPC)"), std::string::npos);
}

// A document that is closed half way

TEST_F(SpecialCases, ADocumentStoppedHalfWayIsClosedByTheSecondClose)
{
    VUKSimRpm_Document& document = mStore.Document();
    std::vector<VUKSimRpm_File> files = {mStore.File()};
    for (const char letter : {'c', 'd', 'e'}) {
        const bytes::Pool pool{.directory = {bytes::Uuid(letter)}, .data = "data"};
        files.push_back(
            document.AddFile(mStore.Folder().Write(std::string(1, letter) + ".sim", pool.Bytes()),
                             VUKSimRpm_Document::Update));
    }
    const VUKSimRpm_Locator last = files[3].Start();
    {
        ScriptedSystemCalls calls; // each close writes a header, syncs and closes
        calls.Script(SystemCall::Pwrite, {Passes(), Passes(), Fails(ENOSPC)});
        EXPECT_TRUE(RaisesFileError([&] { document.Close(); }, "write", ENOSPC));
        EXPECT_EQ(calls.Count(SystemCall::Close), 2);
    }
    EXPECT_TRUE(files[0].Null() && files[1].Null());
    EXPECT_FALSE(files[2].Null() || files[3].Null());
    EXPECT_EQ(ReadFrom(last, 4), "data");
    {
        const ScriptedSystemCalls calls;
        document.Close();
        EXPECT_EQ(calls.Count(SystemCall::Close), 2); // no file is closed twice
    }
    EXPECT_TRUE(files[2].Null() && files[3].Null() && last.Null());
    ExpectHeld(mStore, Store::Pools());
    ExpectHeld(mStore, {{'d', "data"}}, "d.sim");
}

// A new pool, stopped at each of its writes

TEST_F(SpecialCases, ANewPoolThatCannotFreezeTheOneBeforeLeavesTheFileAsItWas)
{
    VUKSimRpm_File& file = mStore.File();
    ScriptedSystemCalls calls;
    calls.Script(SystemCall::Pwrite, {Fails(ENOSPC)});
    EXPECT_TRUE(RaisesFileError([&] { file.NewPool(true, nullptr); }, "write", ENOSPC));
    EXPECT_EQ(mStore.Folder().Read("a.sim"), Store::TwoPools());
    EXPECT_EQ(file.PoolCount(), 2U);
    EXPECT_TRUE(Raises<VUKSimExcImmutablePool>([&] { file.Allocate(1); }, kPoolSource, 163));
    file.NewPool(true, bytes::Uuid('x').c_str());
    WriteTo(file.Allocate(4), "next");
    mStore.Document().Close();
    ExpectHeld(mStore, {{'a', "frozen one"}, {'b', "growing"}, {'x', "next"}});
}

TEST_F(SpecialCases, ANewPoolThatCannotWriteItsHeaderIsWrittenByTheNextFlush)
{
    VUKSimRpm_File& file = mStore.File();
    {
        ScriptedSystemCalls calls;
        calls.Script(SystemCall::Pwrite, {Passes(), Moves(50), Fails(ENOSPC)});
        EXPECT_TRUE(RaisesFileError([&] { file.NewPool(true, bytes::Uuid('x').c_str()); }, "write",
                                    ENOSPC));
    }
    EXPECT_EQ(mStore.Folder().Size("a.sim"), 209U); // the half header is cut back
    ExpectHeld(mStore, Store::Pools());
    EXPECT_EQ(file.PoolCount(), 3U);
    file.Flush();
    ExpectHeld(mStore, {{'a', "frozen one"}, {'b', "growing"}, {'x', ""}});
}

// A sync that fails

TEST_F(SpecialCases, AFlushNeverSucceedsOnceASyncHasFailed)
{
    VUKSimRpm_File& file = mStore.File();
    {
        ScriptedSystemCalls calls;
        calls.Script(SystemCall::Fdatasync, {Fails(EIO)});
        EXPECT_TRUE(RaisesFileError([&] { file.Flush(); }, "flush", EIO));
    }
    const ScriptedSystemCalls calls; // the system would say that all is well
    EXPECT_TRUE(RaisesFileError([&] { file.Flush(); }, "flush", EIO));
    WriteTo(file.Allocate(4), "next");
    EXPECT_TRUE(RaisesFileError([&] { mStore.Document().Flush(); }, "flush", EIO));
    EXPECT_TRUE(RaisesFileError([&] { mStore.Document().Close(file); }, "flush", EIO));
    EXPECT_TRUE(RaisesFileError([&] { mStore.Document().Close(); }, "flush", EIO));
    EXPECT_EQ(calls.Count(SystemCall::Fdatasync), 0);
    EXPECT_EQ(DataOf(file.Pool()), "growingnext"); // it can be read, to be saved elsewhere
    mStore.Drop();
    ExpectHeld(mStore, {{'a', "frozen one"}, {'b', "growingnext"}});
}

TEST_F(SpecialCases, ASecondSyncThatFailsIsToldAsTheFirst)
{
    VUKSimRpm_File& file = mStore.File();
    ScriptedSystemCalls calls;
    calls.Script(SystemCall::Fdatasync, {Fails(ENOSPC), Fails(EIO)});
    EXPECT_TRUE(RaisesFileError([&] { file.Flush(); }, "flush", ENOSPC));
    EXPECT_TRUE(RaisesFileError([&] { file.Flush(); }, "flush", ENOSPC));
    EXPECT_EQ(calls.Count(SystemCall::Fdatasync), 1);
}

// A file that another process shortens while it is open

TEST_F(SpecialCases, AShortenedFileReadsShortAndNeverRaisesASignal)
{
    VUKSimRpm_File& file = mStore.File();
    const VUKSimRpm_Locator start = file.Start();
    const VUKSimRpm_Locator frozen = file.Pool(0).Start();
    std::filesystem::resize_file(mStore.Folder().Path("a.sim"), 204);
    EXPECT_EQ(ReadFrom(start, 7), "gr");
    EXPECT_EQ(ReadFrom(start + 2, 5), "");
    EXPECT_TRUE(RaisesAssertion([&] { VUKSimRpm_MemoryPool(start, 7, VUKBasAllocator(), nullptr); },
                                "r == mSize", "VUKSim/VUKSimRpm.m/src/VUKSimRpm_MemoryPool", 30));
    VUKSimRpm_BStreamReadLocator stream(start, 7, 16);
    EXPECT_TRUE(RaisesRequestTooBig([&] { (void)stream.PrepRead(7); }, 7, 2,
                                    "VUKSim/VUKSimRpm.m/src/VUKSimRpm_BStreamReadLocator", 62));
    std::filesystem::resize_file(mStore.Folder().Path("a.sim"), 0);
    EXPECT_EQ(ReadFrom(frozen, 10), "");
    EXPECT_EQ(ReadFrom(start, 7), "");
}

TEST_F(SpecialCases, AShortenedFileIsWrittenAsFarAsItIsStillKnown)
{
    VUKSimRpm_File& file = mStore.File();
    std::filesystem::resize_file(mStore.Folder().Path("a.sim"), 0);
    WriteTo(file.Allocate(4), "next"); // where it belongs, zeros before it
    EXPECT_EQ(mStore.Folder().Read("a.sim"), bytes::Zeros(209) + "next");
    mStore.Document().Close(); // writes the last header, all that the document still knows
    const std::string header = Store::TwoPools().substr(90, 112);
    EXPECT_EQ(mStore.Folder().Read("a.sim"), bytes::Zeros(90) + header + bytes::Zeros(7) + "next");
    VUKSimRpm_Document again("TEST");
    EXPECT_TRUE(Raises<VUKSimExcNotSimFile>(
        [&] { again.AddFile(mStore.Folder().File("a.sim"), VUKSimRpm_Document::Read); },
        kPoolSource, 81));
}

TEST_F(SpecialCases, AShortenedFileCannotBeImported)
{
    VUKSimRpm_Document document("TEST");
    VUKSimRpm_File target =
        document.AddFile(mStore.Folder().File("t.sim"), VUKSimRpm_Document::Write);
    std::filesystem::resize_file(mStore.Folder().Path("a.sim"), 204);
    EXPECT_TRUE(Raises<VUKSimExcShortPool>([&] { target.AppendPool(mStore.File().Pool()); },
                                           kFileSource, 190));
}

// An import that failed and is followed by another pool. The bytes that it left stand between two
// pools, where the walk along the pools does not find the next one any more.
TEST_F(SpecialCases, AnImportThatFailedHalfWayCutsOffThePoolsBehindIt)
{
    VUKSimRpm_Document document("TEST");
    const bytes::Pool stored{.directory = {bytes::Uuid('s')}, .data = "imported"};
    const VUKSimRpm_File source =
        document.AddFile(mStore.Folder().Write("s.sim", stored.Bytes()), VUKSimRpm_Document::Read);
    {
        ScriptedSystemCalls calls;
        calls.Script(SystemCall::Pread, {Fails(EIO)});
        EXPECT_TRUE(
            RaisesFileError([&] { mStore.File().AppendPool(source.Pool(0)); }, "read", EIO));
    }
    ExpectHeld(mStore, {{'a', "frozen one"}, {'b', "growing", true}}); // nothing is lost so far
    mStore.File().AppendPool(source.Pool(0));
    EXPECT_EQ(DataOf(mStore.File().Pool()), "imported");
    mStore.Document().Close();
    VUKSimRpm_Document again("TEST");
    EXPECT_TRUE(Raises<VUKSimExcNotSimFile>(
        [&] { again.AddFile(mStore.Folder().File("a.sim"), VUKSimRpm_Document::Read); },
        kPoolSource, 81));
    const std::string disk = mStore.Folder().Read("a.sim");
    EXPECT_EQ(disk.substr(80, 10), "frozen one");
    EXPECT_EQ(disk.substr(202, 7), "growing");
    EXPECT_EQ(disk.substr(209 + 88 + 80), "imported"); // behind the room of the first copy
}

// A name that cannot be looked up

TEST_F(SpecialCases, AFileOfTheDocumentIsNotEmptiedWhenItCannotBeLookedUp)
{
    const VUKString name = mStore.Folder().File("a.sim");
    for (const int error : {EACCES, EIO, ENOMEM}) {
        ScriptedSystemCalls calls;
        calls.FailAlways(SystemCall::Stat, error);
        EXPECT_TRUE(RaisesCantCreateFile(
            [&] { mStore.Document().AddFile(name, VUKSimRpm_Document::Write); }, name.UTF8(),
            "VUKSim/VUKSimRpm.m/src/VUKSimRpm_DocumentImpl", 44));
        EXPECT_EQ(mStore.Folder().Read("a.sim"), Store::TwoPools());
    }
}

TEST_F(SpecialCases, AFileUnderAnotherNameIsNotOpenedTwiceWhenItCannotBeLookedUp)
{
    ScriptedSystemCalls calls;
    calls.FailAlways(SystemCall::Stat, EIO);
    const VUKString other = mStore.Folder().File("./a.sim");
    EXPECT_TRUE(Raises<VUKSimExcPoolAlreadyInDoc>(
        [&] { mStore.Document().AddFile(other, VUKSimRpm_Document::Update); }, kDirectorySource,
        75));
    EXPECT_EQ(mStore.Folder().Read("a.sim"), Store::TwoPools());
    EXPECT_EQ(DataOf(mStore.File().Pool()), "growing");
}
