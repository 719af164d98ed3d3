#include "subprocess.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>

#include <fstream>
#include <sstream>

extern char** environ;

namespace testsupport
{
std::string ReadFileText(const std::string& path)
{
    std::ifstream      file(path, std::ios::binary);
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

namespace
{
/// The words that run a program of this build: the program itself, or in a cross build the
/// emulator (found on PATH) with its arguments first.
std::vector<std::string> CommandWords(const std::string& program)
{
    std::vector<std::string> words;
#ifdef VARK_PROGRAM_EMULATOR
    std::istringstream emulator(VARK_PROGRAM_EMULATOR);
    for (std::string word; emulator >> word;)
    {
        words.push_back(word);
    }
#endif
    words.push_back(program);
    return words;
}

/// Starts the command `words` (the first found on PATH) with its output going to the files.
pid_t Spawn(std::vector<std::string> words, const std::string& outPath, const std::string& errPath)
{
    std::vector<char*> argv;
    for (std::string& word : words)
    {
        argv.push_back(word.data());
    }
    argv.push_back(nullptr);

    // Emptied here first: under an emulator posix_spawn may return before the child has opened
    // them, and a reader must not take an earlier run's output for this one's.
    std::ofstream(outPath, std::ios::trunc);
    std::ofstream(errPath, std::ios::trunc);

    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, 1, outPath.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
    posix_spawn_file_actions_addopen(&actions, 2, errPath.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
    pid_t pid = -1;
    if (0 != posix_spawnp(&pid, argv[0], &actions, nullptr, argv.data(), environ))
    {
        pid = -1;
    }
    posix_spawn_file_actions_destroy(&actions);
    return pid;
}

ProcessResult Wait(pid_t pid, const std::string& outPath, const std::string& errPath)
{
    ProcessResult result = {-1, "", ""};
    int           status = 0;
    if ((pid > 0) && (pid == waitpid(pid, &status, 0)) && WIFEXITED(status))
    {
        result.exitStatus = WEXITSTATUS(status);
    }
    result.out = ReadFileText(outPath);
    result.err = ReadFileText(errPath);
    return result;
}

std::vector<std::string> Joined(std::vector<std::string> words, const std::vector<std::string>& arguments)
{
    words.insert(words.end(), arguments.begin(), arguments.end());
    return words;
}
} // namespace

pid_t SpawnWithOutputFiles(const std::string& program, const std::vector<std::string>& arguments,
                           const std::string& outPath, const std::string& errPath)
{
    return Spawn(Joined(CommandWords(program), arguments), outPath, errPath);
}

ProcessResult RunProcess(const std::string& program, const std::vector<std::string>& arguments,
                         const std::string& scratchDirectory)
{
    const std::string outPath = scratchDirectory + "/stdout.txt";
    const std::string errPath = scratchDirectory + "/stderr.txt";
    return Wait(SpawnWithOutputFiles(program, arguments, outPath, errPath), outPath, errPath);
}

ProcessResult RunHostProcess(const std::string& program, const std::vector<std::string>& arguments,
                             const std::string& scratchDirectory)
{
    const std::string outPath = scratchDirectory + "/host-stdout.txt";
    const std::string errPath = scratchDirectory + "/host-stderr.txt";
    return Wait(Spawn(Joined({program}, arguments), outPath, errPath), outPath, errPath);
}
} // namespace testsupport
