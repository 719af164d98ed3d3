#include "installpaths.h"

#include <sys/stat.h>
#include <unistd.h>

#include <climits>

namespace installpaths
{
namespace
{
/// The folder above the running executable's folder; empty when the executable is unknown.
std::string InstallPrefix()
{
    char          path[PATH_MAX];
    const ssize_t length = readlink("/proc/self/exe", path, sizeof(path) - 1);
    if (length <= 0)
    {
        return {};
    }
    std::string executable(path, static_cast<size_t>(length));
    for (int level = 0; level < 2; ++level)
    {
        const size_t slash = executable.find_last_of('/');
        if (std::string::npos == slash)
        {
            return {};
        }
        executable.erase(slash);
    }
    return executable;
}

bool Exists(const std::string& path)
{
    struct stat info;
    return 0 == stat(path.c_str(), &info);
}
} // namespace

std::string Installed(const std::string& relative, const std::string& buildTreePath)
{
    static const std::string prefix    = InstallPrefix();
    const std::string        candidate = prefix + "/" + relative;
    return (!prefix.empty() && Exists(candidate)) ? candidate : buildTreePath;
}

std::string SharedData(const std::string& name, const std::string& buildTreePath)
{
    return Installed(VARK_INSTALL_DATADIR "/" + name, buildTreePath);
}

std::string Library(const std::string& fileName, const std::string& buildTreePath)
{
    return Installed(VARK_INSTALL_LIBDIR "/" + fileName, buildTreePath);
}
} // namespace installpaths
