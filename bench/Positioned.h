// What all stores share that read and write pieces of one long value by position: plain calls on a
// file, SQLite's incremental blobs, LMDB with packed values, HDF5. In order they work through a
// chunk, at random with a call for each piece.
#pragma once

#include "Data.h"
#include "Posix.h"
#include "StoreContender.h"

#include <algorithm>
#include <array>
#include <filesystem>

/// Appends to a store in whole chunks; a record may lie in two.
template <class Store>
class ChunkedWriter
{
public:
    ChunkedWriter(Store& store, char* chunk) : mStore(store), mChunk(chunk) {}

    void Put(const char* bytes, std::size_t length)
    {
        if (mFill + length > kChunk) [[unlikely]] {
            const std::size_t head = kChunk - mFill;
            std::memcpy(mChunk + mFill, bytes, head);
            mFill = kChunk;
            Flush();
            bytes += head;
            length -= head;
        }
        std::memcpy(mChunk + mFill, bytes, length);
        mFill += length;
    }
    void Flush()
    {
        mStore.Write(mChunk, mFill, mPosition);
        mPosition += static_cast<long long>(mFill);
        mFill = 0;
    }

private:
    Store& mStore;
    char* mChunk;
    std::size_t mFill = 0;   // bytes
    long long mPosition = 0; // of the chunk, in the store
};

/// Points out what lies next in a store, read ahead by one chunk.
template <class Store>
class ChunkedReader
{
public:
    ChunkedReader(Store& store, char* chunk) : mStore(store), mPlace(chunk), mLeft(store.Size()) {}

    const char* Take(long long length)
    {
        if (mFill - mCursor < length) [[unlikely]] {
            Refill();
        }
        const char* at = mChunk + mCursor;
        mCursor += length;
        return at;
    }

private:
    // The system copies pages several times faster when buffer and position agree modulo a page.
    void Refill()
    {
        mPosition += mCursor;
        mLeft -= mCursor;
        mFill = std::min(kChunk, mLeft);
        mChunk = mPlace + mPosition % 4096;
        mStore.Read(mChunk, static_cast<std::size_t>(mFill), mPosition);
        mCursor = 0;
    }

    Store& mStore;
    char* mPlace;            // room for a chunk and a page
    char* mChunk = nullptr;  // in mPlace
    long long mLeft;         // bytes from the chunk's start to the store's end
    long long mPosition = 0; // of the chunk, in the store
    long long mCursor = 0;   // bytes of the chunk taken
    long long mFill = 0;     // bytes in the chunk
};

/// A Store has:
///   Name, Version, Tuning, kKind      as in Contender
///   kInPlace                          whether pieces can be written over others
///   Create(path, bytes)               a new value of as many bytes
///   Attach(path), Size()              an existing one
///   Read(to, length, position), Write(from, length, position)
///   Settle()                          ends a run of writes
///   Sync(), Close()
/// and, if it can:
///   CreatePools(path, count), OpenPools(path, count)   objects found by UUID
template <class Store>
class PositionedContender final : public StoreContender
{
public:
    [[nodiscard]] std::string Name() const override { return Store::Name(); }
    [[nodiscard]] Kind What() const override { return Store::kKind; }
    [[nodiscard]] std::string Version() const override { return Store::Version(); }
    [[nodiscard]] std::string Tuning() const override { return Store::Tuning(); }

    [[nodiscard]] bool Offers(const Job& job) const override
    {
        switch (job.work) {
        case Workload::ReadImage:
        case Workload::StoreLocators:
        case Workload::LoadLocators:
            return false;
        case Workload::Overwrite:
        case Workload::WriteRandom:
        case Workload::Import:
            return Store::kInPlace;
        case Workload::CreatePools:
        case Workload::OpenPools:
            return kPools;
        default:
            return true;
        }
    }

    void Open(const Job& job) override
    {
        for (long long file = 0; NeedsFiles(job) && file < Files(job); ++file) {
            mStores[static_cast<std::size_t>(file)].Attach(Path(job, file));
        }
    }

    void Close() override
    {
        for (Store& store : mStores) {
            store.Close();
        }
    }

private:
    using Writer = ChunkedWriter<Store>;
    using Reader = ChunkedReader<Store>;

    static constexpr bool kPools = requires(Store store, std::string path)
    {
        store.CreatePools(path, 1LL);
    };

    void Remove(const Job& job, long long file)
    {
        mStores[static_cast<std::size_t>(file)].Close();
        std::filesystem::remove(Path(job, file));
    }

    Sample Append(const Job& job) override
    {
        Remove(job, 0);
        return WriteRecords(job, [&] { mStores[0].Create(Path(job, 0), job.size * job.count); });
    }

    Sample Overwrite(const Job& job) override
    {
        return WriteRecords(job, [] {});
    }

    template <class Begin>
    Sample WriteRecords(const Job& job, Begin begin)
    {
        Records records(job.size, job.turn);
        return Timed(
            job.count,
            [&] {
                begin();
                Writer writer(mStores[0], mChunk.Bytes());
                WithSize(job.size, [&](auto n) {
                    for (long long i = 0; i < job.count; ++i) {
                        writer.Put(records.Next(), n());
                    }
                });
                writer.Flush();
                mStores[0].Settle();
            },
            [&] { mStores[0].Sync(); });
    }

    Sample Decode(const Job& job) override
    {
        return Timed(job.count, [&] {
            Reader reader(mStores[0], mChunk.Bytes());
            return WithSize(job.size, [&](auto n) {
                return SumRecords<n()>(job.count, [&] { return reader.Take(n()); });
            });
        });
    }

    void MakeBulk(const Job& job) override
    {
        mStores[0].Create(Path(job, 0), job.bulk);
        PutBulk(job.bulk, kChunk, [&](long long offset, const char* bytes, long long length) {
            mStores[0].Write(bytes, static_cast<std::size_t>(length), offset);
        });
        mStores[0].Settle();
    }

    Sample ReadRandom(const Job& job) override
    {
        return Timed(job.count, [&] {
            return WithSize(job.size, [&](auto n) {
                return ReadPieces<n()>(job, [&](long long offset, char* buffer) {
                    mStores[0].Read(buffer, n(), offset);
                });
            });
        });
    }

    Sample WriteRandom(const Job& job) override
    {
        Sample sample = Timed(
            job.count,
            [&] {
                WithSize(job.size, [&](auto n) {
                    WritePieces<n()>(job, [&](long long offset, const char* piece) {
                        mStores[0].Write(piece, n(), offset);
                    });
                    mStores[0].Settle();
                });
            },
            [&] { mStores[0].Sync(); });
        sample.sum =
            SumPlaces(job, [&](long long offset, char* word) { mStores[0].Read(word, 8, offset); });
        return sample;
    }

    void MakeNodes(const Job& job) override
    {
        const auto nodes = ChaseNodes(
            job, [](Reference& reference, std::uint32_t to, std::uint32_t file, std::uint32_t) {
                reference = {to * sizeof(Node), file};
            });
        for (std::size_t file = 0; file < nodes.size(); ++file) {
            const auto bytes = static_cast<long long>(nodes[file].size() * sizeof(Node));
            mStores[file].Create(Path(job, static_cast<long long>(file)), bytes);
            Writer writer(mStores[file], mChunk.Bytes());
            for (const Node& node : nodes[file]) {
                writer.Put(reinterpret_cast<const char*>(&node), sizeof node);
            }
            writer.Flush();
            mStores[file].Settle();
        }
    }

    Sample Chase(const Job& job) override
    {
        return Timed(job.count, [&] {
            Node node = {};
            node.reference[0] =
                sizeof(Node) * (ChaseOrder(job).front() / static_cast<Word>(job.size));
            Word sum = 0;
            for (long long i = 0; i < job.count; ++i) {
                mStores[node.reference[1]].Read(reinterpret_cast<char*>(&node), 24,
                                                static_cast<long long>(node.reference[0]));
                sum += node.value;
            }
            return sum;
        });
    }

    Sample CreatePools([[maybe_unused]] const Job& job) override
    {
        if constexpr (kPools) {
            Remove(job, 0);
            return Timed(
                job.size, [&] { mStores[0].CreatePools(Path(job, 0), job.size); },
                [&] { mStores[0].Sync(); });
        }
        return {};
    }

    Sample OpenPools([[maybe_unused]] const Job& job) override
    {
        if constexpr (kPools) {
            mStores[0].Close();
            return Timed(job.size, [&] { return mStores[0].OpenPools(Path(job, 0), job.size); });
        }
        return {};
    }

    Sample Import(const Job& job) override
    {
        Remove(job, 1);
        return Timed(
            1,
            [&] {
                mStores[1].Create(Path(job, 1), job.bulk);
                for (long long at = 0; at < job.bulk; at += kChunk) {
                    mStores[0].Read(mChunk.Bytes(), kChunk, at);
                    mStores[1].Write(mChunk.Bytes(), kChunk, at);
                }
                mStores[1].Settle();
                return static_cast<Word>(mStores[1].Size());
            },
            [&] { mStores[1].Sync(); });
    }

    Sample WriteStrings(const Job& job) override
    {
        Remove(job, 0);
        return Timed(
            job.count,
            [&] {
                mStores[0].Create(Path(job, 0), job.count * 44);
                Writer writer(mStores[0], mChunk.Bytes());
                char record[48] = {};
                for (long long i = 0; i < job.count; ++i) {
                    const std::string& text = Text(i);
                    const auto length = static_cast<std::uint32_t>(text.size());
                    std::memcpy(record, &length, sizeof length);
                    std::memcpy(record + sizeof length, text.data(), length);
                    writer.Put(record, 4 + (length + 3) / 4 * 4);
                }
                writer.Flush();
                mStores[0].Settle();
            },
            [&] { mStores[0].Sync(); });
    }

    Sample ReadStrings(const Job& job) override
    {
        return Timed(job.count, [&] {
            Reader reader(mStores[0], mChunk.Bytes());
            Word sum = 0;
            std::string text;
            for (long long i = 0; i < job.count; ++i) {
                std::uint32_t length;
                std::memcpy(&length, reader.Take(4), sizeof length);
                text.assign(reader.Take((length + 3) / 4 * 4), length);
                sum += SumText(text.data(), length);
            }
            return sum;
        });
    }

    std::array<Store, 2> mStores;
    PageBuffer mChunk{kChunk + 4096};
};
