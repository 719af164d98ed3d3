// Text access on a loaded tuning file: any mode path, value path, names and value text.
#include <fuzzer/FuzzedDataProvider.h>

#include <string>

#include "fuzzstore.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    FuzzedDataProvider input(data, size);
    const uint8_t      operation = input.ConsumeIntegral<uint8_t>();
    const std::string  modePath  = input.ConsumeRandomLengthString(64);
    const std::string  path      = input.ConsumeRandomLengthString(256);
    const std::string  names     = input.ConsumeRandomLengthString(256);
    const std::string  value     = input.ConsumeRemainingBytesAsString();

    TuningSetManager& manager = fuzzstore::SampleManager();
    char              out[4096];
    switch (operation % 4)
    {
        case 0:
            manager.GetValue(modePath.c_str(), path.c_str(), nullptr, out, sizeof(out));
            break;
        case 1:
            manager.GetValue(modePath.c_str(), path.c_str(), names.c_str(), out, sizeof(out));
            break;
        case 2:
            manager.SetValue(modePath.c_str(), path.c_str(), names.c_str(), value.c_str());
            break;
        default: {
            PList<ParameterParserInfo> rows(1);
            manager.GetInfo(modePath.c_str(), path.empty() ? nullptr : path.c_str(), rows);
            break;
        }
    }
    return 0;
}
