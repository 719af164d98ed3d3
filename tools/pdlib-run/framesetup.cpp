#include "framesetup.h"

namespace pdlibrun
{
std::unique_ptr<PDLibCreateParams> MakeCreateParams(const RunOptions& options, PDAFDCCCalibrationData* pCalibration)
{
    // Value-initialised: every field the library does not read stays zero.
    auto                   params = std::make_unique<PDLibCreateParams>();
    PDLibInitParam&        init   = params->initParam;
    PDLibSensorNativeInfo& native = init.nativePatternInfo;
    native.originalImageWidth     = options.imageWidth;
    native.originalImageHeight    = options.imageHeight;
    native.cropRegion         = {static_cast<INT>(options.crop.x), static_cast<INT>(options.crop.y), options.crop.width,
                                 options.crop.height};
    native.currentImageWidth  = options.crop.width;
    native.currentImageHeight = options.crop.height;
    native.orientation        = PDLibOrientationDefault;
    native.PDOffsetCorrection = 0.0f;
    init.pCalibrationParam    = pCalibration;
    init.defocusBitShift      = options.defocusBitShift;
    init.defocusConfidenceThreshold = options.confidenceThreshold;
    init.sensorPDStatsFormat        = static_cast<PDLibSensorPDStatsFormat>(options.format);
    init.cameraInfo                 = {StatsAlgoRoleDefault, 0};
    return params;
}

std::unique_ptr<PDLibInputs> MakeFrameInputs(const RunOptions& options, std::vector<uint8_t>& buffer)
{
    auto        inputs = std::make_unique<PDLibInputs>();
    PDLibParam& param  = inputs->processParam;
    // The boundary types the buffer as 16-bit words; the library reads it byte by byte.
    param.pPDBuffer                  = reinterpret_cast<UINT16*>(buffer.data());
    param.PDBufferSize               = buffer.size();
    param.windowConfig.roiType       = PDLibRoiTypeCenter;
    param.windowConfig.fixedAFWindow = {options.window.startX, options.window.startY, options.window.endX,
                                        options.window.endY};
    param.imageAnalogGain            = options.analogGain;
    param.cameraInfo                 = {StatsAlgoRoleDefault, 0};
    inputs->trigger                  = PDTriggerNormal;
    inputs->startupMode              = StatisticsStartUpValid;
    return inputs;
}
} // namespace pdlibrun
