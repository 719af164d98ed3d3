#include "modulegen/schemaloader.h"

#include <algorithm>
#include <filesystem>
#include <map>
#include <system_error>

#include "modulegen/diagnosticsink.h"
#include "modulegen/jsonfile.h"
#include "schemachecker.h"
#include "schemareader.h"
#include "typeresolver.h"

namespace modulegen
{
namespace
{
namespace fs = std::filesystem;

/// Output files are named by stem and the schemas refer to each other by it.
void CheckStems(const std::vector<SchemaFile>& files, DiagnosticSink& sink)
{
    std::map<std::string, const SchemaFile*> byStem;
    for (const SchemaFile& file : files)
    {
        auto [earlier, inserted] = byStem.emplace(file.stem, &file);
        if (!inserted)
        {
            sink.Add(file.path, "", "file name '" + file.stem + "' is already that of " + earlier->second->path);
        }
    }
}

/// The one set manager of a folder, or null when it has none or several.
const SetManager* FolderSetManager(const SchemaSet& set, const std::string& folder)
{
    const SetManager* found = nullptr;
    for (const auto& manager : set.setManagers)
    {
        if (manager->folder == folder)
        {
            if (nullptr != found)
            {
                return nullptr;
            }
            found = manager.get();
        }
    }
    return found;
}

/// A module belongs to the set manager of its folder unless it names one; a schema takes the
/// flavour of its set manager unless it gives one.
void ApplyDefaults(SchemaSet& set, const std::map<const void*, std::optional<Flavour>>& flavours, DiagnosticSink& sink)
{
    for (auto& manager : set.setManagers)
    {
        manager->flavour = flavours.at(manager.get()).value_or(Flavour::Plain);
        if (set.FindSetManager(manager->className) != manager.get())
        {
            sink.Add(manager->path, "/setManager", "set manager '" + manager->className + "' is declared twice");
        }
    }
    for (auto& schema : set.schemas)
    {
        const SetManager* manager = FolderSetManager(set, schema->folder);
        if (schema->module)
        {
            ModuleInfo& module = *schema->module;
            if (module.setManager.empty())
            {
                if (nullptr == manager)
                {
                    sink.Add(schema->path, module.jsonPath,
                             "folder '" + schema->folder + "' has no single set manager; name one with \"setManager\"");
                    continue;
                }
                module.setManager = manager->className;
            }
            manager = set.FindSetManager(module.setManager);
            if (nullptr == manager)
            {
                sink.Add(schema->path, JsonChild(module.jsonPath, "setManager"),
                         "unknown set manager '" + module.setManager + "'");
                continue;
            }
        }
        std::optional<Flavour> given = flavours.at(schema.get());
        schema->flavour              = given ? *given : ((nullptr == manager) ? Flavour::Plain : manager->flavour);
    }
}
} // namespace

std::string Diagnostic::ToString() const
{
    return jsonPath.empty() ? file + ": " + message : file + ": " + jsonPath + ": " + message;
}

bool FindSchemaFiles(const std::string& root, std::vector<SchemaFile>* files, std::string* error)
{
    std::error_code        failure;
    fs::directory_iterator folders(root, failure);
    if (failure)
    {
        *error = root + ": " + failure.message();
        return false;
    }
    std::vector<SchemaFile> found;
    for (const fs::directory_entry& folder : folders)
    {
        if (!folder.is_directory())
        {
            continue;
        }
        for (const fs::directory_entry& entry : fs::directory_iterator(folder.path(), failure))
        {
            if (entry.is_regular_file() && (entry.path().extension() == ".json"))
            {
                found.push_back(
                    {entry.path().string(), folder.path().filename().string(), entry.path().stem().string()});
            }
        }
        if (failure)
        {
            *error = folder.path().string() + ": " + failure.message();
            return false;
        }
    }
    std::sort(found.begin(), found.end(), [](const SchemaFile& left, const SchemaFile& right) {
        return (left.folder != right.folder) ? left.folder < right.folder : left.stem < right.stem;
    });
    *files = std::move(found);
    return true;
}

bool LoadSchemaSet(const std::vector<SchemaFile>& files, SchemaSet* out, std::vector<Diagnostic>* diagnostics)
{
    DiagnosticSink                                sink;
    SchemaSet                                     set;
    std::map<const void*, std::optional<Flavour>> flavours;
    CheckStems(files, sink);
    for (const SchemaFile& file : files)
    {
        nlohmann::ordered_json document;
        ReadResult             result;
        if (!ReadJsonFile(file.path, file.path, &document, sink) || !ReadSchemaDocument(file, document, &result, sink))
        {
            continue;
        }
        if (result.schema)
        {
            flavours[result.schema.get()] = result.flavour;
            set.schemas.push_back(std::move(result.schema));
        }
        else
        {
            flavours[result.setManager.get()] = result.flavour;
            set.setManagers.push_back(std::move(result.setManager));
        }
    }
    // Each stage needs the one before it whole; later refusals would only echo earlier ones.
    if (sink.Empty())
    {
        ApplyDefaults(set, flavours, sink);
    }
    if (sink.Empty())
    {
        ResolveReferences(set, sink);
    }
    if (sink.Empty())
    {
        CheckSchemaSet(set, sink);
    }
    *diagnostics = sink.All();
    if (!sink.Empty())
    {
        return false;
    }
    *out = std::move(set);
    return true;
}
} // namespace modulegen
