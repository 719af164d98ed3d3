// A tuning module, written as the module generator emits one: every record reads itself and
// answers text access by member name. Registered as "demo10_bps" and "demo10_ife".
#ifndef TESTS_STORE_MODULES_DEMO_1_0_0_H
#define TESTS_STORE_MODULES_DEMO_1_0_0_H

#include <cstdint>

#include "parametermodule.h"
#include "parameterparserinfo.h"
#include "parametertypes.h"

class DefaultModule;
class ParameterFileSymbolTable;
class ParameterFileSymbolTableEntry;

namespace demo_1_0_0
{
/// One node of the module's tuning list: a trigger range and its strength.
struct mod_demo10_region_dataType
{
    float    lux_start;
    float    lux_end;
    uint32_t strength;

    bool Load(ParameterFileSymbolTableEntry* entry, unsigned char alignment);
    bool GetValue(char const* path, char* value, unsigned int size);
    bool SetValue(char const* path, char const* value);
    bool GetInfo(char const* path, PList<ParameterParserInfo>& list);
};

struct tonemetry_demo10Type
{
    uint32_t SymbolTableID; ///< the module's ID in the file; the top byte counts edits

    struct module_versionStruct
    {
        uint32_t SymbolTableID;
        int32_t  major_revision;
        int32_t  minor_revision;
        int32_t  incr_revision;

        bool Load(ParameterFileSymbolTableEntry* entry, unsigned char alignment);
        bool GetValue(char const* path, char* value, unsigned int size);
        bool SetValue(char const* path, char const* value);
        bool GetInfo(char const* path, PList<ParameterParserInfo>& list);
    };

    struct gamma_tabStruct
    {
        float gamma[4];

        bool Load(ParameterFileSymbolTableEntry* entry, unsigned char alignment);
        bool GetValue(char const* path, char* value, unsigned int size);
        bool SetValue(char const* path, char const* value);
        bool GetInfo(char const* path, PList<ParameterParserInfo>& list);
    };

    module_versionStruct        module_version;
    float                       gain;
    gamma_tabStruct             gamma_tab;
    char*                       label;
    uint32_t                    mod_demo10_region_dataCount;
    uint32_t                    mod_demo10_region_dataID;
    mod_demo10_region_dataType* mod_demo10_region_data;

    bool         Load(ParameterFileSymbolTableEntry* entry, unsigned char alignment);
    void         Unload(ParameterFileSymbolTable* table);
    bool         GetValue(char const* path, char* value, unsigned int size);
    bool         SetValue(char const* path, char const* value);
    bool         GetInfo(char const* path, PList<ParameterParserInfo>& list);
    unsigned int GetModified() const;
    void         Release();

private:
    bool LoadLabel(ParameterFileSymbolTableEntry* entry, unsigned char alignment, bool result);
    bool LoadRegions(ParameterFileSymbolTableEntry* entry, unsigned char alignment, bool result);
};

class tonemetry_demo10TypeClass : public ParameterModule, public tonemetry_demo10Type
{
public:
    static constexpr uint16_t major = 1;
    static constexpr uint16_t minor = 0;
    static constexpr uint32_t patch = 0;

    explicit tonemetry_demo10TypeClass(char const* name);
    tonemetry_demo10TypeClass(char const* name, ModuleData* data);
    ~tonemetry_demo10TypeClass() override;

    /// The registered name whose type form is `name`, or `name` itself.
    static char const* GetName(char const* name);

    ParameterModule* Create(ModuleData* data, DefaultModule* defaultModule) const override;
    bool             LoadModule(ParameterFileSymbolTable* table) override;
    void             UnloadModule() override;
    bool             GetValue(char const* path, char* value, unsigned int size) override;
    bool             SetValue(char const* path, char const* value) override;
    bool             GetInfo(char const* path, PList<ParameterParserInfo>& list) override;
    void             Release() { ParameterModule::Release(); }
};
} // namespace demo_1_0_0

#endif // TESTS_STORE_MODULES_DEMO_1_0_0_H
