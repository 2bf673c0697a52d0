#pragma once

#include "DiskLog.h"

#include <optional>

/// The log of the same run by a library that does not give a file its full length before it freezes
/// a pool: each of these calls leaves the file as long as it is. Moments stay what they were.
///
/// Null when the run made no such call.
[[nodiscard]] std::optional<DiskLog> WithoutExtensions(const DiskLog& log);
