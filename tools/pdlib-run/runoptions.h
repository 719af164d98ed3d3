// The command line of pdlib-run.
#ifndef PDLIBRUN_RUNOPTIONS_H
#define PDLIBRUN_RUNOPTIONS_H

#include <cstdint>
#include <optional>
#include <string>

namespace pdlibrun
{
struct Rectangle
{
    uint32_t x;
    uint32_t y;
    uint32_t width;
    uint32_t height;
};

/// The AF window in fractions of the current image.
struct WindowFractions
{
    float startX;
    float startY;
    float endX;
    float endY;
};

struct RunOptions
{
    std::string     calibrationPath;
    std::string     statsPath;
    std::string     libraryPath;
    int             format              = 0;
    float           analogGain          = 1.0f;
    WindowFractions window              = {0.25f, 0.25f, 0.75f, 0.75f};
    uint32_t        imageWidth          = 4000; ///< full (original) image
    uint32_t        imageHeight         = 3000;
    Rectangle       crop                = {0, 0, 4000, 3000}; ///< origin in the full image, size of the current image
    uint32_t        defocusBitShift     = 0;
    int32_t         confidenceThreshold = 100;
    std::string     svgPath;            ///< the frame's maps as SVG, when given
    std::string     calibrationSvgPath; ///< the calibration's grids as SVG, when given
    bool            json    = false;
    bool            verbose = false;
};

/// Parses and checks the command line. Returns nothing when help was asked for and printed.
/// Throws InputError with a one-line message for anything missing or out of range.
std::optional<RunOptions> ParseRunOptions(int argc, char** argv, const std::string& defaultLibraryPath);
} // namespace pdlibrun

#endif // PDLIBRUN_RUNOPTIONS_H
