#pragma once

#include <utility>

#include "VUKSimUttSystemCalls.h"

/// Owns an open descriptor until somebody takes it over.
class VUKSimUttDescriptor
{
public:
    /// `descriptor` may be -1, for none.
    explicit VUKSimUttDescriptor(int descriptor) noexcept : mDescriptor(descriptor) {}
    VUKSimUttDescriptor(const VUKSimUttDescriptor&) = delete;
    VUKSimUttDescriptor& operator=(const VUKSimUttDescriptor&) = delete;
    VUKSimUttDescriptor(VUKSimUttDescriptor&& that) noexcept : mDescriptor(that.Release()) {}
    ~VUKSimUttDescriptor()
    {
        if (mDescriptor != -1) {
            VUKSimUttSystemCalls::Current().close(mDescriptor);
        }
    }

    [[nodiscard]] int Get() const noexcept { return mDescriptor; }

    /// Gives the descriptor away; none is left here.
    [[nodiscard]] int Release() noexcept { return std::exchange(mDescriptor, -1); }

private:
    int mDescriptor; // -1 for none
};
