#include "deviceside.h"

#include "deviceclient.h"
#include "livereply.h"

namespace tonemetry
{
std::optional<std::string> DeviceSide::Ask(ravlen::Command command, const std::string& payload)
{
    std::string body;
    if (!m_trouble.empty() || !AskDevice(m_device, m_timeout, command, payload, &body, &m_trouble))
    {
        return std::nullopt; // after the first failure the device is asked nothing more
    }
    return body;
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
} // namespace tonemetry
