// Text access: values by mode path, value path and names, the rows that modules give, edits
// that raise the change counters and pin their mode, and the references that text access keeps.
#include <gtest/gtest.h>

#include <map>
#include <string>

#include "logcapture.h"
#include "runtimefixture.h"

namespace
{
using storetest::Branch;
using storetest::ConfigModule;
using storetest::DemoData;
using storetest::DemoModule;
using storetest::DemoRecord;
using storetest::MakeMode;
using storetest::MakeModule;
using storetest::ModuleOf;
using storetest::NoLinkSetManager;
using storetest::TempFile;
using testsupport::LogCapture;
using tuningfile::TuningFileModel;

const std::vector<TuningMode> Root   = Branch({{0, 0}});
const std::vector<TuningMode> Video  = Branch({{0, 0}, {2, 2}});
const std::vector<TuningMode> Isphdr = Branch({{0, 0}, {2, 2}, {3, 1}});

// Root with "demo10_bps" (gain 1.5), "demo10_ife" and the plain module; Video with its own
// "demo10_bps" (gain 2); ISPHDR below Video with nothing.
TuningFileModel TextModel()
{
    TuningFileModel model;
    model.modes   = {MakeMode(0, 0, 0), MakeMode(2, 2, 0), MakeMode(3, 1, 1)};
    model.modules = {MakeModule("demo10_bps", 0, DemoData(1.5f), {1, 0, 0}), DemoModule("demo10_ife", 0, 10.0f),
                     ConfigModule(0, 4), DemoModule("demo10_bps", 1, 2.0f)};
    return model;
}

class StoreTextAccess : public testing::Test
{
protected:
    void Load(bool fileMode)
    {
        ASSERT_TRUE(storetest::LoadImage(m_manager, storetest::Written(TextModel()), fileMode, m_file));
        m_log.Clear();
    }
    void SetUp() override { Load(false); }

    // "<result> <text>" of a GetValue on `branch`.
    std::string Get(const std::vector<TuningMode>& branch, char const* path, char const* names)
    {
        char out[512] = "untouched";
        bool result =
            m_manager.GetValue(branch.data(), static_cast<unsigned int>(branch.size()), path, names, out, sizeof(out));
        return (result ? "true " : "false ") + std::string(out);
    }

    bool Set(const std::vector<TuningMode>& branch, char const* path, char const* name, char const* value)
    {
        return m_manager.SetValue(branch.data(), static_cast<unsigned int>(branch.size()), path, name, value);
    }

    DemoRecord* Record(uint32_t mode, char const* name)
    {
        return static_cast<storetest::DemoClass*>(m_manager.GetModeEntry(mode)->m_modules[name].module);
    }

    LogCapture       m_log;
    TempFile         m_file{"text"};
    NoLinkSetManager m_manager;
};

TEST_F(StoreTextAccess, ValuesByNames)
{
    EXPECT_EQ("true gain=1.5;label=demo;gamma_tab.gamma=0.5,1.0,1.5,2.0",
              Get(Root, "demo10_bps", "gain,label,gamma_tab.gamma"));
    EXPECT_EQ("true gain=2.0", Get(Video, "demo10_bps", "gain"));
    EXPECT_EQ("true gain=2.0", Get(Isphdr, "demo10_bps", "gain")) << "ISPHDR inherits Video's";
    // The result is the last name's; earlier failures show only in the text.
    EXPECT_EQ("false gain=1.5;label=demo", Get(Root, "demo10_bps", "gain,label,nosuch"));
    EXPECT_EQ("true gain=1.5;label=demo", Get(Root, "demo10_bps", "nosuch,gain,label"));
    // Behind the module name, names are relative to that place, unless it is a single character.
    EXPECT_EQ("true major_revision=1;incr_revision=0",
              Get(Root, "demo10_bps.module_version", "major_revision,incr_revision"));
    EXPECT_EQ("true gain=1.5", Get(Root, "demo10_bps.x", "gain"));
    EXPECT_EQ("true gamma[3]=2.0", Get(Root, "demo10_bps.gamma_tab", "gamma[3]"));
    EXPECT_EQ("false ", Get(Root, "testconfigdata", "maxFaces")) << "a plain module has no text access";
    EXPECT_EQ("false ", Get(Root, "nosuch", "gain"));
}

TEST_F(StoreTextAccess, ValuesOfAPlace)
{
    EXPECT_EQ("true major_revision=1;minor_revision=0;incr_revision=0",
              Get(Root, "demo10_bps.module_version", nullptr));
    EXPECT_EQ("true gamma=0.5,1.0,1.5,2.0", Get(Root, "demo10_bps.gamma_tab", nullptr));
    EXPECT_EQ("true lux_start=0.0;lux_end=100.0;strength=7",
              Get(Root, "demo10_bps.mod_demo10_region_data[0]", nullptr));
    EXPECT_EQ("true =1.5", Get(Root, "demo10_bps.gain", nullptr)) << "a scalar's row has no name";
    EXPECT_EQ("true ", Get(Root, "demo10_bps.mod_demo10_region_data", nullptr)) << "structures are passed over";
    EXPECT_EQ("false ", Get(Root, "demo10_bps.nosuch", nullptr));
    // At the module's top the rows' paths begin with a dot, which names nothing: the first value
    // fails the whole text.
    EXPECT_EQ("false ", Get(Root, "demo10_bps.", nullptr));
    EXPECT_EQ("false ", Get(Root, "demo10_bps", nullptr));

    char out[64] = "";
    EXPECT_TRUE(m_manager.GetValue("0.0|2.2", "demo10_bps", "gain", out, sizeof(out)));
    EXPECT_STREQ("gain=2.0", out);
    EXPECT_FALSE(m_manager.GetValue("0.x", "demo10_bps", "gain", out, sizeof(out)));
    EXPECT_FALSE(m_manager.GetValue(nullptr, "demo10_bps", "gain", out, sizeof(out)));
    EXPECT_FALSE(m_manager.GetValue(Root.data(), 0, "demo10_bps", "gain", out, sizeof(out)));
    char small[12] = "";
    EXPECT_TRUE(m_manager.GetValue("0.0", "demo10_bps", "gain,label", small, sizeof(small)));
    EXPECT_STREQ("gain=1.5;la", small) << "cut at the size";
}

TEST_F(StoreTextAccess, RowsOfModulesAndPlaces)
{
    PList<ParameterParserInfo> modules(1);
    EXPECT_TRUE(m_manager.GetInfo(Video.data(), 2, nullptr, modules));
    std::map<std::string, std::string> listed;
    for (uint32_t index = 0; index < modules.count; ++index)
    {
        EXPECT_EQ(ParameterParserInfo::TypeModule, modules[index].Type);
        listed[modules[index].Name] = modules[index].Value;
    }
    EXPECT_EQ((std::map<std::string, std::string>{
                  {"demo10_bps", "Default|Usecase.Video"}, {"demo10_ife", "Default"}, {"testconfigdata", "Default"}}),
              listed);

    PList<ParameterParserInfo> rows(1);
    EXPECT_TRUE(m_manager.GetInfo("0.0", "demo10_bps", rows));
    ASSERT_EQ(5u, rows.count);
    EXPECT_STREQ("gain", rows[1].Name);
    EXPECT_EQ(ParameterParserInfo::TypeFloat, rows[1].Type);
    EXPECT_STREQ("1.5", rows[1].Value);
    EXPECT_STREQ("demo", rows[3].Value);
    EXPECT_EQ(ParameterParserInfo::TypeStructure, rows[4].Type);
    EXPECT_EQ(1u, rows[4].IsArray);
    EXPECT_EQ(1u, rows[4].ElementCount);

    PList<ParameterParserInfo> place(1);
    EXPECT_TRUE(m_manager.GetInfo("0.0", "demo10_bps.gamma_tab.gamma", place));
    ASSERT_EQ(1u, place.count);
    EXPECT_EQ(nullptr, place[0].Name);
    EXPECT_EQ(4u, place[0].ElementCount);
    EXPECT_FALSE(m_manager.GetInfo("0.0", "testconfigdata", place));
    EXPECT_FALSE(m_manager.GetInfo(nullptr, nullptr, place));
    EXPECT_EQ(1u, m_log.Count("GetInfo called with null or empty modeBranch\n"));
}

TEST_F(StoreTextAccess, EditsChangeTheRecordAndCountTheChange)
{
    DemoRecord* root = Record(0, "demo10_bps");
    EXPECT_TRUE(Set(Root, "demo10_bps", "gain", "2.5"));
    EXPECT_EQ(2.5f, root->gain);
    EXPECT_EQ(2u, root->GetModified()) << "one for the load, one for the edit";
    EXPECT_EQ(0x01000001u, root->SymbolTableID) << "the top byte counts edits";
    EXPECT_EQ(1u, m_manager.m_setValueCount.load());

    EXPECT_TRUE(Set(Root, "demo10_bps.gamma_tab", "gamma", "9,x,7"));
    EXPECT_EQ(9.0f, root->gamma_tab.gamma[0]);
    EXPECT_EQ(1.0f, root->gamma_tab.gamma[1]) << "a piece that does not convert is passed over";
    EXPECT_EQ(7.0f, root->gamma_tab.gamma[2]);
    EXPECT_TRUE(Set(Root, "demo10_bps.gamma_tab", "gamma[3]", "-1"));
    EXPECT_EQ(-1.0f, root->gamma_tab.gamma[3]);
    EXPECT_EQ(3u, m_manager.m_setValueCount.load());

    for (char const* refused : {"abc", ""})
    {
        EXPECT_FALSE(Set(Root, "demo10_bps", "gain", refused)) << refused;
    }
    EXPECT_FALSE(Set(Root, "demo10_bps.", "gain", "3")) << "a leading dot names nothing";
    EXPECT_FALSE(Set(Root, "demo10_bps.x", "gain", "3")) << "unlike GetValue, a one-character part counts";
    EXPECT_FALSE(Set(Root, "demo10_bps", "label", "x"));
    EXPECT_FALSE(Set(Root, "testconfigdata", "maxFaces", "3"));
    EXPECT_FALSE(Set(Root, "", "gain", "3"));
    EXPECT_EQ(3u, m_manager.m_setValueCount.load());

    // An edit through a branch that inherits the module changes the holder's record.
    EXPECT_TRUE(m_manager.SetValue("0.0|2.2|3.1", "demo10_bps.mod_demo10_region_data[0]", "strength", "11"));
    EXPECT_EQ(11u, Record(1, "demo10_bps")->mod_demo10_region_data[0].strength);
    EXPECT_EQ("true strength=11", Get(Video, "demo10_bps.mod_demo10_region_data[0]", "strength"));
    EXPECT_EQ(11u, root->mod_demo10_region_data[0].strength) << "the list is one shared block";

    // After 255 edits the counter starts again at 1; the low bits keep the file's ID.
    for (uint32_t edits = root->SymbolTableID >> 24; edits < 255; ++edits)
    {
        EXPECT_TRUE(Set(Root, "demo10_bps", "gain", "1"));
    }
    EXPECT_EQ(0xFF000001u, root->SymbolTableID);
    EXPECT_TRUE(Set(Root, "demo10_bps", "gain", "1"));
    EXPECT_EQ(0x01000001u, root->SymbolTableID);
}

TEST_F(StoreTextAccess, FileModeEditsPinTheirModeAndTextAccessKeepsItsReferences)
{
    NoLinkSetManager manager;
    ASSERT_TRUE(storetest::LoadImage(manager, storetest::Written(TextModel()), true, m_file));
    char out[64] = "";
    EXPECT_TRUE(manager.GetValue(Video.data(), 2, "demo10_bps", "gain", out, sizeof(out)));
    ModeEntry*       video  = manager.GetModeEntry(1u);
    ParameterModule* module = video->m_modules["demo10_bps"].module;
    EXPECT_EQ(1u, module->GetReferenceCount()) << "text access does not give its reference back";
    ASSERT_EQ(1u, manager.m_loadedModes.count);

    EXPECT_TRUE(manager.SetValue(Video.data(), 2, "demo10_bps", "gain", "4"));
    EXPECT_TRUE(video->m_pinned);
    EXPECT_EQ(0u, manager.m_loadedModes.count);
    EXPECT_TRUE(manager.UnloadMode(Video.data(), 2));
    EXPECT_TRUE(module->Loaded) << "an edited value is not lost";
    EXPECT_EQ(2u, module->GetReferenceCount());
}

TEST(StoreParserInfo, RowsCarryTheirValueAsText)
{
    ParameterParserInfo empty;
    EXPECT_EQ(nullptr, empty.Name);
    EXPECT_STREQ("", empty.Value);
    EXPECT_STREQ("-3", ParameterParserInfo("n", ParameterParserInfo::TypeInt32, -3.0, 0).Value);
    EXPECT_STREQ("0.125", ParameterParserInfo("n", ParameterParserInfo::TypeFloat, 0.125, 10).Value);
    EXPECT_STREQ("",
                 ParameterParserInfo("n", ParameterParserInfo::TypeString, static_cast<char const*>(nullptr)).Value);
    std::string long_text(2000, 'v');
    EXPECT_EQ(1023u, strlen(ParameterParserInfo("n", ParameterParserInfo::TypeString, long_text.c_str()).Value));
    ParameterParserInfo array("a", ParameterParserInfo::TypeUInt8, true, false, 9);
    EXPECT_EQ(1u, array.IsArray);
    EXPECT_EQ(0u, array.IsListed);
    EXPECT_EQ(9u, array.ElementCount);
}
} // namespace
