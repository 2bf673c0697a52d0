// The judge sees what is broken: honest images, changed by hand, are found out.
#include "ImageJudge.h"
#include "WatchedStore.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

namespace {

using testing::Contains;
using testing::HasSubstr;
using testing::IsEmpty;

// A pool of 4 promised bytes from byte 80 on; then one from byte 84 on, of 6 written bytes from
// byte 164 on, made durable too.
class JudgedStore : public testing::Test
{
protected:
    JudgedStore()
    {
        mStore.Create("a.sim", "a");
        mStore.Append("a.sim", 4);
        mStore.NewPool("a.sim", "b", true);
        mStore.Flush("a.sim");
        mStore.Append("a.sim", 6);
        mImage = {mStore.Log().At(Moment()), CrashModel::PowerLost, Moment(), ""};
    }

    [[nodiscard]] std::size_t Moment() const { return mStore.Log().Events().size(); }
    std::string& Bytes() { return mImage.files[0].bytes; }
    Outcome Judge() { return ImageJudge(mStore.Deeds(), mStore.Log()).Judge(mImage); }

    WatchedStore mStore;
    CrashImage mImage;
};
} // namespace

TEST_F(JudgedStore, PassesAsItIs)
{
    const Outcome outcome = Judge();
    EXPECT_THAT(outcome.broken, IsEmpty());
    EXPECT_FALSE(outcome.inPoolCall);
    EXPECT_FALSE(outcome.refused);
    EXPECT_EQ(Bytes().size(), 170U);
}

TEST_F(JudgedStore, MayMissWhatWasNotFlushed)
{
    Bytes().resize(166);
    Bytes()[165] = '\0';
    EXPECT_THAT(Judge().broken, IsEmpty());
}

TEST_F(JudgedStore, MayNotMissAPromisedByte)
{
    Bytes()[82] = '\0';
    EXPECT_THAT(Judge().broken, Contains(HasSubstr("P1")));
}

TEST_F(JudgedStore, MayNotHoldBytesThatNobodyWrote)
{
    Bytes()[164] = '\xEE';
    EXPECT_THAT(Judge().broken, Contains(HasSubstr("P3")));
}

TEST_F(JudgedStore, MayMissNothingThatWasWrittenWhenTheProcessWasKilled)
{
    mImage.model = CrashModel::Killed;
    EXPECT_THAT(Judge().broken, IsEmpty());
    Bytes()[165] = '\0';
    EXPECT_THAT(Judge().broken, Contains(HasSubstr("P1")));
}

TEST_F(JudgedStore, MayNotBeRefused)
{
    Bytes()[84] = 'X'; // the signature of the second pool
    const Outcome outcome = Judge();
    EXPECT_TRUE(outcome.refused);
    EXPECT_EQ(outcome.refusedBy, "VUKSimExcNotSimFile");
    EXPECT_THAT(outcome.broken, Contains(HasSubstr("P2")));
}

TEST_F(JudgedStore, MayNotLoseAPool)
{
    Bytes().replace(20, 16, "0000000000000000"); // the first reaches over the second
    EXPECT_THAT(Judge().broken, Contains(HasSubstr("is gone")));
}

TEST_F(JudgedStore, MayNotHoldAStrangePool)
{
    Bytes()[84 + 48] = 'X'; // the UUID of the second
    EXPECT_THAT(Judge().broken, Contains(HasSubstr("an unknown pool")));
}

TEST_F(JudgedStore, MayNotHaveAPoolBehindItsEnd)
{
    Bytes().replace(84 + 20, 16, "0000000000000087");
    EXPECT_THAT(Judge().broken, Contains(HasSubstr("P3: a pool leads behind")));
}

// The second pool's header is beyond repair, so that its bytes are found in the first one.
TEST_F(JudgedStore, MayNotHaveLostWrittenBytesOnceItIsSalvaged)
{
    mImage.model = CrashModel::Killed;
    Bytes().replace(84, 80, std::string(80, 'X'));
    EXPECT_THAT(Judge().broken,
                Contains("P4: 38 bytes from position 132 are not what they were once salvaged"));
}

TEST_F(JudgedStore, MayNotBeBeyondSalvaging)
{
    Bytes().assign(170, 'X');
    EXPECT_THAT(Judge().broken, Contains("P4: no pool was salvaged"));
}

TEST_F(JudgedStore, MayNotBeMissing)
{
    mImage.files[0] = {};
    EXPECT_THAT(Judge().broken, Contains(HasSubstr("is gone")));
}

// Its name, made up by the system, is that of the log's second file.
TEST_F(JudgedStore, MayMissATemporaryFileOnlyFromItsCloseOn)
{
    const std::string name = mStore.CreateTemporary("scratch", "c");
    mStore.Append(name, 3);
    const std::size_t before = Moment();
    mStore.Close(name);
    for (const std::size_t moment : {before, before + 1, Moment()}) {
        mImage = {mStore.Log().At(moment), CrashModel::Killed, moment, ""};
        EXPECT_THAT(Judge().broken, IsEmpty());
        mImage.files.at(1) = {};
        const Outcome outcome = Judge();
        EXPECT_EQ(outcome.broken.empty(), moment > before) << moment;
    }
}

// At the moment when the second pool's header was written and nothing of it is durable.
TEST_F(JudgedStore, MayBeRefusedOrLongerWhileAPoolIsMade)
{
    const std::size_t moment = 5; // created, header, data, header with length, header
    mImage = {mStore.Log().At(moment), CrashModel::PowerLost, moment, ""};
    EXPECT_EQ(Bytes().size(), 164U);
    Outcome outcome = Judge();
    EXPECT_TRUE(outcome.inPoolCall);
    EXPECT_THAT(outcome.broken, IsEmpty());

    Bytes().replace(20, 16, "0000000000000000");
    outcome = Judge();
    EXPECT_TRUE(outcome.longer);
    EXPECT_THAT(outcome.broken, IsEmpty());

    Bytes().replace(20, 16, "0000000000000084");
    Bytes().resize(90);
    outcome = Judge();
    EXPECT_TRUE(outcome.refused);
    EXPECT_EQ(outcome.refusedBy, "VUKSimExcCorruptHeader");
    EXPECT_THAT(outcome.broken, IsEmpty());

    Bytes().resize(82);
    outcome = Judge();
    EXPECT_TRUE(outcome.pastEnd);
    EXPECT_THAT(outcome.broken, IsEmpty());
}
