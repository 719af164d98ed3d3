// Reading a set of schema files into the model: parse, resolve type references, check.
#ifndef MODULEGEN_SCHEMALOADER_H
#define MODULEGEN_SCHEMALOADER_H

#include <string>
#include <vector>

#include "modulegen/model.h"

namespace modulegen
{
/// A schema file and where its output goes.
struct SchemaFile
{
    std::string path;   ///< as it is to appear in messages
    std::string folder; ///< output folder (the file's folder below the schema root)
    std::string stem;   ///< file name without ".json"
};

/// One refusal: the file, the JSON pointer of the offending value (empty for the whole file),
/// and what is wrong.
struct Diagnostic
{
    std::string file;
    std::string jsonPath;
    std::string message;

    /// "file: /json/path: message".
    std::string ToString() const;
};

/// The *.json files in the folders directly below `root`, sorted by folder and name.
/// False with `*error` set when `root` cannot be listed.
bool FindSchemaFiles(const std::string& root, std::vector<SchemaFile>* files, std::string* error);

/// Reads, resolves and checks `files` as one set. On any refusal returns false, with every
/// problem found in `*diagnostics`; `*out` is then unspecified.
bool LoadSchemaSet(const std::vector<SchemaFile>& files, SchemaSet* out, std::vector<Diagnostic>* diagnostics);
} // namespace modulegen

#endif // MODULEGEN_SCHEMALOADER_H
