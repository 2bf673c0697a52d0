#pragma once

#include "Command.h"
#include "StoredHeader.h"

#include <string>
#include <vector>

namespace simpool {

/// Makes a file: with one empty pool, or with a pool for each of some files of raw data.
class New : public Command
{
public:
    [[nodiscard]] CommandText Text() const override;
    void AddOptions(CLI::App& options) override;
    [[nodiscard]] ExitCode Run(const Surroundings& surroundings) override;

private:
    [[nodiscard]] std::vector<Uuid> Uuids(std::size_t count) const;

    std::string mOutput = {};
    std::string mSignature = {};
    std::vector<std::string> mData = {};
    std::vector<std::string> mUuids = {};
    bool mIsForced = false;
};
} // namespace simpool
