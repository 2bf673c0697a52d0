// Changes to files behind the library's back.
#pragma once

#include "Operation.h"

#include <cstddef>
#include <string>
#include <vector>

/// Where the pools of a file begin, as far as their headers tell; the first at 0 in any case.
std::vector<std::size_t> PoolStarts(const std::string& content);

/// What DamageFile, CutFile and LengthenFile make of a file's content.
std::string Damaged(const Operation& operation, std::string content);
