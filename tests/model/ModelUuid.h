#pragma once

#include <string>

namespace model {

using Uuid = std::string; // always 32 characters

/// Where new identifiers come from: a forced one, once, or one that the real library made and the
/// model is told of.
struct UuidSource
{
    Uuid forced; // empty when none is pending
    Uuid told;   // empty when none was made

    static UuidSource& Current()
    {
        static UuidSource source;
        return source;
    }

    /// Fails when there is neither: the two worlds are different then, and this shows it.
    Uuid Create();
};

/// Whether `uuid` is a generated one by its look.
bool LooksGenerated(const Uuid& uuid);
} // namespace model
