#include "typename.h"

#include "parametershorttype.h"

namespace tuningfile
{
std::string ShortTypeName(const std::string& registeredName)
{
    // The store's own rule, so that the type a file holds is the one its reader looks up.
    return ParameterShortType::Of(registeredName);
}
} // namespace tuningfile
