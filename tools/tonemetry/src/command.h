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

/// `pack SOURCE.json -o FILE [--edits EDITS.json] [--version X.Y.Z] [--schemas DIR]`. When the subcommand runs, its
/// exit status goes to `*status`.
void AddPackCommand(CLI::App& app, int* status);
/// `serve FILE [--buffer]`: loads FILE into a TuningSetManager, prints "listening on port N" and
/// serves the live tuning link until SIGINT or SIGTERM.
void AddServeCommand(CLI::App& app, int* status);
/// `live [--host H] [--port P] [--timeout S] [--json] COMMAND ...`: one request to a live tuning
/// link and its reply; 1 when no reply comes in time.
void AddLiveCommand(CLI::App& app, int* status);
} // namespace tonemetry

#endif // TONEMETRY_COMMAND_H
