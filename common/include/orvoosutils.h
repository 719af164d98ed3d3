// Small operating-system and string helpers of the camera stack.
#ifndef ORVOOSUTILS_H
#define ORVOOSUTILS_H

#include <cstdarg>

#include "orvocommon_export.h"
#include "orvotypes.h"

namespace Orvo
{
namespace OsUtils
{
ORVO_COMMON_API INT32 GetProcessID();
ORVO_COMMON_API INT32 GetThreadID();

/// Copies at most dstSize - 1 characters and always terminates (when dstSize > 0).
/// Returns the length of pSrc, so a result >= dstSize means the copy was cut.
ORVO_COMMON_API SIZE_T StrLCpy(CHAR* pDst, const CHAR* pSrc, SIZE_T dstSize);

/// Appends to the string in pDst within dstSize bytes, always terminated.
/// Returns the length the whole string would have had.
ORVO_COMMON_API SIZE_T StrLCat(CHAR* pDst, const CHAR* pSrc, SIZE_T dstSize);

/// Case-insensitive compare of at most maxCount characters: <0, 0 or >0.
ORVO_COMMON_API INT StrNICmp(const CHAR* pString1, const CHAR* pString2, SIZE_T maxCount);

/// snprintf that always terminates; returns what vsnprintf returns.
ORVO_COMMON_API INT SNPrintF(CHAR* pDst, SIZE_T sizeDst, const CHAR* pFormat, ...)
    __attribute__((format(printf, 3, 4)));
} // namespace OsUtils
} // namespace Orvo

#endif // ORVOOSUTILS_H
