#include "memberdeclaration.h"

#include <charconv>
#include <vector>

#include "names.h"

namespace modulegen
{
namespace
{
std::vector<std::string_view> SplitWords(std::string_view text)
{
    std::vector<std::string_view> words;
    size_t                        position = 0;
    while (position < text.size())
    {
        size_t start = text.find_first_not_of(" \t", position);
        if (start == std::string_view::npos)
        {
            break;
        }
        size_t end = text.find_first_of(" \t", start);
        end        = (end == std::string_view::npos) ? text.size() : end;
        words.push_back(text.substr(start, end - start));
        position = end;
    }
    return words;
}

bool IsTypeReference(std::string_view text)
{
    size_t position = 0;
    while (true)
    {
        size_t separator = text.find("::", position);
        if (!IsIdentifier(text.substr(position, separator - position)))
        {
            return false;
        }
        if (separator == std::string_view::npos)
        {
            return true;
        }
        position = separator + 2;
    }
}

/// "name" or "name[N]".
bool ParseNameAndSize(std::string_view word, MemberDeclaration* out, std::string* error)
{
    size_t bracket = word.find('[');
    out->name      = std::string(word.substr(0, bracket));
    if (bracket == std::string_view::npos)
    {
        return true;
    }
    if (word.back() != ']')
    {
        *error = "array size must be written as name[N]";
        return false;
    }
    std::string_view digits = word.substr(bracket + 1, word.size() - bracket - 2);
    uint64_t         size   = 0;
    auto [end, failure]     = std::from_chars(digits.data(), digits.data() + digits.size(), size);
    if (digits.empty() || (failure != std::errc()) || (end != digits.data() + digits.size()))
    {
        *error = "array size '" + std::string(digits) + "' is not a number";
        return false;
    }
    if (0 == size)
    {
        *error = "array of size 0";
        return false;
    }
    if (size > MaxArraySize)
    {
        *error = "array size " + std::to_string(size) + " is larger than " + std::to_string(MaxArraySize);
        return false;
    }
    out->shape     = Shape::FixedArray;
    out->arraySize = static_cast<uint32_t>(size);
    return true;
}
} // namespace

bool ParseMemberDeclaration(std::string_view text, MemberDeclaration* out, std::string* error)
{
    std::vector<std::string_view> words = SplitWords(text);
    if ((words.size() < 2) || (words.size() > 3))
    {
        *error = "a member is declared as \"[repeated|optional] Type name[N]\"";
        return false;
    }
    MemberDeclaration declaration;
    if (3 == words.size())
    {
        if (words[0] == "repeated")
        {
            declaration.shape = Shape::Repeated;
        }
        else if (words[0] == "optional")
        {
            declaration.shape = Shape::Optional;
        }
        else
        {
            *error = "unknown kind '" + std::string(words[0]) + "' (expected \"repeated\" or \"optional\")";
            return false;
        }
    }
    Shape qualified      = declaration.shape;
    declaration.typeName = std::string(words[words.size() - 2]);
    if (!IsTypeReference(declaration.typeName))
    {
        *error = "'" + declaration.typeName + "' is not a type name";
        return false;
    }
    if (!ParseNameAndSize(words.back(), &declaration, error))
    {
        return false;
    }
    if (!IsUsableName(declaration.name))
    {
        *error = "'" + declaration.name + "' cannot name a member";
        return false;
    }
    if ((qualified != Shape::Single) && (declaration.shape == Shape::FixedArray))
    {
        *error = std::string("a ") + std::string(words[0]) + " member cannot be a fixed array";
        return false;
    }
    *out = declaration;
    return true;
}
} // namespace modulegen
