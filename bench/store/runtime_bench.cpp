// The parameter store's run time: GetModule along a branch four levels deep, in buffer mode and
// in file mode with its modes loaded; a cold load of one mode of 20 modules from the file; and
// a value read as text. Modules are the store tests' generated ones; the log gate is closed as
// on a device, and debug logging is off as in generated managers.
#include <benchmark/benchmark.h>

#include <unistd.h>

#include <cstdio>
#include <string>
#include <vector>

#include "g_storetest/demo_1_0_0.h"
#include "orvolog.h"
#include "parametersetmanager.h"
#include "tuningfile/writer.h"

namespace
{
constexpr unsigned int BlockCount = 20;

// One default instance of the demo class per name "block0" ... "block19", each its own type.
class BenchSetManager : public ParameterSetManager
{
public:
    BenchSetManager()
    {
        UseGeneratedSettings();
        for (unsigned int block = 0; block < BlockCount; ++block)
        {
            RegisterDefaultModule(new demo_1_0_0::tonemetry_demo10TypeClass(("block" + std::to_string(block)).c_str()));
        }
    }
    ~BenchSetManager() override { DeleteDefaultModules(); }
    DefaultModule* GetDefaultModule(char* type) override { return FindDefaultModule(type); }
    void           SaveAndClearModules() override { MoveModulesToReplaced(); }
};

tuningfile::Module Block(unsigned int block, uint32_t modeId, float gain)
{
    std::vector<tuningfile::DataBuilder> regions;
    for (unsigned int region = 0; region < 4; ++region)
    {
        regions.push_back(tuningfile::DataBuilder().F32(100.0f * region).F32(100.0f * region + 100.0f).U32(region));
    }
    tuningfile::Module module;
    module.name    = "block" + std::to_string(block);
    module.version = {1, 0, 0};
    module.modeId  = modeId;
    module.data    = tuningfile::DataBuilder()
                      .Record(tuningfile::DataBuilder().I32(1).I32(0).I32(0))
                      .F32(gain)
                      .FixedArray(std::vector<float>{0.5f, 1.0f, 1.5f, 2.0f})
                      .String("revision " + std::to_string(block))
                      .Repeated(regions);
    return module;
}

// The root with all 20 blocks; eight use cases, each with a chain Feature1 > Feature2 > Scene
// below it, where every level overrides fewer blocks; and Usecase 7, whose 20 blocks are loaded
// cold.
std::vector<uint8_t> Image()
{
    tuningfile::TuningFileModel model;
    model.modes.push_back(tuningfile::Mode());
    for (unsigned int block = 0; block < BlockCount; ++block)
    {
        model.modules.push_back(Block(block, 0, 1.0f + block));
    }
    for (uint16_t usecase = 0; usecase < 8; ++usecase)
    {
        uint32_t parent = 0;
        for (uint16_t level = 0; level < 4; ++level)
        {
            tuningfile::Mode mode;
            mode.mode     = static_cast<uint16_t>(2 + level);
            mode.subMode  = (0 == level) ? usecase : 1;
            mode.parentId = parent;
            parent        = static_cast<uint32_t>(model.modes.size());
            model.modes.push_back(mode);
            unsigned int overrides = (7 == usecase) ? ((0 == level) ? BlockCount : 0) : 5 - level;
            for (unsigned int block = 0; block < overrides; ++block)
            {
                model.modules.push_back(Block(block, parent, 1000.0f * usecase + 100.0f * level + block));
            }
        }
    }
    std::vector<uint8_t> image;
    std::string          error;
    if (!tuningfile::Write(model, &image, &error))
    {
        fprintf(stderr, "cannot write the benchmark file: %s\n", error.c_str());
    }
    return image;
}

std::vector<TuningMode> Branch(uint16_t usecase, unsigned int levels)
{
    std::vector<TuningMode> branch(1);
    for (unsigned int level = 0; level < levels; ++level)
    {
        TuningMode mode;
        mode.mode    = 2 + level;
        mode.subMode = (0 == level) ? usecase : 1;
        branch.push_back(mode);
    }
    return branch;
}

// A manager of the image, from a buffer or bound to a file of it.
class Loaded
{
public:
    explicit Loaded(bool fileMode) : m_path("/tmp/store_runtime_bench_" + std::to_string(getpid()) + ".bin")
    {
        Orvo::Log::LoadLogSettings(0);
        std::vector<uint8_t> image = Image();
        if (!fileMode)
        {
            m_valid = m_manager.LoadBinaryParameters(image.data(), image.size());
            return;
        }
        FILE* file = fopen(m_path.c_str(), "wb");
        m_valid    = (nullptr != file) && (fwrite(image.data(), 1, image.size(), file) == image.size());
        if (nullptr != file)
        {
            fclose(file);
        }
        m_valid = m_valid && m_manager.LoadBinaryParameters(m_path.c_str());
    }
    ~Loaded() { unlink(m_path.c_str()); }

    BenchSetManager& Manager() { return m_manager; }
    bool             Valid(benchmark::State& state)
    {
        if (!m_valid)
        {
            state.SkipWithError("the file did not load");
        }
        return m_valid;
    }

private:
    std::string     m_path;
    bool            m_valid = false;
    BenchSetManager m_manager;
};

void GetModuleFromBuffer(benchmark::State& state)
{
    Loaded                  loaded(false);
    std::vector<TuningMode> branch = Branch(3, 4);
    ParameterModule*        module = nullptr;
    for (auto _ : state)
    {
        module = loaded.Manager().GetModule("block0", branch.data(), 5, nullptr);
        benchmark::DoNotOptimize(module);
    }
    if (loaded.Valid(state) && (nullptr == module))
    {
        state.SkipWithError("no module");
    }
}

void GetModuleFromFileWithLoadedModes(benchmark::State& state)
{
    Loaded                  loaded(true);
    std::vector<TuningMode> branch = Branch(3, 4);
    // The modes are loaded by the first look-up; each next one gives the last back as `previous`.
    ParameterModule* module = loaded.Manager().GetModule("block0", branch.data(), 5, nullptr);
    for (auto _ : state)
    {
        module = loaded.Manager().GetModule("block0", branch.data(), 5, module);
        benchmark::DoNotOptimize(module);
    }
    if (loaded.Valid(state) && (nullptr == module))
    {
        state.SkipWithError("no module");
    }
    else if (nullptr != module)
    {
        module->Release();
    }
}

void ColdLoadOfOneModeWith20Modules(benchmark::State& state)
{
    Loaded                  loaded(true);
    std::vector<TuningMode> branch = Branch(7, 1);
    bool                    valid  = loaded.Valid(state);
    for (auto _ : state)
    {
        state.PauseTiming();
        loaded.Manager().UnloadMode(branch.data(), 2);
        state.ResumeTiming();
        valid = loaded.Manager().LoadMode(branch.data(), 2, "block0") && valid;
    }
    if (!valid)
    {
        state.SkipWithError("the mode did not load");
    }
}

void GetValueOfOneScalar(benchmark::State& state)
{
    Loaded                  loaded(false);
    std::vector<TuningMode> branch   = Branch(3, 4);
    char                    text[64] = "";
    bool                    read     = loaded.Valid(state);
    for (auto _ : state)
    {
        read = loaded.Manager().GetValue(branch.data(), 5, "block0", "gain", text, sizeof(text)) && read;
        benchmark::DoNotOptimize(text);
    }
    if (!read)
    {
        state.SkipWithError("no value");
    }
}

BENCHMARK(GetModuleFromBuffer);
BENCHMARK(GetModuleFromFileWithLoadedModes);
BENCHMARK(ColdLoadOfOneModeWith20Modules)->Unit(benchmark::kMicrosecond);
BENCHMARK(GetValueOfOneScalar);
} // namespace
BENCHMARK_MAIN();
