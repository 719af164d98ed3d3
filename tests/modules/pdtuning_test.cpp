// The autofocus PD tuning modules tonemetryPDLib and tonemetryPDAF: every record read at both
// alignments, and their text access by the literal member names (misspellings included), through
// nested records, fixed arrays of three records, lists with live counts and arrays of numbers.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "cataloguedata.h"
#include "g_tonemetry/tuningsetmanager.h"
#include "logcapture.h"
#include "modulefiles.h"

namespace
{
using afpdafelements::tonemetryPDAFType;
using afpdlibelements::tonemetryPDLibType;
using testsupport::LogCapture;

std::vector<uint8_t> PDImage(tuningfile::Version fileVersion)
{
    tuningfile::TuningFileModel model = moduletest::ModelWithModes(fileVersion);
    model.modules = {moduletest::MakeModule("tonemetryPDLib", cataloguedata::PDVersion, 0, cataloguedata::PDLibData()),
                     moduletest::MakeModule("tonemetryPDAF", cataloguedata::PDVersion, 0, cataloguedata::PDAFData())};
    return moduletest::Image(model);
}

class PDTuning : public testing::Test
{
protected:
    void Load(tuningfile::Version fileVersion)
    {
        m_manager.m_tuningEnabled  = false;
        std::vector<uint8_t> image = PDImage(fileVersion);
        ASSERT_TRUE(m_manager.LoadBinaryParameters(image.data(), image.size())) << m_manager.m_errorText;
        m_pdlib = m_manager.GetModule_tonemetryPDLib(&m_root, 1, nullptr);
        m_pdaf  = m_manager.GetModule_tonemetryPDAF(&m_root, 1, nullptr);
        ASSERT_NE(nullptr, m_pdlib);
        ASSERT_NE(nullptr, m_pdaf);
        m_pdlibModule = moduletest::Instance(m_manager, "tonemetryPDLib");
        m_pdafModule  = moduletest::Instance(m_manager, "tonemetryPDAF");
    }

    void TearDown() override
    {
        if (nullptr != m_pdlib)
        {
            m_pdlib->Release();
            m_pdaf->Release();
        }
    }

    static std::string Text(ParameterModule* module, char const* path)
    {
        char value[512] = "unset";
        return module->GetValue(path, value, sizeof(value)) ? std::string(value) : std::string("<false>");
    }

    LogCapture          m_log;
    TuningSetManager    m_manager;
    TuningMode          m_root;
    tonemetryPDLibType* m_pdlib       = nullptr;
    tonemetryPDAFType*  m_pdaf        = nullptr;
    ParameterModule*    m_pdlibModule = nullptr;
    ParameterModule*    m_pdafModule  = nullptr;
};

class PDTuningLoad : public PDTuning, public testing::WithParamInterface<tuningfile::Version>
{
};

TEST_P(PDTuningLoad, PDLibReadsEveryRecordInItsPlace)
{
    Load(GetParam());
    const tonemetryPDLibType& lib = *m_pdlib;
    EXPECT_EQ(9, lib.module_version.major_revision);
    EXPECT_STREQ("pdlib", lib.parameter_version.revision);
    EXPECT_EQ(1000, lib.preProcess.HDR.longThreshold);
    EXPECT_EQ(1001, lib.preProcessVertical.HDR.longThreshold) << "the vertical records follow the horizontal ones";
    EXPECT_EQ(afpdlibelements::tonemetryHDRChannelSelection2, lib.preProcess.HDR.channelSelection);
    EXPECT_EQ(12.0f, lib.preProcess.filterTrigger.filterSet[2].AECTrigger.gain_end);
    EXPECT_EQ(41, lib.preProcess.lcrFilterTrigger.filterSet[1].boxFilterLength);
    EXPECT_EQ(1, lib.preProcessVertical.lcrChannelSeparated);
    EXPECT_EQ(16, lib.correlationVertical.lcrSearchRange.to);
    EXPECT_EQ(53.0f, lib.postProcessVertical.temporalFilterTrigger.temporalFilterSet[2].AECTrigger.gain_end);
    EXPECT_EQ(-2.0f, lib.adaptiveK.tolFarTargetLowerBound);
    EXPECT_EQ(afpdlibelements::tonemetryPDProcessingMode5, lib.PeripheralProcessingVertical.processingMode);
    EXPECT_EQ(afpdlibelements::tonemetryPDAxisControl2, lib.HVControl.PDProcessingAxis);
    ASSERT_EQ(3u, lib.HVControl.horizontalConfWeightTuningCount);
    EXPECT_EQ(102, lib.HVControl.horizontalConfWeightTuning[2].confThreshold);
    EXPECT_EQ(0u, lib.HVControl.verticalConfWeightTuningCount);
    EXPECT_EQ(nullptr, lib.HVControl.verticalConfWeightTuning);
    EXPECT_EQ(30, lib.skipControl.maxFrameRate);
    EXPECT_EQ(508, lib.hardwareGeometry.widhtOfRegion);
    EXPECT_EQ(511, lib.hardwareGeometry.vertNumOfRegion);
    ASSERT_EQ(2u, lib.hardwarePatternCount);
    const afpdlibelements::tonemetryTuningHardwarePattern& pattern = lib.hardwarePattern[1];
    ASSERT_EQ(2u, pattern.lineExtractorCount);
    EXPECT_EQ(11, pattern.lineExtractor[1].XOffset);
    ASSERT_EQ(3u, pattern.pixelSeparator.L_mapCount);
    EXPECT_EQ(3, pattern.pixelSeparator.L_map[2]);
    ASSERT_EQ(1u, pattern.resampler.instructionsCount);
    ASSERT_EQ(2u, pattern.resampler.instructions[0].OCount);
    EXPECT_EQ(1.5f, pattern.resampler.instructions[0].O[1]);
    EXPECT_EQ(2.0f, pattern.gridHeightScaleRatio);
    EXPECT_EQ(1, lib.enableFocusMaps);
    ASSERT_EQ(1u, lib.extensionParamCount);
    EXPECT_EQ(42, lib.extensionParam[0].paramId);
    EXPECT_EQ(4.5f, lib.extensionParam[0].paramValue);
    EXPECT_EQ(0u, m_log.Count("Failed")) << "nothing short, nothing left over";
}

TEST_P(PDTuningLoad, PDAFReadsEveryRecordInItsPlace)
{
    Load(GetParam());
    const tonemetryPDAFType& af = *m_pdaf;
    EXPECT_STREQ("pdaf", af.parameter_version.revision);
    EXPECT_EQ(1, af.is2PDEnable);
    ASSERT_EQ(1u, af.ROI.ConfigurationCount);
    EXPECT_EQ(3, af.ROI.Configuration[0].ROINumCols);
    EXPECT_EQ(0u, af.focusTable.focusEntriesCount) << "an empty list";
    EXPECT_EQ(nullptr, af.focusTable.focusEntries);
    ASSERT_EQ(2u, af.noiseTable.noiseEntriesCount);
    EXPECT_EQ(2.5f, af.noiseTable.noiseEntries[1].noiseGainMultiplier);
    EXPECT_EQ(150u, af.fallbackConfidence);
    ASSERT_EQ(3u, af.PDPreprocessing.PDDefocusHighScCheckCount);
    EXPECT_EQ(33, af.PDPreprocessing.PDDefocusHighScCheck[2]);
    EXPECT_EQ(0u, af.PDPreprocessing.PDLowlightDefocusHighScCheckCount);
    EXPECT_EQ(66, af.PDPreprocessing.PDLowlightAverageDefocusHighScCheck[1]);
    EXPECT_EQ(6u, af.PDInternal.cafStableFrameAllow.frameCount);
    EXPECT_EQ(1.75f, af.PDMultiWindow.activZoomControl.zoomThreshold);
    EXPECT_EQ(0.125f, af.dynamicFrameSkipVBlankThreshold);
    EXPECT_EQ(0.125f, af.face.ROIMoveConvergeSuppress.moveThresholdInY);
    EXPECT_EQ(3u, af.face.faceROIProcess.ROIStrictStable.stableFrameCount);
    EXPECT_EQ(6000u, af.track.fallback.fallbackROISizeThreshold);
    EXPECT_EQ(320u, af.saliency.defocusFilter.confidenceHighThreshold);
    EXPECT_EQ(9u, af.convergeDoneFilter.threshold);
    EXPECT_EQ(2u, af.forceEnterFineSearch.directionReverseCountThreshold);
    ASSERT_EQ(1u, af.advancedSparseControl.focusTable.focusEntriesCount);
    EXPECT_EQ(-100, af.advancedSparseControl.focusTable.focusEntries[0].defocus);
    EXPECT_EQ(0u, m_log.Count("Failed"));
}

INSTANTIATE_TEST_SUITE_P(BothAlignments, PDTuningLoad,
                         testing::Values(moduletest::AlignmentOne, moduletest::AlignmentEight));

class PDTuningText : public PDTuning
{
protected:
    void SetUp() override { Load(moduletest::AlignmentOne); }
};

TEST_F(PDTuningText, ValuesByPathThroughRecordsArraysOfThreeAndLists)
{
    EXPECT_EQ("508", Text(m_pdlibModule, "hardwareGeometry.widhtOfRegion"));
    EXPECT_EQ("1001", Text(m_pdlibModule, "preProcessVertical.HDR.longThreshold"));
    EXPECT_EQ("2", Text(m_pdlibModule, "HVControl.PDProcessingAxis")) << "an enum by its number";
    EXPECT_EQ("1", Text(m_pdlibModule, "preProcess.lcrChannelSeparated"));
    EXPECT_EQ("12.0", Text(m_pdlibModule, "preProcess.filterTrigger.filterSet[2].AECTrigger.gain_end"));
    EXPECT_EQ("42", Text(m_pdlibModule, "preProcessVertical.lcrFilterTrigger.filterSet[1].boxFilterLength"));
    EXPECT_EQ("<false>", Text(m_pdlibModule, "preProcess.filterTrigger.filterSet[3].verticalMode"))
        << "three sets and no fourth";
    EXPECT_EQ("11", Text(m_pdlibModule, "hardwarePattern[1].lineExtractor[1].XOffset"));
    EXPECT_EQ("<false>", Text(m_pdlibModule, "hardwarePattern[2].resampler.enable")) << "two patterns in the file";
    EXPECT_EQ("<false>", Text(m_pdlibModule, "HVControl.verticalConfWeightTuning[0].weight")) << "an empty list";
    EXPECT_EQ("1,2,3", Text(m_pdlibModule, "hardwarePattern[0].pixelSeparator.L_map")) << "a list without an index";
    EXPECT_EQ("2", Text(m_pdlibModule, "hardwarePattern[0].pixelSeparator.L_map[1]"));
    EXPECT_EQ("1,2,3", Text(m_pdlibModule, "hardwarePattern[0].pixelSeparator.L_map[3]")) << "past the end: all";
    EXPECT_EQ("0.5,1.5", Text(m_pdlibModule, "hardwarePattern[0].resampler.instructions[0].O"));
    EXPECT_EQ("4.5", Text(m_pdlibModule, "extensionParam[0].paramValue"));
    EXPECT_EQ("<false>", Text(m_pdlibModule, "hardwareGeometry.widthOfRegion")) << "the name is as the tool spells it";

    EXPECT_EQ("9", Text(m_pdafModule, "convergeDoneFilter.threshold"));
    EXPECT_EQ("1.75", Text(m_pdafModule, "PDMultiWindow.activZoomControl.zoomThreshold"));
    EXPECT_EQ("0.125", Text(m_pdafModule, "face.ROIMoveConvergeSuppress.moveThresholdInY"));
    EXPECT_EQ("11,22,33", Text(m_pdafModule, "PDPreprocessing.PDDefocusHighScCheck"));
    EXPECT_EQ("", Text(m_pdafModule, "PDPreprocessing.PDLowlightDefocusHighScCheck")) << "an empty list of numbers";
    EXPECT_EQ("<false>", Text(m_pdafModule, "focusTable.focusEntries[0].defocus"));
}

TEST_F(PDTuningText, SetValueWritesScalarsListsAndElementsAndCountsEachChange)
{
    const uint32_t modified = m_pdlib->GetModified();
    EXPECT_TRUE(m_pdlibModule->SetValue("hardwarePattern[0].pixelSeparator.L_map", "7,x"));
    EXPECT_EQ(7, m_pdlib->hardwarePattern[0].pixelSeparator.L_map[0]);
    EXPECT_EQ(2, m_pdlib->hardwarePattern[0].pixelSeparator.L_map[1]) << "a piece that does not parse is passed over";
    EXPECT_TRUE(m_pdlibModule->SetValue("hardwarePattern[0].pixelSeparator.R_map[1]", "9"));
    EXPECT_EQ(9, m_pdlib->hardwarePattern[0].pixelSeparator.R_map[1]);
    EXPECT_EQ(4, m_pdlib->hardwarePattern[0].pixelSeparator.R_map[0]);
    EXPECT_TRUE(m_pdlibModule->SetValue("preProcess.lcrFilterTrigger.filterSet[2].AECTrigger.lux_idx_end", "250.5"));
    EXPECT_EQ(250.5f, m_pdlib->preProcess.lcrFilterTrigger.filterSet[2].AECTrigger.lux_idx_end);
    EXPECT_EQ(100.0f, m_pdlib->preProcessVertical.lcrFilterTrigger.filterSet[2].AECTrigger.lux_idx_end);
    EXPECT_FALSE(m_pdlibModule->SetValue("hardwarePattern[5].gridWidthScaleRatio", "1"));
    EXPECT_FALSE(m_pdlibModule->SetValue("parameter_version.revision", "new")) << "texts are not set";
    EXPECT_EQ(modified + 3, m_pdlib->GetModified()) << "three changes, two refusals";

    EXPECT_FALSE(m_pdafModule->SetValue("tonemetryPDAFType", "1")) << "a record's own name is no member";
    EXPECT_TRUE(m_pdafModule->SetValue("PDInternal.cafStableFrameAllow.frameCount", "60"));
    EXPECT_EQ(60u, m_pdaf->PDInternal.cafStableFrameAllow.frameCount);
}

TEST_F(PDTuningText, GetInfoShowsRowsWithArrayCountsAndLiveListCounts)
{
    PList<ParameterParserInfo> pattern;
    ASSERT_TRUE(m_pdlibModule->GetInfo("hardwarePattern[0]", pattern));
    ASSERT_EQ(6u, pattern.count) << "one row per member";
    EXPECT_STREQ("lineExtractor", pattern[1].Name);
    EXPECT_EQ(ParameterParserInfo::TypeStructure, pattern[1].Type);
    EXPECT_EQ(1u, pattern[1].IsArray);
    EXPECT_EQ(2u, pattern[1].ElementCount) << "the live count";
    EXPECT_STREQ("gridWidthScaleRatio", pattern[4].Name);
    EXPECT_EQ(ParameterParserInfo::TypeFloat, pattern[4].Type);
    EXPECT_STREQ("1.0", pattern[4].Value) << "a Float keeps one decimal at least";

    for (char const* trigger : {"preProcess.filterTrigger", "preProcess.lcrFilterTrigger"})
    {
        PList<ParameterParserInfo> rows;
        ASSERT_TRUE(m_pdlibModule->GetInfo(trigger, rows)) << trigger;
        ASSERT_EQ(1u, rows.count) << trigger;
        EXPECT_STREQ("filterSet", rows[0].Name);
        EXPECT_EQ(ParameterParserInfo::TypeStructure, rows[0].Type);
        EXPECT_EQ(1u, rows[0].IsArray);
        EXPECT_EQ(3u, rows[0].ElementCount);
    }

    PList<ParameterParserInfo> separator;
    ASSERT_TRUE(m_pdlibModule->GetInfo("hardwarePattern[1].pixelSeparator.L_map", separator));
    ASSERT_EQ(1u, separator.count);
    EXPECT_EQ(nullptr, separator[0].Name) << "the row of what the path names";
    EXPECT_EQ(ParameterParserInfo::TypeInt32, separator[0].Type);
    EXPECT_EQ(3u, separator[0].ElementCount);

    PList<ParameterParserInfo> top;
    ASSERT_TRUE(m_pdafModule->GetInfo("", top));
    ASSERT_EQ(32u, top.count);
    EXPECT_STREQ("convergeDoneFilter", top[29].Name);
    EXPECT_EQ(ParameterParserInfo::TypeBoolean, top[2].Type) << "is2PDEnable";
    PList<ParameterParserInfo> empty;
    ASSERT_TRUE(m_pdafModule->GetInfo("focusTable.focusEntries", empty));
    ASSERT_EQ(1u, empty.count);
    EXPECT_EQ(0u, empty[0].ElementCount);
}

TEST_F(PDTuningText, TheSetManagerReadsAndWritesByModuleNameAndMemberNames)
{
    char out[1024] = {};
    ASSERT_TRUE(m_manager.GetValue(&m_root, 1, "tonemetryPDAF.PDPreprocessing", "PDDefocusHighScCheck,PDStdThreshold",
                                   out, sizeof(out)));
    EXPECT_STREQ("PDDefocusHighScCheck=11,22,33;PDStdThreshold=4.0", out);
    ASSERT_TRUE(m_manager.GetValue(&m_root, 1, "tonemetryPDAF.convergeDoneFilter", nullptr, out, sizeof(out)));
    EXPECT_STREQ("enable=1;length=5;threshold=9", out);
    ASSERT_TRUE(m_manager.SetValue(&m_root, 1, "tonemetryPDAF.PDPreprocessing", "PDDefocusHighScCheck", "5,6"));
    EXPECT_EQ(5, m_pdaf->PDPreprocessing.PDDefocusHighScCheck[0]);
    EXPECT_EQ(33, m_pdaf->PDPreprocessing.PDDefocusHighScCheck[2]) << "past the text's end nothing changes";
    ASSERT_TRUE(m_manager.GetValue(&m_root, 1, "tonemetryPDLib.hardwarePattern[1].lineExtractor[0]", "XOffset,YOffset",
                                   out, sizeof(out)));
    EXPECT_STREQ("XOffset=10;YOffset=1", out);
}
} // namespace
