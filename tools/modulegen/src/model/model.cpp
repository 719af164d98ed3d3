// Small parts of the model: scalar words, versions, short type names, names of records.
#include "modulegen/model.h"

#include <algorithm>
#include <charconv>

#include "parametershorttype.h"

namespace modulegen
{
namespace
{
// Type words of text access are those of the store; an 8-byte floating-point member has no
// word of its own and is shown as "Float".
constexpr ScalarInfo Scalars[] = {
    {ScalarType::UInt8, "UInt8", "uint8_t", 1, false, "UInt8"},
    {ScalarType::UInt16, "UInt16", "uint16_t", 2, false, "UInt16"},
    {ScalarType::Int32, "Int32", "int32_t", 4, false, "Int32"},
    {ScalarType::UInt32, "UInt32", "uint32_t", 4, false, "UInt32"},
    {ScalarType::Boolean, "Boolean", "int32_t", 4, false, "Boolean"},
    {ScalarType::Float, "Float", "float", 4, true, "Float"},
    {ScalarType::Int64, "Int64", "int64_t", 8, false, "Int64"},
    {ScalarType::UInt64, "UInt64", "uint64_t", 8, false, "UInt64"},
    {ScalarType::Double, "Double", "double", 8, true, "Float"},
};

template <typename T>
bool ParseNumber(std::string_view text, T* out)
{
    if (text.empty())
    {
        return false;
    }
    auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), *out);
    return (error == std::errc()) && (end == text.data() + text.size());
}
} // namespace

const ScalarInfo* FindScalar(std::string_view word)
{
    for (const ScalarInfo& info : Scalars)
    {
        if (word == info.word)
        {
            return &info;
        }
    }
    return nullptr;
}

const ScalarInfo& InfoOf(ScalarType type)
{
    return Scalars[static_cast<size_t>(type)];
}

std::string Version::ToString() const
{
    return std::to_string(major) + "." + std::to_string(minor) + "." + std::to_string(patch);
}

bool ParseVersion(std::string_view text, Version* out)
{
    size_t first  = text.find('.');
    size_t second = (first == std::string_view::npos) ? first : text.find('.', first + 1);
    if (second == std::string_view::npos)
    {
        return false;
    }
    Version version;
    if (!ParseNumber(text.substr(0, first), &version.major) ||
        !ParseNumber(text.substr(first + 1, second - first - 1), &version.minor) ||
        !ParseNumber(text.substr(second + 1), &version.patch))
    {
        return false;
    }
    *out = version;
    return true;
}

std::string ShortTypeOf(std::string_view name)
{
    return ParameterShortType::Of(name);
}

bool Enum::IsDense() const
{
    uint64_t highest = 0;
    for (const Enumerator& enumerator : enumerators)
    {
        highest = std::max<uint64_t>(highest, enumerator.value);
    }
    // Values are distinct (the checker makes sure), so n values up to n - 1 are exactly 0 to n - 1.
    return highest + 1 == enumerators.size();
}

std::string Record::ScopedName() const
{
    return (nullptr == owner) ? name : owner->ScopedName() + "::" + name;
}

const Schema* SchemaSet::FindSchema(std::string_view stem) const
{
    for (const auto& schema : schemas)
    {
        if (schema->stem == stem)
        {
            return schema.get();
        }
    }
    return nullptr;
}

const SetManager* SchemaSet::FindSetManager(std::string_view className) const
{
    for (const auto& manager : setManagers)
    {
        if (manager->className == className)
        {
            return manager.get();
        }
    }
    return nullptr;
}
} // namespace modulegen
