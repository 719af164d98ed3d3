// A tuning file loaded in-process as a device loads it, with the live link switched off (no port
// is opened), and every error and warning line the store logs on the way.
#ifndef TONEMETRY_DEVICELOAD_H
#define TONEMETRY_DEVICELOAD_H

#include <memory>
#include <string>
#include <vector>

#include "parametersetmanager.h"

namespace tonemetry
{
/// The set managers a tuning file can be loaded into, by class name.
const std::vector<std::string>& SetManagerNames();

/// A new manager of class `name`, its link off; null for an unknown name.
std::unique_ptr<ParameterSetManager> MakeSetManager(const std::string& name);

struct LoggedLine
{
    std::string level; ///< "error" or "warning" (the store's errors that begin "Warning:")
    std::string text;  ///< the store's own text, without its source-file prefix
};

/// Collects the store's error and warning lines while it lives; one at a time.
class StoreLogCapture
{
public:
    StoreLogCapture();
    ~StoreLogCapture();
    StoreLogCapture(const StoreLogCapture&)            = delete;
    StoreLogCapture& operator=(const StoreLogCapture&) = delete;

    const std::vector<LoggedLine>& Lines() const { return m_lines; }

private:
    static void Sink(uint64_t group, const char* pLevelLetter, uint32_t level, const char* pLine, void* pContext);

    std::vector<LoggedLine> m_lines;
};

/// The manager whose catalogue knows most of the file's modules: the one that finds the fewest
/// unknown types in a buffer-mode load.
std::string LikeliestManager(const std::vector<uint8_t>& image);

/// The named path of a mode of a loaded tree ("Default", "Default|Usecase.Video").
std::string NamedModePath(const ModeEntry* mode);
} // namespace tonemetry

#endif // TONEMETRY_DEVICELOAD_H
