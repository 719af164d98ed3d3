#include "PdafLibrary.h"

#include "PdafMathFunc.h"

namespace
{
const int64_t  RequiredAdjCoeffSlope    = 2304;
const double   DefaultDensityOfPhasePix = 2304.0;
const uint64_t PassingConfidenceLevel   = 1024;

// The two limits differ in magnitude by design.
const double DefocusLowerLimit         = -2147483647.0;
const double DefocusUpperLimit         = 2147483646.0;
const double ConfidenceLevelUpperLimit = 4294967294.0;

enum class Place
{
    Before, ///< left of the first knot, or above it
    Inside,
    After, ///< right of the last knot, or below it
};

/// Where a centre lies on one axis of a grid, and the section it falls in.
struct AxisPosition
{
    Place    place;
    uint32_t section;
};

// The first section whose knots enclose the centre, or 0: a centre exactly on an inner knot
// falls in the lower section. Called only on knots that job_check_input found strictly
// increasing: there a centre outside the knots has section 0, and for one inside, the enclosing
// section is the first whose upper knot reaches it.
AxisPosition LocateOnAxis(const uint16_t* pKnots, uint16_t knotCount, uint16_t centre)
{
    if (centre < pKnots[0])
    {
        return {Place::Before, 0};
    }
    if (centre > pKnots[knotCount - 1])
    {
        return {Place::After, 0};
    }
    // Stops at the last knot at the latest.
    uint32_t section = 0;
    while (pKnots[section + 1] < centre)
    {
        section++;
    }
    return {Place::Inside, section};
}

long Line(long x0, long x1, long y0, long y1, long at)
{
    long x[2]  = {x0, x1};
    long y[2]  = {y0, y1};
    long value = 0;
    CalcAddressOnLine_slXslY(x, y, at, &value);
    return value;
}

/// The window centre: the mean of start and end, summed in 32 bits and cut to 16.
uint16_t Centre(uint16_t start, uint16_t end)
{
    return static_cast<uint16_t>((static_cast<uint32_t>(start) + end) >> 1);
}

/// A grid of knots with a value at each node, and the window centre on it.
struct GridQuery
{
    const uint16_t* pX;
    const uint16_t* pY;
    uint16_t        countX;
    uint16_t        countY;
    uint16_t        centreX;
    uint16_t        centreY;
};

// The value at the window centre over one of the nine places of the centre relative to the grid:
// a corner node, a line along an edge, or the plane of the enclosing patch. Node indices are
// computed in 32 bits and cut to 16, as the node functions take them.
template <typename NodeValue>
long InterpolateOnGrid(const GridQuery& grid, NodeValue nodeValue)
{
    const uint32_t nx   = grid.countX;
    const uint32_t ny   = grid.countY;
    auto           node = [&](uint32_t index) { return static_cast<long>(nodeValue(static_cast<uint16_t>(index))); };

    AxisPosition   x  = LocateOnAxis(grid.pX, grid.countX, grid.centreX);
    AxisPosition   y  = LocateOnAxis(grid.pY, grid.countY, grid.centreY);
    const uint32_t i  = x.section;
    const uint32_t j  = y.section;
    const long     cx = grid.centreX;
    const long     cy = grid.centreY;

    // Along x on a row whose first node is rowStart, or along y on a column whose top node is columnTop.
    auto lineOnX = [&](uint32_t rowStart) {
        long f0 = node(rowStart + i);
        long f1 = node(rowStart + i + 1);
        return Line(grid.pX[i], grid.pX[i + 1], f0, f1, cx);
    };
    auto lineOnY = [&](uint32_t columnTop) {
        long f0 = node(columnTop);
        long f1 = node(columnTop + nx);
        return Line(grid.pY[j], grid.pY[j + 1], f0, f1, cy);
    };

    switch (y.place)
    {
        case Place::Before:
            switch (x.place)
            {
                case Place::Before:
                    return node(0);
                case Place::Inside:
                    return lineOnX(0);
                case Place::After:
                    return node(nx - 1);
            }
            break;
        case Place::Inside:
            switch (x.place)
            {
                case Place::Before:
                    return lineOnY(nx * j);
                case Place::After:
                    return lineOnY(nx * j + nx - 1);
                case Place::Inside: {
                    long px[2] = {grid.pX[i], grid.pX[i + 1]};
                    long py[2] = {grid.pY[j], grid.pY[j + 1]};
                    long pz[4] = {node(nx * j + i), node(nx * j + i + 1), node(nx * j + i + nx),
                                  node(nx * j + i + nx + 1)};
                    // A refused plane leaves the value at 0.
                    long value = 0;
                    CalcAddressOnPlane_slXslYslZ(px, py, pz, cx, cy, &value);
                    return value;
                }
            }
            break;
        case Place::After:
            switch (x.place)
            {
                case Place::Before:
                    return node(nx * (ny - 1));
                case Place::Inside:
                    return lineOnX(nx * (ny - 1));
                case Place::After:
                    return node(nx * ny - 1);
            }
            break;
    }
    return 0;
}

bool StrictlyIncreasing(const uint16_t* pValues, uint32_t count)
{
    if (nullptr == pValues)
    {
        return false;
    }
    for (uint32_t k = 1; k < count; k++)
    {
        if (pValues[k] <= pValues[k - 1])
        {
            return false;
        }
    }
    return true;
}

void job_init_output_data(PdLibOutputData_t* pOutput)
{
    pOutput->Defocus                = 0;
    pOutput->DefocusConfidence      = PdafConfidenceRefused;
    pOutput->DefocusConfidenceLevel = 0;
    pOutput->PhaseDifference        = 0;
}

long job_check_input(const PdLibInputData_t* pInput)
{
    if (pInput->XSizeOfImage <= 1)
    {
        return -40;
    }
    if (pInput->YSizeOfImage <= 1)
    {
        return -41;
    }
    if (!((pInput->XAddressOfWindowStart < pInput->XAddressOfWindowEnd) &&
          (pInput->XAddressOfWindowEnd < pInput->XSizeOfImage)))
    {
        return -42;
    }
    if (!((pInput->YAddressOfWindowStart < pInput->YAddressOfWindowEnd) &&
          (pInput->YAddressOfWindowEnd < pInput->YSizeOfImage)))
    {
        return -43;
    }
    // A grid without its data arrays counts as no grid: it must not be read.
    if ((pInput->XKnotNumSlopeOffset <= 1) || (pInput->YKnotNumSlopeOffset <= 1) || (nullptr == pInput->p_SlopeData) ||
        (nullptr == pInput->p_OffsetData))
    {
        return -44;
    }
    if (RequiredAdjCoeffSlope != pInput->AdjCoeffSlope)
    {
        return -45;
    }
    if (!StrictlyIncreasing(pInput->p_XAddressKnotSlopeOffset, pInput->XKnotNumSlopeOffset))
    {
        return -46;
    }
    if (!StrictlyIncreasing(pInput->p_YAddressKnotSlopeOffset, pInput->YKnotNumSlopeOffset))
    {
        return -47;
    }

    const uint16_t thresholdX = pInput->XKnotNumDefocusOKNG;
    const uint16_t thresholdY = pInput->YKnotNumDefocusOKNG;
    if ((0 == thresholdX) != (0 == thresholdY))
    {
        return -48;
    }
    if ((0 != thresholdX) && (0 != thresholdY) && ((1 == thresholdX) != (1 == thresholdY)))
    {
        return -49;
    }
    // Runs even without a threshold grid: the first line must always be there. A missing one
    // counts as a line without points rather than being read.
    if ((nullptr == pInput->p_DefocusOKNGThrLine) || (pInput->p_DefocusOKNGThrLine[0].PointNum <= 1))
    {
        return -50;
    }
    if ((thresholdX >= 2) && (thresholdY >= 2))
    {
        if (!StrictlyIncreasing(pInput->p_XAddressKnotDefocusOKNG, thresholdX))
        {
            return -51;
        }
        if (!StrictlyIncreasing(pInput->p_YAddressKnotDefocusOKNG, thresholdY))
        {
            return -52;
        }
    }
    const uint64_t density = pInput->DensityOfPhasePix;
    if ((2304 != density) && (1152 != density) && (576 != density))
    {
        return -53;
    }
    return 0;
}

long limit_defocus_formula(double value)
{
    if (value <= DefocusLowerLimit)
    {
        return -2147483647L;
    }
    if (value >= DefocusUpperLimit)
    {
        return 2147483646L;
    }
    return static_cast<long>(value);
}

uint64_t limit_defocus_confidence_level(double level)
{
    if (level <= 0.0)
    {
        return 0;
    }
    if (level >= ConfidenceLevelUpperLimit)
    {
        return 4294967294ULL;
    }
    return static_cast<uint64_t>(level);
}

/// The window's centre on a grid of knots.
GridQuery WindowOnGrid(const PdLibInputData_t* pInput, const uint16_t* pX, const uint16_t* pY, uint16_t countX,
                       uint16_t countY)
{
    return {pX,
            pY,
            countX,
            countY,
            Centre(pInput->XAddressOfWindowStart, pInput->XAddressOfWindowEnd),
            Centre(pInput->YAddressOfWindowStart, pInput->YAddressOfWindowEnd)};
}

long job_calc_defocus(PdLibInputData_t* pInput)
{
    GridQuery grid = WindowOnGrid(pInput, pInput->p_XAddressKnotSlopeOffset, pInput->p_YAddressKnotSlopeOffset,
                                  pInput->XKnotNumSlopeOffset, pInput->YKnotNumSlopeOffset);
    return InterpolateOnGrid(grid, [pInput](uint16_t node) { return calc_defocus_formula(pInput, node); });
}

// The threshold of line n at the frame's gain; 0 where the broken line refuses.
long ThresholdAtGain(const PdLibInputData_t* pInput, uint16_t line)
{
    DefocusOKNGThrLine_t& thresholdLine = pInput->p_DefocusOKNGThrLine[line];
    unsigned long         threshold     = 0;
    CalcAddressOnBrokenLine_ulXulY(reinterpret_cast<unsigned long*>(thresholdLine.p_AnalogGain),
                                   reinterpret_cast<unsigned long*>(thresholdLine.p_Confidence), thresholdLine.PointNum,
                                   pInput->ImagerAnalogGain, &threshold);
    return static_cast<long>(threshold);
}

long calc_defocus_ok_ng_thr(const PdLibInputData_t* pInput)
{
    auto thresholdOfLine = [pInput](uint16_t line) { return ThresholdAtGain(pInput, line); };
    if ((1 == pInput->XKnotNumDefocusOKNG) && (1 == pInput->YKnotNumDefocusOKNG))
    {
        return thresholdOfLine(0);
    }
    GridQuery grid = WindowOnGrid(pInput, pInput->p_XAddressKnotDefocusOKNG, pInput->p_YAddressKnotDefocusOKNG,
                                  pInput->XKnotNumDefocusOKNG, pInput->YKnotNumDefocusOKNG);
    return InterpolateOnGrid(grid, thresholdOfLine);
}

uint64_t job_calc_defocus_confidence_level(const PdLibInputData_t* pInput, long threshold)
{
    if (threshold <= 0)
    {
        // An absent or zero threshold passes.
        return PassingConfidenceLevel;
    }
    double density =
        (0 == pInput->DensityOfPhasePix) ? DefaultDensityOfPhasePix : static_cast<double>(pInput->DensityOfPhasePix);
    double level = static_cast<double>(pInput->ConfidenceLevel);
    level        = level * 1024.0;
    level        = level * 2304.0;
    level        = level / density;
    level        = level / static_cast<double>(threshold);
    return limit_defocus_confidence_level(level);
}

int8_t job_calc_defocus_confidence(uint64_t level)
{
    return (level < PassingConfidenceLevel) ? PdafConfidenceFailed : PdafConfidencePassed;
}

void job_calc_phase_difference(const PdLibInputData_t* pInput, PdLibOutputData_t* pOutput)
{
    pOutput->PhaseDifference = pInput->PhaseDifference;
}
} // namespace

long calc_defocus_formula(PdLibInputData_t* pfa_InputData, unsigned short fa_Index)
{
    double value =
        static_cast<double>(pfa_InputData->p_SlopeData[fa_Index]) * static_cast<double>(pfa_InputData->AdjCoeffSlope);
    value = value * static_cast<double>(pfa_InputData->PhaseDifference);
    value = value / 2304.0;
    value = value + static_cast<double>(pfa_InputData->p_OffsetData[fa_Index]);
    return limit_defocus_formula(value);
}

long PdLibGetDefocus(void* input, void* output)
{
    PdLibInputData_t*  pInput  = static_cast<PdLibInputData_t*>(input);
    PdLibOutputData_t* pOutput = static_cast<PdLibOutputData_t*>(output);

    job_init_output_data(pOutput);
    long result = job_check_input(pInput);
    if (0 != result)
    {
        return result;
    }

    pOutput->Defocus = job_calc_defocus(pInput);

    if ((0 == pInput->XKnotNumDefocusOKNG) || (0 == pInput->YKnotNumDefocusOKNG))
    {
        pOutput->DefocusConfidence      = PdafConfidenceNoThreshold;
        pOutput->DefocusConfidenceLevel = 0;
        job_calc_phase_difference(pInput, pOutput);
        return 0;
    }
    if (PdafSentinelPhaseDifference == pInput->PhaseDifference)
    {
        pOutput->DefocusConfidence      = PdafConfidenceSentinel;
        pOutput->DefocusConfidenceLevel = 0;
        job_calc_phase_difference(pInput, pOutput);
        return 0;
    }

    long     threshold              = calc_defocus_ok_ng_thr(pInput);
    uint64_t level                  = job_calc_defocus_confidence_level(pInput, threshold);
    pOutput->DefocusConfidenceLevel = level;
    pOutput->DefocusConfidence      = job_calc_defocus_confidence(level);
    job_calc_phase_difference(pInput, pOutput);
    return 0;
}
