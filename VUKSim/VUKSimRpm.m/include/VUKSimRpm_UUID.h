#pragma once

#include "VUKSimRpm_Export.h"

/// A pool's identifier: exactly 32 characters, without hyphens and without a terminator.
///
/// A value of 32 bytes that owns nothing. Generated ones are lowercase hexadecimal; those that come
/// from callers and files hold whatever they were given.
class VUKSIMRPM_EXPORT VUKSimRpm_UUID
{
public:
    static constexpr int kLength = 32; // bytes, in memory and in a directory record on disk

    /// Copies 32 bytes from `text`, whatever they are; `text` must address as many.
    explicit VUKSimRpm_UUID(const char* text) noexcept;

    /// The 32 characters, not terminated; valid as long as this value.
    [[nodiscard]] const char* Text() const noexcept { return mText; }

    /// True when this value orders before `that`: unsigned bytes, all 32 of them.
    [[nodiscard]] bool Less(const VUKSimRpm_UUID& that) const noexcept;

    /// Writes 32 characters to `text`, without a terminator: the forced value if one is pending,
    /// else a fresh random one. The host's own random() sequence is not disturbed.
    static void CreateUUID(char* text);

    /// Makes the next CreateUUID give the 32 characters at `text`, once. Only the pointer is kept:
    /// the text must stay valid until then. Null cancels a pending value.
    static void TestForceUUID(const char* text) noexcept;

private:
    // The caller's pointer, not a copy; null when none is pending.
    static const char* mTestForceUUID;

    char mText[kLength];
};
