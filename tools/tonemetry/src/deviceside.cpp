#include "deviceside.h"

#include "deviceclient.h"
#include "livereply.h"
#include "ravlenpacket.h"

namespace tonemetry
{
std::optional<std::string> DeviceSide::Ask(ravlen::Command command, const std::string& payload)
{
    std::string body;
    if (!AskDevice(m_device, m_timeout, command, payload, &body, &m_trouble))
    {
        return std::nullopt;
    }
    return body;
}

std::optional<ravlen::Bytes> DeviceSide::AskPlain(ravlen::Command command)
{
    const auto isReply = [command](const ravlen::Bytes& packet) {
        return (packet.size() >= ravlen::PlainHeaderSize) && (ravlen::U16At(packet, 2) == command);
    };
    ravlen::Bytes reply;
    if (!ExchangeWithDevice(m_device, m_timeout, ravlen::Header(command, ravlen::PlainHeaderSize), isReply, &reply,
                            &m_trouble))
    {
        return std::nullopt;
    }
    return reply;
}

bool DeviceSide::AddSubtree(const std::string& mode, std::vector<std::string>* paths)
{
    paths->push_back(mode);
    const auto children = Ask(ravlen::CommandModes, mode);
    if (!children)
    {
        return false;
    }
    for (const std::string& child : SplitItems(*children, ','))
    {
        if (!AddSubtree(mode + "|" + child, paths))
        {
            return false;
        }
    }
    return true;
}

std::vector<std::string> DeviceSide::ModePaths()
{
    std::vector<std::string> paths;
    if (!AddSubtree("Default", &paths))
    {
        paths.clear();
    }
    return paths;
}

std::vector<std::string> DeviceSide::ModuleNames()
{
    std::vector<std::string> names;
    if (const auto rows = Info("Default", ""))
    {
        for (const InfoRow& row : *rows)
        {
            names.push_back(row.name);
        }
    }
    return names;
}

std::optional<std::vector<InfoRow>> DeviceSide::Info(const std::string& mode, const std::string& path)
{
    const auto body = Ask(ravlen::CommandInfo, mode + ":" + path);
    if (!body)
    {
        return std::nullopt;
    }
    return ParseInfoRows(*body);
}

std::optional<std::vector<NamedValue>> DeviceSide::Values(const std::string& mode, const std::string& path,
                                                          const std::vector<std::string>& names)
{
    std::string joined;
    for (const std::string& name : names)
    {
        joined += (joined.empty() ? "" : ",") + name;
    }
    const auto body = Ask(ravlen::CommandGetValues, mode + ":" + path + ":" + joined);
    if (!body)
    {
        return std::nullopt;
    }
    return ParseNamedValues(*body, ';');
}
std::optional<std::vector<std::string>> DeviceSide::ChildModes(const std::string& mode)
{
    const auto body = Ask(ravlen::CommandModes, mode);
    return body ? std::optional<std::vector<std::string>>(SplitItems(*body, ',')) : std::nullopt;
}

std::optional<std::vector<NamedValue>> DeviceSide::Set(const std::string& mode, const std::string& path,
                                                       const std::vector<NamedValue>& items)
{
    std::string joined;
    for (const NamedValue& item : items)
    {
        joined += (joined.empty() ? "" : ";") + item.name + "=" + item.value;
    }
    const auto body = Ask(ravlen::CommandSetValues, mode + ":" + path + ":" + joined);
    return body ? std::optional<std::vector<NamedValue>>(ParseNamedValues(*body, ';')) : std::nullopt;
}

std::optional<std::vector<std::string>> DeviceSide::ActiveModes()
{
    const auto reply = AskPlain(ravlen::CommandActiveModes);
    return reply ? std::optional<std::vector<std::string>>(SplitItems(ReplyText(*reply, ravlen::PlainHeaderSize), ';'))
                 : std::nullopt;
}

std::optional<std::vector<NamedValue>> DeviceSide::ControlValues()
{
    const auto reply = AskPlain(ravlen::CommandControlValues);
    return reply ? std::optional<std::vector<NamedValue>>(
                       ParseNamedValues(ReplyText(*reply, ravlen::PlainHeaderSize), ','))
                 : std::nullopt;
}

std::optional<std::vector<NamedValue>> DeviceSide::TriggerValues()
{
    const auto reply = AskPlain(ravlen::CommandTriggerValues);
    return reply ? std::optional<std::vector<NamedValue>>(
                       ParseNamedValues(ReplyText(*reply, ravlen::PlainHeaderSize), ','))
                 : std::nullopt;
}

std::optional<DeviceInfo> DeviceSide::Device()
{
    const auto reply = AskPlain(ravlen::CommandDeviceInfo);
    if (!reply)
    {
        return std::nullopt;
    }
    const std::optional<DeviceInfo> info = DecodeDeviceInfo(*reply);
    if (!info)
    {
        m_trouble = m_device.ToString() + " sent a device info reply that cannot be read";
    }
    return info;
}
} // namespace tonemetry
