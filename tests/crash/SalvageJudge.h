#pragma once

#include "Expectation.h"
#include "Outcome.h"
#include "TemporaryFolder.h"
#include "VUKString.h"

#include <cstddef>

/// Salvages crash images with the inspector and looks in what it made for all that was promised.
class SalvageJudge
{
public:
    /// `name` is the file of an image; it is only read.
    void Judge(const VUKString& name, const FileExpectation& expected, Outcome& outcome);

    /// How many files this program salvaged.
    [[nodiscard]] static std::size_t Files() noexcept { return sFiles; }

private:
    static inline std::size_t sFiles = 0;

    TemporaryFolder mFolder;
};
