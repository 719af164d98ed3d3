// From one parsed schema file to the model, before any type reference is resolved.
#ifndef MODULEGEN_SCHEMAREADER_H
#define MODULEGEN_SCHEMAREADER_H

#include <memory>
#include <optional>

#include <nlohmann/json.hpp>

#include "modulegen/diagnosticsink.h"
#include "modulegen/model.h"
#include "modulegen/schemaloader.h"

namespace modulegen
{
/// What one file holds: a schema (module or shared namespace) or a set manager.
struct ReadResult
{
    std::unique_ptr<Schema>     schema;
    std::unique_ptr<SetManager> setManager;
    std::optional<Flavour>      flavour; ///< as the file gives it; the loader fills in defaults
};

/// Refusals go to `sink`; the result is false when there were any.
bool ReadSchemaDocument(const SchemaFile& file, const nlohmann::ordered_json& document, ReadResult* out,
                        DiagnosticSink& sink);
} // namespace modulegen

#endif // MODULEGEN_SCHEMAREADER_H
