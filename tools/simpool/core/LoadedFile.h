#pragma once

#include "FileBytes.h"
#include "PoolWalk.h"

#include <deque>
#include <string>
#include <string_view>
#include <vector>

namespace simpool {

/// A file that was opened and walked.
struct LoadedFile
{
    std::string name; // as it was given, not escaped
    FileBytes bytes = {};
    PoolWalk walk = {};

    [[nodiscard]] const std::vector<PoolInfo>& Pools() const noexcept { return walk.pools; }
};

/// The files of one command line, and where the pools lie in them.
class LoadedFiles
{
public:
    enum class Walk
    {
        AsOneDocument, // one user signature, and each UUID once, as when one document opens them
                       // all
        EachAlone
    };

    LoadedFiles() = default;

    /// Damage only ends a walk.
    /// \throws CommandFailure when a file cannot be opened or read.
    LoadedFiles(const std::vector<std::string>& names, Walk walk);

    [[nodiscard]] std::size_t Count() const noexcept { return mFiles.size(); }
    [[nodiscard]] const LoadedFile& operator[](std::size_t index) const { return mFiles[index]; }
    [[nodiscard]] auto begin() const noexcept { return mFiles.begin(); }
    [[nodiscard]] auto end() const noexcept { return mFiles.end(); }

    /// The first pool with this UUID; null when no file has one.
    [[nodiscard]] const Together::Place* Find(const Uuid& uuid) const;

    /// Whether `name` leads to one of the files, which then must not be written.
    [[nodiscard]] bool Holds(const std::string& name) const;

    /// \throws CommandFailure when any read of any of the files failed so far.
    void CheckReads() const;

private:
    std::deque<LoadedFile> mFiles = {}; // stays where it is: a FileBytes cannot move
    Together mIndex = {};
};

/// The pool that `text` names: its number, or the beginning (four characters or more) of its UUID.
/// \throws CommandFailure when there is none or more than one.
[[nodiscard]] std::size_t ChoosePool(const LoadedFile& file, std::string_view text);

/// Exactly `length` bytes at `position`.
/// \throws CommandFailure when the file is shorter or cannot be read.
[[nodiscard]] std::string ReadBytes(const LoadedFile& file, std::uint64_t position,
                                    std::size_t length);

/// All entries of the pool's directory, its own first.
/// \throws CommandFailure as ReadBytes.
[[nodiscard]] std::vector<Uuid> ReadDirectory(const LoadedFile& file, const PoolInfo& pool);

/// Why a walk stopped, as a clause: "the directory is longer than the file".
[[nodiscard]] const char* Describe(Stop stop) noexcept;
} // namespace simpool
