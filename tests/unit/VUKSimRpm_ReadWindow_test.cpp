#include "VUKSimRpm_ReadWindow.h"

#include "CountedMemory.h"
#include "Failures.h"
#include "FileFixture.h"
#include "ScriptedSystemCalls.h"
#include "Transfers.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <optional>
#include <string>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// A file of 20,000 bytes, small enough not to be mapped, and a window on it that saw nothing yet.
class ReadWindow : public FileFixture
{
protected:
    ReadWindow()
    {
        std::string data;
        while (data.size() < 20000 - 80) {
            data += std::to_string(data.size()) + " ";
        }
        data.resize(20000 - 80);
        mStored = bytes::Pool({.directory = {bytes::Uuid('a')}, .data = data}).Bytes();
        mFile.OpenRead(mFolder.Write("a.sim", mStored));
        mCalls.emplace();
    }

    // What the window gives, or "none".
    std::string Seen(unsigned long long position, unsigned long length)
    {
        const char* const bytes = mWindow.Bytes(position, length);
        return bytes == nullptr ? "none" : std::string(bytes, length);
    }
    std::string Stored(std::size_t position, std::size_t length) const
    {
        return mStored.substr(position, length);
    }

    std::string mStored;
    VUKSimRpm_FileImpl mFile{mDocument};
    VUKSimRpm_ReadWindow mWindow{mFile};
    std::optional<ScriptedSystemCalls> mCalls; // from the first read of the window on
};
} // namespace

TEST_F(ReadWindow, ReadsAHeaderWithADirectoryOfOneEntry)
{
    EXPECT_EQ(Seen(8192, 48), Stored(8192, 48));
    EXPECT_EQ(Seen(8240, 32), Stored(8240, 32));
    EXPECT_THAT(Reads(*mCalls), ElementsAre(Transfer{8192, 80}));
}

TEST_F(ReadWindow, ReadsTheRestOfThePageBehindAHeaderThatIsNear)
{
    EXPECT_EQ(Seen(8192, 48), Stored(8192, 48));
    EXPECT_EQ(Seen(9215, 48), Stored(9215, 48)); // 1,023 bytes on
    EXPECT_EQ(Seen(12200, 48), Stored(12200, 48));
    EXPECT_EQ(Seen(9300, 48), Stored(9300, 48)); // back again
    EXPECT_THAT(Reads(*mCalls), ElementsAre(Transfer{8192, 80}, Transfer{9215, 3073}));
}

TEST_F(ReadWindow, ReadsNoMoreThanTheEntryBehindAHeaderThatIsFar)
{
    EXPECT_EQ(Seen(8192, 48), Stored(8192, 48));
    EXPECT_EQ(Seen(9216, 48), Stored(9216, 48)); // 1,024 bytes on
    EXPECT_EQ(Seen(4096, 48), Stored(4096, 48)); // before it
    EXPECT_THAT(Reads(*mCalls),
                ElementsAre(Transfer{8192, 80}, Transfer{9216, 80}, Transfer{4096, 80}));
}

TEST_F(ReadWindow, ReadsAPageWhereTheFileBegins)
{
    EXPECT_EQ(Seen(0, 48), Stored(0, 48));
    EXPECT_EQ(Seen(4048, 48), Stored(4048, 48));
    EXPECT_THAT(Reads(*mCalls), ElementsAre(Transfer{0, 4096}));
}

TEST_F(ReadWindow, TouchesNoPageThatNobodyAskedFor)
{
    EXPECT_EQ(Seen(12230, 48), Stored(12230, 48)); // the page ends at 12,288
    EXPECT_EQ(Seen(12278, 32), Stored(12278, 32)); // and is passed here; near, so up to 16,384
    EXPECT_THAT(Reads(*mCalls), ElementsAre(Transfer{12230, 58}, Transfer{12278, 4096}));
}

TEST_F(ReadWindow, ReadsALongDirectoryAsItIs)
{
    EXPECT_EQ(Seen(8192, 4096), Stored(8192, 4096));
    EXPECT_EQ(Seen(100, 4097), Stored(100, 4097));
    EXPECT_EQ(Seen(8192, 48), Stored(8192, 48)); // still held
    EXPECT_EQ(Seen(20000 - 4097, 4098), "none");
    EXPECT_THAT(Reads(*mCalls), ElementsAre(Transfer{8192, 4096}, Transfer{100, 4097},
                                            Transfer{15903, 4098}, Transfer{20000, 1}));
}

TEST_F(ReadWindow, AsksOnceForWhatLiesBeforeTheEnd)
{
    EXPECT_EQ(Seen(19952, 48), Stored(19952, 48));
    EXPECT_THAT(Reads(*mCalls), ElementsAre(Transfer{19952, 48}));
}

TEST_F(ReadWindow, HasNothingThatReachesPastTheEnd)
{
    EXPECT_EQ(Seen(19953, 48), "none");
    EXPECT_EQ(Seen(19980, 32), "none");
    EXPECT_EQ(Seen(19960, 40), Stored(19960, 40));
    EXPECT_EQ(Seen(20000, 1), "none");
    EXPECT_EQ(Seen(1ULL << 63U, 48), "none");
    EXPECT_EQ(Seen(18446744073709551615ULL, 48), "none"); // their end has no number
}

TEST_F(ReadWindow, FindsNoBytesAnywhere)
{
    for (const unsigned long long position : {0ULL, 20000ULL, 18446744073709551615ULL}) {
        EXPECT_EQ(Seen(position, 0), "");
    }
    EXPECT_THAT(Reads(*mCalls), IsEmpty());
}

TEST_F(ReadWindow, HoldsNothingAfterAFailure)
{
    EXPECT_EQ(Seen(8192, 48), Stored(8192, 48));
    mCalls->Script(SystemCall::Pread, {Fails(EIO)});
    EXPECT_TRUE(RaisesFileError([&] { (void)Seen(8290, 48); }, "read", EIO));
    EXPECT_EQ(Seen(8192, 48), Stored(8192, 48));
    EXPECT_EQ(Seen(8300, 48), Stored(8300, 48));
}

TEST_F(ReadWindow, TakesNoMemoryForHeadersAndShortDirectories)
{
    const CountedMemory memory;
    EXPECT_EQ(Seen(8192, 48), Stored(8192, 48));
    EXPECT_EQ(Seen(12278, 48), Stored(12278, 48));
    EXPECT_EQ(Seen(3, 4096), Stored(3, 4096));
    EXPECT_EQ(memory.Allocations(), 0);
}
