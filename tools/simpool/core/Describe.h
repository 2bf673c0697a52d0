// What is made from the commands' own description: the man page and the shells' completions.
#pragma once

#include "Program.h"

#include <string>

namespace simpool {

/// For section 1, in the man macros.
[[nodiscard]] std::string ManPage(const CommandList& commands);

[[nodiscard]] std::string BashCompletion(const CommandList& commands);
[[nodiscard]] std::string ZshCompletion(const CommandList& commands);
[[nodiscard]] std::string FishCompletion(const CommandList& commands);
} // namespace simpool
