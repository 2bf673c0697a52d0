#pragma once

#include "Command.h"
#include "PoolCopying.h"

#include <string>
#include <vector>

namespace simpool {

/// Copies pools of one file into another, new or there already.
class Copy : public Command
{
public:
    [[nodiscard]] CommandText Text() const override;
    void AddOptions(CLI::App& options) override;
    [[nodiscard]] ExitCode Run(const Surroundings& surroundings) override;

private:
    [[nodiscard]] std::vector<CopiedPool> Chosen(const LoadedFile& source) const;

    std::string mName = {};
    std::vector<std::string> mPools = {};
    std::string mOutput = {};
};
} // namespace simpool
