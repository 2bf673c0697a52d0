#pragma once

#include "VUKBas_Export.h"

/// A moment of the wall clock, counted from the first of January 1970, UTC.
struct VUKBAS_EXPORT omi_Time
{
    long long seconds = 0;
    long long microseconds = 0; // 0 to 999999, beyond the seconds
};

/// The time now.
[[nodiscard]] VUKBAS_EXPORT omi_Time omi_gettimeofday() noexcept;
