// JSON values of every sensor-side module, as a pack source gives them by member name, and the
// member-by-member comparison of the typed records that ImageSensorModuleSetManager loads from
// them. The encoder tests and the tests of `tonemetry pack` share them.
#ifndef TESTS_MODULES_SENSORVALUES_H
#define TESTS_MODULES_SENSORVALUES_H

#include <functional>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "g_sensor/imagesensormodulesetmanager.h"

namespace sensortest
{
using Json = nlohmann::ordered_json;

/// Fetches the name's record through its typed accessor along `modes` and compares it.
using ExpectLoaded = std::function<void(ImageSensorModuleSetManager& manager, TuningMode const* modes, unsigned count)>;

struct SensorModuleValues
{
    std::string  name;   ///< registered name
    Json         values; ///< its members by name
    ExpectLoaded expect;
};

/// One entry per registered name of ImageSensorModuleSetManager, in registration order. The
/// two names of one class get values of their own, so that a mix-up shows.
std::vector<SensorModuleValues> AllSensorModules();
} // namespace sensortest

#endif // TESTS_MODULES_SENSORVALUES_H
