#include "sourcefields.h"

namespace tonemetry
{
void RefuseUnknownKeys(const Json& object, const std::string& path, std::initializer_list<const char*> allowed,
                       std::vector<EncodeError>* errors)
{
    for (const auto& item : object.items())
    {
        bool known = false;
        for (const char* key : allowed)
        {
            known = known || (item.key() == key);
        }
        if (!known)
        {
            errors->push_back({tuningencoder::JsonChild(path, item.key()), "unknown key '" + item.key() + "'"});
        }
    }
}

bool ReadText(const Json& value, const std::string& path, std::string* out, std::vector<EncodeError>* errors)
{
    if (!value.is_string())
    {
        errors->push_back({path, "expected a string"});
        return false;
    }
    *out = value.get<std::string>();
    return true;
}
} // namespace tonemetry
