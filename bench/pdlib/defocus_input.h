// The input of one defocus computation, built by hand the way the engine prepares it: the
// calibration grid in fixed point, the 8 x 6 threshold grid over the full image with lines of
// 4 points, and the sample AF window.
#ifndef PDLIB_BENCH_DEFOCUS_INPUT_H
#define PDLIB_BENCH_DEFOCUS_INPUT_H

#include <cstdint>

#include "PdafLibrary.h"
#include "pdlibtypes.h"

class DefocusInput
{
public:
    explicit DefocusInput(const PDAFDCCCalibrationData& calibration);
    // The record points into the object itself.
    DefocusInput(const DefocusInput&)            = delete;
    DefocusInput& operator=(const DefocusInput&) = delete;

    /// Sets what differs from window to window.
    void SetWindow(int64_t phaseDifference, uint64_t confidenceLevel)
    {
        m_data.PhaseDifference = phaseDifference;
        m_data.ConfidenceLevel = confidenceLevel;
    }

    PdLibInputData_t* Data() { return &m_data; }

private:
    static const uint32_t ThresholdKnotsX = 8;
    static const uint32_t ThresholdKnotsY = 6;
    static const uint32_t ThresholdPoints = 4;

    PdLibInputData_t     m_data                                     = {};
    int64_t              m_slope[MaxPDAFKnotX * MaxPDAFKnotY]       = {};
    int64_t              m_offset[MaxPDAFKnotX * MaxPDAFKnotY]      = {};
    uint16_t             m_knotX[MaxPDAFKnotX]                      = {};
    uint16_t             m_knotY[MaxPDAFKnotY]                      = {};
    DefocusOKNGThrLine_t m_lines[ThresholdKnotsX * ThresholdKnotsY] = {};
    uint64_t             m_gainAxis[ThresholdPoints]                = {};
    uint64_t             m_thresholdAxis[ThresholdPoints]           = {};
    uint16_t             m_thresholdKnotX[ThresholdKnotsX]          = {};
    uint16_t             m_thresholdKnotY[ThresholdKnotsY]          = {};
};

#endif // PDLIB_BENCH_DEFOCUS_INPUT_H
