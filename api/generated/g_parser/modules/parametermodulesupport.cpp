#include "parametermodulesupport.h"

#include <algorithm>

namespace
{
/// Bytes that a string element takes in a file at least: its length and its entry id.
constexpr unsigned int StringDataSize = 8;
} // namespace

bool ParameterRecordLoader::ReadEnumNumber(ParameterFileSymbolTableEntry* entry, unsigned char alignment,
                                           uint32_t& number)
{
    if (nullptr == entry)
    {
        return false; // nothing to read from, as with an entry without data
    }
    bool success = false;
    number       = entry->ReadEnum(&success, alignment);
    return success;
}

void ParameterRecordLoader::ReportInvalidEnum(ParameterFileSymbolTableEntry const* entry, uint32_t number,
                                              char const* enumName)
{
    // The message keeps its "% u" as the system has always written it; the space flag does
    // nothing for an unsigned number, which the format check would point out.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat"
    PARAMETER_LOG_ERROR(ParameterFileSymbolTableEntry::LoggerOf(entry), "Invalid value(% u) converting UINT32 to %s",
                        number, enumName);
#pragma GCC diagnostic pop
}

bool ParameterRecordLoader::ReadArray(ParameterFileSymbolTableEntry* entry, unsigned char alignment, void* values,
                                      unsigned int size)
{
    if ((nullptr == entry) || (nullptr == entry->m_data))
    {
        return false;
    }
    return ParameterUtils::ReadBuffer(static_cast<unsigned char*>(values), entry->m_data, entry->m_length,
                                      &entry->m_position, size, alignment,
                                      ParameterFileSymbolTableEntry::LoggerOf(entry));
}

bool ParameterRecordLoader::OpenPointerEntry(ParameterFileSymbolTableEntry* entry, unsigned char alignment,
                                             ParameterFileSymbolTableEntry& local)
{
    return (nullptr != entry) && (nullptr != entry->m_table) &&
           entry->m_table->ReadPointerEntry(local, entry, alignment);
}

bool ParameterRecordLoader::OpenOptional(ParameterFileSymbolTableEntry* entry, unsigned char alignment, uint32_t& id,
                                         ParameterFileSymbolTableEntry& local)
{
    if (nullptr == entry)
    {
        return false;
    }
    id = entry->m_id;
    return OpenPointerEntry(entry, alignment, local);
}

bool ParameterRecordLoader::LoadString(ParameterFileSymbolTableEntry* entry, unsigned char alignment, uint32_t length,
                                       char*& text)
{
    ParameterFileSymbolTableEntry local;
    return OpenPointerEntry(entry, alignment, local) && local.ReadString(&text, length, alignment);
}

bool ParameterRecordLoader::LoadStringList(ParameterFileSymbolTableEntry* entry, unsigned char alignment,
                                           uint32_t& count, uint32_t& id, char**& elements, char const* file,
                                           unsigned int line, char const* name)
{
    ParameterFileSymbolTableEntry local;
    void*                         block        = nullptr;
    bool                          loadElements = false;
    bool result = StartList(entry, alignment, count, id, block, sizeof(char*), StringDataSize, local, file, line, name,
                            &loadElements);
    elements    = static_cast<char**>(block);
    for (uint32_t index = 0; loadElements && result && (index < count); ++index)
    {
        uint32_t length = 0;
        PARAMETER_LOAD_SCALAR(result, &local, length, alignment);
        result = result && LoadString(&local, alignment, length, elements[index]);
    }
    return FinishList(result, count, block);
}

void ParameterRecordLoader::ReleaseStringList(ParameterFileSymbolTable* table, char**& elements, uint32_t count)
{
    if (IsLastHolder(table, elements))
    {
        for (uint32_t index = 0; index < count; ++index)
        {
            ReleaseBlock(table, elements[index]);
        }
        OrvoFree(elements, ParameterModuleTag::Free, nullptr, 0);
    }
    elements = nullptr;
}

bool ParameterRecordLoader::StartList(ParameterFileSymbolTableEntry* entry, unsigned char alignment, uint32_t& count,
                                      uint32_t& id, void*& block, size_t elementSize, unsigned int minimumDataSize,
                                      ParameterFileSymbolTableEntry& local, char const* file, unsigned int line,
                                      char const* name, bool* loadElements)
{
    *loadElements = false;
    if (!OpenPointerEntry(entry, alignment, local))
    {
        return false;
    }
    id                 = local.m_id;
    DupObjInfo* shared = local.GetDupObject(count, file, line);
    if ((nullptr != shared) && (nullptr != shared->object))
    {
        block = shared->object; // loaded by an earlier record of the file, and shared from now on
        return true;
    }
    if (0 == count)
    {
        return true;
    }
    // Safe variant: a count that the entry's bytes cannot hold fails here, as the load of its
    // elements would, before an allocation of that size is even tried.
    if (count > local.m_length / minimumDataSize)
    {
        PARAMETER_LOG_ERROR(ParameterFileSymbolTableEntry::LoggerOf(entry), "Failed to read symbol table entry\n");
        return false;
    }
    block = OrvoCalloc(count * elementSize, 8, ParameterModuleTag::Array, 0, nullptr, 0);
    if (nullptr == block)
    {
        // Intended: the module loads with an empty list.
        PARAMETER_LOG_ERROR(ParameterFileSymbolTableEntry::LoggerOf(entry), "Failed to allocate %s\n", name);
        return true;
    }
    local.SetDupObject(block, count, file, line);
    *loadElements = true;
    return true;
}

bool ParameterRecordLoader::LoadBlock(ParameterFileSymbolTableEntry* entry, unsigned char alignment, uint32_t& count,
                                      uint32_t& id, void*& block, size_t elementSize, char const* file,
                                      unsigned int line, char const* name)
{
    ParameterFileSymbolTableEntry local;
    if (!OpenPointerEntry(entry, alignment, local))
    {
        return FinishList(false, count, block);
    }
    id                 = local.m_id;
    DupObjInfo* shared = local.GetDupObject(count, file, line);
    if ((nullptr != shared) && (nullptr != shared->object))
    {
        block = shared->object;
        return true;
    }
    if (0 == count)
    {
        return true;
    }
    if (nullptr != local.m_data)
    {
        uint64_t size      = static_cast<uint64_t>(count) * elementSize;
        uint64_t remaining = (local.m_position < local.m_length) ? local.m_length - local.m_position : 0u;
        // Safe variant: a block larger than what is left of the entry is allocated only as
        // large as that; its read fails as it would, having copied what is left.
        uint64_t allocation = std::max<uint64_t>(1u, std::min(size, remaining));
        block               = OrvoCalloc(allocation, 8, ParameterModuleTag::Array, 0, nullptr, 0);
        if ((nullptr != block) &&
            !ParameterUtils::ReadBuffer(static_cast<unsigned char*>(block), local.m_data, local.m_length,
                                        &local.m_position,
                                        static_cast<unsigned int>(std::min<uint64_t>(size, UINT32_MAX)), alignment,
                                        ParameterFileSymbolTableEntry::LoggerOf(&local)))
        {
            OrvoFree(block, ParameterModuleTag::Free, nullptr, 0);
            block = nullptr;
        }
    }
    if (nullptr == block)
    {
        // Intended: a list that cannot be read is empty, and the load goes on.
        PARAMETER_LOG_ERROR(ParameterFileSymbolTableEntry::LoggerOf(entry), "Failed to allocate %s\n", name);
    }
    return FinishList(true, count, block);
}

bool ParameterRecordLoader::IsLastHolder(ParameterFileSymbolTable* table, void* block)
{
    return (nullptr != table) && table->ReleaseDupObject(block) && (nullptr != block);
}
