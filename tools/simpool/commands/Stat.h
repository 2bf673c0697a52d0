#pragma once

#include "Command.h"

#include <string>
#include <vector>

namespace simpool {

/// Tells where the bytes of files go.
class Stat : public Command
{
public:
    [[nodiscard]] CommandText Text() const override;
    void AddOptions(CLI::App& options) override;
    [[nodiscard]] ExitCode Run(const Surroundings& surroundings) override;

private:
    std::vector<std::string> mNames = {};
    std::size_t mLargest = 10;
};
} // namespace simpool
