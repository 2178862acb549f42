#include "diagnosis/process/shared_memory.h"

#include <new>

#include <sys/mman.h>

namespace diagnosis {

void* TakeSharedMemory(std::size_t bytes)
{
    void* memory = mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    return memory == MAP_FAILED ? throw std::bad_alloc() : memory;
}

void GiveSharedMemoryBack(void* memory, std::size_t bytes)
{
    munmap(memory, bytes);
}

} // namespace diagnosis
