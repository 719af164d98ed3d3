// The short type form of a registered module name, the key under which the store finds a module.
#ifndef TUNINGFILE_TYPENAME_H
#define TUNINGFILE_TYPENAME_H

#include <string>

namespace tuningfile
{
/// The store's short type of `registeredName` (ModuleData::GetType): "tonemetry_abf34" and
/// "Tonemetry_abf34" give "abf34".
std::string ShortTypeName(const std::string& registeredName);
} // namespace tuningfile

#endif // TUNINGFILE_TYPENAME_H
