// The frame's window grids and the calibration's grids as pictures: SVG heat maps, each with its
// colour scale.
#ifndef PDLIBRUN_SVGMAPS_H
#define PDLIBRUN_SVGMAPS_H

#include <cstdint>
#include <ostream>

#include "pdlibtypes.h"
#include "runoptions.h"

namespace pdlibrun
{
/// Defocus, confidence and phase difference of every window side by side, one cell (class
/// "cell") per window, rows top to bottom as the library counts them; the AF window is drawn on
/// each map in fractions of the current image, which the grid covers.
void WriteFrameSvg(std::ostream& out, const PDLibOutputData& output, const WindowFractions& window);

/// The calibration's slope and offset grids over the full image: each knot's cell reaches
/// halfway to its neighbours.
void WriteCalibrationSvg(std::ostream& out, const PDAFDCCCalibrationData& calibration, uint32_t imageWidth,
                         uint32_t imageHeight);
} // namespace pdlibrun

#endif // PDLIBRUN_SVGMAPS_H
