// Refusals of a model whose header, modes or modules the format cannot express.
#ifndef TUNINGFILE_MODELCHECK_H
#define TUNINGFILE_MODELCHECK_H

#include <string>

#include "tuningfile/model.h"

namespace tuningfile
{
/// False, with a text that names the offending item, when the reader could not read the file
/// that `model` asks for. Entry data is checked later, as it is laid out.
bool CheckModel(const TuningFileModel& model, std::string* error);
} // namespace tuningfile

#endif // TUNINGFILE_MODELCHECK_H
