// Checks of the plain fields of a pack source, each refusal at its JSON pointer.
#ifndef TONEMETRY_SOURCEFIELDS_H
#define TONEMETRY_SOURCEFIELDS_H

#include <initializer_list>
#include <string>
#include <vector>

#include "tuningencoder/encoder.h"

namespace tonemetry
{
using tuningencoder::EncodeError;
using tuningencoder::Json;

/// Refuses the keys of `object` that are not `allowed`: a misspelt key would otherwise be ignored.
void RefuseUnknownKeys(const Json& object, const std::string& path, std::initializer_list<const char*> allowed,
                       std::vector<EncodeError>* errors);

/// The text of a string value; false, after a refusal, for anything else.
bool ReadText(const Json& value, const std::string& path, std::string* out, std::vector<EncodeError>* errors);
} // namespace tonemetry

#endif // TONEMETRY_SOURCEFIELDS_H
