// Opening a 5.0.0 tuning file of 10,000 modules in 200 modes: header, check value, sections, mode
// tree and tables, from a buffer and from a file (where the module entries are re-read from the
// file once each). Module data repeats across modes as tuning data does, so the data table has
// duplicate groups to number.
#include <benchmark/benchmark.h>

#include <unistd.h>

#include <cstdio>
#include <string>
#include <vector>

#include "opaquesetmanager.h"
#include "parametersetmanager.h"
#include "tuningfile/writer.h"

namespace
{
constexpr uint32_t ModeCount    = 200;
constexpr uint32_t ModuleCount  = 10000;
constexpr uint32_t TypesPerMode = ModuleCount / ModeCount;

// Every entry becomes an opaque module, which finds its entry when loaded and reads nothing.
class BenchSetManager : public OpaqueSetManager
{
public:
    BenchSetManager() { m_logDebug = false; }
};

// Root, eight use cases, and 191 feature, scene and effect modes below them.
std::vector<tuningfile::Mode> Modes()
{
    std::vector<tuningfile::Mode> modes(1);
    for (uint16_t usecase = 0; usecase < 8; ++usecase)
    {
        tuningfile::Mode mode;
        mode.mode    = 2;
        mode.subMode = usecase;
        modes.push_back(mode);
    }
    for (uint32_t index = 0; modes.size() < ModeCount; ++index)
    {
        tuningfile::Mode mode;
        mode.mode     = static_cast<uint16_t>(3 + (index / 8) % 4);
        mode.subMode  = static_cast<uint16_t>(index / 32);
        mode.parentId = 1 + index % 8;
        modes.push_back(mode);
    }
    return modes;
}

// A block's tuning: a head, a revision text and a table of 64 values. Four variants per type.
tuningfile::DataBuilder BlockData(uint32_t type, uint32_t variant)
{
    std::vector<float> table(64);
    for (size_t index = 0; index < table.size(); ++index)
    {
        table[index] = static_cast<float>(type * 100 + variant) + 0.25f * static_cast<float>(index);
    }
    tuningfile::DataBuilder data;
    data.U32(1).U32(type).Enum(variant).String("revision " + std::to_string(variant)).FixedArray(table);
    return data;
}

const std::vector<uint8_t>& Image()
{
    static const std::vector<uint8_t> image = [] {
        tuningfile::TuningFileModel model;
        model.binaryTag = "open benchmark";
        model.modes     = Modes();
        for (uint32_t mode = 0; mode < ModeCount; ++mode)
        {
            for (uint32_t type = 0; type < TypesPerMode; ++type)
            {
                tuningfile::Module module;
                module.name    = "tonemetry_block" + std::to_string(type);
                module.version = {1, 0, 0};
                module.modeId  = mode;
                module.data    = BlockData(type, mode % 4);
                model.modules.push_back(module);
            }
        }
        std::vector<uint8_t> bytes;
        std::string          error;
        if (!tuningfile::Write(model, &bytes, &error))
        {
            fprintf(stderr, "cannot write the benchmark file: %s\n", error.c_str());
        }
        return bytes;
    }();
    return image;
}

void Finish(benchmark::State& state, bool loaded)
{
    if (!loaded)
    {
        state.SkipWithError("the file did not load");
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * static_cast<int64_t>(Image().size()));
    state.counters["file_KiB"] = static_cast<double>(Image().size()) / 1024.0;
}

void OpenFromBuffer(benchmark::State& state)
{
    std::vector<uint8_t> image  = Image();
    bool                 loaded = !image.empty();
    for (auto _ : state)
    {
        BenchSetManager manager;
        loaded = loaded && manager.LoadBinaryParameters(image.data(), image.size());
        benchmark::DoNotOptimize(manager.m_rootMode);
    }
    Finish(state, loaded);
}

void OpenFromFile(benchmark::State& state)
{
    const std::string path   = "/tmp/store_open_bench_" + std::to_string(getpid()) + ".bin";
    FILE*             file   = fopen(path.c_str(), "wb");
    bool              loaded = (nullptr != file) && (fwrite(Image().data(), 1, Image().size(), file) == Image().size());
    if (nullptr != file)
    {
        fclose(file);
    }
    for (auto _ : state)
    {
        BenchSetManager manager;
        manager.m_fileModeAllowed = true;
        loaded                    = loaded && manager.LoadBinaryParameters(path.c_str());
        benchmark::DoNotOptimize(manager.m_rootMode);
    }
    unlink(path.c_str());
    Finish(state, loaded);
}

BENCHMARK(OpenFromBuffer)->Unit(benchmark::kMillisecond);
BENCHMARK(OpenFromFile)->Unit(benchmark::kMillisecond);
} // namespace

BENCHMARK_MAIN();
