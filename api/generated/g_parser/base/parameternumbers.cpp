// The store's number text. It avoids the standard library's conversions on purpose: the live
// tuning tool depends on exactly what these accept and print, rounding quirks included.
#include <cmath>
#include <cstring>

#include "parameterutils.h"

namespace
{
bool IsDigit(char c)
{
    return (c >= '0') && (c <= '9');
}

// The text of one digit. Digits are quotients of a remainder that may go slightly negative or
// reach 10, and are stored as they come; only a vanished scale (an infinite quotient) is
// clamped, so that the conversion stays defined.
char DigitCharacter(double digit)
{
    return static_cast<char>('0' + static_cast<int>(std::fmax(-47.0, std::fmin(79.0, digit))));
}

// Carries a round-up from the last character towards the first. `pointIndex` follows the
// text when the carry adds a leading "1". Returns the new length.
unsigned int RoundUp(char* buffer, unsigned int length, unsigned int size, unsigned int& pointIndex)
{
    for (unsigned int index = length; index-- > 0;)
    {
        if (index == pointIndex)
        {
            continue;
        }
        if ('9' != buffer[index])
        {
            // Required: blind to the sign, so a carry into "-" turns it into ".".
            ++buffer[index];
            return length;
        }
        if (index > pointIndex + 1)
        {
            length = index; // a carried "9" behind the first decimal place is dropped
        }
        else
        {
            buffer[index] = '0';
        }
    }
    if (length + 2 <= size)
    {
        memmove(buffer + 1, buffer, length);
        buffer[0] = '1';
        ++pointIndex;
        ++length;
    }
    return length;
}
} // namespace

double ParameterUtils::StringToDouble(char const* text, bool& success)
{
    success = false;
    if ((nullptr == text) || ('\0' == text[0]))
    {
        return 0.0;
    }

    int32_t minus      = GetStringPos(text, '-');
    int32_t point      = GetStringPos(text, '.');
    size_t  digitStart = (minus >= 0) ? static_cast<size_t>(minus) + 1u : 0u;
    size_t  pointOrEnd = (point >= 0) ? static_cast<size_t>(point) : strlen(text);
    double  scale      = std::pow(
              10.0, static_cast<double>(static_cast<long long>(pointOrEnd) - 1 - static_cast<long long>(digitStart)));

    success = true;
    if ('\0' == text[digitStart])
    {
        return -0.0; // required: a lone "-" is a valid negative zero
    }

    double value     = 0.0;
    bool   pointSeen = false;
    for (char const* cursor = text + digitStart; '\0' != *cursor; ++cursor)
    {
        if (('.' == *cursor) && !pointSeen)
        {
            pointSeen = true;
        }
        else if (IsDigit(*cursor))
        {
            value = std::fma(static_cast<double>(*cursor - '0'), scale, value);
            scale /= 10.0;
        }
        else
        {
            success = false;
            return 0.0;
        }
    }
    return (minus >= 0) ? -value : value;
}

void ParameterUtils::DoubleToString(double value, char* buffer, unsigned int size, unsigned int decimals,
                                    bool& complete)
{
    complete = false;
    if ((nullptr == buffer) || (0 == size))
    {
        return;
    }
    if (!std::isfinite(value))
    {
        buffer[0] = '\0'; // no text of the store's own: an empty one, which the parser refuses
        return;
    }

    unsigned int length    = 0;
    double       remainder = value;
    bool         negative  = value < 0.0;
    if (negative)
    {
        if (1 == size)
        {
            buffer[0] = '\0'; // safe variant: no room for the sign's terminator inside the buffer
            return;
        }
        buffer[length++] = '-';
        remainder        = -value;
    }

    double       scale         = 1.0;
    unsigned int integerDigits = 1;
    while (remainder / scale >= 10.0)
    {
        scale *= 10.0;
        ++integerDigits;
    }
    if (length + 2 > size)
    {
        buffer[length] = '\0';
        if (negative && (2 == size) && (remainder < 10.0))
        {
            complete = remainder <= 1.0; // required: this one early exit still reports
        }
        return;
    }

    unsigned int pointIndex      = UINT32_MAX;
    unsigned int digitsWritten   = 0;
    unsigned int decimalsWritten = 0;
    // A digit never goes into the last byte, so the buffer bounds the loop.
    while (length + 1 < size)
    {
        double digit     = std::trunc(remainder / scale);
        buffer[length++] = DigitCharacter(digit);
        remainder        = std::fma(-digit, scale, remainder);
        scale /= 10.0;
        ++digitsWritten;
        if (UINT32_MAX != pointIndex)
        {
            ++decimalsWritten;
        }
        else if ((digitsWritten == integerDigits) && (0 != decimals) && (length + 3 <= size))
        {
            pointIndex       = length;
            buffer[length++] = '.';
        }
        if (((0.0 == remainder) && (scale < 1.0)) || ((UINT32_MAX != pointIndex) && (decimalsWritten >= decimals)))
        {
            break;
        }
    }

    if (UINT32_MAX != pointIndex)
    {
        if ((0.0 != remainder) && (std::trunc(remainder / scale) >= 5.0))
        {
            length = RoundUp(buffer, length, size, pointIndex);
        }
        while ((length > pointIndex + 2) && ('0' == buffer[length - 1]))
        {
            --length;
        }
        if ((length == pointIndex + 1) && (length + 2 <= size))
        {
            buffer[length++] = '0';
        }
    }
    buffer[length] = '\0';
    complete       = remainder <= 1.0;
}
