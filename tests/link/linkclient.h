// The desktop tool's side of the live tuning link, for tests and benchmarks: a loopback client
// that reads whole packets, every wait bounded.
#ifndef TESTS_LINK_LINKCLIENT_H
#define TESTS_LINK_LINKCLIENT_H

#include <chrono>
#include <cstdint>
#include <string>
#include <vector>

#include "ravlenpacket.h"

namespace linktest
{
// Packets in wire form are the desktop tool's own (tools/tonemetry/linkclient).
using ravlen::Bytes;
using ravlen::Header;
using ravlen::RawRequest;
using ravlen::Request;
using ravlen::StartTag;
using ravlen::TextAt;
using ravlen::U16At;
using ravlen::U32At;
using ravlen::U64At;

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
