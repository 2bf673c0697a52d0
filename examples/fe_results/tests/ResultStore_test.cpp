#include "FrdReader.h"
#include "MeshRecord.h"
#include "RecordReader.h"
#include "ResultStoreReader.h"
#include "ResultStoreWriter.h"
#include "ScratchFolder.h"
#include "TinyResult.h"
#include "Transfer.h"

#include "VUKSimRpm_Document.h"
#include "VUKSimRpm_File.h"
#include "VUKSimRpm_Pool.h"

#include <cstdint>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace fe {
namespace {

using Mode = VUKSimRpm_Document::AccessMode;

FrdResult MadeResult(std::int32_t step, std::vector<std::int64_t> nodes, std::vector<double> values)
{
    FrdResult result;
    result.header = "  100CL";
    result.nameRecord = " -4";
    result.name = "T";
    result.step = step;
    result.components = {{" -5", "T", "temperature", true}};
    result.nodeNumbers = std::move(nodes);
    result.values = std::move(values);
    return result;
}

FrdMesh MadeMesh()
{
    FrdMesh mesh;
    mesh.source = "made.frd";
    mesh.lineEnd = "\n";
    mesh.nodes.header = "    2C";
    mesh.nodes.numbers = {5, 6};
    mesh.nodes.coordinates = {1.5, -2.25, 0.0, 0.0, 0.0, 8.0};
    return mesh;
}

class ResultStore : public testing::Test
{
protected:
    VUKSimRpm_File Add(VUKSimRpm_Document& document, const char* name, Mode mode)
    {
        return document.AddFile(VUKString(mFolder.PathOf(name).c_str()), mode);
    }

    // Stores blocks at all nodes of the mesh, with the values {step, -step}.
    void StoreSteps(std::int32_t count)
    {
        VUKSimRpm_Document document("TEST");
        const VUKSimRpm_File mesh = Add(document, "mesh.sim", Mode::Write);
        ResultStoreWriter writer(mesh, Add(document, "results.sim", Mode::Write));
        writer.Store(MadeMesh());
        for (std::int32_t step = 1; step <= count; ++step) {
            writer.Store(MadeResult(step, {5, 6}, {1.0 * step, -1.0 * step}));
        }
        writer.StoreEnd({});
        document.Close();
    }

    ScratchFolder mFolder;
};

TEST_F(ResultStore, NumbersAreStoredAsLittleEndianDoubles)
{
    StoreSteps(1);
    using namespace std::string_literals;
    const std::string coordinates = "\x00\x00\x00\x00\x00\x00\xF8\x3F"   //  1.5
                                    "\x00\x00\x00\x00\x00\x00\x02\xC0"   // -2.25
                                    "\x00\x00\x00\x00\x00\x00\x00\x00"s; // 0
    EXPECT_NE(mFolder.Read("mesh.sim").find(coordinates), std::string::npos);
    const std::string numbers = "NODELIST"
                                "\x28\x00\x00\x00\x00\x00\x00\x00" // 40 bytes in the record
                                "\x02\x00\x00\x00\x00\x00\x00\x00" // two numbers: 5, 6
                                "\x05\x00\x00\x00\x00\x00\x00\x00"
                                "\x06\x00\x00\x00\x00\x00\x00\x00"s;
    EXPECT_NE(mFolder.Read("mesh.sim").find(numbers), std::string::npos);
    const std::string values = "\x02\x00\x00\x00\x00\x00\x00\x00" // two values: 1, -1
                               "\x00\x00\x00\x00\x00\x00\xF0\x3F"
                               "\x00\x00\x00\x00\x00\x00\xF0\xBF"s;
    EXPECT_NE(mFolder.Read("results.sim").find(values), std::string::npos);
}

TEST_F(ResultStore, BlocksAreReachedThroughPoolsAndFilesOpenedInTheOtherOrder)
{
    StoreSteps(100);
    VUKSimRpm_Document document("TEST");
    const VUKSimRpm_File results = Add(document, "results.sim", Mode::Read);
    Add(document, "mesh.sim", Mode::Read);
    EXPECT_GE(results.PoolCount(), 5U);

    ResultStoreReader reader(results);
    EXPECT_EQ(reader.Results(), 100U);
    EXPECT_EQ(reader.Way().steps, 99U);
    EXPECT_EQ(reader.Way().poolChanges, results.PoolCount() - 1);
    EXPECT_EQ(reader.Way().meshWays, 100U);
    EXPECT_EQ(reader.Way().ownNodeLists, 0U);
    EXPECT_EQ(reader.Mesh().nodes.coordinates, MadeMesh().nodes.coordinates);
    EXPECT_EQ(reader.Result(0).values, (std::vector<double>{1, -1}));
    EXPECT_EQ(reader.Result(99).values, (std::vector<double>{100, -100}));
    EXPECT_EQ(reader.Result(99).step, 100);
    EXPECT_EQ(reader.Result(41).components[0].unit, "temperature");
    EXPECT_EQ(reader.Result(41).nodeNumbers, (std::vector<std::int64_t>{5, 6}));
}

TEST_F(ResultStore, LongHistoriesTakeFewPools)
{
    StoreSteps(2000);
    VUKSimRpm_Document document("TEST");
    EXPECT_LT(Add(document, "results.sim", Mode::Read).PoolCount(), 70U);
}

TEST_F(ResultStore, BlocksAtOtherNodesShareALocatorToTheirList)
{
    VUKSimRpm_Document document("TEST");
    const VUKSimRpm_File mesh = Add(document, "mesh.sim", Mode::Write);
    const VUKSimRpm_File results = Add(document, "results.sim", Mode::Write);
    ResultStoreWriter writer(mesh, results);
    writer.Store(MadeMesh());
    writer.Store(MadeResult(1, {6}, {60}));
    writer.Store(MadeResult(2, {5, 6}, {51, 61}));
    writer.Store(MadeResult(3, {6}, {62}));
    writer.Store(MadeResult(4, {6, 5}, {63, 53}));
    writer.StoreEnd({"    1UEND"});

    ResultStoreReader reader(results);
    EXPECT_EQ(reader.Way().ownNodeLists, 3U);
    EXPECT_EQ(reader.Result(0).nodeNumbers, (std::vector<std::int64_t>{6}));
    EXPECT_EQ(reader.Result(1).nodeNumbers, (std::vector<std::int64_t>{5, 6}));
    EXPECT_EQ(reader.Result(2).nodeNumbers, (std::vector<std::int64_t>{6}));
    EXPECT_EQ(reader.Result(3).nodeNumbers, (std::vector<std::int64_t>{6, 5}));
    EXPECT_EQ(reader.Trailing(), (FrdLines{"    1UEND"}));

    std::size_t lists = 0;
    const std::string bytes = mFolder.Read("results.sim");
    for (std::size_t at = bytes.find("NODELIST"); at != std::string::npos;
         at = bytes.find("NODELIST", at + 1)) {
        ++lists;
    }
    EXPECT_EQ(lists, 2U); // {6} once for two blocks, {6, 5} once
}

TEST_F(ResultStore, AFileWithoutItsEndRecordIsNotWhole)
{
    VUKSimRpm_Document document("TEST");
    const VUKSimRpm_File mesh = Add(document, "mesh.sim", Mode::Write);
    const VUKSimRpm_File results = Add(document, "results.sim", Mode::Write);
    EXPECT_THROW(ResultStoreReader{results}, RecordError); // nothing in it
    ResultStoreWriter writer(mesh, results);
    writer.Store(MadeMesh());
    writer.Store(MadeResult(1, {5, 6}, {1, 2}));
    EXPECT_ANY_THROW(ResultStoreReader{results}); // a block, but no end
    writer.StoreEnd({});
    EXPECT_NO_THROW(ResultStoreReader{results});
}

TEST_F(ResultStore, ALocatorToAnotherKindOfRecordIsRefused)
{
    VUKSimRpm_Document document("TEST");
    const VUKSimRpm_File file = Add(document, "mesh.sim", Mode::Write);
    const VUKSimRpm_Locator place = WriteNodeList(file.Pool(), {1, 2, 3});
    EXPECT_EQ(ReadNodeList(place), (std::vector<std::int64_t>{1, 2, 3}));
    EXPECT_THROW(static_cast<void>(ReadMesh(place)), RecordError);
    EXPECT_THROW(static_cast<void>(ReadNodeList(place + 1)), RecordError);
    EXPECT_THROW(static_cast<void>(ReadNodeList(file.End())), RecordError);
}

TEST_F(ResultStore, ACountThatTheFileCannotHoldCostsNoMemory)
{
    VUKSimRpm_Document document("TEST");
    const VUKSimRpm_File file = Add(document, "mesh.sim", Mode::Write);
    const VUKSimRpm_Locator place = WriteNodeList(file.Pool(), {1, 2, 3});
    (place + 16).Write(8, "\xFF\xFF\xFF\xFF\xFF\xFF\xFF\x7F");
    EXPECT_ANY_THROW(static_cast<void>(ReadNodeList(place)));
}

} // namespace
} // namespace fe
