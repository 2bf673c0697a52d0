// The loop itself, with operations that do wrong: each must be found out.
#include "FaultLoop.h"

#include "Store.h"
#include "TemporaryFolder.h"
#include "VUKSimUttOSFile.h"
#include "VUKSimUttOSFileException.h"
#include "mem_Alloc.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <filesystem>
#include <memory>
#include <stdexcept>
#include <unistd.h>
#include <vector>

namespace {

using testing::AnyOf;
using testing::Contains;
using testing::Each;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

// Writes five bytes behind the store's last pool: one call, one recovery, no allocation. Those that
// follow do something of it wrong.
class HonestWrite : public Operation
{
public:
    HonestWrite() { mStore.File().Allocate(5); }

    void Run() override { (mStore.File().Start() + 7).Write(5, "WRITE"); }

    void Check(const Outcome& outcome, Complaints& complaints) override
    {
        const std::string before = Store::TwoPools();
        mStore.ExpectDisk(outcome.failed ? before : before + "WRITE", complaints);
    }

protected:
    Store mStore;
};

class SwallowsTheFailure : public HonestWrite
{
public:
    void Run() override
    {
        try {
            HonestWrite::Run();
        } catch (const VUKSimUttOSFileException&) {
            // and says nothing
        }
    }
    void Check(const Outcome&, Complaints&) override {}
};

class RaisesAnotherClass : public HonestWrite
{
public:
    void Run() override
    {
        try {
            HonestWrite::Run();
        } catch (const VUKSimUttOSFileException& raised) {
            throw std::runtime_error(raised.what());
        }
    }
};

class RaisesAnotherError : public HonestWrite
{
public:
    void Run() override
    {
        try {
            HonestWrite::Run();
        } catch (const VUKSimUttOSFileException& raised) {
            VUKSimUttOSFileException({"write", raised.Position(), raised.Length()},
                                     raised.FileName(), raised.ErrorNumber() == EIO ? ENOSPC : EIO)
                .Throw(raised.Path(), raised.Line());
        }
    }
};

class NamesAnotherPlace : public HonestWrite
{
public:
    void Run() override
    {
        try {
            HonestWrite::Run();
        } catch (const VUKSimUttOSFileException& raised) {
            VUKSimUttOSFileException({"write", raised.Position() + 1, raised.Length()},
                                     raised.FileName(), raised.ErrorNumber())
                .Throw(raised.Path(), raised.Line());
        }
    }
};

class LeaksABlock : public HonestWrite
{
public:
    void Run() override
    {
        void* const block = mem_OperatorNewThrow(8);
        sLeaked.push_back(block);
        HonestWrite::Run();
        sLeaked.pop_back();
        mem_Free(block);
    }

    // Gives back what was leaked, behind the loop that had to notice: a leak detector need not.
    static void FreeLeaked()
    {
        for (void* const block : sLeaked) {
            mem_Free(block);
        }
        sLeaked.clear();
    }

private:
    static inline std::vector<void*> sLeaked;
};

class LeavesADescriptor : public HonestWrite
{
public:
    void Run() override
    {
        const int descriptor = dup(1);
        HonestWrite::Run();
        close(descriptor);
    }
};

class LosesData : public HonestWrite
{
public:
    void Run() override
    {
        try {
            HonestWrite::Run();
        } catch (const VUKSimUttOSFileException&) {
            std::filesystem::resize_file(mStore.Folder().Path("a.sim"), 205);
            throw;
        }
    }
};

class CannotGoOn : public HonestWrite
{
public:
    void Check(const Outcome& outcome, Complaints&) override
    {
        if (outcome.failed) {
            mStore.Document().Close();
            (void)mStore.File().PoolCount(); // of a file that is closed
        }
    }
};

class FailsByItself : public HonestWrite
{
public:
    void Run() override { throw std::runtime_error("for no reason"); }
    void Check(const Outcome&, Complaints&) override {}
};

class NeverEnds : public HonestWrite
{
public:
    void Run() override
    {
        for (int i = 0; i < 100; ++i) {
            HonestWrite::Run();
        }
    }
    void Check(const Outcome&, Complaints&) override {}
};

class NeedsMemory : public Operation
{
public:
    void Run() override
    {
        try {
            mem_Free(mem_OperatorNewThrow(8));
        } catch (const std::bad_alloc&) {
            throw std::runtime_error("out of memory");
        }
    }
    void Check(const Outcome&, Complaints&) override {}
};

template <class Kind>
LoopResult Try(int leastCalls = 1, int leastAllocations = 0)
{
    return TryEveryFault(Entry<Kind>("Wrong", leastCalls, leastAllocations));
}
} // namespace

TEST(FaultLoop, HasNothingAgainstAnHonestOperation)
{
    const LoopResult result = Try<HonestWrite>();
    EXPECT_THAT(result.complaints, IsEmpty());
    EXPECT_EQ(result.calls, 1);
    // ENOSPC, EDQUOT, EFBIG, EIO: once and for good; EINTR once; nothing moved, moves of 1, 2 and 4
    // bytes with and without an error: once and for good; and the disk that is gone.
    EXPECT_EQ(result.points, 4 * 2 + 1 + 7 * 2 + 1);
}

TEST(FaultLoop, FindsAFailureThatIsKeptSecret)
{
    EXPECT_THAT(Try<SwallowsTheFailure>().complaints,
                Each(HasSubstr("not so: an exception was raised")));
    EXPECT_THAT(Try<SwallowsTheFailure>().complaints, Not(IsEmpty()));
}

TEST(FaultLoop, FindsAnotherExceptionThanTheDocumentedOne)
{
    EXPECT_THAT(Try<RaisesAnotherClass>().complaints, Contains(HasSubstr("raised out of place")));
    EXPECT_THAT(Try<RaisesAnotherError>().complaints, Contains(HasSubstr("the error number is")));
    EXPECT_THAT(Try<NamesAnotherPlace>().complaints,
                Contains(HasSubstr("position and length are those of the request")));
    EXPECT_THAT(Try<FailsByItself>().complaints,
                Contains(HasSubstr("without a fault nothing is raised: for no reason")));
    EXPECT_THAT(Try<NeedsMemory>(0, 1).complaints,
                Contains(HasSubstr("refused memory is std::bad_alloc: out of memory")));
}

TEST(FaultLoop, FindsWhatIsLeft)
{
    EXPECT_THAT(Try<LeaksABlock>(1, 1).complaints,
                Contains(HasSubstr("the number of blocks left is 1, not 0")));
    LeaksABlock::FreeLeaked();
    EXPECT_THAT(Try<LeavesADescriptor>().complaints,
                Contains(HasSubstr("the number of open descriptors is")));
}

TEST(FaultLoop, FindsAStateThatWasNotPromised)
{
    EXPECT_THAT(Try<LosesData>().complaints,
                Contains(HasSubstr("the bytes of a.sim are those expected")));
    EXPECT_THAT(Try<CannotGoOn>().complaints, Contains(HasSubstr("after the fault was lifted")));
}

TEST(FaultLoop, FindsAnOperationThatNeverComesToItsEnd)
{
    EXPECT_THAT(Try<NeverEnds>().complaints, Contains(HasSubstr("never comes to its end")));
}

TEST(FaultLoop, FindsThatTooLittleWasTried)
{
    EXPECT_THAT(Try<HonestWrite>(2).complaints,
                Contains(HasSubstr("1 system calls were tried, not 2 at least")));
    EXPECT_THAT(Try<HonestWrite>(1, 1).complaints,
                Contains(HasSubstr("0 allocations were tried, not 1 at least")));
    EXPECT_THAT(Try<HonestWrite>(0).complaints,
                Contains(HasSubstr("1 system calls were tried, not 0")));
}

TEST(FaultLoop, FindsInPairsWhatOneFaultDoesNotShow)
{
    const OperationEntry honest = Entry<HonestWrite>("Honest", 1, 0);
    const LoopResult result = TryEveryPairOfFaults(honest);
    // The write may fail or be cut after 2 bytes; only then is there something to cut back, by two
    // calls, and each may fail. The write is tried again: it may fail, or be cut after 2 bytes.
    EXPECT_EQ(result.points, 2 + (2 + 2));
    EXPECT_THAT(result.complaints,
                Each(AnyOf(HasSubstr("then call 2, fstat"), HasSubstr("then call 3, fstat"),
                           HasSubstr("then call 4, ftruncate"))));
    EXPECT_THAT(result.complaints, Not(IsEmpty())); // what is not cut back stays
}
