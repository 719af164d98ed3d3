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
} // namespace modulegen

#endif // MODULEGEN_JSONFILE_H
