#include "Data.h"

#include <algorithm>
#include <map>
#include <numeric>
#include <random>
#include <tuple>

namespace {

// A whole number of records near 64 KiB, and not a divisor of any chunk.
std::size_t RecordsInBlock(long long size)
{
    switch (size) {
    case 12:
        return 5003;
    case 64:
        return 1021;
    case 1024:
        return 61;
    default:
        return 3;
    }
}

// std::shuffle's result is left open by the standard; this one is the same everywhere.
template <class Item>
void Shuffle(std::vector<Item>& items, std::mt19937_64& random)
{
    for (std::size_t i = items.size(); i > 1; --i) {
        std::swap(items[i - 1], items[random() % i]);
    }
}

Word SumOfWholeRecords(const std::vector<char>& block, std::size_t size, std::size_t count)
{
    Word sum = 0;
    for (std::size_t i = 0; i < count; ++i) {
        sum += WithSize(static_cast<long long>(size),
                        [&](auto n) { return SumRecord<n()>(block.data() + i * size); });
    }
    return sum;
}

Word SumOfEnds(const Job& job)
{
    Word sum = 0;
    for (const long long offset : Places(job)) {
        sum += BulkWord(offset);
        if (job.size > 8) {
            sum += BulkWord(offset + job.size - 8);
        }
    }
    return sum;
}
} // namespace

Records::Records(long long size, long long first)
    : mSize(static_cast<std::size_t>(size)), mBlock(mSize * RecordsInBlock(size))
{
    mPosition = static_cast<std::size_t>(first) % RecordsInBlock(size) * mSize;
    for (std::size_t i = 0; i + 4 <= mBlock.size(); i += 4) {
        const auto half =
            static_cast<std::uint32_t>(BulkWord(static_cast<long long>(i) * 2) >> 32U);
        std::memcpy(mBlock.data() + i, &half, sizeof half);
    }
}

Word Records::Sum(long long count) const
{
    const std::size_t first = mPosition / mSize;
    return SumOfFirst(first + static_cast<std::size_t>(count)) - SumOfFirst(first);
}

Word Records::SumOfFirst(std::size_t count) const
{
    const std::size_t whole = mBlock.size() / mSize;
    return count / whole * SumOfWholeRecords(mBlock, mSize, whole) +
           SumOfWholeRecords(mBlock, mSize, count % whole);
}

const std::vector<long long>& Places(const Job& job)
{
    // Pieces of 8 to 64 bytes lie at multiples of 64, so that 12 bytes never meet their neighbours.
    static std::map<std::tuple<long long, long long, long long>, std::vector<long long>> known;
    const long long step = std::max(64LL, job.size);
    std::vector<long long>& places = known[{step, job.count, job.bulk}];
    if (places.empty()) {
        std::vector<std::uint32_t> slots(static_cast<std::size_t>(job.bulk / step));
        std::iota(slots.begin(), slots.end(), 0U);
        std::mt19937_64 random(20260101);
        Shuffle(slots, random);
        places.reserve(static_cast<std::size_t>(job.count));
        for (std::size_t i = 0; i < static_cast<std::size_t>(job.count); ++i) {
            places.push_back(slots[i % slots.size()] * step);
        }
    }
    return places;
}

const std::vector<std::uint32_t>& ChaseOrder(const Job& job)
{
    static std::map<std::pair<long long, long long>, std::vector<std::uint32_t>> known;
    std::vector<std::uint32_t>& order = known[{job.size, job.count}];
    if (order.empty()) {
        const auto files = static_cast<std::size_t>(job.size);
        const auto each = static_cast<std::size_t>(job.count) / files;
        order.resize(each * files);
        std::mt19937_64 random(20260102);
        for (std::size_t file = 0; file < files; ++file) {
            std::vector<std::uint32_t> nodes(each);
            std::iota(nodes.begin(), nodes.end(), 0U);
            Shuffle(nodes, random);
            for (std::size_t i = 0; i < each; ++i) {
                order[i * files + file] = static_cast<std::uint32_t>(nodes[i] * files + file);
            }
        }
    }
    return order;
}

const std::string& PoolName(long long index)
{
    static const std::vector<std::string> names = [] {
        std::vector<std::string> made(32768);
        std::mt19937_64 random(20260104);
        for (std::string& name : made) {
            for (Word word = 0; name.size() < 32; word >>= 4U) {
                word = name.size() % 16 == 0 ? random() : word;
                name += "0123456789abcdef"[word & 15U];
            }
        }
        return made;
    }();
    return names[static_cast<std::size_t>(index)];
}

const std::string& Text(long long index)
{
    static const std::vector<std::string> texts = [] {
        std::vector<std::string> made;
        std::mt19937_64 random(20260103);
        for (int i = 0; i < 1000; ++i) {
            std::string text(5 + random() % 36, ' ');
            for (char& letter : text) {
                letter = static_cast<char>('a' + random() % 26);
            }
            made.push_back(text);
        }
        return made;
    }();
    return texts[static_cast<std::size_t>(index) % texts.size()];
}

Word ExpectedSum(const Job& job)
{
    Word sum = 0;
    switch (job.work) {
    case Workload::Append:
    case Workload::Overwrite:
        return Records(job.size, job.turn).Sum(job.count);
    case Workload::Decode:
        return Records(job.size).Sum(job.count); // made before the first turn
    case Workload::ReadRandom:
    case Workload::ReadImage:
        return SumOfEnds(job);
    case Workload::Chase:
        for (const std::uint32_t node : ChaseOrder(job)) {
            sum += NodeValue(node);
        }
        return sum;
    case Workload::CreatePools:
    case Workload::OpenPools:
        for (long long i = 0; i < job.size; ++i) {
            sum += BulkWord(i * kPoolSize) + BulkWord(i * kPoolSize + kPoolRead - 8);
        }
        return sum;
    case Workload::Import:
        return static_cast<Word>(job.bulk);
    case Workload::WriteRandom:
        for (long long i = 1; i <= job.count; ++i) {
            sum += PieceWord(static_cast<Word>(job.turn + i));
        }
        return sum;
    case Workload::StoreLocators:
    case Workload::LoadLocators:
        return static_cast<Word>(kReferences);
    case Workload::WriteStrings:
    case Workload::ReadStrings:
        for (long long i = 0; i < job.count; ++i) {
            sum += SumText(Text(i).data(), Text(i).size());
        }
        return sum;
    }
    return sum;
}
