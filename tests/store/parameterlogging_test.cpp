#include <gtest/gtest.h>

#include <cstdio>
#include <string>

#include "logcapture.h"
#include "parameterlogging.h"

namespace
{
using testsupport::LogCapture;

class FakeLogger : public IParameterLoggingAPI
{
public:
    const char* GetLoggingIdentifier() override
    {
        ++identifierCalls;
        return identifier;
    }
    bool LoggingEnabled(ParameterLogging::ParameterLogLevel level) override
    {
        ++enabledCalls;
        return (ParameterLogging::LogLevelDebug != level) || debugEnabled;
    }

    const char* identifier      = nullptr;
    bool        debugEnabled    = false;
    int         identifierCalls = 0;
    int         enabledCalls    = 0;
};

std::string PointerText(const void* pointer)
{
    char text[32];
    snprintf(text, sizeof(text), "%p", pointer);
    return text;
}

// Without a logger a line is prefix, file name, line and text; any level value but error and
// warning is written as debug.
TEST(ParameterLogging, LevelsMapToPrefixLetterAndSystemLevel)
{
    struct Case
    {
        int         level;
        std::string prefix;
        std::string letter;
        unsigned    systemLevel;
    };
    for (const Case& c : {Case{ParameterLogging::LogLevelError, "[ERROR]", "E", 1},
                          Case{ParameterLogging::LogLevelWarning, "[WARNING]", "W", 2},
                          Case{ParameterLogging::LogLevelDebug, "[DEBUG]", "D", 0}, Case{9, "[DEBUG]", "D", 0}})
    {
        LogCapture capture;
        ParameterLogging::Write(nullptr, static_cast<ParameterLogging::ParameterLogLevel>(c.level),
                                "/src/store/parameterfile.cpp", 42, "%d of %s\n", 7, "seven");
        auto lines = capture.Lines();
        ASSERT_EQ(1u, lines.size());
        EXPECT_EQ(c.prefix + " ParameterParser: parameterfile.cpp:42: 7 of seven\n", lines[0].text);
        EXPECT_EQ(0x1000u, lines[0].group);
        EXPECT_EQ(c.letter, lines[0].levelLetter);
        EXPECT_EQ(c.systemLevel, lines[0].level);
    }
}

// A logger is named by its address, and by its identifier too where it has one.
TEST(ParameterLogging, LoggerIsNamedByAddressAndIdentifier)
{
    LogCapture capture;
    FakeLogger logger;
    ParameterLogging::Write(&logger, ParameterLogging::LogLevelWarning, "a\\b\\mode.cpp", 5, "text\n");
    logger.identifier      = "ZVK Tonemetry Header";
    logger.identifierCalls = 0;
    ParameterLogging::Write(&logger, ParameterLogging::LogLevelError, "set.cpp", 77, "%u modules\n", 3u);
    auto lines = capture.Lines();
    ASSERT_EQ(2u, lines.size());
    EXPECT_EQ("[WARNING] ParameterParser: " + PointerText(&logger) + " mode.cpp:5: text\n", lines[0].text);
    EXPECT_EQ("[ERROR] ParameterParser: " + PointerText(&logger) + " (ZVK Tonemetry Header): set.cpp:77: 3 modules\n",
              lines[1].text);
    EXPECT_EQ(2, logger.identifierCalls); // once to test, once to print
}

TEST(ParameterLogging, DisabledLevelIsDroppedButNullLoggerIsNeverFiltered)
{
    LogCapture capture;
    FakeLogger logger;
    ParameterLogging::Write(&logger, ParameterLogging::LogLevelDebug, "f.cpp", 1, "hidden\n");
    EXPECT_EQ(1, logger.enabledCalls);
    EXPECT_EQ(0, logger.identifierCalls);
    EXPECT_EQ(0u, capture.Lines().size());

    ParameterLogging::Write(nullptr, ParameterLogging::LogLevelDebug, "f.cpp", 1, "shown\n");
    EXPECT_EQ(1u, capture.Count("shown"));

    logger.debugEnabled = true;
    ParameterLogging::Write(&logger, ParameterLogging::LogLevelDebug, "f.cpp", 1, "now shown\n");
    EXPECT_EQ(1u, capture.Count("now shown"));
}

TEST(ParameterLogging, LongTextIsCutAtTheLineBuffer)
{
    LogCapture  capture;
    std::string longText(6000, 'q');
    ParameterLogging::Write(nullptr, ParameterLogging::LogLevelError, "f.cpp", 1, "%s", longText.c_str());
    auto lines = capture.Lines();
    ASSERT_EQ(1u, lines.size());
    EXPECT_EQ("[ERROR] ParameterParser: f.cpp:1: " + std::string(4095, 'q'), lines[0].text);
}

TEST(ParameterLogging, FileNameIsTheLastComponentAfterEitherSeparator)
{
    EXPECT_STREQ("c", ParameterLogging::GetFileName("a/b\\c"));
    EXPECT_STREQ("c", ParameterLogging::GetFileName("a\\b/c"));
    EXPECT_STREQ("noslash", ParameterLogging::GetFileName("noslash"));
    EXPECT_STREQ("", ParameterLogging::GetFileName("dir/"));
    EXPECT_STREQ("FileNameIsNULL", ParameterLogging::GetFileName(nullptr));
}

TEST(ParameterLogging, HelperMacrosCarryTheCallSite)
{
    LogCapture capture;
    PARAMETER_LOG_WARNING(nullptr, "from macro %d\n", 1);
    auto lines = capture.Lines();
    ASSERT_EQ(1u, lines.size());
    EXPECT_EQ("[WARNING] ParameterParser: parameterlogging_test.cpp:" + std::to_string(__LINE__ - 3) +
                  ": from macro 1\n",
              lines[0].text);
}
} // namespace
