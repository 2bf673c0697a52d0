#pragma once

#include "VUKBas_Export.h"
#include "VUKString.h"

/// Questions about files by name.
class VUKBAS_EXPORT VUKSimUttFileUtils
{
public:
    VUKSimUttFileUtils() = delete;

    /// True unless the system says that there is nothing of that name, or only a link that leads
    /// nowhere. Where the look itself fails there may be a file, and nobody must overwrite it.
    [[nodiscard]] static bool FileExists(const VUKString& name);

    /// True when both names lead to one and the same file (device and inode), by whatever path or
    /// link; false when either cannot be looked up. The same name twice is the same file if that
    /// exists, see above.
    [[nodiscard]] static bool SameFile(const VUKString& first, const VUKString& second);
};
