#include "inputfile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "runerrors.h"

namespace pdlibrun
{
namespace
{
class FileDescriptor
{
public:
    explicit FileDescriptor(int fd) : m_fd(fd) {}
    ~FileDescriptor()
    {
        if (m_fd >= 0)
        {
            close(m_fd);
        }
    }
    FileDescriptor(const FileDescriptor&)            = delete;
    FileDescriptor& operator=(const FileDescriptor&) = delete;

    int Get() const { return m_fd; }

private:
    int m_fd;
};
} // namespace

std::string ReadInputFile(const std::string& path, const std::string& what)
{
    const std::string failure = path + ": cannot read the " + what + ": ";
    FileDescriptor    file(open(path.c_str(), O_RDONLY | O_CLOEXEC));
    struct stat       status = {};
    if ((file.Get() < 0) || (0 != fstat(file.Get(), &status)))
    {
        throw InputError(failure + std::strerror(errno));
    }
    // A directory opens fine and fails only at the first read: say so plainly.
    if (!S_ISREG(status.st_mode))
    {
        throw InputError(failure + "not a regular file");
    }

    std::string bytes;
    char        chunk[4096];
    for (;;)
    {
        const ssize_t count = read(file.Get(), chunk, sizeof(chunk));
        if (count == 0)
        {
            return bytes;
        }
        if (count < 0)
        {
            if (EINTR == errno)
            {
                continue;
            }
            throw InputError(failure + std::strerror(errno));
        }
        bytes.append(chunk, static_cast<size_t>(count));
    }
}
} // namespace pdlibrun
