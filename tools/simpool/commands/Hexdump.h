#pragma once

#include "Command.h"

#include <string>
#include <vector>

namespace simpool {

/// Shows the bytes of a pool, and what they mean.
class Hexdump : public Command
{
public:
    [[nodiscard]] CommandText Text() const override;
    void AddOptions(CLI::App& options) override;
    [[nodiscard]] ExitCode Run(const Surroundings& surroundings) override;

private:
    std::string mName = {};
    std::string mRange = {};
    std::string mLayout = {};
    std::vector<std::string> mOthers = {};
};
} // namespace simpool
