#pragma once

#include "DataComparison.h"
#include "LoadedFile.h"

#include <map>
#include <string>
#include <utility>
#include <vector>

namespace simpool {

/// How two files are held against each other.
struct DifferenceRules
{
    bool byIndex = false; // pools are paired by number, not by UUID
    ComparisonRules data = {};
    std::map<Uuid, std::vector<DataRange>> ignored = {}; // by the UUID of either side
};

/// Something that has one value on either side, as text that is safe to show.
struct FieldDifference
{
    std::string field;
    std::string a;
    std::string b;
};

/// Two pools that are not equal.
struct PoolDifference
{
    std::size_t a; // numbers
    std::size_t b;
    std::vector<FieldDifference> fields = {};
    std::size_t fieldsLeftOut = 0; // further directory entries
    DataDifference data = {};

    [[nodiscard]] bool IsEmpty() const noexcept { return fields.empty() && data.different == 0; }
};

/// All that differs between two files. Neither the order of pools paired by UUID nor which of them
/// is the current one counts.
struct FileDifference
{
    std::vector<std::size_t> onlyInA = {}; // numbers of pools
    std::vector<std::size_t> onlyInB = {};
    std::vector<PoolDifference> pools = {};
    std::vector<FieldDifference> fields = {}; // of the files: what lies behind the last pool

    [[nodiscard]] bool IsEmpty() const noexcept
    {
        return onlyInA.empty() && onlyInB.empty() && pools.empty() && fields.empty();
    }
};

/// Compares the two files, which were walked each alone.
/// \throws CommandFailure when a file cannot be read.
[[nodiscard]] FileDifference CompareFiles(const LoadedFiles& a, const LoadedFiles& b,
                                          const DifferenceRules& rules, Output& err);
} // namespace simpool
