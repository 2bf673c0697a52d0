#pragma once

#include "FrdModel.h"

#include "VUKSimRpm_BStreamAppendToPool.h"
#include "VUKSimRpm_Locator.h"
#include "VUKSimRpm_Pool.h"
#include "VUKSimRpm_Swapper.h"
#include "VUKSimRpm_SwapperTraits.h"

#include <algorithm>
#include <cstddef>
#include <string>
#include <type_traits>
#include <vector>

namespace fe {

/// Appends one record to a pool: a tag of 8 characters, the record's length in bytes (unsigned, 8
/// bytes), then whatever is put in, little-endian and without gaps.
///
/// The length is known last: it is zero until Finish fills it in. While a record is written nothing
/// else may grow its pool.
class RecordWriter
{
public:
    RecordWriter(const VUKSimRpm_Pool& pool, const char* tag);

    template <class T>
    void Number(T value)
    {
        static_assert(std::is_arithmetic_v<T>);
        VUKSimRpm_Swapper::ExternalizeScalarUnsafe(mStream.PrepWrite(sizeof value), &value,
                                                   sizeof value);
    }

    /// The items alone; their number has to be stored beside them.
    template <class T>
    void Array(const std::vector<T>& items)
    {
        for (std::size_t done = 0; done < items.size(); done += kItemsInPiece) {
            const std::size_t count = std::min(kItemsInPiece, items.size() - done);
            VUKSimRpm_SwapperTraits<sizeof(T)>::ExternalizeArray(
                mStream.PrepWrite(count * sizeof(T)), items.data() + done, static_cast<int>(count));
        }
    }

    void Text(const std::string& text);
    void Lines(const FrdLines& lines);
    void Spellings(const FrdSpellings& spellings);

    /// The pool's directory must name the pool that `locator` leads to.
    void Locator(const VUKSimRpm_Locator& locator);

    /// Where the record begins.
    [[nodiscard]] const VUKSimRpm_Locator& Start() const noexcept { return mStart; }

    /// Hands the record over to the pool and returns where it begins. Nothing may be put in
    /// afterwards.
    VUKSimRpm_Locator Finish();

private:
    static constexpr std::size_t kItemsInPiece = 512; // of at most 8 bytes, within one chunk

    VUKSimRpm_Locator mStart;
    VUKSimRpm_BStreamAppendToPool mStream;
};

} // namespace fe
