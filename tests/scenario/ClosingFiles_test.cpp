// Locators outlive the closing of a file, but not that of the document.
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
constexpr char kDocumentSource[] = "VUKSim/VUKSimRpm.m/src/VUKSimRpm_DocumentImpl";

using Document = VUKSimRpm_Document;
using testing::ElementsAre;

// a.sim holds a record that b.sim's record links to.
class ClosingFiles : public testing::Test
{
protected:
    ClosingFiles()
    {
        inA = Append(a.Pool(), {"record of a", {}});
        b.NewPool(false, nullptr);
        inB = Append(b.Pool(), {"record of b", inA});
    }

    TemporaryFolder folder;
    Document document{"TEST"};
    VUKSimRpm_File a = document.AddFile(folder.File("a.sim"), Document::Write);
    VUKSimRpm_File b = document.AddFile(folder.File("b.sim"), Document::Write);
    VUKSimRpm_Locator inA;
    VUKSimRpm_Locator inB;
};
} // namespace

TEST_F(ClosingFiles, LeavesLocatorsThatWorkAgainWhenTheFileIsAddedAgain)
{
    document.Close(a);
    EXPECT_FALSE(inA.Null());
    EXPECT_TRUE(Raises<VUKSimExcCantDerefLocator>([&] { RecordAt(inA); }, kLocatorSource, 117));
    document.AddFile(folder.File("a.sim"), Document::Read);
    EXPECT_EQ(RecordAt(inA).name, "record of a");
    EXPECT_THAT(Chain(inB), ElementsAre("record of b", "record of a"));
}

TEST_F(ClosingFiles, LeavesReferencesThatCanStillBeStoredAndRead)
{
    document.Close(a);
    const VUKSimRpm_Locator second = Append(b.Pool(), {"second", inA});
    const Record record = RecordAt(second);
    EXPECT_TRUE(record.link == inA);
    document.AddFile(folder.File("a.sim"), Document::Update);
    EXPECT_EQ(RecordAt(record.link).name, "record of a");
}

TEST_F(ClosingFiles, LeavesNullHandlesOfThatFileAlone)
{
    const VUKSimRpm_File second = a;
    const VUKSimRpm_Pool pool = a.Pool();
    document.Close(a);
    EXPECT_TRUE(a.Null());
    EXPECT_TRUE(second.Null());
    EXPECT_TRUE(pool.Null());
    EXPECT_EQ(pool.HeaderSizeBytes(), 48U);
    EXPECT_FALSE(b.Null());
    EXPECT_TRUE(Raises<VUKSimExcCantGetFile>([&] { document.Close(a); }, kDocumentSource, 138));
    EXPECT_EQ(RecordAt(inB).name, "record of b");
}

TEST_F(ClosingFiles, LetsAFileBeClosedAndAddedManyTimes)
{
    for (int i = 0; i < 20; ++i) {
        document.Close(a);
        a = document.AddFile(folder.File("a.sim"), Document::Update);
        EXPECT_EQ(a.PoolCount(), 1U);
        EXPECT_THAT(Chain(inB), ElementsAre("record of b", "record of a"));
    }
    EXPECT_TRUE(a.Start() == inA); // in its old slot
}

TEST_F(ClosingFiles, OfAWholeDocumentLeavesNullLocators)
{
    document.Close();
    EXPECT_TRUE(inA.Null());
    EXPECT_TRUE(inB.Null());
    a = document.AddFile(folder.File("a.sim"), Document::Read);
    EXPECT_TRUE(inA.Null());
    EXPECT_TRUE(Raises<VUKSimExcCantDerefLocator>([&] { RecordAt(inA); }, kLocatorSource, 117));
    EXPECT_EQ(RecordAt(a.Start()).name, "record of a");
    EXPECT_FALSE(a.Start() == inA);
}

TEST_F(ClosingFiles, OfAWholeDocumentTwiceDoesNoHarm)
{
    document.Close();
    document.Close();
    document.Flush();
    b = document.AddFile(folder.File("b.sim"), Document::Read);
    EXPECT_EQ(RecordAt(b.Start()).name, "record of b");
}

TEST_F(ClosingFiles, ByTheDeathOfTheDocumentLeavesNullLocators)
{
    VUKSimRpm_Locator locator;
    {
        Document other("TEST");
        VUKSimRpm_File file = other.AddFile(folder.File("other.sim"), Document::Write);
        locator = Append(file.Pool(), {"other", {}});
        EXPECT_FALSE(locator.Null());
    }
    EXPECT_TRUE(locator.Null());
}

TEST_F(ClosingFiles, ForgetsAPoolThatHadNoData)
{
    document.Close(b);
    VUKSimRpm_File c = document.AddFile(folder.File("c.sim"), Document::Write);
    const VUKSimRpm_Pool empty = c.Pool();
    const VUKSimRpm_Locator place = c.Start();
    c.NewPool(false, nullptr);
    EXPECT_TRUE(empty.Null());
    EXPECT_EQ(c.PoolCount(), 1U);
    EXPECT_FALSE(place.Null()); // its slot stays, and nobody else gets it
    EXPECT_TRUE(
        Raises<VUKSimExcCantDerefLocator>([&] { ReadFrom(place, 1); }, kLocatorSource, 117));
    EXPECT_FALSE(c.Start().SamePool(place));
}

TEST_F(ClosingFiles, KeepsTemporaryFilesOnlyWhileTheyAreOpen)
{
    const VUKSimRpm_File scratch = document.CreateTemporary(folder.File("scratch"), true);
    const VUKSimRpm_Locator place = Append(scratch.Pool(), {"for now", {}});
    EXPECT_EQ(RecordAt(place).name, "for now");
    EXPECT_EQ(folder.Count(), 3);
    document.Close(scratch);
    EXPECT_EQ(folder.Count(), 2);
    const VUKSimRpm_File kept = document.CreateGenerated(folder.File("kept"), ".sim", true);
    const VUKString name = kept.FileName();
    Append(kept.Pool(), {"for good", {}});
    document.Close();
    EXPECT_EQ(RecordAt(document.AddFile(name, Document::Read).Start()).name, "for good");
}
