// Files that are made to cost whoever opens them as much as possible for their size.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

struct HurtingKind
{
    std::string name;
    std::string (*build)(std::size_t size); // returns exactly so many bytes
};

[[nodiscard]] const std::vector<HurtingKind>& HurtingKinds();
