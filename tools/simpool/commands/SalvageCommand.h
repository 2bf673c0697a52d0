#pragma once

#include "Command.h"
#include "LoadedFile.h"
#include "NewFile.h"
#include "Salvage.h"

#include <string>

namespace simpool {

/// Gets the pools out of a damaged file.
class SalvageCommand : public Command
{
public:
    [[nodiscard]] CommandText Text() const override;
    void AddOptions(CLI::App& options) override;
    [[nodiscard]] ExitCode Run(const Surroundings& surroundings) override;

private:
    [[nodiscard]] ExitCode Copy(const Surroundings& surroundings, const LoadedFile& file) const;
    [[nodiscard]] ExitCode Truncate(const Surroundings& surroundings, const LoadedFile& file) const;
    void CheckNewName(const LoadedFile& file, const std::string& name) const;
    [[nodiscard]] NewFile::Existing Existing() const noexcept;

    std::string mName = {};
    std::string mOutput = {};
    std::string mReport = {};
    SalvageOptions mOptions = {};
    bool mIsDryRun = false;
    bool mTruncates = false;
    bool mForces = false;
};
} // namespace simpool
