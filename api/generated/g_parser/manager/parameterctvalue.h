// ParameterCTValue: one numbered value of a set manager's control or trigger list.
#ifndef PARAMETERCTVALUE_H
#define PARAMETERCTVALUE_H

#include <cstdint>

#include "pdlibvark_export.h"

/// The number is the host's; it is taken signed and compared and printed unsigned. One 64-bit
/// storage holds either a signed integer or a double, as IsInteger tells.
struct PDLIBVARK_API ParameterCTValue
{
    union Storage {
        int64_t integer;
        double  real;
    };

    uint32_t ID = 0;
    Storage  Value{0};
    bool     IsValid   = false;
    bool     IsInteger = true;

    ParameterCTValue() = default;
    ParameterCTValue(int id, int value) : ID(static_cast<uint32_t>(id)), IsValid(true) { Value.integer = value; }
    ParameterCTValue(int id, unsigned int value) : ID(static_cast<uint32_t>(id)), IsValid(true)
    {
        Value.integer = value;
    }
    ParameterCTValue(int id, long value) : ID(static_cast<uint32_t>(id)), IsValid(true) { Value.integer = value; }
    ParameterCTValue(int id, float value) : ID(static_cast<uint32_t>(id)), IsValid(true), IsInteger(false)
    {
        Value.real = value;
    }
    ParameterCTValue(int id, double value) : ID(static_cast<uint32_t>(id)), IsValid(true), IsInteger(false)
    {
        Value.real = value;
    }

    /// Parses one item "id=value": at least one character on either side of the "=", the id
    /// from at most 9 characters. A value with a "." is a double, any other an integer; text
    /// that is no number counts as 0. False leaves ID and Value as they were, IsValid clear.
    bool FromString(char const* text);

    /// Prints "id=value" (with `withId`) or the value alone, cut at `size`: "%u=%lld" or "%lld"
    /// for an integer, "%u=%f" or "%f" for a double. Returns IsValid; an invalid value prints
    /// nothing.
    bool ToString(char* out, unsigned int size, bool withId) const;
};

#endif // PARAMETERCTVALUE_H
