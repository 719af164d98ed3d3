// The pack source reader and the encoder behind it: any JSON text read as a source against the
// shipped schemas, and a model that reads written as a tuning file.
#include <cstdlib>
#include <string>
#include <vector>

#include "packsource.h"
#include "schemacatalogue.h"
#include "tuningfile/writer.h"

namespace
{
const modulegen::SchemaSet& Schemas()
{
    static const modulegen::SchemaSet schemas = [] {
        modulegen::SchemaSet     loaded;
        std::vector<std::string> problems;
        if (!tonemetry::LoadSchemaCatalogue(tonemetry::DefaultSchemaFolder(), &loaded, &problems))
        {
            std::abort(); // the tree's own schemas must load
        }
        return loaded;
    }();
    return schemas;
}
} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const tonemetry::Json source = tonemetry::Json::parse(data, data + size, nullptr, false);
    if (source.is_discarded())
    {
        return 0;
    }
    tuningfile::TuningFileModel         model;
    std::vector<tonemetry::EncodeError> errors;
    if (tonemetry::ReadPackSource(source, Schemas(), &model, &errors))
    {
        std::vector<uint8_t> image;
        std::string          refusal;
        tuningfile::Write(model, &image, &refusal);
    }
    return 0;
}
