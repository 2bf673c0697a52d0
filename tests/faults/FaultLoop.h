#pragma once

#include "Operation.h"

#include <map>
#include <string>
#include <vector>

/// What came of all attempts at one operation.
struct LoopResult
{
    int calls = 0;       // system calls that were reached, and each tried with all that fits it
    int allocations = 0; // the same
    int points = 0;      // attempts in which the fault came to pass
    int callPoints = 0;  // those of them that were about system calls
    std::vector<std::string> complaints = {};
};

/// Lets each system call of the operation go wrong in every way, then each of its allocations,
/// until the operation comes to its end without reaching the fault.
[[nodiscard]] LoopResult TryEveryFault(const OperationEntry& entry);

/// The same with two system calls: after the first has gone wrong, each of those that follow, while
/// the operation recovers or, where the first had ended it, while it is tried a second time.
[[nodiscard]] LoopResult TryEveryPairOfFaults(const OperationEntry& entry);

/// Points of the loops over the table of operations so far, by what was tried.
[[nodiscard]] std::map<std::string, int>& TriedPoints();
