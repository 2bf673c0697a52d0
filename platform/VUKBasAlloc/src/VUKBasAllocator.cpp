#include "VUKBasAllocator.h"

#include <new>

VUKBasAllocator::VUKBasAllocator(VUKBasAllocatorBase* adopted) noexcept : mAllocator(adopted)
{
    if (mAllocator != nullptr) {
        ++mAllocator->mHandles;
    }
}

VUKBasAllocator::VUKBasAllocator(const VUKBasAllocator& other) noexcept
    : VUKBasAllocator(other.mAllocator)
{}

VUKBasAllocator::VUKBasAllocator(VUKBasAllocator&& other) noexcept
    : mAllocator(std::exchange(other.mAllocator, nullptr))
{}

VUKBasAllocator& VUKBasAllocator::operator=(VUKBasAllocator other) noexcept
{
    Swap(other);
    return *this;
}

VUKBasAllocator::~VUKBasAllocator()
{
    if (mAllocator != nullptr && --mAllocator->mHandles == 0) {
        delete mAllocator;
    }
}

void* VUKBasAllocator::Alloc(std::size_t size)
{
    if (mAllocator == nullptr) {
        throw std::bad_alloc();
    }
    return mAllocator->Alloc(size);
}

void VUKBasAllocator::Free(void* block) noexcept
{
    if (mAllocator != nullptr) {
        mAllocator->Free(block);
    }
}
