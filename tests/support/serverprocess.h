// A program started in the background, as a script starts a server: its output goes to files,
// and every wait on it is bounded.
#ifndef TESTS_TOOLS_SERVERPROCESS_H
#define TESTS_TOOLS_SERVERPROCESS_H

#include <sys/types.h>

#include <chrono>
#include <optional>
#include <string>
#include <vector>

namespace testsupport
{
class ServerProcess
{
public:
    /// Starts `program` with `arguments`; standard output and error go to files in
    /// `scratchDirectory`.
    ServerProcess(const std::string& program, const std::vector<std::string>& arguments,
                  const std::string& scratchDirectory);
    /// Kills a program still running.
    ~ServerProcess();
    ServerProcess(const ServerProcess&)            = delete;
    ServerProcess& operator=(const ServerProcess&) = delete;

    /// The rest of the first whole line of standard output that begins with `prefix`, once it
    /// has been written; nothing when the program ends first or `bound` passes.
    std::optional<std::string> WaitForLine(const std::string& prefix, std::chrono::milliseconds bound);
    /// The port of the first "listening on port N" line, once it has been written; nothing
    /// when the program ends first or `bound` passes.
    std::optional<unsigned> WaitForPort(std::chrono::milliseconds bound);
    /// Sends `signal`.
    void Signal(int signal) const;
    /// The exit status once the program has ended; -1 when it ended by a signal, nothing when it
    /// is still running after `bound`.
    std::optional<int> WaitForExit(std::chrono::milliseconds bound);

    std::string Out() const;
    std::string Err() const;

private:
    std::string m_outPath;
    std::string m_errPath;
    pid_t       m_pid = -1;
};
} // namespace testsupport

#endif // TESTS_TOOLS_SERVERPROCESS_H
