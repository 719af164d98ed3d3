// Packets of the live tuning link as the desktop side sees them: requests built in wire form
// and the fields of replies read back. All multi-byte fields are little-endian.
#ifndef TONEMETRY_LINKCLIENT_RAVLENPACKET_H
#define TONEMETRY_LINKCLIENT_RAVLENPACKET_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace ravlen
{
using Bytes = std::vector<uint8_t>;

constexpr uint16_t StartTag = 0x4B5A;
/// Bytes ahead of the payload of a request with an ID (and of its reply).
constexpr size_t IdHeaderSize = 10;
/// Bytes of a header without an ID.
constexpr size_t PlainHeaderSize = 6;

/// The command codes of the link.
enum Command : uint16_t
{
    CommandDeviceInfo    = 0,
    CommandActiveModes   = 1,
    CommandControlValues = 2,
    CommandModes         = 3,
    CommandInfo          = 4,
    CommandGetValues     = 5,
    CommandSetValues     = 6,
    CommandTriggerValues = 7,
    CommandCustom        = 8,
};

/// A 6-byte header: start tag, command and the length field as given.
Bytes Header(uint16_t command, uint16_t length);
/// A request with an ID and a NUL-terminated text payload; the length field is the real one.
Bytes Request(uint16_t command, uint32_t id, const std::string& payload);
/// A request with an ID and raw payload bytes.
Bytes RawRequest(uint16_t command, uint32_t id, const Bytes& payload);

uint16_t U16At(const Bytes& packet, size_t offset);
uint32_t U32At(const Bytes& packet, size_t offset);
uint64_t U64At(const Bytes& packet, size_t offset);
/// The text of a packet from `offset` to its first NUL (or its end); empty past the end.
std::string TextAt(const Bytes& packet, size_t offset);
} // namespace ravlen

#endif // TONEMETRY_LINKCLIENT_RAVLENPACKET_H
