#pragma once

#include "Command.h"

#include <string>

namespace simpool {

/// Writes a file's whole structure, and its data if wanted, as a document.
class Dump : public Command
{
public:
    [[nodiscard]] CommandText Text() const override;
    void AddOptions(CLI::App& options) override;
    [[nodiscard]] ExitCode Run(const Surroundings& surroundings) override;

private:
    std::string mName = {};
    bool mWithData = false;
};
} // namespace simpool
