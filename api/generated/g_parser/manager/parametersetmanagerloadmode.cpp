// Loading and unloading the modes of a branch in file mode, and the reload of a file that
// changed under a walk.
#include "parametersetmanager.h"

ModeEntry* ParameterSetManager::WalkBranch(ModeEntry* start, TuningMode const* modeBranch, unsigned int modeCount)
{
    // Element 0 stands for the root and is not looked at.
    ModeEntry* current = start;
    for (unsigned int index = 1; (nullptr != current) && (nullptr != modeBranch) && (index < modeCount);)
    {
        unsigned int group = GetModeGroupLength(modeBranch, modeCount, index);
        current            = current->FindMode(&modeBranch[index], group, 0);
        index += group;
    }
    return current;
}

bool ParameterSetManager::LoadModeInternal(TuningMode const* modeBranch, unsigned int modeCount, bool& reload,
                                           char const* moduleName)
{
    if (nullptr == m_rootMode)
    {
        return false;
    }
    bool fileMode       = IsFileMode();
    int  fileReferences = 0;
    bool result         = true;
    reload              = !LoadModules(m_rootMode, true, moduleName, modeBranch, modeCount, fileReferences) && fileMode;
    // Required: a failed root load is told through `reload` alone; the result stays true.
    ModeEntry* current = m_rootMode;
    for (unsigned int index = 1; !reload && (nullptr != modeBranch) && (index < modeCount);)
    {
        unsigned int group = GetModeGroupLength(modeBranch, modeCount, index);
        current            = current->FindMode(&modeBranch[index], group, 0);
        if (nullptr == current)
        {
            result = false;
            break;
        }
        reload = !LoadModules(current, true, moduleName, modeBranch, modeCount, fileReferences) && fileMode;
        index += group;
    }
    if ((fileReferences > 0) && (nullptr != m_symbolTable))
    {
        m_symbolTable->FileReference(-fileReferences);
    }
    return result;
}

bool ParameterSetManager::LoadMode(TuningMode const* modeBranch, unsigned int modeCount, char const* moduleName)
{
    // Safe order: the access lock comes before the load lock, also for a caller that holds
    // neither, so that a reload on another thread never waits for this one's load lock.
    CallScope          call(*this);
    ParameterMutexLock access(&m_accessLock, true, true);
    if (nullptr == m_symbolTable)
    {
        SetError("LoadMode called with no binary file loaded", nullptr);
        return false;
    }
    if (!IsFileMode())
    {
        SetError("LoadMode is not valid in buffer mode", nullptr);
        return false;
    }
    m_loadLock.Lock(false);
    bool result = false;
    for (unsigned int pass = 1; pass <= 2; ++pass)
    {
        uint32_t generation = m_reloadGeneration;
        bool     reload     = false;
        result              = LoadModeInternal(modeBranch, modeCount, reload, moduleName);
        if (!reload)
        {
            break;
        }
        // Safe order: the load lock is left while the reload waits for the access lock, which
        // a reader that waits for the load lock would otherwise never give up.
        m_loadLock.Unlock(false);
        ReloadAfterFailedWalk(generation);
        m_loadLock.Lock(false);
    }
    m_loadLock.Unlock(false);
    return result;
}

void ParameterSetManager::ReloadAfterFailedWalk(uint32_t generation)
{
    // Safe variant: this thread's read locks are given up while it waits for the write side, so
    // that two readers that both need a reload do not wait for each other for ever. Callers
    // hold nothing of the tree across LoadMode.
    uint32_t readDepth = m_accessLock.SuspendShared();
    m_accessLock.Lock(false);
    // A reload by another thread since the walk began serves this walk as well.
    if (generation == m_reloadGeneration)
    {
        ReloadBinaryParameters(false);
    }
    m_accessLock.Unlock(false);
    m_accessLock.ResumeShared(readDepth);
}

bool ParameterSetManager::UnloadMode(TuningMode const* modeBranch, unsigned int modeCount)
{
    // Safe variant: the access lock keeps a reload from deleting the tree under the walk.
    CallScope          call(*this);
    ParameterMutexLock access(&m_accessLock, true, true);
    if (!IsFileMode())
    {
        SetError("UnloadMode is not valid in buffer mode", nullptr);
        return nullptr != m_rootMode; // required: true whenever a root exists
    }
    if (nullptr == m_rootMode)
    {
        SetError("UnloadMode root mode is nullptr", nullptr);
        return false;
    }
    ModeEntry* subject = (modeCount < 2) ? m_rootMode : WalkBranch(m_rootMode, modeBranch, modeCount);
    if (nullptr == subject)
    {
        return false;
    }
    // Only the deepest mode goes; pinned modes stay. The result is true whatever happened.
    int fileReferences = 0;
    LoadModules(subject, false, nullptr, modeBranch, modeCount, fileReferences);
    return true;
}
