#include "names.h"

#include <algorithm>
#include <cctype>

namespace modulegen
{
namespace
{
// C++17 keywords and alternative tokens, then the names that every generated record declares
// itself (its operations and the member that holds the module's entry id).
constexpr std::string_view ReservedWords[] = {
    "alignas",      "alignof",
    "and",          "and_eq",
    "asm",          "auto",
    "bitand",       "bitor",
    "bool",         "break",
    "case",         "catch",
    "char",         "char16_t",
    "char32_t",     "class",
    "compl",        "const",
    "constexpr",    "const_cast",
    "continue",     "decltype",
    "default",      "delete",
    "do",           "double",
    "dynamic_cast", "else",
    "enum",         "explicit",
    "export",       "extern",
    "false",        "float",
    "for",          "friend",
    "goto",         "if",
    "inline",       "int",
    "long",         "mutable",
    "namespace",    "new",
    "noexcept",     "not",
    "not_eq",       "nullptr",
    "operator",     "or",
    "or_eq",        "private",
    "protected",    "public",
    "register",     "reinterpret_cast",
    "return",       "short",
    "signed",       "sizeof",
    "static",       "static_assert",
    "static_cast",  "struct",
    "switch",       "template",
    "this",         "thread_local",
    "throw",        "true",
    "try",          "typedef",
    "typeid",       "typename",
    "union",        "unsigned",
    "using",        "virtual",
    "void",         "volatile",
    "wchar_t",      "while",
    "xor",          "xor_eq",
    "Load",         "Unload",
    "GetValue",     "SetValue",
    "GetInfo",      "GetModified",
    "Release",      "SymbolTableID",
};
} // namespace

bool IsIdentifier(std::string_view text)
{
    if (text.empty() || (0 != std::isdigit(static_cast<unsigned char>(text.front()))))
    {
        return false;
    }
    return std::all_of(text.begin(), text.end(),
                       [](char c) { return (0 != std::isalnum(static_cast<unsigned char>(c))) || ('_' == c); });
}

bool IsReservedWord(std::string_view text)
{
    return std::find(std::begin(ReservedWords), std::end(ReservedWords), text) != std::end(ReservedWords);
}

bool EndsWith(std::string_view text, std::string_view suffix)
{
    return (text.size() >= suffix.size()) && (text.substr(text.size() - suffix.size()) == suffix);
}
} // namespace modulegen
