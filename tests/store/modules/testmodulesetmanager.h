// A set manager of the hand-written modules, written as the generator emits one: it registers
// a default instance per name and hands out typed records.
#ifndef TESTS_STORE_MODULES_TESTMODULESETMANAGER_H
#define TESTS_STORE_MODULES_TESTMODULESETMANAGER_H

#include "demo_1_0_0.h"
#include "orvotestconfig.h"
#include "parametersetmanager.h"

class TestModuleSetManager : public ParameterSetManager
{
public:
    /// With `withTuningLink` the manager has a live tuning link, as a generated tuning manager
    /// has, which a load starts unless m_tuningEnabled is cleared first.
    explicit TestModuleSetManager(bool withTuningLink = false);
    ~TestModuleSetManager() override;

    void           AddModule(ParameterModule* module);
    DefaultModule* GetDefaultModule(char* type) override;
    void           SaveAndClearModules() override;
    bool           UpdateBinaryParameters(unsigned char* buffer, unsigned long size);

    orvotestconfig::TestConfigType*     GetModule_testconfigdata(TuningMode const* modes, unsigned int count,
                                                                 orvotestconfig::TestConfigType* previous);
    demo_1_0_0::tonemetry_demo10Type*   GetModule_demo10_bps(TuningMode const* modes, unsigned int count,
                                                             demo_1_0_0::tonemetry_demo10Type* previous);
    demo_1_0_0::tonemetry_demo10Type*   GetModule_demo10_ife(TuningMode const* modes, unsigned int count,
                                                             demo_1_0_0::tonemetry_demo10Type* previous);
};

#endif // TESTS_STORE_MODULES_TESTMODULESETMANAGER_H
