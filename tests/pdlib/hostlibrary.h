// The built library as a host sees it: loaded with dlopen, entry points resolved by name, and
// cameras opened and closed through create and destroy lists.
#ifndef TESTS_PDLIB_HOSTLIBRARY_H
#define TESTS_PDLIB_HOSTLIBRARY_H

#include <optional>

#include "PdafLibrary.h"
#include "orvopdlibinterface.h"

namespace pdtest
{
struct HostLibrary
{
    PFNKELPDLIBRARYENTRY        entry           = nullptr;
    CREATEPD                    create          = nullptr;
    PFNKELQUERYVENDORTAG        queryVendorTag  = nullptr;
    PFNALGORITHMGETCAPABILITIES getCapabilities = nullptr;
    long (*getDefocus)(void* input, void* output) = nullptr;
    void* handle = nullptr;

    /// A name among the library's exported symbols, or null.
    void* Find(const char* name) const;
};

/// Loaded on first use and kept for the process: camera instances live in the library.
const HostLibrary& Library();

/// Calls CreatePDLib with a list of the indicator and the camera information, each where given.
KelResult OpenCamera(KELPDLib** ppHandle, std::optional<UINT32> indicator, std::optional<UINT32> cameraId,
                     UINT32 indicatorSize = sizeof(UINT32));

/// Calls PDLibDestroy of the handle's table with a list built the same way.
void CloseCamera(KELPDLib* pHandle, std::optional<UINT32> indicator, std::optional<UINT32> cameraId);

/// One camera really opened (indicator 1) for the life of the object, and really closed after.
class HostCamera
{
public:
    explicit HostCamera(UINT32 cameraId);
    ~HostCamera();
    HostCamera(const HostCamera&)            = delete;
    HostCamera& operator=(const HostCamera&) = delete;

    KELPDLib* Handle() const
    {
        return m_pHandle;
    }

private:
    UINT32    m_cameraId;
    KELPDLib* m_pHandle = nullptr;
};
} // namespace pdtest

#endif // TESTS_PDLIB_HOSTLIBRARY_H
