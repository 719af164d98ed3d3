// One frame of the PD engine: statistic buffer, its size, format and window mode, calibration
// grid, AF window, gain, shift and threshold all chosen by the fuzzer.
#include <fuzzer/FuzzedDataProvider.h>

#include <cstring>
#include <memory>
#include <vector>

#include "pdlib_type1.h"

namespace
{
PDAFDCCCalibrationData Calibration(FuzzedDataProvider& input)
{
    PDAFDCCCalibrationData calibration = {};
    calibration.isAvailable            = input.ConsumeBool() ? 1 : 0;
    calibration.knotXCount             = input.ConsumeIntegralInRange<UINT16>(0, MaxPDAFKnotX);
    calibration.knotYCount             = input.ConsumeIntegralInRange<UINT16>(0, MaxPDAFKnotY);
    for (UINT32 node = 0; node < MaxPDAFKnotX * MaxPDAFKnotY; ++node)
    {
        calibration.slopeData[node]  = input.ConsumeFloatingPoint<FLOAT>();
        calibration.offsetData[node] = input.ConsumeFloatingPoint<FLOAT>();
    }
    for (UINT16& knot : calibration.slopeOffsetAddressX)
    {
        knot = input.ConsumeIntegral<UINT16>();
    }
    for (UINT16& knot : calibration.slopeOffsetAddressY)
    {
        knot = input.ConsumeIntegral<UINT16>();
    }
    return calibration;
}
} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    FuzzedDataProvider input(data, size);

    PDLibCreateParams      params   = {};
    PDLibInitParam&        init     = params.initParam;
    PDLibSensorNativeInfo& native   = init.nativePatternInfo;
    native.originalImageWidth       = input.ConsumeIntegral<UINT16>();
    native.originalImageHeight      = input.ConsumeIntegral<UINT16>();
    native.currentImageWidth        = input.ConsumeIntegral<UINT16>();
    native.currentImageHeight       = input.ConsumeIntegral<UINT16>();
    native.cropRegion.x             = input.ConsumeIntegral<INT16>();
    native.cropRegion.y             = input.ConsumeIntegral<INT16>();
    native.PDOffsetCorrection       = input.ConsumeFloatingPoint<FLOAT>();
    init.defocusBitShift            = input.ConsumeIntegral<UINT32>();
    init.defocusConfidenceThreshold = input.ConsumeIntegral<INT32>();
    init.sensorPDStatsFormat        = static_cast<PDLibSensorPDStatsFormat>(input.ConsumeIntegralInRange<INT32>(0, 4));
    PDAFDCCCalibrationData calibration = Calibration(input);
    init.pCalibrationParam             = input.ConsumeBool() ? &calibration : nullptr;

    PDLibInputs inputs                      = {};
    PDLibParam& frame                       = inputs.processParam;
    frame.imageAnalogGain                   = input.ConsumeFloatingPoint<FLOAT>();
    frame.windowConfig.fixedAFWindow.startX = input.ConsumeFloatingPoint<FLOAT>();
    frame.windowConfig.fixedAFWindow.startY = input.ConsumeFloatingPoint<FLOAT>();
    frame.windowConfig.fixedAFWindow.endX   = input.ConsumeFloatingPoint<FLOAT>();
    frame.windowConfig.fixedAFWindow.endY   = input.ConsumeFloatingPoint<FLOAT>();
    // The buffer is a heap block of exactly its size; the host tells that size (never 0 here, as
    // a host that says nothing promises a buffer large enough for the mode it sends).
    std::vector<uint8_t> bytes = input.ConsumeRemainingBytes<uint8_t>();
    if (bytes.empty())
    {
        return 0;
    }
    std::unique_ptr<uint8_t[]> buffer(new uint8_t[bytes.size()]);
    std::memcpy(buffer.get(), bytes.data(), bytes.size());
    frame.pPDBuffer    = reinterpret_cast<UINT16*>(buffer.get());
    frame.PDBufferSize = bytes.size();

    auto engine = std::make_unique<pdlib_type1>();
    if (KelResultSuccess == engine->Initialize(&params))
    {
        auto outputs = std::make_unique<PDLibOutputs>();
        engine->Process(&inputs, outputs.get());
    }
    return 0;
}
