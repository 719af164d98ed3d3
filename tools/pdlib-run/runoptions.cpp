#include "runoptions.h"

#include <CLI/CLI.hpp>

#include <cerrno>
#include <cmath>
#include <cstdlib>
#include <iostream>
#include <limits>
#include <vector>

#include "runerrors.h"

namespace pdlibrun
{
namespace
{
// The library cuts image sizes and addresses to 16 bits.
constexpr double MaxImageSide = 65535.0;
// A wider shift of a 64-bit defocus keeps only its sign.
constexpr int64_t MaxDefocusBitShift = 63;

/// "A,B,C" as exactly `count` finite numbers; `shape` names them in the message.
std::vector<double> ParseNumberList(const std::string& option, const std::string& text, size_t count,
                                    const std::string& shape)
{
    const std::string   wrong = option + ": expected " + shape + ", got '" + text + "'";
    std::vector<double> numbers;
    size_t              start = 0;
    for (;;)
    {
        size_t            comma = text.find(',', start);
        const std::string item  = text.substr(start, (std::string::npos == comma) ? std::string::npos : comma - start);
        char*             pEnd  = nullptr;
        errno                   = 0;
        const double value      = std::strtod(item.c_str(), &pEnd);
        if (item.empty() || (*pEnd != '\0') || (0 != errno) || !std::isfinite(value))
        {
            throw InputError(wrong);
        }
        numbers.push_back(value);
        if (std::string::npos == comma)
        {
            break;
        }
        start = comma + 1;
    }
    if (numbers.size() != count)
    {
        throw InputError(wrong);
    }
    return numbers;
}

/// Whole numbers from `min` to 65535.
std::vector<uint32_t> ParseIntegerList(const std::string& option, const std::string& text, size_t count,
                                       const std::string& shape, double min)
{
    std::vector<uint32_t> integers;
    for (double value : ParseNumberList(option, text, count, shape))
    {
        if ((value != std::floor(value)) || (value < min) || (value > MaxImageSide))
        {
            throw InputError(option + ": expected " + shape + ", got '" + text + "'");
        }
        integers.push_back(static_cast<uint32_t>(value));
    }
    return integers;
}

/// An empty text is an option not given: the parser refuses empty values before this.
void ApplyGeometry(const std::string& imageText, const std::string& cropText, const std::string& windowText,
                   RunOptions* pOptions)
{
    if (!imageText.empty())
    {
        std::vector<uint32_t> image = ParseIntegerList("--image", imageText, 2, "W,H with sides 1 to 65535", 1.0);
        pOptions->imageWidth        = image[0];
        pOptions->imageHeight       = image[1];
    }
    pOptions->crop = {0, 0, pOptions->imageWidth, pOptions->imageHeight};
    if (!cropText.empty())
    {
        std::vector<uint32_t> crop   = ParseIntegerList("--crop", cropText, 4, "X,Y,W,H inside the image", 0.0);
        const bool            inside = (crop[2] > 0) && (crop[3] > 0) && (crop[0] + crop[2] <= pOptions->imageWidth) &&
                            (crop[1] + crop[3] <= pOptions->imageHeight);
        if (!inside)
        {
            throw InputError("--crop: expected X,Y,W,H inside the " + std::to_string(pOptions->imageWidth) + "x" +
                             std::to_string(pOptions->imageHeight) + " image, got '" + cropText + "'");
        }
        pOptions->crop = {crop[0], crop[1], crop[2], crop[3]};
    }
    if (!windowText.empty())
    {
        const std::string   shape  = "X0,Y0,X1,Y1 as fractions from 0 to 1";
        std::vector<double> window = ParseNumberList("--window", windowText, 4, shape);
        for (double fraction : window)
        {
            if ((fraction < 0.0) || (fraction > 1.0))
            {
                throw InputError("--window: expected " + shape + ", got '" + windowText + "'");
            }
        }
        pOptions->window = {static_cast<float>(window[0]), static_cast<float>(window[1]), static_cast<float>(window[2]),
                            static_cast<float>(window[3])};
    }
}
} // namespace

std::optional<RunOptions> ParseRunOptions(int argc, char** argv, const std::string& defaultLibraryPath)
{
    RunOptions options;
    options.libraryPath = defaultLibraryPath;
    std::string imageText;
    std::string cropText;
    std::string windowText;
    double      gain      = options.analogGain;
    int64_t     shift     = options.defocusBitShift;
    int64_t     threshold = options.confidenceThreshold;

    CLI::App app{"Runs the phase-detection library once, as a camera framework would, on a statistic buffer."};
    app.add_option("--calib", options.calibrationPath, "calibration JSON (knots, slopes, offsets)")->required();
    app.add_option("--stats", options.statsPath, "raw statistic buffer of the sensor")->required();
    app.add_option("--format", options.format, "statistic buffer format: 1, 2 or 3")->required();
    app.add_option("--gain", gain, "imageAnalogGain (default 1.0)");
    CLI::Option* pWindow =
        app.add_option("--window", windowText, "AF window X0,Y0,X1,Y1 in fractions of the current image");
    CLI::Option* pImage = app.add_option("--image", imageText, "full image size W,H (default 4000,3000)");
    CLI::Option* pCrop =
        app.add_option("--crop", cropText, "crop X,Y,W,H: origin in the full image, size of the current image");
    app.add_option("--shift", shift, "defocusBitShift (default 0)");
    app.add_option("--threshold", threshold, "defocusConfidenceThreshold (default 100)");
    app.add_option("--library", options.libraryPath, "the library to load")->capture_default_str();
    app.add_flag("--json", options.json, "print one JSON object instead of tables");
    app.add_option("--svg", options.svgPath, "also write the frame's defocus, confidence and phase maps as SVG");
    app.add_option("--calib-svg", options.calibrationSvgPath,
                   "also write the calibration's slope and offset grids as SVG");
    app.add_flag("--verbose", options.verbose, "let the library's info and verbose lines through");

    try
    {
        app.parse(argc, argv);
    }
    catch (const CLI::CallForHelp&)
    {
        std::cout << app.help();
        return std::nullopt;
    }
    catch (const CLI::ParseError& error)
    {
        throw InputError(error.what());
    }

    if ((options.format < 1) || (options.format > 3))
    {
        throw InputError("--format: expected 1, 2 or 3, got " + std::to_string(options.format));
    }
    if (!std::isfinite(gain) || (gain < 0.0) || (gain > std::numeric_limits<float>::max()))
    {
        throw InputError("--gain: expected a finite gain of 0 or more");
    }
    options.analogGain = static_cast<float>(gain);
    if ((shift < 0) || (shift > MaxDefocusBitShift))
    {
        throw InputError("--shift: expected 0 to 63, got " + std::to_string(shift));
    }
    options.defocusBitShift = static_cast<uint32_t>(shift);
    if ((threshold < std::numeric_limits<int32_t>::min()) || (threshold > std::numeric_limits<int32_t>::max()))
    {
        throw InputError("--threshold: expected a 32-bit signed number, got " + std::to_string(threshold));
    }
    options.confidenceThreshold = static_cast<int32_t>(threshold);
    for (const CLI::Option* pOption : {pWindow, pImage, pCrop})
    {
        if ((pOption->count() > 0) && pOption->as<std::string>().empty())
        {
            throw InputError(pOption->get_name() + ": expected a value, got an empty one");
        }
    }
    ApplyGeometry(imageText, cropText, windowText, &options);
    return options;
}
} // namespace pdlibrun
