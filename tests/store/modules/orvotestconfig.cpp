#include "orvotestconfig.h"

#include <cstring>
#include <new>

#include "orvomem.h"
#include "parametersetmanager.h"

namespace orvotestconfig
{
namespace
{
char const* const RegisteredNames[] = {"testconfigdata"};
} // namespace

bool ReadEnum_TestAccuracy(ParameterFileSymbolTableEntry* entry, TestAccuracy& value, unsigned char alignment)
{
    bool     success = false;
    uint32_t number  = (nullptr == entry) ? 0u : entry->ReadEnum(&success, alignment);
    if (!success)
    {
        return false;
    }
    switch (number)
    {
        case TestAccuracyHigh:
        case TestAccuracyNormal:
            value = static_cast<TestAccuracy>(number);
            return true;
        default:
            break;
    }
    // Required: a value out of the enum keeps the zero and does not fail the load. The message
    // carries its space flag as it stands, which the format check would refuse.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat"
    PARAMETER_LOG_ERROR(ParameterFileSymbolTableEntry::LoggerOf(entry),
                        "Invalid value(% u) converting UINT32 to TestAccuracy", number);
#pragma GCC diagnostic pop
    return true;
}

bool TestConfigType::module_versionStruct::Load(ParameterFileSymbolTableEntry* entry, unsigned char alignment)
{
    major_revision = 0;
    minor_revision = 0;
    incr_revision  = 0;
    bool result    = true;
    if (!(result && ParameterFileSymbolTableEntry::ReadInline(entry, &major_revision, 4, alignment)))
    {
        result = false;
        PARAMETER_LOG_ERROR(ParameterFileSymbolTableEntry::LoggerOf(entry), "Failed to read symbol table entry\n");
    }
    if (!(result && ParameterFileSymbolTableEntry::ReadInline(entry, &minor_revision, 4, alignment)))
    {
        result = false;
        PARAMETER_LOG_ERROR(ParameterFileSymbolTableEntry::LoggerOf(entry), "Failed to read symbol table entry\n");
    }
    if (!(result && ParameterFileSymbolTableEntry::ReadInline(entry, &incr_revision, 4, alignment)))
    {
        result = false;
        PARAMETER_LOG_ERROR(ParameterFileSymbolTableEntry::LoggerOf(entry), "Failed to read symbol table entry\n");
    }
    return result;
}

bool TestConfigType::Load(ParameterFileSymbolTableEntry* entry, unsigned char alignment)
{
    // Everything but the ID, which is no part of the data, is cleared before the first read.
    module_version = module_versionStruct();
    maxFaces       = 0;
    minScale       = 0.0f;
    accuracy       = TestAccuracyHigh;
    bool result    = module_version.Load(entry, alignment);
    if (!(result && ParameterFileSymbolTableEntry::ReadInline(entry, &maxFaces, 4, alignment)))
    {
        result = false;
        PARAMETER_LOG_ERROR(ParameterFileSymbolTableEntry::LoggerOf(entry), "Failed to read symbol table entry\n");
    }
    if (!(result && ParameterFileSymbolTableEntry::ReadInline(entry, &minScale, 4, alignment)))
    {
        result = false;
        PARAMETER_LOG_ERROR(ParameterFileSymbolTableEntry::LoggerOf(entry), "Failed to read symbol table entry\n");
    }
    result = result && ReadEnum_TestAccuracy(entry, accuracy, alignment);
    return result;
}

unsigned int TestConfigType::GetModified() const
{
    return static_cast<TestConfigTypeClass const*>(this)->Modified;
}

void TestConfigType::Release()
{
    static_cast<TestConfigTypeClass*>(this)->Release();
}

TestConfigTypeClass::TestConfigTypeClass(char const* name) : TestConfigTypeClass(name, nullptr) {}

TestConfigTypeClass::TestConfigTypeClass(char const* name, ModuleData* data)
    : ParameterModule(name, major, minor, patch, data)
{
    memset(static_cast<TestConfigType*>(this), 0, sizeof(TestConfigType));
}

TestConfigTypeClass::~TestConfigTypeClass()
{
    if (Loaded)
    {
        TestConfigTypeClass::UnloadModule();
    }
}

char const* TestConfigTypeClass::GetName(char const* name)
{
    char const* result = name;
    for (char const* registered : RegisteredNames)
    {
        char type[ModuleData::MaxTypeLength + 1] = {};
        ModuleData::GetType(type, registered);
        if (0 == strcmp(type, name))
        {
            result = registered;
        }
    }
    return result;
}

ParameterModule* TestConfigTypeClass::Create(ModuleData* data, DefaultModule* defaultModule) const
{
    if ((nullptr == data) || (nullptr == defaultModule))
    {
        return nullptr;
    }
    IParameterLoggingAPI* logger = data->SetManager;
    if (Version.value != data->Version.value)
    {
        PARAMETER_LOG_ERROR(logger,
                            "Unable to create TestConfigTypeClass, binary version (%lld) does not match source version "
                            "(%lld)\n",
                            static_cast<long long>(data->Version.value), static_cast<long long>(Version.value));
        return nullptr;
    }
    if (0 != strcmp(Type, data->Type))
    {
        PARAMETER_LOG_ERROR(logger,
                            "Unable to create TestConfigTypeClass, binary name (%s) does not match source name (%s)\n",
                            data->Type, Type);
        return nullptr;
    }
    unsigned int     id     = (0 != data->DuplicateID) ? data->DuplicateID : data->ID;
    ParameterModule* shared = defaultModule->Find(id);
    if (nullptr != shared)
    {
        return shared;
    }
    void* memory = OrvoCalloc(sizeof(TestConfigTypeClass), 8, 9, 0, nullptr, 0);
    if (nullptr == memory)
    {
        return nullptr;
    }
    TestConfigTypeClass* module = nullptr;
    try
    {
        module = ::new (memory) TestConfigTypeClass(GetName(data->Type), data);
    }
    catch (...)
    {
        OrvoFree(memory, 16, nullptr, 0);
        throw;
    }
    module->SymbolTableID = id;
    defaultModule->AddModule(module);
    return module;
}

bool TestConfigTypeClass::LoadModule(ParameterFileSymbolTable* table)
{
    if (Loaded)
    {
        return true;
    }
    ParameterFileSymbolTableEntry entry;
    if ((nullptr == table) || !table->Find(entry, SymbolTableID, true))
    {
        PARAMETER_LOG_ERROR((nullptr == Data) ? nullptr : Data->SetManager,
                            "TestConfigTypeClass::LoadModule Failed to find module ID (%d) in Symbol Table\n",
                            SymbolTableID);
        ++Modified;
        Loaded = true;
    }
    else
    {
        bool loaded = Load(&entry, table->GetDataAlignment());
        ++Modified;
        Loaded = true;
        if (loaded)
        {
            return true;
        }
    }
    // The flag is set first, so that the unload frees what was read.
    UnloadModule();
    return false;
}

void TestConfigTypeClass::UnloadModule()
{
    Loaded = false; // the records own nothing
}
} // namespace orvotestconfig
