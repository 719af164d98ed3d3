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
    return std::unique_ptr<FileSide>(new FileSide(std::move(manager)));
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
    if (m_manager->GetInfo(Shorthand(mode).c_str(), path.c_str(), list))
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
} // namespace tonemetry
