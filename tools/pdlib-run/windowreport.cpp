#include "windowreport.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <functional>
#include <iomanip>
#include <sstream>
#include <string>
#include <vector>

namespace pdlibrun
{
uint32_t WindowCount(const PDLibOutputData& output)
{
    // The counts come from the library; never index past the output's own array.
    const uint64_t count = static_cast<uint64_t>(output.horizontalWindowCount) * output.verticalWindowCount;
    return static_cast<uint32_t>(std::min<uint64_t>(count, PDLibMaxWindowCount));
}

namespace
{

std::string FormatPhase(FLOAT phaseDiff)
{
    // Phases come in sixteenths of a pixel: four decimals show them exactly.
    std::ostringstream text;
    text << std::fixed << std::setprecision(4) << static_cast<double>(phaseDiff);
    return text.str();
}

void PrintGrid(std::ostream& out, const std::string& title, const PDLibOutputData& output,
               const std::function<std::string(const PDLibDefocusInfo&)>& format)
{
    const uint32_t           columns = output.horizontalWindowCount;
    const uint32_t           count   = WindowCount(output);
    std::vector<std::string> cells;
    size_t                   width = std::to_string(columns).size();
    for (uint32_t i = 0; i < count; i++)
    {
        cells.push_back(format(output.defocus[i]));
        width = std::max(width, cells.back().size());
    }

    out << "\n" << title << "\n   ";
    for (uint32_t column = 0; column < columns; column++)
    {
        out << ' ' << std::setw(static_cast<int>(width)) << column;
    }
    out << "\n";
    for (uint32_t i = 0; i < count; i++)
    {
        if (0 == i % columns)
        {
            out << std::setw(3) << i / columns;
        }
        out << ' ' << std::setw(static_cast<int>(width)) << cells[i];
        if (columns - 1 == i % columns)
        {
            out << "\n";
        }
    }
    if (0 != count % columns)
    {
        out << "\n";
    }
}
} // namespace

void PrintWindowTables(std::ostream& out, const PDLibOutputData& output, KelResult result)
{
    out << "windows: " << output.horizontalWindowCount << " x " << output.verticalWindowCount << " ("
        << WindowCount(output) << "), result " << result << "\n";
    if (0 == WindowCount(output))
    {
        return;
    }
    PrintGrid(out, "defocus", output, [](const PDLibDefocusInfo& window) { return std::to_string(window.defocus); });
    PrintGrid(out, "confidence", output,
              [](const PDLibDefocusInfo& window) { return std::to_string(window.confidence); });
    PrintGrid(out, "phase difference (pixels)", output,
              [](const PDLibDefocusInfo& window) { return FormatPhase(window.phaseDiff); });
}

void PrintWindowJson(std::ostream& out, const PDLibOutputData& output, KelResult result)
{
    nlohmann::ordered_json report;
    report["horizontalWindowCount"] = output.horizontalWindowCount;
    report["verticalWindowCount"]   = output.verticalWindowCount;
    report["result"]                = result;
    nlohmann::ordered_json windows  = nlohmann::ordered_json::array();
    for (uint32_t i = 0; i < WindowCount(output); i++)
    {
        const PDLibDefocusInfo& window = output.defocus[i];
        windows.push_back({{"index", i},
                           {"defocus", window.defocus},
                           {"confidence", window.confidence},
                           {"phaseDiff", static_cast<double>(window.phaseDiff)}});
    }
    report["windows"] = std::move(windows);
    out << report.dump() << "\n";
}
} // namespace pdlibrun
