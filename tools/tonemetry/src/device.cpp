#include "device.h"

#include <cstdlib>

namespace tonemetry
{
namespace
{
constexpr char Scheme[] = "live:";

bool ParsePort(const std::string& text, uint16_t* port)
{
    if (text.empty() || (text.size() > 5) || (std::string::npos != text.find_first_not_of("0123456789")))
    {
        return false;
    }
    const unsigned long value = std::strtoul(text.c_str(), nullptr, 10);
    if ((0 == value) || (value > 65535))
    {
        return false;
    }
    *port = static_cast<uint16_t>(value);
    return true;
}
} // namespace

std::string DeviceAddress::ToString() const
{
    const bool bracketed = (std::string::npos != host.find(':'));
    return Scheme + (bracketed ? "[" + host + "]" : host) + ":" + std::to_string(port);
}

std::optional<DeviceAddress> ParseDevice(const std::string& text, std::string* error)
{
    const std::string scheme(Scheme);
    if (0 != text.compare(0, scheme.size(), scheme))
    {
        *error = "'" + text + "' is no device: write live:HOST[:PORT]";
        return std::nullopt;
    }
    const std::string rest = text.substr(scheme.size());
    DeviceAddress     device;
    std::string       portText;
    bool              hasPort = false;
    if (!rest.empty() && ('[' == rest.front()))
    {
        const size_t close = rest.find(']');
        if (std::string::npos == close)
        {
            *error = "'" + text + "': the IPv6 host has no closing ']'";
            return std::nullopt;
        }
        device.host = rest.substr(1, close - 1);
        if (close + 1 < rest.size())
        {
            if (':' != rest[close + 1])
            {
                *error = "'" + text + "': after the host comes ':PORT' or nothing";
                return std::nullopt;
            }
            hasPort  = true;
            portText = rest.substr(close + 2);
        }
    }
    else
    {
        const size_t colon = rest.find(':');
        device.host        = rest.substr(0, colon);
        if (std::string::npos != colon)
        {
            hasPort  = true;
            portText = rest.substr(colon + 1);
        }
    }
    if (device.host.empty())
    {
        *error = "'" + text + "' names no host";
        return std::nullopt;
    }
    if (hasPort && !ParsePort(portText, &device.port))
    {
        *error = "'" + text + "': the port is a number from 1 to 65535";
        return std::nullopt;
    }
    return device;
}
} // namespace tonemetry
