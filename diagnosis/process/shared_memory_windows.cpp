#include "diagnosis/process/shared_memory.h"

#include <cstdlib>
#include <new>

namespace diagnosis {

// No process is forked there: it is memory like any other.
void* TakeSharedMemory(std::size_t bytes)
{
    void* memory = std::calloc(bytes, 1);
    return memory == nullptr ? throw std::bad_alloc() : memory;
}

void GiveSharedMemoryBack(void* memory, std::size_t)
{
    std::free(memory);
}

} // namespace diagnosis
