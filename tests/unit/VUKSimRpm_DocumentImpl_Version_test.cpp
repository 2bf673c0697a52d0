#include "VUKSimRpm_DocumentImpl.h"

#include "Bytes.h"
#include "Failures.h"
#include "ScriptedSystemCalls.h"
#include "TemporaryFolder.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <string>

namespace {
constexpr char kSource[] = "VUKSim/VUKSimRpm.m/src/VUKSimRpm_DocumentImpl";
using Document = VUKSimRpm_DocumentImpl;

class Version : public testing::Test
{
protected:
    // A file that begins with the signature and that version byte.
    VUKString Of(int version) const
    {
        return mFolder.Write("a.sim", bytes::Pool{.version = version}.Header());
    }
    VUKString Holding(const std::string& content) const { return mFolder.Write("a.sim", content); }

    const std::string mSignature = "\x89SIM\r\n\x1A\n";
    TemporaryFolder mFolder;
};
} // namespace

TEST_F(Version, TellsTheTypeOfAFileByItsVersion)
{
    EXPECT_EQ(Document::GetFileType(Of(0)), 0);
    EXPECT_EQ(Document::GetFileType(Of(1)), 2);
    EXPECT_EQ(Document::GetFileType(Of(2)), 2);
    EXPECT_EQ(Document::GetFileType(Of(3)), 1);
    EXPECT_EQ(Document::GetFileType(Of(4)), 1);
    EXPECT_EQ(Document::GetFileType(Of(5)), 1);
    EXPECT_EQ(Document::GetFileType(Of(6)), 1);
    EXPECT_EQ(Document::GetFileType(Of(7)), 0);
    EXPECT_EQ(Document::GetFileType(Of(127)), 0);
    EXPECT_EQ(Document::GetFileType(Of(128)), 0);
    EXPECT_EQ(Document::GetFileType(Of(255)), 0);
}

TEST_F(Version, GivesAFileOfAnotherSignatureNoType)
{
    for (std::size_t i = 0; i < 8; ++i) {
        std::string content = mSignature + "\x06";
        content[i] = static_cast<char>(content[i] ^ 1);
        EXPECT_EQ(Document::GetFileType(Holding(content)), 0) << "byte " << i;
    }
}

TEST_F(Version, NeedsNineBytesForAType)
{
    EXPECT_EQ(Document::GetFileType(Holding("")), 0);
    EXPECT_EQ(Document::GetFileType(Holding(mSignature)), 0);
    EXPECT_EQ(Document::GetFileType(Holding(mSignature + "\x06")), 1);
}

TEST_F(Version, RequiresAnUpgradeUpTo5)
{
    EXPECT_TRUE(Document::UpgradeRequired(Of(0)));
    EXPECT_TRUE(Document::UpgradeRequired(Of(5)));
    EXPECT_FALSE(Document::UpgradeRequired(Of(6)));
    EXPECT_FALSE(Document::UpgradeRequired(Of(7)));
    EXPECT_FALSE(Document::UpgradeRequired(Of(127)));
}

TEST_F(Version, RequiresADowngradeFrom7)
{
    EXPECT_FALSE(Document::DowngradeRequired(Of(0)));
    EXPECT_FALSE(Document::DowngradeRequired(Of(5)));
    EXPECT_FALSE(Document::DowngradeRequired(Of(6)));
    EXPECT_TRUE(Document::DowngradeRequired(Of(7)));
    EXPECT_TRUE(Document::DowngradeRequired(Of(127)));
}

TEST_F(Version, RequiresABinaryUpgradeForAllBut6)
{
    EXPECT_TRUE(Document::BinaryUpgradeRequired(Of(0)));
    EXPECT_TRUE(Document::BinaryUpgradeRequired(Of(5)));
    EXPECT_FALSE(Document::BinaryUpgradeRequired(Of(6)));
    EXPECT_TRUE(Document::BinaryUpgradeRequired(Of(7)));
    EXPECT_TRUE(Document::BinaryUpgradeRequired(Of(127)));
}

TEST_F(Version, IsASignedByte)
{
    for (const int negative : {128, 200, 255}) {
        EXPECT_TRUE(Document::UpgradeRequired(Of(negative)));
        EXPECT_FALSE(Document::DowngradeRequired(Of(negative)));
        EXPECT_TRUE(Document::BinaryUpgradeRequired(Of(negative)));
    }
}

TEST_F(Version, IsRequiredWithoutALookAtTheSignature)
{
    EXPECT_TRUE(Document::UpgradeRequired(Holding("not SIM \x05")));
    EXPECT_TRUE(Document::DowngradeRequired(Holding("not SIM \x07")));
    EXPECT_FALSE(Document::BinaryUpgradeRequired(Holding("not SIM \x06")));
}

TEST_F(Version, IsNotRequiredOfAFileThatIsTooShort)
{
    for (const std::string& content : {std::string(), mSignature}) {
        const VUKString name = Holding(content);
        const auto binary = [&] { (void)Document::BinaryUpgradeRequired(name); };
        const auto upgrade = [&] { (void)Document::UpgradeRequired(name); };
        const auto downgrade = [&] { (void)Document::DowngradeRequired(name); };
        EXPECT_TRUE(Raises<VUKSimExcNotSimFile>(binary, kSource, 176));
        EXPECT_TRUE(Raises<VUKSimExcNotSimFile>(upgrade, kSource, 189));
        EXPECT_TRUE(Raises<VUKSimExcNotSimFile>(downgrade, kSource, 202));
    }
}

TEST_F(Version, IsReadFromTheFirstNineBytesAlone)
{
    const VUKString name = Of(6);
    const ScriptedSystemCalls calls;
    EXPECT_EQ(Document::GetFileType(name), 1);
    ASSERT_EQ(calls.Count(SystemCall::Pread), 1);
    EXPECT_EQ(calls.Calls(SystemCall::Pread)[0].length, 9U);
    EXPECT_EQ(calls.Count(SystemCall::Close), 1);
}

TEST_F(Version, NeedsAFileThatIsThere)
{
    const VUKString none = mFolder.File("none.sim");
    EXPECT_TRUE(RaisesFileError([&] { (void)Document::GetFileType(none); }, "open", ENOENT));
    EXPECT_TRUE(RaisesFileError([&] { (void)Document::UpgradeRequired(none); }, "open", ENOENT));
    EXPECT_TRUE(RaisesFileError([&] { (void)Document::DowngradeRequired(none); }, "open", ENOENT));
    EXPECT_TRUE(
        RaisesFileError([&] { (void)Document::BinaryUpgradeRequired(none); }, "open", ENOENT));
    EXPECT_FALSE(mFolder.Has("none.sim"));
}
