#include "subprocess.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>

#include <fstream>
#include <sstream>

extern char** environ;

namespace testsupport
{
namespace
{
std::string ReadAll(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}
} // namespace

ProcessResult RunProcess(const std::string& program, const std::vector<std::string>& arguments,
                         const std::string& scratchDirectory)
{
    const std::string outPath = scratchDirectory + "/stdout.txt";
    const std::string errPath = scratchDirectory + "/stderr.txt";

    std::vector<std::string> argumentCopies = arguments;
    std::string programCopy = program;
    std::vector<char*> argv = {programCopy.data()};
    for (std::string& argument : argumentCopies)
    {
        argv.push_back(argument.data());
    }
    argv.push_back(nullptr);

    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, 1, outPath.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
    posix_spawn_file_actions_addopen(&actions, 2, errPath.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
    pid_t pid = 0;
    const int spawned = posix_spawn(&pid, program.c_str(), &actions, nullptr, argv.data(), environ);
    posix_spawn_file_actions_destroy(&actions);

    ProcessResult result = {-1, "", ""};
    int status = 0;
    if ((0 == spawned) && (pid == waitpid(pid, &status, 0)) && WIFEXITED(status))
    {
        result.exitStatus = WEXITSTATUS(status);
    }
    result.out = ReadAll(outPath);
    result.err = ReadAll(errPath);
    return result;
}
} // namespace testsupport
