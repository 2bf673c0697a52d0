// What all stores share that keep values under keys: LMDB, SQLite's rows, RocksDB.
#pragma once

#include "Data.h"
#include "StoreContender.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <string_view>

/// A Store has:
///   Name, Version, Tuning                   as in Contender
///   Open(path), Close()                     an existing store, or a new one
///   Begin(), Commit()                       around Put, PutNamed and Replace
///   Put(key, value)                         keys come in rising order
///   Replace(key, value)                     an existing key, a value of the same length
///   Get(key), GetNamed(name)                a std::string_view, valid until the next call
///   Scan(visit)                             all values in the order of their keys
///   BeginReading(), EndReading()            around Get, GetNamed and Scan
///   Sync()
template <class Store>
class KeyedContender final : public StoreContender
{
public:
    [[nodiscard]] std::string Name() const override { return Store::Name(); }
    [[nodiscard]] Kind What() const override { return Kind::Peer; }
    [[nodiscard]] std::string Version() const override { return Store::Version(); }
    [[nodiscard]] std::string Tuning() const override { return Store::Tuning(); }
    [[nodiscard]] bool CostlyRecords() const override { return true; }

    [[nodiscard]] bool Offers(const Job& job) const override
    {
        return job.work != Workload::ReadImage && job.work != Workload::Import &&
               job.work != Workload::StoreLocators && job.work != Workload::LoadLocators;
    }

    void Open(const Job& job) override
    {
        for (long long file = 0; NeedsFiles(job) && file < Files(job); ++file) {
            At(file).Open(Path(job, file));
        }
    }

    void Close() override
    {
        for (Store& store : mStores) {
            store.Close();
        }
    }

private:
    static constexpr long long kBatch = 100'000; // records between two commits

    Store& At(long long file) { return mStores[static_cast<std::size_t>(file)]; }

    void Remove(const Job& job, long long file)
    {
        At(file).Close();
        std::filesystem::remove_all(Path(job, file));
    }

    // Puts `count` values into a new store, in batches.
    template <class PutOne>
    void Fill(const Job& job, long long file, long long count, PutOne putOne)
    {
        At(file).Open(Path(job, file));
        InBatches(file, count, putOne);
    }

    template <class PutOne>
    void InBatches(long long file, long long count, PutOne putOne)
    {
        for (long long i = 0; i < count;) {
            At(file).Begin();
            for (const long long end = std::min(count, i + kBatch); i < end; ++i) {
                putOne(At(file), i);
            }
            At(file).Commit();
        }
    }

    template <class Work>
    Sample Reading(const Job& job, Work work)
    {
        for (long long file = 0; file < Files(job); ++file) {
            At(file).BeginReading();
        }
        const Sample sample = Timed(job.count, work);
        for (long long file = 0; file < Files(job); ++file) {
            At(file).EndReading();
        }
        return sample;
    }

    Sample Append(const Job& job) override
    {
        Records records(job.size, job.turn);
        Remove(job, 0);
        return Timed(
            job.count,
            [&] {
                Fill(job, 0, job.count, [&](Store& store, long long i) {
                    store.Put(i, {records.Next(), static_cast<std::size_t>(job.size)});
                });
            },
            [&] { At(0).Sync(); });
    }

    Sample Overwrite(const Job& job) override
    {
        Records records(job.size, job.turn);
        return Timed(
            job.count,
            [&] {
                InBatches(0, job.count, [&](Store& store, long long i) {
                    store.Replace(i, {records.Next(), static_cast<std::size_t>(job.size)});
                });
            },
            [&] { At(0).Sync(); });
    }

    Sample Decode(const Job& job) override
    {
        return Reading(job, [&] {
            return WithSize(job.size, [&](auto n) {
                Word sum = 0;
                At(0).Scan([&](std::string_view value) { sum += SumRecord<n()>(value.data()); });
                return sum;
            });
        });
    }

    // A value of 64 bytes, or of the piece if that is more, for each place.
    static long long Step(const Job& job) { return std::max(64LL, job.size); }

    void MakeBulk(const Job& job) override
    {
        const long long stored = job.work == Workload::WriteRandom ? job.size : Step(job);
        std::vector<char> value(static_cast<std::size_t>(Step(job)));
        Fill(job, 0, job.bulk / Step(job), [&](Store& store, long long i) {
            FillBulk(value.data(), i * Step(job), Step(job));
            store.Put(i, {value.data(), static_cast<std::size_t>(stored)});
        });
        At(0).Sync();
    }

    Sample ReadRandom(const Job& job) override
    {
        return Reading(job, [&] {
            return WithSize(job.size, [&](auto n) {
                return ReadPieces<n()>(job, [&](long long offset, char* buffer) {
                    std::memcpy(buffer, At(0).Get(offset / Step(job)).data(), n());
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
                    At(0).Begin();
                    WritePieces<n()>(job, [&](long long offset, const char* piece) {
                        At(0).Replace(offset / 64, {piece, n()});
                    });
                    At(0).Commit();
                });
            },
            [&] { At(0).Sync(); });
        At(0).BeginReading();
        sample.sum = SumPlaces(job, [&](long long offset, char* word) {
            std::memcpy(word, At(0).Get(offset / 64).data(), 8);
        });
        At(0).EndReading();
        return sample;
    }

    void MakeNodes(const Job& job) override
    {
        const auto nodes = ChaseNodes(
            job, [](Reference& reference, std::uint32_t to, std::uint32_t file, std::uint32_t) {
                reference = {to, file};
            });
        for (std::size_t file = 0; file < nodes.size(); ++file) {
            const auto count = static_cast<long long>(nodes[file].size());
            Fill(job, static_cast<long long>(file), count, [&](Store& store, long long i) {
                const Node& node = nodes[file][static_cast<std::size_t>(i)];
                store.Put(i, {reinterpret_cast<const char*>(&node), sizeof node});
            });
        }
    }

    Sample Chase(const Job& job) override
    {
        return Reading(job, [&] {
            Node node = {};
            node.reference[0] = ChaseOrder(job).front() / static_cast<Word>(job.size);
            Word sum = 0;
            for (long long i = 0; i < job.count; ++i) {
                Store& store = mStores[node.reference[1]];
                std::memcpy(&node, store.Get(static_cast<long long>(node.reference[0])).data(), 24);
                sum += node.value;
            }
            return sum;
        });
    }

    Sample CreatePools(const Job& job) override
    {
        Remove(job, 0);
        return Timed(
            job.size,
            [&] {
                char data[kPoolSize];
                Fill(job, 0, job.size, [&](Store& store, long long i) {
                    FillBulk(data, i * kPoolSize, kPoolSize);
                    store.PutNamed(PoolName(i), {data, sizeof data});
                });
            },
            [&] { At(0).Sync(); });
    }

    Sample OpenPools(const Job& job) override
    {
        Close();
        return Timed(job.size, [&] {
            At(0).Open(Path(job, 0));
            At(0).BeginReading();
            Word sum = 0;
            for (long long i = 0; i < job.size; ++i) {
                char piece[kPoolRead];
                std::memcpy(piece, At(0).GetNamed(PoolName(i)).data(), kPoolRead);
                sum += SumEnds<kPoolRead>(piece);
            }
            At(0).EndReading();
            return sum;
        });
    }

    Sample WriteStrings(const Job& job) override
    {
        Remove(job, 0);
        return Timed(
            job.count,
            [&] {
                Fill(job, 0, job.count, [&](Store& store, long long i) { store.Put(i, Text(i)); });
            },
            [&] { At(0).Sync(); });
    }

    Sample ReadStrings(const Job& job) override
    {
        return Reading(job, [&] {
            Word sum = 0;
            std::string text;
            At(0).Scan([&](std::string_view value) {
                text.assign(value);
                sum += SumText(text.data(), text.size());
            });
            return sum;
        });
    }

    std::array<Store, 2> mStores;
};
