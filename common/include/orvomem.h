// Tagged allocation of the camera stack.
#ifndef ORVOMEM_H
#define ORVOMEM_H

#include "orvocommon_export.h"
#include "orvotypes.h"

enum OrvoMemFlags : UINT32
{
    OrvoMemFlagsNone            = 0,
    OrvoMemFlagsAllocZeroMemory = 1,
    OrvoMemFlagsDoNotTrack      = 2,
    OrvoMemFlagsArray           = 4,
    OrvoMemFlagsNew             = 8,
    OrvoMemFlagsDelete          = 16,
};

enum OrvoMemType : UINT32
{
    OrvoMemTypeAny = 0,
};

/// Allocates size bytes aligned to alignment (a power of two; 0 means the default).
/// The memory is zeroed whatever the flags say. Null on failure or for size 0.
ORVO_COMMON_API VOID* OrvoCalloc(SIZE_T size, SIZE_T alignment, UINT32 flags, UINT32 type, const CHAR* pFileName,
                                 UINT32 lineNumber);

/// Frees what OrvoCalloc returned; null is ignored.
ORVO_COMMON_API VOID OrvoFree(VOID* pMem, UINT32 flags, const CHAR* pFileName, UINT32 lineNumber);

#endif // ORVOMEM_H
