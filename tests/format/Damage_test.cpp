// Every golden file with each single byte changed, and cut at every length: opening it either fails
// in a documented way or gives a file that can be used. Nothing else happens, whatever is stored.
#include "Golden.h"

#include "Bytes.h"
#include "Damage.h"
#include "Failures.h"
#include "OnePool.h"
#include "VUKSimRpm_BStreamReadLocator.h"
#include "VUKSimRpm_Pool.h"
#include "VUKSimUttSystemCalls.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

namespace {
constexpr char kPool[] = "VUKSim/VUKSimRpm.m/src/VUKSimRpm_PoolImpl";
constexpr char kDirectory[] = "VUKSim/VUKSimRpm.m/src/VUKSimRpm_PoolDirectoryImpl";
constexpr char kFile[] = "VUKSim/VUKSimRpm.m/src/VUKSimRpm_FileImpl";
constexpr char kLocator[] = "VUKSim/VUKSimRpm.m/src/VUKSimRpm_Locator";
constexpr char kStream[] = "VUKSim/VUKSimRpm.m/src/VUKSimRpm_BStreamReadLocator";
constexpr char kList[] = "VUKSim/VUKSimContainers.m/src/cow_List";

// Nothing here is to survive the machine: thousands of files need not wait for the disk.
class WithoutSync
{
public:
    WithoutSync() : mBefore(VUKSimUttSystemCalls::Current())
    {
        VUKSimUttSystemCalls::Current().fdatasync = [](int) { return 0; };
        VUKSimUttSystemCalls::Current().fsync = [](int) { return 0; };
    }
    WithoutSync(const WithoutSync&) = delete;
    WithoutSync& operator=(const WithoutSync&) = delete;
    ~WithoutSync() { VUKSimUttSystemCalls::Current() = mBefore; }

private:
    VUKSimUttSystemCalls mBefore;
};

// Loading pools: opening a file, and appending a copy.
template <class Call>
bool Load(Call&& call)
{
    return Attempt({{"VUKSimExcCorruptHeader", kPool, 78},
                    {"VUKSimExcNotSimFile", kPool, 81},
                    {"VUKSimExcNeedUpgrade", kPool, 86},
                    {"VUKSimExcUserSigMismatch", kPool, 89},
                    {"VUKSimExcCorruptDirectory", kPool, 106},
                    {"VUKSimExcPoolAlreadyInDoc", kDirectory, 75},
                    {"VUKBasRangeException", kList, 1},   // no directory entry at all
                    {"VUKSimExcShortPool", kFile, 190},   // appending alone, as the next
                    {"VUKSimUttOSFileException", "", 0}}, // a length that no file can have
                   std::forward<Call>(call));
}

class Damage : public testing::TestWithParam<std::string>
{
protected:
    // Opens the bytes in both ways, and does with the file what can be done.
    void TryBoth(const std::string& content)
    {
        TryReading(content);
        TryUpdating(content);
    }

    void TryReading(const std::string& content)
    {
        VUKSimRpm_Document document("DEMO");
        const VUKString name = Fresh("a.sim", content);
        const bool opened = Load([&] {
            const VUKSimRpm_File file = document.AddFile(name, VUKSimRpm_Document::Read);
            for (unsigned int i = 0; i < file.PoolCount(); ++i) {
                ReadData(file.Pool(i));
                Append(file.Pool(i));
            }
        });
        EXPECT_EQ(mFolder.Read("a.sim"), content);
        ++(opened ? mOpened : mRefused);
    }

    void TryUpdating(const std::string& content)
    {
        VUKSimRpm_Document document("DEMO");
        const VUKString name = Fresh("a.sim", content);
        const bool opened = Load([&] { document.AddFile(name, VUKSimRpm_Document::Update); });
        if (!opened) {
            EXPECT_EQ(mFolder.Read("a.sim"), content);
            return;
        }
        VUKSimRpm_File file = document.AddFile(name, VUKSimRpm_Document::Update);
        Attempt({{"VUKSimExcIOBounds", kPool, 168}, {"VUKSimUttOSFileException", "", 0}}, [&] {
            if (file.PoolCount() > 0) {
                file.Allocate(3);
            }
            file.NewPool(false, nullptr);
            document.Close();
        });
        Load([&] { document.AddFile(name, VUKSimRpm_Document::Read); });
    }

    int mOpened = 0;
    int mRefused = 0;

private:
    // A new file each time: a file system that has to keep the old content safe is slow.
    [[nodiscard]] VUKString Fresh(const std::string& name, const std::string& content) const
    {
        std::filesystem::remove(mFolder.Path(name));
        return mFolder.Write(name, content);
    }

    // Reads what stands in the pool as bytes, as a string and as locators.
    static void ReadData(const VUKSimRpm_Pool& pool)
    {
        EXPECT_LE(pool.GetGUID().GetLengthInByte(), 32U);
        const std::string data = ReadFrom(pool.Start(), std::min(pool.Length(), 4096ULL));
        Attempt({{"VUKSimExcRequestTooBig", kStream, 62}}, [&] {
            VUKSimRpm_BStreamReadLocator stream(pool.Start(), 0, 16);
            VUKString text;
            stream.Read(text);
        });
        for (std::size_t offset = 0; offset + 12 <= data.size(); offset += 4) {
            Attempt({{"VUKBasAssertException", kDirectory, 130},
                     {"VUKSimExcCantDerefLocator", kLocator, 117}},
                    [&] {
                        VUKSimRpm_BStreamReadLocator stream(pool.Start() + offset, 0, 16);
                        VUKSimRpm_Locator locator;
                        locator.InternalizeImpl(stream);
                        ReadFrom(locator, 100);
                    });
        }
    }

    void Append(const VUKSimRpm_Pool& pool) const
    {
        VUKSimRpm_Document document("DEMO");
        VUKSimRpm_File target =
            document.AddFile(Fresh("target.sim", ""), VUKSimRpm_Document::Update);
        Load([&] { target.AppendPool(pool); });
    }

    TemporaryFolder mFolder;
    ReportRecorder mReports; // which are not printed
    WithoutSync mWithoutSync;
};
} // namespace

TEST_P(Damage, OfOneByteIsFoundOrDoesNoHarm)
{
    const std::string content = GoldenBytes(GetParam());
    for (std::size_t i = 0; i < content.size(); ++i) {
        const auto byte = static_cast<unsigned char>(content[i]);
        for (const int value : {byte ^ 0x01, byte ^ 0x80, 0x00, 0xFF, 0x2F, byte + 1}) {
            SCOPED_TRACE(GetParam() + ": byte " + std::to_string(i) + " is " +
                         std::to_string(value & 0xFF));
            std::string damaged = content;
            damaged[i] = static_cast<char>(value);
            TryBoth(damaged);
        }
    }
    EXPECT_EQ(mOpened + mRefused, static_cast<int>(6 * content.size()));
    if (content.size() >= 48) {
        EXPECT_GT(mRefused, 0);
    }
}

TEST_P(Damage, ByCuttingIsFoundOrDoesNoHarm)
{
    const std::string content = GoldenBytes(GetParam());
    for (std::size_t length = 0; length <= content.size(); ++length) {
        SCOPED_TRACE(GetParam() + ": cut to " + std::to_string(length) + " bytes");
        TryBoth(content.substr(0, length));
    }
    EXPECT_EQ(mOpened + mRefused, static_cast<int>(content.size()) + 1);
    EXPECT_GT(mOpened, 0); // without a byte it is an empty file
}

INSTANTIATE_TEST_SUITE_P(Golden, Damage, testing::ValuesIn(GoldenNames()),
                         [](const auto& golden) { return golden.param; });
