// Text access: values of tuning modules by mode path, value path and name, as the live tuning
// link reads and changes them.
#include <cstring>
#include <string>
#include <vector>

#include "orvoosutils.h"
#include "parametersetmanager.h"

namespace
{
// A module name is cut from the value path into a local of this size.
constexpr unsigned int ModuleNameSize = 65;
// The path and value work buffers get only an empty text, not a fill: every writer terminates
// what it writes, and filling 64 KiB for each value was most of a read's time.
constexpr unsigned int PathTextSize  = 4096;
constexpr unsigned int ValueTextSize = 65535;
// Each value that the row walk of GetValue fetches.
constexpr unsigned int RowValueSize = 65;
constexpr unsigned int ModeTextSize = 128;

void Append(char* out, unsigned int size, char const* text)
{
    Orvo::OsUtils::StrLCat(out, (nullptr == text) ? "" : text, size);
}

// "name=value", with ";" ahead of all but the first item.
void AppendItem(char* out, unsigned int size, bool first, char const* name, char const* value)
{
    if (!first)
    {
        Append(out, size, ";");
    }
    Append(out, size, name);
    Append(out, size, "=");
    Append(out, size, value);
}

// The values of a comma-separated list of names, each relative to the module's top or, when the
// value path goes on behind the module name by more than one character, to that place.
bool GetNamedValues(ParameterModule* module, char const* path, uint32_t nameLength, char const* names, char* out,
                    unsigned int size)
{
    // Required: a part of just one character behind the dot is not used.
    char const* prefix = ((0 != nameLength) && (strlen(path) > nameLength + 2)) ? path + nameLength + 1 : nullptr;
    bool        result = false;
    bool        first  = true;
    for (char const* cursor = names; '\0' != *cursor;)
    {
        char     name[PathTextSize];
        uint32_t used = ParameterUtils::GetSubString(cursor, ',', name, sizeof(name));
        cursor += used;
        if (',' == *cursor)
        {
            ++cursor;
        }
        char relative[PathTextSize];
        relative[0] = '\0';
        if (nullptr != prefix)
        {
            Append(relative, sizeof(relative), prefix);
            Append(relative, sizeof(relative), ".");
        }
        Append(relative, sizeof(relative), name);
        char value[ValueTextSize];
        value[0] = '\0';
        // Required: the result is the last name's; earlier ones show only in the text.
        result = module->GetValue(relative, value, sizeof(value));
        if (result)
        {
            AppendItem(out, size, first, name, value);
            first = false;
        }
    }
    return result;
}

// Every value below `rest`, as the module's rows list them; modules and structures are passed
// over. Each value is limited to RowValueSize characters.
bool GetRowValues(ParameterModule* module, char const* rest, PList<ParameterParserInfo> const& rows, char* out,
                  unsigned int size)
{
    unsigned int written = 0;
    for (uint32_t index = 0; index < rows.count; ++index)
    {
        ParameterParserInfo const& row = rows[index];
        if ((ParameterParserInfo::TypeModule == row.Type) || (ParameterParserInfo::TypeStructure == row.Type))
        {
            continue;
        }
        char relative[PathTextSize];
        relative[0] = '\0';
        Append(relative, sizeof(relative), rest);
        if (nullptr != row.Name)
        {
            Append(relative, sizeof(relative), ".");
            Append(relative, sizeof(relative), row.Name);
        }
        char value[RowValueSize];
        value[0] = '\0';
        if (0 != row.IsArray)
        {
            AppendItem(out, size, 0 == written, row.Name, "");
            for (uint32_t element = 0; element < row.ElementCount; ++element)
            {
                char indexed[PathTextSize];
                Orvo::OsUtils::SNPrintF(indexed, sizeof(indexed), "%s[%u]", relative, element);
                bool fetched = module->GetValue(indexed, value, sizeof(value));
                // Required: the buffer is appended before the result is looked at.
                if (0 != element)
                {
                    Append(out, size, ",");
                }
                Append(out, size, value);
                if (!fetched)
                {
                    return false;
                }
            }
        }
        else
        {
            if (!module->GetValue(relative, value, sizeof(value)))
            {
                return false;
            }
            AppendItem(out, size, 0 == written, row.Name, value);
        }
        ++written;
    }
    return true;
}

// The value of a path without names: every value below it, or the one value that it names.
bool GetPathValues(ParameterModule* module, char const* rest, char* out, unsigned int size)
{
    PList<ParameterParserInfo> rows(1);
    if (module->GetInfo(rest, rows))
    {
        return GetRowValues(module, rest, rows, out, size);
    }
    char value[ValueTextSize];
    value[0] = '\0';
    if (!module->GetValue(rest, value, sizeof(value)))
    {
        return false;
    }
    char const* dot = strrchr(rest, '.');
    AppendItem(out, size, true, (nullptr == dot) ? rest : dot + 1, value);
    return true;
}
} // namespace

bool ParameterSetManager::GetValue(char const* modePath, char const* path, char const* names, char* out,
                                   unsigned int size)
{
    if ((nullptr == modePath) || (nullptr == path) || (nullptr == out))
    {
        return false;
    }
    PList<TuningMode> branch(1);
    if (!GetModeBranchFromPath(modePath, branch))
    {
        return false;
    }
    return GetValue(branch.items, branch.count, path, names, out, size);
}

bool ParameterSetManager::GetValue(TuningMode const* modeBranch, unsigned int modeCount, char const* path,
                                   char const* names, char* out, unsigned int size)
{
    if ((nullptr == modeBranch) || (0 == modeCount) || (nullptr == path) || (nullptr == out) || (0 == size))
    {
        return false;
    }
    char     moduleName[ModuleNameSize];
    uint32_t nameLength = ParameterUtils::GetSubString(path, '.', moduleName, sizeof(moduleName));
    out[0]              = '\0';
    CallScope          call(*this);
    ParameterMutexLock access(&m_accessLock, true, true);
    // Required: the reference that the look-up takes is not given back.
    ParameterModule* module = GetModule(moduleName, modeBranch, modeCount, nullptr);
    if (nullptr == module)
    {
        return false;
    }
    if (nullptr != names)
    {
        return GetNamedValues(module, path, nameLength, names, out, size);
    }
    // Safe variant: a path of the module name alone means the module's top, where reading
    // behind its end would not.
    char const* rest = ('\0' == path[nameLength]) ? "" : path + nameLength + 1;
    return GetPathValues(module, rest, out, size);
}

bool ParameterSetManager::SetValue(char const* modePath, char const* path, char const* name, char const* value)
{
    if ((nullptr == modePath) || (nullptr == path) || (nullptr == value))
    {
        return false;
    }
    PList<TuningMode> branch(1);
    if (!GetModeBranchFromPath(modePath, branch))
    {
        return false;
    }
    return SetValue(branch.items, branch.count, path, name, value);
}

bool ParameterSetManager::SetValue(TuningMode const* modeBranch, unsigned int modeCount, char const* path,
                                   char const* name, char const* value)
{
    if ((nullptr == modeBranch) || (0 == modeCount) || (nullptr == path) || (nullptr == value))
    {
        return false;
    }
    char     moduleName[ModuleNameSize];
    uint32_t nameLength = ParameterUtils::GetSubString(path, '.', moduleName, sizeof(moduleName));
    if (0 == nameLength)
    {
        return false;
    }
    CallScope          call(*this);
    ParameterMutexLock access(&m_accessLock, true, true);
    ParameterModule*   module = GetModule(moduleName, modeBranch, modeCount, nullptr);
    if (nullptr == module)
    {
        return false;
    }
    // Required: unlike GetValue, a one-character part counts, and a path ending in the dot
    // gives a relative path with a leading dot.
    char relative[PathTextSize];
    relative[0] = '\0';
    if (strlen(path) > nameLength)
    {
        Append(relative, sizeof(relative), path + nameLength + 1);
        Append(relative, sizeof(relative), ".");
    }
    Append(relative, sizeof(relative), name);
    if (!module->SetValue(relative, value))
    {
        return false;
    }
    ++m_setValueCount;
    PinMode(module);
    return true;
}

void ParameterSetManager::PinMode(ParameterModule const* module)
{
    if ((nullptr == module->Data) || (nullptr == module->Data->Mode))
    {
        return;
    }
    // An edited value must not be lost to eviction. The lock is taken in buffer mode too, as
    // two edits may pin at once.
    ParameterMutexLock load(&m_loadLock, false, true);
    ModeEntry*         mode = module->Data->Mode;
    if (!mode->m_pinned)
    {
        mode->m_pinned = true;
        RemoveLoadedMode(mode);
    }
}

bool ParameterSetManager::GetInfo(char const* modePath, char const* path, PList<ParameterParserInfo>& list)
{
    if (nullptr == modePath)
    {
        return GetInfo(nullptr, 0, path, list); // which logs
    }
    PList<TuningMode> branch(1);
    if (!GetModeBranchFromPath(modePath, branch))
    {
        return false;
    }
    return GetInfo(branch.items, branch.count, path, list);
}

bool ParameterSetManager::GetInfo(TuningMode const* modeBranch, unsigned int modeCount, char const* path,
                                  PList<ParameterParserInfo>& list)
{
    CallScope          call(*this);
    ParameterMutexLock access(&m_accessLock, true, true);
    if ((nullptr == modeBranch) || (0 == modeCount))
    {
        PARAMETER_LOG_ERROR(this, "GetInfo called with null or empty modeBranch\n");
        return false;
    }
    if (nullptr != path)
    {
        char             moduleName[ModuleNameSize];
        uint32_t         nameLength = ParameterUtils::GetSubString(path, '.', moduleName, sizeof(moduleName));
        ParameterModule* module     = GetModule(moduleName, modeBranch, modeCount, nullptr);
        if (nullptr == module)
        {
            return false;
        }
        bool inside = (0 != nameLength) && (strlen(path) > nameLength + 2);
        return module->GetInfo(inside ? path + nameLength + 1 : nullptr, list);
    }

    // The names that the root holds, each with the instance that wins for this branch. They are
    // copied first: a look-up may reload the file and replace the root's table.
    if (nullptr == m_rootMode)
    {
        return false;
    }
    std::vector<std::string> names;
    for (auto const& entry : m_rootMode->m_modules)
    {
        names.push_back(entry.first);
    }
    bool found = false;
    for (std::string const& name : names)
    {
        ParameterModule* module = GetModule(name.c_str(), modeBranch, modeCount, nullptr);
        if (nullptr == module)
        {
            continue;
        }
        found = true;
        if ((nullptr != module->Data) && (nullptr != module->Data->ModePath))
        {
            char modes[ModeTextSize] = "";
            GetRavlenModesString(module->Data->ModePath, modes, sizeof(modes));
            list.Insert(list.count,
                        ParameterParserInfo(InternName(module->Name), ParameterParserInfo::TypeModule, modes));
        }
        else
        {
            list.Insert(list.count, ParameterParserInfo(InternName(module->Name), ParameterParserInfo::TypeModule));
        }
    }
    return found;
}
