#pragma once

#include <cstring>

/// Copies of few bytes, made in place: a call of the C library's copy costs more than all the rest
/// of a short read. Longer copies gain nothing here. Sizes are in bytes.
namespace VUKSimUttShortCopy {

inline constexpr unsigned long kLongest = 64;

using Sixteen = char __attribute__((vector_size(16)));

template <class Unit>
[[gnu::always_inline]] inline Unit Load(const char* from) noexcept
{
    Unit unit;
    std::memcpy(&unit, from, sizeof unit);
    return unit;
}

template <class Unit>
[[gnu::always_inline]] inline void Store(char* to, Unit unit) noexcept
{
    std::memcpy(to, &unit, sizeof unit);
}

/// Moves one to two units, as two that overlap.
template <class Unit, class Holds>
[[gnu::always_inline]] inline bool MovePairIf(char* to, const char* from, unsigned long length,
                                              Holds holds)
{
    const unsigned long second = length - sizeof(Unit);
    const Unit head = Load<Unit>(from);
    const Unit tail = Load<Unit>(from + second);
    if (!holds()) [[unlikely]] {
        return false;
    }
    Store(to, head);
    Store(to + second, tail);
    return true;
}

/// Takes the bytes at `from`, asks `holds()`, and only when that is true puts them to `to`. Returns
/// what it said. `length` is at most kLongest.
template <class Holds>
[[gnu::always_inline]] inline bool MoveIf(char* to, const char* from, unsigned long length,
                                          Holds holds)
{
    if (length > 16) {
        if (length <= 32) {
            return MovePairIf<Sixteen>(to, from, length, holds);
        }
        const unsigned long second = length - 32;
        const auto a = Load<Sixteen>(from);
        const auto b = Load<Sixteen>(from + 16);
        const auto c = Load<Sixteen>(from + second);
        const auto d = Load<Sixteen>(from + second + 16);
        if (!holds()) [[unlikely]] {
            return false;
        }
        Store(to, a);
        Store(to + 16, b);
        Store(to + second, c);
        Store(to + second + 16, d);
        return true;
    }
    if (length >= 8) {
        return MovePairIf<unsigned long long>(to, from, length, holds);
    }
    if (length >= 4) {
        return MovePairIf<unsigned int>(to, from, length, holds);
    }
    if (length >= 2) {
        return MovePairIf<unsigned short>(to, from, length, holds);
    }
    const char only = length != 0 ? *from : '\0';
    if (!holds()) [[unlikely]] {
        return false;
    }
    if (length != 0) {
        *to = only;
    }
    return true;
}

/// Copies any number of bytes, few of them in place. The two stretches must not overlap.
[[gnu::always_inline]] inline void Copy(char* to, const char* from, unsigned long length)
{
    if (length <= kLongest) [[likely]] {
        MoveIf(to, from, length, [] { return true; });
    } else {
        std::memcpy(to, from, length);
    }
}

} // namespace VUKSimUttShortCopy
