// The sensor's defocus calibration, read from the JSON form in which the examples ship it.
#ifndef PDLIBRUN_CALIBRATIONFILE_H
#define PDLIBRUN_CALIBRATIONFILE_H

#include <string>

#include "pdlibtypes.h"

namespace pdlibrun
{
/// Reads knotXCount (2 to 16), knotYCount (2 to 12), slopeOffsetAddressX and
/// slopeOffsetAddressY (strictly increasing 16-bit addresses, one per knot), slopeData and
/// offsetData (knotXCount x knotYCount numbers each, row-major). Throws InputError with a
/// one-line message naming the file and the field at fault.
PDAFDCCCalibrationData LoadCalibration(const std::string& path);
} // namespace pdlibrun

#endif // PDLIBRUN_CALIBRATIONFILE_H
