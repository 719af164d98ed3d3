#include "schemareader.h"

#include <initializer_list>

#include "memberdeclaration.h"
#include "modulegen/jsonfile.h"
#include "names.h"

namespace modulegen
{
namespace
{
using Json = nlohmann::ordered_json;

const char* const ModuleVersionStruct    = "module_versionStruct";
const char* const ParameterVersionStruct = "parameter_versionStruct";

/// Reads the parts of one file. Every refusal is reported with the JSON pointer of the value it
/// concerns, and reading goes on where it can, so that one run shows all problems of a file.
class DocumentReader
{
public:
    DocumentReader(const SchemaFile& file, DiagnosticSink& sink) : m_file(file), m_sink(sink) {}

    void Read(const Json& document, ReadResult* out)
    {
        if (!document.is_object())
        {
            Error("", "a schema file holds one JSON object, not " + JsonKindName(document));
            return;
        }
        if (document.contains("setManager"))
        {
            ReadSetManager(document, out);
        }
        else
        {
            ReadSchema(document, out);
        }
    }

private:
    void Error(const std::string& path, const std::string& message) { m_sink.Add(m_file.path, path, message); }

    /// Refuses keys that the object may not have: a misspelt key would otherwise be ignored.
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
                Error(JsonChild(path, item.key()), "unknown key '" + item.key() + "'");
            }
        }
    }

    bool ReadText(const Json& object, const char* key, const std::string& path, bool required, std::string* out)
    {
        if (!object.contains(key))
        {
            if (required)
            {
                Error(path, std::string("missing key '") + key + "'");
            }
            return false;
        }
        const Json& value = object[key];
        if (!value.is_string())
        {
            Error(JsonChild(path, key), "must be a string, not " + JsonKindName(value));
            return false;
        }
        *out = value.get<std::string>();
        return true;
    }

    void ReadTextList(const Json& object, const char* key, const std::string& path, std::vector<std::string>* out)
    {
        if (!object.contains(key))
        {
            return;
        }
        const Json&       list     = object[key];
        const std::string listPath = JsonChild(path, key);
        if (!list.is_array())
        {
            Error(listPath, "must be an array of strings, not " + JsonKindName(list));
            return;
        }
        for (size_t index = 0; index < list.size(); ++index)
        {
            if (!list[index].is_string())
            {
                Error(JsonChild(listPath, index), "must be a string, not " + JsonKindName(list[index]));
                continue;
            }
            out->push_back(list[index].get<std::string>());
        }
    }

    std::optional<Flavour> ReadFlavour(const Json& object, const std::string& path)
    {
        std::string text;
        if (!ReadText(object, "flavour", path, false, &text))
        {
            return std::nullopt;
        }
        if (text == "plain")
        {
            return Flavour::Plain;
        }
        if (text == "tuning")
        {
            return Flavour::Tuning;
        }
        Error(JsonChild(path, "flavour"), "unknown flavour '" + text + "' (expected \"plain\" or \"tuning\")");
        return std::nullopt;
    }

    void ReadSetManager(const Json& document, ReadResult* out)
    {
        CheckKeys(document, "", {"setManager", "flavour", "order"});
        auto manager    = std::make_unique<SetManager>();
        manager->path   = m_file.path;
        manager->folder = m_file.folder;
        manager->stem   = m_file.stem;
        if (ReadText(document, "setManager", "", true, &manager->className) && !IsUsableName(manager->className))
        {
            Error("/setManager", "'" + manager->className + "' cannot name a class");
        }
        out->flavour = ReadFlavour(document, "");
        ReadTextList(document, "order", "", &manager->order);
        out->setManager = std::move(manager);
    }

    void ReadSchema(const Json& document, ReadResult* out)
    {
        CheckKeys(document, "", {"namespace", "flavour", "module", "uses", "enums", "records"});
        auto schema    = std::make_unique<Schema>();
        schema->path   = m_file.path;
        schema->folder = m_file.folder;
        schema->stem   = m_file.stem;
        if (ReadText(document, "namespace", "", true, &schema->nameSpace) && !IsUsableName(schema->nameSpace))
        {
            Error("/namespace", "'" + schema->nameSpace + "' cannot name a namespace");
        }
        out->flavour = ReadFlavour(document, "");
        ReadTextList(document, "uses", "", &schema->uses);
        ReadEnums(document, "", nullptr, schema.get(), &schema->enums);
        ReadRecords(document, "", nullptr, schema.get(), &schema->records);
        if (schema->enums.empty() && schema->records.empty())
        {
            Error("", "declares no record and no enum");
        }
        if (document.contains("module"))
        {
            ReadModule(document["module"], "/module", schema.get());
        }
        out->schema = std::move(schema);
    }

    void ReadModule(const Json& value, const std::string& path, Schema* schema)
    {
        if (!value.is_object())
        {
            Error(path, "must be an object, not " + JsonKindName(value));
            return;
        }
        CheckKeys(value, path, {"top", "version", "names", "setManager", "pending"});
        ModuleInfo module;
        module.jsonPath = path;
        ReadText(value, "top", path, true, &module.topName);
        std::string version;
        if (ReadText(value, "version", path, true, &version) && !ParseVersion(version, &module.version))
        {
            Error(JsonChild(path, "version"),
                  "bad version '" + version + "' (expected major.minor.patch, below 65536.65536.4294967296)");
        }
        if (!value.contains("names"))
        {
            Error(path, "missing key 'names'");
        }
        ReadTextList(value, "names", path, &module.names);
        if (value.contains("names") && value["names"].is_array() && value["names"].empty())
        {
            Error(JsonChild(path, "names"), "a module needs at least one registered name");
        }
        for (size_t index = 0; index < module.names.size(); ++index)
        {
            if (!IsIdentifier(module.names[index]))
            {
                Error(JsonChild(JsonChild(path, "names"), index), "registered name '" + module.names[index] +
                                                                      "' cannot form an accessor GetModule_" +
                                                                      module.names[index]);
            }
        }
        ReadText(value, "setManager", path, false, &module.setManager);
        if (ReadText(value, "pending", path, false, &module.pending) && module.pending.empty())
        {
            Error(JsonChild(path, "pending"), "says what is still to be supplied; a complete module leaves it out");
        }
        AddStandardStructs(schema, module.topName);
        schema->module = std::move(module);
    }

    void ReadEnums(const Json& container, const std::string& path, const Record* owner, const Schema* schema,
                   std::vector<std::unique_ptr<Enum>>* out)
    {
        if (!container.contains("enums"))
        {
            return;
        }
        const Json&       enums     = container["enums"];
        const std::string enumsPath = JsonChild(path, "enums");
        if (!enums.is_object())
        {
            Error(enumsPath, "must be an object of enums, not " + JsonKindName(enums));
            return;
        }
        for (const auto& item : enums.items())
        {
            const std::string enumPath = JsonChild(enumsPath, item.key());
            CheckTypeName(item.key(), enumPath, owner, "Enum", "an enum");
            auto declared      = std::make_unique<Enum>();
            declared->name     = item.key();
            declared->owner    = owner;
            declared->schema   = schema;
            declared->jsonPath = enumPath;
            ReadEnumerators(item.value(), enumPath, declared.get());
            out->push_back(std::move(declared));
        }
    }

    /// An array of names counts from 0; an object gives each name its value, gaps allowed.
    void ReadEnumerators(const Json& value, const std::string& path, Enum* declared)
    {
        if (value.is_array())
        {
            for (size_t index = 0; index < value.size(); ++index)
            {
                if (!value[index].is_string())
                {
                    Error(JsonChild(path, index), "must be an enumerator name, not " + JsonKindName(value[index]));
                    continue;
                }
                AddEnumerator(declared, value[index].get<std::string>(), static_cast<uint32_t>(index),
                              JsonChild(path, index));
            }
        }
        else if (value.is_object())
        {
            for (const auto& item : value.items())
            {
                const std::string itemPath = JsonChild(path, item.key());
                const Json&       number   = item.value();
                if (!number.is_number_unsigned() || (number.get<uint64_t>() > UINT32_MAX))
                {
                    Error(itemPath, "an enum value is a whole number from 0 to 4294967295");
                    continue;
                }
                AddEnumerator(declared, item.key(), static_cast<uint32_t>(number.get<uint64_t>()), itemPath);
            }
        }
        else
        {
            Error(path, "an enum is an array of names or an object of names and values, not " + JsonKindName(value));
            return;
        }
        if (declared->enumerators.empty())
        {
            Error(path, "an enum needs at least one value");
        }
    }

    void AddEnumerator(Enum* declared, const std::string& name, uint32_t value, const std::string& path)
    {
        if (!IsUsableName(name))
        {
            Error(path, "'" + name + "' cannot name an enumerator");
        }
        for (const Enumerator& earlier : declared->enumerators)
        {
            if (earlier.value == value)
            {
                Error(path, "value " + std::to_string(value) + " of '" + name + "' is already that of '" +
                                earlier.name + "'");
            }
        }
        declared->enumerators.push_back({name, value});
    }

    void ReadRecords(const Json& container, const std::string& path, const Record* owner, const Schema* schema,
                     std::vector<std::unique_ptr<Record>>* out)
    {
        if (!container.contains("records"))
        {
            return;
        }
        const Json&       records     = container["records"];
        const std::string recordsPath = JsonChild(path, "records");
        if (!records.is_object())
        {
            Error(recordsPath, "must be an object of records, not " + JsonKindName(records));
            return;
        }
        for (const auto& item : records.items())
        {
            out->push_back(ReadRecord(item.value(), item.key(), JsonChild(recordsPath, item.key()), owner, schema));
        }
    }

    /// A record is the array of its members, or an object with "members" and the records and
    /// enums declared inside it.
    std::unique_ptr<Record> ReadRecord(const Json& value, const std::string& name, const std::string& path,
                                       const Record* owner, const Schema* schema)
    {
        CheckTypeName(name, path, owner, "Struct", "a record");
        auto record      = std::make_unique<Record>();
        record->name     = name;
        record->owner    = owner;
        record->schema   = schema;
        record->jsonPath = path;
        if (value.is_array())
        {
            ReadMembers(value, path, record.get());
        }
        else if (value.is_object())
        {
            CheckKeys(value, path, {"members", "records", "enums"});
            if (!value.contains("members"))
            {
                Error(path, "missing key 'members'");
            }
            else if (!value["members"].is_array())
            {
                Error(JsonChild(path, "members"), "must be an array of members, not " + JsonKindName(value["members"]));
            }
            else
            {
                ReadMembers(value["members"], JsonChild(path, "members"), record.get());
            }
            ReadEnums(value, path, record.get(), schema, &record->enums);
            ReadRecords(value, path, record.get(), schema, &record->records);
        }
        else
        {
            Error(path, "a record is an array of members or an object with \"members\", not " + JsonKindName(value));
        }
        return record;
    }

    void ReadMembers(const Json& members, const std::string& path, Record* record)
    {
        if (members.empty())
        {
            Error(path, "a record needs at least one member");
        }
        for (size_t index = 0; index < members.size(); ++index)
        {
            const std::string memberPath = JsonChild(path, index);
            if (!members[index].is_string())
            {
                Error(memberPath,
                      "a member is a string \"[repeated|optional] Type name[N]\", not " + JsonKindName(members[index]));
                continue;
            }
            MemberDeclaration declaration;
            std::string       error;
            if (!ParseMemberDeclaration(members[index].get<std::string>(), &declaration, &error))
            {
                Error(memberPath, error);
                continue;
            }
            Member member;
            member.name      = declaration.name;
            member.shape     = declaration.shape;
            member.arraySize = declaration.arraySize;
            member.typeName  = declaration.typeName;
            member.jsonPath  = memberPath;
            record->members.push_back(std::move(member));
        }
    }

    /// Types declared inside a record carry the suffix that tells them apart from namespace types.
    void CheckTypeName(const std::string& name, const std::string& path, const Record* owner, const char* suffix,
                       const char* what)
    {
        if (!IsUsableName(name))
        {
            Error(path, "'" + name + "' cannot name " + what);
        }
        else if ((nullptr != owner) && !EndsWith(name, suffix))
        {
            Error(path, std::string(what) + " declared inside a record ends in \"" + suffix + "\": '" + name + "'");
        }
    }

    /// The version records that every top record holds are supplied when the top record uses
    /// them without declaring them.
    void AddStandardStructs(Schema* schema, const std::string& topName)
    {
        for (auto& record : schema->records)
        {
            if (record->name != topName)
            {
                continue;
            }
            AddStandardStruct(record.get(), ModuleVersionStruct,
                              {"Int32 major_revision", "Int32 minor_revision", "Int32 incr_revision"});
            AddStandardStruct(record.get(), ParameterVersionStruct, {"String revision"});
        }
    }

    void AddStandardStruct(Record* top, const char* name, std::initializer_list<const char*> members)
    {
        bool used = false;
        for (const Member& member : top->members)
        {
            used = used || (member.typeName == name);
        }
        for (const auto& nested : top->records)
        {
            used = used && (nested->name != name);
        }
        if (!used)
        {
            return;
        }
        auto record      = std::make_unique<Record>();
        record->name     = name;
        record->owner    = top;
        record->schema   = top->schema;
        record->jsonPath = top->jsonPath;
        for (const char* text : members)
        {
            MemberDeclaration declaration;
            std::string       error;
            ParseMemberDeclaration(text, &declaration, &error);
            Member member;
            member.name     = declaration.name;
            member.typeName = declaration.typeName;
            member.jsonPath = top->jsonPath;
            record->members.push_back(std::move(member));
        }
        top->records.insert(top->records.begin(), std::move(record));
    }

    const SchemaFile& m_file;
    DiagnosticSink&   m_sink;
};
} // namespace

bool ReadSchemaDocument(const SchemaFile& file, const nlohmann::ordered_json& document, ReadResult* out,
                        DiagnosticSink& sink)
{
    size_t before = sink.Count();
    DocumentReader(file, sink).Read(document, out);
    return sink.Count() == before;
}
} // namespace modulegen
