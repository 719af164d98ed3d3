#include "hostlibrary.h"

#include <dlfcn.h>

#include <vector>

#include <gtest/gtest.h>

namespace pdtest
{
namespace
{
template <typename Function>
Function Resolve(void* handle, const char* name)
{
    return reinterpret_cast<Function>(dlsym(handle, name));
}

HostLibrary Load()
{
    HostLibrary library;
    library.handle = dlopen(PDLIBVARK_LIBRARY_PATH, RTLD_NOW | RTLD_LOCAL);
    if (nullptr == library.handle)
    {
        ADD_FAILURE() << "dlopen " << PDLIBVARK_LIBRARY_PATH << ": " << dlerror();
        return library;
    }
    library.entry           = Resolve<PFNKELPDLIBRARYENTRY>(library.handle, "KelPDLibraryEntry");
    library.create          = Resolve<CREATEPD>(library.handle, "CreatePDLib");
    library.queryVendorTag  = Resolve<PFNKELQUERYVENDORTAG>(library.handle, "PDLibQueryVendorTag");
    library.getCapabilities = Resolve<PFNALGORITHMGETCAPABILITIES>(library.handle, "PDGetCapabilities");
    library.getDefocus      = Resolve<long (*)(void*, void*)>(library.handle, "PdLibGetDefocus");
    return library;
}
} // namespace

void* HostLibrary::Find(const char* name) const
{
    return (nullptr == handle) ? nullptr : dlsym(handle, name);
}

const HostLibrary& Library()
{
    static const HostLibrary library = Load();
    return library;
}

KelResult OpenCamera(KELPDLib** ppHandle, std::optional<UINT32> indicator, std::optional<UINT32> cameraId,
                     UINT32 indicatorSize)
{
    StatsCameraInfo info = {StatsAlgoRoleDefault, cameraId.value_or(0)};
    std::vector<PDLibCreateParam> params;
    if (indicator.has_value())
    {
        params.push_back({PDLibCreateParamTypeCameraOpenIndicator, &indicator.value(), indicatorSize});
    }
    if (cameraId.has_value())
    {
        params.push_back({PDLibCreateParamTypeCameraInfo, &info, sizeof(info)});
    }
    PDLibCreateParamList list = {params.data(), static_cast<UINT32>(params.size())};
    return Library().create(ppHandle, &list);
}

void CloseCamera(KELPDLib* pHandle, std::optional<UINT32> indicator, std::optional<UINT32> cameraId)
{
    StatsCameraInfo info = {StatsAlgoRoleDefault, cameraId.value_or(0)};
    std::vector<PDLibDestroyParam> params;
    if (indicator.has_value())
    {
        params.push_back({PDLibDestroyParamTypeCameraCloseIndicator, &indicator.value(), sizeof(UINT32)});
    }
    if (cameraId.has_value())
    {
        params.push_back({PDLibDestroyParamTypeCameraInfo, &info, sizeof(info)});
    }
    PDLibDestroyParamList list = {params.data(), static_cast<UINT32>(params.size())};
    pHandle->PDLibDestroy(pHandle, &list);
}

HostCamera::HostCamera(UINT32 cameraId) : m_cameraId(cameraId)
{
    EXPECT_EQ(KelResultSuccess, OpenCamera(&m_pHandle, 1U, cameraId));
    EXPECT_NE(nullptr, m_pHandle);
}

HostCamera::~HostCamera()
{
    if (nullptr != m_pHandle)
    {
        CloseCamera(m_pHandle, 1U, m_cameraId);
    }
}
} // namespace pdtest
