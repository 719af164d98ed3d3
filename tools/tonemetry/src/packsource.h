// A pack source: the set manager, the mode tree and the modules of a tuning file, in JSON
// (the format is in tools/tonemetry/README.md).
#ifndef TONEMETRY_PACKSOURCE_H
#define TONEMETRY_PACKSOURCE_H

#include <string>
#include <vector>

#include "modulegen/model.h"
#include "sourcefields.h"
#include "tuningfile/model.h"

namespace tonemetry
{
/// Reads `source` into the modes, modules and binary tag of `*model`; its version and alignment
/// stay as they are. The model's modes and modules stand at the indices they have in the
/// source. Every refusal goes to `*errors` with its JSON pointer; true when there is none.
bool ReadPackSource(const Json& source, const modulegen::SchemaSet& schemas, tuningfile::TuningFileModel* model,
                    std::vector<EncodeError>* errors);

/// A refusal of the tuning-file writer, which names modes and modules by their index in the
/// model ("modes[2]: ..."), placed at the JSON pointer of the source item of that index.
EncodeError WriterRefusalInSource(const std::string& text);
} // namespace tonemetry

#endif // TONEMETRY_PACKSOURCE_H
