#include "parameterfilesymboltable.h"

#include <memory>

#include <new>

#include "orvomem.h"
#include "parametermodule.h"
#include "parametersetmanager.h"
#include "parameterutils.h"

namespace
{
// The records of every duplicate group, then the groups' lists.
void FreeGroups(PList<DupObjInfo*>* groups, uint32_t groupCount)
{
    for (uint32_t group = 0; (nullptr != groups) && (group < groupCount); ++group)
    {
        for (uint32_t index = 0; index < groups[group].count; ++index)
        {
            delete groups[group][index];
        }
    }
    delete[] groups;
}
} // namespace

ParameterFileSymbolTable::ParameterFileSymbolTable(ParameterSetManager* setManager, VersionUnion const& version)
    : m_setManager(setManager), m_version(version), m_versionDuplicateId(3, 0, 1), m_versionModeFlags(5, 0, 0),
      m_versionLinkId(2, 0, 0), m_versionDataTable(4, 0, 0)
{
}

ParameterFileSymbolTable::~ParameterFileSymbolTable()
{
    FreeEntryData();
    FreeGroups(m_symbolDuplicates, m_symbolDuplicateCount);
    if (m_dataDuplicates != m_symbolDuplicates)
    {
        FreeGroups(m_dataDuplicates, m_dataDuplicateCount);
    }
    FreeLookupData();
    for (uint32_t index = 0; index < m_modules.count; ++index)
    {
        delete m_modules[index];
    }
    if (!m_dupObjects.empty())
    {
        PARAMETER_LOG_ERROR(m_setManager, "%d DupInfo object were not released\n",
                            static_cast<int>(m_dupObjects.size()));
    }
    delete m_file;
}

unsigned int ParameterFileSymbolTable::GetSymbolEntrySize(unsigned char alignment) const
{
    if (m_version > m_versionDuplicateId)
    {
        return 60;
    }
    if (1 != alignment)
    {
        return 76;
    }
    return (m_version < m_versionDuplicateId) ? 64 : 56;
}

unsigned int ParameterFileSymbolTable::GetDataTableEntrySize() const
{
    return (m_version >= m_versionDataTable) ? 16 : 0;
}

unsigned int ParameterFileSymbolTable::GetModeEntrySize(unsigned char alignment) const
{
    if (1 == alignment)
    {
        if (m_version < m_versionDuplicateId)
        {
            return 16;
        }
        return (m_version < m_versionModeFlags) ? 20 : 24;
    }
    return (m_version < m_versionLinkId) ? 24 : 32;
}

bool ParameterFileSymbolTable::AllocateTables()
{
    m_symbolEntries = new (std::nothrow) EntryView[m_symbolCount + 1u];
    m_symbolLookup  = new (std::nothrow) EntryData[m_symbolCount + 1u]();
    if (HasDataTable())
    {
        m_dataEntries = new (std::nothrow) EntryView[m_dataCount + 1u];
        m_dataLookup  = new (std::nothrow) EntryData[m_dataCount + 1u]();
    }
    else
    {
        m_dataEntries = m_symbolEntries;
        m_dataLookup  = m_symbolLookup;
        m_dataCount   = m_symbolCount;
    }
    if ((nullptr == m_symbolEntries) || (nullptr == m_symbolLookup) || (nullptr == m_dataEntries) ||
        (nullptr == m_dataLookup))
    {
        PARAMETER_LOG_ERROR(m_setManager, "Failed to allocate entry/lookup tables\n");
        return false;
    }
    return true;
}

bool ParameterFileSymbolTable::ReadSection(unsigned char* buffer, unsigned int length, unsigned int offset,
                                           unsigned int size, bool isSymbolTable, unsigned char alignment)
{
    unsigned int         count      = isSymbolTable ? m_symbolCount : m_dataCount;
    EntryView*           entries    = isSymbolTable ? m_symbolEntries : m_dataEntries;
    EntryData*           lookup     = isSymbolTable ? m_symbolLookup : m_dataLookup;
    unsigned int&        groupCount = isSymbolTable ? m_symbolDuplicateCount : m_dataDuplicateCount;
    PList<DupObjInfo*>*& groups     = isSymbolTable ? m_symbolDuplicates : m_dataDuplicates;

    bool success = false;
    if (!m_fileMode)
    {
        unsigned int pos = offset;
        success = ReadTable(buffer, length, &pos, count, entries, lookup, groupCount, groups, m_dataOffset, m_modeTable,
                            isSymbolTable, alignment);
    }
    else
    {
        unsigned char* section = m_file->Read(offset, size);
        if (nullptr == section)
        {
            // Required: the data-table form prints the symbol table's offset and size too.
            PARAMETER_LOG_ERROR(m_setManager,
                                isSymbolTable ? "Failed to read symbol table buffer (offset: %d, size: %d) from binary "
                                                "file\n"
                                              : "Failed to read data table buffer (offset: %d, size: %d) from binary "
                                                "file\n",
                                m_symbolOffset, m_symbolSize);
            return false;
        }
        unsigned int pos = 0;
        success = ReadTable(section, size, &pos, count, entries, lookup, groupCount, groups, m_dataOffset, m_modeTable,
                            isSymbolTable, alignment);
        OrvoFree(section, OrvoMemFlagsNone, __FILE__, __LINE__);
    }
    if (!success)
    {
        PARAMETER_LOG_ERROR(m_setManager, isSymbolTable ? "Failed to read symbol table from binary file\n"
                                                        : "Failed to read data table from binary file\n");
    }
    return success;
}

bool ParameterFileSymbolTable::Load(unsigned char* buffer, unsigned int length, char const* fileName,
                                    ParameterBinaryFile* file, unsigned int fileLength, unsigned int symbolSize,
                                    unsigned int symbolOffset, unsigned int dataTableSize, unsigned int dataTableOffset,
                                    unsigned int dataSize, unsigned int dataOffset, IModeTable* modeTable,
                                    unsigned char alignment)
{
    unsigned int symbolEntrySize = GetSymbolEntrySize(alignment);
    m_symbolCount                = symbolSize / symbolEntrySize;
    if (0 != symbolSize % symbolEntrySize)
    {
        PARAMETER_LOG_ERROR(m_setManager, "Invalid symbol table size: %d, expected: %d\n", symbolSize,
                            m_symbolCount * symbolEntrySize);
        return false;
    }
    if ((0 != dataTableSize) && (0 != dataTableOffset))
    {
        unsigned int dataEntrySize = GetDataTableEntrySize();
        if (0 == dataEntrySize)
        {
            PARAMETER_LOG_ERROR(m_setManager, "Data table entry size is zero\n");
            m_dataCount = 0;
        }
        else
        {
            m_dataCount = dataTableSize / dataEntrySize;
            if (0 != dataTableSize % dataEntrySize)
            {
                PARAMETER_LOG_ERROR(m_setManager, "Invalid data table size: %d, expected: %d\n", dataTableSize,
                                    m_dataCount * dataEntrySize);
                return false;
            }
        }
    }

    // Safe variant: tables and data must lie within the file, whatever its section table says,
    // before anything is allocated for them or read from them.
    uint64_t end = (nullptr != file) ? fileLength : length;
    if ((static_cast<uint64_t>(symbolOffset) + symbolSize > end) ||
        (static_cast<uint64_t>(dataTableOffset) + dataTableSize > end) ||
        (static_cast<uint64_t>(dataOffset) + dataSize > end))
    {
        PARAMETER_LOG_ERROR(
            m_setManager, "Binary sections exceed the binary length %u: symbols %u+%u, data table %u+%u, data %u+%u\n",
            static_cast<unsigned int>(end), symbolOffset, symbolSize, dataTableOffset, dataTableSize, dataOffset,
            dataSize);
        return false;
    }

    // The section values are known from here on: entries that read themselves need them.
    m_symbolSize      = symbolSize;
    m_symbolOffset    = symbolOffset;
    m_dataTableSize   = dataTableSize;
    m_dataTableOffset = dataTableOffset;
    m_dataOffset      = dataOffset;
    m_dataSize        = dataSize;
    if (!AllocateTables())
    {
        return false;
    }
    m_fileName      = fileName;
    m_file          = file;
    m_fileLength    = fileLength;
    m_modeTable     = modeTable;
    m_fileMode      = nullptr != file;
    m_loadAlignment = alignment;

    if (!ReadSection(buffer, length, symbolOffset, symbolSize, true, alignment))
    {
        return false;
    }
    if (HasDataTable())
    {
        if (!ReadSection(buffer, length, dataTableOffset, dataTableSize, false, alignment))
        {
            return false;
        }
    }
    else
    {
        m_dataDuplicates     = m_symbolDuplicates;
        m_dataDuplicateCount = m_symbolDuplicateCount;
    }
    if (!m_fileMode && (nullptr != buffer))
    {
        m_data = buffer + dataOffset;
    }
    return true;
}

bool ParameterFileSymbolTable::ReadTable(unsigned char* buffer, unsigned int length, unsigned int* pos,
                                         unsigned int count, EntryView* entries, EntryData* lookup,
                                         unsigned int& duplicateCount, PList<DupObjInfo*>*& duplicates,
                                         unsigned int dataOffset, IModeTable* modeTable, bool isSymbolTable,
                                         unsigned char alignment)
{
    uint32_t* counters = new (std::nothrow) uint32_t[count + 1u]();
    if (nullptr == counters)
    {
        PARAMETER_LOG_ERROR(m_setManager, "Failed to allocate space for duplicates variable\n");
        return true;
    }
    // Each record is read through one entry object; the array keeps what Find needs of it, and
    // the module entries' ModuleData wait here, by id, to join m_modules in id order.
    ParameterFileSymbolTableEntry        entry;
    std::unique_ptr<ModuleData*[]> const moduleData(isSymbolTable ? new (std::nothrow) ModuleData*[count + 1u]()
                                                                  : nullptr);
    auto const                           freeModuleData = [&]() {
        for (unsigned int index = 1; (nullptr != moduleData) && (index <= count); ++index)
        {
            delete moduleData[index];
        }
    };
    entries[0].read = true;

    for (unsigned int round = 0; round < count; ++round)
    {
        uint32_t     id   = 0;
        unsigned int peek = *pos;
        if (!ParameterUtils::Read(&id, buffer, length, &peek))
        {
            PARAMETER_LOG_ERROR(m_setManager, "Failed to read entry ID from Symbol table\n");
            delete[] counters;
            freeModuleData();
            return false;
        }
        if ((0 == id) || (id > count))
        {
            // Required: the position does not move, so every remaining round logs this again.
            PARAMETER_LOG_ERROR(m_setManager, "Symbol table entry ID %d out of range 1 - %d\n", id, count);
            continue;
        }
        lookup[id].offset = *pos;
        entry.Init(this);
        bool const loaded =
            entry.Load(buffer, nullptr, nullptr, length, pos, dataOffset, modeTable, isSymbolTable, alignment);
        entries[id] = EntryView{entry.m_data, entry.m_length, entry.m_duplicateId, true};
        if (nullptr != moduleData)
        {
            // A second record of the same id replaces the first, as its entry would.
            delete moduleData[id];
            moduleData[id]     = entry.m_moduleData;
            entry.m_moduleData = nullptr;
        }
        if (!loaded)
        {
            delete[] counters;
            freeModuleData();
            return false;
        }
        // Safe variant: a duplicateId beyond the count was logged and is counted nowhere.
        if (entry.m_duplicateId <= count)
        {
            ++counters[entry.m_duplicateId];
        }
        lookup[id].duplicate = entry.m_duplicateId;
    }

    // Index 0 is no group, so duplicateId 0 never shares.
    duplicateCount = 1;
    for (unsigned int index = 1; index <= count; ++index)
    {
        counters[index] = (counters[index] > 1) ? duplicateCount++ : 0u;
    }
    for (unsigned int index = 1; index <= count; ++index)
    {
        uint32_t duplicate      = lookup[index].duplicate;
        lookup[index].duplicate = (duplicate <= count) ? counters[duplicate] : 0u;
    }
    delete[] counters;

    if (duplicateCount >= 2)
    {
        duplicates = new (std::nothrow) PList<DupObjInfo*>[duplicateCount];
        // Each group usually comes to one shared object: room for them all at once.
        m_dupObjects.reserve(m_dupObjects.size() + duplicateCount - 1);
    }

    for (unsigned int index = 1; (nullptr != moduleData) && (index <= count); ++index)
    {
        if (nullptr == moduleData[index])
        {
            continue;
        }
        uint32_t before = m_modules.count;
        m_modules.Insert(m_modules.count, moduleData[index]);
        // A list that could not grow frees the ModuleData, as its entry would have.
        if (m_modules.count == before)
        {
            delete moduleData[index];
        }
    }
    return true;
}

bool ParameterFileSymbolTable::Find(ParameterFileSymbolTableEntry& entry, unsigned int id, bool isSymbolTable)
{
    unsigned int count = isSymbolTable ? m_symbolCount : m_dataCount;
    if ((0 == id) || (id > count))
    {
        PARAMETER_LOG_ERROR(m_setManager, "Find: Symbol table entry ID %d out of range 1 - %d\n", id, count);
        return false;
    }
    EntryView* entries = isSymbolTable ? m_symbolEntries : m_dataEntries;
    if (nullptr != entries)
    {
        entry.CopyFrom(entries[id], id, entries[id].read ? this : nullptr);
        return true;
    }
    EntryData* lookup = isSymbolTable ? m_symbolLookup : m_dataLookup;
    if ((nullptr == m_fileName) || (nullptr == lookup))
    {
        return false;
    }

    ParameterMutexLock lock((nullptr == m_setManager) ? nullptr : &m_setManager->m_accessLock, true, true);
    FileReference(1);
    entry.Init(this);
    unsigned int pos = lookup[id].offset;
    // Without a data table the symbol table serves pointer look-ups, in its own record layout.
    bool found = entry.Load(nullptr, m_fileName, m_file, 0, &pos, m_dataOffset, m_modeTable,
                            isSymbolTable || !HasDataTable(), m_alignment);
    FileReference(-1);
    return found;
}

bool ParameterFileSymbolTable::ReadPointerEntry(ParameterFileSymbolTableEntry& target,
                                                ParameterFileSymbolTableEntry* source, unsigned char alignment)
{
    if ((nullptr == source) || (nullptr == source->m_data))
    {
        return false;
    }
    uint32_t id = 0;
    if (!ParameterUtils::Read(&id, source->m_data, source->m_length, &source->m_position, alignment))
    {
        return false;
    }
    return Find(target, id, false);
}

void ParameterFileSymbolTable::FileReference(int adjust)
{
    if (nullptr == m_file)
    {
        PARAMETER_LOG_DEBUG(m_setManager, "FileReference called with null File object, Adjust: %d\n", adjust);
        return;
    }
    m_file->Reference(adjust);
}

void ParameterFileSymbolTable::FreeEntryData()
{
    if (m_dataEntries != m_symbolEntries)
    {
        delete[] m_dataEntries;
    }
    delete[] m_symbolEntries;
    m_dataEntries   = nullptr;
    m_symbolEntries = nullptr;
    if (!m_fileMode)
    {
        m_data = nullptr; // the caller's image need not outlive the load
    }
}

void ParameterFileSymbolTable::FreeLookupData()
{
    if (m_dataLookup != m_symbolLookup)
    {
        delete[] m_dataLookup;
    }
    delete[] m_symbolLookup;
    m_dataLookup   = nullptr;
    m_symbolLookup = nullptr;
}
