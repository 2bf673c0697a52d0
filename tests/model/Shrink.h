#pragma once

#include "Operation.h"

#include <functional>

/// The smallest script that can be reached from `script` by leaving out operations and by smaller
/// arguments, and that still `fails`. Leaving out one more operation would let it pass, or two of a
/// short one.
Script Shrunk(Script script, const std::function<bool(const Script&)>& fails);
