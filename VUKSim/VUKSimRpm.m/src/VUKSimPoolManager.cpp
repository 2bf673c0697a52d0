#include "VUKSimPoolManager.h"

#include "VUKBasAlloc_Module.h"
#include "VUKBasCoreUtils_Module.h"
#include "VUKBasGenericsLib_Module.h"
#include "VUKBasShared_Module.h"
#include "VUKSimContainers_Module.h"
#include "VUKSimRpm_Module.h"

namespace {
int sNesting = 0;
int sSpecificNesting = 0;
int sModulesOfC = 0; // the count of hosts that speak C
} // namespace

void VUKSimPoolManager_initialize(int& modules)
{
    if (sNesting++ == 0) {
        ++modules;
        VUKSimContainers_initialize(modules);
        VUKBasShared_initialize(modules);
        VUKBasCoreUtils_initialize(modules);
        VUKBasGenericsLib_initialize(modules);
        VUKBasAlloc_initialize(modules);
        VUKSimRpm_initialize(modules);
        VUKSimPoolManager_specific_initialize(modules);
    }
}

void VUKSimPoolManager_finalize(int& modules)
{
    if (--sNesting == 0) {
        --modules;
        // Deliberately not the mirror of the start: ours first, then the base modules backwards.
        VUKSimPoolManager_specific_finalize(modules);
        VUKSimRpm_finalize(modules);
        VUKBasAlloc_finalize(modules);
        VUKBasGenericsLib_finalize(modules);
        VUKBasCoreUtils_finalize(modules);
        VUKBasShared_finalize(modules);
        VUKSimContainers_finalize(modules);
    }
}

void VUKSimPoolManager_specific_initialize(int& modules)
{
    if (sSpecificNesting++ == 0) {
        ++modules;
    }
}

void VUKSimPoolManager_specific_finalize(int& modules)
{
    if (--sSpecificNesting == 0) {
        --modules;
    }
}

void VUKSimPoolManager_initializeC()
{
    VUKSimPoolManager_initialize(sModulesOfC);
}

void VUKSimPoolManager_finalizeC()
{
    VUKSimPoolManager_finalize(sModulesOfC);
}
