// The dup-object service: entries that a file declares duplicates share one decoded object, keyed
// by (duplicate group, call site, element count), with a count of holders.
#include <cstring>

#include "parameterfilesymboltable.h"
#include "parametersetmanager.h"

namespace
{
bool SameSite(DupObjInfo const* info, char const* file, unsigned int line)
{
    if (info->line != line)
    {
        return false;
    }
    if (info->file == file)
    {
        return true; // the same call site passes the same literal
    }
    if ((nullptr == info->file) || (nullptr == file))
    {
        return info->file == file;
    }
    return 0 == strcmp(info->file, file);
}
} // namespace

ParameterFileSymbolTable::DupSide ParameterFileSymbolTable::SideOf(bool isModule) const
{
    if (isModule)
    {
        return {m_symbolLookup, m_symbolCount, m_symbolDuplicates, m_symbolDuplicateCount};
    }
    return {m_dataLookup, m_dataCount, m_dataDuplicates, m_dataDuplicateCount};
}

bool ParameterFileSymbolTable::LoadingAlone() const
{
    return (nullptr != m_setManager) && m_setManager->LoadingAlone();
}

DupObjInfo* ParameterFileSymbolTable::FindDupObject(void* object)
{
    auto found = m_dupObjects.find(object);
    return (m_dupObjects.end() == found) ? nullptr : found->second;
}

DupObjInfo* ParameterFileSymbolTable::GetDupObject(bool isModule, unsigned int id, unsigned int count, char const* file,
                                                   unsigned int line)
{
    DupSide side = SideOf(isModule);
    if ((nullptr == side.lookup) || (id > side.lookupCount))
    {
        PARAMETER_LOG_ERROR(m_setManager,
                            "GetDupObject called with invalid values, This: %p, IsModule: %d, ID: %u, DupCount: %u, "
                            "LookupCnt: %u, DupEntries: %p, EntryLookup: %p, Loc: %s:%d\n",
                            static_cast<void*>(this), isModule, id, side.groupCount, side.lookupCount,
                            static_cast<void*>(side.groups), static_cast<void*>(side.lookup), file, line);
        return nullptr;
    }
    uint32_t group = side.lookup[id].duplicate;
    if (0 == group)
    {
        return nullptr; // the entry shares with nobody
    }
    if ((nullptr == side.groups) || (group >= side.groupCount))
    {
        PARAMETER_LOG_ERROR(m_setManager,
                            "GetDupObject called with invalid values, This: %p, IsModule: %d, ID: %u, DupCount: %u, "
                            "LookupCnt: %u, DupEntries: %p, EntryLookup: %p, EntryLookup[id].Dup: %u, Loc: %s:%d\n",
                            static_cast<void*>(this), isModule, id, side.groupCount, side.lookupCount,
                            static_cast<void*>(side.groups), static_cast<void*>(side.lookup), group, file, line);
        return nullptr;
    }

    // Safe variant: the write side, since a hit raises a count that readers on other threads
    // would raise at the same time. SetDupObject, which holds it already, nests. A load that
    // is alone with its new tables needs no lock: half the blocks of a large file are shared.
    ParameterMutexLock        lock(&m_dupLock, false, !LoadingAlone());
    PList<DupObjInfo*> const& records = side.groups[group];
    for (uint32_t index = 0; index < records.count; ++index)
    {
        DupObjInfo* info = records[index];
        if (!SameSite(info, file, line))
        {
            continue;
        }
        if (info->count == count)
        {
            if (nullptr != info->object)
            {
                ++info->refCount;
            }
            return info;
        }
        PARAMETER_LOG_DEBUG(m_setManager,
                            "GetDupObject found duplicate objects with differing counts: IsModule: %d, ID: %u, "
                            "Count: %u, Found: %u, Loc: %s:%d\n",
                            isModule, id, count, info->count, file, line);
    }
    return nullptr;
}

DupObjInfo* ParameterFileSymbolTable::SetDupObject(bool isModule, unsigned int id, void* object, unsigned int count,
                                                   char const* file, unsigned int line)
{
    DupSide side = SideOf(isModule);
    if ((nullptr == side.lookup) || (id > side.lookupCount) || (nullptr == object))
    {
        PARAMETER_LOG_ERROR(m_setManager,
                            "SetDupObject called with invalid values, This: %p, IsModule: %d, ID: %u, Obj: %p, "
                            "DupCount: %u, LookupCnt: %u, DupEntries: %p, EntryLookup: %p, Loc: %s:%d\n",
                            static_cast<void*>(this), isModule, id, object, side.groupCount, side.lookupCount,
                            static_cast<void*>(side.groups), static_cast<void*>(side.lookup), file, line);
        return nullptr;
    }
    uint32_t group = side.lookup[id].duplicate;
    if (0 == group)
    {
        return nullptr;
    }
    if ((nullptr == side.groups) || (group >= side.groupCount))
    {
        PARAMETER_LOG_ERROR(m_setManager,
                            "SetDupObject called with invalid values, This: %p, IsModule: %d, ID: %u, Obj: %p, "
                            "DupCount: %u, LookupCnt: %u, DupEntries: %p, EntryLookup: %p, EntryLookup[id].Dup: %u, "
                            "Loc: %s:%d\n",
                            static_cast<void*>(this), isModule, id, object, side.groupCount, side.lookupCount,
                            static_cast<void*>(side.groups), static_cast<void*>(side.lookup), group, file, line);
        return nullptr;
    }

    ParameterMutexLock lock(&m_dupLock, false, !LoadingAlone());
    DupObjInfo*        info = GetDupObject(isModule, id, count, file, line);
    if (nullptr == info)
    {
        info                        = new DupObjInfo(count, file, line);
        info->object                = object;
        info->refCount              = 1;
        PList<DupObjInfo*>& records = side.groups[group];
        uint32_t            before  = records.count;
        records.Insert(records.count, info);
        if (records.count == before)
        {
            delete info; // the group could not grow: the object stays private to its caller
            return nullptr;
        }
        m_dupObjects[object] = info;
        return info;
    }
    if (nullptr == info->object)
    {
        // A released record is reused for the same key.
        if (0 != info->refCount)
        {
            PARAMETER_LOG_ERROR(m_setManager,
                                "SetDuplicateObject called on existing object with nullptr Object and RefCount %d: "
                                "ID: %d, DupID: %d, Loc: %s:%d, ignored\n",
                                info->refCount, id, group, file, line);
        }
        info->object = object;
        ++info->refCount;
        m_dupObjects[object] = info;
        return info;
    }
    return nullptr; // the key holds an object already; GetDupObject counted the caller in
}

bool ParameterFileSymbolTable::ReleaseDupObject(void* object)
{
    if (nullptr == object)
    {
        return false;
    }
    ParameterMutexLock lock(&m_dupLock, false, !LoadingAlone());
    DupObjInfo*        info = FindDupObject(object);
    if (nullptr == info)
    {
        return true; // never shared: the caller frees it
    }
    if (!DupObjInfo::Release(info))
    {
        return false;
    }
    m_dupObjects.erase(object);
    return true;
}
