#pragma once

#include "Command.h"

#include <string>
#include <vector>

namespace simpool {

/// Says what is wrong with files.
class VerifyCommand : public Command
{
public:
    [[nodiscard]] CommandText Text() const override;
    void AddOptions(CLI::App& options) override;
    [[nodiscard]] ExitCode Run(const Surroundings& surroundings) override;

private:
    std::vector<std::string> mNames = {};
    bool mErrorsOnly = false;
    bool mListsCodes = false;
};
} // namespace simpool
