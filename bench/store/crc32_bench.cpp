// CRC-32 of a 16 MiB tuning image by each path, beside zlib's crc32: the check runs over the
// whole file at every open. Goals: hardware at least 3x zlib, portable at least 0.7x zlib.
#include <benchmark/benchmark.h>
#include <zlib.h>

#include <random>
#include <vector>

#include "parameterbinaryfile.h"
#include "parametercrc.h"

namespace
{
constexpr size_t ImageBytes = 16u << 20;

const std::vector<unsigned char>& Image()
{
    static const std::vector<unsigned char> image = [] {
        std::mt19937               generator(1);
        std::vector<unsigned char> bytes(ImageBytes);
        for (unsigned char& byte : bytes)
        {
            byte = static_cast<unsigned char>(generator());
        }
        return bytes;
    }();
    return image;
}

template <typename Crc>
void Measure(benchmark::State& state, Crc crc)
{
    const std::vector<unsigned char>& image = Image();
    for (auto _ : state)
    {
        benchmark::DoNotOptimize(crc(image.data(), image.size()));
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * static_cast<int64_t>(image.size()));
}

void Crc32Portable(benchmark::State& state)
{
    Measure(state, ParameterCrc::Crc32Portable);
}

void Crc32Hardware(benchmark::State& state)
{
#if defined(PARAMETER_CRC_HAS_HARDWARE_PATH)
    if (ParameterCrc::Crc32HardwareAvailable())
    {
        Measure(state, ParameterCrc::Crc32Hardware);
        return;
    }
#endif
    state.SkipWithError("no hardware CRC path on this CPU");
}

void Crc32ComputeCRC(benchmark::State& state)
{
    Measure(state, ParameterBinaryFile::ComputeCRC);
}

void Crc32Zlib(benchmark::State& state)
{
    Measure(state,
            [](const unsigned char* bytes, size_t length) { return static_cast<uint32_t>(crc32_z(0, bytes, length)); });
}

BENCHMARK(Crc32Portable)->Unit(benchmark::kMillisecond);
BENCHMARK(Crc32Hardware)->Unit(benchmark::kMillisecond);
BENCHMARK(Crc32ComputeCRC)->Unit(benchmark::kMillisecond);
BENCHMARK(Crc32Zlib)->Unit(benchmark::kMillisecond);
} // namespace

BENCHMARK_MAIN();
