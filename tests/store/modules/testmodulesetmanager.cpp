#include "testmodulesetmanager.h"

#include <new>

#include "orvomem.h"

namespace
{
template <typename Class>
ParameterModule* NewDefaultInstance(char const* name)
{
    void* memory = OrvoCalloc(sizeof(Class), 8, 9, 0, nullptr, 0);
    if (nullptr == memory)
    {
        return nullptr;
    }
    try
    {
        return ::new (memory) Class(name);
    }
    catch (...)
    {
        OrvoFree(memory, 16, nullptr, 0);
        throw;
    }
}

// The record is the second base of its class: conversions go through the class at both ends.
template <typename Class, typename Record>
ParameterModule* ModuleOf(Record* record)
{
    return (nullptr == record) ? nullptr : static_cast<ParameterModule*>(static_cast<Class*>(record));
}

template <typename Class, typename Record>
Record* RecordOf(ParameterModule* module)
{
    return (nullptr == module) ? nullptr : static_cast<Record*>(static_cast<Class*>(module));
}
} // namespace

TestModuleSetManager::TestModuleSetManager(bool withTuningLink)
{
    UseGeneratedSettings();
    if (withTuningLink)
    {
        CreateTuningWorker();
    }
    AddModule(NewDefaultInstance<orvotestconfig::TestConfigTypeClass>("testconfigdata"));
    AddModule(NewDefaultInstance<demo_1_0_0::tonemetry_demo10TypeClass>("demo10_bps"));
    AddModule(NewDefaultInstance<demo_1_0_0::tonemetry_demo10TypeClass>("demo10_ife"));
    PARAMETER_LOG_DEBUG(this, "TestModuleSetManager constructed: %s\n", "Parameter Parser V5.5.1 (2411131018)");
}

TestModuleSetManager::~TestModuleSetManager()
{
    PARAMETER_LOG_DEBUG(this, "TestModuleSetManager deleting\n");
    StopTuningWorker();
    DeleteDefaultModules();
}

void TestModuleSetManager::AddModule(ParameterModule* module)
{
    RegisterDefaultModule(module);
}

DefaultModule* TestModuleSetManager::GetDefaultModule(char* type)
{
    return FindDefaultModule(type);
}

void TestModuleSetManager::SaveAndClearModules()
{
    MoveModulesToReplaced();
}

bool TestModuleSetManager::UpdateBinaryParameters(unsigned char* buffer, unsigned long size)
{
    // The update is made as this manager was: with a live tuning link when this one has one.
    ParameterSetManager* (*create)() = (nullptr == m_tuningWorker)
                                           ? []() -> ParameterSetManager* { return new TestModuleSetManager(); }
                                           : []() -> ParameterSetManager* { return new TestModuleSetManager(true); };
    return UpdateFromBuffer(buffer, size, create);
}

orvotestconfig::TestConfigType* TestModuleSetManager::GetModule_testconfigdata(
    TuningMode const* modes, unsigned int count, orvotestconfig::TestConfigType* previous)
{
    using Class = orvotestconfig::TestConfigTypeClass;
    return RecordOf<Class, orvotestconfig::TestConfigType>(
        GetModule("testconfigdata", modes, count, ModuleOf<Class>(previous)));
}

demo_1_0_0::tonemetry_demo10Type* TestModuleSetManager::GetModule_demo10_bps(
    TuningMode const* modes, unsigned int count, demo_1_0_0::tonemetry_demo10Type* previous)
{
    using Class = demo_1_0_0::tonemetry_demo10TypeClass;
    return RecordOf<Class, demo_1_0_0::tonemetry_demo10Type>(
        GetModule("demo10_bps", modes, count, ModuleOf<Class>(previous)));
}

demo_1_0_0::tonemetry_demo10Type* TestModuleSetManager::GetModule_demo10_ife(
    TuningMode const* modes, unsigned int count, demo_1_0_0::tonemetry_demo10Type* previous)
{
    using Class = demo_1_0_0::tonemetry_demo10TypeClass;
    return RecordOf<Class, demo_1_0_0::tonemetry_demo10Type>(
        GetModule("demo10_ife", modes, count, ModuleOf<Class>(previous)));
}
