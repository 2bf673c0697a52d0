#pragma once

#include "WatchedStore.h"

#include <cstddef>
#include <functional>
#include <ostream>
#include <string>
#include <vector>

/// A run of the library that is crashed at every moment.
struct Scenario
{
    std::string name;
    std::function<void(WatchedStore&)> run;
    std::size_t powerLosses = 160; // images per moment; fewer where files are large
    std::string row = {};          // where it is counted; empty: under its name

    friend std::ostream& operator<<(std::ostream& out, const Scenario& scenario)
    {
        return out << scenario.name;
    }
};

/// All of them. The last ones make calls at random: a few, and many in a long run.
[[nodiscard]] std::vector<Scenario> AllScenarios();

/// `count` runs of random calls, drawn with `seed` and the numbers that follow it.
[[nodiscard]] std::vector<Scenario> RandomScenarios(unsigned count, std::uint64_t seed);
