// The order in which the library starts and stops modules. The entries of the base modules and of
// VUKSimRpm are replaced for the whole program: they write down their turn and the host's count at
// that moment. The module's own part, which has no turn of its own here, shows in the counts.
#include "VUKSimPoolManager.h"

#include "VUKBasAlloc_Module.h"
#include "VUKBasCoreUtils_Module.h"
#include "VUKBasGenericsLib_Module.h"
#include "VUKBasShared_Module.h"
#include "VUKSimContainers_Module.h"
#include "VUKSimRpm_Module.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

std::vector<std::string>& Turns()
{
    static std::vector<std::string> turns;
    return turns;
}

void Start(const char* module, int& liveModules)
{
    Turns().push_back("start " + std::string(module) + " at " + std::to_string(liveModules));
    ++liveModules;
}

void Stop(const char* module, int& liveModules)
{
    Turns().push_back("stop " + std::string(module) + " at " + std::to_string(liveModules));
    --liveModules;
}
} // namespace

void VUKSimContainers_initialize(int& liveModules)
{
    Start("VUKSimContainers", liveModules);
}

void VUKSimContainers_finalize(int& liveModules)
{
    Stop("VUKSimContainers", liveModules);
}

void VUKBasShared_initialize(int& liveModules)
{
    Start("VUKBasShared", liveModules);
}

void VUKBasShared_finalize(int& liveModules)
{
    Stop("VUKBasShared", liveModules);
}

void VUKBasCoreUtils_initialize(int& liveModules)
{
    Start("VUKBasCoreUtils", liveModules);
}

void VUKBasCoreUtils_finalize(int& liveModules)
{
    Stop("VUKBasCoreUtils", liveModules);
}

void VUKBasGenericsLib_initialize(int& liveModules)
{
    Start("VUKBasGenericsLib", liveModules);
}

void VUKBasGenericsLib_finalize(int& liveModules)
{
    Stop("VUKBasGenericsLib", liveModules);
}

void VUKBasAlloc_initialize(int& liveModules)
{
    Start("VUKBasAlloc", liveModules);
}

void VUKBasAlloc_finalize(int& liveModules)
{
    Stop("VUKBasAlloc", liveModules);
}

void VUKSimRpm_initialize(int& modules)
{
    Start("VUKSimRpm", modules);
}

void VUKSimRpm_finalize(int& modules)
{
    Stop("VUKSimRpm", modules);
}

TEST(PoolManagerModuleOrder, CountsItselfThenStartsBaseModulesAndItsOwnTwoLast)
{
    int modules = 10;
    Turns().clear();
    VUKSimPoolManager_initialize(modules);
    EXPECT_THAT(Turns(),
                testing::ElementsAre("start VUKSimContainers at 11", "start VUKBasShared at 12",
                                     "start VUKBasCoreUtils at 13", "start VUKBasGenericsLib at 14",
                                     "start VUKBasAlloc at 15", "start VUKSimRpm at 16"));
    EXPECT_EQ(modules, 18); // its own part came last
    VUKSimPoolManager_finalize(modules);
}

TEST(PoolManagerModuleOrder, StopsItsOwnTwoFirstAndContainersLast)
{
    int modules = 10;
    VUKSimPoolManager_initialize(modules);
    Turns().clear();
    VUKSimPoolManager_finalize(modules);
    // From 18: the library itself and its own part came first.
    EXPECT_THAT(Turns(),
                testing::ElementsAre("stop VUKSimRpm at 16", "stop VUKBasAlloc at 15",
                                     "stop VUKBasGenericsLib at 14", "stop VUKBasCoreUtils at 13",
                                     "stop VUKBasShared at 12", "stop VUKSimContainers at 11"));
    EXPECT_EQ(modules, 10);
}

TEST(PoolManagerModuleOrder, GivesNoModuleASecondTurn)
{
    int modules = 10;
    VUKSimPoolManager_initialize(modules);
    Turns().clear();
    VUKSimPoolManager_initialize(modules);
    VUKSimPoolManager_finalize(modules);
    EXPECT_TRUE(Turns().empty());
    VUKSimPoolManager_finalize(modules);
    EXPECT_EQ(Turns().size(), 6U);
}
