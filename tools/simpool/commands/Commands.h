#pragma once

#include "Program.h"

namespace simpool {

/// All commands, in the order in which help lists them.
[[nodiscard]] CommandList AllCommands();
} // namespace simpool
