// Questions to a device's live tuning link. The link serves one client at a time, so each
// question is a connection of its own: connect, ask, read the answer, close.
#ifndef TONEMETRY_DEVICECLIENT_H
#define TONEMETRY_DEVICECLIENT_H

#include <functional>
#include <string>

#include "device.h"
#include "ravlenpacket.h"

namespace tonemetry
{
/// Sends `request` and waits for the packet that `isReply` takes for its answer (stray packets
/// ahead of it are passed over), all within `timeout` seconds. False, with what went wrong in
/// `*trouble` ("no reply from live:HOST:PORT within 3 seconds"), when no answer came.
bool ExchangeWithDevice(const DeviceAddress& device, double timeout, const ravlen::Bytes& request,
                        const std::function<bool(const ravlen::Bytes&)>& isReply, ravlen::Bytes* reply,
                        std::string* trouble);

/// A request with an ID and a text payload (info, get, set, modes); `*body` is the text of
/// its answer.
bool AskDevice(const DeviceAddress& device, double timeout, ravlen::Command command, const std::string& payload,
               std::string* body, std::string* trouble);
} // namespace tonemetry

#endif // TONEMETRY_DEVICECLIENT_H
