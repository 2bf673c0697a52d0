#include "VUKSimContainers_Module.h"

#include "VUKBas_ModuleCount.h"

namespace {

VUKBas_ModuleCount gCount;

} // namespace

void VUKSimContainers_initialize(int& liveModules)
{
    gCount.Enter(liveModules);
}

void VUKSimContainers_finalize(int& liveModules)
{
    gCount.Leave(liveModules);
}
