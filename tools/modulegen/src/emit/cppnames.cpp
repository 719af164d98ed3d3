#include "cppnames.h"

#include <algorithm>
#include <cctype>

namespace modulegen
{
namespace
{
template <typename T>
std::string QualifiedFrom(const T& type, const std::string& scopedName, const Record* scope, const Schema& schema)
{
    if (type.schema->nameSpace != schema.nameSpace)
    {
        return type.schema->nameSpace + "::" + scopedName;
    }
    return ((nullptr != scope) && (type.owner == scope)) ? type.name : scopedName;
}

/// Bytes of a pointer member's head in a file: the length, count or flag, then an entry id.
constexpr uint64_t PointerHeadSize = 8;
constexpr uint64_t EnumSize        = 4;

uint64_t ElementDataSize(const Member& member)
{
    switch (member.kind)
    {
        case ElementKind::Scalar:
            return InfoOf(member.scalar).width;
        case ElementKind::Enum:
            return EnumSize;
        case ElementKind::Record:
            return MinimumDataSize(*member.record);
        case ElementKind::String:
            return PointerHeadSize;
    }
    return 0;
}
} // namespace

std::string TypeName(const Record& type, const Record* scope, const Schema& schema)
{
    return QualifiedFrom(type, type.ScopedName(), scope, schema);
}

std::string TypeName(const Enum& type, const Record* scope, const Schema& schema)
{
    return QualifiedFrom(type, ScopedEnumName(type), scope, schema);
}

std::string ElementType(const Member& member, const Record& scope)
{
    switch (member.kind)
    {
        case ElementKind::Scalar:
            return InfoOf(member.scalar).cppType;
        case ElementKind::Enum:
            return TypeName(*member.enumType, &scope, *scope.schema);
        case ElementKind::Record:
            return TypeName(*member.record, &scope, *scope.schema);
        case ElementKind::String:
            return "char*";
    }
    return {};
}

std::string ReadEnumFunction(const Enum& type, const Record* scope, const Schema& schema)
{
    const std::string function = "ReadEnum_" + type.name;
    if (nullptr == type.owner)
    {
        return (type.schema->nameSpace == schema.nameSpace) ? function : type.schema->nameSpace + "::" + function;
    }
    if (type.owner == scope)
    {
        return function;
    }
    return TypeName(*type.owner, scope, schema) + "::" + function;
}

std::string ScopedEnumName(const Enum& type)
{
    return (nullptr == type.owner) ? type.name : type.owner->ScopedName() + "::" + type.name;
}

std::string ModuleClassName(const ModuleInfo& module)
{
    return module.topName + "Class";
}

std::string HeaderPath(const std::string& folder, const std::string& stem)
{
    return folder + "/" + stem + ".h";
}

uint64_t MinimumDataSize(const Record& record)
{
    uint64_t size = 0;
    for (const Member& member : record.members)
    {
        switch (member.shape)
        {
            case Shape::Single:
                size += ElementDataSize(member);
                break;
            case Shape::FixedArray:
                size += member.arraySize * ElementDataSize(member);
                break;
            case Shape::Repeated:
            case Shape::Optional:
                size += PointerHeadSize;
                break;
        }
    }
    return size;
}

std::string Quoted(const std::string& text)
{
    std::string quoted = "\"";
    for (char c : text)
    {
        if ((c == '"') || (c == '\\'))
        {
            quoted += '\\';
        }
        quoted += c;
    }
    return quoted + "\"";
}
} // namespace modulegen
