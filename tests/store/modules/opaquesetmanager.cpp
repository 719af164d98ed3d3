#include "opaquesetmanager.h"

namespace
{
// Accepts an entry of any version; shares an instance between entries of one duplicate group.
class OpaqueModule : public ParameterModule
{
public:
    OpaqueModule(char const* name, ModuleData* data)
        : ParameterModule(name, (nullptr == data) ? VersionUnion() : data->Version, data)
    {
    }

    ParameterModule* Create(ModuleData* data, DefaultModule* defaultModule) const override
    {
        ParameterModule* shared = defaultModule->Find((0 != data->DuplicateID) ? data->DuplicateID : data->ID);
        if (nullptr != shared)
        {
            return shared;
        }
        ParameterModule* module = new OpaqueModule(data->Type, data);
        defaultModule->AddModule(module);
        return module;
    }

    bool LoadModule(ParameterFileSymbolTable* table) override
    {
        if (!Loaded)
        {
            ParameterFileSymbolTableEntry entry;
            Loaded = (nullptr != table) && (nullptr != Data) && table->Find(entry, Data->ID, true);
            ++Modified;
        }
        return Loaded;
    }

    void UnloadModule() override { Loaded = false; }
};
} // namespace

DefaultModule* OpaqueSetManager::GetDefaultModule(char* type)
{
    {
        ParameterMutexLock lock(&m_accessLock, true, true);
        auto               known = DefaultModuleMap.find(type);
        if (DefaultModuleMap.end() != known)
        {
            return known->second;
        }
    }
    RegisterDefaultModule(new OpaqueModule(type, nullptr));
    return FindDefaultModule(type);
}
