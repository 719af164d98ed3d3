// Mode names and named mode paths of a pack source, in the text forms the live tuning tool shows.
#ifndef TONEMETRY_MODEPATH_H
#define TONEMETRY_MODEPATH_H

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tonemetry
{
/// One node's mode number and sub-mode number.
struct ModeElement
{
    uint16_t mode    = 0;
    uint16_t subMode = 0;

    bool operator==(const ModeElement& other) const { return (mode == other.mode) && (subMode == other.subMode); }
};

/// The elements below the root, from the root down; empty for the root itself.
using ModePath = std::vector<ModeElement>;

/// One element: "Default", or a mode and a sub-mode joined by '.', each by name or number
/// ("Usecase.Video", "Sensor.3", "2.2"). Nothing, with `*error` set, for anything else.
std::optional<ModeElement> ParseModeName(std::string_view text, std::string* error);

/// A path of elements joined by '|' ("Usecase.Video|Feature1.ISPHDR"). "Default" alone is the
/// root; a leading "Default|" may stand and changes nothing.
std::optional<ModePath> ParseModePath(std::string_view text, std::string* error);

/// The named form of a path: elements by name where they have one, "Default" for the root.
std::string ModePathText(const ModePath& path);
} // namespace tonemetry

#endif // TONEMETRY_MODEPATH_H
