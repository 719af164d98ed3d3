// The two ways a run of pdlib-run fails, each with its own exit status.
#ifndef PDLIBRUN_RUNERRORS_H
#define PDLIBRUN_RUNERRORS_H

#include <stdexcept>
#include <string>

namespace pdlibrun
{
/// Exit status of a bad argument or input file.
constexpr int ExitInputError = 2;
/// Exit status of a library that cannot be loaded or refuses to run.
constexpr int ExitLibraryError = 1;

/// An argument or input file is wrong; the message is one line, naming what is wrong.
class InputError : public std::runtime_error
{
public:
    explicit InputError(const std::string& message) : std::runtime_error(message) {}
};

/// The library could not be loaded or did not do its part.
class LibraryError : public std::runtime_error
{
public:
    explicit LibraryError(const std::string& message) : std::runtime_error(message) {}
};
} // namespace pdlibrun

#endif // PDLIBRUN_RUNERRORS_H
