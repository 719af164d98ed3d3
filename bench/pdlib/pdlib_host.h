// A host of the phase-detection library as the camera framework is one: it reaches the library
// only through its exports, opens camera 0, initialises it with the sample calibration and
// hands it the sample frame.
#ifndef PDLIB_BENCH_PDLIB_HOST_H
#define PDLIB_BENCH_PDLIB_HOST_H

#include <memory>
#include <vector>

#include "orvopdlibinterface.h"

class PdLibHost
{
public:
    PdLibHost();
    ~PdLibHost();
    PdLibHost(const PdLibHost&)            = delete;
    PdLibHost& operator=(const PdLibHost&) = delete;

    /// KelPDLibraryEntry, pfnCreate for an actual open of camera 0, PDLibInitialize. Returns
    /// null once the instance is ready, otherwise what failed.
    const char* Open();

    /// One PDLibProcess of the sample frame.
    KelResult ProcessFrame();

    /// The actual close of camera 0; nothing when not open.
    void Close();

    const PDLibOutputData& Output() const { return m_outputs->libOutput; }

private:
    // Parameters of the create and destroy lists, which point to them.
    UINT32          m_actualOpenOrClose = 1;
    StatsCameraInfo m_cameraInfo        = {StatsAlgoRoleDefault, 0};

    // The engine goes on pointing into the calibration: it outlives the instance.
    PDAFDCCCalibrationData             m_calibration;
    std::unique_ptr<PDLibCreateParams> m_createParams;
    std::vector<UINT16>                m_statsBuffer;
    std::unique_ptr<PDLibInputs>       m_inputs;
    std::unique_ptr<PDLibOutputs>      m_outputs;
    KelPDLibraryCallbacks              m_callbacks = {};
    KELPDLib*                          m_pPDLib    = nullptr;
};

#endif // PDLIB_BENCH_PDLIB_HOST_H
