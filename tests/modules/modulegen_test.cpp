// modulegen as the build runs it: bad schemas refused with status 2 and a line naming the file and
// the JSON path; the library's schemas accepted; outputs rewritten only when they change. And the
// schema model: what it derives from the schemas, and the type form of the store.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <string>

#include "modulegen/schemaloader.h"
#include "parametermodule.h"
#include "subprocess.h"

namespace
{
namespace fs = std::filesystem;

/// A folder of the running test's own, so that tests in parallel do not share output files.
fs::path TestFolder(const std::string& purpose)
{
    const testing::TestInfo* test = testing::UnitTest::GetInstance()->current_test_info();
    return fs::path(testing::TempDir()) / ("modulegen_" + purpose + "_" + test->test_suite_name() + "_" + test->name());
}

testsupport::ProcessResult RunModulegen(const std::vector<std::string>& arguments)
{
    fs::path scratch = TestFolder("scratch");
    fs::create_directories(scratch);
    testsupport::ProcessResult result = testsupport::RunProcess(MODULEGEN_EXECUTABLE, arguments, scratch.string());
    fs::remove_all(scratch);
    return result;
}

/// A schema tree in the test's temporary directory: one folder "g_test" with a set manager,
/// and the files that a test adds.
class SchemaTree
{
public:
    SchemaTree() : m_root(TestFolder("schemas"))
    {
        fs::remove_all(m_root);
        fs::create_directories(m_root / "g_test");
        Add("testsetmanager", R"({"setManager": "TestSetManager", "flavour": "tuning"})");
    }
    ~SchemaTree() { fs::remove_all(m_root); }

    void Add(const std::string& stem, const std::string& text) const
    {
        std::ofstream(m_root / "g_test" / (stem + ".json")) << text;
    }

    std::string Root() const { return m_root.string(); }
    std::string File(const std::string& stem) const { return (m_root / "g_test" / (stem + ".json")).string(); }

private:
    fs::path m_root;
};

/// A tuning module of namespace `stem` whose top record has `members`.
std::string ModuleSchema(const std::string& stem, const std::string& names, const std::string& members,
                         const std::string& version = "1.0.0")
{
    return R"({"namespace": ")" + stem + R"(", "module": {"top": "top", "version": ")" + version + R"(", "names": [)" +
           names + R"(]}, "records": {"top": ["module_versionStruct module_version", )" + members + "]}}";
}

struct Refusal
{
    std::string schema; ///< the text of g_test/m.json
    std::string line;   ///< what follows "<file>: " in the refusal
};

TEST(ModulegenRefusal, ABadSchemaIsRefusedWithStatus2AndALineNamingTheFileAndThePath)
{
    const std::vector<Refusal> refusals = {
        {ModuleSchema("m", R"("kind10")", R"("UInt32 count", "sometimes UInt32 count")"),
         "/records/top/2: unknown kind 'sometimes' (expected \"repeated\" or \"optional\")"},
        {ModuleSchema("m", R"("kind10")", R"("Colour tint")"), "/records/top/1: unknown type 'Colour'"},
        {ModuleSchema("m", R"("m10")", R"("UInt32 x")", "3.4"),
         "/module/version: bad version '3.4' (expected major.minor.patch, below 65536.65536.4294967296)"},
        {ModuleSchema("m", R"("m10")", R"("UInt32 x", "UInt8 none[0]")"), "/records/top/2: array of size 0"},
        {ModuleSchema("m", R"("m10")", R"("repeated UInt32 x", "UInt32 xCount")"),
         "/records/top/2: member name 'xCount' is already used by member x"},
        {R"({"namespace": "m", "enums": {"level": {"low": 1, "high": 1}}})",
         "/enums/level/high: value 1 of 'high' is already that of 'low'"},
        {R"({"namespace": "m", "records": {"r": ["UInt32 a"], "r": ["UInt32 b"]}})", "/records/r: key given twice"},
        {R"({"namespace": "m", "uses": ["nowhere"], "records": {"r": ["UInt32 a"]}})",
         "/uses/0: uses unknown schema 'nowhere'"},
        {R"({"namespace": "m", "records": {"r": ["q inner"], "q": ["repeated r outer"]}})",
         "/records/r: record 'r' holds itself: r -> q -> r"}};
    SchemaTree tree;
    for (const Refusal& refusal : refusals)
    {
        tree.Add("m", refusal.schema);
        testsupport::ProcessResult result = RunModulegen({"--schemas", tree.Root(), "--check"});
        EXPECT_EQ(2, result.exitStatus) << refusal.line;
        EXPECT_NE(std::string::npos, result.err.find(tree.File("m") + ": " + refusal.line)) << result.err;
    }
}

TEST(ModulegenRefusal, NamesWhoseTypeStringsMeetInOneSetManager)
{
    SchemaTree tree;
    tree.Add("a", ModuleSchema("a", R"("tonemetry_abc")", R"("UInt32 x")"));
    tree.Add("b", ModuleSchema("b", R"("abc")", R"("UInt32 x")"));
    testsupport::ProcessResult result = RunModulegen({"--schemas", tree.Root(), "--check"});
    EXPECT_EQ(2, result.exitStatus);
    EXPECT_NE(std::string::npos, result.err.find("has the type string 'abc' of 'tonemetry_abc' in TestSetManager"))
        << result.err;
}

TEST(ModulegenRefusal, ArgumentsAndUnreadableFolders)
{
    EXPECT_EQ(2, RunModulegen({"--output", testing::TempDir()}).exitStatus) << "--schemas is required";
    testsupport::ProcessResult missing = RunModulegen({"--schemas", testing::TempDir() + "no_such_folder", "--check"});
    EXPECT_EQ(2, missing.exitStatus);
    EXPECT_NE(std::string::npos, missing.err.find("no_such_folder")) << missing.err;
}

TEST(ModulegenOutput, TheLibrarysSchemasGiveAHeaderAndASourcePerFileAndUnchangedFilesKeepTheirTime)
{
    fs::path output = TestFolder("output");
    fs::remove_all(output);
    ASSERT_EQ(0, RunModulegen({"--schemas", VARK_SCHEMA_DIR, "--output", output.string()}).exitStatus);
    for (const char* stem :
         {"g_facedetection/orvofdconfig", "g_facedetection/fdsetmanager", "g_sensor/orvopdafconfig",
          "g_sensor/orvosensorcommon", "g_sensor/imagesensormodulesetmanager", "g_tonemetry/tuningsetmanager"})
    {
        EXPECT_TRUE(fs::exists(output / (std::string(stem) + ".h"))) << stem;
        EXPECT_TRUE(fs::exists(output / (std::string(stem) + ".cpp"))) << stem;
    }
    fs::path source = output / "g_sensor/orvopdafconfig.cpp";
    fs::last_write_time(source, fs::last_write_time(source) - std::chrono::hours(1));
    auto before = fs::last_write_time(source);
    ASSERT_EQ(0, RunModulegen({"--schemas", VARK_SCHEMA_DIR, "--output", output.string()}).exitStatus);
    EXPECT_EQ(before, fs::last_write_time(source));
    fs::remove_all(output);
}

/// The model of the test module's schemas (tests/modules/schemas).
class ModulegenModel : public testing::Test
{
protected:
    void SetUp() override
    {
        std::vector<modulegen::SchemaFile> files;
        std::string                        error;
        ASSERT_TRUE(modulegen::FindSchemaFiles(VARK_TEST_SCHEMA_DIR, &files, &error)) << error;
        std::vector<modulegen::Diagnostic> diagnostics;
        ASSERT_TRUE(modulegen::LoadSchemaSet(files, &m_set, &diagnostics));
        m_kind = m_set.FindSchema("kind_1_0_0");
        ASSERT_NE(nullptr, m_kind);
        ASSERT_TRUE(m_kind->module.has_value());
    }

    const modulegen::Record* Nested(const modulegen::Record& owner, const std::string& name)
    {
        for (const auto& record : owner.records)
        {
            if (record->name == name)
            {
                return record.get();
            }
        }
        ADD_FAILURE() << name;
        return &owner;
    }

    modulegen::SchemaSet     m_set;
    const modulegen::Schema* m_kind = nullptr;
};

TEST_F(ModulegenModel, SymbolTableIdsOwnershipAndListElementsFollowTheRecordsPlaces)
{
    const modulegen::Record& top = *m_kind->module->top;
    EXPECT_TRUE(top.hasSymbolTableID);
    EXPECT_TRUE(Nested(top, "enable_sectionStruct")->hasSymbolTableID);
    EXPECT_TRUE(Nested(top, "module_versionStruct")->hasSymbolTableID) << "supplied by the model";
    EXPECT_FALSE(Nested(top, "radial_tabStruct")->hasSymbolTableID);
    EXPECT_TRUE(top.ownsMemory);
    EXPECT_FALSE(Nested(top, "module_versionStruct")->ownsMemory);
    EXPECT_TRUE(Nested(top, "parameter_versionStruct")->ownsMemory);

    const modulegen::Record* region = m_kind->records.front().get();
    ASSERT_EQ("region_dataType", region->name);
    EXPECT_FALSE(region->hasSymbolTableID);
    EXPECT_TRUE(region->isListElement);
    EXPECT_EQ(modulegen::ElementKind::Record, region->members[0].kind);
    EXPECT_EQ("testelements", region->members[0].record->schema->nameSpace) << "found through the used schema";
}

TEST_F(ModulegenModel, RegistrationFollowsTheSetManagersOrder)
{
    const modulegen::SetManager* manager = m_set.FindSetManager("ModuleTestSetManager");
    ASSERT_NE(nullptr, manager);
    ASSERT_EQ(2u, manager->registrations.size());
    EXPECT_EQ("kind10_bps", manager->registrations[0].name);
    EXPECT_EQ("tonemetry_kind10_ife", manager->registrations[1].name);
}

TEST(ModulegenTypeForm, TheModelAndTheStoreAgreeOnTheTypeOfEveryName)
{
    for (const char* name : {"fdconfigdata", "tonemetry_abf34", "Tonemetry_abf34", "TONEMETRYPDLib", "tonemetry",
                             "tonemetry_", "TonemetryAFDTuningData", "abcdefghijklmnopqrstuvwxyz0123456",
                             "tonemetry_aec_tuning_data_for_every_single_scene"})
    {
        char type[ModuleData::MaxTypeLength + 1] = {};
        ModuleData::GetType(type, name);
        EXPECT_EQ(std::string(type), modulegen::ShortTypeOf(name)) << name;
    }
}
} // namespace
