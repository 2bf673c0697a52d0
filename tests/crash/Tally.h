#pragma once

#include "CrashImage.h"
#include "Outcome.h"

#include <cstddef>
#include <map>
#include <ostream>
#include <string>
#include <unordered_set>
#include <utility>
#include <vector>

/// Counts what became of crash images, by scenario and model.
class Tally
{
public:
    struct Row
    {
        std::size_t states = 0;
        std::size_t inPoolCall = 0;
        std::size_t refused = 0;
        std::size_t longer = 0;
        std::size_t pastEnd = 0;
        std::size_t mixedUuid = 0;
        std::size_t broken = 0;                   // states with at least one broken promise
        std::unordered_set<std::size_t> distinct; // hashes of content

        void Add(const Row& other);
    };

    /// The one of this program, printed behind the last test.
    static Tally& Total();

    /// The same runs with files that are not extended before a freeze.
    static Tally& Unextended();

    void Count(const std::string& scenario, const CrashImage& image, const Outcome& outcome);

    [[nodiscard]] const std::vector<std::string>& Scenarios() const noexcept { return mScenarios; }

    [[nodiscard]] Row At(const std::string& scenario, CrashModel model) const;

    [[nodiscard]] Row Sum() const;

    void Print(std::ostream& out) const;

private:
    static void PrintRow(std::ostream& out, const std::string& scenario, const std::string& model,
                         const Row& row);

    std::vector<std::string> mScenarios; // in the order in which they came
    std::map<std::pair<std::string, CrashModel>, Row> mRows;
    std::map<std::string, std::size_t> mRefusedBy; // exception classes
};
