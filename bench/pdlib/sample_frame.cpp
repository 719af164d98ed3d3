#include "sample_frame.h"

#include <cstring>

namespace sample
{
namespace
{
const uint32_t KnotsX      = 16;
const uint32_t KnotsY      = 12;
const uint32_t KnotSpacing = 250; ///< pixels; the first knot is half a spacing in

const uint32_t FirstRecord  = 10; ///< of the 11-bit formats
const uint32_t RecordSize   = 5;
const uint8_t  WindowFlag   = 1;
const uint8_t  AreaModeByte = 0x00; ///< mode 0 in bits 7..6

// Slopes rise towards the corners, as a lens's do.
float SlopeAt(uint32_t i, uint32_t j)
{
    const float dx = static_cast<float>(i) - 7.5f;
    const float dy = static_cast<float>(j) - 5.5f;
    return 24.0f + 0.02f * (dx * dx + dy * dy);
}
} // namespace

Window WindowAt(uint32_t index)
{
    Window window;
    window.confidence = 50 + (index * 131) % 1024;
    window.rawPhase   = static_cast<int32_t>((index * 97) % 513) - 256;
    return window;
}

void FillCalibration(PDAFDCCCalibrationData* pCalibration)
{
    memset(pCalibration, 0, sizeof(*pCalibration));
    pCalibration->isAvailable = 1;
    pCalibration->knotXCount  = KnotsX;
    pCalibration->knotYCount  = KnotsY;
    for (uint32_t i = 0; i < KnotsX; i++)
    {
        pCalibration->slopeOffsetAddressX[i] = static_cast<UINT16>(KnotSpacing / 2 + KnotSpacing * i);
    }
    for (uint32_t j = 0; j < KnotsY; j++)
    {
        pCalibration->slopeOffsetAddressY[j] = static_cast<UINT16>(KnotSpacing / 2 + KnotSpacing * j);
    }
    for (uint32_t j = 0; j < KnotsY; j++)
    {
        for (uint32_t i = 0; i < KnotsX; i++)
        {
            pCalibration->slopeData[j * KnotsX + i]  = SlopeAt(i, j);
            pCalibration->offsetData[j * KnotsX + i] = 2.0f * static_cast<float>(i) - 3.0f * static_cast<float>(j);
        }
    }
}

std::vector<UINT16> MakeStatsBuffer()
{
    std::vector<uint8_t> bytes(FirstRecord + RecordSize * WindowCount, 0);
    bytes[0] = WindowFlag;
    bytes[1] = AreaModeByte;
    for (uint32_t i = 0; i < WindowCount; i++)
    {
        const Window   window  = WindowAt(i);
        const uint32_t raw     = static_cast<uint32_t>(window.rawPhase) & 0x7FFu;
        uint8_t*       pRecord = &bytes[FirstRecord + RecordSize * i];
        pRecord[0]             = static_cast<uint8_t>(window.confidence >> 3);
        pRecord[1]             = static_cast<uint8_t>(((window.confidence & 0x7u) << 5) | (raw >> 6));
        pRecord[2]             = static_cast<uint8_t>((raw & 0x3Fu) << 2);
    }

    std::vector<UINT16> words((bytes.size() + 1) / 2, 0);
    memcpy(words.data(), bytes.data(), bytes.size());
    return words;
}
} // namespace sample
