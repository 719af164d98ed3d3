// tonemetry: the command-line tool around binary tuning files. Each subcommand lives in a
// source file of its own and reports its exit status (command.h).
#include <CLI/CLI.hpp>

#include "command.h"

int main(int argc, char** argv)
{
    CLI::App app("The command-line tool around binary tuning files.", "tonemetry");
    app.require_subcommand(1);
    int status = tonemetry::ExitSuccess;
    tonemetry::AddPackCommand(app, &status);
    tonemetry::AddServeCommand(app, &status);
    tonemetry::AddLiveCommand(app, &status);
    tonemetry::AddCheckCommand(app, &status);
    tonemetry::AddDiffCommand(app, &status);
#ifdef VARK_TONEMETRY_UI
    tonemetry::AddUiCommand(app, &status);
#endif
    try
    {
        app.parse(argc, argv);
    }
    catch (const CLI::ParseError& error)
    {
        const int parseStatus = app.exit(error);
        return (0 == parseStatus) ? tonemetry::ExitSuccess : tonemetry::ExitTrouble;
    }
    return status;
}
