// Running the cases: in alternation, with every sum checked.
#pragma once

#include "Data.h"
#include "Results.h"

#include <string>

class Rounds
{
public:
    /// `folder` takes the files of all contenders and is left empty.
    Rounds(Contenders& contenders, std::string folder, int rounds);

    /// Each contender makes and opens its store and runs once unmeasured; then A B C, A B C.
    /// A contender that fails or comes to another sum is reported and left out.
    void Run(const Case& one, Results& results);

    /// Each contender makes its store here and runs in a process of its own.
    void RunForMemory(const Case& one, Results& results);

    [[nodiscard]] int Failures() const noexcept { return mFailures; }

private:
    struct Entry
    {
        Contender* contender;
        Job job;
        Measured measured;
    };

    std::vector<Entry> Enter(const Case& one);
    bool Attempt(Entry& entry, int turn);
    void Report(const Entry& entry, const std::string& what);

    Contenders& mContenders;
    std::string mFolder;
    int mRounds;
    int mFailures = 0;
};

/// The other process of RunForMemory; prints the two numbers.
void MeasureMemory(Contender& contender, const Job& job);
