// What generated module code calls besides the store's own operations: the in-line scalar read,
// and the steps of strings, lists and optional members that every record repeats. The emitter of
// tools/modulegen writes calls to exactly these: the two change together.
#ifndef PARAMETERMODULESUPPORT_H
#define PARAMETERMODULESUPPORT_H

#include <cstdint>
#include <cstring>

#include "orvomem.h"
#include "parameterfilesymboltable.h"
#include "parameterfilesymboltableentry.h"
#include "parameterlogging.h"
#include "parametersetmanager.h"
#include "parameterutils.h"

/// The allocation tags of generated code; they are part of each OrvoCalloc and OrvoFree call.
namespace ParameterModuleTag
{
constexpr uint32_t Object = 9;  ///< an object of a class or a list node
constexpr uint32_t Array  = 13; ///< arrays and strings
constexpr uint32_t Free   = 20; ///< every other free
} // namespace ParameterModuleTag

/// The parser's banner, which every generated set manager logs when it is constructed.
constexpr char const* ParameterParserVersion = "Parameter Parser V5.5.1 (2411131018)";

/// Reads the scalar `member` at the cursor of `entry` in line (a bounds check and a copy, then
/// the cursor moves by the larger of the width and `alignment`). A scalar that cannot be read,
/// or is not tried because `result` is already false, logs a line of its own: each use of the
/// macro is its own source line, so that a failure shows which member it hit.
#define PARAMETER_LOAD_SCALAR(result, entry, member, alignment)                                                        \
    do                                                                                                                 \
    {                                                                                                                  \
        if (!((result) && ParameterFileSymbolTableEntry::ReadInline((entry), &(member), sizeof(member), (alignment)))) \
        {                                                                                                              \
            (result) = false;                                                                                          \
            PARAMETER_LOG_ERROR(ParameterFileSymbolTableEntry::LoggerOf(entry),                                        \
                                "Failed to read symbol table entry\n");                                                \
        }                                                                                                              \
    } while (false)

/// The steps of generated Load and Unload functions beyond single scalars. All are straight
/// code: no table and no name is looked at. `file` and `line` name the member that calls
/// (its place in the generated source): with the entry's duplicate group they key the blocks
/// that records share, so that two members that decode the same bytes as different types
/// never share.
class ParameterRecordLoader
{
public:
    /// The number at the cursor for a ReadEnum_ function; false when it cannot be read.
    static bool ReadEnumNumber(ParameterFileSymbolTableEntry* entry, unsigned char alignment, uint32_t& number);

    /// Logs that `number` is no value of the enum `enumName` (with its enclosing records).
    static void ReportInvalidEnum(ParameterFileSymbolTableEntry const* entry, uint32_t number, char const* enumName);

    /// A fixed scalar array of `size` bytes at the cursor, into `values` (zeroed before). An
    /// entry without data fails without a line; a short read logs and keeps what it copied.
    static bool ReadArray(ParameterFileSymbolTableEntry* entry, unsigned char alignment, void* values,
                          unsigned int size);

    /// The pointer entry whose id is at the cursor of `entry`, into `local`.
    static bool OpenPointerEntry(ParameterFileSymbolTableEntry* entry, unsigned char alignment,
                                 ParameterFileSymbolTableEntry& local);

    /// The value entry of an optional member, whose flag was just read from `entry`; `id`
    /// takes the id of `entry` itself.
    static bool OpenOptional(ParameterFileSymbolTableEntry* entry, unsigned char alignment, uint32_t& id,
                             ParameterFileSymbolTableEntry& local);

    /// The characters of a string member whose `length` was just read: shared through the
    /// duplicate objects of the file.
    static bool LoadString(ParameterFileSymbolTableEntry* entry, unsigned char alignment, uint32_t length, char*& text);

    /// A repeated record member whose `count` was just read. `T` has Load and MinimumDataSize.
    template <typename T>
    static bool LoadRecordList(ParameterFileSymbolTableEntry* entry, unsigned char alignment, uint32_t& count,
                               uint32_t& id, T*& elements, char const* file, unsigned int line, char const* name)
    {
        ParameterFileSymbolTableEntry local;
        void*                         block        = nullptr;
        bool                          loadElements = false;
        bool result = StartList(entry, alignment, count, id, block, sizeof(T), T::MinimumDataSize, local, file, line,
                                name, &loadElements);
        elements    = static_cast<T*>(block);
        if (loadElements)
        {
            for (uint32_t index = 0; result && (index < count); ++index)
            {
                result = elements[index].Load(&local, alignment);
            }
        }
        return FinishList(result, count, block);
    }

    /// A repeated enum member; `readEnum` is the enum's ReadEnum_ function.
    template <typename E>
    static bool LoadEnumList(ParameterFileSymbolTableEntry* entry, unsigned char alignment, uint32_t& count,
                             uint32_t& id, E*&                                                                elements,
                             bool (*readEnum)(ParameterFileSymbolTableEntry*, E&, unsigned char), char const* file,
                             unsigned int line, char const* name)
    {
        ParameterFileSymbolTableEntry local;
        void*                         block        = nullptr;
        bool                          loadElements = false;
        bool result = StartList(entry, alignment, count, id, block, sizeof(E), EnumDataSize, local, file, line, name,
                                &loadElements);
        elements    = static_cast<E*>(block);
        if (loadElements)
        {
            for (uint32_t index = 0; result && (index < count); ++index)
            {
                result = readEnum(&local, elements[index], alignment);
            }
        }
        return FinishList(result, count, block);
    }

    /// A repeated string member: each element is a length and a pointer entry of its own.
    static bool LoadStringList(ParameterFileSymbolTableEntry* entry, unsigned char alignment, uint32_t& count,
                               uint32_t& id, char**& elements, char const* file, unsigned int line, char const* name);

    /// A repeated scalar member: one block read from the pointer entry. Such a block is never
    /// registered for sharing, so each record has its own copy; a short read leaves the list
    /// empty and the load going on.
    template <typename T>
    static bool LoadScalarList(ParameterFileSymbolTableEntry* entry, unsigned char alignment, uint32_t& count,
                               uint32_t& id, T*& elements, char const* file, unsigned int line, char const* name)
    {
        void* block  = nullptr;
        bool  result = LoadBlock(entry, alignment, count, id, block, sizeof(T), file, line, name);
        elements     = static_cast<T*>(block);
        return result;
    }

    /// Gives back a string or a list whose elements own nothing: freed when this was its last
    /// holder, forgotten in any case. Without a table nothing is freed.
    template <typename T>
    static void ReleaseBlock(ParameterFileSymbolTable* table, T*& block)
    {
        if (IsLastHolder(table, block))
        {
            OrvoFree(block, ParameterModuleTag::Free, nullptr, 0);
        }
        block = nullptr;
    }

    /// Gives back a list of records that own memory. Safe variant: the elements are unloaded by
    /// the last holder of a shared list only; unloading them for every holder would leave the
    /// others with freed strings and lists in elements they still read.
    template <typename T>
    static void ReleaseRecordList(ParameterFileSymbolTable* table, T*& elements, uint32_t count)
    {
        if (IsLastHolder(table, elements))
        {
            for (uint32_t index = 0; index < count; ++index)
            {
                elements[index].Unload(table);
            }
            OrvoFree(elements, ParameterModuleTag::Free, nullptr, 0);
        }
        elements = nullptr;
    }

    /// Gives back a list of strings, the same way.
    static void ReleaseStringList(ParameterFileSymbolTable* table, char**& elements, uint32_t count);

private:
    /// Bytes that one enum takes in a file at least.
    static constexpr unsigned int EnumDataSize = 4;

    /// Pointer entry, id, then a block shared by an earlier record or a new one registered for
    /// sharing. `*loadElements` is set when the caller is to load the new block's elements
    /// from `local`.
    static bool StartList(ParameterFileSymbolTableEntry* entry, unsigned char alignment, uint32_t& count, uint32_t& id,
                          void*& block, size_t elementSize, unsigned int minimumDataSize,
                          ParameterFileSymbolTableEntry& local, char const* file, unsigned int line, char const* name,
                          bool* loadElements);

    /// A null list has no elements, whatever the file said.
    static bool FinishList(bool result, uint32_t& count, void const* block)
    {
        if (nullptr == block)
        {
            count = 0;
        }
        return result;
    }

    static bool LoadBlock(ParameterFileSymbolTableEntry* entry, unsigned char alignment, uint32_t& count, uint32_t& id,
                          void*& block, size_t elementSize, char const* file, unsigned int line, char const* name);

    static bool IsLastHolder(ParameterFileSymbolTable* table, void* block);
};

#endif // PARAMETERMODULESUPPORT_H
