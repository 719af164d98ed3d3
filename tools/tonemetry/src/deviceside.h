// A device's live tuning link as one side of a comparison: every question is one request over
// a connection of its own, with the timeout per request.
#ifndef TONEMETRY_DEVICESIDE_H
#define TONEMETRY_DEVICESIDE_H

#include <string>

#include "device.h"
#include "ravlenpacket.h"
#include "tuningdiff.h"

namespace tonemetry
{
class DeviceSide : public TuningSide
{
public:
    DeviceSide(DeviceAddress device, double timeout) : m_device(std::move(device)), m_timeout(timeout) {}

    /// The device's tree, asked mode by mode from the root; empty when it could not be asked.
    std::vector<std::string> ModePaths() override;
    /// The modules the device's root lists.
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
    std::string                             Trouble() const override { return m_trouble; }

private:
    /// The text of the answer to one request; nothing, with m_trouble set, when none came.
    std::optional<std::string> Ask(ravlen::Command command, const std::string& payload);
    /// The answer to a request without ID or payload (active modes, control and trigger values,
    /// device info); nothing, with m_trouble set, when none came.
    std::optional<ravlen::Bytes> AskPlain(ravlen::Command command);
    /// Adds `mode` and, depth first, the modes below it; false when the device could not be asked.
    bool AddSubtree(const std::string& mode, std::vector<std::string>* paths);

    DeviceAddress m_device;
    double        m_timeout;
    std::string   m_trouble;
};
} // namespace tonemetry

#endif // TONEMETRY_DEVICESIDE_H
