// How `tonemetry live` prints a decoded reply: readable lines, or one JSON object.
#ifndef TONEMETRY_LIVEOUTPUT_H
#define TONEMETRY_LIVEOUTPUT_H

#include <string>
#include <vector>

#include "livereply.h"

namespace tonemetry
{
/// "name: ...", "version: 1.0", "handle: 0x..."; as JSON {"name", "version", "handle"}.
std::string RenderDeviceInfo(const DeviceInfo& info, bool json);
/// One item a line; as JSON {key: [items]}.
std::string RenderList(const std::string& key, const std::vector<std::string>& items, bool json);
/// "ID = value" a line; as JSON {key: [{"id", "value"}]}, numbers where the text is one.
std::string RenderNumberedValues(const std::string& key, const std::vector<NamedValue>& values, bool json);
/// "name = value (Type)", "name (Type[count])" a line; as JSON {"rows": [...]}.
std::string RenderInfoRows(const std::vector<InfoRow>& rows, bool json);
/// "name = value" a line; as JSON {"values": [{"name", "value"}]}, values as their text.
std::string RenderValues(const std::vector<NamedValue>& values, bool json);
} // namespace tonemetry

#endif // TONEMETRY_LIVEOUTPUT_H
