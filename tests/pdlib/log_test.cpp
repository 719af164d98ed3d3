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

/// Checks "<mark><pid> <tid> <tag> <file>:<line> <function>() <message>" in full.
void ExpectLine(const CapturedLine& line, const std::string& mark, const std::string& tag, const std::string& file,
                const std::string& function, const std::string& message)
{
    const std::regex form("^(\\[[ A-Z]{5}\\])(-?\\d+) (-?\\d+) (\\[[A-Z_ ]+\\]) ([^ :]+):(\\d+) ([A-Za-z_0-9]+)\\(\\) (.*)$");
    std::smatch parts;
    ASSERT_TRUE(std::regex_match(line.text, parts, form)) << line.text;
    EXPECT_EQ(mark, parts[1].str());
    EXPECT_EQ(std::to_string(getpid()), parts[2].str());
    EXPECT_EQ(std::to_string(Orvo::OsUtils::GetThreadID()), parts[3].str());
    EXPECT_EQ(tag, parts[4].str());
    EXPECT_EQ(file, parts[5].str());
    EXPECT_LT(0, std::stoi(parts[6].str()));
    EXPECT_EQ(function, parts[7].str());
    EXPECT_EQ(message, parts[8].str());
}

class LogTest : public testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_NE(nullptr, Library().entry);
    }

    void CallEntry()
    {
        KelPDLibraryCallbacks callbacks = {sizeof(callbacks), 0, 0, nullptr, nullptr, nullptr, nullptr};
        Library().entry(&callbacks);
    }

    /// Opens camera 0, runs one frame and closes it again.
    void RunFrame()
    {
        PDAFDCCCalibrationData calibration = pdtest::FlatCalibration(0.0F, 0.0F);
        std::unique_ptr<PDLibCreateParams> pParams = pdtest::MakeCreateParams(pdtest::EngineConfig(), &calibration);
        pdtest::StatBuffer buffer(PDLibSensorPDStatsRaw10Conf11BitPd11Bit, 0x80);
        PDLibInputs inputs = pdtest::MakeInputs(buffer, {0.0F, 0.0F, 0.5F, 0.5F}, 2.0F);
        std::unique_ptr<PDLibOutputs> pOutputs = pdtest::MakePatternedOutputs();
        pdtest::HostCamera camera(0);
        camera.Handle()->PDLibInitialize(camera.Handle(), pParams.get());
        camera.Handle()->PDLibProcess(camera.Handle(), &inputs, pOutputs.get());
    }

    testsupport::LogCapture m_log;
};

TEST_F(LogTest, ErrorLineOfTheFrameworkGroup)
{
    Library().queryVendorTag(nullptr);
    std::vector<CapturedLine> lines = m_log.Lines();
    ASSERT_EQ(1U, lines.size());
    ExpectLine(lines[0], "[ERROR]", "[KEL    ]", "orvopdlibinterface.cpp", "PDLibQueryVendorTag",
               "Invalid argument: pQueryVendorTag is NULL");
    EXPECT_EQ(OrvoLogGroupKel, lines[0].group);
    EXPECT_EQ("E", lines[0].levelLetter);
    EXPECT_EQ(OrvoLogError, lines[0].level);
}

TEST_F(LogTest, ErrorLineOfTheAutofocusGroup)
{
    Library().entry(nullptr);
    std::vector<CapturedLine> lines = m_log.Matching("pCallBacks");
    ASSERT_EQ(1U, lines.size());
    ExpectLine(lines[0], "[ERROR]", "[STATS_AF]", "orvopdlibinterface.cpp", "KelPDLibraryEntry",
               "Invalid argument: pCallBacks is NULL");
    EXPECT_EQ(OrvoLogGroupAF, lines[0].group);
    EXPECT_EQ("E", lines[0].levelLetter);
}

TEST_F(LogTest, InfoLine)
{
    CallEntry();
    std::vector<CapturedLine> lines = m_log.Lines();
    ASSERT_EQ(1U, lines.size());
    ExpectLine(lines[0], "[ INFO]", "[STATS_AF]", "orvopdlibinterface.cpp", "KelPDLibraryEntry", "KelPDLibrarEntry");
    EXPECT_EQ(OrvoLogGroupAF, lines[0].group);
    EXPECT_EQ("I", lines[0].levelLetter);
    EXPECT_EQ(OrvoLogInfo, lines[0].level);
}

TEST_F(LogTest, VerboseLine)
{
    RunFrame();
    std::vector<CapturedLine> lines = m_log.Matching("imageAnalogGain:");
    ASSERT_EQ(1U, lines.size());
    ExpectLine(lines[0], "[ VERB]", "[STATS_AF]", "pdlib_type1.cpp", "Process", "imageAnalogGain:2");
    EXPECT_EQ(OrvoLogGroupAF, lines[0].group);
    EXPECT_EQ("V", lines[0].levelLetter);
    EXPECT_EQ(OrvoLogVerbose, lines[0].level);
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
