// The generated modules of the store tests: registration of types, creation by
// the default instance with its version gate, records that read themselves (shared blocks,
// enums, damaged data) and the instance lists of DefaultModule.
#include <gtest/gtest.h>

#include <stdexcept>

#include "logcapture.h"
#include "runtimefixture.h"

namespace
{
using storetest::ConfigData;
using storetest::DemoData;
using storetest::DemoModule;
using storetest::DemoRecord;
using storetest::DemoRegion;
using storetest::MakeMode;
using storetest::MakeModule;
using storetest::ModuleOf;
using storetest::NoLinkSetManager;
using testsupport::LogCapture;
using tuningfile::DataBuilder;
using tuningfile::TuningFileModel;

TuningFileModel RootModel(std::vector<tuningfile::Module> modules, tuningfile::Version version = {5, 0, 0})
{
    TuningFileModel model;
    model.version = version;
    model.modes   = {MakeMode(0, 0, 0), MakeMode(2, 2, 0)};
    model.modules = std::move(modules);
    return model;
}

class StoreModuleClass : public testing::Test
{
protected:
    bool Load(const TuningFileModel& model)
    {
        m_image = storetest::Written(model);
        return m_manager.LoadBinaryParameters(m_image.data(), m_image.size());
    }

    ParameterModule* ModuleIn(uint32_t mode, char const* name)
    {
        return m_manager.GetModeEntry(mode)->m_modules[name].module;
    }

    DemoRecord* Demo(uint32_t mode, char const* name)
    {
        return static_cast<storetest::DemoClass*>(ModuleIn(mode, name));
    }

    LogCapture           m_log;
    std::vector<uint8_t> m_image;
    NoLinkSetManager     m_manager;
};

TEST_F(StoreModuleClass, TheManagerRegistersOneDefaultInstancePerName)
{
    EXPECT_EQ(3u, m_manager.DefaultModuleMap.size());
    DefaultModule* ife = m_manager.GetDefaultModule(const_cast<char*>("demo10_ife"));
    ASSERT_NE(nullptr, ife);
    EXPECT_STREQ("demo10_ife", ife->m_defaultInstance->Name);
    EXPECT_EQ(nullptr, ife->m_defaultInstance->Data);
    EXPECT_EQ(nullptr, ife->m_head);
    EXPECT_EQ(nullptr, m_manager.GetDefaultModule(const_cast<char*>("nosuch")));
    EXPECT_EQ(1u, m_log.Count("Failed to find module nosuch in DefaultModuleMap\n"));
    EXPECT_THROW(m_manager.GetDefaultModule(nullptr), std::logic_error);

    // A second registration of a type replaces the first.
    ParameterModule* again = new orvotestconfig::TestConfigTypeClass("testconfigdata");
    m_manager.AddModule(again);
    EXPECT_EQ(again, m_manager.GetDefaultModule(const_cast<char*>("testconfigdata"))->m_defaultInstance);
    EXPECT_EQ(3u, m_manager.DefaultModuleMap.size());
    m_manager.AddModule(nullptr);
    EXPECT_EQ(3u, m_manager.DefaultModuleMap.size());
}

TEST_F(StoreModuleClass, RecordsReadThemselvesAtBothAlignments)
{
    const std::vector<DemoRegion> regions = {{0.0f, 50.0f, 3}, {50.0f, 1000.0f, 9}};
    for (tuningfile::Version version : {tuningfile::Version{5, 0, 0}, tuningfile::Version{2, 0, 0}})
    {
        NoLinkSetManager     manager;
        std::vector<uint8_t> image =
            storetest::Written(RootModel({MakeModule("demo10_ife", 0, DemoData(1.25f, "rev 7", regions), {1, 0, 0}),
                                          MakeModule("testconfigdata", 1, ConfigData(12, 0.75f, 15))},
                                         version));
        ASSERT_TRUE(manager.LoadBinaryParameters(image.data(), image.size())) << manager.m_errorText;
        auto* demo = static_cast<storetest::DemoClass*>(manager.GetModeEntry(0u)->m_modules["demo10_ife"].module);
        EXPECT_STREQ("demo10_ife", demo->Name) << "the registered name of the file's type";
        EXPECT_EQ(1u, demo->SymbolTableID);
        EXPECT_EQ(1, demo->module_version.major_revision);
        EXPECT_EQ(1.25f, demo->gain);
        EXPECT_EQ(1.5f, demo->gamma_tab.gamma[2]);
        EXPECT_STREQ("rev 7", demo->label);
        ASSERT_EQ(2u, demo->mod_demo10_region_dataCount);
        EXPECT_EQ(1000.0f, demo->mod_demo10_region_data[1].lux_end);
        EXPECT_EQ(9u, demo->mod_demo10_region_data[1].strength);
        EXPECT_EQ(1u, demo->GetModified());

        auto* config = static_cast<orvotestconfig::TestConfigTypeClass*>(
            manager.GetModeEntry(1u)->m_modules["testconfigdata"].module);
        EXPECT_EQ(12u, config->maxFaces);
        EXPECT_EQ(0.75f, config->minScale);
        EXPECT_EQ(orvotestconfig::TestAccuracyNormal, config->accuracy);
        EXPECT_EQ(4, config->module_version.minor_revision);
    }
}

TEST_F(StoreModuleClass, RecordsOfOneGroupShareTheirBlocks)
{
    // Equal lists and labels in two modules of different gains: one block each, loaded once.
    ASSERT_TRUE(Load(RootModel({MakeModule("demo10_bps", 0, DemoData(1.0f), {1, 0, 0}),
                                MakeModule("demo10_bps", 1, DemoData(2.0f), {1, 0, 0}),
                                MakeModule("demo10_ife", 1, DemoData(3.0f, "demo", {}), {1, 0, 0})})));
    DemoRecord* root  = Demo(0, "demo10_bps");
    DemoRecord* video = Demo(1, "demo10_bps");
    EXPECT_NE(root, video);
    EXPECT_EQ(root->mod_demo10_region_data, video->mod_demo10_region_data);
    EXPECT_EQ(root->label, video->label);
    DemoRecord* empty = Demo(1, "demo10_ife");
    EXPECT_EQ(0u, empty->mod_demo10_region_dataCount);
    EXPECT_EQ(nullptr, empty->mod_demo10_region_data);
    EXPECT_EQ(0u, m_log.Count("[ERROR]"));
}

TEST_F(StoreModuleClass, TheDefaultInstanceRefusesAnotherVersionOrType)
{
    EXPECT_FALSE(Load(RootModel(
        {MakeModule("demo10_bps", 0, DemoData(1.0f), {1, 0, 1}), MakeModule("nosuch", 1, DemoData(1.0f), {1, 0, 0})})));
    EXPECT_EQ(1u, m_log.Count("Unable to create tonemetry_demo10TypeClass, binary version (4294967297) does not "
                              "match source version (1)\n"));
    EXPECT_EQ(1u, m_log.Count("Failed to parse binary header data for:  Type: demo10_bps, Major: 1, Minor: 0, Patch: "
                              "1, Mode: 0\n"));
    EXPECT_EQ(1u, m_log.Count("Failed to find header module:  Type: nosuch, Major: 1, Minor: 0, Patch: 0, Mode: 2\n"));
    EXPECT_EQ(2u, m_log.Count("AddModule: module is nullptr\n"));
}

TEST_F(StoreModuleClass, BadDataFailsTheRecordOrEmptiesAMember)
{
    // An enum value that the enum does not have is logged and read as zero.
    std::vector<tuningfile::Module> modules = {MakeModule("testconfigdata", 0, ConfigData(1, 0.5f, 7), {3, 4, 0}),
                                               MakeModule("demo10_bps", 1, DataBuilder().U32(1), {1, 0, 0}),
                                               DemoModule("demo10_ife", 1, 2.0f)};
    TuningFileModel                 model   = RootModel(modules);
    std::vector<uint8_t>            image   = storetest::Written(model);
    // The list of the third module claims more elements than its entry has bytes: its count
    // follows the version (12 bytes), gain, gamma table (16) and label (8) of its data.
    const storetest::Section symbols = storetest::FindSection(image, ParameterSetManager::SectionSymbolTable);
    const storetest::Section data    = storetest::FindSection(image, ParameterSetManager::SectionData);
    const uint32_t           third   = data.offset + storetest::U32At(image, symbols.offset + 2 * 60 + 48);
    storetest::PutU32(image, third + 40, 0x7FFFFFFF);
    storetest::Restamp(image);
    ASSERT_TRUE(m_manager.LoadBinaryParameters(image.data(), image.size())) << m_manager.m_errorText;

    auto* config = static_cast<orvotestconfig::TestConfigTypeClass*>(ModuleIn(0, "testconfigdata"));
    EXPECT_TRUE(config->Loaded);
    EXPECT_EQ(orvotestconfig::TestAccuracyHigh, config->accuracy);
    EXPECT_EQ(1u, m_log.Count("converting UINT32 to TestAccuracy"));

    // A truncated record: one line per scalar left, no flag, one change counted.
    ParameterModule* truncated = ModuleIn(1, "demo10_bps");
    EXPECT_FALSE(truncated->Loaded);
    EXPECT_EQ(1u, truncated->Modified);

    // A list count that its entry cannot hold fails the record, as the read of its elements
    // would, before a block of that size is allocated: one more line, no allocation.
    EXPECT_FALSE(ModuleIn(1, "demo10_ife")->Loaded);
    EXPECT_EQ(nullptr, Demo(1, "demo10_ife")->mod_demo10_region_data);
    EXPECT_EQ(2u + 1u + 2u + 1u, m_log.Count("Failed to read symbol table entry\n"));
    EXPECT_EQ(0u, m_log.Count("Failed to allocate"));

    // Without a table an unload can only forget its blocks.
    demo_1_0_0::tonemetry_demo10TypeClass lonely("demo10_bps");
    lonely.Loaded = true;
    lonely.UnloadModule();
    EXPECT_EQ(1u, m_log.Count("UnloadModule demo10_bps called with nullptr Data->SymbolTable object\n"));
    EXPECT_FALSE(lonely.Loaded);
}

TEST_F(StoreModuleClass, FreeingTheFileTakesItsInstancesAlong)
{
    const TuningFileModel model = RootModel({DemoModule("demo10_bps", 0, 1.0f), DemoModule("demo10_bps", 1, 2.0f)});
    ASSERT_TRUE(Load(model));
    m_manager.FreeBinaryParameters();
    EXPECT_EQ(nullptr, m_manager.GetDefaultModule(const_cast<char*>("demo10_bps"))->m_head);
    // A new file finds no instance of the old one among the types' lists.
    ASSERT_TRUE(Load(model)) << m_manager.m_errorText;
    EXPECT_EQ(2.0f, Demo(1, "demo10_bps")->gain);
}

TEST(StoreDefaultModule, TheInstanceListKeepsItsEndsThroughRemovals)
{
    ModuleData       first(1, 0, nullptr, "demo10_bps", 0, 0, nullptr);
    ModuleData       second(2, 0, nullptr, "demo10_bps", 0, 0, nullptr);
    DefaultModule    list(new demo_1_0_0::tonemetry_demo10TypeClass("demo10_bps"));
    ParameterModule* a = new demo_1_0_0::tonemetry_demo10TypeClass("demo10_bps", &first);
    ParameterModule* b = new demo_1_0_0::tonemetry_demo10TypeClass("demo10_bps", &second);
    ParameterModule* c = new demo_1_0_0::tonemetry_demo10TypeClass("demo10_bps", nullptr);
    list.AddModule(a);
    list.AddModule(nullptr);
    list.AddModule(b);
    EXPECT_EQ(b, list.Find(2));
    EXPECT_EQ(nullptr, list.Find(3));
    // Removing the last link of a longer chain: the next instance is appended where it can be
    // found and freed, never behind the removed link.
    EXPECT_TRUE(list.RemoveModule(b));
    EXPECT_FALSE(list.RemoveModule(b)) << "an unknown module is no error";
    list.AddModule(c);
    EXPECT_EQ(c, list.Find(3)) << "an instance without ModuleData matches any ID";
    EXPECT_TRUE(list.Contains(c));
    std::list<ParameterModule*> moved;
    list.MoveModules(moved);
    EXPECT_EQ((std::list<ParameterModule*>{a, c}), moved);
    EXPECT_EQ(nullptr, list.m_head);
    list.AddModule(b);
    EXPECT_EQ(list.m_head, list.m_tail) << "an empty list starts afresh";
    delete a;
    delete c;
}

TEST(StoreDefaultModule, FindAnswersTheFirstMatchInListOrderThroughRemovals)
{
    ModuleData    one(1, 0, nullptr, "demo10_bps", 0, 0, nullptr);
    ModuleData    oneAgain(1, 0, nullptr, "demo10_bps", 0, 0, nullptr);
    DefaultModule list(new demo_1_0_0::tonemetry_demo10TypeClass("demo10_bps"));
    auto          make = [](ModuleData* data) { return new demo_1_0_0::tonemetry_demo10TypeClass("demo10_bps", data); };
    ParameterModule* first  = make(&one);
    ParameterModule* second = make(&oneAgain);
    ParameterModule* bare   = make(nullptr);
    list.AddModule(first);
    list.AddModule(second);
    EXPECT_EQ(first, list.Find(1));
    list.RemoveModule(first);
    EXPECT_EQ(second, list.Find(1)) << "the next instance of the ID stands in";
    list.AddModule(first);
    list.AddModule(bare);
    EXPECT_EQ(second, list.Find(1)) << "an instance without ModuleData behind the match";
    EXPECT_EQ(bare, list.Find(7));
    list.RemoveModule(second);
    EXPECT_EQ(first, list.Find(1));
    list.RemoveModule(first);
    EXPECT_EQ(bare, list.Find(1)) << "an instance without ModuleData before any match";
    list.RemoveModule(bare);
    EXPECT_EQ(nullptr, list.Find(1));
    delete first;
    delete second;
    delete bare;
}
} // namespace
