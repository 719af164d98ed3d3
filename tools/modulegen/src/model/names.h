// What may stand as a name in a schema: whatever is a usable C++ identifier.
#ifndef MODULEGEN_NAMES_H
#define MODULEGEN_NAMES_H

#include <string_view>

namespace modulegen
{
/// Letters, digits and '_', not starting with a digit.
bool IsIdentifier(std::string_view text);

/// A word that C++ reserves, or that generated code uses in the same scope.
bool IsReservedWord(std::string_view text);

/// An identifier that is no reserved word: a name a schema may give.
inline bool IsUsableName(std::string_view text)
{
    return IsIdentifier(text) && !IsReservedWord(text);
}

bool EndsWith(std::string_view text, std::string_view suffix);
} // namespace modulegen

#endif // MODULEGEN_NAMES_H
