#include "VUKSimRpm_DirectLocator.h"

#include "Failures.h"
#include "OnePool.h"
#include "Transfers.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <type_traits>

namespace {

constexpr char kSource[] = "VUKSim/VUKSimRpm.m/src/VUKSimRpm_DirectLocator";

using testing::ElementsAre;
} // namespace

TEST(DirectLocator, IsAPlainValueOfTwoFields)
{
    EXPECT_TRUE(std::is_trivially_copyable_v<VUKSimRpm_DirectLocator>);
    EXPECT_EQ(sizeof(VUKSimRpm_DirectLocator), 16U);
}

TEST(DirectLocator, WithoutAFileFailsToReadAndToWrite)
{
    const VUKSimRpm_DirectLocator nowhere;
    char byte = 'x';
    EXPECT_TRUE(RaisesAssertion([&] { (void)nowhere.Read(1, &byte); }, "0 != mFile", kSource, 15));
    EXPECT_TRUE(RaisesAssertion([&] { nowhere.Write(1, &byte); }, "0 != mFile", kSource, 9));
    EXPECT_EQ(byte, 'x');
}

TEST(DirectLocator, WithoutAFileFailsToMoveNothingAtAll)
{
    const VUKSimRpm_DirectLocator nowhere;
    char byte = 'x';
    EXPECT_TRUE(RaisesAssertion([&] { (void)nowhere.Read(0, &byte); }, "0 != mFile", kSource, 15));
    EXPECT_TRUE(RaisesAssertion([&] { nowhere.Write(0, &byte); }, "0 != mFile", kSource, 9));
}

TEST(DirectLocator, WithAFileMovesNothingWhenAskedForNothing)
{
    const OnePool store("0123456789");
    const VUKSimRpm_DirectLocator direct = store.Start().DirectLocator();
    char byte = 'x';
    EXPECT_EQ(direct.Read(0, &byte), 0UL);
    EXPECT_EQ(direct.Write(0, &byte), 0UL);
    EXPECT_EQ(byte, 'x');
    EXPECT_EQ(store.Stored(), "0123456789");
}

TEST(DirectLocator, OfOffsetZeroIsThePoolsFirstDataByte)
{
    const OnePool store("0123456789");
    const VUKSimRpm_DirectLocator direct = store.Start().DirectLocator();
    const ScriptedSystemCalls calls;
    char byte = '.';
    EXPECT_EQ(direct.Read(1, &byte), 1UL);
    EXPECT_EQ(byte, '0');
    // Behind the header of 48 bytes and a directory of one entry.
    EXPECT_THAT(Reads(calls), ElementsAre(Transfer{80, 1}));
}

TEST(DirectLocator, OfASecondPoolCountsFromTheFilesBeginning)
{
    OnePool store("0123456789");
    store.File().NewPool(true, nullptr);
    WriteTo(store.File().Allocate(3), "abc");
    const VUKSimRpm_DirectLocator direct = (store.File().Start() + 2).DirectLocator();
    const ScriptedSystemCalls calls;
    char byte = '.';
    EXPECT_EQ(direct.Read(1, &byte), 1UL);
    EXPECT_EQ(byte, 'c');
    EXPECT_THAT(Reads(calls), ElementsAre(Transfer{172, 1})); // 80 + 10 + 80 + 2
}

TEST(DirectLocator, NamesTheSameByteAgainAndAgain)
{
    const OnePool store("0123456789");
    const VUKSimRpm_DirectLocator direct = (store.Start() + 4).DirectLocator();
    std::string bytes = "....";
    EXPECT_EQ(direct.Read(2, bytes.data()), 2UL);
    EXPECT_EQ(direct.Read(2, bytes.data() + 2), 2UL);
    EXPECT_EQ(bytes, "4545");
    EXPECT_EQ(direct.Write(2, "ab"), 2UL);
    EXPECT_EQ(direct.Write(2, "cd"), 2UL);
    EXPECT_EQ(store.Stored(), "0123cd6789");
}

TEST(DirectLocator, KnowsNoBoundsButTheFiles)
{
    OnePool store("0123456789");
    store.File().NewPool(true, nullptr);
    WriteTo(store.File().Allocate(3), "abc");
    const VUKSimRpm_DirectLocator direct = (store.Start() + 9).DirectLocator();
    std::string bytes(100, '.');
    EXPECT_EQ(direct.Read(100, bytes.data()), 84UL); // one byte of its pool, then all of the next
    EXPECT_EQ(bytes.substr(0, 9), "9\x89SIM\r\n\x1A\n");
    EXPECT_EQ(bytes.substr(81), "abc" + std::string(16, '.'));
    const std::string written = "9" + bytes.substr(1, 80) + "xyz and more";
    EXPECT_EQ(direct.Write(written.size(), written.data()), 93UL);
    EXPECT_EQ(ReadFrom(store.File().Start(), 100), "xyz and more");
}

TEST(DirectLocator, ReadsNothingAtTheEndOfTheFileAndBehind)
{
    const OnePool store("0123456789");
    char byte = 'x';
    EXPECT_EQ(store.Pool().End().DirectLocator().Read(1, &byte), 0UL);
    const VUKSimRpm_Locator far = store.Start() + 9223372036854775808ULL; // no file reaches there
    EXPECT_EQ(far.DirectLocator().Read(1, &byte), 0UL);
    EXPECT_EQ(byte, 'x');
}

TEST(DirectLocator, PassesOnTheErrorsOfTheFile)
{
    OnePool store("0123456789");
    VUKSimRpm_DirectLocator direct = store.Start().DirectLocator();
    char byte = 'x';
    {
        ScriptedSystemCalls calls;
        calls.FailAlways(SystemCall::Pread, EIO);
        calls.FailAlways(SystemCall::Pwrite, ENOSPC);
        EXPECT_TRUE(RaisesFileError([&] { (void)direct.Read(1, &byte); }, "read", EIO));
        EXPECT_TRUE(RaisesFileError([&] { direct.Write(1, &byte); }, "write", ENOSPC));
    }
    store.ReopenReadOnly();
    direct = store.Start().DirectLocator();
    EXPECT_TRUE(RaisesFileError([&] { direct.Write(1, &byte); }, "write", EBADF));
    EXPECT_EQ(store.Stored(), "0123456789");
}
