// The short type form of a registered module name: what a tuning file's symbol table holds and
// what a set manager looks a module up by. The store, the generator and the file writer all
// include this one rule, so that the three cannot disagree.
#ifndef PARAMETERSHORTTYPE_H
#define PARAMETERSHORTTYPE_H

#include <cctype>
#include <cstring>
#include <string>
#include <string_view>

namespace ParameterShortType
{
/// Longest short type, in characters.
constexpr size_t MaxLength = 32;

inline bool StartsWithNoCase(std::string_view text, std::string_view prefix)
{
    if (text.size() < prefix.size())
    {
        return false;
    }
    for (size_t index = 0; index < prefix.size(); ++index)
    {
        if (std::tolower(static_cast<unsigned char>(text[index])) !=
            std::tolower(static_cast<unsigned char>(prefix[index])))
        {
            return false;
        }
    }
    return true;
}

/// Writes the short type of `name` into `out` (room for MaxLength characters, no terminator is
/// written) and returns its length: one leading "tonemetry_" or "tonemetry", in any case, goes
/// unless nothing would remain; a rest longer than MaxLength becomes its first 8 characters, '-'
/// and its last 23.
inline size_t Write(char* out, std::string_view name)
{
    if (StartsWithNoCase(name, "tonemetry_") && (name.size() > 10))
    {
        name.remove_prefix(10);
    }
    else if (StartsWithNoCase(name, "tonemetry") && (name.size() > 9))
    {
        name.remove_prefix(9);
    }
    if (name.size() <= MaxLength)
    {
        std::memcpy(out, name.data(), name.size());
        return name.size();
    }
    constexpr size_t HeadLength = 8;
    constexpr size_t TailLength = MaxLength - HeadLength - 1;
    std::memcpy(out, name.data(), HeadLength);
    out[HeadLength] = '-';
    std::memcpy(out + HeadLength + 1, name.data() + name.size() - TailLength, TailLength);
    return MaxLength;
}

inline std::string Of(std::string_view name)
{
    char   text[MaxLength];
    size_t length = Write(text, name);
    return std::string(text, length);
}
} // namespace ParameterShortType

#endif // PARAMETERSHORTTYPE_H
