// ParameterLogging: the one route by which the parameter store, the live tuning link and the
// generated modules report, and IParameterLoggingAPI, the logger objects hand to it.
#ifndef PARAMETERLOGGING_H
#define PARAMETERLOGGING_H

#include <cstdint>

#include "pdlibvark_export.h"

class IParameterLoggingAPI;

class PDLIBVARK_API ParameterLogging
{
public:
    /// Of fixed type: callers may pass any number, and one the list does not name logs as debug.
    enum ParameterLogLevel : int
    {
        LogLevelDebug   = 0,
        LogLevelWarning = 1,
        LogLevelError   = 2,
    };

    /// The common library's log group of every store line.
    static constexpr uint64_t LogGroup = 0x1000;

    /// Formats one line and sends it through Orvo::Log::LogSystem. A logger that disables
    /// `level` suppresses the line before any formatting; a null logger never filters.
    /// Any level value other than the three counts as debug.
    static void Write(IParameterLoggingAPI* logger, ParameterLogLevel level, char const* file, int line,
                      char const* format, ...) __attribute__((format(printf, 5, 6)));

    /// The last component of `path` after '/' or '\\'; "FileNameIsNULL" for a null path.
    static char const* GetFileName(char const* path);
};

/// What a store object hands to ParameterLogging::Write: its name in each line and its level
/// switches. Slot order is part of the interface.
class PDLIBVARK_API IParameterLoggingAPI
{
public:
    /// The text that names the logging object in each line, or null.
    virtual char const* GetLoggingIdentifier()                                    = 0;
    virtual bool        LoggingEnabled(ParameterLogging::ParameterLogLevel level) = 0;
    virtual ~IParameterLoggingAPI()                                               = default;
};

// One line of the store's log from the calling site; the message ends in "\n" by convention.
#define PARAMETER_LOG_DEBUG(logger, ...)                                                                               \
    ParameterLogging::Write((logger), ParameterLogging::LogLevelDebug, __FILE__, __LINE__, __VA_ARGS__)
#define PARAMETER_LOG_WARNING(logger, ...)                                                                             \
    ParameterLogging::Write((logger), ParameterLogging::LogLevelWarning, __FILE__, __LINE__, __VA_ARGS__)
#define PARAMETER_LOG_ERROR(logger, ...)                                                                               \
    ParameterLogging::Write((logger), ParameterLogging::LogLevelError, __FILE__, __LINE__, __VA_ARGS__)

#endif // PARAMETERLOGGING_H
