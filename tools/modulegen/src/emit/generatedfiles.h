// Every file that a schema set generates, as text.
#ifndef MODULEGEN_GENERATEDFILES_H
#define MODULEGEN_GENERATEDFILES_H

#include <string>
#include <vector>

#include "modulegen/model.h"

namespace modulegen
{
struct GeneratedFile
{
    std::string relativePath; ///< "folder/stem.h" or "folder/stem.cpp"
    std::string text;
};

/// A header and a source for every schema and every set manager of `set`, which must have
/// passed the checker.
std::vector<GeneratedFile> GenerateFiles(const SchemaSet& set);
} // namespace modulegen

#endif // MODULEGEN_GENERATEDFILES_H
