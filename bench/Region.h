// What all stores share that give a program one stretch of addresses backed by a file: the raw
// mapping, Boost.Interprocess, PMDK. A `Store` makes and attaches the stretch; the work is the
// same.
#pragma once

#include "Data.h"
#include "Posix.h"
#include "StoreContender.h"

#include <array>
#include <cstdio>

/// A Store has:
///   Name, Version, Tuning, kKind      as in Contender
///   Create(path, bytes)               a new file with one stretch of `bytes`
///   Attach(path)                      an existing one
///   Bytes(), Sync(), Close()
///   CopyIn(to, from, length)          as its documents want stored bytes to be written
///   Settle()                          ends a run of CopyIn
///   Refer(offset, file)               a stored reference, and
///   Follow(stores, reference)         where it leads
///   CreatePools(path, count), OpenPools(path, count)   objects found by UUID
template <class Store>
class RegionContender final : public StoreContender
{
public:
    [[nodiscard]] std::string Name() const override { return Store::Name(); }
    [[nodiscard]] Kind What() const override { return Store::kKind; }
    [[nodiscard]] std::string Version() const override { return Store::Version(); }
    [[nodiscard]] std::string Tuning() const override { return Store::Tuning(); }

    [[nodiscard]] bool Offers(const Job& job) const override
    {
        return job.work != Workload::ReadImage && job.work != Workload::Import;
    }

    void Open(const Job& job) override
    {
        for (long long file = 0; NeedsFiles(job) && file < Files(job); ++file) {
            mStores[static_cast<std::size_t>(file)].Attach(Path(job, file));
        }
        const bool references =
            job.work == Workload::StoreLocators || job.work == Workload::LoadLocators;
        mReferences.resize(references ? static_cast<std::size_t>(job.count) : 0);
        if (job.work == Workload::LoadLocators) {
            StoreLocators(job);
        }
    }

    void Close() override
    {
        mReferences.clear();
        for (Store& store : mStores) {
            store.Close();
        }
    }

private:
    void Remove(const Job& job)
    {
        mStores[0].Close();
        std::remove(Path(job, 0).c_str());
    }

    Sample Append(const Job& job) override
    {
        Records records(job.size, job.turn);
        Remove(job);
        return Timed(
            job.count,
            [&] {
                mStores[0].Create(Path(job, 0), job.size * job.count);
                Copy(job, records);
            },
            [&] { mStores[0].Sync(); });
    }

    Sample Overwrite(const Job& job) override
    {
        Records records(job.size, job.turn);
        return Timed(
            job.count, [&] { Copy(job, records); }, [&] { mStores[0].Sync(); });
    }

    void Copy(const Job& job, Records& records)
    {
        WithSize(job.size, [&](auto n) {
            char* to = mStores[0].Bytes();
            for (long long i = 0; i < job.count; ++i, to += n()) {
                mStores[0].CopyIn(to, records.Next(), n());
            }
            mStores[0].Settle();
        });
    }

    Sample Decode(const Job& job) override
    {
        const char* from = mStores[0].Bytes();
        return Timed(job.count, [&] {
            return WithSize(job.size, [&](auto n) {
                return SumRecords<n()>(job.count, [&] { return std::exchange(from, from + n()); });
            });
        });
    }

    void MakeBulk(const Job& job) override
    {
        mStores[0].Create(Path(job, 0), job.bulk);
        FillBulk(mStores[0].Bytes(), 0, job.bulk);
    }

    Sample ReadRandom(const Job& job) override
    {
        const char* from = mStores[0].Bytes();
        return Timed(job.count, [&] {
            return WithSize(job.size, [&](auto n) {
                return ReadPieces<n()>(job, [&](long long offset, char* buffer) {
                    std::memcpy(buffer, from + offset, n());
                    Keep(buffer);
                });
            });
        });
    }

    Sample WriteRandom(const Job& job) override
    {
        char* to = mStores[0].Bytes();
        Sample sample = Timed(
            job.count,
            [&] {
                WithSize(job.size, [&](auto n) {
                    WritePieces<n()>(job, [&](long long offset, const char* piece) {
                        mStores[0].CopyIn(to + offset, piece, n());
                        mStores[0].Settle();
                    });
                });
            },
            [&] { mStores[0].Sync(); });
        sample.sum = SumPlaces(
            job, [&](long long offset, char* word) { std::memcpy(word, to + offset, 8); });
        return sample;
    }

    Sample CreatePools(const Job& job) override
    {
        Remove(job);
        return Timed(
            job.size, [&] { mStores[0].CreatePools(Path(job, 0), job.size); },
            [&] { mStores[0].Sync(); });
    }

    Sample OpenPools(const Job& job) override
    {
        mStores[0].Close();
        return Timed(job.size, [&] { return mStores[0].OpenPools(Path(job, 0), job.size); });
    }

    Sample WriteStrings(const Job& job) override
    {
        Remove(job);
        return Timed(
            job.count,
            [&] {
                mStores[0].Create(Path(job, 0), job.count * 44);
                char* to = mStores[0].Bytes();
                for (long long i = 0; i < job.count; ++i) {
                    const std::string& text = Text(i);
                    const auto length = static_cast<std::uint32_t>(text.size());
                    mStores[0].CopyIn(to, &length, sizeof length);
                    mStores[0].CopyIn(to + sizeof length, text.data(), length);
                    to += sizeof length + (length + 3U) / 4U * 4U;
                }
                mStores[0].Settle();
            },
            [&] { mStores[0].Sync(); });
    }

    Sample ReadStrings(const Job& job) override
    {
        return Timed(job.count, [&] {
            const char* from = mStores[0].Bytes();
            Word sum = 0;
            std::string text;
            for (long long i = 0; i < job.count; ++i) {
                std::uint32_t length;
                std::memcpy(&length, from, sizeof length);
                text.assign(from + sizeof length, length);
                from += sizeof length + (length + 3U) / 4U * 4U;
                sum += SumText(text.data(), length);
            }
            return sum;
        });
    }

    void MakeNodes(const Job& job) override
    {
        for (long long file = 0; file < job.size; ++file) {
            mStores[static_cast<std::size_t>(file)].Create(
                Path(job, file), job.count * static_cast<long long>(sizeof(Node)));
        }
        const auto nodes = ChaseNodes(
            job, [&](Reference& reference, std::uint32_t to, std::uint32_t file, std::uint32_t) {
                reference = mStores[file].Refer(sizeof(Node) * static_cast<long long>(to), file);
            });
        for (std::size_t file = 0; file < nodes.size(); ++file) {
            std::memcpy(mStores[file].Bytes(), nodes[file].data(),
                        nodes[file].size() * sizeof(Node));
        }
    }

    Sample Chase(const Job& job) override
    {
        const std::uint32_t first = ChaseOrder(job).front(); // always in file 0
        return Timed(job.count, [&] {
            const char* at =
                mStores[0].Bytes() + sizeof(Node) * (first / static_cast<Word>(job.size));
            Word sum = 0;
            for (long long i = 0; i < job.count; ++i) {
                Node node;
                std::memcpy(&node, at, 24);
                sum += node.value;
                at = Store::Follow(mStores, node.reference);
            }
            return sum;
        });
    }

    void MakeTargets(const Job& job) override
    {
        mStores[0].Create(Path(job, 0), kReferences * kTarget);
    }

    Sample StoreLocators(const Job& job) override
    {
        Sample sample = Timed(job.count, [&] {
            long long which = 0;
            for (Reference& reference : mReferences) {
                reference = mStores[0].Refer(which * kTarget, 0);
                Keep(&reference);
                which = which + 1 == kReferences ? 0 : which + 1;
            }
        });
        for (std::size_t i = 0; i < kReferences; ++i) {
            sample.sum += Store::Follow(mStores, mReferences[i]) == Target(i) ? 1U : 0U;
        }
        return sample;
    }

    Sample LoadLocators(const Job& job) override
    {
        std::array<const char*, kReferences> loaded = {};
        Sample sample = Timed(job.count, [&] {
            std::size_t which = 0;
            for (const Reference& reference : mReferences) {
                loaded[which] = Store::Follow(mStores, reference);
                Keep(loaded.data());
                which = which + 1 == kReferences ? 0 : which + 1;
            }
        });
        for (std::size_t i = 0; i < kReferences; ++i) {
            sample.sum += loaded[i] == Target(i) ? 1U : 0U;
        }
        return sample;
    }

    const char* Target(std::size_t which) const { return mStores[0].Bytes() + which * kTarget; }

    static constexpr long long kTarget = 16; // bytes from one referred place to the next

    std::array<Store, 2> mStores;
    std::vector<Reference> mReferences; // stored ones
};
