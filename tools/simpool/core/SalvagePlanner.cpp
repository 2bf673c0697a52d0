#include "SalvagePlanner.h"

#include <algorithm>
#include <map>
#include <string_view>

namespace simpool {
namespace {

// Whether the length is one that a sound header may have: header and directory at least, and an end
// within the file.
bool HasPossibleLength(const PoolInfo& pool, std::uint64_t fileSize)
{
    const std::uint64_t length = pool.header.LengthValue();
    return pool.header.LengthIsDecimal() && length >= pool.header.FullSize() &&
           length <= fileSize - pool.position;
}

// That most pools have which follow each other from the first plausible one on; empty when the file
// has none.
std::optional<UserSignature> UsualSignature(const FileBytes& file,
                                            const std::function<void(std::uint64_t)>& progress)
{
    PoolSearch search(file, progress);
    const PoolInfo* first = search.FirstFrom(0);
    if (first == nullptr) {
        return std::nullopt;
    }
    std::map<UserSignature, std::uint64_t> counts;
    UserSignature usual = first->header.userSignature;
    PoolInfo pool = *first;
    do {
        if (++counts[pool.header.userSignature] > counts[usual]) {
            usual = pool.header.userSignature;
        }
    } while (HasPossibleLength(pool, file.Size()) &&
             IsPlausiblePool(file, pool.position + pool.length, pool));
    return usual;
}

// How many directory entries stand at `position`, by their look; 0 also when the file ends in them,
// as behind a header that was never completed.
std::uint32_t CountEntries(const FileBytes& file, std::uint64_t position)
{
    constexpr std::size_t kEntriesAtOnce = 512;
    std::vector<Uuid> entries(kEntriesAtOnce);
    for (std::uint32_t count = 0;; position += kEntriesAtOnce * kEntrySize) {
        const std::size_t whole =
            file.Read(position, entries.front().data(), kEntriesAtOnce * kEntrySize) / kEntrySize;
        for (std::size_t i = 0; i < whole; ++i, ++count) {
            if (!IsLowercaseHex(entries[i])) {
                return count;
            }
        }
        if (whole < kEntriesAtOnce) {
            return 0;
        }
    }
}

void AddOnce(std::vector<Repair>& repairs, Repair repair)
{
    if (std::ranges::find(repairs, repair) == repairs.end()) {
        repairs.push_back(repair);
    }
}
} // namespace

SalvagePlanner::SalvagePlanner(const FileBytes& file, const SalvageOptions& options,
                               const std::function<void(std::uint64_t)>& progress)
    : mFile(file), mOptions(options), mSearch(file, progress),
      mUserSignature(UsualSignature(file, progress))
{}

Salvage SalvagePlanner::Plan()
{
    mPlan.fileSize = mFile.Size();
    for (std::uint64_t position = 0; position < mFile.Size();) {
        if (std::optional<Candidate> candidate = Recognise(position)) {
            const End end = EndOf(candidate->pool);
            Keep(std::move(*candidate), end);
            position = end.position;
        } else {
            const PoolInfo* next = mSearch.FirstFrom(position);
            const std::uint64_t end = next == nullptr ? mFile.Size() : next->position;
            AddGap(position, end);
            position = end;
        }
    }
    SetLengths();
    return std::move(mPlan);
}

// The pool that begins at `position`, whole or with one wrong field.
std::optional<SalvagePlanner::Candidate> SalvagePlanner::Recognise(std::uint64_t position) const
{
    Candidate candidate;
    if (!IsPlausiblePool(mFile, position, candidate.pool)) {
        return Mend(position);
    }
    UserSignature& signature = candidate.pool.header.userSignature;
    const UserSignature usual = mUserSignature.value_or(signature);
    if (signature != usual) {
        signature = usual;
        candidate.repairs.push_back(Repair::OtherUserSignature);
    }
    return candidate;
}

std::optional<SalvagePlanner::Candidate> SalvagePlanner::Mend(std::uint64_t position) const
{
    char bytes[kHeaderSize + kEntrySize];
    if (mFile.Read(position, bytes, sizeof(bytes)) < sizeof(bytes)) {
        return std::nullopt;
    }
    Candidate candidate;
    PoolInfo& pool = candidate.pool;
    pool.position = position;
    pool.header = DecodeHeader(bytes);
    pool.length = pool.header.LengthValue();
    std::copy_n(bytes + kHeaderSize, kEntrySize, pool.uuid.begin());
    const bool isRestSound =
        std::ranges::all_of(pool.header.reserved, [](char c) { return c == 0; }) &&
        pool.header.userSignature == mUserSignature.value_or(pool.header.userSignature) &&
        IsLowercaseHex(pool.uuid);
    if (!isRestSound) {
        return std::nullopt;
    }
    if (pool.header.signature != kSignature) {
        pool.header.signature = kSignature;
        candidate.repairs.push_back(Repair::Signature);
    }
    if (pool.header.version != kCurrentVersion) {
        // A file whose pools all have another version is of another format, and not damaged.
        if (!mUserSignature.has_value()) {
            return std::nullopt;
        }
        pool.header.version = kCurrentVersion;
        candidate.repairs.push_back(Repair::Version);
    }
    const bool isCountWrong =
        pool.header.directoryCount == 0 || pool.header.FullSize() > mFile.Size() - position;
    if (isCountWrong && candidate.repairs.empty()) {
        pool.header.directoryCount = CountEntries(mFile, position + kHeaderSize);
        candidate.repairs.push_back(Repair::DirectoryCount);
    } else if (isCountWrong) {
        return std::nullopt;
    }
    if (candidate.repairs.size() != 1 || pool.header.directoryCount == 0 || !LeadsOn(pool)) {
        return std::nullopt;
    }
    return candidate;
}

// Whether the stored length leads to the file's end or to another pool.
bool SalvagePlanner::LeadsOn(const PoolInfo& pool) const
{
    if (pool.header.LengthIsDecimal() && pool.length == 0) {
        return true;
    }
    const std::uint64_t end = pool.position + pool.length;
    PoolInfo next;
    return HasPossibleLength(pool, mFile.Size()) &&
           (end == mFile.Size() || IsPlausiblePool(mFile, end, next));
}

SalvagePlanner::End SalvagePlanner::EndOf(const PoolInfo& pool)
{
    const std::uint64_t size = mFile.Size();
    const std::uint64_t dataPosition = pool.DataPosition();
    if (pool.header.LengthIsDecimal() && pool.header.LengthValue() == 0) {
        const PoolInfo* inner = mOptions.split ? mSearch.FirstFrom(dataPosition) : nullptr;
        return inner != nullptr ? End{inner->position, true, 0} : End{size, false, 0};
    }
    if (!HasPossibleLength(pool, size)) {
        return EndAtNextHeader(pool);
    }
    const std::uint64_t end = pool.position + pool.header.LengthValue();
    if (end == size || Recognise(end).has_value()) {
        return {end, false, 0};
    }
    // Either the header at `end` is gone or the length is wrong: another pool in front of `end`
    // that fits to what follows it speaks for the latter.
    const PoolInfo* inner = mSearch.FirstFrom(dataPosition);
    const bool isInside = inner != nullptr && inner->position < end && LeadsOn(*inner);
    return isInside ? End{inner->position, true, 0} : End{end, false, 0};
}

SalvagePlanner::End SalvagePlanner::EndAtNextHeader(const PoolInfo& pool)
{
    if (const PoolInfo* next = mSearch.FirstFrom(pool.DataPosition())) {
        return {next->position, true, 0};
    }
    const std::uint64_t room = mFile.Size() - pool.position;
    const std::uint64_t claimed = pool.header.LengthIsDecimal() ? pool.header.LengthValue() : 0;
    return {mFile.Size(), true, claimed > room ? claimed - room : 0};
}

void SalvagePlanner::Keep(Candidate candidate, const End& end)
{
    SalvagedPool kept;
    kept.position = candidate.pool.position;
    kept.length = end.position - kept.position;
    kept.lost = end.lost;
    kept.header = candidate.pool.header;
    kept.uuid = candidate.pool.uuid;
    kept.repairs = std::move(candidate.repairs);
    if (end.isMended) {
        kept.repairs.push_back(Repair::Length);
    }
    if (mUuids.contains(kept.uuid)) {
        kept.uuid = UuidFor(kept.uuid, kept.position);
        kept.repairs.push_back(Repair::DuplicateUuid);
    }
    mUuids.insert(kept.uuid);
    mPlan.pools.push_back(std::move(kept));
}

void SalvagePlanner::AddGap(std::uint64_t position, std::uint64_t end)
{
    const SalvagedGap gap{position, end - position};
    mPlan.gaps.push_back(gap);
    if (mOptions.cutGaps) {
        return;
    }
    if (!mPlan.pools.empty()) {
        SalvagedPool& pool = mPlan.pools.back();
        pool.length += gap.length;
        pool.tailLength += gap.length;
        AddOnce(pool.repairs, Repair::Length);
    } else if (end < mFile.Size()) {
        MakePool(gap);
    }
}

// For bytes in front of the first pool, which would be nobody's tail.
void SalvagePlanner::MakePool(const SalvagedGap& gap)
{
    SalvagedPool made;
    made.position = gap.position;
    made.length = gap.length;
    made.header.userSignature = mUserSignature.value_or(UserSignature{});
    made.header.directoryCount = 1;
    made.uuid = UuidFor({}, gap.position);
    made.repairs.push_back(Repair::MadeHeader);
    mUuids.insert(made.uuid);
    mPlan.pools.push_back(std::move(made));
}

// The last pool goes on to the file's end where its length cannot be believed; every other one gets
// the length that it has now.
void SalvagePlanner::SetLengths()
{
    for (SalvagedPool& pool : mPlan.pools) {
        const bool isLast = &pool == &mPlan.pools.back();
        const bool isDecimal = pool.header.LengthIsDecimal();
        const std::uint64_t length =
            pool.IsMade() ? pool.header.FullSize() + pool.length : pool.length;
        if (!isLast) {
            pool.header.SetLength(length);
        } else if (!isDecimal || pool.header.LengthValue() != length) {
            pool.header.SetLength(0);
        }
    }
}

// A random-looking UUID that is the same in every run: 128 bits of a hash (FNV-1a, twice).
Uuid SalvagePlanner::UuidFor(const Uuid& uuid, std::uint64_t position) const
{
    constexpr char kDigits[] = "0123456789abcdef";
    Uuid result = {};
    std::uint64_t salt = 0;
    do {
        for (std::size_t half = 0; half < 2; ++half) {
            std::uint64_t hash = 0xcbf29ce484222325ULL + half;
            const auto add = [&](std::uint64_t byte) {
                hash = (hash ^ (byte & 0xFFU)) * 0x100000001b3ULL;
            };
            std::ranges::for_each(uuid, [&](char c) { add(static_cast<unsigned char>(c)); });
            for (unsigned shift = 0; shift < 64; shift += 8) {
                add(position >> shift);
                add(salt >> shift);
            }
            for (std::size_t i = 0; i < 16; ++i) {
                result[16 * half + i] = kDigits[hash >> (4 * i) & 0xFU];
            }
        }
        result[12] = '4';
        result[16] = '8';
        ++salt;
    } while (mUuids.contains(result));
    return result;
}
} // namespace simpool
