#pragma once

#include "FrdModel.h"

#include "VUKSimRpm_BStreamReadLocator.h"
#include "VUKSimRpm_Locator.h"
#include "VUKSimRpm_Swapper.h"
#include "VUKSimRpm_SwapperTraits.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <vector>

namespace fe {

/// A record that is not what the place that leads to it promised.
class RecordError : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

/// Reads one record that RecordWriter wrote, item by item in the same order.
///
/// Never reads behind the record's end (VUKSimExcShortBuffer), and memory grows only with bytes
/// that the file really holds, whatever counts the record claims.
class RecordReader
{
public:
    /// \throws RecordError when no record with this tag begins at `start`.
    RecordReader(const VUKSimRpm_Locator& start, const char* tag);

    template <class T>
    [[nodiscard]] T Number()
    {
        static_assert(std::is_arithmetic_v<T>);
        T value{};
        VUKSimRpm_Swapper::InternalizeScalarUnsafe(mStream.PrepRead(sizeof value), &value,
                                                   sizeof value);
        return value;
    }

    template <class T>
    [[nodiscard]] std::vector<T> Array(std::uint64_t size)
    {
        std::vector<T> items;
        for (std::uint64_t left = size; left > 0;) {
            const auto count = static_cast<std::size_t>(std::min(left, kItemsInPiece));
            const char* stored = mStream.PrepRead(count * sizeof(T));
            items.resize(items.size() + count);
            VUKSimRpm_SwapperTraits<sizeof(T)>::InternalizeArray(
                stored, items.data() + items.size() - count, static_cast<int>(count));
            left -= count;
        }
        return items;
    }

    [[nodiscard]] std::string Text();
    [[nodiscard]] FrdLines Lines();
    [[nodiscard]] FrdSpellings Spellings();
    [[nodiscard]] VUKSimRpm_Locator Locator();

private:
    static constexpr std::uint64_t kItemsInPiece = 512; // of at most 8 bytes, within one chunk

    VUKSimRpm_BStreamReadLocator mStream;
};

} // namespace fe
