#include "Shrink.h"

#include <algorithm>
#include <utility>

namespace {

using Fails = std::function<bool(const Script&)>;

// Leaves out runs of operations, long ones first.
bool LeaveOut(Script& script, const Fails& fails)
{
    bool smaller = false;
    for (std::size_t length = std::max<std::size_t>(script.size() / 2, 1); length > 0;) {
        bool any = false;
        for (std::size_t at = 0; at < script.size();) {
            Script candidate = script;
            const auto from = candidate.begin() + static_cast<std::ptrdiff_t>(at);
            const auto count = std::min(length, script.size() - at);
            candidate.erase(from, from + static_cast<std::ptrdiff_t>(count));
            if (fails(candidate)) {
                script = std::move(candidate);
                any = true;
            } else {
                at += length;
            }
        }
        smaller = smaller || any;
        if (length > 1 || !any) {
            length /= 2;
        }
    }
    return smaller;
}

// Operations that only make sense together.
bool LeaveOutPairs(Script& script, const Fails& fails)
{
    constexpr std::size_t kShort = 40; // beyond, there are too many pairs
    for (std::size_t i = 0; script.size() <= kShort && i < script.size(); ++i) {
        for (std::size_t j = i + 1; j < script.size(); ++j) {
            Script candidate = script;
            candidate.erase(candidate.begin() + static_cast<std::ptrdiff_t>(j));
            candidate.erase(candidate.begin() + static_cast<std::ptrdiff_t>(i));
            if (fails(candidate)) {
                script = std::move(candidate);
                return true;
            }
        }
    }
    return false;
}

bool MakePlain(Script& script, const Fails& fails)
{
    bool smaller = false;
    for (std::size_t i = 0; i < script.size(); ++i) {
        for (std::size_t argument = 0; argument < Operation::kMostArguments; ++argument) {
            const std::uint32_t before = script[i].arguments[argument];
            for (const std::uint32_t plainer :
                 {std::uint32_t{0}, std::uint32_t{1}, before / 2, before - 1}) {
                if (plainer >= before) {
                    continue;
                }
                script[i].arguments[argument] = plainer;
                if (fails(script)) {
                    smaller = true;
                    break;
                }
                script[i].arguments[argument] = before;
            }
        }
    }
    return smaller;
}
} // namespace

Script Shrunk(Script script, const std::function<bool(const Script&)>& fails)
{
    while (LeaveOut(script, fails) || LeaveOutPairs(script, fails) || MakePlain(script, fails)) {
    }
    return script;
}
