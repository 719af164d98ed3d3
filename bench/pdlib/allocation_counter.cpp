#include "allocation_counter.h"

#include <atomic>
#include <cerrno>
#include <cstdlib>
#include <new>

// glibc's own allocator, under the names it keeps for interposers.
extern "C"
{
    void* __libc_malloc(size_t size);
    void* __libc_calloc(size_t count, size_t size);
    void* __libc_realloc(void* pMemory, size_t size);
    void* __libc_memalign(size_t alignment, size_t size);
    void  __libc_free(void* pMemory);
}

// Exported from the executable even under hidden visibility: interposing needs the dynamic symbol.
#define ALLOCATION_HOOK __attribute__((visibility("default")))

namespace
{
std::atomic<uint64_t> g_allocations{0};

void CountAllocation()
{
    g_allocations.fetch_add(1, std::memory_order_relaxed);
}

bool IsValidAlignment(size_t alignment)
{
    return (0 != alignment) && (0 == (alignment & (alignment - 1))) && (0 == (alignment % sizeof(void*)));
}

void* NewOrThrow(size_t size)
{
    CountAllocation();
    void* pMemory = __libc_malloc((0 == size) ? 1 : size);
    if (nullptr == pMemory)
    {
        throw std::bad_alloc();
    }
    return pMemory;
}
} // namespace

uint64_t AllocationCount()
{
    return g_allocations.load(std::memory_order_relaxed);
}

extern "C"
{
    ALLOCATION_HOOK void* malloc(size_t size) noexcept
    {
        CountAllocation();
        return __libc_malloc(size);
    }

    ALLOCATION_HOOK void* calloc(size_t count, size_t size) noexcept
    {
        CountAllocation();
        return __libc_calloc(count, size);
    }

    ALLOCATION_HOOK void* realloc(void* pMemory, size_t size) noexcept
    {
        CountAllocation();
        return __libc_realloc(pMemory, size);
    }

    ALLOCATION_HOOK void free(void* pMemory) noexcept
    {
        __libc_free(pMemory);
    }

    ALLOCATION_HOOK int posix_memalign(void** ppMemory, size_t alignment, size_t size) noexcept
    {
        if (!IsValidAlignment(alignment))
        {
            return EINVAL;
        }
        CountAllocation();
        void* pMemory = __libc_memalign(alignment, size);
        if (nullptr == pMemory)
        {
            return ENOMEM;
        }
        *ppMemory = pMemory;
        return 0;
    }

    ALLOCATION_HOOK void* aligned_alloc(size_t alignment, size_t size) noexcept
    {
        CountAllocation();
        return __libc_memalign(alignment, size);
    }

    ALLOCATION_HOOK void* memalign(size_t alignment, size_t size) noexcept
    {
        CountAllocation();
        return __libc_memalign(alignment, size);
    }
}

// The nothrow and aligned forms of libstdc++ come through these or through the malloc family.
ALLOCATION_HOOK void* operator new(size_t size)
{
    return NewOrThrow(size);
}

ALLOCATION_HOOK void* operator new[](size_t size)
{
    return NewOrThrow(size);
}

ALLOCATION_HOOK void operator delete(void* pMemory) noexcept
{
    __libc_free(pMemory);
}

ALLOCATION_HOOK void operator delete[](void* pMemory) noexcept
{
    __libc_free(pMemory);
}

ALLOCATION_HOOK void operator delete(void* pMemory, size_t) noexcept
{
    __libc_free(pMemory);
}

ALLOCATION_HOOK void operator delete[](void* pMemory, size_t) noexcept
{
    __libc_free(pMemory);
}
