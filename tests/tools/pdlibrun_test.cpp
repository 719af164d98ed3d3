// pdlib-run as its users run it: a subprocess, judged by its exit status, its output and its
// error lines.
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <sstream>

#include "statslayout.h"
#include "scratchdirectory.h"
#include "subprocess.h"

namespace
{
using nlohmann::json;
using testsupport::ProcessResult;

// A 2 x 2 calibration whose one patch spans the default AF window (fractions 0.25 to 0.75 of
// 4000 x 3000, centre (2000, 1500)). The centre sits in the middle of the patch, so the defocus
// is the mean of the four corners: slope 0.625 (640 in x1024 fixed point) times the phase in
// 1/16 pixel, plus the mean offset 150.
const char* const PatchCalibration = R"({
  "knotXCount": 2, "knotYCount": 2,
  "slopeOffsetAddressX": [1000, 3000], "slopeOffsetAddressY": [750, 2250],
  "slopeData": [0.25, 0.5, 0.75, 1.0], "offsetData": [0, 100, 200, 300]
})";

struct WindowRecord
{
    uint32_t confidence;
    int32_t  rawPhase; ///< 1/16 pixel
};

// Format 2, flexible mode (8 windows in a row). The default threshold is 100.
const WindowRecord PatchWindows[] = {
    {100, 32},  // exactly at the threshold: level 1024, reported 1023; phase 2.0
    {50, -24},  // half the threshold: level 512; phase -1.5
    {0, -1024}, // the 11-bit format's "no phase" value: level 0, defocus still computed
    {2047, 0},  // phase 0: the mean offset alone
    {0, 0},     {0, 0}, {0, 0}, {0, 0},
};

const uint32_t FlexibleMode = 2;

class PdlibRunTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        WriteText("patch.json", PatchCalibration);
        WriteBytes("patch.bin", MakeFormat2Buffer(FlexibleMode, PatchWindows));
        WriteBytes("mode3.bin", {0x01, 0xC0});
        std::vector<uint8_t> shortBuffer = MakeFormat2Buffer(FlexibleMode, PatchWindows);
        shortBuffer.pop_back();
        WriteBytes("short.bin", shortBuffer);
        WriteText("malformed.json", R"({"knotXCount": 2, "knotYCount": )");
        json shortArray = json::parse(PatchCalibration);
        shortArray["slopeData"].erase(3);
        WriteText("short-array.json", shortArray.dump());
    }

    static std::vector<uint8_t> MakeFormat2Buffer(uint32_t areaMode, const WindowRecord (&windows)[8])
    {
        pdlibrun::StatsFormat format;
        pdlibrun::WindowMode  mode;
        pdlibrun::LookUpStatsFormat(2, &format);
        pdlibrun::LookUpWindowMode(areaMode, &mode);
        std::vector<uint8_t> buffer(pdlibrun::RequiredBufferSize(format, mode), 0);
        buffer[pdlibrun::AreaModeByte] = static_cast<uint8_t>(areaMode << 6);
        for (uint32_t i = 0; i < 8; i++)
        {
            pdlibrun::EncodeRecord(format, windows[i].confidence, windows[i].rawPhase,
                                   &buffer[pdlibrun::RecordOffset(format, mode, i)]);
        }
        return buffer;
    }

    void WriteText(const std::string& name, const std::string& text) const
    {
        std::ofstream(m_scratch.PathOf(name)) << text;
    }

    void WriteBytes(const std::string& name, const std::vector<uint8_t>& bytes) const
    {
        std::ofstream(m_scratch.PathOf(name), std::ios::binary)
            .write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    }

    /// Arguments that start with '@' name a file of the scratch directory.
    ProcessResult Run(std::vector<std::string> arguments) const
    {
        for (std::string& argument : arguments)
        {
            if ('@' == argument.front())
            {
                argument = m_scratch.PathOf(argument.substr(1));
            }
        }
        return testsupport::RunProcess(PDLIB_RUN_EXECUTABLE, arguments, m_directory);
    }

    /// A run that must succeed, with --json added; its report.
    json RunJson(std::vector<std::string> arguments) const
    {
        arguments.push_back("--json");
        ProcessResult result = Run(arguments);
        EXPECT_EQ(0, result.exitStatus) << result.err;
        EXPECT_EQ("", result.err);
        return json::parse(result.out, nullptr, false);
    }

    testsupport::ScratchDirectory m_scratch{"pdlibrun"};
    const std::string             m_directory = m_scratch.Path();
};

std::vector<std::string> PatchRun(std::initializer_list<std::string> extra = {})
{
    std::vector<std::string> arguments = {"--calib", "@patch.json", "--stats", "@patch.bin", "--format", "2"};
    arguments.insert(arguments.end(), extra);
    return arguments;
}

// ---- Bad input: one line on stderr, nothing on stdout, status 2 ------------------------------

TEST_F(PdlibRunTest, EachKindOfBadInputExitsWithStatus2AndOneLineNamingIt)
{
    struct BadInput
    {
        std::vector<std::string> arguments;
        const char*              fragment; ///< what the message must name
    };
    const BadInput cases[] = {
        {{"--stats", "@patch.bin", "--format", "2"}, "--calib"},
        {{"--calib", "@patch.json", "--stats", "@patch.bin", "--format", "0"}, "--format"},
        {{"--calib", "@patch.json", "--stats", "@patch.bin", "--format", "4"}, "--format"},
        {PatchRun({"--gain", "1.5x"}), "--gain"},
        {PatchRun({"--window", "0.2,0.2,1.2,0.8"}), "--window"},
        // Format 2, mode 2: ten header bytes and eight records of five.
        {{"--calib", "@patch.json", "--stats", "@short.bin", "--format", "2"}, "needs 50 bytes, the file has 49"},
        {{"--calib", "@patch.json", "--stats", "@", "--format", "2"}, "not a regular file"},
        {{"--calib", "@malformed.json", "--stats", "@patch.bin", "--format", "2"}, "malformed JSON"},
        {{"--calib", "@short-array.json", "--stats", "@patch.bin", "--format", "2"},
         "slopeData: expected an array of 4 numbers, found 3"},
    };
    for (const BadInput& badInput : cases)
    {
        SCOPED_TRACE(badInput.fragment);
        ProcessResult result = Run(badInput.arguments);
        EXPECT_EQ(2, result.exitStatus);
        EXPECT_EQ("", result.out);
        ASSERT_FALSE(result.err.empty());
        EXPECT_EQ(1, std::count(result.err.begin(), result.err.end(), '\n')) << result.err;
        EXPECT_EQ('\n', result.err.back());
        EXPECT_EQ(0u, result.err.find("pdlib-run: ")) << result.err;
        EXPECT_NE(std::string::npos, result.err.find(badInput.fragment)) << result.err;
    }
}

TEST_F(PdlibRunTest, LibraryThatCannotBeLoadedExitsWithStatus1)
{
    ProcessResult result = Run(PatchRun({"--library", "@missing.so"}));
    EXPECT_EQ(1, result.exitStatus);
    EXPECT_EQ("", result.out);
    EXPECT_EQ(1, std::count(result.err.begin(), result.err.end(), '\n')) << result.err;
    EXPECT_NE(std::string::npos, result.err.find("cannot load the library")) << result.err;
}

// ---- Good runs -------------------------------------------------------------------------------

TEST_F(PdlibRunTest, ReportsTheWindowGridOfEachModeInEachFormat)
{
    struct Grid
    {
        uint32_t horizontal;
        uint32_t vertical;
    };
    const Grid grids[] = {{16, 12}, {8, 6}, {8, 1}};
    for (int format = 1; format <= 3; format++)
    {
        for (uint32_t mode = 0; mode < 3; mode++)
        {
            SCOPED_TRACE("format " + std::to_string(format) + ", mode " + std::to_string(mode));
            const std::string stats = std::string(VARK_EXAMPLES_DIR) + "/stats_fmt" + std::to_string(format) + "_mode" +
                                      std::to_string(mode) + ".bin";
            json report = RunJson({"--calib", std::string(VARK_EXAMPLES_DIR) + "/calib_16x12.json", "--stats", stats,
                                   "--format", std::to_string(format)});
            ASSERT_TRUE(report.is_object());
            EXPECT_EQ(0, report["result"]);
            EXPECT_EQ(grids[mode].horizontal, report["horizontalWindowCount"]);
            EXPECT_EQ(grids[mode].vertical, report["verticalWindowCount"]);
            ASSERT_EQ(grids[mode].horizontal * grids[mode].vertical, report["windows"].size());
            EXPECT_EQ(report["windows"].size() - 1, report["windows"].back()["index"]);
        }
    }
}

TEST_F(PdlibRunTest, PicturesHoldOneCellPerWindowAndKnotWithItsValue)
{
    const std::string calibration = std::string(VARK_EXAMPLES_DIR) + "/calib_16x12.json";
    for (uint32_t mode = 0; mode < 3; mode++)
    {
        SCOPED_TRACE("mode " + std::to_string(mode));
        const std::string stats = std::string(VARK_EXAMPLES_DIR) + "/stats_fmt3_mode" + std::to_string(mode) + ".bin";
        const std::vector<std::string> frame    = {"--calib", calibration, "--stats", stats, "--format", "3"};
        json                           report   = RunJson(frame);
        std::vector<std::string>       pictured = frame;
        pictured.insert(pictured.end(), {"--svg", "@frame.svg", "--calib-svg", "@calib.svg"});
        ASSERT_EQ(0, Run(pictured).exitStatus);

        // Parsed as XML by the build machine's python3: cells in window order, titled by value.
        const ProcessResult parsed =
            testsupport::RunHostProcess("python3", {SVG_CELLS_SCRIPT, m_scratch.PathOf("frame.svg")}, m_directory);
        ASSERT_EQ(0, parsed.exitStatus) << parsed.err;
        const json  maps    = json::parse(parsed.out);
        const json& windows = report["windows"];
        ASSERT_EQ(3u, maps["panels"].size());
        EXPECT_EQ(3, maps["afWindows"]);
        const std::pair<const char*, size_t> fields[] = {{"defocus", 0}, {"confidence", 1}};
        for (const auto& [field, panel] : fields)
        {
            const json& cells = maps["panels"][panel];
            ASSERT_EQ(windows.size(), cells.size());
            for (size_t i = 0; i < windows.size(); i++)
            {
                EXPECT_EQ(std::to_string(windows[i][field].get<long long>()), cells[i].get<std::string>()) << field;
            }
        }
        EXPECT_EQ(windows.size(), maps["panels"][2].size());

        const ProcessResult grids =
            testsupport::RunHostProcess("python3", {SVG_CELLS_SCRIPT, m_scratch.PathOf("calib.svg")}, m_directory);
        ASSERT_EQ(0, grids.exitStatus) << grids.err;
        const json knots = json::parse(grids.out);
        ASSERT_EQ(2u, knots["panels"].size());
        EXPECT_EQ(16u * 12u, knots["panels"][0].size());
        EXPECT_EQ(16u * 12u, knots["panels"][1].size());
    }
}

TEST_F(PdlibRunTest, DefocusIsTheCalibrationAtTheAfWindowCentre)
{
    json report = RunJson(PatchRun());
    ASSERT_TRUE(report.is_object());
    ASSERT_EQ(8u, report["windows"].size());
    const json& windows = report["windows"];

    // 640 x 32 + 150.
    EXPECT_EQ(20630, windows[0]["defocus"]);
    EXPECT_EQ(1023, windows[0]["confidence"]);
    EXPECT_EQ(2.0, windows[0]["phaseDiff"]);
    // 640 x -24 + 150.
    EXPECT_EQ(-15210, windows[1]["defocus"]);
    EXPECT_EQ(512, windows[1]["confidence"]);
    EXPECT_EQ(-1.5, windows[1]["phaseDiff"]);
    // 640 x -1024 + 150, with no confidence at all.
    EXPECT_EQ(-655210, windows[2]["defocus"]);
    EXPECT_EQ(0, windows[2]["confidence"]);
    EXPECT_EQ(-64.0, windows[2]["phaseDiff"]);
    EXPECT_EQ(150, windows[3]["defocus"]);
    EXPECT_EQ(1023, windows[3]["confidence"]);
}

TEST_F(PdlibRunTest, EachOptionReachesTheLibrary)
{
    struct OptionCase
    {
        std::vector<std::string> extra;
        int                      defocus0, defocus1, confidence0, confidence1;
    };
    const OptionCase cases[] = {
        // 20630 >> 4 and -15210 >> 4, the latter rounding down as an arithmetic shift does.
        {{"--shift", "4"}, 1289, -951, 1023, 512},
        // Confidence x 1024 / 200.
        {{"--threshold", "200"}, 20630, -15210, 512, 256},
        // Centre (1000, 750): the patch's first corner alone, slope 256 and offset 0.
        {{"--window", "0.2,0.2,0.3,0.3"}, 8192, -6144, 1023, 512},
        // The whole of a 1000 x 750 crop at (500, 375) has the same centre (1000, 750).
        {{"--crop", "500,375,1000,750", "--window", "0,0,1,1"}, 8192, -6144, 1023, 512},
    };
    for (const OptionCase& option : cases)
    {
        SCOPED_TRACE(option.extra.front());
        std::vector<std::string> arguments = PatchRun();
        arguments.insert(arguments.end(), option.extra.begin(), option.extra.end());
        json report = RunJson(arguments);
        ASSERT_TRUE(report.is_object());
        ASSERT_EQ(8u, report["windows"].size());
        EXPECT_EQ(option.defocus0, report["windows"][0]["defocus"]);
        EXPECT_EQ(option.defocus1, report["windows"][1]["defocus"]);
        EXPECT_EQ(option.confidence0, report["windows"][0]["confidence"]);
        EXPECT_EQ(option.confidence1, report["windows"][1]["confidence"]);
    }
}

TEST_F(PdlibRunTest, TablesStartWithTheWindowCountsAndOnlyVerboseLetsTheLibrarysInfoLinesThrough)
{
    ProcessResult quiet = Run(PatchRun());
    ASSERT_EQ(0, quiet.exitStatus) << quiet.err;
    EXPECT_EQ(0u, quiet.out.find("windows: 8 x 1 (8), result 0\n")) << quiet.out;
    EXPECT_NE(std::string::npos, quiet.out.find("20630")) << quiet.out;
    EXPECT_NE(std::string::npos, quiet.out.find("-64.0000")) << quiet.out;
    EXPECT_EQ("", quiet.err);

    ProcessResult verbose = Run(PatchRun({"--verbose"}));
    ASSERT_EQ(0, verbose.exitStatus);
    EXPECT_NE(std::string::npos, verbose.err.find("KelPDLibrarEntry")) << verbose.err;
    EXPECT_NE(std::string::npos, verbose.err.find("PDLib pPDLibData[CamId:0] in destroy is")) << verbose.err;
}

TEST_F(PdlibRunTest, RefusedWindowModeGivesNoWindowsAndTheLibrarysError)
{
    ProcessResult result = Run({"--calib", "@patch.json", "--stats", "@mode3.bin", "--format", "2"});
    EXPECT_EQ(0, result.exitStatus);
    EXPECT_EQ("windows: 0 x 0 (0), result 0\n", result.out);
    EXPECT_NE(std::string::npos, result.err.find("bad win_mode: 3")) << result.err;
}

// ---- The shipped examples ----------------------------------------------------------------------

TEST_F(PdlibRunTest, GeneratorReproducesTheShippedExamples)
{
    ProcessResult result = testsupport::RunProcess(PDLIB_MAKE_EXAMPLES_EXECUTABLE, {m_directory}, m_directory);
    ASSERT_EQ(0, result.exitStatus) << result.err;
    auto contents = [](const std::string& path) {
        std::ifstream      file(path, std::ios::binary);
        std::ostringstream bytes;
        bytes << file.rdbuf();
        return bytes.str();
    };
    std::vector<std::string> names = {"calib_16x12.json"};
    for (int format = 1; format <= 3; format++)
    {
        for (int mode = 0; mode < 3; mode++)
        {
            names.push_back("stats_fmt" + std::to_string(format) + "_mode" + std::to_string(mode) + ".bin");
        }
    }
    for (const std::string& name : names)
    {
        const std::string shipped = contents(std::string(VARK_EXAMPLES_DIR) + "/" + name);
        EXPECT_FALSE(shipped.empty()) << name;
        EXPECT_EQ(shipped, contents(m_scratch.PathOf(name))) << name << " differs from the generator's";
    }
}
} // namespace
