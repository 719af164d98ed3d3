// File mode: modes load when a branch first asks for them, the recency list keeps the bound
// (17, but at least 5) by unloading idle modes, and a module that fails to load makes the file
// be read again, at most twice per request.
#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <string>

#include "logcapture.h"
#include "runtimefixture.h"

namespace
{
using storetest::BpsGain;
using storetest::Branch;
using storetest::DemoModule;
using storetest::DemoRecord;
using storetest::MakeMode;
using storetest::ModuleOf;
using storetest::NoLinkSetManager;
using storetest::TempFile;
using testsupport::LogCapture;
using tuningfile::TuningFileModel;

constexpr uint16_t UsecaseCount = 20;

// The root and 20 use cases, each with its own "demo10_bps" of gain 100 + its number. The
// first use case is pinned.
TuningFileModel UsecasesModel()
{
    TuningFileModel model;
    model.modes   = {MakeMode(0, 0, 0)};
    model.modules = {DemoModule("demo10_bps", 0, 1.0f)};
    for (uint16_t usecase = 0; usecase < UsecaseCount; ++usecase)
    {
        model.modes.push_back(MakeMode(2, usecase, 0, tuningfile::NoLink, 0 == usecase));
        model.modules.push_back(DemoModule("demo10_bps", usecase + 1u, 100.0f + usecase));
    }
    return model;
}

std::vector<TuningMode> Usecase(uint16_t usecase)
{
    return Branch({{0, 0}, {2, usecase}});
}

class StoreLazyLoad : public testing::Test
{
protected:
    void Load(const TuningFileModel& model)
    {
        ASSERT_TRUE(storetest::LoadImage(m_manager, storetest::Written(model), true, m_file)) << m_manager.m_errorText;
        m_log.Clear();
    }

    ModeEntry* Mode(uint32_t id) { return m_manager.GetModeEntry(id); }

    ParameterModule* ModuleIn(uint32_t id, char const* name = "demo10_bps") { return Mode(id)->m_modules[name].module; }

    // Fetches and gives back the module of each use case in turn.
    void Visit(uint16_t first, uint16_t last)
    {
        for (uint16_t usecase = first; usecase <= last; ++usecase)
        {
            EXPECT_EQ(100.0f + usecase, BpsGain(m_manager, Usecase(usecase)));
        }
    }

    bool Listed(uint32_t id)
    {
        const PList<ModeEntry*>& list = m_manager.m_loadedModes;
        return std::find(list.items, list.items + list.count, Mode(id)) != list.items + list.count;
    }

    LogCapture       m_log;
    TempFile         m_file{"lazy"};
    NoLinkSetManager m_manager;
};

TEST_F(StoreLazyLoad, AModeLoadsWhenABranchFirstAsksForIt)
{
    Load(UsecasesModel());
    EXPECT_TRUE(ModuleIn(0)->Loaded);
    EXPECT_TRUE(ModuleIn(1)->Loaded) << "a pinned mode loads with the file";
    EXPECT_FALSE(Mode(2)->m_loaded);
    EXPECT_FALSE(ModuleIn(2)->Loaded);

    m_manager.m_logDebug = true;
    EXPECT_EQ(101.0f, BpsGain(m_manager, Usecase(1)));
    EXPECT_TRUE(Mode(2)->m_loaded);
    EXPECT_TRUE(ModuleIn(2)->Loaded);
    EXPECT_FALSE(ModuleIn(3)->Loaded);
    EXPECT_EQ(1u, m_log.Count("Loading modules (GetModule:demo10_bps:0.0|2.1): 0.0|2.1\n"));
    EXPECT_EQ(nullptr, m_manager.m_symbolTable->m_file->m_file) << "the file is open only during a walk";
    EXPECT_EQ(0, m_manager.m_symbolTable->m_file->m_references);
    ASSERT_EQ(1u, m_manager.m_loadedModes.count);
    EXPECT_EQ(Mode(2), m_manager.m_loadedModes[0]);

    // The live tuning link pulls a mode in by branch.
    const std::vector<TuningMode> third = Usecase(3);
    EXPECT_EQ(Mode(4), m_manager.GetModeEntry(third.data(), 2));
    EXPECT_TRUE(ModuleIn(4)->Loaded);
    EXPECT_EQ(1u, m_log.Count("Loading modules (GetModule:Ravlen->GetModeEntry:0.0|2.3): 0.0|2.3\n"));
}

TEST_F(StoreLazyLoad, UnloadingTakesTheDeepestModeAndLeavesPinnedOnes)
{
    Load(UsecasesModel());
    const std::vector<TuningMode> second = Usecase(2);
    DemoRecord*                   held   = m_manager.GetModule_demo10_bps(second.data(), 2, nullptr);
    ASSERT_NE(nullptr, held);
    EXPECT_TRUE(m_manager.UnloadMode(second.data(), 2));
    EXPECT_FALSE(Mode(3)->m_loaded);
    EXPECT_FALSE(ModuleOf(held)->Loaded);
    EXPECT_EQ(0u, ModuleOf(held)->GetReferenceCount());
    EXPECT_EQ(1u, m_log.Count("Unloading referenced module demo10_bps, Mode: 0.0|2.2, Ref count: 1\n"));
    EXPECT_EQ(1u, m_log.Count("Unloading mode with 1 unreleased modules: 0.0|2.2\n"));
    EXPECT_EQ(1u, m_log.Count("ReleaseReferences called with unreleased module: demo10_bps, RefCnt: 1\n"));
    EXPECT_FALSE(Listed(3));
    EXPECT_EQ(102.0f, BpsGain(m_manager, second)) << "the next request loads it again";

    // The root, Default and pinned modes are silently kept.
    EXPECT_TRUE(m_manager.UnloadMode(nullptr, 0));
    const std::vector<TuningMode> pinned = Usecase(0);
    EXPECT_TRUE(m_manager.UnloadMode(pinned.data(), 2));
    EXPECT_TRUE(ModuleIn(0)->Loaded && ModuleIn(1)->Loaded);
    const std::vector<TuningMode> missing = Usecase(77);
    EXPECT_FALSE(m_manager.UnloadMode(missing.data(), 2));
}

TEST_F(StoreLazyLoad, BufferModeRefusesToLoadOrUnloadModes)
{
    NoLinkSetManager     buffered;
    std::vector<uint8_t> image = storetest::Written(UsecasesModel());
    ASSERT_TRUE(buffered.LoadBinaryParameters(image.data(), image.size()));
    const std::vector<TuningMode> first = Usecase(1);
    EXPECT_FALSE(buffered.LoadMode(first.data(), 2, "demo10_bps"));
    EXPECT_STREQ("LoadMode is not valid in buffer mode", buffered.m_errorText);
    EXPECT_TRUE(buffered.UnloadMode(first.data(), 2)) << "true whenever a root exists";
    EXPECT_STREQ("UnloadMode is not valid in buffer mode", buffered.m_errorText);
    EXPECT_TRUE(buffered.GetModeEntry(2u)->m_modules["demo10_bps"].module->Loaded);

    NoLinkSetManager empty;
    EXPECT_FALSE(empty.LoadMode(first.data(), 2, "demo10_bps"));
    EXPECT_STREQ("LoadMode called with no binary file loaded", empty.m_errorText);
    EXPECT_FALSE(empty.UnloadMode(first.data(), 2));
}

TEST_F(StoreLazyLoad, TheEighteenthIdleModeEvictsTheLeastRecentlyUsed)
{
    Load(UsecasesModel());
    Visit(1, 17);
    EXPECT_EQ(17u, m_manager.m_loadedModes.count);
    EXPECT_TRUE(Mode(2)->m_loaded);
    Visit(18, 18);
    EXPECT_EQ(17u, m_manager.m_loadedModes.count);
    EXPECT_FALSE(Mode(2)->m_loaded) << "use case 1 was the least recently used";
    EXPECT_FALSE(ModuleIn(2)->Loaded);
    EXPECT_TRUE(Mode(3)->m_loaded);
    EXPECT_EQ(Mode(19), m_manager.m_loadedModes[0]);

    // A request for a loaded mode moves it to the front; the next eviction passes it over.
    Visit(2, 2);
    EXPECT_EQ(Mode(3), m_manager.m_loadedModes[0]);
    Visit(19, 19);
    EXPECT_TRUE(Mode(3)->m_loaded);
    EXPECT_FALSE(Mode(4)->m_loaded);
}

TEST_F(StoreLazyLoad, EvictionPassesOverActiveModesAndDropsPinnedOnesFromTheList)
{
    Load(UsecasesModel());
    const std::vector<TuningMode> first = Usecase(1);
    DemoRecord*                   held  = m_manager.GetModule_demo10_bps(first.data(), 2, nullptr);
    Visit(2, 18);
    EXPECT_EQ(18u, m_manager.m_loadedModes.count) << "an active mode keeps the list over its bound";
    EXPECT_TRUE(Mode(2)->m_loaded);
    EXPECT_TRUE(Listed(2));
    held->Release();
    EXPECT_TRUE(Mode(2)->m_loaded) << "a release does not evict by itself";
    Visit(18, 18);
    EXPECT_EQ(17u, m_manager.m_loadedModes.count);
    EXPECT_FALSE(Mode(2)->m_loaded);

    // A pinned mode that entered the list leaves it when it is past the bound, loaded.
    Visit(0, 0);
    EXPECT_TRUE(Listed(1));
    Visit(2, 18);
    EXPECT_FALSE(Listed(1));
    EXPECT_TRUE(Mode(1)->m_loaded);
    EXPECT_TRUE(ModuleIn(1)->Loaded);
}

TEST_F(StoreLazyLoad, ASmallBoundStillKeepsFiveModes)
{
    Load(UsecasesModel());
    m_manager.m_maxLoadedModes = 3;
    Visit(1, 8);
    EXPECT_EQ(5u, m_manager.m_loadedModes.count);
    EXPECT_FALSE(Mode(4)->m_loaded) << "use case 3";
    EXPECT_TRUE(Mode(5)->m_loaded);

    // Without a bound nothing is evicted.
    m_manager.m_maxLoadedModes = 0;
    Visit(9, 19);
    EXPECT_EQ(5u, m_manager.m_loadedModes.count) << "without eviction the list is only kept short";
    EXPECT_TRUE(Mode(5)->m_loaded);
}

TEST_F(StoreLazyLoad, ActiveModesAreTheDeepestWithReferences)
{
    TuningFileModel model;
    model.modes   = {MakeMode(0, 0, 0), MakeMode(2, 2, 0), MakeMode(3, 1, 1), MakeMode(2, 1, 0)};
    model.modules = {DemoModule("demo10_bps", 0, 1.0f), DemoModule("demo10_bps", 1, 2.0f),
                     DemoModule("demo10_ife", 2, 3.0f), DemoModule("demo10_bps", 3, 4.0f)};
    Load(model);
    char active[256] = "x";
    m_manager.GetActiveModes(active, sizeof(active));
    EXPECT_STREQ("", active);

    const std::vector<TuningMode> isphdr   = Branch({{0, 0}, {2, 2}, {3, 1}});
    const std::vector<TuningMode> snapshot = Branch({{0, 0}, {2, 1}});
    DemoRecord*                   video    = m_manager.GetModule_demo10_bps(isphdr.data(), 3, nullptr);
    DemoRecord*                   hdr      = m_manager.GetModule_demo10_ife(isphdr.data(), 3, nullptr);
    DemoRecord*                   snap     = m_manager.GetModule_demo10_bps(snapshot.data(), 2, nullptr);
    m_manager.GetActiveModes(active, sizeof(active));
    EXPECT_STREQ("Default|Usecase.Snapshot;Default|Usecase.Video|Feature1.ISPHDR", active);
    hdr->Release();
    snap->Release();
    m_manager.GetActiveModes(active, sizeof(active));
    EXPECT_STREQ("Default|Usecase.Video", active);
    video->Release();
}

TEST_F(StoreLazyLoad, AModuleThatFailsToLoadReloadsTheFileAtMostTwice)
{
    TuningFileModel model = UsecasesModel();
    // Use case 1's data ends after its gain: the record cannot be read.
    model.modules[2].data = tuningfile::DataBuilder().Record(tuningfile::DataBuilder().I32(1).I32(0).I32(0)).F32(9.0f);
    Load(model);
    m_manager.m_logDebug = true;
    EXPECT_EQ(1.0f, BpsGain(m_manager, Usecase(1))) << "the root's module stands";
    EXPECT_EQ(2u, m_log.Count("Reloading binary file " + m_file.Path() + "\n"));
    EXPECT_EQ(1u, m_log.Count("Failed to load module demo10_bps, path: 0.0|2.1, skipping\n"));
    // Two walks and the look-up's own try each fail on the gamma table, and then the label's
    // and the list's counts are not tried, with a line each.
    EXPECT_EQ(3u, m_log.Count("ReadBuffer failed, read 0 bytes, expected 16 bytes\n"));
    EXPECT_EQ(3u * 2u, m_log.Count("Failed to read symbol table entry\n"));
    EXPECT_FALSE(m_manager.GetModeEntry(2u)->m_loaded);

    m_log.Clear();
    EXPECT_EQ(102.0f, BpsGain(m_manager, Usecase(2))) << "other modes load as before";
    EXPECT_EQ(0u, m_log.Count("Reloading binary file"));
}

TEST_F(StoreLazyLoad, InstancesThatReloadsReplaceLiveUntilTheCallThatReplacedThemEnds)
{
    TuningFileModel model = UsecasesModel();
    model.modules[2].data = tuningfile::DataBuilder().Record(tuningfile::DataBuilder().I32(1).I32(0).I32(0)).F32(9.0f);
    model.modules.push_back(DemoModule("demo10_ife", 0, 3.0f));
    Load(model);
    m_manager.m_logDebug                 = true;
    const std::vector<TuningMode> branch = Usecase(1);

    // Each look-up reloads twice: the second reload retires the generation that `previous`
    // belongs to, which is given back only at the end of the call.
    ParameterModule* previous = m_manager.GetModule("demo10_bps", branch.data(), 2, nullptr);
    ASSERT_NE(nullptr, previous);
    ParameterModule* next = m_manager.GetModule("demo10_bps", branch.data(), 2, previous);
    ASSERT_NE(nullptr, next);
    EXPECT_NE(previous, next);
    EXPECT_EQ(4u, m_log.Count("Reloading binary file " + m_file.Path()));
    next->Release();

    // The root listing reloads for each name; the names of its rows outlive those instances.
    PList<ParameterParserInfo> rows(1);
    ASSERT_TRUE(m_manager.GetInfo(branch.data(), 2, nullptr, rows));
    ASSERT_EQ(2u, rows.count);
    std::set<std::string> names;
    for (uint32_t index = 0; index < rows.count; ++index)
    {
        names.insert(rows[index].Name);
        EXPECT_STREQ("Default", rows[index].Value) << "the module's own mode";
    }
    EXPECT_EQ((std::set<std::string>{"demo10_bps", "demo10_ife"}), names);
}

TEST_F(StoreLazyLoad, ASharedInstanceStaysLoadedWhenTheModeThatBorrowsItUnloads)
{
    TuningFileModel model;
    model.modes   = {MakeMode(0, 0, 0), MakeMode(2, 1, 0), MakeMode(2, 2, 0)};
    model.modules = {DemoModule("demo10_bps", 0, 1.0f), DemoModule("demo10_bps", 1, 5.0f),
                     DemoModule("demo10_bps", 2, 5.0f)};
    Load(model);
    EXPECT_EQ(ModuleIn(1), ModuleIn(2)) << "equal entries share one instance";
    const std::vector<TuningMode> owner    = Usecase(1);
    const std::vector<TuningMode> borrower = Usecase(2);
    EXPECT_EQ(5.0f, BpsGain(m_manager, borrower));
    EXPECT_TRUE(ModuleIn(2)->Loaded);
    EXPECT_TRUE(m_manager.UnloadMode(borrower.data(), 2));
    EXPECT_TRUE(ModuleIn(2)->Loaded) << "only the owner mode unloads it";
    EXPECT_EQ(5.0f, BpsGain(m_manager, owner));
    EXPECT_TRUE(m_manager.UnloadMode(owner.data(), 2));
    EXPECT_FALSE(ModuleIn(1)->Loaded);
    // The borrowing mode still counts as loaded; the look-up loads the module back directly.
    EXPECT_EQ(5.0f, BpsGain(m_manager, borrower));
    EXPECT_TRUE(ModuleIn(1)->Loaded);
}
} // namespace
