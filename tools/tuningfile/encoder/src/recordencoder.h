// Walks a record of the schema model and a JSON object of its members side by side.
#ifndef TUNINGENCODER_RECORDENCODER_H
#define TUNINGENCODER_RECORDENCODER_H

#include <cstdint>
#include <string>
#include <vector>

#include "tuningencoder/encoder.h"

namespace tuningencoder
{
class RecordEncoder
{
public:
    explicit RecordEncoder(std::vector<EncodeError>* errors) : m_errors(errors) {}

    /// The members of `record` from the object `values` (null: all members left out), in load order.
    void Record(const modulegen::Record& record, const Json* values, const std::string& path,
                tuningfile::DataBuilder* out);

private:
    void Fail(const std::string& path, const std::string& message);
    void RefuseUnknownMembers(const modulegen::Record& record, const Json& values, const std::string& path);

    /// One member by its shape; `value` is null when the member was left out.
    void Member(const modulegen::Member& member, const Json* value, const std::string& path,
                tuningfile::DataBuilder* out);
    void FixedArray(const modulegen::Member& member, const Json* value, const std::string& path,
                    tuningfile::DataBuilder* out);
    void Repeated(const modulegen::Member& member, const Json* value, const std::string& path,
                  tuningfile::DataBuilder* out);
    void Optional(const modulegen::Member& member, const Json* value, const std::string& path,
                  tuningfile::DataBuilder* out);

    /// One element of the member's kind, in the form it takes in line.
    void     Element(const modulegen::Member& member, const Json* value, const std::string& path,
                     tuningfile::DataBuilder* out);
    uint64_t ScalarElement(const modulegen::Member& member, const Json* value, const std::string& path);
    uint32_t EnumElement(const modulegen::Member& member, const Json* value, const std::string& path);

    /// The bits of the scalar elements of an array value; left alone when `value` is no array of
    /// `expectedCount` elements (any count when 0).
    void ScalarElements(const modulegen::Member& member, const Json& value, const std::string& path,
                        size_t expectedCount, std::vector<uint64_t>* bits);

    std::vector<EncodeError>* m_errors;
};
} // namespace tuningencoder

#endif // TUNINGENCODER_RECORDENCODER_H
