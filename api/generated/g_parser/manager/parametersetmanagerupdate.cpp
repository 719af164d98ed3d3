// Moving the modules of an update's set manager into this tree, mode by mode.
#include "parametersetmanager.h"

#include <algorithm>
#include <utility>
#include <vector>

bool ParameterSetManager::UpdateParameters(ParameterSetManager* other)
{
    if ((nullptr == other) || !m_parametersValid || (nullptr == other->m_rootMode))
    {
        return false;
    }
    return UpdateParameters(m_rootMode, other->m_rootMode, other);
}

bool ParameterSetManager::UpdateParameters(ModeEntry* target, ModeEntry* source, ParameterSetManager* other)
{
    // The nodes in the order of a depth-first walk; an explicit stack rather than recursion, so
    // that a deep tree cannot run the stack out. A node's children are visited in order, each
    // against its counterpart below `target`, and the first node without one ends the move.
    std::vector<std::pair<ModeEntry*, ModeEntry*>> pending{{target, source}};
    while (!pending.empty())
    {
        ModeEntry* into = pending.back().first;
        ModeEntry* from = pending.back().second;
        pending.pop_back();
        if ((nullptr == into) || (nullptr == from))
        {
            return false;
        }
        // Required: the node and all its following siblings empty into the same target, so the
        // first child of a node takes the modules of all its siblings.
        for (ModeEntry* sibling = from; (nullptr == into->m_link) && (nullptr != sibling);
             sibling            = sibling->m_nextSibling)
        {
            while (!sibling->m_modules.empty())
            {
                auto             first  = sibling->m_modules.begin();
                ParameterModule* module = first->second.module;
                sibling->m_modules.erase(first);
                MoveModuleInto(into, module, other);
            }
        }
        size_t firstChild = pending.size();
        for (ModeEntry* child = from->m_firstChild; nullptr != child; child = child->m_nextSibling)
        {
            TuningMode selector;
            selector.mode    = child->m_mode.mode;
            selector.subMode = child->m_mode.subMode;
            pending.emplace_back(into->FindMode(&selector), child);
        }
        // The first child is taken next.
        std::reverse(pending.begin() + static_cast<std::ptrdiff_t>(firstChild), pending.end());
    }
    return true;
}

void ParameterSetManager::MoveModuleInto(ModeEntry* target, ParameterModule* module, ParameterSetManager* other)
{
    if (nullptr == module)
    {
        return;
    }
    DefaultModule* theirs = other->RegisteredTypeOf(module);
    if (nullptr != theirs)
    {
        theirs->RemoveModule(module);
    }
    ParameterModule* replaced = target->ReplaceModule(module);
    if (replaced == module)
    {
        return; // safe variant: an instance that arrives twice stays in service once
    }
    if (nullptr != replaced)
    {
        // Only what this manager had in service goes out of service, once.
        DefaultModule* ours = RegisteredTypeOf(replaced);
        if ((nullptr != ours) && ours->RemoveModule(replaced))
        {
            m_replacedModules.push_back(replaced);
        }
    }
    // Safe variant: also a name that the mode did not hold keeps its new instance in service,
    // where destroying it would leave the entry just made on a destroyed object.
    AdoptModule(module);
}

void ParameterSetManager::AdoptModule(ParameterModule* module)
{
    DefaultModule* ours = RegisteredTypeOf(module);
    if (nullptr == ours)
    {
        // No type of this name here: out of service, but kept while a mode holds it.
        if (m_replacedModules.end() == std::find(m_replacedModules.begin(), m_replacedModules.end(), module))
        {
            m_replacedModules.push_back(module);
        }
        return;
    }
    if (!ours->Contains(module))
    {
        ours->AddModule(module);
    }
}
