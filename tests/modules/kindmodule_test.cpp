// A test-only tuning module that holds every member kind (its schema is in schemas/ beside
// this file): loading at both alignments, lists shared or copied, counts that the data cannot
// hold, one class under two names, and the text access of tuning records.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <string>
#include <vector>

#include "g_moduletest/moduletestsetmanager.h"
#include "logcapture.h"
#include "modulefiles.h"

namespace
{
using namespace kind_1_0_0;
using testsupport::LogCapture;
using tuningfile::DataBuilder;

/// The generated tuning manager with its live tuning link switched off: these tests load files
/// for their modules and must not race the link tests for the link's port.
class KindSetManagerNoLink : public ModuleTestSetManager
{
public:
    KindSetManagerNoLink() { m_tuningEnabled = false; }
};

constexpr tuningfile::Version KindVersion{1, 0, 0};
constexpr uint32_t            U32Marker = 0xA1B2C3D4;

DataBuilder Region(float start, const std::vector<uint32_t>& samples, const std::string& name)
{
    DataBuilder region;
    region.F32(start).F32(start + 1.0f).FixedArray(std::vector<uint32_t>{1, 2, 3, 4}).Repeated(samples).String(name);
    return region;
}

/// Every member, in load order. `u32` marks the module's bytes in a file image.
DataBuilder KindData(uint32_t u32 = U32Marker, uint32_t controlMode = tonemetry_kind10Type::mode_high)
{
    DataBuilder data;
    data.I32(1);               // enable_section
    data.I32(1).I32(0).I32(0); // module_version
    data.String("rev 7");      // parameter_version
    data.Enum(testelements::control_gain).Enum(controlMode);
    data.U8(200).U16(60000).I32(-42).U32(u32).I32(1).F32(0.5f).I64(-5000000000).U64(9000000000u).F64(2.25);
    data.Enum(stage_last);
    data.FixedArray(std::vector<float>{1.0f, 2.0f, 3.0f, 4.0f, 5.5f});
    data.Enum(tonemetry_kind10Type::mode_low)
        .Enum(tonemetry_kind10Type::mode_high)
        .Enum(tonemetry_kind10Type::mode_off);
    data.F32(0.0f).F32(1.0f).F32(2.0f).F32(3.0f); // triggers
    data.String("kind");
    data.Repeated(std::vector<DataBuilder>{Region(0.5f, {10, 20, 30}, "low"), Region(8.0f, {}, "high")});
    data.Repeated(std::vector<float>{0.5f, 1.5f});
    data.Repeated(std::vector<DataBuilder>{DataBuilder().Enum(tonemetry_kind10Type::mode_high),
                                           DataBuilder().Enum(tonemetry_kind10Type::mode_low)});
    data.Repeated(std::vector<DataBuilder>{DataBuilder().String("alpha"), DataBuilder().String("beta")});
    data.Optional(DataBuilder().U16(7));
    data.OptionalAbsent();
    data.Optional(DataBuilder().String("noted"));
    data.Optional(DataBuilder().F32(-1.0f).F32(1.0f));
    return data;
}

std::vector<uint8_t> KindImage(tuningfile::Version fileVersion, const std::vector<tuningfile::Module>& modules)
{
    tuningfile::TuningFileModel model = moduletest::ModelWithModes(fileVersion);
    model.modules                     = modules;
    return moduletest::Image(model);
}

tuningfile::Module KindModule(const std::string& name, uint32_t modeId, const DataBuilder& data = KindData())
{
    return moduletest::MakeModule(name, KindVersion, modeId, data);
}

void ExpectKind(const tonemetry_kind10Type& record, uint32_t u32 = U32Marker)
{
    EXPECT_EQ(1, record.enable_section.kind_enable);
    EXPECT_EQ(1, record.module_version.major_revision);
    EXPECT_STREQ("rev 7", record.parameter_version.revision);
    EXPECT_EQ(testelements::control_gain, record.control_method.control_var);
    EXPECT_EQ(tonemetry_kind10Type::mode_high, record.control_method.control_mode);
    EXPECT_EQ(200, record.u8);
    EXPECT_EQ(60000, record.u16);
    EXPECT_EQ(-42, record.i32);
    EXPECT_EQ(u32, record.u32);
    EXPECT_EQ(1, record.flag);
    EXPECT_EQ(0.5f, record.gain);
    EXPECT_EQ(-5000000000, record.i64);
    EXPECT_EQ(9000000000u, record.u64);
    EXPECT_EQ(2.25, record.ratio);
    EXPECT_EQ(stage_last, record.phase);
    EXPECT_EQ(5.5f, record.radial_tab.radial[4]);
    EXPECT_EQ(tonemetry_kind10Type::mode_low, record.modes[0]);
    EXPECT_EQ(tonemetry_kind10Type::mode_off, record.modes[2]);
    EXPECT_EQ(3.0f, record.triggers[1].end);
    EXPECT_STREQ("kind", record.label);

    ASSERT_EQ(2u, record.regionsCount);
    ASSERT_NE(nullptr, record.regions);
    EXPECT_EQ(1.5f, record.regions[0].trigger.end);
    EXPECT_EQ(4u, record.regions[0].values[3]);
    ASSERT_EQ(3u, record.regions[0].samplesCount);
    EXPECT_EQ(30u, record.regions[0].samples[2]);
    EXPECT_STREQ("low", record.regions[0].name);
    EXPECT_EQ(0u, record.regions[1].samplesCount) << "an empty list";
    EXPECT_EQ(nullptr, record.regions[1].samples);
    EXPECT_STREQ("high", record.regions[1].name);

    ASSERT_EQ(2u, record.curveCount);
    EXPECT_EQ(1.5f, record.curve[1]);
    ASSERT_EQ(2u, record.historyCount);
    EXPECT_EQ(tonemetry_kind10Type::mode_low, record.history[1]);
    ASSERT_EQ(2u, record.tagsCount);
    EXPECT_STREQ("alpha", record.tags[0]);
    EXPECT_STREQ("beta", record.tags[1]);

    EXPECT_EQ(1u, record.levelExists);
    EXPECT_EQ(7, record.level);
    EXPECT_EQ(0u, record.chosenModeExists);
    EXPECT_EQ(tonemetry_kind10Type::mode_off, record.chosenMode);
    EXPECT_EQ(1u, record.noteExists);
    EXPECT_STREQ("noted", record.note);
    EXPECT_EQ(1u, record.windowExists);
    EXPECT_EQ(-1.0f, record.window.start);
}

class KindFile : public testing::TestWithParam<tuningfile::Version>
{
protected:
    LogCapture           m_log;
    KindSetManagerNoLink m_manager;
};

TEST_P(KindFile, EveryMemberKindLoads)
{
    std::vector<uint8_t> image = KindImage(GetParam(), {KindModule("kind10_bps", 0)});
    ASSERT_TRUE(m_manager.LoadBinaryParameters(image.data(), image.size())) << m_manager.m_errorText;
    tonemetry_kind10Type* record = m_manager.GetModule_kind10_bps(nullptr, 0, nullptr);
    ASSERT_NE(nullptr, record);
    ExpectKind(*record);
    EXPECT_EQ(1u, record->SymbolTableID);
    EXPECT_EQ(0u, record->enable_section.SymbolTableID) << "declared in the top record: zero";
    EXPECT_EQ(5 * sizeof(float), sizeof(tonemetry_kind10Type::radial_tabStruct)) << "a _tabStruct has no SymbolTableID";
    EXPECT_EQ(0u, offsetof(region_dataType, trigger)) << "neither has a list element";
    EXPECT_EQ(0u, m_log.Count("Failed"));
}

INSTANTIATE_TEST_SUITE_P(Alignments, KindFile, testing::Values(moduletest::AlignmentOne, moduletest::AlignmentEight),
                         [](const testing::TestParamInfo<tuningfile::Version>& info) {
                             return "Version" + std::to_string(info.param.major);
                         });

TEST(KindNames, OneClassServesBothNamesWithInstancesOfTheirOwn)
{
    KindSetManagerNoLink manager;
    std::vector<uint8_t> image =
        KindImage(moduletest::AlignmentOne, {KindModule("tonemetry_kind10_ife", 0), KindModule("kind10_bps", 0)});
    ASSERT_TRUE(manager.LoadBinaryParameters(image.data(), image.size())) << manager.m_errorText;

    ParameterModule* ife = moduletest::Instance(manager, "tonemetry_kind10_ife");
    ParameterModule* bps = moduletest::Instance(manager, "kind10_bps");
    ASSERT_NE(nullptr, ife);
    ASSERT_NE(nullptr, bps);
    EXPECT_NE(ife, bps);
    EXPECT_STREQ("tonemetry_kind10_ife", ife->Name) << "the file's type form maps back to the registered name";
    EXPECT_STREQ("kind10_ife", ife->Type);
    EXPECT_STREQ("kind10_bps", bps->Name);
    EXPECT_STREQ("tonemetry_kind10_ife", tonemetry_kind10TypeClass::GetName("kind10_ife"));
    EXPECT_STREQ("unknown", tonemetry_kind10TypeClass::GetName("unknown"));
    EXPECT_NE(nullptr, manager.GetModule_tonemetry_kind10_ife(nullptr, 0, nullptr));
}

TEST(KindSharing, EqualEntriesShareAnInstanceOrABlockButListsOfScalarsAreCopied)
{
    // Equal modules in two modes are one entry group: one instance for both.
    KindSetManagerNoLink same;
    std::vector<uint8_t> image =
        KindImage(moduletest::AlignmentOne, {KindModule("kind10_bps", 0), KindModule("kind10_bps", 1)});
    ASSERT_TRUE(same.LoadBinaryParameters(image.data(), image.size()));
    moduletest::UsecaseBranch video(1);
    EXPECT_EQ(same.GetModule_kind10_bps(nullptr, 0, nullptr), same.GetModule_kind10_bps(video.modes, 2, nullptr));
    EXPECT_EQ(nullptr, moduletest::Instance(same, "kind10_bps", 1));

    // Modules that differ but hold equal lists: the list of records is shared, each record has
    // its own copy of a list of scalars.
    DataBuilder          other = KindData(0x5EED5EED);
    KindSetManagerNoLink differ;
    image = KindImage(moduletest::AlignmentOne, {KindModule("kind10_bps", 0), KindModule("kind10_bps", 1, other)});
    ASSERT_TRUE(differ.LoadBinaryParameters(image.data(), image.size()));
    tonemetry_kind10Type* root  = differ.GetModule_kind10_bps(nullptr, 0, nullptr);
    tonemetry_kind10Type* child = differ.GetModule_kind10_bps(video.modes, 2, nullptr);
    ASSERT_NE(nullptr, root);
    ASSERT_NE(nullptr, child);
    ASSERT_NE(root, child);
    EXPECT_EQ(root->regions, child->regions);
    EXPECT_EQ(root->tags, child->tags);
    EXPECT_NE(root->curve, child->curve);
    ExpectKind(*child, 0x5EED5EED);
}

TEST(KindLoad, ACountThatTheDataCannotHoldFailsTheModuleWithoutAnAllocation)
{
    constexpr uint32_t   BrokenMarker = 0x5EED5EED;
    std::vector<uint8_t> image =
        KindImage(moduletest::AlignmentOne,
                  {KindModule("kind10_bps", 0, KindData(BrokenMarker)), KindModule("tonemetry_kind10_ife", 0)});
    // The count of `regions` stands 96 bytes behind `u32` at alignment 1.
    uint8_t marker[4];
    memcpy(marker, &BrokenMarker, sizeof(marker));
    auto found = std::search(image.begin(), image.end(), std::begin(marker), std::end(marker));
    ASSERT_NE(image.end(), found);
    uint32_t hugeCount = 0xFFFFFFFF;
    memcpy(&*(found + 96), &hugeCount, sizeof(hugeCount));
    uint32_t check = ParameterBinaryFile::ComputeCRC(image.data(), image.size() - 4);
    memcpy(image.data() + image.size() - 4, &check, sizeof(check));

    LogCapture           log;
    KindSetManagerNoLink manager;
    manager.LoadBinaryParameters(image.data(), image.size());
    ParameterModule* broken = moduletest::Instance(manager, "kind10_bps");
    ASSERT_NE(nullptr, broken);
    EXPECT_FALSE(broken->Loaded);
    EXPECT_LE(1u, log.Count("Failed to read symbol table entry"));
    EXPECT_EQ(nullptr, manager.GetModule_kind10_bps(nullptr, 0, nullptr));
    tonemetry_kind10Type* other = manager.GetModule_tonemetry_kind10_ife(nullptr, 0, nullptr);
    ASSERT_NE(nullptr, other) << "the other module loads";
    ExpectKind(*other);
}

TEST(KindEnums, ANestedEnumIsNamedWithItsRecordsWhenItRefusesAValue)
{
    LogCapture           log;
    KindSetManagerNoLink manager;
    std::vector<uint8_t> image =
        KindImage(moduletest::AlignmentOne, {KindModule("kind10_bps", 0, KindData(U32Marker, 5))});
    ASSERT_TRUE(manager.LoadBinaryParameters(image.data(), image.size()));
    EXPECT_EQ(1u, log.Count("Invalid value(5) converting UINT32 to tonemetry_kind10Type::modeEnum"));
    tonemetry_kind10Type* record = manager.GetModule_kind10_bps(nullptr, 0, nullptr);
    ASSERT_NE(nullptr, record);
    EXPECT_EQ(tonemetry_kind10Type::mode_off, record->control_method.control_mode);
    EXPECT_EQ(U32Marker, record->u32);
}

TEST(KindFileMode, AnIdWhoseTopByteCountsChangesStillFindsTheModulesEntry)
{
    moduletest::TempFile file("kind");
    file.Store(KindImage(moduletest::AlignmentOne, {KindModule("kind10_bps", 0)}));
    KindSetManagerNoLink manager;
    ASSERT_TRUE(manager.LoadBinaryParameters(file.Path().c_str()));
    ParameterModule*      module = moduletest::Instance(manager, "kind10_bps");
    tonemetry_kind10Type* record = manager.GetModule_kind10_bps(nullptr, 0, nullptr);
    ASSERT_NE(nullptr, module);
    ASSERT_NE(nullptr, record);
    uint32_t id = record->SymbolTableID;
    for (uint32_t change = 1; change <= 256; ++change)
    {
        ASSERT_TRUE(module->SetValue("i32", "1"));
        uint32_t expectedTop = (change <= 255) ? change : 1;
        ASSERT_EQ(expectedTop, record->SymbolTableID >> 24) << change;
        ASSERT_EQ(id, record->SymbolTableID & 0xFFFFFFu);
    }
    module->UnloadModule();
    EXPECT_EQ(nullptr, record->label) << "unloaded";
    ASSERT_TRUE(module->LoadModule(manager.m_symbolTable)) << "the masked id finds the entry";
    ExpectKind(*record);
    record->Release();
}

class KindText : public testing::Test
{
protected:
    void SetUp() override
    {
        std::vector<uint8_t> image = KindImage(moduletest::AlignmentOne, {KindModule("kind10_bps", 0)});
        ASSERT_TRUE(m_manager.LoadBinaryParameters(image.data(), image.size()));
        m_record = m_manager.GetModule_kind10_bps(nullptr, 0, nullptr);
        m_module = moduletest::Instance(m_manager, "kind10_bps");
        ASSERT_NE(nullptr, m_record);
        ASSERT_NE(nullptr, m_module);
    }

    std::string Get(char const* path)
    {
        char value[256] = "unset";
        return m_module->GetValue(path, value, sizeof(value)) ? std::string(value) : std::string("<false>");
    }

    KindSetManagerNoLink  m_manager;
    tonemetry_kind10Type* m_record = nullptr;
    ParameterModule*      m_module = nullptr;
};

TEST_F(KindText, ValuesPrintByTheirPathsInTheStoresNumberForm)
{
    EXPECT_EQ("2712847316", Get("u32"));
    EXPECT_EQ("-42", Get("i32"));
    EXPECT_EQ("0.5", Get("gain")) << "Float with up to 10 decimals";
    EXPECT_EQ("2.25", Get("ratio"));
    EXPECT_EQ("4", Get("phase")) << "an enum by its number";
    EXPECT_EQ("1", Get("enable_section.kind_enable"));
    EXPECT_EQ("rev 7", Get("parameter_version.revision"));
    EXPECT_EQ("1.0,2.0,3.0,4.0,5.5", Get("radial_tab.radial")) << "a fixed array without index: all elements";
    EXPECT_EQ("5.5", Get("radial_tab.radial[4]"));
    EXPECT_EQ("1.0,2.0,3.0,4.0,5.5", Get("radial_tab.radial[5]")) << "an index out of range: all elements";
    EXPECT_EQ("10,20,0", Get("modes"));
    EXPECT_EQ("30", Get("regions[0].samples[2]"));
    EXPECT_EQ("high", Get("regions[1].name"));
    EXPECT_EQ("<false>", Get("regions[2].name")) << "no such element";
    EXPECT_EQ("alpha,beta", Get("tags"));
    EXPECT_EQ("7", Get("level"));
    EXPECT_EQ("<false>", Get("nothing"));
    EXPECT_EQ("<false>", Get("regions[0].nothing"));
}

TEST_F(KindText, SetValueChangesTheRecordAndCountsTheChange)
{
    uint32_t id = m_record->SymbolTableID;
    EXPECT_TRUE(m_module->SetValue("u32", "77"));
    EXPECT_EQ(77u, m_record->u32);
    EXPECT_EQ(2u, m_record->GetModified()) << "the load and one change";
    EXPECT_EQ(id + 0x1000000u, m_record->SymbolTableID);

    EXPECT_FALSE(m_module->SetValue("gain", "abc"));
    EXPECT_EQ(0.5f, m_record->gain);
    EXPECT_EQ(2u, m_record->GetModified()) << "a failed change counts nothing";

    EXPECT_TRUE(m_module->SetValue("radial_tab.radial", "9,x,7"));
    EXPECT_EQ(9.0f, m_record->radial_tab.radial[0]);
    EXPECT_EQ(2.0f, m_record->radial_tab.radial[1]) << "a piece that does not parse is passed over";
    EXPECT_EQ(7.0f, m_record->radial_tab.radial[2]);
    EXPECT_EQ(4.0f, m_record->radial_tab.radial[3]) << "past the text's end nothing changes";
    EXPECT_TRUE(m_module->SetValue("radial_tab.radial[4]", "-2.5"));
    EXPECT_EQ(-2.5f, m_record->radial_tab.radial[4]);

    EXPECT_TRUE(m_module->SetValue("regions[1].trigger.start", "3.5"));
    EXPECT_EQ(3.5f, m_record->regions[1].trigger.start);
    EXPECT_TRUE(m_module->SetValue("u8", "300")) << "clamped to the member's range";
    EXPECT_EQ(255, m_record->u8);
    EXPECT_TRUE(m_module->SetValue("u32", "-1"));
    EXPECT_EQ(0u, m_record->u32);
    EXPECT_FALSE(m_module->SetValue("label", "text")) << "texts are not set";
}

TEST_F(KindText, ALoadAfterTheBufferIsGoneFindsNoEntry)
{
    LogCapture log;
    m_module->UnloadModule();
    EXPECT_EQ(nullptr, m_record->regions) << "unloaded";
    EXPECT_FALSE(m_module->LoadModule(m_manager.m_symbolTable));
    EXPECT_EQ(1u, log.Count("tonemetry_kind10TypeClass::LoadModule Failed to find module ID (1) in Symbol Table"));
    EXPECT_FALSE(m_module->Loaded);
    EXPECT_EQ(2u, m_record->GetModified()) << "the first load and the failed one";
}

TEST_F(KindText, GetInfoListsTheMembersWithTheirRows)
{
    PList<ParameterParserInfo> rows;
    ASSERT_TRUE(m_module->GetInfo("", rows));
    ASSERT_EQ(26u, rows.count) << "one row per member of the top record";
    auto row = [&](char const* name) -> const ParameterParserInfo& {
        for (uint32_t index = 0; index < rows.count; ++index)
        {
            if ((nullptr != rows[index].Name) && (std::string(name) == rows[index].Name))
            {
                return rows[index];
            }
        }
        ADD_FAILURE() << name;
        return rows[rows.count];
    };
    EXPECT_EQ(ParameterParserInfo::TypeStructure, row("enable_section").Type);
    EXPECT_EQ(ParameterParserInfo::TypeUInt8, row("u8").Type);
    EXPECT_STREQ("200", row("u8").Value);
    EXPECT_EQ(ParameterParserInfo::TypeBoolean, row("flag").Type);
    EXPECT_EQ(ParameterParserInfo::TypeFloat, row("gain").Type);
    EXPECT_STREQ("0.5", row("gain").Value);
    EXPECT_EQ(ParameterParserInfo::TypeFloat, row("ratio").Type) << "8-byte floating-point values show as Float";
    EXPECT_EQ(ParameterParserInfo::TypeEnum, row("phase").Type);
    EXPECT_STREQ("4", row("phase").Value);
    EXPECT_EQ(ParameterParserInfo::TypeString, row("label").Type);
    EXPECT_STREQ("kind", row("label").Value);
    EXPECT_EQ(ParameterParserInfo::TypeEnum, row("modes").Type);
    EXPECT_EQ(1u, row("modes").IsArray);
    EXPECT_EQ(3u, row("modes").ElementCount);
    EXPECT_EQ(ParameterParserInfo::TypeStructure, row("triggers").Type);
    EXPECT_EQ(2u, row("triggers").ElementCount);
    EXPECT_EQ(ParameterParserInfo::TypeStructure, row("regions").Type);
    EXPECT_EQ(2u, row("regions").ElementCount) << "the live count";
    EXPECT_EQ(ParameterParserInfo::TypeFloat, row("curve").Type);
    EXPECT_EQ(1u, row("curve").IsArray);
    EXPECT_EQ(0u, row("curve").IsListed);

    PList<ParameterParserInfo> one;
    ASSERT_TRUE(m_module->GetInfo("regions[0].trigger.start", one));
    ASSERT_EQ(1u, one.count);
    EXPECT_EQ(nullptr, one[0].Name) << "the row of the very thing the path names";
    EXPECT_STREQ("0.5", one[0].Value);

    PList<ParameterParserInfo> array;
    ASSERT_TRUE(m_module->GetInfo("regions", array));
    ASSERT_EQ(1u, array.count);
    EXPECT_EQ(2u, array[0].ElementCount);
    EXPECT_FALSE(m_module->GetInfo("nothing", array));
}
} // namespace
