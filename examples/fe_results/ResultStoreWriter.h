#pragma once

#include "FrdModel.h"

#include "VUKSimRpm_File.h"
#include "VUKSimRpm_Locator.h"

#include <cstdint>
#include <vector>

namespace fe {

/// Stores one result file: its mesh in one file of a document, its results in another.
///
/// Each block of results leads to the mesh, to the nodes it stands at and to the block before it.
/// Results begin a new pool every so many blocks, so that these ways cross pools. Order of calls:
/// the mesh, the results, the end. Nothing is durable before the document flushes or closes.
class ResultStoreWriter
{
public:
    /// Both files are new, of one document, and `mesh` was added first: a pool can only refer to
    /// pools that are older than itself.
    ResultStoreWriter(const VUKSimRpm_File& mesh, const VUKSimRpm_File& results);

    void Store(const FrdMesh& mesh);
    void Store(const FrdResult& result);
    void StoreEnd(const FrdLines& trailing);

private:
    void StartPoolWhenDue();
    [[nodiscard]] VUKSimRpm_Locator NodeListOf(const FrdResult& result);

    VUKSimRpm_File mMeshFile;
    VUKSimRpm_File mResultsFile;
    VUKSimRpm_Locator mMesh;
    VUKSimRpm_Locator mLast; // block so far; null before the first
    std::uint64_t mResults = 0;
    std::uint64_t mResultsInPool = 0;
    std::vector<std::int64_t> mMeshNodes;
    VUKSimRpm_Locator mMeshNodeList;
    std::vector<std::int64_t> mOwnNodes; // of the last block that stands at other nodes
    VUKSimRpm_Locator mOwnNodeList;      // null before the first of them
};

} // namespace fe
