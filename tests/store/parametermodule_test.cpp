// The module base and a file entry's ModuleData: short types, the mode a module belongs to, and
// the reference counts that a mode's module table keeps.
#include <gtest/gtest.h>

#include <string>

#include "logcapture.h"
#include "storefiles.h"

namespace
{
using storetest::MakeMode;
using storetest::TestSetManager;
using testsupport::LogCapture;

std::string TypeOf(char const* name)
{
    char type[ModuleData::MaxTypeLength + 1] = {};
    ModuleData::GetType(type, name);
    return type;
}

TEST(StoreModuleType, ShortFormOfARegisteredName)
{
    EXPECT_EQ("abf34", TypeOf("tonemetry_abf34"));
    EXPECT_EQ("abf34", TypeOf("Tonemetry_abf34"));
    EXPECT_EQ("PDLib", TypeOf("TONEMETRYPDLib"));
    EXPECT_EQ("tonemetry", TypeOf("tonemetry")) << "nothing but the prefix stays whole";
    EXPECT_EQ("_", TypeOf("tonemetry_")) << "the shorter prefix goes";
    EXPECT_EQ("fdconfigdata", TypeOf("fdconfigdata"));
    const std::string exact(32, 'x');
    EXPECT_EQ(exact, TypeOf(exact.c_str()));
    // Longer than 32: the first 8, '-', the last 23.
    const std::string longName = "abcdefghijklmnopqrstuvwxyz0123456";
    EXPECT_EQ("abcdefgh-klmnopqrstuvwxyz0123456", TypeOf(longName.c_str()));
    EXPECT_EQ("aec_tuni-_for_every_single_scene", TypeOf("tonemetry_aec_tuning_data_for_every_single_scene"));
    EXPECT_EQ("", TypeOf(nullptr));
}

class TestModule : public ParameterModule
{
public:
    TestModule(char const* name, ModuleData* data) : ParameterModule(name, 1, 2, 3, data) {}
    ParameterModule* Create(ModuleData*, DefaultModule*) const override { return nullptr; }
    bool             LoadModule(ParameterFileSymbolTable*) override { return true; }
    void             UnloadModule() override {}
};

class StoreModules : public testing::Test
{
protected:
    void SetUp() override
    {
        tuningfile::TuningFileModel model;
        model.modes                = {MakeMode(0, 0, 0), MakeMode(2, 2, 0), MakeMode(3, 1, 1)};
        std::vector<uint8_t> image = storetest::Written(model);
        ASSERT_TRUE(m_manager.LoadBinaryParameters(image.data(), image.size()));
        m_video  = m_manager.GetModeEntry(1u);
        m_isphdr = m_manager.GetModeEntry(2u);
        m_log.Clear();
    }

    LogCapture     m_log;
    TestSetManager m_manager;
    ModeEntry*     m_video  = nullptr;
    ModeEntry*     m_isphdr = nullptr;
};

TEST_F(StoreModules, ModuleDataTakesItsModeFromTheTable)
{
    ModuleData data(7, 5, &m_manager, "abf34", VersionUnion(3, 4, 0).value, 2, &m_manager);
    EXPECT_EQ(7u, data.ID);
    EXPECT_EQ(5u, data.DuplicateID);
    EXPECT_STREQ("abf34", data.Type);
    EXPECT_EQ(m_isphdr, data.Mode);
    EXPECT_STREQ("0.0|2.2|3.1", data.ModePath);
    EXPECT_EQ(m_manager.m_symbolTable, data.SymbolTable);

    TestModule module("tonemetry_abf34", &data);
    EXPECT_STREQ("tonemetry_abf34", module.Name);
    EXPECT_STREQ("abf34", module.Type);
    EXPECT_EQ(VersionUnion(1, 2, 3).value, module.Version.value);
    EXPECT_EQ(3u, module.Mode.mode);
    EXPECT_EQ(1u, module.Mode.subMode);
    EXPECT_FALSE(module.Loaded);
    EXPECT_EQ(0u, module.Modified);
    char value[8] = "";
    EXPECT_FALSE(module.GetValue("x", value, sizeof(value)));
    EXPECT_FALSE(module.SetValue("x", "1"));
    EXPECT_EQ(0u, module.GetReferenceCount()) << "not in its mode's table";
    EXPECT_EQ(0u, TestModule("tonemetry_abf34", nullptr).Mode.value);
}

TEST_F(StoreModules, ModuleDataWithoutAUsableModeOrType)
{
    ModuleData unknown(1, 0, &m_manager, "abf34", 0, 9, &m_manager);
    EXPECT_EQ(1u, m_log.Count("Failed to find ModeID 9 in mode table when creating ModuleData\n"));
    ASSERT_NE(nullptr, unknown.Mode);
    EXPECT_FALSE(unknown.Mode->m_loaded);
    EXPECT_EQ(nullptr, unknown.Mode->m_parent);

    ModuleData tableless(2, 0, nullptr, nullptr, 0, 0, nullptr);
    EXPECT_EQ(1u, m_log.Count("ModuleData called with nullptr modeTable parameter\n"));
    EXPECT_EQ(1u, m_log.Count("ModuleData called with nullptr type parameter\n"));
    EXPECT_EQ(nullptr, tableless.Mode);
    EXPECT_STREQ("", tableless.Type);
    EXPECT_STREQ("", tableless.ModePath);
}

TEST_F(StoreModules, AModeTableCountsReferencesOfItsOwnModules)
{
    ModuleData localData(1, 0, &m_manager, "abf34", 0, 1, &m_manager);
    ModuleData sharedData(2, 0, &m_manager, "anr10", 0, 2, &m_manager);
    TestModule local("abf34", &localData);
    TestModule shared("anr10", &sharedData); // owned by ISPHDR, also entered in Video
    TestModule again("abf34", &localData);

    EXPECT_FALSE(m_video->HasLocalModules());
    EXPECT_FALSE(m_video->AddModule(nullptr));
    EXPECT_TRUE(m_video->AddModule(&local));
    EXPECT_TRUE(m_video->AddModule(&shared));
    EXPECT_TRUE(m_video->AddModule(&again));
    EXPECT_EQ(&local, m_video->m_modules["abf34"].module) << "the first module of a name stays";
    EXPECT_TRUE(m_video->HasLocalModules());
    EXPECT_FALSE(m_video->IsActive());

    m_video->AddReference(&local);
    m_video->AddReference(&local);
    m_video->AddReference(&shared);
    EXPECT_TRUE(m_video->IsActive());
    EXPECT_EQ(2u, m_video->GetReferenceCount(nullptr)) << "a module of another owner is not counted";
    EXPECT_EQ(1u, m_video->m_modules["anr10"].count);
    EXPECT_EQ(2u, local.GetReferenceCount());

    m_video->ReleaseReference(&local);
    EXPECT_EQ(1u, local.GetReferenceCount());
    m_video->ReleaseReferences();
    EXPECT_EQ(1u, m_log.Count("ReleaseReferences called with unreleased module: abf34, RefCnt: 1\n"));
    EXPECT_EQ(0u, local.GetReferenceCount());
    EXPECT_EQ(1u, m_video->m_modules["anr10"].count) << "only the mode's own modules are released";
    EXPECT_FALSE(m_video->IsActive());

    m_video->ReleaseReference(&local);
    EXPECT_EQ(1u, m_log.Count("Attempt to release unreferenced module.  Mode: 2, SubMode: 2, Module abf34\n"));
    TestModule stranger("stranger", &localData);
    m_video->AddReference(&stranger);
    m_video->ReleaseReference(&stranger);
    EXPECT_EQ(1u, m_log.Count("Attempt to add reference to a non-existant module.  Mode: 2, SubMode: 2, Module "
                              "stranger\n"));
    EXPECT_EQ(1u, m_log.Count("Attempt to release a non-existant module.  Mode: 2, SubMode: 2, Module stranger\n"));
    EXPECT_EQ(0u, m_video->GetReferenceCount(&stranger));
}
} // namespace
