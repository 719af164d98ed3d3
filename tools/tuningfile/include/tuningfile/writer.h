// Writes binary tuning files that the parameter store reads, at every format version.
#ifndef TUNINGFILE_WRITER_H
#define TUNINGFILE_WRITER_H

#include <cstdint>
#include <string>
#include <vector>

#include "tuningfile/model.h"

namespace tuningfile
{
/// Lays `model` out as a file image in `*out`. Refuses, with false and a text in `*error` that
/// names the offending item, whatever the reader could not read or the format cannot express;
/// `*out` is then left alone. Never throws.
bool Write(const TuningFileModel& model, std::vector<uint8_t>* out, std::string* error);

/// `Write`, then stores the image at `path`.
bool WriteFile(const std::string& path, const TuningFileModel& model, std::string* error);
} // namespace tuningfile

#endif // TUNINGFILE_WRITER_H
