#include "ReadBack.h"

#include "HistoryEnd.h"
#include "ModelStore.h"

#include "VUKSimRpm_Document.h"

#include <algorithm>
#include <chrono>
#include <cstring>
#include <limits>
#include <stdexcept>
#include <string>
#include <utility>

namespace heat {

namespace {

// The last frame stands at the end of the last pool, and all frames of a run have one size.
VUKSimRpm_Locator LastFrame(const VUKSimRpm_File& results, unsigned long long frameBytes)
{
    const VUKSimRpm_Locator begin = results.Start();
    const VUKSimRpm_Locator end = results.End();
    if (end - begin < frameBytes) {
        throw std::runtime_error(std::string(results.FileName().UTF8()) +
                                 " holds no frame in its last pool");
    }
    return end - frameBytes;
}

Frame Follow(const VUKSimRpm_Locator& place, std::size_t values, const std::vector<Frame>& later)
{
    // How far the pool reaches is not known here; the record's checksum is the judge.
    FrameReading reading = ReadFrame(place, std::numeric_limits<unsigned long long>::max(), values);
    if (reading.state != FrameState::Whole) {
        throw std::runtime_error(later.empty()
                                     ? "the last pool of results does not end with a whole frame"
                                     : "step " + std::to_string(later.back().step) +
                                           " refers back to a place that holds no whole frame");
    }
    return std::move(reading.frame);
}

// From the last frame to the first, then turned around.
void FollowChain(const VUKSimRpm_Locator& last, const VUKSimRpm_Locator& mesh, std::size_t values,
                 History& history)
{
    VUKSimRpm_Locator place = last;
    while (!place.Null()) {
        Frame frame = Follow(place, values, history.frames);
        if (!(frame.mesh == mesh)) {
            throw std::runtime_error("step " + std::to_string(frame.step) +
                                     " refers to another mesh");
        }
        if (!history.frames.empty() && frame.step + 1 != history.frames.back().step) {
            throw std::runtime_error("step " + std::to_string(history.frames.back().step) +
                                     " refers back to step " + std::to_string(frame.step));
        }
        if (!frame.previous.Null() && !frame.previous.SamePool(place)) {
            ++history.poolChanges;
        }
        place = frame.previous;
        history.bytes += FrameBytes(values);
        history.frames.push_back(std::move(frame));
    }
    if (history.frames.back().step != 0) {
        throw std::runtime_error("the chain of frames ends at step " +
                                 std::to_string(history.frames.back().step));
    }
    std::reverse(history.frames.begin(), history.frames.end());
}

} // namespace

History ReadHistory(const StoredRunPlan& plan)
{
    VUKSimRpm_Document document(kSignature);
    const VUKSimRpm_File results =
        document.AddFile(VUKString(plan.resultsFile.c_str()), VUKSimRpm_Document::Read);
    const VUKSimRpm_File modelFile =
        document.AddFile(VUKString(plan.modelFile.c_str()), VUKSimRpm_Document::Read);

    History history;
    const VUKSimRpm_Locator mesh = ModelRecord(modelFile);
    const std::size_t values = LoadModel(mesh).mesh.nodes.size();
    history.modelPools = modelFile.PoolCount();
    history.resultsPools = results.PoolCount();

    const auto start = std::chrono::steady_clock::now();
    FollowChain(LastFrame(results, FrameBytes(values)), mesh, values, history);
    history.seconds =
        std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    // The model that is handed out is the one that the first frame leads to.
    history.model = LoadModel(history.frames.front().mesh);
    document.Close();
    return history;
}

long long FirstDifference(const std::vector<Frame>& stored,
                          const std::vector<std::vector<double>>& expected)
{
    const std::size_t common = std::min(stored.size(), expected.size());
    for (std::size_t step = 0; step < common; ++step) {
        const std::vector<double>& a = stored[step].values;
        const std::vector<double>& b = expected[step];
        // By their bits: 0.0 and -0.0 differ, and a NaN equals itself.
        if (a.size() != b.size() ||
            std::memcmp(a.data(), b.data(), a.size() * sizeof(double)) != 0) {
            return static_cast<long long>(step);
        }
    }
    return stored.size() == expected.size() ? -1 : static_cast<long long>(common);
}

} // namespace heat
