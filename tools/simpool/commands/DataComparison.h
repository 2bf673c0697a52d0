#pragma once

#include "LoadedFile.h"
#include "ProgressLine.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace simpool {

/// Differences are told by rows of so many bytes, from offsets that it divides.
inline constexpr std::uint64_t kRow = 16;

/// What data is taken for, element by element from its first byte. Numbers are little-endian.
enum class Element
{
    Byte,
    U32,
    I32,
    U64,
    F32,
    F64
};

/// "f64" and the like; nothing for another text.
[[nodiscard]] std::optional<Element> ParseElement(std::string_view text);

/// How data is compared. Numbers a and b are equal when |a - b| <= absolute + relative * |b|, when
/// their bytes are the same, or when both are no numbers (NaN).
struct ComparisonRules
{
    Element element = Element::Byte;
    double relative = 0;
    double absolute = 0;
    std::size_t mostPlaces = 3; // that are told one by one
};

/// Bytes [begin, end) of a pool's data.
struct DataRange
{
    std::uint64_t begin;
    std::uint64_t end;
};

/// Where data differs: an element's offset in bytes. Of bytes, the first of each row of 16.
struct DataPlace
{
    std::uint64_t offset;
    std::string a = {}; // the numbers; empty for bytes
    std::string b = {};
};

struct DataDifference
{
    std::uint64_t compared = 0; // elements; a rest that fills none counts as one
    std::uint64_t different = 0;
    double largestAbsolute = 0; // of numbers that differ
    double largestRelative = 0; // to b; infinite where b is 0
    std::vector<DataPlace> places = {};
};

/// Data of one side, of which the file has all bytes.
struct DataStretch
{
    const LoadedFile* file;
    std::uint64_t position; // in the file
    std::uint64_t length;
};

/// Compares as many bytes as both sides have, without the elements that touch `ignored`.
/// \throws CommandFailure when a file cannot be read or has become shorter.
[[nodiscard]] DataDifference CompareData(const DataStretch& a, const DataStretch& b,
                                         const std::vector<DataRange>& ignored,
                                         const ComparisonRules& rules, ProgressLine& progress);
} // namespace simpool
