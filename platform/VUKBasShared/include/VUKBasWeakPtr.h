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

    // NOLINTNEXTLINE(bugprone-unhandled-self-assignment): its own counts are the same
    VUKBasWeakPtr& operator=(const VUKBasWeakPtr& other) noexcept
    {
        if (mCounts != other.mCounts) { // else one count would go up and down again
            VUKBasWeakPtr(other).swap(*this);
        }
        return *this;
    }

    VUKBasWeakPtr& operator=(VUKBasWeakPtr&& other) noexcept
    {
        VUKBasWeakPtr(std::move(other)).swap(*this);
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

    /// The object without a count of its own, null when lock would give nothing: for the one access
    /// that follows, while which another pointer keeps the object alive.
    [[nodiscard]] T* Borrow() const noexcept { return expired() ? nullptr : mObject; }

    /// The same where it is known to be there. Not checked.
    [[nodiscard]] T& BorrowLiving() const noexcept { return *mObject; }

    /// True when lock would give the same object here and there; false when there is none.
    [[nodiscard]] bool SameObject(const VUKBasWeakPtr& that) const noexcept
    {
        return mCounts == that.mCounts && !expired();
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
