#include "ModelStore.h"
#include "StoredRun.h"
#include "TemporaryFolder.h"

#include "VUKSimExcRequestTooBig.h"
#include "VUKSimRpm_Document.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

namespace heat {
namespace {

void Store(const std::string& name, const Model& model)
{
    VUKSimRpm_Document document(kSignature);
    const VUKSimRpm_File file =
        document.AddFile(VUKString(name.c_str()), VUKSimRpm_Document::Write);
    static_cast<void>(StoreModel(file, model));
    document.Close();
}

Model Load(const std::string& name)
{
    VUKSimRpm_Document document(kSignature);
    return LoadModel(
        ModelRecord(document.AddFile(VUKString(name.c_str()), VUKSimRpm_Document::Read)));
}

// The text of the exception that loading throws once byte `at` of the stored file is `value`.
std::string Complaint(std::size_t at, char value)
{
    const TemporaryFolder folder;
    const std::string name = folder.Path("model.sim");
    Store(name, PlateModel({4, 2, 1, 10})); // 24 nodes, 12 elements
    std::string bytes = FileBytes(name);
    bytes.at(at) = value;
    WriteFileBytes(name, bytes);
    try {
        static_cast<void>(Load(name));
    } catch (const std::exception& error) {
        return error.what();
    }
    return "";
}

TEST(ModelStore, GivesBackWhatWasStored)
{
    const TemporaryFolder folder;
    const Model model = PlateModel({12, 8, 6, 240});
    Store(folder.Path("model.sim"), model);
    EXPECT_TRUE(Load(folder.Path("model.sim")) == model);
}

TEST(ModelStore, TakesThreePools)
{
    const TemporaryFolder folder;
    Store(folder.Path("model.sim"), PlateModel({4, 2, 1, 10}));

    VUKSimRpm_Document document(kSignature);
    const VUKSimRpm_File file =
        document.AddFile(VUKString(folder.Path("model.sim").c_str()), VUKSimRpm_Document::Read);
    ASSERT_EQ(file.PoolCount(), 3u);
    EXPECT_EQ(file.Pool(0).Length(), 396u); // 8 + 4 + 24 nodes of 16 bytes
    EXPECT_EQ(file.Pool(1).Length(), 204u); // 8 + 4 + 12 elements of 16 bytes
    EXPECT_EQ(file.Pool(2).DirectorySizeBytes(), 96u);
}

// The nodes' data begins at byte 80, behind one header of 48 and one directory entry of 32 bytes;
// the elements' at 80 + 396 + 80 = 556; the model record's at 556 + 204 + 144 = 904.
TEST(ModelStore, SaysWhatIsWrongWithADamagedRecord)
{
    EXPECT_EQ(Complaint(80, '?'), "stored model: no record \"HEATNODE\" where one is referred to");
    EXPECT_EQ(Complaint(556, '?'), "stored model: no record \"HEATELEM\" where one is referred to");
    EXPECT_EQ(Complaint(904, '?'), "stored model: no record \"HEATMODL\" where one is referred to");
    EXPECT_EQ(Complaint(556 + 12, 24), "stored model: element 0 names node 24 of 24");
}

TEST(ModelStore, GivesUpWhenTheBytesEndBeforeTheNodesDo)
{
    const TemporaryFolder folder;
    const std::string name = folder.Path("model.sim");
    Store(name, PlateModel({4, 2, 1, 10}));
    std::string bytes = FileBytes(name);
    bytes.at(80 + 11) = static_cast<char>(0xB0); // some 3 billion nodes
    WriteFileBytes(name, bytes);
    EXPECT_THROW(static_cast<void>(Load(name)), VUKSimExcRequestTooBig);
}

TEST(ModelStore, RefusesAFileWithoutPools)
{
    const TemporaryFolder folder;
    WriteFileBytes(folder.Path("model.sim"), "");
    EXPECT_THROW(static_cast<void>(Load(folder.Path("model.sim"))), std::runtime_error);
}

} // namespace
} // namespace heat
