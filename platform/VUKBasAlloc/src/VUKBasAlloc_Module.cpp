#include "VUKBasAlloc_Module.h"

#include "VUKBas_ModuleCount.h"

namespace {

VUKBas_ModuleCount gCount;

} // namespace

void VUKBasAlloc_initialize(int& liveModules)
{
    gCount.Enter(liveModules);
}

void VUKBasAlloc_finalize(int& liveModules)
{
    gCount.Leave(liveModules);
}
