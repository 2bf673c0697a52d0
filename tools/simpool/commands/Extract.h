#pragma once

#include "Command.h"
#include "PoolRange.h"

#include <string>

namespace simpool {

struct LoadedFile;

/// Writes the data of a pool, or a range of it, to a file or to standard output.
class Extract : public Command
{
public:
    [[nodiscard]] CommandText Text() const override;
    void AddOptions(CLI::App& options) override;
    [[nodiscard]] ExitCode Run(const Surroundings& surroundings) override;

private:
    struct Piece
    {
        std::uint64_t position; // in the file
        std::uint64_t length;   // that is there
        std::uint64_t missing;  // bytes of the range that the file lost
    };

    static Piece Find(const LoadedFile& file, std::size_t number, const PoolRange& range);
    void WriteFile(const LoadedFile& file, const Piece& piece, Output& err) const;
    static void WriteOut(const LoadedFile& file, const Piece& piece, Output& out);

    std::string mName = {};
    std::string mRange = {};
    std::string mOutput = {};
    bool mIsForced = false;
};
} // namespace simpool
