#include "modepath.h"

#include <charconv>

#include "parametermodeentry.h"

namespace tonemetry
{
namespace
{
// Sub-mode names run without a gap from 0; no mode has more than this many.
constexpr unsigned MaxNamedSubModes = 64;

std::optional<uint16_t> ParseNumber(std::string_view text)
{
    uint16_t number     = 0;
    auto [end, failure] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (text.empty() || (failure != std::errc()) || (end != text.data() + text.size()))
    {
        return std::nullopt;
    }
    return number;
}

std::optional<uint16_t> ParseModeWord(std::string_view word)
{
    for (unsigned mode = 0; nullptr != ModeEntry::GetModeName(mode); ++mode)
    {
        if (word == ModeEntry::GetModeName(mode))
        {
            return static_cast<uint16_t>(mode);
        }
    }
    return ParseNumber(word);
}

std::optional<uint16_t> ParseSubModeWord(uint16_t mode, std::string_view word)
{
    for (unsigned subMode = 0; subMode < MaxNamedSubModes; ++subMode)
    {
        char const* name = ModeEntry::GetSubModeName(mode, subMode);
        if ((nullptr != name) && (word == name))
        {
            return static_cast<uint16_t>(subMode);
        }
    }
    return ParseNumber(word);
}

std::string ModeWord(uint16_t mode)
{
    char const* name = ModeEntry::GetModeName(mode);
    return (nullptr == name) ? std::to_string(mode) : name;
}

std::string ElementText(const ModeElement& element)
{
    char const* subMode = ModeEntry::GetSubModeName(element.mode, element.subMode);
    return ModeWord(element.mode) + "." + ((nullptr == subMode) ? std::to_string(element.subMode) : subMode);
}
} // namespace

std::optional<ModeElement> ParseModeName(std::string_view text, std::string* error)
{
    const size_t            dot  = text.find('.');
    const std::string_view  word = text.substr(0, dot);
    std::optional<uint16_t> mode = ParseModeWord(word);
    if (!mode)
    {
        *error = "unknown mode '" + std::string(word) + "' in '" + std::string(text) +
                 "' (Default, Sensor, Usecase, Feature1, Feature2, Scene, Effect, or a number)";
        return std::nullopt;
    }
    if (dot == std::string_view::npos)
    {
        if (*mode != 0)
        {
            *error = "mode '" + std::string(text) + "' needs a sub-mode, as in '" + std::string(text) + ".0'";
            return std::nullopt;
        }
        return ModeElement{};
    }
    const std::string_view  subWord = text.substr(dot + 1);
    std::optional<uint16_t> subMode = ParseSubModeWord(*mode, subWord);
    if (!subMode)
    {
        *error =
            "unknown sub-mode '" + std::string(subWord) + "' of " + ModeWord(*mode) + " in '" + std::string(text) + "'";
        return std::nullopt;
    }
    if ((*mode == 0) && (*subMode != 0))
    {
        *error = "'" + std::string(text) + "': Default has no sub-modes";
        return std::nullopt;
    }
    return ModeElement{*mode, *subMode};
}

std::optional<ModePath> ParseModePath(std::string_view text, std::string* error)
{
    ModePath path;
    size_t   start = 0;
    for (size_t index = 0;; ++index)
    {
        const size_t               bar     = text.find('|', start);
        const std::string_view     name    = text.substr(start, (bar == std::string_view::npos) ? bar : bar - start);
        std::optional<ModeElement> element = ParseModeName(name, error);
        if (!element)
        {
            return std::nullopt;
        }
        const bool root = (element->mode == 0);
        if (root && (index != 0))
        {
            *error = "'" + std::string(text) + "': Default can only stand first, as the root";
            return std::nullopt;
        }
        if (!root)
        {
            path.push_back(*element);
        }
        if (bar == std::string_view::npos)
        {
            return path;
        }
        start = bar + 1;
    }
}

std::string ModePathText(const ModePath& path)
{
    if (path.empty())
    {
        return "Default";
    }
    std::string text;
    for (const ModeElement& element : path)
    {
        text += (text.empty() ? "" : "|") + ElementText(element);
    }
    return text;
}
} // namespace tonemetry
