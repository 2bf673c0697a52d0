#pragma once

#include "Operation.h"
#include "Random.h"

/// A few operations that belong together, as an application would do them: single ones drawn
/// blindly seldom meet what they need. Whatever they need may have gone away; then they fail.
Script DrawMotif(Random& random);

/// Files with hundreds of pools, beyond the steps in which a document's tables grow.
Script ManyPoolsInAFile(std::uint32_t file);
