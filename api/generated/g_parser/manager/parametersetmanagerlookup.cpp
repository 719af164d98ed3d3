// GetModule: which loaded instance a name has along a branch of modes, with the references
// that file mode counts; and the set manager's half of giving one back.
#include "parametersetmanager.h"

namespace
{
constexpr unsigned int PathTextSize = 512;

void GiveBack(ParameterModule* previous)
{
    if (nullptr != previous)
    {
        previous->Release();
    }
}

struct BranchText
{
    char text[PathTextSize] = "";
    BranchText(TuningMode const* modeBranch, unsigned int modeCount)
    {
        ParameterSetManager::GetPathFromModeBranch(modeBranch, modeCount, text, sizeof(text));
    }
};
} // namespace

ParameterModule* ParameterSetManager::GetModule(char const* name, TuningMode const* modeBranch, unsigned int modeCount,
                                                ParameterModule* previous)
{
    CallScope          call(*this);
    ParameterMutexLock access(&m_accessLock, true, true);
    if (nullptr == name)
    {
        SetError("GetModule called with nullptr module name", nullptr);
        GiveBack(previous);
        return nullptr;
    }
    if (nullptr == m_rootMode)
    {
        PARAMETER_LOG_ERROR(this, "GetModule %s called with no binary loaded\n", name);
        GiveBack(previous);
        return nullptr;
    }
    if ((nullptr == modeBranch) && (0 != modeCount))
    {
        PARAMETER_LOG_ERROR(this,
                            "GetModule(%s) called with modeBranch == null and modeCount = %d, will return default mode "
                            "module data\n",
                            name, modeCount);
    }
    else if ((nullptr != modeBranch) && (0 != modeCount) && ((0 != modeBranch[0].mode) || (0 != modeBranch[0].subMode)))
    {
        PARAMETER_LOG_ERROR(this,
                            "GetModule(%s) called with first mode != Default, might not return module data from the "
                            "desired mode path: %s\n",
                            name, BranchText(modeBranch, modeCount).text);
    }
    if (DefaultModuleMap.empty())
    {
        PARAMETER_LOG_ERROR(this,
                            "GetModule(%s) Uninitialized Set Manager. this: %lx, SymbolTable: %lx, Modes: %lx, "
                            "ModeCount: %d, RootMode: %lx\n",
                            name, reinterpret_cast<unsigned long>(this), reinterpret_cast<unsigned long>(m_symbolTable),
                            reinterpret_cast<unsigned long>(m_modes), m_modeCount,
                            reinterpret_cast<unsigned long>(m_rootMode));
    }

    if (IsFileMode())
    {
        LoadMode(modeBranch, modeCount, name); // failures show in what follows
        // Safe variant: a reload inside the load replaced the tree, or left none.
        if (nullptr == m_rootMode)
        {
            PARAMETER_LOG_ERROR(this, "GetModule %s called with no binary loaded\n", name);
            GiveBack(previous);
            return nullptr;
        }
    }
    bool             fileMode = IsFileMode();
    std::string      key(name);
    ParameterModule* candidate = m_rootMode->FindModule(&key);
    if (nullptr != candidate)
    {
        // Also brings back a shared module that its owner mode's unload took away.
        EnsureLoaded(candidate);
    }
    else
    {
        char rootPath[PathTextSize] = "";
        m_rootMode->GetModePath(rootPath, sizeof(rootPath));
        PARAMETER_LOG_WARNING(this, "GetModule %s module not found in default scenario (%s), mode path: %s\n", name,
                              rootPath, BranchText(modeBranch, modeCount).text);
    }
    if ((nullptr != modeBranch) && (modeCount >= 2))
    {
        candidate = FindDeepestModule(key, candidate, modeBranch, modeCount);
    }

    bool loaded = false;
    if (nullptr != candidate)
    {
        // The shared load lock keeps a trimming walk from unloading the candidate between the
        // reference and the test of its flag.
        ParameterMutexLock load(&m_loadLock, true, fileMode);
        if (fileMode && (nullptr == candidate->Data))
        {
            PARAMETER_LOG_ERROR(this,
                                "Attempt to add reference to module with a nullptr Data object.  Mode: %d, SubMode: "
                                "%d, Module %s\n",
                                candidate->Mode.mode, candidate->Mode.subMode, candidate->Name);
        }
        else if (fileMode && (nullptr == candidate->Data->Mode))
        {
            PARAMETER_LOG_ERROR(this,
                                "Attempt to add reference to module with a nullptr Data->Mode object.  Mode: %d, "
                                "SubMode: %d, Module %s\n",
                                candidate->Mode.mode, candidate->Mode.subMode, candidate->Name);
        }
        else if (fileMode)
        {
            candidate->Data->Mode->AddReference(candidate);
        }
        loaded = candidate->Loaded;
    }
    // After the new reference, so that a re-fetch from the same mode never lets it go idle.
    GiveBack(previous);
    if (nullptr == candidate)
    {
        return nullptr;
    }
    if (!loaded)
    {
        // Required: the reference taken above stays.
        PARAMETER_LOG_ERROR(this, "GetModule %s failed to find a loaded module in %s, returning null\n", name,
                            BranchText(modeBranch, modeCount).text);
        return nullptr;
    }
    return candidate;
}

ParameterModule* ParameterSetManager::FindDeepestModule(std::string const& name, ParameterModule* candidate,
                                                        TuningMode const* modeBranch, unsigned int modeCount)
{
    ModeEntry* current = m_rootMode;
    for (unsigned int index = 1; index < modeCount;)
    {
        unsigned int group = GetModeGroupLength(modeBranch, modeCount, index);
        current            = current->FindMode(&modeBranch[index], group, 0);
        if (nullptr == current)
        {
            break; // a mode that does not exist ends the walk; the deepest holder so far stands
        }
        index += group;
        ParameterModule* found = current->FindModule(&name);
        if (nullptr == found)
        {
            continue;
        }
        if (EnsureLoaded(found))
        {
            candidate = found;
        }
        else
        {
            PARAMETER_LOG_ERROR(
                this, "Failed to load module %s, path: %s, skipping\n", found->Name,
                ((nullptr == found->Data) || (nullptr == found->Data->ModePath)) ? "" : found->Data->ModePath);
        }
    }
    return candidate;
}

bool ParameterSetManager::EnsureLoaded(ParameterModule* module)
{
    ParameterMutexLock load(&m_loadLock, false, true);
    return module->Loaded || module->LoadModule(m_symbolTable);
}

void ParameterSetManager::ReleaseModule(ParameterModule const* module)
{
    ParameterMutexLock load(&m_loadLock, true, true);
    if (nullptr == module)
    {
        return;
    }
    if (nullptr == module->Data)
    {
        PARAMETER_LOG_ERROR(this,
                            "Attempt to release module with a nullptr Data object.  Mode: %d, SubMode: %d, Module %s\n",
                            module->Mode.mode, module->Mode.subMode, module->Name);
        return;
    }
    if (nullptr == module->Data->Mode)
    {
        PARAMETER_LOG_ERROR(this,
                            "Attempt to release module with a nullptr Data->Mode object.  Mode: %d, SubMode: %d, "
                            "Module %s\n",
                            module->Mode.mode, module->Mode.subMode, module->Name);
        return;
    }
    module->Data->Mode->ReleaseReference(module);
}
