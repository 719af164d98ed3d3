// ParameterFileSymbolTable: the index of a tuning file (symbol and data tables), its look-ups by
// entry number, and the sharing of objects decoded from duplicate entries.
#ifndef PARAMETERFILESYMBOLTABLE_H
#define PARAMETERFILESYMBOLTABLE_H

#include <cstdint>
#include <unordered_map>

#include "parameterfilesymboltableentry.h"
#include "parametermutex.h"
#include "parametertypes.h"
#include "pdlibvark_export.h"

class IModeTable;
class ModuleData;
class ParameterBinaryFile;
class ParameterSetManager;

/// In buffer mode the table's entries point into the caller's image and live only through the
/// load. In file mode only the look-up arrays stay, and Find re-reads an entry and its bytes
/// from the file. Without a data table (files below 4.0.0) the symbol table's entries, look-ups
/// and duplicate groups serve as the data table's.
class ParameterFileSymbolTable
{
public:
    /// The look-up element of one entry.
    struct EntryData
    {
        uint32_t duplicate; ///< duplicateId while reading, then the group number; 0 for none
        uint32_t offset;    ///< the record: from the image's start (buffer mode) or its section's (file mode)
    };

    using EntryView = SymbolTableEntryView;

    /// `modeId` of a symbol entry that is no module.
    static constexpr uint32_t NoModeId = 0xFFFFFFFF;

    ParameterFileSymbolTable(ParameterSetManager* setManager, VersionUnion const& version);
    ~ParameterFileSymbolTable();
    ParameterFileSymbolTable(ParameterFileSymbolTable const&)            = delete;
    ParameterFileSymbolTable& operator=(ParameterFileSymbolTable const&) = delete;

    /// Reads both tables. A non-null `file` makes the table file mode; it then owns `file`.
    bool Load(unsigned char* buffer, unsigned int length, char const* fileName, ParameterBinaryFile* file,
              unsigned int fileLength, unsigned int symbolSize, unsigned int symbolOffset, unsigned int dataTableSize,
              unsigned int dataTableOffset, unsigned int dataSize, unsigned int dataOffset, IModeTable* modeTable,
              unsigned char alignment);

    /// Reads `count` records of one table from `buffer` at `*pos` into `entries` and `lookup`
    /// (indexed by id), and numbers its duplicate groups.
    bool ReadTable(unsigned char* buffer, unsigned int length, unsigned int* pos, unsigned int count,
                   EntryView* entries, EntryData* lookup, unsigned int& duplicateCount, PList<DupObjInfo*>*& duplicates,
                   unsigned int dataOffset, IModeTable* modeTable, bool isSymbolTable, unsigned char alignment);

    /// Fills `entry` with entry `id` (1 to the count) of the symbol or the data table, at
    /// position 0.
    bool Find(ParameterFileSymbolTableEntry& entry, unsigned int id, bool isSymbolTable);

    /// Reads a 4-byte data-table id at `source`'s cursor, moves it by the greater of 4 and
    /// `alignment`, and finds that entry into `target`.
    bool ReadPointerEntry(ParameterFileSymbolTableEntry& target, ParameterFileSymbolTableEntry* source,
                          unsigned char alignment);

    /// Bytes per symbol record by which the section size is divided (76 at alignment 8, where a
    /// record takes 72: the section holds 4 spare bytes per record at its end, as required).
    unsigned int GetSymbolEntrySize(unsigned char alignment) const;
    unsigned int GetDataTableEntrySize() const;
    unsigned int GetModeEntrySize(unsigned char alignment) const;

    /// The alignment with which modules read their data: the file's in buffer mode, and
    /// m_alignment (always 1) for the re-reads of file mode, which so serves alignment-1 files
    /// only.
    unsigned char GetDataAlignment() const { return m_fileMode ? m_alignment : m_loadAlignment; }

    /// Adds `adjust` to the file's count of users, which opens and closes it.
    void FileReference(int adjust);

    /// Whether this table's manager is inside the load that makes it, alone with it.
    bool LoadingAlone() const;
    /// The record of a shared object, or null. Callers hold m_dupLock.
    DupObjInfo* FindDupObject(void* object);
    /// The record of (group of `id`, call site, `count`), with its count of holders raised when
    /// it holds an object. Null when the entry is in no group or nothing fits.
    DupObjInfo* GetDupObject(bool isModule, unsigned int id, unsigned int count, char const* file, unsigned int line);
    /// Shares `object` under that key. Null when the key already holds an object (the caller's
    /// stays private) or the entry is in no group.
    DupObjInfo* SetDupObject(bool isModule, unsigned int id, void* object, unsigned int count, char const* file,
                             unsigned int line);
    /// Drops one holder of `object`. True when the caller may free it: it held the last
    /// reference, or the object was never shared.
    bool ReleaseDupObject(void* object);

    /// Drop the entry and the look-up arrays; the data table's first when it is a separate one.
    void FreeEntryData();
    void FreeLookupData();

    ParameterSetManager*                   m_setManager = nullptr; ///< owner, logger and lock
    VersionUnion                           m_version;
    VersionUnion                           m_versionDuplicateId; ///< 3.0.1: table records carry duplicateId above it
    VersionUnion                           m_versionModeFlags;   ///< 5.0.0
    VersionUnion                           m_versionLinkId;      ///< 2.0.0
    VersionUnion                           m_versionDataTable;   ///< 4.0.0
    char const*                            m_fileName        = nullptr; ///< the manager's; null in buffer mode
    ParameterBinaryFile*                   m_file            = nullptr; ///< owned; null in buffer mode
    uint32_t                               m_fileLength      = 0;
    uint32_t                               m_symbolSize      = 0;
    uint32_t                               m_symbolOffset    = 0;
    uint32_t                               m_dataTableSize   = 0;
    uint32_t                               m_dataTableOffset = 0;
    uint32_t                               m_dataOffset      = 0;
    uint32_t                               m_dataSize        = 0;
    unsigned char*                         m_data = nullptr; ///< buffer mode: the data section, during the load only
    IModeTable*                            m_modeTable   = nullptr;
    uint8_t                                m_alignment   = 1; ///< never changed: file mode reads at alignment 1
    uint32_t                               m_symbolCount = 0;
    uint32_t                               m_dataCount   = 0;
    PList<ModuleData*>                     m_modules;                    ///< owned; every module entry, in id order
    EntryData*                             m_symbolLookup     = nullptr; ///< owned
    EntryData*                             m_dataLookup       = nullptr; ///< owned; may be m_symbolLookup
    PList<DupObjInfo*>*                    m_symbolDuplicates = nullptr; ///< owned; one list per group, slot 0 unused
    PList<DupObjInfo*>*                    m_dataDuplicates   = nullptr; ///< owned; may be m_symbolDuplicates
    uint32_t                               m_symbolDuplicateCount = 0;   ///< groups plus 1
    uint32_t                               m_dataDuplicateCount   = 0;
    bool                                   m_fileMode             = false;
    EntryView*                             m_symbolEntries        = nullptr; ///< owned; null after FreeEntryData
    EntryView*                             m_dataEntries          = nullptr; ///< owned; may be m_symbolEntries
    ParameterMutex                         m_dupLock;
    std::unordered_map<void*, DupObjInfo*> m_dupObjects; ///< live shared objects

private:
    bool HasDataTable() const { return (0 != m_dataTableSize) && (0 != m_dataTableOffset); }
    /// Allocates the entry and look-up arrays of both tables.
    bool AllocateTables();
    /// Reads one table from the image (buffer mode) or from its section of the file.
    bool ReadSection(unsigned char* buffer, unsigned int length, unsigned int offset, unsigned int size,
                     bool isSymbolTable, unsigned char alignment);
    /// The look-up and the duplicate groups of the symbol (`isModule`) or the data side.
    struct DupSide
    {
        EntryData*          lookup;
        uint32_t            lookupCount;
        PList<DupObjInfo*>* groups;
        uint32_t            groupCount;
    };
    DupSide SideOf(bool isModule) const;

    uint8_t m_loadAlignment = 1; ///< the file's, for reads of module data in buffer mode
};

#endif // PARAMETERFILESYMBOLTABLE_H
