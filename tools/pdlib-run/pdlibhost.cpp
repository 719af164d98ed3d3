#include "pdlibhost.h"

#include <dlfcn.h>

#include "runerrors.h"

namespace pdlibrun
{
namespace
{
constexpr UINT32 CameraId = 0;
// The indicator value of an actual open or close; any other value is ignored by the library.
constexpr UINT32 ActualOpenOrClose = 1;
// What this framework hands out as the base of the library's vendor tag section.
constexpr UINT32 FrameworkVendorTagBase = 0x80000000u;

KelResult GetVendorTagBase(KelVendorTagBaseInfo* pVendorTagBaseInfo)
{
    if (nullptr == pVendorTagBaseInfo)
    {
        return KelResultEInvalidPointer;
    }
    pVendorTagBaseInfo->vendorTagBase = FrameworkVendorTagBase;
    return KelResultSuccess;
}

std::string ResultText(KelResult result)
{
    return "result " + std::to_string(result);
}
} // namespace

void PdLibHost::LibraryCloser::operator()(void* pHandle) const
{
    dlclose(pHandle);
}

PdLibHost::PdLibHost(const std::string& libraryPath)
{
    ResolveCallbacks(libraryPath);

    KelAlgorithmInterface services = {};
    services.size                  = sizeof(services);
    services.pGetVendorTagBase     = GetVendorTagBase;
    m_callbacks.pfnSetAlgoInterface(&services);

    KelQueryVendorTag query  = {sizeof(query), nullptr};
    KelResult         result = m_callbacks.pfnQueryVendorTag(&query);
    if ((KelResultSuccess != result) || (nullptr == query.pVendorTagInfo))
    {
        throw LibraryError("the vendor tag query failed: " + ResultText(result));
    }

    KelAlgorithmCapsInfo capabilities = {sizeof(capabilities), 0};
    result                            = m_callbacks.pfnGetCapabilities(&capabilities);
    if (KelResultSuccess != result)
    {
        throw LibraryError("the capability query failed: " + ResultText(result));
    }

    OpenCamera();
}

PdLibHost::~PdLibHost()
{
    if (nullptr == m_pInstance)
    {
        return;
    }
    UINT32            closeIndicator = ActualOpenOrClose;
    StatsCameraInfo   cameraInfo     = {StatsAlgoRoleDefault, CameraId};
    PDLibDestroyParam params[]       = {
              {PDLibDestroyParamTypeCameraCloseIndicator, &closeIndicator, sizeof(closeIndicator)},
              {PDLibDestroyParamTypeCameraInfo, &cameraInfo, sizeof(cameraInfo)},
    };
    const PDLibDestroyParamList list = {params, 2};
    m_pInstance->PDLibDestroy(m_pInstance, &list);
}

void PdLibHost::ResolveCallbacks(const std::string& libraryPath)
{
    m_library.reset(dlopen(libraryPath.c_str(), RTLD_NOW | RTLD_LOCAL));
    if (!m_library)
    {
        throw LibraryError(std::string("cannot load the library: ") + dlerror());
    }
    // Reading the symbol through a void* is how dlsym hands out a function.
    void* pEntry = dlsym(m_library.get(), "KelPDLibraryEntry");
    if (nullptr == pEntry)
    {
        throw LibraryError(libraryPath + " exports no KelPDLibraryEntry");
    }
    const PFNKELPDLIBRARYENTRY entry = reinterpret_cast<PFNKELPDLIBRARYENTRY>(pEntry);

    m_callbacks.size = sizeof(m_callbacks);
    entry(&m_callbacks);
    if ((nullptr == m_callbacks.pfnGetCapabilities) || (nullptr == m_callbacks.pfnQueryVendorTag) ||
        (nullptr == m_callbacks.pfnCreate) || (nullptr == m_callbacks.pfnSetAlgoInterface))
    {
        throw LibraryError("KelPDLibraryEntry left the callbacks empty");
    }
}

void PdLibHost::OpenCamera()
{
    UINT32           openIndicator = ActualOpenOrClose;
    StatsCameraInfo  cameraInfo    = {StatsAlgoRoleDefault, CameraId};
    PDLibCreateParam params[]      = {
             {PDLibCreateParamTypeCameraOpenIndicator, &openIndicator, sizeof(openIndicator)},
             {PDLibCreateParamTypeCameraInfo, &cameraInfo, sizeof(cameraInfo)},
    };
    const PDLibCreateParamList list   = {params, 2};
    const KelResult            result = m_callbacks.pfnCreate(&m_pInstance, &list);
    if ((KelResultSuccess != result) || (nullptr == m_pInstance))
    {
        throw LibraryError("the library made no instance for camera 0: " + ResultText(result));
    }
}

KelResult PdLibHost::Initialize(const PDLibCreateParams& params)
{
    return m_pInstance->PDLibInitialize(m_pInstance, &params);
}

KelResult PdLibHost::Process(const PDLibInputs& inputs, PDLibOutputs* pOutputs)
{
    return m_pInstance->PDLibProcess(m_pInstance, &inputs, pOutputs);
}
} // namespace pdlibrun
