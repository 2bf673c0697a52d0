// The bytes that all contenders store, the order in which they read them, and the sums that must
// come out. Everything follows from positions, so that each contender is held to the same bytes.
#pragma once

#include "Contender.h"

#include <array>
#include <cstddef>
#include <cstring>
#include <string>
#include <type_traits>
#include <vector>

using Word = std::uint64_t;

inline Word LoadWord(const char* from)
{
    Word word;
    std::memcpy(&word, from, sizeof word);
    return word;
}

/// The word at byte `offset` of the bulk, a multiple of 8.
inline Word BulkWord(long long offset)
{
    return (static_cast<Word>(offset) / 8 + 1) * 0x9E3779B97F4A7C15U;
}

/// Fills `length` bytes, a multiple of 8, with what stands at `offset` of the bulk.
inline void FillBulk(char* to, long long offset, long long length)
{
    for (long long i = 0; i < length; i += 8) {
        const Word word = BulkWord(offset + i);
        std::memcpy(to + i, &word, sizeof word);
    }
}

/// Hands the bulk to `put(offset, bytes, length)` in pieces of `piece` bytes.
template <class Put>
void PutBulk(long long bytes, long long piece, Put put)
{
    std::vector<char> buffer(static_cast<std::size_t>(piece));
    for (long long offset = 0; offset < bytes; offset += piece) {
        FillBulk(buffer.data(), offset, piece);
        put(offset, static_cast<const char*>(buffer.data()), piece);
    }
}

/// Calls `work` with `size` as a constant of the compiler, for every contender alike.
template <class Work>
auto WithSize(long long size, Work work)
{
    switch (size) {
    case 8:
        return work(std::integral_constant<unsigned, 8>());
    case 12:
        return work(std::integral_constant<unsigned, 12>());
    case 64:
        return work(std::integral_constant<unsigned, 64>());
    case 1024:
        return work(std::integral_constant<unsigned, 1024>());
    case 4096:
        return work(std::integral_constant<unsigned, 4096>());
    default:
        return work(std::integral_constant<unsigned, 65536>());
    }
}

/// Every 8-byte word of a record, and the 4 bytes that a record of 12 has left over.
template <unsigned Size>
Word SumRecord(const char* record)
{
    Word sum = 0;
    for (unsigned i = 0; i + 8 <= Size; i += 8) {
        sum += LoadWord(record + i);
    }
    if constexpr (Size % 8 == 4) {
        std::uint32_t rest;
        std::memcpy(&rest, record + Size - 4, sizeof rest);
        sum += rest;
    }
    return sum;
}

/// First and last word of a piece that was read at random.
template <unsigned Size>
Word SumEnds(const char* piece)
{
    return Size == 8 ? LoadWord(piece) : LoadWord(piece) + LoadWord(piece + Size - 8);
}

/// The records to append, from a block small enough to stay in the processor's cache.
class Records
{
public:
    /// Begins with record `first` of the block.
    explicit Records(long long size, long long first = 0);

    /// The next record, the first one again behind the last.
    const char* Next()
    {
        const char* record = mBlock.data() + mPosition;
        mPosition += mSize;
        if (mPosition == mBlock.size()) {
            mPosition = 0;
        }
        return record;
    }

    /// What the next `count` records add up to.
    [[nodiscard]] Word Sum(long long count) const;

private:
    [[nodiscard]] Word SumOfFirst(std::size_t count) const;

    std::size_t mSize;
    std::size_t mPosition = 0;
    std::vector<char> mBlock; // a whole number of records
};

/// Sums `count` records that `next` points out one after the other.
template <unsigned Size, class Next>
Word SumRecords(long long count, Next next)
{
    Word sum = 0;
    for (long long i = 0; i < count; ++i) {
        sum += SumRecord<Size>(next());
    }
    return sum;
}

/// Where the pieces of a random job lie in the bulk, each place at most once while there are
/// enough.
const std::vector<long long>& Places(const Job& job);

/// Reads all pieces of a random job with `read(offset, buffer)`.
template <unsigned Size, class Read>
Word ReadPieces(const Job& job, Read read)
{
    alignas(64) char buffer[Size];
    Word sum = 0;
    for (const long long offset : Places(job)) {
        read(offset, static_cast<char*>(buffer));
        sum += SumEnds<Size>(buffer);
    }
    return sum;
}

/// The first word of the piece with that number, which is its turn and its place in line.
inline Word PieceWord(Word number)
{
    return number * 0x9E3779B97F4A7C15U;
}

/// Writes all pieces of a random job with `write(offset, piece)`.
template <unsigned Size, class Write>
void WritePieces(const Job& job, Write write)
{
    alignas(64) char piece[Size] = {};
    Word number = static_cast<Word>(job.turn);
    for (const long long offset : Places(job)) {
        const Word word = PieceWord(++number);
        std::memcpy(piece, &word, sizeof word);
        write(offset, static_cast<const char*>(piece));
    }
}

/// The first words of all pieces, read back by `read(offset, word)`.
template <class Read>
Word SumPlaces(const Job& job, Read read)
{
    Word sum = 0;
    for (const long long offset : Places(job)) {
        Word word = 0;
        read(offset, reinterpret_cast<char*>(&word));
        sum += word;
    }
    return sum;
}

/// A stored reference, in the contender's own form.
using Reference = std::array<Word, 2>;

/// One node of the list to chase, in 64 bytes, a line of the processor's cache.
struct Node
{
    Reference reference;
    Word value;
    Word rest[5];
};
static_assert(sizeof(Node) == 64);

/// The order of the list: each node once. With two files the even nodes are in the first, the odd
/// ones in the second, and the list goes to and fro.
const std::vector<std::uint32_t>& ChaseOrder(const Job& job);

inline Word NodeValue(std::uint32_t node)
{
    return BulkWord(8LL * node);
}

/// All nodes, those of each file in a list of its own. `refer(reference, to, file, from)` makes the
/// reference that a node in file `from` holds to node `to` of `file`.
template <class Refer>
std::vector<std::vector<Node>> ChaseNodes(const Job& job, Refer refer)
{
    const std::vector<std::uint32_t>& order = ChaseOrder(job);
    const auto files = static_cast<std::uint32_t>(job.size);
    std::vector<std::vector<Node>> nodes(files, std::vector<Node>(order.size() / files));
    for (std::size_t i = 0; i < order.size(); ++i) {
        const std::uint32_t next = order[(i + 1) % order.size()];
        Node& node = nodes[order[i] % files][order[i] / files];
        node.value = NodeValue(order[i]);
        refer(node.reference, next / files, next % files, order[i] % files);
    }
    return nodes;
}

/// The identifier of pool `index`, below 32,768: 32 characters.
const std::string& PoolName(long long index);

inline constexpr long long kPoolSize = 256; // bytes of each of many pools
inline constexpr long long kPoolRead = 64;  // of which are read

/// Text `index` of the texts to store.
const std::string& Text(long long index);
inline Word SumText(const char* text, std::size_t length)
{
    return length * 256 + static_cast<unsigned char>(text[length - 1]);
}

/// Stored references lie 16 bytes apart in the object that they name.
inline constexpr long long kReferences = 1000; // different ones, told over and over

/// The sum that a run of the job must come to.
Word ExpectedSum(const Job& job);
