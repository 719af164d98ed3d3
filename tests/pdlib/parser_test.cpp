// The sensor's statistic buffer: bit layouts of the three formats, where the records start, the
// window modes with their strides, and the refusals.
#include <array>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

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
    /// that what the parser leaves alone shows. A size of 0 leaves the read unbounded.
    std::unique_ptr<Parsed> Parse(PDLibSensorPDStatsFormat format, StatBuffer& buffer)
    {
        return Parse(format, buffer.Bytes(), 0);
    }

    std::unique_ptr<Parsed> ParseSized(PDLibSensorPDStatsFormat format, std::vector<uint8_t>& bytes)
    {
        return Parse(format, bytes.data(), bytes.size());
    }

    std::unique_ptr<Parsed> Parse(PDLibSensorPDStatsFormat format, uint8_t* pBytes, size_t size)
    {
        pdtest::EngineConfig config;
        config.format                              = format;
        std::unique_ptr<PDLibCreateParams> pParams = pdtest::MakeCreateParams(config, nullptr);
        auto                               pEngine = std::make_unique<pdlib_type1>();
        EXPECT_EQ(KelResultSuccess, pEngine->Initialize(pParams.get()));
        auto pParsed = std::make_unique<Parsed>();
        std::memset(pParsed->windows, 0xA5, sizeof(pParsed->windows));
        pEngine->ParsePd(pBytes, pParsed->windows, &pParsed->horizontal, &pParsed->vertical, size);
        return pParsed;
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

struct RecordCase
{
    PDLibSensorPDStatsFormat format;
    std::array<uint8_t, 5>   bytes;
    uint32_t                 confidence;
    float                    phase;
};

TEST_F(ParserTest, RecordBitLayoutsOfTheThreeFormats)
{
    const RecordCase cases[] = {
        {PDLibSensorPDStatsRaw10Conf8BitPd10Bit, {0x7F, 0x80, 0x00, 0x00, 0x00}, 127, -32.0F},
        {PDLibSensorPDStatsRaw10Conf8BitPd10Bit, {0x10, 0x7F, 0xC0, 0x00, 0x00}, 16, 31.9375F},
        {PDLibSensorPDStatsRaw10Conf8BitPd10Bit, {0x10, 0x7F, 0xFF, 0xFF, 0xFF}, 16, 31.9375F},
        {PDLibSensorPDStatsRaw10Conf11BitPd11Bit, {0xFF, 0xFF, 0xFC, 0x00, 0x00}, 2047, -0.0625F},
        {PDLibSensorPDStatsRaw10Conf11BitPd11Bit, {0x00, 0x10, 0x00, 0x00, 0x00}, 0, -64.0F},
        {PDLibSensorPDStatsRaw10Conf11BitPd11Bit, {0x12, 0xA3, 0x48, 0x00, 0x00}, 149, 13.125F},
        {PDLibSensorPDStatsRaw10Conf11BitPd11Bit, {0xFF, 0xFF, 0xFF, 0xFF, 0xFF}, 2047, -0.0625F},
        {PDLibSensorPDStatsRaw10Conf11BitPd10Bit, {0x00, 0x10, 0x00, 0x00, 0x00}, 0, -32.0F},
        {PDLibSensorPDStatsRaw10Conf11BitPd10Bit, {0xFF, 0xEF, 0xF8, 0x00, 0x00}, 2047, 31.9375F},
        {PDLibSensorPDStatsRaw10Conf11BitPd10Bit, {0xFF, 0xEF, 0xFF, 0xFF, 0xFF}, 2047, 31.9375F},
    };
    for (const RecordCase& record : cases)
    {
        // The record goes to window 5 of mode 2, so the first record's offset counts too.
        StatBuffer buffer(record.format, 0x80);
        std::memcpy(buffer.Bytes() + buffer.RecordStart() + 5 * 5, record.bytes.data(), record.bytes.size());
        std::unique_ptr<Parsed> parsed = Parse(record.format, buffer);
        EXPECT_EQ(8U, parsed->horizontal);
        EXPECT_EQ(1U, parsed->vertical);
        SCOPED_TRACE(testing::Message() << "format " << record.format << ", byte 0 " << int{record.bytes[0]});
        ExpectWindow(*parsed, 5, record.confidence, record.phase);
    }
}

float PhaseOfWindow(uint32_t index)
{
    return static_cast<float>(static_cast<int>(index % 64) - 32) / 16.0F;
}

struct ModeCase
{
    uint8_t  byte1;
    uint32_t horizontal;
    uint32_t vertical;
    size_t (*recordOffset)(uint32_t index);
};

TEST_F(ParserTest, Modes0And1ReadTheirRecordsWithTheirStrides)
{
    const ModeCase modes[] = {
        {0x00, 16, 12, [](uint32_t index) -> size_t { return 5 * index; }},
        // Eight records of each sixteen-wide row, the row being 80 bytes long.
        {0x40, 8, 6, [](uint32_t index) -> size_t { return 80 * (index / 8) + 5 * (index % 8); }},
    };
    for (const ModeCase& mode : modes)
    {
        for (PDLibSensorPDStatsFormat format : AllFormats)
        {
            SCOPED_TRACE(testing::Message() << "format " << format << ", byte 1 " << int{mode.byte1});
            StatBuffer buffer(format, mode.byte1);
            // Records that are not read carry other values, so reading them shows.
            std::memset(buffer.Bytes() + buffer.RecordStart(), 0xEE, 16 * 12 * 5);
            const uint32_t count = mode.horizontal * mode.vertical;
            for (uint32_t index = 0; index < count; ++index)
            {
                buffer.SetRecordAt(buffer.RecordStart() + mode.recordOffset(index), index + 1, PhaseOfWindow(index));
            }
            std::unique_ptr<Parsed> parsed = Parse(format, buffer);
            EXPECT_EQ(mode.horizontal, parsed->horizontal);
            EXPECT_EQ(mode.vertical, parsed->vertical);
            for (uint32_t index = 0; index < count; ++index)
            {
                ExpectWindow(*parsed, index, index + 1, PhaseOfWindow(index));
            }
        }
    }
}

TEST_F(ParserTest, Mode3AndUnsupportedFormatsAreRefusedBeforeAnyWindow)
{
    for (PDLibSensorPDStatsFormat format :
         {PDLibSensorPDStatsCustom, PDLibSensorPDStatsRaw10Conf8BitPd10Bit, PDLibSensorPDStatsRaw10Conf11BitPd11Bit,
          PDLibSensorPDStatsRaw10Conf11BitPd10Bit})
    {
        SCOPED_TRACE(testing::Message() << "format " << format);
        m_log.Clear();
        StatBuffer buffer(format, (PDLibSensorPDStatsCustom == format) ? 0x80 : 0xC0);
        buffer.SetWindow(0, 7, 1.0F);
        std::unique_ptr<Parsed> parsed = Parse(format, buffer);
        EXPECT_EQ(0U, parsed->horizontal);
        EXPECT_EQ(0U, parsed->vertical);
        EXPECT_EQ(0xA5A5A5A5U, parsed->windows[0].df_conf_level);
        std::vector<testsupport::CapturedLine> errors = m_log.Matching("[ERROR]");
        ASSERT_EQ(1U, errors.size());
        EXPECT_EQ((PDLibSensorPDStatsCustom == format) ? "unsupported PD data type" : "bad win_mode: 3",
                  testsupport::LogCapture::MessageOf(errors[0].text));
        EXPECT_EQ(OrvoLogError, errors[0].level);
    }
}

TEST_F(ParserTest, ASizedBufferIsReadUpToTheModesLastRecordAndNoFurther)
{
    // Bytes from the first record to the end of the last: mode 1 keeps the 16-wide rows.
    const std::pair<uint8_t, size_t> modes[] = {{0x00, 960}, {0x40, 440}, {0x80, 40}};
    for (PDLibSensorPDStatsFormat format : AllFormats)
    {
        for (const auto& mode : modes)
        {
            StatBuffer   buffer(format, mode.first);
            const size_t end = buffer.RecordStart() + mode.second;
            SCOPED_TRACE(testing::Message() << "format " << format << ", byte 1 " << int{mode.first} << ", " << end);
            // Heap blocks of the exact size: a read past them is caught.
            std::vector<uint8_t> exact(buffer.Bytes(), buffer.Bytes() + end);
            EXPECT_NE(0U, ParseSized(format, exact)->horizontal);

            m_log.Clear();
            std::vector<uint8_t>    shorter(buffer.Bytes(), buffer.Bytes() + end - 1);
            std::unique_ptr<Parsed> parsed = ParseSized(format, shorter);
            EXPECT_EQ(0U, parsed->horizontal);
            EXPECT_EQ(0U, parsed->vertical);
            EXPECT_EQ(0xA5A5A5A5U, parsed->windows[0].df_conf_level);
            std::vector<testsupport::CapturedLine> errors = m_log.Matching("[ERROR]");
            ASSERT_EQ(1U, errors.size());
            EXPECT_EQ("PD buffer too small: " + std::to_string(end - 1) + " bytes, win_mode " +
                          std::to_string(mode.first >> 6) + " needs " + std::to_string(end),
                      testsupport::LogCapture::MessageOf(errors[0].text));
        }
    }
    // One byte cannot even hold the mode; a format-2 buffer of 50 bytes holds mode 2, not mode 0.
    m_log.Clear();
    std::vector<uint8_t> oneByte(1, 0);
    EXPECT_EQ(0U, ParseSized(PDLibSensorPDStatsRaw10Conf11BitPd11Bit, oneByte)->horizontal);
    EXPECT_EQ(1U, m_log.Count("PD buffer too small: 1 bytes, the header needs 2"));
    std::vector<uint8_t> fifty(50, 0);
    EXPECT_EQ(0U, ParseSized(PDLibSensorPDStatsRaw10Conf11BitPd11Bit, fifty)->horizontal);
    fifty[1] = 0x80;
    EXPECT_EQ(8U, ParseSized(PDLibSensorPDStatsRaw10Conf11BitPd11Bit, fifty)->horizontal);
}

TEST_F(ParserTest, OnlyBits7And6OfByte1SelectTheMode)
{
    const std::pair<uint8_t, uint32_t> modes[] = {{0x3F, 192}, {0x7F, 48}, {0xBF, 8}, {0xFF, 0}};
    for (const auto& mode : modes)
    {
        StatBuffer              buffer(PDLibSensorPDStatsRaw10Conf8BitPd10Bit, mode.first);
        std::unique_ptr<Parsed> parsed = Parse(PDLibSensorPDStatsRaw10Conf8BitPd10Bit, buffer);
        EXPECT_EQ(mode.second, parsed->horizontal * parsed->vertical) << "byte 1 " << int{mode.first};
    }
}

TEST_F(ParserTest, VerboseLinesTellFlagModeAndEachWindow)
{
    StatBuffer buffer(PDLibSensorPDStatsRaw10Conf8BitPd10Bit, 0x80);
    buffer.Bytes()[0] = 0xA5;
    buffer.SetWindow(0, 127, -32.0F);
    Parse(PDLibSensorPDStatsRaw10Conf8BitPd10Bit, buffer);
    std::vector<testsupport::CapturedLine> header = m_log.Matching("PDAF parsing PD stats");
    ASSERT_EQ(1U, header.size());
    EXPECT_EQ("PDAF parsing PD stats: win_flag: 165, area_mode: 2", testsupport::LogCapture::MessageOf(header[0].text));
    EXPECT_EQ(OrvoLogVerbose, header[0].level);
    EXPECT_EQ(8U, m_log.Count("PDAF: window "));
    EXPECT_EQ(1U, m_log.Count("() PDAF: window 0, conf. level:127, phase diff: -32.000000"));
}
} // namespace
