// abf_3_4_0 and its trigger tree: 3 DRC-gain nodes of 4 HDR nodes of 6 AEC nodes, each leaf a
// region; read as records, and walked by text path with the live counts that GetInfo gives.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "cataloguedata.h"
#include "g_tonemetry/tuningsetmanager.h"
#include "logcapture.h"
#include "modulefiles.h"

namespace
{
using abf_3_4_0::tonemetry_abf34Type;
using testsupport::LogCapture;

constexpr uint32_t DrcNodes = 3;
constexpr uint32_t HdrNodes = 4;
constexpr uint32_t AecNodes = 6;

class Abf34Tree : public testing::TestWithParam<tuningfile::Version>
{
protected:
    void SetUp() override
    {
        m_manager.m_tuningEnabled         = false;
        tuningfile::TuningFileModel model = moduletest::ModelWithModes(GetParam());
        model.modules                     = {moduletest::MakeModule("abf34_ife", cataloguedata::Abf34Version, 0,
                                                                    cataloguedata::Abf34Data(DrcNodes, HdrNodes, AecNodes))};
        std::vector<uint8_t> image        = moduletest::Image(model);
        ASSERT_TRUE(m_manager.LoadBinaryParameters(image.data(), image.size())) << m_manager.m_errorText;
        m_record = m_manager.GetModule_abf34_ife(&m_root, 1, nullptr);
        m_module = moduletest::Instance(m_manager, "abf34_ife");
        ASSERT_NE(nullptr, m_record);
        ASSERT_NE(nullptr, m_module);
    }

    void TearDown() override
    {
        if (nullptr != m_record)
        {
            m_record->Release();
        }
    }

    std::string Text(const std::string& path)
    {
        char value[1024] = "unset";
        return m_module->GetValue(path.c_str(), value, sizeof(value)) ? std::string(value) : std::string("<false>");
    }

    /// The live element count of the list that `path` names, from its GetInfo row.
    uint32_t ListCount(const std::string& path)
    {
        PList<ParameterParserInfo> rows;
        EXPECT_TRUE(m_module->GetInfo(path.c_str(), rows)) << path;
        EXPECT_EQ(1u, rows.count) << path;
        return (1u == rows.count) ? rows[0].ElementCount : 0u;
    }

    static std::string Node(const std::string& list, uint32_t index)
    {
        return list + "[" + std::to_string(index) + "]";
    }

    LogCapture           m_log;
    TuningSetManager     m_manager;
    TuningMode           m_root;
    tonemetry_abf34Type* m_record = nullptr;
    ParameterModule*     m_module = nullptr;
};

TEST_P(Abf34Tree, TheHeadAndTheReserveReadAsRecordsAndAsText)
{
    const tonemetry_abf34Type& abf = *m_record;
    EXPECT_EQ(1, abf.enable_section.abf_enable);
    EXPECT_EQ(3, abf.module_version.major_revision);
    EXPECT_EQ(4, abf.module_version.minor_revision);
    EXPECT_EQ(tonemetry_abf34Type::control_variablesStruct::control_drc_gain,
              abf.control_variables.control_var_type[2]);
    EXPECT_EQ(ispglobalelements::control_aec_gain, abf.control_method.aec_exp_control);
    EXPECT_EQ(ispglobalelements::hyst_downward, abf.dynamic_enable_triggers.abf_enable.hyst_mode);
    EXPECT_EQ(4.0f, abf.dynamic_enable_triggers.abf_enable.hyst_trigger.end2);
    EXPECT_EQ(0.75f, abf.tonemetry_abf34_reserve.radial_anchor_tab.radial_anchor[3]);

    EXPECT_EQ("1,0,4", Text("control_variables.control_var_type"));
    EXPECT_EQ("4.0", Text("dynamic_enable_triggers.abf_enable.hyst_trigger.end2"));
    EXPECT_EQ(0u, m_log.Count("Failed"));
}

TEST_P(Abf34Tree, EveryLeafIsInTheRecordAndReachedByTextPathThroughTheLiveCounts)
{
    const std::string drcList = "tonemetry_abf34_core.mod_abf34_drc_gain_data";
    ASSERT_EQ(DrcNodes, m_record->tonemetry_abf34_core.mod_abf34_drc_gain_dataCount);
    ASSERT_EQ(DrcNodes, ListCount(drcList));
    uint32_t leaves = 0;
    for (uint32_t d = 0; d < DrcNodes; ++d)
    {
        const auto&       drc     = m_record->tonemetry_abf34_core.mod_abf34_drc_gain_data[d];
        const std::string hdrList = Node(drcList, d) + ".drc_gain_data.mod_abf34_hdr_aec_data";
        EXPECT_EQ(static_cast<float>(d + 1), drc.drc_gain_trigger.end);
        ASSERT_EQ(HdrNodes, drc.drc_gain_data.mod_abf34_hdr_aec_dataCount);
        ASSERT_EQ(HdrNodes, ListCount(hdrList));
        for (uint32_t h = 0; h < HdrNodes; ++h)
        {
            const auto&       hdr     = drc.drc_gain_data.mod_abf34_hdr_aec_data[h];
            const std::string aecList = Node(hdrList, h) + ".hdr_aec_data.mod_abf34_aec_data";
            EXPECT_EQ(static_cast<float>(h), hdr.hdr_aec_trigger.aec_sensitivity_start);
            ASSERT_EQ(AecNodes, hdr.hdr_aec_data.mod_abf34_aec_dataCount);
            ASSERT_EQ(AecNodes, ListCount(aecList));
            for (uint32_t a = 0; a < AecNodes; ++a)
            {
                const auto&       aec  = hdr.hdr_aec_data.mod_abf34_aec_data[a];
                const std::string leaf = Node(aecList, a);
                EXPECT_EQ(static_cast<float>(a + 1), aec.aec_trigger.gain_end);
                EXPECT_EQ(cataloguedata::Abf34RegionMark(d, h, a), aec.abf34_rgn_data.bpc_fmax);
                EXPECT_EQ(16.0f, aec.abf34_rgn_data.noise_stdlut_level_tab.noise_stdlut_level[64]);
                EXPECT_EQ(10u, aec.abf34_rgn_data.curve_offset_tab.curve_offset[3]);
                EXPECT_EQ(3.5f, aec.abf34_rgn_data.noise_prsv_hi_tab.noise_prsv_hi[1]);
                EXPECT_EQ(std::to_string(cataloguedata::Abf34RegionMark(d, h, a)),
                          Text(leaf + ".abf34_rgn_data.bpc_fmax"));
                EXPECT_EQ(std::to_string(a + 1) + ".0", Text(leaf + ".aec_trigger.gain_end"));
                ++leaves;
            }
        }
    }
    EXPECT_EQ(DrcNodes * HdrNodes * AecNodes, leaves);
    EXPECT_EQ("<false>", Text(Node(drcList, DrcNodes) + ".drc_gain_trigger.start")) << "one past the last node";
}

TEST_P(Abf34Tree, ARegionsArraysReadWholeOrByIndexAndTakeNewValues)
{
    const std::string region = "tonemetry_abf34_core.mod_abf34_drc_gain_data[2].drc_gain_data.mod_abf34_hdr_aec_data[3]"
                               ".hdr_aec_data.mod_abf34_aec_data[5].abf34_rgn_data.";
    const std::string noise  = region + "noise_stdlut_level_tab.noise_stdlut_level";
    std::string       all    = Text(noise);
    EXPECT_EQ(64, std::count(all.begin(), all.end(), ',')) << "65 values without an index";
    EXPECT_EQ(0u, all.rfind("0.0,0.25,0.5,0.75,1.0,", 0)) << all;
    EXPECT_EQ("16.0", Text(noise + "[64]"));
    EXPECT_EQ(all, Text(noise + "[65]")) << "an index past the end prints them all";
    EXPECT_EQ("2.5,3.5", Text(region + "noise_prsv_hi_tab.noise_prsv_hi"));
    EXPECT_EQ("3.5", Text(region + "edge_softness")) << "2 + 3 / 2";

    ASSERT_TRUE(m_module->SetValue((noise + "[64]").c_str(), "-1.5"));
    ASSERT_TRUE(m_module->SetValue((region + "distance_ker_tab.distance_ker").c_str(), "60,50"));
    const auto& leaf = m_record->tonemetry_abf34_core.mod_abf34_drc_gain_data[2]
                           .drc_gain_data.mod_abf34_hdr_aec_data[3]
                           .hdr_aec_data.mod_abf34_aec_data[5]
                           .abf34_rgn_data;
    EXPECT_EQ(-1.5f, leaf.noise_stdlut_level_tab.noise_stdlut_level[64]);
    EXPECT_EQ(60u, leaf.distance_ker_tab.distance_ker[0]);
    EXPECT_EQ(50u, leaf.distance_ker_tab.distance_ker[1]);
    EXPECT_EQ(3u, leaf.distance_ker_tab.distance_ker[2]) << "past the text's end nothing changes";

    char out[256] = {};
    ASSERT_TRUE(m_manager.GetValue(&m_root, 1,
                                   "abf34_ife.tonemetry_abf34_core.mod_abf34_drc_gain_data[1].drc_gain_trigger",
                                   nullptr, out, sizeof(out)));
    EXPECT_STREQ("start=1.0;end=2.0", out);
}

INSTANTIATE_TEST_SUITE_P(BothAlignments, Abf34Tree,
                         testing::Values(moduletest::AlignmentOne, moduletest::AlignmentEight));
} // namespace
