#pragma once

#include "PoolSearch.h"
#include "Salvage.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <unordered_set>

namespace simpool {

/// Walks once from the front of a damaged file to its end and divides it into pools and gaps.
class SalvagePlanner
{
public:
    /// The file must outlive it.
    SalvagePlanner(const FileBytes& file, const SalvageOptions& options,
                   const std::function<void(std::uint64_t)>& progress);

    /// To be called once.
    [[nodiscard]] Salvage Plan();

private:
    struct Candidate
    {
        PoolInfo pool;
        std::vector<Repair> repairs = {};
    };
    struct End
    {
        std::uint64_t position = 0;
        bool isMended = false;  // the stored length says something else
        std::uint64_t lost = 0; // bytes that it claims behind the file's end
    };

    [[nodiscard]] std::optional<Candidate> Recognise(std::uint64_t position) const;
    [[nodiscard]] std::optional<Candidate> Mend(std::uint64_t position) const;
    [[nodiscard]] bool LeadsOn(const PoolInfo& pool) const;
    [[nodiscard]] End EndOf(const PoolInfo& pool);
    [[nodiscard]] End EndAtNextHeader(const PoolInfo& pool);
    void Keep(Candidate candidate, const End& end);
    void AddGap(std::uint64_t position, std::uint64_t end);
    void MakePool(const SalvagedGap& gap);
    void SetLengths();
    [[nodiscard]] Uuid UuidFor(const Uuid& uuid, std::uint64_t position) const;

    const FileBytes& mFile;
    SalvageOptions mOptions;
    PoolSearch mSearch;
    std::optional<UserSignature> mUserSignature; // of most pools; empty when there is no pool
    Salvage mPlan = {};
    std::unordered_set<Uuid, UuidHash> mUuids = {}; // of the pools kept
};
} // namespace simpool
