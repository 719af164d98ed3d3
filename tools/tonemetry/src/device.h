// How every command names a device: `live:HOST[:PORT]`, the port of the live tuning link
// being 20803 unless given.
#ifndef TONEMETRY_DEVICE_H
#define TONEMETRY_DEVICE_H

#include <cstdint>
#include <optional>
#include <string>

namespace tonemetry
{
struct DeviceAddress
{
    static constexpr uint16_t DefaultPort = 20803;

    std::string host;
    uint16_t    port = DefaultPort;

    /// `live:HOST:PORT`, with an IPv6 host in brackets.
    std::string ToString() const;
};

/// `live:HOST[:PORT]`; HOST may be an IPv6 address in brackets (`live:[::1]:20804`). Nothing,
/// with the reason in `*error`, for any other text.
std::optional<DeviceAddress> ParseDevice(const std::string& text, std::string* error);
} // namespace tonemetry

#endif // TONEMETRY_DEVICE_H
