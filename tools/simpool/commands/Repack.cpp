#include "Repack.h"

#include "CommandFailure.h"
#include "EscapedText.h"
#include "PoolSearch.h"

#include <algorithm>

namespace simpool {
namespace {

// Bytes behind the last pool, in which no further pool begins. Other damage is for salvage.
std::uint64_t DeadTail(const LoadedFile& file)
{
    const PoolWalk& walk = file.walk;
    if (walk.stop == Stop::None) {
        return 0;
    }
    const bool mayBeTail = walk.stop == Stop::ShortHeader || walk.stop == Stop::NoSignature ||
                           walk.stop == Stop::CutDirectory;
    if (!mayBeTail || PoolSearch(file.bytes).FirstFrom(walk.position) != nullptr) {
        RefuseDamage(file);
    }
    return file.bytes.Size() - walk.position;
}

// Where the zeros begin with which `pool` ends, counted in data bytes. No number in front of them
// loses zero bytes of its own: the place is a multiple of 16.
std::uint64_t EndWithoutZeros(const LoadedFile& file, const PoolInfo& pool)
{
    constexpr std::uint64_t kBlock = std::uint64_t{1} << 16; // read at a time
    constexpr std::uint64_t kStep = 16;
    std::uint64_t end = pool.DataLength();
    while (end > 0) {
        const std::uint64_t begin = (end - 1) / kBlock * kBlock;
        const std::string bytes = ReadBytes(file, pool.DataPosition() + begin, end - begin);
        const std::size_t last = bytes.find_last_not_of('\0');
        if (last != std::string::npos) {
            return std::min(pool.DataLength(), (begin + last) / kStep * kStep + kStep);
        }
        end = begin;
    }
    return 0;
}

std::vector<bool> Reachable(const LoadedFiles& files, const std::vector<std::string>& roots)
{
    const LoadedFile& file = files[0];
    std::vector<bool> isReached(file.Pools().size());
    std::vector<std::size_t> pending;
    const auto reach = [&](std::size_t number) {
        if (!isReached[number]) {
            isReached[number] = true;
            pending.push_back(number);
        }
    };
    for (const std::string& root : roots) {
        reach(ChoosePool(file, root));
    }
    while (!pending.empty()) {
        const PoolInfo& pool = file.Pools()[pending.back()];
        pending.pop_back();
        ForEachEntry(file.bytes, pool, [&](std::uint32_t, const Uuid& uuid) {
            if (const Together::Place* place = files.Find(uuid); place != nullptr) {
                reach(place->pool);
            }
        });
    }
    return isReached;
}
} // namespace

CommandText Repack::Text() const
{
    return {"repack", "Write a file anew without what is dead in it",
            "Writes the pools of FILE into a new file and leaves out bytes behind the last pool "
            "that belong to none, as an interrupted writer leaves them. With --root it also leaves "
            "out every pool that cannot be reached from the roots by way of directories. With "
            "--zeros it also cuts the zeros with which the last pool ends; only you know whether "
            "they are data.\n\n"
            "What is left out is printed to the byte. Damage in front of a further pool is for "
            "salvage, and is refused here.",
            "simpool repack run.sim -o small.sim\n"
            "simpool repack run.sim --root 12 -o last_step.sim\n"};
}

void Repack::AddOptions(CLI::App& options)
{
    options.add_option("file", mName, "The file to read")->required()->type_name("FILE");
    options.add_option("-o,--output", mOutput, "The file to make")->required()->type_name("FILE");
    options.add_option("--root", mRoots, "Keep this pool and what it can reach; repeatable")
        ->type_name("POOL")
        ->allow_extra_args(false);
    options.add_flag("--zeros", mCutsZeros, "Cut the zeros at the end of the last pool");
    options.add_flag("--force", mIsForced, "Replace the output if it exists");
}

ExitCode Repack::Run(const Surroundings& surroundings)
{
    const LoadedFiles files({mName}, LoadedFiles::Walk::EachAlone);
    const LoadedFile& file = files[0];
    RefuseInput(files, mOutput);
    Saved saved{.tail = DeadTail(file)};
    std::vector<CopiedPool> pools = AllPools(file);
    CheckPools(pools, mOutput);
    if (!mRoots.empty()) {
        const std::vector<bool> isReached = Reachable(files, mRoots);
        std::erase_if(pools, [&](const CopiedPool& pool) {
            if (isReached[pool.number]) {
                return false;
            }
            saved.unreachable.push_back(pool.number);
            saved.poolBytes += pool.info.length;
            return true;
        });
    }
    if (mCutsZeros && pools.back().number + 1 == file.Pools().size()) {
        PoolInfo& last = pools.back().info;
        saved.zeros = last.DataLength() - EndWithoutZeros(file, last);
        last.length -= saved.zeros;
    }

    NewFile out(mOutput, mIsForced ? NewFile::Existing::Replace : NewFile::Existing::Refuse);
    WritePools(pools, out, surroundings.err);
    out.Commit();

    if (surroundings.json) {
        PrintDocument(pools, saved, surroundings.out);
    } else {
        Print(file, saved, surroundings.out);
    }
    return ExitCode::Fine;
}

void Repack::Print(const LoadedFile& file, const Saved& saved, Output& out)
{
    for (const std::size_t number : saved.unreachable) {
        const PoolInfo& pool = file.Pools()[number];
        out.Print("left out: pool {} ({}), {}\n", number, UuidText(pool.uuid),
                  FullSize(pool.length));
    }
    if (saved.tail > 0) {
        out.Print("left out: {} behind the last pool\n", FullSize(saved.tail));
    }
    if (saved.zeros > 0) {
        out.Print("left out: {} of zeros at the end of the last pool\n", FullSize(saved.zeros));
    }
    const std::uint64_t before = file.bytes.Size();
    out.Print("{} saved: {} instead of {}\n", FullSize(saved.Total()),
              FullSize(before - saved.Total()), FullSize(before));
}

void Repack::PrintDocument(const std::vector<CopiedPool>& pools, const Saved& saved,
                           Output& out) const
{
    Json document = NewDocument("repack");
    DescribeCopies(document, pools, mOutput);
    document["saved"] = {{"total", saved.Total()},
                         {"unreachablePools", saved.poolBytes},
                         {"tail", saved.tail},
                         {"zeros", saved.zeros}};
    document["unreachable"] = saved.unreachable;
    PrintJson(out, document);
}
} // namespace simpool
