#pragma once

#include "Command.h"

#include <string>

namespace simpool {

/// Draws where in a file what lies.
class Map : public Command
{
public:
    [[nodiscard]] CommandText Text() const override;
    void AddOptions(CLI::App& options) override;
    [[nodiscard]] ExitCode Run(const Surroundings& surroundings) override;

private:
    std::string mName = {};
    std::string mOutput = {};
    bool mIsForced = false;
};
} // namespace simpool
