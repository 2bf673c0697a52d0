#include "DataComparison.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstring>
#include <limits>
#include <type_traits>

namespace simpool {
namespace {

constexpr std::size_t kChunk = std::size_t{1} << 20; // bytes; a multiple of every element

template <class Number>
Number Decode(const char* bytes)
{
    using Bits = std::conditional_t<sizeof(Number) == 8, std::uint64_t, std::uint32_t>;
    Bits bits = 0;
    for (std::size_t i = 0; i < sizeof(Number); ++i) {
        bits |= static_cast<Bits>(static_cast<unsigned char>(bytes[i])) << (8 * i);
    }
    return std::bit_cast<Number>(bits);
}

class Comparison
{
public:
    Comparison(const std::vector<DataRange>& ignored, const ComparisonRules& rules)
        : mIgnored(ignored), mRules(rules)
    {}

    void Chunk(std::string_view a, std::string_view b, std::uint64_t offset)
    {
        if (a == b) {
            return;
        }
        mA = a;
        mB = b;
        mOffset = offset;
        switch (mRules.element) {
        case Element::Byte:
            return Bytes();
        case Element::U32:
            return Numbers<std::uint32_t>();
        case Element::I32:
            return Numbers<std::int32_t>();
        case Element::U64:
            return Numbers<std::uint64_t>();
        case Element::F32:
            return Numbers<float>();
        case Element::F64:
            return Numbers<double>();
        }
    }

    [[nodiscard]] DataDifference Result() { return std::move(mResult); }

private:
    [[nodiscard]] bool IsIgnored(std::size_t at, std::size_t size) const
    {
        const std::uint64_t begin = mOffset + at;
        return std::ranges::any_of(mIgnored, [&](const DataRange& range) {
            return begin < range.end && range.begin < begin + size;
        });
    }

    [[nodiscard]] bool Differs(std::size_t at, std::size_t size) const
    {
        return std::memcmp(mA.data() + at, mB.data() + at, size) != 0 && !IsIgnored(at, size);
    }

    void Bytes()
    {
        for (std::size_t at = 0; at < mA.size(); ++at) {
            if (mA[at] != mB[at] && !IsIgnored(at, 1)) {
                NoteBytes(at);
            }
        }
    }

    void NoteBytes(std::size_t at)
    {
        ++mResult.different;
        const std::uint64_t offset = mOffset + at;
        const bool isNewRow =
            mResult.places.empty() || mResult.places.back().offset / kRow != offset / kRow;
        if (isNewRow && mResult.places.size() < mRules.mostPlaces) {
            mResult.places.push_back({offset});
        }
    }

    template <class Number>
    void Numbers()
    {
        const std::size_t count = mA.size() / sizeof(Number);
        const std::size_t rest = mA.size() % sizeof(Number);
        for (std::size_t at = 0; at < count * sizeof(Number); at += sizeof(Number)) {
            if (Differs(at, sizeof(Number))) {
                Compare(at, Decode<Number>(mA.data() + at), Decode<Number>(mB.data() + at));
            }
        }
        if (rest > 0 && Differs(count * sizeof(Number), rest)) {
            Note(count * sizeof(Number), "(too few bytes)", "(too few bytes)");
        }
    }

    template <class Number>
    void Compare(std::size_t at, Number a, Number b)
    {
        const auto x = static_cast<double>(a);
        const auto y = static_cast<double>(b);
        // Integers above 2^53 are no doubles: their difference is taken first.
        double distance = std::abs(x - y);
        if constexpr (std::is_integral_v<Number>) {
            distance =
                a > b ? static_cast<double>(Distance(b, a)) : static_cast<double>(Distance(a, b));
        }
        const bool bothNoNumbers = std::isnan(x) && std::isnan(y);
        // Any distance would be within a share of infinity.
        const double allowed = mRules.absolute + mRules.relative * std::abs(y);
        const bool isNear = !std::isinf(y) && distance <= allowed;
        if (bothNoNumbers || isNear) {
            return;
        }
        if (std::isfinite(distance)) {
            const double relative = distance == 0 ? 0 : distance / std::abs(y);
            mResult.largestAbsolute = std::max(mResult.largestAbsolute, distance);
            mResult.largestRelative = std::max(mResult.largestRelative, relative);
        }
        Note(at, fmt::format("{}", a), fmt::format("{}", b));
    }

    template <class Integer>
    static std::make_unsigned_t<Integer> Distance(Integer low, Integer high)
    {
        using Unsigned = std::make_unsigned_t<Integer>;
        return static_cast<Unsigned>(high) - static_cast<Unsigned>(low);
    }

    void Note(std::size_t at, std::string a, std::string b)
    {
        ++mResult.different;
        if (mResult.places.size() < mRules.mostPlaces) {
            mResult.places.push_back({mOffset + at, std::move(a), std::move(b)});
        }
    }

    const std::vector<DataRange>& mIgnored;
    const ComparisonRules& mRules;
    std::string_view mA = {}; // the chunk of each side
    std::string_view mB = {};
    std::uint64_t mOffset = 0; // of the chunk in the data
    DataDifference mResult = {};
};

std::uint64_t SizeOf(Element element)
{
    switch (element) {
    case Element::Byte:
        return 1;
    case Element::U64:
    case Element::F64:
        return 8;
    case Element::U32:
    case Element::I32:
    case Element::F32:
        break;
    }
    return 4;
}

// Up to which offset both sides are holes, and so both zeros; `offset` when they are none there.
std::uint64_t EndOfSharedHole(const DataStretch& a, const DataStretch& b, std::uint64_t offset)
{
    return std::min(a.file->bytes.SkipHole(a.position + offset) - a.position,
                    b.file->bytes.SkipHole(b.position + offset) - b.position);
}
} // namespace

std::optional<Element> ParseElement(std::string_view text)
{
    constexpr std::array<std::string_view, 6> kNames = {"byte", "u32", "i32", "u64", "f32", "f64"};
    const auto found = std::ranges::find(kNames, text);
    if (found == kNames.end()) {
        return std::nullopt;
    }
    return static_cast<Element>(found - kNames.begin());
}

DataDifference CompareData(const DataStretch& a, const DataStretch& b,
                           const std::vector<DataRange>& ignored, const ComparisonRules& rules,
                           ProgressLine& progress)
{
    Comparison comparison(ignored, rules);
    const std::uint64_t length = std::min(a.length, b.length);
    for (std::uint64_t offset = 0; offset < length; offset += kChunk) {
        offset = std::max(offset, EndOfSharedHole(a, b, offset) / kChunk * kChunk);
        if (offset >= length) {
            break;
        }
        const std::uint64_t count = std::min<std::uint64_t>(kChunk, length - offset);
        const std::string one = ReadBytes(*a.file, a.position + offset, count);
        const std::string other = ReadBytes(*b.file, b.position + offset, count);
        comparison.Chunk(one, other, offset);
        progress.At(a.position + offset);
    }
    DataDifference result = comparison.Result();
    const std::uint64_t size = SizeOf(rules.element);
    result.compared = length / size + (length % size > 0 ? 1 : 0);
    return result;
}
} // namespace simpool
