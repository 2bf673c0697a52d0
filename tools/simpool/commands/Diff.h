#pragma once

#include "Command.h"
#include "FileDifference.h"

#include <string>
#include <vector>

namespace simpool {

/// Tells what differs between two files.
class Diff : public Command
{
public:
    [[nodiscard]] CommandText Text() const override;
    void AddOptions(CLI::App& options) override;
    [[nodiscard]] ExitCode Run(const Surroundings& surroundings) override;

private:
    [[nodiscard]] DifferenceRules Rules(const LoadedFile& a, const LoadedFile& b) const;

    std::string mA = {};
    std::string mB = {};
    std::string mBy = "uuid";
    std::string mAs = "byte";
    double mRelative = 0;
    double mAbsolute = 0;
    std::vector<std::string> mIgnored = {};
    std::size_t mMostPlaces = 3;
};
} // namespace simpool
