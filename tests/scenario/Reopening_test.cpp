// Files are written, closed and opened again in whatever order: references lead where they led.
#include "Records.h"

#include "Failures.h"
#include "TemporaryFolder.h"
#include "VUKSimRpm_Document.h"
#include "VUKSimRpm_File.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>

namespace {

constexpr char kLocatorSource[] = "VUKSim/VUKSimRpm.m/src/VUKSimRpm_Locator";

using Document = VUKSimRpm_Document;
using testing::ElementsAre;

// Three files on disk. The first record of c.sim links to that of b.sim, that one to a.sim's.
class Reopening : public testing::Test
{
protected:
    Reopening()
    {
        Document document("TEST");
        VUKSimRpm_Locator previous;
        for (const std::string name : {"a", "b", "c"}) {
            VUKSimRpm_File file = document.AddFile(folder.File(name + ".sim"), Document::Write);
            file.NewPool(false, nullptr); // names every pool made so far
            previous = Append(file.Pool(), {"record of " + name, previous});
        }
        document.Close();
    }

    VUKSimRpm_File Add(Document& document, const std::string& name,
                       Document::AccessMode mode = Document::Read)
    {
        return document.AddFile(folder.File(name + ".sim"), mode);
    }

    TemporaryFolder folder;
};

} // namespace

TEST_F(Reopening, FollowsReferencesWhateverTheOrderOfTheFiles)
{
    std::vector<std::string> order = {"a", "b", "c"};
    do {
        Document document("TEST");
        for (const std::string& name : order) {
            Add(document, name);
        }
        EXPECT_THAT(Chain(Add(document, "c").Start()),
                    ElementsAre("record of c", "record of b", "record of a"))
            << order[0] << order[1] << order[2];
    } while (std::next_permutation(order.begin(), order.end()));
}

TEST_F(Reopening, FollowsReferencesThatWereReadBeforeTheirFilesWereOpen)
{
    Document document("TEST");
    const Record c = RecordAt(Add(document, "c").Start());
    EXPECT_FALSE(c.link.Null());
    EXPECT_TRUE(Raises<VUKSimExcCantDerefLocator>([&] { RecordAt(c.link); }, kLocatorSource, 117));
    Add(document, "b");
    const Record b = RecordAt(c.link);
    EXPECT_EQ(b.name, "record of b");
    EXPECT_TRUE(Raises<VUKSimExcCantDerefLocator>([&] { RecordAt(b.link); }, kLocatorSource, 117));
    Add(document, "a");
    EXPECT_EQ(RecordAt(b.link).name, "record of a");
}

TEST_F(Reopening, KnowsTheUuidOfAPoolThatIsNotOpen)
{
    Document first("TEST");
    const VUKString uuid = Add(first, "b").Pool().GetGUID();
    Document second("TEST");
    EXPECT_TRUE(RecordAt(Add(second, "c").Start()).link.GetGUID() == uuid);
}

TEST_F(Reopening, FindsFilesUnderOtherNames)
{
    std::filesystem::create_directory(folder.Path("moved"));
    std::filesystem::rename(folder.Path("a.sim"), folder.Path("moved/the first"));
    std::filesystem::rename(folder.Path("b.sim"), folder.Path("a.sim"));
    Document document("TEST");
    document.AddFile(folder.File("moved/the first"), Document::Read);
    Add(document, "a");
    EXPECT_THAT(Chain(Add(document, "c").Start()),
                ElementsAre("record of c", "record of b", "record of a"));
}

TEST_F(Reopening, GoesOnWhereTheLastRunEnded)
{
    for (const std::string run : {"second run", "third run"}) {
        Document document("TEST");
        Add(document, "a");
        Add(document, "b");
        const VUKSimRpm_File c = Add(document, "c", Document::Update);
        Append(c.Pool(), {run, c.Start()});
        document.Close();
    }
    Document document("TEST");
    const VUKSimRpm_File c = Add(document, "c");
    VUKSimRpm_BStreamReadLocator stream(c.Start(), c.Pool().Length(), 16);
    EXPECT_EQ(Load(stream).name, "record of c");
    EXPECT_EQ(Load(stream).name, "second run");
    const Record third = Load(stream);
    EXPECT_EQ(third.name, "third run");
    EXPECT_EQ(RecordAt(third.link).name, "record of c");
}

TEST_F(Reopening, LeavesFilesThatAreOnlyReadAsTheyAre)
{
    const std::string before = folder.Read("b.sim");
    {
        Document document("TEST");
        Add(document, "c");
        const VUKSimRpm_File b = Add(document, "b");
        EXPECT_TRUE(b.ReadOnly());
        RecordAt(b.Start());
        document.Flush();
        document.Close();
    }
    EXPECT_EQ(folder.Read("b.sim"), before);
}

TEST_F(Reopening, AddsNothingToAFileThatIsUpdatedAndNotWritten)
{
    const std::string before = folder.Read("b.sim");
    for (int i = 0; i < 3; ++i) {
        Document document("TEST");
        Add(document, "b", Document::Update);
        document.Close();
    }
    EXPECT_EQ(folder.Read("b.sim"), before);
}

TEST_F(Reopening, CanReferToThePoolsOfEarlierRuns)
{
    {
        Document document("TEST");
        const VUKSimRpm_Locator b = Add(document, "b").Start();
        VUKSimRpm_File d = document.AddFile(folder.File("d.sim"), Document::Write);
        d.NewPool(false, nullptr);
        Append(d.Pool(), {"record of d", b});
        document.Close();
    }
    Document document("TEST");
    const VUKSimRpm_File d = Add(document, "d");
    Add(document, "a");
    Add(document, "b");
    EXPECT_THAT(Chain(d.Start()), ElementsAre("record of d", "record of b", "record of a"));
}

TEST_F(Reopening, RefusesFilesOfAnotherApplication)
{
    Document document("OURS");
    EXPECT_THROW(Add(document, "a"), VUKSimExcUserSigMismatch);
    EXPECT_THROW(Add(document, "a", Document::Update), VUKSimExcUserSigMismatch);
    // The document is as good as before.
    VUKSimRpm_File file = document.AddFile(folder.File("ours.sim"), Document::Write);
    Append(file.Pool(), {"ours", {}});
    EXPECT_EQ(RecordAt(file.Start()).name, "ours");
}
