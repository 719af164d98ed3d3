#include "serverprocess.h"

#include <signal.h>
#include <sys/wait.h>

#include <cstdio>
#include <thread>

#include "subprocess.h"

namespace testsupport
{
namespace
{
constexpr std::chrono::milliseconds PollStep(10);
} // namespace

ServerProcess::ServerProcess(const std::string& program, const std::vector<std::string>& arguments,
                             const std::string& scratchDirectory)
    : m_outPath(scratchDirectory + "/server.out"), m_errPath(scratchDirectory + "/server.err")
{
    m_pid = SpawnWithOutputFiles(program, arguments, m_outPath, m_errPath);
}

ServerProcess::~ServerProcess()
{
    if (m_pid > 0)
    {
        kill(m_pid, SIGKILL);
        waitpid(m_pid, nullptr, 0);
    }
}

std::optional<std::string> ServerProcess::WaitForLine(const std::string& prefix, std::chrono::milliseconds bound)
{
    const auto deadline = std::chrono::steady_clock::now() + bound;
    while (std::chrono::steady_clock::now() < deadline)
    {
        const std::string out   = Out();
        const size_t      start = out.find(prefix);
        const size_t      end   = (std::string::npos == start) ? start : out.find('\n', start);
        if (std::string::npos != end)
        {
            return out.substr(start + prefix.size(), end - start - prefix.size());
        }
        if (m_pid <= 0 || (0 != waitpid(m_pid, nullptr, WNOHANG)))
        {
            m_pid = -1;
            return std::nullopt;
        }
        std::this_thread::sleep_for(PollStep);
    }
    return std::nullopt;
}

std::optional<unsigned> ServerProcess::WaitForPort(std::chrono::milliseconds bound)
{
    const std::optional<std::string> rest = WaitForLine("listening on port ", bound);
    unsigned                         port = 0;
    if (!rest || (1 != std::sscanf(rest->c_str(), "%u", &port)))
    {
        return std::nullopt;
    }
    return port;
}

void ServerProcess::Signal(int signal) const
{
    if (m_pid > 0)
    {
        kill(m_pid, signal);
    }
}

std::optional<int> ServerProcess::WaitForExit(std::chrono::milliseconds bound)
{
    const auto deadline = std::chrono::steady_clock::now() + bound;
    while (m_pid > 0)
    {
        int   status = 0;
        pid_t ended  = waitpid(m_pid, &status, WNOHANG);
        if (ended == m_pid)
        {
            m_pid = -1;
            return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
        }
        if (std::chrono::steady_clock::now() >= deadline)
        {
            return std::nullopt;
        }
        std::this_thread::sleep_for(PollStep);
    }
    return std::nullopt;
}

std::string ServerProcess::Out() const
{
    return ReadFileText(m_outPath);
}

std::string ServerProcess::Err() const
{
    return ReadFileText(m_errPath);
}
} // namespace testsupport
