// The PD sensor configuration module through ImageSensorModuleSetManager: strings, lists and
// optional members nested in each other, at both alignments; blocks that two modules of a file
// share; a module that fails while another loads.
#include <gtest/gtest.h>

#include <string>

#include "g_sensor/imagesensormodulesetmanager.h"
#include "logcapture.h"
#include "modulefiles.h"

namespace
{
using namespace Orvo;
using testsupport::LogCapture;
using tuningfile::DataBuilder;

constexpr tuningfile::Version PdVersion{2, 0, 0};

DataBuilder Pixel(int32_t x, int32_t y, uint32_t type, bool withExposure)
{
    DataBuilder pixel;
    pixel.I32(x).I32(y).Enum(type);
    return withExposure ? pixel.Optional(DataBuilder().Enum(ExposureType2)) : pixel.OptionalAbsent();
}

/// Two pixels, the second of a shield value that PDAFPixelShieldInformation does not have. The
/// first pixel's x tells patterns apart, so that a file does not store them once.
DataBuilder BlockPattern(int32_t firstX)
{
    DataBuilder pattern;
    pattern.U32(2)
        .Repeated(std::vector<DataBuilder>{Pixel(firstX, 8, PDAFRightDiodePixel, true), Pixel(-3, 12, 12, false)})
        .U32(16)
        .U32(32) // blockDimension
        .U32(5)
        .U32(6);
    return pattern;
}

DataBuilder NativePattern()
{
    DataBuilder native;
    native.U32(40).U32(30).Optional(BlockPattern(4));
    native.U32(0).U32(8).U32(4000).U32(3000); // cropRegion
    native.U32(4032).U32(3024).Enum(PDAFBufferDataFormatPacked10);
    return native;
}

/// A mode with every optional member present.
DataBuilder FullMode()
{
    DataBuilder mode;
    mode.Optional(NativePattern())
        .Optional(DataBuilder().U32(640).Enum(PDAFBufferDataFormatMipi10).Optional(BlockPattern(5)))
        .Enum(PDAFTypeDualPD)
        .Optional(DataBuilder().U32(1023))
        .String("full_4k")
        .Optional(DataBuilder().Enum(SensorPDStatsRaw10Conf11BitPd10Bit))
        .Optional(DataBuilder().Enum(PDAFBufferDataFormatMipi12))
        .Optional(DataBuilder().U32(3))
        .Optional(DataBuilder().Enum(PDAFPixelOrderRL))
        .Optional(DataBuilder().I32(-20));
    return mode;
}

/// A mode with no optional member present.
DataBuilder BareMode()
{
    DataBuilder mode;
    mode.OptionalAbsent().OptionalAbsent().Enum(PDAFType2).OptionalAbsent().String("binned");
    for (int absent = 0; absent < 5; ++absent)
    {
        mode.OptionalAbsent();
    }
    return mode;
}

DataBuilder PdData(const std::string& sensorName, const std::vector<DataBuilder>& modes)
{
    DataBuilder data;
    data.I32(2).I32(0).I32(7); // module_version
    data.String(sensorName).Enum(PDAFOrientationMirrorAndFlip).F32(0.25f).Optional(DataBuilder().F32(-1.5f));
    data.Repeated(modes);
    return data;
}

std::vector<uint8_t> PdImage(tuningfile::Version fileVersion, const std::vector<tuningfile::Module>& modules)
{
    tuningfile::TuningFileModel model = moduletest::ModelWithModes(fileVersion);
    model.modules                     = modules;
    return moduletest::Image(model);
}

void ExpectBlockPattern(const PDAFBlockPattern& pattern, int32_t firstX)
{
    EXPECT_EQ(2u, pattern.pixelCount);
    ASSERT_EQ(2u, pattern.pixelCoordinateCount);
    ASSERT_NE(nullptr, pattern.pixelCoordinate);
    const PDAFPixelCoordinates& first = pattern.pixelCoordinate[0];
    EXPECT_EQ(firstX, first.x);
    EXPECT_EQ(8, first.y);
    EXPECT_EQ(PDAFRightDiodePixel, first.type);
    EXPECT_EQ(1u, first.exposureTypeExists);
    EXPECT_EQ(ExposureType2, first.exposureType);
    const PDAFPixelCoordinates& second = pattern.pixelCoordinate[1];
    EXPECT_EQ(-3, second.x);
    EXPECT_EQ(12, second.y);
    EXPECT_EQ(0u, static_cast<uint32_t>(second.type)) << "12 is no shield value and stays zero";
    EXPECT_EQ(0u, second.exposureTypeExists);
    EXPECT_EQ(16u, pattern.blockDimension.width);
    EXPECT_EQ(32u, pattern.blockDimension.height);
    EXPECT_EQ(5u, pattern.horizontalPDOffset);
    EXPECT_EQ(6u, pattern.verticalPDOffset);
}

void ExpectFullMode(const PDAFModeInformation& mode)
{
    ASSERT_EQ(1u, mode.nativePatternInfoExists);
    const PDAFSensorNativePatternInformation& native = mode.nativePatternInfo;
    EXPECT_EQ(40u, native.horizontalBlockCount);
    EXPECT_EQ(30u, native.verticalBlockCount);
    ASSERT_EQ(1u, native.blockPatternExists);
    ExpectBlockPattern(native.blockPattern, 4);
    EXPECT_EQ(0u, native.cropRegion.xStart);
    EXPECT_EQ(8u, native.cropRegion.yStart);
    EXPECT_EQ(4000u, native.cropRegion.width);
    EXPECT_EQ(3000u, native.cropRegion.height);
    EXPECT_EQ(4032u, native.originalImageWidth);
    EXPECT_EQ(3024u, native.originalImageHeight);
    EXPECT_EQ(PDAFBufferDataFormatPacked10, native.bufferFormat);

    ASSERT_EQ(1u, mode.blockPatternInfoExists);
    EXPECT_EQ(640u, mode.blockPatternInfo.bufferStride);
    EXPECT_EQ(PDAFBufferDataFormatMipi10, mode.blockPatternInfo.bufferFormat);
    ASSERT_EQ(1u, mode.blockPatternInfo.blockPatternExists);
    ExpectBlockPattern(mode.blockPatternInfo.blockPattern, 5);

    EXPECT_EQ(PDAFTypeDualPD, mode.sensorType);
    EXPECT_EQ(1u, mode.PDPixelOverflowThresholdExists);
    EXPECT_EQ(1023u, mode.PDPixelOverflowThreshold);
    ASSERT_NE(nullptr, mode.modeName);
    EXPECT_STREQ("full_4k", mode.modeName);
    EXPECT_EQ(1u, mode.sensorPDStatsFormatExists);
    EXPECT_EQ(SensorPDStatsRaw10Conf11BitPd10Bit, mode.sensorPDStatsFormat);
    EXPECT_EQ(1u, mode.bufferFormatExists);
    EXPECT_EQ(PDAFBufferDataFormatMipi12, mode.bufferFormat);
    EXPECT_EQ(1u, mode.defocusBitShiftExists);
    EXPECT_EQ(3u, mode.defocusBitShift);
    EXPECT_EQ(1u, mode.pixelOrderTypeExists);
    EXPECT_EQ(PDAFPixelOrderRL, mode.pixelOrderType);
    EXPECT_EQ(1u, mode.defocusConfidenceThresholdExists);
    EXPECT_EQ(-20, mode.defocusConfidenceThreshold);
}

void ExpectBareMode(const PDAFModeInformation& mode)
{
    EXPECT_EQ(0u, mode.nativePatternInfoExists);
    EXPECT_EQ(0u, mode.blockPatternInfoExists);
    EXPECT_EQ(nullptr, mode.nativePatternInfo.blockPattern.pixelCoordinate);
    EXPECT_EQ(PDAFType2, mode.sensorType);
    EXPECT_STREQ("binned", mode.modeName);
    EXPECT_EQ(0u, mode.sensorPDStatsFormatExists + mode.bufferFormatExists + mode.defocusBitShiftExists +
                      mode.pixelOrderTypeExists + mode.defocusConfidenceThresholdExists +
                      mode.PDPixelOverflowThresholdExists);
    EXPECT_EQ(0u, mode.PDPixelOverflowThreshold);
}

void ExpectPdConfig(const PDAFConfigurationData& record, const std::string& sensorName)
{
    EXPECT_EQ(2, record.module_version.major_revision);
    EXPECT_EQ(0, record.module_version.minor_revision);
    EXPECT_EQ(7, record.module_version.incr_revision);
    ASSERT_NE(nullptr, record.PDInfo.PDSensorName);
    EXPECT_EQ(sensorName, record.PDInfo.PDSensorName);
    EXPECT_EQ(PDAFOrientationMirrorAndFlip, record.PDInfo.orientation);
    EXPECT_EQ(0.25f, record.PDInfo.PDOffsetCorrection);
    EXPECT_EQ(1u, record.PDInfo.lcrPDOffsetExists);
    EXPECT_EQ(-1.5f, record.PDInfo.lcrPDOffset);
    ASSERT_EQ(2u, record.PDModeInfoCount);
    ASSERT_NE(nullptr, record.PDModeInfo);
    ExpectFullMode(record.PDModeInfo[0]);
    ExpectBareMode(record.PDModeInfo[1]);
}

class PdConfigFile : public testing::TestWithParam<tuningfile::Version>
{
protected:
    LogCapture                  m_log;
    ImageSensorModuleSetManager m_manager;
};

TEST_P(PdConfigFile, NestedStringsListsAndOptionalMembersLoadInBufferMode)
{
    std::vector<uint8_t> image = PdImage(
        GetParam(), {moduletest::MakeModule("PDConfigData", PdVersion, 0, PdData("imx_pd", {FullMode(), BareMode()}))});
    ASSERT_TRUE(m_manager.LoadBinaryParameters(image.data(), image.size())) << m_manager.m_errorText;

    PDAFConfigurationData* record = m_manager.GetModule_PDConfigData(nullptr, 0, nullptr);
    ASSERT_NE(nullptr, record);
    ExpectPdConfig(*record, "imx_pd");
    // Both block patterns hold the pixel of shield value 12.
    EXPECT_EQ(2u, m_log.Count("Invalid value(12) converting UINT32 to PDAFPixelShieldInformation"));
    EXPECT_EQ(0u, m_log.Count("Failed to read symbol table entry"));
}

INSTANTIATE_TEST_SUITE_P(Alignments, PdConfigFile,
                         testing::Values(moduletest::AlignmentOne, moduletest::AlignmentEight),
                         [](const testing::TestParamInfo<tuningfile::Version>& info) {
                             return "Version" + std::to_string(info.param.major);
                         });

TEST(PdConfigSharing, ModulesOfOneFileShareTheBlocksThatTheFileStoresOnce)
{
    // Two modules whose mode lists are equal: the file stores the list once, and the second
    // record takes the first one's block. ASan tells a block freed twice or not at all.
    std::vector<DataBuilder> modes = {FullMode(), BareMode()};
    std::vector<uint8_t>     image = PdImage(
            moduletest::AlignmentOne, {moduletest::MakeModule("PDConfigData", PdVersion, 0, PdData("main", modes)),
                                       moduletest::MakeModule("PDConfigData", PdVersion, 1, PdData("video", modes))});
    ImageSensorModuleSetManager manager;
    ASSERT_TRUE(manager.LoadBinaryParameters(image.data(), image.size())) << manager.m_errorText;

    moduletest::UsecaseBranch video(1);
    PDAFConfigurationData*    root  = manager.GetModule_PDConfigData(nullptr, 0, nullptr);
    PDAFConfigurationData*    child = manager.GetModule_PDConfigData(video.modes, 2, nullptr);
    ASSERT_NE(nullptr, root);
    ASSERT_NE(nullptr, child);
    ASSERT_NE(root, child);
    ExpectPdConfig(*root, "main");
    ExpectPdConfig(*child, "video");
    EXPECT_NE(root->PDModeInfoID, child->PDModeInfoID) << "an entry each, of one duplicate group";
    EXPECT_EQ(root->PDModeInfo, child->PDModeInfo) << "one block for both";
    EXPECT_NE(root->PDInfo.PDSensorName, child->PDInfo.PDSensorName);
}

TEST(PdConfigLoad, AModuleThatEndsEarlyFailsAndTheOthersLoad)
{
    DataBuilder truncated;
    truncated.I32(2).I32(0).I32(7).String("short"); // PDInfo ends after its name
    std::vector<tuningfile::Module> modules = {
        moduletest::MakeModule("PDConfigData", PdVersion, 0, PdData("whole", {BareMode()})),
        moduletest::MakeModule("PDConfigData", PdVersion, 2, truncated)};
    LogCapture                  log;
    ImageSensorModuleSetManager manager;
    std::vector<uint8_t>        image = PdImage(moduletest::AlignmentOne, modules);
    manager.LoadBinaryParameters(image.data(), image.size());

    ParameterModule* whole = moduletest::Instance(manager, "PDConfigData", 0);
    ParameterModule* cut   = moduletest::Instance(manager, "PDConfigData", 1);
    ASSERT_NE(nullptr, whole);
    ASSERT_NE(nullptr, cut);
    EXPECT_TRUE(whole->Loaded);
    EXPECT_FALSE(cut->Loaded);
    EXPECT_EQ(1u, cut->Modified.load());
    // The orientation enum fails with the reader's own line; the two scalars of PDInfo behind it
    // and the list count of the top record log a line each.
    EXPECT_EQ(3u, log.Count("Failed to read symbol table entry"));

    moduletest::UsecaseBranch snapshot(2);
    PDAFConfigurationData*    record = manager.GetModule_PDConfigData(snapshot.modes, 2, nullptr);
    ASSERT_NE(nullptr, record) << "the root's module stands in for the one that failed";
    EXPECT_STREQ("whole", record->PDInfo.PDSensorName);
}
} // namespace
