#pragma once

#include "VUKBasSharedPtr.h"
#include "VUKSimExcCantDerefLocator.h"
#include "VUKSimRpm_Pool.h"
#include "VUKSimRpm_PoolImpl.h"

/// The directory of a pool that a buffer stream is bound to. `source` and `line` are where a pool
/// that is gone is reported. \throws VUKSimExcCantDerefLocator.
[[nodiscard]] inline VUKBasSharedPtr<VUKSimRpm_PoolDirectoryImpl>
VUKSimRpm_BoundDirectory(const VUKSimRpm_Pool& pool, const char* source, int line)
{
    const auto open = pool.Impl().lock();
    if (!open) {
        VUKSimExcCantDerefLocator().Throw(source, line);
    }
    return open->Directory();
}
