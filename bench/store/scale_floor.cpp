// The floor that a load of the scale file cannot go below, whatever the store does: the steps
// the format prescribes, done with nothing else. For a buffer-mode load, the check value over
// the image and one zeroed allocation per array of the generated records; for file mode's
// open, the file read whole twice (for its check value, then for its header) and the check
// value. Links the store's objects to reach its CRC path and allocator.
#include <benchmark/benchmark.h>

#include <fcntl.h>
#include <unistd.h>

#include <vector>

#include "orvomem.h"
#include "parametercrc.h"
#include "scalefile.h"

namespace
{
using namespace scalebench;

/// The size of a pointed-to block as the writer encodes it: near what its record takes in memory.
size_t BlockBytes(const tuningfile::DataBuilder& block)
{
    size_t bytes = 0;
    for (const auto& item : block.Items())
    {
        bytes += (tuningfile::DataBuilder::Item::Kind::Array == item.kind) ? item.bytes.size() : 8;
    }
    return bytes;
}

/// One block size for every array, string and optional value that a load allocates.
void CollectBlocks(const tuningfile::DataBuilder& record, std::vector<size_t>* blocks)
{
    for (const auto& item : record.Items())
    {
        if ((tuningfile::DataBuilder::Item::Kind::Pointer == item.kind) && (0 != item.value) && item.target)
        {
            blocks->push_back(BlockBytes(*item.target));
            CollectBlocks(*item.target, blocks);
        }
    }
}

const std::vector<size_t>& ScaleBlocks()
{
    static const std::vector<size_t> blocks = [] {
        std::vector<size_t> sizes;
        for (const auto& module : File().model.modules)
        {
            CollectBlocks(module.data, &sizes);
        }
        return sizes;
    }();
    return blocks;
}

/// The floor of a buffer-mode load: the check value over the image and one zeroed allocation
/// per array of the generated records, each freed outside the timing.
void BM_ScaleFloorBufferLoad(benchmark::State& state)
{
    const std::vector<uint8_t>& image  = File().image;
    const std::vector<size_t>&  blocks = ScaleBlocks();
    std::vector<void*>          held(blocks.size());
    for (auto _ : state)
    {
        benchmark::DoNotOptimize(ParameterCrc::Crc32(image.data(), image.size() - 4));
        for (size_t index = 0; index < blocks.size(); ++index)
        {
            held[index] = OrvoCalloc(blocks[index], 8, OrvoMemFlagsNone, OrvoMemTypeAny, __FILE__, __LINE__);
        }
        state.PauseTiming();
        for (void* block : held)
        {
            OrvoFree(block, OrvoMemFlagsNone, __FILE__, __LINE__);
        }
        state.ResumeTiming();
    }
    state.counters["arrays"] = static_cast<double>(blocks.size());
}
BENCHMARK(BM_ScaleFloorBufferLoad)->Unit(benchmark::kMillisecond)->MinTime(1.0);

/// The floor of file mode's open: the file read whole twice (once for its check value, once
/// for its header) and the check value.
void BM_ScaleFloorFileOpen(benchmark::State& state)
{
    const PackedFile& file = File();
    for (auto _ : state)
    {
        for (int pass = 0; pass < 2; ++pass)
        {
            std::vector<uint8_t> image(file.image.size());
            const int            descriptor = open(file.path.c_str(), O_RDONLY);
            size_t               done       = 0;
            for (ssize_t got = 1; (done < image.size()) && (got > 0); done += static_cast<size_t>(got))
            {
                got = read(descriptor, image.data() + done, image.size() - done);
            }
            close(descriptor);
            if (0 == pass)
            {
                benchmark::DoNotOptimize(ParameterCrc::Crc32(image.data(), image.size() - 4));
            }
        }
    }
}
BENCHMARK(BM_ScaleFloorFileOpen)->Unit(benchmark::kMillisecond)->MinTime(1.0);

} // namespace

BENCHMARK_MAIN();
