#include "fuzzstore.h"

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <memory>

#include "parameterbinaryfile.h"

namespace fuzzstore
{
std::vector<uint8_t> Restamped(const uint8_t* data, size_t size)
{
    std::vector<uint8_t> image(data, data + size);
    if (image.size() >= 8)
    {
        const size_t   checked = image.size() - 4;
        const uint32_t crc     = ParameterBinaryFile::ComputeCRC(image.data(), checked);
        for (size_t index = 0; index < 4; ++index)
        {
            image[checked + index] = static_cast<uint8_t>(crc >> (8 * index));
        }
    }
    return image;
}

ImageFile::ImageFile(const std::vector<uint8_t>& image)
{
    char path[] = "/tmp/vark-fuzz-XXXXXX";
    int  fd     = mkstemp(path);
    if (fd < 0)
    {
        std::abort(); // the harness cannot run without a file
    }
    const ssize_t written = write(fd, image.data(), image.size());
    close(fd);
    if (written != static_cast<ssize_t>(image.size()))
    {
        std::abort();
    }
    m_path = path;
}

ImageFile::~ImageFile()
{
    unlink(m_path.c_str());
}

void Quieten(ParameterSetManager& manager)
{
    manager.m_tuningEnabled = false;
    manager.m_logError      = false;
    manager.m_logWarning    = false;
    manager.m_logDebug      = false;
}

TuningSetManager& SampleManager()
{
    static std::unique_ptr<TuningSetManager> manager = [] {
        std::vector<uint8_t> image;
        if (FILE* file = std::fopen(VARK_FUZZ_TUNING_FILE, "rb"))
        {
            uint8_t chunk[4096];
            size_t  got = 0;
            while ((got = std::fread(chunk, 1, sizeof(chunk), file)) > 0)
            {
                image.insert(image.end(), chunk, chunk + got);
            }
            std::fclose(file);
        }
        auto loaded = std::make_unique<TuningSetManager>();
        Quieten(*loaded);
        if (!loaded->LoadBinaryParameters(image.data(), image.size()))
        {
            std::abort(); // the seed that the build packed must load
        }
        return loaded;
    }();
    return *manager;
}

void WalkEveryMode(ParameterSetManager& manager)
{
    constexpr uint32_t MaxModes = 64; // enough to reach every kind of mode; bounds the run
    for (uint32_t id = 0; (id < manager.m_modeCount) && (id < MaxModes); ++id)
    {
        ModeEntry* mode = manager.GetModeEntry(id);
        if (nullptr == mode)
        {
            continue;
        }
        char path[256] = "";
        mode->GetModePath(path, sizeof(path));
        PList<TuningMode> branch(1);
        if (!ParameterSetManager::GetModeBranchFromPath(path, branch))
        {
            continue;
        }
        PList<ParameterParserInfo> rows(1);
        manager.GetInfo(branch.items, branch.count, nullptr, rows);
        // As a client holds a module: from one look-up to the next, where it is given back.
        // Another call in between may reload the file twice and free it, as on a device.
        ParameterModule* previous = nullptr;
        for (uint32_t row = 0; row < rows.count; ++row)
        {
            previous = manager.GetModule(rows[row].Name, branch.items, branch.count, previous);
        }
        if (nullptr != previous)
        {
            previous->Release();
        }
        for (uint32_t row = 0; row < rows.count; ++row)
        {
            static char text[64 * 1024];
            manager.GetValue(branch.items, branch.count, rows[row].Name, nullptr, text, sizeof(text));
        }
        if (manager.IsFileMode())
        {
            manager.UnloadMode(branch.items, branch.count);
        }
    }
}
} // namespace fuzzstore
