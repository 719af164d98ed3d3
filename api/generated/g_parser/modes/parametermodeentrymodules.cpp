// The module table of one mode and the reference counts kept on it.
#include "parameterlogging.h"
#include "parametermodeentry.h"
#include "parametermodule.h"

namespace
{
char const* NameOf(ParameterModule const* module)
{
    return (nullptr == module->Name) ? "" : module->Name;
}
} // namespace

bool ModeEntry::Owns(ParameterModule const* module) const
{
    return (nullptr != module) && (nullptr != module->Data) && (this == module->Data->Mode);
}

bool ModeEntry::AddModule(ParameterModule* module)
{
    if (nullptr == module)
    {
        return false;
    }
    // The first module of a name in a mode stays.
    m_modules.try_emplace(NameOf(module), module, 0u);
    return true;
}

ParameterModule* ModeEntry::FindModule(std::string const* name)
{
    ModeEntry* target = ResolveLink();
    if ((nullptr == target) || (nullptr == name))
    {
        return nullptr;
    }
    auto entry = target->m_modules.find(*name);
    return (target->m_modules.end() == entry) ? nullptr : entry->second.module;
}

ParameterModule* ModeEntry::ReplaceModule(ParameterModule* module)
{
    if (nullptr == module)
    {
        return nullptr;
    }
    auto entry = m_modules.find(NameOf(module));
    if (m_modules.end() == entry)
    {
        m_modules.try_emplace(NameOf(module), module, 0u);
        return nullptr;
    }
    ParameterModule* replaced = entry->second.module;
    entry->second.module      = module;
    entry->second.count       = 0;
    return replaced;
}

void ModeEntry::AddReference(ParameterModule const* module)
{
    if (nullptr == module)
    {
        return;
    }
    auto entry = m_modules.find(NameOf(module));
    if (m_modules.end() == entry)
    {
        PARAMETER_LOG_ERROR(nullptr,
                            "Attempt to add reference to a non-existant module.  Mode: %d, SubMode: %d, Module %s\n",
                            m_mode.mode, m_mode.subMode, NameOf(module));
        return;
    }
    ++entry->second.count;
}

void ModeEntry::ReleaseReference(ParameterModule const* module)
{
    if (nullptr == module)
    {
        return;
    }
    auto entry = m_modules.find(NameOf(module));
    if (m_modules.end() == entry)
    {
        PARAMETER_LOG_ERROR(nullptr, "Attempt to release a non-existant module.  Mode: %d, SubMode: %d, Module %s\n",
                            m_mode.mode, m_mode.subMode, NameOf(module));
        return;
    }
    uint32_t count = entry->second.count.load();
    do
    {
        if (0 == count)
        {
            PARAMETER_LOG_ERROR(nullptr, "Attempt to release unreferenced module.  Mode: %d, SubMode: %d, Module %s\n",
                                m_mode.mode, m_mode.subMode, NameOf(module));
            return;
        }
    } while (!entry->second.count.compare_exchange_weak(count, count - 1));
}

uint32_t ModeEntry::GetReferenceCount(ParameterModule const* module) const
{
    auto     entry = (nullptr == module) ? m_modules.begin() : m_modules.find(NameOf(module));
    uint32_t sum   = 0;
    for (; m_modules.end() != entry; ++entry)
    {
        if (Owns(entry->second.module))
        {
            sum += entry->second.count;
        }
    }
    return sum;
}

void ModeEntry::ReleaseReferences()
{
    for (auto& entry : m_modules)
    {
        if (Owns(entry.second.module) && (0 != entry.second.count))
        {
            PARAMETER_LOG_ERROR(nullptr, "ReleaseReferences called with unreleased module: %s, RefCnt: %d\n",
                                entry.first.c_str(), entry.second.count.load());
            entry.second.count = 0;
        }
    }
}

bool ModeEntry::IsActive() const
{
    for (auto const& entry : m_modules)
    {
        if (Owns(entry.second.module) && (0 != entry.second.count))
        {
            return true;
        }
    }
    return false;
}

bool ModeEntry::HasLocalModules() const
{
    for (auto const& entry : m_modules)
    {
        if (Owns(entry.second.module))
        {
            return true;
        }
    }
    return false;
}
