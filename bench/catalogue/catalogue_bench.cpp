// The tuning catalogue: a buffer-mode load of a file of five modes that each hold tonemetryPDLib,
// tonemetryPDAF and an abf34 tree of 3 x 4 x 6 regions; a text read of one leaf of that tree;
// and the construction of a TuningSetManager with its 269 default instances. The log gate is
// closed as on a device, and the live link is off.
#include <benchmark/benchmark.h>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "cataloguedata.h"
#include "g_tonemetry/tuningsetmanager.h"
#include "orvolog.h"
#include "tuningfile/writer.h"

namespace
{
constexpr uint32_t ModeCount = 5;

/// The root and four Usecase sub-modes below it, each with the three modules.
std::vector<uint8_t> FiveModeImage()
{
    tuningfile::TuningFileModel model;
    model.version = {5, 0, 0};
    model.modes.resize(ModeCount);
    for (uint32_t id = 1; id < ModeCount; ++id)
    {
        model.modes[id].mode    = 2;
        model.modes[id].subMode = static_cast<uint16_t>(id);
    }
    for (uint32_t id = 0; id < ModeCount; ++id)
    {
        model.modules.push_back({"tonemetryPDLib", cataloguedata::PDVersion, id, cataloguedata::PDLibData()});
        model.modules.push_back({"tonemetryPDAF", cataloguedata::PDVersion, id, cataloguedata::PDAFData()});
        model.modules.push_back({"abf34_ife", cataloguedata::Abf34Version, id, cataloguedata::Abf34Data(3, 4, 6)});
    }
    std::vector<uint8_t> image;
    std::string          error;
    if (!tuningfile::Write(model, &image, &error))
    {
        image.clear();
    }
    return image;
}

std::unique_ptr<TuningSetManager> QuietManager()
{
    Orvo::Log::LoadLogSettings(0);
    auto manager             = std::make_unique<TuningSetManager>();
    manager->m_tuningEnabled = false;
    return manager;
}

void LoadFiveModesFromBuffer(benchmark::State& state)
{
    std::vector<uint8_t> image = FiveModeImage();
    if (image.empty())
    {
        state.SkipWithError("the writer refused the file");
        return;
    }
    for (auto _ : state)
    {
        state.PauseTiming();
        std::unique_ptr<TuningSetManager> manager = QuietManager();
        state.ResumeTiming();
        bool loaded = manager->LoadBinaryParameters(image.data(), image.size());
        benchmark::DoNotOptimize(loaded);
        state.PauseTiming();
        if (!loaded)
        {
            state.SkipWithError("the file did not load");
        }
        manager.reset();
        state.ResumeTiming();
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * static_cast<int64_t>(image.size()));
    state.counters["fileBytes"] = static_cast<double>(image.size());
}

void GetValueOfAnAbf34Leaf(benchmark::State& state)
{
    std::vector<uint8_t>              image   = FiveModeImage();
    std::unique_ptr<TuningSetManager> manager = QuietManager();
    if (image.empty() || !manager->LoadBinaryParameters(image.data(), image.size()))
    {
        state.SkipWithError("the file did not load");
        return;
    }
    TuningMode       root;
    char const*      leaf   = "tonemetry_abf34_core.mod_abf34_drc_gain_data[2].drc_gain_data.mod_abf34_hdr_aec_data[3]"
                              ".hdr_aec_data.mod_abf34_aec_data[5].abf34_rgn_data.edge_softness";
    ParameterModule* module = manager->GetModule("abf34_ife", &root, 1, nullptr);
    char             value[64];
    for (auto _ : state)
    {
        bool found = module->GetValue(leaf, value, sizeof(value));
        benchmark::DoNotOptimize(found);
        benchmark::DoNotOptimize(value);
    }
}

void ConstructTuningSetManager(benchmark::State& state)
{
    Orvo::Log::LoadLogSettings(0);
    for (auto _ : state)
    {
        TuningSetManager manager;
        benchmark::DoNotOptimize(&manager);
    }
    state.counters["defaultInstances"] = 269;
}
} // namespace

BENCHMARK(LoadFiveModesFromBuffer)->Unit(benchmark::kMicrosecond);
BENCHMARK(GetValueOfAnAbf34Leaf);
BENCHMARK(ConstructTuningSetManager)->Unit(benchmark::kMicrosecond);

BENCHMARK_MAIN();
