// pdlib-make-examples OUTDIR: writes the calibration and statistic buffers that ship in
// examples/. Deterministic: integer hashing for the noise and plain double arithmetic, so every
// run on every machine writes the same bytes.
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <fstream>
#include <string>
#include <vector>

#include "statslayout.h"

namespace
{
using pdlibrun::StatsFormat;
using pdlibrun::WindowMode;

constexpr double   ImageWidth  = 4000.0;
constexpr double   ImageHeight = 3000.0;
constexpr uint32_t KnotsX      = 16;
constexpr uint32_t KnotsY      = 12;
// Knots at the centres of a 16 x 12 grid of 250-pixel blocks over the full image.
constexpr uint32_t KnotPitch = 250;
constexpr uint32_t FirstKnot = KnotPitch / 2;

constexpr uint8_t  WindowFlagValid  = 0x01;
constexpr uint32_t AreaModeShift    = 6;
constexpr double   RawPhasePerPixel = 16.0;

// ---- Calibration --------------------------------------------------------------------------

/// Slope of defocus against phase; the library scales it so that one pixel of phase moves the
/// defocus by 16384 x slope. The lens needs more travel per pixel of phase towards the corners.
double SlopeAt(double x, double y)
{
    const double dx = (x - ImageWidth / 2.0) / (ImageWidth / 2.0);
    const double dy = (y - ImageHeight / 2.0) / (ImageHeight / 2.0);
    return 0.0400 + 0.0150 * (dx * dx + dy * dy);
}

/// Residual defocus at zero phase: a slight tilt of the sensor.
long OffsetAt(double x, double y)
{
    return std::lround(-40.0 + 30.0 * x / ImageWidth + 20.0 * y / ImageHeight);
}

uint32_t KnotAddress(uint32_t knot)
{
    return FirstKnot + KnotPitch * knot;
}

void WriteNumberArray(std::ofstream& out, const char* pName, uint32_t rows, uint32_t columns, const char* pFormat,
                      const std::vector<double>& values, bool last)
{
    out << "  \"" << pName << "\": [";
    for (uint32_t i = 0; i < rows * columns; i++)
    {
        char number[32];
        std::snprintf(number, sizeof(number), pFormat, values[i]);
        const bool rowStart = (0 == i % columns);
        out << (rowStart ? (rows > 1 ? "\n    " : "") : " ") << number << ((i + 1 < rows * columns) ? "," : "");
    }
    out << (rows > 1 ? "\n  ]" : "]") << (last ? "\n" : ",\n");
}

bool WriteCalibration(const std::string& path)
{
    std::vector<double> addressX;
    std::vector<double> addressY;
    std::vector<double> slopes;
    std::vector<double> offsets;
    for (uint32_t i = 0; i < KnotsX; i++)
    {
        addressX.push_back(KnotAddress(i));
    }
    for (uint32_t j = 0; j < KnotsY; j++)
    {
        addressY.push_back(KnotAddress(j));
        for (uint32_t i = 0; i < KnotsX; i++)
        {
            slopes.push_back(SlopeAt(KnotAddress(i), KnotAddress(j)));
            offsets.push_back(static_cast<double>(OffsetAt(KnotAddress(i), KnotAddress(j))));
        }
    }

    std::ofstream out(path);
    out << "{\n  \"knotXCount\": " << KnotsX << ",\n  \"knotYCount\": " << KnotsY << ",\n";
    WriteNumberArray(out, "slopeOffsetAddressX", 1, KnotsX, "%.0f", addressX, false);
    WriteNumberArray(out, "slopeOffsetAddressY", 1, KnotsY, "%.0f", addressY, false);
    WriteNumberArray(out, "slopeData", KnotsY, KnotsX, "%.4f", slopes, false);
    WriteNumberArray(out, "offsetData", KnotsY, KnotsX, "%.0f", offsets, true);
    out << "}\n";
    return static_cast<bool>(out);
}

// ---- Scene --------------------------------------------------------------------------------

/// What the sensor measures at a point of the image, u and v from 0 to 1.
struct SceneSample
{
    double phasePixels;
    double confidence; ///< 0 to 1 of the format's full scale
    bool   clipped;    ///< a saturated highlight: no phase at all
};

/// A reproducible number from -1 to 1 for a window and a channel.
double Noise(uint32_t window, uint32_t channel)
{
    uint32_t x = window * 0x9E3779B9u + channel * 0x85EBCA6Bu + 0x27D4EB2Fu;
    x ^= x >> 16;
    x *= 0x7FEB352Du;
    x ^= x >> 15;
    x *= 0x846CA68Bu;
    x ^= x >> 16;
    return static_cast<double>(x) / 2147483647.5 - 1.0;
}

bool Inside(double u, double v, double centreU, double centreV, double radiusU, double radiusV)
{
    const double du = (u - centreU) / radiusU;
    const double dv = (v - centreV) / radiusV;
    return du * du + dv * dv <= 1.0;
}

/// A subject near focus in the middle, a far background with flat sky at the top, and ground
/// coming closer towards the bottom; a specular highlight clips to the right of the subject.
SceneSample SampleScene(double u, double v, uint32_t window)
{
    SceneSample sample = {};
    if (Inside(u, v, 0.82, 0.30, 0.04, 0.06))
    {
        sample.clipped = true;
        return sample;
    }
    if (Inside(u, v, 0.50, 0.55, 0.20, 0.28))
    {
        sample.phasePixels = 0.25 + 0.5 * (v - 0.55);
        sample.confidence  = 0.85;
    }
    else if (v > 0.80)
    {
        sample.phasePixels = 2.0 + 8.0 * (v - 0.80) / 0.20;
        sample.confidence  = 0.55;
    }
    else
    {
        sample.phasePixels = -4.5 - 2.5 * (1.0 - v);
        sample.confidence  = (v < 0.30) ? 0.02 : 0.40 + 0.20 * u;
    }
    sample.phasePixels += 0.15 * Noise(window, 0);
    sample.confidence *= 1.0 + 0.25 * Noise(window, 1);
    return sample;
}

/// Centre of window `index` in fractions of the image. The flexible mode sets its 8 windows
/// in a row across the subject.
void WindowCentre(const WindowMode& mode, uint32_t index, double* pU, double* pV)
{
    const uint32_t column = index % mode.horizontal;
    const uint32_t row    = index / mode.horizontal;
    *pU                   = (column + 0.5) / mode.horizontal;
    *pV                   = (1 == mode.vertical) ? 0.55 : (row + 0.5) / mode.vertical;
}

std::vector<uint8_t> MakeStatsBuffer(int formatNumber, uint32_t areaMode)
{
    StatsFormat format;
    WindowMode  mode;
    pdlibrun::LookUpStatsFormat(formatNumber, &format);
    pdlibrun::LookUpWindowMode(areaMode, &mode);

    // Ends with the highest record. The gaps of the 48-window mode, where the sensor's unused
    // columns would be, stay zero, and so do the bytes between the header and the first record.
    std::vector<uint8_t> buffer(pdlibrun::RequiredBufferSize(format, mode), 0);
    buffer[0]                      = WindowFlagValid;
    buffer[pdlibrun::AreaModeByte] = static_cast<uint8_t>(areaMode << AreaModeShift);

    const double fullScale = static_cast<double>((1u << format.confidenceBits) - 1);
    for (uint32_t i = 0; i < mode.windows; i++)
    {
        double u = 0.0;
        double v = 0.0;
        WindowCentre(mode, i, &u, &v);
        const SceneSample sample = SampleScene(u, v, i);
        // A clipped window has no phase: the 11-bit format marks it with its lowest raw value.
        const int32_t clippedPhase = (11 == format.phaseBits) ? pdlibrun::MinRawPhase(format) : 0;
        const int32_t rawPhase =
            sample.clipped ? clippedPhase : static_cast<int32_t>(std::lround(sample.phasePixels * RawPhasePerPixel));
        const uint32_t confidence = static_cast<uint32_t>(std::lround(sample.confidence * fullScale));
        pdlibrun::EncodeRecord(format, confidence, rawPhase, &buffer[pdlibrun::RecordOffset(format, mode, i)]);
    }
    return buffer;
}

bool WriteFile(const std::string& path, const std::vector<uint8_t>& bytes)
{
    std::ofstream out(path, std::ios::binary);
    out.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    return static_cast<bool>(out);
}
} // namespace

int main(int argc, char** argv)
{
    if (2 != argc)
    {
        std::fprintf(stderr, "usage: pdlib-make-examples OUTDIR\n");
        return 2;
    }
    const std::string directory = argv[1];
    bool              written   = WriteCalibration(directory + "/calib_16x12.json");
    for (int format = 1; format <= 3; format++)
    {
        for (uint32_t areaMode = 0; areaMode <= 2; areaMode++)
        {
            const std::string name = "stats_fmt" + std::to_string(format) + "_mode" + std::to_string(areaMode) + ".bin";
            written                = WriteFile(directory + "/" + name, MakeStatsBuffer(format, areaMode)) && written;
        }
    }
    if (!written)
    {
        std::fprintf(stderr, "pdlib-make-examples: cannot write into %s\n", directory.c_str());
        return 1;
    }
    return 0;
}
