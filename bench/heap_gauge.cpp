#include "bench/heap_gauge.h"

#include <cstdlib>
#include <malloc.h>
#include <new>

namespace {

bool isCounting = false;
std::ptrdiff_t live = 0;
std::ptrdiff_t peak = 0;

std::ptrdiff_t SizeOf(void* block)
{
#ifdef _WIN32
    return static_cast<std::ptrdiff_t>(_msize(block));
#else
    return static_cast<std::ptrdiff_t>(malloc_usable_size(block));
#endif
}

} // namespace

void* operator new(std::size_t size)
{
    void* block = std::malloc(size == 0 ? 1 : size);
    if (block == nullptr) {
        throw std::bad_alloc();
    }
    if (isCounting) {
        live += SizeOf(block);
        peak = live > peak ? live : peak;
    }
    return block;
}

void operator delete(void* block) noexcept
{
    if (isCounting && block != nullptr) {
        live -= SizeOf(block);
    }
    std::free(block);
}

void operator delete(void* block, std::size_t) noexcept
{
    operator delete(block);
}

HeapGauge::HeapGauge()
{
    live = 0;
    peak = 0;
    isCounting = true;
}

HeapGauge::~HeapGauge()
{
    isCounting = false;
}

double HeapGauge::Live() const
{
    return static_cast<double>(live);
}

double HeapGauge::Peak() const
{
    return static_cast<double>(peak);
}
