#include "Coverage.h"

#include <algorithm>
#include <iterator>

namespace simpool {

void Coverage::Add(std::uint64_t begin, std::uint64_t end)
{
    if (begin >= end) {
        return;
    }
    auto next = mEnds.upper_bound(begin);
    if (next != mEnds.begin() && std::prev(next)->second >= begin) {
        --next;
        begin = next->first;
    }
    while (next != mEnds.end() && next->first <= end) {
        end = std::max(end, next->second);
        next = mEnds.erase(next);
    }
    mEnds.emplace(begin, end);
}

std::vector<Coverage::Stretch> Coverage::Missing(std::uint64_t begin, std::uint64_t end) const
{
    std::vector<Stretch> missing;
    auto next = mEnds.upper_bound(begin);
    if (next != mEnds.begin()) {
        begin = std::max(begin, std::prev(next)->second);
    }
    for (; begin < end && next != mEnds.end() && next->first < end; ++next) {
        missing.push_back({begin, next->first});
        begin = next->second;
    }
    if (begin < end) {
        missing.push_back({begin, end});
    }
    return missing;
}
} // namespace simpool
