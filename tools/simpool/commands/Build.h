#pragma once

#include "Command.h"

#include <string>

namespace simpool {

/// Makes a file of what Dump wrote.
class Build : public Command
{
public:
    [[nodiscard]] CommandText Text() const override;
    void AddOptions(CLI::App& options) override;
    [[nodiscard]] ExitCode Run(const Surroundings& surroundings) override;

private:
    std::string mName = {};
    std::string mOutput = {};
    bool mForces = false;
};
} // namespace simpool
