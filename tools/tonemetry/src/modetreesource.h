// The mode tree of a pack source: its "modes" read into the modes of a file, and the mode paths
// that the source names resolved to their ids.
#ifndef TONEMETRY_MODETREESOURCE_H
#define TONEMETRY_MODETREESOURCE_H

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "modepath.h"
#include "sourcefields.h"
#include "tuningfile/model.h"

namespace tonemetry
{
class ModeTreeSource
{
public:
    /// Modes go to `*modes`, at the indices they have in the source; refusals to `*errors`.
    ModeTreeSource(std::vector<tuningfile::Mode>* modes, std::vector<EncodeError>* errors)
        : m_modes(modes), m_errors(errors)
    {
    }

    /// Reads the "modes" of `source`; without them the file holds the root alone.
    void Read(const Json& source);

    /// The id of the mode that the path text `value` names; for a parent, `beforeOnly` says
    /// that later modes are not known yet. Nothing, after a refusal, when there is no such mode.
    std::optional<uint32_t> Resolve(const Json& value, const std::string& path, bool beforeOnly = false);

    /// The named path of mode `id`, for messages.
    std::string PathText(uint32_t id) const { return ModePathText(m_paths[id]); }

private:
    void Fail(const std::string& path, const std::string& message) { m_errors->push_back({path, message}); }

    void                       ReadMode(const Json& value, const std::string& path, bool isRoot);
    void                       ReadRoot(const Json& value, const std::string& path, tuningfile::Mode mode,
                                        const std::optional<ModeElement>& element);
    void                       ReadPinned(const Json& value, const std::string& path, tuningfile::Mode* mode);
    std::optional<ModeElement> ReadName(const Json& value, const std::string& path);
    void                       Add(const tuningfile::Mode& mode, const ModePath& path);
    std::optional<uint32_t>    Find(const ModePath& path) const;

    std::vector<tuningfile::Mode>* m_modes;
    std::vector<EncodeError>*      m_errors;
    std::vector<ModePath>          m_paths; ///< of each mode, by id; a refused mode keeps an empty one
};
} // namespace tonemetry

#endif // TONEMETRY_MODETREESOURCE_H
