#include "parametertextaccess.h"

#include "orvoosutils.h"

ParameterPathStep::ParameterPathStep(char const* path)
{
    uint32_t used = ParameterUtils::GetVariable(path, name, index, sizeof(name));
    rest          = (nullptr == path) ? nullptr : path + used;
}

bool ParameterTextAccess::PrintText(char const* text, char* out, unsigned int size)
{
    if ((nullptr != out) && (0 != size))
    {
        Orvo::OsUtils::StrLCpy(out, (nullptr == text) ? "" : text, size);
    }
    return true;
}

bool ParameterTextAccess::PrintTextArray(char* const* values, uint32_t count, unsigned int index, char* out,
                                         unsigned int size)
{
    if ((nullptr != values) && (index < count))
    {
        return PrintText(values[index], out, size);
    }
    StartText(out, size);
    for (uint32_t element = 0; (nullptr != values) && (element < count); ++element)
    {
        AppendElement(out, size, element, (nullptr == values[element]) ? "" : values[element]);
    }
    return true;
}

void ParameterTextAccess::StartText(char* out, unsigned int size)
{
    if ((nullptr != out) && (0 != size))
    {
        out[0] = '\0';
    }
}

void ParameterTextAccess::AppendElement(char* out, unsigned int size, uint32_t element, char const* text)
{
    if ((nullptr == out) || (0 == size))
    {
        return;
    }
    if (0 != element)
    {
        Orvo::OsUtils::StrLCat(out, ",", size);
    }
    Orvo::OsUtils::StrLCat(out, text, size);
}

char const* ParameterTextAccess::NextPiece(char const* cursor, char* piece, unsigned int size)
{
    ParameterUtils::GetSubString(cursor, ',', piece, size);
    char const* comma = strchr(cursor, ',');
    return (nullptr == comma) ? nullptr : comma + 1;
}
