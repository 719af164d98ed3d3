#include "recordemitter.h"

#include "cppnames.h"
#include "loademitter.h"
#include "recordorder.h"
#include "textaccessemitter.h"

namespace modulegen
{
namespace
{
using Rows = std::vector<std::pair<std::string, std::string>>;

void AddMemberRows(const Member& member, const Record& record, Rows* rows)
{
    const std::string type = ElementType(member, record);
    switch (member.shape)
    {
        case Shape::Single:
            rows->push_back({type, member.name + ";"});
            break;
        case Shape::FixedArray:
            rows->push_back({type, member.name + "[" + std::to_string(member.arraySize) + "];"});
            break;
        case Shape::Repeated:
            rows->push_back({"uint32_t", member.name + "Count; ///< number of elements"});
            rows->push_back({"uint32_t", member.name + "ID; ///< entry id of the elements"});
            rows->push_back({type + "*", member.name + ";"});
            break;
        case Shape::Optional:
            rows->push_back({"uint32_t", member.name + "Exists; ///< present when non-zero"});
            rows->push_back({"uint32_t", member.name + "ID; ///< entry id of the record that holds the flag"});
            rows->push_back({type, member.name + ";"});
            break;
    }
}

void EmitEnumDeclaration(CodeWriter& out, const Enum& type)
{
    out.Line("enum " + type.name + " : uint32_t");
    out.Open();
    Rows rows;
    for (const Enumerator& enumerator : type.enumerators)
    {
        rows.push_back({enumerator.name, "= " + std::to_string(enumerator.value) + ","});
    }
    out.Columns(rows);
    out.Close("};");
}

void EmitReadEnumDeclaration(CodeWriter& out, const Enum& type, bool member)
{
    out.Line(std::string(member ? "static " : "") + "bool ReadEnum_" + type.name +
             "(ParameterFileSymbolTableEntry* entry, " + type.name + "& value, unsigned char alignment);");
}

void EmitFunctionDeclarations(CodeWriter& out, const Record& record, bool isTop)
{
    for (const auto& nested : record.enums)
    {
        EmitReadEnumDeclaration(out, *nested, true);
    }
    out.Line("bool Load(ParameterFileSymbolTableEntry* entry, unsigned char alignment);");
    if (record.ownsMemory)
    {
        out.Line("void Unload(ParameterFileSymbolTable* table);");
    }
    if (record.schema->flavour == Flavour::Tuning)
    {
        EmitTextAccessDeclarations(out);
    }
    if (isTop)
    {
        out.Line("/// The change count of the module that holds this record.");
        out.Line("unsigned int GetModified();");
        out.Line("/// Gives back the reference that the set manager's accessor took.");
        out.Line("void Release();");
    }
}
} // namespace

void EmitRecordDeclaration(CodeWriter& out, const Record& record)
{
    const Schema& schema = *record.schema;
    bool          isTop  = schema.module && (schema.module->top == &record);
    out.Line("struct PDLIBVARK_API " + record.name);
    out.Open();
    if (record.isListElement)
    {
        out.Line("/// Bytes that one element takes in a file at least; a count beyond what the data holds is refused.");
        out.Line("static constexpr unsigned int MinimumDataSize = " + std::to_string(MinimumDataSize(record)) + ";");
        out.Line();
    }
    for (const auto& nested : record.enums)
    {
        EmitEnumDeclaration(out, *nested);
        out.Line();
    }
    for (const Record* nested : DeclarationOrder(record.records))
    {
        EmitRecordDeclaration(out, *nested);
        out.Line();
    }
    Rows rows;
    if (record.hasSymbolTableID)
    {
        rows.push_back(
            {"uint32_t", "SymbolTableID; ///< not in the data: the module's entry id in the top record, else 0"});
    }
    for (const Member& member : record.members)
    {
        AddMemberRows(member, record, &rows);
    }
    out.Columns(rows);
    out.Line();
    EmitFunctionDeclarations(out, record, isTop);
    out.Close("};");
}

void EmitNamespaceDeclarations(CodeWriter& out, const Schema& schema)
{
    for (const auto& type : schema.enums)
    {
        EmitEnumDeclaration(out, *type);
        out.Line();
    }
    for (const auto& type : schema.enums)
    {
        EmitReadEnumDeclaration(out, *type, false);
    }
    if (!schema.enums.empty())
    {
        out.Line();
    }
    for (const Record* record : DeclarationOrder(schema.records))
    {
        EmitRecordDeclaration(out, *record);
        out.Line();
    }
}

void EmitRecordDefinitions(CodeWriter& out, const Record& record)
{
    for (const auto& nested : record.enums)
    {
        EmitReadEnum(out, *nested);
        out.Line();
    }
    for (const Record* nested : DeclarationOrder(record.records))
    {
        EmitRecordDefinitions(out, *nested);
    }
    EmitLoad(out, record);
    out.Line();
    if (record.ownsMemory)
    {
        EmitUnload(out, record);
        out.Line();
    }
    if (record.schema->flavour == Flavour::Tuning)
    {
        EmitTextAccess(out, record);
    }
}

void EmitNamespaceDefinitions(CodeWriter& out, const Schema& schema)
{
    for (const auto& type : schema.enums)
    {
        EmitReadEnum(out, *type);
        out.Line();
    }
    for (const Record* record : DeclarationOrder(schema.records))
    {
        EmitRecordDefinitions(out, *record);
    }
}
} // namespace modulegen
