#pragma once

#include "Command.h"

#include <string>
#include <vector>

namespace simpool {

/// Makes one file of several.
class Merge : public Command
{
public:
    [[nodiscard]] CommandText Text() const override;
    void AddOptions(CLI::App& options) override;
    [[nodiscard]] ExitCode Run(const Surroundings& surroundings) override;

private:
    std::vector<std::string> mNames = {};
    std::string mOutput = {};
    bool mIsForced = false;
};
} // namespace simpool
