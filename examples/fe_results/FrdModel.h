#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

// The content of a result file: numbers as numbers, all other text as it stands.

namespace fe {

using FrdLines = std::vector<std::string>; // without their line ends

/// Widths of the columns of integers in a block; the numbers are the format's own.
enum class FrdLayout : std::uint32_t
{
    Short = 0, // 5 characters, 15 nodes in a line
    Long = 1   // 10 characters, 10 nodes in a line
};

[[nodiscard]] constexpr std::size_t IntegerWidth(FrdLayout layout)
{
    return layout == FrdLayout::Short ? 5 : 10;
}

[[nodiscard]] constexpr std::size_t NodesInLine(FrdLayout layout)
{
    return layout == FrdLayout::Short ? 15 : 10;
}

inline constexpr std::size_t kValuesInLine = 6;

/// A number that the solver would have spelled otherwise, or a text where a number is usual. The
/// fields of a block are counted from 0 in the order in which they stand in the file.
struct FrdSpelling
{
    std::uint64_t field = 0;
    std::string text; // the whole column

    bool operator==(const FrdSpelling&) const = default;
};

using FrdSpellings = std::vector<FrdSpelling>; // by field, ascending

struct FrdNodes
{
    FrdLines before;    // text records in front of the block
    std::string header; // the "2C" record; empty when the file has no mesh
    FrdLayout layout = FrdLayout::Long;
    std::vector<std::int64_t> numbers;
    std::vector<double> coordinates; // x, y, z of each node
    FrdSpellings spellings;
};

struct FrdElements
{
    FrdLines before;
    std::string header; // the "3C" record; empty when the file has no elements
    FrdLayout layout = FrdLayout::Long;
    std::vector<std::int64_t> numbers;
    std::vector<std::int32_t> types; // see FrdElementType.h
    std::vector<std::int32_t> groups;
    std::vector<std::int32_t> materials;   // 0 where the file has a name
    std::vector<std::int64_t> nodeNumbers; // of all elements, one behind the other
    FrdSpellings spellings;
};

struct FrdMesh
{
    std::string source;  // name of the result file, without folders
    std::string lineEnd; // of all its lines: "\n" or "\r\n"
    FrdNodes nodes;
    FrdElements elements;
};

/// One component of a quantity; further columns stand in the record alone.
struct FrdComponent
{
    std::string record; // the "-5" record
    std::string name;   // without blanks
    std::string unit;   // see Units.h; the file itself names none
    bool stored = true; // false for one that a viewer computes: it has no values in the file
};

/// One block of results: a quantity at nodes, in one step or mode.
struct FrdResult
{
    FrdLines before;           // parameters in front of the block
    std::string header;        // the "100C" record
    std::string nameRecord;    // the "-4" record
    std::string name;          // without blanks
    double value = 0.0;        // time, load factor or frequency
    std::int32_t analysis = 0; // 0 static, 1 time step, 2 frequency, 3 load step, 4 other
    std::int32_t step = 0;     // counts steps, increments or modes
    FrdLayout layout = FrdLayout::Long;
    std::vector<FrdComponent> components;
    std::vector<std::int64_t> nodeNumbers;
    std::vector<double> values; // of the stored components, node by node
    FrdSpellings spellings;
};

/// Components with values in the file.
[[nodiscard]] inline std::size_t StoredComponents(const std::vector<FrdComponent>& components)
{
    std::size_t count = 0;
    for (const FrdComponent& component : components) {
        count += component.stored ? 1U : 0U;
    }
    return count;
}

} // namespace fe
