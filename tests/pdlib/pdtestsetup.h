// What a host hands to the phase-detection half, built for tests: create parameters with a
// calibration, statistic buffers in the sensor's three formats, frame inputs and outputs.
#ifndef TESTS_PDLIB_PDTESTSETUP_H
#define TESTS_PDLIB_PDTESTSETUP_H

#include <cstdint>
#include <memory>
#include <vector>

#include "pdlibtypes.h"

namespace pdtest
{
/// Sensor mode: full image, current (cropped) image and the crop's origin in the full image.
struct Geometry
{
    UINT fullWidth     = 1200;
    UINT fullHeight    = 1200;
    UINT currentWidth  = 1000;
    UINT currentHeight = 1000;
    INT  cropX         = 100;
    INT  cropY         = 50;
};

struct EngineConfig
{
    Geometry                 geometry;
    PDLibSensorPDStatsFormat format     = PDLibSensorPDStatsRaw10Conf11BitPd11Bit;
    INT32                    threshold  = 1024; ///< defocusConfidenceThreshold
    UINT32                   bitShift   = 0;
    FLOAT                    correction = 0.0F; ///< PDOffsetCorrection
};

/// A 2 x 2 calibration with knots at 0 and 1000 on both axes, every node alike. A slope of
/// 1/1024 becomes the fixed-point slope 1, so the defocus is the phase in 1/16 pixel + offset.
PDAFDCCCalibrationData FlatCalibration(FLOAT slope, FLOAT offset);

/// Same knots, slopes 0 and offsets chosen so that the defocus at window centre (cx, cy)
/// is cx + 1000 x cy: the window's addresses can be read back from the defocus.
PDAFDCCCalibrationData RampCalibration();

std::unique_ptr<PDLibCreateParams> MakeCreateParams(const EngineConfig& config, PDAFDCCCalibrationData* pCalibration);

/// A statistic buffer of one format and window mode, zero elsewhere.
class StatBuffer
{
public:
    StatBuffer(PDLibSensorPDStatsFormat format, uint8_t byte1);

    /// Offset of the first window record: 5 for format 1, 10 for formats 2 and 3.
    size_t RecordStart() const;

    /// Encodes a record at a byte offset; phase in pixels, a multiple of 1/16.
    void SetRecordAt(size_t offset, uint32_t confidence, float phase);

    /// Record i of a contiguous layout (modes 0 and 2).
    void SetWindow(uint32_t index, uint32_t confidence, float phase);

    uint8_t* Bytes();
    UINT16*  PDBuffer();

private:
    PDLibSensorPDStatsFormat m_format;
    std::vector<UINT16>      m_storage; ///< UINT16 storage: the host passes the buffer as UINT16*
};

/// A frame over the buffer, with the AF window as fractions of the current image.
PDLibInputs MakeInputs(StatBuffer& buffer, PDLibWindowInfo window, FLOAT gain);

/// Outputs filled with a byte pattern, so that fields the library must leave alone show it.
std::unique_ptr<PDLibOutputs> MakePatternedOutputs();
} // namespace pdtest

#endif // TESTS_PDLIB_PDTESTSETUP_H
