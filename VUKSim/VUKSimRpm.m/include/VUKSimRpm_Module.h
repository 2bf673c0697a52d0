#pragma once

#include "VUKSimRpm_Export.h"

// The inner module's counted start and stop. VUKSimPoolManager_initialize and
// VUKSimPoolManager_finalize call them in their turn; a host has no need to.

/// The first call raises `modules` by one; later calls only count.
VUKSIMRPM_EXPORT void VUKSimRpm_initialize(int& modules);

/// The call that matches the first initialize lowers `modules` by one.
VUKSIMRPM_EXPORT void VUKSimRpm_finalize(int& modules);
