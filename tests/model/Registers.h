#pragma once

#include "Choices.h"
#include "Operation.h"
#include "Outcome.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdio>
#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

/// `size` bytes that depend on `seed`: small words, as records have them, or noise.
inline std::string Pattern(std::uint32_t seed, std::size_t size)
{
    std::string bytes(size, '\0');
    for (std::size_t i = 0; i < size; ++i) {
        if (seed >= 240) {
            bytes[i] = '\xFF';
        } else if (seed >= 100) {
            bytes[i] = static_cast<char>(seed + 7 * i);
        } else if (i % 4 == 0) {
            bytes[i] = static_cast<char>((seed >> (i / 4 % 5)) & 7);
        }
    }
    return bytes;
}

/// What the operations of a script work on: documents, files, pools, ... of one store. `Store`
/// names its types: those of the library, or those of the model, which have the same members.
template <class Store>
struct Registers
{
    explicit Registers(const std::string& where) : folder(where)
    {
        for (const char* signature : {"AAAA", "AAAA", "BBBB"}) {
            documents.emplace_back(signature);
        }
        for (std::size_t i = 0; i < kNames; ++i) {
            names[i] = where + "/f" + std::to_string(i);
        }
    }
    Registers(const Registers&) = delete;
    Registers& operator=(const Registers&) = delete;

    // Streams that are left over die with bytes that they may be unable to write.
    ~Registers()
    {
        for (Writer& writer : writers) {
            try {
                writer.Close();
            } catch (...) {
                writer = {};
            }
        }
    }

    /// A locator. One whose offset came out of a file or a damaged length is not tame: it may lead
    /// anywhere in 64 bits, and nothing is written there unless the file has the byte already.
    struct Place
    {
        typename Store::Locator locator;
        bool tame = true;
    };

    struct Reader
    {
        std::unique_ptr<char[]> bytes; // that the stream reads, when it reads memory
        std::unique_ptr<typename Store::StreamRead> stream;
    };

    struct Writer
    {
        std::unique_ptr<char[]> room; // that the stream fills, when it fills memory
        std::size_t size = 0;         // of the room
        typename Store::StreamWrite* stream = nullptr;     // owned; its death can raise
        typename Store::WriteLocator* toLocator = nullptr; // the same stream, if it is one
        typename Store::AppendToPool* toPool = nullptr;

        void Close()
        {
            toLocator = nullptr;
            toPool = nullptr;
            delete std::exchange(stream, nullptr);
        }
    };

    /// The given text for a new pool, or null when it shall be made. `known` chooses among the
    /// identifiers so far. `mayFail`: the pool may fail once its identifier is drawn, which then
    /// must not be one that the model cannot know.
    const char* PrepareUuid(UuidFrom from, std::uint32_t known, bool mayFail)
    {
        if (from == UuidFrom::CallerShort) {
            uuid = "too short";
            return uuid.c_str();
        }
        const bool old = from == UuidFrom::CallerKnown || from == UuidFrom::ForcedKnown;
        uuid = old && !uuids.empty() ? KnownUuid(known) : FreshUuid();
        uuid.resize(32, '\0'); // an identifier that ends early is refused
        if (from == UuidFrom::Caller || from == UuidFrom::CallerKnown) {
            return uuid.c_str();
        }
        if (from == UuidFrom::Forced || !mayFail) {
            Store::ForceUuid(from == UuidFrom::Generator ? nullptr : uuid.c_str());
            return nullptr;
        }
        return uuid.c_str();
    }

    [[nodiscard]] const std::string& KnownUuid(std::uint32_t known) const
    {
        constexpr std::size_t kRemembered = 16;
        return uuids[uuids.size() - 1 - known % std::min(uuids.size(), kRemembered)];
    }

    std::string FreshUuid()
    {
        std::array<char, 33> text{};
        std::snprintf(text.data(), text.size(), "%032x", ++freshUuids);
        return text.data();
    }

    void NoteNewPool(const typename Store::Pool& pool, Outcome& outcome)
    {
        outcome.uuid = Store::Bytes(pool.GetGUID());
        uuids.push_back(outcome.uuid);
    }

    /// Where `memory` stands among all that were made; for none, their number.
    [[nodiscard]] std::uint64_t NumberOf(const typename Store::MemoryPool* memory) const
    {
        const auto found = std::find_if(made.begin(), made.end(), [&](const auto& candidate) {
            return candidate.get() == memory;
        });
        return static_cast<std::uint64_t>(found - made.begin());
    }

    std::string folder;
    std::array<std::string, kNames> names; // full names of the files
    std::string uuid;                      // given or forced last
    std::vector<std::string> uuids;        // of all pools made so far
    unsigned int freshUuids = 0;

    std::vector<typename Store::Document> documents;
    std::array<std::optional<typename Store::File>, kFiles> files;
    std::array<std::optional<typename Store::Pool>, kPools> pools;
    std::array<Place, kLocators> places;
    std::vector<std::unique_ptr<typename Store::MemoryPool>> made; // outlive all that carries them
    std::array<typename Store::MemoryPool*, kMemories> memories{};
    std::array<Reader, kReaders> readers;
    std::array<Writer, kWriters> writers;
};

/// Pools of more bytes are the work of damaged lengths: no file is made that long.
inline constexpr std::uint64_t kLargestPool = 1 << 20;
inline constexpr std::uint64_t kLargestImport = 1 << 16;
inline constexpr unsigned int kMostPools = 320; // of a file

/// Header, directory and data.
template <class Pool>
std::uint64_t SizeOf(const Pool& pool)
{
    return pool.Length() + pool.HeaderSizeBytes() + pool.DirectorySizeBytes();
}

/// Whether its length is not the work of damage.
template <class Pool>
bool Sane(const Pool& pool)
{
    return SizeOf(pool) <= kLargestPool;
}

inline constexpr std::uint64_t kMostBytes = std::numeric_limits<std::uint64_t>::max();

/// What to allocate: `size`, or so much that it leads over the end of all positions.
inline std::uint64_t AllocationSize(std::uint32_t size, bool huge)
{
    return huge ? kMostBytes - size % 40 : size;
}
