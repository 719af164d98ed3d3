#include "hostlibrary.h"

#include <dlfcn.h>

#include <vector>

#include <gtest/gtest.h>

namespace pdtest
{
namespace
{
HostLibrary Load()
{
    HostLibrary library;
    library.handle = dlopen(PDLIBVARK_LIBRARY_PATH, RTLD_NOW | RTLD_LOCAL);
    if (nullptr == library.handle)
    {
        ADD_FAILURE() << "dlopen " << PDLIBVARK_LIBRARY_PATH << ": " << dlerror();
        return library;
    }
    library.entry           = reinterpret_cast<PFNKELPDLIBRARYENTRY>(dlsym(library.handle, "KelPDLibraryEntry"));
    library.create          = reinterpret_cast<CREATEPD>(dlsym(library.handle, "CreatePDLib"));
    library.queryVendorTag  = reinterpret_cast<PFNKELQUERYVENDORTAG>(dlsym(library.handle, "PDLibQueryVendorTag"));
    library.getCapabilities = reinterpret_cast<PFNALGORITHMGETCAPABILITIES>(dlsym(library.handle, "PDGetCapabilities"));
    library.getDefocus      = reinterpret_cast<long (*)(void*, void*)>(dlsym(library.handle, "PdLibGetDefocus"));
    return library;
}

/// Entries of a create or destroy list: the indicator and the camera information, each where given.
template <typename Param, typename Type>
std::vector<Param> ParamList(Type indicatorType, Type infoType, std::optional<UINT32>& indicator, UINT32 indicatorSize,
                             StatsCameraInfo* pInfo)
{
    std::vector<Param> params;
    if (indicator.has_value())
    {
        params.push_back({indicatorType, &indicator.value(), indicatorSize});
    }
    if (nullptr != pInfo)
    {
        params.push_back({infoType, pInfo, sizeof(StatsCameraInfo)});
    }
    return params;
}
} // namespace

const HostLibrary& Library()
{
    static const HostLibrary library = Load();
    return library;
}

KelResult OpenCamera(KELPDLib** ppHandle, std::optional<UINT32> indicator, std::optional<UINT32> cameraId,
                     UINT32 indicatorSize)
{
    StatsCameraInfo               info = {StatsAlgoRoleDefault, cameraId.value_or(0)};
    std::vector<PDLibCreateParam> params =
        ParamList<PDLibCreateParam>(PDLibCreateParamTypeCameraOpenIndicator, PDLibCreateParamTypeCameraInfo, indicator,
                                    indicatorSize, cameraId.has_value() ? &info : nullptr);
    PDLibCreateParamList list = {params.data(), static_cast<UINT32>(params.size())};
    return Library().create(ppHandle, &list);
}

void CloseCamera(const KELPDLib& table, std::optional<UINT32> indicator, std::optional<UINT32> cameraId)
{
    StatsCameraInfo                info = {StatsAlgoRoleDefault, cameraId.value_or(0)};
    std::vector<PDLibDestroyParam> params =
        ParamList<PDLibDestroyParam>(PDLibDestroyParamTypeCameraCloseIndicator, PDLibDestroyParamTypeCameraInfo,
                                     indicator, sizeof(UINT32), cameraId.has_value() ? &info : nullptr);
    PDLibDestroyParamList list = {params.data(), static_cast<UINT32>(params.size())};
    table.PDLibDestroy(nullptr, &list); // the handle argument is not looked at
}

void CloseAllCameras()
{
    // PDLibDestroy is reached only through a table; copied, as closing camera 0 frees it.
    KELPDLib* pAny = nullptr;
    ASSERT_EQ(KelResultSuccess, OpenCamera(&pAny, 1U, 0U));
    const KELPDLib table = *pAny;
    for (UINT32 cameraId = 0; cameraId < MaxCameras; ++cameraId)
    {
        CloseCamera(table, 1U, cameraId);
    }
}
} // namespace pdtest
