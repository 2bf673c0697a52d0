#include "ResultStoreWriter.h"

#include "MeshRecord.h"
#include "ResultRecord.h"

#include "VUKSimRpm_Pool.h"

#include <algorithm>

namespace fe {

namespace {

// A pool holds at least so many blocks, and at least this share of those before it: its directory
// names all older pools, which would be too many if a long history filled pools of one size.
constexpr std::uint64_t kLeastResultsInPool = 8;
constexpr std::uint64_t kShareOfEarlier = 8;

} // namespace

ResultStoreWriter::ResultStoreWriter(const VUKSimRpm_File& mesh, const VUKSimRpm_File& results)
    : mMeshFile(mesh), mResultsFile(results)
{}

void ResultStoreWriter::Store(const FrdMesh& mesh)
{
    mMeshNodes = mesh.nodes.numbers;
    mMeshNodeList = WriteNodeList(mMeshFile.Pool(), mMeshNodes);
    mMesh = WriteMesh(mMeshFile.Pool(), mesh, mMeshNodeList);
}

void ResultStoreWriter::Store(const FrdResult& result)
{
    StartPoolWhenDue();
    const ResultLinks links{mMesh, mLast, NodeListOf(result)};
    mLast = WriteResult(mResultsFile.Pool(), result, links);
    ++mResults;
    ++mResultsInPool;
}

void ResultStoreWriter::StoreEnd(const FrdLines& trailing)
{
    WriteResultEnd(mResultsFile.Pool(), ResultEnd{mMesh, mLast, mResults, trailing});
}

void ResultStoreWriter::StartPoolWhenDue()
{
    const std::uint64_t earlier = mResults - mResultsInPool;
    if (mResultsInPool >= std::max(kLeastResultsInPool, earlier / kShareOfEarlier)) {
        mResultsFile.NewPool(false, nullptr);
        mResultsInPool = 0;
    }
}

// Most blocks stand at all nodes of the mesh, and contact blocks often at those of the one before.
VUKSimRpm_Locator ResultStoreWriter::NodeListOf(const FrdResult& result)
{
    if (result.nodeNumbers == mMeshNodes) {
        return mMeshNodeList;
    }
    if (mOwnNodeList.Null() || result.nodeNumbers != mOwnNodes) {
        mOwnNodes = result.nodeNumbers;
        mOwnNodeList = WriteNodeList(mResultsFile.Pool(), mOwnNodes);
    }
    return mOwnNodeList;
}

} // namespace fe
