// Whole input files, read with one clear error for anything that is not a readable file.
#ifndef PDLIBRUN_INPUTFILE_H
#define PDLIBRUN_INPUTFILE_H

#include <string>

namespace pdlibrun
{
/// The bytes of a regular file. Throws InputError "<path>: cannot read the <what>: <reason>".
std::string ReadInputFile(const std::string& path, const std::string& what);
} // namespace pdlibrun

#endif // PDLIBRUN_INPUTFILE_H
