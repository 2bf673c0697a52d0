#pragma once

#include "Complaints.h"
#include "FaultyCalls.h"
#include "VUKBasException.h"

#include <functional>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

/// What became of an attempt at an operation.
struct Outcome
{
    bool failed = false;        // it threw
    bool memory = false;        // an allocation was refused
    bool retried = false;       // it failed once and was tried again
    bool syncFailed = false;    // and with it all later flushes of that file do
    std::vector<Hit> hits = {}; // the system calls that went wrong, in order; none with `memory`

    /// Whether one of them was of that kind.
    [[nodiscard]] bool Met(SystemCall call) const
    {
        for (const Hit& hit : hits) {
            if (hit.made.call == call) {
                return true;
            }
        }
        return false;
    }

    /// Two things went wrong, or a disk died: the state depends on which came to bear, and only
    /// what holds in every case is to be checked.
    [[nodiscard]] bool Manifold() const
    {
        return retried || hits.size() > 1 ||
               (!hits.empty() && hits[0].trouble.reach == Reach::Dead);
    }
};

/// One operation of a public interface, made once for every fault that is tried.
///
/// Its constructor brings about the state that the operation starts from. Its destruction drops
/// everything: afterwards no block and no descriptor may be left.
class Operation
{
public:
    Operation() = default;
    Operation(const Operation&) = delete;
    Operation& operator=(const Operation&) = delete;
    virtual ~Operation() = default;

    /// The operation and nothing else, while one of its calls goes wrong.
    virtual void Run() = 0;

    /// Holds what is left against what was promised, now that nothing goes wrong any more, and goes
    /// on from there: the next operation must work.
    virtual void Check(const Outcome& outcome, Complaints& complaints) = 0;

    /// Whether `raised`, which is no error of the system, is the documented answer to that.
    [[nodiscard]] virtual bool Answers(const Hit& hit, const VUKBasException& raised) const;

    /// Why a descriptor is looked at, other than by an open: "measure", "write" or "remove".
    [[nodiscard]] virtual std::string LooksFor(const Hit& hit) const;

    /// Whether a call that fails may have no consequence here, as in a destructor.
    [[nodiscard]] virtual bool Passes(const Hit& hit) const;
};

/// Whether `raised` is a Class-like exception from that place.
[[nodiscard]] bool IsFrom(const VUKBasException& raised, const std::string& className,
                          const std::string& site, int line);

/// An operation by its name, and how often it reaches the system and the heap at least when all
/// goes well. With 0 it must not reach them at all.
struct OperationEntry
{
    std::string name;
    std::function<std::unique_ptr<Operation>()> make;
    int leastCalls = 0;
    int leastAllocations = 0;
};

/// For GoogleTest's messages.
inline void PrintTo(const OperationEntry& entry, std::ostream* out)
{
    *out << entry.name;
}

template <class Kind>
OperationEntry Entry(const std::string& name, int leastCalls, int leastAllocations)
{
    return {name, [] { return std::make_unique<Kind>(); }, leastCalls, leastAllocations};
}
