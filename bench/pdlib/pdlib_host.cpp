#include "pdlib_host.h"

#include "sample_frame.h"

PdLibHost::PdLibHost()
    : m_createParams(std::make_unique<PDLibCreateParams>()), m_statsBuffer(sample::MakeStatsBuffer()),
      m_inputs(std::make_unique<PDLibInputs>()), m_outputs(std::make_unique<PDLibOutputs>())
{
    sample::FillCalibration(&m_calibration);

    // No crop: the current image is the full one.
    PDLibInitParam& init                       = m_createParams->initParam;
    init.nativePatternInfo.originalImageWidth  = sample::ImageWidth;
    init.nativePatternInfo.originalImageHeight = sample::ImageHeight;
    init.nativePatternInfo.currentImageWidth   = sample::ImageWidth;
    init.nativePatternInfo.currentImageHeight  = sample::ImageHeight;
    init.nativePatternInfo.cropRegion          = {0, 0, sample::ImageWidth, sample::ImageHeight};
    init.nativePatternInfo.orientation         = PDLibOrientationDefault;
    init.pCalibrationParam                     = &m_calibration;
    init.defocusBitShift                       = sample::DefocusBitShift;
    init.defocusConfidenceThreshold            = sample::ConfidenceThreshold;
    init.sensorPDStatsFormat                   = PDLibSensorPDStatsRaw10Conf11BitPd11Bit;
    init.cameraInfo                            = m_cameraInfo;

    PDLibParam& param                = m_inputs->processParam;
    param.pPDBuffer                  = m_statsBuffer.data();
    param.PDBufferSize               = m_statsBuffer.size() * sizeof(UINT16);
    param.windowConfig.roiType       = PDLibRoiTypeCenter;
    param.windowConfig.fixedAFWindow = sample::AFWindow;
    param.imageAnalogGain            = sample::AnalogGain;
    param.cameraInfo                 = m_cameraInfo;
}

PdLibHost::~PdLibHost()
{
    Close();
}

const char* PdLibHost::Open()
{
    if (nullptr != m_pPDLib)
    {
        return "camera 0 is already open";
    }

    m_callbacks.size = sizeof(m_callbacks);
    KelPDLibraryEntry(&m_callbacks);
    if (nullptr == m_callbacks.pfnCreate)
    {
        return "KelPDLibraryEntry filled no pfnCreate";
    }

    PDLibCreateParam params[] = {
        {PDLibCreateParamTypeCameraOpenIndicator, &m_actualOpenOrClose, sizeof(m_actualOpenOrClose)},
        {PDLibCreateParamTypeCameraInfo, &m_cameraInfo, sizeof(m_cameraInfo)},
    };
    PDLibCreateParamList list   = {params, sizeof(params) / sizeof(params[0])};
    KELPDLib*            pPDLib = nullptr;
    if ((KelResultSuccess != m_callbacks.pfnCreate(&pPDLib, &list)) || (nullptr == pPDLib))
    {
        return "pfnCreate gave no instance for camera 0";
    }
    m_pPDLib = pPDLib;

    if (KelResultSuccess != m_pPDLib->PDLibInitialize(m_pPDLib, m_createParams.get()))
    {
        return "PDLibInitialize failed";
    }
    return nullptr;
}

KelResult PdLibHost::ProcessFrame()
{
    if (nullptr == m_pPDLib)
    {
        return KelResultEInvalidPointer;
    }
    return m_pPDLib->PDLibProcess(m_pPDLib, m_inputs.get(), m_outputs.get());
}

void PdLibHost::Close()
{
    if (nullptr == m_pPDLib)
    {
        return;
    }
    PDLibDestroyParam params[] = {
        {PDLibDestroyParamTypeCameraCloseIndicator, &m_actualOpenOrClose, sizeof(m_actualOpenOrClose)},
        {PDLibDestroyParamTypeCameraInfo, &m_cameraInfo, sizeof(m_cameraInfo)},
    };
    PDLibDestroyParamList list = {params, sizeof(params) / sizeof(params[0])};
    m_pPDLib->PDLibDestroy(m_pPDLib, &list);
    m_pPDLib = nullptr;
}
