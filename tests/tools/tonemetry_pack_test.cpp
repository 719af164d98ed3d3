// `tonemetry pack` as its users run it: sources of every sensor-side module packed into files
// that ImageSensorModuleSetManager loads member by member, at both alignments; the shipped
// sample; and sources refused with the JSON path of what is wrong and exit status 2.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "g_sensor/imagesensormodulesetmanager.h"
#include "logcapture.h"
#include "sensorvalues.h"
#include "scratchdirectory.h"
#include "subprocess.h"

namespace
{
using sensortest::Json;
using testsupport::ProcessResult;

std::vector<uint8_t> ReadBytes(const std::string& path)
{
    std::ifstream stream(path, std::ios::binary);
    return std::vector<uint8_t>(std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>());
}

class TonemetryPack : public testing::Test
{
protected:
    void WriteSource(const std::string& name, const std::string& text) const
    {
        std::ofstream stream(m_scratch.PathOf(name), std::ios::binary | std::ios::trunc);
        stream << text;
        ASSERT_TRUE(static_cast<bool>(stream));
    }

    ProcessResult Pack(const std::vector<std::string>& arguments) const
    {
        std::vector<std::string> all = {"pack"};
        all.insert(all.end(), arguments.begin(), arguments.end());
        return testsupport::RunProcess(TONEMETRY_EXECUTABLE, all, m_directory);
    }

    /// A source of every registered name with its values, in the use case "Usecase.Video" or,
    /// for versions without a mode tree, in the root.
    static Json AllModulesSource(bool inVideo = true)
    {
        Json source = {{"setManager", "ImageSensorModuleSetManager"}, {"modules", Json::array()}};
        if (inVideo)
        {
            source["modes"] = Json::array({{{"name", "Default"}}, {{"name", "Usecase.Video"}}});
        }
        for (const sensortest::SensorModuleValues& module : sensortest::AllSensorModules())
        {
            source["modules"].push_back({{"name", module.name}, {"values", module.values}});
            if (inVideo)
            {
                source["modules"].back()["mode"] = "Usecase.Video";
            }
        }
        return source;
    }

    static void ExpectAllModules(ImageSensorModuleSetManager& manager, bool inVideo = true)
    {
        TuningMode video[2] = {};
        video[1].mode       = 2;
        video[1].subMode    = 2;
        for (const sensortest::SensorModuleValues& module : sensortest::AllSensorModules())
        {
            SCOPED_TRACE(module.name);
            module.expect(manager, inVideo ? video : nullptr, inVideo ? 2 : 0);
        }
    }

    testsupport::ScratchDirectory m_scratch{"tonemetrypack"};
    const std::string             m_directory = m_scratch.Path();
    testsupport::LogCapture       m_log; ///< the store's warnings about modules that only a use case holds
};

TEST_F(TonemetryPack, EveryModuleOfASourceLoadsMemberByMemberFromThePackedFile)
{
    WriteSource("all.json", AllModulesSource().dump(2));
    const std::string output = m_scratch.PathOf("all.bin");
    ProcessResult     result = Pack({m_scratch.PathOf("all.json"), "-o", output});
    ASSERT_EQ(0, result.exitStatus) << result.err;
    EXPECT_EQ("", result.err);

    std::vector<uint8_t> image = ReadBytes(output);
    EXPECT_EQ(output + ": " + std::to_string(image.size()) + " bytes, 11 modules, version 5.0.0\n", result.out);

    ImageSensorModuleSetManager inBuffer;
    ASSERT_TRUE(inBuffer.LoadBinaryParameters(image.data(), image.size())) << inBuffer.m_errorText;
    ExpectAllModules(inBuffer);

    ImageSensorModuleSetManager fromFile;
    ASSERT_TRUE(fromFile.LoadBinaryParameters(output.c_str())) << fromFile.m_errorText;
    ASSERT_TRUE(fromFile.IsFileMode());
    ExpectAllModules(fromFile);
    EXPECT_EQ(0u, m_log.Count("Failed to read symbol table entry"));
}

class TonemetryPackVersion : public TonemetryPack, public testing::WithParamInterface<const char*>
{
};

TEST_P(TonemetryPackVersion, EveryVersionOfTheWriterHoldsEveryModuleAndLoadsInBufferMode)
{
    // Alignment 8 (from 1.1.0 up to 3.0.1) is read in buffer mode only; files without a data
    // table (below 4.0.0) keep their pointer entries in the symbol table. Modes beyond the root
    // need 1.0.2.
    const std::string version = GetParam();
    const bool        inVideo = version != "1.0.0";
    WriteSource("source.json", AllModulesSource(inVideo).dump());
    ProcessResult result =
        Pack({m_scratch.PathOf("source.json"), "-o", m_scratch.PathOf("packed.bin"), "--version", version});
    ASSERT_EQ(0, result.exitStatus) << result.err;
    EXPECT_NE(std::string::npos, result.out.find(" bytes, 11 modules, version " + version + "\n"));

    std::vector<uint8_t>        image = ReadBytes(m_scratch.PathOf("packed.bin"));
    ImageSensorModuleSetManager manager;
    ASSERT_TRUE(manager.LoadBinaryParameters(image.data(), image.size())) << manager.m_errorText;
    ExpectAllModules(manager, inVideo);
}

INSTANTIATE_TEST_SUITE_P(Versions, TonemetryPackVersion,
                         testing::Values("1.0.0", "1.0.2", "1.1.0", "2.0.0", "3.0.0", "3.0.1", "3.1.0", "4.0.0",
                                         "5.0.0"),
                         [](const testing::TestParamInfo<const char*>& info) {
                             std::string name = std::string("Version") + info.param;
                             for (char& character : name)
                             {
                                 character = (character == '.') ? '_' : character;
                             }
                             return name;
                         });

TEST_F(TonemetryPack, TheShippedSensorSamplePacksAndLoads)
{
    const std::string output = m_scratch.PathOf("sample.bin");
    ProcessResult     result = Pack({std::string(VARK_EXAMPLES_DIR) + "/sensor_sample.json", "-o", output});
    ASSERT_EQ(0, result.exitStatus) << result.err;
    EXPECT_NE(std::string::npos, result.out.find(" bytes, 9 modules, version 5.0.0"));

    ImageSensorModuleSetManager manager;
    ASSERT_TRUE(manager.LoadBinaryParameters(output.c_str())) << manager.m_errorText;
    Orvo::SensorDriverData* sensor = manager.GetModule_sensorDriverData(nullptr, 0, nullptr);
    ASSERT_NE(nullptr, sensor);
    EXPECT_STREQ("imx_vark", sensor->slaveInfo.sensorName);
    ASSERT_EQ(1u, sensor->resolutionInfoCount);
    EXPECT_EQ(3u, sensor->resolutionInfo[0].resolutionsCount);
    sensor->Release();

    // The use case has an actuator of its own; the rest comes from Default.
    TuningMode video[2]                     = {};
    video[1].mode                           = 2;
    video[1].subMode                        = 2;
    Orvo::ActuatorDriverData* rootActuator  = manager.GetModule_actuatorDriver(nullptr, 0, nullptr);
    Orvo::ActuatorDriverData* videoActuator = manager.GetModule_actuatorDriver(video, 2, nullptr);
    ASSERT_NE(nullptr, rootActuator);
    ASSERT_NE(nullptr, videoActuator);
    EXPECT_EQ(2u, rootActuator->tunedParams.regionParams.region[0].codePerStep);
    EXPECT_EQ(1u, videoActuator->tunedParams.regionParams.region[0].codePerStep);
    rootActuator->Release();
    videoActuator->Release();
    for (auto* present : {static_cast<void*>(manager.GetModule_PDConfigData(video, 2, nullptr)),
                          static_cast<void*>(manager.GetModule_EEPROMDriverData(video, 2, nullptr)),
                          static_cast<void*>(manager.GetModule_flashDriverData(video, 2, nullptr)),
                          static_cast<void*>(manager.GetModule_cameraModuleData(video, 2, nullptr)),
                          static_cast<void*>(manager.GetModule_OISDriver(video, 2, nullptr)),
                          static_cast<void*>(manager.GetModule_sensorBinSocIdMap(video, 2, nullptr))})
    {
        EXPECT_NE(nullptr, present);
    }
    EXPECT_EQ(nullptr, manager.GetModule_EEbinDriver(video, 2, nullptr));
}

TEST_F(TonemetryPack, ModesByNamedPathsBecomeTheTreeOfTheFile)
{
    WriteSource("tree.json", R"({"setManager": "ImageSensorModuleSetManager", "modes": [
        {"name": "Default"},
        {"name": "Usecase.Video", "pinned": true},
        {"name": "Feature1.ISPHDR", "parent": "Usecase.Video"},
        {"name": "Usecase.Snapshot", "link": "Sensor.3"},
        {"name": "Sensor.3"},
        {"name": "2.5", "parent": "Default|1.3"}
    ], "modules": [{"name": "OISDriver", "mode": "Sensor.3|Usecase.SnapshotReprocess"}]})");
    ProcessResult result = Pack({m_scratch.PathOf("tree.json"), "-o", m_scratch.PathOf("tree.bin")});
    ASSERT_EQ(0, result.exitStatus) << result.err;

    std::vector<uint8_t>        image = ReadBytes(m_scratch.PathOf("tree.bin"));
    ImageSensorModuleSetManager manager;
    ASSERT_TRUE(manager.LoadBinaryParameters(image.data(), image.size())) << manager.m_errorText;
    struct Expected
    {
        uint32_t mode, subMode, parent;
        bool     pinned;
    };
    // The reader pins Sensor modes whatever the file says.
    const Expected expected[] = {
        {2, 2, 0, true}, {3, 1, 1, false}, {2, 1, 0, false}, {1, 3, 0, true}, {2, 5, 4, false}};
    for (uint32_t id = 1; id <= 5; ++id)
    {
        SCOPED_TRACE("mode " + std::to_string(id));
        ModeEntry* entry = manager.GetModeEntry(id);
        ASSERT_NE(nullptr, entry);
        EXPECT_EQ(expected[id - 1].mode, entry->m_mode.mode);
        EXPECT_EQ(expected[id - 1].subMode, entry->m_mode.subMode);
        ASSERT_NE(nullptr, entry->m_parent);
        EXPECT_EQ(expected[id - 1].parent, entry->m_parent->m_id);
        EXPECT_EQ(expected[id - 1].pinned, entry->m_pinned);
        EXPECT_EQ(id == 3, nullptr != entry->m_link);
    }
    ASSERT_NE(nullptr, manager.GetModeEntry(3)->m_link);
    EXPECT_EQ(manager.GetModeEntry(4), *manager.GetModeEntry(3)->m_link) << "Snapshot links to Sensor.3";

    TuningMode branch[3]     = {};
    branch[1].mode           = 1;
    branch[1].subMode        = 3;
    branch[2].mode           = 2;
    branch[2].subMode        = 5;
    Orvo::OISDriverData* ois = manager.GetModule_OISDriver(branch, 3, nullptr);
    EXPECT_NE(nullptr, ois) << "the module hangs on Sensor.3|Usecase.SnapshotReprocess";
}

struct RefusedSource
{
    const char* name;
    const char* source;
    const char* refusal; ///< the one error line, after "<source path>: "
};

class TonemetryPackRefusal : public TonemetryPack, public testing::WithParamInterface<RefusedSource>
{
};

TEST_P(TonemetryPackRefusal, TheSourceIsRefusedWithThePathOfWhatIsWrongAndNoFile)
{
    WriteSource("bad.json", GetParam().source);
    ProcessResult result = Pack({m_scratch.PathOf("bad.json"), "-o", m_scratch.PathOf("bad.bin")});
    EXPECT_EQ(2, result.exitStatus);
    EXPECT_EQ(m_scratch.PathOf("bad.json") + ": " + GetParam().refusal + "\n", result.err);
    EXPECT_EQ("", result.out);
    EXPECT_FALSE(std::filesystem::exists(m_scratch.PathOf("bad.bin")));
}

#define SENSOR_SOURCE(modes, modules)                                                                                  \
    R"({"setManager": "ImageSensorModuleSetManager", "modes": )" modes R"(, "modules": )" modules "}"
#define ROOT_AND_VIDEO R"([{"name": "Default"}, {"name": "Usecase.Video"}])"

INSTANTIATE_TEST_SUITE_P(
    Cases, TonemetryPackRefusal,
    testing::Values(
        RefusedSource{"UnknownModuleName", SENSOR_SOURCE(ROOT_AND_VIDEO, R"([{"name": "lensDriver"}])"),
                      "/modules/0/name: unknown module 'lensDriver' of ImageSensorModuleSetManager (actuatorDriver, "
                      "actuatorDriver1, EEbinDriver, EEPROMDriverData, flashDriverData, flashDriverDataSecondary, "
                      "cameraModuleData, OISDriver, PDConfigData, sensorDriverData, sensorBinSocIdMap)"},
        RefusedSource{"WrongType",
                      SENSOR_SOURCE(ROOT_AND_VIDEO, R"([{"name": "sensorDriverData", "values": {"resolutionInfo":
                          [{"resolutions": [{}, {}, {}, {"frameRate": "fast"}]}]}}])"),
                      "/modules/0/values/resolutionInfo/0/resolutions/3/frameRate: expected a number"},
        RefusedSource{"WrongArrayLength", SENSOR_SOURCE(ROOT_AND_VIDEO, R"([{"name": "sensorDriverData", "values": {
                          "noiseCoefficientBayer": {"channel": [{}, {}, {}]}}}])"),
                      "/modules/0/values/noiseCoefficientBayer/channel: expected an array of 4 elements, not one of 3"},
        RefusedSource{
            "UnknownEnumName",
            SENSOR_SOURCE(ROOT_AND_VIDEO, R"([{"name": "flashDriverData", "values": {"flashDriverType": "Xenon"}}])"),
            "/modules/0/values/flashDriverType: unknown enumerator 'Xenon' of FlashDriverType "
            "(FlashDriverType0, FlashDriverType1)"},
        RefusedSource{"UnknownModeName",
                      SENSOR_SOURCE(ROOT_AND_VIDEO, R"([{"name": "OISDriver", "mode": "Usecase.Vidoe"}])"),
                      "/modules/0/mode: unknown sub-mode 'Vidoe' of Usecase in 'Usecase.Vidoe'"},
        RefusedSource{"ModeNotInTheTree",
                      SENSOR_SOURCE(ROOT_AND_VIDEO, R"([{"name": "OISDriver", "mode": "Usecase.Snapshot"}])"),
                      "/modules/0/mode: unknown mode 'Usecase.Snapshot': no mode in /modes has the path "
                      "'Usecase.Snapshot'"},
        RefusedSource{"ParentListedLater",
                      SENSOR_SOURCE(R"([{"name": "Default"}, {"name": "Feature1.ISPHDR", "parent": "Usecase.Video"},
                                        {"name": "Usecase.Video"}])",
                                    "[]"),
                      "/modes/1/parent: unknown mode 'Usecase.Video': no mode listed before it in /modes has the path "
                      "'Usecase.Video'"},
        RefusedSource{"RootNotFirst", SENSOR_SOURCE(R"([{"name": "Usecase.Video"}])", "[]"),
                      "/modes/0/name: the first mode is the root, \"Default\""},
        RefusedSource{"SecondModuleOfANameInAMode",
                      SENSOR_SOURCE(ROOT_AND_VIDEO, R"([{"name": "OISDriver", "mode": "Usecase.Video"},
                                                        {"name": "OISDriver", "mode": "Default|Usecase.Video"}])"),
                      "/modules/1: mode 'Usecase.Video' already holds 'OISDriver' (/modules/0)"},
        RefusedSource{"UnknownSetManager", R"({"setManager": "LensSetManager", "modules": []})",
                      "/setManager: unknown set manager 'LensSetManager' (fdSetManager, ImageSensorModuleSetManager, "
                      "TuningSetManager)"},
        RefusedSource{"KeyGivenTwice", R"({"setManager": "ImageSensorModuleSetManager", "modules": [], "modules": []})",
                      "/modules: key given twice"}),
    [](const testing::TestParamInfo<RefusedSource>& info) { return info.param.name; });

TEST_F(TonemetryPack, EveryProblemOfASourceIsToldInOneRun)
{
    WriteSource("bad.json", SENSOR_SOURCE(ROOT_AND_VIDEO, R"([
        {"name": "actuatorDriver", "values": {"slaveInfo": {"slaveAddress": 65536, "actuatorType": 2}}},
        {"name": "sensorBinSocIdMap", "values": {"socIdInfo": [{"socIds": "415"}], "version": 1}}])"));
    ProcessResult result = Pack({m_scratch.PathOf("bad.json"), "-o", m_scratch.PathOf("bad.bin")});
    EXPECT_EQ(2, result.exitStatus);
    const std::string prefix = m_scratch.PathOf("bad.json") + ": ";
    EXPECT_EQ(prefix + "/modules/0/values/slaveInfo/slaveAddress: 65536 is out of range for UInt16 (0 to 65535)\n" +
                  prefix + "/modules/0/values/slaveInfo/actuatorType: 2 is not a value of ActuatorType (0 to 1)\n" +
                  prefix + "/modules/1/values/version: unknown member 'version' of SensorBinSocIdMap\n" + prefix +
                  "/modules/1/values/socIdInfo/0/socIds: expected an array, not a string\n",
              result.err);
}

TEST_F(TonemetryPack, BadArgumentsUnreadableInputAndAVersionTooOldAreRefusedAndAnUnwritableOutputFails)
{
    WriteSource("empty.json", SENSOR_SOURCE(ROOT_AND_VIDEO, "[]"));
    WriteSource("broken.json", R"({"setManager": )");

    ProcessResult noOutput = Pack({m_scratch.PathOf("empty.json")});
    EXPECT_EQ(2, noOutput.exitStatus);
    EXPECT_NE(std::string::npos, noOutput.err.find("--output is required"));

    ProcessResult badVersion =
        Pack({m_scratch.PathOf("empty.json"), "-o", m_scratch.PathOf("x.bin"), "--version", "5.0"});
    EXPECT_EQ(2, badVersion.exitStatus);
    EXPECT_EQ("tonemetry pack: --version '5.0' is no version major.minor.patch\n", badVersion.err);

    ProcessResult broken = Pack({m_scratch.PathOf("broken.json"), "-o", m_scratch.PathOf("x.bin")});
    EXPECT_EQ(2, broken.exitStatus);
    EXPECT_EQ(0u, broken.err.find(m_scratch.PathOf("broken.json") + ": not valid JSON"));

    ProcessResult missing = Pack({m_scratch.PathOf("missing.json"), "-o", m_scratch.PathOf("x.bin")});
    EXPECT_EQ(2, missing.exitStatus);
    EXPECT_EQ(m_scratch.PathOf("missing.json") + ": cannot be read\n", missing.err);

    WriteSource("pinned.json",
                SENSOR_SOURCE(R"([{"name": "Default"}, {"name": "Usecase.Video", "pinned": true}])", "[]"));
    ProcessResult pinned =
        Pack({m_scratch.PathOf("pinned.json"), "-o", m_scratch.PathOf("x.bin"), "--version", "2.0.0"});
    EXPECT_EQ(2, pinned.exitStatus);
    EXPECT_EQ(m_scratch.PathOf("pinned.json") + ": /modes/1: the pinned flag needs version 5.0.0 or above\n",
              pinned.err);

    ProcessResult unwritable = Pack({m_scratch.PathOf("empty.json"), "-o", m_scratch.PathOf("no/such/folder/x.bin")});
    EXPECT_EQ(2, unwritable.exitStatus);
    EXPECT_EQ("tonemetry pack: " + m_scratch.PathOf("no/such/folder/x.bin") + ": cannot be written\n", unwritable.err);
}
} // namespace

// Edits as the live page exports them: texts of the link, carried into the source by --edits.
// The file packed with them has the bytes of the source edited by hand.
TEST_F(TonemetryPack, EditsOfTheLivePagePackAsTheSourceEditedByHand)
{
    const Json source                           = {{"setManager", "ImageSensorModuleSetManager"},
                                                   {"modes", Json::parse(ROOT_AND_VIDEO)},
                                                   {"modules", Json::parse(R"([
            {"name": "actuatorDriver", "values": {"slaveInfo": {"slaveAddress": "0x18", "actuatorName": "ak"}}},
            {"name": "actuatorDriver", "mode": "Usecase.Video", "values": {"tunedParams": {"initialCode": 100}}},
            {"name": "sensorBinSocIdMap", "values": {"socIdInfo": [{"socIds": ["415", "457"]}]}}])")}};
    Json       byHand                           = source;
    byHand["modules"][0]["values"]["slaveInfo"] = {
        {"slaveAddress", 52}, {"actuatorName", "12"}, {"actuatorType", "ActuatorType1"}};
    byHand["modules"][1]["values"]["tunedParams"]["initialCode"] = 120;
    byHand["modules"][2]["values"]["socIdInfo"][0]["socIds"][1]  = "999";
    const Json edits                                             = Json::parse(R"({"edits": [
        {"mode": "Default|Usecase.Video", "module": "actuatorDriver", "path": "tunedParams", "name": "initialCode",
         "value": "120", "old": "100"},
        {"module": "actuatorDriver", "path": "slaveInfo", "name": "slaveAddress", "value": "52"},
        {"mode": "Default", "module": "actuatorDriver", "path": "slaveInfo", "name": "actuatorName", "value": "12"},
        {"mode": "Default", "module": "actuatorDriver", "path": "slaveInfo", "name": "actuatorType",
         "value": "ActuatorType1"},
        {"mode": "Default", "module": "sensorBinSocIdMap", "path": "socIdInfo[0]", "name": "socIds[1]", "value": "999"}
    ]})");
    WriteSource("source.json", source.dump());
    WriteSource("byhand.json", byHand.dump());
    WriteSource("edits.json", edits.dump());

    ProcessResult edited = Pack({m_scratch.PathOf("source.json"), "--edits", m_scratch.PathOf("edits.json"), "-o",
                                 m_scratch.PathOf("edited.bin")});
    ASSERT_EQ(0, edited.exitStatus) << edited.err;
    ASSERT_EQ(0, Pack({m_scratch.PathOf("byhand.json"), "-o", m_scratch.PathOf("byhand.bin")}).exitStatus);
    EXPECT_EQ(ReadBytes(m_scratch.PathOf("byhand.bin")), ReadBytes(m_scratch.PathOf("edited.bin")));
}

TEST_F(TonemetryPack, AnEditOfWhatTheSourceDoesNotHaveIsRefusedAtItsPathAndNoFile)
{
    struct RefusedEdit
    {
        const char* edit;
        const char* refusal; ///< the error line, after the folder of the file it is told against
    };
    const RefusedEdit cases[] = {
        {R"({"module": "OISDriver", "name": "id", "value": "1"})", "edits.json: /edits/0/module: the source holds no "
                                                                   "module 'OISDriver'"},
        {R"({"mode": "Usecase.Video", "module": "sensorBinSocIdMap", "name": "x", "value": "1"})",
         "edits.json: /edits/0/mode: the source holds no 'sensorBinSocIdMap' in mode 'Usecase.Video'"},
        {R"({"mode": "Usecase.Vidoe", "module": "sensorBinSocIdMap", "name": "x", "value": "1"})",
         "edits.json: /edits/0/mode: unknown sub-mode 'Vidoe' of Usecase in 'Usecase.Vidoe'"},
        {R"({"module": "sensorBinSocIdMap", "path": "socIdInfo[3]", "name": "binFileName", "value": "a"})",
         "edits.json: /edits/0/path: the source holds no element 3 of 'socIdInfo'"},
        {R"({"module": "sensorBinSocIdMap", "path": "socIdInfo[", "name": "binFileName", "value": "a"})",
         "edits.json: /edits/0/path: 'socIdInfo[' 'binFileName' is no member path (records by '.', \"[index]\")"},
        {R"({"module": "sensorBinSocIdMap", "name": "binFileName"})", "edits.json: /edits/0: missing key 'value'"},
        {R"({"module": "sensorBinSocIdMap", "name": "versoin", "value": "1"})",
         "source.json: /modules/0/values/versoin: unknown member 'versoin' of SensorBinSocIdMap"},
    };
    WriteSource("source.json", SENSOR_SOURCE(ROOT_AND_VIDEO, R"([{"name": "sensorBinSocIdMap",
        "values": {"socIdInfo": [{"socIds": ["415"]}]}}])"));
    for (const RefusedEdit& refused : cases)
    {
        WriteSource("edits.json", std::string(R"({"edits": [)") + refused.edit + "]}");
        ProcessResult result = Pack({m_scratch.PathOf("source.json"), "--edits", m_scratch.PathOf("edits.json"), "-o",
                                     m_scratch.PathOf("out.bin")});
        EXPECT_EQ(2, result.exitStatus) << refused.edit;
        EXPECT_EQ(m_scratch.PathOf(refused.refusal) + "\n", result.err) << refused.edit;
        EXPECT_FALSE(std::filesystem::exists(m_scratch.PathOf("out.bin")));
    }
}
