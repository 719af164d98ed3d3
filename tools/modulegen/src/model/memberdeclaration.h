// The one-line form in which a schema declares a member: "[repeated|optional] Type name[N]".
#ifndef MODULEGEN_MEMBERDECLARATION_H
#define MODULEGEN_MEMBERDECLARATION_H

#include <cstdint>
#include <string>
#include <string_view>

#include "modulegen/model.h"

namespace modulegen
{
struct MemberDeclaration
{
    Shape       shape     = Shape::Single;
    uint32_t    arraySize = 0;
    std::string typeName; ///< a type word, "String", or a record or enum, possibly "Outer::Inner"
    std::string name;
};

/// Largest fixed array a schema may declare; anything bigger is a typing mistake.
constexpr uint32_t MaxArraySize = 1u << 20;

/// False with `*error` saying what is wrong with the declaration.
bool ParseMemberDeclaration(std::string_view text, MemberDeclaration* out, std::string* error);
} // namespace modulegen

#endif // MODULEGEN_MEMBERDECLARATION_H
