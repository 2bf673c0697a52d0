#pragma once

#include "FrameRecord.h"
#include "Model.h"
#include "StoredRun.h"

#include <vector>

namespace heat {

/// A run as its files alone tell it.
struct History
{
    Model model;
    std::vector<Frame> frames; // by step, from 0; their locators are of no use any more
    unsigned modelPools = 0;
    unsigned resultsPools = 0;
    unsigned poolChanges = 0;     // steps on the way back that led into another pool
    unsigned long long bytes = 0; // of frame records read
    double seconds = 0.0;         // for following and decoding all frames
};

/// Opens the results first and the model second, in a document of its own, goes from the last
/// frame back to the first by their locators, and loads the model that the frames refer to.
/// \throws std::runtime_error where the chain breaks or its frames disagree (the text says where).
[[nodiscard]] History ReadHistory(const StoredRunPlan& plan);

/// The first step whose stored field differs from `expected` in any bit, or -1. Lists of different
/// lengths differ at the end of the shorter.
[[nodiscard]] long long FirstDifference(const std::vector<Frame>& stored,
                                        const std::vector<std::vector<double>>& expected);

} // namespace heat
