// What every generated set manager does alike: its settings, the registration of its module
// types, their look-up, taking instances out of service, its destruction, and its update from
// a buffer. The generated operations are one call each into these.
#include "parametersetmanager.h"

#include <string>

void ParameterSetManager::UseGeneratedSettings()
{
    m_maxLoadedModes      = 17;
    m_fileModeAllowed     = true;
    m_logError            = true;
    m_logWarning          = true;
    m_logDebug            = false;
    m_quietMissingModules = false;
}

void ParameterSetManager::RegisterDefaultModule(ParameterModule* module)
{
    if ((nullptr == module) || (nullptr == module->Type))
    {
        return;
    }
    ParameterMutexLock lock(&m_accessLock, false, true);
    DefaultModule*&    registered = DefaultModuleMap[std::string(module->Type)];
    if (nullptr != registered)
    {
        // Safe variant: the second registration of a type wins, and the first is deleted
        // rather than lost; its instances, if any, go out of service.
        registered->MoveModules(m_replacedModules);
        delete registered;
    }
    registered = new DefaultModule(module);
}

DefaultModule* ParameterSetManager::FindDefaultModule(char* type)
{
    ParameterMutexLock lock(&m_accessLock, true, true);
    std::string        key(type); // a null type raises the string's own logic_error
    auto               found = DefaultModuleMap.find(key);
    if (DefaultModuleMap.end() == found)
    {
        PARAMETER_LOG_ERROR(this, "Failed to find module %s in DefaultModuleMap\n", type);
        return nullptr;
    }
    return found->second;
}

DefaultModule* ParameterSetManager::RegisteredTypeOf(ParameterModule const* module)
{
    if ((nullptr == module) || (nullptr == module->Type))
    {
        return nullptr;
    }
    auto found = DefaultModuleMap.find(module->Type);
    return (DefaultModuleMap.end() == found) ? nullptr : found->second;
}

void ParameterSetManager::MoveModulesToReplaced()
{
    for (auto& type : DefaultModuleMap)
    {
        if (nullptr != type.second)
        {
            type.second->MoveModules(m_replacedModules);
        }
    }
}

void ParameterSetManager::DeleteDefaultModules()
{
    ParameterMutexLock lock(&m_accessLock, false, true);
    for (auto& type : DefaultModuleMap)
    {
        delete type.second;
    }
    DefaultModuleMap.clear();
}

bool ParameterSetManager::UpdateFromBuffer(unsigned char* buffer, unsigned long size, ParameterSetManager* (*create)())
{
    // The flag is read under the lock: a reload on another thread writes it.
    ParameterMutexLock lock(&m_accessLock, false, true);
    if (!m_parametersValid)
    {
        SetError("UpdateBinaryParameters failed, original parameter load is invalid", nullptr);
        return false;
    }
    // A buffer has no file to fall back on: what is still in the file is read in first.
    if (IsFileMode() && !ReloadBinaryParameters(true))
    {
        SetError("UpdateBinaryParameters failed to reload parameters in buffer mode", nullptr);
        return false;
    }
    ParameterSetManager* update = (nullptr == create) ? nullptr : create();
    if (nullptr == update)
    {
        SetError("UpdateBinaryParameters failed to load parameters", nullptr);
        return true;
    }
    // Safe variant: the update's own link stays off. Its modules move into this manager, which
    // serves them on its link; a second one would reach them after they are freed here.
    update->m_tuningEnabled = false;
    if (update->LoadBinaryParameters(buffer, size))
    {
        UpdateParameters(update);
    }
    else
    {
        SetError("UpdateBinaryParameters failed to load parameters", nullptr);
    }
    // The new modules' ModuleData belong to the update's table: it lives as long as they do.
    m_updateSetManagers.push_back(update);
    // Required: a failed load of the buffer still answers true; callers read the error text.
    return true;
}
