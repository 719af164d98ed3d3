// demo_1_0_0: text access, record by record. A path names one member per component; the name
// chains below are the whole of the matching.
#include <cstring>

#include "demo_1_0_0.h"
#include "orvoosutils.h"
#include "parameterutils.h"

namespace demo_1_0_0
{
namespace
{
constexpr unsigned int NameSize      = 129;
constexpr unsigned int NoIndex       = 0xFFFFFFFFu;
constexpr unsigned int FloatDigits   = 10;
constexpr unsigned int IntegerDigits = 0;

void Print(double number, unsigned int digits, char* value, unsigned int size)
{
    bool complete = false;
    ParameterUtils::DoubleToString(number, value, size, digits, complete);
}

// Stores `text` into `member` when it is a number of the store's form.
template <typename T>
bool Store(char const* text, T& member)
{
    bool   ok     = false;
    double number = ParameterUtils::StringToDouble(text, ok);
    if (ok)
    {
        member = ParameterUtils::NumberAs<T>(number);
    }
    return ok;
}

void AddRow(PList<ParameterParserInfo>& list, ParameterParserInfo const& row)
{
    list.Insert(list.count, row);
}
} // namespace

bool mod_demo10_region_dataType::GetValue(char const* path, char* value, unsigned int size)
{
    char         name[NameSize] = "";
    unsigned int index          = NoIndex;
    ParameterUtils::GetVariable(path, name, index, sizeof(name));
    if (0 == strcmp(name, "lux_start"))
    {
        Print(lux_start, FloatDigits, value, size);
        return true;
    }
    if (0 == strcmp(name, "lux_end"))
    {
        Print(lux_end, FloatDigits, value, size);
        return true;
    }
    if (0 == strcmp(name, "strength"))
    {
        Print(strength, IntegerDigits, value, size);
        return true;
    }
    return false;
}

bool mod_demo10_region_dataType::SetValue(char const* path, char const* value)
{
    char         name[NameSize] = "";
    unsigned int index          = NoIndex;
    ParameterUtils::GetVariable(path, name, index, sizeof(name));
    if (0 == strcmp(name, "lux_start"))
    {
        return Store(value, lux_start);
    }
    if (0 == strcmp(name, "lux_end"))
    {
        return Store(value, lux_end);
    }
    if (0 == strcmp(name, "strength"))
    {
        return Store(value, strength);
    }
    return false;
}

bool mod_demo10_region_dataType::GetInfo(char const* path, PList<ParameterParserInfo>& list)
{
    char         name[NameSize] = "";
    unsigned int index          = NoIndex;
    ParameterUtils::GetVariable(path, name, index, sizeof(name));
    bool                 all      = '\0' == name[0];
    char const* const    names[]  = {"lux_start", "lux_end", "strength"};
    char const* const    types[]  = {ParameterParserInfo::TypeFloat, ParameterParserInfo::TypeFloat,
                                     ParameterParserInfo::TypeUInt32};
    double const         values[] = {lux_start, lux_end, static_cast<double>(strength)};
    unsigned int const   digits[] = {FloatDigits, FloatDigits, IntegerDigits};
    bool                 found    = all;
    for (unsigned int member = 0; member < 3; ++member)
    {
        if (all || (0 == strcmp(name, names[member])))
        {
            AddRow(list, ParameterParserInfo(all ? names[member] : nullptr, types[member], values[member],
                                             digits[member]));
            found = true;
        }
    }
    return found;
}

bool tonemetry_demo10Type::module_versionStruct::GetValue(char const* path, char* value, unsigned int size)
{
    char         name[NameSize] = "";
    unsigned int index          = NoIndex;
    ParameterUtils::GetVariable(path, name, index, sizeof(name));
    int32_t const* member = (0 == strcmp(name, "major_revision"))   ? &major_revision
                            : (0 == strcmp(name, "minor_revision")) ? &minor_revision
                            : (0 == strcmp(name, "incr_revision"))  ? &incr_revision
                                                                    : nullptr;
    if (nullptr == member)
    {
        return false;
    }
    Print(*member, IntegerDigits, value, size);
    return true;
}

bool tonemetry_demo10Type::module_versionStruct::SetValue(char const* path, char const* value)
{
    char         name[NameSize] = "";
    unsigned int index          = NoIndex;
    ParameterUtils::GetVariable(path, name, index, sizeof(name));
    int32_t* member = (0 == strcmp(name, "major_revision"))   ? &major_revision
                      : (0 == strcmp(name, "minor_revision")) ? &minor_revision
                      : (0 == strcmp(name, "incr_revision"))  ? &incr_revision
                                                              : nullptr;
    return (nullptr != member) && Store(value, *member);
}

bool tonemetry_demo10Type::module_versionStruct::GetInfo(char const* path, PList<ParameterParserInfo>& list)
{
    char         name[NameSize] = "";
    unsigned int index          = NoIndex;
    ParameterUtils::GetVariable(path, name, index, sizeof(name));
    bool                 all     = '\0' == name[0];
    char const* const    names[] = {"major_revision", "minor_revision", "incr_revision"};
    int32_t const* const values[] = {&major_revision, &minor_revision, &incr_revision};
    bool                 found   = all;
    for (unsigned int member = 0; member < 3; ++member)
    {
        if (all || (0 == strcmp(name, names[member])))
        {
            AddRow(list, ParameterParserInfo(all ? names[member] : nullptr, ParameterParserInfo::TypeInt32,
                                             *values[member], IntegerDigits));
            found = true;
        }
    }
    return found;
}

bool tonemetry_demo10Type::gamma_tabStruct::GetValue(char const* path, char* value, unsigned int size)
{
    char         name[NameSize] = "";
    unsigned int index          = NoIndex;
    ParameterUtils::GetVariable(path, name, index, sizeof(name));
    if (0 != strcmp(name, "gamma"))
    {
        return false;
    }
    unsigned int const count = sizeof(gamma) / sizeof(gamma[0]);
    if (index < count)
    {
        Print(gamma[index], FloatDigits, value, size);
        return true;
    }
    if (0 != size)
    {
        value[0] = '\0';
    }
    for (unsigned int element = 0; element < count; ++element)
    {
        char text[NameSize] = "";
        Print(gamma[element], FloatDigits, text, sizeof(text));
        if (0 != element)
        {
            Orvo::OsUtils::StrLCat(value, ",", size);
        }
        Orvo::OsUtils::StrLCat(value, text, size);
    }
    return true;
}

bool tonemetry_demo10Type::gamma_tabStruct::SetValue(char const* path, char const* value)
{
    char         name[NameSize] = "";
    unsigned int index          = NoIndex;
    ParameterUtils::GetVariable(path, name, index, sizeof(name));
    if ((0 != strcmp(name, "gamma")) || (nullptr == value))
    {
        return false;
    }
    unsigned int const count = sizeof(gamma) / sizeof(gamma[0]);
    if (index < count)
    {
        return Store(value, gamma[index]);
    }
    // Required: the pieces that convert are stored, and the result is true whatever failed.
    char const* cursor = value;
    for (unsigned int element = 0; (element < count) && ('\0' != *cursor); ++element)
    {
        char     piece[NameSize];
        uint32_t used = ParameterUtils::GetSubString(cursor, ',', piece, sizeof(piece));
        Store(piece, gamma[element]);
        cursor += used;
        if (',' == *cursor)
        {
            ++cursor;
        }
    }
    return true;
}

bool tonemetry_demo10Type::gamma_tabStruct::GetInfo(char const* path, PList<ParameterParserInfo>& list)
{
    char         name[NameSize] = "";
    unsigned int index          = NoIndex;
    ParameterUtils::GetVariable(path, name, index, sizeof(name));
    bool all = '\0' == name[0];
    if (!all && (0 != strcmp(name, "gamma")))
    {
        return false;
    }
    AddRow(list, ParameterParserInfo(all ? "gamma" : nullptr, ParameterParserInfo::TypeFloat, true, false,
                                     sizeof(gamma) / sizeof(gamma[0])));
    return true;
}

bool tonemetry_demo10Type::GetValue(char const* path, char* value, unsigned int size)
{
    char         name[NameSize] = "";
    unsigned int index          = NoIndex;
    uint32_t     used           = ParameterUtils::GetVariable(path, name, index, sizeof(name));
    char const*  rest           = (nullptr == path) ? nullptr : path + used;
    if (0 == strcmp(name, "module_version"))
    {
        return module_version.GetValue(rest, value, size);
    }
    if (0 == strcmp(name, "gain"))
    {
        Print(gain, FloatDigits, value, size);
        return true;
    }
    if (0 == strcmp(name, "gamma_tab"))
    {
        return gamma_tab.GetValue(rest, value, size);
    }
    if (0 == strcmp(name, "label"))
    {
        Orvo::OsUtils::StrLCpy(value, (nullptr == label) ? "" : label, size);
        return true;
    }
    if (0 == strcmp(name, "mod_demo10_region_data"))
    {
        return (index < mod_demo10_region_dataCount) && mod_demo10_region_data[index].GetValue(rest, value, size);
    }
    return false;
}

bool tonemetry_demo10Type::SetValue(char const* path, char const* value)
{
    char         name[NameSize] = "";
    unsigned int index          = NoIndex;
    uint32_t     used           = ParameterUtils::GetVariable(path, name, index, sizeof(name));
    char const*  rest           = (nullptr == path) ? nullptr : path + used;
    if (0 == strcmp(name, "module_version"))
    {
        return module_version.SetValue(rest, value);
    }
    if (0 == strcmp(name, "gain"))
    {
        return Store(value, gain);
    }
    if (0 == strcmp(name, "gamma_tab"))
    {
        return gamma_tab.SetValue(rest, value);
    }
    if (0 == strcmp(name, "mod_demo10_region_data"))
    {
        return (index < mod_demo10_region_dataCount) && mod_demo10_region_data[index].SetValue(rest, value);
    }
    return false; // a text member is not changed by text access
}

bool tonemetry_demo10Type::GetInfo(char const* path, PList<ParameterParserInfo>& list)
{
    char         name[NameSize] = "";
    unsigned int index          = NoIndex;
    uint32_t     used           = ParameterUtils::GetVariable(path, name, index, sizeof(name));
    char const*  rest           = (nullptr == path) ? nullptr : path + used;
    if ('\0' == name[0])
    {
        AddRow(list, ParameterParserInfo("module_version", ParameterParserInfo::TypeStructure));
        AddRow(list, ParameterParserInfo("gain", ParameterParserInfo::TypeFloat, gain, FloatDigits));
        AddRow(list, ParameterParserInfo("gamma_tab", ParameterParserInfo::TypeStructure));
        AddRow(list, ParameterParserInfo("label", ParameterParserInfo::TypeString, label));
        AddRow(list, ParameterParserInfo("mod_demo10_region_data", ParameterParserInfo::TypeStructure, true, false,
                                         mod_demo10_region_dataCount));
        return true;
    }
    if (0 == strcmp(name, "module_version"))
    {
        return module_version.GetInfo(rest, list);
    }
    if (0 == strcmp(name, "gain"))
    {
        AddRow(list, ParameterParserInfo(nullptr, ParameterParserInfo::TypeFloat, gain, FloatDigits));
        return true;
    }
    if (0 == strcmp(name, "gamma_tab"))
    {
        return gamma_tab.GetInfo(rest, list);
    }
    if (0 == strcmp(name, "label"))
    {
        AddRow(list, ParameterParserInfo(nullptr, ParameterParserInfo::TypeString, label));
        return true;
    }
    if (0 == strcmp(name, "mod_demo10_region_data"))
    {
        if (index < mod_demo10_region_dataCount)
        {
            return mod_demo10_region_data[index].GetInfo(rest, list);
        }
        AddRow(list, ParameterParserInfo(nullptr, ParameterParserInfo::TypeStructure, true, false,
                                         mod_demo10_region_dataCount));
        return true;
    }
    return false;
}
} // namespace demo_1_0_0
