// The face-detection configuration module through fdSetManager: every member of a file read
// into its place at both alignments and from a file, enums that refuse values, the version gate
// of Create, and a module whose data ends too early.
#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

#include "g_facedetection/fdsetmanager.h"
#include "logcapture.h"
#include "modulefiles.h"

namespace
{
using namespace orvofdconfig;
using moduletest::Bits;
using testsupport::LogCapture;

constexpr tuningfile::Version FdVersion{3, 4, 0};

/// Writes the members of a record into a builder, or expects them of a loaded record in the same
/// order: each 4-byte member the next of a sequence of distinct numbers, each enum the value its
/// place asks for.
class Cells
{
public:
    explicit Cells(bool check) : m_check(check) {}

    template <typename T>
    void Word(T& member, char const* name)
    {
        if (m_check)
        {
            EXPECT_EQ(m_next, Bits(member)) << name;
        }
        else
        {
            data.U32(m_next);
        }
        ++m_next;
    }
    template <typename E>
    void Enum(E& member, E value, char const* name)
    {
        if (m_check)
        {
            EXPECT_EQ(value, member) << name;
        }
        else
        {
            data.Enum(value);
        }
    }

    tuningfile::DataBuilder data;

private:
    bool     m_check;
    uint32_t m_next = 0x100;
};

// One walk per record, in load order, serves both writing and checking.
#define WORD(member) visitor.Word(record.member, #member)
#define ENUM(member, value) visitor.Enum(record.member, value, #member)

template <typename V>
void Walk(V& visitor, FDFaceSize& record, FDFaceSizeType type)
{
    ENUM(type, type);
    WORD(value.size);
    WORD(value.ratio);
}

template <typename V>
void Walk(V& visitor, FDHwConfig& record)
{
    WORD(enable);
    Walk(visitor, record.minFaceSize, FDFaceSizeAbsolute);
    Walk(visitor, record.maxFaceSize, FDFaceSizeRatio);
    WORD(noFaceSearchCycle);
    ENUM(searchAngle, FDSearchAngle5);
    WORD(faceThreshold);
    WORD(profileThreshold);
    WORD(minConfidence);
    WORD(boxEnlargeRatio);
    WORD(maxFaceCount);
}

template <typename V>
void Walk(V& visitor, FDProfileConfig& record, FDSearchAngle first)
{
    ENUM(rollAngle, first);
    ENUM(yawAngle, FDSearchAngle2);
    ENUM(pitchAngle, FDSearchAngle6);
    WORD(detectionThreshold);
    WORD(trackingThreshold);
}

template <typename V>
void Walk(V& visitor, FDSwConfig& record)
{
    WORD(enable);
    Walk(visitor, record.minFaceSize, FDFaceSizeRatio);
    Walk(visitor, record.maxFaceSize, FDFaceSizeAbsolute);
    Walk(visitor, record.frontProfile, FDSearchAngle1);
    Walk(visitor, record.halfProfile, FDSearchAngle3);
    Walk(visitor, record.fullProfile, FDSearchAngle4);
    WORD(searchSizeStep);
    WORD(searchPositionStep);
    ENUM(detectionMode, FDDetectionMode3);
    ENUM(searchDensityWithoutFaces, FDSearchDensity75);
    ENUM(searchDensityWithFaces, FDSearchDensity150);
    WORD(noFaceSearchCycle);
    WORD(newFaceSearchCycle);
    WORD(newFaceSearchInterval);
    WORD(uprightNoFaceSearchCycle);
    WORD(uprightNewFaceSearchCycle);
    WORD(uprightNewFaceSearchInterval);
    WORD(positionSteadiness);
    WORD(sizeSteadiness);
    WORD(rollAngleExtension);
    WORD(yawAngleExtension);
    WORD(noFaceFrameSkip);
    WORD(newFaceFrameSkip);
    WORD(detectionThreshold);
}

template <typename V>
void Walk(V& visitor, FDFPFilterConfig& record)
{
    WORD(enable);
    WORD(baseThreshold);
    WORD(innerThreshold);
    WORD(expandFaceSize);
    WORD(expandBoxRatio);
    WORD(faceSizeCap);
    ENUM(searchDensity, FDSearchDensity200);
    WORD(profileThreshold);
    WORD(enableSoftwareFilter);
    WORD(enableNetworkFilter);
    WORD(networkThreshold);
    WORD(networkInputSize);
    WORD(networkMaxFaceCount);
}

template <typename V>
void Walk(V& visitor, FDROIGeneratorConfig& record)
{
    WORD(enable);
    WORD(baseThreshold);
    WORD(innerThreshold);
    WORD(expandFaceSize);
    WORD(expandBoxRatio);
    WORD(faceSizeCap);
    ENUM(searchDensity, FDSearchDensity50);
}

template <typename V>
void Walk(V& visitor, FDROIManagerConfig& record)
{
    WORD(enable);
    WORD(minNewFaceConfidence);
    WORD(minKnownFaceConfidence);
    WORD(minStrictNewFaceConfidence);
    WORD(minStrictKnownFaceConfidence);
    WORD(strictAngleThreshold);
    WORD(linkMaxMoveRatio);
    WORD(linkMinSizeRatio);
    WORD(linkMaxSizeRatio);
    WORD(linkMaxRollDifference);
    WORD(maxTrackedFaces);
    WORD(lostFaceHoldCount);
}

template <typename V>
void Walk(V& visitor, FDStabilizationAttributeConfig& record, FDStabilizationMode mode)
{
    WORD(enable);
    ENUM(mode, mode);
    WORD(minStableState);
    WORD(stableThreshold);
    WORD(lockThreshold);
    WORD(stateCount);
    WORD(useReference);
    ENUM(filterType, FDStabilizationFilterHysteresis);
    WORD(movingThreshold);
    WORD(movingInitialState);
    WORD(movingLinkFactor);
    WORD(defaultMotionDetector.threshold);
    WORD(defaultMotionDetector.initialState);
    WORD(defaultMotionDetector.linkFactor);
    WORD(sizeMotionDetector.threshold);
    WORD(filters.temporal.numerator);
    WORD(filters.temporal.denominator);
    WORD(filters.hysteresis.lowStart);
    WORD(filters.hysteresis.lowEnd);
    WORD(filters.hysteresis.highStart);
    WORD(filters.hysteresis.highEnd);
    WORD(filters.average.historyLength);
    WORD(filters.average.minSamples);
    WORD(filters.average.weight);
    WORD(filters.median.historyLength);
}

template <typename V>
void Walk(V& visitor, FaceDetectionCtrlType& record)
{
    WORD(module_version.major_revision);
    WORD(module_version.minor_revision);
    WORD(module_version.incr_revision);
    WORD(enable);
    WORD(maxFaceCount);
    WORD(frameSkipWithFaces);
    WORD(frameSkipWithoutFaces);
    WORD(maxFPSWithFaces);
    WORD(maxFPSWithoutFaces);
    WORD(lockDetectedFaces);
    WORD(holdFrameCount);
    WORD(retryFrameCount);
    WORD(inputWidth);
    WORD(inputHeight);
    ENUM(accuracy, FDFaceAccuracyHigh);
    Walk(visitor, record.hwConfig);
    Walk(visitor, record.swConfig);
    Walk(visitor, record.FPFilterConfig);
    Walk(visitor, record.ROIGeneratorConfig);
    Walk(visitor, record.ROIManagerConfig);
    WORD(stabilizationConfig.enable);
    WORD(stabilizationConfig.historyLength);
    WORD(stabilizationConfig.matchThreshold);
    Walk(visitor, record.stabilizationConfig.position, FDStabilizationMode8);
    Walk(visitor, record.stabilizationConfig.size, FDStabilizationMode4);
    WORD(swPreprocessConfig.enable);
    WORD(swPreprocessConfig.contrastStrength);
    WORD(facialAttributeConfig.enableContour);
    WORD(facialAttributeConfig.enableEyeDetection);
    WORD(facialAttributeConfig.enableSmileDetection);
    WORD(facialAttributeConfig.enableGazeDetection);
    WORD(facialAttributeConfig.enableBlinkDetection);
}

#undef WORD
#undef ENUM

/// The data of a whole module: every member distinct and valid.
tuningfile::DataBuilder FdData()
{
    FaceDetectionCtrlType blank{};
    Cells                 writer(false);
    Walk(writer, blank);
    return writer.data;
}

std::vector<uint8_t> FdImage(tuningfile::Version fileVersion, const tuningfile::DataBuilder& data,
                             tuningfile::Version moduleVersion = FdVersion)
{
    tuningfile::TuningFileModel model = moduletest::ModelWithModes(fileVersion);
    model.modules.push_back(moduletest::MakeModule("fdconfigdata", moduleVersion, 0, data));
    return moduletest::Image(model);
}

/// Replaces the 4-byte cell at `offset` (in cells) of a builder's scalar items.
tuningfile::DataBuilder WithCell(const tuningfile::DataBuilder& data, size_t offset, uint32_t value)
{
    tuningfile::DataBuilder changed;
    for (size_t index = 0; index < data.Items().size(); ++index)
    {
        const auto& item = data.Items()[index];
        if (index == offset)
        {
            changed.U32(value);
        }
        else
        {
            changed.U32(static_cast<uint32_t>(item.value));
        }
    }
    return changed;
}

/// The cell of hwConfig.searchAngle: version (3), top words (11), accuracy, hwConfig's enable
/// and two face sizes (3 cells each), then noFaceSearchCycle.
constexpr size_t SearchAngleCell = 3 + 11 + 1 + 1 + 3 + 3 + 1;
constexpr size_t AccuracyCell    = 3 + 11;

class FdConfigFile : public testing::TestWithParam<tuningfile::Version>
{
protected:
    LogCapture   m_log;
    fdSetManager m_manager;
};

TEST_P(FdConfigFile, EveryMemberLoadsInBufferMode)
{
    std::vector<uint8_t> image = FdImage(GetParam(), FdData());
    ASSERT_TRUE(m_manager.LoadBinaryParameters(image.data(), image.size())) << m_manager.m_errorText;

    FaceDetectionCtrlType* record = m_manager.GetModule_fdconfigdata(nullptr, 0, nullptr);
    ASSERT_NE(nullptr, record);
    Cells checker(true);
    Walk(checker, *record);
    EXPECT_EQ(1u, record->SymbolTableID) << "the module's entry id";
    EXPECT_EQ(0u, record->module_version.SymbolTableID);
    EXPECT_EQ(1u, record->GetModified()) << "one load";
    EXPECT_EQ(0u, m_log.Count("Failed to read symbol table entry"));
    EXPECT_EQ(0u, m_log.Count("Invalid value"));
    record->Release();
}

INSTANTIATE_TEST_SUITE_P(Alignments, FdConfigFile,
                         testing::Values(moduletest::AlignmentOne, moduletest::AlignmentEight),
                         [](const testing::TestParamInfo<tuningfile::Version>& info) {
                             return "Version" + std::to_string(info.param.major);
                         });

TEST(FdConfigEnums, AValueOutsideTheEnumIsLoggedAndLeftZeroAndLaterMembersStillLoad)
{
    // 7 is no FDSearchAngle; FDFaceAccuracy has 0 and 15 only, an enum with gaps.
    struct Case
    {
        size_t   cell;
        uint32_t value;
        bool     listed;
    };
    for (const Case& use : {Case{SearchAngleCell, 7, false}, Case{AccuracyCell, 0, true}, Case{AccuracyCell, 7, false},
                            Case{AccuracyCell, 15, true}, Case{AccuracyCell, 16, false}})
    {
        SCOPED_TRACE(std::to_string(use.cell) + ": " + std::to_string(use.value));
        LogCapture           log;
        fdSetManager         manager;
        std::vector<uint8_t> image = FdImage(moduletest::AlignmentOne, WithCell(FdData(), use.cell, use.value));
        ASSERT_TRUE(manager.LoadBinaryParameters(image.data(), image.size()));
        FaceDetectionCtrlType* record = manager.GetModule_fdconfigdata(nullptr, 0, nullptr);
        ASSERT_NE(nullptr, record) << "an invalid enum does not fail the load";
        const uint32_t stored = (SearchAngleCell == use.cell) ? static_cast<uint32_t>(record->hwConfig.searchAngle)
                                                              : static_cast<uint32_t>(record->accuracy);
        EXPECT_EQ(use.listed ? use.value : 0u, stored);
        const std::string line = "Invalid value(" + std::to_string(use.value) + ") converting UINT32 to " +
                                 ((SearchAngleCell == use.cell) ? "FDSearchAngle" : "FDFaceAccuracy");
        EXPECT_EQ(use.listed ? 0u : 1u, log.Count(line));
        EXPECT_EQ(use.listed ? 0u : 1u, log.Count("Invalid value"));
        EXPECT_EQ(FDSearchDensity200, record->FPFilterConfig.searchDensity) << "later members still load";
        record->Release();
    }
}

TEST(FdConfigCreate, AnotherModuleVersionIsRefused)
{
    LogCapture           log;
    fdSetManager         manager;
    std::vector<uint8_t> image = FdImage(moduletest::AlignmentOne, FdData(), {3, 4, 1});
    manager.LoadBinaryParameters(image.data(), image.size());

    // 3.4.1 and 3.4.0 as the raw 64-bit values: major, minor << 16, patch << 32.
    EXPECT_EQ(1u, log.Count("Unable to create FaceDetectionCtrlTypeClass, binary version (4295229443) does not "
                            "match source version (262147)"));
    EXPECT_EQ(1u, log.Count("Failed to parse binary header data for: "));
    EXPECT_EQ(nullptr, manager.GetModule_fdconfigdata(nullptr, 0, nullptr));
    EXPECT_EQ(nullptr, moduletest::Instance(manager, "fdconfigdata"));
}

TEST(FdConfigCreate, AnotherNameIsRefusedAndTheVersionIsToldFirst)
{
    LogCapture   log;
    fdSetManager manager;
    ASSERT_EQ(1u, manager.DefaultModuleMap.count("fdconfigdata"));
    DefaultModule*   registered      = manager.DefaultModuleMap["fdconfigdata"];
    ParameterModule* defaultInstance = registered->m_defaultInstance;

    ModuleData otherName(1, 0, nullptr, "fdconfig", VersionUnion(3, 4, 0).value, 0, &manager);
    EXPECT_EQ(nullptr, defaultInstance->Create(&otherName, registered));
    EXPECT_EQ(1u, log.Count("Unable to create FaceDetectionCtrlTypeClass, binary name (fdconfig) does not match "
                            "source name (fdconfigdata)"));

    log.Clear();
    ModuleData bothDiffer(1, 0, nullptr, "fdconfig", VersionUnion(3, 5, 0).value, 0, &manager);
    EXPECT_EQ(nullptr, defaultInstance->Create(&bothDiffer, registered));
    EXPECT_EQ(1u, log.Count("Unable to create FaceDetectionCtrlTypeClass, binary version"));
    EXPECT_EQ(0u, log.Count("binary name"));
}

TEST(FdConfigLoad, AModuleWhoseDataEndsEarlyFailsWithALinePerScalarLeft)
{
    // The module version and 5 of the 11 words of the top record: the other 6 each log, and the
    // enum and records behind them are not tried.
    tuningfile::DataBuilder data;
    for (uint32_t word = 0; word < 3 + 5; ++word)
    {
        data.U32(word);
    }
    LogCapture           log;
    fdSetManager         manager;
    std::vector<uint8_t> image = FdImage(moduletest::AlignmentOne, data);
    manager.LoadBinaryParameters(image.data(), image.size());

    EXPECT_EQ(6u, log.Count("Failed to read symbol table entry"));
    EXPECT_EQ(0u, log.Count("Invalid value"));
    ParameterModule* instance = moduletest::Instance(manager, "fdconfigdata");
    ASSERT_NE(nullptr, instance);
    EXPECT_FALSE(instance->Loaded);
    EXPECT_EQ(1u, instance->Modified.load());
    EXPECT_EQ(nullptr, manager.GetModule_fdconfigdata(nullptr, 0, nullptr)) << "no loaded module to hand out";
}
TEST(FdConfigSetManager, TypesAreFoundByTheirStringAndANullTypeThrows)
{
    LogCapture   log;
    fdSetManager manager;
    char         unknown[] = "nothing";
    EXPECT_EQ(nullptr, manager.GetDefaultModule(unknown));
    EXPECT_EQ(1u, log.Count("Failed to find module nothing in DefaultModuleMap"));
    EXPECT_THROW(manager.GetDefaultModule(nullptr), std::logic_error);
    char known[] = "fdconfigdata";
    EXPECT_NE(nullptr, manager.GetDefaultModule(known)) << "the throw left the lock free";
}

TEST(FdConfigSetManager, AnUpdateFromMemorySwapsInTheNewRecordAndTheHeldOneStaysReadable)
{
    fdSetManager         manager;
    std::vector<uint8_t> first = FdImage(moduletest::AlignmentOne, FdData());
    ASSERT_TRUE(manager.LoadBinaryParameters(first.data(), first.size()));
    FaceDetectionCtrlType* held = manager.GetModule_fdconfigdata(nullptr, 0, nullptr);
    ASSERT_NE(nullptr, held);

    std::vector<uint8_t> second =
        FdImage(moduletest::AlignmentOne, WithCell(FdData(), AccuracyCell, FDFaceAccuracyNormal));
    EXPECT_TRUE(manager.UpdateBinaryParameters(second.data(), second.size())) << manager.m_errorText;
    FaceDetectionCtrlType* updated = manager.GetModule_fdconfigdata(nullptr, 0, nullptr);
    ASSERT_NE(nullptr, updated);
    EXPECT_NE(held, updated);
    EXPECT_EQ(FDFaceAccuracyNormal, updated->accuracy);
    EXPECT_EQ(FDFaceAccuracyHigh, held->accuracy);
}
} // namespace
