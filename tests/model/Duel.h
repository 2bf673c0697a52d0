#pragma once

#include "ModelStore.h"
#include "Operation.h"
#include "Outcome.h"
#include "Player.h"
#include "RealStore.h"

#include <optional>
#include <string>

/// The library and the model side by side: each step is played on both, and must be the same.
///
/// One at a time: the model has one disk.
class Duel
{
public:
    /// `folder` is empty, and is so again afterwards.
    explicit Duel(const std::string& folder);
    Duel(const Duel&) = delete;
    Duel& operator=(const Duel&) = delete;
    ~Duel();

    /// Plays one step. Returns what is different, in words, or nothing.
    std::optional<std::string> Step(const Operation& operation);

    /// Compares all files, byte for byte.
    [[nodiscard]] std::optional<std::string> CompareFiles() const;

    /// Compares which files there are.
    [[nodiscard]] std::optional<std::string> CompareFolders() const;

    /// What the last step gave.
    [[nodiscard]] const Outcome& Last() const noexcept { return mReal; }

private:
    void ChangeDisk(const Operation& operation);

    std::string mFolder;
    std::optional<Player<RealStore>> mRealPlayer;
    std::optional<Player<ModelStore>> mModelPlayer;
    Outcome mReal;
    Outcome mModel;
    int mSteps = 0;
};
