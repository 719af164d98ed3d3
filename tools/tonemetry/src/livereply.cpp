#include "livereply.h"

#include <algorithm>
#include <cctype>
#include <cstdlib>

namespace tonemetry
{
namespace
{
/// Offsets of the device info reply: version bytes, the 8-byte handle, then the name.
constexpr size_t VersionOffset = 6;
constexpr size_t HandleOffset  = 8;
constexpr size_t NameOffset    = 16;

bool IsDecimal(const std::string& text)
{
    return !text.empty() && std::all_of(text.begin(), text.end(), [](char c) { return 0 != std::isdigit(c); });
}
} // namespace

std::optional<DeviceInfo> DecodeDeviceInfo(const ravlen::Bytes& reply)
{
    if (reply.size() < NameOffset)
    {
        return std::nullopt;
    }
    DeviceInfo info;
    info.versionMajor = reply[VersionOffset];
    info.versionMinor = reply[VersionOffset + 1];
    info.handle       = ravlen::U64At(reply, HandleOffset);
    info.name         = ravlen::TextAt(reply, NameOffset);
    return info;
}

std::string ReplyText(const ravlen::Bytes& reply, size_t headerSize)
{
    return ravlen::TextAt(reply, headerSize);
}

std::vector<std::string> SplitItems(const std::string& text, char separator)
{
    std::vector<std::string> items;
    size_t                   start = 0;
    while (start <= text.size())
    {
        size_t end = text.find(separator, start);
        if (std::string::npos == end)
        {
            end = text.size();
        }
        if (end > start)
        {
            items.push_back(text.substr(start, end - start));
        }
        start = end + 1;
    }
    return items;
}

std::vector<NamedValue> ParseNamedValues(const std::string& text, char separator)
{
    std::vector<NamedValue> values;
    for (const std::string& item : SplitItems(text, separator))
    {
        const size_t equals = item.find('=');
        if (std::string::npos == equals)
        {
            values.push_back({item, ""});
        }
        else
        {
            values.push_back({item.substr(0, equals), item.substr(equals + 1)});
        }
    }
    return values;
}

std::vector<InfoRow> ParseInfoRows(const std::string& text)
{
    std::vector<InfoRow> rows;
    for (const std::string& item : SplitItems(text, ';'))
    {
        InfoRow     row;
        std::string head  = item;
        size_t      comma = head.rfind(',');
        // An array row ends in its count behind the type.
        if ((std::string::npos != comma) && (comma > 0) && IsDecimal(head.substr(comma + 1)) &&
            (std::string::npos != head.rfind(',', comma - 1)))
        {
            row.count = static_cast<uint32_t>(std::strtoul(head.c_str() + comma + 1, nullptr, 10));
            head.resize(comma);
            comma = head.rfind(',');
        }
        if (std::string::npos != comma)
        {
            row.type = head.substr(comma + 1);
            head.resize(comma);
        }
        const size_t equals = head.find('=');
        row.name            = head.substr(0, equals);
        if (std::string::npos != equals)
        {
            row.value = head.substr(equals + 1);
        }
        rows.push_back(row);
    }
    return rows;
}
} // namespace tonemetry
