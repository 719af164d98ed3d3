// A tuning file as one side of a comparison: loaded in-process in buffer mode, as a device
// loads it, with the live link switched off, and asked through the store's text access.
#ifndef TONEMETRY_FILESIDE_H
#define TONEMETRY_FILESIDE_H

#include <memory>
#include <string>

#include "parametersetmanager.h"
#include "tuningdiff.h"

namespace tonemetry
{
class FileSide : public TuningSide
{
public:
    /// Loads `path` into the manager whose catalogue knows its modules. Null, with the reason
    /// in `*error` (the store's own text for a file it refuses), when that fails.
    static std::unique_ptr<FileSide> Load(const std::string& path, std::string* error);

    std::vector<std::string>                ModePaths() override;
    std::vector<std::string>                ModuleNames() override;
    std::optional<std::vector<InfoRow>>     Info(const std::string& mode, const std::string& path) override;
    std::optional<std::vector<NamedValue>>  Values(const std::string& mode, const std::string& path,
                                                   const std::vector<std::string>& names) override;
    std::optional<std::vector<std::string>> ChildModes(const std::string& mode) override;
    std::optional<std::vector<NamedValue>>  Set(const std::string& mode, const std::string& path,
                                                const std::vector<NamedValue>& items) override;
    std::optional<std::vector<std::string>> ActiveModes() override;
    std::optional<std::vector<NamedValue>>  ControlValues() override;
    std::optional<std::vector<NamedValue>>  TriggerValues() override;
    std::optional<DeviceInfo>               Device() override;
    std::string                             Trouble() const override { return {}; }

private:
    FileSide(std::unique_ptr<ParameterSetManager> manager, std::string path)
        : m_manager(std::move(manager)), m_path(std::move(path))
    {
    }
    /// The numbered form of a named mode path that the store's text access reads ("0.0|2.2"),
    /// as the live link makes it.
    const std::string& Shorthand(const std::string& mode);

    static constexpr unsigned ShorthandSize = 4096;
    /// The room the link gives the active modes, control and trigger values.
    static constexpr unsigned LinkTextSize = 4090;

    std::unique_ptr<ParameterSetManager> m_manager;
    std::string                          m_path;
    std::vector<char>                    m_text = std::vector<char>(1u << 20); ///< GetValue's output
    std::string                          m_shorthandOf;                        ///< the mode of m_shorthand
    std::string                          m_shorthand;
};
} // namespace tonemetry

#endif // TONEMETRY_FILESIDE_H
