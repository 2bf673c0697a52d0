#pragma once

#include "Operation.h"

#include <cstdint>

/// Script `number` of `seed`, the same on every machine. Scripts come in sorts, in turn: some make
/// many pools, some damage much.
Script DrawScript(std::uint64_t seed, std::uint64_t number);
