// The live tuning page: an HTTP server on one tuning, a file or a device, with a small JSON API
// and the page's static files. It binds 127.0.0.1 unless told otherwise, answers only requests
// addressed to itself (Host and Origin), and changes nothing without the token of its page.
#ifndef TONEMETRY_UISERVER_H
#define TONEMETRY_UISERVER_H

#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include <httplib.h>
#include <nlohmann/json.hpp>

#include "tuningside.h"

namespace tonemetry
{
struct UiSettings
{
    std::string host = "127.0.0.1";
    int         port = 8190; ///< 0: any free port
    std::string pageFolder;  ///< index.html, app.js, style.css
    std::string chartFolder; ///< Chart.js as Debian installs it
};

/// One change made through the page, as `pack --edits` reads it.
struct UiEdit
{
    std::string mode; ///< the mode that owns the edited instance
    std::string module;
    std::string path; ///< records inside the module, as pack --edits takes them
    std::string name;
    std::string value;
    std::string old;
    std::string where;   ///< the mode the page showed, where an undo sets the old text back
    std::string setPath; ///< module and records, as the link takes them
};

class UiServer
{
public:
    /// `source` names the tuning for the page ("tuning.bin", "live:127.0.0.1:20803").
    UiServer(std::unique_ptr<TuningSide> side, std::string source, UiSettings settings);
    UiServer(const UiServer&)            = delete;
    UiServer& operator=(const UiServer&) = delete;

    /// Binds the listening socket; false, with the reason, when that fails.
    bool Bind(std::string* error);
    /// The address the page is at, once bound: "http://127.0.0.1:8190/".
    std::string Address() const;
    /// Serves until Stop; false when the server could not run.
    bool Run();
    void Stop();

private:
    using Json = nlohmann::ordered_json;

    /// The checks of every request: Host and Origin name this server, and a change carries the
    /// page's token. False, with the refusal in `*response`, for any other.
    bool Admit(const httplib::Request& request, httplib::Response& response) const;
    void AddRoutes();
    /// Runs `answer` on the side, one request at a time; a side that could not be asked gives
    /// 503 with the trouble, so the page shows it as disconnected and asks again later.
    void                Answer(httplib::Response& response, const std::function<std::optional<Json>()>& answer);
    std::optional<Json> Set(const Json& request);
    std::optional<Json> Undo();
    /// The mode that owns `module`'s instance in `mode`, from the root's info rows.
    std::optional<std::string> OwnerMode(const std::string& mode, const std::string& module);
    Json                       EditLog() const;

    std::unique_ptr<TuningSide> m_side;
    std::string                 m_source;
    UiSettings                  m_settings;
    std::string                 m_token;
    httplib::Server             m_server;
    std::mutex                  m_lock; ///< the side and the edit log, one request at a time
    std::vector<UiEdit>         m_edits;
};
} // namespace tonemetry

#endif // TONEMETRY_UISERVER_H
