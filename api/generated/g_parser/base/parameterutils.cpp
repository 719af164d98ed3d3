#include "parameterutils.h"

#include "orvomem.h"
#include "orvoosutils.h"

namespace
{
// Bytes of the buffer from `position` on; none past its end.
unsigned int Remaining(unsigned int length, unsigned int position)
{
    return (position < length) ? (length - position) : 0u;
}

unsigned int Lesser(unsigned int first, unsigned int second)
{
    return (first < second) ? first : second;
}
} // namespace

bool ParameterUtils::ReadString(char* out, unsigned char const* buffer, unsigned int length, unsigned int* pos,
                                unsigned int outSize, unsigned int fieldSize, unsigned char alignment,
                                IParameterLoggingAPI* logger)
{
    if (nullptr == pos)
    {
        PARAMETER_LOG_ERROR(logger, "ReadString called with nullptr pos\n");
        return false;
    }
    if (nullptr == out)
    {
        PARAMETER_LOG_ERROR(logger, "ReadBuffer failed to allocate space for a string of %d length\n",
                            static_cast<int>(fieldSize));
    }
    else if (0 != outSize)
    {
        // Safe variant: the copy is also bounded by `out`, which a field wider than the
        // caller's array would otherwise overrun; what lands in `out` is the same.
        unsigned int available = (nullptr == buffer) ? 0u : Remaining(length, *pos);
        unsigned int copied    = Lesser(Lesser(available, fieldSize), outSize);
        if (0 != copied)
        {
            memcpy(out, buffer + *pos, copied);
        }
        out[outSize - 1] = '\0';
    }
    // Required: the field's width moves the position, not what was copied.
    *pos += static_cast<unsigned int>(PaddedSize(fieldSize, alignment));
    return nullptr != out;
}

char* ParameterUtils::ReadString(unsigned char const* buffer, unsigned int length, unsigned int* pos,
                                 unsigned int fieldSize, unsigned char alignment)
{
    if ((nullptr == buffer) || (nullptr == pos))
    {
        return nullptr;
    }
    unsigned int limit      = Lesser(Remaining(length, *pos), fieldSize);
    unsigned int characters = 0;
    while ((characters < limit) && ('\0' != buffer[*pos + characters]))
    {
        ++characters;
    }
    char* text =
        static_cast<char*>(OrvoCalloc(characters + 1u, 8, OrvoMemFlagsNone, OrvoMemTypeAny, __FILE__, __LINE__));
    if (nullptr == text)
    {
        return nullptr;
    }
    memcpy(text, buffer + *pos, characters);
    text[characters] = '\0';
    *pos += static_cast<unsigned int>(PaddedSize(fieldSize, alignment));
    return text;
}

bool ParameterUtils::ReadBuffer(unsigned char* out, unsigned char const* buffer, unsigned int length, unsigned int* pos,
                                unsigned int size, unsigned char alignment, IParameterLoggingAPI* logger)
{
    if (nullptr == buffer)
    {
        PARAMETER_LOG_ERROR(logger, "ReadBuffer called with nullptr buffer\n");
        return 0 == size;
    }
    if (nullptr == out)
    {
        PARAMETER_LOG_ERROR(logger, "ReadBuffer called with nullptr value\n");
        return 0 == size;
    }
    if (nullptr == pos)
    {
        PARAMETER_LOG_ERROR(logger, "ReadBuffer called with nullptr pos\n");
        return false;
    }
    unsigned int copied = Lesser(Remaining(length, *pos), size);
    if (0 != copied)
    {
        memcpy(out, buffer + *pos, copied);
    }
    *pos += static_cast<unsigned int>(PaddedSize(size, alignment));
    if (copied < size)
    {
        PARAMETER_LOG_ERROR(logger, "ReadBuffer failed, read %d bytes, expected %d bytes\n", static_cast<int>(copied),
                            static_cast<int>(size));
        return false;
    }
    return true;
}

bool ParameterUtils::WriteString(char const* text, unsigned char* buffer, unsigned int length, unsigned int* pos,
                                 bool includeNull, IParameterLoggingAPI* logger)
{
    if (nullptr == pos)
    {
        PARAMETER_LOG_ERROR(logger, "WriteString called with nullptr pos\n");
        return false;
    }
    size_t textLength = (nullptr == text) ? 0u : strlen(text);
    // Required: strictly below `length`, one byte more than the text and its terminator need.
    if ((nullptr == buffer) || (static_cast<uint64_t>(*pos) + textLength + 1u >= length))
    {
        if (nullptr == text)
        {
            PARAMETER_LOG_ERROR(logger, "Insufficient space in buffer to write string\n");
        }
        else
        {
            PARAMETER_LOG_ERROR(logger, "Insufficient space in buffer to write string: %s\n", text);
        }
        return false;
    }
    memcpy(buffer + *pos, (nullptr == text) ? "" : text, textLength + 1u);
    *pos += static_cast<unsigned int>(textLength + (includeNull ? 1u : 0u));
    return true;
}

int32_t ParameterUtils::GetStringPos(char const* text, char c)
{
    if (nullptr == text)
    {
        return -1;
    }
    for (int32_t index = 0; '\0' != text[index]; ++index)
    {
        if (c == text[index])
        {
            return index;
        }
    }
    return -1;
}

uint32_t ParameterUtils::GetSubString(char const* text, char delimiter, char* out, unsigned int outSize)
{
    if ((nullptr == text) || (nullptr == out) || (0 == outSize))
    {
        return 0;
    }
    uint32_t copied = 0;
    while ((copied + 1u < outSize) && ('\0' != text[copied]) && (delimiter != text[copied]))
    {
        out[copied] = text[copied];
        ++copied;
    }
    out[copied] = '\0';
    return copied;
}

uint32_t ParameterUtils::GetVariable(char const* path, char* name, unsigned int& index, unsigned long nameSize)
{
    char     local[129] = "";
    uint32_t used       = GetSubString(path, '.', local, sizeof(local));

    int32_t bracket = GetStringPos(local, '[');
    if (bracket >= 0)
    {
        char digits[10] = "";
        if ((static_cast<uint32_t>(bracket) + 1u < used) &&
            (0 != GetSubString(local + bracket + 1, ']', digits, sizeof(digits))))
        {
            bool   ignored = false;
            double number  = StringToDouble(digits, ignored);
            // Conversions to unsigned clamp: a negative number would be undefined.
            index = (number <= 0.0) ? 0u : static_cast<unsigned int>(number);
        }
        local[bracket] = '\0';
    }
    if (nullptr != name)
    {
        Orvo::OsUtils::StrLCpy(name, local, nameSize);
    }
    return ((0 != used) && ('.' == path[used])) ? used + 1u : used;
}
