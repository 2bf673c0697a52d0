// copy, merge, repack and new: what they write, and that the library finds all references in it.
#include "RunSimpool.h"

#include "Bytes.h"
#include "TemporaryFolder.h"

#include "VUKSimRpm_BStreamReadLocator.h"
#include "VUKSimRpm_Document.h"
#include "VUKSimRpm_File.h"
#include "VUKSimRpm_Pool.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fcntl.h>
#include <string>
#include <unistd.h>

namespace {

using testing::HasSubstr;

class PoolCopying : public testing::Test
{
protected:
    TemporaryFolder mFolder;

    [[nodiscard]] std::string Path(const std::string& name) const { return mFolder.Path(name); }
};

// A locator, as data has it: offset, then the index into the directory of the pool it lies in.
std::string Locator(std::uint64_t offset, std::uint32_t index)
{
    return bytes::LongWord(offset) + bytes::Word(index);
}

// Pool a holds a text, pool b a locator to its third letter.
bytes::Pool PoolA()
{
    return {.length = "0000000000000085", .directory = {bytes::Uuid('a')}, .data = "plate"};
}
bytes::Pool PoolB()
{
    return {.directory = {bytes::Uuid('b'), bytes::Uuid('a')}, .data = Locator(2, 1)};
}

// What the locator at the beginning of pool `number` leads to: `length` bytes.
std::string Followed(const VUKSimRpm_File& file, unsigned int number, unsigned long length)
{
    VUKSimRpm_BStreamReadLocator stream(file.Pool(number).Start(), 0, 64);
    VUKSimRpm_Locator target;
    target.InternalizeImpl(stream);
    std::string text(length, '?');
    text.resize(target.Read(length, text.data()));
    return text;
}
} // namespace

TEST_F(PoolCopying, MergeFreezesAllPoolsButTheLast)
{
    bytes::Pool a = PoolA();
    a.length = "0000000000000000";
    mFolder.Write("rank0.sim", a.Bytes());
    mFolder.Write("rank1.sim", PoolB().Bytes());
    const Ran ran =
        RunSimpool({"merge", Path("rank0.sim"), Path("rank1.sim"), "-o", Path("run.sim")});
    EXPECT_EQ(ran.exit, 0) << ran.err;
    EXPECT_THAT(ran.out, HasSubstr("2 pools of 2 files, 209 bytes, merged into"));
    EXPECT_THAT(ran.out, HasSubstr("references: 1 resolved, 0 to pools"));
    EXPECT_EQ(mFolder.Read("run.sim"), bytes::File({PoolA(), PoolB()}));
    EXPECT_EQ(mFolder.Count(), 3); // no temporary file is left
}

TEST_F(PoolCopying, MergeKeepsReferencesFromFileToFile)
{
    bytes::Pool a = PoolA();
    a.length = "0000000000000000";
    mFolder.Write("rank0.sim", PoolB().Bytes());
    mFolder.Write("rank1.sim", a.Bytes());
    ASSERT_EQ(
        RunSimpool({"merge", Path("rank0.sim"), Path("rank1.sim"), "-o", Path("run.sim")}).exit, 0);
    VUKSimRpm_Document document("TEST");
    const VUKSimRpm_File file = document.AddFile(mFolder.File("run.sim"), VUKSimRpm_Document::Read);
    ASSERT_EQ(file.PoolCount(), 2U);
    EXPECT_EQ(Followed(file, 0, 3), "ate");
}

TEST_F(PoolCopying, MergeWritesTheLengthOfAFrozenLastPoolAsZero)
{
    mFolder.Write("a.sim", PoolA().Bytes());
    ASSERT_EQ(RunSimpool({"merge", Path("a.sim"), "-o", Path("out.sim")}).exit, 0);
    bytes::Pool expected = PoolA();
    expected.length = "0000000000000000";
    EXPECT_EQ(mFolder.Read("out.sim"), expected.Bytes());
}

TEST_F(PoolCopying, MergeKeepsReservedWordsAndBytes)
{
    bytes::Pool odd = PoolA();
    odd.reserved = "1234567";
    odd.reserved1 = 77;
    odd.reserved2 = 88;
    mFolder.Write("a.sim", bytes::File({odd, PoolB()}));
    ASSERT_EQ(RunSimpool({"merge", Path("a.sim"), "-o", Path("out.sim")}).exit, 0);
    EXPECT_EQ(mFolder.Read("out.sim"), bytes::File({odd, PoolB()}));
}

TEST_F(PoolCopying, MergeRefusesAPoolThatTwoFilesHold)
{
    mFolder.Write("a.sim", bytes::File({PoolA(), PoolB()}));
    mFolder.Write("b.sim", PoolB().Bytes());
    const Ran ran = RunSimpool({"merge", Path("a.sim"), Path("b.sim"), "-o", Path("out.sim")});
    EXPECT_EQ(ran.exit, 2);
    EXPECT_THAT(ran.err, HasSubstr("pool 1 (" + bytes::Uuid('b') + ")"));
    EXPECT_THAT(ran.err, HasSubstr("are the same"));
    EXPECT_EQ(mFolder.Count(), 2);
}

TEST_F(PoolCopying, MergeRefusesAnotherUserSignature)
{
    bytes::Pool other = PoolB();
    other.userSignature = "ELSE";
    mFolder.Write("a.sim", PoolA().Bytes());
    mFolder.Write("b.sim", other.Bytes());
    const Ran ran = RunSimpool({"merge", Path("a.sim"), Path("b.sim"), "-o", Path("out.sim")});
    EXPECT_EQ(ran.exit, 2);
    EXPECT_THAT(ran.err, HasSubstr("ELSE"));
    EXPECT_THAT(ran.err, HasSubstr("TEST"));
    EXPECT_FALSE(mFolder.Has("out.sim"));
}

TEST_F(PoolCopying, MergeRefusesADamagedFile)
{
    mFolder.Write("a.sim", PoolA().Bytes() + "rubbish");
    const Ran ran = RunSimpool({"merge", Path("a.sim"), "-o", Path("out.sim")});
    EXPECT_EQ(ran.exit, 2);
    EXPECT_THAT(ran.err, HasSubstr("damaged at byte 85"));
    EXPECT_FALSE(mFolder.Has("out.sim"));
}

TEST_F(PoolCopying, MergeRefusesAPoolThatItsFileDoesNotHoldWhole)
{
    bytes::Pool cut = PoolA();
    cut.length = "0000000000000100";
    mFolder.Write("a.sim", cut.Bytes());
    const Ran ran = RunSimpool({"merge", Path("a.sim"), "-o", Path("out.sim")});
    EXPECT_EQ(ran.exit, 2);
    EXPECT_THAT(ran.err, HasSubstr("claims 100 bytes, but its file ends after 85 of them"));
}

TEST_F(PoolCopying, NothingIsWrittenOverAnInputNotEvenByForce)
{
    mFolder.Write("a.sim", PoolA().Bytes());
    for (const std::string command : {"merge", "repack"}) {
        const Ran ran = RunSimpool({command, Path("a.sim"), "-o", Path("a.sim"), "--force"});
        EXPECT_EQ(ran.exit, 2) << command;
        EXPECT_THAT(ran.err, HasSubstr("cannot be written")) << command;
    }
    EXPECT_EQ(mFolder.Read("a.sim"), PoolA().Bytes());
}

TEST_F(PoolCopying, AnExistingOutputStaysUnlessForced)
{
    mFolder.Write("a.sim", PoolB().Bytes());
    mFolder.Write("out.sim", "precious");
    EXPECT_EQ(RunSimpool({"merge", Path("a.sim"), "-o", Path("out.sim")}).exit, 2);
    EXPECT_EQ(mFolder.Read("out.sim"), "precious");
    EXPECT_EQ(RunSimpool({"merge", Path("a.sim"), "-o", Path("out.sim"), "--force"}).exit, 0);
    EXPECT_EQ(mFolder.Read("out.sim"), PoolB().Bytes());
}

TEST_F(PoolCopying, CopyMakesAFileOfTheChosenPools)
{
    mFolder.Write("a.sim", bytes::File({PoolA(), PoolB()}));
    const Ran ran = RunSimpool({"copy", Path("a.sim"), "bbbb", "0", "-o", Path("out.sim")});
    EXPECT_EQ(ran.exit, 0) << ran.err;
    bytes::Pool first = PoolB();
    first.length = "0000000000000124";
    bytes::Pool last = PoolA();
    last.length = "0000000000000000";
    EXPECT_EQ(mFolder.Read("out.sim"), bytes::File({first, last}));
}

TEST_F(PoolCopying, CopyPutsPoolsBehindThoseOfTheOutput)
{
    bytes::Pool a = PoolA();
    a.length = "0000000000000000";
    mFolder.Write("a.sim", PoolB().Bytes());
    mFolder.Write("out.sim", a.Bytes());
    const Ran ran = RunSimpool({"copy", Path("a.sim"), "-o", Path("out.sim")});
    EXPECT_EQ(ran.exit, 0) << ran.err;
    EXPECT_THAT(ran.out, HasSubstr("1 pool, 124 bytes, copied into"));
    EXPECT_EQ(mFolder.Read("out.sim"), bytes::File({PoolA(), PoolB()}));
    EXPECT_EQ(mFolder.Read("a.sim"), PoolB().Bytes());
}

TEST_F(PoolCopying, CopyReplacesAnEmptyLastPoolAsTheLibraryDoes)
{
    mFolder.Write("a.sim", PoolB().Bytes());
    mFolder.Write("out.sim", bytes::Pool{.directory = {bytes::Uuid('e')}}.Bytes());
    ASSERT_EQ(RunSimpool({"copy", Path("a.sim"), "-o", Path("out.sim")}).exit, 0);
    EXPECT_EQ(mFolder.Read("out.sim"), PoolB().Bytes());
}

TEST_F(PoolCopying, CopyRefusesAPoolThatTheOutputHasAlready)
{
    mFolder.Write("a.sim", PoolB().Bytes());
    mFolder.Write("out.sim", bytes::File({PoolA(), PoolB()}));
    const Ran ran = RunSimpool({"copy", Path("a.sim"), "-o", Path("out.sim")});
    EXPECT_EQ(ran.exit, 2);
    EXPECT_THAT(ran.err, HasSubstr("are the same"));
    EXPECT_EQ(mFolder.Read("out.sim"), bytes::File({PoolA(), PoolB()}));
}

TEST_F(PoolCopying, CopyTakesAWholePoolOutOfADamagedFile)
{
    mFolder.Write("a.sim", PoolA().Bytes() + "rubbish");
    ASSERT_EQ(RunSimpool({"copy", Path("a.sim"), "0", "-o", Path("out.sim")}).exit, 0);
    bytes::Pool expected = PoolA();
    expected.length = "0000000000000000";
    EXPECT_EQ(mFolder.Read("out.sim"), expected.Bytes());
    EXPECT_EQ(RunSimpool({"copy", Path("a.sim"), "-o", Path("all.sim")}).exit, 2);
}

TEST_F(PoolCopying, ADiskWithTooLittleRoomIsToldBeforeTheFirstByte)
{
    // A file of 8 TiB, almost all of it a hole: more than the disk has room for.
    mFolder.Write("a.sim", PoolB().Bytes());
    const int descriptor = open(Path("a.sim").c_str(), O_WRONLY | O_CLOEXEC);
    const int failure = ftruncate(descriptor, off_t{1} << 43);
    close(descriptor);
    ASSERT_EQ(failure, 0);
    const Ran ran = RunSimpool({"copy", Path("a.sim"), "-o", Path("out.sim")});
    EXPECT_EQ(ran.exit, 2);
    EXPECT_THAT(ran.err, HasSubstr("8,796,093,022,208 bytes"));
    EXPECT_THAT(ran.err, HasSubstr("are free"));
    EXPECT_EQ(mFolder.Count(), 1);
}

TEST_F(PoolCopying, RepackDropsWhatLiesBehindTheLastPool)
{
    mFolder.Write("a.sim", bytes::File({PoolA()}) + "left by a writer that was interrupted");
    const Ran ran = RunSimpool({"repack", Path("a.sim"), "-o", Path("out.sim")});
    EXPECT_EQ(ran.exit, 0) << ran.err;
    EXPECT_THAT(ran.out, HasSubstr("left out: 37 bytes behind the last pool"));
    EXPECT_THAT(ran.out, HasSubstr("37 bytes saved: 85 bytes instead of 122 bytes"));
    bytes::Pool expected = PoolA();
    expected.length = "0000000000000000";
    EXPECT_EQ(mFolder.Read("out.sim"), expected.Bytes());
}

TEST_F(PoolCopying, RepackRefusesDamageInFrontOfAnotherPool)
{
    mFolder.Write("a.sim", PoolA().Bytes() + "rubbish" + PoolB().Bytes());
    const Ran ran = RunSimpool({"repack", Path("a.sim"), "-o", Path("out.sim")});
    EXPECT_EQ(ran.exit, 2);
    EXPECT_THAT(ran.err, HasSubstr("salvage"));
    EXPECT_FALSE(mFolder.Has("out.sim"));
}

TEST_F(PoolCopying, RepackDropsPoolsThatNoRootReaches)
{
    const bytes::Pool lonely{
        .length = "0000000000000086", .directory = {bytes::Uuid('c')}, .data = "unused"};
    mFolder.Write("a.sim", bytes::File({PoolA(), lonely, PoolB()}));
    const Ran ran = RunSimpool({"repack", Path("a.sim"), "--root", "2", "-o", Path("out.sim")});
    EXPECT_EQ(ran.exit, 0) << ran.err;
    EXPECT_THAT(ran.out, HasSubstr("left out: pool 1 (" + bytes::Uuid('c') + "), 86 bytes"));
    EXPECT_THAT(ran.out, HasSubstr("86 bytes saved: 209 bytes instead of 295 bytes"));
    EXPECT_EQ(mFolder.Read("out.sim"), bytes::File({PoolA(), PoolB()}));
}

TEST_F(PoolCopying, RepackFollowsReferencesOfReferences)
{
    const bytes::Pool root{.directory = {bytes::Uuid('r'), bytes::Uuid('b')}};
    bytes::Pool b = PoolB();
    b.length = "0000000000000124";
    mFolder.Write("a.sim", bytes::File({PoolA(), b, root}));
    const Ran ran = RunSimpool({"repack", Path("a.sim"), "--root", "rrrr", "-o", Path("out.sim")});
    EXPECT_EQ(ran.exit, 0) << ran.err;
    EXPECT_THAT(ran.out, HasSubstr("0 bytes saved"));
    EXPECT_EQ(mFolder.Read("out.sim"), bytes::File({PoolA(), b, root}));
    VUKSimRpm_Document document("TEST");
    const VUKSimRpm_File file = document.AddFile(mFolder.File("out.sim"), VUKSimRpm_Document::Read);
    EXPECT_EQ(Followed(file, 1, 3), "ate");
}

TEST_F(PoolCopying, RepackCutsZerosOnlyWhenToldTo)
{
    bytes::Pool a = PoolA();
    a.length = "0000000000000000";
    a.data = "0123456789abcdefg" + bytes::Zeros(100); // 117 bytes
    mFolder.Write("a.sim", a.Bytes());
    ASSERT_EQ(RunSimpool({"repack", Path("a.sim"), "-o", Path("same.sim")}).exit, 0);
    EXPECT_EQ(mFolder.Read("same.sim"), a.Bytes());
    const Ran ran = RunSimpool({"repack", Path("a.sim"), "--zeros", "-o", Path("cut.sim")});
    EXPECT_THAT(ran.out, HasSubstr("left out: 85 bytes of zeros"));
    a.data = "0123456789abcdefg" + bytes::Zeros(15); // up to a multiple of 16
    EXPECT_EQ(mFolder.Read("cut.sim"), a.Bytes());
}

TEST_F(PoolCopying, NewMakesAFileAsTheLibraryWould)
{
    const std::string uuid = "00112233445546778899aabbccddeeff";
    const Ran ran =
        RunSimpool({"new", "-o", Path("new.sim"), "--signature", "TEST", "--uuid", uuid});
    EXPECT_EQ(ran.exit, 0) << ran.err;
    EXPECT_EQ(mFolder.Read("new.sim"), bytes::Pool{.directory = {uuid}}.Bytes());
    VUKSimRpm_Document document("TEST");
    VUKSimRpm_File file = document.AddFile(mFolder.File("new.sim"), VUKSimRpm_Document::Update);
    EXPECT_EQ(file.Allocate(8).Null(), false);
}

TEST_F(PoolCopying, NewGivesEachPoolTheDataOfAFile)
{
    mFolder.Write("mesh.bin", "nodes");
    mFolder.Write("loads.bin", Locator(0, 1));
    const Ran ran = RunSimpool({"new", "-o", Path("new.sim"), "--signature", "TEST", "--data",
                                Path("mesh.bin"), "--data", Path("loads.bin"), "--uuid",
                                bytes::Uuid('a'), "--uuid", bytes::Uuid('b')});
    EXPECT_EQ(ran.exit, 0) << ran.err;
    bytes::Pool mesh = PoolA();
    mesh.data = "nodes";
    bytes::Pool loads = PoolB();
    loads.data = Locator(0, 1);
    EXPECT_EQ(mFolder.Read("new.sim"), bytes::File({mesh, loads}));
    VUKSimRpm_Document document("TEST");
    const VUKSimRpm_File file = document.AddFile(mFolder.File("new.sim"), VUKSimRpm_Document::Read);
    EXPECT_EQ(Followed(file, 1, 5), "nodes");
}

TEST_F(PoolCopying, NewMakesAFreshUuidForEveryPool)
{
    mFolder.Write("x.bin", "x");
    ASSERT_EQ(RunSimpool({"new", "-o", Path("new.sim"), "--signature", "TEST", "--data",
                          Path("x.bin"), "--data", Path("x.bin")})
                  .exit,
              0);
    const std::string content = mFolder.Read("new.sim");
    ASSERT_EQ(content.size(), 81U + 113U);
    const std::string first = content.substr(48, 32);
    EXPECT_EQ(first.find_first_not_of("0123456789abcdef"), std::string::npos);
    EXPECT_EQ(first[12], '4');
    EXPECT_NE(first, content.substr(129, 32));
    EXPECT_EQ(first, content.substr(161, 32));
}

TEST_F(PoolCopying, NewRefusesSignaturesAndUuidsOfOtherLengths)
{
    EXPECT_EQ(RunSimpool({"new", "-o", Path("n.sim"), "--signature", "TESTS"}).exit, 2);
    EXPECT_EQ(RunSimpool({"new", "-o", Path("n.sim"), "--signature", "TEST", "--uuid", "abc"}).exit,
              2);
    EXPECT_EQ(RunSimpool({"new", "-o", Path("n.sim"), "--signature", "TEST", "--uuid",
                          bytes::Uuid('a'), "--uuid", bytes::Uuid('b')})
                  .exit,
              2);
    EXPECT_EQ(mFolder.Count(), 0);
}

TEST_F(PoolCopying, NewTakesASignatureOfBytesThatCannotBeTyped)
{
    ASSERT_EQ(RunSimpool({"new", "-o", Path("n.sim"), "--signature", "A\\x00\\xff\\\\"}).exit, 0);
    EXPECT_EQ(mFolder.Read("n.sim").substr(16, 4), std::string("A\0\xff\\", 4));
}
