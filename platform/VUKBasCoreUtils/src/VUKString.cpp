#include "VUKString.h"

#include "VUKBasRangeException.h"

#include <cstring>
#include <limits>

namespace {

constexpr char kSource[] = "VUKSim/VUKBasCoreUtils.m/src/VUKString";

namespace at {
constexpr int kBuildTooLong = 1;
constexpr int kJoinTooLong = 2;
constexpr int kAssignTooLong = 3;
} // namespace at

// Lengths are handed out as 32-bit numbers: a longer text is refused here rather than counted
// wrong.
std::size_t CheckedLength(std::size_t length, int line)
{
    constexpr std::size_t kLongest = std::numeric_limits<unsigned int>::max();
    if (length > kLongest) [[unlikely]] {
        VUKBasRangeException(static_cast<long long>(length), static_cast<long long>(kLongest))
            .Throw(kSource, line);
    }
    return length;
}

} // namespace

VUKString::VUKString(const char* utf8)
{
    if (utf8 != nullptr) {
        mText.assign(utf8, CheckedLength(std::strlen(utf8), at::kBuildTooLong));
    }
}

VUKString& VUKString::operator=(const char* utf8)
{
    if (utf8 != nullptr) {
        mText.assign(utf8, CheckedLength(std::strlen(utf8), at::kAssignTooLong));
    } else {
        mText.clear();
    }
    return *this;
}

VUKString VUKString::operator+(const VUKString& tail) const
{
    VUKString joined;
    joined.mText.reserve(CheckedLength(mText.size() + tail.mText.size(), at::kJoinTooLong));
    joined.mText.append(mText).append(tail.mText);
    return joined;
}
