#include "scalarvalue.h"

#include <cfloat>
#include <cmath>
#include <cstring>

namespace tuningencoder
{
namespace
{
/// A whole number of any sign within 64 bits of magnitude: what the integer types are checked
/// against without a wider integer type.
struct WholeNumber
{
    bool     negative  = false;
    uint64_t magnitude = 0;

    std::string ToString() const { return (negative ? "-" : "") + std::to_string(magnitude); }
};

/// The range of a whole-number type, as magnitudes: `maxNegative` 0 for an unsigned type.
struct WholeRange
{
    uint64_t    maxNegative;
    uint64_t    maxPositive;
    const char* text;
};

WholeRange RangeOf(modulegen::ScalarType type)
{
    using modulegen::ScalarType;
    switch (type)
    {
        case ScalarType::UInt8:
            return {0, UINT8_MAX, "0 to 255"};
        case ScalarType::UInt16:
            return {0, UINT16_MAX, "0 to 65535"};
        case ScalarType::UInt32:
            return {0, UINT32_MAX, "0 to 4294967295"};
        case ScalarType::Int32:
        case ScalarType::Boolean:
            return {uint64_t{1} << 31, INT32_MAX, "-2147483648 to 2147483647"};
        case ScalarType::Int64:
            return {uint64_t{1} << 63, INT64_MAX, "-9223372036854775808 to 9223372036854775807"};
        default:
            return {0, UINT64_MAX, "0 to 18446744073709551615"};
    }
}

std::optional<WholeNumber> ParseHexText(const std::string& text)
{
    if ((text.size() < 3) || (text.size() > 18) || (text[0] != '0') || ((text[1] != 'x') && (text[1] != 'X')))
    {
        return std::nullopt;
    }
    WholeNumber number;
    for (size_t index = 2; index < text.size(); ++index)
    {
        const char digit = text[index];
        uint64_t   value = 0;
        if ((digit >= '0') && (digit <= '9'))
        {
            value = static_cast<uint64_t>(digit - '0');
        }
        else if ((digit >= 'a') && (digit <= 'f'))
        {
            value = static_cast<uint64_t>(digit - 'a' + 10);
        }
        else if ((digit >= 'A') && (digit <= 'F'))
        {
            value = static_cast<uint64_t>(digit - 'A' + 10);
        }
        else
        {
            return std::nullopt;
        }
        number.magnitude = (number.magnitude << 4) | value; // at most 16 digits: no overflow
    }
    return number;
}

std::optional<WholeNumber> ParseWholeNumber(const Json& value)
{
    WholeNumber number;
    if (value.is_number_unsigned())
    {
        number.magnitude = value.get<uint64_t>();
        return number;
    }
    if (value.is_number_integer())
    {
        const int64_t signedValue = value.get<int64_t>();
        number.negative           = signedValue < 0;
        // Negated in unsigned arithmetic, so that the lowest int64_t has its magnitude too.
        number.magnitude =
            number.negative ? (0 - static_cast<uint64_t>(signedValue)) : static_cast<uint64_t>(signedValue);
        return number;
    }
    if (value.is_number_float())
    {
        const double floating = value.get<double>();
        // 2^64: beyond it no whole number of the schema's types lies.
        constexpr double Beyond = 18446744073709551616.0;
        if (!std::isfinite(floating) || (std::trunc(floating) != floating) || (std::fabs(floating) >= Beyond))
        {
            return std::nullopt;
        }
        number.negative  = floating < 0;
        number.magnitude = static_cast<uint64_t>(std::fabs(floating));
        return number;
    }
    if (value.is_string())
    {
        return ParseHexText(value.get<std::string>());
    }
    return std::nullopt;
}

std::optional<uint64_t> WholeBits(modulegen::ScalarType type, const Json& value, std::string* error)
{
    if ((type == modulegen::ScalarType::Boolean) && value.is_boolean())
    {
        return value.get<bool>() ? 1 : 0;
    }
    const WholeRange           range  = RangeOf(type);
    const char*                word   = modulegen::InfoOf(type).word;
    std::optional<WholeNumber> number = ParseWholeNumber(value);
    if (!number)
    {
        *error = std::string("expected a whole number (") + word + ", " + range.text + ")";
        if (value.is_string())
        {
            *error += " or a hexadecimal text such as \"0x1F\", not \"" + value.get<std::string>() + "\"";
        }
        return std::nullopt;
    }
    if (number->magnitude > (number->negative ? range.maxNegative : range.maxPositive))
    {
        *error = number->ToString() + " is out of range for " + word + " (" + range.text + ")";
        return std::nullopt;
    }
    // Two's complement of the magnitude; the caller keeps the low bytes of the type's width.
    return number->negative ? (0 - number->magnitude) : number->magnitude;
}

std::optional<uint64_t> FloatingBits(modulegen::ScalarType type, const Json& value, std::string* error)
{
    if (!value.is_number())
    {
        *error = "expected a number";
        return std::nullopt;
    }
    const double floating = value.get<double>();
    if (type == modulegen::ScalarType::Double)
    {
        uint64_t bits = 0;
        std::memcpy(&bits, &floating, sizeof(bits));
        return bits;
    }
    if (std::fabs(floating) > FLT_MAX)
    {
        *error = value.dump() + " is out of range for Float";
        return std::nullopt;
    }
    const float narrow = static_cast<float>(floating);
    uint32_t    bits   = 0;
    std::memcpy(&bits, &narrow, sizeof(bits));
    return bits;
}

std::string EnumeratorList(const modulegen::Enum& type)
{
    // A long list says less than the schema does; the first names show the manner.
    constexpr size_t Shown = 16;
    std::string      list;
    for (size_t index = 0; (index < type.enumerators.size()) && (index < Shown); ++index)
    {
        list += (index == 0 ? "" : ", ") + type.enumerators[index].name;
    }
    return (type.enumerators.size() > Shown) ? list + ", ..." : list;
}

std::string ValueList(const modulegen::Enum& type)
{
    if (type.IsDense())
    {
        return "0 to " + std::to_string(type.enumerators.size() - 1);
    }
    std::string list;
    for (const modulegen::Enumerator& enumerator : type.enumerators)
    {
        list += (list.empty() ? "" : ", ") + std::to_string(enumerator.value);
    }
    return list;
}
} // namespace

std::optional<uint64_t> ScalarBits(modulegen::ScalarType type, const Json& value, std::string* error)
{
    return modulegen::InfoOf(type).floating ? FloatingBits(type, value, error) : WholeBits(type, value, error);
}

std::string ScopedEnumName(const modulegen::Enum& type)
{
    return (nullptr == type.owner) ? type.name : type.owner->ScopedName() + "::" + type.name;
}

std::optional<uint32_t> EnumValue(const modulegen::Enum& type, const Json& value, std::string* error)
{
    if (value.is_string())
    {
        const std::string name = value.get<std::string>();
        for (const modulegen::Enumerator& enumerator : type.enumerators)
        {
            if (enumerator.name == name)
            {
                return enumerator.value;
            }
        }
        *error = "unknown enumerator '" + name + "' of " + ScopedEnumName(type) + " (" + EnumeratorList(type) + ")";
        return std::nullopt;
    }
    if (value.is_number_integer())
    {
        // A JSON text gives an unsigned number, a tree built in code may hold a signed one.
        const bool negative = !value.is_number_unsigned() && (value.get<int64_t>() < 0);
        for (const modulegen::Enumerator& enumerator : type.enumerators)
        {
            if (!negative && (enumerator.value == value.get<uint64_t>()))
            {
                return enumerator.value;
            }
        }
        *error = value.dump() + " is not a value of " + ScopedEnumName(type) + " (" + ValueList(type) + ")";
        return std::nullopt;
    }
    *error = "expected an enumerator of " + ScopedEnumName(type) + ", by name or number";
    return std::nullopt;
}
} // namespace tuningencoder
