// Log lines of the phase-detection half. Every line reads
//   <mark><pid> <tid> <group tag> <file>:<line> <function>() <message>
// with the source line written into the format as a literal number. Error lines are always
// written; info and verbose lines only through the gate of the common library.
#ifndef PDLIBLOG_H
#define PDLIBLOG_H

#include "orvolog.h"
#include "orvoosutils.h"

#define PDLIB_LOG_STRINGIFY_(x) #x
#define PDLIB_LOG_STRINGIFY(x) PDLIB_LOG_STRINGIFY_(x)

#define PDLIB_LOG_TAG_AF "[STATS_AF]"
#define PDLIB_LOG_TAG_KEL "[KEL    ]"

#define PDLIB_LOG_LINE(group, tag, mark, letter, level, fmt, ...)                                                      \
    Orvo::Log::LogSystem((group), (letter), (level), mark "%d %d %s %s:" PDLIB_LOG_STRINGIFY(__LINE__) " %s() " fmt,   \
                         Orvo::OsUtils::GetProcessID(), Orvo::OsUtils::GetThreadID(), (tag),                           \
                         Orvo::Log::GetFileName(__FILE__), __func__, ##__VA_ARGS__)

#define PDLIB_LOG_GATED(group, tag, mark, letter, level, fmt, ...)                                                     \
    do                                                                                                                 \
    {                                                                                                                  \
        if (Orvo::Log::IsLogEnabled((group), (level)))                                                                 \
        {                                                                                                              \
            PDLIB_LOG_LINE(group, tag, mark, letter, level, fmt, ##__VA_ARGS__);                                       \
        }                                                                                                              \
    } while (0)

#define PDLIB_LOG_ERROR_GROUP(group, tag, fmt, ...)                                                                    \
    PDLIB_LOG_LINE(group, tag, "[ERROR]", "E", OrvoLogError, fmt, ##__VA_ARGS__)
#define PDLIB_LOG_INFO_GROUP(group, tag, fmt, ...)                                                                     \
    PDLIB_LOG_GATED(group, tag, "[ INFO]", "I", OrvoLogInfo, fmt, ##__VA_ARGS__)
#define PDLIB_LOG_VERBOSE_GROUP(group, tag, fmt, ...)                                                                  \
    PDLIB_LOG_GATED(group, tag, "[ VERB]", "V", OrvoLogVerbose, fmt, ##__VA_ARGS__)

/// Autofocus group: the engine and the entry points.
#define PD_LOG_ERROR(fmt, ...) PDLIB_LOG_ERROR_GROUP(OrvoLogGroupAF, PDLIB_LOG_TAG_AF, fmt, ##__VA_ARGS__)
#define PD_LOG_INFO(fmt, ...) PDLIB_LOG_INFO_GROUP(OrvoLogGroupAF, PDLIB_LOG_TAG_AF, fmt, ##__VA_ARGS__)
#define PD_LOG_VERBOSE(fmt, ...) PDLIB_LOG_VERBOSE_GROUP(OrvoLogGroupAF, PDLIB_LOG_TAG_AF, fmt, ##__VA_ARGS__)

/// Framework group: the vendor tag query.
#define KEL_LOG_ERROR(fmt, ...) PDLIB_LOG_ERROR_GROUP(OrvoLogGroupKel, PDLIB_LOG_TAG_KEL, fmt, ##__VA_ARGS__)

#endif // PDLIBLOG_H
