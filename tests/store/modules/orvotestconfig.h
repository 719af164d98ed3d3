// A plain module, written as the module generator emits one: records read by position only, no
// text access. Registered as "testconfigdata".
#ifndef TESTS_STORE_MODULES_ORVOTESTCONFIG_H
#define TESTS_STORE_MODULES_ORVOTESTCONFIG_H

#include <cstdint>

#include "parametermodule.h"

class DefaultModule;
class ParameterFileSymbolTableEntry;

namespace orvotestconfig
{
/// Only the listed values are accepted.
enum TestAccuracy : uint32_t
{
    TestAccuracyHigh   = 0,
    TestAccuracyNormal = 15,
};

bool ReadEnum_TestAccuracy(ParameterFileSymbolTableEntry* entry, TestAccuracy& value, unsigned char alignment);

struct TestConfigType
{
    uint32_t SymbolTableID; ///< the module's ID in the file; not part of the data

    struct module_versionStruct
    {
        uint32_t SymbolTableID;
        int32_t  major_revision;
        int32_t  minor_revision;
        int32_t  incr_revision;

        bool Load(ParameterFileSymbolTableEntry* entry, unsigned char alignment);
    };

    module_versionStruct module_version;
    uint32_t             maxFaces;
    float                minScale;
    TestAccuracy         accuracy;

    bool         Load(ParameterFileSymbolTableEntry* entry, unsigned char alignment);
    unsigned int GetModified() const;
    void         Release();
};

class TestConfigTypeClass : public ParameterModule, public TestConfigType
{
public:
    static constexpr uint16_t major = 3;
    static constexpr uint16_t minor = 4;
    static constexpr uint32_t patch = 0;

    explicit TestConfigTypeClass(char const* name);
    TestConfigTypeClass(char const* name, ModuleData* data);
    ~TestConfigTypeClass() override;

    /// The registered name whose type form is `name`, or `name` itself.
    static char const* GetName(char const* name);

    ParameterModule* Create(ModuleData* data, DefaultModule* defaultModule) const override;
    bool             LoadModule(ParameterFileSymbolTable* table) override;
    void             UnloadModule() override;
    void             Release() { ParameterModule::Release(); }
};
} // namespace orvotestconfig

#endif // TESTS_STORE_MODULES_ORVOTESTCONFIG_H
