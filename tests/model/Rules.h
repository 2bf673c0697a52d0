#pragma once

#include <array>

namespace model {

/// Rules that a test can break in the model, to see whether the difference is found. All of them
/// hold otherwise.
struct Rules
{
    bool uuidIndexKeepsTheFirstSlot = true;     // when a removed UUID comes back
    bool newPoolIsKnownBeforeTheDiscard = true; // an empty pool is listed before it is dropped
    bool importCutsTheFile = true;              // what lay behind the copy is gone
    bool cachedIndexWins = true;                // over a directory that changed on disk
    bool deltaDropsTheMemoryPool = true;        // of a locator made from another one
    bool readAheadIgnoresTheLimit = true;       // the count in a refusal tells
    bool negativeReferenceZeroesTheOffset = true;

    /// Those in force.
    static Rules& Current()
    {
        static Rules rules;
        return rules;
    }
};
} // namespace model
