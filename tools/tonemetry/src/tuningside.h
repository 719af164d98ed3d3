// One tuning, a file or a device, as the tools that compare and edit tunings see it.
#ifndef TONEMETRY_TUNINGSIDE_H
#define TONEMETRY_TUNINGSIDE_H

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "livereply.h"

namespace tonemetry
{
/// A tuning to read and change through the store's text access: a file loaded in-process or a
/// device's live tuning link. Each question answers nothing when the side could not be asked;
/// Trouble() then says why.
class TuningSide
{
public:
    virtual ~TuningSide() = default;

    /// Every mode of the tree, named with the root ("Default", "Default|Usecase.Video"), parents
    /// before children, siblings in the tree's order.
    virtual std::vector<std::string> ModePaths() = 0;
    /// The module names that may resolve in some mode.
    virtual std::vector<std::string> ModuleNames() = 0;
    /// The rows that `path` (a module name, then members) lists in `mode`, none when the path
    /// does not resolve there; nothing when the side could not be asked.
    virtual std::optional<std::vector<InfoRow>> Info(const std::string& mode, const std::string& path) = 0;
    /// The texts of the members `names` of the record at `path` in `mode`, as `name=value`
    /// items; nothing when the side could not be asked.
    virtual std::optional<std::vector<NamedValue>> Values(const std::string& mode, const std::string& path,
                                                          const std::vector<std::string>& names) = 0;
    /// The names of the child modes of `mode` ("Usecase.Video"), in the tree's order.
    virtual std::optional<std::vector<std::string>> ChildModes(const std::string& mode) = 0;
    /// Sets `items` (member names below `path` and their texts) and answers the texts the side
    /// holds afterwards for the items it took.
    virtual std::optional<std::vector<NamedValue>>  Set(const std::string& mode, const std::string& path,
                                                        const std::vector<NamedValue>& items) = 0;
    virtual std::optional<std::vector<std::string>> ActiveModes()                             = 0;
    virtual std::optional<std::vector<NamedValue>>  ControlValues()                           = 0;
    virtual std::optional<std::vector<NamedValue>>  TriggerValues()                           = 0;
    virtual std::optional<DeviceInfo>               Device()                                  = 0;
    /// What went wrong when the last question got no answer, for the user.
    virtual std::string Trouble() const = 0;
};

/// The tuning a command line names: `live:HOST[:PORT]` a device, asked with `timeout` seconds
/// for each request, anything else a file loaded in-process. Null, with the reason in
/// `*error`, when it cannot be had.
std::unique_ptr<TuningSide> OpenTuningSide(const std::string& name, double timeout, std::string* error);
} // namespace tonemetry

#endif // TONEMETRY_TUNINGSIDE_H
