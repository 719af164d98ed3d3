// The desktop tool's side of the live tuning link, for tests and benchmarks: requests in wire
// form, and a loopback client that reads whole packets, every wait bounded.
#ifndef TESTS_LINK_LINKCLIENT_H
#define TESTS_LINK_LINKCLIENT_H

#include <chrono>
#include <cstdint>
#include <string>
#include <vector>

namespace linktest
{
using Bytes = std::vector<uint8_t>;

constexpr uint16_t StartTag = 0x4B5A;

/// A 6-byte header: start tag, command and the length field as given.
Bytes Header(uint16_t command, uint16_t length);
/// A request with an ID and a NUL-terminated text payload; the length field is the real one.
Bytes Request(uint16_t command, uint32_t id, const std::string& payload);
/// A request with an ID and raw payload bytes.
Bytes RawRequest(uint16_t command, uint32_t id, const Bytes& payload);

uint16_t U16At(const Bytes& packet, size_t offset);
uint32_t U32At(const Bytes& packet, size_t offset);
uint64_t U64At(const Bytes& packet, size_t offset);
/// The text of a packet from `offset` to its first NUL (or its end).
std::string TextAt(const Bytes& packet, size_t offset);

/// One connection to 127.0.0.1.
class LinkClient
{
public:
    /// Connects, retrying for up to two seconds while the port refuses.
    explicit LinkClient(uint16_t port);
    ~LinkClient();
    LinkClient(const LinkClient&)            = delete;
    LinkClient& operator=(const LinkClient&) = delete;

    bool Connected() const { return m_socket >= 0; }
    /// Writes all bytes in one send.
    bool Send(const Bytes& bytes);
    /// The next whole packet, as its length field gives it; empty when none came in `timeout`.
    Bytes Receive(std::chrono::milliseconds timeout = std::chrono::seconds(5));
    /// A request and the next packet.
    Bytes Exchange(const Bytes& request);
    void  Close();

private:
    int   m_socket = -1;
    Bytes m_held; ///< bytes of the next packet received so far
};
} // namespace linktest

#endif // TESTS_LINK_LINKCLIENT_H
