#include "sensorvalues.h"

#include <gtest/gtest.h>

namespace sensortest
{
namespace
{
using namespace Orvo;

// Each family covers the member kinds of its records: numbers given as hex text, enums by name
// and by number, optional members present and absent, lists empty and not, strings, doubles,
// 64-bit numbers and members left out or given as null.

// ---- Shared records ---------------------------------------------------------------------------

/// `count` register steps from `firstAddress` on; the even ones also carry the optional slave
/// address and delay.
Json Settings(uint32_t firstAddress, size_t count)
{
    Json list = Json::array();
    for (size_t index = 0; index < count; ++index)
    {
        const uint32_t address = firstAddress + static_cast<uint32_t>(index);
        Json           setting = {{"registerAddress", address},
                                  {"registerData", Json::array({address & 0xFFu, 0x5A})},
                                  {"registerAddressType", 2},
                                  {"registerDataType", 1},
                                  {"operation", "OperationType3"}};
        if (index % 2 == 0)
        {
            setting["slaveAddress"]      = "0x20";
            setting["delayMicroseconds"] = address % 1000;
        }
        list.push_back(setting);
    }
    return {{"registerSetting", list}};
}

void ExpectSettings(const SettingsInfo& settings, uint32_t firstAddress, size_t count)
{
    ASSERT_EQ(count, settings.registerSettingCount);
    ASSERT_EQ(count == 0, nullptr == settings.registerSetting);
    for (size_t index = 0; index < count; ++index)
    {
        SCOPED_TRACE("register setting " + std::to_string(index));
        const RegisterSetting& setting = settings.registerSetting[index];
        const uint32_t         address = firstAddress + static_cast<uint32_t>(index);
        const bool             even    = (index % 2 == 0);
        EXPECT_EQ(even ? 1u : 0u, setting.slaveAddressExists);
        EXPECT_EQ(even ? 0x20u : 0u, setting.slaveAddress);
        EXPECT_EQ(address, setting.registerAddress);
        ASSERT_EQ(2u, setting.registerDataCount);
        EXPECT_EQ(address & 0xFFu, setting.registerData[0]);
        EXPECT_EQ(0x5Au, setting.registerData[1]);
        EXPECT_EQ(2u, setting.registerAddressType);
        EXPECT_EQ(1u, setting.registerDataType);
        EXPECT_EQ(OperationType3, setting.operation);
        EXPECT_EQ(even ? 1u : 0u, setting.delayMicrosecondsExists);
        EXPECT_EQ(even ? address % 1000 : 0u, setting.delayMicroseconds);
    }
}

/// Two power steps, one enum by name and one by number, and, when `settingsAddress` is not
/// zero, the optional settings.
Json PowerSequence(uint32_t seed, uint32_t settingsAddress)
{
    Json sequence = {{"powerSetting", Json::array({{{"configurationType", "PowerConfigurationType5"},
                                                    {"configurationValue", seed},
                                                    {"delayMilliseconds", seed + 1}},
                                                   {{"configurationType", 11},
                                                    {"configurationValue", seed + 2},
                                                    {"delayMilliseconds", seed + 3}}})}};
    if (settingsAddress != 0)
    {
        sequence["settings"] = Settings(settingsAddress, 2);
    }
    return sequence;
}

void ExpectPowerSequence(const PowerSequenceInfo& sequence, uint32_t seed, uint32_t settingsAddress)
{
    ASSERT_EQ(2u, sequence.powerSettingCount);
    EXPECT_EQ(PowerConfigurationType5, sequence.powerSetting[0].configurationType);
    EXPECT_EQ(seed, sequence.powerSetting[0].configurationValue);
    EXPECT_EQ(seed + 1, sequence.powerSetting[0].delayMilliseconds);
    EXPECT_EQ(PowerConfigurationType11, sequence.powerSetting[1].configurationType);
    EXPECT_EQ(seed + 3, sequence.powerSetting[1].delayMilliseconds);
    EXPECT_EQ(settingsAddress != 0 ? 1u : 0u, sequence.settingsExists);
    ExpectSettings(sequence.settings, settingsAddress, settingsAddress != 0 ? 2 : 0);
}

/// Runs `expect` on the record that `get` fetches, then gives the record back.
template <typename Record, typename Get>
ExpectLoaded Fetching(Get get, void (*expect)(const Record&))
{
    return [get, expect](ImageSensorModuleSetManager& manager, TuningMode const* modes, unsigned count) {
        Record* record = (manager.*get)(modes, count, nullptr);
        ASSERT_NE(nullptr, record);
        expect(*record);
        record->Release();
    };
}

// ---- Sensor driver ----------------------------------------------------------------------------

Json SensorDriverValues()
{
    Json values                              = Json::parse(R"json({
        "slaveInfo": {"sensorName": "imx_vark", "moduleType": "ModuleType2", "slaveAddress": "0x34",
                      "sensorId": "0x0586", "i2cFrequencyMode": "I2CFrequencyMode3"},
        "regAddrInfo": {"xOutput": "0x034C", "shortCoarseIntegrationTime": "0x0224", "frameCountRegister": 5},
        "exposureControlInfo": {"minAnalogGain": 1.0, "maxExposureTime": 1000000000,
                                "realToRegisterGain": "1024 - 1024 / gain"},
        "gmslInfo": {"linkCount": 2, "sensorAliases": [{"originalAddress": 52, "aliasAddress": 54},
                                                       {"originalAddress": 80, "aliasAddress": 82}]},
        "noiseCoefficient": {"gradientS": 3.2e-6, "offsetO": 1.1e-9}
    })json");
    values["slaveInfo"]["powerUpSequence"]   = PowerSequence(100, 0x6000);
    values["slaveInfo"]["powerDownSequence"] = PowerSequence(200, 0);
    Json full                                = Json::parse(R"({
        "colorFilterArrangement": "ColorFilterArrangement3",
        "streamInfo": {"streamConfiguration": [
            {"dataType": "0x2B", "frameDimension": {"width": 4000, "height": 3000}, "type": "StreamType0"},
            {"dataType": 48, "frameDimension": {"xStart": 2, "yStart": 4}, "type": 7}
        ]},
        "frameRate": 29.97, "vtPixelClock": 8400000000, "isPDAFMode": 1,
        "exposureInfo": [{"exposureType": "ExposureType1", "maxLineCount": 65000, "maxDigitalGain": 3.984375},
                         {"exposureType": "ExposureType2"}],
        "hdr3ExposureInfo": {"hdr3ExposureType": 3, "longToMiddleGap": 20, "maxExposureRatio": 16.5,
                             "disableSettings": null},
        "capability": ["SensorCapability13", "SensorCapability0", 7],
        "shdrInfo": {"shdrType": "SHDRTypeEnum5", "middleReadoutOffset": 24, "shortLineCountMargin": 12},
        "sensorModeIndex": 0
    })");
    full["resolutionSettings"]               = Settings(0x3000, 3);
    values["resolutionInfo"] =
        Json::array({{{"sensorVersion", 3}, {"resolutions", {full, {{"frameRate", 60.5}, {"frameLengthLines", 1550}}}}},
                     Json::object()});
    values["streamOnSettings"] = Settings(0x0100, 1);
    values["masterSettings"]   = Settings(0x3F00, 2);
    values["initSettings"] =
        Json::array({{{"sensorVersion", 1}, {"settings", Settings(0x0136, 4)}}, {{"sensorVersion", 2}}});
    return values;
}

void ExpectResolutions(const ResolutionInformation& info)
{
    EXPECT_EQ(1u, info.sensorVersionExists);
    EXPECT_EQ(3u, info.sensorVersion);
    ASSERT_EQ(2u, info.resolutionsCount);
    const ResolutionData& full = info.resolutions[0];
    EXPECT_EQ(ColorFilterArrangement3, full.colorFilterArrangement);
    ASSERT_EQ(2u, full.streamInfo.streamConfigurationCount);
    const StreamConfiguration& image = full.streamInfo.streamConfiguration[0];
    EXPECT_EQ(0x2Bu, image.dataType);
    EXPECT_EQ(4000u, image.frameDimension.width);
    EXPECT_EQ(3000u, image.frameDimension.height);
    EXPECT_EQ(StreamType0, image.type);
    const StreamConfiguration& pd = full.streamInfo.streamConfiguration[1];
    EXPECT_EQ(48u, pd.dataType);
    EXPECT_EQ(2u, pd.frameDimension.xStart);
    EXPECT_EQ(4u, pd.frameDimension.yStart);
    EXPECT_EQ(StreamType7, pd.type);
    EXPECT_EQ(29.97, full.frameRate);
    EXPECT_EQ(1u, full.vtPixelClockExists);
    EXPECT_EQ(8400000000u, full.vtPixelClock);
    EXPECT_EQ(1u, full.isPDAFMode);
    ExpectSettings(full.resolutionSettings, 0x3000, 3);

    ASSERT_EQ(2u, full.exposureInfoCount);
    EXPECT_EQ(ExposureType1, full.exposureInfo[0].exposureType);
    EXPECT_EQ(1u, full.exposureInfo[0].maxLineCountExists & full.exposureInfo[0].maxDigitalGainExists);
    EXPECT_EQ(0u, full.exposureInfo[0].minLineCountExists);
    EXPECT_EQ(65000u, full.exposureInfo[0].maxLineCount);
    EXPECT_EQ(3.984375, full.exposureInfo[0].maxDigitalGain);
    EXPECT_EQ(ExposureType2, full.exposureInfo[1].exposureType);
    EXPECT_EQ(0u, full.exposureInfo[1].maxLineCountExists | full.exposureInfo[1].maxDigitalGainExists);

    ASSERT_EQ(1u, full.hdr3ExposureInfoExists);
    EXPECT_EQ(HDR3ExposureTypeInfo3, full.hdr3ExposureInfo.hdr3ExposureType);
    EXPECT_EQ(20u, full.hdr3ExposureInfo.longToMiddleGap);
    EXPECT_EQ(16.5, full.hdr3ExposureInfo.maxExposureRatio);
    EXPECT_EQ(0u, full.hdr3ExposureInfo.disableSettingsExists) << "null: left out";
    ASSERT_EQ(3u, full.capabilityCount);
    EXPECT_EQ(SensorCapability13, full.capability[0]);
    EXPECT_EQ(SensorCapability0, full.capability[1]);
    EXPECT_EQ(SensorCapability7, full.capability[2]);
    ASSERT_EQ(1u, full.shdrInfoExists);
    EXPECT_EQ(SHDRTypeEnum5, full.shdrInfo.shdrType);
    EXPECT_EQ(1u, full.shdrInfo.middleReadoutOffsetExists);
    EXPECT_EQ(24u, full.shdrInfo.middleReadoutOffset);
    EXPECT_EQ(12u, full.shdrInfo.shortLineCountMargin);
    EXPECT_EQ(1u, full.sensorModeIndexExists) << "a zero given is present";
    EXPECT_EQ(0u, full.remosaicTypeExists | full.readoutTimeExists | full.zzHDRInfoExists);

    const ResolutionData& bare = info.resolutions[1];
    EXPECT_EQ(60.5, bare.frameRate);
    EXPECT_EQ(1550u, bare.frameLengthLines);
    EXPECT_EQ(0u, bare.streamInfo.streamConfigurationCount + bare.exposureInfoCount + bare.capabilityCount);
    EXPECT_EQ(0u,
              bare.vtPixelClockExists | bare.hdr3ExposureInfoExists | bare.shdrInfoExists | bare.sensorModeIndexExists);
    EXPECT_EQ(nullptr, bare.exposureInfo);
}

void ExpectSensorDriver(const SensorDriverData& record)
{
    EXPECT_EQ(1, record.module_version.major_revision);
    EXPECT_STREQ("imx_vark", record.slaveInfo.sensorName);
    EXPECT_EQ(1u, record.slaveInfo.moduleTypeExists);
    EXPECT_EQ(ModuleType2, record.slaveInfo.moduleType);
    EXPECT_EQ(0x34u, record.slaveInfo.slaveAddress);
    EXPECT_EQ(0x586u, record.slaveInfo.sensorId);
    EXPECT_EQ(I2CFrequencyMode3, record.slaveInfo.i2cFrequencyMode);
    ExpectPowerSequence(record.slaveInfo.powerUpSequence, 100, 0x6000);
    ExpectPowerSequence(record.slaveInfo.powerDownSequence, 200, 0);

    EXPECT_EQ(0x34Cu, record.regAddrInfo.xOutput);
    EXPECT_EQ(1u, record.regAddrInfo.shortCoarseIntegrationTimeExists);
    EXPECT_EQ(0x224u, record.regAddrInfo.shortCoarseIntegrationTime);
    EXPECT_EQ(0u, record.regAddrInfo.middleCoarseIntegrationTimeExists);
    EXPECT_EQ(5u, record.regAddrInfo.frameCountRegister);

    ASSERT_EQ(2u, record.resolutionInfoCount);
    ExpectResolutions(record.resolutionInfo[0]);
    EXPECT_EQ(0u, record.resolutionInfo[1].sensorVersionExists);
    EXPECT_EQ(0u, record.resolutionInfo[1].resolutionsCount);
    EXPECT_EQ(nullptr, record.resolutionInfo[1].resolutions);

    EXPECT_EQ(1u, record.exposureControlInfo.minAnalogGainExists);
    EXPECT_EQ(1.0, record.exposureControlInfo.minAnalogGain);
    EXPECT_EQ(1000000000u, record.exposureControlInfo.maxExposureTime);
    EXPECT_STREQ("1024 - 1024 / gain", record.exposureControlInfo.realToRegisterGain);
    EXPECT_STREQ("", record.exposureControlInfo.registerToRealGain) << "a string left out is empty";

    ExpectSettings(record.streamOnSettings, 0x0100, 1);
    ExpectSettings(record.streamOffSettings, 0, 0);
    EXPECT_EQ(1u, record.masterSettingsExists);
    ExpectSettings(record.masterSettings, 0x3F00, 2);
    EXPECT_EQ(0u, record.slaveSettingsExists);
    EXPECT_EQ(0u, record.softwareSyncConfigExists);
    ASSERT_EQ(2u, record.initSettingsCount);
    EXPECT_EQ(1u, record.initSettings[0].sensorVersion);
    ExpectSettings(record.initSettings[0].settings, 0x0136, 4);
    EXPECT_EQ(2u, record.initSettings[1].sensorVersion);
    ExpectSettings(record.initSettings[1].settings, 0, 0);

    ASSERT_EQ(1u, record.gmslInfoExists);
    EXPECT_EQ(2u, record.gmslInfo.linkCount);
    ASSERT_EQ(2u, record.gmslInfo.sensorAliasesCount);
    EXPECT_EQ(52u, record.gmslInfo.sensorAliases[0].originalAddress);
    EXPECT_EQ(82u, record.gmslInfo.sensorAliases[1].aliasAddress);
    EXPECT_EQ(0u, record.gmslInfo.serializerAliasesCount + record.gmslInfo.streamOnSettingsExists);
    EXPECT_EQ(0u, record.delayInfoCount);
    ASSERT_EQ(1u, record.noiseCoefficientExists);
    EXPECT_EQ(3.2e-6, record.noiseCoefficient.gradientS);
    EXPECT_EQ(1.1e-9, record.noiseCoefficient.offsetO);
    EXPECT_EQ(0u, record.noiseCoefficientBayerExists);
}

// ---- PD configuration (its records member by member in pdafconfig_test) -----------------------

Json PdConfigValues()
{
    return Json::parse(R"({
        "PDInfo": {"PDSensorName": "imx_vark_pd", "orientation": "PDAFOrientationMirror", "lcrPDOffset": -1.5},
        "PDModeInfo": [
            {"nativePatternInfo": {"blockPattern": {"pixelCoordinate": [{"x": -3, "y": 12, "type": "PDAFLeftShieldedPixel",
                                                                         "exposureType": 2}]}},
             "sensorType": "PDAFTypeDualPD", "modeName": "full", "sensorPDStatsFormat": 3,
             "defocusConfidenceThreshold": -20},
            {"sensorType": "PDAFType2", "modeName": "binned"}
        ]
    })");
}

void ExpectPdConfig(const PDAFConfigurationData& record)
{
    EXPECT_EQ(2, record.module_version.major_revision);
    EXPECT_STREQ("imx_vark_pd", record.PDInfo.PDSensorName);
    EXPECT_EQ(PDAFOrientationMirror, record.PDInfo.orientation);
    EXPECT_EQ(1u, record.PDInfo.lcrPDOffsetExists);
    EXPECT_EQ(-1.5f, record.PDInfo.lcrPDOffset);
    ASSERT_EQ(2u, record.PDModeInfoCount);
    const PDAFModeInformation& full = record.PDModeInfo[0];
    ASSERT_EQ(1u, full.nativePatternInfoExists);
    ASSERT_EQ(1u, full.nativePatternInfo.blockPatternExists);
    ASSERT_EQ(1u, full.nativePatternInfo.blockPattern.pixelCoordinateCount);
    const PDAFPixelCoordinates& pixel = full.nativePatternInfo.blockPattern.pixelCoordinate[0];
    EXPECT_EQ(-3, pixel.x);
    EXPECT_EQ(12, pixel.y);
    EXPECT_EQ(PDAFLeftShieldedPixel, pixel.type);
    EXPECT_EQ(1u, pixel.exposureTypeExists);
    EXPECT_EQ(ExposureType2, pixel.exposureType);
    EXPECT_EQ(PDAFTypeDualPD, full.sensorType);
    EXPECT_STREQ("full", full.modeName);
    EXPECT_EQ(SensorPDStatsRaw10Conf11BitPd10Bit, full.sensorPDStatsFormat);
    EXPECT_EQ(-20, full.defocusConfidenceThreshold);
    const PDAFModeInformation& binned = record.PDModeInfo[1];
    EXPECT_EQ(0u, binned.nativePatternInfoExists + binned.blockPatternInfoExists);
    EXPECT_EQ(PDAFType2, binned.sensorType);
    EXPECT_STREQ("binned", binned.modeName);
}

// ---- Actuator ---------------------------------------------------------------------------------

/// The two names of the actuator class differ in every value that `seed` touches.
Json ActuatorValues(uint32_t seed)
{
    Json values         = Json::parse(R"({
        "registerConfig": {"registerParam": [{"operation": "ActuatorOperation4", "hwMask": "0xFF00", "hwShift": 8}]},
        "tunedParams": {
            "parkLens": {"execution": "ParkLensExecution2", "stepDelay": 5000},
            "forwardDamping": {"scenarioCount": 1, "scenarioDamping": {"regionDamping": [
                {"damping": [{"dampingStep": 100, "hwParams": 10}, {"dampingStep": 50, "hwParams": 11}]},
                {"damping": []}]}}}
    })");
    values["slaveInfo"] = {{"actuatorName", "ak_" + std::to_string(seed)},
                           {"slaveAddress", 0x18 + seed},
                           {"actuatorType", "ActuatorType1"},
                           {"powerUpSequence", PowerSequence(seed, 0)},
                           {"powerDownSequence", PowerSequence(seed + 10, 0x5000 + seed)}};
    if (seed % 2 == 0)
    {
        values["slaveInfo"]["actuatorId"] = seed * 3;
    }
    values["registerConfig"]["registerParam"][0]["registerData"] = seed;
    values["calibrationSettings"]                                = Settings(0x0300 + seed, 1);
    values["tunedParams"]["initialCode"]                         = 300 + seed;
    return values;
}

void ExpectActuator(const ActuatorDriverData& record, uint32_t seed)
{
    const ActuatorSlaveInfo& slave = record.slaveInfo;
    EXPECT_STREQ(("ak_" + std::to_string(seed)).c_str(), slave.actuatorName);
    EXPECT_EQ(seed % 2 == 0 ? 1u : 0u, slave.actuatorIdExists);
    EXPECT_EQ(seed % 2 == 0 ? seed * 3 : 0u, slave.actuatorId);
    EXPECT_EQ(0x18u + seed, slave.slaveAddress);
    EXPECT_EQ(ActuatorType1, slave.actuatorType);
    ExpectPowerSequence(slave.powerUpSequence, seed, 0);
    ExpectPowerSequence(slave.powerDownSequence, seed + 10, 0x5000 + seed);

    ASSERT_EQ(1u, record.registerConfig.registerParamCount);
    const ActuatorRegParam& param = record.registerConfig.registerParam[0];
    EXPECT_EQ(seed, param.registerData);
    EXPECT_EQ(ActuatorOperation4, param.operation);
    EXPECT_EQ(0xFF00u, param.hwMask);
    EXPECT_EQ(8u, param.hwShift);
    EXPECT_EQ(0u, record.deinitSettingsExists);
    EXPECT_EQ(1u, record.calibrationSettingsExists);
    ExpectSettings(record.calibrationSettings, 0x0300 + seed, 1);

    const ActuatorTunedParams& tuned = record.tunedParams;
    EXPECT_EQ(300u + seed, tuned.initialCode);
    ASSERT_EQ(1u, tuned.parkLensExists);
    EXPECT_EQ(ParkLensExecution2, tuned.parkLens.execution);
    EXPECT_EQ(5000u, tuned.parkLens.stepDelay);
    EXPECT_EQ(1u, tuned.forwardDamping.scenarioCount);
    const ScenarioDampingParamsArray& scenario = tuned.forwardDamping.scenarioDamping;
    ASSERT_EQ(2u, scenario.regionDampingCount);
    ASSERT_EQ(2u, scenario.regionDamping[0].dampingCount);
    EXPECT_EQ(100u, scenario.regionDamping[0].damping[0].dampingStep);
    EXPECT_EQ(10u, scenario.regionDamping[0].damping[0].hwParams);
    EXPECT_EQ(50u, scenario.regionDamping[0].damping[1].dampingStep);
    EXPECT_EQ(11u, scenario.regionDamping[0].damping[1].hwParams);
    EXPECT_EQ(0u, scenario.regionDamping[1].dampingCount);
    EXPECT_EQ(0u, tuned.backwardDamping.scenarioDamping.regionDampingCount);
}

void ExpectActuator0(const ActuatorDriverData& record)
{
    ExpectActuator(record, 0);
}

void ExpectActuator1(const ActuatorDriverData& record)
{
    ExpectActuator(record, 1);
}

// ---- Module-identification memory -------------------------------------------------------------

Json EEbinValues()
{
    Json values = Json::parse(R"([
        {"moduleName": "mod_a", "sensorName": "imx_vark", "actuatorName": "ak_0", "oisName": "ois_a"},
        {"moduleName": "mod_b", "sensorName": "imx_vark"}
    ])");
    return {{"slaveInfo", {{"slaveAddress", "0xA0"}, {"i2cFrequencyMode", 2}}},
            {"versionFormat", {{"patchVersion", {{"offset", 2}, {"size", 2}}}}},
            {"readSettings", Settings(0x0820, 3)},
            {"moduleInfo", values}};
}

void ExpectEEbin(const EEbinDriver& record)
{
    EXPECT_EQ(0xA0u, record.slaveInfo.slaveAddress);
    EXPECT_EQ(I2CFrequencyMode2, record.slaveInfo.i2cFrequencyMode);
    EXPECT_EQ(2u, record.versionFormat.patchVersion.offset);
    EXPECT_EQ(2u, record.versionFormat.patchVersion.size);
    ExpectSettings(record.readSettings, 0x0820, 3);
    ASSERT_EQ(2u, record.moduleInfoCount);
    EXPECT_STREQ("mod_a", record.moduleInfo[0].moduleName);
    EXPECT_STREQ("ois_a", record.moduleInfo[0].oisName);
    EXPECT_STREQ("mod_b", record.moduleInfo[1].moduleName);
    EXPECT_STREQ("", record.moduleInfo[1].actuatorName) << "a string left out is empty";
}

// ---- Calibration memory -----------------------------------------------------------------------
// Every MemoryInfo gets a seed of its own, from which its three members follow.

Json Memory(uint32_t seed)
{
    return {{"offset", seed}, {"mask", 0xFF00u | seed}, {"sign", seed % 2}};
}

void ExpectMemory(const MemoryInfo& memory, uint32_t seed)
{
    EXPECT_EQ(seed, memory.offset) << "seed " << seed;
    EXPECT_EQ(0xFF00u | seed, memory.mask) << "seed " << seed;
    EXPECT_EQ(seed % 2 == 0 ? SignType0 : SignType1, memory.sign) << "seed " << seed;
}

Json MemoryKind(uint32_t available)
{
    return {{"isAvailable", available}, {"endianness", available % 2 == 0 ? "EndianType1" : "EndianType0"}};
}

void ExpectMemoryKind(const MemoryType& kind, uint32_t available)
{
    EXPECT_EQ(available, kind.isAvailable);
    EXPECT_EQ(available % 2 == 0 ? EndianType1 : EndianType0, kind.endianness);
}

/// SPCInfo and QSCInfo have the same shape; `seed` tells them apart.
Json CorrectionInfo(uint32_t seed)
{
    return {{"memoryType", MemoryKind(seed % 7)},
            {"settings", Json::array({{{"data", Memory(seed)}, {"registerAddress", seed + 1}},
                                      {{"data", Memory(seed + 2)}, {"registerDataType", 1}}})},
            {"dataOffset", seed * 10}};
}

template <typename Info>
void ExpectCorrectionInfo(const Info& info, uint32_t seed)
{
    ExpectMemoryKind(info.memoryType, seed % 7);
    ASSERT_EQ(2u, info.settingsCount);
    ExpectMemory(info.settings[0].data, seed);
    EXPECT_EQ(seed + 1, info.settings[0].registerAddress);
    ExpectMemory(info.settings[1].data, seed + 2);
    EXPECT_EQ(1u, info.settings[1].registerDataType);
    EXPECT_EQ(seed * 10, info.dataOffset);
}

Json EepromValues()
{
    Json rotation = Json::array();
    for (uint32_t element = 0; element < 9; ++element)
    {
        rotation.push_back(Memory(130 + element));
    }
    Json format = {
        {"afInfo",
         {{"memoryType", MemoryKind(1)},
          {"macroDAC", Memory(10)},
          {"calibrationPoints", Json::array({{{"objectDistance", Memory(90)}, {"lensPosition", Memory(91)}}})},
          {"macroSagType", "AfLensSagType5"},
          {"infinitySagType", 2},
          {"hallBias", Memory(20)}}},
        {"dualCameraInfo",
         {{"systemInfo", {{"rotationMatrix", rotation}, {"translationY", Memory(141)}, {"aecSyncMethod", 1}}}}},
        {"spcInfo", CorrectionInfo(160)},
        {"oisInfo", {{"OISAddressArray", Json::array({"0x8000", "0x8004", "0x8008"})}, {"slaveAddress", "0x7C"}}},
        {"pdaf2DInfo", {{"upGainMap", Memory(185)}}},
        {"qscInfo", CorrectionInfo(200)}};
    return {{"slaveInfo",
             {{"eepromName", "eeprom_vark"}, {"i2cFrequencyMode", 3}, {"powerUpSequence", PowerSequence(400, 0x0900)}}},
            {"formatInfo", format},
            {"customInfo", Json::parse(R"([{"name": "lotId", "value": 17}, {"name": "line", "value": 4}])")}};
}

void ExpectEeprom(const EEPROMDriverData& record)
{
    EXPECT_STREQ("eeprom_vark", record.slaveInfo.eepromName);
    EXPECT_EQ(I2CFrequencyMode3, record.slaveInfo.i2cFrequencyMode);
    ExpectPowerSequence(record.slaveInfo.powerUpSequence, 400, 0x0900);
    EXPECT_EQ(0u, record.slaveInfo.powerDownSequence.powerSettingCount);

    const EEPROMDataFormatInformation& format = record.formatInfo;
    const AFInfo&                      af     = format.afInfo;
    ExpectMemoryKind(af.memoryType, 1);
    ExpectMemory(af.macroDAC, 10);
    ASSERT_EQ(1u, af.calibrationPointsCount);
    ExpectMemory(af.calibrationPoints[0].objectDistance, 90);
    ExpectMemory(af.calibrationPoints[0].lensPosition, 91);
    EXPECT_EQ(AfLensSagType5, af.macroSagType);
    EXPECT_EQ(AfLensSagType2, af.infinitySagType);
    EXPECT_EQ(1u, af.hallBiasExists);
    ExpectMemory(af.hallBias, 20);

    const DualCameraSystemInfo& system = format.dualCameraInfo.systemInfo;
    for (uint32_t element = 0; element < 9; ++element)
    {
        ExpectMemory(system.rotationMatrix[element], 130 + element);
    }
    EXPECT_EQ(1u, system.translationYExists);
    ExpectMemory(system.translationY, 141);
    EXPECT_EQ(0u, system.translationXExists + system.absoluteMethodAECSyncExists);
    EXPECT_EQ(1u, system.aecSyncMethodExists);
    EXPECT_EQ(1u, system.aecSyncMethod);
    ExpectCorrectionInfo(format.spcInfo, 160);
    ExpectCorrectionInfo(format.qscInfo, 200);

    ASSERT_EQ(3u, format.oisInfo.OISAddressArrayCount);
    EXPECT_EQ(0x8000u, format.oisInfo.OISAddressArray[0]);
    EXPECT_EQ(0x8008u, format.oisInfo.OISAddressArray[2]);
    EXPECT_EQ(0x7Cu, format.oisInfo.slaveAddress);
    EXPECT_EQ(1u, format.pdaf2DInfo.upGainMapExists);
    ExpectMemory(format.pdaf2DInfo.upGainMap, 185);
    EXPECT_EQ(0u, format.pdaf2DInfo.downGainMapExists);

    ASSERT_EQ(2u, record.customInfoCount);
    EXPECT_STREQ("lotId", record.customInfo[0].name);
    EXPECT_EQ(17u, record.customInfo[0].value);
    EXPECT_STREQ("line", record.customInfo[1].name);
    EXPECT_EQ(4u, record.customInfo[1].value);
}

// ---- Flash ------------------------------------------------------------------------------------

/// The main flash has every optional part; the secondary one none of them.
Json FlashValues(bool main)
{
    if (!main)
    {
        return Json::parse(R"({"flashName": "flash_aux", "flashDriverType": 0, "flashCount": 1})");
    }
    Json values                 = Json::parse(R"({"flashName": "flash_main", "flashDriverType": "FlashDriverType1",
        "regAddrInfo": {"torchCurrentRegister": 8},
        "flashInfo": {"triggerInfo": [{"gpio": 23}, {"gpio": 24, "triggerType": 2, "delayMicroseconds": 150}]},
        "flashCount": 2})");
    values["powerDownSequence"] = PowerSequence(510, 0x0A00);
    values["i2cInfo"]           = {
                  {"slaveAddress", "0xC6"}, {"i2cFrequencyMode", "I2CFrequencyMode2"}, {"highSettings", Settings(0x0A30, 2)}};
    return values;
}

void ExpectMainFlash(const FlashDriverData& record)
{
    EXPECT_STREQ("flash_main", record.flashName);
    EXPECT_EQ(FlashDriverType1, record.flashDriverType);
    EXPECT_EQ(0u, record.powerUpSequenceExists);
    EXPECT_EQ(1u, record.powerDownSequenceExists);
    ExpectPowerSequence(record.powerDownSequence, 510, 0x0A00);
    ASSERT_EQ(1u, record.regAddrInfoExists);
    EXPECT_EQ(8u, record.regAddrInfo.torchCurrentRegister);
    ASSERT_EQ(1u, record.i2cInfoExists);
    EXPECT_EQ(0xC6u, record.i2cInfo.slaveAddress);
    EXPECT_EQ(I2CFrequencyMode2, record.i2cInfo.i2cFrequencyMode);
    ExpectSettings(record.i2cInfo.highSettings, 0x0A30, 2);
    ASSERT_EQ(1u, record.flashInfoExists);
    ASSERT_EQ(2u, record.flashInfo.triggerInfoCount);
    EXPECT_EQ(23u, record.flashInfo.triggerInfo[0].gpio);
    EXPECT_EQ(24u, record.flashInfo.triggerInfo[1].gpio);
    EXPECT_EQ(2u, record.flashInfo.triggerInfo[1].triggerType);
    EXPECT_EQ(150u, record.flashInfo.triggerInfo[1].delayMicroseconds);
    EXPECT_EQ(2u, record.flashCount);
}

void ExpectSecondaryFlash(const FlashDriverData& record)
{
    EXPECT_STREQ("flash_aux", record.flashName);
    EXPECT_EQ(FlashDriverType0, record.flashDriverType);
    EXPECT_EQ(0u, record.powerUpSequenceExists + record.powerDownSequenceExists + record.regAddrInfoExists +
                      record.i2cInfoExists + record.flashInfoExists);
    EXPECT_EQ(nullptr, record.flashInfo.triggerInfo);
    EXPECT_EQ(1u, record.flashCount);
}

// ---- Camera module configuration --------------------------------------------------------------

Json CameraModuleValues()
{
    return Json::parse(R"({"moduleGroup": {"moduleConfiguration": [
        {"cameraId": 0, "moduleName": "rear_wide", "sensorName": "imx_vark", "cciMaster": 0,
         "oisI2CFrequencyMode": 1, "position": "CameraPosition0", "csiInfo": {"laneAssign": "0x4320", "isCPhy": 1},
         "lensInfo": {"focalLength": 4.71, "maxYawDegree": 3.5},
         "depthConversionLibInfo": {"libraryName": "libdepth.so", "outputFormats": ["DepthOutputFormat2", 0]}},
        {"cameraId": 2, "sensorName": "imx_front", "position": 5, "lensInfo": {"focalLength": 2.2}}
    ]}})");
}

void ExpectCameraModule(const CameraModuleData& record)
{
    ASSERT_EQ(2u, record.moduleGroup.moduleConfigurationCount);
    const ModuleConfiguration& rear = record.moduleGroup.moduleConfiguration[0];
    EXPECT_EQ(1u, rear.moduleNameExists);
    EXPECT_STREQ("rear_wide", rear.moduleName);
    EXPECT_STREQ("imx_vark", rear.sensorName);
    EXPECT_EQ(1u, rear.cciMasterExists);
    EXPECT_EQ(1u, rear.oisI2CFrequencyModeExists);
    EXPECT_EQ(I2CFrequencyMode1, rear.oisI2CFrequencyMode);
    EXPECT_EQ(CameraPosition0, rear.position);
    EXPECT_EQ(0x4320u, rear.csiInfo.laneAssign);
    EXPECT_EQ(1u, rear.csiInfo.isCPhyExists);
    EXPECT_EQ(1u, rear.csiInfo.isCPhy);
    EXPECT_EQ(0u, rear.csiInfo.laneCountExists);
    EXPECT_EQ(4.71, rear.lensInfo.focalLength);
    EXPECT_EQ(1u, rear.lensInfo.maxYawDegreeExists);
    EXPECT_EQ(3.5, rear.lensInfo.maxYawDegree);
    ASSERT_EQ(1u, rear.depthConversionLibInfoExists);
    EXPECT_STREQ("libdepth.so", rear.depthConversionLibInfo.libraryName);
    ASSERT_EQ(2u, rear.depthConversionLibInfo.outputFormatsCount);
    EXPECT_EQ(DepthOutputFormat2, rear.depthConversionLibInfo.outputFormats[0]);
    EXPECT_EQ(DepthOutputFormat0, rear.depthConversionLibInfo.outputFormats[1]);

    const ModuleConfiguration& front = record.moduleGroup.moduleConfiguration[1];
    EXPECT_EQ(2u, front.cameraId);
    EXPECT_EQ(0u, front.moduleNameExists);
    EXPECT_EQ(nullptr, front.moduleName) << "an optional string left out has no text";
    EXPECT_STREQ("imx_front", front.sensorName);
    EXPECT_EQ(CameraPosition5, front.position);
    EXPECT_EQ(0u, front.cciMasterExists + front.oisI2CFrequencyModeExists + front.depthConversionLibInfoExists +
                      front.lensInfo.maxYawDegreeExists);
    EXPECT_EQ(2.2, front.lensInfo.focalLength);
}

// ---- Optical stabiliser -----------------------------------------------------------------------

Json OisValues()
{
    Json values                                    = Json::parse(R"({
        "slaveInfo": {"oisName": "ois_a", "idRegisterAddress": "0x00FC", "id": "0x1234"},
        "opcode": {"memory": 131},
        "lensPositionReadInfo": {"readLength": 52,
            "format": {"timeStamp": {"offset": 1, "size": 4, "shift": 2}, "timeStampUnit": "TimeStampUnitInfo2"}}
    })");
    values["movieModeSettings"]                    = Settings(0x0B50, 2);
    values["lensPositionReadInfo"]["readSettings"] = Settings(0x0B70, 1);
    return values;
}

void ExpectOis(const OISDriverData& record)
{
    EXPECT_EQ(1, record.module_version.major_revision);
    EXPECT_EQ(1, record.module_version.minor_revision);
    EXPECT_STREQ("ois_a", record.slaveInfo.oisName);
    EXPECT_EQ(0xFCu, record.slaveInfo.idRegisterAddress);
    EXPECT_EQ(0x1234u, record.slaveInfo.id);
    EXPECT_EQ(131u, record.opcode.memory);
    EXPECT_EQ(1u, record.movieModeSettingsExists);
    ExpectSettings(record.movieModeSettings, 0x0B50, 2);
    EXPECT_EQ(0u, record.resetSettingsExists + record.powerDownSettingsExists);
    ASSERT_EQ(1u, record.lensPositionReadInfoExists);
    const OISLensPositionReadInfo& read = record.lensPositionReadInfo;
    EXPECT_EQ(52u, read.readLength);
    ExpectSettings(read.readSettings, 0x0B70, 1);
    ASSERT_EQ(1u, read.formatExists);
    EXPECT_EQ(1u, read.format.timeStamp.offset);
    EXPECT_EQ(4u, read.format.timeStamp.size);
    EXPECT_EQ(2u, read.format.timeStamp.shift);
    EXPECT_EQ(0u, read.format.timeStampOffsetExists);
    EXPECT_EQ(TimeStampUnitInfo2, read.format.timeStampUnit);
}

// ---- Chip map ---------------------------------------------------------------------------------

Json SocIdMapValues()
{
    return Json::parse(R"({"socIdInfo": [
        {"binFileName": "imx_vark_a.bin", "socIds": ["415", "457", "482"]},
        {"binFileName": "imx_vark_b.bin"}
    ]})");
}

void ExpectSocIdMap(const SensorBinSocIdMap& record)
{
    ASSERT_EQ(2u, record.socIdInfoCount);
    EXPECT_STREQ("imx_vark_a.bin", record.socIdInfo[0].binFileName);
    ASSERT_EQ(3u, record.socIdInfo[0].socIdsCount);
    EXPECT_STREQ("415", record.socIdInfo[0].socIds[0]);
    EXPECT_STREQ("482", record.socIdInfo[0].socIds[2]);
    EXPECT_STREQ("imx_vark_b.bin", record.socIdInfo[1].binFileName);
    EXPECT_EQ(0u, record.socIdInfo[1].socIdsCount);
    EXPECT_EQ(nullptr, record.socIdInfo[1].socIds);
}
} // namespace

std::vector<SensorModuleValues> AllSensorModules()
{
    using Manager = ImageSensorModuleSetManager;
    return {
        {"actuatorDriver", ActuatorValues(0), Fetching(&Manager::GetModule_actuatorDriver, &ExpectActuator0)},
        {"actuatorDriver1", ActuatorValues(1), Fetching(&Manager::GetModule_actuatorDriver1, &ExpectActuator1)},
        {"EEbinDriver", EEbinValues(), Fetching(&Manager::GetModule_EEbinDriver, &ExpectEEbin)},
        {"EEPROMDriverData", EepromValues(), Fetching(&Manager::GetModule_EEPROMDriverData, &ExpectEeprom)},
        {"flashDriverData", FlashValues(true), Fetching(&Manager::GetModule_flashDriverData, &ExpectMainFlash)},
        {"flashDriverDataSecondary", FlashValues(false),
         Fetching(&Manager::GetModule_flashDriverDataSecondary, &ExpectSecondaryFlash)},
        {"cameraModuleData", CameraModuleValues(), Fetching(&Manager::GetModule_cameraModuleData, &ExpectCameraModule)},
        {"OISDriver", OisValues(), Fetching(&Manager::GetModule_OISDriver, &ExpectOis)},
        {"PDConfigData", PdConfigValues(), Fetching(&Manager::GetModule_PDConfigData, &ExpectPdConfig)},
        {"sensorDriverData", SensorDriverValues(), Fetching(&Manager::GetModule_sensorDriverData, &ExpectSensorDriver)},
        {"sensorBinSocIdMap", SocIdMapValues(), Fetching(&Manager::GetModule_sensorBinSocIdMap, &ExpectSocIdMap)},
    };
}
} // namespace sensortest
