// What the subcommands of tonemetry share: their exit statuses and how they are added.
#ifndef TONEMETRY_COMMAND_H
#define TONEMETRY_COMMAND_H

#include <CLI/CLI.hpp>

namespace tonemetry
{
enum ExitStatus
{
    ExitSuccess = 0,
    ExitFailed  = 1, ///< the environment failed: schemas unreadable, an output not writable
    ExitRefused = 2, ///< the input or the arguments were refused
};

/// `pack SOURCE.json -o FILE [--version X.Y.Z] [--schemas DIR]`. When the subcommand runs, its
/// exit status goes to `*status`.
void AddPackCommand(CLI::App& app, int* status);
} // namespace tonemetry

#endif // TONEMETRY_COMMAND_H
