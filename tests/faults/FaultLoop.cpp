#include "FaultLoop.h"

#include "CountedMemory.h"
#include "Failures.h"
#include "LimitedMemory.h"
#include "OSFileSupport.h"
#include "Oracle.h"
#include "VUKSimRpm_UUID.h"

#include <new>
#include <optional>
#include <typeinfo>

namespace {

using Places = std::vector<FaultyCalls::Place>;

// Beyond this no operation comes to its end any more.
constexpr int kMostCalls = 60;

std::string Describe(const Outcome& outcome)
{
    std::string text;
    for (const Hit& hit : outcome.hits) {
        text += (text.empty() ? "" : ", then ") +
                ("call " + std::to_string(hit.before.size() + 1)) + ", " + Describe(hit.made) +
                ", " + Describe(hit.trouble);
    }
    return text.empty() ? "no fault" : text;
}

// Then other files cannot be closed either.
bool FolderIsNeverClosed(const Hit& hit)
{
    return hit.folder && hit.made.call == SystemCall::Close && hit.trouble.reach == Reach::Sticky;
}

void JudgeSystem(const Operation& operation, const Outcome& outcome, const std::exception* raised,
                 Complaints& complaints)
{
    if (outcome.hits.empty()) {
        complaints.Expect(raised == nullptr, std::string("without a fault nothing is raised: ") +
                                                 (raised != nullptr ? raised->what() : ""));
    } else if (outcome.Manifold() || FolderIsNeverClosed(outcome.hits[0])) {
        JudgeManifoldAnswer(operation, outcome.hits, raised, complaints);
    } else {
        JudgeAnswer(operation, outcome.hits[0], raised, complaints);
    }
}

void JudgeMemory(const Outcome& outcome, const std::exception* raised, Complaints& complaints)
{
    if (!outcome.memory) {
        complaints.Expect(raised == nullptr, "without a fault nothing is raised");
        return;
    }
    complaints.Expect(raised != nullptr && typeid(*raised) == typeid(std::bad_alloc),
                      std::string("refused memory is std::bad_alloc: ") +
                          (raised != nullptr ? raised->what() : "nothing was raised"));
}

void JudgeReports(const ReportRecorder& recorder, const std::exception* raised,
                  Complaints& complaints)
{
    const bool check = dynamic_cast<const VUKBasAssertException*>(raised) != nullptr;
    complaints.Same(recorder.Reports().size(), check ? 1U : 0U, "the number of reported checks");
}

// Runs `attempt`, which returns what became of it, judges that, goes on without faults, drops all,
// and looks for what is left. What was wrong is added to `result`.
class Attempt
{
public:
    Attempt(const OperationEntry& entry, LoopResult& result) : mEntry(entry), mResult(result) {}

    // `run` gets the operation and an outcome to fill in, and may throw what the operation throws.
    template <class Run, class Judge>
    Outcome Make(Run run, Judge judge)
    {
        Complaints complaints;
        const int descriptors = OpenDescriptors();
        const NoSyncs syncs;
        const CountedMemory memory;
        Outcome outcome;
        try {
            const auto operation = mEntry.make();
            TryAndJudge(*operation, outcome, run, judge, complaints);
            operation->Check(outcome, complaints);
        } catch (const std::exception& raised) {
            complaints.Add("after the fault was lifted: " + failures::Describe(raised));
        }
        VUKSimRpm_UUID::TestForceUUID(nullptr);
        complaints.Same(memory.Blocks(), 0U, "the number of blocks left");
        complaints.Same(OpenDescriptors(), descriptors, "the number of open descriptors");
        for (const std::string& text : complaints.Texts()) {
            mResult.complaints.push_back(mEntry.name + ", " + What(outcome) + ": " + text);
        }
        return outcome;
    }

    // For messages: which allocation it is about, where it is about one.
    void About(const std::string& allocation) { mAllocation = allocation; }

private:
    template <class Run, class Judge>
    void TryAndJudge(Operation& operation, Outcome& outcome, Run run, Judge judge,
                     Complaints& complaints)
    {
        const ReportRecorder recorder;
        try {
            run(operation, outcome);
        } catch (const std::exception& raised) {
            outcome.failed = true;
            judge(operation, outcome, &raised, complaints);
            JudgeReports(recorder, &raised, complaints);
            return;
        }
        judge(operation, outcome, nullptr, complaints);
        JudgeReports(recorder, nullptr, complaints);
    }

    [[nodiscard]] std::string What(const Outcome& outcome) const
    {
        return outcome.memory ? mAllocation : Describe(outcome);
    }

    const OperationEntry& mEntry;
    LoopResult& mResult;
    std::string mAllocation;
};

// Takes what was hit out of the calls, whether or not the operation throws.
class Harvest
{
public:
    Harvest(const FaultyCalls& calls, Outcome& outcome, std::size_t& troubles)
        : mCalls(calls), mOutcome(outcome), mTroubles(troubles)
    {}
    Harvest(const Harvest&) = delete;
    Harvest& operator=(const Harvest&) = delete;
    ~Harvest()
    {
        mOutcome.hits = mCalls.Hits();
        mOutcome.syncFailed = mCalls.SyncFailed();
        mTroubles = mCalls.Troubles();
    }

private:
    const FaultyCalls& mCalls;
    Outcome& mOutcome;
    std::size_t& mTroubles;
};

// One attempt with those calls going wrong; after the first of two the operation is tried again if
// that has ended it. Returns how many troubles fit the last call, 0 when it never came.
std::size_t TryCalls(const OperationEntry& entry, const Places& places, FaultyCalls::Choice choice,
                     LoopResult& result)
{
    std::size_t troubles = 0;
    Attempt(entry, result)
        .Make(
            [&](Operation& operation, Outcome& outcome) {
                FaultyCalls calls(places, choice);
                const Harvest harvest(calls, outcome, troubles);
                try {
                    operation.Run();
                } catch (const std::exception&) {
                    if (places.size() == 1 || calls.Hits().size() != 1) {
                        throw;
                    }
                    outcome.retried = true;
                    operation.Run();
                }
            },
            &JudgeSystem);
    result.points += troubles != 0 ? 1 : 0;
    return troubles;
}

void TryAllCalls(const OperationEntry& entry, LoopResult& result)
{
    for (int number = 1; number < kMostCalls; ++number) {
        const std::size_t troubles = TryCalls(entry, {{number, 0}}, &TroublesOf, result);
        if (troubles == 0) {
            return;
        }
        ++result.calls;
        for (std::size_t trouble = 1; trouble < troubles; ++trouble) {
            TryCalls(entry, {{number, trouble}}, &TroublesOf, result);
        }
    }
    result.complaints.push_back(entry.name + ": never comes to its end");
}

void TryAllSecondCalls(const OperationEntry& entry, FaultyCalls::Place first, LoopResult& result)
{
    for (int number = 1; number < kMostCalls; ++number) {
        const std::size_t troubles = TryCalls(entry, {first, {number, 0}}, &MainTroublesOf, result);
        if (troubles == 0) {
            return;
        }
        for (std::size_t trouble = 1; trouble < troubles; ++trouble) {
            TryCalls(entry, {first, {number, trouble}}, &MainTroublesOf, result);
        }
    }
    result.complaints.push_back(entry.name + ": never comes to its end");
}

bool TryAllocation(const OperationEntry& entry, int allowed, int refusals, LoopResult& result)
{
    Attempt attempt(entry, result);
    attempt.About("allocation " + std::to_string(allowed + 1) +
                  (refusals == 1 ? "" : " and all after it"));
    const bool reached =
        attempt
            .Make(
                [&](Operation& operation, Outcome& outcome) {
                    const LimitedMemory memory(allowed, refusals);
                    try {
                        operation.Run();
                    } catch (const std::exception&) {
                        outcome.memory = LimitedMemory::RanOut();
                        throw;
                    }
                    outcome.memory = LimitedMemory::RanOut();
                },
                [](const Operation&, const Outcome& outcome, const std::exception* raised,
                   Complaints& complaints) { JudgeMemory(outcome, raised, complaints); })
            .memory;
    result.points += reached ? 1 : 0;
    return reached;
}

void TryAllocations(const OperationEntry& entry, LoopResult& result)
{
    constexpr int kAll = 1000000;
    for (int allowed = 0; allowed < kMostCalls; ++allowed) {
        if (!TryAllocation(entry, allowed, 1, result)) {
            return;
        }
        ++result.allocations;
        TryAllocation(entry, allowed, kAll, result);
    }
    result.complaints.push_back(entry.name + ": never has enough memory");
}

// Holds the number of calls or allocations that were reached against what the operation makes.
void JudgeCount(const std::string& name, int found, int least, const std::string& what,
                LoopResult& result)
{
    if (found < least || (least == 0 && found > 0)) {
        result.complaints.push_back(name + ": " + std::to_string(found) + " " + what +
                                    " were tried, not " + std::to_string(least) +
                                    (least == 0 ? "" : " at least"));
    }
}
} // namespace

std::map<std::string, int>& TriedPoints()
{
    static std::map<std::string, int> points;
    return points;
}

LoopResult TryEveryFault(const OperationEntry& entry)
{
    LoopResult result;
    TryAllCalls(entry, result);
    result.callPoints = result.points;
    TryAllocations(entry, result);
    JudgeCount(entry.name, result.calls, entry.leastCalls, "system calls", result);
    JudgeCount(entry.name, result.allocations, entry.leastAllocations, "allocations", result);
    // Each call goes wrong in three ways at least, each allocation in two.
    const int least = 3 * entry.leastCalls + 2 * entry.leastAllocations;
    JudgeCount(entry.name, result.points, least, "fault points", result);
    return result;
}

LoopResult TryEveryPairOfFaults(const OperationEntry& entry)
{
    LoopResult result;
    for (int number = 1; number < kMostCalls; ++number) {
        LoopResult alone; // what one fault does is the other loop's affair
        const std::size_t troubles = TryCalls(entry, {{number, 0}}, &MainTroublesOf, alone);
        if (troubles == 0) {
            break;
        }
        ++result.calls;
        for (std::size_t trouble = 0; trouble < troubles; ++trouble) {
            TryAllSecondCalls(entry, {number, trouble}, result);
        }
    }
    JudgeCount(entry.name, result.calls, entry.leastCalls, "system calls", result);
    result.callPoints = result.points;
    return result;
}
