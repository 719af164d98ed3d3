#include "packsource.h"

#include <algorithm>
#include <cstdlib>
#include <initializer_list>
#include <optional>

#include "modepath.h"

namespace tonemetry
{
namespace
{
using tuningencoder::JsonChild;

// Beyond this many, a list of known names is more noise than help.
constexpr size_t ListedNames = 16;

class PackSourceReader
{
public:
    PackSourceReader(const modulegen::SchemaSet& schemas, tuningfile::TuningFileModel* model,
                     std::vector<EncodeError>* errors)
        : m_schemas(schemas), m_model(model), m_errors(errors)
    {
    }

    void Read(const Json& source)
    {
        if (!source.is_object())
        {
            Fail("", "a pack source is one JSON object");
            return;
        }
        CheckKeys(source, "", {"setManager", "binaryTag", "modes", "modules"});
        const modulegen::SetManager* manager = ReadSetManager(source);
        if (source.contains("binaryTag"))
        {
            ReadText(source["binaryTag"], "/binaryTag", &m_model->binaryTag);
        }
        ReadModes(source);
        if (nullptr != manager)
        {
            ReadModules(source, *manager);
        }
    }

private:
    void Fail(const std::string& path, const std::string& message) { m_errors->push_back({path, message}); }

    void CheckKeys(const Json& object, const std::string& path, std::initializer_list<const char*> allowed)
    {
        for (const auto& item : object.items())
        {
            bool known = false;
            for (const char* key : allowed)
            {
                known = known || (item.key() == key);
            }
            if (!known)
            {
                Fail(JsonChild(path, item.key()), "unknown key '" + item.key() + "'");
            }
        }
    }

    bool ReadText(const Json& value, const std::string& path, std::string* out)
    {
        if (!value.is_string())
        {
            Fail(path, "expected a string");
            return false;
        }
        *out = value.get<std::string>();
        return true;
    }

    /// An array member of `object`; null, after a refusal, when it is there but no array.
    const Json* ReadArray(const Json& object, const char* key, const std::string& path)
    {
        if (!object.contains(key))
        {
            return nullptr;
        }
        if (!object[key].is_array())
        {
            Fail(path, "expected an array");
            return nullptr;
        }
        return &object[key];
    }

    const modulegen::SetManager* ReadSetManager(const Json& source)
    {
        std::string className;
        if (!source.contains("setManager"))
        {
            Fail("", "missing key 'setManager'");
            return nullptr;
        }
        if (!ReadText(source["setManager"], "/setManager", &className))
        {
            return nullptr;
        }
        const modulegen::SetManager* manager = m_schemas.FindSetManager(className);
        if (nullptr == manager)
        {
            std::string known;
            for (const auto& candidate : m_schemas.setManagers)
            {
                known += (known.empty() ? "" : ", ") + candidate->className;
            }
            Fail("/setManager", "unknown set manager '" + className + "' (" + known + ")");
        }
        return manager;
    }

    void ReadModes(const Json& source)
    {
        const Json* modes = ReadArray(source, "modes", "/modes");
        if ((nullptr == modes) || modes->empty())
        {
            AddMode(tuningfile::Mode{}, ModePath{}); // the root alone
            if (nullptr != modes)
            {
                Fail("/modes", "the first mode is the root, \"Default\"");
            }
            return;
        }
        for (size_t index = 0; index < modes->size(); ++index)
        {
            ReadMode((*modes)[index], JsonChild("/modes", index), index == 0);
        }
        for (size_t index = 0; index < modes->size(); ++index)
        {
            const Json& mode = (*modes)[index];
            if (mode.is_object() && mode.contains("link"))
            {
                std::optional<uint32_t> link = ReadModeReference(mode["link"], JsonChild("/modes", index) + "/link");
                m_model->modes[index].linkId = link.value_or(tuningfile::NoLink);
            }
        }
    }

    /// One mode; it is added at its index even when refused, so that later indices still match.
    void ReadMode(const Json& value, const std::string& path, bool isRoot)
    {
        tuningfile::Mode mode;
        ModePath         modePath;
        if (!value.is_object())
        {
            Fail(path, "expected an object with \"name\" and optionally \"parent\", \"link\", \"pinned\"");
            AddMode(mode, modePath);
            return;
        }
        CheckKeys(value, path, {"name", "parent", "link", "pinned"});
        std::optional<ModeElement> element = ReadModeName(value, path);
        if (value.contains("pinned"))
        {
            if (value["pinned"].is_boolean())
            {
                mode.pinned = value["pinned"].get<bool>();
            }
            else
            {
                Fail(path + "/pinned", "expected true or false");
            }
        }
        if (isRoot)
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
            AddMode(mode, modePath);
            return;
        }
        if (element && (element->mode == 0))
        {
            Fail(path + "/name", "only the first mode is the root, \"Default\"");
            element.reset();
        }
        std::optional<uint32_t> parent = value.contains("parent")
                                             ? ReadModeReference(value["parent"], path + "/parent", true)
                                             : std::optional<uint32_t>(0);
        if (element && parent)
        {
            modePath = m_modePaths[*parent];
            modePath.push_back(*element);
            mode.mode     = element->mode;
            mode.subMode  = element->subMode;
            mode.parentId = *parent;
            std::optional<uint32_t> earlier = FindMode(modePath);
            if (earlier)
            {
                Fail(path + "/name", "mode '" + ModePathText(modePath) + "' is listed twice (/modes/" +
                                         std::to_string(*earlier) + ")");
            }
        }
        AddMode(mode, modePath);
    }

    std::optional<ModeElement> ReadModeName(const Json& mode, const std::string& path)
    {
        std::string name;
        if (!mode.contains("name"))
        {
            Fail(path, "missing key 'name'");
            return std::nullopt;
        }
        if (!ReadText(mode["name"], path + "/name", &name))
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

    void AddMode(const tuningfile::Mode& mode, const ModePath& path)
    {
        m_model->modes.push_back(mode);
        m_modePaths.push_back(path);
    }

    std::optional<uint32_t> FindMode(const ModePath& path) const
    {
        for (size_t id = 0; id < m_modePaths.size(); ++id)
        {
            // A refused mode keeps the root's empty path; only the root itself matches that.
            if ((m_modePaths[id] == path) && ((id == 0) || !path.empty()))
            {
                return static_cast<uint32_t>(id);
            }
        }
        return std::nullopt;
    }

    /// The id of the mode that a path text names, among the modes read so far; for a parent,
    /// `beforeOnly` says that later modes are not yet known.
    std::optional<uint32_t> ReadModeReference(const Json& value, const std::string& path, bool beforeOnly = false)
    {
        std::string text;
        if (!ReadText(value, path, &text))
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
        std::optional<uint32_t> id = FindMode(*modePath);
        if (!id)
        {
            Fail(path, "unknown mode '" + text + "': no mode" + (beforeOnly ? " listed before it" : "") +
                           " in /modes has the path '" + ModePathText(*modePath) + "'");
        }
        return id;
    }

    void ReadModules(const Json& source, const modulegen::SetManager& manager)
    {
        if (!source.contains("modules"))
        {
            Fail("", "missing key 'modules'");
            return;
        }
        const Json* modules = ReadArray(source, "modules", "/modules");
        for (size_t index = 0; (nullptr != modules) && (index < modules->size()); ++index)
        {
            ReadModule((*modules)[index], JsonChild("/modules", index), manager);
        }
    }

    void ReadModule(const Json& value, const std::string& path, const modulegen::SetManager& manager)
    {
        // Added even when refused, so that the writer's indices stay those of the source.
        m_model->modules.emplace_back();
        tuningfile::Module& module = m_model->modules.back();
        if (!value.is_object())
        {
            Fail(path, "expected an object with \"name\", \"mode\" and \"values\"");
            return;
        }
        CheckKeys(value, path, {"name", "mode", "values"});
        const modulegen::Schema* schema = ReadModuleName(value, path, manager, &module.name);
        std::optional<uint32_t>  modeId =
            value.contains("mode") ? ReadModeReference(value["mode"], path + "/mode") : std::optional<uint32_t>(0);
        module.modeId = modeId.value_or(0);
        if (nullptr == schema)
        {
            return;
        }
        if (modeId)
        {
            RefuseSecondModuleInMode(module, path);
        }
        const modulegen::Version& version = schema->module->version;
        module.version                    = tuningfile::Version{version.major, version.minor, version.patch};
        const Json values = value.contains("values") ? value["values"] : Json::object();
        tuningencoder::EncodeModule(*schema, values, path + "/values", &module.data, m_errors);
    }

    const modulegen::Schema* ReadModuleName(const Json& module, const std::string& path,
                                            const modulegen::SetManager& manager, std::string* name)
    {
        if (!module.contains("name"))
        {
            Fail(path, "missing key 'name'");
            return nullptr;
        }
        if (!ReadText(module["name"], path + "/name", name))
        {
            return nullptr;
        }
        for (const modulegen::Registration& registration : manager.registrations)
        {
            if (registration.name == *name)
            {
                return registration.schema;
            }
        }
        Fail(path + "/name", "unknown module '" + *name + "' of " + manager.className + KnownNames(manager));
        return nullptr;
    }

    static std::string KnownNames(const modulegen::SetManager& manager)
    {
        if (manager.registrations.empty() || (manager.registrations.size() > ListedNames))
        {
            return "";
        }
        std::string known;
        for (const modulegen::Registration& registration : manager.registrations)
        {
            known += (known.empty() ? " (" : ", ") + registration.name;
        }
        return known + ")";
    }

    /// A mode keeps the first module of a name: a second would be dropped by the reader.
    void RefuseSecondModuleInMode(const tuningfile::Module& module, const std::string& path)
    {
        for (size_t index = 0; index + 1 < m_model->modules.size(); ++index)
        {
            const tuningfile::Module& earlier = m_model->modules[index];
            if ((earlier.name == module.name) && (earlier.modeId == module.modeId))
            {
                Fail(path, "mode '" + ModePathText(m_modePaths[module.modeId]) + "' already holds '" + module.name +
                               "' (/modules/" + std::to_string(index) + ")");
                return;
            }
        }
    }

    const modulegen::SchemaSet&  m_schemas;
    tuningfile::TuningFileModel* m_model;
    std::vector<EncodeError>*    m_errors;
    std::vector<ModePath>        m_modePaths; ///< of each mode of the model, by id
};

/// The index that `text` gives an item at its start, as "modes[2]" does; nothing when it has none.
std::optional<size_t> LeadingIndex(const std::string& text, const std::string& item, size_t* end)
{
    const std::string opening = item + "[";
    if (text.compare(0, opening.size(), opening) != 0)
    {
        return std::nullopt;
    }
    char*               after = nullptr;
    const unsigned long index = std::strtoul(text.c_str() + opening.size(), &after, 10);
    if ((after == text.c_str() + opening.size()) || (*after != ']'))
    {
        return std::nullopt;
    }
    *end = static_cast<size_t>(after - text.c_str()) + 1;
    return static_cast<size_t>(index);
}
} // namespace

bool ReadPackSource(const Json& source, const modulegen::SchemaSet& schemas, tuningfile::TuningFileModel* model,
                    std::vector<EncodeError>* errors)
{
    const size_t before = errors->size();
    PackSourceReader(schemas, model, errors).Read(source);
    return errors->size() == before;
}

EncodeError WriterRefusalInSource(const std::string& text)
{
    for (const char* item : {"modes", "modules"})
    {
        size_t                end   = 0;
        std::optional<size_t> index = LeadingIndex(text, item, &end);
        if (!index)
        {
            continue;
        }
        // "modules[1] ('name'): ..." names the module again; the pointer says enough.
        const size_t colon = text.find(": ", end);
        const size_t start = (colon == std::string::npos) ? text.find_first_not_of(' ', end) : colon + 2;
        return {JsonChild(std::string("/") + item, *index), text.substr(std::min(start, text.size()))};
    }
    return {"", text};
}
} // namespace tonemetry
