// What pdlib-run prints of a processed frame: the window grid, as tables or as one JSON object.
#ifndef PDLIBRUN_WINDOWREPORT_H
#define PDLIBRUN_WINDOWREPORT_H

#include <ostream>

#include "kelalgointerface.h"
#include "pdlibtypes.h"

namespace pdlibrun
{
/// The windows the output holds: its counts, never more than its own array.
uint32_t WindowCount(const PDLibOutputData& output);

/// A line with the window counts, then one grid each of defocus, confidence and phase
/// difference, rows top to bottom.
void PrintWindowTables(std::ostream& out, const PDLibOutputData& output, KelResult result);

/// {"horizontalWindowCount", "verticalWindowCount", "result", "windows": [{"index",
/// "defocus", "confidence", "phaseDiff"}]} on one line.
void PrintWindowJson(std::ostream& out, const PDLibOutputData& output, KelResult result);
} // namespace pdlibrun

#endif // PDLIBRUN_WINDOWREPORT_H
