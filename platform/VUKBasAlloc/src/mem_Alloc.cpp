#include "mem_Alloc.h"

#include <cstdlib>

namespace {

void* AllocateFromHeap(std::size_t size)
{
    return std::malloc(size);
}

void* AllocateZeroedFromHeap(std::size_t size)
{
    return std::calloc(1, size);
}

void ReleaseToHeap(void* block)
{
    std::free(block);
}

constinit mem_Functions gFunctions{AllocateFromHeap, AllocateZeroedFromHeap, ReleaseToHeap};

void* OrThrow(void* block)
{
    if (block == nullptr) [[unlikely]] {
        throw std::bad_alloc();
    }
    return block;
}

// The C library may answer a request for 0 bytes with null, which here means "no memory".
std::size_t AtLeastOne(std::size_t size)
{
    return size != 0 ? size : 1;
}

} // namespace

mem_Functions& mem_CurrentFunctions() noexcept
{
    return gFunctions;
}

void* mem_OperatorNewThrow(std::size_t size)
{
    return OrThrow(gFunctions.allocate(AtLeastOne(size)));
}

void* mem_OperatorNewTinyThrow(std::size_t size)
{
    return OrThrow(gFunctions.allocate(AtLeastOne(size)));
}

void* mem_OperatorNewThrowBuiltin(std::size_t size)
{
    return OrThrow(gFunctions.allocate(AtLeastOne(size)));
}

void* mem_OperatorNewZeroedThrow(std::size_t size)
{
    return OrThrow(gFunctions.allocateZeroed(AtLeastOne(size)));
}

void mem_Free(void* block) noexcept
{
    if (block != nullptr) {
        gFunctions.release(block);
    }
}
