// The short type form of a registered module name, the key under which the store finds a module.
#ifndef TUNINGFILE_TYPENAME_H
#define TUNINGFILE_TYPENAME_H

#include <string>

namespace tuningfile
{
/// "tonemetry_abf34" and "Tonemetry_abf34" give "abf34"; a bare prefix stays whole; a result
/// longer than 32 characters becomes its first 8, '-', and its last 23.
std::string ShortTypeName(const std::string& registeredName);
} // namespace tuningfile

#endif // TUNINGFILE_TYPENAME_H
