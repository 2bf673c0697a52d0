#pragma once

#include "Output.h"

#include <chrono>
#include <cstdint>
#include <string>

namespace simpool {

/// Tells on a terminal how far long work has come, in one line that goes away at the end.
/// Elsewhere, and in the first half second, it shows nothing.
class ProgressLine
{
public:
    /// Shows "`what` 40 %" on `err`, of `total` steps, mostly bytes.
    ProgressLine(Output& err, std::string what, std::uint64_t total);
    ProgressLine(const ProgressLine&) = delete;
    ProgressLine& operator=(const ProgressLine&) = delete;
    ~ProgressLine();

    void At(std::uint64_t done);

private:
    Output& mErr;
    std::string mWhat;
    std::uint64_t mTotal;
    std::chrono::steady_clock::time_point mNext; // when it is shown again
    bool mIsShown = false;
};
} // namespace simpool
