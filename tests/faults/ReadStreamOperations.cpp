#include "Bytes.h"
#include "OnePool.h"
#include "Operations.h"
#include "Store.h"
#include "VUKSimRpm_BStreamReadBuffer.h"
#include "VUKSimRpm_BStreamReadLocator.h"

namespace {

constexpr char kSource[] = "VUKSim/VUKSimRpm.m/src/VUKSimRpm_BStreamReadLocator";

// A stored string, with its zeros up to a multiple of four.
std::string Record(const std::string& text)
{
    return bytes::Word(static_cast<unsigned int>(text.size())) + text +
           bytes::Zeros((4 - text.size() % 4) % 4);
}

// Reading of a pool with that data. Whatever fails leaves the file alone, and a new stream reads
// all.
class ReadAPool : public Operation
{
public:
    [[nodiscard]] bool Answers(const Hit& hit, const VUKBasException& raised) const override
    {
        return hit.Ends() && IsFrom(raised, "VUKSimExcRequestTooBig", kSource, 62);
    }

    void Check(const Outcome& outcome, Complaints& complaints) override
    {
        if (!outcome.failed) {
            complaints.Same(mRead, mExpected, "what was read");
        } else {
            complaints.Expect(mExpected.starts_with(mRead), "what was read before is right");
        }
        mRead.clear();
        Run();
        complaints.Same(mRead, mExpected, "what a new stream reads");
        mStore.ExpectDisk(mStored, complaints);
    }

protected:
    ReadAPool(const std::string& data, const std::string& expected)
        : mExpected(expected), mStored(Stored(data)), mStore(mStored)
    {}

    static std::string Stored(const std::string& data)
    {
        const bytes::Pool pool{.directory = {bytes::Uuid('b')}, .data = data};
        return pool.Bytes();
    }

    const std::string mExpected;
    const std::string mStored;
    Store mStore;
    const VUKSimRpm_Locator mStart = mStore.File().Start();
    std::string mRead;
};

class ReadStreamByRecords : public ReadAPool
{
public:
    ReadStreamByRecords() : ReadAPool(Letters(60), Letters(60)) {}

    void Run() override
    {
        VUKSimRpm_BStreamReadLocator stream(mStart, 0, 16);
        for (int i = 0; i < 6; ++i) {
            mRead.append(stream.PrepRead(10), 10);
        }
    }
};

// What the chunk holds, then the rest past it, then a chunk again.
class ReadStreamByALongRun : public ReadAPool
{
public:
    ReadStreamByALongRun() : ReadAPool(Letters(100), Letters(72)) {}

    void Run() override
    {
        VUKSimRpm_BStreamReadLocator stream(mStart, 80, 16);
        mRead.append(stream.PrepRead(10), 10);
        std::string run(50, '?');
        stream.Read(run.data(), 50);
        mRead += run;
        mRead.append(stream.PrepRead(12), 12);
    }
};

class ReadStreamByAString : public ReadAPool
{
public:
    ReadStreamByAString() : ReadAPool(Record(Letters(700)), Letters(700)) {}

    void Run() override
    {
        VUKSimRpm_BStreamReadLocator stream(mStart, 0, 64);
        VUKString text("as it was");
        try {
            stream.Read(text);
        } catch (...) {
            mRead = text == VUKString("as it was") ? "" : "changed by a failure";
            throw;
        }
        mRead = text.UTF8();
    }
};

// Through an image nothing but the image is asked, and the chunk is the only memory.
class ReadStreamByALocator : public ReadAPool
{
public:
    ReadStreamByALocator() : ReadAPool(bytes::LongWord(14) + bytes::Word(0) + "xyabcd", "abcd") {}

    void Run() override
    {
        VUKSimRpm_BStreamReadLocator stream(mStart, 0, 16);
        VUKSimRpm_Locator locator;
        locator.InternalizeImpl(stream);
        mRead = ReadFrom(locator, 4);
    }

    // The pool itself may end early too.
    void Check(const Outcome& outcome, Complaints& complaints) override
    {
        if (!outcome.failed && outcome.hits.size() == 1 && outcome.hits[0].Ends()) {
            complaints.Same(mRead, "", "what was read at the end of the file");
            mRead = mExpected;
        }
        ReadAPool::Check(outcome, complaints);
    }
};

// A text of three megabytes, for which memory grows in steps.
class ReadBufferByALongString : public Operation
{
public:
    void Run() override
    {
        VUKSimRpm_BStreamReadBuffer stream(mBytes.data(), mBytes.size());
        stream.Read(mText);
    }

    void Check(const Outcome& outcome, Complaints& complaints) override
    {
        complaints.Same(mText.GetLengthInByte(), outcome.failed ? 0U : 3000001U, "its length");
        Run();
        complaints.Expect(mText.UTF8() == std::string(3000001, 't'), "the text is right");
    }

private:
    const std::string mBytes = Record(std::string(3000001, 't'));
    VUKString mText;
};

class ReadBufferByRecords : public Operation
{
public:
    void Run() override
    {
        VUKSimRpm_BStreamReadBuffer stream(mBytes.data(), mBytes.size(), mPool);
        mRead.assign(stream.PrepRead(4), 4);
        char rest[6];
        stream.Read(rest, 6);
        mRead.append(rest, 6);
    }

    void Check(const Outcome&, Complaints& complaints) override
    {
        complaints.Same(mRead, "abcdefghij", "what was read");
    }

private:
    Store mStore;
    const VUKSimRpm_Pool mPool = mStore.File().Pool();
    const std::string mBytes = Letters(10);
    std::string mRead;
};
} // namespace

std::vector<OperationEntry> ReadStreamOperations()
{
    return {
        Entry<ReadStreamByRecords>("ReadStreamByRecords", 7, 1),
        Entry<ReadStreamByALongRun>("ReadStreamByALongRun", 3, 1),
        Entry<ReadStreamByAString>("ReadStreamByAString", 2, 2),
        Entry<ReadStreamByALocator>("ReadStreamByALocator", 2, 1),
        Entry<ReadBufferByALongString>("ReadBufferByALongString", 0, 3),
        Entry<ReadBufferByRecords>("ReadBufferByRecords", 0, 0),
    };
}
