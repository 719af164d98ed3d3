// tonemetry ui: the live tuning page in the browser, on a tuning file or a device.
#include <spawn.h>
#include <sys/wait.h>

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>
#include <thread>

#include "command.h"
#include "installpaths.h"
#include "stopsignals.h"
#include "tuningside.h"
#include "uiserver.h"

extern char** environ;

namespace tonemetry
{
namespace
{
struct UiOptions
{
    std::string source;
    std::string listen  = "127.0.0.1:8190";
    bool        noOpen  = false;
    double      timeout = 3.0; ///< seconds for each request to a device
};

/// The page in the desktop's browser, when there is a desktop to show it on.
void OpenInBrowser(const std::string& address)
{
    if ((nullptr == std::getenv("DISPLAY")) && (nullptr == std::getenv("WAYLAND_DISPLAY")))
    {
        return;
    }
    pid_t       child       = 0;
    std::string program     = "xdg-open";
    char*       arguments[] = {program.data(), const_cast<char*>(address.c_str()), nullptr};
    if (0 == posix_spawnp(&child, "xdg-open", nullptr, nullptr, arguments, environ))
    {
        std::thread([child]() { waitpid(child, nullptr, 0); }).detach();
    }
}

int RunUi(const UiOptions& options)
{
    const sigset_t signals = BlockStopSignals();

    const size_t colon = options.listen.rfind(':');
    UiSettings   settings;
    settings.host        = options.listen.substr(0, colon);
    settings.port        = std::atoi(options.listen.c_str() + colon + 1);
    settings.pageFolder  = installpaths::SharedData("ui", VARK_UI_DIR);
    settings.chartFolder = VARK_CHART_JS_DIR;

    std::string                 error;
    std::unique_ptr<TuningSide> side = OpenTuningSide(options.source, options.timeout, &error);
    if (!side)
    {
        std::fprintf(stderr, "tonemetry ui: %s\n", error.c_str());
        return ExitTrouble;
    }
    UiServer server(std::move(side), options.source, settings);
    if (!server.Bind(&error))
    {
        std::fprintf(stderr, "tonemetry ui: %s\n", error.c_str());
        return ExitTrouble;
    }
    if (("127.0.0.1" != settings.host) && ("::1" != settings.host) && ("localhost" != settings.host))
    {
        std::fprintf(stderr,
                     "tonemetry ui: warning: listening on %s: anyone who can reach it can change the "
                     "camera's tuning\n",
                     options.listen.c_str());
    }
    // Scripts and tests wait for this line to learn the address: it goes out at once.
    std::printf("open %s\n", server.Address().c_str());
    std::fflush(stdout);
    if (!options.noOpen)
    {
        OpenInBrowser(server.Address());
    }

    std::thread serving([&server]() { server.Run(); });
    WaitForStopSignal(signals);
    server.Stop();
    serving.join();
    return ExitSuccess;
}
} // namespace

void AddUiCommand(CLI::App& app, int* status)
{
    auto      options = std::make_shared<UiOptions>();
    CLI::App* command =
        app.add_subcommand("ui", "Serve the live tuning page on a tuning file or a device (live:HOST[:PORT]).");
    command->add_option("SOURCE", options->source, "a binary tuning file or live:HOST[:PORT]")->required();
    command->add_option("--listen", options->listen, "ADDRESS:PORT to serve the page on (port 0: any free one)")
        ->capture_default_str()
        ->check([](const std::string& text) {
            const size_t colon = text.rfind(':');
            const bool   valid = (std::string::npos != colon) && (colon > 0) && (colon + 1 < text.size()) &&
                               (std::string::npos == text.find_first_not_of("0123456789", colon + 1));
            return valid ? std::string() : std::string("expected ADDRESS:PORT");
        });
    command->add_flag("--no-open", options->noOpen, "do not open the page in the desktop's browser");
    command->add_option("--timeout", options->timeout, "seconds for each request to a device")
        ->capture_default_str()
        ->check(CLI::PositiveNumber);
    command->callback([options, status]() { *status = RunUi(*options); });
}
} // namespace tonemetry
