#include "linkclient.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <thread>

namespace linktest
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
    Bytes header(6);
    PutU16(header, 0, StartTag);
    PutU16(header, 2, command);
    PutU16(header, 4, length);
    return header;
}

Bytes RawRequest(uint16_t command, uint32_t id, const Bytes& payload)
{
    Bytes request = Header(command, static_cast<uint16_t>(10 + payload.size()));
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
