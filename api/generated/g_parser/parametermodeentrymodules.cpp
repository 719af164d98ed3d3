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
    m_modules.emplace(NameOf(module), ModuleReference{module, 0});
    return true;
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
    if (0 == entry->second.count)
    {
        PARAMETER_LOG_ERROR(nullptr, "Attempt to release unreferenced module.  Mode: %d, SubMode: %d, Module %s\n",
                            m_mode.mode, m_mode.subMode, NameOf(module));
        return;
    }
    --entry->second.count;
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
                                entry.first.c_str(), entry.second.count);
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
