#pragma once

#include "VUKSimRpm_BStreamRead.h"
#include "VUKSimRpm_BStreamWrite.h"
#include "VUKSimRpm_Swapper.h"
#include "VUKSimRpm_SwapperTraits.h"
#include "VUKString.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <type_traits>
#include <vector>

// Numbers, texts and arrays into and out of the library's streams, in stored byte order.

namespace heat {

/// Arrays pass in pieces of at most this many items of 8 bytes, so that a stream's chunk of
/// kChunkBytes holds any piece, and memory grows only with items that were really delivered.
inline constexpr std::size_t kItemsInPiece = 512;
inline constexpr unsigned long kChunkBytes = kItemsInPiece * 8;

template <class T>
void Put(VUKSimRpm_BStreamWrite& stream, T item)
{
    static_assert(std::is_arithmetic_v<T>);
    VUKSimRpm_Swapper::ExternalizeScalarUnsafe(stream.PrepWrite(sizeof item), &item, sizeof item);
}

template <class T>
[[nodiscard]] T Get(VUKSimRpm_BStreamRead& stream)
{
    static_assert(std::is_arithmetic_v<T>);
    T item{};
    VUKSimRpm_Swapper::InternalizeScalarUnsafe(stream.PrepRead(sizeof item), &item, sizeof item);
    return item;
}

inline void PutText(VUKSimRpm_BStreamWrite& stream, const std::string& text)
{
    stream.Write(VUKString(text.c_str()));
}

[[nodiscard]] inline std::string GetText(VUKSimRpm_BStreamRead& stream)
{
    VUKString text;
    stream.Read(text);
    return text.UTF8();
}

template <class T>
void PutArray(VUKSimRpm_BStreamWrite& stream, const std::vector<T>& items)
{
    for (std::size_t done = 0; done < items.size(); done += kItemsInPiece) {
        const std::size_t count = std::min(kItemsInPiece, items.size() - done);
        VUKSimRpm_SwapperTraits<sizeof(T)>::ExternalizeArray(
            stream.PrepWrite(count * sizeof(T)), items.data() + done, static_cast<int>(count));
    }
}

template <class T>
[[nodiscard]] std::vector<T> GetArray(VUKSimRpm_BStreamRead& stream, std::size_t size)
{
    std::vector<T> items;
    while (items.size() < size) {
        const std::size_t done = items.size();
        const std::size_t count = std::min(kItemsInPiece, size - done);
        const char* stored = stream.PrepRead(count * sizeof(T));
        items.resize(done + count);
        VUKSimRpm_SwapperTraits<sizeof(T)>::InternalizeArray(stored, items.data() + done,
                                                             static_cast<int>(count));
    }
    return items;
}

} // namespace heat
