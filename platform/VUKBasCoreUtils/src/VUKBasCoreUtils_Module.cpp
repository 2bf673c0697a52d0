#include "VUKBasCoreUtils_Module.h"

#include "VUKBas_ModuleCount.h"

namespace {

VUKBas_ModuleCount gCount;

} // namespace

void VUKBasCoreUtils_initialize(int& liveModules)
{
    gCount.Enter(liveModules);
}

void VUKBasCoreUtils_finalize(int& liveModules)
{
    gCount.Leave(liveModules);
}
