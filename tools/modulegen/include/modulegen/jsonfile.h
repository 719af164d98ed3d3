// Reading one JSON file strictly: syntax errors and duplicate keys are refused with their place.
#ifndef MODULEGEN_JSONFILE_H
#define MODULEGEN_JSONFILE_H

#include <string>

#include <nlohmann/json.hpp>

#include "modulegen/diagnosticsink.h"

namespace modulegen
{
/// Parses `path` into `*out`, keeping the order of keys (a schema's order is meaningful).
/// A key given twice in one object is refused, as the later one would silently win.
bool ReadJsonFile(const std::string& path, const std::string& displayPath, nlohmann::ordered_json* out,
                  DiagnosticSink& sink);

/// The kind of a JSON value as error messages name it: "an object", "an array", "a string",
/// "a number", "a boolean" or "null".
std::string JsonKindName(const nlohmann::ordered_json& value);
} // namespace modulegen

#endif // MODULEGEN_JSONFILE_H
