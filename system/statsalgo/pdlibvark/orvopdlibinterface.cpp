#include "orvopdlibinterface.h"

#include <cstring>
#include <new>

#include "orvomem.h"
#include "pdlib_type1.h"
#include "pdliblog.h"

const CHAR VarkPDLibSectionName[] = "com.varkstatic.stats.pdlib";

// The library declares these two tags; it never reads or publishes a value under them.
KelVendorTagData g_VendorTagDataPD[2] = {
    {"PDLibTag1", 4, 1},
    {"PDLibTag2", 1, 1},
};

KelVendorTagSectionData g_VendorTagSectionDataVarkPD[1] = {
    {VarkPDLibSectionName, 0, 2, g_VendorTagDataPD, KelTagSectionVisibleToAll},
};

KelVendorTagInfo g_VendorTagInfoVarkPD = {g_VendorTagSectionDataVarkPD, 1};

KelAlgorithmInterface g_KelAlgoInterface = {};

PDLibInternalData* g_pPDLibData[MaxCameras] = {};

namespace
{
// One past the last valid id: what a list without camera information means.
const UINT32 NoCameraId            = MaxCameras;
const UINT32 ActualOpenOrClose     = 1;
const UINT32 MinQueryVendorTagSize = 16;
const UINT32 VendorTagBaseInfoSize = 24;

const UINT32 EngineAllocFlags = OrvoMemFlagsAllocZeroMemory | OrvoMemFlagsNew;

pdlib_type1* EngineOf(const KELPDLib* pPDLib)
{
    const PDLibInternalData* pData = reinterpret_cast<const PDLibInternalData*>(pPDLib);
    return static_cast<pdlib_type1*>(pData->pPDCoreLibrary);
}

// Memory from OrvoCalloc in zeroed form, which is the initial state of both records.
template <typename T>
T* CreateZeroed()
{
    VOID* pMemory = OrvoCalloc(sizeof(T), 8, EngineAllocFlags, OrvoMemTypeAny, nullptr, 0);
    return (nullptr == pMemory) ? nullptr : new (pMemory) T();
}

KelResult PDLibInitialize(KELPDLib* pPDLib, const PDLibCreateParams* pCreateParams)
{
    if ((nullptr == pPDLib) || (nullptr == pCreateParams) || (nullptr == EngineOf(pPDLib)))
    {
        return KelResultEInvalidPointer;
    }
    return EngineOf(pPDLib)->Initialize(pCreateParams);
}

KelResult PDLibConfigure(KELPDLib* pPDLib, const PDLibConfigParams* pConfigParams)
{
    if ((nullptr == pPDLib) || (nullptr == pConfigParams) || (nullptr == EngineOf(pPDLib)))
    {
        return KelResultEInvalidPointer;
    }
    // The engine's answer is not the host's concern: configuring has no effect.
    EngineOf(pPDLib)->Configure(pConfigParams);
    return KelResultSuccess;
}

KelResult PDLibGetParam(KELPDLib* pPDLib, PDLibGetParams* pGetParams)
{
    if ((nullptr == pPDLib) || (nullptr == pGetParams))
    {
        return KelResultEFailed;
    }
    // A missing output buffer is skipped rather than written through.
    if ((PDLibGetParamHWConfig == pGetParams->type) && (nullptr != pGetParams->pOutputInfo) &&
        (nullptr != pGetParams->pOutputInfo->pGetParamOutput))
    {
        // enablePDHw false: this library asks for no PD hardware block. Only the first 32 bits
        // are written; the rest of PDHwConfig is the host's.
        const BOOL enablePDHw = 0;
        memcpy(pGetParams->pOutputInfo->pGetParamOutput, &enablePDHw, sizeof(enablePDHw));
    }
    return KelResultSuccess;
}

KelResult PDLibProcess(KELPDLib* pPDLib, const PDLibInputs* pInput, PDLibOutputs* pOutput)
{
    if ((nullptr == pPDLib) || (nullptr == pInput) || (nullptr == pOutput))
    {
        PD_LOG_ERROR("Has Null Pointer. pPDLib = %p, pInput = %p, pOutput = %p", static_cast<void*>(pPDLib),
                     static_cast<const void*>(pInput), static_cast<void*>(pOutput));
        return KelResultEInvalidPointer;
    }

    KelResult    result  = KelResultEInvalidPointer;
    pdlib_type1* pEngine = EngineOf(pPDLib);
    if (nullptr != pEngine)
    {
        result = pEngine->Process(pInput, pOutput);
    }

    const PDLibDefocusInfo& first = pOutput->libOutput.defocus[0];
    PD_LOG_INFO("result = %d, buffer %p, defocus %d conf %d pd %f processingResult %d", result,
                static_cast<void*>(pInput->processParam.pPDBuffer), first.defocus, first.confidence,
                static_cast<double>(first.phaseDiff), pOutput->libOutput.processingResult);
    return result;
}

/// The indicator and camera id found in a create or destroy list.
struct InstanceRequest
{
    const UINT32* pIndicator = nullptr;
    UINT32        cameraId   = NoCameraId;

    bool IsActual() const
    {
        return (nullptr != pIndicator) && (ActualOpenOrClose == *pIndicator) && (cameraId < MaxCameras);
    }
};

bool IsIndicator(const VOID* pParam, UINT32 sizeOfParam)
{
    return (nullptr != pParam) && (sizeOfParam >= sizeof(UINT32));
}

void PDLibDestroy(KELPDLib*, const PDLibDestroyParamList* pDestroyParams)
{
    if (0 == pDestroyParams->paramCount)
    {
        return;
    }

    InstanceRequest request;
    for (UINT32 i = 0; i < pDestroyParams->paramCount; i++)
    {
        const PDLibDestroyParam& param = pDestroyParams->pParamList[i];
        if ((PDLibDestroyParamTypeCameraCloseIndicator == param.destroyParamType) &&
            IsIndicator(param.pParam, param.sizeOfParam))
        {
            request.pIndicator = static_cast<const UINT32*>(param.pParam);
            PD_LOG_INFO("PDLibDestroy overrideCameraClose is %d g_pPDLibData %p", *request.pIndicator,
                        static_cast<void*>(g_pPDLibData));
        }
        else if ((PDLibDestroyParamTypeCameraInfo == param.destroyParamType) && (nullptr != param.pParam))
        {
            request.cameraId = static_cast<const StatsCameraInfo*>(param.pParam)->cameraId;
            PD_LOG_INFO("PDLibDestroy cameraId %d", request.cameraId);
        }
    }

    if (!request.IsActual() || (nullptr == g_pPDLibData[request.cameraId]))
    {
        return;
    }

    PDLibInternalData* pData = g_pPDLibData[request.cameraId];
    PD_LOG_INFO("PDLib pPDLibData[CamId:%d] in destroy is %p", request.cameraId, static_cast<void*>(pData));
    if (nullptr != pData->pPDCoreLibrary)
    {
        static_cast<pdlib_type1*>(pData->pPDCoreLibrary)->Destroy();
    }
    // No reference count: one actual close ends the instance for every handle the host holds.
    pData->~PDLibInternalData();
    OrvoFree(pData, OrvoMemFlagsDelete, nullptr, 0);
    g_pPDLibData[request.cameraId] = nullptr;
}
} // namespace

void KelPDLibraryEntry(KelPDLibraryCallbacks* pCallBacks)
{
    PD_LOG_INFO("KelPDLibrarEntry");
    if (nullptr == pCallBacks)
    {
        PD_LOG_ERROR("Invalid argument: pCallBacks is NULL");
        return;
    }
    if (pCallBacks->size < sizeof(KelPDLibraryCallbacks))
    {
        PD_LOG_ERROR("pCallBacks is smaller than expected");
        return;
    }
    pCallBacks->pfnGetCapabilities  = PDGetCapabilities;
    pCallBacks->pfnQueryVendorTag   = PDLibQueryVendorTag;
    pCallBacks->pfnCreate           = CreatePDLib;
    pCallBacks->pfnSetAlgoInterface = PDLibSetNodeInterface;
}

void PDLibSetNodeInterface(KelAlgorithmInterface* pAlgoInterface)
{
    g_KelAlgoInterface = *pAlgoInterface;

    KelVendorTagBaseInfo baseInfo;
    baseInfo.size           = VendorTagBaseInfoSize;
    baseInfo.vendorTagBase  = 0;
    baseInfo.pComponentName = VarkPDLibSectionName;
    baseInfo.pTagName       = nullptr;
    // The library stores no tag base: the answer is dropped.
    pAlgoInterface->pGetVendorTagBase(&baseInfo);
}

KelResult PDLibQueryVendorTag(KELQUERYVENDORTAG* pQueryVendorTag)
{
    if (nullptr == pQueryVendorTag)
    {
        KEL_LOG_ERROR("Invalid argument: pQueryVendorTag is NULL");
        return KelResultEInvalidPointer;
    }
    if (pQueryVendorTag->size < MinQueryVendorTagSize)
    {
        KEL_LOG_ERROR("pQueryVendorTag is smaller than expected");
        return KelResultEFailed;
    }
    pQueryVendorTag->pVendorTagInfo = &g_VendorTagInfoVarkPD;
    return KelResultSuccess;
}

KelResult PDGetCapabilities(KELALGORITHMCAPSINFO*)
{
    return KelResultSuccess;
}

KelResult CreatePDLib(KELPDLib** ppPDLib, const PDLibCreateParamList* pCreateParams)
{
    InstanceRequest request;
    for (UINT32 i = 0; i < pCreateParams->paramCount; i++)
    {
        const PDLibCreateParam& param = pCreateParams->pParamList[i];
        if ((PDLibCreateParamTypeCameraOpenIndicator == param.createParamType) &&
            IsIndicator(param.pParam, param.sizeOfParam))
        {
            request.pIndicator = static_cast<const UINT32*>(param.pParam);
            PD_LOG_INFO("CreatePDLib static create: overrideCameraOpen is %d", *request.pIndicator);
        }
        else if ((PDLibCreateParamTypeCameraInfo == param.createParamType) && (nullptr != param.pParam))
        {
            request.cameraId = static_cast<const StatsCameraInfo*>(param.pParam)->cameraId;
        }
    }

    if (!request.IsActual())
    {
        // The host's way of saying that the camera is not really being opened.
        PD_LOG_INFO("PDLib:Not actual open ...ignore:pOverridePDLibOpen %p",
                    static_cast<const void*>(request.pIndicator));
        return KelResultSuccess;
    }

    const UINT32 cameraId = request.cameraId;
    if (nullptr != g_pPDLibData[cameraId])
    {
        PD_LOG_INFO("PDLibData[camID:%d] has been created before %p", cameraId,
                    static_cast<void*>(g_pPDLibData[cameraId]));
        *ppPDLib = &g_pPDLibData[cameraId]->algoOps;
        return KelResultSuccess;
    }

    PD_LOG_INFO("PDLibData creation: ID: %d", cameraId);
    PDLibInternalData* pData = CreateZeroed<PDLibInternalData>();
    if (nullptr == pData)
    {
        // Out of memory: nothing to publish, and the handle stays as it was.
        PD_LOG_ERROR("PDLibData allocation failed for camera %d", cameraId);
        return KelResultSuccess;
    }
    g_pPDLibData[cameraId]         = pData;
    pData->algoOps.PDLibInitialize = PDLibInitialize;
    pData->algoOps.PDLibDestroy    = PDLibDestroy;
    pData->algoOps.PDLibConfigure  = PDLibConfigure;
    pData->algoOps.PDLibGetParam   = PDLibGetParam;
    pData->algoOps.PDLibProcess    = PDLibProcess;
    pData->pPDCoreLibrary          = CreateZeroed<pdlib_type1>();
    *ppPDLib                       = &pData->algoOps;
    PD_LOG_INFO("PDLibData[camId:%d] first time creation:%p, pPDCoreLibrary:%p", cameraId, static_cast<void*>(pData),
                pData->pPDCoreLibrary);
    return KelResultSuccess;
}
