#include "pdlib_type1.h"

#include <cmath>
#include <new>

#include "orvomem.h"
#include "pdliblog.h"

namespace
{
const int64_t  AdjCoeffSlope         = 2304;
const uint64_t DensityOfPhasePix     = 2304;
const uint64_t ThresholdGainAxis[]   = {0, 2, 5, 8};
const float    SlopeFixedPointScale  = 1024.0f;
const float    PhaseUnitsPerPixel    = 16.0f;
const float    PhasePixelsPerRawUnit = 0.0625f;
const uint32_t MaxReportedConfidence = 1023;
const int32_t  MaxDefocusShift       = 63;

// ---- Float conversions. The language leaves out-of-range conversions undefined; these saturate,
// with negative values and NaN at 0 for the unsigned ones.

uint32_t TruncateToUint32(float value)
{
    if (!(value > 0.0f))
    {
        return 0;
    }
    return (value >= 4294967296.0f) ? UINT32_MAX : static_cast<uint32_t>(value);
}

uint64_t TruncateToUint64(float value)
{
    if (!(value > 0.0f))
    {
        return 0;
    }
    return (value >= 18446744073709551616.0f) ? UINT64_MAX : static_cast<uint64_t>(value);
}

int64_t TruncateToInt64(float value)
{
    if (std::isnan(value))
    {
        return 0;
    }
    if (value >= 9223372036854775808.0f)
    {
        return INT64_MAX;
    }
    if (value < -9223372036854775808.0f)
    {
        return INT64_MIN;
    }
    return static_cast<int64_t>(value);
}

/// A window address in full-image pixels from a fraction of the current image, in single
/// precision, cut to its 16-bit field.
uint16_t WindowAddress(float fraction, float imageSize, int32_t offset)
{
    float address = fraction * imageSize;
    address       = address + static_cast<float>(offset);
    return static_cast<uint16_t>(TruncateToUint32(address));
}

// ---- The statistic buffer.

struct WindowModeInfo
{
    uint32_t windows;
    uint32_t horizontal;
    uint32_t vertical;
};

const WindowModeInfo WindowModeTable[] = {
    {192, 16, 12}, // WINDOW_MODE_0
    {48, 8, 6},    // WINDOW_MODE_1
    {8, 8, 1},     // WINDOW_MODE_FLEXIBLE
};
const uint32_t RefusedAreaMode = 3;

const uint32_t RecordSize = 5;
// In the 48-window mode the sensor keeps the 16-wide grid: after each row of 8 records the next
// row starts 16 records on.
const uint32_t SkippedRowStride       = 45;
const uint32_t RowSkippingWindowCount = 48;

int32_t SignExtend(uint32_t raw, uint32_t bits)
{
    const uint32_t signBit = 1u << (bits - 1);
    return static_cast<int32_t>(raw ^ signBit) - static_cast<int32_t>(signBit);
}

struct DecodedRecord
{
    uint32_t confidence;
    int32_t  rawPhase;
};

// Format 1: 8-bit confidence, 10-bit phase.
DecodedRecord DecodeConf8Pd10(const uint8_t* pRecord)
{
    uint32_t raw = (static_cast<uint32_t>(pRecord[1]) << 2) | (pRecord[2] >> 6);
    return {pRecord[0], SignExtend(raw, 10)};
}

// Format 2: 11-bit confidence, 11-bit phase.
DecodedRecord DecodeConf11Pd11(const uint8_t* pRecord)
{
    uint32_t confidence = (static_cast<uint32_t>(pRecord[0]) << 3) | (pRecord[1] >> 5);
    uint32_t raw        = ((pRecord[1] & 0x1Fu) << 6) | (pRecord[2] >> 2);
    return {confidence, SignExtend(raw, 11)};
}

// Format 3: 11-bit confidence, 10-bit phase.
DecodedRecord DecodeConf11Pd10(const uint8_t* pRecord)
{
    uint32_t confidence = (static_cast<uint32_t>(pRecord[0]) << 3) | (pRecord[1] >> 5);
    uint32_t raw        = ((pRecord[1] & 0x1Fu) << 5) | (pRecord[2] >> 3);
    return {confidence, SignExtend(raw, 10)};
}

struct StatsFormatInfo
{
    uint32_t firstRecord;
    DecodedRecord (*decode)(const uint8_t* pRecord);
};

bool LookUpStatsFormat(PDLibSensorPDStatsFormat format, StatsFormatInfo* pInfo)
{
    switch (format)
    {
        case PDLibSensorPDStatsRaw10Conf8BitPd10Bit:
            *pInfo = {5, DecodeConf8Pd10};
            return true;
        case PDLibSensorPDStatsRaw10Conf11BitPd11Bit:
            *pInfo = {10, DecodeConf11Pd11};
            return true;
        case PDLibSensorPDStatsRaw10Conf11BitPd10Bit:
            *pInfo = {10, DecodeConf11Pd10};
            return true;
        default:
            return false;
    }
}

// Where the record after window `index`'s starts.
uint32_t NextRecordOffset(const WindowModeInfo& mode, uint32_t index, uint32_t offset)
{
    // The test is on the count 48, not on the mode number.
    bool endOfSkippedRow = (RowSkippingWindowCount == mode.windows) && (7 == (index & 7));
    return offset + (endOfSkippedRow ? SkippedRowStride : RecordSize);
}

// How many bytes the buffer needs to hold every record of the mode.
uint32_t RecordsEnd(const StatsFormatInfo& format, const WindowModeInfo& mode)
{
    uint32_t offset = format.firstRecord;
    for (uint32_t i = 0; i + 1 < mode.windows; i++)
    {
        offset = NextRecordOffset(mode, i, offset);
    }
    return offset + RecordSize;
}

void ReportCounts(uint32_t* pHorizontalCount, uint32_t* pVerticalCount, uint32_t horizontal, uint32_t vertical)
{
    if (nullptr != pHorizontalCount)
    {
        *pHorizontalCount = horizontal;
    }
    if (nullptr != pVerticalCount)
    {
        *pVerticalCount = vertical;
    }
}
} // namespace

KelResult pdlib_type1::Initialize(const PDLibCreateParams* pCreateParams)
{
    if (nullptr == pCreateParams)
    {
        PD_LOG_ERROR("Invalid the pCreateParams parameters");
        return KelResultEInvalidArg;
    }

    const PDLibInitParam&        init   = pCreateParams->initParam;
    const PDLibSensorNativeInfo& native = init.nativePatternInfo;

    m_inputData.XSizeOfImage       = static_cast<uint16_t>(native.originalImageWidth);
    m_inputData.YSizeOfImage       = static_cast<uint16_t>(native.originalImageHeight);
    m_currentImageWidth            = native.currentImageWidth;
    m_currentImageHeight           = native.currentImageHeight;
    m_xOffset                      = native.cropRegion.x;
    m_yOffset                      = native.cropRegion.y;
    m_defocusBitShift              = static_cast<int32_t>(init.defocusBitShift);
    m_defocusConfidenceThreshold   = init.defocusConfidenceThreshold;
    m_sensorPDStatsFormat          = init.sensorPDStatsFormat;
    m_sensorOrientation            = native.orientation;
    m_inputData.PDOffsetCorrection = native.PDOffsetCorrection;

    PDAFDCCCalibrationData* pCalibration = static_cast<PDAFDCCCalibrationData*>(init.pCalibrationParam);
    if ((nullptr != pCalibration) &&
        ((pCalibration->knotXCount > MaxPDAFKnotX) || (pCalibration->knotYCount > MaxPDAFKnotY)))
    {
        // The grid would be read past the calibration record: keep the earlier grid instead.
        PD_LOG_ERROR("Calibration knots (%d, %d) exceed (%d, %d): calibration ignored", pCalibration->knotXCount,
                     pCalibration->knotYCount, MaxPDAFKnotX, MaxPDAFKnotY);
        pCalibration = nullptr;
    }
    if (nullptr != pCalibration)
    {
        m_inputData.XKnotNumSlopeOffset = pCalibration->knotXCount;
        m_inputData.YKnotNumSlopeOffset = pCalibration->knotYCount;
        const uint32_t nodeCount        = static_cast<uint32_t>(pCalibration->knotXCount) * pCalibration->knotYCount;
        for (uint32_t i = 0; i < nodeCount; i++)
        {
            m_slopeData[i]  = TruncateToInt64(pCalibration->slopeData[i] * SlopeFixedPointScale);
            m_offsetData[i] = TruncateToInt64(pCalibration->offsetData[i]);
        }
        m_inputData.p_SlopeData  = m_slopeData;
        m_inputData.p_OffsetData = m_offsetData;
        // Not copied: the host's calibration record must outlive the instance.
        m_inputData.p_XAddressKnotSlopeOffset = pCalibration->slopeOffsetAddressX;
        m_inputData.p_YAddressKnotSlopeOffset = pCalibration->slopeOffsetAddressY;
    }

    m_inputData.AdjCoeffSlope       = AdjCoeffSlope;
    m_inputData.DensityOfPhasePix   = DensityOfPhasePix;
    m_inputData.XKnotNumDefocusOKNG = ThresholdKnotsX;
    m_inputData.YKnotNumDefocusOKNG = ThresholdKnotsY;

    for (uint32_t k = 0; k < ThresholdPoints; k++)
    {
        m_confidence[k] = static_cast<uint64_t>(static_cast<int64_t>(init.defocusConfidenceThreshold));
        m_analogGain[k] = ThresholdGainAxis[k];
    }
    // Every line of the grid shares the same two axes.
    for (uint32_t n = 0; n < ThresholdKnotsX * ThresholdKnotsY; n++)
    {
        m_defocusOKNGThrLine[n].PointNum     = ThresholdPoints;
        m_defocusOKNGThrLine[n].p_AnalogGain = m_analogGain;
        m_defocusOKNGThrLine[n].p_Confidence = m_confidence;
    }
    m_inputData.p_DefocusOKNGThrLine = m_defocusOKNGThrLine;

    // The threshold grid covers the full image evenly, rounding down.
    const uint32_t width  = m_inputData.XSizeOfImage;
    const uint32_t height = m_inputData.YSizeOfImage;
    for (uint32_t i = 0; i < ThresholdKnotsX; i++)
    {
        m_xAddressKnotDefocusOKNG[i] = static_cast<uint16_t>(i * width / (ThresholdKnotsX - 1));
    }
    for (uint32_t j = 0; j < ThresholdKnotsY; j++)
    {
        m_yAddressKnotDefocusOKNG[j] = static_cast<uint16_t>(j * height / (ThresholdKnotsY - 1));
    }
    m_inputData.p_XAddressKnotDefocusOKNG = m_xAddressKnotDefocusOKNG;
    m_inputData.p_YAddressKnotDefocusOKNG = m_yAddressKnotDefocusOKNG;

    DumpInitializeData();
    return KelResultSuccess;
}

KelResult pdlib_type1::Configure(const PDLibConfigParams*)
{
    return KelResultSuccess;
}

KelResult pdlib_type1::Destroy()
{
    this->~pdlib_type1();
    OrvoFree(this, OrvoMemFlagsDelete, nullptr, 0);
    return KelResultSuccess;
}

void pdlib_type1::DumpInitializeData()
{
    const PdLibInputData_t& data = m_inputData;
    PD_LOG_INFO("Current Image Size: (%d, %d)", m_currentImageWidth, m_currentImageHeight);
    PD_LOG_INFO("Resolution Offset:(%d, %d)", m_xOffset, m_yOffset);
    PD_LOG_INFO("Sensor Orientation:%d", m_sensorOrientation);
    PD_LOG_INFO("Full Image Size: (%d, %d)", data.XSizeOfImage, data.YSizeOfImage);
    PD_LOG_INFO("KnotNumSlopeOffset:(%d, %d)", data.XKnotNumSlopeOffset, data.YKnotNumSlopeOffset);
    PD_LOG_INFO("AdjCoeffSlope: %d", static_cast<int>(data.AdjCoeffSlope));
    PD_LOG_INFO("DensityOfPhasePix: %d", static_cast<int>(data.DensityOfPhasePix));
    PD_LOG_INFO("Defocus Bit Shift: %d", m_defocusBitShift);
    PD_LOG_INFO("Defocus Confidence Threshold: %d", m_defocusConfidenceThreshold);
    PD_LOG_INFO("Sensor PD Stats Format: %d", m_sensorPDStatsFormat);

    for (uint32_t i = 0; i < data.XKnotNumSlopeOffset; i++)
    {
        PD_LOG_INFO("    p_XAddressKnotSlopeOffset[%d]: %d", i, data.p_XAddressKnotSlopeOffset[i]);
    }
    for (uint32_t j = 0; j < data.YKnotNumSlopeOffset; j++)
    {
        PD_LOG_INFO("    p_YAddressKnotSlopeOffset[%d]: %d", j, data.p_YAddressKnotSlopeOffset[j]);
    }
    const uint32_t nodeCount = static_cast<uint32_t>(data.XKnotNumSlopeOffset) * data.YKnotNumSlopeOffset;
    for (uint32_t k = 0; k < nodeCount; k++)
    {
        PD_LOG_INFO("     slopeData[%2d]: %d, offsetData[%2d]: %d", k, static_cast<int>(data.p_SlopeData[k]), k,
                    static_cast<int>(data.p_OffsetData[k]));
    }

    PD_LOG_INFO("XKnotNumDefocusOKNG:%d, YKnotNumDefocusOKNG: %d", data.XKnotNumDefocusOKNG, data.YKnotNumDefocusOKNG);
    for (uint32_t i = 0; i < data.XKnotNumDefocusOKNG; i++)
    {
        PD_LOG_INFO("     XAddressKnotDefocusOKNG[%d]: %d", i, data.p_XAddressKnotDefocusOKNG[i]);
    }
    for (uint32_t j = 0; j < data.YKnotNumDefocusOKNG; j++)
    {
        PD_LOG_INFO("     YAddressKnotDefocusOKNG[%d]: %d", j, data.p_YAddressKnotDefocusOKNG[j]);
    }
    const uint32_t lineCount = static_cast<uint32_t>(data.XKnotNumDefocusOKNG) * data.YKnotNumDefocusOKNG;
    for (uint32_t n = 0; n < lineCount; n++)
    {
        const DefocusOKNGThrLine_t& line = data.p_DefocusOKNGThrLine[n];
        for (uint32_t p = 0; p < line.PointNum; p++)
        {
            PD_LOG_INFO("DefocusOKNGThrLine[%d].p_AnalogGain[%d]:%d", n, p, static_cast<int>(line.p_AnalogGain[p]));
            PD_LOG_INFO("DefocusOKNGThrLine[%d].p_Confidence[%d]:%d", n, p, static_cast<int>(line.p_Confidence[p]));
        }
    }
}

void pdlib_type1::ParsePd(void* pBuffer, pdaf_lib_defocus_t* pDefocus, uint32_t* pHorizontalCount,
                          uint32_t* pVerticalCount, SIZE_T bufferSize)
{
    StatsFormatInfo format;
    if (!LookUpStatsFormat(m_sensorPDStatsFormat, &format))
    {
        PD_LOG_ERROR("unsupported PD data type");
        ReportCounts(pHorizontalCount, pVerticalCount, 0, 0);
        return;
    }
    // Safe variant: a buffer the host sized is never read past its end.
    if ((0 != bufferSize) && (bufferSize < 2))
    {
        PD_LOG_ERROR("PD buffer too small: %zu bytes, the header needs 2", static_cast<size_t>(bufferSize));
        ReportCounts(pHorizontalCount, pVerticalCount, 0, 0);
        return;
    }

    const uint8_t* pBytes   = static_cast<const uint8_t*>(pBuffer);
    const uint32_t winFlag  = pBytes[0];
    const uint32_t areaMode = pBytes[1] >> 6;
    PD_LOG_VERBOSE("PDAF parsing PD stats: win_flag: %d, area_mode: %d", winFlag, areaMode);
    if (RefusedAreaMode == areaMode)
    {
        PD_LOG_ERROR("bad win_mode: %d", areaMode);
        ReportCounts(pHorizontalCount, pVerticalCount, 0, 0);
        return;
    }

    const WindowModeInfo& mode = WindowModeTable[areaMode];
    if ((0 != bufferSize) && (bufferSize < RecordsEnd(format, mode)))
    {
        PD_LOG_ERROR("PD buffer too small: %zu bytes, win_mode %d needs %u", static_cast<size_t>(bufferSize), areaMode,
                     RecordsEnd(format, mode));
        ReportCounts(pHorizontalCount, pVerticalCount, 0, 0);
        return;
    }

    uint32_t cursor = format.firstRecord;
    for (uint32_t i = 0; i < mode.windows; i++)
    {
        DecodedRecord record      = format.decode(pBytes + cursor);
        pDefocus[i].df_conf_level = record.confidence;
        pDefocus[i].phase_diff    = static_cast<float>(record.rawPhase) * PhasePixelsPerRawUnit;
        PD_LOG_VERBOSE("PDAF: window %d, conf. level:%d, phase diff: %f", i, pDefocus[i].df_conf_level,
                       static_cast<double>(pDefocus[i].phase_diff));
        cursor = NextRecordOffset(mode, i, cursor);
    }
    ReportCounts(pHorizontalCount, pVerticalCount, mode.horizontal, mode.vertical);
}

KelResult pdlib_type1::Process(const PDLibInputs* pInput, PDLibOutputs* pOutput)
{
    // The engine's own state is only read during a frame.
    PdLibInputData_t   input                    = m_inputData;
    pdaf_lib_defocus_t windows[PDMaxWindowSize] = {};
    uint32_t           horizontal               = 0;
    uint32_t           vertical                 = 0;

    if ((nullptr == pInput) || (nullptr == pOutput))
    {
        PD_LOG_ERROR("ERROR: NULL pointer for input");
        return KelResultEInvalidArg;
    }

    const PDLibParam& param = pInput->processParam;
    input.ImagerAnalogGain  = TruncateToUint64(param.imageAnalogGain);
    PD_LOG_VERBOSE("imageAnalogGain:%d", static_cast<int>(input.ImagerAnalogGain));

    ParsePd(param.pPDBuffer, windows, &horizontal, &vertical, param.PDBufferSize);

    PDLibOutputData& output      = pOutput->libOutput;
    output.horizontalWindowCount = horizontal;
    output.verticalWindowCount   = vertical;
    // Zero windows is also how a bad mode or format reaches the host.
    const uint32_t windowCount = horizontal * vertical;
    if (0 == windowCount)
    {
        return KelResultSuccess;
    }

    // Every window of the frame is looked up at the same AF window: only phase and confidence
    // differ from window to window.
    const PDLibWindowInfo& afWindow = param.windowConfig.fixedAFWindow;
    const float            width    = static_cast<float>(m_currentImageWidth);
    const float            height   = static_cast<float>(m_currentImageHeight);
    input.XAddressOfWindowStart     = WindowAddress(afWindow.startX, width, m_xOffset);
    input.YAddressOfWindowStart     = WindowAddress(afWindow.startY, height, m_yOffset);
    input.XAddressOfWindowEnd       = WindowAddress(afWindow.endX, width, m_xOffset);
    input.YAddressOfWindowEnd       = WindowAddress(afWindow.endY, height, m_yOffset);

    // A shift beyond the width of the value only keeps its sign.
    const int32_t shift =
        ((m_defocusBitShift < 0) || (m_defocusBitShift > MaxDefocusShift)) ? MaxDefocusShift : m_defocusBitShift;

    for (uint32_t i = 0; i < windowCount; i++)
    {
        const pdaf_lib_defocus_t& window    = windows[i];
        const float               phaseDiff = window.phase_diff + input.PDOffsetCorrection;
        input.PhaseDifference               = TruncateToInt64(phaseDiff * PhaseUnitsPerPixel);
        input.ConfidenceLevel               = window.df_conf_level;
        PD_LOG_VERBOSE("(%f, %f), (%f, %f)", static_cast<double>(afWindow.startX), static_cast<double>(afWindow.startY),
                       static_cast<double>(afWindow.endX), static_cast<double>(afWindow.endY));

        PdLibOutputData_t result;
        long              rc      = PdLibGetDefocus(&input, &result);
        PDLibDefocusInfo& defocus = output.defocus[i];
        if (0 == rc)
        {
            defocus.defocus    = static_cast<INT>(result.Defocus >> shift);
            defocus.confidence = (result.DefocusConfidenceLevel > MaxReportedConfidence)
                                     ? MaxReportedConfidence
                                     : static_cast<UINT>(result.DefocusConfidenceLevel);
            defocus.phaseDiff  = phaseDiff;
            PD_LOG_VERBOSE("PDAF Output Win:%d, defocus:%d, conf level:%d, phase_diff:%f, pd_offset:%f", i,
                           defocus.defocus, defocus.confidence, static_cast<double>(defocus.phaseDiff),
                           static_cast<double>(input.PDOffsetCorrection));
        }
        else
        {
            defocus.defocus    = 0;
            defocus.confidence = 0;
            defocus.phaseDiff  = 0.0f;
            PD_LOG_VERBOSE("%d: PDAF_LIB_ERROR: rc = %d, DefocusConfidence = %d", i, static_cast<int>(rc),
                           result.DefocusConfidence);
        }
    }
    return KelResultSuccess;
}
