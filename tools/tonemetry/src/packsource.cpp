#include "packsource.h"

#include <algorithm>
#include <cstdlib>
#include <optional>

#include "modetreesource.h"
#include "sourcefields.h"

namespace tonemetry
{
namespace
{
using tuningencoder::JsonChild;

// Beyond this many, a list of known names is more noise than help.
constexpr size_t ListedNames = 16;

std::string KnownNames(const modulegen::SetManager& manager)
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

class PackSourceReader
{
public:
    PackSourceReader(const modulegen::SchemaSet& schemas, tuningfile::TuningFileModel* model,
                     std::vector<EncodeError>* errors)
        : m_schemas(schemas), m_model(model), m_errors(errors), m_modes(&model->modes, errors)
    {
    }

    void Read(const Json& source)
    {
        if (!source.is_object())
        {
            Fail("", "a pack source is one JSON object");
            return;
        }
        RefuseUnknownKeys(source, "", {"setManager", "binaryTag", "modes", "modules"}, m_errors);
        const modulegen::SetManager* manager = ReadSetManager(source);
        if (source.contains("binaryTag"))
        {
            ReadText(source["binaryTag"], "/binaryTag", &m_model->binaryTag, m_errors);
        }
        m_modes.Read(source);
        if (nullptr != manager)
        {
            ReadModules(source, *manager);
        }
    }

private:
    void Fail(const std::string& path, const std::string& message) { m_errors->push_back({path, message}); }

    const modulegen::SetManager* ReadSetManager(const Json& source)
    {
        std::string className;
        if (!source.contains("setManager"))
        {
            Fail("", "missing key 'setManager'");
            return nullptr;
        }
        if (!ReadText(source["setManager"], "/setManager", &className, m_errors))
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

    void ReadModules(const Json& source, const modulegen::SetManager& manager)
    {
        if (!source.contains("modules"))
        {
            Fail("", "missing key 'modules'");
            return;
        }
        const Json& modules = source["modules"];
        if (!modules.is_array())
        {
            Fail("/modules", "expected an array");
            return;
        }
        for (size_t index = 0; index < modules.size(); ++index)
        {
            ReadModule(modules[index], JsonChild("/modules", index), manager);
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
        RefuseUnknownKeys(value, path, {"name", "mode", "values"}, m_errors);
        const modulegen::Schema* schema = ReadModuleName(value, path, manager, &module.name);
        std::optional<uint32_t>  modeId =
            value.contains("mode") ? m_modes.Resolve(value["mode"], path + "/mode") : std::optional<uint32_t>(0);
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
        const Json values                 = value.contains("values") ? value["values"] : Json::object();
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
        if (!ReadText(module["name"], path + "/name", name, m_errors))
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

    /// A mode keeps the first module of a name: a second would be dropped by the reader.
    void RefuseSecondModuleInMode(const tuningfile::Module& module, const std::string& path)
    {
        for (size_t index = 0; index + 1 < m_model->modules.size(); ++index)
        {
            const tuningfile::Module& earlier = m_model->modules[index];
            if ((earlier.name == module.name) && (earlier.modeId == module.modeId))
            {
                Fail(path, "mode '" + m_modes.PathText(module.modeId) + "' already holds '" + module.name +
                               "' (/modules/" + std::to_string(index) + ")");
                return;
            }
        }
    }

    const modulegen::SchemaSet&  m_schemas;
    tuningfile::TuningFileModel* m_model;
    std::vector<EncodeError>*    m_errors;
    ModeTreeSource               m_modes;
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
