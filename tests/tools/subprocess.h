// Runs a program as its users do and keeps what it printed.
#ifndef TESTS_TOOLS_SUBPROCESS_H
#define TESTS_TOOLS_SUBPROCESS_H

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
} // namespace testsupport

#endif // TESTS_TOOLS_SUBPROCESS_H
