// Look-up along mode branches, in buffer and in file mode side by side: the deepest mode that
// holds a name wins, a branch may go deeper than the tree, one mode number forms one step, and
// file mode counts the references that Release and `previous` give back.
#include <gtest/gtest.h>

#include "logcapture.h"
#include "runtimefixture.h"

namespace
{
using storetest::BpsGain;
using storetest::Branch;
using storetest::ConfigModule;
using storetest::DemoModule;
using storetest::DemoRecord;
using storetest::MakeMode;
using storetest::ModuleOf;
using storetest::NoLinkSetManager;
using storetest::TempFile;
using testsupport::LogCapture;
using tuningfile::TuningFileModel;

// Root; Usecase.Video with Feature1.ISPHDR, Feature1.ADRC below that and Feature2.HLG below
// ISPHDR; Usecase.Snapshot. "demo10_bps" stands in the root, Video and ADRC; "demo10_ife" in the
// root and HLG; the plain module only in ISPHDR.
TuningFileModel LookupModel()
{
    TuningFileModel model;
    model.modes   = {MakeMode(0, 0, 0), MakeMode(2, 2, 0), MakeMode(3, 1, 1),
                     MakeMode(3, 2, 2), MakeMode(4, 2, 2), MakeMode(2, 1, 0)};
    model.modules = {DemoModule("demo10_bps", 0, 1.0f), DemoModule("demo10_ife", 0, 10.0f),
                     DemoModule("demo10_bps", 1, 2.0f), ConfigModule(2, 8),
                     DemoModule("demo10_bps", 3, 4.0f), DemoModule("demo10_ife", 4, 40.0f)};
    return model;
}

class StoreLookup : public testing::TestWithParam<bool>
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(storetest::LoadImage(m_manager, storetest::Written(LookupModel()), GetParam(), m_file))
            << m_manager.m_errorText;
        ASSERT_EQ(GetParam(), m_manager.IsFileMode());
        m_log.Clear();
    }

    float IfeGain(const std::vector<TuningMode>& branch)
    {
        DemoRecord* record =
            m_manager.GetModule_demo10_ife(branch.data(), static_cast<unsigned int>(branch.size()), nullptr);
        float gain = (nullptr == record) ? -1.0f : record->gain;
        if (nullptr != record)
        {
            record->Release();
        }
        return gain;
    }

    LogCapture       m_log;
    TempFile         m_file{"lookup"};
    NoLinkSetManager m_manager;
};

TEST_P(StoreLookup, TheDeepestModeThatHoldsTheNameWins)
{
    EXPECT_EQ(1.0f, BpsGain(m_manager, {}));
    EXPECT_EQ(1.0f, BpsGain(m_manager, Branch({{0, 0}})));
    EXPECT_EQ(1.0f, BpsGain(m_manager, Branch({{3, 1}}))) << "a branch of one element is the root's";
    EXPECT_EQ(2.0f, BpsGain(m_manager, Branch({{0, 0}, {2, 2}})));
    EXPECT_EQ(2.0f, BpsGain(m_manager, Branch({{0, 0}, {2, 2}, {3, 1}}))) << "ISPHDR inherits Video's";
    EXPECT_EQ(1.0f, BpsGain(m_manager, Branch({{0, 0}, {2, 1}})));
    // Two Feature1 selectors form one step, matched against a chain of two Feature1 levels in
    // either order; the step after it is a step of its own.
    EXPECT_EQ(4.0f, BpsGain(m_manager, Branch({{0, 0}, {2, 2}, {3, 1}, {3, 2}})));
    EXPECT_EQ(4.0f, BpsGain(m_manager, Branch({{0, 0}, {2, 2}, {3, 2}, {3, 1}})));
    EXPECT_EQ(40.0f, IfeGain(Branch({{0, 0}, {2, 2}, {3, 1}, {4, 2}})));
    EXPECT_EQ(10.0f, IfeGain(Branch({{0, 0}, {2, 2}, {3, 1}, {3, 2}})));
    // Deeper than the tree, or through a mode that does not exist: the deepest holder so far.
    EXPECT_EQ(4.0f, BpsGain(m_manager, Branch({{0, 0}, {2, 2}, {3, 1}, {3, 2}, {5, 1}, {6, 3}})));
    EXPECT_EQ(2.0f, BpsGain(m_manager, Branch({{0, 0}, {2, 2}, {5, 1}, {3, 1}, {3, 2}})));
    EXPECT_EQ(1.0f, BpsGain(m_manager, Branch({{0, 0}, {2, 7}})));
    // The one-element branch that does not start at Default is the only complaint.
    EXPECT_EQ(1u, m_log.Count("[ERROR]"));
    EXPECT_EQ(1u, m_log.Count("called with first mode != Default, might not return module data from the desired mode "
                              "path: 3.1\n"));
    EXPECT_EQ(0u, m_log.Count("[WARNING]"));
}

TEST_P(StoreLookup, ANameOnlyADeepModeHoldsIsFoundAfterAWarning)
{
    const std::vector<TuningMode>   isphdr = Branch({{0, 0}, {2, 2}, {3, 1}});
    orvotestconfig::TestConfigType* config = m_manager.GetModule_testconfigdata(isphdr.data(), 3, nullptr);
    ASSERT_NE(nullptr, config);
    EXPECT_EQ(8u, config->maxFaces);
    EXPECT_EQ(orvotestconfig::TestAccuracyNormal, config->accuracy);
    config->Release();
    EXPECT_EQ(1u, m_log.Count("[WARNING]"));
    EXPECT_EQ(1u, m_log.Count("GetModule testconfigdata module not found in default scenario (0.0), mode path: "
                              "0.0|2.2|3.1\n"));
    EXPECT_EQ(nullptr, m_manager.GetModule_testconfigdata(isphdr.data(), 2, nullptr));
    EXPECT_EQ(nullptr, m_manager.GetModule("nosuch", isphdr.data(), 3, nullptr));
    EXPECT_EQ(0u, m_log.Count("[ERROR]"));
}

TEST_P(StoreLookup, DoubtfulArgumentsAreLoggedAndServedFromTheRoot)
{
    EXPECT_EQ(1.0f, m_manager.GetModule_demo10_bps(nullptr, 3, nullptr)->gain);
    EXPECT_EQ(1u, m_log.Count("GetModule(demo10_bps) called with modeBranch == null and modeCount = 3, will return "
                              "default mode module data\n"));
    const std::vector<TuningMode> noDefault = Branch({{2, 2}, {3, 1}});
    EXPECT_EQ(1.0f, m_manager.GetModule_demo10_bps(noDefault.data(), 2, nullptr)->gain);
    EXPECT_EQ(1u, m_log.Count("GetModule(demo10_bps) called with first mode != Default, might not return module "
                              "data from the desired mode path: 2.2|3.1\n"));
    EXPECT_EQ(nullptr, m_manager.GetModule(nullptr, nullptr, 0, nullptr));
    EXPECT_STREQ("GetModule called with nullptr module name", m_manager.m_errorText);
}

TEST_P(StoreLookup, FileModeCountsTheReferencesThatReleaseAndPreviousGiveBack)
{
    const std::vector<TuningMode> video  = Branch({{0, 0}, {2, 2}});
    const std::vector<TuningMode> isphdr = Branch({{0, 0}, {2, 2}, {3, 1}});
    const unsigned int            held   = GetParam() ? 1u : 0u;
    DemoRecord*                   first  = m_manager.GetModule_demo10_bps(video.data(), 2, nullptr);
    ASSERT_NE(nullptr, first);
    ParameterModule* module = ModuleOf(first);
    EXPECT_EQ(held, module->GetReferenceCount());
    // A re-fetch of the same instance through `previous` never lets its mode go idle.
    DemoRecord* again = m_manager.GetModule_demo10_bps(isphdr.data(), 3, first);
    EXPECT_EQ(first, again);
    EXPECT_EQ(held, module->GetReferenceCount());
    // `previous` is given back also when the look-up fails at once.
    EXPECT_EQ(nullptr, m_manager.GetModule(nullptr, video.data(), 2, ModuleOf(again)));
    EXPECT_EQ(0u, module->GetReferenceCount());
    EXPECT_EQ(0u, m_log.Count("Attempt to release"));

    DemoRecord* last = m_manager.GetModule_demo10_bps(video.data(), 2, nullptr);
    EXPECT_EQ(nullptr, m_manager.GetModule("nosuch", video.data(), 2, ModuleOf(last)));
    EXPECT_EQ(0u, module->GetReferenceCount()) << "a miss takes no reference and gives `previous` back";
    last->Release();
    EXPECT_EQ(held, m_log.Count("Attempt to release unreferenced module.  Mode: 2, SubMode: 2, Module demo10_bps\n"));
}

INSTANTIATE_TEST_SUITE_P(BufferAndFile, StoreLookup, testing::Bool(), [](const testing::TestParamInfo<bool>& info) {
    return info.param ? "FileMode" : "BufferMode";
});
} // namespace
