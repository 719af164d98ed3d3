#include "tuningside.h"

#include "deviceside.h"
#include "fileside.h"

namespace tonemetry
{
std::unique_ptr<TuningSide> OpenTuningSide(const std::string& name, double timeout, std::string* error)
{
    if (0 == name.rfind("live:", 0))
    {
        const std::optional<DeviceAddress> device = ParseDevice(name, error);
        return device ? std::make_unique<DeviceSide>(*device, timeout) : nullptr;
    }
    return FileSide::Load(name, error);
}
} // namespace tonemetry
