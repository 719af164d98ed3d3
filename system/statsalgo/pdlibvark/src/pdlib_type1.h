// The engine of one camera instance for type-1 sensors, whose on-chip logic delivers a phase
// difference and a confidence per focus window.
#ifndef PDLIB_TYPE1_H
#define PDLIB_TYPE1_H

#include <cstdint>

#include "PdafLibrary.h"
#include "kelalgointerface.h"
#include "pdlibtypes.h"

/// One window as decoded from the sensor's statistic buffer.
struct pdaf_lib_defocus_t
{
    int32_t  defocus;       ///< not used on this path
    int8_t   df_confidence; ///< not used on this path
    uint32_t df_conf_level; ///< confidence from the buffer
    float    phase_diff;    ///< phase difference in pixels
    int16_t  pd_range_near; ///< not used on this path
    int16_t  pd_range_far;  ///< not used on this path
};

/// Window modes of the statistic buffer, indexed by its area_mode bits.
enum pd_window_mode
{
    WINDOW_MODE_0        = 0, ///< 16 x 12 windows
    WINDOW_MODE_1        = 1, ///< 8 x 6 windows, left in the 16-wide grid of mode 0
    WINDOW_MODE_FLEXIBLE = 2, ///< 8 x 1 windows
};

/// Created in zeroed memory, which is its initial state; it has no constructor of its own.
class pdlib_type1
{
public:
    KelResult Initialize(const PDLibCreateParams* pCreateParams);
    KelResult Configure(const PDLibConfigParams* pConfigParams);
    KelResult Process(const PDLibInputs* pInput, PDLibOutputs* pOutput);

    /// Ends the object: it is gone when this returns.
    KelResult Destroy();

    /// Decodes the statistic buffer into up to 192 window records. The counts, where asked for,
    /// are the window mode's, or 0 when the format or the mode is refused. A non-zero
    /// `bufferSize` bounds the read: a buffer that ends before the mode's last record is refused;
    /// 0 means the host did not say, and byte 1 alone decides how far the read goes.
    void ParsePd(void* pBuffer, pdaf_lib_defocus_t* pDefocus, uint32_t* pHorizontalCount, uint32_t* pVerticalCount,
                 SIZE_T bufferSize = 0);

private:
    void DumpInitializeData();

    static const uint32_t MaxThresholdLines = 200;
    static const uint32_t ThresholdKnotsX   = 8;
    static const uint32_t ThresholdKnotsY   = 6;
    static const uint32_t ThresholdPoints   = 4;

    PdLibInputData_t         m_inputData;       ///< prepared template of each window's defocus input
    int64_t                  m_slopeData[200];  ///< calibration slopes x 1024
    int64_t                  m_offsetData[200]; ///< calibration offsets, truncated
    DefocusOKNGThrLine_t     m_defocusOKNGThrLine[MaxThresholdLines];
    uint16_t                 m_xAddressKnotDefocusOKNG[25];
    uint16_t                 m_yAddressKnotDefocusOKNG[19];
    uint64_t                 m_analogGain[ThresholdPoints];
    uint64_t                 m_confidence[ThresholdPoints];
    uint32_t                 m_currentImageWidth;
    uint32_t                 m_currentImageHeight;
    int32_t                  m_xOffset; ///< crop origin x in the full image
    int32_t                  m_yOffset; ///< crop origin y in the full image
    int32_t                  m_defocusBitShift;
    int32_t                  m_defocusConfidenceThreshold;
    PDLibSensorOrientation   m_sensorOrientation;
    PDLibSensorPDStatsFormat m_sensorPDStatsFormat;
};

#endif // PDLIB_TYPE1_H
