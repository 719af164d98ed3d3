#include "uiserver.h"

#include <sys/socket.h>

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <random>
#include <sstream>

namespace tonemetry
{
namespace
{
using Json = nlohmann::ordered_json;

constexpr char JsonType[]    = "application/json";
constexpr char TokenHeader[] = "X-Tonemetry-Token";

std::string RandomToken()
{
    std::random_device device;
    std::string        token;
    for (int part = 0; part < 4; ++part)
    {
        char text[9];
        std::snprintf(text, sizeof(text), "%08x", static_cast<unsigned>(device()));
        token += text;
    }
    return token;
}

void Refuse(httplib::Response& response, int status, const std::string& message)
{
    response.status = status;
    response.set_content(Json{{"error", message}}.dump(), JsonType);
}

/// A text that the link would split (':' ends the mode and the path, ';' an item) cannot be
/// sent; nothing when `text` is fine, else the refusal.
std::optional<std::string> LinkTextProblem(const std::string& what, const std::string& text, const char* forbidden)
{
    if (std::string::npos != text.find_first_of(forbidden))
    {
        return what + " holds one of \"" + forbidden + "\"";
    }
    return std::nullopt;
}

/// The named mode path with its root, as the page and pack --edits write it.
std::string Rooted(const std::string& mode)
{
    return ((mode == "Default") || (0 == mode.rfind("Default|", 0))) ? mode : "Default|" + mode;
}

Json RowsJson(const std::vector<InfoRow>& rows)
{
    Json list = Json::array();
    for (const InfoRow& row : rows)
    {
        Json item = {{"name", row.name}, {"type", row.type}};
        if (!row.value.empty())
        {
            item["value"] = row.value;
        }
        if (row.count)
        {
            item["count"] = *row.count;
        }
        list.push_back(item);
    }
    return list;
}

Json ValuesJson(const std::vector<NamedValue>& values, const char* key = "name")
{
    Json list = Json::array();
    for (const NamedValue& value : values)
    {
        list.push_back({{key, value.name}, {"value", value.value}});
    }
    return list;
}

std::optional<std::string> HeldText(const std::vector<NamedValue>& values, const std::string& name)
{
    for (const NamedValue& value : values)
    {
        if (value.name == name)
        {
            return value.value;
        }
    }
    return std::nullopt;
}

std::string ReadWhole(const std::string& path)
{
    std::ifstream      stream(path);
    std::ostringstream text;
    text << stream.rdbuf();
    return text.str();
}

void ReplaceAll(std::string* text, const std::string& from, const std::string& to)
{
    for (size_t at = text->find(from); std::string::npos != at; at = text->find(from, at + to.size()))
    {
        text->replace(at, from.size(), to);
    }
}
} // namespace

UiServer::UiServer(std::unique_ptr<TuningSide> side, std::string source, UiSettings settings)
    : m_side(std::move(side)), m_source(std::move(source)), m_settings(std::move(settings)), m_token(RandomToken())
{
    // An answer goes out in more than one write: without this, the browser's delayed
    // acknowledgement holds each reply for tens of milliseconds.
    m_server.set_tcp_nodelay(true);
    // The library's default would also share the port with any other server that asks
    // (SO_REUSEPORT): a second page on a taken port must fail, not split the requests.
    m_server.set_socket_options([](socket_t sock) {
        const int yes = 1;
        setsockopt(sock, SOL_SOCKET, SO_REUSEADDR, &yes, sizeof(yes));
    });
    m_server.set_pre_routing_handler([this](const httplib::Request& request, httplib::Response& response) {
        return Admit(request, response) ? httplib::Server::HandlerResponse::Unhandled
                                        : httplib::Server::HandlerResponse::Handled;
    });
    m_server.set_exception_handler([](const httplib::Request&, httplib::Response& response, std::exception_ptr) {
        Refuse(response, 500, "the request could not be served");
    });
    AddRoutes();
}

bool UiServer::Bind(std::string* error)
{
    const int wanted = m_settings.port;
    const int bound  = (0 == wanted) ? m_server.bind_to_any_port(m_settings.host)
                                     : (m_server.bind_to_port(m_settings.host, wanted) ? wanted : -1);
    if (bound <= 0)
    {
        *error = "cannot listen on " + m_settings.host + ":" + std::to_string(wanted);
        return false;
    }
    m_settings.port = bound;
    return true;
}

std::string UiServer::Address() const
{
    return "http://" + m_settings.host + ":" + std::to_string(m_settings.port) + "/";
}

bool UiServer::Run()
{
    return m_server.listen_after_bind();
}

void UiServer::Stop()
{
    m_server.stop();
}

bool UiServer::Admit(const httplib::Request& request, httplib::Response& response) const
{
    const std::string        port  = ":" + std::to_string(m_settings.port);
    std::vector<std::string> hosts = {m_settings.host + port};
    if ("127.0.0.1" == m_settings.host)
    {
        hosts.push_back("localhost" + port);
    }
    const std::string host  = request.get_header_value("Host");
    const auto        isOwn = [&hosts](const std::string& text) {
        return std::find(hosts.begin(), hosts.end(), text) != hosts.end();
    };
    if (!isOwn(host))
    {
        Refuse(response, 403, "the request is not addressed to this server (Host: " + host + ")");
        return false;
    }
    const std::string origin = request.get_header_value("Origin");
    if (request.has_header("Origin") && ((0 != origin.rfind("http://", 0)) || !isOwn(origin.substr(7))))
    {
        Refuse(response, 403, "requests from other pages are refused");
        return false;
    }
    if (("GET" != request.method) && ("HEAD" != request.method) && (request.get_header_value(TokenHeader) != m_token))
    {
        Refuse(response, 403, "a change needs the token of the page");
        return false;
    }
    return true;
}

void UiServer::Answer(httplib::Response& response, const std::function<std::optional<Json>()>& answer)
{
    std::optional<Json> reply;
    {
        std::lock_guard<std::mutex> guard(m_lock);
        reply = answer();
        if (!reply)
        {
            // A device that took the connection but did not answer in time serves another
            // client (the link serves one at a time): busy, where one that did not take it is
            // gone.
            const std::string trouble = m_side->Trouble();
            const bool        busy    = 0 == trouble.rfind("no reply from", 0);
            response.status           = 503;
            response.set_content(Json{{"error", trouble}, {"disconnected", !busy}, {"busy", busy}}.dump(), JsonType);
            return;
        }
    }
    response.set_content(reply->dump(), JsonType);
}

std::optional<std::string> UiServer::OwnerMode(const std::string& mode, const std::string& module)
{
    const auto rows = m_side->Info(mode, "");
    if (!rows)
    {
        return std::nullopt;
    }
    for (const InfoRow& row : *rows)
    {
        if ((row.name == module) && !row.value.empty())
        {
            return Rooted(row.value);
        }
    }
    return Rooted(mode); // a module that the root does not list: the mode it was set in
}

std::optional<UiServer::Json> UiServer::Set(const Json& request)
{
    const std::string mode   = request.at("mode").get<std::string>();
    const std::string path   = request.at("path").get<std::string>();
    const std::string name   = request.at("name").get<std::string>();
    const std::string value  = request.at("value").get<std::string>();
    const std::string module = path.substr(0, path.find('.'));
    const auto        before = m_side->Values(mode, path, {name});
    const auto        owner  = OwnerMode(mode, module);
    if (!before || !owner)
    {
        return std::nullopt;
    }
    const auto echoed = m_side->Set(mode, path, {{name, value}});
    if (!echoed)
    {
        return std::nullopt;
    }
    Json                       reply = {{"values", ValuesJson(*echoed)}};
    std::optional<std::string> held  = HeldText(*echoed, name);
    reply["confirmed"]               = held.has_value();
    if (!held)
    {
        // Not taken: what the device holds now.
        const auto now = m_side->Values(mode, path, {name});
        if (!now)
        {
            return std::nullopt;
        }
        const std::optional<std::string> holds = HeldText(*now, name);
        reply["holds"]                         = holds ? Json(*holds) : Json(nullptr);
        return reply;
    }
    const std::string inside = (path.size() > module.size()) ? path.substr(module.size() + 1) : std::string();
    m_edits.push_back({*owner, module, inside, name, value, HeldText(*before, name).value_or(""), mode, path});
    reply["edits"] = EditLog()["edits"];
    return reply;
}

std::optional<UiServer::Json> UiServer::Undo()
{
    if (m_edits.empty())
    {
        return Json{{"values", Json::array()}, {"edits", Json::array()}};
    }
    const UiEdit last   = m_edits.back();
    const auto   echoed = m_side->Set(last.where, last.setPath, {{last.name, last.old}});
    if (!echoed)
    {
        return std::nullopt;
    }
    m_edits.pop_back();
    return Json{{"values", ValuesJson(*echoed)}, {"edits", EditLog()["edits"]}};
}

UiServer::Json UiServer::EditLog() const
{
    Json edits = Json::array();
    for (const UiEdit& edit : m_edits)
    {
        edits.push_back({{"mode", edit.mode},
                         {"module", edit.module},
                         {"path", edit.path},
                         {"name", edit.name},
                         {"value", edit.value},
                         {"old", edit.old}});
    }
    return {{"edits", edits}};
}

void UiServer::AddRoutes()
{
    m_server.Get("/", [this](const httplib::Request&, httplib::Response& response) {
        std::string page = ReadWhole(m_settings.pageFolder + "/index.html");
        if (page.empty())
        {
            Refuse(response, 500, "the page is not installed in " + m_settings.pageFolder);
            return;
        }
        ReplaceAll(&page, "{{TOKEN}}", m_token);
        response.set_content(page, "text/html; charset=utf-8");
    });
    m_server.set_mount_point("/page", m_settings.pageFolder);
    m_server.set_mount_point("/chartjs", m_settings.chartFolder);

    // The parameters a route needs, checked before the side is asked: 400 names the first
    // that is missing or would not survive the link's framing.
    const auto parameters = [](const httplib::Request& request, httplib::Response& response,
                               const std::vector<std::string>& names, std::vector<std::string>* values) {
        for (const std::string& name : names)
        {
            if (!request.has_param(name.c_str()))
            {
                Refuse(response, 400, name + " is missing");
                return false;
            }
            values->push_back(request.get_param_value(name.c_str()));
            if (const auto problem = LinkTextProblem(name, values->back(), (name == "names") ? ":;" : ":;,"))
            {
                Refuse(response, 400, *problem);
                return false;
            }
        }
        return true;
    };

    m_server.Get("/api/session", [this](const httplib::Request&, httplib::Response& response) {
        response.set_content(Json{{"source", m_source}}.dump(), JsonType);
    });
    m_server.Get("/api/modes", [this, parameters](const httplib::Request& request, httplib::Response& response) {
        std::vector<std::string> values;
        if (parameters(request, response, {"mode"}, &values))
        {
            Answer(response, [&]() -> std::optional<Json> {
                const auto children = m_side->ChildModes(values[0]);
                return children ? std::optional<Json>(Json{{"modes", *children}}) : std::nullopt;
            });
        }
    });
    m_server.Get("/api/modules", [this, parameters](const httplib::Request& request, httplib::Response& response) {
        std::vector<std::string> values;
        if (parameters(request, response, {"mode"}, &values))
        {
            Answer(response, [&]() -> std::optional<Json> {
                const auto rows = m_side->Info(values[0], "");
                if (!rows)
                {
                    return std::nullopt;
                }
                Json modules = Json::array();
                for (const InfoRow& row : *rows)
                {
                    modules.push_back(
                        {{"name", row.name}, {"from", Rooted(row.value.empty() ? "Default" : row.value)}});
                }
                return Json{{"modules", modules}};
            });
        }
    });
    m_server.Get("/api/info", [this, parameters](const httplib::Request& request, httplib::Response& response) {
        std::vector<std::string> values;
        if (parameters(request, response, {"mode", "path"}, &values))
        {
            Answer(response, [&]() -> std::optional<Json> {
                const auto rows = m_side->Info(values[0], values[1]);
                return rows ? std::optional<Json>(Json{{"rows", RowsJson(*rows)}}) : std::nullopt;
            });
        }
    });
    m_server.Get("/api/values", [this, parameters](const httplib::Request& request, httplib::Response& response) {
        std::vector<std::string> values;
        if (parameters(request, response, {"mode", "path", "names"}, &values))
        {
            std::vector<std::string> names;
            std::istringstream       list(values[2]);
            for (std::string name; std::getline(list, name, ',');)
            {
                names.push_back(name);
            }
            Answer(response, [&]() -> std::optional<Json> {
                const auto texts = m_side->Values(values[0], values[1], names);
                return texts ? std::optional<Json>(Json{{"values", ValuesJson(*texts)}}) : std::nullopt;
            });
        }
    });
    m_server.Get("/api/active", [this](const httplib::Request&, httplib::Response& response) {
        Answer(response, [&]() -> std::optional<Json> {
            const auto active = m_side->ActiveModes();
            return active ? std::optional<Json>(Json{{"active", *active}}) : std::nullopt;
        });
    });
    m_server.Get("/api/device", [this](const httplib::Request&, httplib::Response& response) {
        Answer(response, [&]() -> std::optional<Json> {
            const auto info = m_side->Device();
            if (!info)
            {
                return std::nullopt;
            }
            return Json{{"name", info->name},
                        {"version", std::to_string(info->versionMajor) + "." + std::to_string(info->versionMinor)}};
        });
    });
    for (const bool controls : {true, false})
    {
        m_server.Get(controls ? "/api/controls" : "/api/triggers",
                     [this, controls](const httplib::Request&, httplib::Response& response) {
                         Answer(response, [&]() -> std::optional<Json> {
                             const auto  list = controls ? m_side->ControlValues() : m_side->TriggerValues();
                             const char* key  = controls ? "controls" : "triggers";
                             return list ? std::optional<Json>(Json{{key, ValuesJson(*list, "id")}}) : std::nullopt;
                         });
                     });
    }
    m_server.Get("/api/edits", [this](const httplib::Request&, httplib::Response& response) {
        std::lock_guard<std::mutex> guard(m_lock);
        response.set_content(EditLog().dump(2), JsonType);
    });
    m_server.Post("/api/set", [this](const httplib::Request& request, httplib::Response& response) {
        const Json body = Json::parse(request.body, nullptr, false);
        for (const char* field : {"mode", "path", "name", "value"})
        {
            if (!body.is_object() || !body.contains(field) || !body[field].is_string())
            {
                Refuse(response, 400, std::string("the body needs the text ") + field);
                return;
            }
            const char* forbidden = (std::string("value") == field) ? ";" : ":;,=";
            if (const auto problem = LinkTextProblem(field, body[field].get<std::string>(), forbidden))
            {
                Refuse(response, 400, *problem);
                return;
            }
        }
        Answer(response, [&]() { return Set(body); });
    });
    m_server.Post("/api/undo", [this](const httplib::Request&, httplib::Response& response) {
        Answer(response, [&]() { return Undo(); });
    });
}
} // namespace tonemetry
