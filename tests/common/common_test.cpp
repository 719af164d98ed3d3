// The common utility library: string helpers, allocation, and the log sink and gate.
#include <gtest/gtest.h>

#include <cstdint>
#include <string>

#include "logcapture.h"
#include "orvolog.h"
#include "orvomem.h"
#include "orvoosutils.h"

using Orvo::OsUtils::SNPrintF;
using Orvo::OsUtils::StrLCat;
using Orvo::OsUtils::StrLCpy;
using Orvo::OsUtils::StrNICmp;

TEST(OsUtilsStrings, StrLCpyCutsAndAlwaysTerminates)
{
    char buffer[6] = "xxxxx";
    EXPECT_EQ(9u, StrLCpy(buffer, "123456789", sizeof(buffer)));
    EXPECT_STREQ("12345", buffer);

    EXPECT_EQ(2u, StrLCpy(buffer, "ab", sizeof(buffer)));
    EXPECT_STREQ("ab", buffer);

    char untouched[2] = {'q', 'r'};
    EXPECT_EQ(3u, StrLCpy(untouched, "abc", 0));
    EXPECT_EQ('q', untouched[0]);
}

TEST(OsUtilsStrings, StrLCatAppendsWithinTheBuffer)
{
    char buffer[8] = "abc";
    EXPECT_EQ(6u, StrLCat(buffer, "def", sizeof(buffer)));
    EXPECT_STREQ("abcdef", buffer);
    EXPECT_EQ(9u, StrLCat(buffer, "ghi", sizeof(buffer)));
    EXPECT_STREQ("abcdefg", buffer);

    // No terminator inside the buffer: nothing is appended and nothing is written.
    char full[3] = {'a', 'b', 'c'};
    EXPECT_EQ(5u, StrLCat(full, "de", sizeof(full)));
    EXPECT_EQ('c', full[2]);
}

TEST(OsUtilsStrings, StrNICmpIgnoresCaseUpToTheCount)
{
    EXPECT_EQ(0, StrNICmp("Usecase", "USECASE", 7));
    EXPECT_EQ(0, StrNICmp("abcX", "ABCy", 3));
    EXPECT_LT(StrNICmp("abc", "abd", 3), 0);
    EXPECT_GT(StrNICmp("abcd", "abc", 4), 0);
    EXPECT_EQ(0, StrNICmp("a", "b", 0));
}

TEST(OsUtilsStrings, SNPrintFTerminatesAndReportsTheFullLength)
{
    char buffer[5];
    EXPECT_EQ(7, SNPrintF(buffer, sizeof(buffer), "%d-%s", 12, "abcd"));
    EXPECT_STREQ("12-a", buffer);
}

TEST(OsUtilsIds, ProcessAndThreadIdsArePositive)
{
    EXPECT_GT(Orvo::OsUtils::GetProcessID(), 0);
    EXPECT_GT(Orvo::OsUtils::GetThreadID(), 0);
}

TEST(OrvoMemory, CallocIsZeroedAndAligned)
{
    for (SIZE_T alignment : {0u, 8u, 64u})
    {
        unsigned char* pMemory =
            static_cast<unsigned char*>(OrvoCalloc(100, alignment, OrvoMemFlagsNone, OrvoMemTypeAny, nullptr, 0));
        ASSERT_NE(nullptr, pMemory);
        if (alignment > 0)
        {
            EXPECT_EQ(0u, reinterpret_cast<uintptr_t>(pMemory) % alignment);
        }
        for (int i = 0; i < 100; i++)
        {
            EXPECT_EQ(0, pMemory[i]);
        }
        OrvoFree(pMemory, OrvoMemFlagsNone, nullptr, 0);
    }
    EXPECT_EQ(nullptr, OrvoCalloc(0, 8, OrvoMemFlagsNone, OrvoMemTypeAny, nullptr, 0));
    EXPECT_EQ(nullptr, OrvoCalloc(16, 12, OrvoMemFlagsNone, OrvoMemTypeAny, nullptr, 0));
    OrvoFree(nullptr, OrvoMemFlagsNone, nullptr, 0);
}

TEST(OrvoLog, GetFileNameTakesTheLastComponent)
{
    EXPECT_STREQ("file.cpp", Orvo::Log::GetFileName("/a/b/file.cpp"));
    EXPECT_STREQ("file.cpp", Orvo::Log::GetFileName("file.cpp"));
    EXPECT_STREQ("", Orvo::Log::GetFileName("dir/"));
}

TEST(OrvoLog, LogSystemHandsOneFormattedLineToTheSink)
{
    testsupport::LogCapture capture;
    Orvo::Log::LogSystem(OrvoLogGroupAF, "I", OrvoLogInfo, "value %d of %s", 7, "x");
    std::string longText(3000, 'z');
    Orvo::Log::LogSystem(OrvoLogGroupKel, "E", OrvoLogError, "%s", longText.c_str());

    auto lines = capture.Lines();
    ASSERT_EQ(2u, lines.size());
    EXPECT_EQ("value 7 of x", lines[0].text);
    EXPECT_EQ(OrvoLogGroupAF, lines[0].group);
    EXPECT_EQ("I", lines[0].levelLetter);
    EXPECT_EQ(OrvoLogInfo, lines[0].level);
    // Long lines are written whole, not cut at an internal buffer size.
    EXPECT_EQ(longText, lines[1].text);
}

TEST(OrvoLog, GateOpensPerGroupOnceSettingsAreLoaded)
{
    testsupport::LogCapture capture;
    EXPECT_TRUE(Orvo::Log::IsLogEnabled(OrvoLogGroupAF, OrvoLogVerbose)) << "every line passes before settings";

    Orvo::Log::LoadLogSettings(0);
    EXPECT_EQ(1u, Orvo::g_logInfoUpdated);
    EXPECT_FALSE(Orvo::Log::IsLogEnabled(OrvoLogGroupAF, OrvoLogInfo));

    Orvo::Log::LoadLogSettings(OrvoLogGroupAF);
    EXPECT_TRUE(Orvo::Log::IsLogEnabled(OrvoLogGroupAF, OrvoLogInfo));
    EXPECT_FALSE(Orvo::Log::IsLogEnabled(OrvoLogGroupKel, OrvoLogInfo));

    Orvo::Log::ResetLogSettings();
    EXPECT_EQ(0u, Orvo::g_logInfoUpdated);
    EXPECT_TRUE(Orvo::Log::IsLogEnabled(OrvoLogGroupKel, OrvoLogInfo));
}
