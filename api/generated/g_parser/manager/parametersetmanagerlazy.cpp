// Lazy loading: one mode's modules read in or thrown away, the list of modes in recent use, and
// the eviction of idle modes beyond its bound.
#include "parametersetmanager.h"

namespace
{
// Mode numbers from here on can be evicted; Default and Sensor are always loaded.
constexpr uint16_t FirstEvictableMode = 2;
// The recency list keeps at least this many modes, whatever the bound says.
constexpr uint32_t     MinLoadedModes = 5;
constexpr unsigned int PathTextSize   = 512;

// "Loading modules (GetModule:<name>:<branch>): <mode>[-><link target>]", or "Unloading ...".
void LogWalk(ParameterSetManager* manager, bool load, ModeEntry const* mode, ModeEntry const* target,
             char const* moduleName, TuningMode const* modeBranch, unsigned int modeCount)
{
    char branchPath[PathTextSize] = "";
    char targetPath[PathTextSize] = "";
    char modePath[PathTextSize]   = "";
    ParameterSetManager::GetPathFromModeBranch(modeBranch, modeCount, branchPath, sizeof(branchPath));
    target->GetModePath(targetPath, sizeof(targetPath));
    mode->GetModePath(modePath, sizeof(modePath));
    char const* action = load ? "L" : "Unl";
    bool        linked = mode != target;
    if ((nullptr != moduleName) && !linked)
    {
        PARAMETER_LOG_DEBUG(manager, "%soading modules (GetModule:%s:%s): %s\n", action, moduleName, branchPath,
                            targetPath);
    }
    else if (nullptr != moduleName)
    {
        PARAMETER_LOG_DEBUG(manager, "%soading modules (GetModule:%s:%s): %s->%s\n", action, moduleName, branchPath,
                            modePath, targetPath);
    }
    else if (!linked)
    {
        PARAMETER_LOG_DEBUG(manager, "%soading modules (GetModule:Unknown:%s): %s\n", action, branchPath, targetPath);
    }
    else
    {
        PARAMETER_LOG_DEBUG(manager, "%soading modules (GetModule:Unknown:%s): %s->%s\n", action, branchPath, modePath,
                            targetPath);
    }
}

bool Holds(PList<ModeEntry*> const& list, ModeEntry const* mode)
{
    for (uint32_t index = 0; index < list.count; ++index)
    {
        if (list[index] == mode)
        {
            return true;
        }
    }
    return false;
}
} // namespace

bool ParameterSetManager::LoadModules(ModeEntry* mode, bool load, char const* moduleName, TuningMode const* modeBranch,
                                      unsigned int modeCount, int& fileReferences)
{
    bool       fileMode = IsFileMode();
    bool       trimming = fileMode && (0 != m_maxLoadedModes);
    ModeEntry* target   = (nullptr == mode) ? nullptr : mode->ResolveLink();
    if (nullptr == target)
    {
        // A broken link chain is treated like a missing mode.
        PARAMETER_LOG_ERROR(this, "LoadModules: mode is nullptr\n");
        return true;
    }
    if (!load && target->m_pinned)
    {
        return true;
    }

    // Safe order: the access lock before the load lock, also for a caller that holds neither,
    // as the walk's file reads take the access lock and a reload holds it while it waits for the
    // load lock.
    ParameterMutexLock access(&m_accessLock, true, fileMode);
    ParameterMutexLock lock(&m_loadLock, false, fileMode);
    if (load && fileMode && !target->m_loaded && (nullptr != m_symbolTable))
    {
        // The file stays open over the whole walk.
        ++fileReferences;
        m_symbolTable->FileReference(1);
    }
    // The owner modes that this load touched, for the recency list.
    PList<ModeEntry*> touched(1);
    if (load && (target->m_mode.mode >= FirstEvictableMode) && target->HasLocalModules())
    {
        touched.Insert(0, target);
    }
    if (!(load && target->m_loaded) && LoggingEnabled(ParameterLogging::LogLevelDebug))
    {
        LogWalk(this, load, mode, target, moduleName, modeBranch, modeCount);
    }

    if (!load)
    {
        UnloadModeModules(target);
        return true; // no trimming on an unload
    }
    bool result = target->m_loaded || LoadModeModules(target, trimming, touched);
    MarkRecentlyUsed(touched);
    TrimLoadedModes(trimming, moduleName, modeBranch, modeCount, fileReferences);
    return result;
}

bool ParameterSetManager::LoadModeModules(ModeEntry* target, bool trimming, PList<ModeEntry*>& touched)
{
    for (auto& entry : target->m_modules)
    {
        ParameterModule* module = entry.second.module;
        if (nullptr == module)
        {
            continue;
        }
        bool loaded = module->LoadModule(m_symbolTable);
        if (loaded && trimming && (nullptr != module->Data) && (nullptr != module->Data->Mode) &&
            !Holds(touched, module->Data->Mode))
        {
            touched.Insert(touched.count, module->Data->Mode);
        }
        if (!module->Loaded)
        {
            // Modules behind it in table order stay unloaded: the caller reloads the file.
            target->m_loaded = false;
            return false;
        }
    }
    target->m_loaded = true;
    return true;
}

void ParameterSetManager::UnloadModeModules(ModeEntry* target)
{
    for (auto& entry : target->m_modules)
    {
        ParameterModule* module = entry.second.module;
        // Only the owner mode unloads a module; shared entries are left alone.
        if ((nullptr == module) || (nullptr == module->Data) || (target != module->Data->Mode))
        {
            continue;
        }
        unsigned int references = module->GetReferenceCount();
        if (module->Loaded && (0 != references))
        {
            PARAMETER_LOG_ERROR(this, "Unloading referenced module %s, Mode: %s, Ref count: %u\n", module->Name,
                                (nullptr == module->Data->ModePath) ? "" : module->Data->ModePath, references);
        }
        module->UnloadModule();
    }
    target->m_loaded    = false;
    uint32_t unreleased = target->GetReferenceCount(nullptr);
    if (0 != unreleased)
    {
        char path[PathTextSize] = "";
        target->GetModePath(path, sizeof(path));
        PARAMETER_LOG_ERROR(this, "Unloading mode with %u unreleased modules: %s\n", unreleased, path);
    }
    target->ReleaseReferences();
    RemoveLoadedMode(target);
}

void ParameterSetManager::MarkRecentlyUsed(PList<ModeEntry*> const& touched)
{
    for (uint32_t index = 0; index < touched.count; ++index)
    {
        ModeEntry* mode = touched[index];
        if (mode->m_mode.mode < FirstEvictableMode)
        {
            continue;
        }
        if ((0 != m_loadedModes.count) && (m_loadedModes[0] == mode))
        {
            continue;
        }
        RemoveLoadedMode(mode);
        m_loadedModes.Insert(0, mode); // a list that cannot grow leaves the mode out
    }
}

void ParameterSetManager::TrimLoadedModes(bool trimming, char const* moduleName, TuningMode const* modeBranch,
                                          unsigned int modeCount, int& fileReferences)
{
    uint32_t limit = (m_maxLoadedModes > MinLoadedModes) ? m_maxLoadedModes : MinLoadedModes;
    if (m_loadedModes.count <= limit)
    {
        return;
    }
    // From the oldest down to the bound. Unloads shrink the list, so an index may lie past its
    // end by the time it is reached; it is passed over. Active modes stay where they are.
    for (uint32_t index = m_loadedModes.count - 1; index >= limit; --index)
    {
        if (index >= m_loadedModes.count)
        {
            continue;
        }
        ModeEntry* entry = m_loadedModes[index];
        if (trimming && !entry->m_pinned)
        {
            if (!entry->IsActive())
            {
                LoadModules(entry, false, moduleName, modeBranch, modeCount, fileReferences);
            }
        }
        else
        {
            m_loadedModes.RemoveAt(index);
        }
    }
}

void ParameterSetManager::RemoveLoadedMode(ModeEntry const* mode)
{
    for (uint32_t index = 0; index < m_loadedModes.count; ++index)
    {
        if (m_loadedModes[index] == mode)
        {
            m_loadedModes.RemoveAt(index);
            return;
        }
    }
}
