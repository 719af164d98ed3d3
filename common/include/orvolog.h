// Logging of the camera stack: one formatted line per call, gated per group and level.
#ifndef ORVOLOG_H
#define ORVOLOG_H

#include "orvocommon_export.h"
#include "orvotypes.h"

/// A set of log groups, one bit each.
typedef UINT64 OrvoLogGroup;

static const OrvoLogGroup OrvoLogGroupKel = 1ULL << 18;
static const OrvoLogGroup OrvoLogGroupAF  = 1ULL << 27;

/// Level arguments of LogSystem; they index DebugLogInfo::groupsEnable.
static const UINT32 OrvoLogError   = 1;
static const UINT32 OrvoLogInfo    = 4;
static const UINT32 OrvoLogVerbose = 5;

/// Number of levels that carry a group mask.
static const UINT32 OrvoLogLevelCount = 14;

struct DebugLogInfo
{
    OrvoLogGroup groupsEnable[OrvoLogLevelCount]; ///< per level, the groups whose lines are written
};

namespace Orvo
{
/// Log masks; read by callers to decide whether an info or verbose line is written.
ORVO_COMMON_API extern DebugLogInfo g_logInfo;
/// Non-zero once the log settings are loaded; until then every line is written.
ORVO_COMMON_API extern UINT32 g_logInfoUpdated;

namespace Log
{
/// Receives every line that LogSystem writes. pLine has no trailing newline of its own
/// unless the format put one there.
typedef void (*LogSink)(OrvoLogGroup group, const CHAR* pLevelLetter, UINT32 level, const CHAR* pLine, VOID* pContext);

/// Formats one line and hands it to the current sink (stderr by default).
ORVO_COMMON_API void LogSystem(OrvoLogGroup group, const CHAR* pLevelLetter, UINT32 level, const CHAR* pFormat, ...)
    __attribute__((format(printf, 4, 5)));

/// The last component of a path: what follows the last '/'.
ORVO_COMMON_API const CHAR* GetFileName(const CHAR* pPath);

/// Replaces the sink; a null sink restores the stderr sink. Returns nothing: tests restore by
/// calling it again.
ORVO_COMMON_API void SetLogSink(LogSink sink, VOID* pContext);

/// What the platform does once it has read its log settings: every level's mask becomes
/// enableMask and g_logInfoUpdated is set. A mask of 0 closes the info and verbose gate,
/// as on a device with default settings.
ORVO_COMMON_API void LoadLogSettings(OrvoLogGroup enableMask);

/// Back to the state before settings are loaded: masks 0, g_logInfoUpdated 0 (all lines pass).
ORVO_COMMON_API void ResetLogSettings();

/// The gate of info and verbose lines: the group's bit for the level, or no settings yet.
inline bool IsLogEnabled(OrvoLogGroup group, UINT32 level)
{
    return (0 == g_logInfoUpdated) || (0 != (g_logInfo.groupsEnable[level] & group));
}
} // namespace Log
} // namespace Orvo

#endif // ORVOLOG_H
