#pragma once

#include <cstdint>
#include <map>
#include <vector>

namespace simpool {

/// Which bytes of a file were seen already: stretches that do not touch each other.
class Coverage
{
public:
    struct Stretch
    {
        std::uint64_t begin;
        std::uint64_t end;
    };

    void Add(std::uint64_t begin, std::uint64_t end);

    /// The parts of [begin, end) that were not added, in order.
    [[nodiscard]] std::vector<Stretch> Missing(std::uint64_t begin, std::uint64_t end) const;

private:
    std::map<std::uint64_t, std::uint64_t> mEnds = {}; // by begin
};
} // namespace simpool
