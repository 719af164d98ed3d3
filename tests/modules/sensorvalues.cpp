#include "sensorvalues.h"

#include <gtest/gtest.h>

#include <cstring>

namespace sensortest
{
namespace
{
using namespace Orvo;

// ---- Shared records ---------------------------------------------------------------------------

/// One register step; the even ones also carry the optional slave address and delay.
Json Setting(uint32_t address, bool withOptionals)
{
    Json setting = {{"registerAddress", address},
                    {"registerData", Json::array({address & 0xFFu, 0x5A})},
                    {"registerAddressType", 2},
                    {"registerDataType", 1},
                    {"operation", "OperationType3"}};
    if (withOptionals)
    {
        setting["slaveAddress"]      = "0x20";
        setting["delayMicroseconds"] = address % 1000;
    }
    return setting;
}

Json Settings(uint32_t firstAddress, size_t count)
{
    Json list = Json::array();
    for (size_t index = 0; index < count; ++index)
    {
        list.push_back(Setting(firstAddress + static_cast<uint32_t>(index), index % 2 == 0));
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

/// Two power steps and, when `settingsAddress` is not zero, the optional settings.
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
    EXPECT_EQ(seed + 2, sequence.powerSetting[1].configurationValue);
    EXPECT_EQ(seed + 3, sequence.powerSetting[1].delayMilliseconds);
    EXPECT_EQ(settingsAddress != 0 ? 1u : 0u, sequence.settingsExists);
    ExpectSettings(sequence.settings, settingsAddress, settingsAddress != 0 ? 2 : 0);
}

Json Frame(uint32_t x, uint32_t y, uint32_t width, uint32_t height)
{
    return {{"xStart", x}, {"yStart", y}, {"width", width}, {"height", height}};
}

void ExpectFrame(const FrameDimension& frame, uint32_t x, uint32_t y, uint32_t width, uint32_t height)
{
    EXPECT_EQ(x, frame.xStart);
    EXPECT_EQ(y, frame.yStart);
    EXPECT_EQ(width, frame.width);
    EXPECT_EQ(height, frame.height);
}

/// Runs `expect` on the record that `get` fetches, then gives the record back.
template <typename Record, typename Get>
ExpectLoaded Fetching(Get get, void (*expect)(const Record&))
{
    return [get, expect](ImageSensorModuleSetManager& manager, TuningMode const* modes, unsigned count)
    {
        Record* record = (manager.*get)(modes, count, nullptr);
        ASSERT_NE(nullptr, record);
        expect(*record);
        record->Release();
    };
}

// ---- Sensor driver ----------------------------------------------------------------------------

Json FullResolution()
{
    return Json::parse(R"({
        "colorFilterArrangement": "ColorFilterArrangement3",
        "streamInfo": {"streamConfiguration": [
            {"virtualChannel": 0, "dataType": "0x2B", "frameDimension": {"xStart": 0, "yStart": 0, "width": 4000, "height": 3000},
             "bitWidth": 10, "type": "StreamType0"},
            {"virtualChannel": 1, "dataType": 48, "frameDimension": {"xStart": 2, "yStart": 4, "width": 496, "height": 748},
             "bitWidth": 8, "type": 7}
        ]},
        "lineLengthPixelClock": 4200, "frameLengthLines": 3100, "minHorizontalBlanking": 200,
        "minVerticalBlanking": 100, "outputPixelClock": 600000000, "horizontalBinning": 1, "verticalBinning": 2,
        "frameRate": 29.97, "vtPixelClock": 8400000000, "mipiLaneCount": 4, "binningFactor": 1, "skipFrameCount": 2,
        "isHDRMode": 0, "isPDAFMode": 1,
        "integrationInfo": {"minLineCount": 8, "maxLineCount": 3090, "lineCountMargin": 10},
        "border": {"left": 8, "top": 6, "right": 4, "bottom": 2},
        "exposureInfo": [
            {"exposureType": "ExposureType1", "minLineCount": 4, "maxLineCount": 65000, "lineCountMargin": 12,
             "minAnalogGain": 1.0, "maxAnalogGain": 16.0, "minDigitalGain": 1.0, "maxDigitalGain": 3.984375,
             "exposureDelay": 2, "analogGainDelay": 2, "digitalGainDelay": 1},
            {"exposureType": "ExposureType2"}
        ],
        "frameOffsetInfo": {"verticalOffset": 12},
        "hdrExposureType": "HDRExposureTypeInfo1",
        "zzHDRInfo": {"colorPattern": "ZZHDRColorPattern6", "firstExposurePattern": 1},
        "hdr3ExposureInfo": {"hdr3ExposureType": 3, "minMiddleLineCount": 2, "minShortLineCount": 1,
                             "longToMiddleGap": 20, "middleToShortGap": 10, "maxExposureRatio": 16.5},
        "remosaicType": "RemosaicType1",
        "capability": ["SensorCapability13", "SensorCapability0", 7],
        "readoutTime": 33000000,
        "shdrInfo": {"shdrType": "SHDRTypeEnum5", "exposureCount": 3, "longVirtualChannel": 0, "middleVirtualChannel": 1,
                     "shortVirtualChannel": 2, "longDataType": 43, "middleDataType": 44, "shortDataType": 45,
                     "minExposureRatio": 1, "maxExposureRatio": 64, "lineInterleaveOffset": 16, "readoutOffset": 32,
                     "maxShortLineCount": 400, "middleReadoutOffset": 24, "longLineCountMargin": 10,
                     "middleLineCountMargin": 11, "shortLineCountMargin": 12},
        "mipiFlags": ["MipiFlagsType1", 0],
        "lineReadoutTime": 10000,
        "sensorModeIndex": 0
    })");
}

void ExpectFullResolution(const ResolutionData& resolution)
{
    EXPECT_EQ(ColorFilterArrangement3, resolution.colorFilterArrangement);
    ASSERT_EQ(2u, resolution.streamInfo.streamConfigurationCount);
    const StreamConfiguration& image = resolution.streamInfo.streamConfiguration[0];
    EXPECT_EQ(0u, image.virtualChannel);
    EXPECT_EQ(0x2Bu, image.dataType);
    ExpectFrame(image.frameDimension, 0, 0, 4000, 3000);
    EXPECT_EQ(10u, image.bitWidth);
    EXPECT_EQ(StreamType0, image.type);
    const StreamConfiguration& pd = resolution.streamInfo.streamConfiguration[1];
    EXPECT_EQ(1u, pd.virtualChannel);
    EXPECT_EQ(48u, pd.dataType);
    ExpectFrame(pd.frameDimension, 2, 4, 496, 748);
    EXPECT_EQ(8u, pd.bitWidth);
    EXPECT_EQ(StreamType7, pd.type);

    EXPECT_EQ(4200u, resolution.lineLengthPixelClock);
    EXPECT_EQ(3100u, resolution.frameLengthLines);
    EXPECT_EQ(200u, resolution.minHorizontalBlanking);
    EXPECT_EQ(100u, resolution.minVerticalBlanking);
    EXPECT_EQ(600000000u, resolution.outputPixelClock);
    EXPECT_EQ(1u, resolution.horizontalBinning);
    EXPECT_EQ(2u, resolution.verticalBinning);
    EXPECT_EQ(29.97, resolution.frameRate);
    EXPECT_EQ(1u, resolution.vtPixelClockExists);
    EXPECT_EQ(8400000000u, resolution.vtPixelClock);
    EXPECT_EQ(1u, resolution.mipiLaneCountExists);
    EXPECT_EQ(4u, resolution.mipiLaneCount);
    EXPECT_EQ(1u, resolution.binningFactor);
    EXPECT_EQ(1u, resolution.skipFrameCountExists);
    EXPECT_EQ(2u, resolution.skipFrameCount);
    EXPECT_EQ(0u, resolution.isHDRMode);
    EXPECT_EQ(1u, resolution.isPDAFMode);
    EXPECT_EQ(1u, resolution.integrationInfoExists);
    EXPECT_EQ(8u, resolution.integrationInfo.minLineCount);
    EXPECT_EQ(3090u, resolution.integrationInfo.maxLineCount);
    EXPECT_EQ(10u, resolution.integrationInfo.lineCountMargin);
    ExpectSettings(resolution.resolutionSettings, 0x3000, 3);
    EXPECT_EQ(8u, resolution.border.left);
    EXPECT_EQ(6u, resolution.border.top);
    EXPECT_EQ(4u, resolution.border.right);
    EXPECT_EQ(2u, resolution.border.bottom);

    ASSERT_EQ(2u, resolution.exposureInfoCount);
    const ResolutionExposureInformation& full = resolution.exposureInfo[0];
    EXPECT_EQ(ExposureType1, full.exposureType);
    EXPECT_EQ(1u, full.minLineCountExists & full.maxLineCountExists & full.lineCountMarginExists);
    EXPECT_EQ(4u, full.minLineCount);
    EXPECT_EQ(65000u, full.maxLineCount);
    EXPECT_EQ(12u, full.lineCountMargin);
    EXPECT_EQ(1u, full.minAnalogGainExists & full.maxAnalogGainExists & full.minDigitalGainExists &
                      full.maxDigitalGainExists);
    EXPECT_EQ(1.0, full.minAnalogGain);
    EXPECT_EQ(16.0, full.maxAnalogGain);
    EXPECT_EQ(1.0, full.minDigitalGain);
    EXPECT_EQ(3.984375, full.maxDigitalGain);
    EXPECT_EQ(1u, full.exposureDelayExists & full.analogGainDelayExists & full.digitalGainDelayExists);
    EXPECT_EQ(2u, full.exposureDelay);
    EXPECT_EQ(2u, full.analogGainDelay);
    EXPECT_EQ(1u, full.digitalGainDelay);
    const ResolutionExposureInformation& bare = resolution.exposureInfo[1];
    EXPECT_EQ(ExposureType2, bare.exposureType);
    EXPECT_EQ(0u, bare.minLineCountExists | bare.maxLineCountExists | bare.lineCountMarginExists |
                      bare.minAnalogGainExists | bare.maxAnalogGainExists | bare.minDigitalGainExists |
                      bare.maxDigitalGainExists | bare.exposureDelayExists | bare.analogGainDelayExists |
                      bare.digitalGainDelayExists);
    EXPECT_EQ(0.0, bare.maxAnalogGain);

    EXPECT_EQ(1u, resolution.frameOffsetInfoExists);
    EXPECT_EQ(1u, resolution.frameOffsetInfo.verticalOffsetExists);
    EXPECT_EQ(12u, resolution.frameOffsetInfo.verticalOffset);
    EXPECT_EQ(0u, resolution.frameOffsetInfo.horizontalOffsetExists);
    EXPECT_EQ(1u, resolution.hdrExposureTypeExists);
    EXPECT_EQ(HDRExposureTypeInfo1, resolution.hdrExposureType);
    EXPECT_EQ(1u, resolution.zzHDRInfoExists);
    EXPECT_EQ(1u, resolution.zzHDRInfo.colorPatternExists);
    EXPECT_EQ(ZZHDRColorPattern6, resolution.zzHDRInfo.colorPattern);
    EXPECT_EQ(1u, resolution.zzHDRInfo.firstExposurePatternExists);
    EXPECT_EQ(ZZHDRFirstExposurePattern1, resolution.zzHDRInfo.firstExposurePattern);

    ASSERT_EQ(1u, resolution.hdr3ExposureInfoExists);
    const HDR3ExposureInformation& hdr3 = resolution.hdr3ExposureInfo;
    EXPECT_EQ(1u, hdr3.hdr3ExposureTypeExists);
    EXPECT_EQ(HDR3ExposureTypeInfo3, hdr3.hdr3ExposureType);
    EXPECT_EQ(2u, hdr3.minMiddleLineCount);
    EXPECT_EQ(1u, hdr3.minShortLineCount);
    EXPECT_EQ(20u, hdr3.longToMiddleGap);
    EXPECT_EQ(10u, hdr3.middleToShortGap);
    EXPECT_EQ(1u, hdr3.maxExposureRatioExists);
    EXPECT_EQ(16.5, hdr3.maxExposureRatio);
    EXPECT_EQ(0u, hdr3.enableSettingsExists + hdr3.disableSettingsExists);
    EXPECT_EQ(nullptr, hdr3.enableSettings.registerSetting);

    EXPECT_EQ(1u, resolution.remosaicTypeExists);
    EXPECT_EQ(RemosaicType1, resolution.remosaicType);
    ASSERT_EQ(3u, resolution.capabilityCount);
    EXPECT_EQ(SensorCapability13, resolution.capability[0]);
    EXPECT_EQ(SensorCapability0, resolution.capability[1]);
    EXPECT_EQ(SensorCapability7, resolution.capability[2]);
    EXPECT_EQ(1u, resolution.readoutTimeExists);
    EXPECT_EQ(33000000u, resolution.readoutTime);

    ASSERT_EQ(1u, resolution.shdrInfoExists);
    const SHDRInfoType& shdr = resolution.shdrInfo;
    EXPECT_EQ(SHDRTypeEnum5, shdr.shdrType);
    EXPECT_EQ(3u, shdr.exposureCount);
    EXPECT_EQ(0u, shdr.longVirtualChannel);
    EXPECT_EQ(1u, shdr.middleVirtualChannel);
    EXPECT_EQ(2u, shdr.shortVirtualChannel);
    EXPECT_EQ(43u, shdr.longDataType);
    EXPECT_EQ(44u, shdr.middleDataType);
    EXPECT_EQ(45u, shdr.shortDataType);
    EXPECT_EQ(1u, shdr.minExposureRatio);
    EXPECT_EQ(64u, shdr.maxExposureRatio);
    EXPECT_EQ(16u, shdr.lineInterleaveOffset);
    EXPECT_EQ(32u, shdr.readoutOffset);
    EXPECT_EQ(400u, shdr.maxShortLineCount);
    EXPECT_EQ(1u, shdr.middleReadoutOffsetExists);
    EXPECT_EQ(24u, shdr.middleReadoutOffset);
    EXPECT_EQ(10u, shdr.longLineCountMargin);
    EXPECT_EQ(11u, shdr.middleLineCountMargin);
    EXPECT_EQ(12u, shdr.shortLineCountMargin);

    ASSERT_EQ(2u, resolution.mipiFlagsCount);
    EXPECT_EQ(MipiFlagsType1, resolution.mipiFlags[0]);
    EXPECT_EQ(MipiFlagsType0, resolution.mipiFlags[1]);
    EXPECT_EQ(1u, resolution.lineReadoutTimeExists);
    EXPECT_EQ(10000u, resolution.lineReadoutTime);
    EXPECT_EQ(1u, resolution.sensorModeIndexExists);
    EXPECT_EQ(0u, resolution.sensorModeIndex);
}

/// A resolution of three members: everything else is zero, empty or absent.
void ExpectBareResolution(const ResolutionData& resolution)
{
    EXPECT_EQ(60.5, resolution.frameRate);
    EXPECT_EQ(2100u, resolution.lineLengthPixelClock);
    EXPECT_EQ(1550u, resolution.frameLengthLines);
    EXPECT_EQ(ColorFilterArrangement0, resolution.colorFilterArrangement);
    EXPECT_EQ(0u, resolution.streamInfo.streamConfigurationCount);
    EXPECT_EQ(0u, resolution.outputPixelClock + resolution.isPDAFMode + resolution.border.left);
    EXPECT_EQ(0u, resolution.vtPixelClockExists | resolution.mipiLaneCountExists | resolution.skipFrameCountExists |
                      resolution.integrationInfoExists | resolution.frameOffsetInfoExists |
                      resolution.hdrExposureTypeExists | resolution.zzHDRInfoExists |
                      resolution.hdr3ExposureInfoExists | resolution.remosaicTypeExists |
                      resolution.readoutTimeExists | resolution.shdrInfoExists | resolution.lineReadoutTimeExists |
                      resolution.sensorModeIndexExists);
    EXPECT_EQ(0u, resolution.resolutionSettings.registerSettingCount + resolution.exposureInfoCount +
                      resolution.capabilityCount + resolution.mipiFlagsCount);
    EXPECT_EQ(nullptr, resolution.exposureInfo);
}

Json SensorDriverValues()
{
    Json values                            = Json::object();
    values["slaveInfo"]                    = {{"sensorName", "imx_vark"},
                                              {"moduleType", "ModuleType2"},
                                              {"slaveAddress", "0x34"},
                                              {"registerAddressType", 2},
                                              {"registerDataType", 1},
                                              {"sensorIdRegisterAddress", "0x0016"},
                                              {"sensorId", "0x0586"},
                                              {"sensorIdMask", "0xFFFF"},
                                              {"i2cFrequencyMode", "I2CFrequencyMode3"},
                                              {"powerUpSequence", PowerSequence(100, 0x6000)},
                                              {"powerDownSequence", PowerSequence(200, 0)}};
    values["regAddrInfo"]                  = Json::parse(R"({
        "xOutput": "0x034C", "yOutput": "0x034E", "frameLengthLines": "0x0340", "lineLengthPixelClock": "0x0342",
        "coarseIntegrationTime": "0x0202", "shortCoarseIntegrationTime": "0x0224", "globalGain": "0x0204",
        "shortGlobalGain": "0x0216", "digitalGlobalGain": "0x020E", "digitalGainRed": "0x0210",
        "frameLengthLinesShift": 3, "groupHoldRegister": "0x0104", "groupHoldOn": 1, "groupHoldOff": 0,
        "frameCountRegister": 5
    })");
    Json resolutions                       = Json::array({FullResolution(), Json::parse(R"({"frameRate": 60.5,
        "lineLengthPixelClock": 2100, "frameLengthLines": 1550})")});
    resolutions[0]["resolutionSettings"]   = Settings(0x3000, 3);
    resolutions[0]["hdr3ExposureInfo"]["disableSettings"] = nullptr; // null: left out
    values["resolutionInfo"] = Json::array({{{"sensorVersion", 3}, {"resolutions", resolutions}}, Json::object()});
    values["exposureControlInfo"] = Json::parse(R"json({
        "maxAnalogGain": 16.0, "maxDigitalGain": 4.0, "minAnalogGain": 1.0, "verticalOffset": 10, "maxLineCount": 65525,
        "minLineCount": 1, "lineCountStep": 2, "maxFrameLengthLines": 65535, "digitalGainDecimator": 256,
        "maxExposureTime": 1000000000, "realToRegisterGain": "1024 - 1024 / gain",
        "registerToRealGain": "1024 / (1024 - register)"
    })json");
    values["streamOnSettings"]        = Settings(0x0100, 1);
    values["streamOffSettings"]       = Settings(0x0110, 1);
    values["groupHoldOnSettings"]     = Settings(0x0120, 2);
    values["masterSettings"]          = Settings(0x3F00, 2);
    values["softwareSyncConfig"]      = {{"syncMode", 2}};
    values["temperatureReadSettings"] = {{"temperatureRegisterAddress", "0x013A"},
                                         {"readSettings", Settings(0x0138, 1)}};
    values["initSettings"]            = Json::array({{{"sensorVersion", 1}, {"settings", Settings(0x0136, 4)}},
                                                     {{"sensorVersion", 2}}});
    values["testPatternInfo"] = {
        {"testPatternData", Json::array({{{"mode", "TestPatternMode4"}, {"settings", Settings(0x0600, 2)}}})}};
    values["gmslInfo"] = Json::parse(R"({
        "serializerSlaveAddress": 128, "deserializerSlaveAddress": 144, "serializerAliasAddress": 130,
        "sensorAliasAddress": 54, "linkIndex": 1, "linkCount": 2, "pipeIndex": 3, "virtualChannel": 1, "dataType": 43,
        "linkRate": 6, "lockTimeout": 100,
        "serializerAliases": [{"originalAddress": 64, "aliasAddress": 66}],
        "sensorAliases": [{"originalAddress": 52, "aliasAddress": 54}, {"originalAddress": 80, "aliasAddress": 82}],
        "serializerModeSettings": [{"streamMode": 1}]
    })");
    values["gmslInfo"]["streamOnSettings"]                      = Settings(0x0700, 1);
    values["gmslInfo"]["serializerModeSettings"][0]["settings"] = Settings(0x0710, 1);
    values["colorLevelInfo"] = {{"whiteLevel", 1023}, {"rPedestal", 64}, {"grPedestal", 65},
                                {"gbPedestal", 66},   {"bPedestal", 67}};
    values["opticalBlackRegionInfo"] = {{"regions", Json::array({Frame(0, 0, 4000, 16), Frame(0, 3016, 4000, 8)})}};
    values["pixelArrayInfo"]         = {{"activeDimension", {{"width", 4000}, {"height", 3000}}},
                                        {"dummyBorder", {{"left", 1}, {"top", 2}, {"right", 3}, {"bottom", 4}}}};
    values["delayInfo"]              = Json::parse(R"([{"delayType": "DelayInfoType1", "shortExposureDelay": 2,
        "frameLengthDelay": 1, "exposureDelay": 2, "analogGainDelay": 3, "digitalGainDelay": 1}])");
    values["sensorProperty"]   = {{"pixelSize", 1.12},
                                  {"cropFactor", 6.2},
                                  {"sensingMethod", "SensingMethod2"},
                                  {"baseSensitivity", 100}};
    values["noiseCoefficient"] = {{"gradientS", 3.2e-6}, {"offsetS", 3.0e-8}, {"gradientO", 4.5e-12},
                                  {"offsetO", 1.1e-9}};
    return values;
}

void ExpectSensorDriver(const SensorDriverData& record)
{
    EXPECT_EQ(1, record.module_version.major_revision);
    EXPECT_EQ(0, record.module_version.minor_revision + record.module_version.incr_revision);

    const SlaveInformation& slave = record.slaveInfo;
    EXPECT_STREQ("imx_vark", slave.sensorName);
    EXPECT_EQ(1u, slave.moduleTypeExists);
    EXPECT_EQ(ModuleType2, slave.moduleType);
    EXPECT_EQ(0x34u, slave.slaveAddress);
    EXPECT_EQ(2u, slave.registerAddressType);
    EXPECT_EQ(1u, slave.registerDataType);
    EXPECT_EQ(0x16u, slave.sensorIdRegisterAddress);
    EXPECT_EQ(0x586u, slave.sensorId);
    EXPECT_EQ(0xFFFFu, slave.sensorIdMask);
    EXPECT_EQ(I2CFrequencyMode3, slave.i2cFrequencyMode);
    ExpectPowerSequence(slave.powerUpSequence, 100, 0x6000);
    ExpectPowerSequence(slave.powerDownSequence, 200, 0);

    const RegAddrInformation& reg = record.regAddrInfo;
    EXPECT_EQ(0x34Cu, reg.xOutput);
    EXPECT_EQ(0x34Eu, reg.yOutput);
    EXPECT_EQ(0x340u, reg.frameLengthLines);
    EXPECT_EQ(0x342u, reg.lineLengthPixelClock);
    EXPECT_EQ(0x202u, reg.coarseIntegrationTime);
    EXPECT_EQ(1u, reg.shortCoarseIntegrationTimeExists);
    EXPECT_EQ(0x224u, reg.shortCoarseIntegrationTime);
    EXPECT_EQ(0u, reg.middleCoarseIntegrationTimeExists);
    EXPECT_EQ(0x204u, reg.globalGain);
    EXPECT_EQ(1u, reg.shortGlobalGainExists);
    EXPECT_EQ(0x216u, reg.shortGlobalGain);
    EXPECT_EQ(0u, reg.middleGlobalGainExists);
    EXPECT_EQ(1u, reg.digitalGlobalGainExists);
    EXPECT_EQ(0x20Eu, reg.digitalGlobalGain);
    EXPECT_EQ(0u, reg.digitalGainGreenRedExists);
    EXPECT_EQ(1u, reg.digitalGainRedExists);
    EXPECT_EQ(0x210u, reg.digitalGainRed);
    EXPECT_EQ(0u, reg.digitalGainBlueExists + reg.digitalGainGreenBlueExists + reg.integrationTimeShiftExists);
    EXPECT_EQ(1u, reg.frameLengthLinesShiftExists);
    EXPECT_EQ(3u, reg.frameLengthLinesShift);
    EXPECT_EQ(0x104u, reg.groupHoldRegister);
    EXPECT_EQ(1u, reg.groupHoldOn);
    EXPECT_EQ(0u, reg.groupHoldOff);
    EXPECT_EQ(5u, reg.frameCountRegister);

    ASSERT_EQ(2u, record.resolutionInfoCount);
    EXPECT_EQ(1u, record.resolutionInfo[0].sensorVersionExists);
    EXPECT_EQ(3u, record.resolutionInfo[0].sensorVersion);
    ASSERT_EQ(2u, record.resolutionInfo[0].resolutionsCount);
    ExpectFullResolution(record.resolutionInfo[0].resolutions[0]);
    ExpectBareResolution(record.resolutionInfo[0].resolutions[1]);
    EXPECT_EQ(0u, record.resolutionInfo[1].sensorVersionExists);
    EXPECT_EQ(0u, record.resolutionInfo[1].resolutionsCount);
    EXPECT_EQ(nullptr, record.resolutionInfo[1].resolutions);

    const ExposureControlInformation& exposure = record.exposureControlInfo;
    EXPECT_EQ(16.0, exposure.maxAnalogGain);
    EXPECT_EQ(4.0, exposure.maxDigitalGain);
    EXPECT_EQ(1u, exposure.minAnalogGainExists);
    EXPECT_EQ(1.0, exposure.minAnalogGain);
    EXPECT_EQ(10u, exposure.verticalOffset);
    EXPECT_EQ(0u, exposure.shortVerticalOffsetExists);
    EXPECT_EQ(65525u, exposure.maxLineCount);
    EXPECT_EQ(1u, exposure.minLineCountExists & exposure.lineCountStepExists & exposure.maxFrameLengthLinesExists &
                      exposure.digitalGainDecimatorExists);
    EXPECT_EQ(1u, exposure.minLineCount);
    EXPECT_EQ(2u, exposure.lineCountStep);
    EXPECT_EQ(65535u, exposure.maxFrameLengthLines);
    EXPECT_EQ(0u, exposure.middleVerticalOffsetExists + exposure.shortMaxLineCountExists +
                      exposure.middleMaxLineCountExists);
    EXPECT_EQ(256u, exposure.digitalGainDecimator);
    EXPECT_EQ(1000000000u, exposure.maxExposureTime);
    EXPECT_STREQ("1024 - 1024 / gain", exposure.realToRegisterGain);
    EXPECT_STREQ("1024 / (1024 - register)", exposure.registerToRealGain);

    ExpectSettings(record.streamOnSettings, 0x0100, 1);
    ExpectSettings(record.streamOffSettings, 0x0110, 1);
    ExpectSettings(record.groupHoldOnSettings, 0x0120, 2);
    ExpectSettings(record.groupHoldOffSettings, 0, 0);
    EXPECT_EQ(1u, record.masterSettingsExists);
    ExpectSettings(record.masterSettings, 0x3F00, 2);
    EXPECT_EQ(0u, record.slaveSettingsExists);
    EXPECT_EQ(1u, record.softwareSyncConfigExists);
    EXPECT_EQ(2u, record.softwareSyncConfig.syncMode);
    EXPECT_EQ(1u, record.temperatureReadSettingsExists);
    EXPECT_EQ(0x13Au, record.temperatureReadSettings.temperatureRegisterAddress);
    ExpectSettings(record.temperatureReadSettings.readSettings, 0x0138, 1);
    ASSERT_EQ(2u, record.initSettingsCount);
    EXPECT_EQ(1u, record.initSettings[0].sensorVersion);
    ExpectSettings(record.initSettings[0].settings, 0x0136, 4);
    EXPECT_EQ(2u, record.initSettings[1].sensorVersion);
    ExpectSettings(record.initSettings[1].settings, 0, 0);
    ASSERT_EQ(1u, record.testPatternInfo.testPatternDataCount);
    EXPECT_EQ(TestPatternMode4, record.testPatternInfo.testPatternData[0].mode);
    ExpectSettings(record.testPatternInfo.testPatternData[0].settings, 0x0600, 2);

    ASSERT_EQ(1u, record.gmslInfoExists);
    const GmslInformation& gmsl = record.gmslInfo;
    EXPECT_EQ(128u, gmsl.serializerSlaveAddress);
    EXPECT_EQ(144u, gmsl.deserializerSlaveAddress);
    EXPECT_EQ(130u, gmsl.serializerAliasAddress);
    EXPECT_EQ(54u, gmsl.sensorAliasAddress);
    EXPECT_EQ(1u, gmsl.linkIndex);
    EXPECT_EQ(2u, gmsl.linkCount);
    EXPECT_EQ(3u, gmsl.pipeIndex);
    EXPECT_EQ(1u, gmsl.virtualChannel);
    EXPECT_EQ(43u, gmsl.dataType);
    EXPECT_EQ(6u, gmsl.linkRate);
    EXPECT_EQ(100u, gmsl.lockTimeout);
    ASSERT_EQ(1u, gmsl.serializerAliasesCount);
    EXPECT_EQ(64u, gmsl.serializerAliases[0].originalAddress);
    EXPECT_EQ(66u, gmsl.serializerAliases[0].aliasAddress);
    ASSERT_EQ(2u, gmsl.sensorAliasesCount);
    EXPECT_EQ(52u, gmsl.sensorAliases[0].originalAddress);
    EXPECT_EQ(54u, gmsl.sensorAliases[0].aliasAddress);
    EXPECT_EQ(80u, gmsl.sensorAliases[1].originalAddress);
    EXPECT_EQ(82u, gmsl.sensorAliases[1].aliasAddress);
    EXPECT_EQ(0u, gmsl.eepromAliasesCount);
    EXPECT_EQ(0u, gmsl.serializerInitSettingsExists + gmsl.deserializerInitSettingsExists +
                      gmsl.linkEnableSettingsExists + gmsl.linkDisableSettingsExists + gmsl.streamOffSettingsExists +
                      gmsl.powerUpSettingsExists + gmsl.powerDownSettingsExists);
    EXPECT_EQ(1u, gmsl.streamOnSettingsExists);
    ExpectSettings(gmsl.streamOnSettings, 0x0700, 1);
    ASSERT_EQ(1u, gmsl.serializerModeSettingsCount);
    EXPECT_EQ(1u, gmsl.serializerModeSettings[0].streamMode);
    ExpectSettings(gmsl.serializerModeSettings[0].settings, 0x0710, 1);
    EXPECT_EQ(0u, gmsl.deserializerModeSettingsCount);

    EXPECT_EQ(1023u, record.colorLevelInfo.whiteLevel);
    EXPECT_EQ(64u, record.colorLevelInfo.rPedestal);
    EXPECT_EQ(65u, record.colorLevelInfo.grPedestal);
    EXPECT_EQ(66u, record.colorLevelInfo.gbPedestal);
    EXPECT_EQ(67u, record.colorLevelInfo.bPedestal);
    ASSERT_EQ(2u, record.opticalBlackRegionInfo.regionsCount);
    ExpectFrame(record.opticalBlackRegionInfo.regions[0], 0, 0, 4000, 16);
    ExpectFrame(record.opticalBlackRegionInfo.regions[1], 0, 3016, 4000, 8);
    EXPECT_EQ(4000u, record.pixelArrayInfo.activeDimension.width);
    EXPECT_EQ(3000u, record.pixelArrayInfo.activeDimension.height);
    EXPECT_EQ(1u, record.pixelArrayInfo.dummyBorder.left);
    EXPECT_EQ(2u, record.pixelArrayInfo.dummyBorder.top);
    EXPECT_EQ(3u, record.pixelArrayInfo.dummyBorder.right);
    EXPECT_EQ(4u, record.pixelArrayInfo.dummyBorder.bottom);

    ASSERT_EQ(1u, record.delayInfoCount);
    const DelayInfo& delay = record.delayInfo[0];
    EXPECT_EQ(1u, delay.delayTypeExists);
    EXPECT_EQ(DelayInfoType1, delay.delayType);
    EXPECT_EQ(1u, delay.shortExposureDelayExists);
    EXPECT_EQ(2u, delay.shortExposureDelay);
    EXPECT_EQ(0u, delay.middleExposureDelayExists);
    EXPECT_EQ(1u, delay.frameLengthDelayExists);
    EXPECT_EQ(1u, delay.frameLengthDelay);
    EXPECT_EQ(2u, delay.exposureDelay);
    EXPECT_EQ(3u, delay.analogGainDelay);
    EXPECT_EQ(1u, delay.digitalGainDelay);

    EXPECT_EQ(1.12, record.sensorProperty.pixelSize);
    EXPECT_EQ(6.2, record.sensorProperty.cropFactor);
    EXPECT_EQ(SensingMethod2, record.sensorProperty.sensingMethod);
    EXPECT_EQ(1u, record.sensorProperty.baseSensitivityExists);
    EXPECT_EQ(100u, record.sensorProperty.baseSensitivity);
    ASSERT_EQ(1u, record.noiseCoefficientExists);
    EXPECT_EQ(3.2e-6, record.noiseCoefficient.gradientS);
    EXPECT_EQ(3.0e-8, record.noiseCoefficient.offsetS);
    EXPECT_EQ(4.5e-12, record.noiseCoefficient.gradientO);
    EXPECT_EQ(1.1e-9, record.noiseCoefficient.offsetO);
    EXPECT_EQ(0u, record.noiseCoefficientBayerExists);
    EXPECT_EQ(0.0, record.noiseCoefficientBayer.channel[3].offsetO);
}

// ---- PD configuration -------------------------------------------------------------------------

Json PdConfigValues()
{
    return Json::parse(R"({
        "PDInfo": {"PDSensorName": "imx_vark_pd", "orientation": "PDAFOrientationMirror", "PDOffsetCorrection": 0.25,
                   "lcrPDOffset": -1.5},
        "PDModeInfo": [
            {"nativePatternInfo": {"horizontalBlockCount": 40, "verticalBlockCount": 30,
                                   "blockPattern": {"pixelCount": 2,
                                                    "pixelCoordinate": [{"x": 4, "y": 8, "type": "PDAFRightDiodePixel", "exposureType": 2},
                                                                        {"x": -3, "y": 12, "type": "PDAFLeftShieldedPixel"}],
                                                    "blockDimension": {"width": 16, "height": 32},
                                                    "horizontalPDOffset": 5, "verticalPDOffset": 6},
                                   "cropRegion": {"xStart": 0, "yStart": 8, "width": 4000, "height": 3000},
                                   "originalImageWidth": 4032, "originalImageHeight": 3024,
                                   "bufferFormat": "PDAFBufferDataFormatPacked10"},
             "sensorType": "PDAFTypeDualPD", "PDPixelOverflowThreshold": 1023, "modeName": "full",
             "sensorPDStatsFormat": 3, "defocusConfidenceThreshold": -20},
            {"sensorType": "PDAFType2", "modeName": "binned"}
        ]
    })");
}

void ExpectPdConfig(const PDAFConfigurationData& record)
{
    EXPECT_EQ(2, record.module_version.major_revision);
    EXPECT_STREQ("imx_vark_pd", record.PDInfo.PDSensorName);
    EXPECT_EQ(PDAFOrientationMirror, record.PDInfo.orientation);
    EXPECT_EQ(0.25f, record.PDInfo.PDOffsetCorrection);
    EXPECT_EQ(1u, record.PDInfo.lcrPDOffsetExists);
    EXPECT_EQ(-1.5f, record.PDInfo.lcrPDOffset);
    ASSERT_EQ(2u, record.PDModeInfoCount);

    const PDAFModeInformation& full = record.PDModeInfo[0];
    ASSERT_EQ(1u, full.nativePatternInfoExists);
    const PDAFSensorNativePatternInformation& native = full.nativePatternInfo;
    EXPECT_EQ(40u, native.horizontalBlockCount);
    EXPECT_EQ(30u, native.verticalBlockCount);
    ASSERT_EQ(1u, native.blockPatternExists);
    EXPECT_EQ(2u, native.blockPattern.pixelCount);
    ASSERT_EQ(2u, native.blockPattern.pixelCoordinateCount);
    const PDAFPixelCoordinates& first = native.blockPattern.pixelCoordinate[0];
    EXPECT_EQ(4, first.x);
    EXPECT_EQ(8, first.y);
    EXPECT_EQ(PDAFRightDiodePixel, first.type);
    EXPECT_EQ(1u, first.exposureTypeExists);
    EXPECT_EQ(ExposureType2, first.exposureType);
    const PDAFPixelCoordinates& second = native.blockPattern.pixelCoordinate[1];
    EXPECT_EQ(-3, second.x);
    EXPECT_EQ(12, second.y);
    EXPECT_EQ(PDAFLeftShieldedPixel, second.type);
    EXPECT_EQ(0u, second.exposureTypeExists);
    EXPECT_EQ(16u, native.blockPattern.blockDimension.width);
    EXPECT_EQ(32u, native.blockPattern.blockDimension.height);
    EXPECT_EQ(5u, native.blockPattern.horizontalPDOffset);
    EXPECT_EQ(6u, native.blockPattern.verticalPDOffset);
    ExpectFrame(native.cropRegion, 0, 8, 4000, 3000);
    EXPECT_EQ(4032u, native.originalImageWidth);
    EXPECT_EQ(3024u, native.originalImageHeight);
    EXPECT_EQ(PDAFBufferDataFormatPacked10, native.bufferFormat);
    EXPECT_EQ(0u, full.blockPatternInfoExists);
    EXPECT_EQ(PDAFTypeDualPD, full.sensorType);
    EXPECT_EQ(1u, full.PDPixelOverflowThresholdExists);
    EXPECT_EQ(1023u, full.PDPixelOverflowThreshold);
    EXPECT_STREQ("full", full.modeName);
    EXPECT_EQ(1u, full.sensorPDStatsFormatExists);
    EXPECT_EQ(SensorPDStatsRaw10Conf11BitPd10Bit, full.sensorPDStatsFormat);
    EXPECT_EQ(0u, full.bufferFormatExists + full.defocusBitShiftExists + full.pixelOrderTypeExists);
    EXPECT_EQ(1u, full.defocusConfidenceThresholdExists);
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
    Json values        = Json::object();
    values["slaveInfo"] = {{"actuatorName", "ak_" + std::to_string(seed)},
                           {"slaveAddress", 0x18 + seed},
                           {"i2cFrequencyMode", "I2CFrequencyMode1"},
                           {"actuatorType", "ActuatorType1"},
                           {"dataBitWidth", 10},
                           {"powerUpSequence", PowerSequence(seed, 0)},
                           {"powerDownSequence", PowerSequence(seed + 10, 0x5000 + seed)}};
    if (seed % 2 == 0)
    {
        values["slaveInfo"]["actuatorId"] = seed * 3;
    }
    values["registerConfig"] = {{"registerParam", Json::array({{{"registerAddressType", 1},
                                                                {"registerDataType", 2},
                                                                {"registerAddress", 3},
                                                                {"registerData", seed},
                                                                {"operation", "ActuatorOperation4"},
                                                                {"hwMask", "0xFF00"},
                                                                {"hwShift", 8},
                                                                {"dataShift", 2},
                                                                {"delayMicroseconds", 50}}})}};
    values["initSettings"]        = Settings(0x0200 + seed, 2);
    values["calibrationSettings"] = Settings(0x0300 + seed, 1);
    values["tunedParams"]         = Json::parse(R"({
        "initialCode": 300,
        "parkLens": {"execution": "ParkLensExecution2", "stepSize": 30, "stepDelay": 5000},
        "regionParams": {"region": [{"macroStepBoundary": 400, "infinityStepBoundary": 0, "codePerStep": 2, "qFactor": 128}]},
        "forwardDamping": {"scenarioCount": 1, "scenarioDamping": {"regionDamping": [
            {"damping": [{"dampingStep": 100, "dampingDelay": 2000, "hwParams": 10},
                         {"dampingStep": 50, "dampingDelay": 1000, "hwParams": 11}]},
            {"damping": []}]}},
        "backwardDamping": {"scenarioCount": 0}
    })");
    values["tunedParams"]["initialCode"] = 300 + seed;
    return values;
}

void ExpectActuator(const ActuatorDriverData& record, uint32_t seed)
{
    const ActuatorSlaveInfo& slave = record.slaveInfo;
    EXPECT_STREQ(("ak_" + std::to_string(seed)).c_str(), slave.actuatorName);
    EXPECT_EQ(seed % 2 == 0 ? 1u : 0u, slave.actuatorIdExists);
    EXPECT_EQ(seed % 2 == 0 ? seed * 3 : 0u, slave.actuatorId);
    EXPECT_EQ(0x18u + seed, slave.slaveAddress);
    EXPECT_EQ(I2CFrequencyMode1, slave.i2cFrequencyMode);
    EXPECT_EQ(ActuatorType1, slave.actuatorType);
    EXPECT_EQ(10u, slave.dataBitWidth);
    ExpectPowerSequence(slave.powerUpSequence, seed, 0);
    ExpectPowerSequence(slave.powerDownSequence, seed + 10, 0x5000 + seed);

    ASSERT_EQ(1u, record.registerConfig.registerParamCount);
    const ActuatorRegParam& param = record.registerConfig.registerParam[0];
    EXPECT_EQ(1u, param.registerAddressType);
    EXPECT_EQ(2u, param.registerDataType);
    EXPECT_EQ(3u, param.registerAddress);
    EXPECT_EQ(seed, param.registerData);
    EXPECT_EQ(ActuatorOperation4, param.operation);
    EXPECT_EQ(0xFF00u, param.hwMask);
    EXPECT_EQ(8u, param.hwShift);
    EXPECT_EQ(2u, param.dataShift);
    EXPECT_EQ(50u, param.delayMicroseconds);

    ExpectSettings(record.initSettings, 0x0200 + seed, 2);
    EXPECT_EQ(0u, record.deinitSettingsExists + record.parkLensSettingsExists);
    EXPECT_EQ(1u, record.calibrationSettingsExists);
    ExpectSettings(record.calibrationSettings, 0x0300 + seed, 1);

    const ActuatorTunedParams& tuned = record.tunedParams;
    EXPECT_EQ(300u + seed, tuned.initialCode);
    ASSERT_EQ(1u, tuned.parkLensExists);
    EXPECT_EQ(ParkLensExecution2, tuned.parkLens.execution);
    EXPECT_EQ(30u, tuned.parkLens.stepSize);
    EXPECT_EQ(5000u, tuned.parkLens.stepDelay);
    ASSERT_EQ(1u, tuned.regionParams.regionCount);
    EXPECT_EQ(400u, tuned.regionParams.region[0].macroStepBoundary);
    EXPECT_EQ(0u, tuned.regionParams.region[0].infinityStepBoundary);
    EXPECT_EQ(2u, tuned.regionParams.region[0].codePerStep);
    EXPECT_EQ(128u, tuned.regionParams.region[0].qFactor);
    EXPECT_EQ(1u, tuned.forwardDamping.scenarioCount);
    const ScenarioDampingParamsArray& scenario = tuned.forwardDamping.scenarioDamping;
    ASSERT_EQ(2u, scenario.regionDampingCount);
    ASSERT_EQ(2u, scenario.regionDamping[0].dampingCount);
    EXPECT_EQ(100u, scenario.regionDamping[0].damping[0].dampingStep);
    EXPECT_EQ(2000u, scenario.regionDamping[0].damping[0].dampingDelay);
    EXPECT_EQ(10u, scenario.regionDamping[0].damping[0].hwParams);
    EXPECT_EQ(50u, scenario.regionDamping[0].damping[1].dampingStep);
    EXPECT_EQ(1000u, scenario.regionDamping[0].damping[1].dampingDelay);
    EXPECT_EQ(11u, scenario.regionDamping[0].damping[1].hwParams);
    EXPECT_EQ(0u, scenario.regionDamping[1].dampingCount);
    EXPECT_EQ(0u, tuned.backwardDamping.scenarioCount);
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
    Json values             = Json::object();
    values["slaveInfo"]     = {{"slaveAddress", "0xA0"},
                               {"i2cFrequencyMode", 2},
                               {"powerUpSequence", PowerSequence(300, 0x0800)},
                               {"powerDownSequence", PowerSequence(310, 0)}};
    values["initSettings"]  = Settings(0x0810, 1);
    values["versionFormat"] = Json::parse(R"({"majorVersion": {"offset": 0, "size": 1},
        "minorVersion": {"offset": 1, "size": 1}, "patchVersion": {"offset": 2, "size": 2}})");
    values["readSettings"]  = Settings(0x0820, 3);
    values["moduleInfo"]    = Json::parse(R"([
        {"moduleName": "mod_a", "sensorName": "imx_vark", "actuatorName": "ak_0", "oisName": "ois_a"},
        {"moduleName": "mod_b", "sensorName": "imx_vark"}
    ])");
    return values;
}

void ExpectEEbin(const EEbinDriver& record)
{
    EXPECT_EQ(0xA0u, record.slaveInfo.slaveAddress);
    EXPECT_EQ(I2CFrequencyMode2, record.slaveInfo.i2cFrequencyMode);
    ExpectPowerSequence(record.slaveInfo.powerUpSequence, 300, 0x0800);
    ExpectPowerSequence(record.slaveInfo.powerDownSequence, 310, 0);
    ExpectSettings(record.initSettings, 0x0810, 1);
    EXPECT_EQ(0u, record.versionFormat.majorVersion.offset);
    EXPECT_EQ(1u, record.versionFormat.majorVersion.size);
    EXPECT_EQ(1u, record.versionFormat.minorVersion.offset);
    EXPECT_EQ(1u, record.versionFormat.minorVersion.size);
    EXPECT_EQ(2u, record.versionFormat.patchVersion.offset);
    EXPECT_EQ(2u, record.versionFormat.patchVersion.size);
    ExpectSettings(record.readSettings, 0x0820, 3);
    ExpectSettings(record.deinitSettings, 0, 0);
    ASSERT_EQ(2u, record.moduleInfoCount);
    EXPECT_STREQ("mod_a", record.moduleInfo[0].moduleName);
    EXPECT_STREQ("imx_vark", record.moduleInfo[0].sensorName);
    EXPECT_STREQ("ak_0", record.moduleInfo[0].actuatorName);
    EXPECT_STREQ("ois_a", record.moduleInfo[0].oisName);
    EXPECT_STREQ("mod_b", record.moduleInfo[1].moduleName);
    EXPECT_STREQ("imx_vark", record.moduleInfo[1].sensorName);
    EXPECT_STREQ("", record.moduleInfo[1].actuatorName) << "a string left out is empty";
    EXPECT_STREQ("", record.moduleInfo[1].oisName);
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

/// Adds `names` to `object`, each a MemoryInfo of the next seed from `*seed` on.
void AddMemories(Json& object, std::initializer_list<const char*> names, uint32_t* seed)
{
    for (const char* name : names)
    {
        object[name] = Memory((*seed)++);
    }
}

Json AfInfo()
{
    uint32_t seed  = 10;
    Json     af     = {{"memoryType", MemoryKind(1)}};
    AddMemories(af, {"macroDAC", "infinityDAC"}, &seed);
    af["calibrationPoints"] = Json::array({{{"objectDistance", Memory(90)}, {"lensPosition", Memory(91)}}});
    AddMemories(af, {"macroMargin", "infinityMargin"}, &seed);
    af["dacRange"] = 1023;
    AddMemories(af, {"macroDACUp", "macroDACDown", "infinityDACUp", "infinityDACDown"}, &seed);
    af["macroDistance"]    = 100;
    af["infinityDistance"] = 3000;
    af["macroSagType"]     = "AfLensSagType5";
    af["infinitySagType"]  = 2;
    AddMemories(af, {"startDAC", "endDAC"}, &seed);
    af["dacMin"]   = 0;
    af["dacMax"]   = 1023;
    af["hallBias"] = Memory(seed);
    return af;
}

void ExpectAfInfo(const AFInfo& af)
{
    ExpectMemoryKind(af.memoryType, 1);
    ExpectMemory(af.macroDAC, 10);
    ExpectMemory(af.infinityDAC, 11);
    ASSERT_EQ(1u, af.calibrationPointsCount);
    ExpectMemory(af.calibrationPoints[0].objectDistance, 90);
    ExpectMemory(af.calibrationPoints[0].lensPosition, 91);
    ExpectMemory(af.macroMargin, 12);
    ExpectMemory(af.infinityMargin, 13);
    EXPECT_EQ(1023u, af.dacRange);
    ExpectMemory(af.macroDACUp, 14);
    ExpectMemory(af.macroDACDown, 15);
    ExpectMemory(af.infinityDACUp, 16);
    ExpectMemory(af.infinityDACDown, 17);
    EXPECT_EQ(100u, af.macroDistance);
    EXPECT_EQ(3000u, af.infinityDistance);
    EXPECT_EQ(AfLensSagType5, af.macroSagType);
    EXPECT_EQ(AfLensSagType2, af.infinitySagType);
    ExpectMemory(af.startDAC, 18);
    ExpectMemory(af.endDAC, 19);
    EXPECT_EQ(0u, af.dacMin);
    EXPECT_EQ(1023u, af.dacMax);
    EXPECT_EQ(1u, af.hallBiasExists);
    ExpectMemory(af.hallBias, 20);
}

Json WbInfo()
{
    Json light = {{"illuminant", "EEPROMIlluminantType4"}};
    uint32_t seed = 30;
    AddMemories(light, {"rOverG", "bOverG", "grOverGb", "rValue", "grValue", "gbValue", "bValue"}, &seed);
    Json wb = {{"memoryType", MemoryKind(2)}, {"wbType", "WBType1"}, {"lightInfo", Json::array({light})}};
    AddMemories(wb, {"goldenROverG", "goldenBOverG"}, &seed);
    wb["qFactor"]   = 1024;
    wb["tolerance"] = 5;
    return wb;
}

void ExpectWbInfo(const WBInfo& wb)
{
    ExpectMemoryKind(wb.memoryType, 2);
    EXPECT_EQ(WBType1, wb.wbType);
    ASSERT_EQ(1u, wb.lightInfoCount);
    const WBlightInfo& light = wb.lightInfo[0];
    EXPECT_EQ(EEPROMIlluminantType4, light.illuminant);
    ExpectMemory(light.rOverG, 30);
    ExpectMemory(light.bOverG, 31);
    ExpectMemory(light.grOverGb, 32);
    ExpectMemory(light.rValue, 33);
    ExpectMemory(light.grValue, 34);
    ExpectMemory(light.gbValue, 35);
    ExpectMemory(light.bValue, 36);
    ExpectMemory(wb.goldenROverG, 37);
    ExpectMemory(wb.goldenBOverG, 38);
    EXPECT_EQ(1024u, wb.qFactor);
    EXPECT_EQ(5u, wb.tolerance);
}

Json LscInfo()
{
    Json     lights = Json::array();
    uint32_t seed   = 40;
    for (const char* illuminant : {"EEPROMIlluminantType0", "EEPROMIlluminantType5"})
    {
        Json light = {{"illuminant", illuminant}};
        AddMemories(light, {"rGain", "grGain", "gbGain", "bGain", "horizontalCenter", "verticalCenter", "maximumGain",
                            "minimumGain"},
                    &seed);
        lights.push_back(light);
    }
    return {{"memoryType", MemoryKind(3)}, {"lightInfo", lights}, {"meshHorizontalBlocks", 17},
            {"meshVerticalBlocks", 13}, {"gainBitWidth", 10}, {"subGridWidth", 64}, {"subGridHeight", 48}};
}

void ExpectLscInfo(const LSCInfo& lsc)
{
    ExpectMemoryKind(lsc.memoryType, 3);
    ASSERT_EQ(2u, lsc.lightInfoCount);
    EXPECT_EQ(EEPROMIlluminantType0, lsc.lightInfo[0].illuminant);
    EXPECT_EQ(EEPROMIlluminantType5, lsc.lightInfo[1].illuminant);
    for (uint32_t index = 0; index < 2; ++index)
    {
        const LSClightInfo& light = lsc.lightInfo[index];
        const uint32_t      seed  = 40 + 8 * index;
        ExpectMemory(light.rGain, seed);
        ExpectMemory(light.grGain, seed + 1);
        ExpectMemory(light.gbGain, seed + 2);
        ExpectMemory(light.bGain, seed + 3);
        ExpectMemory(light.horizontalCenter, seed + 4);
        ExpectMemory(light.verticalCenter, seed + 5);
        ExpectMemory(light.maximumGain, seed + 6);
        ExpectMemory(light.minimumGain, seed + 7);
    }
    EXPECT_EQ(17u, lsc.meshHorizontalBlocks);
    EXPECT_EQ(13u, lsc.meshVerticalBlocks);
    EXPECT_EQ(10u, lsc.gainBitWidth);
    EXPECT_EQ(64u, lsc.subGridWidth);
    EXPECT_EQ(48u, lsc.subGridHeight);
}

Json DualCameraLens(uint32_t seed)
{
    Json lens = Json::object();
    AddMemories(lens, {"focalLength", "nativeSensorWidth", "nativeSensorHeight", "calibrationWidth",
                       "calibrationHeight", "focalLengthRatio"},
                &seed);
    lens["calibrationPoints"] = Json::array({{{"objectDistance", Memory(seed)}, {"lensPosition", Memory(seed + 1)}}});
    return lens;
}

void ExpectDualCameraLens(const DualCameraLensInfo& lens, uint32_t seed)
{
    ExpectMemory(lens.focalLength, seed);
    ExpectMemory(lens.nativeSensorWidth, seed + 1);
    ExpectMemory(lens.nativeSensorHeight, seed + 2);
    ExpectMemory(lens.calibrationWidth, seed + 3);
    ExpectMemory(lens.calibrationHeight, seed + 4);
    ExpectMemory(lens.focalLengthRatio, seed + 5);
    ASSERT_EQ(1u, lens.calibrationPointsCount);
    ExpectMemory(lens.calibrationPoints[0].objectDistance, seed + 6);
    ExpectMemory(lens.calibrationPoints[0].lensPosition, seed + 7);
}

Json DualCameraValues()
{
    Json system = {{"calibrationVersion", Memory(120)}, {"mainSensorMirrorFlip", 1},
                   {"relativePrincipalDistance", Memory(121)}, {"auxSensorMirrorFlip", 2}};
    Json matrix = Json::array();
    for (uint32_t element = 0; element < 9; ++element)
    {
        matrix.push_back(Memory(130 + element));
    }
    system["rotationMatrix"] = matrix;
    uint32_t seed            = 140;
    AddMemories(system, {"translationX", "translationY", "baselineDistance"}, &seed);
    system["aecSyncMethod"]         = 1;
    system["absoluteMethodAECSync"] = {{"referenceLineCount", Memory(150)},
                                       {"referenceGain", Memory(151)},
                                       {"referenceLuma", Memory(152)},
                                       {"referenceLux", Memory(153)}};
    return {{"memoryType", MemoryKind(4)}, {"dataOffset", 4096}, {"dataSize", 1024},
            {"mainLens", DualCameraLens(100)}, {"auxLens", DualCameraLens(110)}, {"systemInfo", system}};
}

void ExpectDualCameraInfo(const DualCameraInfo& dual)
{
    ExpectMemoryKind(dual.memoryType, 4);
    EXPECT_EQ(4096u, dual.dataOffset);
    EXPECT_EQ(1024u, dual.dataSize);
    ExpectDualCameraLens(dual.mainLens, 100);
    ExpectDualCameraLens(dual.auxLens, 110);
    const DualCameraSystemInfo& system = dual.systemInfo;
    ExpectMemory(system.calibrationVersion, 120);
    EXPECT_EQ(1u, system.mainSensorMirrorFlip);
    ExpectMemory(system.relativePrincipalDistance, 121);
    EXPECT_EQ(2u, system.auxSensorMirrorFlip);
    for (uint32_t element = 0; element < 9; ++element)
    {
        ExpectMemory(system.rotationMatrix[element], 130 + element);
    }
    EXPECT_EQ(1u, system.translationXExists & system.translationYExists & system.baselineDistanceExists);
    ExpectMemory(system.translationX, 140);
    ExpectMemory(system.translationY, 141);
    ExpectMemory(system.baselineDistance, 142);
    EXPECT_EQ(0u, system.translationZExists + system.brightnessRatioExists + system.referenceAuxGainExists);
    EXPECT_EQ(0u, system.translationZ.mask);
    EXPECT_EQ(1u, system.aecSyncMethodExists);
    EXPECT_EQ(1u, system.aecSyncMethod);
    ASSERT_EQ(1u, system.absoluteMethodAECSyncExists);
    ExpectMemory(system.absoluteMethodAECSync.referenceLineCount, 150);
    ExpectMemory(system.absoluteMethodAECSync.referenceGain, 151);
    ExpectMemory(system.absoluteMethodAECSync.referenceLuma, 152);
    ExpectMemory(system.absoluteMethodAECSync.referenceLux, 153);
}

/// SPCInfo and QSCInfo have the same shape; `seed` tells them apart.
Json CorrectionInfo(uint32_t seed)
{
    return {{"memoryType", MemoryKind(seed % 7)},
            {"settings",
             Json::array({{{"data", Memory(seed)}, {"registerAddress", seed + 1}, {"registerDataType", 2}},
                          {{"data", Memory(seed + 2)}, {"registerAddress", seed + 3}, {"registerDataType", 1}}})},
            {"dataOffset", seed * 10},
            {"dataSize", 64},
            {"registerCount", 2}};
}

template <typename Info>
void ExpectCorrectionInfo(const Info& info, uint32_t seed)
{
    ExpectMemoryKind(info.memoryType, seed % 7);
    ASSERT_EQ(2u, info.settingsCount);
    ExpectMemory(info.settings[0].data, seed);
    EXPECT_EQ(seed + 1, info.settings[0].registerAddress);
    EXPECT_EQ(2u, info.settings[0].registerDataType);
    ExpectMemory(info.settings[1].data, seed + 2);
    EXPECT_EQ(seed + 3, info.settings[1].registerAddress);
    EXPECT_EQ(1u, info.settings[1].registerDataType);
    EXPECT_EQ(seed * 10, info.dataOffset);
    EXPECT_EQ(64u, info.dataSize);
    EXPECT_EQ(2u, info.registerCount);
}

Json Pdaf2DInfo()
{
    Json     pdaf = {{"memoryType", MemoryKind(5)}};
    uint32_t seed = 180;
    AddMemories(pdaf, {"versionNumber", "mapWidth", "mapHeight"}, &seed);
    pdaf["knotCountHorizontal"] = 8;
    pdaf["knotCountVertical"]   = 6;
    AddMemories(pdaf, {"leftGainMap", "rightGainMap", "upGainMap"}, &seed);
    pdaf["gainMapQFactor"] = 10;
    AddMemories(pdaf, {"conversionCoefficient", "conversionOffset"}, &seed);
    pdaf["conversionKnotCountHorizontal"] = 16;
    pdaf["conversionQFactor"]             = 12;
    AddMemories(pdaf, {"defocusMap", "confidenceMap"}, &seed);
    pdaf["offsetMaps"] = Json::array({{{"mapWidth", 4}, {"mapHeight", 3}, {"qFactor", 8},
                                       {"leftOffset", Memory(195)}, {"rightOffset", Memory(196)}}});
    return pdaf;
}

void ExpectPdaf2DInfo(const PDAF2DInfo& pdaf)
{
    ExpectMemoryKind(pdaf.memoryType, 5);
    ExpectMemory(pdaf.versionNumber, 180);
    ExpectMemory(pdaf.mapWidth, 181);
    ExpectMemory(pdaf.mapHeight, 182);
    EXPECT_EQ(8u, pdaf.knotCountHorizontal);
    EXPECT_EQ(6u, pdaf.knotCountVertical);
    ExpectMemory(pdaf.leftGainMap, 183);
    ExpectMemory(pdaf.rightGainMap, 184);
    EXPECT_EQ(1u, pdaf.upGainMapExists);
    ExpectMemory(pdaf.upGainMap, 185);
    EXPECT_EQ(0u, pdaf.downGainMapExists);
    EXPECT_EQ(10u, pdaf.gainMapQFactor);
    ExpectMemory(pdaf.conversionCoefficient, 186);
    EXPECT_EQ(1u, pdaf.conversionOffsetExists);
    ExpectMemory(pdaf.conversionOffset, 187);
    EXPECT_EQ(1u, pdaf.conversionKnotCountHorizontalExists);
    EXPECT_EQ(16u, pdaf.conversionKnotCountHorizontal);
    EXPECT_EQ(0u, pdaf.conversionKnotCountVerticalExists);
    EXPECT_EQ(1u, pdaf.conversionQFactorExists);
    EXPECT_EQ(12u, pdaf.conversionQFactor);
    EXPECT_EQ(1u, pdaf.defocusMapExists);
    ExpectMemory(pdaf.defocusMap, 188);
    EXPECT_EQ(0u, pdaf.offsetMapExists);
    EXPECT_EQ(1u, pdaf.confidenceMapExists);
    ExpectMemory(pdaf.confidenceMap, 189);
    ASSERT_EQ(1u, pdaf.offsetMapsCount);
    EXPECT_EQ(4u, pdaf.offsetMaps[0].mapWidth);
    EXPECT_EQ(3u, pdaf.offsetMaps[0].mapHeight);
    EXPECT_EQ(8u, pdaf.offsetMaps[0].qFactor);
    ExpectMemory(pdaf.offsetMaps[0].leftOffset, 195);
    ExpectMemory(pdaf.offsetMaps[0].rightOffset, 196);
}

Json EepromValues()
{
    Json format               = Json::object();
    format["afInfo"]          = AfInfo();
    format["wbInfo"]          = WbInfo();
    format["lscInfo"]         = LscInfo();
    format["dualCameraInfo"]  = DualCameraValues();
    format["spcInfo"]         = CorrectionInfo(160);
    format["oisInfo"]         = {{"memoryType", MemoryKind(6)}, {"calibrationData", Memory(170)},
                                 {"OISAddressArray", Json::array({"0x8000", "0x8004", "0x8008"})},
                                 {"dataOffset", 512}, {"dataSize", 128}, {"registerDataType", 2},
                                 {"slaveAddress", "0x7C"}};
    format["pdafDCCInfo"]     = {{"memoryType", MemoryKind(7)}, {"slopeData", Memory(175)}, {"offsetData", Memory(176)},
                                 {"knotCountHorizontal", 8}, {"knotCountVertical", 6}, {"offsetX", 24}, {"offsetY", 16},
                                 {"areaWidth", 496}, {"areaHeight", 372}, {"qFactor", 11}};
    format["pdaf2DInfo"]      = Pdaf2DInfo();
    format["qscInfo"]         = CorrectionInfo(200);
    uint32_t seed             = 210;
    Json     distortion       = {{"memoryType", MemoryKind(8)}, {"dataOffset", 700}, {"dataSize", 40}};
    AddMemories(distortion, {"focalLengthX", "focalLengthY", "opticalCenterX", "opticalCenterY", "skew", "radialK1",
                             "radialK2", "radialK3", "tangentialP1", "tangentialP2"},
                &seed);
    format["lensDistortionInfo"] = distortion;

    Json values          = Json::object();
    values["slaveInfo"]  = {{"eepromName", "eeprom_vark"},      {"slaveAddress", "0xA2"},
                            {"registerAddressType", 2},          {"registerDataType", 1},
                            {"i2cFrequencyMode", 3},             {"powerUpSequence", PowerSequence(400, 0x0900)},
                            {"powerDownSequence", PowerSequence(410, 0)}};
    values["initSettings"] = Settings(0x0910, 2);
    values["formatInfo"]   = format;
    values["customInfo"]   = Json::parse(R"([{"name": "lotId", "value": 17}, {"name": "line", "value": 4}])");
    return values;
}

void ExpectEeprom(const EEPROMDriverData& record)
{
    EXPECT_STREQ("eeprom_vark", record.slaveInfo.eepromName);
    EXPECT_EQ(0xA2u, record.slaveInfo.slaveAddress);
    EXPECT_EQ(2u, record.slaveInfo.registerAddressType);
    EXPECT_EQ(1u, record.slaveInfo.registerDataType);
    EXPECT_EQ(I2CFrequencyMode3, record.slaveInfo.i2cFrequencyMode);
    ExpectPowerSequence(record.slaveInfo.powerUpSequence, 400, 0x0900);
    ExpectPowerSequence(record.slaveInfo.powerDownSequence, 410, 0);
    ExpectSettings(record.initSettings, 0x0910, 2);

    const EEPROMDataFormatInformation& format = record.formatInfo;
    ExpectAfInfo(format.afInfo);
    ExpectWbInfo(format.wbInfo);
    ExpectLscInfo(format.lscInfo);
    ExpectDualCameraInfo(format.dualCameraInfo);
    ExpectCorrectionInfo(format.spcInfo, 160);
    ExpectCorrectionInfo(format.qscInfo, 200);

    const OISInfo& ois = format.oisInfo;
    ExpectMemoryKind(ois.memoryType, 6);
    ExpectMemory(ois.calibrationData, 170);
    ASSERT_EQ(3u, ois.OISAddressArrayCount);
    EXPECT_EQ(0x8000u, ois.OISAddressArray[0]);
    EXPECT_EQ(0x8004u, ois.OISAddressArray[1]);
    EXPECT_EQ(0x8008u, ois.OISAddressArray[2]);
    EXPECT_EQ(512u, ois.dataOffset);
    EXPECT_EQ(128u, ois.dataSize);
    EXPECT_EQ(2u, ois.registerDataType);
    EXPECT_EQ(0x7Cu, ois.slaveAddress);

    const PDAFDCCInfo& dcc = format.pdafDCCInfo;
    ExpectMemoryKind(dcc.memoryType, 7);
    ExpectMemory(dcc.slopeData, 175);
    ExpectMemory(dcc.offsetData, 176);
    EXPECT_EQ(8u, dcc.knotCountHorizontal);
    EXPECT_EQ(6u, dcc.knotCountVertical);
    EXPECT_EQ(24u, dcc.offsetX);
    EXPECT_EQ(16u, dcc.offsetY);
    EXPECT_EQ(496u, dcc.areaWidth);
    EXPECT_EQ(372u, dcc.areaHeight);
    EXPECT_EQ(11u, dcc.qFactor);
    ExpectPdaf2DInfo(format.pdaf2DInfo);

    const LensDistortionInfo& distortion = format.lensDistortionInfo;
    ExpectMemoryKind(distortion.memoryType, 8);
    EXPECT_EQ(700u, distortion.dataOffset);
    EXPECT_EQ(40u, distortion.dataSize);
    ExpectMemory(distortion.focalLengthX, 210);
    ExpectMemory(distortion.focalLengthY, 211);
    ExpectMemory(distortion.opticalCenterX, 212);
    ExpectMemory(distortion.opticalCenterY, 213);
    EXPECT_EQ(1u, distortion.skewExists);
    ExpectMemory(distortion.skew, 214);
    ExpectMemory(distortion.radialK1, 215);
    ExpectMemory(distortion.radialK2, 216);
    ExpectMemory(distortion.radialK3, 217);
    ExpectMemory(distortion.tangentialP1, 218);
    ExpectMemory(distortion.tangentialP2, 219);

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
        "regAddrInfo": {"flashCurrentRegister": 6, "torchCurrentRegister": 8, "flashTimeoutRegister": 7, "enableRegister": 1},
        "flashInfo": {"triggerInfo": [{"gpio": 23, "triggerType": 1, "delayMicroseconds": 0},
                                      {"gpio": 24, "triggerType": 2, "delayMicroseconds": 150}]},
        "flashCount": 2})");
    values["powerUpSequence"]   = PowerSequence(500, 0);
    values["powerDownSequence"] = PowerSequence(510, 0x0A00);
    values["i2cInfo"] = {{"slaveAddress", "0xC6"}, {"registerAddressType", 1}, {"registerDataType", 1},
                         {"i2cFrequencyMode", "I2CFrequencyMode2"}, {"initSettings", Settings(0x0A10, 1)},
                         {"lowSettings", Settings(0x0A20, 2)}, {"highSettings", Settings(0x0A30, 2)},
                         {"offSettings", Settings(0x0A40, 1)}};
    return values;
}

void ExpectMainFlash(const FlashDriverData& record)
{
    EXPECT_STREQ("flash_main", record.flashName);
    EXPECT_EQ(FlashDriverType1, record.flashDriverType);
    EXPECT_EQ(1u, record.powerUpSequenceExists & record.powerDownSequenceExists);
    ExpectPowerSequence(record.powerUpSequence, 500, 0);
    ExpectPowerSequence(record.powerDownSequence, 510, 0x0A00);
    ASSERT_EQ(1u, record.regAddrInfoExists);
    EXPECT_EQ(6u, record.regAddrInfo.flashCurrentRegister);
    EXPECT_EQ(8u, record.regAddrInfo.torchCurrentRegister);
    EXPECT_EQ(7u, record.regAddrInfo.flashTimeoutRegister);
    EXPECT_EQ(1u, record.regAddrInfo.enableRegister);
    ASSERT_EQ(1u, record.i2cInfoExists);
    EXPECT_EQ(0xC6u, record.i2cInfo.slaveAddress);
    EXPECT_EQ(1u, record.i2cInfo.registerAddressType);
    EXPECT_EQ(1u, record.i2cInfo.registerDataType);
    EXPECT_EQ(I2CFrequencyMode2, record.i2cInfo.i2cFrequencyMode);
    ExpectSettings(record.i2cInfo.initSettings, 0x0A10, 1);
    ExpectSettings(record.i2cInfo.lowSettings, 0x0A20, 2);
    ExpectSettings(record.i2cInfo.highSettings, 0x0A30, 2);
    ExpectSettings(record.i2cInfo.offSettings, 0x0A40, 1);
    ASSERT_EQ(1u, record.flashInfoExists);
    ASSERT_EQ(2u, record.flashInfo.triggerInfoCount);
    EXPECT_EQ(23u, record.flashInfo.triggerInfo[0].gpio);
    EXPECT_EQ(1u, record.flashInfo.triggerInfo[0].triggerType);
    EXPECT_EQ(0u, record.flashInfo.triggerInfo[0].delayMicroseconds);
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
    EXPECT_EQ(nullptr, record.i2cInfo.initSettings.registerSetting);
    EXPECT_EQ(1u, record.flashCount);
}

// ---- Camera module configuration --------------------------------------------------------------

Json CameraModuleValues()
{
    return Json::parse(R"({"moduleGroup": {"moduleConfiguration": [
        {"cameraId": 0, "moduleName": "rear_wide", "sensorName": "imx_vark", "cciDevice": 1, "cciMaster": 0,
         "i2cFrequencyMode": "I2CFrequencyMode3", "actuatorName": "ak_0", "eepromName": "eeprom_vark",
         "flashName": "flash_main", "oisCciMaster": 1, "oisName": "ois_a", "pdafName": "imx_vark_pd",
         "eebinName": "eebin_a", "oisI2CFrequencyMode": 1, "position": "CameraPosition0",
         "csiInfo": {"laneAssign": "0x4320", "isComboMode": 0, "isCPhy": 1, "laneCount": 4},
         "lensInfo": {"focalLength": 4.71, "fNumber": 1.8, "totalFocusDistance": 1.9, "horizontalViewAngle": 67.0,
                      "verticalViewAngle": 53.0, "minFocusDistance": 10.0, "maxRollDegree": 1.5,
                      "maxPitchDegree": 2.5, "maxYawDegree": 3.5},
         "depthSensorName": "tof_a",
         "depthConversionLibInfo": {"libraryName": "libdepth.so", "outputFormats": ["DepthOutputFormat2", 0]}},
        {"cameraId": 2, "sensorName": "imx_front", "cciDevice": 0, "position": 5,
         "lensInfo": {"focalLength": 2.2, "fNumber": 2.0, "totalFocusDistance": 0.0, "horizontalViewAngle": 80.0,
                      "verticalViewAngle": 65.0, "minFocusDistance": 0.0}}
    ]}})");
}

void ExpectCameraModule(const CameraModuleData& record)
{
    ASSERT_EQ(2u, record.moduleGroup.moduleConfigurationCount);
    const ModuleConfiguration& rear = record.moduleGroup.moduleConfiguration[0];
    EXPECT_EQ(0u, rear.cameraId);
    EXPECT_EQ(1u, rear.moduleNameExists);
    EXPECT_STREQ("rear_wide", rear.moduleName);
    EXPECT_STREQ("imx_vark", rear.sensorName);
    EXPECT_EQ(1u, rear.cciDevice);
    EXPECT_EQ(1u, rear.cciMasterExists);
    EXPECT_EQ(0u, rear.cciMaster);
    EXPECT_EQ(1u, rear.i2cFrequencyModeExists);
    EXPECT_EQ(I2CFrequencyMode3, rear.i2cFrequencyMode);
    EXPECT_STREQ("ak_0", rear.actuatorName);
    EXPECT_STREQ("eeprom_vark", rear.eepromName);
    EXPECT_STREQ("flash_main", rear.flashName);
    EXPECT_EQ(1u, rear.oisCciMasterExists);
    EXPECT_EQ(1u, rear.oisCciMaster);
    EXPECT_STREQ("ois_a", rear.oisName);
    EXPECT_STREQ("imx_vark_pd", rear.pdafName);
    EXPECT_STREQ("eebin_a", rear.eebinName);
    EXPECT_EQ(1u, rear.actuatorNameExists & rear.eepromNameExists & rear.flashNameExists & rear.oisNameExists &
                      rear.pdafNameExists & rear.eebinNameExists & rear.oisI2CFrequencyModeExists);
    EXPECT_EQ(I2CFrequencyMode1, rear.oisI2CFrequencyMode);
    EXPECT_EQ(CameraPosition0, rear.position);
    EXPECT_EQ(1u, rear.csiInfo.laneAssignExists & rear.csiInfo.isComboModeExists & rear.csiInfo.isCPhyExists &
                      rear.csiInfo.laneCountExists);
    EXPECT_EQ(0x4320u, rear.csiInfo.laneAssign);
    EXPECT_EQ(0u, rear.csiInfo.isComboMode);
    EXPECT_EQ(1u, rear.csiInfo.isCPhy);
    EXPECT_EQ(4u, rear.csiInfo.laneCount);
    EXPECT_EQ(4.71, rear.lensInfo.focalLength);
    EXPECT_EQ(1.8, rear.lensInfo.fNumber);
    EXPECT_EQ(1.9, rear.lensInfo.totalFocusDistance);
    EXPECT_EQ(67.0, rear.lensInfo.horizontalViewAngle);
    EXPECT_EQ(53.0, rear.lensInfo.verticalViewAngle);
    EXPECT_EQ(10.0, rear.lensInfo.minFocusDistance);
    EXPECT_EQ(1u, rear.lensInfo.maxRollDegreeExists & rear.lensInfo.maxPitchDegreeExists &
                      rear.lensInfo.maxYawDegreeExists);
    EXPECT_EQ(1.5, rear.lensInfo.maxRollDegree);
    EXPECT_EQ(2.5, rear.lensInfo.maxPitchDegree);
    EXPECT_EQ(3.5, rear.lensInfo.maxYawDegree);
    EXPECT_EQ(1u, rear.depthSensorNameExists);
    EXPECT_STREQ("tof_a", rear.depthSensorName);
    ASSERT_EQ(1u, rear.depthConversionLibInfoExists);
    EXPECT_STREQ("libdepth.so", rear.depthConversionLibInfo.libraryName);
    ASSERT_EQ(2u, rear.depthConversionLibInfo.outputFormatsCount);
    EXPECT_EQ(DepthOutputFormat2, rear.depthConversionLibInfo.outputFormats[0]);
    EXPECT_EQ(DepthOutputFormat0, rear.depthConversionLibInfo.outputFormats[1]);

    const ModuleConfiguration& front = record.moduleGroup.moduleConfiguration[1];
    EXPECT_EQ(2u, front.cameraId);
    EXPECT_EQ(0u, front.moduleNameExists);
    EXPECT_EQ(nullptr, front.moduleName);
    EXPECT_STREQ("imx_front", front.sensorName);
    EXPECT_EQ(CameraPosition5, front.position);
    EXPECT_EQ(0u, front.cciMasterExists + front.i2cFrequencyModeExists + front.actuatorNameExists +
                      front.oisCciMasterExists + front.oisI2CFrequencyModeExists + front.depthSensorNameExists +
                      front.depthConversionLibInfoExists);
    EXPECT_EQ(0u, front.csiInfo.laneAssignExists + front.csiInfo.isComboModeExists + front.csiInfo.isCPhyExists +
                      front.csiInfo.laneCountExists);
    EXPECT_EQ(2.2, front.lensInfo.focalLength);
    EXPECT_EQ(80.0, front.lensInfo.horizontalViewAngle);
    EXPECT_EQ(0u, front.lensInfo.maxRollDegreeExists + front.lensInfo.maxPitchDegreeExists +
                      front.lensInfo.maxYawDegreeExists);
    EXPECT_EQ(0.0, front.lensInfo.maxYawDegree);
}

// ---- Optical stabiliser -----------------------------------------------------------------------

Json OisValues()
{
    Json values                   = Json::parse(R"({
        "slaveInfo": {"oisName": "ois_a", "slaveAddress": "0x7C", "i2cFrequencyMode": 3, "idRegisterAddress": "0x00FC",
                      "id": "0x1234"},
        "opcode": {"program": 128, "coefficient": 129, "peripheral": 130, "memory": 131},
        "lensPositionReadInfo": {"readRegisterAddress": "0x8F00", "readLength": 52, "readInterval": 4,
            "format": {"sampleCount": {"offset": 0, "size": 1, "shift": 0},
                       "timeStamp": {"offset": 1, "size": 4, "shift": 2},
                       "xPosition": {"offset": 5, "size": 2, "shift": 0},
                       "yPosition": {"offset": 7, "size": 2, "shift": 0},
                       "maxSampleCount": 8, "timeStampUnit": "TimeStampUnitInfo2"}}
    })");
    values["slaveInfo"]["powerUpSequence"]             = PowerSequence(600, 0x0B00);
    values["slaveInfo"]["powerDownSequence"]           = PowerSequence(610, 0);
    values["initSettings"]                             = Settings(0x0B10, 3);
    values["calibrationSettings"]                      = Settings(0x0B20, 1);
    values["enableSettings"]                           = Settings(0x0B30, 1);
    values["centeringOnSettings"]                      = Settings(0x0B40, 1);
    values["movieModeSettings"]                        = Settings(0x0B50, 2);
    values["resetSettings"]                            = Settings(0x0B60, 1);
    values["lensPositionReadInfo"]["readSettings"]     = Settings(0x0B70, 1);
    return values;
}

void ExpectOis(const OISDriverData& record)
{
    EXPECT_EQ(1, record.module_version.major_revision);
    EXPECT_EQ(1, record.module_version.minor_revision);
    const OISSlaveInfo& slave = record.slaveInfo;
    EXPECT_STREQ("ois_a", slave.oisName);
    EXPECT_EQ(0x7Cu, slave.slaveAddress);
    EXPECT_EQ(I2CFrequencyMode3, slave.i2cFrequencyMode);
    EXPECT_EQ(0xFCu, slave.idRegisterAddress);
    EXPECT_EQ(0x1234u, slave.id);
    ExpectPowerSequence(slave.powerUpSequence, 600, 0x0B00);
    ExpectPowerSequence(slave.powerDownSequence, 610, 0);
    EXPECT_EQ(128u, record.opcode.program);
    EXPECT_EQ(129u, record.opcode.coefficient);
    EXPECT_EQ(130u, record.opcode.peripheral);
    EXPECT_EQ(131u, record.opcode.memory);
    ExpectSettings(record.initSettings, 0x0B10, 3);
    ExpectSettings(record.calibrationSettings, 0x0B20, 1);
    ExpectSettings(record.enableSettings, 0x0B30, 1);
    EXPECT_EQ(1u, record.centeringOnSettingsExists & record.movieModeSettingsExists & record.resetSettingsExists);
    ExpectSettings(record.centeringOnSettings, 0x0B40, 1);
    ExpectSettings(record.movieModeSettings, 0x0B50, 2);
    ExpectSettings(record.resetSettings, 0x0B60, 1);
    EXPECT_EQ(0u, record.disableSettingsExists + record.centeringOffSettingsExists + record.previewModeSettingsExists +
                      record.stillModeSettingsExists + record.fixModeSettingsExists + record.panModeSettingsExists +
                      record.tripodModeSettingsExists + record.powerDownSettingsExists);

    ASSERT_EQ(1u, record.lensPositionReadInfoExists);
    const OISLensPositionReadInfo& read = record.lensPositionReadInfo;
    EXPECT_EQ(0x8F00u, read.readRegisterAddress);
    EXPECT_EQ(52u, read.readLength);
    EXPECT_EQ(4u, read.readInterval);
    ExpectSettings(read.readSettings, 0x0B70, 1);
    EXPECT_EQ(0u, read.enableSettingsExists);
    ASSERT_EQ(1u, read.formatExists);
    const OISLensPositionFormatInfo& format = read.format;
    EXPECT_EQ(0u, format.sampleCount.offset);
    EXPECT_EQ(1u, format.sampleCount.size);
    EXPECT_EQ(0u, format.sampleCount.shift);
    EXPECT_EQ(1u, format.timeStamp.offset);
    EXPECT_EQ(4u, format.timeStamp.size);
    EXPECT_EQ(2u, format.timeStamp.shift);
    EXPECT_EQ(5u, format.xPosition.offset);
    EXPECT_EQ(2u, format.xPosition.size);
    EXPECT_EQ(7u, format.yPosition.offset);
    EXPECT_EQ(2u, format.yPosition.size);
    EXPECT_EQ(8u, format.maxSampleCount);
    EXPECT_EQ(0u, format.timeStampOffsetExists);
    EXPECT_EQ(TimeStampUnitInfo2, format.timeStampUnit);
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
    EXPECT_STREQ("457", record.socIdInfo[0].socIds[1]);
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
