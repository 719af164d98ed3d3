#include "svgmaps.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <iomanip>
#include <sstream>
#include <string>
#include <vector>

#include "windowreport.h"

namespace pdlibrun
{
namespace
{
constexpr double PanelWidth  = 360.0;
constexpr double Margin      = 24.0;
constexpr double TitleHeight = 24.0;
constexpr double ScaleHeight = 44.0;

/// One heat-map cell in panel coordinates, with the value it shows.
struct Cell
{
    double x;
    double y;
    double width;
    double height;
    double value;
};

struct Panel
{
    std::string       title;
    double            height; ///< of the map, without title and scale
    std::vector<Cell> cells;
};

std::string Number(double value)
{
    std::ostringstream text;
    // Ten digits: every window's integer defocus and confidence print exactly.
    text << std::setprecision(10) << value;
    return text.str();
}

std::string Rgb(double red, double green, double blue)
{
    std::ostringstream text;
    text << "rgb(" << std::lround(red) << "," << std::lround(green) << "," << std::lround(blue) << ")";
    return text.str();
}

/// Values of both signs are shown blue through white to red around zero; values of one sign
/// from dark blue to yellow over their range.
class ColourScale
{
public:
    explicit ColourScale(const std::vector<Cell>& cells)
    {
        for (const Cell& cell : cells)
        {
            m_low  = std::min(m_low, cell.value);
            m_high = std::max(m_high, cell.value);
        }
        if (cells.empty())
        {
            m_low = m_high = 0.0;
        }
        m_diverging = (m_low < 0.0) && (m_high > 0.0);
        if (m_diverging)
        {
            m_high = std::max(-m_low, m_high);
            m_low  = -m_high;
        }
    }

    std::string Colour(double value) const
    {
        const double span     = m_high - m_low;
        const double position = (span > 0.0) ? std::clamp((value - m_low) / span, 0.0, 1.0) : 0.5;
        if (m_diverging)
        {
            const double toEnd = std::fabs(position - 0.5) * 2.0; // 0 at zero, 1 at either end
            return (position < 0.5) ? Rgb(255 - 196 * toEnd, 255 - 152 * toEnd, 255 - 75 * toEnd)
                                    : Rgb(255 - 75 * toEnd, 255 - 196 * toEnd, 255 - 196 * toEnd);
        }
        return Rgb(27 + (246 - 27) * position, 31 + (215 - 31) * position, 59 + (70 - 59) * position);
    }

    double Low() const { return m_low; }
    double High() const { return m_high; }

private:
    double m_low       = 1e300;
    double m_high      = -1e300;
    bool   m_diverging = false;
};

void WritePanel(std::ostream& out, const Panel& panel, double left, double top, int index,
                const std::function<void(std::ostream&)>& overlay)
{
    const ColourScale scale(panel.cells);
    out << "<g transform=\"translate(" << Number(left) << "," << Number(top) << ")\">\n";
    out << "<text x=\"0\" y=\"16\" class=\"title\">" << panel.title << "</text>\n";
    out << "<g transform=\"translate(0," << Number(TitleHeight) << ")\">\n";
    for (const Cell& cell : panel.cells)
    {
        out << "<rect class=\"cell\" x=\"" << Number(cell.x) << "\" y=\"" << Number(cell.y) << "\" width=\""
            << Number(cell.width) << "\" height=\"" << Number(cell.height) << "\" fill=\"" << scale.Colour(cell.value)
            << "\"><title>" << Number(cell.value) << "</title></rect>\n";
    }
    out << "<rect x=\"0\" y=\"0\" width=\"" << Number(PanelWidth) << "\" height=\"" << Number(panel.height)
        << "\" fill=\"none\" stroke=\"#444\"/>\n";
    overlay(out);
    // The colour scale: a bar from the lowest to the highest value shown, with both ends named.
    const double barTop = panel.height + 10.0;
    out << "<defs><linearGradient id=\"scale" << index << "\">";
    for (int stop = 0; stop <= 10; ++stop)
    {
        const double at = stop / 10.0;
        out << "<stop offset=\"" << Number(at) << "\" stop-color=\""
            << scale.Colour(scale.Low() + at * (scale.High() - scale.Low())) << "\"/>";
    }
    out << "</linearGradient></defs>\n";
    out << "<rect class=\"scale\" x=\"0\" y=\"" << Number(barTop) << "\" width=\"" << Number(PanelWidth)
        << "\" height=\"12\" fill=\"url(#scale" << index << ")\"/>\n";
    out << "<text x=\"0\" y=\"" << Number(barTop + 28) << "\">" << Number(scale.Low()) << "</text>\n";
    out << "<text x=\"" << Number(PanelWidth) << "\" y=\"" << Number(barTop + 28) << "\" text-anchor=\"end\">"
        << Number(scale.High()) << "</text>\n";
    out << "</g>\n</g>\n";
}

void WritePanels(std::ostream& out, const std::vector<Panel>& panels,
                 const std::function<void(std::ostream&, const Panel&)>& overlay)
{
    double mapHeight = 0.0;
    for (const Panel& panel : panels)
    {
        mapHeight = std::max(mapHeight, panel.height);
    }
    const double width  = Margin + panels.size() * (PanelWidth + Margin);
    const double height = Margin + TitleHeight + mapHeight + ScaleHeight + Margin;
    out << "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";
    out << "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"" << Number(width) << "\" height=\"" << Number(height)
        << "\" viewBox=\"0 0 " << Number(width) << " " << Number(height) << "\" font-family=\"sans-serif\""
        << " font-size=\"12\">\n";
    out << "<style>.title { font-size: 14px; font-weight: bold; } .cell { stroke: #fff; stroke-width: 0.5; }"
        << " .af-window { fill: none; stroke: #000; stroke-width: 2; stroke-dasharray: 6 3; }</style>\n";
    out << "<rect width=\"100%\" height=\"100%\" fill=\"#fff\"/>\n";
    for (size_t index = 0; index < panels.size(); ++index)
    {
        const Panel& panel = panels[index];
        WritePanel(out, panel, Margin + index * (PanelWidth + Margin), Margin, static_cast<int>(index),
                   [&](std::ostream& stream) { overlay(stream, panel); });
    }
    out << "</svg>\n";
}

/// Each knot's cell reaches halfway to its neighbours, from 0 to the image's extent.
std::vector<std::pair<double, double>> KnotSpans(const UINT16* addresses, uint32_t count, double extent)
{
    std::vector<std::pair<double, double>> spans;
    for (uint32_t knot = 0; knot < count; ++knot)
    {
        const double from = (0 == knot) ? 0.0 : (addresses[knot - 1] + addresses[knot]) / 2.0;
        const double to   = (count - 1 == knot) ? extent : (addresses[knot] + addresses[knot + 1]) / 2.0;
        spans.emplace_back(std::clamp(from, 0.0, extent), std::clamp(to, 0.0, extent));
    }
    return spans;
}
} // namespace

void WriteFrameSvg(std::ostream& out, const PDLibOutputData& output, const WindowFractions& window)
{
    const uint32_t count   = WindowCount(output);
    const uint32_t columns = std::max<uint32_t>(1, output.horizontalWindowCount);
    const uint32_t rows    = std::max<uint32_t>(1, (count + columns - 1) / columns);
    const double   side    = PanelWidth / columns;

    struct Map
    {
        const char*                                    title;
        std::function<double(const PDLibDefocusInfo&)> value;
    };
    const Map maps[] = {
        {"Defocus", [](const PDLibDefocusInfo& info) { return static_cast<double>(info.defocus); }},
        {"Confidence", [](const PDLibDefocusInfo& info) { return static_cast<double>(info.confidence); }},
        {"Phase difference", [](const PDLibDefocusInfo& info) { return static_cast<double>(info.phaseDiff); }},
    };
    std::vector<Panel> panels;
    for (const Map& map : maps)
    {
        Panel panel{map.title, rows * side, {}};
        for (uint32_t index = 0; index < count; ++index)
        {
            panel.cells.push_back(
                {(index % columns) * side, (index / columns) * side, side, side, map.value(output.defocus[index])});
        }
        panels.push_back(std::move(panel));
    }
    WritePanels(out, panels, [&](std::ostream& stream, const Panel& panel) {
        stream << "<rect class=\"af-window\" x=\"" << Number(window.startX * PanelWidth) << "\" y=\""
               << Number(window.startY * panel.height) << "\" width=\""
               << Number((window.endX - window.startX) * PanelWidth) << "\" height=\""
               << Number((window.endY - window.startY) * panel.height) << "\"/>\n";
    });
}

void WriteCalibrationSvg(std::ostream& out, const PDAFDCCCalibrationData& calibration, uint32_t imageWidth,
                         uint32_t imageHeight)
{
    // The loader refuses more knots than the record holds; the bounds are kept here as well.
    const uint32_t knotsX = std::min<uint32_t>(calibration.knotXCount, MaxPDAFKnotX);
    const uint32_t knotsY = std::min<uint32_t>(calibration.knotYCount, MaxPDAFKnotY);
    const double   scale  = PanelWidth / std::max<uint32_t>(1, imageWidth);
    const auto     spansX = KnotSpans(calibration.slopeOffsetAddressX, knotsX, imageWidth);
    const auto     spansY = KnotSpans(calibration.slopeOffsetAddressY, knotsY, imageHeight);

    std::vector<Panel> panels;
    for (const auto& [title, data] :
         {std::make_pair("Slope", calibration.slopeData), std::make_pair("Offset", calibration.offsetData)})
    {
        Panel panel{title, imageHeight * scale, {}};
        for (uint32_t y = 0; y < knotsY; ++y)
        {
            for (uint32_t x = 0; x < knotsX; ++x)
            {
                panel.cells.push_back(
                    {spansX[x].first * scale, spansY[y].first * scale, (spansX[x].second - spansX[x].first) * scale,
                     (spansY[y].second - spansY[y].first) * scale, static_cast<double>(data[y * knotsX + x])});
            }
        }
        panels.push_back(std::move(panel));
    }
    WritePanels(out, panels, [](std::ostream&, const Panel&) {});
}
} // namespace pdlibrun
