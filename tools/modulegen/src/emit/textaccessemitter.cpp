#include "textaccessemitter.h"

#include "cppnames.h"

namespace modulegen
{
namespace
{
std::string Literal(const Member& member)
{
    return Quoted(member.name);
}

/// The shared type-word constant of a row for one element of `member`.
std::string TypeWord(const Member& member)
{
    switch (member.kind)
    {
        case ElementKind::Scalar:
            return InfoWordConstant(InfoOf(member.scalar).infoWord);
        case ElementKind::Enum:
            return InfoWordConstant("Enum");
        case ElementKind::Record:
            return InfoWordConstant("Structure");
        case ElementKind::String:
            return InfoWordConstant("String");
    }
    return {};
}

bool IsListLike(const Member& member)
{
    return (member.shape == Shape::FixedArray) || (member.shape == Shape::Repeated);
}

/// The element count of an array or list member, as code of its record reads it.
std::string CountOf(const Member& member)
{
    return (member.shape == Shape::FixedArray) ? std::to_string(member.arraySize) : member.name + "Count";
}

/// The row of a member; `name` is the row's name expression.
std::string RowOf(const Member& member, const std::string& name)
{
    if (IsListLike(member))
    {
        return "ParameterParserInfo(" + name + ", " + TypeWord(member) + ", true, false, " + CountOf(member) + ")";
    }
    switch (member.kind)
    {
        case ElementKind::Scalar:
            return "ParameterParserInfo(" + name + ", " + TypeWord(member) + ", static_cast<double>(" + member.name +
                   "), " + (InfoOf(member.scalar).floating ? "10" : "0") + ")";
        case ElementKind::Enum:
            return "ParameterParserInfo(" + name + ", " + TypeWord(member) + ", static_cast<double>(" + member.name +
                   "), 0)";
        case ElementKind::String:
            return "ParameterParserInfo(" + name + ", " + TypeWord(member) + ", (nullptr == " + member.name +
                   ") ? \"\" : " + member.name + ")";
        case ElementKind::Record:
            return "ParameterParserInfo(" + name + ", " + TypeWord(member) + ")";
    }
    return {};
}

void EmitAppend(CodeWriter& out, const std::string& row)
{
    out.Line("list.Insert(list.count, " + row + ");");
}

void EmitMatch(CodeWriter& out, const Member& member)
{
    out.Open("if (step.Is(" + Literal(member) + "))");
}

void EmitGetValue(CodeWriter& out, const Record& record)
{
    out.Line("bool " + record.ScopedName() + "::GetValue(char const* path, char* value, unsigned int size)");
    out.Open();
    out.Line("ParameterPathStep step(path);");
    for (const Member& member : record.members)
    {
        EmitMatch(out, member);
        if (member.kind == ElementKind::Record)
        {
            if (member.shape == Shape::FixedArray)
            {
                out.Line("return (step.index < " + CountOf(member) + ") && " + member.name +
                         "[step.index].GetValue(step.rest, value, size);");
            }
            else if (member.shape == Shape::Repeated)
            {
                out.Line("return (step.index < " + CountOf(member) + ") && (nullptr != " + member.name + ") && " +
                         member.name + "[step.index].GetValue(step.rest, value, size);");
            }
            else
            {
                out.Line("return " + member.name + ".GetValue(step.rest, value, size);");
            }
        }
        else if (IsListLike(member))
        {
            const char* print = (member.kind == ElementKind::String) ? "PrintTextArray(" : "PrintArray(";
            out.Line(std::string("return ParameterTextAccess::") + print + member.name + ", " + CountOf(member) +
                     ", step.index, value, size);");
        }
        else
        {
            const char* print = (member.kind == ElementKind::String) ? "PrintText(" : "Print(";
            out.Line(std::string("return ParameterTextAccess::") + print + member.name + ", value, size);");
        }
        out.Close();
    }
    out.Line("return false;");
    out.Close();
}

void EmitSetValue(CodeWriter& out, const Record& record)
{
    bool settable = false;
    for (const Member& member : record.members)
    {
        settable = settable || (member.kind != ElementKind::String);
    }
    if (!settable)
    {
        out.Line("bool " + record.ScopedName() + "::SetValue(char const*, char const*)");
        out.Open();
        out.Line("return false; // texts are shared with other records and are not set");
        out.Close();
        return;
    }
    out.Line("bool " + record.ScopedName() + "::SetValue(char const* path, char const* value)");
    out.Open();
    out.Line("ParameterPathStep step(path);");
    for (const Member& member : record.members)
    {
        if (member.kind == ElementKind::String)
        {
            continue; // texts are shared with other records and are not set
        }
        EmitMatch(out, member);
        if (member.kind == ElementKind::Record)
        {
            if (member.shape == Shape::FixedArray)
            {
                out.Line("return (step.index < " + CountOf(member) + ") && " + member.name +
                         "[step.index].SetValue(step.rest, value);");
            }
            else if (member.shape == Shape::Repeated)
            {
                out.Line("return (step.index < " + CountOf(member) + ") && (nullptr != " + member.name + ") && " +
                         member.name + "[step.index].SetValue(step.rest, value);");
            }
            else
            {
                out.Line("return " + member.name + ".SetValue(step.rest, value);");
            }
        }
        else if (IsListLike(member))
        {
            out.Line("return ParameterTextAccess::ParseArray(" + member.name + ", " + CountOf(member) +
                     ", step.index, value);");
        }
        else
        {
            out.Line("return ParameterTextAccess::Parse(" + member.name + ", value);");
        }
        out.Close();
    }
    out.Line("return false;");
    out.Close();
}

void EmitGetInfo(CodeWriter& out, const Record& record)
{
    out.Line("bool " + record.ScopedName() + "::GetInfo(char const* path, PList<ParameterParserInfo>& list)");
    out.Open();
    out.Line("ParameterPathStep step(path);");
    out.Open("if (step.IsEmpty())");
    for (const Member& member : record.members)
    {
        EmitAppend(out, RowOf(member, Literal(member)));
    }
    out.Line("return true;");
    out.Close();
    for (const Member& member : record.members)
    {
        EmitMatch(out, member);
        if ((member.kind == ElementKind::Record) && (member.shape == Shape::FixedArray))
        {
            out.Open("if (step.index < " + CountOf(member) + ")");
            out.Line("return " + member.name + "[step.index].GetInfo(step.rest, list);");
            out.Close();
            EmitAppend(out, RowOf(member, "nullptr"));
            out.Line("return true;");
        }
        else if ((member.kind == ElementKind::Record) && (member.shape == Shape::Repeated))
        {
            out.Open("if ((step.index < " + CountOf(member) + ") && (nullptr != " + member.name + "))");
            out.Line("return " + member.name + "[step.index].GetInfo(step.rest, list);");
            out.Close();
            EmitAppend(out, RowOf(member, "nullptr"));
            out.Line("return true;");
        }
        else if (member.kind == ElementKind::Record)
        {
            out.Line("return " + member.name + ".GetInfo(step.rest, list);");
        }
        else
        {
            EmitAppend(out, RowOf(member, "nullptr"));
            out.Line("return true;");
        }
        out.Close();
    }
    out.Line("return false;");
    out.Close();
}
} // namespace

std::string InfoWordConstant(const std::string& word)
{
    return "ParameterParserInfo::Type" + word;
}

void EmitTextAccessDeclarations(CodeWriter& out)
{
    out.Line("bool GetValue(char const* path, char* value, unsigned int size);");
    out.Line("bool SetValue(char const* path, char const* value);");
    out.Line("bool GetInfo(char const* path, PList<ParameterParserInfo>& list);");
}

void EmitTextAccess(CodeWriter& out, const Record& record)
{
    EmitGetValue(out, record);
    out.Line();
    EmitSetValue(out, record);
    out.Line();
    EmitGetInfo(out, record);
    out.Line();
}
} // namespace modulegen
