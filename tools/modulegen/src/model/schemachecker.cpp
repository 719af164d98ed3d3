#include "schemachecker.h"

#include <algorithm>
#include <cctype>
#include <functional>
#include <map>
#include <set>

#include "names.h"

namespace modulegen
{
namespace
{
std::string Lowercase(std::string text)
{
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return text;
}

/// Names declared in one C++ scope, with where each came from, so that a clash names both.
class ScopeNames
{
public:
    /// False (and `*earlier` set) when the name is taken.
    bool Declare(const std::string& name, const std::string& what, std::string* earlier)
    {
        auto [position, inserted] = m_names.emplace(name, what);
        if (!inserted)
        {
            *earlier = position->second;
        }
        return inserted;
    }

private:
    std::map<std::string, std::string> m_names;
};

/// The member names that generated code adds for a member besides its own.
std::vector<std::string> CompanionNames(const Member& member)
{
    switch (member.shape)
    {
        case Shape::Repeated:
            return {member.name + "Count", member.name + "ID"};
        case Shape::Optional:
            return {member.name + "Exists", member.name + "ID"};
        default:
            return {};
    }
}

class Checker
{
public:
    Checker(SchemaSet& set, DiagnosticSink& sink) : m_set(set), m_sink(sink) {}

    void Run()
    {
        CheckNamespaceScopes();
        for (auto& schema : m_set.schemas)
        {
            for (auto& record : schema->records)
            {
                CheckRecordScope(*schema, *record);
            }
            CheckModule(*schema);
        }
        CheckUseCycles();
        if (!CheckRecordCycles())
        {
            return; // derived flags need a tree
        }
        DeriveFlags();
        for (auto& schema : m_set.schemas)
        {
            CheckFlavour(*schema);
        }
        for (auto& manager : m_set.setManagers)
        {
            CheckSetManager(*manager);
        }
    }

private:
    void Error(const std::string& file, const std::string& path, const std::string& message)
    {
        m_sink.Add(file, path, message);
    }

    /// Types and enumerators at namespace level live in one C++ scope per namespace, whatever
    /// schema declares them.
    void CheckNamespaceScopes()
    {
        std::map<std::string, ScopeNames> scopes;
        for (auto& schema : m_set.schemas)
        {
            ScopeNames& names = scopes[schema->nameSpace];
            for (auto& declared : schema->enums)
            {
                Declare(names, *schema, declared->jsonPath, declared->name, "enum");
                for (size_t index = 0; index < declared->enumerators.size(); ++index)
                {
                    Declare(names, *schema, declared->jsonPath, declared->enumerators[index].name,
                            "enumerator of " + declared->name);
                }
            }
            for (auto& record : schema->records)
            {
                Declare(names, *schema, record->jsonPath, record->name, "record");
            }
            if (schema->module)
            {
                Declare(names, *schema, schema->module->jsonPath, schema->module->topName + "Class", "module class");
            }
        }
    }

    void Declare(ScopeNames& names, const Schema& schema, const std::string& path, const std::string& name,
                 const std::string& what)
    {
        std::string earlier;
        if (!names.Declare(name, what + " in " + schema.stem, &earlier))
        {
            Error(schema.path, path, "'" + name + "' (" + what + ") is already declared: " + earlier);
        }
    }

    void CheckRecordScope(const Schema& schema, const Record& record)
    {
        ScopeNames  names;
        std::string earlier;
        names.Declare(record.name, "the record itself", &earlier);
        for (const Member& member : record.members)
        {
            std::vector<std::string> declared{member.name};
            std::vector<std::string> companions = CompanionNames(member);
            declared.insert(declared.end(), companions.begin(), companions.end());
            for (const std::string& name : declared)
            {
                if (!names.Declare(name, "member " + member.name, &earlier))
                {
                    Error(schema.path, member.jsonPath, "member name '" + name + "' is already used by " + earlier);
                }
            }
        }
        for (const auto& nested : record.records)
        {
            if (!names.Declare(nested->name, "record " + nested->name, &earlier))
            {
                Error(schema.path, nested->jsonPath, "'" + nested->name + "' is already used by " + earlier);
            }
            CheckRecordScope(schema, *nested);
        }
        for (const auto& nested : record.enums)
        {
            if (!names.Declare(nested->name, "enum " + nested->name, &earlier))
            {
                Error(schema.path, nested->jsonPath, "'" + nested->name + "' is already used by " + earlier);
            }
            for (const Enumerator& enumerator : nested->enumerators)
            {
                if (!names.Declare(enumerator.name, "enumerator of " + nested->name, &earlier))
                {
                    Error(schema.path, nested->jsonPath,
                          "enumerator '" + enumerator.name + "' is already used by " + earlier);
                }
            }
        }
    }

    void CheckModule(Schema& schema)
    {
        if (!schema.module)
        {
            return;
        }
        ModuleInfo& module = *schema.module;
        for (const auto& record : schema.records)
        {
            if (record->name == module.topName)
            {
                module.top = record.get();
            }
        }
        if (nullptr == module.top)
        {
            Error(schema.path, JsonChild(module.jsonPath, "top"),
                  "top record '" + module.topName + "' is not declared at namespace level");
            return;
        }
        bool hasVersion = std::any_of(module.top->members.begin(), module.top->members.end(), [](const Member& m) {
            return (m.name == "module_version") && (m.shape == Shape::Single) && (nullptr != m.record) &&
                   (m.record->name == "module_versionStruct");
        });
        if (!hasVersion)
        {
            Error(schema.path, module.top->jsonPath,
                  "top record '" + module.topName + "' needs the member \"module_versionStruct module_version\"");
        }
        if ((schema.flavour == Flavour::Tuning) && (schema.stem != Lowercase(schema.nameSpace)))
        {
            Error(schema.path, "/namespace",
                  "a tuning module's file is named after its namespace in lower case: expected '" +
                      Lowercase(schema.nameSpace) + ".json'");
        }
    }

    /// Headers include the headers of the schemas they use, so uses must not go round.
    void CheckUseCycles()
    {
        std::map<const Schema*, int>       state; // 1 visiting, 2 done
        std::function<bool(const Schema*)> visit = [&](const Schema* schema) {
            if (2 == state[schema])
            {
                return true;
            }
            if (1 == state[schema])
            {
                Error(schema->path, "/uses", "schemas use each other in a circle through '" + schema->stem + "'");
                return false;
            }
            state[schema] = 1;
            for (const Schema* used : schema->usedSchemas)
            {
                if (!visit(used))
                {
                    return false;
                }
            }
            state[schema] = 2;
            return true;
        };
        for (auto& schema : m_set.schemas)
        {
            if (!visit(schema.get()))
            {
                return;
            }
        }
    }

    /// A record that holds itself, by value or through a list, has no layout that ends.
    bool CheckRecordCycles()
    {
        std::map<const Record*, int>                                    state; // 1 visiting, 2 done
        bool                                                            fine  = true;
        std::function<void(const Record*, std::vector<const Record*>&)> visit = [&](const Record*               record,
                                                                                    std::vector<const Record*>& path) {
            if (2 == state[record])
            {
                return;
            }
            if (1 == state[record])
            {
                std::string chain;
                auto        start = std::find(path.begin(), path.end(), record);
                for (auto it = start; it != path.end(); ++it)
                {
                    chain += (*it)->ScopedName() + " -> ";
                }
                Error(record->schema->path, record->jsonPath,
                      "record '" + record->ScopedName() + "' holds itself: " + chain + record->ScopedName());
                fine = false;
                return;
            }
            state[record] = 1;
            path.push_back(record);
            for (const Member& member : record->members)
            {
                if (nullptr != member.record)
                {
                    visit(member.record, path);
                }
            }
            for (const auto& nested : record->records)
            {
                visit(nested.get(), path);
            }
            path.pop_back();
            state[record] = 2;
        };
        for (auto& schema : m_set.schemas)
        {
            for (auto& record : schema->records)
            {
                std::vector<const Record*> path;
                visit(record.get(), path);
            }
        }
        return fine;
    }

    void DeriveFlags()
    {
        std::set<const Record*> repeatedElements;
        for (auto& schema : m_set.schemas)
        {
            for (auto& record : schema->records)
            {
                CollectRepeatedElements(*record, &repeatedElements);
            }
        }
        std::map<const Record*, bool> owners;
        for (auto& schema : m_set.schemas)
        {
            for (auto& record : schema->records)
            {
                bool isTop = schema->module && (schema->module->top == record.get());
                MarkSymbolTableIDs(*record, isTop, isTop, repeatedElements);
                MarkOwnership(*record, owners);
                MarkListElements(*record, repeatedElements);
            }
        }
    }

    static void CollectRepeatedElements(const Record& record, std::set<const Record*>* elements)
    {
        for (const Member& member : record.members)
        {
            if ((member.shape == Shape::Repeated) && (nullptr != member.record))
            {
                elements->insert(member.record);
            }
        }
        for (const auto& nested : record.records)
        {
            CollectRepeatedElements(*nested, elements);
        }
    }

    /// The top record, and every record declared inside it at any depth, begins with
    /// SymbolTableID; a fixed array's "_tabStruct" wrapper and the element records of lists do
    /// not.
    static void MarkSymbolTableIDs(Record& record, bool isTop, bool insideTop,
                                   const std::set<const Record*>& repeatedElements)
    {
        record.hasSymbolTableID =
            isTop || (insideTop && !EndsWith(record.name, "_tabStruct") && (0 == repeatedElements.count(&record)));
        for (auto& nested : record.records)
        {
            MarkSymbolTableIDs(*nested, false, insideTop, repeatedElements);
        }
    }

    static void MarkListElements(Record& record, const std::set<const Record*>& repeatedElements)
    {
        record.isListElement = 0 != repeatedElements.count(&record);
        for (auto& nested : record.records)
        {
            MarkListElements(*nested, repeatedElements);
        }
    }

    static void MarkOwnership(Record& record, std::map<const Record*, bool>& owners)
    {
        record.ownsMemory = OwnsMemory(record, owners);
        for (auto& nested : record.records)
        {
            MarkOwnership(*nested, owners);
        }
    }

    /// A record owns memory when a member is a string or list, or a record that owns memory.
    static bool OwnsMemory(const Record& record, std::map<const Record*, bool>& owners)
    {
        auto known = owners.find(&record);
        if (known != owners.end())
        {
            return known->second;
        }
        bool owns = false;
        for (const Member& member : record.members)
        {
            owns = owns || (member.kind == ElementKind::String) || (member.shape == Shape::Repeated) ||
                   ((nullptr != member.record) && OwnsMemory(*member.record, owners));
        }
        owners[&record] = owns;
        return owns;
    }

    /// Text access reaches every record of a tuning module, so all of them need it.
    void CheckFlavour(const Schema& schema)
    {
        if (schema.flavour != Flavour::Tuning)
        {
            return;
        }
        for (const Schema* used : schema.usedSchemas)
        {
            if (used->flavour != Flavour::Tuning)
            {
                Error(schema.path, "/uses",
                      "tuning schema '" + schema.stem + "' uses '" + used->stem +
                          "', which has no text access; give it \"flavour\": \"tuning\"");
            }
        }
    }

    void CheckSetManager(SetManager& manager)
    {
        std::map<std::string, size_t> orderIndex;
        for (size_t index = 0; index < manager.order.size(); ++index)
        {
            if (!orderIndex.emplace(manager.order[index], index).second)
            {
                Error(manager.path, JsonChild("/order", index), "name '" + manager.order[index] + "' is listed twice");
            }
        }

        struct Candidate
        {
            std::string   name;
            const Schema* schema;
            std::string   path;
        };
        std::vector<Candidate> candidates;
        for (auto& schema : m_set.schemas)
        {
            if (!schema->module || (schema->module->setManager != manager.className))
            {
                continue;
            }
            for (size_t index = 0; index < schema->module->names.size(); ++index)
            {
                candidates.push_back({schema->module->names[index], schema.get(),
                                      JsonChild(JsonChild(schema->module->jsonPath, "names"), index)});
            }
        }

        std::map<std::string, const Candidate*> byName;
        std::map<std::string, const Candidate*> byType;
        for (const Candidate& candidate : candidates)
        {
            if (!byName.emplace(candidate.name, &candidate).second)
            {
                Error(candidate.schema->path, candidate.path,
                      "name '" + candidate.name + "' is already registered in " + manager.className + " by '" +
                          byName[candidate.name]->schema->stem + "'");
                continue;
            }
            std::string type = ShortTypeOf(candidate.name);
            if (!byType.emplace(type, &candidate).second)
            {
                Error(candidate.schema->path, candidate.path,
                      "name '" + candidate.name + "' has the type string '" + type + "' of '" + byType[type]->name +
                          "' in " + manager.className + "; the file could not tell them apart");
            }
            if (!manager.order.empty() && (0 == orderIndex.count(candidate.name)))
            {
                Error(candidate.schema->path, candidate.path,
                      "name '" + candidate.name + "' is missing from the registration order of " + manager.className +
                          " (" + manager.path + ")");
            }
        }

        // Registration follows the catalogue; without one, schema files in name order.
        std::stable_sort(candidates.begin(), candidates.end(), [&](const Candidate& left, const Candidate& right) {
            size_t leftIndex  = orderIndex.count(left.name) ? orderIndex[left.name] : manager.order.size();
            size_t rightIndex = orderIndex.count(right.name) ? orderIndex[right.name] : manager.order.size();
            return leftIndex < rightIndex;
        });
        for (const Candidate& candidate : candidates)
        {
            manager.registrations.push_back({candidate.name, candidate.schema});
        }
    }

    SchemaSet&      m_set;
    DiagnosticSink& m_sink;
};
} // namespace

void CheckSchemaSet(SchemaSet& set, DiagnosticSink& sink)
{
    Checker(set, sink).Run();
}
} // namespace modulegen
