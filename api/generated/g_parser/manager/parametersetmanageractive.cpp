// The modes in use, as the live tuning tool shows them: the deepest active modes of the list of
// recently loaded modes, by name.
#include "orvoosutils.h"
#include "parametersetmanager.h"

namespace
{
constexpr unsigned int ModePathSize = 128;
constexpr unsigned int PathsSize    = 1024;
} // namespace

void ParameterSetManager::GetActiveModes(char* out, unsigned int size)
{
    if ((nullptr == out) || (0 == size))
    {
        return;
    }
    // Safe variant: the lock is taken in buffer mode too, where pinning may change the list.
    ParameterMutexLock lock(&m_loadLock, false, true);
    out[0] = '\0';

    PList<ModeEntry*> kept(1);
    bool              idleSeen = false;
    for (uint32_t index = 0; index < m_loadedModes.count; ++index)
    {
        ModeEntry* mode = m_loadedModes[index];
        if (!mode->IsActive())
        {
            idleSeen = true;
            continue;
        }
        if (idleSeen && mode->m_pinned)
        {
            continue;
        }
        // Only the deepest modes stay: a descendant takes its ancestor's place, an ancestor of a
        // kept mode is dropped.
        bool placed = false;
        for (uint32_t keptIndex = 0; !placed && (keptIndex < kept.count); ++keptIndex)
        {
            if (mode->IsParent(kept[keptIndex]))
            {
                kept[keptIndex] = mode;
                placed          = true;
            }
            else if (kept[keptIndex]->IsParent(mode))
            {
                placed = true;
            }
        }
        if (!placed)
        {
            kept.Insert(kept.count, mode);
        }
    }

    char paths[PathsSize] = "";
    for (uint32_t index = 0; index < kept.count; ++index)
    {
        char path[ModePathSize] = "";
        kept[index]->GetModePath(path, sizeof(path));
        if (0 != index)
        {
            Orvo::OsUtils::StrLCat(paths, ";", sizeof(paths));
        }
        Orvo::OsUtils::StrLCat(paths, path, sizeof(paths));
    }
    GetRavlenModesString(paths, out, size);
}
