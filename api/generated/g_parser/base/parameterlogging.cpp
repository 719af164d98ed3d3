#include "parameterlogging.h"

#include <cstdarg>
#include <cstdio>

#include "orvolog.h"

namespace
{
struct LevelRow
{
    char const* prefix;
    char const* letter;
    UINT32      systemLevel;
};

LevelRow RowOf(ParameterLogging::ParameterLogLevel level)
{
    switch (level)
    {
        case ParameterLogging::LogLevelWarning:
            return {"[WARNING]", "W", 2};
        case ParameterLogging::LogLevelError:
            return {"[ERROR]", "E", 1};
        default:
            return {"[DEBUG]", "D", 0};
    }
}
} // namespace

void ParameterLogging::Write(IParameterLoggingAPI* logger, ParameterLogLevel level, char const* file, int line,
                             char const* format, ...)
{
    // A disabled level costs one virtual call and no formatting.
    if ((nullptr != logger) && !logger->LoggingEnabled(level))
    {
        return;
    }

    char text[4096] = "";
    if (nullptr != format)
    {
        va_list args;
        va_start(args, format);
        vsnprintf(text, sizeof(text), format, args);
        va_end(args);
    }

    char const* fileName = GetFileName(file);
    LevelRow    row      = RowOf(level);
    if (nullptr == logger)
    {
        Orvo::Log::LogSystem(LogGroup, row.letter, row.systemLevel, "%s ParameterParser: %s:%d: %s", row.prefix,
                             fileName, line, text);
    }
    else if (nullptr == logger->GetLoggingIdentifier())
    {
        Orvo::Log::LogSystem(LogGroup, row.letter, row.systemLevel, "%s ParameterParser: %p %s:%d: %s", row.prefix,
                             static_cast<void*>(logger), fileName, line, text);
    }
    else
    {
        // Required: the identifier is asked twice, once to test and once to print.
        Orvo::Log::LogSystem(LogGroup, row.letter, row.systemLevel, "%s ParameterParser: %p (%s): %s:%d: %s",
                             row.prefix, static_cast<void*>(logger), logger->GetLoggingIdentifier(), fileName, line,
                             text);
    }
}

char const* ParameterLogging::GetFileName(char const* path)
{
    if (nullptr == path)
    {
        return "FileNameIsNULL";
    }
    char const* start = path;
    for (char const* cursor = path; '\0' != *cursor; ++cursor)
    {
        if (('/' == *cursor) || ('\\' == *cursor))
        {
            start = cursor + 1;
        }
    }
    return start;
}
