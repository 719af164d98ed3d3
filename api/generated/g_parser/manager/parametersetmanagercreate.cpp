// Module instances from the entries of a file: made by the registered type, entered into the
// table of their mode.
#include "parametersetmanager.h"

bool ParameterSetManager::CreateModules(bool fileMode)
{
    // Every entry is tried, so that each failure is reported, but any of them fails the load.
    bool                result  = true;
    PList<ModuleData*>& modules = m_symbolTable->m_modules;
    for (uint32_t index = 0; index < modules.count; ++index)
    {
        ModuleData*                   data = modules[index];
        ParameterFileSymbolTableEntry entry;
        if (!m_symbolTable->Find(entry, data->ID, true))
        {
            m_parametersValid = false;
            result            = false;
            continue;
        }
        // File mode reads the data of pinned modes only; the others wait for a look-up.
        bool             load   = !fileMode || ((nullptr != data->Mode) && data->Mode->m_pinned);
        ParameterModule* module = CreateModule(&entry, data, load);
        if (!AddModule(data, module))
        {
            m_parametersValid = false;
            result            = false;
        }
    }
    return result;
}

ParameterModule* ParameterSetManager::CreateModule(ParameterFileSymbolTableEntry const* entry, ModuleData* data,
                                                   bool load)
{
    if (nullptr == data)
    {
        return nullptr;
    }
    DefaultModule* defaultModule = GetDefaultModule(data->Type);
    if ((nullptr == defaultModule) || (nullptr == defaultModule->m_defaultInstance))
    {
        if (!m_quietMissingModules)
        {
            SetError("Failed to find header module: ", data);
        }
        return nullptr;
    }
    ParameterModule* module = defaultModule->m_defaultInstance->Create(data, defaultModule);
    if (nullptr == module)
    {
        SetError("Failed to parse binary header data for: ", data);
        return nullptr;
    }
    if (load && (nullptr != entry))
    {
        module->LoadModule(entry->m_table); // a failure shows as a module that is not loaded
    }
    return module;
}

bool ParameterSetManager::AddModule(ModuleData const* data, ParameterModule* module)
{
    if (nullptr == m_rootMode)
    {
        SetError("AddModule: m_rootMode is nullptr", nullptr);
        return false;
    }
    if (nullptr == module)
    {
        if (!m_quietMissingModules)
        {
            SetError("AddModule: module is nullptr", nullptr);
        }
        return false;
    }
    if ((nullptr == data) || (data->ModeId >= m_modeCount) || (nullptr == m_modes[data->ModeId]))
    {
        PARAMETER_LOG_ERROR(this, "AddModule: moduleData->ModeId(%d) >= m_modeCount(%d)\n",
                            (nullptr == data) ? -1 : static_cast<int>(data->ModeId), m_modeCount);
        return false;
    }
    m_modes[data->ModeId]->AddModule(module);
    return true;
}
