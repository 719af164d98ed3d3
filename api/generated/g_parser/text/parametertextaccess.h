// What the text access of generated tuning records calls: the step along a value path, and
// numbers to and from the store's own text, element by element.
#ifndef PARAMETERTEXTACCESS_H
#define PARAMETERTEXTACCESS_H

#include <cstdint>
#include <cstring>
#include <type_traits>

#include "parameterparserinfo.h"
#include "parameterutils.h"

/// One component "name[index]" of a value path, and the path that follows it.
struct ParameterPathStep
{
    /// A null or empty path gives an empty name.
    explicit ParameterPathStep(char const* path);

    bool Is(char const* member) const { return 0 == strcmp(name, member); }
    bool IsEmpty() const { return '\0' == name[0]; }

    static constexpr unsigned int NoIndex = 0xFFFFFFFF;

    char         name[129] = {};
    unsigned int index     = NoIndex;
    char const*  rest      = nullptr; ///< behind the component and its '.'
};

/// Values of record members as text, in the store's number forms: whole numbers and enums
/// without decimals, floating-point values with up to 10.
class ParameterTextAccess
{
public:
    /// Prints a scalar or enum into `out`; always true, a value cut at `size` included.
    template <typename T>
    static bool Print(T value, char* out, unsigned int size)
    {
        bool complete = false;
        ParameterUtils::DoubleToString(ToDouble(value), out, size, DecimalsOf<T>(), complete);
        return true;
    }

    /// Copies a text member; a null one is empty.
    static bool PrintText(char const* text, char* out, unsigned int size);

    /// Element `index` when it is below `count`; otherwise all elements joined by ",", as far
    /// as `size` allows.
    template <typename T>
    static bool PrintArray(T const* values, uint32_t count, unsigned int index, char* out, unsigned int size)
    {
        if ((nullptr != values) && (index < count))
        {
            return Print(values[index], out, size);
        }
        StartText(out, size);
        for (uint32_t element = 0; (nullptr != values) && (element < count); ++element)
        {
            char text[ElementText] = "";
            Print(values[element], text, sizeof(text));
            AppendElement(out, size, element, text);
        }
        return true;
    }

    static bool PrintTextArray(char* const* values, uint32_t count, unsigned int index, char* out, unsigned int size);

    /// Stores the number of `text` into `target` when it parses; the result says whether it did.
    template <typename T>
    static bool Parse(T& target, char const* text)
    {
        bool   success = false;
        double number  = ParameterUtils::StringToDouble(text, success);
        if (success)
        {
            target = FromDouble<T>(number);
        }
        return success;
    }

    /// Element `index` when it is below `count`. Otherwise `text` is cut at its commas and each
    /// piece that parses is stored, up to `count` pieces; true whatever pieces failed.
    template <typename T>
    static bool ParseArray(T* values, uint32_t count, unsigned int index, char const* text)
    {
        if ((nullptr != values) && (index < count))
        {
            return Parse(values[index], text);
        }
        char const* cursor = text;
        for (uint32_t element = 0; (nullptr != values) && (nullptr != cursor) && (element < count); ++element)
        {
            char piece[PieceText] = "";
            cursor                = NextPiece(cursor, piece, sizeof(piece));
            Parse(values[element], piece);
        }
        return true;
    }

private:
    static constexpr unsigned int ElementText = 65;  ///< one printed element
    static constexpr unsigned int PieceText   = 129; ///< one comma-separated piece

    static void StartText(char* out, unsigned int size);
    static void AppendElement(char* out, unsigned int size, uint32_t element, char const* text);
    /// Copies the piece at `cursor` up to its comma; the start of the next piece, or null at
    /// the end of the text.
    static char const* NextPiece(char const* cursor, char* piece, unsigned int size);

    template <typename T>
    static double ToDouble(T value)
    {
        if constexpr (std::is_enum<T>::value)
        {
            return static_cast<double>(static_cast<std::underlying_type_t<T>>(value));
        }
        else
        {
            return static_cast<double>(value);
        }
    }

    template <typename T>
    static constexpr unsigned int DecimalsOf()
    {
        return std::is_floating_point<T>::value ? 10u : 0u;
    }

    /// The conversion clamps to the member's range, as the device's conversion instructions
    /// do; the language leaves a value out of range undefined.
    template <typename T>
    static T FromDouble(double number)
    {
        if constexpr (std::is_enum<T>::value)
        {
            return static_cast<T>(ParameterUtils::NumberAs<std::underlying_type_t<T>>(number));
        }
        else
        {
            return ParameterUtils::NumberAs<T>(number);
        }
    }
};

#endif // PARAMETERTEXTACCESS_H
