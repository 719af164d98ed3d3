// Buffer-mode loads of any image by each set manager, then every mode's look-ups and texts.
#include <cstddef>
#include <cstdint>

#include "g_facedetection/fdsetmanager.h"
#include "fuzzstore.h"
#include "g_sensor/imagesensormodulesetmanager.h"
#include "g_tonemetry/tuningsetmanager.h"

namespace
{
template <typename Manager>
void LoadAndWalk(std::vector<uint8_t> image)
{
    Manager manager;
    fuzzstore::Quieten(manager);
    if (manager.LoadBinaryParameters(image.data(), image.size()))
    {
        fuzzstore::WalkEveryMode(manager);
    }
}
} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const std::vector<uint8_t> image = fuzzstore::Restamped(data, size);
    LoadAndWalk<TuningSetManager>(image);
    LoadAndWalk<ImageSensorModuleSetManager>(image);
    LoadAndWalk<fdSetManager>(image);
    return 0;
}
