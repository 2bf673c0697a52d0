#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace fe {

/// An element shape of the result format.
struct FrdElementType
{
    const char* name;
    std::size_t nodes;
};

/// Shapes by their numbers, which begin at 1.
inline constexpr std::array<FrdElementType, 12> kFrdElementTypes{{{"he8", 8},
                                                                  {"pe6", 6},
                                                                  {"te4", 4},
                                                                  {"he20", 20},
                                                                  {"pe15", 15},
                                                                  {"te10", 10},
                                                                  {"tr3", 3},
                                                                  {"tr6", 6},
                                                                  {"qu4", 4},
                                                                  {"qu8", 8},
                                                                  {"be2", 2},
                                                                  {"be3", 3}}};

/// The shape with number `type`; null when there is none.
[[nodiscard]] constexpr const FrdElementType* FindElementType(std::int64_t type) noexcept
{
    const bool known = type >= 1 && type <= static_cast<std::int64_t>(kFrdElementTypes.size());
    return known ? &kFrdElementTypes[static_cast<std::size_t>(type - 1)] : nullptr;
}

} // namespace fe
