#include "VUKBasGenericsLib_Module.h"

#include "VUKBas_ModuleCount.h"

namespace {

VUKBas_ModuleCount gCount;

} // namespace

void VUKBasGenericsLib_initialize(int& liveModules)
{
    gCount.Enter(liveModules);
}

void VUKBasGenericsLib_finalize(int& liveModules)
{
    gCount.Leave(liveModules);
}
