// The store at scale (see scalefile.h): in one run, a buffer-mode load of the scale file beside
// nlohmann's parse of the same values as JSON, file mode's open and its first GetModule of a
// leaf scene, and the peak memory of a process that loads the file.
#include <benchmark/benchmark.h>

#include <unistd.h>

#include <cstdio>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

#include "g_tonemetry/tuningsetmanager.h"
#include "orvolog.h"
#include "scalefile.h"

namespace
{
using namespace scalebench;

std::unique_ptr<TuningSetManager> Manager(bool fileMode)
{
    auto manager               = std::make_unique<TuningSetManager>();
    manager->m_tuningEnabled   = false;
    manager->m_fileModeAllowed = fileMode;
    return manager;
}

/// Times `load` on a fresh manager in the given mode; the manager's destruction is not timed.
template <typename Load>
void TimeLoads(benchmark::State& state, bool fileMode, Load load)
{
    for (auto _ : state)
    {
        auto manager = Manager(fileMode);
        if (!load(*manager))
        {
            state.SkipWithError("the scale file was refused");
            break;
        }
        state.PauseTiming();
        manager.reset();
        state.ResumeTiming();
    }
}

void BM_ScaleBufferLoad(benchmark::State& state)
{
    std::vector<uint8_t> image = File().image;
    TimeLoads(state, false, [&image](TuningSetManager& manager) {
        return manager.LoadBinaryParameters(image.data(), static_cast<unsigned long>(image.size()));
    });
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * image.size()));
    state.counters["file_MB"] = static_cast<double>(image.size()) / 1e6;
}
BENCHMARK(BM_ScaleBufferLoad)->Unit(benchmark::kMillisecond)->MinTime(2.0);

void BM_ScaleJsonParse(benchmark::State& state)
{
    const std::string& text = File().json;
    for (auto _ : state)
    {
        benchmark::DoNotOptimize(nlohmann::json::parse(text));
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * text.size()));
    state.counters["json_MB"] = static_cast<double>(text.size()) / 1e6;
}
BENCHMARK(BM_ScaleJsonParse)->Unit(benchmark::kMillisecond)->MinTime(2.0);

void BM_ScaleFileOpen(benchmark::State& state)
{
    TimeLoads(state, true, [](TuningSetManager& manager) { return manager.LoadBinaryParameters(File().path.c_str()); });
}
BENCHMARK(BM_ScaleFileOpen)->Unit(benchmark::kMillisecond)->MinTime(2.0);

void BM_ScaleFileFirstLeafGetModule(benchmark::State& state)
{
    // The last scene of the last sensor's last use case and feature: a leaf four levels down.
    const TuningMode branch[] = {
        {0, 0, 0}, {1, Sensors - 1, 0}, {2, Usecases - 1, 0}, {3, Features - 1, 0}, {5, Scenes - 1, 0}};
    for (auto _ : state)
    {
        state.PauseTiming();
        auto manager = Manager(true);
        manager->LoadBinaryParameters(File().path.c_str());
        state.ResumeTiming();
        if (nullptr == manager->GetModule_tonemetryPDLib(branch, 5, nullptr))
        {
            state.SkipWithError("the leaf scene has no tonemetryPDLib");
            break;
        }
        state.PauseTiming();
        manager.reset();
        state.ResumeTiming();
    }
}
BENCHMARK(BM_ScaleFileFirstLeafGetModule)->Unit(benchmark::kMicrosecond)->Iterations(20);

/// Run as `store_scale_bench --peak-of-load FILE`: reads FILE into a buffer, loads it in buffer
/// mode and prints the process's peak resident memory in KiB, or nothing when the load fails.
int PrintPeakOfLoad(const char* path)
{
    // As a host reads it: the size first, then the bytes into a buffer of that size.
    std::ifstream              in(path, std::ios::binary | std::ios::ate);
    std::vector<unsigned char> image(static_cast<size_t>(in.tellg()));
    in.seekg(0).read(reinterpret_cast<char*>(image.data()), static_cast<std::streamsize>(image.size()));
    auto manager = Manager(false);
    if (!manager->LoadBinaryParameters(image.data(), image.size()))
    {
        return 1;
    }
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);)
    {
        if (0 == line.rfind("VmHWM:", 0))
        {
            std::printf("%ld\n", std::stol(line.substr(6)));
        }
    }
    return 0;
}

/// The peak resident memory, in bytes, of a fresh process of this program that loads `file`.
double PeakResidentOfLoad(const PackedFile& file)
{
    char      self[4096] = {};
    const int length     = static_cast<int>(readlink("/proc/self/exe", self, sizeof(self) - 1));
    if (length <= 0)
    {
        return 0.0;
    }
    const std::string command = std::string(self) + " --peak-of-load " + file.path;
    FILE*             output  = popen(command.c_str(), "r");
    long              peakKiB = 0;
    if ((nullptr == output) || (1 != std::fscanf(output, "%ld", &peakKiB)))
    {
        peakKiB = 0;
    }
    if (nullptr != output)
    {
        pclose(output);
    }
    return static_cast<double>(peakKiB) * 1024.0;
}

/// The peak memory of a process that loads the scale file, above one that loads a file of one
/// module, beside the file's size.
void BM_ScalePeakResident(benchmark::State& state)
{
    double above = 0.0;
    for (auto _ : state)
    {
        above = PeakResidentOfLoad(File()) - PeakResidentOfLoad(OneModuleFile());
    }
    if (above <= 0.0)
    {
        state.SkipWithError("the child processes did not report");
    }
    state.counters["above_MB"] = above / 1e6;
    state.counters["per_file"] = above / static_cast<double>(File().image.size());
}
BENCHMARK(BM_ScalePeakResident)->Unit(benchmark::kMillisecond)->Iterations(1);
} // namespace

int main(int argc, char** argv)
{
    if ((3 == argc) && (std::string("--peak-of-load") == argv[1]))
    {
        return PrintPeakOfLoad(argv[2]);
    }
    Orvo::Log::LoadLogSettings(0); // as on a device: info and verbose lines gated off
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
