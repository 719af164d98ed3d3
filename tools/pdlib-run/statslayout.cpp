#include "statslayout.h"

#include <algorithm>

namespace pdlibrun
{
namespace
{
// In the 48-window mode the sensor keeps the rows of the 16-wide grid and fills 8 of them.
constexpr uint32_t RowSkippingWindowCount = 48;
constexpr uint32_t UsedColumnsPerRow      = 8;
constexpr uint32_t RecordsPerSensorRow    = 16;
// Confidence and phase sit in the first three bytes of a record, most significant bit first.
constexpr uint32_t PackedBits = 24;
} // namespace

bool LookUpStatsFormat(int format, StatsFormat* pFormat)
{
    switch (format)
    {
        case 1:
            *pFormat = {5, 8, 10};
            return true;
        case 2:
            *pFormat = {10, 11, 11};
            return true;
        case 3:
            *pFormat = {10, 11, 10};
            return true;
        default:
            return false;
    }
}

bool LookUpWindowMode(uint32_t areaMode, WindowMode* pMode)
{
    switch (areaMode)
    {
        case 0:
            *pMode = {192, 16, 12};
            return true;
        case 1:
            *pMode = {48, 8, 6};
            return true;
        case 2:
            *pMode = {8, 8, 1};
            return true;
        default:
            return false;
    }
}

size_t RecordOffset(const StatsFormat& format, const WindowMode& mode, uint32_t index)
{
    if (RowSkippingWindowCount != mode.windows)
    {
        return format.firstRecord + RecordSize * index;
    }
    const size_t row    = index / UsedColumnsPerRow;
    const size_t column = index % UsedColumnsPerRow;
    return format.firstRecord + RecordSize * (RecordsPerSensorRow * row + column);
}

size_t RequiredBufferSize(const StatsFormat& format, const WindowMode& mode)
{
    return RecordOffset(format, mode, mode.windows - 1) + RecordSize;
}

int32_t MinRawPhase(const StatsFormat& format)
{
    return -(1 << (format.phaseBits - 1));
}

int32_t MaxRawPhase(const StatsFormat& format)
{
    return (1 << (format.phaseBits - 1)) - 1;
}

void EncodeRecord(const StatsFormat& format, uint32_t confidence, int32_t rawPhase, uint8_t* pRecord)
{
    const uint32_t confidenceMask    = (1u << format.confidenceBits) - 1;
    const uint32_t phaseMask         = (1u << format.phaseBits) - 1;
    const uint32_t clampedConfidence = std::min(confidence, confidenceMask);
    const int32_t  clampedPhase      = std::clamp(rawPhase, MinRawPhase(format), MaxRawPhase(format));

    const uint32_t confidenceShift = PackedBits - format.confidenceBits;
    const uint32_t phaseShift      = confidenceShift - format.phaseBits;
    const uint32_t packed =
        (clampedConfidence << confidenceShift) | ((static_cast<uint32_t>(clampedPhase) & phaseMask) << phaseShift);
    pRecord[0] = static_cast<uint8_t>(packed >> 16);
    pRecord[1] = static_cast<uint8_t>(packed >> 8);
    pRecord[2] = static_cast<uint8_t>(packed);
}
} // namespace pdlibrun
