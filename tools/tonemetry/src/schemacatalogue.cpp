#include "schemacatalogue.h"

#include "installpaths.h"
#include "modulegen/schemaloader.h"

namespace tonemetry
{
std::string DefaultSchemaFolder()
{
    return installpaths::SharedData("schemas", VARK_SCHEMA_DIR);
}

bool LoadSchemaCatalogue(const std::string& root, modulegen::SchemaSet* set, std::vector<std::string>* problems)
{
    std::vector<modulegen::SchemaFile> files;
    std::string                        error;
    if (!modulegen::FindSchemaFiles(root, &files, &error))
    {
        problems->push_back(error);
        return false;
    }
    std::vector<modulegen::Diagnostic> diagnostics;
    if (!modulegen::LoadSchemaSet(files, set, &diagnostics))
    {
        for (const modulegen::Diagnostic& diagnostic : diagnostics)
        {
            problems->push_back(diagnostic.ToString());
        }
        return false;
    }
    return true;
}
} // namespace tonemetry
