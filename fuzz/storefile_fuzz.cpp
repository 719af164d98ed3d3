// File-mode loads of any image: lazy loads, the reloads a damaged entry causes, `previous`
// chains, root listings and unloads, mode by mode.
#include <cstddef>
#include <cstdint>

#include "fuzzstore.h"
#include "g_sensor/imagesensormodulesetmanager.h"
#include "g_tonemetry/tuningsetmanager.h"

namespace
{
template <typename Manager>
void LoadAndWalk(const fuzzstore::ImageFile& file)
{
    Manager manager;
    fuzzstore::Quieten(manager);
    manager.m_fileModeAllowed = true;
    if (manager.LoadBinaryParameters(file.Path().c_str()))
    {
        fuzzstore::WalkEveryMode(manager);
        // A second walk finds unloaded modes and replaced generations.
        fuzzstore::WalkEveryMode(manager);
    }
}
} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const fuzzstore::ImageFile file(fuzzstore::Restamped(data, size));
    LoadAndWalk<TuningSetManager>(file);
    LoadAndWalk<ImageSensorModuleSetManager>(file);
    return 0;
}
