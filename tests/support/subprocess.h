// Runs a program as its users do and keeps what it printed.
#ifndef TESTS_TOOLS_SUBPROCESS_H
#define TESTS_TOOLS_SUBPROCESS_H

#include <sys/types.h>

#include <string>
#include <vector>

namespace testsupport
{
struct ProcessResult
{
    int         exitStatus; ///< -1 when the program did not exit by itself (a signal, a failed start)
    std::string out;
    std::string err;
};

/// Runs `program` with `arguments` and waits for it. Standard output and error go through files
/// in `scratchDirectory`, so a chatty program cannot block on a full pipe.
ProcessResult RunProcess(const std::string& program, const std::vector<std::string>& arguments,
                         const std::string& scratchDirectory);

/// Runs a program of the build machine (found on PATH), never through the emulator of a cross
/// build: a checker such as python3.
ProcessResult RunHostProcess(const std::string& program, const std::vector<std::string>& arguments,
                             const std::string& scratchDirectory);

/// Starts `program` with standard output and error written to the two files; the process id, or
/// -1 when it could not start.
pid_t SpawnWithOutputFiles(const std::string& program, const std::vector<std::string>& arguments,
                           const std::string& outPath, const std::string& errPath);

/// The whole content of a file, empty when it cannot be read.
std::string ReadFileText(const std::string& path);
} // namespace testsupport

#endif // TESTS_TOOLS_SUBPROCESS_H
