// Where the sensor puts its window records in a statistic buffer, as a host sees it: the
// check of a buffer's size before it goes to the library, and the encoding of records that the
// example generator and the tests use. The library keeps its own parser; this is the host's view.
#ifndef PDLIBRUN_STATSLAYOUT_H
#define PDLIBRUN_STATSLAYOUT_H

#include <cstddef>
#include <cstdint>

namespace pdlibrun
{
/// Offset of the byte whose two top bits announce the window mode.
constexpr size_t AreaModeByte = 1;
/// The size of every window record.
constexpr size_t RecordSize = 5;

struct StatsFormat
{
    size_t   firstRecord;    ///< offset of record 0
    uint32_t confidenceBits; ///< unsigned, at the top of the record's first three bytes
    uint32_t phaseBits;      ///< two's complement, 1/16 pixel, right below the confidence
};

struct WindowMode
{
    uint32_t windows;
    uint32_t horizontal;
    uint32_t vertical;
};

/// Formats 1 to 3; false for any other number.
bool LookUpStatsFormat(int format, StatsFormat* pFormat);

/// Window modes 0 to 2, as announced by bits 7..6 of byte 1; false for mode 3.
bool LookUpWindowMode(uint32_t areaMode, WindowMode* pMode);

/// Byte offset of window record `index` of a mode.
size_t RecordOffset(const StatsFormat& format, const WindowMode& mode, uint32_t index);

/// Bytes a buffer needs so that the mode's highest record is whole.
size_t RequiredBufferSize(const StatsFormat& format, const WindowMode& mode);

/// The lowest and highest raw phase of a format.
int32_t MinRawPhase(const StatsFormat& format);
int32_t MaxRawPhase(const StatsFormat& format);

/// Writes the first three bytes of a record: confidence (clamped to the format's width) and raw
/// phase in 1/16 pixel (clamped to the format's range). Bytes 3 and 4 are left alone.
void EncodeRecord(const StatsFormat& format, uint32_t confidence, int32_t rawPhase, uint8_t* pRecord);
} // namespace pdlibrun

#endif // PDLIBRUN_STATSLAYOUT_H
