// A module schema that says what of its records is still to be supplied: the model keeps the
// text, an empty one is refused, and the library's catalogue marks exactly the modules whose
// records are not complete.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "modulegen/schemaloader.h"

namespace
{
namespace fs = std::filesystem;

/// Loads a set of one tuning set manager and one module with the given `pending` member
/// (a JSON value, or empty for none).
bool LoadModuleWithPending(const std::string& pending, modulegen::SchemaSet* set,
                           std::vector<modulegen::Diagnostic>* diagnostics)
{
    const testing::TestInfo* test   = testing::UnitTest::GetInstance()->current_test_info();
    const fs::path           root   = fs::path(testing::TempDir()) / ("modulegenpending_" + std::string(test->name()));
    const fs::path           folder = root / "g_test";
    fs::remove_all(root);
    fs::create_directories(folder);
    std::ofstream(folder / "testsetmanager.json") << R"({"setManager": "TestSetManager", "flavour": "tuning"})";
    std::ofstream(folder / "blk_1_0_0.json")
        << R"({"namespace": "blk_1_0_0", "module": {"top": "tonemetry_blk10Type", "version": "1.0.0", "names": ["blk10_ife"])"
        << (pending.empty() ? "" : ", \"pending\": " + pending)
        << R"(}, "records": {"tonemetry_blk10Type": ["module_versionStruct module_version"]}})";
    std::vector<modulegen::SchemaFile> files;
    std::string                        error;
    EXPECT_TRUE(modulegen::FindSchemaFiles(root.string(), &files, &error)) << error;
    bool loaded = modulegen::LoadSchemaSet(files, set, diagnostics);
    fs::remove_all(root);
    return loaded;
}

std::string Messages(const std::vector<modulegen::Diagnostic>& diagnostics)
{
    std::string text;
    for (const modulegen::Diagnostic& diagnostic : diagnostics)
    {
        text += diagnostic.jsonPath + ": " + diagnostic.message + "\n";
    }
    return text;
}

TEST(ModulegenPending, TheModelKeepsWhatIsStillToBeSupplied)
{
    modulegen::SchemaSet               set;
    std::vector<modulegen::Diagnostic> diagnostics;
    ASSERT_TRUE(LoadModuleWithPending(R"("the core")", &set, &diagnostics)) << Messages(diagnostics);
    const modulegen::Schema* schema = set.FindSchema("blk_1_0_0");
    ASSERT_NE(nullptr, schema);
    EXPECT_EQ("the core", schema->module->pending);

    modulegen::SchemaSet complete;
    ASSERT_TRUE(LoadModuleWithPending("", &complete, &diagnostics));
    EXPECT_EQ("", complete.FindSchema("blk_1_0_0")->module->pending) << "a complete module";
}

TEST(ModulegenPending, AnEmptyOrNonTextMarkIsRefused)
{
    modulegen::SchemaSet               set;
    std::vector<modulegen::Diagnostic> diagnostics;
    EXPECT_FALSE(LoadModuleWithPending(R"("")", &set, &diagnostics));
    EXPECT_NE(std::string::npos, Messages(diagnostics).find("/module/pending: says what is still to be supplied"))
        << Messages(diagnostics);
    diagnostics.clear();
    EXPECT_FALSE(LoadModuleWithPending("true", &set, &diagnostics));
    EXPECT_NE(std::string::npos, Messages(diagnostics).find("/module/pending: must be a string"))
        << Messages(diagnostics);
}

TEST(ModulegenPending, TheCatalogueMarksEveryModuleButTheCompleteOnes)
{
    std::vector<modulegen::SchemaFile> files;
    std::string                        error;
    ASSERT_TRUE(modulegen::FindSchemaFiles(VARK_SCHEMA_DIR, &files, &error)) << error;
    modulegen::SchemaSet               set;
    std::vector<modulegen::Diagnostic> diagnostics;
    ASSERT_TRUE(modulegen::LoadSchemaSet(files, &set, &diagnostics)) << Messages(diagnostics);
    std::vector<std::string> complete;
    size_t                   pending = 0;
    for (const auto& schema : set.schemas)
    {
        if (!schema->module || (schema->folder != "g_tonemetry"))
        {
            continue;
        }
        if (schema->module->pending.empty())
        {
            complete.push_back(schema->nameSpace);
        }
        else
        {
            ++pending;
        }
    }
    EXPECT_EQ((std::vector<std::string>{"abf_3_4_0", "afpdafelements", "afpdlibelements"}), complete);
    EXPECT_EQ(219u - complete.size(), pending);
}
} // namespace
