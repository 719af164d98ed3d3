// `tonemetry diff` as its users run it: files that differ in one value, one module and one mode,
// equal files, a served file before and after a set over the link, and the trouble statuses.
#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "serverprocess.h"
#include "scratchdirectory.h"
#include "subprocess.h"

namespace
{
using nlohmann::ordered_json;
using testsupport::ProcessResult;
using testsupport::ServerProcess;

class TonemetryDiff : public testing::Test
{
protected:
    ProcessResult Tool(const std::vector<std::string>& arguments) const
    {
        return testsupport::RunProcess(TONEMETRY_EXECUTABLE, arguments, m_directory);
    }

    /// The shipped tuning sample, changed by `edit`, packed into `name`.
    void PackSample(const std::string& name, const std::function<void(ordered_json&)>& edit = {}) const
    {
        ordered_json source =
            ordered_json::parse(std::ifstream(std::string(VARK_EXAMPLES_DIR) + "/tuning_sample.json"));
        if (edit)
        {
            edit(source);
        }
        std::ofstream(m_scratch.PathOf(name + ".json")) << source.dump();
        ProcessResult packed = Tool({"pack", m_scratch.PathOf(name + ".json"), "-o", m_scratch.PathOf(name)});
        ASSERT_EQ(0, packed.exitStatus) << packed.err;
    }

    testsupport::ScratchDirectory m_scratch{"tonemetrydiff"};
    const std::string             m_directory = m_scratch.Path();
};

/// The sample's Usecase.Video threshold set to `value`.
std::function<void(ordered_json&)> VideoThreshold(int value)
{
    return [value](ordered_json& source) {
        for (ordered_json& module : source["modules"])
        {
            if ("Usecase.Video" == module["mode"])
            {
                module["values"]["correlation"]["defocusConfidenceThreshold"] = value;
            }
        }
    };
}

TEST_F(TonemetryDiff, FilesThatDifferInOneValueOneModuleAndOneMode)
{
    PackSample("a.bin");
    PackSample("b.bin", [](ordered_json& source) {
        VideoThreshold(175)(source);
        source["modules"][0]["values"]["HVControl"] = {
            {"horizontalConfWeightTuning", {{{"weight", 0.5}, {"confThreshold", 3}}}}};
        source["modes"].push_back({{"name", "Scene.Snow"}, {"parent", "Default"}});
        source["modules"].push_back(
            {{"name", "tonemetryPDAF"}, {"mode", "Default"}, {"values", ordered_json::object()}});
    });

    ProcessResult json = Tool({"diff", m_scratch.PathOf("a.bin"), m_scratch.PathOf("b.bin"), "--json"});
    EXPECT_EQ(1, json.exitStatus) << json.err;
    // The module stands in the root and so resolves in Usecase.Video too; the mode that only b
    // has is named once, without its modules; the list element that only b has gives values
    // that a lacks.
    const ordered_json expected = {
        {"modes", {{{"mode", "Default|Scene.Snow"}, {"only_in", "b"}}}},
        {"modules",
         {{{"mode", "Default"}, {"module", "tonemetryPDAF"}, {"only_in", "b"}},
          {{"mode", "Default|Usecase.Video"}, {"module", "tonemetryPDAF"}, {"only_in", "b"}}}},
        {"values",
         {{{"mode", "Default"},
           {"path", "tonemetryPDLib.HVControl.horizontalConfWeightTuning[0]"},
           {"name", "confThreshold"},
           {"a", nullptr},
           {"b", "3"}},
          {{"mode", "Default"},
           {"path", "tonemetryPDLib.HVControl.horizontalConfWeightTuning[0]"},
           {"name", "weight"},
           {"a", nullptr},
           {"b", "0.5"}},
          {{"mode", "Default|Usecase.Video"},
           {"path", "tonemetryPDLib.correlation"},
           {"name", "defocusConfidenceThreshold"},
           {"a", "150.0"},
           {"b", "175.0"}}}}};
    EXPECT_EQ(expected, ordered_json::parse(json.out, nullptr, false)) << json.out;

    ProcessResult readable = Tool({"diff", m_scratch.PathOf("b.bin"), m_scratch.PathOf("a.bin")});
    EXPECT_EQ(1, readable.exitStatus);
    EXPECT_EQ("mode Default|Scene.Snow: only in a\n"
              "module tonemetryPDAF in Default: only in a\n"
              "module tonemetryPDAF in Default|Usecase.Video: only in a\n"
              "value Default tonemetryPDLib.HVControl.horizontalConfWeightTuning[0] confThreshold: a 3, b (none)\n"
              "value Default tonemetryPDLib.HVControl.horizontalConfWeightTuning[0] weight: a 0.5, b (none)\n"
              "value Default|Usecase.Video tonemetryPDLib.correlation defocusConfidenceThreshold: a 175.0, b 150.0\n",
              readable.out);
}

TEST_F(TonemetryDiff, EqualFilesAndTroubleStatuses)
{
    PackSample("a.bin");
    PackSample("same.bin");
    ProcessResult equal = Tool({"diff", m_scratch.PathOf("a.bin"), m_scratch.PathOf("same.bin"), "--json"});
    EXPECT_EQ(0, equal.exitStatus) << equal.err;
    EXPECT_EQ((ordered_json{{"modes", ordered_json::array()},
                            {"modules", ordered_json::array()},
                            {"values", ordered_json::array()}}),
              ordered_json::parse(equal.out, nullptr, false));
    EXPECT_EQ("", Tool({"diff", m_scratch.PathOf("a.bin"), m_scratch.PathOf("same.bin")}).out);

    std::ofstream(m_scratch.PathOf("junk.bin")) << "not a tuning file";
    struct Case
    {
        std::vector<std::string> arguments;
        std::string              error;
    };
    const Case cases[] = {
        {{m_scratch.PathOf("a.bin"), m_scratch.PathOf("missing.bin")},
         "tonemetry diff: " + m_scratch.PathOf("missing.bin") + ": cannot be read\n"},
        {{m_scratch.PathOf("junk.bin"), m_scratch.PathOf("a.bin")},
         "tonemetry diff: " + m_scratch.PathOf("junk.bin") + ": "},
        {{"live:127.0.0.1:1", m_scratch.PathOf("a.bin")}, "tonemetry diff: cannot connect to live:127.0.0.1:1: "},
        {{"live:nohost:x", m_scratch.PathOf("a.bin")}, "tonemetry diff: "},
    };
    for (const Case& run : cases)
    {
        std::vector<std::string> arguments = {"diff"};
        arguments.insert(arguments.end(), run.arguments.begin(), run.arguments.end());
        ProcessResult result = Tool(arguments);
        SCOPED_TRACE(run.arguments[0]);
        EXPECT_EQ(2, result.exitStatus);
        EXPECT_EQ(0u, result.err.find(run.error)) << result.err;
        EXPECT_EQ("", result.out);
    }
}

TEST_F(TonemetryDiff, AServedFileBeforeAndAfterASetOverTheLink)
{
    PackSample("a.bin");
    ServerProcess           server(TONEMETRY_EXECUTABLE, {"serve", m_scratch.PathOf("a.bin")}, m_directory);
    std::optional<unsigned> port = server.WaitForPort(std::chrono::seconds(10));
    ASSERT_TRUE(port.has_value()) << server.Err();
    const std::string device = "live:127.0.0.1:" + std::to_string(*port);

    ProcessResult before = Tool({"diff", device, m_scratch.PathOf("a.bin")});
    EXPECT_EQ(0, before.exitStatus) << before.err;
    EXPECT_EQ("", before.out);

    ProcessResult set =
        Tool({"live", device, "set", "Usecase.Video", "tonemetryPDLib.correlation", "defocusConfidenceThreshold=175"});
    ASSERT_EQ(0, set.exitStatus) << set.err;
    ProcessResult after = Tool({"diff", device, m_scratch.PathOf("a.bin")});
    EXPECT_EQ(1, after.exitStatus) << after.err;
    EXPECT_EQ("value Default|Usecase.Video tonemetryPDLib.correlation defocusConfidenceThreshold: a 175.0, b 150.0\n",
              after.out);
}
} // namespace
