// Records, enumerations and limits of the phase-detection boundary, as the host declares them.
// Every field keeps the host's order and type; the sizes asserted below are those of LP64.
#ifndef PDLIBTYPES_H
#define PDLIBTYPES_H

#include "orvotypes.h"

static const UINT32 MaxCameras                    = 8;
static const UINT32 PDLibMaxWindowCount           = 200;
static const UINT32 PDMaxWindowSize               = 200;
static const UINT32 PDLibMaxPixelCount            = 256;
static const UINT32 PDLibMaxBlockHeight           = 64;
static const UINT32 PDLibMaxMapGridCount          = 400;
static const UINT32 PDLibAdaptiveDataSize         = 960;
static const UINT32 PDLibGainMapLUTSize           = 221;
static const UINT32 PDLibMaxLeftOrRightPDPixels   = 128;
static const UINT32 PDLibMaxPDPixelRows           = 16;
static const UINT32 PDLibResamplerInstructionSize = 32;
static const UINT32 PDLibResamplerInputCount      = 4;
static const UINT32 PDLibLCRColorComponentCount   = 4;
static const UINT32 PDLibLCRMaskCount             = 2;
static const UINT32 PDLibMaxPixelsInBlock         = 4096;
static const UINT32 MaxPDAFKnotX                  = 16;
static const UINT32 MaxPDAFKnotY                  = 12;

// ---- Enumerations ----------------------------------------------------------------------------
// Each with a fixed 32-bit type: a host may hand any number, and the library must be able to
// hold and refuse it.

enum PDLibSensorPDStatsFormat : INT32
{
    PDLibSensorPDStatsCustom                = 0,
    PDLibSensorPDStatsRaw10Conf8BitPd10Bit  = 1,
    PDLibSensorPDStatsRaw10Conf11BitPd11Bit = 2,
    PDLibSensorPDStatsRaw10Conf11BitPd10Bit = 3,
};

enum PDLibSensorOrientation : INT32
{
    PDLibOrientationDefault       = 0,
    PDLibOrientationMirror        = 1,
    PDLibOrientationFlip          = 2,
    PDLibOrientationMirrorAndFlip = 3,
    PDLibOrientationMax           = 4,
};

enum PDLibSensorType : INT32
{
    PDLibSensorInvalid = 0,
    PDLibSensorType1   = 1,
    PDLibSensorType2   = 2,
    PDLibSensorType3   = 3,
    PDLibSensorDualPD  = 4,
    PDLibSensorQPD     = 5,
    PDLibSensorTypeMax = 6,
};

enum PDLibBufferFormat : INT32
{
    PDLibBufferFormatMipi8      = 0,
    PDLibBufferFormatMipi10     = 1,
    PDLibBufferFormatUnpacked16 = 2,
    PDLibBufferFormatPacked10   = 3,
    PDLibBufferFormatMipi12     = 4,
};

enum PDLibPixelOrderType : INT32
{
    PDLibPixelOrderDefault = 0,
    PDLibPixelOrderLR      = 1,
    PDLibPixelOrderRL      = 2,
};

enum PDLibSensorBayerPattern : INT32
{
    PDLibBayerBGGR = 0,
    PDLibBayerGBRG = 1,
    PDLibBayerGRBG = 2,
    PDLibBayerRGGB = 3,
};

/// Two sets of names over the same numbers: diode pixels and shielded pixels.
enum PDLibPixelShieldInfo : INT32
{
    PDLibRightDiodePixel       = 0,
    PDLibLeftDiodePixel        = 1,
    PDLibUpDiodePixel          = 2,
    PDLibDownDiodePixel        = 3,
    PDLibTopLeftDiodePixel     = 4,
    PDLibTopRightDiodePixel    = 5,
    PDLibBottomLeftDiodePixel  = 6,
    PDLibBottomRightDiodePixel = 7,
    PDLibLeftShieldedPixel     = 0,
    PDLibRightShieldedPixel    = 1,
    PDLibDownShieldedPixel     = 2,
    PDLibUpShieldedPixel       = 3,
};

enum PDLibReturnStatus : INT32
{
    PDLibSuccess      = 0,
    PDLibMemoryError  = 1,
    PDLibParamError   = 2,
    PDLibRunningError = 3,
    PDLibErrorMax     = 1023,
};

enum StatisticsStartUp : INT32
{
    StatisticsStartUpValid   = 0,
    StatisticsStartUpInvalid = 1,
};

enum StatsAlgoRole : INT32
{
    StatsAlgoRoleDefault = 0,
    StatsAlgoRoleMaster  = 1,
    StatsAlgoRoleSlave   = 2,
    StatsAlgoRoleMax     = 3,
};

enum PDLibCreateParamType : INT32
{
    PDLibCreateParamTypeInvalid             = -1,
    PDLibCreateParamTypeCameraOpenIndicator = 0,
    PDLibCreateParamTypeLibName             = 1,
    PDLibCreateParamTypeCameraInfo          = 2,
    PDLibCreateParamTypeSessionHandle       = 3,
    PDLibCreateParamTypeCount               = 4,
    PDLibCreateParamTypeMax                 = 2147483647,
};

enum PDLibDestroyParamType : INT32
{
    PDLibDestroyParamTypeInvalid              = -1,
    PDLibDestroyParamTypeCameraCloseIndicator = 0,
    PDLibDestroyParamTypeCameraInfo           = 1,
    PDLibDestroyParamTypeCount                = 2,
    PDLibDestroyParamTypeMax                  = 2147483647,
};

enum PDConfigType : INT32
{
    PDConfigTypeInvalid = -1,
    PDConfigTypeIFEData = 0,
    PDConfigTypeMax     = 2147483647,
};

enum PDTriggerType : INT32
{
    PDTriggerTypeInvalid = -1,
    PDTriggerEarly       = 0,
    PDTriggerNormal      = 1,
    PDTriggerTypeCount   = 2,
};

enum PDLibRoiType : INT32
{
    PDLibRoiTypeCenter       = 0,
    PDLibRoiTypeFace         = 1,
    PDLibRoiTypeTouch        = 2,
    PDLibRoiTypeTopLeft      = 3,
    PDLibRoiTypeTopCenter    = 4,
    PDLibRoiTypeTopRight     = 5,
    PDLibRoiTypeLeft         = 6,
    PDLibRoiTypeRight        = 7,
    PDLibRoiTypeBottomLeft   = 8,
    PDLibRoiTypeBottomCenter = 9,
    PDLibRoiTypeBottomRight  = 10,
    PDLibRoiTypeSalient      = 11,
};

// "Inital" is the boundary's spelling.
enum PDLibProcessingResult : INT32
{
    PDLibResultInital     = 0,
    PDLibResultCenter     = 1,
    PDLibResultPeripheral = 2,
};

enum PDLibGetParamType : INT32
{
    PDLibGetParamInvalid  = -1,
    PDLibGetParamHWConfig = 0,
    PDLibGetParamSWInfo   = 1,
    PDLibGetParamMax      = 2147483647,
};

enum PDHwPathSelect : INT32
{
    PDHwPathSelectInvalid = -1,
    PDHwPathSelectHW      = 0,
    PDHwPathSelectCAMIF   = 1,
};

enum PDHwOutputSelect : INT32
{
    PDHwOutputSelectInvalid         = -1,
    PDHwOutputSelectIIRprocessedROI = 0,
    PDHwOutputSelectSADstats        = 1,
};

enum PDHwHDRPixelType : INT32
{
    PDHwHDRPixelInvalid = -1,
    PDHwHDRPixelLong    = 0,
    PDHwHDRPixelShort   = 1,
};

enum PDHwHDRModeType : INT32
{
    PDHwHDRModeInvalid = -1,
    PDHwHDRModeAuto    = 0,
    PDHwHDRModeLong    = 1,
    PDHwHDRModeShort   = 2,
};

enum PDHwModeSelect : INT32
{
    PDHwModeSelectInvalid  = -1,
    PDHwModeSelectDualPD   = 0,
    PDHwModeSelectSparsePD = 1,
};

// ---- Create and destroy parameter lists --------------------------------------------------------

struct StatsCameraInfo
{
    StatsAlgoRole algoRole;
    UINT32        cameraId;
};

struct PDLibCreateParam
{
    PDLibCreateParamType createParamType;
    VOID*                pParam;
    UINT32               sizeOfParam;
};

struct PDLibCreateParamList
{
    PDLibCreateParam* pParamList;
    UINT32            paramCount;
};

struct PDLibDestroyParam
{
    PDLibDestroyParamType destroyParamType;
    VOID*                 pParam;
    UINT32                sizeOfParam;
};

struct PDLibDestroyParamList
{
    PDLibDestroyParam* pParamList;
    UINT32             paramCount;
};

// ---- Initialisation ----------------------------------------------------------------------------

struct PDLibDimensionInfo
{
    UINT width;
    UINT height;
};

struct PDLibRectangleInfo
{
    INT  x;
    INT  y;
    UINT width;
    UINT height;
};

struct PDLibPDPixelInfo
{
    INT                  x;
    INT                  y;
    PDLibPixelShieldInfo type;
};

struct PDLibBlockPattern
{
    UINT               pixelCount;
    PDLibPDPixelInfo   pixelCoordinate[PDLibMaxPixelCount];
    UINT32             horizontalPDOffset;
    UINT32             verticalPDOffset;
    PDLibDimensionInfo blockDimension;
};

struct PDLibLcrBlockPattern
{
    UINT               lineCount;
    UINT               linePosition[PDLibMaxBlockHeight];
    UINT32             horizontalPDOffset;
    UINT32             verticalPDOffset;
    PDLibDimensionInfo blockDimension;
};

struct PDLibSensorNativePatternInfo
{
    PDLibBlockPattern blockPattern;
    UINT              horizontalBlockCount;
    UINT              verticalBlockCount;
};

struct PDLibSensorNativeInfo
{
    PDLibSensorNativePatternInfo patternInfo;
    PDLibRectangleInfo           cropRegion;
    UINT                         originalImageWidth;
    UINT                         originalImageHeight;
    UINT                         currentImageWidth;
    UINT                         currentImageHeight;
    PDLibSensorOrientation       orientation;
    PDLibBufferFormat            bufferFormat;
    FLOAT                        horizontalDownscaleFactor;
    FLOAT                        verticalDownscaleFactor;
    FLOAT                        PDOffsetCorrection;
    FLOAT                        lcrPDOffset;
    PDLibLcrBlockPattern         lcrBlockPattern;
    PDLibSensorBayerPattern      bayerPattern;
};

struct PDLibLcrBufferDataInfo
{
    PDLibLcrBlockPattern isp1BlockPattern;
    PDLibLcrBlockPattern isp2BlockPattern;
    UINT                 isp1BufferWidth;
    UINT                 isp1BufferStride;
    UINT                 isp2BufferWidth;
    UINT                 isp2BufferStride;
    UINT                 ispBufferHeight;
    UINT                 imageOverlap;
    UINT                 isp2ImageOffset;
    PDLibBufferFormat    bufferFormat;
};

struct PDLibDataBufferInfo
{
    PDLibBlockPattern      isp1BlockPattern;
    PDLibBlockPattern      isp2BlockPattern;
    UINT                   isp1BufferWidth;
    UINT                   isp1BufferStride;
    UINT                   isp2BufferWidth;
    UINT                   isp2BufferStride;
    UINT                   ispBufferHeight;
    UINT                   imageOverlap;
    UINT                   isp2ImageOffset;
    PDLibBufferFormat      bufferFormat;
    PDLibSensorType        sensorType;
    PDLibLcrBufferDataInfo lcrBufferData;
};

struct PDLibSettingsInfo
{
    BOOL   isPDHWEnabled;
    BOOL   enablePDLibProfiling;
    UINT   enablePDLibTestMode;
    UINT   enablePDLibLog;
    UINT   enablePDLibDump;
    BOOL   disableLCR;
    UINT32 profile3A;
};

struct PDHWEnableConditions
{
    BOOL isDualPDEnableConditionsMet;
    BOOL isSparsePDEnableConditionsMet;
    BOOL isLCREnableConditionsMet;
};

struct StatsSensorModeCropInfo
{
    UINT firstPixel;
    UINT firstLine;
    UINT lastPixel;
    UINT lastLine;
};

struct PDLibInitParam
{
    PDLibSensorNativeInfo    nativePatternInfo;
    UINT                     blackLevel;
    UINT                     pixelDepth;
    UINT                     isHdrModeEnabled;
    UINT                     PDPixelOverflowThreshold;
    INT16                    macroDac;
    INT16                    infinityDac;
    FLOAT                    actuatorSensitivity;
    PDLibPixelOrderType      pixelOrderType;
    VOID*                    pCalibrationParam; ///< a PDAFDCCCalibrationData, or null
    UINT32                   defocusBitShift;
    INT32                    defocusConfidenceThreshold;
    PDLibSensorPDStatsFormat sensorPDStatsFormat;
    PDLibDataBufferInfo      bufferDataInfo;
    StatsCameraInfo          cameraInfo;
    PDLibSettingsInfo        settingsInfo;
    PDHWEnableConditions     pdHWEnableConditions;
    VOID*                    pTonemetryPDLib;
    StatsSensorModeCropInfo  sensorCropInfo;
};

struct StatsTuningData
{
    VOID* pTuningSetManager;
    VOID* pTuningModeSelectors;
    UINT  numSelectors;
};

struct PDLibCreateParams
{
    PDLibInitParam  initParam;
    StatsTuningData tuningStats;
};

/// The sensor's defocus calibration, owned by the host; the engine goes on pointing into it.
struct PDAFDCCCalibrationData
{
    BOOL   isAvailable;
    UINT16 knotXCount;
    UINT16 knotYCount;
    FLOAT  slopeData[MaxPDAFKnotX * MaxPDAFKnotY];
    FLOAT  offsetData[MaxPDAFKnotX * MaxPDAFKnotY];
    UINT16 slopeOffsetAddressX[MaxPDAFKnotX];
    UINT16 slopeOffsetAddressY[MaxPDAFKnotY];
};

struct PDLibConfigParams
{
    PDConfigType        configType;
    PDLibDataBufferInfo PDBufferInfo;
};

// ---- Per frame -------------------------------------------------------------------------------

struct PDLibWindowInfo
{
    FLOAT startX; ///< fractions of the current image
    FLOAT startY;
    FLOAT endX;
    FLOAT endY;
};

struct PDLibWindowConfig
{
    PDLibRoiType    roiType;
    PDLibWindowInfo fixedAFWindow;
    UINT            horizontalWindowCount;
    UINT            verticalWindowCount;
    UINT32          targetPosition;
    INT32           targetDistance;
};

struct PDLibParam
{
    UINT16*           pPDBuffer; ///< the sensor's statistic buffer, read as bytes
    INT               PDBufferFd;
    SIZE_T            PDBufferSize;
    UINT16*           pRawBuffer;
    PDLibWindowConfig windowConfig;
    FLOAT             imageAnalogGain;
    FLOAT             currentFps;
    FLOAT             integrationTime;
    INT16             lensPosition;
    StatsCameraInfo   cameraInfo;
    UINT64*           pPDHWBuffer;
    INT               PDHWBufferFd;
    SIZE_T            PDHWBufferSize;
    BOOL              isPDHWEnable;
    UINT16*           pLCRHWBuffer;
};

struct PDLibInputs
{
    PDLibParam        processParam;
    UINT              numOfWrittenPDlines;
    VOID*             pMemoryPool;
    UINT64            requestId;
    PDTriggerType     trigger;
    VOID*             pKelStatsSession;
    StatisticsStartUp startupMode;
};

struct PDLibRangeInfo
{
    INT16 rangeNear;
    INT16 rangeFar;
};

struct PDLibDefocusInfo
{
    INT            defocus;
    UINT           confidence;
    FLOAT          phaseDiff;
    PDLibRangeInfo defocusRange;
};

struct PDLibDepthMapInfo
{
    FLOAT  PDMap[PDLibMaxMapGridCount];
    UINT   ConfidenceMap[400];
    INT16  DefocusRangeNearMap[400];
    INT16  DefocusRangeFarMap[400];
    INT    DefocusMap[400];
    UINT32 horiNumOfRegion;
    UINT32 vertNumOfRegion;
    UINT32 widthOfRegion;
    UINT32 heightOfRegion;
    UINT32 horiRegionOffset;
    UINT32 vertRegionOffset;
};

struct PDLibOutputData
{
    PDLibDefocusInfo      defocus[PDLibMaxWindowCount];
    UINT16                isPeripheralValid;
    PDLibDefocusInfo      resultPeripheral[8];
    PDLibProcessingResult processingResult;
    UINT                  horizontalWindowCount;
    UINT                  verticalWindowCount;
    UINT                  windowNumber;
    PDLibDepthMapInfo     depthMapInfo;
};

struct PDLibOutputs
{
    PDLibOutputData libOutput;
};

// ---- Parameter query ---------------------------------------------------------------------------

struct PDLibGetParamOutput
{
    VOID*  pGetParamOutput;
    UINT32 sizeOfGetParamOutput;
    UINT32 sizeOfWrittenGetParamOutput;
};

struct PDLibGetParams
{
    PDLibGetParamOutput* pOutputInfo;
    PDLibGetParamType    type;
};

// The PD hardware block's configuration. The library fills only enablePDHw; the rest is the
// host's and is declared because the boundary declares it.

struct PDHwCrop
{
    BOOL   enablePDCrop;
    UINT32 firstPixelCrop;
    UINT32 lastPixelCrop;
    UINT32 firstLineCrop;
    UINT32 lastLineCrop;
};

struct PDHwGainMapConfig
{
    BOOL   gainMapEnable;
    UINT32 numberHorizontalGrids;
    UINT32 numberVerticalGrids;
    UINT32 horizontalPhaseInit;
    UINT32 verticalPhaseInit;
    UINT32 horizontalPhaseStep;
    UINT32 verticalPhaseStep;
    UINT16 leftLUT[PDLibGainMapLUTSize];
    UINT16 rightLUT[PDLibGainMapLUTSize];
};

struct PDHwBinConfig
{
    BOOL   enableSkipBinning;
    UINT32 verticalBinningLineCount;
    UINT32 verticalDecimateCount;
    UINT32 horizontalBinningPixelCount;
    UINT32 horizontalBinningSkip;
    UINT32 verticalBinningSkip;
};

struct PDHwBLSConfig
{
    UINT32 leftPixelBLSCorrection;
    UINT32 rightPixelBLSCorrection;
};

// "hdrThreshhold" is the boundary's spelling.
struct PDHwHDRConfig
{
    BOOL             hdrEnable;
    PDHwHDRPixelType hdrFirstPixel;
    PDHwHDRModeType  hdrModeSel;
    FLOAT            hdrThreshhold;
    FLOAT            hdrExposureRatio;
};

struct PDHwIIRConfig
{
    BOOL  IIREnable;
    FLOAT init0;
    FLOAT init1;
    FLOAT a0;
    FLOAT a1;
    FLOAT b0;
    FLOAT b1;
    FLOAT b2;
};

struct PDHwSADConfig
{
    BOOL             sadEnable;
    PDHwOutputSelect sadSelect;
    UINT32           horizontalOffset;
    UINT32           verticalOffset;
    UINT32           regionWidth;
    UINT32           regionHeight;
    UINT32           horizontalNumber;
    UINT32           verticalNumber;
    UINT32           sadShift;
    UINT32           config0Phase;
    UINT32           config1Phase;
};

struct CropCoordinate
{
    UINT32 firstLine;
    UINT32 lastLine;
    UINT32 firstPixel;
    UINT32 lastPixel;
};

struct PDHwLCRConfig
{
    BOOL           enable;
    CropCoordinate crop;
    UINT32         blockHeight;
    UINT32         componentMask;
    INT32          componentShift[PDLibLCRColorComponentCount];
    UINT32         lineMask[PDLibLCRMaskCount];
    UINT32         flushMask[PDLibLCRMaskCount];
};

struct PDHwLineExtractorConfig
{
    UINT16 globalOffsetLines;
    UINT16 blockHeight;
    UINT16 pdPixelWidth;
    UINT16 verticalBlockCount;
    UINT16 blockPDRowCount;
    UINT16 horizontalOffset[PDLibMaxPDPixelRows];
    UINT16 verticalOffset[PDLibMaxPDPixelRows];
    BOOL   halfLine[PDLibMaxPDPixelRows];
};

struct PDHwPixelSeparatorConfig
{
    UINT16 rowPerBlock;
    UINT16 pixelsPerBlock;
    UINT16 outputHeight;
    UINT16 outputWidth;
    UINT16 pdLMap[PDLibMaxLeftOrRightPDPixels];
    UINT16 pdRMap[PDLibMaxLeftOrRightPDPixels];
};

struct PDHWResamplerPixel
{
    INT16 x;
    INT16 y;
};

struct PDHWResamplerCoeff
{
    FLOAT k0;
    FLOAT k1;
    FLOAT k2;
    FLOAT k3;
};

struct PDHWResamplerInstruction
{
    PDHWResamplerPixel pixelLUT[PDLibResamplerInputCount];
    PDHWResamplerCoeff coeffLUT[PDLibResamplerInputCount];
};

struct PDHwResamplerConfig
{
    BOOL                     enable;
    PDHWResamplerInstruction instruction[PDLibResamplerInstructionSize];
    UINT16                   inputHeight;
    UINT16                   inputWidth;
    UINT16                   outputHeight;
    UINT16                   outputWidth;
};

struct PDHwFIRConfig
{
    BOOL  enable;
    FLOAT a0;
    FLOAT a1;
    FLOAT a2;
    FLOAT a3;
    FLOAT a4;
    INT16 shift;
};

struct PDHwCSIDPixelExtractorConfig
{
    BOOL     enable;
    PDHwCrop cropConfig;
    UINT16   blockHeight;
    UINT16   blockWidth;
    BOOL     pdPixelMap[PDLibMaxPixelsInBlock];
};

struct SparsePDHwConfig
{
    PDHwLineExtractorConfig      LEConfig;
    PDHwPixelSeparatorConfig     PSConfig;
    PDHwResamplerConfig          RSConfig;
    PDHwFIRConfig                FIRConfig;
    PDHwCSIDPixelExtractorConfig PEConfig;
};

struct PDHwConfig
{
    BOOL              enablePDHw;
    PDHwPathSelect    pathSelect;
    BOOL              enableEarlyInterrupt;
    UINT32            earlyInterruptTransactionCount;
    UINT32            firstPixelSelect;
    PDHwCrop          cropConfig;
    PDHwGainMapConfig gainMapConfig;
    PDHwBinConfig     binConfig;
    PDHwBLSConfig     BLSConfig;
    PDHwHDRConfig     HDRConfig;
    PDHwIIRConfig     IIRConfig;
    PDHwSADConfig     SADConfig;
    PDHwLCRConfig     LCRConfig;
    PDHwModeSelect    modeSelect;
    SparsePDHwConfig  sparseConfig;
};

#endif // PDLIBTYPES_H
