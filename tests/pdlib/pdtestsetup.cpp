#include "pdtestsetup.h"

#include <cmath>
#include <cstring>

namespace pdtest
{
// Room for the highest record of every mode (mode 0 ends at byte 970).
constexpr size_t BufferBytes = 1024;

PDAFDCCCalibrationData FlatCalibration(FLOAT slope, FLOAT offset)
{
    PDAFDCCCalibrationData calibration = {};
    calibration.isAvailable            = 1;
    calibration.knotXCount             = 2;
    calibration.knotYCount             = 2;
    calibration.slopeOffsetAddressX[1] = 1000;
    calibration.slopeOffsetAddressY[1] = 1000;
    for (int node = 0; node < 4; ++node)
    {
        calibration.slopeData[node]  = slope;
        calibration.offsetData[node] = offset;
    }
    return calibration;
}

PDAFDCCCalibrationData RampCalibration()
{
    PDAFDCCCalibrationData calibration = FlatCalibration(0.0F, 0.0F);
    const FLOAT            offsets[4]  = {0.0F, 1000.0F, 1000000.0F, 1001000.0F};
    std::memcpy(calibration.offsetData, offsets, sizeof(offsets));
    return calibration;
}

std::unique_ptr<PDLibCreateParams> MakeCreateParams(const EngineConfig& config, PDAFDCCCalibrationData* pCalibration)
{
    std::unique_ptr<PDLibCreateParams> pParams(new PDLibCreateParams());
    PDLibInitParam&                    init = pParams->initParam;
    PDLibSensorNativeInfo&             info = init.nativePatternInfo;
    info.originalImageWidth                 = config.geometry.fullWidth;
    info.originalImageHeight                = config.geometry.fullHeight;
    info.currentImageWidth                  = config.geometry.currentWidth;
    info.currentImageHeight                 = config.geometry.currentHeight;
    info.cropRegion.x                       = config.geometry.cropX;
    info.cropRegion.y                       = config.geometry.cropY;
    info.PDOffsetCorrection                 = config.correction;
    init.pCalibrationParam                  = pCalibration;
    init.defocusBitShift                    = config.bitShift;
    init.defocusConfidenceThreshold         = config.threshold;
    init.sensorPDStatsFormat                = config.format;
    return pParams;
}

StatBuffer::StatBuffer(PDLibSensorPDStatsFormat format, uint8_t byte1)
    : m_format(format), m_storage(BufferBytes / sizeof(UINT16), 0)
{
    Bytes()[1] = byte1;
}

size_t StatBuffer::RecordStart() const
{
    return (PDLibSensorPDStatsRaw10Conf8BitPd10Bit == m_format) ? 5 : 10;
}

void StatBuffer::SetRecordAt(size_t offset, uint32_t confidence, float phase)
{
    const uint32_t raw     = static_cast<uint32_t>(static_cast<int32_t>(std::lround(phase * 16.0F)));
    uint8_t*       pRecord = Bytes() + offset;
    switch (m_format)
    {
        case PDLibSensorPDStatsRaw10Conf8BitPd10Bit:
            pRecord[0] = static_cast<uint8_t>(confidence);
            pRecord[1] = static_cast<uint8_t>(raw >> 2);
            pRecord[2] = static_cast<uint8_t>((raw & 0x3U) << 6);
            break;
        case PDLibSensorPDStatsRaw10Conf11BitPd11Bit:
            pRecord[0] = static_cast<uint8_t>(confidence >> 3);
            pRecord[1] = static_cast<uint8_t>(((confidence & 0x7U) << 5) | ((raw >> 6) & 0x1FU));
            pRecord[2] = static_cast<uint8_t>((raw & 0x3FU) << 2);
            break;
        default:
            pRecord[0] = static_cast<uint8_t>(confidence >> 3);
            pRecord[1] = static_cast<uint8_t>(((confidence & 0x7U) << 5) | ((raw >> 5) & 0x1FU));
            pRecord[2] = static_cast<uint8_t>((raw & 0x1FU) << 3);
            break;
    }
}

void StatBuffer::SetWindow(uint32_t index, uint32_t confidence, float phase)
{
    SetRecordAt(RecordStart() + 5 * index, confidence, phase);
}

uint8_t* StatBuffer::Bytes()
{
    return reinterpret_cast<uint8_t*>(m_storage.data());
}

UINT16* StatBuffer::PDBuffer()
{
    return m_storage.data();
}

PDLibInputs MakeInputs(StatBuffer& buffer, PDLibWindowInfo window, FLOAT gain)
{
    PDLibInputs inputs                             = {};
    inputs.processParam.pPDBuffer                  = buffer.PDBuffer();
    inputs.processParam.PDBufferSize               = BufferBytes;
    inputs.processParam.windowConfig.fixedAFWindow = window;
    inputs.processParam.imageAnalogGain            = gain;
    return inputs;
}

std::unique_ptr<PDLibOutputs> MakePatternedOutputs()
{
    std::unique_ptr<PDLibOutputs> pOutputs(new PDLibOutputs());
    std::memset(pOutputs.get(), 0xA5, sizeof(PDLibOutputs));
    pOutputs->libOutput.processingResult = PDLibResultPeripheral; // an enum holds one of its values
    return pOutputs;
}
} // namespace pdtest
