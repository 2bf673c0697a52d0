#include "Tally.h"

#include "ExpectedFailures.h"

#include <algorithm>
#include <iomanip>
#include <ostream>

namespace {

// "VUKSimRpm_File:20 VUKSimExcCantGetFile", with a check's text behind it.
std::string NameOf(const Failure& failure)
{
    std::string name;
    if (failure.line != 0) {
        name = failure.path.substr(failure.path.rfind('/') + 1) + ':' +
               std::to_string(failure.line) + ' ';
    }
    name += failure.exception;
    if (failure.exception == "VUKBasAssertException") {
        name += " \"" + failure.text + '"';
    } else if (failure.exception == "VUKSimUttOSFileException") {
        name += ' ' + failure.text.substr(0, failure.text.find(' ')) + ' ' +
                std::to_string(failure.values[0]);
    }
    return name;
}
} // namespace

void Tally::Count(const Operation& operation, const Outcome& outcome)
{
    ++mOperations;
    Uses& uses = mKinds[static_cast<std::size_t>(operation.kind)];
    ++(outcome.skipped ? uses.skipped : outcome.failure ? uses.failed : uses.done);
    if (outcome.failure) {
        ++mFailures[NameOf(*outcome.failure)];
    } else if (operation.kind == Kind::ManyPools && !outcome.skipped) {
        mLargestFile = std::max(mLargestFile, outcome.numbers.back());
    }
}

std::vector<std::string> Tally::Missing() const
{
    std::vector<std::string> missing;
    for (const KindFacts& facts : AllKinds()) {
        if (facts.kind != Kind::UseMovedDocument && // which can only fail
            mKinds[static_cast<std::size_t>(facts.kind)].done == 0) {
            missing.emplace_back(facts.name);
        }
    }
    for (const std::string& failure : ExpectedFailures()) {
        if (!mFailures.contains(failure)) {
            missing.push_back(failure);
        }
    }
    return missing;
}

std::vector<std::string> Tally::Unexpected() const
{
    const auto& expected = ExpectedFailures();
    std::vector<std::string> unexpected;
    for (const auto& [failure, count] : mFailures) {
        if (std::find(expected.begin(), expected.end(), failure) == expected.end()) {
            unexpected.push_back(failure);
        }
    }
    return unexpected;
}

void Tally::Print(std::ostream& out) const
{
    out << "largest file: " << mLargestFile << " pools\n";
    out << std::left << std::setw(24) << "operation" << std::right << std::setw(12) << "done"
        << std::setw(12) << "failed" << std::setw(12) << "skipped" << '\n';
    for (const KindFacts& facts : AllKinds()) {
        const Uses& uses = mKinds[static_cast<std::size_t>(facts.kind)];
        out << std::left << std::setw(24) << facts.name << std::right << std::setw(12) << uses.done
            << std::setw(12) << uses.failed << std::setw(12) << uses.skipped << '\n';
    }
    for (const auto& [failure, count] : mFailures) {
        out << std::setw(12) << count << "  " << failure << '\n';
    }
}
