// What the store's fuzz targets share: images whose check value is recomputed, so that
// mutations reach the parsers behind it, files of them for file mode, and a walk of every mode.
#ifndef FUZZ_FUZZSTORE_H
#define FUZZ_FUZZSTORE_H

#include <cstdint>
#include <string>
#include <vector>

#include "parametersetmanager.h"
#include "g_tonemetry/tuningsetmanager.h"

namespace fuzzstore
{
/// The input as a tuning image: its last four bytes become the check value of the others.
std::vector<uint8_t> Restamped(const uint8_t* data, size_t size);

/// A file holding an image for the length of one run.
class ImageFile
{
public:
    explicit ImageFile(const std::vector<uint8_t>& image);
    ~ImageFile();
    ImageFile(const ImageFile&)            = delete;
    ImageFile& operator=(const ImageFile&) = delete;

    const std::string& Path() const { return m_path; }

private:
    std::string m_path;
};

/// Link off and logging off, as a device runs with both quiet.
void Quieten(ParameterSetManager& manager);

/// The shipped tuning sample (packed at build time), loaded once for the whole run as a device
/// keeps its manager: values that targets set accumulate.
TuningSetManager& SampleManager();

/// For every mode of the tree: the root listing along its branch, each listed module fetched
/// with the previous one handed back, its whole text read; in file mode the mode is then
/// unloaded. Reloads that a damaged file causes run inside these calls.
void WalkEveryMode(ParameterSetManager& manager);
} // namespace fuzzstore

#endif // FUZZ_FUZZSTORE_H
