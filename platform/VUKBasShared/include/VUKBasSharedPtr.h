#pragma once

#include "VUKBasSharedCounts.h"
#include "mem_Alloc.h"

#include <concepts>
#include <cstddef>
#include <new>
#include <type_traits>
#include <utility>

template <class T>
class VUKBasWeakPtr;

/// A pointer on U serves as a pointer on T: U is T, or derived from it.
template <class U, class T>
concept VUKBasPointsLike = std::convertible_to<U*, T*>;

/// Shares an object with its copies; the last of them destroys it.
///
/// T may be only declared wherever the pointer is kept, copied, compared or destroyed; its
/// definition is needed where the first pointer is made and where the object is used. Counts are
/// plain memory: an object and all pointers on it belong to one thread at a time.
template <class T>
class VUKBAS_EXPORT VUKBasSharedPtr
{
public:
    VUKBasSharedPtr() noexcept = default;
    VUKBasSharedPtr(std::nullptr_t) noexcept {} // NOLINT(google-explicit-constructor)

    /// Takes over `adopted`, which was made with `new`; null gives an empty pointer.
    /// \throws std::bad_alloc when there is no memory for the counts; `adopted` is then deleted.
    template <VUKBasPointsLike<T> U>
    explicit VUKBasSharedPtr(U* adopted)
        : mObject(adopted), mCounts(adopted != nullptr ? NewCounts(adopted) : nullptr)
    {}

    VUKBasSharedPtr(const VUKBasSharedPtr& other) noexcept
        : mObject(other.mObject), mCounts(other.mCounts)
    {
        if (mCounts != nullptr) {
            mCounts->AddStrong();
        }
    }

    VUKBasSharedPtr(VUKBasSharedPtr&& other) noexcept
        : mObject(std::exchange(other.mObject, nullptr)),
          mCounts(std::exchange(other.mCounts, nullptr))
    {}

    /// From a pointer on a derived class; implicit, as between plain pointers.
    template <VUKBasPointsLike<T> U>
    // NOLINTNEXTLINE(google-explicit-constructor)
    VUKBasSharedPtr(const VUKBasSharedPtr<U>& other) noexcept
        : mObject(other.mObject), mCounts(other.mCounts)
    {
        if (mCounts != nullptr) {
            mCounts->AddStrong();
        }
    }

    ~VUKBasSharedPtr()
    {
        if (mCounts != nullptr) {
            mCounts->DropStrong();
        }
    }

    VUKBasSharedPtr& operator=(VUKBasSharedPtr other) noexcept
    {
        swap(other);
        return *this;
    }

    [[nodiscard]] T* get() const noexcept { return mObject; }
    [[nodiscard]] T& operator*() const noexcept { return *mObject; }
    [[nodiscard]] T* operator->() const noexcept { return mObject; }
    [[nodiscard]] explicit operator bool() const noexcept { return mCounts != nullptr; }

    /// Shared pointers on the object, this one among them; 0 when empty.
    [[nodiscard]] int UseCount() const noexcept
    {
        return mCounts != nullptr ? mCounts->Strong() : 0;
    }

    /// Lets go of the object. This pointer is empty before the object is destroyed.
    void reset() noexcept { VUKBasSharedPtr().swap(*this); }

    void swap(VUKBasSharedPtr& other) noexcept
    {
        std::swap(mObject, other.mObject);
        std::swap(mCounts, other.mCounts);
    }

    /// Equal are two pointers on the same object, and two empty ones.
    template <class U>
    [[nodiscard]] bool operator==(const VUKBasSharedPtr<U>& that) const noexcept
    {
        return mObject == that.get();
    }

    [[nodiscard]] bool operator==(std::nullptr_t) const noexcept { return mCounts == nullptr; }

private:
    template <class U>
    friend class VUKBasSharedPtr;
    template <class U>
    friend class VUKBasWeakPtr;
    template <class U, class... Args>
    friend VUKBasSharedPtr<U> VUKBasMakeShared(Args&&... args);

    // Takes over one strong count that was taken already.
    VUKBasSharedPtr(T* object, VUKBasSharedCounts* counts) noexcept
        : mObject(object), mCounts(counts)
    {}

    // Counts for an object that was made elsewhere.
    template <class U>
    struct AdoptedBlock : VUKBasSharedCounts
    {
        explicit AdoptedBlock(U* object) noexcept : VUKBasSharedCounts(&Destroy), adopted(object) {}

        static void Destroy(VUKBasSharedCounts* counts) noexcept
        {
            delete static_cast<AdoptedBlock*>(counts)->adopted;
        }

        U* adopted;
    };

    // Counts and the object in one block.
    struct JoinedBlock : VUKBasSharedCounts
    {
        JoinedBlock() noexcept : VUKBasSharedCounts(&Destroy) {}

        [[nodiscard]] T* Object() noexcept { return std::launder(reinterpret_cast<T*>(storage)); }

        static void Destroy(VUKBasSharedCounts* counts) noexcept
        {
            static_cast<JoinedBlock*>(counts)->Object()->~T();
        }

        alignas(T) std::byte storage[sizeof(T)];
    };

    template <class U>
    [[nodiscard]] static VUKBasSharedCounts* NewCounts(U* adopted)
    {
        try {
            return ::new (mem_OperatorNewTinyThrow(sizeof(AdoptedBlock<U>)))
                AdoptedBlock<U>(adopted);
        } catch (...) {
            delete adopted;
            throw;
        }
    }

    T* mObject = nullptr;                  // null exactly when mCounts is
    VUKBasSharedCounts* mCounts = nullptr; // shared with all pointers on the object
};

/// A new T, built from `args`, in one allocation with its counts.
/// \throws std::bad_alloc when there is no memory, and whatever T's constructor throws.
template <class T, class... Args>
[[nodiscard]] VUKBasSharedPtr<T> VUKBasMakeShared(Args&&... args)
{
    using Block = typename VUKBasSharedPtr<T>::JoinedBlock;
    static_assert(alignof(Block) <= alignof(std::max_align_t));
    Block* block = ::new (mem_OperatorNewThrow(sizeof(Block))) Block;
    try {
        T* object = ::new (static_cast<void*>(block->storage)) T(std::forward<Args>(args)...);
        return VUKBasSharedPtr<T>(object, block);
    } catch (...) {
        mem_Free(block);
        throw;
    }
}
