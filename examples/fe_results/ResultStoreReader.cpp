#include "ResultStoreReader.h"

#include "MeshRecord.h"
#include "RecordReader.h"

#include "VUKSimRpm_Pool.h"

#include <algorithm>

namespace fe {

ResultStoreReader::ResultStoreReader(const VUKSimRpm_File& results)
    : mEnd(ReadResultEnd(results.Pool()))
{
    for (VUKSimRpm_Locator place = mEnd.last; !place.Null();) {
        if (mPlaces.size() == mEnd.count) {
            throw RecordError("the chain of stored blocks is longer than it should be");
        }
        const ResultLinks links = ReadResultLinks(place);
        mPlaces.push_back(place);
        if (!(links.mesh == mEnd.mesh)) {
            throw RecordError("a stored block leads to another mesh than the others");
        }
        mWalk.meshWays += links.mesh.SamePool(place) ? 0U : 1U;
        if (!links.previous.Null()) {
            ++mWalk.steps;
            mWalk.poolChanges += links.previous.SamePool(place) ? 0U : 1U;
        }
        mWalk.ownNodeLists += links.nodeList.SamePool(links.mesh) ? 0U : 1U;
        place = links.previous;
    }
    if (mPlaces.size() != mEnd.count) {
        throw RecordError("the chain of stored blocks is shorter than it should be");
    }
    std::reverse(mPlaces.begin(), mPlaces.end());
}

FrdMesh ResultStoreReader::Mesh() const
{
    return ReadMesh(mEnd.mesh);
}

FrdResult ResultStoreReader::Result(std::size_t index)
{
    ResultLinks links;
    FrdResult result = ReadResult(mPlaces.at(index), links);
    if (mNodeList.Null() || !(links.nodeList == mNodeList)) {
        mNodes = ReadNodeList(links.nodeList);
        mNodeList = links.nodeList;
    }
    result.nodeNumbers = mNodes;
    if (result.values.size() != mNodes.size() * StoredComponents(result.components)) {
        throw RecordError("a stored block of " + result.name + " does not fit its nodes");
    }
    return result;
}

} // namespace fe
