// The per-camera engine: values prepared by Initialize, and the frame path of Process with its
// single-precision steps, limits and what it leaves alone.
#include <cstring>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "logcapture.h"
#include "pdlib_type1.h"
#include "pdtestsetup.h"

namespace
{
using pdtest::EngineConfig;
using pdtest::StatBuffer;

constexpr uint8_t Mode2 = 0x80; // eight windows in a row

// Float just below 1/16: added to a phase in single precision it rounds up to the next
// sixteenth, in double precision it does not.
constexpr float JustBelowOneSixteenth = 0x1.fffffep-5F;

class EngineTest : public testing::Test
{
protected:
    KelResult Start(const EngineConfig& config, PDAFDCCCalibrationData* pCalibration)
    {
        m_pParams = pdtest::MakeCreateParams(config, pCalibration);
        return m_pEngine->Initialize(m_pParams.get());
    }

    KelResult StartFlat(const EngineConfig& config, float offset)
    {
        m_calibration = pdtest::FlatCalibration(1.0F / 1024.0F, offset);
        return Start(config, &m_calibration);
    }

    /// A frame over m_buffer; the default AF window is the current image's top-left quarter.
    KelResult Frame(PDLibWindowInfo window = {0.0F, 0.0F, 0.5F, 0.5F}, float gain = 1.0F)
    {
        m_inputs = pdtest::MakeInputs(m_buffer, window, gain);
        return m_pEngine->Process(&m_inputs, m_pOutputs.get());
    }

    const PDLibDefocusInfo& Window(uint32_t index) const { return m_pOutputs->libOutput.defocus[index]; }

    void ExpectZeroed(uint32_t index) const
    {
        EXPECT_EQ(0, Window(index).defocus) << "window " << index;
        EXPECT_EQ(0U, Window(index).confidence);
        EXPECT_EQ(0.0F, Window(index).phaseDiff);
    }

    std::set<std::string> Messages() const
    {
        std::set<std::string> messages;
        for (const testsupport::CapturedLine& line : m_log.Lines())
        {
            messages.insert(testsupport::LogCapture::MessageOf(line.text));
        }
        return messages;
    }

    testsupport::LogCapture            m_log;
    std::unique_ptr<pdlib_type1>       m_pEngine  = std::make_unique<pdlib_type1>();
    std::unique_ptr<PDLibOutputs>      m_pOutputs = pdtest::MakePatternedOutputs();
    std::unique_ptr<PDLibCreateParams> m_pParams;
    PDAFDCCCalibrationData             m_calibration = {};
    PDLibInputs                        m_inputs      = {};
    StatBuffer                         m_buffer{PDLibSensorPDStatsRaw10Conf11BitPd11Bit, Mode2};
};

TEST_F(EngineTest, InitializeLogsThePreparedValues)
{
    EngineConfig config;
    config.geometry        = {65536 + 1000, 803, 900, 700, 12, 34}; // full width cut to 16 bits
    config.threshold       = 300;
    m_calibration          = pdtest::FlatCalibration(0.0F, 0.0F);
    const float slopes[4]  = {0.3F, -0.3F, -1.00048828125F, 2.5F}; // x 1024: 307.2, -307.2, -1024.5, 2560
    const float offsets[4] = {12.9F, -12.9F, 0.99F, -0.99F};
    std::memcpy(m_calibration.slopeData, slopes, sizeof(slopes));
    std::memcpy(m_calibration.offsetData, offsets, sizeof(offsets));
    ASSERT_EQ(KelResultSuccess, Start(config, &m_calibration));

    const std::set<std::string> messages = Messages();
    for (const char* expected :
         {"Current Image Size: (900, 700)", "Resolution Offset:(12, 34)", "Full Image Size: (1000, 803)",
          "KnotNumSlopeOffset:(2, 2)", "AdjCoeffSlope: 2304", "DensityOfPhasePix: 2304", "Defocus Bit Shift: 0",
          "Defocus Confidence Threshold: 300", "Sensor PD Stats Format: 2", "    p_XAddressKnotSlopeOffset[1]: 1000",
          "    p_YAddressKnotSlopeOffset[1]: 1000", "     slopeData[ 0]: 307, offsetData[ 0]: 12",
          "     slopeData[ 1]: -307, offsetData[ 1]: -12", "     slopeData[ 2]: -1024, offsetData[ 2]: 0",
          "     slopeData[ 3]: 2560, offsetData[ 3]: 0", "XKnotNumDefocusOKNG:8, YKnotNumDefocusOKNG: 6",
          // i x 1000 / 7 and j x 803 / 5, rounded down
          "     XAddressKnotDefocusOKNG[1]: 142", "     XAddressKnotDefocusOKNG[3]: 428",
          "     XAddressKnotDefocusOKNG[6]: 857", "     XAddressKnotDefocusOKNG[7]: 1000",
          "     YAddressKnotDefocusOKNG[2]: 321", "     YAddressKnotDefocusOKNG[3]: 481",
          "     YAddressKnotDefocusOKNG[5]: 803", "DefocusOKNGThrLine[0].p_AnalogGain[2]:5",
          "DefocusOKNGThrLine[47].p_AnalogGain[3]:8", "DefocusOKNGThrLine[47].p_Confidence[3]:300"})
    {
        EXPECT_EQ(1U, messages.count(expected)) << expected;
    }
    EXPECT_EQ(192U, m_log.Count("].p_Confidence["));
}

TEST_F(EngineTest, PhasePlusCorrectionIsRoundedInSinglePrecision)
{
    EngineConfig config;
    config.correction = JustBelowOneSixteenth;
    ASSERT_EQ(KelResultSuccess, StartFlat(config, 0.0F));
    m_buffer.SetWindow(0, 2047, 1.0F);
    m_buffer.SetWindow(1, 2047, 0.5F);
    ASSERT_EQ(KelResultSuccess, Frame());
    EXPECT_EQ(17, Window(0).defocus); // in double: 16
    EXPECT_EQ(9, Window(1).defocus);  // in double: 8
    EXPECT_EQ(1.0625F, Window(0).phaseDiff);

    config.correction = -JustBelowOneSixteenth;
    ASSERT_EQ(KelResultSuccess, StartFlat(config, 0.0F));
    m_buffer.SetWindow(0, 2047, -1.0F);
    ASSERT_EQ(KelResultSuccess, Frame());
    EXPECT_EQ(-17, Window(0).defocus); // in double: -16

    config.correction = 0.03F; // -0.97 pixel is -15.52 sixteenths: toward zero
    ASSERT_EQ(KelResultSuccess, StartFlat(config, 0.0F));
    ASSERT_EQ(KelResultSuccess, Frame());
    EXPECT_EQ(-15, Window(0).defocus);
}

TEST_F(EngineTest, WindowAddressesAreRoundedInSinglePrecisionAndSharedByAllWindows)
{
    m_calibration = pdtest::RampCalibration();
    EngineConfig config; // current 1000 x 1000, crop at (100, 50)
    ASSERT_EQ(KelResultSuccess, Start(config, &m_calibration));
    // Start (110, 68) in float, (109, 67) in double; end (600, 550): centre (355, 309).
    ASSERT_EQ(KelResultSuccess, Frame({0.01F, 0.018F, 0.5F, 0.5F}));
    for (uint32_t index = 0; index < 8; ++index)
    {
        EXPECT_EQ(355 + 1000 * 309, Window(index).defocus) << "window " << index;
    }
}

TEST_F(EngineTest, NegativeAddressesClampToZero)
{
    m_calibration = pdtest::RampCalibration();
    EngineConfig config;
    config.geometry.cropX = -300;
    config.geometry.cropY = 0;
    ASSERT_EQ(KelResultSuccess, Start(config, &m_calibration));
    // x from -200 (0) to 200, y from -200 (0) to 400: centre (100, 200).
    ASSERT_EQ(KelResultSuccess, Frame({0.1F, -0.2F, 0.5F, 0.4F}));
    EXPECT_EQ(100 + 1000 * 200, Window(0).defocus);
}

TEST_F(EngineTest, GainIsTruncatedAndNegativeGainIsZero)
{
    EngineConfig config; // threshold 1024 at every gain up to 0x7FFFFFFF
    ASSERT_EQ(KelResultSuccess, StartFlat(config, 0.0F));
    m_buffer.SetWindow(0, 100, 0.0F);
    ASSERT_EQ(KelResultSuccess, Frame({0.0F, 0.0F, 0.5F, 0.5F}, -3.0F));
    EXPECT_EQ(100U, Window(0).confidence);
    m_log.Clear();
    ASSERT_EQ(KelResultSuccess, Frame({0.0F, 0.0F, 0.5F, 0.5F}, 3.9F));
    EXPECT_EQ(1U, Messages().count("imageAnalogGain:3"));
    // A gain above 0x7FFFFFFF makes every threshold line refuse: threshold 0, the window passes.
    ASSERT_EQ(KelResultSuccess, Frame({0.0F, 0.0F, 0.5F, 0.5F}, 3.0e9F));
    EXPECT_EQ(1023U, Window(0).confidence);
}

TEST_F(EngineTest, ConfidenceIsLimitedTo1023AndAFailingWindowKeepsItsLevel)
{
    EngineConfig config; // threshold 1024: the level is the sensor's confidence
    ASSERT_EQ(KelResultSuccess, StartFlat(config, 7.0F));
    const uint32_t confidences[4] = {100, 1023, 1024, 2047};
    for (uint32_t index = 0; index < 4; ++index)
    {
        m_buffer.SetWindow(index, confidences[index], 0.5F);
    }
    ASSERT_EQ(KelResultSuccess, Frame());
    EXPECT_EQ(100U, Window(0).confidence);
    EXPECT_EQ(15, Window(0).defocus); // a failing window still delivers its defocus
    EXPECT_EQ(1023U, Window(1).confidence);
    EXPECT_EQ(1023U, Window(2).confidence);
    EXPECT_EQ(1023U, Window(3).confidence);
}

TEST_F(EngineTest, DefocusShiftIsArithmetic)
{
    EngineConfig config;
    config.bitShift = 2;
    ASSERT_EQ(KelResultSuccess, StartFlat(config, 0.0F));
    m_buffer.SetWindow(0, 2047, -0.0625F); // -1
    m_buffer.SetWindow(1, 2047, -1.0625F); // -17
    m_buffer.SetWindow(2, 2047, 1.0625F);  // 17
    ASSERT_EQ(KelResultSuccess, Frame());
    EXPECT_EQ(-1, Window(0).defocus);
    EXPECT_EQ(-5, Window(1).defocus);
    EXPECT_EQ(4, Window(2).defocus);

    config.bitShift = 31;
    ASSERT_EQ(KelResultSuccess, StartFlat(config, 0.0F));
    ASSERT_EQ(KelResultSuccess, Frame());
    EXPECT_EQ(-1, Window(0).defocus);
    EXPECT_EQ(0, Window(2).defocus);
}

TEST_F(EngineTest, WritesOnlyTheCountsAndTheThreeFieldsOfEachWindow)
{
    EngineConfig config;
    ASSERT_EQ(KelResultSuccess, StartFlat(config, 0.0F));
    ASSERT_EQ(KelResultSuccess, Frame());

    const std::unique_ptr<PDLibOutputs> pPristine = pdtest::MakePatternedOutputs();
    const PDLibOutputData&              before    = pPristine->libOutput;
    const PDLibOutputData&              after     = m_pOutputs->libOutput;
    EXPECT_EQ(8U, after.horizontalWindowCount);
    EXPECT_EQ(1U, after.verticalWindowCount);
    for (uint32_t index = 0; index < 8; ++index)
    {
        EXPECT_EQ(0, std::memcmp(&before.defocus[index].defocusRange, &after.defocus[index].defocusRange,
                                 sizeof(PDLibRangeInfo)));
    }
    EXPECT_EQ(0,
              std::memcmp(&before.defocus[8], &after.defocus[8], sizeof(PDLibDefocusInfo) * (PDLibMaxWindowCount - 8)));
    EXPECT_EQ(before.isPeripheralValid, after.isPeripheralValid);
    EXPECT_EQ(0, std::memcmp(before.resultPeripheral, after.resultPeripheral, sizeof(before.resultPeripheral)));
    EXPECT_EQ(before.processingResult, after.processingResult);
    EXPECT_EQ(before.windowNumber, after.windowNumber);
    EXPECT_EQ(0, std::memcmp(&before.depthMapInfo, &after.depthMapInfo, sizeof(PDLibDepthMapInfo)));
}

TEST_F(EngineTest, WithoutCalibrationEveryWindowIsZeroed)
{
    EngineConfig config;
    ASSERT_EQ(KelResultSuccess, Start(config, nullptr));
    m_buffer.SetWindow(0, 2047, 3.0F);
    ASSERT_EQ(KelResultSuccess, Frame());
    EXPECT_EQ(8U, m_pOutputs->libOutput.horizontalWindowCount);
    EXPECT_EQ(1U, m_pOutputs->libOutput.verticalWindowCount);
    for (uint32_t index = 0; index < 8; ++index)
    {
        ExpectZeroed(index);
    }
    EXPECT_EQ(1U, m_log.Count("() 0: PDAF_LIB_ERROR: rc = -44, DefocusConfidence = -1"));
}

TEST_F(EngineTest, NullArgumentsChangeNothingAndNullCalibrationKeepsTheGrid)
{
    EngineConfig config;
    ASSERT_EQ(KelResultSuccess, StartFlat(config, 7.0F));
    EXPECT_EQ(KelResultEInvalidArg, m_pEngine->Initialize(nullptr));
    EXPECT_EQ(1U, m_log.Count("[ERROR]"));
    EXPECT_EQ(1U, m_log.Count("() Invalid the pCreateParams parameters"));

    m_inputs = pdtest::MakeInputs(m_buffer, {0.0F, 0.0F, 0.5F, 0.5F}, 1.0F);
    EXPECT_EQ(KelResultEInvalidArg, m_pEngine->Process(nullptr, m_pOutputs.get()));
    EXPECT_EQ(KelResultEInvalidArg, m_pEngine->Process(&m_inputs, nullptr));
    EXPECT_EQ(2U, m_log.Count("() ERROR: NULL pointer for input"));

    ASSERT_EQ(KelResultSuccess, Start(config, nullptr));
    m_buffer.SetWindow(0, 2047, 1.0F);
    ASSERT_EQ(KelResultSuccess, Frame());
    EXPECT_EQ(23, Window(0).defocus);
}

TEST_F(EngineTest, UnknownFormatOrNoInitializeGivesZeroWindows)
{
    EXPECT_EQ(KelResultSuccess, Frame()); // before Initialize: format 0
    EngineConfig config;
    config.format = PDLibSensorPDStatsCustom;
    ASSERT_EQ(KelResultSuccess, StartFlat(config, 0.0F));
    EXPECT_EQ(KelResultSuccess, Frame());
    // A format number beyond the known ones, as a C host may write it, is refused like format 0.
    const INT32 hostFormat = 4;
    std::memcpy(&m_pParams->initParam.sensorPDStatsFormat, &hostFormat, sizeof(hostFormat));
    ASSERT_EQ(KelResultSuccess, m_pEngine->Initialize(m_pParams.get()));
    EXPECT_EQ(KelResultSuccess, Frame());

    EXPECT_EQ(3U, m_log.Count("() unsupported PD data type"));
    EXPECT_EQ(0U, m_pOutputs->libOutput.horizontalWindowCount);
    EXPECT_EQ(0U, m_pOutputs->libOutput.verticalWindowCount);
    const std::unique_ptr<PDLibOutputs> pPristine = pdtest::MakePatternedOutputs();
    EXPECT_EQ(0, std::memcmp(pPristine->libOutput.defocus, m_pOutputs->libOutput.defocus,
                             sizeof(pPristine->libOutput.defocus)));
}

TEST_F(EngineTest, TheHostsBufferSizeBoundsTheFrame)
{
    ASSERT_EQ(KelResultSuccess, StartFlat(EngineConfig(), 0.0F));
    // A format-2 buffer of 50 bytes that says mode 0 (192 windows) in a block of its own size.
    std::vector<uint8_t> bytes(m_buffer.Bytes(), m_buffer.Bytes() + 50);
    bytes[1]                           = 0x00;
    m_inputs                           = pdtest::MakeInputs(m_buffer, {0.0F, 0.0F, 0.5F, 0.5F}, 1.0F);
    m_inputs.processParam.pPDBuffer    = reinterpret_cast<UINT16*>(bytes.data());
    m_inputs.processParam.PDBufferSize = bytes.size();
    EXPECT_EQ(KelResultSuccess, m_pEngine->Process(&m_inputs, m_pOutputs.get()));
    EXPECT_EQ(0U, m_pOutputs->libOutput.horizontalWindowCount * m_pOutputs->libOutput.verticalWindowCount);
    EXPECT_EQ(1U, m_log.Count("() PD buffer too small: 50 bytes, win_mode 0 needs 970"));

    // Mode 2 fits: its eight windows are computed.
    bytes[1] = Mode2;
    EXPECT_EQ(KelResultSuccess, m_pEngine->Process(&m_inputs, m_pOutputs.get()));
    EXPECT_EQ(8U, m_pOutputs->libOutput.horizontalWindowCount);
}

TEST_F(EngineTest, ThresholdOfZeroOrBelowPassesEveryWindow)
{
    for (INT32 threshold : {0, -5})
    {
        EngineConfig config;
        config.threshold = threshold;
        ASSERT_EQ(KelResultSuccess, StartFlat(config, 0.0F));
        ASSERT_EQ(KelResultSuccess, Frame());
        EXPECT_EQ(1023U, Window(0).confidence) << "threshold " << threshold;
    }
}

TEST_F(EngineTest, WindowEndingOnTheFullWidthIsRefused)
{
    EngineConfig config;
    config.geometry = {1000, 1000, 1000, 1000, 0, 0};
    ASSERT_EQ(KelResultSuccess, StartFlat(config, 7.0F));
    m_buffer.SetWindow(0, 2047, 1.0F);
    ASSERT_EQ(KelResultSuccess, Frame({0.0F, 0.0F, 1.0F, 0.5F}));
    ExpectZeroed(0);
    EXPECT_EQ(1U, m_log.Count("() 0: PDAF_LIB_ERROR: rc = -42, DefocusConfidence = -1"));
    EXPECT_EQ(8U, m_log.Count("() (0.000000, 0.000000), (1.000000, 0.500000)"));
}
} // namespace
