#ifndef ARBORIST_DIAGNOSIS_PROCESS_SHARED_MEMORY_H
#define ARBORIST_DIAGNOSIS_PROCESS_SHARED_MEMORY_H

#include <cstddef>

namespace diagnosis {

/// Memory of zeros that this process and those forked from it share. Throws std::bad_alloc.
void* TakeSharedMemory(std::size_t bytes);
void GiveSharedMemoryBack(void* memory, std::size_t bytes);

} // namespace diagnosis

#endif
