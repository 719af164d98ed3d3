// The sensor-side modules of ImageSensorModuleSetManager, packed from their schemas and JSON
// values by the schema-driven encoder and loaded back: every registered name compared member
// by member at both alignments and from a file, two names of one class side by side, and a
// sensor of many resolutions.
#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "g_sensor/imagesensormodulesetmanager.h"
#include "logcapture.h"
#include "modulefiles.h"
#include "modulegen/schemaloader.h"
#include "sensorvalues.h"
#include "tuningencoder/encoder.h"

namespace
{
using sensortest::Json;
using testsupport::LogCapture;

class SensorModules : public testing::Test
{
protected:
    static void SetUpTestSuite()
    {
        std::vector<modulegen::SchemaFile> files;
        std::string                        error;
        ASSERT_TRUE(modulegen::FindSchemaFiles(VARK_SCHEMA_DIR, &files, &error)) << error;
        std::vector<modulegen::Diagnostic> diagnostics;
        ASSERT_TRUE(modulegen::LoadSchemaSet(files, &s_schemas, &diagnostics));
        s_manager = s_schemas.FindSetManager("ImageSensorModuleSetManager");
        ASSERT_NE(nullptr, s_manager);
    }

    /// The module of registered name `name` in mode `modeId`, its top record encoded from `values`.
    static tuningfile::Module Module(const std::string& name, uint32_t modeId, const Json& values)
    {
        const modulegen::Schema* schema = nullptr;
        for (const modulegen::Registration& registration : s_manager->registrations)
        {
            schema = (registration.name == name) ? registration.schema : schema;
        }
        tuningfile::Module module;
        EXPECT_NE(nullptr, schema) << name;
        if (nullptr == schema)
        {
            return module;
        }
        std::vector<tuningencoder::EncodeError> errors;
        EXPECT_TRUE(tuningencoder::EncodeModule(*schema, values, "/" + name, &module.data, &errors))
            << errors.front().ToString();
        const modulegen::Version& version = schema->module->version;
        module.name                       = name;
        module.version                    = {version.major, version.minor, version.patch};
        module.modeId                     = modeId;
        return module;
    }

    static std::vector<uint8_t> Image(tuningfile::Version version, const std::vector<tuningfile::Module>& modules)
    {
        tuningfile::TuningFileModel model = moduletest::ModelWithModes(version);
        model.modules                     = modules;
        return moduletest::Image(model);
    }

    /// Every registered name with its values, all in mode `modeId`.
    static std::vector<tuningfile::Module> AllModules(uint32_t modeId)
    {
        std::vector<tuningfile::Module> modules;
        for (const sensortest::SensorModuleValues& values : sensortest::AllSensorModules())
        {
            modules.push_back(Module(values.name, modeId, values.values));
        }
        return modules;
    }

    static modulegen::SchemaSet         s_schemas;
    static const modulegen::SetManager* s_manager;
    LogCapture                          m_log;
};

modulegen::SchemaSet         SensorModules::s_schemas;
const modulegen::SetManager* SensorModules::s_manager = nullptr;

TEST_F(SensorModules, TheSetManagerRegistersEveryNameOfTheCatalogueInItsOrder)
{
    const std::vector<std::string> catalogue = {"actuatorDriver",   "actuatorDriver1",  "EEbinDriver",
                                                "EEPROMDriverData", "flashDriverData",  "flashDriverDataSecondary",
                                                "cameraModuleData", "OISDriver",        "PDConfigData",
                                                "sensorDriverData", "sensorBinSocIdMap"};
    std::vector<std::string>       registered;
    for (const modulegen::Registration& registration : s_manager->registrations)
    {
        registered.push_back(registration.name);
    }
    EXPECT_EQ(catalogue, registered);

    ImageSensorModuleSetManager manager;
    EXPECT_EQ(catalogue.size(), manager.DefaultModuleMap.size());
    for (const std::string& name : catalogue)
    {
        char type[ModuleData::MaxTypeLength + 1] = {};
        ModuleData::GetType(type, name.c_str());
        EXPECT_NE(nullptr, manager.GetDefaultModule(type)) << name;
    }
}

class SensorModulesAtAlignment : public SensorModules, public testing::WithParamInterface<tuningfile::Version>
{
};

TEST_P(SensorModulesAtAlignment, EveryNameLoadsItsValuesInBufferMode)
{
    std::vector<uint8_t>        image = Image(GetParam(), AllModules(0));
    ImageSensorModuleSetManager manager;
    ASSERT_TRUE(manager.LoadBinaryParameters(image.data(), image.size())) << manager.m_errorText;
    for (const sensortest::SensorModuleValues& values : sensortest::AllSensorModules())
    {
        SCOPED_TRACE(values.name);
        values.expect(manager, nullptr, 0);
    }
    EXPECT_EQ(0u, m_log.Count("Failed to read symbol table entry"));
    EXPECT_EQ(0u, m_log.Count("Invalid value"));
}

// Alignment 8 files are read in buffer mode only: file-mode re-reads use alignment 1.
INSTANTIATE_TEST_SUITE_P(Alignments, SensorModulesAtAlignment,
                         testing::Values(moduletest::AlignmentOne, moduletest::AlignmentEight),
                         [](const testing::TestParamInfo<tuningfile::Version>& info) {
                             return "Version" + std::to_string(info.param.major);
                         });

TEST_F(SensorModules, EveryNameLoadsItsValuesLazilyFromAFile)
{
    moduletest::TempFile file("sensormodules");
    file.Store(Image(moduletest::AlignmentOne, AllModules(2)));
    ImageSensorModuleSetManager manager;
    ASSERT_TRUE(manager.LoadBinaryParameters(file.Path().c_str())) << manager.m_errorText;
    ASSERT_TRUE(manager.IsFileMode());

    moduletest::UsecaseBranch snapshot(2);
    moduletest::UsecaseBranch video(1);
    for (const sensortest::SensorModuleValues& values : sensortest::AllSensorModules())
    {
        SCOPED_TRACE(values.name);
        values.expect(manager, snapshot.modes, 2);
    }
    EXPECT_EQ(nullptr, manager.GetModule_sensorDriverData(video.modes, 2, nullptr))
        << "the modules hang on the other use case only";
}

TEST_F(SensorModules, TwoNamesOfOneClassLoadIndependentlyFromOneFile)
{
    const std::vector<sensortest::SensorModuleValues> all = sensortest::AllSensorModules();
    // actuatorDriver in the root; actuatorDriver1 in the root and, with other values, in a use case;
    // of the flash class only the secondary name, whose type string begins with the other's.
    ASSERT_EQ("flashDriverDataSecondary", all[5].name);
    std::vector<uint8_t> image =
        Image(moduletest::AlignmentOne, {Module(all[0].name, 0, all[0].values), Module(all[1].name, 0, all[1].values),
                                         Module(all[1].name, 1, all[0].values), Module(all[5].name, 0, all[5].values)});
    ImageSensorModuleSetManager manager;
    ASSERT_TRUE(manager.LoadBinaryParameters(image.data(), image.size())) << manager.m_errorText;

    moduletest::UsecaseBranch video(1);
    all[0].expect(manager, video.modes, 2); // actuatorDriver, from the root
    all[1].expect(manager, nullptr, 0);     // actuatorDriver1 of the root
    Orvo::ActuatorDriverData* first  = manager.GetModule_actuatorDriver(nullptr, 0, nullptr);
    Orvo::ActuatorDriverData* second = manager.GetModule_actuatorDriver1(nullptr, 0, nullptr);
    Orvo::ActuatorDriverData* inUse  = manager.GetModule_actuatorDriver1(video.modes, 2, nullptr);
    ASSERT_NE(nullptr, inUse);
    EXPECT_NE(first, second);
    EXPECT_STREQ("ak_0", inUse->slaveInfo.actuatorName) << "the use case's actuatorDriver1 has the first's values";
    EXPECT_NE(second, inUse);

    // One class, two registrations: each name's instances carry the name they were created under.
    ParameterModule* firstInstance  = moduletest::Instance(manager, "actuatorDriver");
    ParameterModule* secondInstance = moduletest::Instance(manager, "actuatorDriver1");
    ASSERT_NE(nullptr, firstInstance);
    ASSERT_NE(nullptr, secondInstance);
    EXPECT_STREQ("actuatorDriver", firstInstance->Name);
    EXPECT_STREQ("actuatorDriver1", secondInstance->Name);
    all[5].expect(manager, nullptr, 0);
    EXPECT_EQ(nullptr, moduletest::Instance(manager, "flashDriverData"));
    EXPECT_EQ(nullptr, manager.GetModule_flashDriverData(nullptr, 0, nullptr));
}

TEST_F(SensorModules, ASensorOfManyResolutionsAndRegisterSettingsLoadsEveryOne)
{
    constexpr uint32_t Resolutions = 20;
    constexpr uint32_t PerMode     = 250;
    Json               resolutions = Json::array();
    for (uint32_t mode = 0; mode < Resolutions; ++mode)
    {
        Json settings = Json::array();
        for (uint32_t step = 0; step < PerMode; ++step)
        {
            settings.push_back({{"registerAddress", mode * PerMode + step}, {"registerData", Json::array({step})}});
        }
        resolutions.push_back({{"frameRate", 30.0 + mode}, {"resolutionSettings", {{"registerSetting", settings}}}});
    }
    const Json                  values = {{"resolutionInfo", Json::array({{{"resolutions", resolutions}}})}};
    std::vector<uint8_t>        image  = Image(moduletest::AlignmentOne, {Module("sensorDriverData", 0, values)});
    ImageSensorModuleSetManager manager;
    ASSERT_TRUE(manager.LoadBinaryParameters(image.data(), image.size())) << manager.m_errorText;

    Orvo::SensorDriverData* record = manager.GetModule_sensorDriverData(nullptr, 0, nullptr);
    ASSERT_NE(nullptr, record);
    ASSERT_EQ(1u, record->resolutionInfoCount);
    ASSERT_EQ(Resolutions, record->resolutionInfo[0].resolutionsCount);
    for (uint32_t mode = 0; mode < Resolutions; ++mode)
    {
        const Orvo::ResolutionData& resolution = record->resolutionInfo[0].resolutions[mode];
        EXPECT_EQ(30.0 + mode, resolution.frameRate);
        ASSERT_EQ(PerMode, resolution.resolutionSettings.registerSettingCount);
        const Orvo::RegisterSetting& last = resolution.resolutionSettings.registerSetting[PerMode - 1];
        EXPECT_EQ(mode * PerMode + PerMode - 1, last.registerAddress);
        ASSERT_EQ(1u, last.registerDataCount);
        EXPECT_EQ(PerMode - 1, last.registerData[0]);
    }
}
} // namespace
