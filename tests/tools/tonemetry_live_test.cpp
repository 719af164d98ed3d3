// `tonemetry live` as its users run it, against the live tuning link of a set manager of the
// store's test modules with known values: every command's readable and JSON output, a set read
// back by a get, and a set that the device refuses in part.
#include <gtest/gtest.h>

#include <cinttypes>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "linkfixture.h"
#include "scratchdirectory.h"
#include "subprocess.h"

namespace
{
using testsupport::ProcessResult;

class TonemetryLive : public linktest::LinkTest
{
protected:
    void SetUp() override
    {
        // The fixture's client would hold the link's one connection.
        ASSERT_NO_FATAL_FAILURE(StartLink());
        m_client->Close();
        m_manager->SetControlValues("3=17,12=0.5");
        m_manager->SetTriggerValues("7=-2");
    }

    ProcessResult Live(const std::vector<std::string>& arguments) const
    {
        std::vector<std::string> all = {"live", "live:localhost:" + std::to_string(m_manager->GetTuningLinkPort())};
        all.insert(all.end(), arguments.begin(), arguments.end());
        return testsupport::RunProcess(TONEMETRY_EXECUTABLE, all, m_directory);
    }

    /// Runs `arguments` and expects exit 0 with `out` exactly and nothing on standard error.
    void ExpectOutput(const std::vector<std::string>& arguments, const std::string& out) const
    {
        ProcessResult result = Live(arguments);
        EXPECT_EQ(0, result.exitStatus);
        EXPECT_EQ(out, result.out);
        EXPECT_EQ("", result.err);
    }

    testsupport::ScratchDirectory m_scratch{"tonemetrylive"};
    const std::string             m_directory = m_scratch.Path();
};

TEST_F(TonemetryLive, DeviceInfoShowsTheTagVersionAndHandle)
{
    char handle[32];
    std::snprintf(handle, sizeof(handle), "0x%016" PRIxPTR,
                  reinterpret_cast<uintptr_t>(static_cast<IParameterDataAPI*>(m_manager.get())));
    ExpectOutput({"info"}, std::string("name: rear-wide\nversion: 1.0\nhandle: ") + handle + "\n");
    ExpectOutput({"--json", "info"},
                 std::string("{\n  \"name\": \"rear-wide\",\n  \"version\": \"1.0\",\n  \"handle\": \"") + handle +
                     "\"\n}\n");
}

TEST_F(TonemetryLive, ValueListsComeOneItemALine)
{
    ExpectOutput({"controls"}, "3 = 17\n12 = 0.500000\n");
    ExpectOutput({"--json", "controls"}, "{\n  \"controls\": [\n    {\n      \"id\": 3,\n      \"value\": 17\n    },\n"
                                         "    {\n      \"id\": 12,\n      \"value\": 0.5\n    }\n  ]\n}\n");
    ExpectOutput({"triggers"}, "7 = -2\n");
    ExpectOutput({"--json", "triggers"},
                 "{\n  \"triggers\": [\n    {\n      \"id\": 7,\n      \"value\": -2\n    }\n  ]\n}\n");
    ExpectOutput({"modes", "Default"}, "Usecase.Video\n");
    ExpectOutput({"modes", "Usecase.Video"}, "Feature1.ISPHDR\n");
    ExpectOutput({"--json", "modes", "Default|Usecase.Video|Feature1.ISPHDR"}, "{\n  \"modes\": []\n}\n");
}

TEST_F(TonemetryLive, DescribeShowsRowsWithValuesTypesAndCounts)
{
    ExpectOutput({"describe", "Default", "demo10_bps.module_version"},
                 "major_revision = 1 (Int32)\nminor_revision = 0 (Int32)\nincr_revision = 0 (Int32)\n");
    ExpectOutput({"describe", "Default", "demo10_bps.gamma_tab"}, "gamma (Float[4])\n");
    // Without a path, the root's modules with the mode of the instance that wins.
    ExpectOutput({"describe", "Usecase.Video"}, "testconfigdata = Default (Module)\ndemo10_ife = Default (Module)\n"
                                                "demo10_bps = Default|Usecase.Video (Module)\n");
    ExpectOutput({"--json", "describe", "Default", "demo10_bps.gamma_tab"},
                 "{\n  \"rows\": [\n    {\n      \"name\": \"gamma\",\n      \"type\": \"Float\",\n"
                 "      \"count\": 4\n    }\n  ]\n}\n");
    ExpectOutput({"describe", "Default", "nosuch"}, "");
}

TEST_F(TonemetryLive, GetReadsNamedMembersWholeRecordsAndArrays)
{
    ExpectOutput({"get", "Default", "demo10_bps", "gain", "label"}, "gain = 1.5\nlabel = demo\n");
    ExpectOutput({"get", "Usecase.Video", "demo10_bps", "gain"}, "gain = 2.0\n");
    ExpectOutput({"get", "Default", "demo10_bps.gamma_tab"}, "gamma = 0.5,1.0,1.5,2.0\n");
    ExpectOutput({"--json", "get", "Default", "demo10_bps", "gain", "label"},
                 "{\n  \"values\": [\n    {\n      \"name\": \"gain\",\n      \"value\": \"1.5\"\n    },\n"
                 "    {\n      \"name\": \"label\",\n      \"value\": \"demo\"\n    }\n  ]\n}\n");
}

TEST_F(TonemetryLive, SetConfirmsWhatTheDeviceReadsBackAndGetSeesIt)
{
    ExpectOutput({"set", "Default", "demo10_ife", "gain=3", "module_version.major_revision=4"},
                 "gain = 3.0\nmodule_version.major_revision = 4\n");
    ExpectOutput({"get", "Default", "demo10_ife", "gain", "module_version.major_revision"},
                 "gain = 3.0\nmodule_version.major_revision = 4\n");
    ExpectOutput({"--json", "set", "Usecase.Video", "demo10_bps", "gain=2.25"},
                 "{\n  \"values\": [\n    {\n      \"name\": \"gain\",\n      \"value\": \"2.25\"\n    }\n  ]\n}\n");
    ExpectOutput({"get", "Default", "demo10_bps", "gain"}, "gain = 1.5\n");

    // What the device could not set is missing from its echo: it is read back, and unless the
    // device holds the new value after all, that is a finding.
    ProcessResult partly = Live({"set", "Default", "demo10_ife", "nosuch=1", "gain=x1", "gain=5"});
    EXPECT_EQ(1, partly.exitStatus);
    EXPECT_EQ("gain = 5.0\n", partly.out);
    EXPECT_EQ("tonemetry live: not confirmed: nosuch; the device holds no such value\n", partly.err);
}

TEST_F(TonemetryLive, AGetThatFindsNothingSaysWhyAndExitsOne)
{
    struct Case
    {
        std::vector<std::string> arguments;
        std::string              err;
    };
    const Case cases[] = {
        {{"get", "Default", "nosuch.path"}, "tonemetry live: no module nosuch in Default\n"},
        {{"get", "Default", "demo10_ife.nosuch"}, "tonemetry live: demo10_ife in Default has no member nosuch\n"},
        {{"get", "Default", "demo10_ife", "nosuch", "other"},
         "tonemetry live: demo10_ife in Default has no member nosuch, other\n"},
    };
    for (const Case& c : cases)
    {
        ProcessResult result = Live(c.arguments);
        EXPECT_EQ(1, result.exitStatus) << c.err;
        EXPECT_EQ("", result.out);
        EXPECT_EQ(c.err, result.err);
    }
}
} // namespace
