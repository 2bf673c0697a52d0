#pragma once

#include "VUKBas_Export.h"

/// Starts the module. Calls nest: the first raises `liveModules`, the caller's count, by one.
VUKBAS_EXPORT void VUKBasCoreUtils_initialize(int& liveModules);

/// Ends one start. The last lowers `liveModules` by one; without a matching start it does nothing.
VUKBAS_EXPORT void VUKBasCoreUtils_finalize(int& liveModules);
