// ParameterCTValue: one numbered value of a set manager's control or trigger list.
#ifndef PARAMETERCTVALUE_H
#define PARAMETERCTVALUE_H

#include <cstdint>

#include "pdlibvark_export.h"

/// The number is the host's; it is taken signed and compared and printed unsigned. One 64-bit
/// storage holds either a signed integer or a double, as IsInteger tells.
struct PDLIBVARK_API ParameterCTValue
{
    union Storage
    {
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
};

#endif // PARAMETERCTVALUE_H
