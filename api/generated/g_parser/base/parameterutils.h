// ParameterUtils: the store's byte-level readers of file images and its own small path and
// number text. This unit also carries the store's logging, lock and binary file (included
// below), so that one include gives a store source all of its utilities.
#ifndef PARAMETERUTILS_H
#define PARAMETERUTILS_H

#include <cstdint>
#include <cstring>
#include <limits>

#include "parameterlogging.h"
#include "parametermutex.h"
#include "pdlibvark_export.h"

/// All members are static. Positions are byte offsets into a buffer of `length` bytes; a field
/// of `size` bytes moves a position by PaddedSize(size, alignment) unless stated otherwise.
/// The number text is the store's own, not the standard library's: the live tuning tool
/// depends on exactly what it accepts and prints.
class PDLIBVARK_API ParameterUtils
{
public:
    /// `size` rounded up to a multiple of `alignment` (0 counts as 1).
    static unsigned long PaddedSize(unsigned long size, unsigned char alignment)
    {
        unsigned long step = (0 == alignment) ? 1u : alignment;
        unsigned long rest = size % step;
        return (0 == rest) ? size : size + (step - rest);
    }

    /// Reads one scalar, unaligned, and moves `*pos` by the greater of its size and
    /// `alignment` (unlike the field readers below, which pad). Fails without moving when
    /// the value does not fit before `length`.
    template <typename T>
    static bool Read(T* out, unsigned char const* buffer, unsigned int length, unsigned int* pos,
                     unsigned char alignment = 1)
    {
        unsigned int position = (nullptr == pos) ? 0u : *pos;
        if ((nullptr == out) || (nullptr == buffer) || (nullptr == pos) ||
            (static_cast<uint64_t>(position) + sizeof(T) > length))
        {
            PARAMETER_LOG_ERROR(nullptr, "Failed to read %lld bytes from binary file offset %d, length %d\n",
                                static_cast<long long>(sizeof(T)), static_cast<int>(position),
                                static_cast<int>(length));
            return false;
        }
        memcpy(static_cast<void*>(out), buffer + position, sizeof(T));
        *pos += (sizeof(T) > alignment) ? static_cast<unsigned int>(sizeof(T)) : alignment;
        return true;
    }

    /// Stores one scalar, unaligned, and moves `*pos` by its size. Fails without moving when
    /// the value does not fit before `length`.
    template <typename T>
    static bool Write(T const& value, unsigned char* buffer, unsigned int length, unsigned int* pos)
    {
        unsigned int position = (nullptr == pos) ? 0u : *pos;
        if ((nullptr == buffer) || (nullptr == pos) || (static_cast<uint64_t>(position) + sizeof(T) > length))
        {
            PARAMETER_LOG_ERROR(nullptr, "Failed to write %lld bytes to binary offset %d, length %d\n",
                                static_cast<long long>(sizeof(T)), static_cast<int>(position),
                                static_cast<int>(length));
            return false;
        }
        memcpy(buffer + position, &value, sizeof(T));
        *pos += static_cast<unsigned int>(sizeof(T));
        return true;
    }

    /// Copies a fixed-width string field into `out` (of `outSize`, normally fieldSize + 1) and
    /// terminates it at out[outSize - 1]. The position moves by the padded `fieldSize` even
    /// when `out` is null; the result is whether `out` was given.
    static bool ReadString(char* out, unsigned char const* buffer, unsigned int length, unsigned int* pos,
                           unsigned int outSize, unsigned int fieldSize, unsigned char alignment,
                           IParameterLoggingAPI* logger);

    /// A fixed-width string field as a new string from OrvoCalloc (the caller frees it with
    /// OrvoFree): up to the first zero byte, `fieldSize` or the end of the buffer. Null, with
    /// the position unmoved, for a null buffer or a failed allocation.
    static char* ReadString(unsigned char const* buffer, unsigned int length, unsigned int* pos, unsigned int fieldSize,
                            unsigned char alignment);

    /// Copies `size` raw bytes, or what is left of the buffer; the position moves by the
    /// padded `size` either way, and a short copy is false.
    static bool ReadBuffer(unsigned char* out, unsigned char const* buffer, unsigned int length, unsigned int* pos,
                           unsigned int size, unsigned char alignment, IParameterLoggingAPI* logger);

    /// Appends `text` with its terminator when it fits strictly before `length`; the position
    /// moves past the text, and past the terminator only with `includeNull`.
    static bool WriteString(char const* text, unsigned char* buffer, unsigned int length, unsigned int* pos,
                            bool includeNull, IParameterLoggingAPI* logger);

    /// Index of the first `c` in `text`; -1 for none, a null or an empty text.
    static int32_t GetStringPos(char const* text, char c);

    /// Copies `text` up to `delimiter`, its end or outSize - 1 characters, terminated; the
    /// result counts the characters copied. `out` is untouched for bad arguments.
    static uint32_t GetSubString(char const* text, char delimiter, char* out, unsigned int outSize);

    /// The store's number parser: digits with an optional "-" and one ".". No exponent,
    /// spaces, plus sign or locale. Anything ahead of the first "-" is skipped unexamined.
    static double StringToDouble(char const* text, bool& success);

    /// Reads one component `name[index]` of a value path such as "tab[3].member" into `name`
    /// and `index` (left alone without a usable bracket); returns the characters used up,
    /// including a following ".".
    static uint32_t GetVariable(char const* path, char* name, unsigned int& index, unsigned long nameSize);

    /// A number for a member of type T, truncated toward zero and clamped to T's range (NaN
    /// gives 0): generated SetValue stores through it, as a plain conversion of a value beyond
    /// the range is undefined.
    template <typename T>
    static T NumberAs(double value)
    {
        if (value != value)
        {
            return T(0);
        }
        double lowest  = static_cast<double>(std::numeric_limits<T>::lowest());
        double highest = static_cast<double>(std::numeric_limits<T>::max());
        if (value <= lowest)
        {
            return std::numeric_limits<T>::lowest();
        }
        if (value >= highest)
        {
            return std::numeric_limits<T>::max();
        }
        return static_cast<T>(value);
    }

    /// The store's number printer, with at most `decimals` digits behind the point. `complete`
    /// says whether the whole value was printed. With `decimals` 0 no point is written, so
    /// callers use it for whole numbers only.
    static void DoubleToString(double value, char* buffer, unsigned int size, unsigned int decimals, bool& complete);
};

#include "parameterbinaryfile.h"

#endif // PARAMETERUTILS_H
