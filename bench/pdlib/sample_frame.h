// The frame that the phase-detection benchmarks measure: a 4000 x 3000 sensor with a 16 x 12
// calibration grid, and a statistic buffer of 192 windows in the 11-bit format.
#ifndef PDLIB_BENCH_SAMPLE_FRAME_H
#define PDLIB_BENCH_SAMPLE_FRAME_H

#include <cstdint>
#include <vector>

#include "pdlibtypes.h"

namespace sample
{
const UINT32 ImageWidth  = 4000;
const UINT32 ImageHeight = 3000;
const UINT32 WindowCount = 192; ///< window mode 0: 16 x 12

/// A gain between the knots of the threshold lines, so that their interpolation runs.
const FLOAT AnalogGain = 3.5f;
/// Splits the sample windows into passing and failing ones.
const INT32 ConfidenceThreshold = 200;
/// Takes out the slope's x 1024 and the phase's 1/16 pixel, leaving lens units.
const UINT32 DefocusBitShift = 14;

/// The AF window, in fractions of the current image: a centred patch, so that both grids
/// interpolate on a plane, as in the usual case.
const PDLibWindowInfo AFWindow = {0.4f, 0.4f, 0.6f, 0.6f};

/// One window as the sensor measured it.
struct Window
{
    uint32_t confidence; ///< 11 bits
    int32_t  rawPhase;   ///< 11-bit phase, unit 1/16 pixel; never the sentinel -1024
};

/// Window i of the sample frame: phases within +-16 pixels and confidences on both sides of
/// the threshold, varying from window to window.
Window WindowAt(uint32_t index);

/// A smooth calibration over the full image: 16 x 12 knots at increasing addresses.
void FillCalibration(PDAFDCCCalibrationData* pCalibration);

/// The statistic buffer of the sample frame in format PDLibSensorPDStatsRaw10Conf11BitPd11Bit,
/// window mode 0. Returned as 16-bit words, as the host hands it over.
std::vector<UINT16> MakeStatsBuffer();
} // namespace sample

#endif // PDLIB_BENCH_SAMPLE_FRAME_H
