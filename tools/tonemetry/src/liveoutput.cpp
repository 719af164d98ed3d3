#include "liveoutput.h"

#include <cerrno>
#include <cinttypes>
#include <cstdio>
#include <cstdlib>

#include <nlohmann/json.hpp>

namespace tonemetry
{
namespace
{
using Json = nlohmann::ordered_json;

std::string Dumped(const Json& json)
{
    return json.dump(2) + "\n";
}

/// The device prints integers by "%lld" and doubles by "%f": a '.' tells which. A text that is
/// neither stays text.
Json NumberOrText(const std::string& text)
{
    if (text.empty())
    {
        return text;
    }
    char* end = nullptr;
    errno     = 0;
    if (std::string::npos == text.find('.'))
    {
        const long long integer = std::strtoll(text.c_str(), &end, 10);
        return ((0 == errno) && ('\0' == *end)) ? Json(integer) : Json(text);
    }
    const double number = std::strtod(text.c_str(), &end);
    return ((0 == errno) && ('\0' == *end)) ? Json(number) : Json(text);
}
} // namespace

std::string RenderDeviceInfo(const DeviceInfo& info, bool json)
{
    char handle[32];
    std::snprintf(handle, sizeof(handle), "0x%016" PRIx64, info.handle);
    const std::string version = std::to_string(info.versionMajor) + "." + std::to_string(info.versionMinor);
    if (json)
    {
        return Dumped({{"name", info.name}, {"version", version}, {"handle", handle}});
    }
    return "name: " + info.name + "\nversion: " + version + "\nhandle: " + handle + "\n";
}

std::string RenderList(const std::string& key, const std::vector<std::string>& items, bool json)
{
    if (json)
    {
        return Dumped({{key, items}});
    }
    std::string text;
    for (const std::string& item : items)
    {
        text += item + "\n";
    }
    return text;
}

std::string RenderNumberedValues(const std::string& key, const std::vector<NamedValue>& values, bool json)
{
    std::string text;
    Json        list = Json::array();
    for (const NamedValue& value : values)
    {
        text += value.name + " = " + value.value + "\n";
        list.push_back({{"id", NumberOrText(value.name)}, {"value", NumberOrText(value.value)}});
    }
    return json ? Dumped({{key, list}}) : text;
}

std::string RenderInfoRows(const std::vector<InfoRow>& rows, bool json)
{
    std::string text;
    Json        list = Json::array();
    for (const InfoRow& row : rows)
    {
        Json entry = {{"name", row.name}, {"type", row.type}};
        // A row without a name describes the very thing that the path named.
        std::string line = row.name.empty() ? "" : row.name;
        if (!row.value.empty())
        {
            entry["value"] = row.value;
            line += (line.empty() ? "" : " = ") + row.value;
        }
        std::string type = row.type;
        if (row.count.has_value())
        {
            entry["count"] = *row.count;
            type += "[" + std::to_string(*row.count) + "]";
        }
        text += line + (line.empty() ? "(" : " (") + type + ")\n";
        list.push_back(entry);
    }
    return json ? Dumped({{"rows", list}}) : text;
}

std::string RenderValues(const std::vector<NamedValue>& values, bool json)
{
    std::string text;
    Json        list = Json::array();
    for (const NamedValue& value : values)
    {
        text += value.name + " = " + value.value + "\n";
        list.push_back({{"name", value.name}, {"value", value.value}});
    }
    return json ? Dumped({{"values", list}}) : text;
}
} // namespace tonemetry
