#include "modetreesource.h"

namespace tonemetry
{
using tuningencoder::JsonChild;

void ModeTreeSource::Read(const Json& source)
{
    const Json* modes = nullptr;
    if (source.contains("modes"))
    {
        modes = &source["modes"];
        if (!modes->is_array() || modes->empty())
        {
            Fail("/modes", modes->is_array() ? "the first mode is the root, \"Default\"" : "expected an array");
            modes = nullptr;
        }
    }
    if (nullptr == modes)
    {
        Add(tuningfile::Mode{}, ModePath{}); // the root alone
        return;
    }
    for (size_t index = 0; index < modes->size(); ++index)
    {
        ReadMode((*modes)[index], JsonChild("/modes", index), index == 0);
    }
    // Links may name modes listed later, so they are resolved once all are known.
    for (size_t index = 1; index < modes->size(); ++index)
    {
        const Json& mode = (*modes)[index];
        if (mode.is_object() && mode.contains("link"))
        {
            std::optional<uint32_t> link = Resolve(mode["link"], JsonChild("/modes", index) + "/link");
            (*m_modes)[index].linkId     = link.value_or(tuningfile::NoLink);
        }
    }
}

void ModeTreeSource::ReadMode(const Json& value, const std::string& path, bool isRoot)
{
    // Added at its index even when refused, so that the writer's indices stay those of the source.
    tuningfile::Mode mode;
    ModePath         modePath;
    if (!value.is_object())
    {
        Fail(path, "expected an object with \"name\" and optionally \"parent\", \"link\", \"pinned\"");
        Add(mode, modePath);
        return;
    }
    RefuseUnknownKeys(value, path, {"name", "parent", "link", "pinned"}, m_errors);
    std::optional<ModeElement> element = ReadName(value, path);
    ReadPinned(value, path, &mode);
    if (isRoot)
    {
        ReadRoot(value, path, mode, element);
        return;
    }
    if (element && (element->mode == 0))
    {
        Fail(path + "/name", "only the first mode is the root, \"Default\"");
        element.reset();
    }
    std::optional<uint32_t> parent =
        value.contains("parent") ? Resolve(value["parent"], path + "/parent", true) : std::optional<uint32_t>(0);
    if (element && parent)
    {
        modePath = m_paths[*parent];
        modePath.push_back(*element);
        mode.mode                       = element->mode;
        mode.subMode                    = element->subMode;
        mode.parentId                   = *parent;
        std::optional<uint32_t> earlier = Find(modePath);
        if (earlier)
        {
            Fail(path + "/name",
                 "mode '" + ModePathText(modePath) + "' is listed twice (/modes/" + std::to_string(*earlier) + ")");
        }
    }
    Add(mode, modePath);
}

void ModeTreeSource::ReadRoot(const Json& value, const std::string& path, tuningfile::Mode mode,
                              const std::optional<ModeElement>& element)
{
    if (element && (element->mode != 0))
    {
        Fail(path + "/name", "the first mode is the root, \"Default\"");
    }
    for (const char* key : {"parent", "link"})
    {
        if (value.contains(key))
        {
            Fail(JsonChild(path, key), "the root has no " + std::string(key));
        }
    }
    Add(mode, ModePath{});
}

void ModeTreeSource::ReadPinned(const Json& value, const std::string& path, tuningfile::Mode* mode)
{
    if (!value.contains("pinned"))
    {
        return;
    }
    if (value["pinned"].is_boolean())
    {
        mode->pinned = value["pinned"].get<bool>();
    }
    else
    {
        Fail(path + "/pinned", "expected true or false");
    }
}

std::optional<ModeElement> ModeTreeSource::ReadName(const Json& value, const std::string& path)
{
    std::string name;
    if (!value.contains("name"))
    {
        Fail(path, "missing key 'name'");
        return std::nullopt;
    }
    if (!ReadText(value["name"], path + "/name", &name, m_errors))
    {
        return std::nullopt;
    }
    std::string                error;
    std::optional<ModeElement> element = ParseModeName(name, &error);
    if (!element)
    {
        Fail(path + "/name", error);
    }
    return element;
}

void ModeTreeSource::Add(const tuningfile::Mode& mode, const ModePath& path)
{
    m_modes->push_back(mode);
    m_paths.push_back(path);
}

std::optional<uint32_t> ModeTreeSource::Find(const ModePath& path) const
{
    for (size_t id = 0; id < m_paths.size(); ++id)
    {
        // A refused mode keeps the root's empty path; only the root itself answers to it.
        if ((m_paths[id] == path) && ((id == 0) || !path.empty()))
        {
            return static_cast<uint32_t>(id);
        }
    }
    return std::nullopt;
}

std::optional<uint32_t> ModeTreeSource::Resolve(const Json& value, const std::string& path, bool beforeOnly)
{
    std::string text;
    if (!ReadText(value, path, &text, m_errors))
    {
        return std::nullopt;
    }
    std::string             error;
    std::optional<ModePath> modePath = ParseModePath(text, &error);
    if (!modePath)
    {
        Fail(path, error);
        return std::nullopt;
    }
    std::optional<uint32_t> id = Find(*modePath);
    if (!id)
    {
        Fail(path, "unknown mode '" + text + "': no mode" + (beforeOnly ? " listed before it" : "") +
                       " in /modes has the path '" + ModePathText(*modePath) + "'");
    }
    return id;
}
} // namespace tonemetry
