#pragma once

#include "VUKSimRpm_Export.h"

// Start and stop of the whole library. Calls nest and are counted; a host calls initialize before
// its first document and one finalize for every initialize. Not for several threads.

/// Starts the library. Only the first call does anything: it raises `modules`, the host's count of
/// live modules, by one, then starts the base modules, VUKSimRpm and the module's own part, each of
/// which counts itself in the same way.
VUKSIMRPM_EXPORT void VUKSimPoolManager_initialize(int& modules);

/// Undoes one initialize. Only the last call does anything: it lowers `modules` by one and stops
/// the module's own part, VUKSimRpm, and then the base modules, containers last.
VUKSIMRPM_EXPORT void VUKSimPoolManager_finalize(int& modules);

/// The module's own part: counts itself and does nothing else.
VUKSIMRPM_EXPORT void VUKSimPoolManager_specific_initialize(int& modules);
VUKSIMRPM_EXPORT void VUKSimPoolManager_specific_finalize(int& modules);

/// The same two entries for hosts that speak C; they keep a module count of their own.
extern "C" VUKSIMRPM_EXPORT void VUKSimPoolManager_initializeC();
extern "C" VUKSIMRPM_EXPORT void VUKSimPoolManager_finalizeC();
