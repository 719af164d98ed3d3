#include "typeresolver.h"

#include <string_view>

namespace modulegen
{
namespace
{
/// A record or an enum that a name denotes.
struct TypeRef
{
    const Record* record   = nullptr;
    const Enum*   enumType = nullptr;

    bool Found() const { return (nullptr != record) || (nullptr != enumType); }
};

std::vector<std::string> SplitScope(const std::string& name)
{
    std::vector<std::string> parts;
    size_t                   position = 0;
    while (true)
    {
        size_t separator = name.find("::", position);
        parts.push_back(name.substr(position, separator - position));
        if (separator == std::string::npos)
        {
            return parts;
        }
        position = separator + 2;
    }
}

TypeRef FindIn(const std::vector<std::unique_ptr<Record>>& records, const std::vector<std::unique_ptr<Enum>>& enums,
               const std::string& name)
{
    TypeRef found;
    for (const auto& record : records)
    {
        if (record->name == name)
        {
            found.record = record.get();
        }
    }
    for (const auto& declared : enums)
    {
        if (declared->name == name)
        {
            found.enumType = declared.get();
        }
    }
    return found;
}

/// Looks names up as C++ does from inside a record: the record and its enclosing records
/// first, then the namespace of its schema, then the schemas it uses (where a name must be
/// unique); a first part may also be the namespace of the schema or of a used schema.
class Resolver
{
public:
    Resolver(const Schema& schema, DiagnosticSink& sink) : m_schema(schema), m_sink(sink) {}

    void ResolveRecord(Record& record)
    {
        for (Member& member : record.members)
        {
            ResolveMember(member, record);
        }
        for (auto& nested : record.records)
        {
            ResolveRecord(*nested);
        }
    }

private:
    void Error(const std::string& path, const std::string& message) { m_sink.Add(m_schema.path, path, message); }

    void ResolveMember(Member& member, const Record& scope)
    {
        if (member.typeName == "String")
        {
            member.kind = ElementKind::String;
            if (member.shape == Shape::FixedArray)
            {
                Error(member.jsonPath, "a String member cannot be a fixed array");
            }
            return;
        }
        if (const ScalarInfo* scalar = FindScalar(member.typeName))
        {
            member.kind   = ElementKind::Scalar;
            member.scalar = scalar->type;
            return;
        }
        std::string ambiguity;
        TypeRef     type = Lookup(member.typeName, scope, &ambiguity);
        if (!ambiguity.empty())
        {
            Error(member.jsonPath, ambiguity);
        }
        else if (type.record != nullptr)
        {
            member.kind   = ElementKind::Record;
            member.record = type.record;
        }
        else if (type.enumType != nullptr)
        {
            member.kind     = ElementKind::Enum;
            member.enumType = type.enumType;
        }
        else
        {
            Error(member.jsonPath, "unknown type '" + member.typeName + "'");
        }
    }

    TypeRef Lookup(const std::string& name, const Record& scope, std::string* ambiguity) const
    {
        std::vector<std::string> parts = SplitScope(name);
        TypeRef                  found = LookupFirst(parts[0], scope, ambiguity);
        size_t                   next  = 1;
        if (!found.Found() && ambiguity->empty() && (parts.size() > 1))
        {
            found = LookupInNamespace(parts[0], parts[1], ambiguity);
            next  = 2;
        }
        for (; found.Found() && (next < parts.size()); ++next)
        {
            found =
                (nullptr == found.record) ? TypeRef{} : FindIn(found.record->records, found.record->enums, parts[next]);
        }
        return found;
    }

    TypeRef LookupFirst(const std::string& name, const Record& scope, std::string* ambiguity) const
    {
        for (const Record* level = &scope; level != nullptr; level = level->owner)
        {
            TypeRef found = FindIn(level->records, level->enums, name);
            if (found.Found())
            {
                return found;
            }
        }
        TypeRef found = FindIn(m_schema.records, m_schema.enums, name);
        if (found.Found())
        {
            return found;
        }
        const Schema* foundIn = nullptr;
        for (const Schema* used : m_schema.usedSchemas)
        {
            TypeRef candidate = FindIn(used->records, used->enums, name);
            if (!candidate.Found())
            {
                continue;
            }
            if (nullptr != foundIn)
            {
                *ambiguity = "type '" + name + "' is declared in both '" + foundIn->stem + "' and '" + used->stem +
                             "'; qualify it with its namespace";
                return {};
            }
            found   = candidate;
            foundIn = used;
        }
        return found;
    }

    TypeRef LookupInNamespace(const std::string& nameSpace, const std::string& name, std::string* ambiguity) const
    {
        std::vector<const Schema*> candidates{&m_schema};
        candidates.insert(candidates.end(), m_schema.usedSchemas.begin(), m_schema.usedSchemas.end());
        TypeRef found;
        for (const Schema* candidate : candidates)
        {
            if (candidate->nameSpace != nameSpace)
            {
                continue;
            }
            TypeRef type = FindIn(candidate->records, candidate->enums, name);
            if (type.Found() && found.Found())
            {
                *ambiguity = "type '" + nameSpace + "::" + name + "' is declared more than once";
                return {};
            }
            found = type.Found() ? type : found;
        }
        return found;
    }

    const Schema&   m_schema;
    DiagnosticSink& m_sink;
};

void ResolveUses(Schema& schema, const SchemaSet& set, DiagnosticSink& sink)
{
    for (size_t index = 0; index < schema.uses.size(); ++index)
    {
        const std::string& stem = schema.uses[index];
        const Schema*      used = set.FindSchema(stem);
        std::string        path = JsonChild("/uses", index);
        if (nullptr == used)
        {
            sink.Add(schema.path, path, "uses unknown schema '" + stem + "'");
        }
        else if (used == &schema)
        {
            sink.Add(schema.path, path, "a schema cannot use itself");
        }
        else
        {
            schema.usedSchemas.push_back(used);
        }
    }
}
} // namespace

void ResolveReferences(SchemaSet& set, DiagnosticSink& sink)
{
    for (auto& schema : set.schemas)
    {
        ResolveUses(*schema, set, sink);
    }
    for (auto& schema : set.schemas)
    {
        Resolver resolver(*schema, sink);
        for (auto& record : schema->records)
        {
            resolver.ResolveRecord(*record);
        }
    }
}
} // namespace modulegen
