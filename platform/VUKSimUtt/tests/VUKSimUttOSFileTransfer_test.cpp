#include <cerrno>
#include <string>

#include <gtest/gtest.h>

#include "OSFileSupport.h"
#include "ScriptedSystemCalls.h"
#include "TemporaryFolder.h"
#include "VUKSimUttOSFile.h"

namespace {

constexpr unsigned long long kTwoTo63 = 9223372036854775808ULL;

TEST(OSFileTransfer, ReadGoesOnWhereTheLastReadEnded)
{
    const TemporaryFolder folder;
    const VUKString name = folder.Write("a.sim", "1234567");
    VUKSimUttOSFile file;
    file.OpenRead(name);
    std::string text = "?????";
    EXPECT_EQ(file.Read(text.data(), 3), 3UL);
    EXPECT_EQ(text, "123??");
    EXPECT_EQ(ReadAt(file, 0, 2), "12"); // moves nothing
    EXPECT_EQ(file.Read(text.data(), 0), 0UL);
    EXPECT_EQ(file.Read(text.data(), 5), 4UL);
    EXPECT_EQ(text, "4567?");
    EXPECT_EQ(file.Read(text.data(), 5), 0UL);
    file.Close();
    file.OpenRead(name);
    EXPECT_EQ(file.Read(text.data(), 2), 2UL);
    EXPECT_EQ(text, "1267?");
}

TEST(OSFileTransfer, ReadAtomicIsShortAtTheEndAndEmptyBehindIt)
{
    const TemporaryFolder folder;
    VUKSimUttOSFile file;
    file.OpenRead(folder.Write("a.sim", "12345"));
    std::string text = "????";
    EXPECT_EQ(file.ReadAtomic(3, text.data(), 4), 2UL);
    EXPECT_EQ(text, "45??");
    EXPECT_EQ(file.ReadAtomic(5, text.data(), 4), 0UL);
    EXPECT_EQ(file.ReadAtomic(6, text.data(), 4), 0UL);
    EXPECT_EQ(file.ReadAtomic(4000000000000ULL, text.data(), 4), 0UL);
    EXPECT_EQ(file.ReadAtomic(0, nullptr, 0), 0UL);
    EXPECT_EQ(text, "45??");
}

TEST(OSFileTransfer, ReadsNothingBehindTheLargestPosition)
{
    const TemporaryFolder folder;
    VUKSimUttOSFile file;
    file.OpenRead(folder.Write("a.sim", "12345"));
    const ScriptedSystemCalls calls;
    char buffer[4];
    EXPECT_EQ(file.ReadAtomic(kTwoTo63 - 1, buffer, 4), 0UL);
    EXPECT_EQ(file.ReadAtomic(kTwoTo63, buffer, 4), 0UL);
    EXPECT_EQ(file.ReadAtomic(18446744073709551615ULL, buffer, 4), 0UL);
    EXPECT_TRUE(calls.Calls().empty());
}

TEST(OSFileTransfer, ReadsAreClippedAtTheLargestPosition)
{
    const TemporaryFolder folder;
    VUKSimUttOSFile file;
    file.OpenRead(folder.Write("a.sim", "12345"));
    ScriptedSystemCalls calls;
    char buffer[5];
    EXPECT_EQ(file.ReadAtomic(9223372036854775800ULL, buffer, 5), 0UL);
    EXPECT_EQ(file.ReadAtomic(9223372036854775805ULL, buffer, 5), 0UL);
    ASSERT_EQ(calls.Calls().size(), 2U);
    EXPECT_EQ(calls.Calls()[0].length, 5U);
    EXPECT_EQ(calls.Calls()[1].length, 2U);
}

TEST(OSFileTransfer, NoTransferAsksForMoreThanOneCallCanMove)
{
    const TemporaryFolder folder;
    VUKSimUttOSFile file;
    file.OpenUpdate(folder.Write("a.sim", "12345"));
    ScriptedSystemCalls calls;
    calls.Script(SystemCall::Pread, {Moves(5), Moves(0)});
    char buffer[5];
    EXPECT_EQ(file.ReadAtomic(0, buffer, 18446744073709551615UL), 5UL);
    EXPECT_EQ(std::string(buffer, 5), "12345");
    ASSERT_EQ(calls.Count(SystemCall::Pread), 2);
    EXPECT_EQ(calls.Calls()[0].length, 9223372036854775807U);
    EXPECT_EQ(calls.Calls()[1].position, 5U);
    EXPECT_EQ(calls.Calls()[1].length, 9223372036854775802U);
}

TEST(OSFileTransfer, RefusesToWriteBehindTheLargestPosition)
{
    const TemporaryFolder folder;
    const std::string name = folder.Path("a.sim");
    VUKSimUttOSFile file;
    file.OpenUpdate(folder.Write("a.sim", "12345"));
    const ScriptedSystemCalls calls;
    const auto refuses = [&](unsigned long long position, unsigned long length) {
        return RaisesAt(
            {kFileSource, 166}, [&] { file.WriteAtomic(position, "12345678", length); }, "write",
            EFBIG, name, position, length);
    };
    EXPECT_TRUE(refuses(kTwoTo63 - 1, 1));
    EXPECT_TRUE(refuses(kTwoTo63 - 8, 8));
    EXPECT_TRUE(refuses(kTwoTo63, 0));
    EXPECT_TRUE(refuses(18446744073709551615ULL, 1));
    EXPECT_TRUE(refuses(18446744073709551615ULL, 8));
    EXPECT_TRUE(refuses(0, 9223372036854775808UL));
    EXPECT_TRUE(refuses(10, 18446744073709551615UL));
    EXPECT_TRUE(RaisesAt(
        {kFileSource, 201}, [&] { file.Truncate(kTwoTo63); }, "truncate", EFBIG, name,
        9223372036854775808ULL));
    EXPECT_TRUE(calls.Calls().empty());
    EXPECT_EQ(folder.Read("a.sim"), "12345");
}

TEST(OSFileTransfer, WritingNothingMakesNoCall)
{
    const TemporaryFolder folder;
    VUKSimUttOSFile file;
    file.OpenUpdate(folder.Write("a.sim", "12345"));
    const ScriptedSystemCalls calls;
    EXPECT_EQ(file.WriteAtomic(9, nullptr, 0), 0UL);
    EXPECT_EQ(file.WriteAtomic(9223372036854775807ULL, nullptr, 0), 0UL);
    EXPECT_TRUE(calls.Calls().empty());
    EXPECT_EQ(file.FileSize(), 5ULL);
}

TEST(OSFileTransfer, WritesInsideTheFileAndAppendsCostOneCallEach)
{
    const TemporaryFolder folder;
    VUKSimUttOSFile file;
    file.OpenUpdate(folder.Write("a.sim", "12345"));
    const ScriptedSystemCalls calls;
    file.WriteAtomic(1, "abc", 3);
    file.WriteAtomic(5, "67", 2);
    file.WriteAtomic(7, "8", 1);
    EXPECT_EQ(calls.Calls().size(), 3U);
    EXPECT_EQ(calls.Count(SystemCall::Pwrite), 3);
    EXPECT_EQ(folder.Read("a.sim"), "1abc5678");
}

TEST(OSFileTransfer, AWriteBehindTheEndLeavesZerosBetween)
{
    const TemporaryFolder folder;
    VUKSimUttOSFile file;
    file.OpenUpdate(folder.Write("a.sim", "12"));
    file.WriteAtomic(5, "6", 1);
    EXPECT_EQ(folder.Read("a.sim"), std::string("12\0\0\0006", 6));
    EXPECT_EQ(file.FileSize(), 6ULL);
}

TEST(OSFileTransfer, ReachesBeyondFourGibibytes)
{
    const TemporaryFolder folder;
    VUKSimUttOSFile file;
    file.OpenWrite(folder.File("large.sim"));
    file.WriteAtomic(5000000000ULL, "far away", 8);
    EXPECT_EQ(file.FileSize(), 5000000008ULL);
    EXPECT_EQ(ReadAt(file, 5000000004ULL, 100), "away");
    EXPECT_EQ(ReadAt(file, 5000000000ULL - 4294967296ULL, 4), std::string(4, '\0'));
    file.Truncate(4294967297ULL);
    EXPECT_EQ(file.FileSize(), 4294967297ULL);
    EXPECT_EQ(ReadAt(file, 4294967296ULL, 100), std::string(1, '\0'));
}

TEST(OSFileTransfer, TruncateShortensAndLengthens)
{
    const TemporaryFolder folder;
    VUKSimUttOSFile file;
    file.OpenUpdate(folder.Write("a.sim", "12345"));
    file.Truncate(2);
    EXPECT_EQ(folder.Read("a.sim"), "12");
    file.Truncate(4);
    EXPECT_EQ(folder.Read("a.sim"), std::string("12\0\0", 4));
    file.Truncate(0);
    EXPECT_EQ(file.FileSize(), 0ULL);
}

TEST(OSFileTransfer, SeesWhatAnotherAppendsAndCutsOff)
{
    const TemporaryFolder folder;
    const VUKString name = folder.Write("a.sim", "12345");
    VUKSimUttOSFile reader;
    reader.OpenRead(name);
    VUKSimUttOSFile writer;
    writer.OpenUpdate(name);
    writer.WriteAtomic(5, "678", 3);
    EXPECT_EQ(reader.FileSize(), 8ULL);
    EXPECT_EQ(ReadAt(reader, 4, 9), "5678");
    writer.Truncate(6);
    EXPECT_EQ(reader.FileSize(), 6ULL);
    EXPECT_EQ(ReadAt(reader, 4, 9), "56");
}

} // namespace
