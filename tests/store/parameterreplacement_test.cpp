// Swapping parameters under running readers: a reload of the bound file and an update from a
// buffer keep the records that readers hold readable until the next reload, and leave no mode
// table or recency entry on a freed object.
#include <gtest/gtest.h>

#include <set>

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

const std::vector<TuningMode> Video    = Branch({{0, 0}, {2, 2}});
const std::vector<TuningMode> Isphdr   = Branch({{0, 0}, {2, 2}, {3, 1}});
const std::vector<TuningMode> Snapshot = Branch({{0, 0}, {2, 1}});

// Root, Video with ISPHDR below it, and Snapshot; "demo10_bps" in the root, Video and Snapshot.
TuningFileModel SwapModel(float root, float video, float snapshot)
{
    TuningFileModel model;
    model.modes   = {MakeMode(0, 0, 0), MakeMode(2, 2, 0), MakeMode(3, 1, 1), MakeMode(2, 1, 0)};
    model.modules = {DemoModule("demo10_bps", 0, root), DemoModule("demo10_bps", 1, video),
                     DemoModule("demo10_bps", 3, snapshot)};
    return model;
}

class StoreReplacement : public testing::Test
{
protected:
    void Load(const TuningFileModel& model, bool fileMode)
    {
        ASSERT_TRUE(storetest::LoadImage(m_manager, storetest::Written(model), fileMode, m_file))
            << m_manager.m_errorText;
        m_manager.m_logDebug = true;
        m_log.Clear();
    }

    // A new file on disk, with a later modification time, as a tool would write it.
    void Rewrite(const TuningFileModel& model, long seconds)
    {
        m_file.Store(storetest::Written(model));
        m_file.ShiftModifiedTime(seconds);
    }

    bool Update(const TuningFileModel& model)
    {
        std::vector<uint8_t> image = storetest::Written(model);
        return m_manager.UpdateBinaryParameters(image.data(), image.size());
    }

    std::set<ModeEntry const*> PresentModes()
    {
        std::set<ModeEntry const*> modes;
        for (uint32_t id = 0; id < m_manager.m_modeCount; ++id)
        {
            modes.insert(m_manager.m_modes[id]);
        }
        return modes;
    }

    LogCapture       m_log;
    TempFile         m_file{"replacement"};
    NoLinkSetManager m_manager;
};

TEST_F(StoreReplacement, AChangedFileIsReloadedAndHeldRecordsStayUntilTheNextReload)
{
    Load(SwapModel(1.0f, 2.0f, 3.0f), true);
    DemoRecord* first = m_manager.GetModule_demo10_bps(Video.data(), 2, nullptr);
    ASSERT_NE(nullptr, first);
    std::set<ModeEntry const*> firstTree = PresentModes();

    // The change shows when a walk next reads the file: Snapshot is not loaded yet.
    Rewrite(SwapModel(1.0f, 20.0f, 30.0f), 10);
    EXPECT_EQ(30.0f, BpsGain(m_manager, Snapshot));
    EXPECT_EQ(1u, m_log.Count("Reloading binary file " + m_file.Path() + "\n"));
    EXPECT_EQ(20.0f, BpsGain(m_manager, Video));
    EXPECT_EQ(2.0f, first->gain) << "the held record keeps its values";
    EXPECT_EQ(3u, m_manager.m_replacedModules.size());
    // Its mode went out of service with it and still counts the reference, which a look-up
    // gives back as `previous`.
    EXPECT_EQ(1u, ModuleOf(first)->GetReferenceCount());
    DemoRecord* renewed = m_manager.GetModule_demo10_bps(Video.data(), 2, first);
    EXPECT_EQ(20.0f, renewed->gain);
    EXPECT_EQ(0u, ModuleOf(first)->GetReferenceCount());
    renewed->Release();
    EXPECT_EQ(0u, m_log.Count("Attempt to release"));

    // The next reload frees that generation; the recency list keeps no mode of it.
    std::set<ModeEntry const*> secondTree = PresentModes();
    DemoRecord*                second     = m_manager.GetModule_demo10_bps(Video.data(), 2, nullptr);
    Rewrite(SwapModel(1.0f, 200.0f, 300.0f), 20);
    EXPECT_TRUE(m_manager.UnloadMode(Snapshot.data(), 2));
    EXPECT_EQ(300.0f, BpsGain(m_manager, Snapshot));
    EXPECT_EQ(2u, m_log.Count("Reloading binary file " + m_file.Path() + "\n"));
    EXPECT_EQ(20.0f, second->gain);
    second->Release();
    std::set<ModeEntry const*> thirdTree = PresentModes();
    for (uint32_t index = 0; index < m_manager.m_loadedModes.count; ++index)
    {
        ModeEntry const* mode = m_manager.m_loadedModes[index];
        EXPECT_EQ(0u, firstTree.count(mode)) << "a mode of the freed tree at " << index;
        EXPECT_TRUE((0 != secondTree.count(mode)) || (0 != thirdTree.count(mode)));
    }
}

TEST_F(StoreReplacement, ExplicitReloads)
{
    Load(SwapModel(1.0f, 2.0f, 3.0f), false);
    EXPECT_FALSE(m_manager.ReloadBinaryParameters(false));
    EXPECT_STREQ("ReloadBinaryParameters called with empty file name", m_manager.m_errorText);

    NoLinkSetManager fileManager;
    ASSERT_TRUE(storetest::LoadImage(fileManager, storetest::Written(SwapModel(1.0f, 2.0f, 3.0f)), true, m_file));
    DemoRecord* held = fileManager.GetModule_demo10_bps(Video.data(), 2, nullptr);
    ASSERT_TRUE(fileManager.ReloadBinaryParameters(true));
    EXPECT_FALSE(fileManager.IsFileMode());
    EXPECT_STREQ("", fileManager.m_fileName);
    EXPECT_TRUE(fileManager.GetModeEntry(3u)->m_modules["demo10_bps"].module->Loaded) << "buffer mode loads all";
    EXPECT_EQ(2.0f, held->gain);
    held->Release(); // its manager has no file any more: nothing is counted
    EXPECT_FALSE(fileManager.ReloadBinaryParameters(true));

    // A reload that fails leaves no tree.
    NoLinkSetManager lostFile;
    TempFile         gone("gone");
    ASSERT_TRUE(storetest::LoadImage(lostFile, storetest::Written(SwapModel(1.0f, 2.0f, 3.0f)), true, gone));
    unlink(gone.Path().c_str());
    EXPECT_FALSE(lostFile.ReloadBinaryParameters(false));
    EXPECT_EQ(nullptr, lostFile.GetModule_demo10_bps(Video.data(), 2, nullptr));
    EXPECT_EQ(1u, m_log.Count("GetModule demo10_bps called with no binary loaded\n"));
}

TEST_F(StoreReplacement, AnUpdateSwapsInTheModulesOfABuffer)
{
    Load(SwapModel(1.0f, 2.0f, 3.0f), true);
    DemoRecord*     held = m_manager.GetModule_demo10_bps(Video.data(), 2, nullptr);
    TuningFileModel update;
    update.modes   = {MakeMode(0, 0, 0), MakeMode(2, 2, 0)};
    update.modules = {DemoModule("demo10_bps", 0, 1.5f), DemoModule("demo10_bps", 1, 2.5f)};
    EXPECT_TRUE(Update(update));
    EXPECT_FALSE(m_manager.IsFileMode());
    EXPECT_EQ(1u, m_log.Count("Reloading binary file " + m_file.Path() + " in buffer mode\n"));
    EXPECT_EQ(1.5f, BpsGain(m_manager, Branch({{0, 0}})));
    EXPECT_EQ(2.5f, BpsGain(m_manager, Video));
    EXPECT_EQ(3.0f, BpsGain(m_manager, Snapshot)) << "a name that the update does not bring stays";
    EXPECT_EQ(2.0f, held->gain);
    held->Release();

    // A buffer that does not load changes nothing, and the update still answers true.
    std::vector<uint8_t> damaged = storetest::Written(update);
    damaged[0]                   = 'Y';
    EXPECT_TRUE(m_manager.UpdateBinaryParameters(damaged.data(), damaged.size()));
    EXPECT_STREQ("UpdateBinaryParameters failed to load parameters", m_manager.m_errorText);
    EXPECT_EQ(2.5f, BpsGain(m_manager, Video));
    EXPECT_EQ(2u, m_manager.m_updateSetManagers.size());
    EXPECT_FALSE(m_manager.UpdateParameters(nullptr));

    NoLinkSetManager unloaded;
    EXPECT_FALSE(unloaded.UpdateBinaryParameters(damaged.data(), damaged.size()));
    EXPECT_STREQ("UpdateBinaryParameters failed, original parameter load is invalid", unloaded.m_errorText);
}

TEST_F(StoreReplacement, AnUpdateFromAFileModeManagerEndsFileModeEvenWhenTheBufferFails)
{
    Load(SwapModel(1.0f, 2.0f, 3.0f), true);
    std::vector<uint8_t> damaged = storetest::Written(SwapModel(9.0f, 9.0f, 9.0f));
    damaged.resize(64);
    EXPECT_TRUE(m_manager.UpdateBinaryParameters(damaged.data(), damaged.size()));
    EXPECT_STREQ("", m_manager.m_fileName);
    EXPECT_EQ(2.0f, BpsGain(m_manager, Video));
}

TEST_F(StoreReplacement, TheFirstChildOfANodeTakesTheModulesOfItsSiblings)
{
    Load(SwapModel(1.0f, 2.0f, 3.0f), false);
    EXPECT_TRUE(Update(SwapModel(1.0f, 20.0f, 30.0f)));
    // Video came first in the update's tree: Snapshot's module went there too, last.
    EXPECT_EQ(30.0f, BpsGain(m_manager, Video));
    EXPECT_EQ(3.0f, BpsGain(m_manager, Snapshot));
}

TEST_F(StoreReplacement, NamesNewToAModeAndSharedInstancesStayValid)
{
    // Video and ISPHDR share one instance, owned by Video.
    TuningFileModel model = SwapModel(1.0f, 5.0f, 3.0f);
    model.modules.push_back(DemoModule("demo10_bps", 2, 5.0f));
    Load(model, false);
    ParameterModule* shared = m_manager.GetModeEntry(2u)->m_modules["demo10_bps"].module;
    EXPECT_EQ(m_manager.GetModeEntry(1u)->m_modules["demo10_bps"].module, shared);

    // The update replaces Video's instance and brings "demo10_ife", which no mode held.
    TuningFileModel update;
    update.modes   = {MakeMode(0, 0, 0), MakeMode(2, 2, 0)};
    update.modules = {DemoModule("demo10_bps", 0, 1.0f), DemoModule("demo10_bps", 1, 6.0f),
                      DemoModule("demo10_ife", 1, 60.0f)};
    EXPECT_TRUE(Update(update));
    EXPECT_EQ(6.0f, BpsGain(m_manager, Video));
    DemoRecord* ife = m_manager.GetModule_demo10_ife(Video.data(), 2, nullptr);
    ASSERT_NE(nullptr, ife);
    EXPECT_EQ(60.0f, ife->gain);
    // ISPHDR still holds the replaced instance, which outlives FreeReplacedParameters.
    EXPECT_EQ(5.0f, BpsGain(m_manager, Isphdr));
    m_manager.FreeReplacedParameters();
    EXPECT_EQ(5.0f, BpsGain(m_manager, Isphdr));
    EXPECT_EQ(1u, m_manager.m_replacedModules.size());
    EXPECT_EQ(60.0f, ife->gain);
}

TEST_F(StoreReplacement, AnInstanceThatArrivesTwiceIsMovedOnce)
{
    Load(SwapModel(1.0f, 2.0f, 3.0f), false);
    // Equal entries in Video and Snapshot: one instance in two tables of the update.
    EXPECT_TRUE(Update(SwapModel(1.0f, 7.0f, 7.0f)));
    EXPECT_EQ(7.0f, BpsGain(m_manager, Video));
    m_manager.FreeReplacedParameters();
    EXPECT_EQ(7.0f, BpsGain(m_manager, Video));
    EXPECT_EQ(3.0f, BpsGain(m_manager, Snapshot));
}
} // namespace
