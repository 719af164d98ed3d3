#include "parameterparserinfo.h"

#include "orvoosutils.h"
#include "parameterutils.h"

char const ParameterParserInfo::TypeModule[]    = "Module";
char const ParameterParserInfo::TypeStructure[] = "Structure";
char const ParameterParserInfo::TypeString[]    = "String";
char const ParameterParserInfo::TypeEnum[]      = "Enum";
char const ParameterParserInfo::TypeBoolean[]   = "Boolean";
char const ParameterParserInfo::TypeFloat[]     = "Float";
char const ParameterParserInfo::TypeInt32[]     = "Int32";
char const ParameterParserInfo::TypeUInt32[]    = "UInt32";
char const ParameterParserInfo::TypeInt64[]     = "Int64";
char const ParameterParserInfo::TypeUInt64[]    = "UInt64";
char const ParameterParserInfo::TypeUInt16[]    = "UInt16";
char const ParameterParserInfo::TypeUInt8[]     = "UInt8";

ParameterParserInfo::ParameterParserInfo(char const* name, char const* type) : Name(name), Type(type) {}

ParameterParserInfo::ParameterParserInfo(char const* name, char const* type, double value, unsigned int precision)
    : Name(name), Type(type)
{
    bool complete = false;
    ParameterUtils::DoubleToString(value, Value, sizeof(Value), precision, complete);
}

ParameterParserInfo::ParameterParserInfo(char const* name, char const* type, char const* value) : Name(name), Type(type)
{
    Orvo::OsUtils::StrLCpy(Value, (nullptr == value) ? "" : value, sizeof(Value));
}

ParameterParserInfo::ParameterParserInfo(char const* name, char const* type, bool isArray, bool isListed,
                                         unsigned int elementCount)
    : Name(name), Type(type), IsArray(isArray ? 1u : 0u), IsListed(isListed ? 1u : 0u), ElementCount(elementCount)
{
}
