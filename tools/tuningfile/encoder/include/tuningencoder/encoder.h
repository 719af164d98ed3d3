// The schema-driven encoder: a module's members, given by name in a JSON value tree, turned
// into the DataBuilder of its top record, checked against the schema on the way.
#ifndef TUNINGENCODER_ENCODER_H
#define TUNINGENCODER_ENCODER_H

#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "modulegen/model.h"
#include "tuningfile/databuilder.h"

namespace tuningencoder
{
using Json = nlohmann::ordered_json;

/// One refusal: the JSON pointer of the value that is wrong, and what is wrong with it.
struct EncodeError
{
    std::string jsonPath;
    std::string message;

    /// "/json/path: message".
    std::string ToString() const;
};

/// Appends the members of `record`, given in the object `values` by their schema names, in
/// load order to `*out`.
///
/// A member that `values` leaves out (or gives as null) is zero: 0, the enum's value 0, an empty
/// string, an empty list, a record of zeros; an optional member left out is absent. An enum
/// without the value 0 must be given. Names that the record does not have are refused, so a
/// misspelt member cannot pass for a missing one.
///
/// `path` is the JSON pointer of `values` in its document; every refusal is appended to
/// `*errors` with the pointer of the offending value, and encoding goes on where it can, so that
/// one run tells all problems. Returns true when nothing was refused; `*out` is then complete.
bool EncodeRecord(const modulegen::Record& record, const Json& values, const std::string& path,
                  tuningfile::DataBuilder* out, std::vector<EncodeError>* errors);

/// `EncodeRecord` of the top record of `schema`'s module. When `values` leaves `module_version`
/// out, it is the module's own version, which is what a file of the module holds.
bool EncodeModule(const modulegen::Schema& schema, const Json& values, const std::string& path,
                  tuningfile::DataBuilder* out, std::vector<EncodeError>* errors);

/// "parent/key" with the key escaped as a JSON pointer needs ('~' as "~0", '/' as "~1").
std::string JsonChild(const std::string& parent, const std::string& key);
std::string JsonChild(const std::string& parent, size_t index);
} // namespace tuningencoder

#endif // TUNINGENCODER_ENCODER_H
