// One connection of the desktop side to a device's live tuning link, every wait bounded by a
// deadline: the link serves one client at a time and a stalled device must not hang the tool.
#ifndef TONEMETRY_LINKCLIENT_RAVLENCONNECTION_H
#define TONEMETRY_LINKCLIENT_RAVLENCONNECTION_H

#include <chrono>
#include <cstdint>
#include <string>

#include "ravlenpacket.h"

namespace ravlen
{
using Deadline = std::chrono::steady_clock::time_point;

class Connection
{
public:
    Connection() = default;
    ~Connection();
    Connection(const Connection&)            = delete;
    Connection& operator=(const Connection&) = delete;

    /// Connects to `host` (a name or an IPv4 address) on `port`. False, with `*error` set, when
    /// the host is unknown, the connection is refused or the deadline passes.
    bool Connect(const std::string& host, uint16_t port, Deadline deadline, std::string* error);
    bool Connected() const { return m_socket >= 0; }
    /// Writes all bytes; false when the connection is gone.
    bool Send(const Bytes& bytes);
    /// The next whole packet, as its length field gives it; empty when none came by `deadline`
    /// or the peer closed.
    Bytes Receive(Deadline deadline);
    void  Close();

private:
    bool TryAddress(const void* address, unsigned int length, Deadline deadline, std::string* error);

    int   m_socket = -1;
    Bytes m_held; ///< bytes of the next packet received so far
};
} // namespace ravlen

#endif // TONEMETRY_LINKCLIENT_RAVLENCONNECTION_H
