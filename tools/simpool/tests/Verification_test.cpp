// Each finding on a file that is made to have it.
#include "Verification.h"

#include "OpeningCost.h"

#include "Bytes.h"
#include "TemporaryFolder.h"
#include "VUKSimRpm_Document.h"
#include "VUKSimRpm_File.h"
#include "mem_Alloc.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <string>

using namespace simpool;

namespace {

using bytes::Pool;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

const std::string kUuid = "00112233445546778899aabbccddeeff";
const std::string kOther = "f0e1d2c3b4a54697b8798a9bacbdcedf";

Pool Sound()
{
    return {.directory = {kUuid}, .data = "12345"};
}

class Verifying : public testing::Test
{
protected:
    // "E02 pool 1 at 92" for each finding in files that hold `contents`.
    std::vector<std::string> Found(const std::vector<std::string>& contents,
                                   VerifyDepth depth = VerifyDepth::ErrorsAndWarnings)
    {
        std::vector<std::string> names;
        for (const std::string& content : contents) {
            names.push_back(mFolder.Path(std::to_string(names.size()) + ".sim"));
            mFolder.Write(std::to_string(names.size() - 1) + ".sim", content);
        }
        mFiles.emplace(names, LoadedFiles::Walk::AsOneDocument);
        mFindings = Verify(*mFiles, depth);
        std::vector<std::string> found;
        for (const Finding& finding : mFindings) {
            found.push_back(std::string(TextOf(finding.code).id) + " file " +
                            std::to_string(finding.file) + " at " +
                            std::to_string(finding.position));
        }
        return found;
    }
    std::vector<std::string> FoundIn(const Pool& pool) { return Found({pool.Bytes()}); }

    TemporaryFolder mFolder;
    std::optional<LoadedFiles> mFiles;
    std::vector<Finding> mFindings;
};
} // namespace

TEST_F(Verifying, FindsNothingInASoundFile)
{
    EXPECT_THAT(FoundIn(Sound()), IsEmpty());
    EXPECT_THAT(Found(std::vector<std::string>(1)), IsEmpty());
}

TEST_F(Verifying, NamesEachReasonForWhichOpeningFails)
{
    EXPECT_THAT(Found({Sound().Bytes().substr(0, 47)}), ElementsAre("E01 file 0 at 0"));
    Pool pool = Sound();
    pool.signature[0] = 'x';
    EXPECT_THAT(FoundIn(pool), ElementsAre("E02 file 0 at 0"));
    pool = Sound();
    pool.version = 5;
    EXPECT_THAT(FoundIn(pool), ElementsAre("E03 file 0 at 0"));
    EXPECT_THAT(mFindings[0].what, HasSubstr("the format version is 5"));
    Pool other = Sound();
    other.userSignature = "ELSE";
    other.directory = {kOther};
    EXPECT_THAT(Found({Sound().Bytes(), other.Bytes()}), ElementsAre("E04 file 1 at 0"));
    pool = Sound();
    pool.count = 2;
    EXPECT_THAT(FoundIn(pool), ElementsAre("E05 file 0 at 0"));
    pool = Sound();
    pool.directory.clear();
    EXPECT_THAT(FoundIn(pool), ElementsAre("E06 file 0 at 0"));
    EXPECT_THAT(Found({Sound().Bytes(), Sound().Bytes()}), ElementsAre("E07 file 1 at 0"));
    EXPECT_THAT(mFindings[0].what, HasSubstr("0.sim"));
}

TEST_F(Verifying, LooksAtLengthsThatOpeningLetsPass)
{
    Pool first = Sound();
    first.data = "";
    first.length = "0000000000000048";
    first.directory = {kUuid, kOther};
    Pool inner{.directory = {kOther}};
    first.directory[0] = inner.Header().substr(0, 32); // 48 bytes of the next header
    EXPECT_THAT(Found({first.Bytes()}, VerifyDepth::Errors), testing::Contains("E08 file 0 at 0"));
    Pool pool = Sound();
    pool.length = "000000000000008U"; // 80 and 'U' - '0' = 37
    EXPECT_THAT(Found({pool.Bytes()}, VerifyDepth::Errors),
                ElementsAre("E09 file 0 at 0", "E10 file 0 at 0"));
    pool.length = "0000000000000100";
    EXPECT_THAT(FoundIn(pool), ElementsAre("E10 file 0 at 0"));
    EXPECT_THAT(mFindings[0].what, HasSubstr("100 bytes, 15 more than"));
}

TEST_F(Verifying, WarnsOfStrangeUuids)
{
    Pool pool = Sound();
    pool.directory = {std::string(31, '0') + "\x1b"};
    EXPECT_THAT(FoundIn(pool), ElementsAre("W01 file 0 at 48"));
    EXPECT_THAT(mFindings[0].what, HasSubstr("0000\\x1b"));
    pool.directory = {bytes::Uuid('0')};
    EXPECT_THAT(FoundIn(pool), ElementsAre("W02 file 0 at 48"));
}

TEST_F(Verifying, WarnsOfReservedBytes)
{
    Pool pool = Sound();
    pool.reserved[3] = 1;
    EXPECT_THAT(FoundIn(pool), ElementsAre("W03 file 0 at 0"));
    pool = Sound();
    pool.reserved1 = 3;
    EXPECT_THAT(FoundIn(pool), ElementsAre("W03 file 0 at 0"));
    pool = Sound();
    pool.reserved2 = 1;
    EXPECT_THAT(FoundIn(pool), ElementsAre("W03 file 0 at 0"));
}

TEST_F(Verifying, WarnsOfAPoolInsideTheDataOfAnother)
{
    Pool pool = Sound();
    pool.data += Pool{.directory = {kOther}}.Bytes();
    EXPECT_THAT(FoundIn(pool), ElementsAre("W04 file 0 at 85"));
    EXPECT_THAT(mFindings[0].what, HasSubstr("data offset 5"));
}

TEST_F(Verifying, WarnsOfZerosAtTheEndOfDataFromASectorOn)
{
    Pool pool = Sound();
    pool.data += bytes::Zeros(511);
    EXPECT_THAT(FoundIn(pool), IsEmpty());
    pool.data += bytes::Zeros(1);
    EXPECT_THAT(FoundIn(pool), ElementsAre("W05 file 0 at 85"));
    pool.data += bytes::Zeros(200000);
    EXPECT_THAT(FoundIn(pool), ElementsAre("W05 file 0 at 85"));
    EXPECT_THAT(mFindings[0].what, HasSubstr("200,512 of 200,517 bytes"));
}

TEST_F(Verifying, WarnsOfReferencesToPoolsThatAreNotThere)
{
    Pool pool = Sound();
    pool.directory = {kUuid, kOther, kOther};
    EXPECT_THAT(FoundIn(pool), ElementsAre("W06 file 0 at 80"));
    EXPECT_THAT(mFindings[0].what, HasSubstr("2 of 2 references"));
    EXPECT_THAT(Found({pool.Bytes(), Pool{.directory = {kOther}}.Bytes()}), IsEmpty());
}

TEST_F(Verifying, WarnsOfEntriesLeftOfALargerDirectory)
{
    Pool pool = Sound();
    pool.data = kOther + kOther + "12345";
    EXPECT_THAT(FoundIn(pool), ElementsAre("W08 file 0 at 80"));
    EXPECT_THAT(mFindings[0].what, HasSubstr("first 64 bytes"));
}

TEST_F(Verifying, WarnsOfACacheThatTakesMuchMemory)
{
    Pool pool = Sound();
    const auto withEntries = [&](int count) {
        pool.directory = {kUuid};
        for (int i = 1; i < count; ++i) {
            std::string uuid = kOther;
            const std::string number = std::to_string(100000 + i);
            uuid.replace(0, number.size(), number);
            pool.directory.push_back(uuid);
        }
        return pool;
    };
    EXPECT_THAT(FoundIn(withEntries(8128)), ElementsAre("W06 file 0 at 80")); // 8128^2 * 4 = 252 MB
    EXPECT_THAT(FoundIn(withEntries(8193)), ElementsAre("W06 file 0 at 80", "W07 file 0 at 0"));
    EXPECT_THAT(mFindings[1].what, HasSubstr("8,193 UUIDs"));
}

TEST_F(Verifying, LeavesWarningsOutWhenAsked)
{
    Pool pool = Sound();
    pool.reserved1 = 3;
    EXPECT_THAT(Found({pool.Bytes()}, VerifyDepth::Errors), IsEmpty());
}

TEST(FindingCode, KeepsWhatScriptsRelyOn)
{
    std::vector<std::string> seen;
    for (const FindingText& text : AllFindingTexts()) {
        seen.push_back(std::string(text.id) + " " + text.name);
        EXPECT_EQ(&TextOf(text.code), &text);
    }
    EXPECT_THAT(seen,
                ElementsAre("E01 short-header", "E02 no-signature", "E03 other-version",
                            "E04 other-user-signature", "E05 cut-directory", "E06 no-own-entry",
                            "E07 duplicate-pool", "E08 length-below-header",
                            "E09 length-not-decimal", "E10 length-past-end", "W01 uuid-not-hex",
                            "W02 uuid-not-version-4", "W03 reserved-bytes", "W04 pool-inside-data",
                            "W05 trailing-zeros", "W06 unresolved-reference", "W07 cache-memory",
                            "W08 leftover-directory"));
}

namespace {

std::size_t largest = 0;       // the entries
std::size_t largestZeroed = 0; // the words of their rows

void* RememberLargest(std::size_t size)
{
    largest = std::max(largest, size);
    return std::malloc(size);
}

void* RememberLargestZeroed(std::size_t size)
{
    largestZeroed = std::max(largestZeroed, size);
    return std::calloc(1, size);
}
} // namespace

TEST(OpeningCost, IsWhatTheLibraryReserves)
{
    const TemporaryFolder folder;
    for (const int count : {1, 64, 65, 200, 1000}) {
        Pool pool = Sound();
        OpeningCost cost;
        cost.BeginDirectory(static_cast<std::uint32_t>(count));
        for (int i = 0; i < count; ++i) {
            std::string uuid = kUuid;
            const std::string number = std::to_string(100000 + i);
            uuid.replace(0, number.size(), number);
            pool.directory.resize(static_cast<std::size_t>(i));
            pool.directory.push_back(uuid);
            Uuid stored = {};
            std::ranges::copy(uuid, stored.begin());
            EXPECT_TRUE(cost.AddEntry(stored));
        }
        folder.Write("a.sim", pool.Bytes());
        const mem_Functions before = mem_CurrentFunctions();
        largest = 0;
        largestZeroed = 0;
        mem_CurrentFunctions().allocate = RememberLargest;
        mem_CurrentFunctions().allocateZeroed = RememberLargestZeroed;
        {
            VUKSimRpm_Document document("TEST");
            static_cast<void>(document.AddFile(folder.File("a.sim"), VUKSimRpm_Document::Read));
        }
        mem_CurrentFunctions() = before;
        EXPECT_EQ(cost.CacheBytes(), largest + largestZeroed) << count;
    }
}
