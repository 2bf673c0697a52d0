#include "VUKSimPoolManager.h"

#include "VUKBasAlloc_Module.h"
#include "VUKBasCoreUtils_Module.h"
#include "VUKBasGenericsLib_Module.h"
#include "VUKBasShared_Module.h"
#include "VUKSimContainers_Module.h"
#include "VUKSimRpm_Document.h"
#include "VUKSimRpm_Module.h"

#include "TemporaryFolder.h"

#include <dlfcn.h>
#include <gtest/gtest.h>

namespace {

// How many modules start when the library does: 0 of those that are up already, 8 when none is.
int ModulesStartedByTheLibrary()
{
    int modules = 0;
    VUKSimPoolManager_initialize(modules);
    const int started = modules;
    VUKSimPoolManager_finalize(modules);
    EXPECT_EQ(modules, 0);
    return started;
}
} // namespace

TEST(PoolManagerModule, StartsItselfTheFiveBaseModulesAndItsOwnTwo)
{
    int modules = 100; // the host's other modules

    VUKSimPoolManager_initialize(modules);
    EXPECT_EQ(modules, 108);

    VUKSimPoolManager_finalize(modules);
    EXPECT_EQ(modules, 100);
}

TEST(PoolManagerModule, OnlyCountsAFurtherStartAndStopsAtItsLastFinalize)
{
    int modules = 0;
    VUKSimPoolManager_initialize(modules);
    VUKSimPoolManager_initialize(modules);
    EXPECT_EQ(modules, 8);

    VUKSimPoolManager_finalize(modules);
    EXPECT_EQ(modules, 8);
    VUKSimPoolManager_finalize(modules);
    EXPECT_EQ(modules, 0);
}

TEST(PoolManagerModule, CountsOnTheCounterOfTheCallThatWasFirstOrLast)
{
    int first = 0;
    int second = 0;
    VUKSimPoolManager_initialize(first);
    VUKSimPoolManager_initialize(second);
    EXPECT_EQ(first, 8);
    EXPECT_EQ(second, 0);

    VUKSimPoolManager_finalize(second);
    EXPECT_EQ(second, 0);
    VUKSimPoolManager_finalize(first);
    EXPECT_EQ(first, 0);
}

TEST(PoolManagerModule, StartsAgainAfterItWasStopped)
{
    EXPECT_EQ(ModulesStartedByTheLibrary(), 8);
    EXPECT_EQ(ModulesStartedByTheLibrary(), 8);
}

TEST(PoolManagerModule, FinalizesEachBaseModuleWithItsLastFinalizeAndNotBefore)
{
    using Entry = void (*)(int&);
    constexpr Entry kBaseModules[][2] = {
        {VUKSimContainers_initialize, VUKSimContainers_finalize},
        {VUKBasShared_initialize, VUKBasShared_finalize},
        {VUKBasCoreUtils_initialize, VUKBasCoreUtils_finalize},
        {VUKBasGenericsLib_initialize, VUKBasGenericsLib_finalize},
        {VUKBasAlloc_initialize, VUKBasAlloc_finalize},
    };
    // 1 when the module had to start for it, 0 when it was up.
    const auto started = [](const Entry(&module)[2]) {
        int modules = 0;
        module[0](modules);
        const int result = modules;
        module[1](modules);
        return result;
    };

    int modules = 0;
    VUKSimPoolManager_initialize(modules);
    VUKSimPoolManager_initialize(modules);
    VUKSimPoolManager_finalize(modules);
    for (const auto& module : kBaseModules) {
        EXPECT_EQ(started(module), 0);
    }
    VUKSimPoolManager_finalize(modules);
    for (const auto& module : kBaseModules) {
        EXPECT_EQ(started(module), 1);
    }
}

TEST(PoolManagerModule, LeavesABaseModuleRunningThatTheHostStartedItself)
{
    int host = 0;
    VUKBasShared_initialize(host);
    EXPECT_EQ(host, 1);
    EXPECT_EQ(ModulesStartedByTheLibrary(), 7);
    EXPECT_EQ(host, 1);
    VUKBasShared_finalize(host);
    EXPECT_EQ(host, 0);
}

TEST(PoolManagerModule, SpecificPartCountsItselfAlone)
{
    int modules = 0;
    VUKSimPoolManager_specific_initialize(modules);
    VUKSimPoolManager_specific_initialize(modules);
    EXPECT_EQ(modules, 1);
    EXPECT_EQ(ModulesStartedByTheLibrary(), 7);

    VUKSimPoolManager_specific_finalize(modules);
    EXPECT_EQ(modules, 1);
    VUKSimPoolManager_specific_finalize(modules);
    EXPECT_EQ(modules, 0);
}

TEST(PoolManagerModule, EntriesForCKeepACounterOfTheirOwn)
{
    VUKSimPoolManager_initializeC();
    VUKSimPoolManager_initializeC();
    EXPECT_EQ(ModulesStartedByTheLibrary(), 0);

    VUKSimPoolManager_finalizeC();
    EXPECT_EQ(ModulesStartedByTheLibrary(), 0);
    VUKSimPoolManager_finalizeC();
    EXPECT_EQ(ModulesStartedByTheLibrary(), 8);
}

TEST(PoolManagerModule, EntriesForCHaveTheirPlainNames)
{
    EXPECT_NE(dlsym(RTLD_DEFAULT, "VUKSimPoolManager_initializeC"), nullptr);
    EXPECT_NE(dlsym(RTLD_DEFAULT, "VUKSimPoolManager_finalizeC"), nullptr);
}

TEST(PoolManagerModule, DocumentsWorkThoughNothingWasStarted)
{
    const TemporaryFolder folder;
    VUKSimRpm_Document document("TEST");
    document.AddFile(folder.File("a.sim"), VUKSimRpm_Document::Write);
    document.Close();
    EXPECT_EQ(folder.Size("a.sim"), 80U);
}

TEST(RpmModule, CountsItselfAtItsFirstStartAndItsLastStop)
{
    int modules = 0;
    VUKSimRpm_initialize(modules);
    EXPECT_EQ(modules, 1);
    VUKSimRpm_initialize(modules);
    EXPECT_EQ(modules, 1);
    EXPECT_EQ(ModulesStartedByTheLibrary(), 7);

    VUKSimRpm_finalize(modules);
    EXPECT_EQ(modules, 1);
    VUKSimRpm_finalize(modules);
    EXPECT_EQ(modules, 0);
}
