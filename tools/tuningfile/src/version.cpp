#include "tuningfile/model.h"

namespace tuningfile
{
uint64_t Version::Raw() const
{
    return static_cast<uint64_t>(major) | (static_cast<uint64_t>(minor) << 16) | (static_cast<uint64_t>(patch) << 32);
}

std::string Version::ToString() const
{
    return std::to_string(major) + "." + std::to_string(minor) + "." + std::to_string(patch);
}

int Compare(const Version& left, const Version& right)
{
    // Field by field: the three parts never mix into one number.
    if (left.major != right.major)
    {
        return (left.major > right.major) ? 1 : -1;
    }
    if (left.minor != right.minor)
    {
        return (left.minor > right.minor) ? 1 : -1;
    }
    if (left.patch != right.patch)
    {
        return (left.patch > right.patch) ? 1 : -1;
    }
    return 0;
}

bool operator==(const Version& left, const Version& right)
{
    return Compare(left, right) == 0;
}
bool operator!=(const Version& left, const Version& right)
{
    return Compare(left, right) != 0;
}
bool operator<(const Version& left, const Version& right)
{
    return Compare(left, right) < 0;
}
bool operator<=(const Version& left, const Version& right)
{
    return Compare(left, right) <= 0;
}
bool operator>(const Version& left, const Version& right)
{
    return Compare(left, right) > 0;
}
bool operator>=(const Version& left, const Version& right)
{
    return Compare(left, right) >= 0;
}
} // namespace tuningfile
