#include "statsbuffer.h"

#include "inputfile.h"
#include "runerrors.h"
#include "statslayout.h"

namespace pdlibrun
{
std::vector<uint8_t> ReadStatsBuffer(const std::string& path, int format)
{
    const std::string    bytes = ReadInputFile(path, "statistic buffer");
    std::vector<uint8_t> buffer(bytes.begin(), bytes.end());

    StatsFormat layout;
    if (!LookUpStatsFormat(format, &layout))
    {
        throw InputError("--format: expected 1, 2 or 3, got " + std::to_string(format));
    }
    if (buffer.size() <= AreaModeByte)
    {
        throw InputError(path + ": " + std::to_string(buffer.size()) +
                         " bytes, too short for the window mode in byte 1");
    }
    const uint32_t areaMode = buffer[AreaModeByte] >> 6;
    WindowMode     mode;
    if (LookUpWindowMode(areaMode, &mode))
    {
        const size_t required = RequiredBufferSize(layout, mode);
        if (buffer.size() < required)
        {
            throw InputError(path + ": window mode " + std::to_string(areaMode) + " of format " +
                             std::to_string(format) + " needs " + std::to_string(required) + " bytes, the file has " +
                             std::to_string(buffer.size()));
        }
    }
    return buffer;
}
} // namespace pdlibrun
