#include "VUKSimRpm_PoolImpl.h"

#include "CountedMemory.h"
#include "Failures.h"
#include "FileFixture.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <string>

namespace {
constexpr char kSource[] = "VUKSim/VUKSimRpm.m/src/VUKSimRpm_PoolImpl";

// A file whose one pool, `a`, holds `stored` as its data, from byte 80 on; a pool is loaded there.
class PoolLoad : public FileFixture
{
protected:
    void Store(const std::string& stored)
    {
        mFile.OpenRead(mFolder.Write("a.sim", mOuter.Bytes() + stored));
    }
    void Store(const bytes::Pool& pool) { Store(pool.Bytes()); }

    void Load() { mPool.Load(mFile.LogicalEnd()); }

    // The length that a pool with those 16 bytes gets when the file ends 84 bytes behind its begin.
    unsigned long long LengthFor(const std::string& digits) const
    {
        VUKSimRpm_DocumentImpl document("TEST");
        VUKSimRpm_FileImpl file(document);
        const bytes::Pool stored{.length = digits, .directory = {bytes::Uuid('p')}, .data = "data"};
        file.OpenRead(mFolder.Write("length.sim", mOuter.Bytes() + stored.Bytes()));
        VUKSimRpm_PoolImpl pool(
            file, VUKBasMakeShared<VUKSimRpm_PoolDirectoryImpl>(document.PoolMap()), 80);
        pool.Load(164);
        return pool.Length();
    }

    const bytes::Pool mOuter{.directory = {bytes::Uuid('a')}};
    const bytes::Pool mGood{.length = "0000000000000120", // 48 + 2 * 32 + 8
                            .directory = {bytes::Uuid('p'), bytes::Uuid('q')},
                            .data = "12345678"};
    VUKSimRpm_FileImpl mFile{mDocument};
    VUKSimRpm_PoolImpl mPool{
        mFile, VUKBasMakeShared<VUKSimRpm_PoolDirectoryImpl>(mDocument.PoolMap()), 80};
};
} // namespace

TEST_F(PoolLoad, TakesItsSizesFromTheHeader)
{
    Store(mGood);
    Load();
    EXPECT_EQ(mPool.Length(), 120U);
    EXPECT_EQ(mPool.HeaderSize(), 112U);
    EXPECT_EQ(mPool.DataLength(), 8U);
    EXPECT_EQ(ReadPool(mPool, 0, 8), "12345678");
}

TEST_F(PoolLoad, FillsTheDirectoryWithSlots)
{
    Store(mGood);
    Load();
    EXPECT_EQ(mPool.Directory()->Length(), 2);
    EXPECT_EQ(mPool.OwnSlot(), 1); // behind `a`
    EXPECT_STREQ(mPool.Directory()->GetGUID().UTF8(), "pppppppppppppppppppppppppppppppp");
    EXPECT_EQ(mPool.Directory()->InternalizeReference(1), 2);
}

TEST_F(PoolLoad, LeavesToTheFileWhoIsCurrent)
{
    Store(mGood);
    Load();
    EXPECT_TRUE(mPool.Immutable());
    EXPECT_FALSE(PoolIn(1));
}

TEST_F(PoolLoad, RunsToTheGivenEndWhenItsLengthReadsZero)
{
    bytes::Pool pool = mGood;
    pool.length = "0000000000000000";
    Store(pool);
    mPool.Load(195); // of 200
    EXPECT_EQ(mPool.Length(), 115U);
}

TEST_F(PoolLoad, MindsTheGivenEndOnlyWhenItsLengthReadsZero)
{
    Store(mGood);
    mPool.Load(195);
    EXPECT_EQ(mPool.Length(), 120U);
}

TEST_F(PoolLoad, KeepsBothReservedWordsAndIgnoresTheReservedBytes)
{
    bytes::Pool pool = mGood;
    pool.reserved = "garbage";
    pool.reserved1 = 0xDEADBEEF;
    pool.reserved2 = 0x80000001;
    mFile.OpenUpdate(mFolder.Write("a.sim", mOuter.Bytes() + pool.Bytes()));
    Load();
    mPool.Dump();
    pool.reserved = std::string(7, '\0');
    EXPECT_EQ(mFolder.Read("a.sim").substr(80), pool.Bytes());
}

TEST_F(PoolLoad, TakesWhateverCharactersTheLengthHas)
{
    EXPECT_EQ(LengthFor("0000000000000090"), 90U);
    EXPECT_EQ(LengthFor("000000000000008:"), 90U);                     // ':' is '0' + 10
    EXPECT_EQ(LengthFor("000000000000010 "), 84U);                     // ' ' is '0' - 16
    EXPECT_EQ(LengthFor("000000000000010\xE0"), 20U);                  // 100 and -32 - 48
    EXPECT_EQ(LengthFor("000000000000hi!!"), 61535U);                  // 56000 + 5700 - 150 - 15
    EXPECT_EQ(LengthFor("000000000000000/"), 18446744073709551615ULL); // -1 in 64 bits
}

TEST_F(PoolLoad, TakesCharactersThatCancelOutForALengthOfZero)
{
    EXPECT_EQ(LengthFor("00000000000000/:"), 84U); // -10 + 10: up to the end of the file
}

TEST_F(PoolLoad, GrowsFromALengthThatEndsBehind64BitsAsFromAnyOther)
{
    const bytes::Pool stored{
        .length = "000000000000000/", .directory = {bytes::Uuid('p')}, .data = "data"};
    mFile.OpenUpdate(mFolder.Write("a.sim", mOuter.Bytes() + stored.Bytes()));
    Load();
    mPool.SetImmutable(false);
    EXPECT_EQ(mPool.Length(), 18446744073709551615ULL); // ends at byte 79
    EXPECT_EQ(mPool.Allocate(0), LocatorTo(1, 18446744073709551535ULL));
    EXPECT_EQ(mPool.Allocate(91), LocatorTo(1, 18446744073709551535ULL));
    EXPECT_EQ(mPool.Length(), 90U); // ends at byte 170
    EXPECT_EQ(mFile.LogicalEnd(), 170U);
    EXPECT_TRUE(RaisesIOBounds([&] { mPool.Allocate(18446744073709551446ULL); }, 10,
                               18446744073709551456ULL, 10, kSource, 168));
    EXPECT_EQ(mPool.Allocate(18446744073709551445ULL), LocatorTo(1, 10));
}

// What is refused, in the order of the checks

TEST_F(PoolLoad, RefusesAHeaderOfFewerThan48Bytes)
{
    Store(mGood.Bytes().substr(0, 47));
    EXPECT_TRUE(Raises<VUKSimExcCorruptHeader>([&] { Load(); }, kSource, 78));
}

TEST_F(PoolLoad, CountsTheBytesBeforeItLooksAtThem)
{
    Store(std::string(47, 'x'));
    EXPECT_TRUE(Raises<VUKSimExcCorruptHeader>([&] { Load(); }, kSource, 78));
}

TEST_F(PoolLoad, RefusesAHeaderBehindTheEndOfTheFile)
{
    Store("");
    EXPECT_TRUE(Raises<VUKSimExcCorruptHeader>([&] { Load(); }, kSource, 78));
}

TEST_F(PoolLoad, RefusesAnotherSignature)
{
    bytes::Pool pool = mGood;
    pool.signature = "\x89SIM\r\n\x1A\r";
    pool.version = 5; // is not looked at any more
    pool.userSignature = "ELSE";
    Store(pool);
    EXPECT_TRUE(Raises<VUKSimExcNotSimFile>([&] { Load(); }, kSource, 81));
}

TEST_F(PoolLoad, RefusesAnOlderVersion)
{
    bytes::Pool pool = mGood;
    pool.version = 5;
    pool.userSignature = "ELSE"; // is not looked at any more
    Store(pool);
    EXPECT_TRUE(RaisesNeedUpgrade([&] { Load(); }, 6, 5, mFolder.Path("a.sim"), kSource, 86));
}

TEST_F(PoolLoad, RefusesANewerVersion)
{
    bytes::Pool pool = mGood;
    pool.version = 7;
    Store(pool);
    EXPECT_TRUE(RaisesNeedUpgrade([&] { Load(); }, 6, 7, mFolder.Path("a.sim"), kSource, 86));
}

TEST_F(PoolLoad, WidensTheVersionAsASignedByte)
{
    bytes::Pool pool = mGood;
    pool.version = 0xFF;
    Store(pool);
    EXPECT_TRUE(
        RaisesNeedUpgrade([&] { Load(); }, 6, 4294967295, mFolder.Path("a.sim"), kSource, 86));
}

TEST_F(PoolLoad, CutsALongFileNameToTheTextOfTheException)
{
    bytes::Pool pool = mOuter;
    pool.version = 7;
    mFolder.Write("a.sim", pool.Bytes());
    std::string name = mFolder.Path("");
    while (name.size() < 1100) {
        name += "./";
    }
    name += "a.sim";
    EXPECT_TRUE(RaisesNeedUpgrade([&] { mFile.OpenRead(name.c_str()); }, 6, 7, name.substr(0, 1023),
                                  kSource, 86));
}

TEST_F(PoolLoad, RefusesAnotherUserSignature)
{
    for (const char* other : {"TESS", "tEST", "ELSE"}) {
        VUKSimRpm_DocumentImpl document("TEST");
        VUKSimRpm_FileImpl file(document);
        bytes::Pool pool = mGood;
        pool.userSignature = other;
        pool.count = 99; // is not looked at any more
        const VUKString name = mFolder.Write("b.sim", pool.Bytes());
        EXPECT_TRUE(Raises<VUKSimExcUserSigMismatch>([&] { file.OpenRead(name); }, kSource, 89));
    }
}

TEST_F(PoolLoad, RefusesADirectoryThatTheFileDoesNotHold)
{
    Store(mGood.Bytes().substr(0, 48 + 63)); // one byte is missing
    EXPECT_TRUE(Raises<VUKSimExcCorruptDirectory>([&] { Load(); }, kSource, 106));
}

TEST_F(PoolLoad, RefusesOneEntryWithFewerThan32Bytes)
{
    VUKSimRpm_DocumentImpl document("TEST");
    VUKSimRpm_FileImpl file(document);
    const bytes::Pool pool{.count = 1, .data = std::string(31, 'u')};
    const VUKString name = mFolder.Write("b.sim", pool.Bytes());
    EXPECT_TRUE(Raises<VUKSimExcCorruptDirectory>([&] { file.OpenRead(name); }, kSource, 106));
}

TEST_F(PoolLoad, RefusesADirectoryBehindTheGivenEnd)
{
    Store(mGood); // its header ends at 128, its directory at 192
    EXPECT_TRUE(Raises<VUKSimExcCorruptDirectory>([&] { mPool.Load(191); }, kSource, 106));
    EXPECT_TRUE(Raises<VUKSimExcCorruptDirectory>([&] { mPool.Load(127); }, kSource, 106));
    mPool.Load(192);
    EXPECT_EQ(mPool.HeaderSize(), 112U);
}

TEST_F(PoolLoad, RefusesADirectoryThatTheFileHasLostMeanwhile)
{
    bytes::Pool pool = mGood;
    pool.count = 3; // 96 bytes from 128 on, in a file of 200
    Store(pool);
    EXPECT_TRUE(Raises<VUKSimExcCorruptDirectory>([&] { mPool.Load(224); }, kSource, 106));
    EXPECT_EQ(mPool.Directory()->Length(), 0);
}

TEST_F(PoolLoad, RefusesADirectoryThatIsThereButLeavesNoHeaderSizeOf32Bits)
{
    const bytes::Pool pool{.count = 0x7FFFFFF}; // 2^32 - 32 bytes, and 48
    VUKSimRpm_DocumentImpl document("TEST");
    VUKSimRpm_FileImpl file(document);
    const VUKString name = mFolder.Write("b.sim", pool.Header());
    std::filesystem::resize_file(mFolder.Path("b.sim"), 5'000'000'000); // a hole
    const CountedMemory memory;
    EXPECT_TRUE(Raises<VUKSimExcCorruptDirectory>([&] { file.OpenRead(name); }, kSource, 106));
    EXPECT_LT(memory.Peak(), 10000U);
}

TEST_F(PoolLoad, StaysEmptyWhenItsHeaderIsRefused)
{
    bytes::Pool pool = mGood;
    pool.userSignature = "ELSE";
    Store(pool);
    EXPECT_TRUE(Raises<VUKSimExcUserSigMismatch>([&] { Load(); }, kSource, 89));
    EXPECT_EQ(mPool.Length(), 0U);
    EXPECT_EQ(mPool.HeaderSize(), 0U);
    EXPECT_EQ(Map()->Length(), 1); // of `a`
}

TEST_F(PoolLoad, StaysHalfFilledWhenItsDirectoryIsBad)
{
    bytes::Pool pool = mGood;
    pool.count = 99;
    Store(pool);
    EXPECT_TRUE(Raises<VUKSimExcCorruptDirectory>([&] { Load(); }, kSource, 106));
    EXPECT_EQ(mPool.Length(), 120U);
    EXPECT_EQ(mPool.HeaderSize(), 0U);
    EXPECT_EQ(mPool.Directory()->Length(), 0);
}

TEST_F(PoolLoad, AllocatesNothingForADirectoryThatCannotBeThere)
{
    for (const std::uint32_t count : {3U, 0xFFFFFFFFU}) { // one more than fits; all there is
        VUKSimRpm_DocumentImpl document("TEST");
        VUKSimRpm_FileImpl file(document);
        bytes::Pool pool = mGood;
        pool.count = count;
        file.OpenRead(mFolder.Write("a.sim", mOuter.Bytes() + pool.Bytes()));
        VUKSimRpm_PoolImpl inner(
            file, VUKBasMakeShared<VUKSimRpm_PoolDirectoryImpl>(document.PoolMap()), 80);
        const CountedMemory memory;
        EXPECT_TRUE(Raises<VUKSimExcCorruptDirectory>([&] { inner.Load(200); }, kSource, 106));
        EXPECT_EQ(memory.Allocations(), 0) << "count " << count;
    }
}

TEST_F(PoolLoad, RefusesAnOpenPoolAndKeepsItsSlot)
{
    bytes::Pool pool = mGood;
    pool.directory[0] = bytes::Uuid('a');
    Store(pool);
    EXPECT_TRUE(Raises<VUKSimExcPoolAlreadyInDoc>(
        [&] { Load(); }, "VUKSim/VUKSimRpm.m/src/VUKSimRpm_PoolDirectoryImpl", 75));
    EXPECT_EQ(PoolIn(0), mFile.Pool(0).lock());
}
