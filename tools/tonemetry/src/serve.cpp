// tonemetry serve: the device's side of the live tuning link on a desktop. A tuning file is
// loaded into a TuningSetManager, whose load starts the link, and served until SIGINT or SIGTERM.
#include <csignal>
#include <cstdio>
#include <memory>
#include <string>

#include "command.h"
#include "stopsignals.h"
#include "g_tonemetry/tuningsetmanager.h"

namespace tonemetry
{
namespace
{
struct ServeOptions
{
    std::string file;
    bool        bufferMode = false;
};

int RunServe(const ServeOptions& options)
{
    // Blocked before the load starts the link's threads, which inherit the mask: the signals
    // then wait for sigwait below and no handler runs anywhere.
    const sigset_t signals = BlockStopSignals();

    auto manager = std::make_unique<TuningSetManager>();
    // The manager reads the file itself in both modes; buffer mode copies it whole at once.
    manager->m_fileModeAllowed = !options.bufferMode;
    if (!manager->LoadBinaryParameters(options.file.c_str()))
    {
        // A file that cannot be opened is only logged by the manager, with no error text.
        const char* reason = ('\0' != manager->m_errorText[0]) ? manager->m_errorText : "the file could not be loaded";
        std::fprintf(stderr, "tonemetry serve: %s: %s\n", options.file.c_str(), reason);
        return ExitFinding;
    }
    const unsigned short port = manager->GetTuningLinkPort();
    if (0 == port)
    {
        std::fprintf(stderr, "tonemetry serve: the live tuning link could not listen on an internet port\n");
        return ExitTrouble;
    }
    // Scripts and tests wait for this line to learn the port: it goes out at once.
    std::printf("listening on port %u\n", static_cast<unsigned>(port));
    std::fflush(stdout);

    WaitForStopSignal(signals);
    // The manager's destructor stops the link before its modules go.
    manager.reset();
    return ExitSuccess;
}
} // namespace

void AddServeCommand(CLI::App& app, int* status)
{
    auto      options = std::make_shared<ServeOptions>();
    CLI::App* serve =
        app.add_subcommand("serve", "serve a tuning file on the live tuning link until SIGINT or SIGTERM");
    serve->add_option("FILE", options->file, "binary tuning file of TuningSetManager")->required();
    serve->add_flag("--buffer", options->bufferMode, "load the whole file into memory (buffer mode), not by mode");
    serve->callback([options, status] { *status = RunServe(*options); });
}
} // namespace tonemetry
