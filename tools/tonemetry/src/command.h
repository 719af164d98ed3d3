// What the subcommands of tonemetry share: their exit statuses and how they are added.
#ifndef TONEMETRY_COMMAND_H
#define TONEMETRY_COMMAND_H

#include <CLI/CLI.hpp>

namespace tonemetry
{
/// The same for every command: 0 all well, 1 a finding (a file the library refuses, a value the
/// device does not have or did not take), 2 trouble (usage, unreadable input, an output that
/// cannot be written, no reply).
enum ExitStatus
{
    ExitSuccess = 0,
    ExitFinding = 1,
    ExitTrouble = 2,
};

/// `pack SOURCE.json -o FILE [--edits EDITS.json] [--version X.Y.Z] [--schemas DIR]`. When the subcommand runs, its
/// exit status goes to `*status`.
void AddPackCommand(CLI::App& app, int* status);
/// `serve FILE [--buffer]`: loads FILE into a TuningSetManager, prints "listening on port N" and
/// serves the live tuning link until SIGINT or SIGTERM.
void AddServeCommand(CLI::App& app, int* status);
/// `live [live:HOST[:PORT]] [--timeout S] [--json] COMMAND ...`: one request to a live tuning
/// link and its reply; 2 when no reply comes in time, 1 when a get finds nothing or a set is not
/// confirmed.
void AddLiveCommand(CLI::App& app, int* status);
/// `check FILE [--manager NAME] [--json]`: loads FILE in buffer and in file mode as a device
/// would, with the store's error and warning lines and each module's fate; 1 when a device
/// would refuse the file or skip or fail a module.
void AddCheckCommand(CLI::App& app, int* status);
/// `diff A B [--json] [--timeout S]`, A and B each a file or live:HOST[:PORT]: the modes, modules
/// and value texts that differ; 1 when anything differs.
void AddDiffCommand(CLI::App& app, int* status);
/// `ui FILE | live:HOST[:PORT] [--listen ADDR:PORT] [--no-open]`: serves the live tuning page
/// and prints "open http://ADDR:PORT/"; runs until SIGINT or SIGTERM.
void AddUiCommand(CLI::App& app, int* status);
} // namespace tonemetry

#endif // TONEMETRY_COMMAND_H
