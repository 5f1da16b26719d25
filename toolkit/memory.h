// Memory of the platform's allocator.
#pragma once

#include <cstddef>

extern "C" {

// Uninitialised memory, or null. Released by sys_free_memory only.
void *sys_allocate_memory(std::size_t size);
void sys_free_memory(void *memory); // null is fine

} // extern "C"
