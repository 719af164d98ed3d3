// Log lines of the loaded library as the common sink receives them: prefix, level mark and
// letter, group and tag, and the gate of info and verbose lines.
#include <unistd.h>

#include <regex>
#include <string>

#include <gtest/gtest.h>

#include "hostlibrary.h"
#include "logcapture.h"
#include "orvoosutils.h"
#include "pdtestsetup.h"

namespace
{
using pdtest::Library;
using testsupport::CapturedLine;

struct ExpectedLine
{
    const char*  mark;
    const char*  letter;
    UINT32       level;
    OrvoLogGroup group;
    const char*  tag;
    const char*  file;
    const char*  function;
    const char*  message;
};

/// Finds the one line with the message and checks
/// "<mark><pid> <tid> <tag> <file>:<line> <function>() <message>" and the arguments of LogSystem.
void ExpectLine(const std::vector<CapturedLine>& lines, const ExpectedLine& expected)
{
    SCOPED_TRACE(expected.message);
    const CapturedLine* pFound = nullptr;
    for (const CapturedLine& line : lines)
    {
        if (testsupport::LogCapture::MessageOf(line.text) == expected.message)
        {
            ASSERT_EQ(nullptr, pFound) << "logged twice";
            pFound = &line;
        }
    }
    ASSERT_NE(nullptr, pFound);
    const std::regex form(
        "^(\\[[ A-Z]{5}\\])(-?\\d+) (-?\\d+) (\\[[A-Z_ ]+\\]) ([^ :]+):(\\d+) ([A-Za-z_0-9]+)\\(\\) ");
    std::smatch parts;
    ASSERT_TRUE(std::regex_search(pFound->text, parts, form)) << pFound->text;
    EXPECT_EQ(expected.mark, parts[1].str());
    EXPECT_EQ(std::to_string(getpid()), parts[2].str());
    EXPECT_EQ(std::to_string(Orvo::OsUtils::GetThreadID()), parts[3].str());
    EXPECT_EQ(expected.tag, parts[4].str());
    EXPECT_EQ(expected.file, parts[5].str());
    EXPECT_LT(0, std::stoi(parts[6].str()));
    EXPECT_EQ(expected.function, parts[7].str());
    EXPECT_EQ(expected.letter, pFound->levelLetter);
    EXPECT_EQ(expected.level, pFound->level);
    EXPECT_EQ(expected.group, pFound->group);
}

class LogTest : public testing::Test
{
protected:
    void SetUp() override { ASSERT_NE(nullptr, Library().entry); }

    void CallEntry()
    {
        KelPDLibraryCallbacks callbacks = {sizeof(callbacks), 0, 0, nullptr, nullptr, nullptr, nullptr};
        Library().entry(&callbacks);
    }

    /// Opens camera 0, runs one frame at gain 2 and closes the camera again.
    void RunFrame()
    {
        PDAFDCCCalibrationData             calibration = pdtest::FlatCalibration(0.0F, 0.0F);
        std::unique_ptr<PDLibCreateParams> pParams     = pdtest::MakeCreateParams(pdtest::EngineConfig(), &calibration);
        pdtest::StatBuffer                 buffer(PDLibSensorPDStatsRaw10Conf11BitPd11Bit, 0x80);
        PDLibInputs                        inputs   = pdtest::MakeInputs(buffer, {0.0F, 0.0F, 0.5F, 0.5F}, 2.0F);
        std::unique_ptr<PDLibOutputs>      pOutputs = pdtest::MakePatternedOutputs();
        KELPDLib*                          pHandle  = nullptr;
        ASSERT_EQ(KelResultSuccess, pdtest::OpenCamera(&pHandle, 1U, 0U));
        pHandle->PDLibInitialize(pHandle, pParams.get());
        pHandle->PDLibProcess(pHandle, &inputs, pOutputs.get());
        pdtest::CloseCamera(*pHandle, 1U, 0U);
    }

    testsupport::LogCapture m_log;
};

TEST_F(LogTest, LinesCarryMarkPidTidTagFileLineFunctionAndLevel)
{
    Library().queryVendorTag(nullptr);
    Library().entry(nullptr);
    RunFrame();
    const ExpectedLine expected[] = {
        {"[ERROR]", "E", OrvoLogError, OrvoLogGroupKel, "[KEL    ]", "orvopdlibinterface.cpp", "PDLibQueryVendorTag",
         "Invalid argument: pQueryVendorTag is NULL"},
        {"[ERROR]", "E", OrvoLogError, OrvoLogGroupAF, "[STATS_AF]", "orvopdlibinterface.cpp", "KelPDLibraryEntry",
         "Invalid argument: pCallBacks is NULL"},
        {"[ INFO]", "I", OrvoLogInfo, OrvoLogGroupAF, "[STATS_AF]", "orvopdlibinterface.cpp", "KelPDLibraryEntry",
         "KelPDLibrarEntry"},
        {"[ VERB]", "V", OrvoLogVerbose, OrvoLogGroupAF, "[STATS_AF]", "pdlib_type1.cpp", "Process",
         "imageAnalogGain:2"},
    };
    const std::vector<CapturedLine> lines = m_log.Lines();
    for (const ExpectedLine& line : expected)
    {
        ExpectLine(lines, line);
    }
}

TEST_F(LogTest, LoadedSettingsWithoutTheGroupStopInfoAndVerboseButNotErrors)
{
    for (OrvoLogGroup mask : {OrvoLogGroup{0}, OrvoLogGroupKel})
    {
        m_log.Clear();
        Orvo::Log::LoadLogSettings(mask);
        CallEntry();
        RunFrame();
        Library().entry(nullptr);
        std::vector<CapturedLine> lines = m_log.Lines();
        ASSERT_EQ(1U, lines.size()) << "mask " << mask;
        EXPECT_EQ(OrvoLogError, lines[0].level);
    }
}

TEST_F(LogTest, TheAutofocusBitLetsItsInfoAndVerboseLinesThrough)
{
    Orvo::Log::LoadLogSettings(OrvoLogGroupAF);
    CallEntry();
    RunFrame();
    EXPECT_EQ(1U, m_log.Count("() KelPDLibrarEntry"));
    EXPECT_EQ(1U, m_log.Count("() imageAnalogGain:2"));
}
} // namespace
