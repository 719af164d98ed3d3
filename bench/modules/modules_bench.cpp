// Loading a sensor driver file of 20 resolutions and 5,000 register settings in buffer mode, and
// constructing each of the three set managers (which registers a default instance per name).
#include <benchmark/benchmark.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

#include "g_facedetection/fdsetmanager.h"
#include "g_sensor/imagesensormodulesetmanager.h"
#include "g_tonemetry/tuningsetmanager.h"
#include "modulegen/schemaloader.h"
#include "tuningencoder/encoder.h"
#include "tuningfile/writer.h"

namespace
{
using tuningencoder::Json;

constexpr uint32_t Resolutions      = 20;
constexpr uint32_t SettingsPerMode  = 250;
constexpr uint32_t RegisterSettings = Resolutions * SettingsPerMode;

/// One mode of the sensor: its stream, timing and register table. Addresses and values differ
/// from mode to mode, as a real sensor's tables do, so the file stores each table once.
Json Resolution(uint32_t mode)
{
    Json settings = Json::array();
    for (uint32_t step = 0; step < SettingsPerMode; ++step)
    {
        settings.push_back({{"registerAddress", 0x3000 + mode * SettingsPerMode + step},
                            {"registerData", Json::array({(mode + step) & 0xFF})},
                            {"registerAddressType", 2},
                            {"registerDataType", 1}});
    }
    Json stream = {{"virtualChannel", 0},
                   {"dataType", 0x2B},
                   {"frameDimension", {{"width", 4000 >> (mode % 3)}, {"height", 3000 >> (mode % 3)}}},
                   {"bitWidth", 10}};
    return {{"colorFilterArrangement", 3},
            {"streamInfo", {{"streamConfiguration", Json::array({stream})}}},
            {"lineLengthPixelClock", 4200},
            {"frameLengthLines", 3100 + mode},
            {"frameRate", 30.0 + mode},
            {"resolutionSettings", {{"registerSetting", settings}}},
            {"exposureInfo", Json::array({{{"exposureType", 0}, {"minLineCount", 4}, {"maxLineCount", 3090}}})}};
}

std::vector<uint8_t> SensorImage()
{
    std::vector<modulegen::SchemaFile> files;
    std::vector<modulegen::Diagnostic> diagnostics;
    modulegen::SchemaSet               schemas;
    std::string                        error;
    if (!modulegen::FindSchemaFiles(VARK_SCHEMA_DIR, &files, &error) ||
        !modulegen::LoadSchemaSet(files, &schemas, &diagnostics))
    {
        std::fprintf(stderr, "modules_bench: the schemas in %s cannot be read\n", VARK_SCHEMA_DIR);
        std::exit(1);
    }
    Json resolutions = Json::array();
    for (uint32_t mode = 0; mode < Resolutions; ++mode)
    {
        resolutions.push_back(Resolution(mode));
    }
    const Json values = {{"slaveInfo", {{"sensorName", "bench_sensor"}, {"slaveAddress", 0x34}}},
                         {"resolutionInfo", Json::array({{{"resolutions", resolutions}}})}};

    tuningfile::Module                      module;
    std::vector<tuningencoder::EncodeError> errors;
    module.name    = "sensorDriverData";
    module.version = {1, 0, 0};
    tuningfile::TuningFileModel model;
    std::vector<uint8_t>        image;
    if (!tuningencoder::EncodeModule(*schemas.FindSchema("orvosensordriver"), values, "", &module.data, &errors))
    {
        std::fprintf(stderr, "modules_bench: %s\n", errors.front().ToString().c_str());
        std::exit(1);
    }
    model.modules.push_back(module);
    if (!tuningfile::Write(model, &image, &error))
    {
        std::fprintf(stderr, "modules_bench: %s\n", error.c_str());
        std::exit(1);
    }
    return image;
}

/// Seconds that `work` takes, for benchmarks that time one step of each round by hand.
template <typename Work>
double SecondsOf(Work work)
{
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

void SensorDriverLoadInBufferMode(benchmark::State& state)
{
    static std::vector<uint8_t> image = SensorImage();
    for (auto _ : state)
    {
        ImageSensorModuleSetManager manager;
        bool                        loaded = false;
        state.SetIterationTime(SecondsOf([&] { loaded = manager.LoadBinaryParameters(image.data(), image.size()); }));
        Orvo::SensorDriverData* record = manager.GetModule_sensorDriverData(nullptr, 0, nullptr);
        if (!loaded || (nullptr == record) ||
            (record->resolutionInfo[0].resolutions[Resolutions - 1].resolutionSettings.registerSettingCount !=
             SettingsPerMode))
        {
            state.SkipWithError("the sensor file did not load whole");
            break;
        }
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * image.size()));
    state.counters["file_bytes"]        = static_cast<double>(image.size());
    state.counters["register_settings"] = RegisterSettings;
}
BENCHMARK(SensorDriverLoadInBufferMode)->UseManualTime()->Unit(benchmark::kMillisecond);

/// The constructor alone: the destructor of the round before is not timed.
template <typename Manager>
void SetManagerConstruction(benchmark::State& state)
{
    size_t registered = 0;
    for (auto _ : state)
    {
        std::unique_ptr<Manager> manager;
        state.SetIterationTime(SecondsOf([&] { manager = std::make_unique<Manager>(); }));
        registered = manager->DefaultModuleMap.size();
    }
    state.counters["registered_names"] = static_cast<double>(registered);
}
BENCHMARK_TEMPLATE(SetManagerConstruction, fdSetManager)->UseManualTime()->Unit(benchmark::kMicrosecond);
BENCHMARK_TEMPLATE(SetManagerConstruction, ImageSensorModuleSetManager)->UseManualTime()->Unit(benchmark::kMicrosecond);
BENCHMARK_TEMPLATE(SetManagerConstruction, TuningSetManager)->UseManualTime()->Unit(benchmark::kMicrosecond);
} // namespace

BENCHMARK_MAIN();
