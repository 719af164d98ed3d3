// ParameterFileSymbolTableEntry: one entry of a tuning file's symbol or data table, and the
// cursor over its bytes from which generated records read themselves.
#ifndef PARAMETERFILESYMBOLTABLEENTRY_H
#define PARAMETERFILESYMBOLTABLEENTRY_H

#include <cstdint>
#include <cstring>

#include "parametertypes.h"
#include "pdlibvark_export.h"

class IModeTable;
class IParameterLoggingAPI;
class ModuleData;
class ParameterBinaryFile;
class ParameterFileSymbolTable;
class ParameterSetManager;

/// What a table's entry array keeps of one entry while it lives: the fields as the table read
/// them, without the entry object, since a large file has hundreds of thousands of entries.
struct SymbolTableEntryView
{
    unsigned char* data        = nullptr;
    uint32_t       length      = 0;
    uint32_t       duplicateId = 0;
    bool           read        = false; ///< false: no record of this id was read
};

/// An entry owns its bytes only when it read them from the file (m_fileName set), and its
/// ModuleData while it holds one. The table's own arrays never own anything; Find hands out
/// copies of their entries. Entries are not copyable otherwise.
class ParameterFileSymbolTableEntry
{
public:
    ParameterFileSymbolTableEntry() = default;
    ~ParameterFileSymbolTableEntry();
    ParameterFileSymbolTableEntry(ParameterFileSymbolTableEntry const&)            = delete;
    ParameterFileSymbolTableEntry& operator=(ParameterFileSymbolTableEntry const&) = delete;

    /// Ties the entry to `table` and clears the cursor (and whatever the entry owned).
    void Init(ParameterFileSymbolTable* table);

    /// Parses one record at `*pos`. Without `file` the record is read from `buffer` (of
    /// `length` bytes) and the entry's bytes are found in `buffer` at `dataOffset` plus the
    /// record's offset; `*pos` then moves past the record. With `file` the record is read from
    /// the table's section at `*pos`, and the entry's bytes from the file into an owned block.
    /// A symbol record with a mode gets a ModuleData, owned by the entry.
    bool Load(unsigned char* buffer, char const* fileName, ParameterBinaryFile* file, unsigned int length,
              unsigned int* pos, unsigned int dataOffset, IModeTable* modeTable, bool isSymbolTable,
              unsigned char alignment);

    /// The next 4-byte value, moving by the greater of 4 and `alignment`. Without bytes it
    /// returns 0 and leaves `*success`; a short entry sets it false.
    uint32_t ReadEnum(bool* success, unsigned char alignment);

    /// A string of `length` characters at the cursor, shared through the table's duplicate
    /// objects. The caller gives it back through ReleaseDupObject and frees it on true.
    bool ReadString(char** out, unsigned int length, unsigned char alignment);

    /// The inline read of one scalar by generated records: copies `width` bytes at the cursor
    /// when they lie within the entry, and moves the cursor by the greater of `width` and
    /// `alignment`. False, with nothing read or moved, for a null entry, no bytes or too few.
    static bool ReadInline(ParameterFileSymbolTableEntry* entry, void* value, unsigned int width,
                           unsigned char alignment)
    {
        if ((nullptr == entry) || (nullptr == entry->m_data) ||
            (static_cast<uint64_t>(entry->m_position) + width > entry->m_length))
        {
            return false;
        }
        memcpy(value, entry->m_data + entry->m_position, width);
        entry->m_position += (width > alignment) ? width : alignment;
        return true;
    }

    /// Where generated code logs about an entry: its set manager, or the null logger.
    static IParameterLoggingAPI* LoggerOf(ParameterFileSymbolTableEntry const* entry);

    /// The table's dup-object service for this entry's duplicate group.
    DupObjInfo* GetDupObject(unsigned int count, char const* file, unsigned int line);
    DupObjInfo* SetDupObject(void* object, unsigned int count, char const* file, unsigned int line);

    ParameterFileSymbolTable* m_table       = nullptr;
    ParameterSetManager*      m_setManager  = nullptr; ///< logger of generated code
    uint32_t                  m_id          = 0;
    uint32_t                  m_duplicateId = 0;
    unsigned char*            m_data        = nullptr; ///< the entry's bytes
    char const*               m_fileName    = nullptr; ///< set: m_data came from the file and is owned
    uint32_t                  m_spare       = 0;       ///< kept zero; holds the record's layout
    uint32_t                  m_position    = 0;       ///< read cursor in m_data
    uint32_t                  m_length      = 0;       ///< bytes in m_data
    ModuleData*               m_moduleData  = nullptr; ///< owned while set

private:
    friend class ParameterFileSymbolTable;

    /// Find's copy of entry `id` of a table's entry array, at position 0: tied to `table`, or
    /// to none when no record of the id was read. It owns nothing.
    void CopyFrom(SymbolTableEntryView const& view, uint32_t id, ParameterFileSymbolTable* table);
    /// Frees what the entry owns and forgets it.
    void ReleaseOwned();
    /// Reads the fields of one record from `record`; false on a short record.
    bool ReadFields(unsigned char const* record, unsigned int length, unsigned int* pos, IModeTable* modeTable,
                    bool isSymbolTable, unsigned char alignment, uint32_t* dataOffset);
};

#endif // PARAMETERFILESYMBOLTABLEENTRY_H
