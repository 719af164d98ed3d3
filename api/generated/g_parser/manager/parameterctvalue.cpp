#include "parameterctvalue.h"

#include <cinttypes>
#include <cstring>

#include "orvoosutils.h"
#include "parameterutils.h"

namespace
{
// Characters of an id that FromString takes (a local of 10 bytes).
constexpr unsigned int IdTextSize = 10;

// Safe variant: a double beyond the range of the integer would be undefined when converted.
int64_t TruncateToInt64(double value)
{
    if (!(value > -9223372036854775808.0))
    {
        return (value != value) ? 0 : INT64_MIN;
    }
    if (value >= 9223372036854775808.0)
    {
        return INT64_MAX;
    }
    return static_cast<int64_t>(value);
}
} // namespace

bool ParameterCTValue::FromString(char const* text)
{
    IsValid = false;
    if (nullptr == text)
    {
        return false;
    }
    char     idText[IdTextSize];
    uint32_t used = ParameterUtils::GetSubString(text, '=', idText, sizeof(idText));
    if ((0 == used) || (used + 1 >= strlen(text)))
    {
        return false;
    }
    // The success flags are not looked at: text that is no number counts as 0. Nine characters
    // always fit the 32 bits.
    bool ignored = false;
    ID           = static_cast<uint32_t>(static_cast<int32_t>(ParameterUtils::StringToDouble(idText, ignored)));

    char const* valueText = text + used + 1;
    double      number    = ParameterUtils::StringToDouble(valueText, ignored);
    // The form of the item decides the type alone: "4=2.0" is a double and "4=2" an integer.
    IsInteger = (nullptr == strchr(valueText, '.'));
    if (IsInteger)
    {
        Value.integer = TruncateToInt64(number);
    }
    else
    {
        Value.real = number;
    }
    IsValid = true;
    return true;
}

bool ParameterCTValue::ToString(char* out, unsigned int size, bool withId) const
{
    if (!IsValid)
    {
        return false;
    }
    if ((nullptr == out) || (0 == size))
    {
        return true;
    }
    long long integer = static_cast<long long>(Value.integer);
    if (withId)
    {
        if (IsInteger)
        {
            Orvo::OsUtils::SNPrintF(out, size, "%u=%lld", ID, integer);
        }
        else
        {
            Orvo::OsUtils::SNPrintF(out, size, "%u=%f", ID, Value.real);
        }
    }
    else if (IsInteger)
    {
        Orvo::OsUtils::SNPrintF(out, size, "%lld", integer);
    }
    else
    {
        Orvo::OsUtils::SNPrintF(out, size, "%f", Value.real);
    }
    return true;
}
