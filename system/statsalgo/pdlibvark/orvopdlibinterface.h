// The exported face of the phase-detection library: entry points, the per-camera instances and
// the vendor tags that the library declares.
#ifndef ORVOPDLIBINTERFACE_H
#define ORVOPDLIBINTERFACE_H

#include "kelalgointerface.h"
#include "pdlibtypes.h"
#include "pdlibvark_export.h"

struct KELPDLib;

/// The function table of one camera instance, in the host's order.
struct KELPDLib
{
    KelResult (*PDLibInitialize)(KELPDLib* pPDLib, const PDLibCreateParams* pCreateParams);
    void (*PDLibDestroy)(KELPDLib* pPDLib, const PDLibDestroyParamList* pDestroyParams);
    KelResult (*PDLibConfigure)(KELPDLib* pPDLib, const PDLibConfigParams* pConfigParams);
    KelResult (*PDLibGetParam)(KELPDLib* pPDLib, PDLibGetParams* pGetParams);
    KelResult (*PDLibProcess)(KELPDLib* pPDLib, const PDLibInputs* pInput, PDLibOutputs* pOutput);
};

/// The per-camera record. algoOps comes first, so a pointer to the record is the host's handle.
struct PDLibInternalData
{
    KELPDLib algoOps;
    VOID*    pPDCoreLibrary; ///< the pdlib_type1 engine
};

typedef KelResult (*PFNALGORITHMGETCAPABILITIES)(KELALGORITHMCAPSINFO* pCapsInfo);
typedef KelResult (*PFNKELQUERYVENDORTAG)(KELQUERYVENDORTAG* pQueryVendorTag);
typedef KelResult (*CREATEPD)(KELPDLib** ppPDLib, const PDLibCreateParamList* pCreateParams);
typedef void (*PFKELSETALGORITHMINTERFACE)(KelAlgorithmInterface* pAlgoInterface);

/// Filled by KelPDLibraryEntry, owned by the host.
struct KelPDLibraryCallbacks
{
    UINT32                      size; ///< set by the host; at least sizeof(KelPDLibraryCallbacks)
    UINT32                      majorVersion;
    UINT32                      minorVersion;
    PFNALGORITHMGETCAPABILITIES pfnGetCapabilities;
    PFNKELQUERYVENDORTAG        pfnQueryVendorTag;
    CREATEPD                    pfnCreate;
    PFKELSETALGORITHMINTERFACE  pfnSetAlgoInterface;
};

typedef void (*PFNKELPDLIBRARYENTRY)(KelPDLibraryCallbacks* pCallBacks);

static_assert(sizeof(KelPDLibraryCallbacks) == 48, "KelPDLibraryCallbacks is 48 bytes under LP64");
static_assert(sizeof(KELPDLib) == 40, "KELPDLib layout");
static_assert(sizeof(PDLibInternalData) == 48, "PDLibInternalData layout");
static_assert(sizeof(PDLibCreateParam) == 24, "PDLibCreateParam layout");
static_assert(sizeof(PDLibCreateParamList) == 16, "PDLibCreateParamList layout");
static_assert(sizeof(PDLibDestroyParam) == 24, "PDLibDestroyParam layout");
static_assert(sizeof(StatsCameraInfo) == 8, "StatsCameraInfo layout");
static_assert(sizeof(PDAFDCCCalibrationData) == 1600, "PDAFDCCCalibrationData layout");
static_assert(sizeof(PDLibWindowConfig) == 36, "PDLibWindowConfig layout");
static_assert(sizeof(PDLibDefocusInfo) == 16, "PDLibDefocusInfo layout");
static_assert(sizeof(PDLibGetParamOutput) == 16, "PDLibGetParamOutput layout");

/// Name of the library's vendor tag section.
extern const CHAR VarkPDLibSectionName[];

extern KelVendorTagData        g_VendorTagDataPD[2];
extern KelVendorTagSectionData g_VendorTagSectionDataVarkPD[1];
extern KelVendorTagInfo        g_VendorTagInfoVarkPD;

/// The framework's services, as handed over by PDLibSetNodeInterface.
extern KelAlgorithmInterface g_KelAlgoInterface;

/// One instance per camera id, null while the camera has none.
extern PDLibInternalData* g_pPDLibData[MaxCameras];

extern "C"
{
    PDLIBVARK_API void      KelPDLibraryEntry(KelPDLibraryCallbacks* pCallBacks);
    PDLIBVARK_API KelResult CreatePDLib(KELPDLib** ppPDLib, const PDLibCreateParamList* pCreateParams);
    PDLIBVARK_API KelResult PDLibQueryVendorTag(KELQUERYVENDORTAG* pQueryVendorTag);
    PDLIBVARK_API KelResult PDGetCapabilities(KELALGORITHMCAPSINFO* pCapsInfo);
}

/// Reached by the host only through KelPDLibraryCallbacks::pfnSetAlgoInterface.
void PDLibSetNodeInterface(KelAlgorithmInterface* pAlgoInterface);

#endif // ORVOPDLIBINTERFACE_H
