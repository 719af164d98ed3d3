// The sensor's statistic buffer: bit layouts of the three formats, where the records start, the
// window modes with their strides, and the refusals.
#include <array>
#include <cstring>
#include <memory>

#include <gtest/gtest.h>

#include "logcapture.h"
#include "pdlib_type1.h"
#include "pdtestsetup.h"

namespace
{
using pdtest::StatBuffer;

constexpr PDLibSensorPDStatsFormat AllFormats[] = {PDLibSensorPDStatsRaw10Conf8BitPd10Bit,
                                                   PDLibSensorPDStatsRaw10Conf11BitPd11Bit,
                                                   PDLibSensorPDStatsRaw10Conf11BitPd10Bit};

struct Parsed
{
    uint32_t           horizontal = 99;
    uint32_t           vertical   = 99;
    pdaf_lib_defocus_t windows[PDMaxWindowSize];
};

class ParserTest : public testing::Test
{
protected:
    /// Parses with an engine initialised for the format; records start out patterned, so
    /// that what the parser leaves alone shows.
    std::unique_ptr<Parsed> Parse(PDLibSensorPDStatsFormat format, StatBuffer& buffer)
    {
        pdtest::EngineConfig config;
        config.format = format;
        std::unique_ptr<PDLibCreateParams> pParams = pdtest::MakeCreateParams(config, nullptr);
        auto pEngine = std::make_unique<pdlib_type1>();
        EXPECT_EQ(KelResultSuccess, pEngine->Initialize(pParams.get()));
        auto pParsed = std::make_unique<Parsed>();
        std::memset(pParsed->windows, 0xA5, sizeof(pParsed->windows));
        pEngine->ParsePd(buffer.Bytes(), pParsed->windows, &pParsed->horizontal, &pParsed->vertical);
        return pParsed;
    }

    static void PutRecord(StatBuffer& buffer, uint32_t index, std::array<uint8_t, 5> bytes)
    {
        std::memcpy(buffer.Bytes() + buffer.RecordStart() + 5 * index, bytes.data(), bytes.size());
    }

    static void ExpectWindow(const Parsed& parsed, uint32_t index, uint32_t confidence, float phase)
    {
        SCOPED_TRACE(testing::Message() << "window " << index);
        EXPECT_EQ(confidence, parsed.windows[index].df_conf_level);
        EXPECT_EQ(phase, parsed.windows[index].phase_diff);
        EXPECT_EQ(static_cast<int32_t>(0xA5A5A5A5), parsed.windows[index].defocus);
    }

    testsupport::LogCapture m_log;
};

TEST_F(ParserTest, Format1RecordsTakeConfidenceFromByte0AndTenPhaseBits)
{
    StatBuffer buffer(PDLibSensorPDStatsRaw10Conf8BitPd10Bit, 0x80);
    PutRecord(buffer, 0, {0x7F, 0x80, 0x00, 0x00, 0x00});
    PutRecord(buffer, 1, {0x10, 0x7F, 0xC0, 0x00, 0x00});
    PutRecord(buffer, 2, {0x10, 0x7F, 0xFF, 0xFF, 0xFF}); // bits 5..0 of byte 2, bytes 3 and 4 unread
    std::unique_ptr<Parsed> parsed = Parse(PDLibSensorPDStatsRaw10Conf8BitPd10Bit, buffer);
    EXPECT_EQ(8U, parsed->horizontal);
    EXPECT_EQ(1U, parsed->vertical);
    ExpectWindow(*parsed, 0, 127, -32.0F);
    ExpectWindow(*parsed, 1, 16, 31.9375F);
    ExpectWindow(*parsed, 2, 16, 31.9375F);
}

TEST_F(ParserTest, Format2RecordsCarryElevenBitConfidenceAndPhase)
{
    StatBuffer buffer(PDLibSensorPDStatsRaw10Conf11BitPd11Bit, 0x80);
    PutRecord(buffer, 0, {0xFF, 0xFF, 0xFC, 0x00, 0x00});
    PutRecord(buffer, 1, {0x00, 0x10, 0x00, 0x00, 0x00});
    PutRecord(buffer, 2, {0x12, 0xA3, 0x48, 0x00, 0x00});
    PutRecord(buffer, 3, {0xFF, 0xFF, 0xFF, 0xFF, 0xFF}); // bits 1..0 of byte 2 unread
    std::unique_ptr<Parsed> parsed = Parse(PDLibSensorPDStatsRaw10Conf11BitPd11Bit, buffer);
    ExpectWindow(*parsed, 0, 2047, -0.0625F);
    ExpectWindow(*parsed, 1, 0, -64.0F);
    ExpectWindow(*parsed, 2, 149, 13.125F);
    ExpectWindow(*parsed, 3, 2047, -0.0625F);
}

TEST_F(ParserTest, Format3RecordsCarryElevenBitConfidenceAndTenBitPhase)
{
    StatBuffer buffer(PDLibSensorPDStatsRaw10Conf11BitPd10Bit, 0x80);
    PutRecord(buffer, 0, {0x00, 0x10, 0x00, 0x00, 0x00});
    PutRecord(buffer, 1, {0xFF, 0xEF, 0xF8, 0x00, 0x00});
    PutRecord(buffer, 2, {0xFF, 0xEF, 0xFF, 0xFF, 0xFF}); // bits 2..0 of byte 2 unread
    std::unique_ptr<Parsed> parsed = Parse(PDLibSensorPDStatsRaw10Conf11BitPd10Bit, buffer);
    ExpectWindow(*parsed, 0, 0, -32.0F);
    ExpectWindow(*parsed, 1, 2047, 31.9375F);
    ExpectWindow(*parsed, 2, 2047, 31.9375F);
}

float PhaseOfWindow(uint32_t index)
{
    return static_cast<float>(static_cast<int>(index % 64) - 32) / 16.0F;
}

TEST_F(ParserTest, Mode0Reads192ContiguousRecords)
{
    for (PDLibSensorPDStatsFormat format : AllFormats)
    {
        SCOPED_TRACE(testing::Message() << "format " << format);
        StatBuffer buffer(format, 0x00);
        for (uint32_t index = 0; index < 192; ++index)
        {
            buffer.SetWindow(index, index, PhaseOfWindow(index));
        }
        std::unique_ptr<Parsed> parsed = Parse(format, buffer);
        EXPECT_EQ(16U, parsed->horizontal);
        EXPECT_EQ(12U, parsed->vertical);
        for (uint32_t index = 0; index < 192; ++index)
        {
            ExpectWindow(*parsed, index, index, PhaseOfWindow(index));
        }
    }
}

TEST_F(ParserTest, Mode1ReadsEightRecordsOfEachSixteenWideRow)
{
    for (PDLibSensorPDStatsFormat format : AllFormats)
    {
        SCOPED_TRACE(testing::Message() << "format " << format);
        StatBuffer buffer(format, 0x40);
        // The unused columns carry other values, so reading them shows.
        std::memset(buffer.Bytes() + buffer.RecordStart(), 0xEE, 16 * 12 * 5);
        for (uint32_t index = 0; index < 48; ++index)
        {
            const size_t offset = buffer.RecordStart() + 80 * (index / 8) + 5 * (index % 8);
            buffer.SetRecordAt(offset, index + 1, PhaseOfWindow(index));
        }
        std::unique_ptr<Parsed> parsed = Parse(format, buffer);
        EXPECT_EQ(8U, parsed->horizontal);
        EXPECT_EQ(6U, parsed->vertical);
        for (uint32_t index = 0; index < 48; ++index)
        {
            ExpectWindow(*parsed, index, index + 1, PhaseOfWindow(index));
        }
    }
}

TEST_F(ParserTest, Mode3IsRefusedInEveryFormat)
{
    for (PDLibSensorPDStatsFormat format : AllFormats)
    {
        SCOPED_TRACE(testing::Message() << "format " << format);
        m_log.Clear();
        StatBuffer buffer(format, 0xC0);
        buffer.SetWindow(0, 7, 1.0F);
        std::unique_ptr<Parsed> parsed = Parse(format, buffer);
        EXPECT_EQ(0U, parsed->horizontal);
        EXPECT_EQ(0U, parsed->vertical);
        EXPECT_EQ(0xA5A5A5A5U, parsed->windows[0].df_conf_level);
        std::vector<testsupport::CapturedLine> lines = m_log.Matching("bad win_mode");
        ASSERT_EQ(1U, lines.size());
        EXPECT_EQ("bad win_mode: 3", testsupport::LogCapture::MessageOf(lines[0].text));
        EXPECT_EQ(OrvoLogError, lines[0].level);
    }
}

TEST_F(ParserTest, UnsupportedFormatIsRefused)
{
    StatBuffer buffer(PDLibSensorPDStatsRaw10Conf11BitPd11Bit, 0x80);
    std::unique_ptr<Parsed> parsed = Parse(PDLibSensorPDStatsCustom, buffer);
    EXPECT_EQ(0U, parsed->horizontal);
    EXPECT_EQ(0U, parsed->vertical);
    std::vector<testsupport::CapturedLine> lines = m_log.Matching("unsupported PD data type");
    ASSERT_EQ(1U, lines.size());
    EXPECT_EQ("unsupported PD data type", testsupport::LogCapture::MessageOf(lines[0].text));
    EXPECT_EQ(OrvoLogError, lines[0].level);
}

TEST_F(ParserTest, OnlyBits7And6OfByte1SelectTheMode)
{
    const std::pair<uint8_t, uint32_t> modes[] = {{0x3F, 192}, {0x7F, 48}, {0xBF, 8}, {0xFF, 0}};
    for (const auto& mode : modes)
    {
        StatBuffer buffer(PDLibSensorPDStatsRaw10Conf8BitPd10Bit, mode.first);
        std::unique_ptr<Parsed> parsed = Parse(PDLibSensorPDStatsRaw10Conf8BitPd10Bit, buffer);
        EXPECT_EQ(mode.second, parsed->horizontal * parsed->vertical) << "byte 1 " << int{mode.first};
    }
}

TEST_F(ParserTest, CountsMayBeLeftUnasked)
{
    pdtest::EngineConfig config;
    std::unique_ptr<PDLibCreateParams> pParams = pdtest::MakeCreateParams(config, nullptr);
    auto pEngine = std::make_unique<pdlib_type1>();
    pEngine->Initialize(pParams.get());
    StatBuffer buffer(config.format, 0x80);
    buffer.SetWindow(7, 300, -2.5F);
    pdaf_lib_defocus_t windows[PDMaxWindowSize] = {};
    pEngine->ParsePd(buffer.Bytes(), windows, nullptr, nullptr);
    EXPECT_EQ(300U, windows[7].df_conf_level);
    EXPECT_EQ(-2.5F, windows[7].phase_diff);
}

TEST_F(ParserTest, VerboseLinesTellFlagModeAndEachWindow)
{
    StatBuffer buffer(PDLibSensorPDStatsRaw10Conf8BitPd10Bit, 0x80);
    buffer.Bytes()[0] = 0xA5;
    PutRecord(buffer, 0, {0x7F, 0x80, 0x00, 0x00, 0x00});
    Parse(PDLibSensorPDStatsRaw10Conf8BitPd10Bit, buffer);
    std::vector<testsupport::CapturedLine> header = m_log.Matching("PDAF parsing PD stats");
    ASSERT_EQ(1U, header.size());
    EXPECT_EQ("PDAF parsing PD stats: win_flag: 165, area_mode: 2", testsupport::LogCapture::MessageOf(header[0].text));
    EXPECT_EQ(OrvoLogVerbose, header[0].level);
    EXPECT_EQ(8U, m_log.Count("PDAF: window "));
    EXPECT_EQ(1U, m_log.Count("() PDAF: window 0, conf. level:127, phase diff: -32.000000"));
}
} // namespace
