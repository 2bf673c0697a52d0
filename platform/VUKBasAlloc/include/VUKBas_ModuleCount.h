#pragma once

/// A module's nesting count: how many calls of its initialize are still to be answered by finalize.
///
/// One per module, static in the module's own source. Plain memory: modules start and stop on one
/// thread.
class VUKBas_ModuleCount
{
public:
    /// Counts one more user. The first one raises `liveModules`, the host's count, by one.
    void Enter(int& liveModules) noexcept
    {
        if (mNesting++ == 0) {
            ++liveModules;
        }
    }

    /// Counts one user less. The last one lowers `liveModules` by one. A call without a matching
    /// Enter changes nothing.
    void Leave(int& liveModules) noexcept
    {
        if (mNesting > 0 && --mNesting == 0) {
            --liveModules;
        }
    }

private:
    int mNesting = 0; // calls of Enter not yet answered by Leave; never negative
};
