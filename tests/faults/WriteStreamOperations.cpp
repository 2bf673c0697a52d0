#include "Bytes.h"
#include "OnePool.h"
#include "Operations.h"
#include "Store.h"
#include "VUKSimExcBrokenStream.h"
#include "VUKSimRpm_BStreamAppendToPool.h"
#include "VUKSimRpm_BStreamWriteBuffer.h"
#include "VUKSimRpm_BStreamWriteLocator.h"

#include <memory>

namespace {

constexpr char kAppendSource[] = "VUKSim/VUKSimRpm.m/src/VUKSimRpm_BStreamAppendToPool";

void Put(VUKSimRpm_BStreamWrite& stream, const std::string& bytes)
{
    stream.Write(bytes.data(), static_cast<unsigned int>(bytes.size()));
}

// A pool of 60 dots behind its header of 80 bytes, to be written over from its first byte on.
class WriteOverAPool : public Operation
{
public:
    // What went out stays, in order and without gaps; the same again with a new stream writes all.
    void Check(const Outcome& outcome, Complaints& complaints) override
    {
        const std::string left = mStore.Folder().Read("a.sim").substr(80);
        if (outcome.failed) {
            const std::size_t written = std::min(left.find('.'), mExpected.size());
            complaints.Same(left, mExpected.substr(0, written) + Dots(60 - written),
                            "what is left");
        } else {
            complaints.Same(left, mExpected + Dots(60 - mExpected.size()), "what is written");
        }
        Run();
        mStore.ExpectPools({{'b', mExpected + Dots(60 - mExpected.size())}}, complaints);
    }

protected:
    explicit WriteOverAPool(const std::string& expected) : mExpected(expected), mStore(Stored()) {}

    static std::string Dots(std::size_t count) { return std::string(count, '.'); }
    static std::string Stored()
    {
        const bytes::Pool pool{.directory = {bytes::Uuid('b')}, .data = Dots(60)};
        return pool.Bytes();
    }

    const std::string mExpected;
    Store mStore;
    const VUKSimRpm_Locator mStart = mStore.File().Start();
};

class WriteStreamByRecords : public WriteOverAPool
{
public:
    WriteStreamByRecords() : WriteOverAPool(Letters(30)) {}

    void Run() override
    {
        VUKSimRpm_BStreamWriteLocator stream(mStart, 0, 16);
        for (int i = 0; i < 30; i += 10) {
            Letters(30).copy(stream.PrepWrite(10), 10, static_cast<std::size_t>(i));
        }
        stream.Flush();
    }
};

class WriteStreamByALongRun : public WriteOverAPool
{
public:
    WriteStreamByALongRun() : WriteOverAPool(Letters(45)) {}

    void Run() override
    {
        VUKSimRpm_BStreamWriteLocator stream(mStart, 50, 16);
        Put(stream, Letters(45).substr(0, 5));
        Put(stream, Letters(45).substr(5));
        stream.Flush();
    }
};

// The destructor writes, and what fails comes out of it.
class WriteStreamDies : public WriteOverAPool
{
public:
    WriteStreamDies() : WriteOverAPool(Letters(10)) {}

    void Run() override
    {
        VUKSimRpm_BStreamWriteLocator stream(mStart, 0, 16);
        Put(stream, Letters(10));
    }
};

class WriteStreamByAString : public WriteOverAPool
{
public:
    WriteStreamByAString() : WriteOverAPool(bytes::Word(40) + Letters(40)) {}

    void Run() override
    {
        VUKSimRpm_BStreamWriteLocator stream(mStart, 0, 16);
        stream.Write(VUKString(Letters(40).c_str()));
        stream.Flush();
    }
};

// A stream that lives on: its bytes wait until a flush succeeds.
class FlushAWriteStream : public WriteOverAPool
{
public:
    FlushAWriteStream() : WriteOverAPool(Letters(10)) { Put(*mStream, Letters(10)); }

    void Run() override { mStream->Flush(); }

private:
    std::unique_ptr<VUKSimRpm_BStreamWriteLocator> mStream =
        std::make_unique<VUKSimRpm_BStreamWriteLocator>(mStart, 0, 16);
};

// Appending to `b` of the store, as the operations below do. A piece that could not be written is
// room in the pool by then; it reads as zeros when more is written behind it.
class AppendToAPool : public Operation
{
public:
    void Check(const Outcome& outcome, Complaints& complaints) override
    {
        const unsigned long long length = mStore.File().Pool().Length();
        const std::string disk = mStore.Folder().Read("a.sim").substr(202);
        if (!outcome.failed) {
            complaints.Same(disk, "growing" + mExpected, "what is written");
            complaints.Same(length, 7 + mExpected.size(), "the pool's length");
        } else if (outcome.hits.size() == 1 && !outcome.Manifold()) {
            const std::size_t written = outcome.hits[0].made.position - 209;
            const auto& flaw = outcome.hits[0].trouble.flaw;
            complaints.Expect(flaw.moved == 0 || flaw.errorNumber != 0,
                              "a short write is no failure");
            complaints.Same(disk.substr(0, 7), "growing", "what was there");
            complaints.Expect(("growing" + mExpected).starts_with(disk) &&
                                  disk.size() <= 7 + written,
                              "the piece that failed is cut back");
            complaints.Expect(length > disk.size(), "its room is allocated");
        }
        std::string data = disk;
        data.resize(length);
        mStore.ExpectGoesOn(outcome, {{'a', "frozen one"}, {'b', data + "next"}}, complaints);
    }

protected:
    explicit AppendToAPool(const std::string& expected) : mExpected(expected) {}

    const std::string mExpected;
    Store mStore;
    const VUKSimRpm_Pool mPool = mStore.File().Pool();
};

// While the first failure unwinds, the stream dies with its bytes and without another word.
class AppendStreamByRecords : public AppendToAPool
{
public:
    AppendStreamByRecords() : AppendToAPool(Letters(30)) {}

    void Run() override
    {
        VUKSimRpm_BStreamAppendToPool stream(mPool, 16);
        for (int i = 0; i < 30; i += 10) {
            Letters(30).copy(stream.PrepWrite(10), 10, static_cast<std::size_t>(i));
        }
        stream.Flush();
    }
};

class AppendStreamByALongRun : public AppendToAPool
{
public:
    AppendStreamByALongRun() : AppendToAPool(Letters(105)) {}

    void Run() override
    {
        VUKSimRpm_BStreamAppendToPool stream(mPool, 16);
        Put(stream, Letters(105).substr(0, 5));
        Put(stream, Letters(105).substr(5));
        stream.Flush();
    }
};

class AppendStreamDies : public AppendToAPool
{
public:
    AppendStreamDies() : AppendToAPool(Letters(10)) {}

    void Run() override
    {
        VUKSimRpm_BStreamAppendToPool stream(mPool, 16);
        Put(stream, Letters(10));
    }
};

class AppendStreamByAString : public AppendToAPool
{
public:
    AppendStreamByAString() : AppendToAPool(bytes::Word(700) + Letters(700)) {}

    void Run() override
    {
        VUKSimRpm_BStreamAppendToPool stream(mPool, 16);
        stream.Write(mText);
        stream.Flush();
    }

private:
    const VUKString mText = Letters(700).c_str();
};

// A stream that lives on after a failure appends no more, and says so until its end.
class FlushAnAppendStream : public AppendToAPool
{
public:
    FlushAnAppendStream() : AppendToAPool(Letters(10)) { Put(*mStream, mExpected); }

    void Run() override { mStream->Flush(); }

    void Check(const Outcome& outcome, Complaints& complaints) override
    {
        if (outcome.failed) {
            complaints.Expect(IsBroken([&] { mStream->Flush(); }), "the next flush says so");
        }
        complaints.Same(IsBroken([&] { delete mStream.release(); }), outcome.failed,
                        "whether its end says so");
        AppendToAPool::Check(outcome, complaints);
    }

private:
    template <class Call>
    static bool IsBroken(Call call)
    {
        try {
            call();
            return false;
        } catch (const VUKSimExcBrokenStream& raised) {
            return raised.Path() == std::string(kAppendSource) && raised.Line() == 89;
        }
    }

    std::unique_ptr<VUKSimRpm_BStreamAppendToPool> mStream =
        std::make_unique<VUKSimRpm_BStreamAppendToPool>(mPool, 16);
};

class WriteBufferByRecords : public Operation
{
public:
    void Run() override
    {
        VUKSimRpm_BStreamWriteBuffer stream(mBytes, sizeof mBytes, mPool);
        mStart.ExternalizeImpl(stream);
        Put(stream, "abc");
    }

    void Check(const Outcome&, Complaints& complaints) override
    {
        complaints.Same(std::string(mBytes, 15), bytes::Zeros(12) + "abc", "what was written");
    }

private:
    Store mStore;
    const VUKSimRpm_Pool mPool = mStore.File().Pool();
    const VUKSimRpm_Locator mStart = mPool.Start();
    char mBytes[15] = {};
};

// The text is put together before the stream is touched.
class WriteBufferByALongString : public Operation
{
public:
    void Run() override
    {
        VUKSimRpm_BStreamWriteBuffer stream(mBytes.data(), mBytes.size());
        stream.Write(mText);
    }

    void Check(const Outcome& outcome, Complaints& complaints) override
    {
        const std::string nothing(704, '?');
        const std::string all = bytes::Word(700) + Letters(700);
        complaints.Same(mBytes, outcome.failed ? nothing : all, "what was written");
        Run();
        complaints.Same(mBytes, all, "what is written next");
    }

private:
    const VUKString mText = Letters(700).c_str();
    std::string mBytes = std::string(704, '?');
};
} // namespace

std::vector<OperationEntry> WriteStreamOperations()
{
    return {
        Entry<WriteStreamByRecords>("WriteStreamByRecords", 3, 1),
        Entry<WriteStreamByALongRun>("WriteStreamByALongRun", 2, 1),
        Entry<WriteStreamDies>("WriteStreamDies", 1, 1),
        Entry<WriteStreamByAString>("WriteStreamByAString", 2, 1),
        Entry<FlushAWriteStream>("FlushAWriteStream", 1, 0),
        Entry<AppendStreamByRecords>("AppendStreamByRecords", 3, 1),
        Entry<AppendStreamByALongRun>("AppendStreamByALongRun", 2, 1),
        Entry<AppendStreamDies>("AppendStreamDies", 1, 1),
        Entry<AppendStreamByAString>("AppendStreamByAString", 2, 2),
        Entry<FlushAnAppendStream>("FlushAnAppendStream", 1, 0),
        Entry<WriteBufferByRecords>("WriteBufferByRecords", 0, 0),
        Entry<WriteBufferByALongString>("WriteBufferByALongString", 0, 1),
    };
}
