#pragma once

#include "VUKBasSharedCounts.h"
#include "VUKBasSharedPtr.h"

#include <utility>

/// Remembers a shared object without keeping it alive. A default pointer is empty.
///
/// T may be only declared, as for VUKBasSharedPtr.
template <class T>
class VUKBAS_EXPORT VUKBasWeakPtr
{
public:
    VUKBasWeakPtr() noexcept = default;

    /// Implicit: a shared pointer serves wherever a weak one is asked for.
    template <VUKBasPointsLike<T> U>
    // NOLINTNEXTLINE(google-explicit-constructor)
    VUKBasWeakPtr(const VUKBasSharedPtr<U>& shared) noexcept
        : mObject(shared.mObject), mCounts(shared.mCounts)
    {
        if (mCounts != nullptr) {
            mCounts->AddWeak();
        }
    }

    VUKBasWeakPtr(const VUKBasWeakPtr& other) noexcept
        : mObject(other.mObject), mCounts(other.mCounts)
    {
        if (mCounts != nullptr) {
            mCounts->AddWeak();
        }
    }

    VUKBasWeakPtr(VUKBasWeakPtr&& other) noexcept
        : mObject(std::exchange(other.mObject, nullptr)),
          mCounts(std::exchange(other.mCounts, nullptr))
    {}

    ~VUKBasWeakPtr()
    {
        if (mCounts != nullptr) {
            mCounts->DropWeak();
        }
    }

    VUKBasWeakPtr& operator=(VUKBasWeakPtr other) noexcept
    {
        swap(other);
        return *this;
    }

    /// The object, kept alive by the pointer returned; an empty pointer when it is gone, or being
    /// destroyed at this moment, and when this pointer is empty.
    [[nodiscard]] VUKBasSharedPtr<T> lock() const noexcept
    {
        if (expired()) {
            return {};
        }
        mCounts->AddStrong();
        return VUKBasSharedPtr<T>(mObject, mCounts);
    }

    /// True when lock would give nothing.
    [[nodiscard]] bool expired() const noexcept
    {
        return mCounts == nullptr || mCounts->Strong() == 0;
    }

    /// Shared pointers on the object; 0 when it is gone.
    [[nodiscard]] int UseCount() const noexcept
    {
        return mCounts != nullptr ? mCounts->Strong() : 0;
    }

    /// Weak pointers that remember the same object, this one among them; 0 when empty.
    [[nodiscard]] int WeakCount() const noexcept
    {
        return mCounts != nullptr ? mCounts->Weak() : 0;
    }

    /// Forgets the object.
    void reset() noexcept { VUKBasWeakPtr().swap(*this); }

    void swap(VUKBasWeakPtr& other) noexcept
    {
        std::swap(mObject, other.mObject);
        std::swap(mCounts, other.mCounts);
    }

private:
    T* mObject = nullptr;                  // dangles once the object is gone; lock guards it
    VUKBasSharedCounts* mCounts = nullptr; // shared with all pointers on the object
};
