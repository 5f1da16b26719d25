#include "toolkit/memory.h"

#include <cstdlib>

extern "C" void *sys_allocate_memory(std::size_t size)
{
    return std::malloc(size);
}

extern "C" void sys_free_memory(void *memory)
{
    std::free(memory);
}
