// `tonemetry check` as its users run it: a good file at each format generation, a file the
// library refuses, modules of a type the set manager does not know and of another version, and
// the statuses.
#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "scratchdirectory.h"
#include "subprocess.h"
#include "tuningfile/writer.h"

namespace
{
using nlohmann::json;
using testsupport::ProcessResult;

class TonemetryCheck : public testing::Test
{
protected:
    ProcessResult Tool(const std::vector<std::string>& arguments) const
    {
        return testsupport::RunProcess(TONEMETRY_EXECUTABLE, arguments, m_directory);
    }

    /// The shipped tuning sample packed at `version` into `name`.
    void PackSample(const std::string& name, const std::string& version = "5.0.0") const
    {
        ProcessResult packed = Tool({"pack", std::string(VARK_EXAMPLES_DIR) + "/tuning_sample.json", "-o",
                                     m_scratch.PathOf(name), "--version", version});
        ASSERT_EQ(0, packed.exitStatus) << packed.err;
    }

    /// `check --json` of `name` with `extra` arguments; its status in `*status`.
    json Check(const std::string& name, int* status, const std::vector<std::string>& extra = {}) const
    {
        std::vector<std::string> arguments = {"check", m_scratch.PathOf(name), "--json"};
        arguments.insert(arguments.end(), extra.begin(), extra.end());
        ProcessResult result = Tool(arguments);
        *status              = result.exitStatus;
        return json::parse(result.out, nullptr, false);
    }

    testsupport::ScratchDirectory m_scratch{"tonemetrycheck"};
    const std::string             m_directory = m_scratch.Path();
};

/// The module entries of a report as "mode module: result".
std::vector<std::string> Outcomes(const json& report)
{
    std::vector<std::string> outcomes;
    for (const json& module : report["modules"])
    {
        outcomes.push_back(module["mode"].get<std::string>() + " " + module["module"].get<std::string>() + ": " +
                           module["result"].get<std::string>());
    }
    return outcomes;
}

TEST_F(TonemetryCheck, AFileADeviceLoadsWholeIsReportedModuleByModuleWithStatus0)
{
    PackSample("sample.bin");
    int        status = -1;
    const json report = Check("sample.bin", &status);
    EXPECT_EQ(0, status);
    EXPECT_EQ("TuningSetManager", report["manager"]);
    EXPECT_EQ(json({{"buffer", true}, {"file", true}}), report["loads"]);
    EXPECT_EQ(json::array(), report["log"]);
    EXPECT_EQ(std::vector<std::string>({"Default tonemetryPDLib: loaded", "Usecase.Video tonemetryPDLib: loaded"}),
              Outcomes(report));

    ProcessResult readable = Tool({"check", m_scratch.PathOf("sample.bin")});
    EXPECT_EQ(0, readable.exitStatus);
    EXPECT_EQ(m_scratch.PathOf("sample.bin") +
                  ": set manager TuningSetManager\nbuffer mode: loaded\nfile mode: loaded\n" +
                  "Default tonemetryPDLib: loaded\nUsecase.Video tonemetryPDLib: loaded\n",
              readable.out);
}

TEST_F(TonemetryCheck, AnAlignment8FileLoadsInBufferModeOnlyAndFailsInFileMode)
{
    PackSample("older.bin", "3.0.0");
    int        status = -1;
    const json report = Check("older.bin", &status);
    EXPECT_EQ(1, status);
    EXPECT_EQ(json({{"buffer", true}, {"file", true}}), report["loads"]);
    EXPECT_EQ(std::vector<std::string>({"Default tonemetryPDLib: loaded", "Usecase.Video tonemetryPDLib: loaded"}),
              Outcomes(report));
    ASSERT_FALSE(report["log"].empty());
    // File mode re-reads with alignment 1: the module's records end early there.
    for (const json& line : report["log"])
    {
        EXPECT_EQ("file", line["load"]) << line;
    }
    EXPECT_EQ(json({{"load", "file"}, {"level", "error"}, {"text", "Failed to read symbol table entry"}}),
              report["log"][0]);
}

TEST_F(TonemetryCheck, ARefusedFileGivesTheLibrarysTextAndStatus1)
{
    PackSample("sample.bin");
    std::vector<uint8_t> image;
    {
        std::ifstream stream(m_scratch.PathOf("sample.bin"), std::ios::binary);
        image.assign(std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>());
    }
    image[image.size() / 2] ^= 0x5A; // the check value no longer holds
    std::ofstream(m_scratch.PathOf("damaged.bin"), std::ios::binary)
        .write(reinterpret_cast<const char*>(image.data()), static_cast<std::streamsize>(image.size()));

    int        status = -1;
    const json report = Check("damaged.bin", &status, {"--manager", "TuningSetManager"});
    EXPECT_EQ(1, status);
    EXPECT_EQ(json({{"buffer", false}, {"file", false}}), report["loads"]);
    EXPECT_EQ(json::array(), report["modules"]);
    ASSERT_FALSE(report["log"].empty());
    const json& refusal = report["log"][0];
    EXPECT_EQ("error", refusal["level"]);
    EXPECT_EQ(0u, refusal["text"].get<std::string>().find("Binary file CRC validation failed. Expected: ")) << refusal;

    ProcessResult readable = Tool({"check", m_scratch.PathOf("damaged.bin"), "--manager", "TuningSetManager"});
    EXPECT_EQ(1, readable.exitStatus);
    EXPECT_NE(std::string::npos, readable.out.find("buffer mode: refused: " + refusal["text"].get<std::string>()))
        << readable.out;
}

TEST_F(TonemetryCheck, ModulesOfAnUnknownTypeOrAnotherVersionAreNamedWithTheStoresLines)
{
    tuningfile::TuningFileModel model;
    model.modules.push_back({"tonemetryPDLib", {1, 0, 0}, 0, {}}); // the catalogue's is 9.0.0
    model.modules.push_back({"noSuchModule", {1, 0, 0}, 0, {}});
    std::vector<uint8_t> image;
    std::string          refusal;
    ASSERT_TRUE(tuningfile::Write(model, &image, &refusal)) << refusal;
    std::ofstream(m_scratch.PathOf("mixed.bin"), std::ios::binary)
        .write(reinterpret_cast<const char*>(image.data()), static_cast<std::streamsize>(image.size()));

    int        status = -1;
    const json report = Check("mixed.bin", &status, {"--manager", "TuningSetManager"});
    EXPECT_EQ(1, status);
    EXPECT_EQ(json({{"buffer", false}, {"file", false}}), report["loads"]) << "a device refuses the whole file";
    EXPECT_EQ(std::vector<std::string>({"Default PDLib: version mismatch", "Default noSuchModule: unknown type"}),
              Outcomes(report));
    ASSERT_EQ(2u, report["modules"].size());
    EXPECT_EQ(0u, report["modules"][0]["text"].get<std::string>().find(
                      "Unable to create tonemetryPDLibTypeClass, binary version"));
    EXPECT_EQ("Failed to find header module:  Type: noSuchModule, Major: 1, Minor: 0, Patch: 0, Mode: 0",
              report["modules"][1]["text"]);
}

TEST_F(TonemetryCheck, UnreadableFilesAndUnknownManagersAreTroubleWithStatus2)
{
    EXPECT_EQ(2, Tool({"check", m_scratch.PathOf("missing.bin")}).exitStatus);
    PackSample("sample.bin");
    EXPECT_EQ(2, Tool({"check", m_scratch.PathOf("sample.bin"), "--manager", "NoSetManager"}).exitStatus);
}
} // namespace
