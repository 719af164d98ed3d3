// ParameterParserInfo: one row of what a module tells about a value path, for text access.
#ifndef PARAMETERPARSERINFO_H
#define PARAMETERPARSERINFO_H

#include <cstdint>

#include "pdlibvark_export.h"

/// Rows are kept in a PList, so the record is plain data. `Type` is always one of the shared
/// type words below: the set manager tells modules and structures apart by the word's address.
struct PDLIBVARK_API ParameterParserInfo
{
    static constexpr unsigned int MaxValueLength = 1024;

    static char const TypeModule[];
    static char const TypeStructure[];
    static char const TypeString[];
    static char const TypeEnum[];
    static char const TypeBoolean[];
    static char const TypeFloat[];
    static char const TypeInt32[];
    static char const TypeUInt32[];
    static char const TypeInt64[];
    static char const TypeUInt64[];
    static char const TypeUInt16[];
    static char const TypeUInt8[];

    ParameterParserInfo() = default;
    /// A row without a value.
    ParameterParserInfo(char const* name, char const* type);
    /// A number, printed with at most `precision` digits behind the point (0 for whole numbers).
    ParameterParserInfo(char const* name, char const* type, double value, unsigned int precision);
    /// A text value, cut at MaxValueLength characters; null counts as empty.
    ParameterParserInfo(char const* name, char const* type, char const* value);
    /// An array row without a value.
    ParameterParserInfo(char const* name, char const* type, bool isArray, bool isListed, unsigned int elementCount);

    char const* Name                  = nullptr; ///< not owned; null for the very thing that the path named
    char const* Type                  = nullptr; ///< one of the type words
    char        Value[MaxValueLength] = {};
    uint32_t    IsArray               = 0; ///< a bool, stored in 32 bits
    uint32_t    IsListed              = 0; ///< second array mark, a bool in 32 bits
    uint32_t    ElementCount          = 0;
};

#endif // PARAMETERPARSERINFO_H
