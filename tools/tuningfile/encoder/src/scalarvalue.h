// JSON values as scalar and enum members: type and range checks, and the bits a file holds.
#ifndef TUNINGENCODER_SCALARVALUE_H
#define TUNINGENCODER_SCALARVALUE_H

#include <cstdint>
#include <optional>
#include <string>

#include "tuningencoder/encoder.h"

namespace tuningencoder
{
/// The bit pattern of `value` as a scalar of `type`, in the low bytes of the result, or nothing
/// with `*error` saying what is wrong. Whole-number types take JSON integers (a float only when
/// it is whole) and hexadecimal texts such as "0x3A00", which register tables are written in;
/// `Boolean` also takes true and false; `Float` and `Double` take any number in their range.
std::optional<uint64_t> ScalarBits(modulegen::ScalarType type, const Json& value, std::string* error);

/// The value of `value` as an enumerator of `type`: its name, or one of its numbers.
std::optional<uint32_t> EnumValue(const modulegen::Enum& type, const Json& value, std::string* error);

/// The enum's name with its enclosing records, as messages and schemas spell it.
std::string ScopedEnumName(const modulegen::Enum& type);
} // namespace tuningencoder

#endif // TUNINGENCODER_SCALARVALUE_H
