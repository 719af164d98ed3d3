// A small host of the phase-detection half, linked against the installed library: the entry,
// a camera opened, the library initialised with a flat calibration, one frame processed.
//   pd_host STATS_FILE FORMAT      (e.g. examples/stats_fmt2_mode0.bin 2)
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <memory>
#include <vector>

#include "orvolog.h"
#include "orvopdlibinterface.h"

namespace
{
KelResult GiveVendorTagBase(KelVendorTagBaseInfo* pInfo)
{
    pInfo->vendorTagBase = 0x80000000u;
    return KelResultSuccess;
}

int Fail(const char* step, KelResult result)
{
    std::fprintf(stderr, "pd_host: %s failed: result %d\n", step, static_cast<int>(result));
    return 1;
}
} // namespace

int main(int argc, char** argv)
{
    if (argc != 3)
    {
        std::fprintf(stderr, "usage: pd_host STATS_FILE FORMAT\n");
        return 2;
    }
    std::ifstream        file(argv[1], std::ios::binary);
    std::vector<uint8_t> buffer((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
    if (buffer.empty())
    {
        std::fprintf(stderr, "pd_host: cannot read %s\n", argv[1]);
        return 2;
    }

    // What the platform does once it has read its log settings: errors only, as on a device.
    Orvo::Log::LoadLogSettings(0);

    KelPDLibraryCallbacks callbacks = {};
    callbacks.size                  = sizeof(callbacks);
    KelPDLibraryEntry(&callbacks);
    KelAlgorithmInterface services = {};
    services.size                  = sizeof(services);
    services.pGetVendorTagBase     = GiveVendorTagBase;
    callbacks.pfnSetAlgoInterface(&services);

    UINT32           openIndicator = 1;
    StatsCameraInfo  camera        = {StatsAlgoRoleDefault, 0};
    PDLibCreateParam openParams[]  = {{PDLibCreateParamTypeCameraOpenIndicator, &openIndicator, sizeof(openIndicator)},
                                      {PDLibCreateParamTypeCameraInfo, &camera, sizeof(camera)}};
    const PDLibCreateParamList openList = {openParams, 2};
    KELPDLib*                  pLibrary = nullptr;
    KelResult                  result   = callbacks.pfnCreate(&pLibrary, &openList);
    if (KelResultSuccess != result)
    {
        return Fail("opening camera 0", result);
    }

    // A flat calibration of 2 x 2 knots: defocus equals the phase difference.
    auto calibration         = std::make_unique<PDAFDCCCalibrationData>();
    calibration->isAvailable = 1;
    calibration->knotXCount  = 2;
    calibration->knotYCount  = 2;
    for (int knot = 0; knot < 4; ++knot)
    {
        calibration->slopeData[knot] = 1.0f;
    }
    calibration->slopeOffsetAddressX[1] = 4000;
    calibration->slopeOffsetAddressY[1] = 3000;

    auto            create                     = std::make_unique<PDLibCreateParams>();
    PDLibInitParam& init                       = create->initParam;
    init.nativePatternInfo.originalImageWidth  = 4000;
    init.nativePatternInfo.originalImageHeight = 3000;
    init.nativePatternInfo.cropRegion          = {0, 0, 4000, 3000};
    init.nativePatternInfo.currentImageWidth   = 4000;
    init.nativePatternInfo.currentImageHeight  = 3000;
    init.pCalibrationParam                     = calibration.get();
    init.sensorPDStatsFormat                   = static_cast<PDLibSensorPDStatsFormat>(std::atoi(argv[2]));
    init.cameraInfo                            = camera;
    result                                     = pLibrary->PDLibInitialize(pLibrary, create.get());
    if (KelResultSuccess != result)
    {
        return Fail("initialising", result);
    }

    auto        inputs = std::make_unique<PDLibInputs>();
    PDLibParam& frame  = inputs->processParam;
    // The boundary types the buffer as 16-bit words; the library reads it byte by byte.
    frame.pPDBuffer                  = reinterpret_cast<UINT16*>(buffer.data());
    frame.PDBufferSize               = buffer.size();
    frame.windowConfig.roiType       = PDLibRoiTypeCenter;
    frame.windowConfig.fixedAFWindow = {0.25f, 0.25f, 0.75f, 0.75f};
    frame.imageAnalogGain            = 1.0f;
    frame.cameraInfo                 = camera;
    inputs->trigger                  = PDTriggerNormal;
    inputs->startupMode              = StatisticsStartUpValid;
    auto outputs                     = std::make_unique<PDLibOutputs>();
    result                           = pLibrary->PDLibProcess(pLibrary, inputs.get(), outputs.get());
    if (KelResultSuccess != result)
    {
        return Fail("processing the frame", result);
    }
    const PDLibOutputData& output = outputs->libOutput;
    std::printf("%u x %u windows; window 0: defocus %d, confidence %u\n", output.horizontalWindowCount,
                output.verticalWindowCount, output.defocus[0].defocus, output.defocus[0].confidence);

    UINT32            closeIndicator = 1;
    PDLibDestroyParam closeParams[]  = {
         {PDLibDestroyParamTypeCameraCloseIndicator, &closeIndicator, sizeof(closeIndicator)},
         {PDLibDestroyParamTypeCameraInfo, &camera, sizeof(camera)}};
    const PDLibDestroyParamList closeList = {closeParams, 2};
    pLibrary->PDLibDestroy(pLibrary, &closeList);
    return 0;
}
