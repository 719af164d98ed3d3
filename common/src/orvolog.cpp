#include "orvolog.h"

#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <mutex>
#include <vector>

namespace Orvo
{
DebugLogInfo g_logInfo        = {};
UINT32       g_logInfoUpdated = 0;

namespace Log
{
namespace
{
void StderrSink(OrvoLogGroup, const CHAR*, UINT32, const CHAR* pLine, VOID*)
{
    size_t length = strlen(pLine);
    fputs(pLine, stderr);
    if ((0 == length) || ('\n' != pLine[length - 1]))
    {
        fputc('\n', stderr);
    }
}

// Constant-initialised: nothing runs when the library loads.
std::mutex g_sinkMutex;
LogSink    g_sink        = StderrSink;
VOID*      g_sinkContext = nullptr;

constexpr size_t InlineLineSize = 1024;
} // namespace

void LogSystem(OrvoLogGroup group, const CHAR* pLevelLetter, UINT32 level, const CHAR* pFormat, ...)
{
    if (nullptr == pFormat)
    {
        return;
    }

    CHAR              inlineLine[InlineLineSize];
    std::vector<CHAR> longLine;
    const CHAR*       pLine = inlineLine;

    va_list args;
    va_start(args, pFormat);
    va_list retry;
    va_copy(retry, args);
    int length = vsnprintf(inlineLine, sizeof(inlineLine), pFormat, args);
    va_end(args);
    if (length >= static_cast<int>(sizeof(inlineLine)))
    {
        longLine.resize(static_cast<size_t>(length) + 1);
        vsnprintf(longLine.data(), longLine.size(), pFormat, retry);
        pLine = longLine.data();
    }
    else if (length < 0)
    {
        inlineLine[0] = '\0';
    }
    va_end(retry);

    std::lock_guard<std::mutex> guard(g_sinkMutex);
    g_sink(group, pLevelLetter, level, pLine, g_sinkContext);
}

const CHAR* GetFileName(const CHAR* pPath)
{
    if (nullptr == pPath)
    {
        return "";
    }
    const CHAR* pSlash = strrchr(pPath, '/');
    return (nullptr == pSlash) ? pPath : pSlash + 1;
}

void SetLogSink(LogSink sink, VOID* pContext)
{
    std::lock_guard<std::mutex> guard(g_sinkMutex);
    g_sink        = (nullptr == sink) ? StderrSink : sink;
    g_sinkContext = (nullptr == sink) ? nullptr : pContext;
}

void LoadLogSettings(OrvoLogGroup enableMask)
{
    for (OrvoLogGroup& mask : g_logInfo.groupsEnable)
    {
        mask = enableMask;
    }
    g_logInfoUpdated = 1;
}

void ResetLogSettings()
{
    g_logInfo        = DebugLogInfo{};
    g_logInfoUpdated = 0;
}
} // namespace Log
} // namespace Orvo
