#pragma once

#include "VUKBas_Export.h"
#include "VUKString.h"

/// Questions about files by name.
class VUKBAS_EXPORT VUKSimUttFileUtils
{
public:
    VUKSimUttFileUtils() = delete;

    /// True when there is something of that name, of whatever kind; a link that leads nowhere and
    /// what may not be looked up do not count.
    [[nodiscard]] static bool FileExists(const VUKString& name);

    /// True when both names lead to one and the same file (device and inode), by whatever path or
    /// link; false when either cannot be looked up.
    [[nodiscard]] static bool SameFile(const VUKString& first, const VUKString& second);
};
