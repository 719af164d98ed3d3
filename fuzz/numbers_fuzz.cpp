// The store's number texts: any text to a double, any double to text at any precision, and the
// text of a double read back.
#include <fuzzer/FuzzedDataProvider.h>

#include <string>

#include "parameterutils.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    FuzzedDataProvider input(data, size);
    const double       value    = input.ConsumeFloatingPoint<double>();
    const unsigned int decimals = input.ConsumeIntegralInRange<unsigned int>(0, 40);
    const unsigned int room     = input.ConsumeIntegralInRange<unsigned int>(1, 512);
    const std::string  text     = input.ConsumeRemainingBytesAsString();

    bool success = false;
    ParameterUtils::StringToDouble(text.c_str(), success);

    std::string buffer(room, '\0');
    bool        complete = false;
    ParameterUtils::DoubleToString(value, &buffer[0], room, decimals, complete);
    if (complete)
    {
        ParameterUtils::StringToDouble(buffer.c_str(), success);
    }
    return 0;
}
