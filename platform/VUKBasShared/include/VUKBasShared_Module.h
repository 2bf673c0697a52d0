#pragma once

#include "VUKBas_Export.h"

/// Starts the module. Calls nest: the first raises `liveModules`, the caller's count, by one.
VUKBAS_EXPORT void VUKBasShared_initialize(int& liveModules);

/// Ends one start. The last lowers `liveModules` by one; without a matching start it does nothing.
VUKBAS_EXPORT void VUKBasShared_finalize(int& liveModules);
