#include "FileMap.h"
#include "RunSimpool.h"

#include "Bytes.h"
#include "TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fcntl.h>
#include <string>
#include <unistd.h>
#include <vector>

namespace {

using namespace simpool;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

// A frozen pool without data, with one entry.
std::string EmptyPool()
{
    return bytes::Pool{.length = "0000000000000080", .directory = {bytes::Uuid('a')}}.Bytes();
}

class FileMaps : public testing::Test
{
protected:
    // Kind, begin, end and pool of every stretch.
    std::vector<std::string> Map()
    {
        const LoadedFiles files({mFolder.Path("a.sim")}, LoadedFiles::Walk::EachAlone);
        std::vector<std::string> lines;
        for (const Stretch& stretch : MapFile(files[0])) {
            lines.push_back(std::string(NameOf(stretch.kind)) + " " +
                            std::to_string(stretch.begin) + " " + std::to_string(stretch.end) +
                            " " + std::to_string(stretch.pool));
        }
        return lines;
    }

    TemporaryFolder mFolder;
};
} // namespace

TEST_F(FileMaps, CoverAFileFromTheFirstByteToTheLast)
{
    mFolder.Write("a.sim",
                  EmptyPool() + bytes::Pool{.directory = {bytes::Uuid('b'), bytes::Uuid('a')},
                                            .data = "0123456789"}
                                    .Bytes());
    EXPECT_THAT(Map(), ElementsAre("header 0 48 0", "directory 48 80 0", "header 80 128 1",
                                   "directory 128 192 1", "data 192 202 1"));
}

TEST_F(FileMaps, TellWhatBelongsToNoPool)
{
    mFolder.Write("a.sim", EmptyPool() + "rubbish");
    EXPECT_THAT(Map(), ElementsAre("header 0 48 0", "directory 48 80 0", "lost 80 87 0"));
    mFolder.Write("a.sim", "");
    EXPECT_THAT(Map(), IsEmpty());
}

TEST_F(FileMaps, StayInOrderWhenAPoolClaimsLessThanItsHeader)
{
    // Pool a claims 48 bytes: pool b begins where a's directory should be.
    bytes::Pool first{.length = "0000000000000048", .count = 1};
    mFolder.Write("a.sim", first.Bytes() +
                               bytes::Pool{.directory = {bytes::Uuid('b')}, .data = "x"}.Bytes());
    EXPECT_THAT(Map(), ElementsAre("header 0 48 0", "header 48 96 1", "directory 96 128 1",
                                   "data 128 129 1"));
}

TEST_F(FileMaps, FindHolesInSparseData)
{
    mFolder.Write("a.sim", bytes::Pool{.directory = {bytes::Uuid('a')}, .data = "x"}.Bytes());
    const int descriptor = open(mFolder.Path("a.sim").c_str(), O_WRONLY | O_CLOEXEC);
    const int failure = ftruncate(descriptor, 1048576);
    close(descriptor);
    ASSERT_EQ(failure, 0);
    EXPECT_THAT(Map(), ElementsAre("header 0 48 0", "directory 48 80 0", "data 80 4096 0",
                                   "hole 4096 1048576 0"));
}

TEST_F(FileMaps, AreWrittenAsADocument)
{
    mFolder.Write("a.sim", EmptyPool());
    const Ran ran = RunSimpool({"map", mFolder.Path("a.sim"), "--json"});
    EXPECT_EQ(ran.exit, 0) << ran.err;
    EXPECT_THAT(ran.out, HasSubstr("\"directory\": 32"));
    EXPECT_THAT(ran.out, HasSubstr("\"kind\": \"directory\""));
}
