// tonemetry pack: a JSON source of modes and module values, written as a binary tuning file.
#include <cstdio>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

#include "command.h"
#include "modulegen/jsonfile.h"
#include "packedits.h"
#include "packsource.h"
#include "schemacatalogue.h"
#include "tuningfile/writer.h"

namespace tonemetry
{
namespace
{
struct PackOptions
{
    std::string source;
    std::string output;
    std::string edits;
    std::string version = "5.0.0";
    std::string schemas = DefaultSchemaFolder();
};

void PrintRefusals(const std::string& source, const std::vector<EncodeError>& errors)
{
    for (const EncodeError& error : errors)
    {
        std::fprintf(stderr, "%s: %s\n", source.c_str(), error.ToString().c_str());
    }
}

bool StoreImage(const std::string& path, const std::vector<uint8_t>& image)
{
    std::ofstream stream(path, std::ios::binary | std::ios::trunc);
    stream.write(reinterpret_cast<const char*>(image.data()), static_cast<std::streamsize>(image.size()));
    stream.close();
    return static_cast<bool>(stream);
}

bool ReadJson(const std::string& path, Json* out)
{
    modulegen::DiagnosticSink sink;
    if (modulegen::ReadJsonFile(path, path, out, sink))
    {
        return true;
    }
    for (const modulegen::Diagnostic& diagnostic : sink.All())
    {
        std::fprintf(stderr, "%s\n", diagnostic.ToString().c_str());
    }
    return false;
}

int RunPack(const PackOptions& options)
{
    tuningfile::TuningFileModel model;
    modulegen::Version          version;
    if (!modulegen::ParseVersion(options.version, &version))
    {
        std::fprintf(stderr, "tonemetry pack: --version '%s' is no version major.minor.patch\n",
                     options.version.c_str());
        return ExitTrouble;
    }
    // The alignment follows from the version.
    model.version = tuningfile::Version{version.major, version.minor, version.patch};

    modulegen::SchemaSet     schemas;
    std::vector<std::string> problems;
    if (!LoadSchemaCatalogue(options.schemas, &schemas, &problems))
    {
        for (const std::string& problem : problems)
        {
            std::fprintf(stderr, "tonemetry pack: %s\n", problem.c_str());
        }
        return ExitTrouble;
    }

    Json source;
    if (!ReadJson(options.source, &source))
    {
        return ExitTrouble;
    }
    std::vector<EncodeError> errors;
    Json                     edits;
    if (!options.edits.empty() && !(ReadJson(options.edits, &edits) && ApplyEdits(edits, &source, &errors)))
    {
        PrintRefusals(options.edits, errors);
        return ExitTrouble;
    }
    if (!ReadPackSource(source, schemas, &model, &errors))
    {
        PrintRefusals(options.source, errors);
        return ExitTrouble;
    }
    std::vector<uint8_t> image;
    std::string          refusal;
    if (!tuningfile::Write(model, &image, &refusal))
    {
        PrintRefusals(options.source, {WriterRefusalInSource(refusal)});
        return ExitTrouble;
    }
    if (!StoreImage(options.output, image))
    {
        std::fprintf(stderr, "tonemetry pack: %s: cannot be written\n", options.output.c_str());
        return ExitTrouble;
    }
    std::printf("%s: %zu bytes, %zu modules, version %s\n", options.output.c_str(), image.size(), model.modules.size(),
                model.version.ToString().c_str());
    return ExitSuccess;
}
} // namespace

void AddPackCommand(CLI::App& app, int* status)
{
    auto      options = std::make_shared<PackOptions>();
    CLI::App* command =
        app.add_subcommand("pack", "Write a binary tuning file from a JSON source of modes and modules.");
    command->add_option("source", options->source, "the JSON source (format: tools/tonemetry/README.md)")->required();
    command->add_option("-o,--output", options->output, "the tuning file to write")->required();
    command->add_option("--edits", options->edits,
                        "edits made on a live device (EDITS.json) applied to the source before packing");
    command->add_option("--version", options->version, "file format version; its alignment follows from it")
        ->capture_default_str();
    command->add_option("--schemas", options->schemas, "folder whose subfolders hold the module schemas")
        ->capture_default_str();
    command->callback([options, status]() { *status = RunPack(*options); });
}
} // namespace tonemetry
