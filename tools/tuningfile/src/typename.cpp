#include "typename.h"

#include "parametermodule.h"

namespace tuningfile
{
std::string ShortTypeName(const std::string& registeredName)
{
    // The store's own rule, so that the type a file holds is the one its reader looks up.
    char type[ModuleData::MaxTypeLength + 1] = {};
    ModuleData::GetType(type, registeredName.c_str());
    return type;
}
} // namespace tuningfile
