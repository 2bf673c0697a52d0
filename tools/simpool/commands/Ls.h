#pragma once

#include "Command.h"

#include <string>
#include <vector>

namespace simpool {

/// Lists the pools of files.
class Ls : public Command
{
public:
    [[nodiscard]] CommandText Text() const override;
    void AddOptions(CLI::App& options) override;
    [[nodiscard]] ExitCode Run(const Surroundings& surroundings) override;

private:
    [[nodiscard]] ExitCode Follow(Output& out) const;

    std::vector<std::string> mNames = {};
    bool mIsLong = false;
    bool mFollows = false;
    double mInterval = 1;     // seconds
    unsigned long mCount = 0; // of lists; 0: without end
};
} // namespace simpool
