#include "PoolView.h"

#include "VUKSimRpm_Pool.h"

#include <algorithm>

namespace {

std::string At(unsigned long long position)
{
    return " at " + std::to_string(position);
}

// The pool that was made at that place with that UUID; null when there is none.
const Ledger::Pool* Identify(const PoolView& pool, const FileExpectation& expected)
{
    for (const Ledger::Pool* known : expected.known) {
        if (known->position == pool.position && known->uuid == pool.uuid) {
            return known;
        }
    }
    return nullptr;
}

// Where the data of any pool ended that was ever made at that place; 0 when there was none.
unsigned long long EndOfPoolsAt(unsigned long long position, const FileExpectation& expected)
{
    unsigned long long end = 0;
    for (const Ledger::Pool* known : expected.known) {
        end = known->position == position ? std::max(end, known->dataEnd) : end;
    }
    return end;
}

// Whether pools were made at that place, but none that is sure to be there.
bool NeverDurableAt(unsigned long long position, const FileExpectation& expected)
{
    const auto isThere = [&](const Ledger::Pool* pool) { return pool->position == position; };
    return expected.inPoolCall && std::ranges::any_of(expected.known, isThere) &&
           std::ranges::none_of(expected.sure, isThere);
}

void JudgeLastPool(const PoolView& last, const Ledger::Pool& known, const std::string& image,
                   const FileExpectation& expected, Outcome& outcome)
{
    if (last.End() > image.size()) {
        outcome.pastEnd = true;
        if (!expected.inPoolCall) {
            outcome.broken.push_back("P3: a pool leads behind the end of the file");
        } else if (last.End() > EndOfPoolsAt(last.position, expected)) {
            outcome.broken.push_back("P4: a pool is longer than it ever was");
        }
        return;
    }
    if (last.End() != image.size()) {
        outcome.broken.push_back("the last pool does not end with the file");
    }
    const bool newest = &known == expected.known.back();
    if (expected.inPoolCall && !newest &&
        image.size() > std::max(known.dataEnd, expected.quietSize)) {
        outcome.longer = true;
    }
}

// Outside of calls that make pools there are exactly those that must be there; else also such as
// are being made.
void JudgePresence(const std::vector<PoolView>& found, const FileExpectation& expected,
                   Outcome& outcome)
{
    for (const Ledger::Pool* sure : expected.sure) {
        if (std::ranges::none_of(found, [&](const PoolView& pool) {
                return pool.position == sure->position && pool.uuid == sure->uuid;
            })) {
            outcome.broken.push_back("the pool " + sure->uuid + " is gone");
        }
    }
    if (!expected.inPoolCall && found.size() != expected.sure.size()) {
        outcome.broken.push_back("there are " + std::to_string(found.size()) +
                                 " pools instead of " + std::to_string(expected.sure.size()));
    }
}
} // namespace

std::vector<PoolView> ViewPools(const VUKSimRpm_File& file, unsigned long long size)
{
    std::vector<PoolView> views;
    unsigned long long position = 0;
    for (unsigned i = 0; i < file.PoolCount(); ++i) {
        const VUKSimRpm_Pool pool = file.Pool(i);
        PoolView view{pool.GetGUID().UTF8(),
                      position,
                      pool.HeaderSizeBytes() + pool.DirectorySizeBytes(),
                      pool.Length(),
                      {}};
        view.data.resize(std::min(view.dataLength, size));
        view.data.resize(pool.Start().Read(view.data.size(), view.data.data()));
        position = view.End();
        views.push_back(std::move(view));
    }
    return views;
}

void JudgePools(const std::vector<PoolView>& found, const std::string& image,
                const FileExpectation& expected, Outcome& outcome)
{
    for (const PoolView& pool : found) {
        const std::size_t begin = std::min<std::size_t>(pool.DataBegin(), image.size());
        if (image.compare(begin, pool.data.size(), pool.data) != 0) {
            outcome.broken.push_back("the library reads other bytes than are in the file");
        }
        const Ledger::Pool* known = Identify(pool, expected);
        const bool last = &pool == &found.back();
        if (known != nullptr) {
            if (last) {
                JudgeLastPool(pool, *known, image, expected, outcome);
            }
        } else if (NeverDurableAt(pool.position, expected)) {
            outcome.mixedUuid = true;
        } else {
            outcome.broken.push_back("an unknown pool " + pool.uuid + At(pool.position));
        }
    }
    JudgePresence(found, expected, outcome);
}

void JudgeExactBytes(const std::string& image, const FileExpectation& expected, Outcome& outcome)
{
    for (const ExactBytes& exact : expected.exact) {
        if (exact.position > image.size() ||
            image.compare(exact.position, exact.bytes.size(), exact.bytes) != 0) {
            outcome.broken.push_back("P1: among " + std::to_string(exact.bytes.size()) + " bytes" +
                                     At(exact.position) + " some are not as written");
        }
    }
}

void JudgeOpenBytes(const std::string& image, const FileExpectation& expected, Outcome& outcome)
{
    for (const OpenByte& open : expected.open) {
        const bool held = open.position < image.size()
                              ? open.allowed.find(image[open.position]) != std::string::npos
                              : open.mayMiss;
        if (!held) {
            outcome.broken.push_back("P3: a byte that nobody wrote" + At(open.position));
            return;
        }
    }
}
