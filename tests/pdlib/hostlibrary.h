// The built library as a host sees it: loaded with dlopen, entry points resolved by name, and
// cameras opened and closed through create and destroy lists.
#ifndef TESTS_PDLIB_HOSTLIBRARY_H
#define TESTS_PDLIB_HOSTLIBRARY_H

#include <optional>

#include "orvopdlibinterface.h"

namespace pdtest
{
struct HostLibrary
{
    void*                       handle            = nullptr;
    PFNKELPDLIBRARYENTRY        entry             = nullptr;
    CREATEPD                    create            = nullptr;
    PFNKELQUERYVENDORTAG        queryVendorTag    = nullptr;
    PFNALGORITHMGETCAPABILITIES getCapabilities   = nullptr;
    long (*getDefocus)(void* input, void* output) = nullptr;
};

/// Loaded on first use and kept for the process: camera instances live in the library.
const HostLibrary& Library();

/// Calls CreatePDLib with a list of the indicator and the camera information, each where given.
KelResult OpenCamera(KELPDLib** ppHandle, std::optional<UINT32> indicator, std::optional<UINT32> cameraId,
                     UINT32 indicatorSize = sizeof(UINT32));

/// Calls PDLibDestroy of the table with a list built the same way.
void CloseCamera(const KELPDLib& table, std::optional<UINT32> indicator, std::optional<UINT32> cameraId);

/// Closes every camera id for real, so that no instance outlives a test.
void CloseAllCameras();
} // namespace pdtest

#endif // TESTS_PDLIB_HOSTLIBRARY_H
