#pragma once

#include "Operation.h"
#include "TemporaryFolder.h"
#include "VUKSimRpm_Document.h"
#include "VUKSimRpm_File.h"
#include "VUKSimRpm_Locator.h"
#include "VUKSimRpm_Pool.h"

#include <optional>
#include <string>
#include <vector>

/// A pool as it is to be found in a file.
struct HeldPool
{
    char uuid; // 32 times
    std::string data;
    bool mayBeLonger = false; // other bytes may lie behind, up to the end of the file
};

/// A document with the file `a.sim` open for update, of two pools:
///
///     position 0    `a`, 90 bytes in all, its length fixed: itself in the directory, and the data
///                   `frozen one` from byte 80 on
///     position 90   `b`, the current one: itself and `a` in the directory, and the data `growing`
///                   from byte 202 on; the file ends at 209
class Store
{
public:
    Store();
    explicit Store(const std::string& bytes); // of a.sim

    [[nodiscard]] TemporaryFolder& Folder() noexcept { return mFolder; }
    [[nodiscard]] const TemporaryFolder& Folder() const noexcept { return mFolder; }
    [[nodiscard]] VUKSimRpm_Document& Document() { return *mDocument; }
    [[nodiscard]] VUKSimRpm_File& File() { return mFile; }

    /// The bytes of a.sim as described above.
    [[nodiscard]] static std::string TwoPools();

    /// The same without data in `b`.
    [[nodiscard]] static std::string WithAnEmptyPool();

    /// The pools of the first.
    [[nodiscard]] static std::vector<HeldPool> Pools();

    /// `name` opens in a document of its own and holds exactly `pools`.
    void ExpectPools(const std::vector<HeldPool>& pools, Complaints& complaints,
                     const std::string& name = "a.sim") const;

    /// a.sim is refused in one of the documented ways, or begins with `a` and `b`, whose data may
    /// seem longer than it was. No byte of either is lost.
    void ExpectPoolsOrRefusal(Complaints& complaints) const;

    /// The data of `a` and `b` lie where they always lay.
    void ExpectDataInPlace(Complaints& complaints) const;

    void ExpectDisk(const std::string& bytes, Complaints& complaints,
                    const std::string& name = "a.sim") const;

    /// `next` is appended to the current pool, and flushed and closed with all else; then the file
    /// holds `pools`. Where a sync had failed before, every flush fails instead, and the file
    /// holds `pools` once the document is dropped.
    void ExpectGoesOn(const Outcome& outcome, const std::vector<HeldPool>& pools,
                      Complaints& complaints);

    /// Lets go of the document; nothing is written.
    void Drop() { mDocument.reset(); }

private:
    TemporaryFolder mFolder;
    std::optional<VUKSimRpm_Document> mDocument; // the handles of its files must not outlive it
    VUKSimRpm_File mFile;
};

/// The bytes that a pool delivers.
[[nodiscard]] std::string DataOf(const VUKSimRpm_Pool& pool);
