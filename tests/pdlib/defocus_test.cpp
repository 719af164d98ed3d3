// PdLibGetDefocus: the input refusals, the defocus over the calibration grid, the confidence
// threshold over the threshold grid, and the level's limits and verdicts.
#include <memory>
#include <tuple>

#include <gtest/gtest.h>

#include "PdafLibrary.h"

namespace
{
/// A valid input. Calibration grid of 4 x 3 knots in which node (i, j) has the offset
/// 100 i + {0, 1000, 4000}[j], so every node, and a wrong row stride, shows in the defocus.
/// Threshold grid of 3 x 3 knots whose lines are flat: node n has ThresholdOfNode[n] at any gain.
class DefocusInput
{
public:
    static constexpr uint64_t ThresholdOfNode[9] = {100, 200, 300, 1000, 1100, 1200, 4000, 4100, 4200};

    DefocusInput()
    {
        const int64_t rowOffset[3] = {0, 1000, 4000};
        for (int node = 0; node < 12; ++node)
        {
            offset[node] = 100 * (node % 4) + rowOffset[node / 4];
        }
        for (int node = 0; node < 9; ++node)
        {
            confidence[node][0] = ThresholdOfNode[node];
            confidence[node][1] = ThresholdOfNode[node];
            lines[node]         = {2, gains, confidence[node]};
        }
        data.XSizeOfImage              = 1000;
        data.YSizeOfImage              = 800;
        data.XKnotNumSlopeOffset       = 4;
        data.YKnotNumSlopeOffset       = 3;
        data.p_SlopeData               = slope;
        data.p_OffsetData              = offset;
        data.p_XAddressKnotSlopeOffset = knotX;
        data.p_YAddressKnotSlopeOffset = knotY;
        data.AdjCoeffSlope             = 2304;
        data.XKnotNumDefocusOKNG       = 3;
        data.YKnotNumDefocusOKNG       = 3;
        data.p_DefocusOKNGThrLine      = lines;
        data.p_XAddressKnotDefocusOKNG = thresholdX;
        data.p_YAddressKnotDefocusOKNG = thresholdY;
        data.DensityOfPhasePix         = 2304;
        SetCentre(50, 50);
    }
    DefocusInput(const DefocusInput&)            = delete;
    DefocusInput& operator=(const DefocusInput&) = delete;

    void SetCentre(uint16_t cx, uint16_t cy)
    {
        data.XAddressOfWindowStart = cx - 1;
        data.XAddressOfWindowEnd   = cx + 1;
        data.YAddressOfWindowStart = cy - 1;
        data.YAddressOfWindowEnd   = cy + 1;
    }

    void SetThresholdCounts(uint16_t count)
    {
        data.XKnotNumDefocusOKNG = count;
        data.YKnotNumDefocusOKNG = count;
    }

    /// Line 0, from lowGain at gain 0 to highGain at gain 10.
    void SetFirstThreshold(uint64_t lowGain, uint64_t highGain)
    {
        confidence[0][0] = lowGain;
        confidence[0][1] = highGain;
    }

    PdLibInputData_t     data       = {};
    int64_t              slope[12]  = {};
    int64_t              offset[12] = {};
    uint16_t             knotX[4]   = {100, 400, 700, 900};
    uint16_t             knotY[3]   = {100, 400, 700};
    uint64_t             gains[2]   = {0, 10};
    uint64_t             confidence[9][2];
    DefocusOKNGThrLine_t lines[9];
    uint16_t             thresholdX[3] = {200, 500, 800};
    uint16_t             thresholdY[3] = {200, 400, 600};
};

/// What PdLibGetDefocus gives: its result, then Defocus, DefocusConfidence,
/// DefocusConfidenceLevel and PhaseDifference of the output.
using Output = std::tuple<long, int64_t, int, uint64_t, int64_t>;
enum OutputField
{
    Rc,
    Defocus,
    Verdict,
    Level,
    Phase
};

Output GetDefocus(DefocusInput& input)
{
    PdLibOutputData_t out = {123, 45, 678, 9}; // unlike every initial value
    const long        rc  = PdLibGetDefocus(&input.data, &out);
    return {rc, out.Defocus, out.DefocusConfidence, out.DefocusConfidenceLevel, out.PhaseDifference};
}

struct Refusal
{
    const char* what;
    void (*spoil)(DefocusInput&);
    long code;
};

TEST(DefocusInputTest, EachRefusalKeepsTheInitialOutput)
{
    const Refusal refusals[] = {
        {"image width 1", [](DefocusInput& in) { in.data.XSizeOfImage = 1; }, -40},
        {"image height 1", [](DefocusInput& in) { in.data.YSizeOfImage = 1; }, -41},
        {"x end on the width", [](DefocusInput& in) { in.data.XAddressOfWindowEnd = 1000; }, -42},
        {"empty x window", [](DefocusInput& in) { in.data.XAddressOfWindowStart = in.data.XAddressOfWindowEnd; }, -42},
        {"y end on the height", [](DefocusInput& in) { in.data.YAddressOfWindowEnd = 800; }, -43},
        {"empty y window", [](DefocusInput& in) { in.data.YAddressOfWindowStart = in.data.YAddressOfWindowEnd; }, -43},
        {"one calibration column", [](DefocusInput& in) { in.data.XKnotNumSlopeOffset = 1; }, -44},
        {"one calibration row", [](DefocusInput& in) { in.data.YKnotNumSlopeOffset = 1; }, -44},
        {"AdjCoeffSlope 2303", [](DefocusInput& in) { in.data.AdjCoeffSlope = 2303; }, -45},
        {"repeated calibration x", [](DefocusInput& in) { in.knotX[2] = 400; }, -46},
        {"falling calibration y", [](DefocusInput& in) { in.knotY[2] = 300; }, -47},
        {"threshold x count 0 alone", [](DefocusInput& in) { in.data.XKnotNumDefocusOKNG = 0; }, -48},
        {"threshold x count 1 alone", [](DefocusInput& in) { in.data.XKnotNumDefocusOKNG = 1; }, -49},
        {"first line of 1 point", [](DefocusInput& in) { in.lines[0].PointNum = 1; }, -50},
        {"first line of 1 point, no grid",
         [](DefocusInput& in) {
             in.SetThresholdCounts(0);
             in.lines[0].PointNum = 1;
         },
         -50},
        {"repeated threshold x", [](DefocusInput& in) { in.thresholdX[1] = 200; }, -51},
        {"falling threshold y", [](DefocusInput& in) { in.thresholdY[2] = 300; }, -52},
        {"density 2000", [](DefocusInput& in) { in.data.DensityOfPhasePix = 2000; }, -53},
        {"first failure wins",
         [](DefocusInput& in) {
             in.data.XSizeOfImage      = 1;
             in.data.DensityOfPhasePix = 0;
         },
         -40},
    };
    for (const Refusal& refusal : refusals)
    {
        auto input                  = std::make_unique<DefocusInput>();
        input->data.PhaseDifference = 5;
        refusal.spoil(*input);
        EXPECT_EQ(Output(refusal.code, 0, -1, 0, 0), GetDefocus(*input)) << refusal.what;
    }
}

struct Place
{
    uint16_t cx;
    uint16_t cy;
    int64_t  expected;
};

TEST(DefocusGridTest, NinePlacesOfTheCentreOnTheCalibrationGrid)
{
    const Place places[] = {
        {50, 50, 0},      // left, above: node 0
        {200, 50, 33},    // inside, above: nodes 0 and 1 on x
        {950, 50, 300},   // right, above: node 3
        {50, 200, 333},   // left, inside: nodes 0 and 4 on y
        {200, 500, 2033}, // inside: plane of nodes 4, 5, 8, 9
        {950, 600, 3300}, // right, inside: nodes 7 and 11 on y
        {50, 750, 4000},  // left, below: node 8
        {600, 750, 4166}, // inside, below: nodes 9 and 10 on x
        {950, 750, 4300}, // right, below: node 11
        {400, 50, 100},   // on inner knot X[1]: node 1
        {700, 50, 200},   // on inner knot X[2]: node 2, the end of section 1
        {700, 400, 1200}, // on X[2], Y[1]: far corner of plane (1, 0), node 6
        {100, 100, 0},    // on the first knots
        {900, 700, 4300}, // on the last knots
    };
    DefocusInput input;
    for (const Place& place : places)
    {
        input.SetCentre(place.cx, place.cy);
        const Output output = GetDefocus(input);
        EXPECT_EQ(0, std::get<Rc>(output));
        EXPECT_EQ(place.expected, std::get<Defocus>(output)) << "centre " << place.cx << ", " << place.cy;
    }
}

TEST(DefocusGridTest, NinePlacesOfTheCentreOnTheThresholdGrid)
{
    // Confidence 2 x T gives exactly level 2048 when the threshold found is T; a refused
    // plane (T = 0) would give 1024.
    const Place places[] = {
        {100, 100, 100},  // left, above: line 0
        {300, 100, 133},  // inside, above: lines 0 and 1 on x
        {900, 100, 300},  // right, above: line 2
        {100, 250, 325},  // left, inside: lines 0 and 3 on y
        {600, 450, 1883}, // inside: plane of lines 4, 5, 7, 8
        {900, 450, 1950}, // right, inside: lines 5 and 8 on y
        {100, 700, 4000}, // left, below: line 6
        {600, 700, 4133}, // inside, below: lines 7 and 8 on x
        {900, 700, 4200}, // right, below: line 8
        {500, 400, 1100}, // on X[1], Y[1]: far corner of plane (0, 0), line 4
        {800, 600, 4200}, // on the last knots
    };
    DefocusInput input;
    for (const Place& place : places)
    {
        input.SetCentre(place.cx, place.cy);
        input.data.ConfidenceLevel = 2 * static_cast<uint64_t>(place.expected);
        const Output output        = GetDefocus(input);
        EXPECT_EQ(0, std::get<Verdict>(output));
        EXPECT_EQ(2048U, std::get<Level>(output)) << "centre " << place.cx << ", " << place.cy;
    }
}

TEST(DefocusFormulaTest, ScalesSlopeByAdjCoeffAndPhaseThenAddsOffsetAndTruncates)
{
    DefocusInput input;
    input.slope[5]             = 3;
    input.offset[5]            = 1100;
    input.data.PhaseDifference = -7;
    EXPECT_EQ(1079, calc_defocus_formula(&input.data, 5));
    input.data.AdjCoeffSlope = 1152; // -10.5 + 1100
    EXPECT_EQ(1089, calc_defocus_formula(&input.data, 5));
    input.offset[5] = 0;
    EXPECT_EQ(-10, calc_defocus_formula(&input.data, 5));
}

TEST(DefocusFormulaTest, LimitsAreAsymmetric)
{
    DefocusInput  input;
    const int64_t limited[][2] = {{2147483645, 2147483645},   {2147483646, 2147483646},   {2147483647, 2147483646},
                                  {-2147483646, -2147483646}, {-2147483647, -2147483647}, {-2147483648, -2147483647}};
    for (const auto& pair : limited)
    {
        input.offset[0] = pair[0];
        EXPECT_EQ(pair[1], calc_defocus_formula(&input.data, 0)) << "offset " << pair[0];
    }

    // slope x 2304 x phase overflows 64 bits; the double steps still land on the limits.
    input.offset[0]            = 0;
    input.slope[0]             = int64_t{1} << 40;
    input.data.PhaseDifference = int64_t{1} << 20;
    EXPECT_EQ(2147483646, calc_defocus_formula(&input.data, 0));
    input.data.PhaseDifference = -(int64_t{1} << 20);
    EXPECT_EQ(-2147483647, calc_defocus_formula(&input.data, 0));

    input.SetCentre(50, 50);
    input.slope[0]  = 0;
    input.offset[0] = 3000000000;
    EXPECT_EQ(2147483646, std::get<Defocus>(GetDefocus(input)));
}

struct LevelCase
{
    uint64_t confidence;
    uint64_t threshold;
    uint64_t density;
    uint64_t level;
    int      verdict;
};

TEST(DefocusConfidenceTest, LevelLimitsAndVerdicts)
{
    const LevelCase cases[] = {
        {0, 100, 2304, 0, -80},
        {100, 100, 2304, 1024, 0},
        {99, 100, 2304, 1013, -80},
        {99, 100, 1152, 2027, 0},
        {99, 100, 576, 4055, 0},
        {2147483646, 512, 2304, 4294967292, 0},
        {2147483647, 512, 2304, 4294967294, 0}, // exactly on the top limit
        {2147483648, 512, 2304, 4294967294, 0}, // beyond it
    };
    DefocusInput input;
    for (const LevelCase& level : cases)
    {
        input.SetThresholdCounts(1);
        input.SetFirstThreshold(level.threshold, level.threshold);
        input.data.ConfidenceLevel   = level.confidence;
        input.data.DensityOfPhasePix = level.density;
        EXPECT_EQ(Output(0, 0, level.verdict, level.level, 0), GetDefocus(input))
            << "confidence " << level.confidence << ", density " << level.density;
    }
}

TEST(DefocusConfidenceTest, ThresholdFollowsTheGainAndZeroOrRefusedPasses)
{
    DefocusInput input;
    input.SetThresholdCounts(1);
    input.SetFirstThreshold(0, 100);
    EXPECT_EQ(Output(0, 0, 0, 1024, 0), GetDefocus(input));
    input.data.ImagerAnalogGain = 5; // threshold 50
    input.data.ConfidenceLevel  = 25;
    EXPECT_EQ(512U, std::get<Level>(GetDefocus(input)));
    input.data.ImagerAnalogGain = 20; // beyond the last gain: threshold 100
    EXPECT_EQ(256U, std::get<Level>(GetDefocus(input)));

    input.SetFirstThreshold(0x80000000UL, 0x80000000UL); // the broken line refuses: threshold 0
    EXPECT_EQ(Output(0, 0, 0, 1024, 0), GetDefocus(input));
}

TEST(DefocusConfidenceTest, SingleThresholdKnotIgnoresTheWindowAndTheThresholdAddresses)
{
    DefocusInput input;
    input.SetThresholdCounts(1);
    input.SetFirstThreshold(100, 100);
    input.thresholdX[1] = 0; // not looked at with counts of 1
    input.SetCentre(950, 750);
    input.data.ConfidenceLevel = 200;
    EXPECT_EQ(Output(0, 4300, 0, 2048, 0), GetDefocus(input));
}

TEST(DefocusConfidenceTest, NoGridOrSentinelPhaseSkipTheTestButKeepTheDefocus)
{
    DefocusInput input;
    input.SetCentre(50, 50);
    input.slope[0]             = 1;
    input.offset[0]            = 40;
    input.data.ConfidenceLevel = 5000;
    input.data.PhaseDifference = -1024;
    EXPECT_EQ(Output(0, -984, -3, 0, -1024), GetDefocus(input));

    input.SetThresholdCounts(0); // the grid test comes before the sentinel test
    EXPECT_EQ(Output(0, -984, -2, 0, -1024), GetDefocus(input));
    input.data.PhaseDifference = 5;
    EXPECT_EQ(Output(0, 45, -2, 0, 5), GetDefocus(input));
}
} // namespace
