#include "VUKSimRpm_Module.h"

namespace {
int sNesting = 0;
} // namespace

void VUKSimRpm_initialize(int& modules)
{
    if (sNesting++ == 0) {
        ++modules;
    }
}

void VUKSimRpm_finalize(int& modules)
{
    if (--sNesting == 0) {
        --modules;
    }
}
