#include "VUKBasShared_Module.h"

#include "VUKBas_ModuleCount.h"

namespace {

VUKBas_ModuleCount gCount;

} // namespace

void VUKBasShared_initialize(int& liveModules)
{
    gCount.Enter(liveModules);
}

void VUKBasShared_finalize(int& liveModules)
{
    gCount.Leave(liveModules);
}
