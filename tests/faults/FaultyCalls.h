#pragma once

#include "Flaws.h"
#include "ScriptedSystemCalls.h"

#include <cstddef>
#include <map>
#include <string>
#include <vector>

/// One call that went wrong, and what had happened before.
struct Hit
{
    ScriptedSystemCalls::Made made;
    Trouble trouble;
    std::string file = {}; // that it was about; empty when nobody knows
    bool folder = false;   // the descriptor was that of a folder
    bool struck = false;   // the error came; the end of the file may come first
    std::vector<ScriptedSystemCalls::Made> before = {}; // of the same operation

    /// Whether the call is that one, with less than nothing going wrong: the end of the file.
    [[nodiscard]] bool Ends() const
    {
        return made.call == SystemCall::Pread && trouble.flaw.errorNumber == 0 &&
               trouble.flaw.moved == 0;
    }
};

/// Says of every sync that it was made, and makes none, for as long as it lives: nothing in these
/// tests outlives the machine.
class NoSyncs
{
public:
    NoSyncs();
    NoSyncs(const NoSyncs&) = delete;
    NoSyncs& operator=(const NoSyncs&) = delete;
    ~NoSyncs();

private:
    VUKSimUttSystemCalls mBefore;
};

/// Lets chosen system calls go wrong for as long as it lives; all others are made. One at a time.
class FaultyCalls
{
public:
    /// One call, counted from 1, or from the call before it in the list, and which of the troubles
    /// that fit it.
    struct Place
    {
        int number;
        std::size_t trouble;
    };

    /// The list of troubles that is chosen from.
    using Choice = std::vector<Trouble> (*)(const ScriptedSystemCalls::Made&);

    explicit FaultyCalls(const std::vector<Place>& places, Choice choice = &TroublesOf);
    FaultyCalls(const FaultyCalls&) = delete;
    FaultyCalls& operator=(const FaultyCalls&) = delete;

    /// The calls that came and went wrong, as many of the places as were reached.
    [[nodiscard]] const std::vector<Hit>& Hits() const noexcept { return mHits; }

    /// How many troubles there are to choose from for the last place; 0 when it was not reached.
    [[nodiscard]] std::size_t Troubles() const noexcept { return mTroubles; }

    [[nodiscard]] const ScriptedSystemCalls& Calls() const noexcept { return mCalls; }

    /// Whether a sync failed, so that the file counts as damaged; a folder that cannot be synced
    /// alone is no failure.
    [[nodiscard]] bool SyncFailed() const noexcept { return mSyncFailed; }

private:
    CallAnswer Answer(const ScriptedSystemCalls::Made& made);
    CallAnswer Strike(const ScriptedSystemCalls::Made& made);
    void KeepName(const ScriptedSystemCalls::Made& made);

    ScriptedSystemCalls mCalls;
    std::vector<Place> mPlaces;
    Choice mChoice;
    int mCount = 0; // calls since the last hit
    std::size_t mTroubles = 0;
    bool mCutDue = false; // the last hit moved some bytes; the next call of its kind fails
    bool mSyncFailed = false;
    std::vector<Hit> mHits;
    std::map<int, std::string> mNames; // of open descriptors, as far as they were seen
};
