#include "recordencoder.h"

#include "modulegen/jsonfile.h"
#include "scalarvalue.h"

namespace tuningencoder
{
namespace
{
using modulegen::ElementKind;
using modulegen::Shape;
using tuningfile::DataBuilder;

void AppendScalar(unsigned width, uint64_t bits, DataBuilder* out)
{
    switch (width)
    {
        case 1:
            out->U8(static_cast<uint8_t>(bits));
            break;
        case 2:
            out->U16(static_cast<uint16_t>(bits));
            break;
        case 4:
            out->U32(static_cast<uint32_t>(bits));
            break;
        default:
            out->U64(bits);
            break;
    }
}

template <typename T>
std::vector<T> Narrowed(const std::vector<uint64_t>& bits)
{
    return std::vector<T>(bits.begin(), bits.end());
}

/// The values of a fixed or repeated scalar member at their own width, so that the file holds
/// them packed as the reader's single block read expects.
void AppendScalarBlock(unsigned width, const std::vector<uint64_t>& bits, bool repeated, DataBuilder* out)
{
    switch (width)
    {
        case 1:
            repeated ? out->Repeated(Narrowed<uint8_t>(bits)) : out->FixedArray(Narrowed<uint8_t>(bits));
            break;
        case 2:
            repeated ? out->Repeated(Narrowed<uint16_t>(bits)) : out->FixedArray(Narrowed<uint16_t>(bits));
            break;
        case 4:
            repeated ? out->Repeated(Narrowed<uint32_t>(bits)) : out->FixedArray(Narrowed<uint32_t>(bits));
            break;
        default:
            repeated ? out->Repeated(bits) : out->FixedArray(bits);
            break;
    }
}
} // namespace

void RecordEncoder::Fail(const std::string& path, const std::string& message)
{
    m_errors->push_back({path, message});
}

void RecordEncoder::Record(const modulegen::Record& record, const Json* values, const std::string& path,
                           DataBuilder* out)
{
    if ((nullptr != values) && !values->is_object())
    {
        Fail(path, "expected an object of the members of " + record.ScopedName() + ", not " +
                       modulegen::JsonKindName(*values));
        values = nullptr;
    }
    if (nullptr != values)
    {
        RefuseUnknownMembers(record, *values, path);
    }
    for (const modulegen::Member& member : record.members)
    {
        const Json* value = nullptr;
        if (nullptr != values)
        {
            auto found = values->find(member.name);
            if ((found != values->end()) && !found->is_null())
            {
                value = &*found;
            }
        }
        Member(member, value, JsonChild(path, member.name), out);
    }
}

void RecordEncoder::RefuseUnknownMembers(const modulegen::Record& record, const Json& values, const std::string& path)
{
    for (const auto& item : values.items())
    {
        bool known = false;
        for (const modulegen::Member& member : record.members)
        {
            known = known || (member.name == item.key());
        }
        if (!known)
        {
            Fail(JsonChild(path, item.key()), "unknown member '" + item.key() + "' of " + record.ScopedName());
        }
    }
}

void RecordEncoder::Member(const modulegen::Member& member, const Json* value, const std::string& path,
                           DataBuilder* out)
{
    switch (member.shape)
    {
        case Shape::Single:
            Element(member, value, path, out);
            break;
        case Shape::FixedArray:
            FixedArray(member, value, path, out);
            break;
        case Shape::Repeated:
            Repeated(member, value, path, out);
            break;
        case Shape::Optional:
            Optional(member, value, path, out);
            break;
    }
}

void RecordEncoder::FixedArray(const modulegen::Member& member, const Json* value, const std::string& path,
                               DataBuilder* out)
{
    if (member.kind == ElementKind::Scalar)
    {
        std::vector<uint64_t> bits(member.arraySize, 0);
        if (nullptr != value)
        {
            ScalarElements(member, *value, path, member.arraySize, &bits);
        }
        AppendScalarBlock(modulegen::InfoOf(member.scalar).width, bits, false, out);
        return;
    }
    // Enums and records of a fixed array are read one by one, each in line.
    const bool usable = (nullptr == value) || (value->is_array() && (value->size() == member.arraySize));
    if (!usable)
    {
        Fail(path,
             "expected an array of " + std::to_string(member.arraySize) + " elements, not " +
                 (value->is_array() ? "one of " + std::to_string(value->size()) : modulegen::JsonKindName(*value)));
    }
    for (uint32_t index = 0; index < member.arraySize; ++index)
    {
        const Json* element = (usable && (nullptr != value)) ? &(*value)[index] : nullptr;
        Element(member, element, JsonChild(path, index), out);
    }
}

void RecordEncoder::Repeated(const modulegen::Member& member, const Json* value, const std::string& path,
                             DataBuilder* out)
{
    if ((nullptr != value) && !value->is_array())
    {
        Fail(path, "expected an array, not " + modulegen::JsonKindName(*value));
        value = nullptr;
    }
    if (member.kind == ElementKind::Scalar)
    {
        std::vector<uint64_t> bits;
        if (nullptr != value)
        {
            ScalarElements(member, *value, path, 0, &bits);
        }
        AppendScalarBlock(modulegen::InfoOf(member.scalar).width, bits, true, out);
        return;
    }
    std::vector<DataBuilder> elements((nullptr == value) ? 0 : value->size());
    for (size_t index = 0; index < elements.size(); ++index)
    {
        Element(member, &(*value)[index], JsonChild(path, index), &elements[index]);
    }
    out->Repeated(elements);
}

void RecordEncoder::Optional(const modulegen::Member& member, const Json* value, const std::string& path,
                             DataBuilder* out)
{
    if (nullptr == value)
    {
        out->OptionalAbsent();
        return;
    }
    DataBuilder present;
    Element(member, value, path, &present);
    out->Optional(present);
}

void RecordEncoder::Element(const modulegen::Member& member, const Json* value, const std::string& path,
                            DataBuilder* out)
{
    switch (member.kind)
    {
        case ElementKind::Scalar:
            AppendScalar(modulegen::InfoOf(member.scalar).width, ScalarElement(member, value, path), out);
            break;
        case ElementKind::Enum:
            out->Enum(EnumElement(member, value, path));
            break;
        case ElementKind::Record:
            Record(*member.record, value, path, out);
            break;
        case ElementKind::String:
            if ((nullptr != value) && !value->is_string())
            {
                Fail(path, "expected a string, not " + modulegen::JsonKindName(*value));
            }
            out->String(((nullptr != value) && value->is_string()) ? value->get<std::string>() : std::string());
            break;
    }
}

uint64_t RecordEncoder::ScalarElement(const modulegen::Member& member, const Json* value, const std::string& path)
{
    if (nullptr == value)
    {
        return 0;
    }
    std::string             error;
    std::optional<uint64_t> bits = ScalarBits(member.scalar, *value, &error);
    if (!bits)
    {
        Fail(path, error);
    }
    return bits.value_or(0);
}

uint32_t RecordEncoder::EnumElement(const modulegen::Member& member, const Json* value, const std::string& path)
{
    const modulegen::Enum& type = *member.enumType;
    if (nullptr == value)
    {
        for (const modulegen::Enumerator& enumerator : type.enumerators)
        {
            if (enumerator.value == 0)
            {
                return 0;
            }
        }
        // Zero would load, but as a value that the reader reports as invalid.
        Fail(path, "missing: " + ScopedEnumName(type) + " has no value 0, so '" + member.name + "' must be given");
        return 0;
    }
    std::string             error;
    std::optional<uint32_t> number = EnumValue(type, *value, &error);
    if (!number)
    {
        Fail(path, error);
    }
    return number.value_or(0);
}

void RecordEncoder::ScalarElements(const modulegen::Member& member, const Json& value, const std::string& path,
                                   size_t expectedCount, std::vector<uint64_t>* bits)
{
    if (!value.is_array())
    {
        Fail(path, "expected an array, not " + modulegen::JsonKindName(value));
        return;
    }
    if ((expectedCount != 0) && (value.size() != expectedCount))
    {
        Fail(path, "expected an array of " + std::to_string(expectedCount) + " elements, not one of " +
                       std::to_string(value.size()));
        return;
    }
    bits->assign(value.size(), 0);
    for (size_t index = 0; index < value.size(); ++index)
    {
        (*bits)[index] = ScalarElement(member, &value[index], JsonChild(path, index));
    }
}
} // namespace tuningencoder
