// The replies of the live tuning link, decoded from their wire form into what they say.
#ifndef TONEMETRY_LIVEREPLY_H
#define TONEMETRY_LIVEREPLY_H

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "ravlenpacket.h"

namespace tonemetry
{
/// The reply of the device info command.
struct DeviceInfo
{
    unsigned    versionMajor = 0;
    unsigned    versionMinor = 0;
    uint64_t    handle       = 0; ///< the device's own handle of its set manager
    std::string name;
};

/// One row of a describe reply: `name[=value],type[,count]`.
struct InfoRow
{
    std::string             name;
    std::string             value; ///< empty for rows that carry none
    std::string             type;
    std::optional<uint32_t> count; ///< element count of an array row
};

/// One `name=value` item of a value list; for control and trigger values the name is the ID.
struct NamedValue
{
    std::string name;
    std::string value;
};

/// Nothing when the packet is too short to be a device info reply.
std::optional<DeviceInfo> DecodeDeviceInfo(const ravlen::Bytes& reply);

/// The text of a reply whose header is `headerSize` bytes long.
std::string ReplyText(const ravlen::Bytes& reply, size_t headerSize);

/// The items of `text` between `separator`s; empty items (a list whose first entry printed
/// nothing begins with one) are left out.
std::vector<std::string> SplitItems(const std::string& text, char separator);

/// `name=value` items joined by `separator`; the value is everything behind the first '='.
std::vector<NamedValue> ParseNamedValues(const std::string& text, char separator);

/// Rows joined by ';'. The type is found from the right, so a value holding ',' stays whole.
std::vector<InfoRow> ParseInfoRows(const std::string& text);
} // namespace tonemetry

#endif // TONEMETRY_LIVEREPLY_H
