#include "linkclient.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <thread>

namespace linktest
{
LinkClient::LinkClient(uint16_t port)
{
    sockaddr_in address{};
    address.sin_family      = AF_INET;
    address.sin_port        = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    auto deadline           = std::chrono::steady_clock::now() + std::chrono::seconds(2);
    while (std::chrono::steady_clock::now() < deadline)
    {
        m_socket = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
        if (0 == connect(m_socket, reinterpret_cast<sockaddr*>(&address), sizeof(address)))
        {
            return;
        }
        Close();
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
}

LinkClient::~LinkClient()
{
    Close();
}

void LinkClient::Close()
{
    if (m_socket >= 0)
    {
        close(m_socket);
    }
    m_socket = -1;
    m_held.clear();
}

bool LinkClient::Send(const Bytes& bytes)
{
    return Connected() &&
           (static_cast<ssize_t>(bytes.size()) == send(m_socket, bytes.data(), bytes.size(), MSG_NOSIGNAL));
}

Bytes LinkClient::Receive(std::chrono::milliseconds timeout)
{
    auto deadline = std::chrono::steady_clock::now() + timeout;
    for (;;)
    {
        if ((m_held.size() >= 6) && (m_held.size() >= U16At(m_held, 4)))
        {
            // A length below the header's own would never move on: the held bytes go whole.
            size_t length = (U16At(m_held, 4) < 6) ? m_held.size() : U16At(m_held, 4);
            Bytes  packet(m_held.begin(), m_held.begin() + static_cast<long>(length));
            m_held.erase(m_held.begin(), m_held.begin() + static_cast<long>(length));
            return packet;
        }
        auto left = std::chrono::duration_cast<std::chrono::milliseconds>(deadline - std::chrono::steady_clock::now());
        pollfd server = {m_socket, POLLIN, 0};
        if (!Connected() || (left.count() <= 0) || (poll(&server, 1, static_cast<int>(left.count())) <= 0))
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

Bytes LinkClient::Exchange(const Bytes& request)
{
    return Send(request) ? Receive() : Bytes();
}
} // namespace linktest
