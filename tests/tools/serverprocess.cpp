#include "serverprocess.h"

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>

#include <cstdio>
#include <fstream>
#include <sstream>
#include <thread>

extern char** environ;

namespace testsupport
{
namespace
{
std::string ReadAll(const std::string& path)
{
    std::ifstream      file(path, std::ios::binary);
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

constexpr std::chrono::milliseconds PollStep(10);
} // namespace

ServerProcess::ServerProcess(const std::string& program, const std::vector<std::string>& arguments,
                             const std::string& scratchDirectory)
    : m_outPath(scratchDirectory + "/server.out"), m_errPath(scratchDirectory + "/server.err")
{
    std::vector<std::string> copies = arguments;
    copies.insert(copies.begin(), program);
    std::vector<char*> argv;
    for (std::string& argument : copies)
    {
        argv.push_back(argument.data());
    }
    argv.push_back(nullptr);

    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, 1, m_outPath.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
    posix_spawn_file_actions_addopen(&actions, 2, m_errPath.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
    if (0 != posix_spawn(&m_pid, program.c_str(), &actions, nullptr, argv.data(), environ))
    {
        m_pid = -1;
    }
    posix_spawn_file_actions_destroy(&actions);
}

ServerProcess::~ServerProcess()
{
    if (m_pid > 0)
    {
        kill(m_pid, SIGKILL);
        waitpid(m_pid, nullptr, 0);
    }
}

std::optional<unsigned> ServerProcess::WaitForPort(std::chrono::milliseconds bound)
{
    const auto deadline = std::chrono::steady_clock::now() + bound;
    while (std::chrono::steady_clock::now() < deadline)
    {
        unsigned          port = 0;
        const std::string out  = Out();
        const size_t      line = out.find("listening on port ");
        if ((std::string::npos != line) && (std::string::npos != out.find('\n', line)) &&
            (1 == std::sscanf(out.c_str() + line, "listening on port %u", &port)))
        {
            return port;
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
    return ReadAll(m_outPath);
}

std::string ServerProcess::Err() const
{
    return ReadAll(m_errPath);
}
} // namespace testsupport
