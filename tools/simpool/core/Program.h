#pragma once

#include "Command.h"

#include <memory>
#include <vector>

namespace simpool {

using CommandList = std::vector<std::unique_ptr<Command>>;

/// The program's options and those of all `commands`, which must outlive it. Help, man page and
/// completions are made from it. `json` is bound to every command's --json.
[[nodiscard]] std::unique_ptr<CLI::App> DescribeProgram(const CommandList& commands, bool& json);

/// Runs the one of `commands` that the arguments name, and returns the exit code.
[[nodiscard]] int RunProgram(const CommandList& commands, int argumentCount,
                             const char* const* arguments);
} // namespace simpool
