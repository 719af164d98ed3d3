#include "typename.h"

#include <cctype>

#include "fileformat.h"

namespace tuningfile
{
namespace
{
bool StartsWithIgnoringCase(const std::string& text, const std::string& prefix)
{
    if (text.size() < prefix.size())
    {
        return false;
    }
    for (size_t index = 0; index < prefix.size(); ++index)
    {
        if (std::tolower(static_cast<unsigned char>(text[index])) != prefix[index])
        {
            return false;
        }
    }
    return true;
}
} // namespace

std::string ShortTypeName(const std::string& registeredName)
{
    static const std::string LongPrefix = "tonemetry_";
    static const std::string ShortPrefix = "tonemetry";
    constexpr size_t         HeadLength = 8;
    constexpr size_t         TailLength = field::TypeName - HeadLength - 1;

    std::string rest = registeredName;
    if (StartsWithIgnoringCase(rest, LongPrefix) && rest.size() > LongPrefix.size())
    {
        rest.erase(0, LongPrefix.size());
    }
    else if (StartsWithIgnoringCase(rest, ShortPrefix) && rest.size() > ShortPrefix.size())
    {
        rest.erase(0, ShortPrefix.size());
    }
    if (rest.size() <= field::TypeName)
    {
        return rest;
    }
    return rest.substr(0, HeadLength) + "-" + rest.substr(rest.size() - TailLength);
}
} // namespace tuningfile
