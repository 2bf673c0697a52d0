// What a contender is: one way to store bytes, with an answer to each workload that it can do.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <type_traits>
#include <vector>

enum class Workload
{
    Append,        // records to the end of an empty store
    Overwrite,     // records over those that are there, in order
    Decode,        // the appended records one by one, in order
    ReadRandom,    // pieces of the bulk
    ReadImage,     // pieces of the bulk from an image of it in memory
    Chase,         // a list of nodes in random order, by stored references
    CreatePools,   // objects of 256 bytes with a UUID
    OpenPools,     // reopens them and reads 64 bytes of each by UUID
    Import,        // the bulk from another file
    WriteRandom,   // small pieces over the bulk, in place
    StoreLocators, // references to a number of objects, into memory
    LoadLocators,  // the same back
    WriteStrings,  // texts of 5 to 40 bytes
    ReadStrings
};

/// One piece of work. Sizes are in bytes.
struct Job
{
    Workload work;
    long long size;     // of a record or piece; a number of objects or files where that varies
    long long count;    // of operations
    long long bulk;     // bytes of the store that is read or written at random
    std::string folder; // the contender's own, there and empty before Make
    long long turn = 0; // of the runs: each writes other bytes

    [[nodiscard]] std::string Path(const std::string& name) const { return folder + "/" + name; }
};

/// What one run gave.
struct Sample
{
    double seconds = 0;
    long long operations = 0;
    std::uint64_t sum = 0;  // over what was read or written; the same for every contender
    double syncSeconds = 0; // of the sync that followed, not part of `seconds`
};

enum class Kind
{
    Library,
    Floor, // hand-written, as little as can be done
    Peer
};

/// One way to store bytes. Only Run is measured, as often as the bench likes, and each run does the
/// whole job anew. Make and Open may take their time, and may happen in two processes.
class Contender
{
public:
    virtual ~Contender() = default;

    [[nodiscard]] virtual std::string Name() const = 0;
    [[nodiscard]] virtual Kind What() const = 0;
    [[nodiscard]] virtual std::string Version() const = 0;

    /// How it is tuned, in the words of its own documents.
    [[nodiscard]] virtual std::string Tuning() const = 0;

    [[nodiscard]] virtual bool Offers(const Job& job) const = 0;

    /// A store with a high cost for each record gets an eighth of the records: times are per
    /// record.
    [[nodiscard]] virtual bool CostlyRecords() const { return false; }

    /// Makes the files that the job starts from and lets go of them.
    virtual void Make(const Job& job) = 0;

    /// Opens them, unless opening is the job itself.
    virtual void Open(const Job& job) = 0;

    virtual Sample Run(const Job& job) = 0;

    /// Lets go of files and memory.
    virtual void Close() = 0;
};

using Contenders = std::vector<std::unique_ptr<Contender>>;

/// Makers of all contenders; Announced fills it before main begins.
inline std::vector<std::function<std::unique_ptr<Contender>()>>& AnnouncedMakers()
{
    static std::vector<std::function<std::unique_ptr<Contender>()>> makers;
    return makers;
}

/// At namespace scope in the source of a contender: enters it into the bench.
template <class Type>
struct Announced
{
    template <class... Arguments>
    explicit Announced(Arguments... arguments)
    {
        AnnouncedMakers().push_back([=] { return std::make_unique<Type>(arguments...); });
    }
};

class Stopwatch
{
public:
    [[nodiscard]] double Seconds() const
    {
        return std::chrono::duration<double>(Clock::now() - mStart).count();
    }

private:
    using Clock = std::chrono::steady_clock;
    Clock::time_point mStart = Clock::now();
};

/// Times `work`, which may return the sum, and then `sync`.
template <class Work, class Sync>
Sample Timed(long long operations, Work work, Sync sync)
{
    const Stopwatch watch;
    Sample sample{.operations = operations};
    if constexpr (std::is_void_v<decltype(work())>) {
        work();
    } else {
        sample.sum = work();
    }
    sample.seconds = watch.Seconds();
    const Stopwatch syncing;
    sync();
    sample.syncSeconds = syncing.Seconds();
    return sample;
}

template <class Work>
Sample Timed(long long operations, Work work)
{
    Sample sample = Timed(operations, work, [] {});
    sample.syncSeconds = 0;
    return sample;
}
