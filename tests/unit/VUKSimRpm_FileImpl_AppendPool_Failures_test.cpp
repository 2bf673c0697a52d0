#include "VUKSimRpm_FileImpl.h"

#include "CountedMemory.h"
#include "Failures.h"
#include "FileFixture.h"
#include "ScriptedSystemCalls.h"
#include "Transfers.h"
#include "VUKSimRpm_UUID.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <filesystem>
#include <string>
#include <vector>

namespace {
constexpr char kSource[] = "VUKSim/VUKSimRpm.m/src/VUKSimRpm_FileImpl";

// A target, a new file whose first pool, `a`, is empty, and source files in another document.
class AppendPoolFailures : public FileFixture
{
protected:
    AppendPoolFailures()
    {
        VUKSimRpm_UUID::TestForceUUID(mA.c_str());
        mFile.OpenWrite(mFolder.File("a.sim"), true);
    }

    // The first pool of a file that holds `stored`.
    VUKSimRpm_PoolImpl& OpenSource(const bytes::Pool& stored)
    {
        mSource.OpenUpdate(mFolder.Write("source.sim", stored.Bytes()));
        return *mSource.Pool(0).lock();
    }

    // Gives the target's pool `a` data: 82 bytes in all.
    void FillTarget()
    {
        mFile.Pool().lock()->Allocate(2);
        mFile.Pool().lock()->Write(0, 2, "AB");
    }

    void ResizeSource(std::uintmax_t size) const
    {
        std::filesystem::resize_file(mFolder.Path("source.sim"), size);
    }

    const std::string mA = bytes::Uuid('a');
    const std::string mX = bytes::Uuid('x');
    VUKSimRpm_DocumentImpl mSourceDocument{"TEST"};
    VUKSimRpm_FileImpl mSource{mSourceDocument};
    VUKSimRpm_FileImpl mFile{mDocument};
};
} // namespace

// Before any change

TEST_F(AppendPoolFailures, RefusesAReadOnlyTarget)
{
    VUKSimRpm_PoolImpl& source = OpenSource({.directory = {mX}});
    mFile.Close();
    VUKSimRpm_FileImpl target(mDocument);
    target.OpenRead(mFolder.File("a.sim"));
    EXPECT_TRUE(Raises<VUKSimExcNewPoolReadOnly>([&] { target.AppendPool(source); }, kSource, 150));
    const auto own = target.Pool().lock(); // is refused as a duplicate only after that
    EXPECT_TRUE(Raises<VUKSimExcNewPoolReadOnly>([&] { target.AppendPool(*own); }, kSource, 150));
    EXPECT_EQ(target.PoolCount(), 1U);
    EXPECT_EQ(Map()->Length(), 1);
    EXPECT_EQ(mFolder.Size("a.sim"), 80U);
}

TEST_F(AppendPoolFailures, RefusesAPoolOfTheSameDocument)
{
    VUKSimRpm_FileImpl source(mDocument);
    source.OpenUpdate(mFolder.Write("b.sim", bytes::Pool({.directory = {mX}}).Bytes()));
    const auto pool = source.Pool().lock();
    EXPECT_TRUE(Raises<VUKSimExcPoolAlreadyInDoc>([&] { mFile.AppendPool(*pool); }, kSource, 153));
    EXPECT_EQ(mFile.PoolCount(), 1U);
    EXPECT_EQ(PoolIn(0), mFile.Pool().lock()); // the empty pool is not dropped
    EXPECT_EQ(mFolder.Size("a.sim"), 80U);
}

TEST_F(AppendPoolFailures, RefusesItsOwnPool)
{
    const auto own = mFile.Pool().lock();
    EXPECT_TRUE(Raises<VUKSimExcPoolAlreadyInDoc>([&] { mFile.AppendPool(*own); }, kSource, 153));
    EXPECT_EQ(mFile.Pool().lock(), own);
}

TEST_F(AppendPoolFailures, RefusesASecondCopyWhileTheFirstIsOpen)
{
    VUKSimRpm_PoolImpl& source = OpenSource({.directory = {mX}, .data = "x"});
    mFile.AppendPool(source);
    EXPECT_TRUE(Raises<VUKSimExcPoolAlreadyInDoc>([&] { mFile.AppendPool(source); }, kSource, 153));
    EXPECT_EQ(mFile.PoolCount(), 1U);
    mFile.Close();

    VUKSimRpm_FileImpl second(mDocument);
    second.OpenWrite(mFolder.File("b.sim"), true);
    second.AppendPool(source);
    EXPECT_EQ(second.Pool().lock()->OwnSlot(), 1); // the slot of the first copy
}

TEST_F(AppendPoolFailures, AcceptsAPoolThatTheDocumentOnlyRefersTo)
{
    Map()->NewSlot(mX.c_str());
    const auto copy = mFile.AppendPool(OpenSource({.directory = {mX}})).lock();
    EXPECT_EQ(copy->OwnSlot(), 1);
}

TEST_F(AppendPoolFailures, JudgesByAll32BytesOfTheUuid)
{
    const std::string uuid("0123\0abcdef0123456789abcdef01234", 32);
    std::string other = uuid;
    other[31] = '5';
    FillTarget();
    mFile.NewPool(true, nullptr);
    mFile.AppendPool(OpenSource({.directory = {uuid}, .data = "x"}));
    VUKSimRpm_DocumentImpl document("TEST");
    VUKSimRpm_FileImpl source(document);
    source.OpenRead(mFolder.Write("other.sim", bytes::Pool({.directory = {other}}).Bytes()));
    mFile.AppendPool(*source.Pool(0).lock());
    EXPECT_EQ(mFile.PoolCount(), 3U);
}

// While it copies

TEST_F(AppendPoolFailures, FailsWhenTheSourceEndsBeforeThePool)
{
    FillTarget();
    VUKSimRpm_PoolImpl& source = OpenSource({.directory = {mX}, .data = std::string(220, 'x')});
    ResizeSource(200); // of 300
    EXPECT_TRUE(Raises<VUKSimExcShortPool>([&] { mFile.AppendPool(source); }, kSource, 190));
    EXPECT_EQ(mFile.PoolCount(), 1U);
    EXPECT_FALSE(mFile.Pool().lock()->Immutable());
    EXPECT_EQ(mFolder.Size("a.sim"), 382U); // 82 and 300: what was copied stays
    EXPECT_EQ(mFile.LogicalEnd(), 382U);
    EXPECT_EQ(mFolder.Read("a.sim").substr(82 + 80),
              std::string(120, 'x') + std::string(100, '\0'));

    ResizeSource(300);
    const auto copy = mFile.AppendPool(source).lock(); // is placed behind it
    EXPECT_EQ(copy->Position(), 382U);
    EXPECT_EQ(mFile.LogicalEnd(), 682U);
}

TEST_F(AppendPoolFailures, FailsWhenAMappedSourceHasBecomeShorterThanThePool)
{
    FillTarget();
    VUKSimRpm_PoolImpl& source = OpenSource({.directory = {mX}, .data = std::string(599920, 'x')});
    EXPECT_EQ(ReadPool(source, 599919, 1), "x"); // mapped as long as it was
    ResizeSource(400000);                        // of 600000
    EXPECT_TRUE(Raises<VUKSimExcShortPool>([&] { mFile.AppendPool(source); }, kSource, 190));
    EXPECT_EQ(mFile.PoolCount(), 1U);
    EXPECT_EQ(mFolder.Size("a.sim"), 600082U);
    EXPECT_EQ(mFolder.Read("a.sim").substr(82 + 80),
              std::string(399920, 'x') + std::string(200000, '\0'));
}

TEST_F(AppendPoolFailures, TakesNoByteBehindTheEndOfAMappedSourceThatHasBecomeShorter)
{
    VUKSimRpm_PoolImpl& source = OpenSource({.directory = {mX}, .data = std::string(599920, 'x')});
    EXPECT_EQ(ReadPool(source, 599919, 1), "x"); // mapped as long as it was
    ResizeSource(24);                            // of 600000
    const std::string before = mFolder.Read("a.sim");
    EXPECT_TRUE(Raises<VUKSimExcShortPool>([&] { mFile.AppendPool(source); }, kSource, 190));
    EXPECT_EQ(mFolder.Read("a.sim"),
              mFolder.Read("source.sim") + before.substr(24) + std::string(599920, '\0'));
}

TEST_F(AppendPoolFailures, FailsForAPoolWithBytesThatWereAllocatedAndNeverWritten)
{
    VUKSimRpm_PoolImpl& source = OpenSource({.directory = {mX}, .data = "x"});
    source.Allocate(1);
    EXPECT_TRUE(Raises<VUKSimExcShortPool>([&] { mFile.AppendPool(source); }, kSource, 190));
}

TEST_F(AppendPoolFailures, LeavesAnEmptyPoolDroppedAfterAFailure)
{
    VUKSimRpm_PoolImpl& source = OpenSource({.directory = {mX}, .data = "x"});
    ResizeSource(0);
    EXPECT_TRUE(Raises<VUKSimExcShortPool>([&] { mFile.AppendPool(source); }, kSource, 190));
    EXPECT_EQ(mFile.PoolCount(), 0U);
    EXPECT_FALSE(PoolIn(0));
    EXPECT_TRUE(
        RaisesAssertion([&] { (void)mFile.Pool(); }, "mCurrentPoolIndex >= 0", kSource, 270));
    EXPECT_EQ(mFile.LogicalEnd(), 81U);
}

TEST_F(AppendPoolFailures, GoesOnAfterAReadThatCameBackShort)
{
    const std::string data(220, 'x');
    VUKSimRpm_PoolImpl& source = OpenSource({.directory = {mX}, .data = data});
    ResizeSource(200); // of 300, until the first 200 are written
    const DuringNextWrite grow([&] { ResizeSource(300); });
    const auto copy = mFile.AppendPool(source).lock();
    EXPECT_EQ(copy->Length(), 300U);
    EXPECT_EQ(ReadPool(*copy, 0, 999), std::string(120, 'x') + std::string(100, '\0'));
}

TEST_F(AppendPoolFailures, RefusesALengthThatWrapsBeforeItTruncates)
{
    FillTarget();
    // '/' is '0' - 1: a length of 2^64 - 1, which together with 82 wraps
    VUKSimRpm_PoolImpl& source = OpenSource({.length = "000000000000000/", .directory = {mX}});
    EXPECT_TRUE(Raises<VUKSimExcShortPool>([&] { mFile.AppendPool(source); }, kSource, 190));
    EXPECT_EQ(mFolder.Size("a.sim"), 82U);
    EXPECT_EQ(mFile.LogicalEnd(), 82U);
    EXPECT_EQ(mFile.PoolCount(), 1U);
}

TEST_F(AppendPoolFailures, LeavesALengthThatJustFitsToTheSystem)
{
    VUKSimRpm_PoolImpl& source = OpenSource({.length = "000000000000000/", .directory = {mX}});
    EXPECT_TRUE(RaisesFileError([&] { mFile.AppendPool(source); }, "truncate", EFBIG));
    EXPECT_EQ(mFolder.Size("a.sim"), 80U);
    EXPECT_EQ(mFile.LogicalEnd(), 0U); // the empty pool is dropped
}

TEST_F(AppendPoolFailures, PassesOnWhatTheSystemSays)
{
    FillTarget();
    VUKSimRpm_PoolImpl& source = OpenSource({.directory = {mX}, .data = "x"});
    ScriptedSystemCalls calls;
    calls.Script(SystemCall::Ftruncate, {Fails(EIO)});
    EXPECT_TRUE(RaisesFileError([&] { mFile.AppendPool(source); }, "truncate", EIO));
    EXPECT_EQ(mFile.LogicalEnd(), 82U);
    calls.Script(SystemCall::Pwrite, {Fails(ENOSPC)});
    EXPECT_TRUE(RaisesFileError([&] { mFile.AppendPool(source); }, "write", ENOSPC));
    EXPECT_EQ(mFile.LogicalEnd(), 163U);
    EXPECT_EQ(mFile.PoolCount(), 1U);
}

// When it loads the copy

TEST_F(AppendPoolFailures, RefusesAPoolOfAnotherUserSignatureOnceItIsCopied)
{
    FillTarget();
    VUKSimRpm_DocumentImpl document("FEM4");
    VUKSimRpm_FileImpl source(document);
    const bytes::Pool stored{.userSignature = "FEM4", .directory = {mX}, .data = "x"};
    source.OpenRead(mFolder.Write("fem.sim", stored.Bytes()));
    EXPECT_TRUE(Raises<VUKSimExcUserSigMismatch>([&] { mFile.AppendPool(*source.Pool(0).lock()); },
                                                 "VUKSim/VUKSimRpm.m/src/VUKSimRpm_PoolImpl", 89));
    EXPECT_EQ(mFile.PoolCount(), 1U);
    EXPECT_FALSE(mFile.Pool().lock()->Immutable());
    EXPECT_EQ(mFile.LogicalEnd(), 163U); // 82 and 81
    EXPECT_EQ(mFolder.Read("a.sim"),
              bytes::Pool({.directory = {mA}, .data = "AB"}).Bytes() + stored.Bytes());

    mFile.NewPool(true, bytes::Uuid('n').c_str()); // is placed behind it
    EXPECT_EQ(mFile.Pool().lock()->Position(), 163U);
}

TEST_F(AppendPoolFailures, LeavesACopyThatALaterOpeningTakesForData)
{
    FillTarget();
    VUKSimRpm_DocumentImpl document("FEM4");
    VUKSimRpm_FileImpl source(document);
    const bytes::Pool stored{.userSignature = "FEM4", .directory = {mX}, .data = "x"};
    source.OpenRead(mFolder.Write("fem.sim", stored.Bytes()));
    const auto append = [&] { mFile.AppendPool(*source.Pool(0).lock()); };
    constexpr char kPoolSource[] = "VUKSim/VUKSimRpm.m/src/VUKSimRpm_PoolImpl";
    EXPECT_TRUE(Raises<VUKSimExcUserSigMismatch>(append, kPoolSource, 89));
    mFile.Flush();
    {
        VUKSimRpm_DocumentImpl later("TEST");
        VUKSimRpm_FileImpl again(later);
        again.OpenRead(mFolder.File("a.sim"));
        EXPECT_EQ(ReadPool(*again.Pool().lock(), 0, 99), "AB" + stored.Bytes());
    }
    mFile.NewPool(true, nullptr); // gives the pool before its true length
    VUKSimRpm_DocumentImpl later("TEST");
    VUKSimRpm_FileImpl again(later);
    EXPECT_TRUE(Raises<VUKSimExcUserSigMismatch>([&] { again.OpenRead(mFolder.File("a.sim")); },
                                                 kPoolSource, 89));
}

TEST_F(AppendPoolFailures, ChecksTheCopiedHeaderAnew)
{
    FillTarget();
    VUKSimRpm_PoolImpl& source = OpenSource({.directory = {mX}, .data = "x"});
    mSource.Write(8, 1, "\x07");
    EXPECT_TRUE(RaisesNeedUpgrade([&] { mFile.AppendPool(source); }, 6, 7, mFolder.Path("a.sim"),
                                  "VUKSim/VUKSimRpm.m/src/VUKSimRpm_PoolImpl", 86));
    EXPECT_EQ(mFile.PoolCount(), 1U);
}

TEST_F(AppendPoolFailures, ChecksTheCopiedDirectoryAnew)
{
    FillTarget();
    VUKSimRpm_PoolImpl& source = OpenSource({.directory = {mX}, .data = "x"});
    mSource.Write(44, 4, bytes::HostWord(2).data()); // more entries than the copy has room for
    EXPECT_TRUE(Raises<VUKSimExcCorruptDirectory>(
        [&] { mFile.AppendPool(source); }, "VUKSim/VUKSimRpm.m/src/VUKSimRpm_PoolImpl", 106));
    mSource.Write(44, 4, bytes::HostWord(1).data());
    mSource.Write(48, 32, mA.c_str());
    EXPECT_TRUE(Raises<VUKSimExcPoolAlreadyInDoc>(
        [&] { mFile.AppendPool(source); }, "VUKSim/VUKSimRpm.m/src/VUKSimRpm_PoolDirectoryImpl",
        75));
}

// Once it is loaded

TEST_F(AppendPoolFailures, LeavesTheCopyCurrentWhenItCannotWriteItsHeader)
{
    FillTarget();
    VUKSimRpm_PoolImpl& source = OpenSource({.directory = {mX}, .data = "x"});
    const auto before = mFile.Pool().lock();
    ScriptedSystemCalls calls;
    calls.Script(SystemCall::Pwrite, {Passes(), Passes(), Fails(ENOSPC)}); // copy, length, header
    EXPECT_TRUE(RaisesFileError([&] { mFile.AppendPool(source); }, "write", ENOSPC));
    ASSERT_EQ(mFile.PoolCount(), 2U);
    EXPECT_TRUE(before->Immutable());
    EXPECT_EQ(PoolIn(1), mFile.Pool().lock());
    EXPECT_FALSE(mFile.Pool().lock()->Immutable());
}

// How it copies

TEST_F(AppendPoolFailures, CopiesInPiecesOf262144Bytes)
{
    VUKSimRpm_PoolImpl& source =
        OpenSource({.directory = {mX}, .data = std::string(262144 + 1 - 80, 'x')});
    ScriptedSystemCalls calls;
    calls.FailAlways(SystemCall::Mmap, ENOMEM); // what it reads again goes through calls then
    mFile.AppendPool(source);
    EXPECT_EQ(Reads(calls), (std::vector<Transfer>{{0, 262144}, {262144, 1}, {0, 4096}}));
    EXPECT_EQ(Writes(calls), (std::vector<Transfer>{{0, 262144}, {262144, 1}, {0, 80}}));
}

TEST_F(AppendPoolFailures, CopiesExactly262144BytesInOnePiece)
{
    VUKSimRpm_PoolImpl& source =
        OpenSource({.directory = {mX}, .data = std::string(262144 - 80, 'x')});
    ScriptedSystemCalls calls;
    calls.FailAlways(SystemCall::Mmap, ENOMEM); // what it reads again goes through calls then
    mFile.AppendPool(source);
    EXPECT_EQ(Reads(calls), (std::vector<Transfer>{{0, 262144}, {0, 4096}}));
}

TEST_F(AppendPoolFailures, CopiesWhatIsMappedInSuchPiecesWithoutReadingIt)
{
    VUKSimRpm_PoolImpl& source = OpenSource({.directory = {mX}, .data = std::string(599920, 'x')});
    ScriptedSystemCalls calls;
    mFile.AppendPool(source);
    // The last piece reaches to the end of the source, which is not mapped.
    EXPECT_EQ(Reads(calls), (std::vector<Transfer>{{524288, 75712}}));
    EXPECT_EQ(Writes(calls),
              (std::vector<Transfer>{{0, 262144}, {262144, 262144}, {524288, 75712}}));
    const bytes::Pool copy{.directory = {mX}, .data = std::string(599920, 'x')};
    EXPECT_EQ(mFolder.Read("a.sim"), copy.Bytes());
}

TEST_F(AppendPoolFailures, SizesTheFileOnceUpFront)
{
    FillTarget();
    VUKSimRpm_PoolImpl& source = OpenSource({.directory = {mX}, .data = std::string(1000000, 'x')});
    const ScriptedSystemCalls calls;
    mFile.AppendPool(source);
    ASSERT_EQ(calls.Count(SystemCall::Ftruncate), 1);
    EXPECT_EQ(calls.Calls().front().call, SystemCall::Ftruncate);
    EXPECT_EQ(calls.Calls().front().position, 1000162U);
}

TEST_F(AppendPoolFailures, NeedsNoMoreMemoryForALongPool)
{
    VUKSimRpm_PoolImpl& source =
        OpenSource({.directory = {mX}, .data = std::string(10000000, 'x')});
    const CountedMemory memory;
    mFile.AppendPool(source);
    EXPECT_GE(memory.Peak(), 262144U);
    EXPECT_LT(memory.Peak(), 270000U);
}
