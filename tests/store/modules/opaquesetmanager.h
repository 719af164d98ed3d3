// A set manager that takes a tuning file of any module types: each type is registered when a
// file first names it, and each entry becomes an opaque module that finds its entry when
// loaded and reads nothing of it. For tests and benchmarks of the store itself.
#ifndef TESTS_STORE_MODULES_OPAQUESETMANAGER_H
#define TESTS_STORE_MODULES_OPAQUESETMANAGER_H

#include "parametersetmanager.h"

class OpaqueSetManager : public ParameterSetManager
{
public:
    DefaultModule* GetDefaultModule(char* type) override;
    void           SaveAndClearModules() override { MoveModulesToReplaced(); }
};

#endif // TESTS_STORE_MODULES_OPAQUESETMANAGER_H
