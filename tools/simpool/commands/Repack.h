#pragma once

#include "Command.h"
#include "PoolCopying.h"

#include <string>
#include <vector>

namespace simpool {

/// Writes a file anew without what is dead in it.
class Repack : public Command
{
public:
    [[nodiscard]] CommandText Text() const override;
    void AddOptions(CLI::App& options) override;
    [[nodiscard]] ExitCode Run(const Surroundings& surroundings) override;

private:
    /// Bytes of the input that the output does without.
    struct Saved
    {
        std::vector<std::size_t> unreachable = {}; // numbers of pools
        std::uint64_t poolBytes = 0;               // of these
        std::uint64_t tail = 0;                    // behind the last pool
        std::uint64_t zeros = 0;                   // at the end of the last pool's data

        [[nodiscard]] std::uint64_t Total() const noexcept { return poolBytes + tail + zeros; }
    };

    static void Print(const LoadedFile& file, const Saved& saved, Output& out);
    void PrintDocument(const std::vector<CopiedPool>& pools, const Saved& saved, Output& out) const;

    std::string mName = {};
    std::vector<std::string> mRoots = {};
    std::string mOutput = {};
    bool mCutsZeros = false;
    bool mIsForced = false;
};
} // namespace simpool
