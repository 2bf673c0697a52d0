// Files that are damaged by hand, and what comes out of them, written by hand too.
#include "Salvage.h"

#include "Bytes.h"
#include "TemporaryFolder.h"
#include "VUKSimRpm_Document.h"
#include "VUKSimRpm_File.h"
#include "VUKSimRpm_Pool.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

using namespace simpool;

namespace {

using bytes::Pool;
using testing::ElementsAre;
using testing::HasSubstr;

// Three pools of 90, 95 and 87 bytes.
Pool First()
{
    return {.length = "0000000000000090", .directory = {bytes::Uuid('a')}, .data = "0123456789"};
}
Pool Second()
{
    return {
        .length = "0000000000000095", .directory = {bytes::Uuid('b')}, .data = "second of them."};
}
Pool Third()
{
    return {.directory = {bytes::Uuid('c')}, .data = "the end"};
}

class Salvaging : public testing::Test
{
protected:
    // Salvages `damaged` and returns the new file, which the library must open.
    std::string Out(const std::string& damaged, SalvageOptions options = {})
    {
        mFolder.Write("bad.sim", damaged);
        mSalvage = SalvageFile(mFolder.Path("bad.sim"), mFolder.Path("new.sim"), options,
                               NewFile::Existing::Replace);
        EXPECT_EQ(mFolder.Read("bad.sim"), damaged);
        if (!mFolder.Has("new.sim")) {
            return "";
        }
        VUKSimRpm_Document document("TEST");
        const auto file = document.AddFile(mFolder.File("new.sim"), VUKSimRpm_Document::Read);
        EXPECT_EQ(file.PoolCount(), mSalvage.pools.size());
        return mFolder.Read("new.sim");
    }

    void ExpectBytes(std::uint64_t inPools, std::uint64_t inGaps, std::uint64_t lost) const
    {
        EXPECT_EQ(mSalvage.BytesInPools(), inPools);
        EXPECT_EQ(mSalvage.BytesInGaps(), inGaps);
        EXPECT_EQ(mSalvage.BytesLost(), lost);
    }

    TemporaryFolder mFolder;
    Salvage mSalvage = {};
};
} // namespace

TEST_F(Salvaging, CopiesAWholeFileByteForByte)
{
    const std::string whole = bytes::File({First(), Second(), Third()});
    EXPECT_EQ(Out(whole), whole);
    EXPECT_TRUE(mSalvage.WasWhole());
    ExpectBytes(272, 0, 0);
}

TEST_F(Salvaging, SavesADestroyedPoolAsTailOfTheOneInFront)
{
    std::string damaged = bytes::File({First(), Second(), Third()});
    damaged.replace(90, 20, 20, 'X'); // signature, version, user signature: all gone
    Pool first = First();
    first.length = "0000000000000185";
    first.data = damaged.substr(80, 105);
    EXPECT_EQ(Out(damaged), bytes::File({first, Third()}));
    ASSERT_EQ(mSalvage.pools.size(), 2U);
    EXPECT_EQ(mSalvage.pools[0].tailLength, 95U);
    EXPECT_THAT(mSalvage.pools[0].repairs, ElementsAre(Repair::Length));
    ASSERT_EQ(mSalvage.gaps.size(), 1U);
    EXPECT_EQ(mSalvage.gaps[0].position, 90U);
    EXPECT_EQ(mSalvage.gaps[0].length, 95U);
    ExpectBytes(177, 95, 0);
}

TEST_F(Salvaging, LeavesGapsOutWhenAsked)
{
    std::string damaged = bytes::File({First(), Second(), Third()});
    damaged.replace(90, 20, 20, 'X');
    EXPECT_EQ(Out(damaged, {.cutGaps = true}), bytes::File({First(), Third()}));
    ExpectBytes(177, 95, 0);
}

TEST_F(Salvaging, MakesAPoolOfWhatLiesInFrontOfTheFirst)
{
    std::string damaged = bytes::File({First(), Third()});
    damaged.replace(0, 20, 20, 'X');
    const std::string out = Out(damaged);
    Pool made{.length = "0000000000000170", .data = damaged.substr(0, 90)};
    ASSERT_EQ(out.size(), 257U);
    made.directory = {out.substr(48, 32)};
    EXPECT_EQ(out, bytes::File({made, Third()}));
    EXPECT_EQ(out[60], '4'); // marked as a random UUID
    EXPECT_EQ(out[64], '8');
    EXPECT_EQ(Out(damaged), out); // and the same in every run
    EXPECT_THAT(mSalvage.pools[0].repairs, ElementsAre(Repair::MadeHeader));
    ExpectBytes(87, 90, 0);
}

TEST_F(Salvaging, ComputesALostLengthFromTheNextHeader)
{
    for (const char* length :
         {"00000000000000x0", "0000000000000010", "0000000009999999", "0000000000000090"}) {
        Pool second = Second();
        second.length = length;
        SCOPED_TRACE(length);
        EXPECT_EQ(Out(bytes::File({First(), second, Third()})),
                  bytes::File({First(), Second(), Third()}));
        ExpectBytes(272 - (length == std::string("0000000000000090") ? 5U : 0U),
                    length == std::string("0000000000000090") ? 5U : 0U, 0);
    }
}

TEST_F(Salvaging, BelievesANextPoolMoreThanALengthThatSwallowsIt)
{
    Pool first = First();
    first.length = "0000000000000120"; // into the second pool's header
    EXPECT_EQ(Out(bytes::File({first, Second(), Third()})),
              bytes::File({First(), Second(), Third()}));
    EXPECT_THAT(mSalvage.pools[0].repairs, ElementsAre(Repair::Length));
}

TEST_F(Salvaging, KeepsAPoolWholeWhoseDataHoldAPool)
{
    Pool first = First();
    first.data = bytes::File({Second()});
    first.length = "0000000000000175";
    const std::string whole = bytes::File({first, Third()});
    EXPECT_EQ(Out(whole), whole);
    EXPECT_EQ(Out(whole, {.split = true}), whole); // the chain is sound
}

TEST_F(Salvaging, TellsWhatIsLostBehindTheEnd)
{
    Pool second = Second();
    second.length = "0000000000000100"; // five more than there are
    Pool mended = Second();
    mended.length = "0000000000000000";
    EXPECT_EQ(Out(bytes::File({First(), second})), bytes::File({First(), mended}));
    ExpectBytes(185, 0, 5);
}

TEST_F(Salvaging, MendsOneWrongFieldOfAHeader)
{
    const std::string whole = bytes::File({First(), Second(), Third()});
    const auto withByte = [&](std::size_t position, char byte) {
        std::string damaged = whole;
        damaged[position] = byte;
        return damaged;
    };
    EXPECT_EQ(Out(withByte(91, 's')), whole);
    EXPECT_THAT(mSalvage.pools[1].repairs, ElementsAre(Repair::Signature));
    EXPECT_EQ(Out(withByte(0, 'X')), whole);
    EXPECT_THAT(mSalvage.pools[0].repairs, ElementsAre(Repair::Signature));
    EXPECT_EQ(Out(withByte(98, 7)), whole);
    EXPECT_THAT(mSalvage.pools[1].repairs, ElementsAre(Repair::Version));
    EXPECT_EQ(Out(withByte(106, 'X')), whole);
    EXPECT_THAT(mSalvage.pools[1].repairs, ElementsAre(Repair::OtherUserSignature));
    EXPECT_EQ(Out(withByte(136, 9)), whole);
    EXPECT_THAT(mSalvage.pools[1].repairs, ElementsAre(Repair::DirectoryCount));
    ExpectBytes(272, 0, 0);
}

TEST_F(Salvaging, DoesNotMendAFileOfAnotherVersion)
{
    Pool old = Third();
    old.version = 5;
    EXPECT_EQ(Out(old.Bytes()), "");
    EXPECT_TRUE(mSalvage.pools.empty());
    EXPECT_FALSE(mFolder.Has("new.sim"));
}

TEST_F(Salvaging, GivesTheSecondOfTwoEqualUuidsAnother)
{
    Pool second = Second();
    second.directory = {bytes::Uuid('a')};
    const std::string out = Out(bytes::File({First(), second, Third()}));
    ASSERT_EQ(out.size(), 272U);
    second.directory = {out.substr(138, 32)};
    EXPECT_NE(second.directory[0], bytes::Uuid('a'));
    EXPECT_EQ(out, bytes::File({First(), second, Third()}));
    EXPECT_THAT(mSalvage.pools[1].repairs, ElementsAre(Repair::DuplicateUuid));
}

TEST_F(Salvaging, SavesAHeaderThatWasNeverCompleted)
{
    const std::string torn = Third().Bytes().substr(0, 60);
    Pool first = First();
    first.length = "0000000000000000";
    first.data += torn;
    EXPECT_EQ(Out(First().Bytes() + torn), first.Bytes());
    ExpectBytes(90, 60, 0);
    EXPECT_EQ(Out(First().Bytes() + torn, {.cutGaps = true}), First().Bytes());
}

TEST_F(Salvaging, TakesALaterPoolOutOfAnEndlessOneOnlyWhenAsked)
{
    Pool first = First();
    first.length = "0000000000000000"; // a crash came before its length was written
    const std::string longer = bytes::File({first, Third()});
    EXPECT_EQ(Out(longer), longer);
    EXPECT_TRUE(mSalvage.WasWhole());
    EXPECT_EQ(Out(longer, {.split = true}), bytes::File({First(), Third()}));
    EXPECT_THAT(mSalvage.pools[0].repairs, ElementsAre(Repair::Length));
}

TEST_F(Salvaging, FindsNothingWhereNothingIs)
{
    EXPECT_EQ(Out(std::string(5000, 'x')), "");
    EXPECT_EQ(Out(""), "");
    EXPECT_FALSE(mFolder.Has("new.sim"));
}

TEST_F(Salvaging, MakesAFileThatOpensOfEveryFileWithAnyByteChanged)
{
    const std::string whole = bytes::File({First(), Second(), Third()});
    int opened = 0;
    for (std::size_t i = 0; i < whole.size(); ++i) {
        for (const char mask : {'\x01', '\x80'}) {
            std::string damaged = whole;
            damaged[i] = static_cast<char>(damaged[i] ^ mask);
            SCOPED_TRACE(i);
            const std::string out = Out(damaged); // opened there with every pool
            // All data are in it but those that were changed themselves.
            if (i < 80 || i >= 90) {
                EXPECT_THAT(out, HasSubstr("0123456789"));
            }
            if (i < 170 || i >= 185) {
                EXPECT_THAT(out, HasSubstr("second of them."));
            }
            if (i < 265) {
                EXPECT_THAT(out, HasSubstr("the end"));
            }
            EXPECT_EQ(mSalvage.BytesInPools() + mSalvage.BytesInGaps(), 272U);
            opened += out.empty() ? 0 : 1;
        }
    }
    EXPECT_EQ(opened, 544);
}
