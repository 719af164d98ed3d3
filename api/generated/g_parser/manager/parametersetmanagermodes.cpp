// Look-ups in the mode tree: by table index (see parametersetmanager.cpp), by path, by branch,
// and the children of a mode as the live tuning tool lists them.
#include "parametersetmanager.h"

unsigned int ParameterSetManager::GetModeGroupLength(TuningMode const* modeBranch, unsigned int modeCount,
                                                     unsigned int start)
{
    unsigned int length = 1;
    while ((start + length < modeCount) && (modeBranch[start + length].mode == modeBranch[start].mode))
    {
        ++length;
    }
    return length;
}

ModeEntry* ParameterSetManager::GetModeEntry(char const* path)
{
    if (nullptr == path)
    {
        return nullptr;
    }
    PList<TuningMode> branch(1);
    if (!GetModeBranchFromPath(path, branch))
    {
        return nullptr;
    }
    return GetModeEntry(branch.items, branch.count);
}

ModeEntry* ParameterSetManager::GetModeEntry(TuningMode const* modeBranch, unsigned int modeCount)
{
    CallScope          call(*this);
    ParameterMutexLock lock(&m_accessLock, true, true);
    if (nullptr == m_rootMode)
    {
        return nullptr;
    }
    if (IsFileMode())
    {
        LoadMode(modeBranch, modeCount, "Ravlen->GetModeEntry");
    }
    // Safe variant: the root is read after the load, as a reload inside it replaces the tree.
    ModeEntry* current = m_rootMode;
    if ((nullptr == current) || (nullptr == modeBranch) || (modeCount <= 1))
    {
        return current;
    }
    return WalkBranch(current, modeBranch, modeCount);
}

unsigned int ParameterSetManager::GetChildModes(char const* path, unsigned char* out, unsigned int size)
{
    if ((nullptr == out) || (0 == size))
    {
        return 0;
    }
    ParameterMutexLock lock(&m_accessLock, true, true);
    ModeEntry*         mode = GetModeEntry(path);
    if (nullptr == mode)
    {
        mode = GetModeEntry(0u);
    }

    unsigned int pos = 0;
    out[0]           = '\0';
    // The mode's own children: a link is not followed here.
    for (ModeEntry* child = (nullptr == mode) ? nullptr : mode->m_firstChild; nullptr != child;
         child            = child->m_nextSibling)
    {
        if (child != mode->m_firstChild)
        {
            ParameterUtils::Write(',', out, size, &pos);
        }
        ParameterUtils::WriteString(child->GetModeName(), out, size, &pos, false, this);
        if (0 == child->m_mode.mode)
        {
            continue;
        }
        ParameterUtils::Write('.', out, size, &pos);
        char const* subModeName = child->GetSubModeName();
        char        digits[16]  = "";
        if (nullptr == subModeName)
        {
            bool complete = false;
            ParameterUtils::DoubleToString(child->m_mode.subMode, digits, sizeof(digits), 0, complete);
            subModeName = digits;
        }
        ParameterUtils::WriteString(subModeName, out, size, &pos, false, this);
    }
    // The text stays terminated, also when its last write filled the buffer.
    if (pos >= size)
    {
        pos = size - 1;
    }
    out[pos] = '\0';
    return pos + 1;
}
