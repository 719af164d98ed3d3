#include "orvoosutils.h"

#include <cctype>
#include <cstdio>
#include <cstring>
#include <sys/syscall.h>
#include <unistd.h>

namespace Orvo
{
namespace OsUtils
{
INT32 GetProcessID()
{
    return static_cast<INT32>(getpid());
}

INT32 GetThreadID()
{
    return static_cast<INT32>(syscall(SYS_gettid));
}

SIZE_T StrLCpy(CHAR* pDst, const CHAR* pSrc, SIZE_T dstSize)
{
    SIZE_T sourceLength = strlen(pSrc);
    if (dstSize > 0)
    {
        SIZE_T copyLength = (sourceLength < dstSize) ? sourceLength : dstSize - 1;
        memmove(pDst, pSrc, copyLength);
        pDst[copyLength] = '\0';
    }
    return sourceLength;
}

SIZE_T StrLCat(CHAR* pDst, const CHAR* pSrc, SIZE_T dstSize)
{
    SIZE_T dstLength = strnlen(pDst, dstSize);
    if (dstLength == dstSize)
    {
        // No terminator within the buffer: nothing can be appended.
        return dstSize + strlen(pSrc);
    }
    return dstLength + StrLCpy(pDst + dstLength, pSrc, dstSize - dstLength);
}

INT StrNICmp(const CHAR* pString1, const CHAR* pString2, SIZE_T maxCount)
{
    for (SIZE_T i = 0; i < maxCount; i++)
    {
        int c1 = tolower(static_cast<unsigned char>(pString1[i]));
        int c2 = tolower(static_cast<unsigned char>(pString2[i]));
        if ((c1 != c2) || ('\0' == c1))
        {
            return c1 - c2;
        }
    }
    return 0;
}

INT SNPrintF(CHAR* pDst, SIZE_T sizeDst, const CHAR* pFormat, ...)
{
    va_list args;
    va_start(args, pFormat);
    INT written = vsnprintf(pDst, sizeDst, pFormat, args);
    va_end(args);
    if ((written < 0) && (sizeDst > 0))
    {
        pDst[0] = '\0';
    }
    return written;
}
} // namespace OsUtils
} // namespace Orvo
