// The module schemas that give tonemetry the layout of every module it reads or writes.
#ifndef TONEMETRY_SCHEMACATALOGUE_H
#define TONEMETRY_SCHEMACATALOGUE_H

#include <string>
#include <vector>

#include "modulegen/model.h"

namespace tonemetry
{
/// The schemas installed with the tool, or those of the tree it was built from when it runs from
/// its build tree.
std::string DefaultSchemaFolder();

/// Reads and checks the schemas in the subfolders of `root`, as the build does. False, with one
/// line per problem in `*problems`, when they cannot be used.
bool LoadSchemaCatalogue(const std::string& root, modulegen::SchemaSet* set, std::vector<std::string>* problems);
} // namespace tonemetry

#endif // TONEMETRY_SCHEMACATALOGUE_H
