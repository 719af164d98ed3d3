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

    std::vector<std::string>               ModePaths() override;
    std::vector<std::string>               ModuleNames() override;
    std::optional<std::vector<InfoRow>>    Info(const std::string& mode, const std::string& path) override;
    std::optional<std::vector<NamedValue>> Values(const std::string& mode, const std::string& path,
                                                  const std::vector<std::string>& names) override;
    std::string                            Trouble() const override { return {}; }

private:
    explicit FileSide(std::unique_ptr<ParameterSetManager> manager) : m_manager(std::move(manager)) {}
    /// The numbered form of a named mode path that the store's text access reads ("0.0|2.2"),
    /// as the live link makes it.
    const std::string& Shorthand(const std::string& mode);

    static constexpr unsigned ShorthandSize = 4096;

    std::unique_ptr<ParameterSetManager> m_manager;
    std::vector<char>                    m_text = std::vector<char>(1u << 20); ///< GetValue's output
    std::string                          m_shorthandOf;                        ///< the mode of m_shorthand
    std::string                          m_shorthand;
};
} // namespace tonemetry

#endif // TONEMETRY_FILESIDE_H
