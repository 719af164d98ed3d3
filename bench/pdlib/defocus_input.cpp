#include "defocus_input.h"

#include <algorithm>

#include "sample_frame.h"

namespace
{
const int64_t  AdjCoeffSlope     = 2304;
const uint64_t DensityOfPhasePix = 2304;
const uint64_t GainAxis[]        = {0, 2, 5, 8};

uint16_t WindowAddress(float fraction, uint32_t imageSize)
{
    return static_cast<uint16_t>(fraction * static_cast<float>(imageSize));
}
} // namespace

DefocusInput::DefocusInput(const PDAFDCCCalibrationData& calibration)
{
    // Counts beyond the record's arrays are cut to them rather than read past its end.
    const uint16_t knotsX    = std::min<uint16_t>(calibration.knotXCount, MaxPDAFKnotX);
    const uint16_t knotsY    = std::min<uint16_t>(calibration.knotYCount, MaxPDAFKnotY);
    const uint32_t nodeCount = static_cast<uint32_t>(knotsX) * knotsY;
    for (uint32_t k = 0; k < nodeCount; k++)
    {
        m_slope[k]  = static_cast<int64_t>(calibration.slopeData[k] * 1024.0f);
        m_offset[k] = static_cast<int64_t>(calibration.offsetData[k]);
    }
    for (uint32_t i = 0; i < knotsX; i++)
    {
        m_knotX[i] = calibration.slopeOffsetAddressX[i];
    }
    for (uint32_t j = 0; j < knotsY; j++)
    {
        m_knotY[j] = calibration.slopeOffsetAddressY[j];
    }

    for (uint32_t p = 0; p < ThresholdPoints; p++)
    {
        m_gainAxis[p]      = GainAxis[p];
        m_thresholdAxis[p] = static_cast<uint64_t>(sample::ConfidenceThreshold);
    }
    for (DefocusOKNGThrLine_t& line : m_lines)
    {
        line = {ThresholdPoints, m_gainAxis, m_thresholdAxis};
    }
    for (uint32_t i = 0; i < ThresholdKnotsX; i++)
    {
        m_thresholdKnotX[i] = static_cast<uint16_t>(i * sample::ImageWidth / (ThresholdKnotsX - 1));
    }
    for (uint32_t j = 0; j < ThresholdKnotsY; j++)
    {
        m_thresholdKnotY[j] = static_cast<uint16_t>(j * sample::ImageHeight / (ThresholdKnotsY - 1));
    }

    m_data.XSizeOfImage              = static_cast<uint16_t>(sample::ImageWidth);
    m_data.YSizeOfImage              = static_cast<uint16_t>(sample::ImageHeight);
    m_data.XAddressOfWindowStart     = WindowAddress(sample::AFWindow.startX, sample::ImageWidth);
    m_data.YAddressOfWindowStart     = WindowAddress(sample::AFWindow.startY, sample::ImageHeight);
    m_data.XAddressOfWindowEnd       = WindowAddress(sample::AFWindow.endX, sample::ImageWidth);
    m_data.YAddressOfWindowEnd       = WindowAddress(sample::AFWindow.endY, sample::ImageHeight);
    m_data.XKnotNumSlopeOffset       = knotsX;
    m_data.YKnotNumSlopeOffset       = knotsY;
    m_data.p_SlopeData               = m_slope;
    m_data.p_OffsetData              = m_offset;
    m_data.p_XAddressKnotSlopeOffset = m_knotX;
    m_data.p_YAddressKnotSlopeOffset = m_knotY;
    m_data.AdjCoeffSlope             = AdjCoeffSlope;
    m_data.ImagerAnalogGain          = static_cast<uint64_t>(sample::AnalogGain);
    m_data.XKnotNumDefocusOKNG       = ThresholdKnotsX;
    m_data.YKnotNumDefocusOKNG       = ThresholdKnotsY;
    m_data.p_DefocusOKNGThrLine      = m_lines;
    m_data.p_XAddressKnotDefocusOKNG = m_thresholdKnotX;
    m_data.p_YAddressKnotDefocusOKNG = m_thresholdKnotY;
    m_data.DensityOfPhasePix         = DensityOfPhasePix;
}
