// PdLibGetDefocus on raw inputs: every field from the fuzzer, with grids as large as their knot
// counts say (the caller's promise), up to the sizes a host can hand over.
#include <fuzzer/FuzzedDataProvider.h>

#include <vector>

#include "PdafLibrary.h"

namespace
{
template <typename T>
std::vector<T> Values(FuzzedDataProvider& input, size_t count)
{
    std::vector<T> values(count == 0 ? 1 : count);
    for (T& value : values)
    {
        value = input.ConsumeIntegral<T>();
    }
    return values;
}
} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    FuzzedDataProvider input(data, size);
    PdLibInputData_t   in    = {};
    in.PhaseDifference       = input.ConsumeIntegral<int64_t>();
    in.ConfidenceLevel       = input.ConsumeIntegral<uint64_t>();
    in.XSizeOfImage          = input.ConsumeIntegral<uint16_t>();
    in.YSizeOfImage          = input.ConsumeIntegral<uint16_t>();
    in.XAddressOfWindowStart = input.ConsumeIntegral<uint16_t>();
    in.YAddressOfWindowStart = input.ConsumeIntegral<uint16_t>();
    in.XAddressOfWindowEnd   = input.ConsumeIntegral<uint16_t>();
    in.YAddressOfWindowEnd   = input.ConsumeIntegral<uint16_t>();
    in.AdjCoeffSlope         = input.ConsumeBool() ? 2304 : input.ConsumeIntegral<int64_t>();
    in.ImagerAnalogGain      = input.ConsumeIntegral<uint64_t>();
    in.DensityOfPhasePix     = input.PickValueInArray<uint64_t>({2304, 1152, 576, 0, 1});

    in.XKnotNumSlopeOffset        = input.ConsumeIntegralInRange<uint16_t>(0, 16);
    in.YKnotNumSlopeOffset        = input.ConsumeIntegralInRange<uint16_t>(0, 12);
    const size_t          nodes   = size_t{in.XKnotNumSlopeOffset} * in.YKnotNumSlopeOffset;
    std::vector<int64_t>  slopes  = Values<int64_t>(input, nodes);
    std::vector<int64_t>  offsets = Values<int64_t>(input, nodes);
    std::vector<uint16_t> knotsX  = Values<uint16_t>(input, in.XKnotNumSlopeOffset);
    std::vector<uint16_t> knotsY  = Values<uint16_t>(input, in.YKnotNumSlopeOffset);
    in.p_SlopeData                = slopes.data();
    in.p_OffsetData               = offsets.data();
    in.p_XAddressKnotSlopeOffset  = knotsX.data();
    in.p_YAddressKnotSlopeOffset  = knotsY.data();

    in.XKnotNumDefocusOKNG                        = input.ConsumeIntegralInRange<uint16_t>(0, 8);
    in.YKnotNumDefocusOKNG                        = input.ConsumeIntegralInRange<uint16_t>(0, 8);
    const size_t                      lineCount   = size_t{in.XKnotNumDefocusOKNG} * in.YKnotNumDefocusOKNG;
    const size_t                      points      = input.ConsumeIntegralInRange<size_t>(0, 6);
    std::vector<uint64_t>             gains       = Values<uint64_t>(input, points);
    std::vector<uint64_t>             confidences = Values<uint64_t>(input, points);
    std::vector<DefocusOKNGThrLine_t> lines(lineCount == 0 ? 1 : lineCount);
    for (DefocusOKNGThrLine_t& line : lines)
    {
        line = {points, gains.data(), confidences.data()};
    }
    std::vector<uint16_t> thresholdX = Values<uint16_t>(input, in.XKnotNumDefocusOKNG);
    std::vector<uint16_t> thresholdY = Values<uint16_t>(input, in.YKnotNumDefocusOKNG);
    in.p_DefocusOKNGThrLine          = input.ConsumeBool() ? nullptr : lines.data();
    in.p_XAddressKnotDefocusOKNG     = thresholdX.data();
    in.p_YAddressKnotDefocusOKNG     = thresholdY.data();

    PdLibOutputData_t out = {};
    PdLibGetDefocus(&in, &out);
    return 0;
}
