// pdlib-run: the phase-detection library driven as a camera framework drives it, once, on a
// statistic buffer from a file.
#include <cstdio>
#include <exception>
#include <fstream>
#include <functional>
#include <iostream>
#include <string>

#include "calibrationfile.h"
#include "framesetup.h"
#include "installpaths.h"
#include "orvolog.h"
#include "pdlibhost.h"
#include "runerrors.h"
#include "runoptions.h"
#include "statsbuffer.h"
#include "svgmaps.h"
#include "windowreport.h"

namespace
{
int Fail(const std::exception& error, int status)
{
    std::fprintf(stderr, "pdlib-run: %s\n", error.what());
    return status;
}

/// Writes one picture; a file that cannot be written is an input error, as an unreadable one is.
void WritePicture(const std::string& path, const std::function<void(std::ostream&)>& write)
{
    std::ofstream file(path, std::ios::trunc);
    write(file);
    file.close();
    if (!file)
    {
        throw pdlibrun::InputError(path + ": cannot be written");
    }
}

int Run(const pdlibrun::RunOptions& options)
{
    using namespace pdlibrun;

    // Declared before the host: the engine points into the calibration until the camera closes.
    PDAFDCCCalibrationData             calibration  = LoadCalibration(options.calibrationPath);
    std::vector<uint8_t>               buffer       = ReadStatsBuffer(options.statsPath, options.format);
    std::unique_ptr<PDLibCreateParams> createParams = MakeCreateParams(options, &calibration);
    std::unique_ptr<PDLibInputs>       inputs       = MakeFrameInputs(options, buffer);
    auto                               outputs      = std::make_unique<PDLibOutputs>();

    if (!options.verbose)
    {
        // As a device with default log settings: only error lines of the library get through.
        Orvo::Log::LoadLogSettings(0);
    }

    PdLibHost host(options.libraryPath);
    KelResult result = host.Initialize(*createParams);
    if (KelResultSuccess != result)
    {
        throw LibraryError("PDLibInitialize failed: result " + std::to_string(result));
    }
    result = host.Process(*inputs, outputs.get());

    if (!options.calibrationSvgPath.empty())
    {
        WritePicture(options.calibrationSvgPath, [&](std::ostream& out) {
            WriteCalibrationSvg(out, calibration, options.imageWidth, options.imageHeight);
        });
    }
    if (!options.svgPath.empty())
    {
        WritePicture(options.svgPath,
                     [&](std::ostream& out) { WriteFrameSvg(out, outputs->libOutput, options.window); });
    }
    if (options.json)
    {
        PrintWindowJson(std::cout, outputs->libOutput, result);
    }
    else
    {
        PrintWindowTables(std::cout, outputs->libOutput, result);
    }
    return (KelResultSuccess == result) ? 0 : ExitLibraryError;
}
} // namespace

int main(int argc, char** argv)
{
    try
    {
        const std::string defaultLibrary = installpaths::Library(PDLIB_RUN_LIBRARY_NAME, PDLIB_RUN_BUILD_LIBRARY);
        std::optional<pdlibrun::RunOptions> options = pdlibrun::ParseRunOptions(argc, argv, defaultLibrary);
        return options ? Run(*options) : 0;
    }
    catch (const pdlibrun::InputError& error)
    {
        return Fail(error, pdlibrun::ExitInputError);
    }
    catch (const pdlibrun::LibraryError& error)
    {
        return Fail(error, pdlibrun::ExitLibraryError);
    }
}
