// Edits made on a live device (EDITS.json, the session's edit log) carried into a
// pack source, so that the next packed file holds what was tuned live.
#ifndef TONEMETRY_PACKEDITS_H
#define TONEMETRY_PACKEDITS_H

#include <string>
#include <vector>

#include "sourcefields.h"

namespace tonemetry
{
/// Applies every edit of `edits` ({"edits": [{"mode", "module", "path", "name", "value"}]}) to
/// the module values of `*source`. An edit names the module by its name and the mode that holds
/// it; `path` leads through records by their names joined by '.', an element of an array by
/// "[index]" after its name ("curves[2].gain"), and `name` is the member set, which may carry an
/// index too. Values are the link's texts; the schema check of the source takes them (enums by
/// name or number, "0x" texts, numbers), so they become JSON numbers and booleans where they
/// read as such, and stay texts where the source holds a text. Refusals go to `*errors` with
/// the JSON pointer of the edit's field; true when there is none.
bool ApplyEdits(const Json& edits, Json* source, std::vector<EncodeError>* errors);
} // namespace tonemetry

#endif // TONEMETRY_PACKEDITS_H
