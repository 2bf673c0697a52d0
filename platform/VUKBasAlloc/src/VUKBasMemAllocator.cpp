#include "VUKBasMemAllocator.h"

#include "mem_Alloc.h"

void* VUKBasMemAllocator::Alloc(std::size_t size)
{
    return mem_OperatorNewThrowBuiltin(size);
}

void VUKBasMemAllocator::Free(void* block) noexcept
{
    mem_Free(block);
}
