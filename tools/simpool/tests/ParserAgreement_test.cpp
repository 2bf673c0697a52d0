// The parser and the library read the same files, each in its own way: they must see the same pools
// or fail for the same reason.
#include "Seen.h"

#include "TemporaryFolder.h"
#include "VUKSimUttAssert.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

namespace {

std::string Content(const std::filesystem::path& path)
{
    std::ifstream in(path, std::ios::binary);
    EXPECT_TRUE(in) << path;
    return std::string(std::istreambuf_iterator<char>(in), {});
}

std::vector<std::filesystem::path> FilesBelow(const char* folder, const std::string& extension)
{
    std::vector<std::filesystem::path> files;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
        if (entry.is_regular_file() && entry.path().extension() == extension) {
            files.push_back(entry.path());
        }
    }
    std::ranges::sort(files);
    return files;
}

class ParserAgreement : public testing::Test
{
protected:
    ParserAgreement() : mHandler(VUKSimUttAssert::SetHandler([](auto, auto, auto, auto) {})) {}
    ~ParserAgreement() override { VUKSimUttAssert::SetHandler(mHandler); }

    VUKSimUttAssert::Handler mHandler;
    TemporaryFolder mFolder;
};
} // namespace

TEST_F(ParserAgreement, OnEveryGoldenFile)
{
    const auto files = FilesBelow(VUKSIM_GOLDEN_FOLDER, ".sim");
    ASSERT_GE(files.size(), 20U);
    for (const auto& path : files) {
        EXPECT_EQ(SeenByParser(path.c_str(), "DEMO"), SeenByLibrary(path.c_str(), "DEMO")) << path;
    }
}

TEST_F(ParserAgreement, OnEveryGoldenFileWithAnyOneByteChanged)
{
    int opened = 0;
    int refused = 0;
    for (const auto& path : FilesBelow(VUKSIM_GOLDEN_FOLDER, ".sim")) {
        const std::string good = Content(path);
        for (std::size_t i = 0; i < good.size(); ++i) {
            std::string bad = good;
            bad[i] = static_cast<char>(bad[i] ^ (i % 2 == 0 ? 0x01 : 0x80));
            const VUKString name = mFolder.Write("changed.sim", bad);
            const Seen expected = SeenByLibrary(name.UTF8(), "DEMO");
            ASSERT_EQ(SeenByParser(name.UTF8(), "DEMO"), expected) << path << " byte " << i;
            ++(expected.failure.empty() ? opened : refused);
        }
    }
    EXPECT_GT(opened, 500);
    EXPECT_GT(refused, 500);
}

TEST_F(ParserAgreement, OnEveryGoldenFileCutAtAnyByte)
{
    for (const auto& path : FilesBelow(VUKSIM_GOLDEN_FOLDER, ".sim")) {
        const std::string good = Content(path);
        for (std::size_t length = 0; length < good.size(); ++length) {
            const VUKString name = mFolder.Write("cut.sim", good.substr(0, length));
            ASSERT_EQ(SeenByParser(name.UTF8(), "DEMO"), SeenByLibrary(name.UTF8(), "DEMO"))
                << path << " cut to " << length;
        }
    }
}

TEST_F(ParserAgreement, OnEveryFileOfTheFuzzCorpus)
{
    const auto files = FilesBelow(VUKSIM_CORPUS_FOLDER, "");
    ASSERT_GE(files.size(), 200U);
    for (const auto& path : files) {
        EXPECT_EQ(SeenByParser(path.c_str(), "FUZZ"), SeenByLibrary(path.c_str(), "FUZZ")) << path;
    }
}
