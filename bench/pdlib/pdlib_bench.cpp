// Benchmarks of the phase-detection half, driven through the library's exports:
//   PDLibProcess      one frame of 192 windows; goal at most 25 us, and no allocation
//   PdLibGetDefocus   one window; goal at most 120 ns
#include <benchmark/benchmark.h>

#include "allocation_counter.h"
#include "defocus_input.h"
#include "orvolog.h"
#include "pdlib_host.h"
#include "sample_frame.h"

namespace
{
/// The log gate as on a device: settings loaded, no info or verbose group enabled.
void CloseLogGate()
{
    Orvo::Log::LoadLogSettings(0);
}

/// Windows of the last frame that the engine did not refuse: a refused window has all zero.
uint32_t DeliveredWindows(const PDLibOutputData& output)
{
    uint32_t delivered = 0;
    for (uint32_t i = 0; i < sample::WindowCount; i++)
    {
        delivered += (0 != output.defocus[i].confidence) ? 1 : 0;
    }
    return delivered;
}

void BM_PDLibProcess(benchmark::State& state)
{
    CloseLogGate();
    PdLibHost      host;
    const uint64_t allocationsBeforeOpen = AllocationCount();
    if (const char* pFailure = host.Open())
    {
        state.SkipWithError(pFailure);
        return;
    }
    // Creating the instance allocates: a hook that saw nothing would make the frame's 0 meaningless.
    if (AllocationCount() == allocationsBeforeOpen)
    {
        state.SkipWithError("the allocation hook does not see the library's allocations");
        return;
    }
    if ((KelResultSuccess != host.ProcessFrame()) ||
        (sample::WindowCount != host.Output().horizontalWindowCount * host.Output().verticalWindowCount) ||
        (sample::WindowCount != DeliveredWindows(host.Output())))
    {
        state.SkipWithError("the sample frame does not reach the defocus computation for every window");
        return;
    }

    const uint64_t allocationsBefore = AllocationCount();
    for (auto _ : state)
    {
        KelResult result = host.ProcessFrame();
        benchmark::DoNotOptimize(result);
        benchmark::ClobberMemory();
    }
    const uint64_t allocations = AllocationCount() - allocationsBefore;

    state.counters["allocs_per_frame"] =
        benchmark::Counter(static_cast<double>(allocations), benchmark::Counter::kAvgIterations);
    state.counters["windows"] = sample::WindowCount;
    state.SetItemsProcessed(static_cast<int64_t>(state.iterations()) * sample::WindowCount);
}
BENCHMARK(BM_PDLibProcess)->Unit(benchmark::kMicrosecond);

void BM_PdLibGetDefocus(benchmark::State& state)
{
    CloseLogGate();
    PDAFDCCCalibrationData calibration;
    sample::FillCalibration(&calibration);
    DefocusInput input(calibration);

    // The sample frame's windows in turn, so that phase and confidence vary from call to call.
    int64_t  phases[sample::WindowCount];
    uint64_t confidences[sample::WindowCount];
    for (uint32_t i = 0; i < sample::WindowCount; i++)
    {
        const sample::Window window = sample::WindowAt(i);
        phases[i]                   = window.rawPhase;
        confidences[i]              = window.confidence;
    }

    PdLibOutputData_t output;
    if (0 != PdLibGetDefocus(input.Data(), &output))
    {
        state.SkipWithError("PdLibGetDefocus refuses the hand-built input");
        return;
    }

    const uint64_t allocationsBefore = AllocationCount();
    uint32_t       window            = 0;
    for (auto _ : state)
    {
        input.SetWindow(phases[window], confidences[window]);
        long result = PdLibGetDefocus(input.Data(), &output);
        benchmark::DoNotOptimize(result);
        benchmark::DoNotOptimize(output);
        window = (window + 1 == sample::WindowCount) ? 0 : window + 1;
    }
    const uint64_t allocations = AllocationCount() - allocationsBefore;

    state.counters["allocs_per_call"] =
        benchmark::Counter(static_cast<double>(allocations), benchmark::Counter::kAvgIterations);
}
BENCHMARK(BM_PdLibGetDefocus)->Unit(benchmark::kNanosecond);
} // namespace

BENCHMARK_MAIN();
