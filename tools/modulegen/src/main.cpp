// modulegen: reads the module schemas, checks them, and writes the generated module and set
// manager sources. Exit status 0 on success, 2 when the schemas or the arguments are refused,
// 1 when an output cannot be written.
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>

#include "emit/generatedfiles.h"
#include "modulegen/schemaloader.h"

namespace
{
namespace fs = std::filesystem;

constexpr int ExitRefused     = 2;
constexpr int ExitWriteFailed = 1;

/// Writes `text` unless the file holds it already, so that an unchanged output keeps its time
/// and what depends on it is not rebuilt.
bool WriteIfChanged(const fs::path& path, const std::string& text, std::string* error)
{
    std::ifstream existing(path, std::ios::binary);
    if (existing)
    {
        std::ostringstream current;
        current << existing.rdbuf();
        if (current.str() == text)
        {
            return true;
        }
    }
    std::error_code failure;
    fs::create_directories(path.parent_path(), failure);
    std::ofstream stream(path, std::ios::binary | std::ios::trunc);
    stream << text;
    stream.close();
    if (failure || !stream)
    {
        *error = path.string() + ": cannot be written";
        return false;
    }
    return true;
}
} // namespace

int main(int argc, char** argv)
{
    CLI::App    app("Generates parameter module sources from module schemas.", "modulegen");
    std::string schemaRoot;
    std::string outputRoot;
    bool        checkOnly = false;
    app.add_option("--schemas", schemaRoot, "folder whose subfolders (g_facedetection, ...) hold the schemas")
        ->required();
    app.add_option("--output", outputRoot, "folder that receives the generated subfolders");
    app.add_flag("--check", checkOnly, "only read and check the schemas");
    try
    {
        app.parse(argc, argv);
    }
    catch (const CLI::ParseError& error)
    {
        int status = app.exit(error);
        return (0 == status) ? 0 : ExitRefused;
    }
    if (!checkOnly && outputRoot.empty())
    {
        std::fprintf(stderr, "modulegen: --output is required unless --check is given\n");
        return ExitRefused;
    }

    std::vector<modulegen::SchemaFile> files;
    std::string                        error;
    if (!modulegen::FindSchemaFiles(schemaRoot, &files, &error))
    {
        std::fprintf(stderr, "modulegen: %s\n", error.c_str());
        return ExitRefused;
    }
    modulegen::SchemaSet               set;
    std::vector<modulegen::Diagnostic> diagnostics;
    if (!modulegen::LoadSchemaSet(files, &set, &diagnostics))
    {
        for (const modulegen::Diagnostic& diagnostic : diagnostics)
        {
            std::fprintf(stderr, "%s\n", diagnostic.ToString().c_str());
        }
        return ExitRefused;
    }
    if (checkOnly)
    {
        return 0;
    }
    for (const modulegen::GeneratedFile& file : modulegen::GenerateFiles(set))
    {
        if (!WriteIfChanged(fs::path(outputRoot) / file.relativePath, file.text, &error))
        {
            std::fprintf(stderr, "modulegen: %s\n", error.c_str());
            return ExitWriteFailed;
        }
    }
    return 0;
}
