#include "OnePool.h"
#include "Operations.h"
#include "Store.h"
#include "VUKBasMemAllocator.h"
#include "VUKSimRpm_DirectLocator.h"
#include "VUKSimRpm_MemoryPool.h"

#include <optional>

namespace {

constexpr char kImageSource[] = "VUKSim/VUKSimRpm.m/src/VUKSimRpm_MemoryPool";

// Reads of seven bytes; at the end of the file they are short, and that is no failure.
class ReadOperation : public Operation
{
public:
    void Check(const Outcome& outcome, Complaints& complaints) override
    {
        const bool ends = outcome.hits.size() == 1 && outcome.hits[0].Ends();
        if (!outcome.failed) {
            complaints.Same(mRead, ends ? "" : "growing", "what was read");
        }
        Run();
        complaints.Same(mRead, "growing", "what is read next");
        mStore.ExpectDisk(Store::TwoPools(), complaints);
    }

protected:
    Store mStore;
    std::string mRead;
};

class ReadThroughALocator : public ReadOperation
{
public:
    void Run() override { mRead = ReadFrom(mStart, 7); }

private:
    const VUKSimRpm_Locator mStart = mStore.File().Start();
};

class ReadThroughADirectLocator : public ReadOperation
{
public:
    void Run() override
    {
        mRead.assign(7, '?');
        mRead.resize(mPlace.Read(7, mRead.data()));
    }

private:
    VUKSimRpm_DirectLocator mPlace = mStore.File().Start().DirectLocator();
};

// Writes over the second of the pool's seven bytes and more. One that fails has written what went
// out before, and a file that it had made longer is as long as it was.
class WriteOperation : public Operation
{
public:
    void Check(const Outcome& outcome, Complaints& complaints) override
    {
        const std::string before = Store::TwoPools();
        std::string left = before;
        if (outcome.failed && outcome.hits.size() == 1 && !outcome.Manifold()) {
            const std::size_t moved = outcome.hits[0].trouble.flaw.moved;
            for (std::size_t i = 0; i < moved && mPosition + i < left.size(); ++i) {
                left[mPosition + i] = mBytes[i];
            }
            mStore.ExpectDisk(left, complaints);
            mStore.ExpectPools({{'a', "frozen one"}, {'b', left.substr(202)}}, complaints);
        }
        Run();
        left.resize(std::max(left.size(), mPosition + mBytes.size()));
        left.replace(mPosition, mBytes.size(), mBytes);
        mStore.ExpectDisk(left, complaints);
        left.resize(209 + mRoom);
        mStore.ExpectGoesOn(outcome, {{'a', "frozen one"}, {'b', left.substr(202) + "next"}},
                            complaints);
    }

protected:
    // `mBytes` at `position`, with as much room allocated as they need beyond the end.
    WriteOperation(std::size_t position, std::size_t room) : mPosition(position), mRoom(room)
    {
        mStore.File().Allocate(room);
    }

    [[nodiscard]] VUKSimRpm_Locator Place() { return mStore.File().Start() + (mPosition - 202); }

    const std::string mBytes = "WRITE";
    const std::size_t mPosition; // in the file
    const std::size_t mRoom;     // bytes behind the file's end
    Store mStore;
};

class WriteInsideAPool : public WriteOperation
{
public:
    WriteInsideAPool() : WriteOperation(203, 0) {}
    void Run() override { WriteTo(Place(), mBytes); }
};

class WriteAcrossTheEnd : public WriteOperation
{
public:
    WriteAcrossTheEnd() : WriteOperation(206, 2) {}
    void Run() override { WriteTo(Place(), mBytes); }
};

class WriteAtTheEnd : public WriteOperation
{
public:
    WriteAtTheEnd() : WriteOperation(209, 5) {}
    void Run() override { WriteTo(Place(), mBytes); }
};

// Zeros come first, and go again.
class WriteBehindTheEnd : public WriteOperation
{
public:
    WriteBehindTheEnd() : WriteOperation(215, 11) {}
    void Run() override { WriteTo(Place(), mBytes); }
    [[nodiscard]] std::string LooksFor(const Hit&) const override { return "write"; }
};

class WriteThroughADirectLocator : public WriteOperation
{
public:
    WriteThroughADirectLocator() : WriteOperation(203, 0) {}
    void Run() override { Place().DirectLocator().Write(mBytes.size(), mBytes.data()); }
};

// The image has the bytes whatever becomes of the pool.
class WriteThroughAMemoryPool : public WriteOperation
{
public:
    WriteThroughAMemoryPool()
        : WriteOperation(203, 0), mImage(mStore.File().Start(), 7, VUKBasAllocator(), nullptr)
    {}

    void Run() override { WriteTo(VUKSimRpm_Locator(Place(), mImage), mBytes); }

    void Check(const Outcome& outcome, Complaints& complaints) override
    {
        const VUKSimRpm_Locator start(mStore.File().Start(), mImage);
        complaints.Same(ReadFrom(start, 7), "gWRITEg", "what the image holds");
        WriteOperation::Check(outcome, complaints);
    }

private:
    VUKSimRpm_MemoryPool mImage;
};

// Loads an image of the whole pool, into a buffer of its own or the caller's.
class LoadAMemoryPool : public Operation
{
public:
    void Run() override { mImage.emplace(mStart, 7, VUKBasAllocator(), nullptr); }

    [[nodiscard]] bool Answers(const Hit& hit, const VUKBasException& raised) const override
    {
        return hit.Ends() && IsFrom(raised, "VUKBasAssertException", kImageSource, 30);
    }

    void Check(const Outcome& outcome, Complaints& complaints) override
    {
        complaints.Same(mImage.has_value(), !outcome.failed, "whether there is an image");
        mImage.reset();
        Run();
        char read[7] = {};
        complaints.Same(mImage->Read(mStart, 7, read), 7UL, "how much the image has");
        complaints.Same(std::string(read, 7), "growing", "what it has");
    }

protected:
    Store mStore;
    const VUKSimRpm_Locator mStart = mStore.File().Start();
    std::optional<VUKSimRpm_MemoryPool> mImage;
};

// A buffer that was not adopted can be offered again.
class LoadAMemoryPoolIntoABuffer : public LoadAMemoryPool
{
public:
    ~LoadAMemoryPoolIntoABuffer() override { mAllocator.Free(mBuffer); }

    void Run() override
    {
        mImage.emplace(mStart, 7, mAllocator, mBuffer);
        mBuffer = nullptr;
    }

    void Check(const Outcome& outcome, Complaints& complaints) override
    {
        if (!outcome.failed) {
            mImage.reset();
            mBuffer = static_cast<char*>(mAllocator.Alloc(7));
        }
        const Outcome again{.failed = !mImage.has_value()};
        LoadAMemoryPool::Check(again, complaints);
    }

private:
    VUKBasAllocator mAllocator{new VUKBasMemAllocator};
    char* mBuffer = static_cast<char*>(mAllocator.Alloc(7)); // null while the image has it
};

// What a locator knows without the file.
class AskALocator : public Operation
{
public:
    void Run() override
    {
        mUuid = mStart.GetGUID().UTF8();
        mWritable = !mStart.ReadOnly() && mStart.Directory() && !mStart.Null();
    }

    void Check(const Outcome&, Complaints& complaints) override
    {
        Run();
        complaints.Same(mUuid, std::string(32, 'b'), "the UUID");
        complaints.Expect(mWritable, "its pool can be written and has a directory");
    }

private:
    Store mStore;
    const VUKSimRpm_Locator mStart = mStore.File().Start();
    std::string mUuid;
    bool mWritable = false;
};

// Arithmetic and comparisons.
class CompareLocators : public Operation
{
public:
    void Run() override
    {
        const VUKSimRpm_Locator end = mStart + 7;
        mHolds = mStart < end && mStart <= mStart && end - mStart == 7 && end - 7 == mStart &&
                 end.SamePool(mStart);
    }

    void Check(const Outcome&, Complaints& complaints) override
    {
        complaints.Expect(mHolds, "locators compare as offsets do");
    }

private:
    Store mStore;
    const VUKSimRpm_Locator mStart = mStore.File().Start();
    bool mHolds = false;
};
} // namespace

std::vector<OperationEntry> LocatorOperations()
{
    return {
        Entry<ReadThroughALocator>("ReadThroughALocator", 1, 0),
        Entry<ReadThroughADirectLocator>("ReadThroughADirectLocator", 1, 0),
        Entry<WriteInsideAPool>("WriteInsideAPool", 1, 0),
        Entry<WriteAcrossTheEnd>("WriteAcrossTheEnd", 1, 0),
        Entry<WriteAtTheEnd>("WriteAtTheEnd", 1, 0),
        Entry<WriteBehindTheEnd>("WriteBehindTheEnd", 2, 0),
        Entry<WriteThroughADirectLocator>("WriteThroughADirectLocator", 1, 0),
        Entry<WriteThroughAMemoryPool>("WriteThroughAMemoryPool", 1, 0),
        Entry<LoadAMemoryPool>("LoadAMemoryPool", 1, 2),
        Entry<LoadAMemoryPoolIntoABuffer>("LoadAMemoryPoolIntoABuffer", 1, 0),
        Entry<AskALocator>("AskALocator", 0, 1),
        Entry<CompareLocators>("CompareLocators", 0, 0),
    };
}
