#pragma once

#include "Failure.h"

#include <cstdint>
#include <initializer_list>
#include <string>
#include <vector>

namespace model {

/// Raises a failure from `line` of the class `source`.
[[noreturn]] void Raise(const char* exception, const char* source, int line,
                        std::initializer_list<std::uint64_t> values = {},
                        const std::string& text = {});

/// Raises a platform's file error; where in the platform is not part of the interface.
[[noreturn]] void RaiseFileError(const char* operation, const std::string& name, int errorNumber);

/// Raises the list's own error for entry 0 of an empty list.
[[noreturn]] void RaiseEmptyList();

/// Reports a condition that does not hold, and raises it: of the store's own state, or of a value
/// from a caller or a file.
void Check(bool holds, const char* text, const char* source, int line);
void Validate(bool holds, const char* text, const char* source, int line);

/// The reports so far; whoever looks empties the list.
std::vector<Report>& Reports();
} // namespace model
