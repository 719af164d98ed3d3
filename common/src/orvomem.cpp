#include "orvomem.h"

#include <cstdlib>
#include <cstring>

VOID* OrvoCalloc(SIZE_T size, SIZE_T alignment, UINT32, UINT32, const CHAR*, UINT32)
{
    if (0 == size)
    {
        return nullptr;
    }
    if (alignment < sizeof(void*))
    {
        alignment = sizeof(void*);
    }
    if (0 != (alignment & (alignment - 1)))
    {
        return nullptr;
    }

    VOID* pMem = nullptr;
    if (0 != posix_memalign(&pMem, alignment, size))
    {
        return nullptr;
    }
    // Always zeroed: callers of the stack rely on it whether or not they ask.
    memset(pMem, 0, size);
    return pMem;
}

VOID OrvoFree(VOID* pMem, UINT32, const CHAR*, UINT32)
{
    free(pMem);
}
