#pragma once

#include <CLI/CLI.hpp>

#include <string>
#include <vector>

namespace simpool {

/// An option or a positional argument as a description shows it.
struct OptionText
{
    std::vector<std::string> names = {}; // "-l", "--long"; empty for a positional argument
    std::string positional = {};         // "file"; empty for an option
    std::string value = {};              // "FILE"; empty for a flag
    std::string description = {};        // one line
    bool isRequired = false;
    bool isMany = false;
};

/// All of `options`' own, in their order.
[[nodiscard]] std::vector<OptionText> OptionTexts(const CLI::App& options);

/// "FILE...", "[POOL]": all positional arguments of `options` on one line.
[[nodiscard]] std::string PositionalLine(const CLI::App& options);
} // namespace simpool
