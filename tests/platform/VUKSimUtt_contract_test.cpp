#include "VUKSimUttAssert.h"
#include "VUKSimUttExceptionString.h"
#include "VUKSimUttFileUtils.h"
#include "VUKSimUttOSFile.h"
#include "VUKSimUttUtils.h"

#include "Bytes.h"
#include "Failures.h"
#include "TemporaryFolder.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <filesystem>
#include <string>

namespace {

class OSFileContract : public testing::Test
{
protected:
    // Up to `length` bytes of `file` from `position`.
    static std::string ReadAt(VUKSimUttOSFile& file, unsigned long long position,
                              unsigned long length)
    {
        std::string buffer(length, '#');
        buffer.resize(file.ReadAtomic(position, buffer.data(), length));
        return buffer;
    }

    const TemporaryFolder mFolder;
    VUKSimUttOSFile mFile;
};
} // namespace

TEST(AssertContract, TellsTheHandlerAndComesBack)
{
    const ReportRecorder recorder;
    VUKSimUttAssert::ReportAssertionFailure("a < b", "some/source", 1);
    VUKSimUttAssert::ReportValidationFailure("c < d", "other/source", 2);
    EXPECT_TRUE(failures::Reported(
        recorder.Reports(), {{VUKSimUttAssert::Kind::Assertion, "a < b", "some/source", 1},
                             {VUKSimUttAssert::Kind::Validation, "c < d", "other/source", 2}}));
}

TEST(ExceptionStringContract, HasRoomFor1023BytesAndATerminator)
{
    const std::string fits(1023, 'x');
    const std::string tooLong(1024, 'x');
    EXPECT_EQ(VUKSimUttUtils::Copy(fits.c_str()).Text(), fits);
    EXPECT_EQ(VUKSimUttUtils::Copy(tooLong.c_str()).Text(), fits);
    EXPECT_STREQ(VUKSimUttExceptionString<1024>().Text(), "");
    EXPECT_EQ(sizeof(VUKSimUttExceptionString<1024>), 1024U);
}

TEST_F(OSFileContract, WritesAtAPositionAndReadsBack)
{
    mFile.OpenWrite(mFolder.File("a"));
    EXPECT_FALSE(mFile.ReadOnly());
    EXPECT_EQ(mFile.FileName(), mFolder.File("a"));
    EXPECT_EQ(mFile.WriteAtomic(4, "data", 4), 4U);
    EXPECT_EQ(mFile.FileSize(), 8U);
    EXPECT_EQ(ReadAt(mFile, 0, 8), std::string("\0\0\0\0data", 8));
    EXPECT_EQ(mFolder.Read("a"), std::string("\0\0\0\0data", 8));
}

TEST_F(OSFileContract, ReadsLessAtItsEndAndNothingBehindIt)
{
    mFile.OpenRead(mFolder.Write("a", "12345"));
    EXPECT_EQ(ReadAt(mFile, 3, 10), "45");
    EXPECT_EQ(ReadAt(mFile, 5, 10), "");
    EXPECT_EQ(ReadAt(mFile, 6, 10), "");
    EXPECT_EQ(ReadAt(mFile, 9223372036854775807ULL, 10), "");
    EXPECT_EQ(ReadAt(mFile, 18446744073709551615ULL, 10), "");
}

TEST_F(OSFileContract, ReadsOnFromItsStart)
{
    mFile.OpenRead(mFolder.Write("a", "12345"));
    char buffer[4] = {};
    EXPECT_EQ(mFile.Read(buffer, 3), 3U);
    EXPECT_STREQ(buffer, "123");
    EXPECT_EQ(mFile.Read(buffer, 3), 2U);
    EXPECT_EQ(mFile.Read(buffer, 3), 0U);
}

TEST_F(OSFileContract, OpensForReadingForUpdateAndForWriting)
{
    mFolder.Write("a", "12345");
    mFile.OpenRead(mFolder.File("a"));
    EXPECT_TRUE(mFile.ReadOnly());
    mFile.Close();

    mFile.OpenUpdate(mFolder.File("a"));
    EXPECT_FALSE(mFile.ReadOnly());
    mFile.WriteAtomic(1, "xx", 2);
    mFile.Close();
    EXPECT_EQ(mFolder.Read("a"), "1xx45");

    mFile.OpenWrite(mFolder.File("a"));
    EXPECT_EQ(mFile.FileSize(), 0U);
}

TEST_F(OSFileContract, MakesAFileForWritingAlone)
{
    EXPECT_TRUE(RaisesFileError([&] { mFile.OpenRead(mFolder.File("a")); }, "open", ENOENT));
    EXPECT_TRUE(RaisesFileError([&] { mFile.OpenUpdate(mFolder.File("a")); }, "open", ENOENT));
    EXPECT_FALSE(mFolder.Has("a"));
    mFile.OpenWrite(mFolder.File("a"));
    EXPECT_TRUE(mFolder.Has("a"));
}

TEST_F(OSFileContract, BecomesShorterAndLonger)
{
    mFile.OpenUpdate(mFolder.Write("a", "12345"));
    mFile.Truncate(2);
    EXPECT_EQ(mFile.FileSize(), 2U);
    mFile.Truncate(4);
    mFile.Flush();
    EXPECT_EQ(mFolder.Read("a"), std::string("12\0\0", 4));
}

TEST_F(OSFileContract, RemovesATemporaryFileWhenItCloses)
{
    mFile.CreateTemporary(mFolder.File("t"));
    const std::string name = mFile.FileName().UTF8();
    EXPECT_GT(name.size(), mFolder.Path("t").size());
    EXPECT_TRUE(name.starts_with(mFolder.Path("t")));
    EXPECT_TRUE(std::filesystem::exists(name));
    mFile.WriteAtomic(0, "data", 4);
    mFile.Close();
    EXPECT_EQ(mFolder.Count(), 0);
}

TEST_F(OSFileContract, KeepsAGeneratedFile)
{
    mFile.CreateGenerated(mFolder.File("g"), ".sim", false);
    const std::string name = mFile.FileName().UTF8();
    EXPECT_TRUE(name.starts_with(mFolder.Path("g")));
    EXPECT_TRUE(name.ends_with(".sim"));
    EXPECT_GT(name.size(), mFolder.Path("g.sim").size());
    mFile.Close();
    EXPECT_TRUE(std::filesystem::exists(name));
    EXPECT_EQ(mFolder.Count(), 1);
}

TEST_F(OSFileContract, RefusesToWorkWhenClosed)
{
    mFile.OpenWrite(mFolder.File("a"));
    mFile.Close();
    mFile.Close();
    char buffer[1] = {};
    EXPECT_TRUE(RaisesFileError([&] { (void)mFile.ReadAtomic(0, buffer, 1); }, "read", EBADF));
    EXPECT_TRUE(RaisesFileError([&] { mFile.WriteAtomic(0, buffer, 1); }, "write", EBADF));
    EXPECT_TRUE(RaisesFileError([&] { mFile.Flush(); }, "flush", EBADF));
}

TEST_F(OSFileContract, KnowsAFileByAnyOfItsNames)
{
    mFolder.Write("a", "");
    mFolder.Write("b", "");
    std::filesystem::create_hard_link(mFolder.Path("a"), mFolder.Path("hard"));
    std::filesystem::create_symlink(mFolder.Path("a"), mFolder.Path("soft"));
    const auto same = [&](const char* one, const char* other) {
        return VUKSimUttFileUtils::SameFile(mFolder.File(one), mFolder.File(other));
    };
    EXPECT_TRUE(same("a", "a"));
    EXPECT_TRUE(same("a", "./a"));
    EXPECT_TRUE(same("a", "hard"));
    EXPECT_TRUE(same("soft", "a"));
    EXPECT_FALSE(same("a", "b"));
    EXPECT_FALSE(same("a", "missing"));
    EXPECT_FALSE(same("missing", "missing"));

    EXPECT_TRUE(VUKSimUttFileUtils::FileExists(mFolder.File("a")));
    EXPECT_FALSE(VUKSimUttFileUtils::FileExists(mFolder.File("missing")));
}
