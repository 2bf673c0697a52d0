#pragma once

#include "Command.h"
#include "PoolGraph.h"

#include <string>
#include <vector>

namespace simpool {

/// Draws pools and their references.
class Graph : public Command
{
public:
    [[nodiscard]] CommandText Text() const override;
    void AddOptions(CLI::App& options) override;
    [[nodiscard]] ExitCode Run(const Surroundings& surroundings) override;

private:
    [[nodiscard]] std::string Draw(PoolGraph& graph, const LoadedFiles& files) const;
    [[nodiscard]] std::string DrawSvg(const PoolGraph& graph, const LoadedFiles& files,
                                      bool drawsImplied) const;

    std::vector<std::string> mNames = {};
    std::string mFormat = "svg";
    std::string mArrows = "auto";
    std::string mEngine = "auto";
    std::string mOutput = {};
    bool mIsForced = false;
};
} // namespace simpool
