// Where a tool finds what is installed with it: relative to its own executable, so that an
// unpacked package works wherever it lies.
#ifndef TOOLS_INSTALLPATHS_H
#define TOOLS_INSTALLPATHS_H

#include <string>

namespace installpaths
{
/// `<prefix>/<relative>`, <prefix> being the folder above the one that holds the running
/// executable (`<prefix>/bin/tonemetry`), when that path exists; else `buildTreePath`, where the
/// same thing lies when the tool runs from the build tree.
std::string Installed(const std::string& relative, const std::string& buildTreePath);

/// The folder of shared data `name` (`schemas`, `ui`): `<prefix>/share/pdlibvark/<name>` of an
/// installed tool, else `buildTreePath`.
std::string SharedData(const std::string& name, const std::string& buildTreePath);

/// The installed library file `fileName` (`<prefix>/<libdir>/<fileName>`), else `buildTreePath`.
std::string Library(const std::string& fileName, const std::string& buildTreePath);
} // namespace installpaths

#endif // TOOLS_INSTALLPATHS_H
