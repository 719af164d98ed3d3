// Operations of the data interface that need modules in service, modes in use or value lists.
// A manager has none of them yet: no module is created from a file, no mode enters the list of
// modes in use, and nothing sets a control or trigger value. So each answers as a manager
// without them does: no value is found or changed, and the lists are empty.
#include "parametersetmanager.h"

bool ParameterSetManager::GetValue(char const*, char const*, char const*, char*, unsigned int)
{
    return false;
}

bool ParameterSetManager::SetValue(char const*, char const*, char const*, char const*)
{
    return false;
}

bool ParameterSetManager::GetInfo(char const*, char const*, PList<ParameterParserInfo>&)
{
    return false;
}

void ParameterSetManager::GetActiveModes(char* out, unsigned int size)
{
    if ((nullptr != out) && (0 != size))
    {
        out[0] = '\0';
    }
}

bool ParameterSetManager::GetControlValues(char*, unsigned int)
{
    return false; // an empty list leaves `out` alone
}

bool ParameterSetManager::GetTriggerValues(char*, unsigned int)
{
    return false;
}
