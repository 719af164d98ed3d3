#include "parameterfilesymboltableentry.h"

#include "orvomem.h"
#include "parameterfilesymboltable.h"
#include "parametermodule.h"
#include "parametersetmanager.h"
#include "parameterutils.h"

namespace
{
// The one call site under which ReadString shares its strings.
constexpr char const*  ReadStringSite = __FILE__;
constexpr unsigned int ReadStringLine = __LINE__;
constexpr unsigned int TypeFieldSize  = 32;
// The oldest symbol records carry 8 reserved bytes behind the version.
constexpr unsigned int ReservedBytes = 8;
} // namespace

ParameterFileSymbolTableEntry::~ParameterFileSymbolTableEntry()
{
    ReleaseOwned();
}

void ParameterFileSymbolTableEntry::ReleaseOwned()
{
    if (nullptr != m_fileName)
    {
        OrvoFree(m_data, OrvoMemFlagsNone, __FILE__, __LINE__);
    }
    m_data     = nullptr;
    m_fileName = nullptr;
    delete m_moduleData;
    m_moduleData = nullptr;
}

void ParameterFileSymbolTableEntry::Init(ParameterFileSymbolTable* table)
{
    // Safe variant: what the entry owned is freed here; a re-used entry would otherwise drop it.
    ReleaseOwned();
    m_table      = table;
    m_setManager = (nullptr == table) ? nullptr : table->m_setManager;
    m_position   = 0;
}

void ParameterFileSymbolTableEntry::CopyFrom(SymbolTableEntryView const& view, uint32_t id,
                                             ParameterFileSymbolTable* table)
{
    ReleaseOwned();
    m_table       = table;
    m_setManager  = (nullptr == table) ? nullptr : table->m_setManager;
    m_id          = view.read ? id : 0;
    m_duplicateId = view.duplicateId;
    m_data        = view.data;
    m_spare       = 0;
    m_position    = 0;
    m_length      = view.length;
}

bool ParameterFileSymbolTableEntry::ReadFields(unsigned char const* record, unsigned int length, unsigned int* pos,
                                               IModeTable* modeTable, bool isSymbolTable, unsigned char alignment,
                                               uint32_t* dataOffset)
{
    uint32_t     id                      = 0;
    char         type[TypeFieldSize + 1] = {};
    VersionUnion version;
    uint32_t     modeId      = 0;
    uint32_t     duplicateId = 0;
    uint32_t     size        = 0;

    // A short read leaves every later field zero.
    bool success = ParameterUtils::Read(&id, record, length, pos, alignment);
    if (isSymbolTable)
    {
        success = success && ParameterUtils::ReadString(type, record, length, pos, sizeof(type), TypeFieldSize,
                                                        alignment, m_setManager);
        success = success && ParameterUtils::Read(&version.value, record, length, pos, alignment);
        if (success && (1 == alignment) && (m_table->m_version < m_table->m_versionDuplicateId))
        {
            *pos += ReservedBytes;
        }
        success = success && ParameterUtils::Read(&modeId, record, length, pos, alignment);
    }
    success = success && ParameterUtils::Read(dataOffset, record, length, pos, alignment);
    success = success && ParameterUtils::Read(&size, record, length, pos, alignment);
    if (m_table->m_version > m_table->m_versionDuplicateId)
    {
        success = success && ParameterUtils::Read(&duplicateId, record, length, pos, alignment);
    }
    else
    {
        duplicateId = id;
    }
    m_id          = id;
    m_duplicateId = duplicateId;
    m_length      = size;

    // Only logged: the table keeps such a value from indexing past its counters.
    if (isSymbolTable && (duplicateId > m_table->m_symbolCount))
    {
        PARAMETER_LOG_ERROR(m_setManager, "Invalid DuplicateID value %u, should be less than module table count: %u\n",
                            duplicateId, m_table->m_symbolCount);
    }
    else if (!isSymbolTable && (duplicateId > m_table->m_dataCount))
    {
        PARAMETER_LOG_ERROR(m_setManager, "Invalid DuplicateID value %u, should be less than data table count: %u\n",
                            duplicateId, m_table->m_dataCount);
    }

    if (success && isSymbolTable && (ParameterFileSymbolTable::NoModeId != modeId))
    {
        delete m_moduleData;
        m_moduleData = new ModuleData(id, duplicateId, modeTable, type, version.value, modeId, m_setManager);
    }
    return success;
}

bool ParameterFileSymbolTableEntry::Load(unsigned char* buffer, char const* fileName, ParameterBinaryFile* file,
                                         unsigned int length, unsigned int* pos, unsigned int dataOffset,
                                         IModeTable* modeTable, bool isSymbolTable, unsigned char alignment)
{
    if ((nullptr == m_table) || (nullptr == pos))
    {
        return false;
    }
    uint32_t entryOffset = 0;
    if (nullptr == file)
    {
        unsigned int position = *pos;
        bool         success = ReadFields(buffer, length, &position, modeTable, isSymbolTable, alignment, &entryOffset);
        *pos                 = position;
        m_fileName           = nullptr;
        if (m_table->m_fileMode)
        {
            // A table read from a section buffer: its bytes are not in `buffer`, and the entries
            // are freed before anyone could use them.
            m_data = nullptr;
        }
        else if ((nullptr != buffer) && (static_cast<uint64_t>(dataOffset) + entryOffset + m_length <= length))
        {
            m_data = buffer + dataOffset + entryOffset;
        }
        else
        {
            // Safe variant: bytes beyond the image would be read by the module later.
            PARAMETER_LOG_ERROR(m_setManager,
                                "Symbol table entry %u data (offset: %u, size: %u) lies beyond the end of the binary "
                                "(length: %u)\n",
                                m_id, entryOffset, m_length, length);
            m_data  = nullptr;
            success = false;
        }
        return success;
    }

    // File mode: a symbol-sized block at the record, even for a shorter data-table record.
    bool           dataTableSection = !isSymbolTable && (0 != m_table->m_dataTableOffset);
    unsigned int   section          = dataTableSection ? m_table->m_dataTableOffset : m_table->m_symbolOffset;
    unsigned int   recordSize       = m_table->GetSymbolEntrySize(alignment);
    unsigned char* record           = file->Read(section + *pos, recordSize);
    if (nullptr == record)
    {
        return false;
    }
    unsigned int consumed = 0;
    bool         success = ReadFields(record, recordSize, &consumed, modeTable, isSymbolTable, alignment, &entryOffset);
    OrvoFree(record, OrvoMemFlagsNone, __FILE__, __LINE__);
    *pos += consumed;

    m_fileName = fileName;
    if (success && (0 != m_length))
    {
        m_data  = file->Read(m_table->m_dataOffset + entryOffset, m_length);
        success = nullptr != m_data;
    }
    return success;
}

uint32_t ParameterFileSymbolTableEntry::ReadEnum(bool* success, unsigned char alignment)
{
    if (nullptr == m_data)
    {
        return 0;
    }
    uint32_t value = 0;
    bool     read  = ParameterUtils::Read(&value, m_data, m_length, &m_position, alignment);
    if (nullptr != success)
    {
        *success = read;
    }
    return read ? value : 0u;
}

bool ParameterFileSymbolTableEntry::ReadString(char** out, unsigned int length, unsigned char alignment)
{
    if (nullptr == out)
    {
        return false;
    }
    DupObjInfo* shared = GetDupObject(1, ReadStringSite, ReadStringLine);
    if ((nullptr != shared) && (nullptr != shared->object))
    {
        *out = static_cast<char*>(shared->object);
        m_position += length; // required: a shared string moves the cursor by its length, unpadded
        return true;
    }
    if (nullptr == m_data)
    {
        return nullptr != *out;
    }
    *out = ParameterUtils::ReadString(m_data, m_length, &m_position, length, alignment);
    if (nullptr == *out)
    {
        return false;
    }
    SetDupObject(*out, 1, ReadStringSite, ReadStringLine);
    return true;
}

DupObjInfo* ParameterFileSymbolTableEntry::GetDupObject(unsigned int count, char const* file, unsigned int line)
{
    if (nullptr == m_table)
    {
        return nullptr;
    }
    return m_table->GetDupObject(nullptr != m_moduleData, m_duplicateId, count, file, line);
}

DupObjInfo* ParameterFileSymbolTableEntry::SetDupObject(void* object, unsigned int count, char const* file,
                                                        unsigned int line)
{
    if (nullptr == m_table)
    {
        return nullptr;
    }
    return m_table->SetDupObject(nullptr != m_moduleData, m_duplicateId, object, count, file, line);
}

IParameterLoggingAPI* ParameterFileSymbolTableEntry::LoggerOf(ParameterFileSymbolTableEntry const* entry)
{
    return (nullptr == entry) ? nullptr : entry->m_setManager;
}
