#include "deviceclient.h"

#include <chrono>
#include <cstdint>

#include "livereply.h"
#include "ravlenconnection.h"

namespace tonemetry
{
namespace
{
/// The ID of every request: one request a connection, so any value tells our reply from a
/// stray one.
constexpr uint32_t RequestId = 1;
} // namespace

bool ExchangeWithDevice(const DeviceAddress& device, double timeout, const ravlen::Bytes& request,
                        const std::function<bool(const ravlen::Bytes&)>& isReply, ravlen::Bytes* reply,
                        std::string* trouble)
{
    const std::string where = device.ToString();
    if (request.size() > UINT16_MAX)
    {
        *trouble = "the request of " + std::to_string(request.size()) + " bytes does not fit a packet of " +
                   std::to_string(UINT16_MAX);
        return false;
    }
    const auto deadline =
        std::chrono::steady_clock::now() +
        std::chrono::duration_cast<std::chrono::steady_clock::duration>(std::chrono::duration<double>(timeout));
    ravlen::Connection connection;
    std::string        error;
    if (!connection.Connect(device.host, device.port, deadline, &error))
    {
        *trouble = "cannot connect to " + where + ": " + error;
        return false;
    }
    if (!connection.Send(request))
    {
        *trouble = where + " closed the connection";
        return false;
    }
    for (;;)
    {
        *reply = connection.Receive(deadline);
        if (reply->empty())
        {
            char seconds[32];
            std::snprintf(seconds, sizeof(seconds), "%g", timeout);
            *trouble = "no reply from " + where + " within " + seconds + " seconds";
            return false;
        }
        if (isReply(*reply))
        {
            return true;
        }
    }
}

bool AskDevice(const DeviceAddress& device, double timeout, ravlen::Command command, const std::string& payload,
               std::string* body, std::string* trouble)
{
    const ravlen::Bytes request = ravlen::Request(command, RequestId, payload);
    const auto          isReply = [&request, command](const ravlen::Bytes& packet) {
        return (packet.size() >= ravlen::IdHeaderSize) && (ravlen::U16At(packet, 2) == command) &&
               (ravlen::U32At(packet, 6) == ravlen::U32At(request, 6));
    };
    ravlen::Bytes reply;
    if (!ExchangeWithDevice(device, timeout, request, isReply, &reply, trouble))
    {
        body->clear();
        return false;
    }
    *body = ReplyText(reply, ravlen::IdHeaderSize);
    return true;
}
} // namespace tonemetry
