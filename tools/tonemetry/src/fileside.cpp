#include "fileside.h"

#include <fstream>
#include <iterator>
#include <set>

#include "deviceload.h"
#include "parametermodeentry.h"
#include "parameterparserinfo.h"

namespace tonemetry
{
namespace
{
/// The named path of a mode with its root: "Default", "Default|Usecase.Video".
std::string RootedModePath(const ModeEntry* mode)
{
    return (nullptr == mode->m_parent) ? "Default" : "Default|" + NamedModePath(mode);
}

void AddSubtree(const ModeEntry* mode, std::vector<std::string>* paths)
{
    // Depth first, parents before children; the chain of siblings is walked, not recursed.
    for (const ModeEntry* node = mode; nullptr != node; node = node->m_nextSibling)
    {
        paths->push_back(RootedModePath(node));
        AddSubtree(node->m_firstChild, paths);
    }
}

InfoRow RowOf(const ParameterParserInfo& info)
{
    InfoRow row;
    row.name  = (nullptr == info.Name) ? "" : info.Name;
    row.type  = (nullptr == info.Type) ? "" : info.Type;
    row.value = info.Value;
    if (0 != info.IsArray)
    {
        row.count = info.ElementCount;
    }
    return row;
}
} // namespace

std::unique_ptr<FileSide> FileSide::Load(const std::string& path, std::string* error)
{
    std::ifstream stream(path, std::ios::binary);
    if (!stream)
    {
        *error = path + ": cannot be read";
        return nullptr;
    }
    std::vector<uint8_t> image((std::istreambuf_iterator<char>(stream)), std::istreambuf_iterator<char>());
    std::unique_ptr<ParameterSetManager> manager = MakeSetManager(LikeliestManager(image));
    StoreLogCapture                      capture;
    if (!manager->LoadBinaryParameters(image.data(), static_cast<unsigned long>(image.size())))
    {
        const std::string text = ('\0' != manager->m_errorText[0]) ? manager->m_errorText
                                 : capture.Lines().empty()         ? "the file could not be loaded"
                                                                   : capture.Lines().back().text;
        *error                 = path + ": " + text;
        return nullptr;
    }
    return std::unique_ptr<FileSide>(new FileSide(std::move(manager), path));
}

const std::string& FileSide::Shorthand(const std::string& mode)
{
    // A walk asks about one mode many times in a row.
    if (mode != m_shorthandOf)
    {
        char text[ShorthandSize];
        text[0] = '\0';
        m_manager->GetModeShorthand(mode.c_str(), text, sizeof(text));
        m_shorthandOf = mode;
        m_shorthand   = text;
    }
    return m_shorthand;
}

std::vector<std::string> FileSide::ModePaths()
{
    std::vector<std::string> paths;
    AddSubtree(m_manager->m_rootMode, &paths);
    return paths;
}

std::vector<std::string> FileSide::ModuleNames()
{
    std::set<std::string> names;
    for (unsigned id = 0; id < m_manager->m_modeCount; ++id)
    {
        const ModeEntry* mode = m_manager->GetModeEntry(id);
        if (nullptr == mode)
        {
            continue;
        }
        for (const auto& entry : mode->m_modules)
        {
            names.insert(entry.first);
        }
    }
    return {names.begin(), names.end()};
}

std::optional<std::vector<InfoRow>> FileSide::Info(const std::string& mode, const std::string& path)
{
    PList<ParameterParserInfo> list;
    std::vector<InfoRow>       rows;
    // The root's module list is asked without a path, as the link asks it for an empty one.
    if (m_manager->GetInfo(Shorthand(mode).c_str(), path.empty() ? nullptr : path.c_str(), list))
    {
        for (uint32_t index = 0; index < list.count; ++index)
        {
            rows.push_back(RowOf(list[index]));
        }
    }
    return rows;
}

std::optional<std::vector<NamedValue>> FileSide::Values(const std::string& mode, const std::string& path,
                                                        const std::vector<std::string>& names)
{
    std::string joined;
    for (const std::string& name : names)
    {
        joined += (joined.empty() ? "" : ",") + name;
    }
    m_text[0] = '\0';
    m_manager->GetValue(Shorthand(mode).c_str(), path.c_str(), joined.c_str(), m_text.data(),
                        static_cast<unsigned>(m_text.size()));
    return ParseNamedValues(m_text.data(), ';');
}
std::optional<std::vector<std::string>> FileSide::ChildModes(const std::string& mode)
{
    m_text[0] = '\0';
    m_manager->GetChildModes(Shorthand(mode).c_str(), reinterpret_cast<unsigned char*>(m_text.data()),
                             static_cast<unsigned>(m_text.size()));
    return SplitItems(m_text.data(), ',');
}

std::optional<std::vector<NamedValue>> FileSide::Set(const std::string& mode, const std::string& path,
                                                     const std::vector<NamedValue>& items)
{
    // As the link does it: each item set, then read back.
    std::vector<NamedValue> held;
    for (const NamedValue& item : items)
    {
        if (m_manager->SetValue(Shorthand(mode).c_str(), path.c_str(), item.name.c_str(), item.value.c_str()))
        {
            const auto value = Values(mode, path, {item.name});
            held.insert(held.end(), value->begin(), value->end());
        }
    }
    return held;
}

std::optional<std::vector<std::string>> FileSide::ActiveModes()
{
    m_text[0] = '\0';
    m_manager->GetActiveModes(m_text.data(), LinkTextSize);
    return SplitItems(m_text.data(), ';');
}

std::optional<std::vector<NamedValue>> FileSide::ControlValues()
{
    m_text[0] = '\0';
    m_manager->GetControlValues(m_text.data(), LinkTextSize);
    return ParseNamedValues(m_text.data(), ',');
}

std::optional<std::vector<NamedValue>> FileSide::TriggerValues()
{
    m_text[0] = '\0';
    m_manager->GetTriggerValues(m_text.data(), LinkTextSize);
    return ParseNamedValues(m_text.data(), ',');
}

std::optional<DeviceInfo> FileSide::Device()
{
    DeviceInfo info;
    info.name = "file " + m_path;
    return info;
}
} // namespace tonemetry
