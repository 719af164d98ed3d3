// The text forms of mode paths: numeric ("0.0|2.1"), named ("Default|Usecase.Snapshot"), and the
// conversions between them and mode branches.
#include <cstring>

#include "orvoosutils.h"
#include "parametersetmanager.h"

namespace
{
// Characters of one element that GetModeBranchFromPath looks at (a local of 10 bytes).
constexpr unsigned int BranchElementSize = 10;

bool IsDigit(char c)
{
    return (c >= '0') && (c <= '9');
}

// The decimal value of the digits in text[from, to); other characters are passed over.
uint32_t DigitsValue(char const* text, unsigned int from, unsigned int to)
{
    uint32_t value = 0;
    for (unsigned int index = from; index < to; ++index)
    {
        if (IsDigit(text[index]))
        {
            value = value * 10u + static_cast<uint32_t>(text[index] - '0');
        }
    }
    return value;
}

// The store's number of a text, truncated; 0 when it is none. Conversions to unsigned clamp.
uint32_t NumberOf(char const* text)
{
    bool   success = false;
    double number  = ParameterUtils::StringToDouble(text, success);
    if (!success || !(number > 0.0))
    {
        return 0;
    }
    return (number >= 4294967295.0) ? 0xFFFFFFFFu : static_cast<uint32_t>(number);
}

// Whether `name` equals `candidate` in any letter case.
bool SameName(char const* name, size_t length, char const* candidate)
{
    return (strlen(candidate) == length) && (0 == Orvo::OsUtils::StrNICmp(name, candidate, length));
}

// Moves `cursor` past one element of a list joined by `delimiter`, copying it into `element`.
// Returns the characters copied. An element longer than `size - 1` is taken in parts.
uint32_t NextElement(char const*& cursor, char delimiter, char* element, unsigned int size)
{
    uint32_t used = ParameterUtils::GetSubString(cursor, delimiter, element, size);
    cursor += used;
    if (delimiter == *cursor)
    {
        ++cursor;
    }
    return used;
}

// Appends `text` to `out` while a character and the terminator fit.
void AppendBounded(char* out, unsigned int size, unsigned int& written, char const* text)
{
    for (; ('\0' != *text) && (written + 1 < size); ++text)
    {
        out[written++] = *text;
    }
}

void AppendNumber(char* out, unsigned int size, unsigned int& written, unsigned int number)
{
    char digits[16] = "";
    bool complete   = false;
    ParameterUtils::DoubleToString(number, digits, sizeof(digits), 0, complete);
    AppendBounded(out, size, written, digits);
}

// One element of a numeric path by name: "2.1" gives "Usecase.Snapshot", "1.3" "Sensor.3".
void AppendNamedElement(char const* element, char* out, unsigned int size)
{
    char head[512] = "";
    ParameterUtils::GetSubString(element, '.', head, sizeof(head));
    char const* dot  = strchr(element, '.');
    uint32_t    mode = NumberOf(head);
    uint32_t    sub  = NumberOf((nullptr == dot) ? "" : dot + 1);

    char const* modeName = ModeEntry::GetModeName(mode);
    if (nullptr != modeName)
    {
        Orvo::OsUtils::StrLCat(out, modeName, size);
    }
    char const* subModeName = ModeEntry::GetSubModeName(mode, sub);
    if (nullptr != subModeName)
    {
        Orvo::OsUtils::StrLCat(out, ".", size);
        Orvo::OsUtils::StrLCat(out, subModeName, size);
    }
    else if ((0 != mode) && (nullptr != dot))
    {
        Orvo::OsUtils::StrLCat(out, dot, size); // digits stay digits, the "." with them
    }
}
} // namespace

bool ParameterSetManager::GetModeBranchFromPath(char const* path, PList<TuningMode>& branch)
{
    if (nullptr == path)
    {
        return false;
    }
    char const* cursor = path;
    while ('\0' != *cursor)
    {
        char     element[BranchElementSize];
        uint32_t used = ParameterUtils::GetSubString(cursor, '|', element, sizeof(element));
        if (0 == used)
        {
            break; // an empty element ends the parse
        }
        int32_t separator = -1;
        for (uint32_t index = 0; index < used; ++index)
        {
            if ('.' == element[index])
            {
                separator = static_cast<int32_t>(index);
            }
            else if (!IsDigit(element[index]))
            {
                return false; // what was appended stays
            }
        }
        TuningMode mode;
        if (separator >= 0)
        {
            mode.mode    = DigitsValue(element, 0, static_cast<unsigned int>(separator));
            mode.subMode = static_cast<uint16_t>(DigitsValue(element, static_cast<unsigned int>(separator) + 1, used));
        }
        else
        {
            // Not meant to be used: no mode, and the sub-mode from the second character on.
            mode.subMode = static_cast<uint16_t>(DigitsValue(element, 1, used));
        }
        branch.Insert(branch.count, mode);

        // The next element starts one past the copied characters: past the delimiter, or past one
        // character of an element too long for the local. Safe variant: never past the end.
        if ('\0' == cursor[used])
        {
            break;
        }
        cursor += used + 1;
    }
    return 0 != branch.count;
}

void ParameterSetManager::GetPathFromModeBranch(TuningMode const* modeBranch, unsigned int modeCount, char* out,
                                                unsigned int size)
{
    if ((nullptr == modeBranch) || (0 == modeCount) || (nullptr == out))
    {
        return;
    }
    for (unsigned int index = 0; index < modeCount; ++index)
    {
        if (0 != index)
        {
            Orvo::OsUtils::StrLCat(out, "|", size);
        }
        char element[12];
        Orvo::OsUtils::SNPrintF(element, sizeof(element), "%u.%u", modeBranch[index].mode & 0xFFFFu,
                                static_cast<unsigned int>(modeBranch[index].subMode));
        Orvo::OsUtils::StrLCat(out, element, size);
    }
}

unsigned int ParameterSetManager::GetModeIndex(char const* name)
{
    if (nullptr == name)
    {
        return 0;
    }
    size_t length = strlen(name);
    for (unsigned int mode = 0; nullptr != ModeEntry::GetModeName(mode); ++mode)
    {
        if (SameName(name, length, ModeEntry::GetModeName(mode)))
        {
            return mode;
        }
    }
    return 0; // the same as "Default"
}

unsigned short ParameterSetManager::GetSubModeIndex(unsigned short mode, char const* name)
{
    if (nullptr == name)
    {
        return 0;
    }
    bool success = false;
    ParameterUtils::StringToDouble(name, success);
    if (success)
    {
        // Digits are taken as they are, without a look at the names.
        return static_cast<unsigned short>(NumberOf(name));
    }
    size_t length = strlen(name);
    for (unsigned int subMode = 0; nullptr != ModeEntry::GetSubModeName(mode, subMode); ++subMode)
    {
        if (SameName(name, length, ModeEntry::GetSubModeName(mode, subMode)))
        {
            return static_cast<unsigned short>(subMode);
        }
    }
    return 0;
}

void ParameterSetManager::GetModeShorthand(char const* path, char* out, unsigned int size)
{
    if ((nullptr == out) || (0 == size))
    {
        return;
    }
    unsigned int written = 0;
    bool         first   = true;
    for (char const* cursor = (nullptr == path) ? "" : path; '\0' != *cursor;)
    {
        char element[256];
        // Safe variant: an empty element is passed over, where the scan would never move on.
        if (0 == NextElement(cursor, '|', element, sizeof(element)))
        {
            continue;
        }
        if (!first)
        {
            AppendBounded(out, size, written, "|");
        }
        first = false;

        char* dot = strchr(element, '.');
        if (nullptr != dot)
        {
            *dot = '\0';
        }
        unsigned int mode = GetModeIndex(element);
        AppendNumber(out, size, written, mode);
        if ((nullptr != dot) && ('\0' != dot[1]))
        {
            AppendBounded(out, size, written, ".");
            AppendNumber(out, size, written, GetSubModeIndex(static_cast<unsigned short>(mode), dot + 1));
        }
    }
    out[written]  = '\0';
    out[size - 1] = '\0';
}

void ParameterSetManager::GetRavlenModesString(char const* paths, char* out, unsigned int size)
{
    if ((nullptr == out) || (0 == size))
    {
        return;
    }
    out[0]         = '\0';
    bool firstItem = true;
    for (char const* cursor = (nullptr == paths) ? "" : paths; '\0' != *cursor;)
    {
        char item[512];
        if (0 == NextElement(cursor, ';', item, sizeof(item)))
        {
            continue;
        }
        if (!firstItem)
        {
            Orvo::OsUtils::StrLCat(out, ";", size);
        }
        firstItem         = false;
        bool firstElement = true;
        for (char const* at = item; '\0' != *at;)
        {
            char element[512];
            if (0 == NextElement(at, '|', element, sizeof(element)))
            {
                continue;
            }
            if (!firstElement)
            {
                Orvo::OsUtils::StrLCat(out, "|", size);
            }
            firstElement = false;
            AppendNamedElement(element, out, size);
        }
    }
}
