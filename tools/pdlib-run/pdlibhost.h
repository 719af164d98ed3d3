// The camera framework's side of the phase-detection library: load it, open camera 0 through
// the exported entry, run it, close it. Only the boundary records are used.
#ifndef PDLIBRUN_PDLIBHOST_H
#define PDLIBRUN_PDLIBHOST_H

#include <memory>
#include <string>

#include "orvopdlibinterface.h"

namespace pdlibrun
{
class PdLibHost
{
public:
    /// Loads the library, fills the callbacks through KelPDLibraryEntry, hands over the
    /// framework's services, queries the vendor tags and capabilities and opens camera 0.
    /// Throws LibraryError when any of it fails.
    explicit PdLibHost(const std::string& libraryPath);

    /// Closes camera 0 (an actual close) and unloads the library.
    ~PdLibHost();

    PdLibHost(const PdLibHost&)            = delete;
    PdLibHost& operator=(const PdLibHost&) = delete;

    /// PDLibInitialize. The calibration that `params` points to must outlive this object: the
    /// engine keeps pointing into it.
    KelResult Initialize(const PDLibCreateParams& params);

    /// PDLibProcess of one frame.
    KelResult Process(const PDLibInputs& inputs, PDLibOutputs* pOutputs);

private:
    struct LibraryCloser
    {
        void operator()(void* pHandle) const;
    };

    void ResolveCallbacks(const std::string& libraryPath);
    void OpenCamera();

    std::unique_ptr<void, LibraryCloser> m_library;
    KelPDLibraryCallbacks                m_callbacks = {};
    KELPDLib*                            m_pInstance = nullptr;
};
} // namespace pdlibrun

#endif // PDLIBRUN_PDLIBHOST_H
