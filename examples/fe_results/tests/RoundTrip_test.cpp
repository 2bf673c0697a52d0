#include "DocumentFolder.h"
#include "RoundTrip.h"
#include "ScratchFolder.h"
#include "TextDifference.h"
#include "TinyResult.h"
#include "Transfer.h"

#include "VUKSimRpm_Document.h"

#include <csignal>
#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <set>
#include <sstream>
#include <string>
#include <sys/resource.h>
#include <vector>

namespace fe {
namespace {

using testing::HasSubstr;
using Names = std::set<std::string>;

const std::string kBracket = FE_RESULTS_DATA "/bracket.frd";

class RoundTripTest : public testing::Test
{
protected:
    // What a run says, or the reason why it failed.
    std::string Run(const std::vector<std::string>& inputs, const std::string& folder = "",
                    bool quiet = false)
    {
        std::ostringstream out;
        try {
            RunRoundTrip({inputs, folder, quiet}, out);
        } catch (const std::exception& error) {
            return std::string("failed: ") + error.what();
        }
        return out.str();
    }

    std::string Out() { return mFolder.PathOf("out"); }

    ScratchFolder mFolder;
};

TEST_F(RoundTripTest, ASolvedDeckComesBackWithEveryDigit)
{
    const std::string story = Run({kBracket}, Out());
    EXPECT_THAT(story,
                HasSubstr("1,090 lines, 58,030 bytes: 36 nodes, 3 elements (2 he20, 1 he8)"));
    EXPECT_THAT(story, HasSubstr("24 blocks of results at 7 steps"));
    EXPECT_THAT(story, HasSubstr("Proved: 1 result file (36 nodes, 3 elements, 24 blocks at 7 "
                                 "steps, 2,860 real numbers) came back with every digit."));
    EXPECT_EQ(mFolder.Names(), (Names{"out"}));
    EXPECT_FALSE(FindDifference(kBracket, mFolder.PathOf("out/bracket.frd")).has_value());
    EXPECT_TRUE(std::filesystem::exists(mFolder.PathOf("out/bracket.mesh.sim")));
    EXPECT_TRUE(std::filesystem::exists(mFolder.PathOf("out/bracket.results.sim")));
}

TEST_F(RoundTripTest, SeveralFilesShareOneDocument)
{
    const std::string tiny = mFolder.Write("bracket.frd", Text(TinyLines()));
    const std::string story = Run({kBracket, tiny, kBracket}, Out(), true);
    EXPECT_THAT(story, HasSubstr("Proved: 3 result files (76 nodes, 7 elements, 50 blocks"));
    EXPECT_EQ(mFolder.Read("out/bracket-2.frd"), Text(TinyLines()));
    EXPECT_FALSE(FindDifference(kBracket, mFolder.PathOf("out/bracket-3.frd")).has_value());
}

TEST_F(RoundTripTest, WithoutAFolderNothingIsLeft)
{
    const std::string tiny = mFolder.Write("tiny.frd", Text(TinyLines()));
    ASSERT_EQ(::setenv("TMPDIR", Out().c_str(), 1), 0);
    std::filesystem::create_directory(Out());
    const std::string story = Run({tiny}, "", true);
    ::unsetenv("TMPDIR");
    EXPECT_THAT(story, HasSubstr("Proved: 1 result file"));
    EXPECT_TRUE(std::filesystem::is_empty(Out()));
}

TEST_F(RoundTripTest, ACutFileLeavesNothingBehind)
{
    const std::string good = mFolder.Write("good.frd", Text(TinyLines()));
    const std::string cut = mFolder.Write("cut.frd", Text(TinyLines(), 30));
    for (const auto& inputs : {std::vector{cut}, {good, cut}, {cut, good}}) {
        EXPECT_EQ(Run(inputs, Out()),
                  "failed: " + cut +
                      ":30: the file ends here, inside the block of results that "
                      "begins in line 24: it is cut");
        EXPECT_EQ(mFolder.Names(), (Names{"cut.frd", "good.frd"}));
    }
}

TEST_F(RoundTripTest, AMissingFileLeavesNothingBehind)
{
    EXPECT_EQ(Run({kBracket, "missing.frd"}, Out()), "failed: missing.frd: there is no such file");
    EXPECT_EQ(mFolder.Names(), Names{});
}

TEST_F(RoundTripTest, AFullDiskLeavesNothingBehind)
{
    const auto before = std::signal(SIGXFSZ, SIG_IGN);
    rlimit limit{};
    ASSERT_EQ(::getrlimit(RLIMIT_FSIZE, &limit), 0);
    const rlim_t whole = limit.rlim_cur;
    for (const rlim_t bytes : {0U, 40U, 1000U, 9000U, 30000U, 57000U}) {
        limit.rlim_cur = bytes;
        ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &limit), 0);
        const std::string story = Run({kBracket}, Out(), true);
        limit.rlim_cur = whole;
        ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &limit), 0);
        EXPECT_THAT(story, HasSubstr("failed: "));
        EXPECT_THAT(story, HasSubstr("File too large"));
        EXPECT_EQ(mFolder.Names(), Names{}) << bytes;
    }
    std::signal(SIGXFSZ, before);
}

TEST_F(RoundTripTest, AFolderWithContentIsLeftAlone)
{
    std::filesystem::create_directory(Out());
    mFolder.Write("out/mine", "dear");
    EXPECT_EQ(Run({kBracket}, Out()), "failed: " + Out() + " exists and is not an empty folder");
    EXPECT_EQ(mFolder.Read("out/mine"), "dear");
    EXPECT_EQ(mFolder.Names(), (Names{"out"}));
}

TEST_F(RoundTripTest, AnEmptyFolderIsFilled)
{
    std::filesystem::create_directory(Out());
    EXPECT_THAT(Run({kBracket}, Out() + "/", true), HasSubstr("Proved"));
    EXPECT_TRUE(std::filesystem::exists(mFolder.PathOf("out/bracket.mesh.sim")));
}

TEST_F(RoundTripTest, AStoredNumberThatChangedIsFound)
{
    const std::string tiny = mFolder.Write("tiny.frd", Text(TinyLines()));
    const VUKString mesh(mFolder.PathOf("m.sim").c_str());
    const VUKString results(mFolder.PathOf("r.sim").c_str());
    VUKSimRpm_Document document("TEST");
    ImportResultFile(tiny, document, mesh.UTF8(), results.UTF8());
    document.Close();

    // 412.5 is stored as 00 00 00 00 00 C8 79 40; with 10 in its fifth byte it is 412.50390625.
    std::string bytes = mFolder.Read("r.sim");
    const std::string stored("\x00\x00\x00\x00\x00\xC8\x79\x40", 8);
    const std::size_t at = bytes.find(stored);
    ASSERT_NE(at, std::string::npos);
    bytes[at + 4] = '\x10';
    mFolder.Write("r.sim", bytes);

    const VUKSimRpm_File file = document.AddFile(results, VUKSimRpm_Document::Read);
    document.AddFile(mesh, VUKSimRpm_Document::Read);
    const std::string copy = mFolder.PathOf("copy.frd");
    EXPECT_EQ(ExportResultFile(file, copy).source, "tiny.frd");
    const auto difference = FindDifference(tiny, copy);
    ASSERT_TRUE(difference.has_value());
    EXPECT_EQ(difference->line, 21U);
    EXPECT_EQ(difference->first, " -1        10 3.00000E+00        -NAN 4.12500E+02\n");
    EXPECT_EQ(difference->second, " -1        10 3.00000E+00        -NAN 4.12504E+02\n");
}

TEST_F(RoundTripTest, DifferencesAreFoundWhereverTheyAre)
{
    const std::string a = mFolder.Write("a", "one\ntwo\n");
    EXPECT_FALSE(FindDifference(a, mFolder.Write("b", "one\ntwo\n")).has_value());
    for (const std::string text : {"one\ntwo", "one\ntwo\n\n", "one\n", "one\ntwo\nthree\n",
                                   "one\ntwo \n", "one\r\ntwo\n", ""}) {
        EXPECT_TRUE(FindDifference(a, mFolder.Write("b", text)).has_value()) << text;
    }
    EXPECT_THROW(static_cast<void>(FindDifference(a, mFolder.PathOf("c"))), std::runtime_error);
}

TEST_F(RoundTripTest, AnUnpublishedFolderDisappearsWithItsFiles)
{
    {
        const DocumentFolder folder(Out());
        mFolder.Write(std::filesystem::path(folder.PathOf("")).parent_path().filename().string() +
                          "/file",
                      "x");
        EXPECT_EQ(mFolder.Names().size(), 1U);
        EXPECT_TRUE(std::filesystem::exists(folder.PathOf("file")));
    }
    EXPECT_EQ(mFolder.Names(), Names{});
}

} // namespace
} // namespace fe
