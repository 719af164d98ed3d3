#include "ravlenpacket.h"

namespace ravlen
{
namespace
{
void PutU16(Bytes& bytes, size_t offset, uint16_t value)
{
    bytes[offset]     = static_cast<uint8_t>(value);
    bytes[offset + 1] = static_cast<uint8_t>(value >> 8);
}
} // namespace

Bytes Header(uint16_t command, uint16_t length)
{
    Bytes header(PlainHeaderSize);
    PutU16(header, 0, StartTag);
    PutU16(header, 2, command);
    PutU16(header, 4, length);
    return header;
}

Bytes RawRequest(uint16_t command, uint32_t id, const Bytes& payload)
{
    Bytes request = Header(command, static_cast<uint16_t>(IdHeaderSize + payload.size()));
    for (int shift = 0; shift < 32; shift += 8)
    {
        request.push_back(static_cast<uint8_t>(id >> shift));
    }
    request.insert(request.end(), payload.begin(), payload.end());
    return request;
}

Bytes Request(uint16_t command, uint32_t id, const std::string& payload)
{
    Bytes text(payload.begin(), payload.end());
    text.push_back(0);
    return RawRequest(command, id, text);
}

uint16_t U16At(const Bytes& packet, size_t offset)
{
    return static_cast<uint16_t>(packet.at(offset) | (packet.at(offset + 1) << 8));
}

uint32_t U32At(const Bytes& packet, size_t offset)
{
    return U16At(packet, offset) | (static_cast<uint32_t>(U16At(packet, offset + 2)) << 16);
}

uint64_t U64At(const Bytes& packet, size_t offset)
{
    return U32At(packet, offset) | (static_cast<uint64_t>(U32At(packet, offset + 4)) << 32);
}

std::string TextAt(const Bytes& packet, size_t offset)
{
    std::string text;
    for (size_t index = offset; (index < packet.size()) && (0 != packet[index]); ++index)
    {
        text.push_back(static_cast<char>(packet[index]));
    }
    return text;
}
} // namespace ravlen
