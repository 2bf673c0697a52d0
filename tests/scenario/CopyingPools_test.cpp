// Pools are copied from one document into another; what they refer to is found there too.
#include "Records.h"

#include "Failures.h"
#include "OnePool.h"
#include "TemporaryFolder.h"
#include "VUKSimRpm_Document.h"
#include "VUKSimRpm_File.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

constexpr char kLocatorSource[] = "VUKSim/VUKSimRpm.m/src/VUKSimRpm_Locator";
constexpr char kFileSource[] = "VUKSim/VUKSimRpm.m/src/VUKSimRpm_FileImpl";

using Document = VUKSimRpm_Document;
using testing::ElementsAre;

// A source with the pools "mesh", "frame 1" and "frame 2", each linked to the one before, and a
// target that already has some pools of its own, so that slots differ.
class CopyingPools : public testing::Test
{
protected:
    CopyingPools()
    {
        VUKSimRpm_Locator previous;
        for (const char* const name : {"mesh", "frame 1", "frame 2"}) {
            from.NewPool(false, nullptr);
            previous = Append(from.Pool(), {name, previous});
        }
        for (const char* const name : {"x", "y"}) {
            to.NewPool(true, nullptr);
            Append(to.Pool(), {name, {}});
        }
    }

    TemporaryFolder folder;
    Document source{"TEST"};
    Document target{"TEST"};
    VUKSimRpm_File from = source.AddFile(folder.File("from.sim"), Document::Write);
    VUKSimRpm_File to = target.AddFile(folder.File("to.sim"), Document::Write);
};

std::string DataOf(const VUKSimRpm_Pool& pool)
{
    return ReadFrom(pool.Start(), pool.Length());
}
} // namespace

TEST_F(CopyingPools, KeepsReferencesTrueInTheOtherDocument)
{
    for (unsigned int i = 0; i < 3; ++i) {
        to.AppendPool(from.Pool(i));
    }
    ASSERT_EQ(to.PoolCount(), 5U);
    source.Close(); // nothing leads back there
    EXPECT_THAT(Chain(to.Pool().Start()), ElementsAre("frame 2", "frame 1", "mesh"));
}

TEST_F(CopyingPools, KeepsReferencesTrueWhateverTheOrder)
{
    to.AppendPool(from.Pool(2));
    const Record last = RecordAt(to.Pool().Start());
    EXPECT_EQ(last.name, "frame 2");
    EXPECT_FALSE(last.link.Null());
    EXPECT_TRUE(
        Raises<VUKSimExcCantDerefLocator>([&] { RecordAt(last.link); }, kLocatorSource, 117));
    to.AppendPool(from.Pool(0));
    to.AppendPool(from.Pool(1));
    source.Close();
    EXPECT_THAT(Chain(last.link), ElementsAre("frame 1", "mesh"));
}

TEST_F(CopyingPools, KeepsReferencesTrueAfterReopening)
{
    to.AppendPool(from.Pool(1));
    to.AppendPool(from.Pool(0));
    target.Close();
    source.Close();
    Document document("TEST");
    const auto reopened = document.AddFile(folder.File("to.sim"), Document::Read);
    ASSERT_EQ(reopened.PoolCount(), 4U);
    EXPECT_THAT(Chain(reopened.Pool(2).Start()), ElementsAre("frame 1", "mesh"));
    EXPECT_THAT(Chain(reopened.Pool(1).Start()), ElementsAre("y"));
}

TEST_F(CopyingPools, CopiesUuidAndDataAndLeavesTheSourceAsItIs)
{
    source.Flush();
    const std::string before = folder.Read("from.sim");
    to.AppendPool(from.Pool(1));
    EXPECT_TRUE(to.Pool().GetGUID() == from.Pool(1).GetGUID());
    EXPECT_EQ(DataOf(to.Pool()), DataOf(from.Pool(1)));
    EXPECT_EQ(to.Pool().DirectorySizeBytes(), from.Pool(1).DirectorySizeBytes());
    source.Flush();
    EXPECT_EQ(folder.Read("from.sim"), before);
}

TEST_F(CopyingPools, CopiesTheCurrentPoolWithItsTrueLength)
{
    const unsigned long long length = from.Pool(2).Length();
    to.AppendPool(from.Pool(2));
    EXPECT_EQ(to.Pool().Length(), length);
    EXPECT_EQ(DataOf(to.Pool()), DataOf(from.Pool(2)));
}

TEST_F(CopyingPools, LetsTheCopyGrowAndReferToWhatItsDirectoryNames)
{
    to.AppendPool(from.Pool(0));
    const VUKSimRpm_Locator mesh = to.Pool().Start();
    to.AppendPool(from.Pool(1));
    const VUKSimRpm_Locator added = Append(to.Pool(), {"added", mesh});
    EXPECT_THAT(Chain(added), ElementsAre("added", "mesh"));
    EXPECT_THROW(Append(to.Pool(), {"other", to.Pool(0).Start()}), VUKSimExcCantExternalizeLoc);
}

TEST_F(CopyingPools, RefusesToCopyTwiceAndWithinADocument)
{
    to.AppendPool(from.Pool(0));
    EXPECT_TRUE(
        Raises<VUKSimExcPoolAlreadyInDoc>([&] { to.AppendPool(from.Pool(0)); }, kFileSource, 153));
    EXPECT_TRUE(Raises<VUKSimExcPoolAlreadyInDoc>([&] { from.AppendPool(from.Pool(0)); },
                                                  kFileSource, 153));
    EXPECT_EQ(to.PoolCount(), 3U);
    EXPECT_EQ(from.PoolCount(), 3U);
}

TEST_F(CopyingPools, GoesThereAndBackAgain)
{
    for (unsigned int i = 0; i < 3; ++i) {
        to.AppendPool(from.Pool(i));
    }
    source.Close();
    VUKSimRpm_File back = source.AddFile(folder.File("back.sim"), Document::Write);
    for (unsigned int i = 4; i >= 2; --i) { // the other way round
        back.AppendPool(to.Pool(i));
    }
    target.Close();
    EXPECT_THAT(Chain(back.Pool(0).Start()), ElementsAre("frame 2", "frame 1", "mesh"));
}

TEST_F(CopyingPools, MergesTheResultsOfTwoRuns)
{
    Document other("TEST");
    VUKSimRpm_File more = other.AddFile(folder.File("more.sim"), Document::Write);
    VUKSimRpm_Locator previous;
    for (const char* const name : {"mesh B", "frame B"}) {
        more.NewPool(false, nullptr);
        previous = Append(more.Pool(), {name, previous});
    }
    to.AppendPool(from.Pool(1));
    to.AppendPool(more.Pool(1));
    to.AppendPool(more.Pool(0));
    to.AppendPool(from.Pool(0));
    EXPECT_THAT(Chain(to.Pool(2).Start()), ElementsAre("frame 1", "mesh"));
    EXPECT_THAT(Chain(to.Pool(3).Start()), ElementsAre("frame B", "mesh B"));
}
