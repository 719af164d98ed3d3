// The mode tree: how a file's mode section becomes the tree, how branches and paths find nodes,
// and the text forms of paths that the live tuning tool sees.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "logcapture.h"
#include "storefiles.h"

namespace
{
using storetest::MakeMode;
using storetest::ModeRecordAt;
using storetest::PutU32;
using storetest::Restamp;
using storetest::TempFile;
using storetest::TestSetManager;
using testsupport::LogCapture;
using tuningfile::Mode;
using tuningfile::NoLink;
using tuningfile::TuningFileModel;

std::vector<uint8_t> ModesImage(const std::vector<Mode>& modes)
{
    TuningFileModel model;
    model.modes = modes;
    return storetest::Written(model);
}

TuningMode Selector(uint32_t mode, uint16_t subMode)
{
    TuningMode selector;
    selector.mode    = mode;
    selector.subMode = subMode;
    return selector;
}

std::string ChildModes(ParameterSetManager& manager, char const* path, unsigned int size = 256)
{
    std::vector<unsigned char> out(size, 0xAA);
    unsigned int               length = manager.GetChildModes(path, out.data(), size);
    EXPECT_EQ(strlen(reinterpret_cast<char*>(out.data())) + 1, length);
    return reinterpret_cast<char*>(out.data());
}

std::string PathOf(ModeEntry const* mode, unsigned int size = 128)
{
    std::vector<char> out(size, '\0');
    mode->GetModePath(out.data(), size);
    return out.data();
}

class StoreModeTree : public testing::Test
{
protected:
    bool Load(const std::vector<uint8_t>& image)
    {
        return m_manager.LoadBinaryParameters(const_cast<uint8_t*>(image.data()), image.size());
    }

    LogCapture     m_log;
    TestSetManager m_manager;
};

TEST_F(StoreModeTree, WithoutAModeSectionOneDefaultNodeAnswersEveryBranch)
{
    ASSERT_TRUE(Load(ModesImage({})));
    ModeEntry* root = m_manager.m_rootMode;
    ASSERT_NE(nullptr, root);
    EXPECT_EQ(1u, m_manager.m_modeCount);
    EXPECT_TRUE(root->m_loaded);
    EXPECT_TRUE(root->m_pinned);
    EXPECT_EQ(root, m_manager.GetModeEntry(0u));
    EXPECT_EQ(nullptr, m_manager.GetModeEntry(1u));
    EXPECT_EQ(root, m_manager.GetModeEntry("0.0"));
    EXPECT_EQ(nullptr, m_manager.GetModeEntry("0.0|2.1"));
    // Element 0 stands for the root and is not looked at.
    TuningMode elsewhere = Selector(6, 3);
    EXPECT_EQ(root, m_manager.GetModeEntry(&elsewhere, 1));
    EXPECT_EQ(root, m_manager.GetModeEntry(static_cast<TuningMode const*>(nullptr), 4));
    EXPECT_EQ("0.0", PathOf(root));
    EXPECT_EQ("", ChildModes(m_manager, "0.0"));
}

TEST_F(StoreModeTree, ARunOfOneModeNumberMatchesAChainOfThatMode)
{
    const std::vector<TuningMode> twoFeatures = {Selector(0, 0), Selector(3, 1), Selector(3, 2)};
    struct Tree
    {
        std::vector<Mode>       modes;
        std::vector<TuningMode> branch;
        int                     expected; // id of the node found, -1 for none
    };
    const Tree trees[] = {
        {{MakeMode(0, 0, 0), MakeMode(3, 1, 0), MakeMode(3, 2, 1)}, twoFeatures, 2},
        {{MakeMode(0, 0, 0), MakeMode(3, 2, 0), MakeMode(3, 1, 1)}, twoFeatures, 2},
        {{MakeMode(0, 0, 0), MakeMode(3, 1, 0), MakeMode(4, 2, 1)}, twoFeatures, -1},
        // Three levels from a group of three: 3.1 is used twice, 3.9 never.
        {{MakeMode(0, 0, 0), MakeMode(3, 1, 0), MakeMode(3, 2, 1), MakeMode(3, 1, 2)},
         {Selector(0, 0), Selector(3, 1), Selector(3, 2), Selector(3, 9)},
         3},
    };
    for (const Tree& tree : trees)
    {
        TestSetManager             manager;
        const std::vector<uint8_t> image = ModesImage(tree.modes);
        ASSERT_TRUE(manager.LoadBinaryParameters(const_cast<uint8_t*>(image.data()), image.size()));
        ModeEntry* found = manager.GetModeEntry(tree.branch.data(), static_cast<unsigned int>(tree.branch.size()));
        if (tree.expected < 0)
        {
            EXPECT_EQ(nullptr, found);
        }
        else
        {
            ASSERT_NE(nullptr, found);
            EXPECT_EQ(static_cast<uint32_t>(tree.expected), found->m_id);
        }
    }
    // Grouping compares all 32 bits of the mode, matching only the low 16: 0x10003 is a step of
    // its own, which finds 3.2 below 3.1 as a second level.
    ASSERT_TRUE(Load(ModesImage(trees[0].modes)));
    const TuningMode split[] = {Selector(0, 0), Selector(3, 1), Selector(0x10003, 2)};
    ModeEntry*       found   = m_manager.GetModeEntry(split, 3);
    ASSERT_NE(nullptr, found);
    EXPECT_EQ(2u, found->m_id);
}

TEST_F(StoreModeTree, ALinkedModeSearchesItsTargetsChildrenOnly)
{
    // Snapshot links to Video; Snapshot's own child is listed but never found by a branch.
    ASSERT_TRUE(Load(ModesImage({MakeMode(0, 0, 0), MakeMode(2, 1, 0, 2), MakeMode(2, 2, 0), MakeMode(3, 1, 2),
                                 MakeMode(3, 5, 1), MakeMode(1, 3, 0)})));
    ModeEntry* isphdr = m_manager.GetModeEntry("0.0|2.2|3.1");
    ASSERT_NE(nullptr, isphdr);
    EXPECT_EQ(isphdr, m_manager.GetModeEntry("0.0|2.1|3.1"));
    EXPECT_EQ(nullptr, m_manager.GetModeEntry("0.0|2.1|3.5"));
    EXPECT_EQ("Feature1.MFHDRFusion", ChildModes(m_manager, "0.0|2.1"));
    EXPECT_EQ("Usecase.Snapshot,Usecase.Video,Sensor.3", ChildModes(m_manager, "0.0"));
    EXPECT_EQ("0.0|2.2|3.1", PathOf(isphdr));
    EXPECT_TRUE(isphdr->IsParent(m_manager.m_rootMode));
    EXPECT_FALSE(isphdr->IsParent(isphdr));
    EXPECT_FALSE(isphdr->IsParent(m_manager.GetModeEntry("0.0|2.1")));
}

TEST_F(StoreModeTree, DefaultAndSensorModesAreAlwaysLoadedAndPinned)
{
    TempFile file("pinning");
    file.Store(ModesImage({MakeMode(0, 0, 0), MakeMode(1, 3, 0), MakeMode(2, 2, 1), MakeMode(2, 1, 1, NoLink, true)}));
    m_manager.m_fileModeAllowed = true;
    ASSERT_TRUE(m_manager.LoadBinaryParameters(file.Path().c_str())) << m_manager.m_errorText;
    ModeEntry* sensor   = m_manager.GetModeEntry(1u);
    ModeEntry* video    = m_manager.GetModeEntry(2u);
    ModeEntry* snapshot = m_manager.GetModeEntry(3u);
    EXPECT_TRUE(sensor->m_loaded && sensor->m_pinned);
    EXPECT_FALSE(video->m_loaded || video->m_pinned);
    EXPECT_FALSE(snapshot->m_loaded);
    EXPECT_TRUE(snapshot->m_pinned) << "bit 0 of the record's flags";
}

TEST_F(StoreModeTree, ARecordNamedLikeItsParentIsASecondNameOfIt)
{
    ASSERT_TRUE(Load(ModesImage({MakeMode(0, 0, 0), MakeMode(2, 2, 0), MakeMode(2, 2, 1), MakeMode(3, 1, 2)})));
    ASSERT_EQ(4u, m_manager.m_modeCount);
    EXPECT_EQ(m_manager.m_modes[1], m_manager.m_modes[2]);
    EXPECT_EQ(m_manager.m_rootMode->m_firstChild, m_manager.m_rootMode->m_lastChild);
    ModeEntry* isphdr = m_manager.GetModeEntry("0.0|2.2|3.1");
    ASSERT_NE(nullptr, isphdr);
    EXPECT_EQ(m_manager.m_modes[1], isphdr->m_parent);
}

TEST_F(StoreModeTree, AnEmptyModeSectionLeavesNoRoot)
{
    TuningFileModel model;
    model.version              = {4, 0, 0};
    model.modes                = {MakeMode(0, 0, 0)};
    model.modules              = {storetest::MakeModule("tonemetry_abf34", 0, tuningfile::DataBuilder().U32(1))};
    std::vector<uint8_t> image = storetest::Written(model);
    PutU32(image, storetest::SectionEntryAt(image, ParameterSetManager::SectionModeTable) + 8, 32);
    Restamp(image);
    // The module has no mode to enter: the load fails, and what was read stays.
    ASSERT_FALSE(Load(image));
    EXPECT_STREQ("AddModule: m_rootMode is nullptr", m_manager.m_errorText);
    EXPECT_EQ(0u, m_manager.m_modeCount);
    EXPECT_EQ(nullptr, m_manager.m_rootMode);
    EXPECT_EQ(nullptr, m_manager.GetModeEntry("0.0"));
    EXPECT_EQ("", ChildModes(m_manager, "0.0"));
    // The module's mode is unknown: it gets an empty stand-in mode, which its entry owns.
    EXPECT_EQ(1u, m_log.Count("Failed to find ModeID 0 in mode table when creating ModuleData\n"));
    ModuleData* data = m_manager.m_symbolTable->m_modules[0];
    ASSERT_NE(nullptr, data->Mode);
    EXPECT_EQ(0u, data->Mode->m_mode.value);
    EXPECT_STREQ("0.0", data->ModePath);
}

TEST_F(StoreModeTree, AModeWhoseParentComesLaterStaysOutsideTheTree)
{
    std::vector<uint8_t> image =
        ModesImage({MakeMode(0, 0, 0), MakeMode(2, 2, 0), MakeMode(3, 1, 0), MakeMode(4, 1, 1)});
    PutU32(image, ModeRecordAt(image, 1) + 12, 2);
    Restamp(image);
    ASSERT_TRUE(Load(image)) << m_manager.m_errorText;
    ModeEntry* detached = m_manager.GetModeEntry(1u);
    ASSERT_NE(nullptr, detached);
    EXPECT_EQ(nullptr, detached->m_parent);
    EXPECT_EQ(nullptr, m_manager.GetModeEntry("0.0|2.2"));
    EXPECT_EQ(detached, m_manager.GetModeEntry(3u)->m_parent);
    EXPECT_EQ("Feature1.ISPHDR", ChildModes(m_manager, "0.0"));
}

TEST_F(StoreModeTree, LinkLoopsAndEmptyLinkSlotsEndTheWalk)
{
    const std::vector<Mode> modes = {MakeMode(0, 0, 0), MakeMode(2, 2, 0, 2), MakeMode(2, 1, 0), MakeMode(3, 1, 2)};
    std::vector<uint8_t>    loop  = ModesImage(modes);
    PutU32(loop, ModeRecordAt(loop, 2) + 16, 1);
    Restamp(loop);
    ASSERT_TRUE(Load(loop));
    EXPECT_EQ(nullptr, m_manager.GetModeEntry("0.0|2.2|3.1"));
    EXPECT_EQ(nullptr, m_manager.GetModeEntry("0.0|2.1|3.1"));

    // A link to a record that was refused points at an empty slot.
    std::vector<uint8_t> empty = ModesImage(modes);
    PutU32(empty, ModeRecordAt(empty, 2) + 12, 9);
    Restamp(empty);
    TestSetManager manager;
    EXPECT_FALSE(manager.LoadBinaryParameters(empty.data(), empty.size()));
    EXPECT_EQ(nullptr, manager.m_modes[2]);
    EXPECT_EQ(nullptr, manager.GetModeEntry("0.0|2.2|3.1"));
    EXPECT_NE(nullptr, manager.GetModeEntry("0.0|2.2"));
}

TEST_F(StoreModeTree, DeepAndWideTreesAreWalkedAndFreedWithoutRecursion)
{
    // A chain of alternating Feature1 modes, each the parent of the next, and a fan of as many
    // children of the root (sub-modes wrap at 16 bits). Deleting either recursively would run
    // the stack out.
    constexpr uint32_t Count = 250000;
    std::vector<Mode>  chain = {MakeMode(0, 0, 0)};
    std::vector<Mode>  fan   = {MakeMode(0, 0, 0)};
    for (uint32_t id = 1; id < Count; ++id)
    {
        chain.push_back(MakeMode(3, static_cast<uint16_t>(1 + id % 2), id - 1));
        fan.push_back(MakeMode(3, static_cast<uint16_t>(id), 0));
    }
    struct Shape
    {
        const std::vector<Mode>& modes;
        char const*              lastPath;
    };
    for (const Shape& shape :
         {Shape{chain, "0.0|3.2|3.1|3.2|3.1|3.2|3.1|3.2|3.1|3.2|3.1|3.2"}, Shape{fan, "0.0|3.53391"}})
    {
        TestSetManager             manager;
        const std::vector<uint8_t> image = ModesImage(shape.modes);
        ASSERT_TRUE(manager.LoadBinaryParameters(const_cast<uint8_t*>(image.data()), image.size()));
        ModeEntry* last = manager.GetModeEntry(Count - 1);
        ASSERT_NE(nullptr, last);
        EXPECT_EQ(shape.lastPath, PathOf(last, 48));
    }
}

TEST_F(StoreModeTree, ModePathsAreCutAtTheirSize)
{
    ASSERT_TRUE(Load(ModesImage({MakeMode(0, 0, 0), MakeMode(2, 2, 0), MakeMode(3, 1, 1)})));
    ModeEntry* isphdr = m_manager.GetModeEntry(2u);
    EXPECT_EQ("0.0|2", PathOf(isphdr, 6));
    EXPECT_EQ("0.0|", PathOf(isphdr, 5));
    char out[8] = "x";
    isphdr->GetModePath(out, sizeof(out));
    EXPECT_STREQ("x|0.0|2", out) << "the caller passes an empty text";
}

TEST_F(StoreModeTree, ChildModesByNameCutAtTheirSize)
{
    ASSERT_TRUE(Load(
        ModesImage({MakeMode(0, 0, 0), MakeMode(2, 1, 0), MakeMode(5, 3, 0), MakeMode(6, 40, 0), MakeMode(0, 0, 1)})));
    EXPECT_EQ("Usecase.Snapshot,Scene.Beach,Effect.40", ChildModes(m_manager, "0.0"));
    EXPECT_EQ("Default", ChildModes(m_manager, "0.0|2.1"));
    EXPECT_EQ("Usecase.Snapshot,Scene.Beach,Effect.40", ChildModes(m_manager, "9.9")) << "table entry 0";
    EXPECT_EQ("Usecase.Snapshot,Scene.", ChildModes(m_manager, "0.0", 24));
    EXPECT_EQ(1u, m_log.Count("Insufficient space in buffer to write string: Beach\n"));
    EXPECT_EQ(0u, m_manager.GetChildModes("0.0", nullptr, 10));
}

TEST(StoreModePaths, NamesAndNumbers)
{
    EXPECT_EQ(2u, ParameterSetManager::GetModeIndex("usecase"));
    EXPECT_EQ(6u, ParameterSetManager::GetModeIndex("EFFECT"));
    EXPECT_EQ(0u, ParameterSetManager::GetModeIndex("nosuch"));
    EXPECT_EQ(0u, ParameterSetManager::GetModeIndex("Use"));
    EXPECT_EQ(0u, ParameterSetManager::GetModeIndex(nullptr));
    EXPECT_EQ(3u, ParameterSetManager::GetSubModeIndex(1, "3"));
    EXPECT_EQ(0u, ParameterSetManager::GetSubModeIndex(1, "x"));
    EXPECT_EQ(3u, ParameterSetManager::GetSubModeIndex(5, "beach"));
    EXPECT_EQ(99u, ParameterSetManager::GetSubModeIndex(5, "99")) << "digits are not checked";
    EXPECT_EQ(10u, ParameterSetManager::GetSubModeIndex(4, "VSPPostFusion"));
    EXPECT_EQ(0u, ParameterSetManager::GetSubModeIndex(4, nullptr));
    EXPECT_STREQ("IdealRawReprocess", ModeEntry::GetSubModeName(2, 7));
    EXPECT_EQ(nullptr, ModeEntry::GetSubModeName(3, 7));
    EXPECT_STREQ("BestShot", ModeEntry::GetSubModeName(5, 20));
    EXPECT_STREQ("Whiteboard", ModeEntry::GetSubModeName(6, 11));
    EXPECT_EQ(nullptr, ModeEntry::GetModeName(7));
}

TEST(StoreModePaths, ShorthandOfNamedPaths)
{
    struct Case
    {
        char const*  path;
        unsigned int size;
        char const*  expected;
    };
    const Case cases[] = {
        {"Usecase.Video|Feature1.ADRC", 64, "2.2|3.2"},
        {"Default|Sensor.3|Scene.NightPortrait", 64, "0|1.3|5.14"},
        {"usecase.snapshot|effect.", 64, "2.1|6"},
        {"Usecase.Video||Scene.Night", 64, "2.2|5.5"}, // an empty element is passed over
        {"Usecase.Video|Feature1.ADRC", 6, "2.2|3"},
        {"", 8, ""},
    };
    LogCapture     log;
    TestSetManager manager;
    for (const Case& item : cases)
    {
        char out[64];
        memset(out, 'x', sizeof(out));
        manager.GetModeShorthand(item.path, out, item.size);
        EXPECT_STREQ(item.expected, out) << item.path;
    }
}

TEST(StoreModePaths, NamedTextOfNumericPaths)
{
    struct Case
    {
        char const* paths;
        char const* expected;
    };
    const Case cases[] = {
        {"0.0|2.1", "Default|Usecase.Snapshot"},
        {"1.3", "Sensor.3"},
        {"", ""},
        {"0.0|2.9;0.0|6.3", "Default|Usecase.9;Default|Effect.Negative"},
        {"0.7|9.1", "Default|.1"},
    };
    for (const Case& item : cases)
    {
        char out[128] = "previous";
        ParameterSetManager::GetRavlenModesString(item.paths, out, sizeof(out));
        EXPECT_STREQ(item.expected, out) << item.paths;
    }
    char cut[12];
    ParameterSetManager::GetRavlenModesString("0.0|2.1", cut, sizeof(cut));
    EXPECT_STREQ("Default|Use", cut);
}

TEST(StoreModePaths, BranchesFromAndToNumericPaths)
{
    PList<TuningMode> branch;
    EXPECT_TRUE(ParameterSetManager::GetModeBranchFromPath("0.0|2.1|3.12", branch));
    ASSERT_EQ(3u, branch.count);
    EXPECT_EQ(3u, branch[2].mode);
    EXPECT_EQ(12u, branch[2].subMode);
    char out[32] = "";
    ParameterSetManager::GetPathFromModeBranch(branch.items, branch.count, out, sizeof(out));
    EXPECT_STREQ("0.0|2.1|3.12", out);

    // A bad character ends the parse; what came before stays.
    PList<TuningMode> partial;
    EXPECT_FALSE(ParameterSetManager::GetModeBranchFromPath("0.0|x.1|2.2", partial));
    EXPECT_EQ(1u, partial.count);
    PList<TuningMode> none;
    EXPECT_FALSE(ParameterSetManager::GetModeBranchFromPath("|0.0", none));
    EXPECT_FALSE(ParameterSetManager::GetModeBranchFromPath(nullptr, none));

    // Nine characters per element: the tenth is skipped and the rest parsed as the next one.
    PList<TuningMode> cut;
    EXPECT_TRUE(ParameterSetManager::GetModeBranchFromPath("0000000003.4|5.6", cut));
    ASSERT_EQ(3u, cut.count);
    EXPECT_EQ(0u, cut[0].mode);
    EXPECT_EQ(0u, cut[1].mode);
    EXPECT_EQ(4u, cut[1].subMode);
    EXPECT_EQ(5u, cut[2].mode);
    EXPECT_EQ(6u, cut[2].subMode);

    // Printing takes the low 16 bits of the mode, and appends.
    const TuningMode wide[]   = {Selector(0x10002, 1)};
    char             more[32] = "0.0|";
    ParameterSetManager::GetPathFromModeBranch(wide, 1, more, sizeof(more));
    EXPECT_STREQ("0.0|2.1", more);
    ParameterSetManager::GetPathFromModeBranch(nullptr, 1, more, sizeof(more));
    EXPECT_STREQ("0.0|2.1", more);
}
} // namespace
