#include "loademitter.h"

#include "cppnames.h"

namespace modulegen
{
namespace
{
bool ReadsStringInLine(const Record& record)
{
    for (const Member& member : record.members)
    {
        if ((member.kind == ElementKind::String) && (member.shape != Shape::Repeated))
        {
            return true;
        }
    }
    return false;
}

/// Load of one element of `member` into `target` from the entry `entry` (an expression). Where
/// `result` is known to be true (`guarded`), a call need not test it first.
void EmitElementLoad(CodeWriter& out, const Member& member, const Record& record, const std::string& target,
                     const std::string& entry, bool guarded = false)
{
    const std::string assign = guarded ? "result = " : "result = result && ";
    switch (member.kind)
    {
        case ElementKind::Scalar:
            out.Line("PARAMETER_LOAD_SCALAR(result, " + entry + ", " + target + ", alignment);");
            break;
        case ElementKind::Enum:
            out.Line(assign + ReadEnumFunction(*member.enumType, &record, *record.schema) + "(" + entry + ", " +
                     target + ", alignment);");
            break;
        case ElementKind::Record:
            out.Line(assign + target + ".Load(" + entry + ", alignment);");
            break;
        case ElementKind::String:
            out.Line("PARAMETER_LOAD_SCALAR(result, " + entry + ", length, alignment);");
            out.Line("result = result && ParameterRecordLoader::LoadString(" + entry + ", alignment, length, " +
                     target + ");");
            break;
    }
}

void EmitFixedArrayLoad(CodeWriter& out, const Member& member, const Record& record)
{
    if (member.kind == ElementKind::Scalar)
    {
        out.Line("result = result && ParameterRecordLoader::ReadArray(entry, alignment, " + member.name + ", sizeof(" +
                 member.name + "));");
        return;
    }
    out.Open("for (uint32_t index = 0; result && (index < " + std::to_string(member.arraySize) + "); ++index)");
    if (member.kind == ElementKind::Enum)
    {
        out.Line("result = " + ReadEnumFunction(*member.enumType, &record, *record.schema) + "(entry, " + member.name +
                 "[index], alignment);");
    }
    else
    {
        out.Line("result = " + member.name + "[index].Load(entry, alignment);");
    }
    out.Close();
}

void EmitRepeatedLoad(CodeWriter& out, const Member& member, const Record& record)
{
    const std::string common = "entry, alignment, " + member.name + "Count, " + member.name + "ID, " + member.name;
    const std::string site   = "__FILE__, __LINE__, " + Quoted(member.name);
    out.Line("PARAMETER_LOAD_SCALAR(result, entry, " + member.name + "Count, alignment);");
    switch (member.kind)
    {
        case ElementKind::Scalar:
            out.Line("result = result && ParameterRecordLoader::LoadScalarList(" + common + ", " + site + ");");
            break;
        case ElementKind::Enum:
            out.Line("result = result && ParameterRecordLoader::LoadEnumList(" + common + ", &" +
                     ReadEnumFunction(*member.enumType, &record, *record.schema) + ", " + site + ");");
            break;
        case ElementKind::Record:
            out.Line("result = result && ParameterRecordLoader::LoadRecordList(" + common + ", " + site + ");");
            break;
        case ElementKind::String:
            out.Line("result = result && ParameterRecordLoader::LoadStringList(" + common + ", " + site + ");");
            break;
    }
}

void EmitOptionalLoad(CodeWriter& out, const Member& member, const Record& record)
{
    out.Line("PARAMETER_LOAD_SCALAR(result, entry, " + member.name + "Exists, alignment);");
    out.Open("if (result)");
    out.Line("ParameterFileSymbolTableEntry local;");
    out.Line("result = ParameterRecordLoader::OpenOptional(entry, alignment, " + member.name + "ID, local);");
    out.Open("if (result && (0 != " + member.name + "Exists))");
    EmitElementLoad(out, member, record, member.name, "&local", true);
    out.Close();
    out.Close();
}

void EmitMemberUnload(CodeWriter& out, const Member& member)
{
    bool ownerElements = (member.kind == ElementKind::Record) && member.record->ownsMemory;
    switch (member.shape)
    {
        case Shape::Single:
        case Shape::Optional:
            if (member.kind == ElementKind::String)
            {
                out.Line("ParameterRecordLoader::ReleaseBlock(table, " + member.name + ");");
            }
            else if (ownerElements)
            {
                out.Line(member.name + ".Unload(table);");
            }
            break;
        case Shape::FixedArray:
            if (ownerElements)
            {
                out.Open("for (uint32_t index = 0; index < " + std::to_string(member.arraySize) + "; ++index)");
                out.Line(member.name + "[index].Unload(table);");
                out.Close();
            }
            break;
        case Shape::Repeated:
            if (ownerElements)
            {
                out.Line("ParameterRecordLoader::ReleaseRecordList(table, " + member.name + ", " + member.name +
                         "Count);");
            }
            else if (member.kind == ElementKind::String)
            {
                out.Line("ParameterRecordLoader::ReleaseStringList(table, " + member.name + ", " + member.name +
                         "Count);");
            }
            else
            {
                out.Line("ParameterRecordLoader::ReleaseBlock(table, " + member.name + ");");
            }
            break;
    }
}
} // namespace

void EmitReadEnum(CodeWriter& out, const Enum& type)
{
    const std::string prefix = (nullptr == type.owner) ? std::string() : type.owner->ScopedName() + "::";
    out.Line("bool " + prefix + "ReadEnum_" + type.name + "(ParameterFileSymbolTableEntry* entry, " + type.name +
             "& value, unsigned char alignment)");
    out.Open();
    out.Line("uint32_t number = 0;");
    out.Open("if (!ParameterRecordLoader::ReadEnumNumber(entry, alignment, number))");
    out.Line("return false;");
    out.Close();
    const std::string store = "value = static_cast<" + type.name + ">(number);";
    const std::string report =
        "ParameterRecordLoader::ReportInvalidEnum(entry, number, " + Quoted(ScopedEnumName(type)) + ");";
    if (type.IsDense() && (type.enumerators.size() > 1))
    {
        out.Open("if (number < " + std::to_string(type.enumerators.size()) + ")");
        out.Line(store);
        out.Close();
        out.Open("else");
        out.Line(report);
        out.Close();
    }
    else
    {
        out.Open("switch (number)");
        for (const Enumerator& enumerator : type.enumerators)
        {
            out.Line("case " + enumerator.name + ":");
        }
        out.Indent();
        out.Line(store);
        out.Line("break;");
        out.Outdent();
        out.Line("default:");
        out.Indent();
        out.Line(report);
        out.Line("break;");
        out.Outdent();
        out.Close();
    }
    out.Line("// Intended: a number that is no value of the enum leaves `value` as it was, and the load goes on.");
    out.Line("return true;");
    out.Close();
}

void EmitLoad(CodeWriter& out, const Record& record)
{
    out.Line("bool " + record.ScopedName() + "::Load(ParameterFileSymbolTableEntry* entry, unsigned char alignment)");
    out.Open();
    if (record.hasSymbolTableID)
    {
        out.Line("// SymbolTableID is not part of the data and keeps its value.");
        out.Line("memset(reinterpret_cast<unsigned char*>(this) + sizeof(SymbolTableID), 0, "
                 "sizeof(*this) - sizeof(SymbolTableID));");
    }
    else
    {
        out.Line("memset(this, 0, sizeof(*this));");
    }
    out.Line("bool result = true;");
    if (ReadsStringInLine(record))
    {
        out.Line("uint32_t length = 0; // of a string, which the record does not keep");
    }
    out.Line();
    for (const Member& member : record.members)
    {
        switch (member.shape)
        {
            case Shape::Single:
                EmitElementLoad(out, member, record, member.name, "entry");
                break;
            case Shape::FixedArray:
                EmitFixedArrayLoad(out, member, record);
                break;
            case Shape::Repeated:
                EmitRepeatedLoad(out, member, record);
                break;
            case Shape::Optional:
                EmitOptionalLoad(out, member, record);
                break;
        }
    }
    out.Line("return result;");
    out.Close();
}

void EmitUnload(CodeWriter& out, const Record& record)
{
    out.Line("void " + record.ScopedName() + "::Unload(ParameterFileSymbolTable* table)");
    out.Open();
    for (const Member& member : record.members)
    {
        EmitMemberUnload(out, member);
    }
    out.Close();
}
} // namespace modulegen
