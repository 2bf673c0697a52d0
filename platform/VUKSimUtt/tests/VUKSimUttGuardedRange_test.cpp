#include <csetjmp>
#include <csignal>
#include <cstdlib>
#include <string>

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include "OSFileSupport.h"
#include "ScriptedSystemCalls.h"
#include "TemporaryFolder.h"
#include "VUKSimUttOSFile.h"

// What becomes of bus errors, ours and others', beside files that are mapped.

namespace {

int hostCalls = 0;
sigjmp_buf hostReturn;

// A host's way out of a fault of its own.
void HostHandler(int, siginfo_t*, void*)
{
    ++hostCalls;
    siglongjmp(hostReturn, 1);
}

struct sigaction previousOfHost;

// A host that calls the handler which it replaced, as it must.
void PassingHostHandler(int signal, siginfo_t* information, void* context)
{
    ++hostCalls;
    previousOfHost.sa_sigaction(signal, information, context);
}

class Handlers : public testing::Test
{
protected:
    Handlers()
    {
        ::sigaction(SIGBUS, nullptr, &mBefore);
        hostCalls = 0;
    }
    ~Handlers() override { ::sigaction(SIGBUS, &mBefore, nullptr); }

    static void Install(void (*handler)(int, siginfo_t*, void*))
    {
        struct sigaction action = {};
        action.sa_sigaction = handler;
        action.sa_flags = SA_SIGINFO;
        ASSERT_EQ(::sigaction(SIGBUS, &action, &previousOfHost), 0);
    }

    static void InstallDefault(void (*handler)(int)) { ::signal(SIGBUS, handler); }

    // A page of a file that has become empty: whoever touches it is told by SIGBUS. `length` bytes
    // of addresses are taken up.
    char* GonePage(std::size_t length = 4096)
    {
        mFolder.Write("gone", std::string(4096, 'x'));
        const int descriptor = ::open(mFolder.Path("gone").c_str(), O_RDWR | O_CLOEXEC);
        void* const page = ::mmap(nullptr, length, PROT_READ, MAP_SHARED, descriptor, 0);
        EXPECT_NE(page, MAP_FAILED);
        EXPECT_EQ(::ftruncate(descriptor, 0), 0);
        ::close(descriptor);
        return static_cast<char*>(page);
    }

    void OpenMapped(VUKSimUttOSFile& file, const char* name)
    {
        file.OpenUpdate(mFolder.Write(name, std::string(131072, 'm')));
        ASSERT_EQ(ReadAt(file, 0, 3), "mmm");
    }

    void Empty(const char* name) { ASSERT_EQ(::truncate(mFolder.Path(name).c_str(), 0), 0); }

    TemporaryFolder mFolder;

private:
    struct sigaction mBefore;
};

// Keeps what it reads: memory checkers leave out loads whose value nobody uses.
void Touch(const char* page)
{
    [[maybe_unused]] static volatile char seen;
    seen = *static_cast<const volatile char*>(page);
}

// For pages that are gone, under HostHandler.
void TouchAndReturn(const char* page)
{
    if (sigsetjmp(hostReturn, 1) == 0) {
        Touch(page);
        ADD_FAILURE() << "the page was there";
    }
}

TEST_F(Handlers, TheHostsHandlerIsBackWhenTheLastMappedFileIsClosed)
{
    Install(HostHandler);
    struct sigaction inForce;
    {
        VUKSimUttOSFile one;
        VUKSimUttOSFile two;
        OpenMapped(one, "one");
        OpenMapped(two, "two");
        one.Close();
        ::sigaction(SIGBUS, nullptr, &inForce);
        EXPECT_NE(inForce.sa_sigaction, &HostHandler);
    }
    ::sigaction(SIGBUS, nullptr, &inForce);
    EXPECT_EQ(inForce.sa_sigaction, &HostHandler);
}

TEST_F(Handlers, FaultsInOtherMemoryGoToTheHandlerThatWasThereBefore)
{
    Install(HostHandler);
    const char* const mappedBefore = GonePage();
    VUKSimUttOSFile file;
    OpenMapped(file, "a.sim");
    const char* const mappedBehind = GonePage(1 << 28); // fits only below the file's memory
    for (const char* const page : {mappedBefore, mappedBehind}) {
        hostCalls = 0;
        TouchAndReturn(page);
        EXPECT_EQ(hostCalls, 1);
    }
    EXPECT_EQ(ReadAt(file, 5000, 3), "mmm");
}

TEST_F(Handlers, FaultsInOurMemoryAreNotSeenByTheHost)
{
    Install(HostHandler);
    VUKSimUttOSFile file;
    OpenMapped(file, "a.sim");
    Empty("a.sim");
    EXPECT_EQ(ReadAt(file, 5000, 3), "");
    EXPECT_EQ(hostCalls, 0);
}

TEST_F(Handlers, FaultsInOtherMemoryEndTheProcessWhereNobodyAnswersThem)
{
    testing::GTEST_FLAG(death_test_style) = "fast";
    for (void (*handler)(int) : {SIG_DFL, SIG_IGN}) {
        InstallDefault(handler);
        VUKSimUttOSFile file;
        OpenMapped(file, "a.sim");
        const char* const page = GonePage();
        EXPECT_EXIT(Touch(page), testing::KilledBySignal(SIGBUS), "");
    }
}

TEST_F(Handlers, ASentSignalDoesWhatItDidBefore)
{
    testing::GTEST_FLAG(death_test_style) = "fast";
    InstallDefault(SIG_DFL);
    {
        VUKSimUttOSFile file;
        OpenMapped(file, "a.sim");
        EXPECT_EXIT(::raise(SIGBUS), testing::KilledBySignal(SIGBUS), "");
    }
    InstallDefault(SIG_IGN);
    {
        VUKSimUttOSFile file;
        OpenMapped(file, "b.sim");
        EXPECT_EQ(::raise(SIGBUS), 0);
        EXPECT_EQ(ReadAt(file, 5000, 3), "mmm");
    }
    InstallDefault([](int) { ++hostCalls; });
    VUKSimUttOSFile file;
    OpenMapped(file, "c.sim");
    EXPECT_EQ(::raise(SIGBUS), 0);
    EXPECT_EQ(hostCalls, 1);
}

// Last of all: a handler on top of ours is never trusted to be gone again, for this whole process.
TEST_F(Handlers, UnderAHandlerOnTopOfOursOpenFilesAreSafeAndNewOnesAreNotMapped)
{
    testing::GTEST_FLAG(death_test_style) = "threadsafe";
    InstallDefault(SIG_DFL);
    EXPECT_EXIT(
        {
            VUKSimUttOSFile file;
            OpenMapped(file, "a.sim");
            Install(PassingHostHandler);
            Empty("a.sim");
            const bool safe = ReadAt(file, 5000, 3).empty() && hostCalls == 1;
            VUKSimUttOSFile later;
            OpenMapped(later, "b.sim");
            Empty("b.sim");
            const bool byCall = ReadAt(later, 5000, 3).empty() && hostCalls == 1;
            file.Close();
            later.Close();
            struct sigaction inForce;
            ::sigaction(SIGBUS, nullptr, &inForce);
            const bool left = inForce.sa_sigaction == &PassingHostHandler;
            std::exit(safe && byCall && left ? 0 : 1);
        },
        testing::ExitedWithCode(0), "");
}

TEST_F(Handlers, WhileAFileIsMappedAHandlerOnTopOfOursIsFoundByTheNext)
{
    testing::GTEST_FLAG(death_test_style) = "threadsafe";
    InstallDefault(SIG_DFL);
    EXPECT_EXIT(
        {
            VUKSimUttOSFile file;
            OpenMapped(file, "a.sim");
            Install(PassingHostHandler);
            VUKSimUttOSFile second;
            OpenMapped(second, "b.sim");
            ::sigaction(SIGBUS, &previousOfHost, nullptr); // too late to be trusted
            VUKSimUttOSFile third;
            OpenMapped(third, "c.sim");
            Install(HostHandler);
            Empty("b.sim");
            Empty("c.sim");
            const bool byCall = ReadAt(second, 5000, 3).empty() && ReadAt(third, 5000, 3).empty();
            std::exit(byCall && hostCalls == 0 ? 0 : 1);
        },
        testing::ExitedWithCode(0), "");
}

TEST_F(Handlers, AHandlerOnTopOfOursThatTheLastFileFoundIsNotForgotten)
{
    testing::GTEST_FLAG(death_test_style) = "threadsafe";
    InstallDefault(SIG_DFL);
    EXPECT_EXIT(
        {
            VUKSimUttOSFile file;
            OpenMapped(file, "a.sim");
            Install(PassingHostHandler);
            file.Close();
            ::sigaction(SIGBUS, &previousOfHost, nullptr); // too late to be trusted
            VUKSimUttOSFile later;
            const ScriptedSystemCalls calls;
            OpenMapped(later, "b.sim");
            std::exit(calls.Count(SystemCall::Pread) == 1 ? 0 : 1);
        },
        testing::ExitedWithCode(0), "");
}

} // namespace
