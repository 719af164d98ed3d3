#include "tuningencoder/encoder.h"

#include "recordencoder.h"

namespace tuningencoder
{
std::string EncodeError::ToString() const
{
    return jsonPath.empty() ? message : jsonPath + ": " + message;
}

std::string JsonChild(const std::string& parent, const std::string& key)
{
    std::string escaped;
    escaped.reserve(key.size());
    for (char character : key)
    {
        if (character == '~')
        {
            escaped += "~0";
        }
        else if (character == '/')
        {
            escaped += "~1";
        }
        else
        {
            escaped += character;
        }
    }
    return parent + "/" + escaped;
}

std::string JsonChild(const std::string& parent, size_t index)
{
    return parent + "/" + std::to_string(index);
}

bool EncodeRecord(const modulegen::Record& record, const Json& values, const std::string& path,
                  tuningfile::DataBuilder* out, std::vector<EncodeError>* errors)
{
    const size_t before = errors->size();
    RecordEncoder(errors).Record(record, &values, path, out);
    return errors->size() == before;
}

bool EncodeModule(const modulegen::Schema& schema, const Json& values, const std::string& path,
                  tuningfile::DataBuilder* out, std::vector<EncodeError>* errors)
{
    if (!schema.module || (nullptr == schema.module->top))
    {
        errors->push_back({path, "schema " + schema.stem + " has no module"});
        return false;
    }
    const char* const VersionMember = "module_version";
    if (!values.is_object() || values.contains(VersionMember))
    {
        return EncodeRecord(*schema.module->top, values, path, out, errors);
    }
    // A file of the module holds the version its class reads; the source need not repeat it.
    const modulegen::Version& version = schema.module->version;
    Json                      filled  = values;
    filled[VersionMember] =
        Json{{"major_revision", version.major}, {"minor_revision", version.minor}, {"incr_revision", version.patch}};
    return EncodeRecord(*schema.module->top, filled, path, out, errors);
}
} // namespace tuningencoder
