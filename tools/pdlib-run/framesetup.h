// The records that the framework fills for PDLibInitialize and PDLibProcess, from the command line.
#ifndef PDLIBRUN_FRAMESETUP_H
#define PDLIBRUN_FRAMESETUP_H

#include <cstdint>
#include <memory>
#include <vector>

#include "pdlibtypes.h"
#include "runoptions.h"

namespace pdlibrun
{
/// Geometry, calibration and thresholds of the sensor mode. The record points to `pCalibration`.
std::unique_ptr<PDLibCreateParams> MakeCreateParams(const RunOptions& options, PDAFDCCCalibrationData* pCalibration);

/// One frame: the buffer, the AF window and the gain. The record points into `buffer`.
std::unique_ptr<PDLibInputs> MakeFrameInputs(const RunOptions& options, std::vector<uint8_t>& buffer);
} // namespace pdlibrun

#endif // PDLIBRUN_FRAMESETUP_H
