// Files that were written by different documents come together in one.
#include "Records.h"

#include "Failures.h"
#include "OnePool.h"
#include "TemporaryFolder.h"
#include "VUKSimRpm_Document.h"
#include "VUKSimRpm_File.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

namespace {

constexpr char kDirectorySource[] = "VUKSim/VUKSimRpm.m/src/VUKSimRpm_PoolDirectoryImpl";

using Document = VUKSimRpm_Document;
using testing::ElementsAre;

// Writes `name`.sim in a document of its own: one pool for each text, each record linked to the one
// before, the last pool current.
void WriteChain(const TemporaryFolder& folder, const std::string& name,
                const std::vector<std::string>& texts)
{
    Document document("TEST");
    VUKSimRpm_File file = document.AddFile(folder.File(name + ".sim"), Document::Write);
    VUKSimRpm_Locator previous;
    for (const std::string& text : texts) {
        file.NewPool(false, nullptr);
        previous = Append(file.Pool(), {text, previous});
    }
    document.Close();
}
} // namespace

TEST(Combining, KeepsReferencesApartThatUsedTheSameNumbers)
{
    const TemporaryFolder folder;
    WriteChain(folder, "left", {"L1", "L2", "L3"});
    WriteChain(folder, "right", {"R1", "R2", "R3"});
    for (const bool leftFirst : {true, false}) {
        Document document("TEST");
        if (leftFirst) {
            document.AddFile(folder.File("left.sim"), Document::Read);
        }
        const auto right = document.AddFile(folder.File("right.sim"), Document::Read);
        const auto left = document.AddFile(folder.File("left.sim"), Document::Read);
        EXPECT_THAT(Chain(left.Pool().Start()), ElementsAre("L3", "L2", "L1"));
        EXPECT_THAT(Chain(right.Pool().Start()), ElementsAre("R3", "R2", "R1"));
    }
}

TEST(Combining, LetsANewFileReferToAllThatCameTogether)
{
    const TemporaryFolder folder;
    WriteChain(folder, "left", {"L1", "L2"});
    WriteChain(folder, "right", {"R1", "R2"});
    {
        Document document("TEST");
        const auto left = document.AddFile(folder.File("left.sim"), Document::Read);
        const auto right = document.AddFile(folder.File("right.sim"), Document::Read);
        VUKSimRpm_File index = document.AddFile(folder.File("index.sim"), Document::Write);
        index.NewPool(false, nullptr);
        Append(index.Pool(), {"to the left", left.Pool(0).Start()});
        index.NewPool(false, nullptr);
        Append(index.Pool(), {"to the right", right.Pool(1).Start()});
        document.Close();
    }
    Document document("TEST");
    const auto index = document.AddFile(folder.File("index.sim"), Document::Read);
    document.AddFile(folder.File("right.sim"), Document::Update);
    document.AddFile(folder.File("left.sim"), Document::Update);
    EXPECT_THAT(Chain(index.Pool(0).Start()), ElementsAre("to the left", "L1"));
    EXPECT_THAT(Chain(index.Pool(1).Start()), ElementsAre("to the right", "R2", "R1"));
}

TEST(Combining, RefusesASecondCopyOfAPoolAndGoesOnWithTheFirst)
{
    const TemporaryFolder folder;
    WriteChain(folder, "left", {"L1", "L2"});
    std::filesystem::copy_file(folder.Path("left.sim"), folder.Path("copy.sim"));
    Document document("TEST");
    const auto left = document.AddFile(folder.File("left.sim"), Document::Read);
    EXPECT_TRUE(Raises<VUKSimExcPoolAlreadyInDoc>(
        [&] { document.AddFile(folder.File("copy.sim"), Document::Read); }, kDirectorySource, 75));
    EXPECT_THAT(Chain(left.Pool().Start()), ElementsAre("L2", "L1"));
}

TEST(Combining, TakesACopyInThePlaceOfAFileThatWasClosed)
{
    const TemporaryFolder folder;
    WriteChain(folder, "left", {"L1", "L2"});
    std::filesystem::copy_file(folder.Path("left.sim"), folder.Path("copy.sim"));
    Document document("TEST");
    const auto left = document.AddFile(folder.File("left.sim"), Document::Read);
    const VUKSimRpm_Locator locator = left.Pool().Start();
    document.Close(left);
    document.AddFile(folder.File("copy.sim"), Document::Read);
    EXPECT_THAT(Chain(locator), ElementsAre("L2", "L1"));
}

TEST(Combining, KeepsLocatorsOfTwoDocumentsApart)
{
    OnePool left("left");
    OnePool right("right");
    EXPECT_FALSE(left.Start() == right.Start());
    EXPECT_FALSE(left.Start().SamePool(right.Start()));
    left.Document().Close();
    EXPECT_TRUE(left.File().Null());
    EXPECT_EQ(ReadFrom(right.Start(), 5), "right");
}
