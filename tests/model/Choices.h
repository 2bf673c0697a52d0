// What the numbers of some arguments mean.
#pragma once

#include <cstdint>

/// How add-file opens a file.
enum class Mode : std::uint32_t
{
    Write,
    Update,
    Read,
    Unknown,      // a mode that does not exist
    UpdateDetour, // under another name of the same file
};

/// Where a new pool's identifier comes from. Known ones are those of earlier pools.
enum class UuidFrom : std::uint32_t
{
    Forced,
    Generator,
    Caller,
    CallerKnown,
    ForcedKnown, // if that pool is open, the generator is asked again
    CallerShort, // a text that is too short
};

/// What damage-file hits in a pool.
enum class Field : std::uint32_t
{
    Signature,
    Version,
    UserSignature,
    LengthDigit,
    WholeLength,
    Reserved,
    SmallCount,
    CountByte,
    UuidByte,
    OwnUuid, // becomes that of the file's first pool
    DataByte,
};
