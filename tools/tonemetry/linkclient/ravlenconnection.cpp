#include "ravlenconnection.h"

#include <fcntl.h>
#include <netdb.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

namespace ravlen
{
namespace
{
/// Milliseconds left until `deadline`, 0 once it has passed.
int MillisecondsLeft(Deadline deadline)
{
    auto left = std::chrono::duration_cast<std::chrono::milliseconds>(deadline - std::chrono::steady_clock::now());
    return (left.count() > 0) ? static_cast<int>(left.count()) : 0;
}
} // namespace

Connection::~Connection()
{
    Close();
}

void Connection::Close()
{
    if (m_socket >= 0)
    {
        close(m_socket);
    }
    m_socket = -1;
    m_held.clear();
}

bool Connection::Connect(const std::string& host, uint16_t port, Deadline deadline, std::string* error)
{
    Close();
    addrinfo hints{};
    hints.ai_family           = AF_INET; // the device's link listens on an internet socket of IPv4
    hints.ai_socktype         = SOCK_STREAM;
    addrinfo*         found   = nullptr;
    const std::string service = std::to_string(port);
    const int         looked  = getaddrinfo(host.c_str(), service.c_str(), &hints, &found);
    if (0 != looked)
    {
        *error = "unknown host '" + host + "': " + gai_strerror(looked);
        return false;
    }
    for (addrinfo* address = found; (nullptr != address) && !Connected(); address = address->ai_next)
    {
        TryAddress(address->ai_addr, address->ai_addrlen, deadline, error);
    }
    freeaddrinfo(found);
    return Connected();
}

bool Connection::TryAddress(const void* address, unsigned int length, Deadline deadline, std::string* error)
{
    m_socket = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    if (m_socket < 0)
    {
        *error = std::string("no socket: ") + std::strerror(errno);
        return false;
    }
    // Non-blocking, so that an unreachable host cannot outlast the deadline.
    int result = connect(m_socket, static_cast<const sockaddr*>(address), length);
    if ((0 != result) && (EINPROGRESS == errno))
    {
        pollfd    pending = {m_socket, POLLOUT, 0};
        socklen_t size    = sizeof(result);
        if (poll(&pending, 1, MillisecondsLeft(deadline)) <= 0)
        {
            result = ETIMEDOUT;
        }
        else if (0 != getsockopt(m_socket, SOL_SOCKET, SO_ERROR, &result, &size))
        {
            result = errno;
        }
        errno = result;
    }
    if (0 != result)
    {
        *error = std::strerror(errno);
        Close();
        return false;
    }
    fcntl(m_socket, F_SETFL, fcntl(m_socket, F_GETFL) & ~O_NONBLOCK);
    return true;
}

bool Connection::Send(const Bytes& bytes)
{
    size_t sent = 0;
    while (Connected() && (sent < bytes.size()))
    {
        ssize_t written = send(m_socket, bytes.data() + sent, bytes.size() - sent, MSG_NOSIGNAL);
        if (written <= 0)
        {
            return false;
        }
        sent += static_cast<size_t>(written);
    }
    return Connected();
}

Bytes Connection::Receive(Deadline deadline)
{
    for (;;)
    {
        if ((m_held.size() >= PlainHeaderSize) && (m_held.size() >= U16At(m_held, 4)))
        {
            // A length below the header's own would never move on: the held bytes go whole.
            size_t length = (U16At(m_held, 4) < PlainHeaderSize) ? m_held.size() : U16At(m_held, 4);
            Bytes  packet(m_held.begin(), m_held.begin() + static_cast<long>(length));
            m_held.erase(m_held.begin(), m_held.begin() + static_cast<long>(length));
            return packet;
        }
        pollfd server = {m_socket, POLLIN, 0};
        if (!Connected() || (poll(&server, 1, MillisecondsLeft(deadline)) <= 0))
        {
            return {};
        }
        uint8_t chunk[4096];
        ssize_t received = recv(m_socket, chunk, sizeof(chunk), 0);
        if (received <= 0)
        {
            return {};
        }
        m_held.insert(m_held.end(), chunk, chunk + received);
    }
}
} // namespace ravlen
