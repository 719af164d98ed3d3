// Helpers of the runtime's tests: branches, loads in either mode, and the winning record.
#ifndef TESTS_STORE_RUNTIMEFIXTURE_H
#define TESTS_STORE_RUNTIMEFIXTURE_H

#include <initializer_list>
#include <utility>
#include <vector>

#include "g_storetest/testmodulesetmanager.h"
#include "storefiles.h"

namespace storetest
{
using DemoRecord = demo_1_0_0::tonemetry_demo10Type;
using DemoClass  = demo_1_0_0::tonemetry_demo10TypeClass;

/// The generated tuning manager with its live tuning link switched off: the store's tests load
/// files and must not race the link tests for the link's port.
class NoLinkSetManager : public TestModuleSetManager
{
public:
    NoLinkSetManager() { m_tuningEnabled = false; }
};

/// A mode branch from (mode, sub-mode) pairs.
std::vector<TuningMode> Branch(std::initializer_list<std::pair<uint32_t, uint16_t>> elements);

/// Loads `image` into `manager` from the buffer, or in file mode from `file`.
bool LoadImage(ParameterSetManager& manager, const std::vector<uint8_t>& image, bool fileMode, const TempFile& file);

/// The module part of a record that an accessor returned.
inline ParameterModule* ModuleOf(DemoRecord* record)
{
    return static_cast<DemoClass*>(record);
}

/// The gain of the record that "demo10_bps" has along `branch`, its reference given back;
/// -1 when there is none.
float BpsGain(TestModuleSetManager& manager, const std::vector<TuningMode>& branch);
} // namespace storetest

#endif // TESTS_STORE_RUNTIMEFIXTURE_H
