#pragma once

#include <cstdint>

/// Says on standard error which script was playing, should the process be killed by a fault of its
/// own. What else would have told of the fault (a sanitizer, the system) still does.
class CrashNote
{
public:
    /// From now on faults are noted.
    static void Install();

    static void Playing(std::uint64_t seed, std::uint64_t script) noexcept;
};
