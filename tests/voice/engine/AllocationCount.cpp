#include "voice/engine/AllocationCount.h"

#include <cstdlib>
#include <new>

namespace {

thread_local std::size_t allocations = 0;

} // namespace

namespace tarvo::test {

std::size_t allocationCount()
{
    return allocations;
}

} // namespace tarvo::test

void *operator new(std::size_t size)
{
    ++allocations;
    if (void *memory = std::malloc(size > 0 ? size : 1))
        return memory;
    throw std::bad_alloc();
}

void operator delete(void *memory) noexcept
{
    ++allocations;
    std::free(memory);
}

void operator delete(void *memory, std::size_t) noexcept
{
    ++allocations;
    std::free(memory);
}
