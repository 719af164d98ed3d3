// Defocus and confidence of one focus window, from its phase difference and the calibration and
// threshold grids.
#ifndef PDAFLIBRARY_H
#define PDAFLIBRARY_H

#include <cstdint>

#include "pdlibvark_export.h"

/// A broken line of confidence threshold against analog gain.
struct DefocusOKNGThrLine_t
{
    uint64_t  PointNum;
    uint64_t* p_AnalogGain;
    uint64_t* p_Confidence;
};

struct PdLibInputData_t
{
    int64_t               PhaseDifference; ///< unit 1/16 pixel
    uint64_t              ConfidenceLevel; ///< confidence from the sensor
    uint16_t              XSizeOfImage;    ///< full image width
    uint16_t              YSizeOfImage;    ///< full image height
    uint16_t              XAddressOfWindowStart;
    uint16_t              YAddressOfWindowStart;
    uint16_t              XAddressOfWindowEnd;
    uint16_t              YAddressOfWindowEnd;
    uint16_t              XKnotNumSlopeOffset; ///< knots across the calibration grid
    uint16_t              YKnotNumSlopeOffset; ///< knots down the calibration grid
    int64_t*              p_SlopeData;         ///< slopes in fixed point (x 1024), row-major
    int64_t*              p_OffsetData;        ///< offsets, row-major
    uint16_t*             p_XAddressKnotSlopeOffset;
    uint16_t*             p_YAddressKnotSlopeOffset;
    int64_t               AdjCoeffSlope; ///< must be 2304
    uint64_t              ImagerAnalogGain;
    uint16_t              XKnotNumDefocusOKNG;  ///< knots across the threshold grid
    uint16_t              YKnotNumDefocusOKNG;  ///< knots down the threshold grid
    DefocusOKNGThrLine_t* p_DefocusOKNGThrLine; ///< threshold lines, row-major
    uint16_t*             p_XAddressKnotDefocusOKNG;
    uint16_t*             p_YAddressKnotDefocusOKNG;
    uint64_t              DensityOfPhasePix;  ///< 2304, 1152 or 576
    float                 PDOffsetCorrection; ///< not used by PdLibGetDefocus
};

struct PdLibOutputData_t
{
    int64_t  Defocus;
    int8_t   DefocusConfidence;      ///< verdict: 0 passed, -80 failed, -2 no grid, -3 sentinel phase
    uint64_t DefocusConfidenceLevel; ///< 1024 means exactly at the threshold
    int64_t  PhaseDifference;        ///< copy of the input
};

static_assert(sizeof(DefocusOKNGThrLine_t) == 24, "DefocusOKNGThrLine_t layout");
static_assert(sizeof(PdLibInputData_t) == 128, "PdLibInputData_t layout");
static_assert(sizeof(PdLibOutputData_t) == 32, "PdLibOutputData_t layout");

/// Verdicts of DefocusConfidence.
static const int8_t PdafConfidenceRefused     = -1;
static const int8_t PdafConfidencePassed      = 0;
static const int8_t PdafConfidenceFailed      = -80;
static const int8_t PdafConfidenceNoThreshold = -2;
static const int8_t PdafConfidenceSentinel    = -3;

/// The phase difference that the sensor reports when it has none (the lowest 11-bit raw value).
static const int64_t PdafSentinelPhaseDifference = -1024;

extern "C"
{
    /// input is a PdLibInputData_t*, output a PdLibOutputData_t*. Returns 0, or -40 to -53 when
    /// the input is refused, in which case the output keeps its initial values.
    PDLIBVARK_API long PdLibGetDefocus(void* input, void* output);
}

/// The defocus at node fa_Index of the calibration grid, limited to the asymmetric int32 range.
long calc_defocus_formula(PdLibInputData_t* pfa_InputData, unsigned short fa_Index);

#endif // PDAFLIBRARY_H
