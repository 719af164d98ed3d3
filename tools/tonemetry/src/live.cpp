// tonemetry live: the desktop side of the live tuning link. Each command is one request to a
// device that serves a tuning file (`tonemetry serve`, or a camera) and one decoded reply.
#include <cstdio>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "command.h"
#include "liveoutput.h"
#include "livereply.h"
#include "modepath.h"
#include "ravlenconnection.h"

namespace tonemetry
{
namespace
{
/// The ID of every request: one request a run, so any value tells our reply from a stray one.
constexpr uint32_t RequestId = 1;

struct LiveOptions
{
    std::string host    = "127.0.0.1";
    uint16_t    port    = 20803;
    double      timeout = 3.0; ///< seconds for connecting, sending and the reply together
    bool        json    = false;
};

/// The arguments of the commands that address values.
struct ValueArguments
{
    std::string              modes;
    std::string              path;
    std::vector<std::string> items; ///< names of `get`, NAME=VALUE items of `set`
};

/// One request and how its reply is known and read.
struct LiveQuery
{
    ravlen::Bytes request;
    uint16_t      replyCommand = 0;
    bool          echoesId     = false; ///< the reply carries the request's 10-byte header
    /// Prints the reply to `*text`; false when the reply cannot be read.
    std::function<bool(const ravlen::Bytes& reply, bool json, std::string* text)> render;
};

/// The named form the device reads: the root always leads, so that every level is there.
std::string WireModes(const std::string& modes)
{
    std::string    error; // the validator of MODES has refused what does not parse
    const ModePath path = ParseModePath(modes, &error).value_or(ModePath());
    return path.empty() ? "Default" : "Default|" + ModePathText(path);
}

std::string Joined(const std::vector<std::string>& items, const char* separator)
{
    std::string text;
    for (const std::string& item : items)
    {
        text += (text.empty() ? "" : separator) + item;
    }
    return text;
}

/// The request of a command without ID, with the reply's text behind a 6-byte header.
LiveQuery ListQuery(ravlen::Command command, const std::string& key, char separator, bool numbered)
{
    LiveQuery query;
    query.request      = ravlen::Header(command, static_cast<uint16_t>(ravlen::PlainHeaderSize));
    query.replyCommand = command;
    query.render       = [key, separator, numbered](const ravlen::Bytes& reply, bool json, std::string* text) {
        const std::string body = ReplyText(reply, ravlen::PlainHeaderSize);
        *text                  = numbered ? RenderNumberedValues(key, ParseNamedValues(body, separator), json)
                                                : RenderList(key, SplitItems(body, separator), json);
        return true;
    };
    return query;
}

/// A request with an ID and a text payload, answered behind its own 10-byte header.
LiveQuery TextQuery(ravlen::Command command, const std::string& payload,
                    std::function<std::string(const std::string& body, bool json)> render)
{
    LiveQuery query;
    query.request      = ravlen::Request(command, RequestId, payload);
    query.replyCommand = command;
    query.echoesId     = true;
    query.render       = [render](const ravlen::Bytes& reply, bool json, std::string* text) {
        *text = render(ReplyText(reply, ravlen::IdHeaderSize), json);
        return true;
    };
    return query;
}

bool IsReplyTo(const LiveQuery& query, const ravlen::Bytes& packet)
{
    if ((packet.size() < ravlen::PlainHeaderSize) || (ravlen::U16At(packet, 2) != query.replyCommand))
    {
        return false;
    }
    return !query.echoesId ||
           ((packet.size() >= ravlen::IdHeaderSize) && (ravlen::U32At(packet, 6) == ravlen::U32At(query.request, 6)));
}

int RunLive(const LiveOptions& options, const LiveQuery& query)
{
    const std::string where = options.host + ":" + std::to_string(options.port);
    if (query.request.size() > UINT16_MAX)
    {
        std::fprintf(stderr, "tonemetry live: the request of %zu bytes does not fit a packet of %u\n",
                     query.request.size(), static_cast<unsigned>(UINT16_MAX));
        return ExitRefused;
    }
    const auto deadline =
        std::chrono::steady_clock::now() +
        std::chrono::duration_cast<std::chrono::steady_clock::duration>(std::chrono::duration<double>(options.timeout));
    ravlen::Connection connection;
    std::string        error;
    if (!connection.Connect(options.host, options.port, deadline, &error))
    {
        std::fprintf(stderr, "tonemetry live: cannot connect to %s: %s\n", where.c_str(), error.c_str());
        return ExitFailed;
    }
    if (!connection.Send(query.request))
    {
        std::fprintf(stderr, "tonemetry live: %s closed the connection\n", where.c_str());
        return ExitFailed;
    }
    for (;;)
    {
        const ravlen::Bytes reply = connection.Receive(deadline);
        if (reply.empty())
        {
            std::fprintf(stderr, "tonemetry live: no reply from %s within %g seconds\n", where.c_str(),
                         options.timeout);
            return ExitFailed;
        }
        if (!IsReplyTo(query, reply))
        {
            continue; // a stray packet ahead of ours
        }
        std::string text;
        if (!query.render(reply, options.json, &text))
        {
            std::fprintf(stderr, "tonemetry live: %s sent a reply of %zu bytes that cannot be read\n", where.c_str(),
                         reply.size());
            return ExitFailed;
        }
        std::fputs(text.c_str(), stdout);
        return ExitSuccess;
    }
}

/// The names of the items of `set` that the reply does not confirm: the device leaves out what
/// it could not set.
void ReportUnconfirmed(const std::vector<std::string>& items, const std::vector<NamedValue>& confirmed)
{
    std::vector<std::string> missing;
    for (const std::string& item : items)
    {
        const std::string name = item.substr(0, item.find('='));
        bool              seen = false;
        for (const NamedValue& value : confirmed)
        {
            seen = seen || (value.name == name);
        }
        if (!seen)
        {
            missing.push_back(name);
        }
    }
    if (!missing.empty())
    {
        std::fprintf(stderr, "tonemetry live: not set: %s\n", Joined(missing, ", ").c_str());
    }
}

const CLI::Validator ModesValidator(
    [](std::string& text) {
        std::string error;
        return ParseModePath(text, &error).has_value() ? std::string() : error;
    },
    "MODES", "mode path");

/// ':' separates the parts of a request, so a value path cannot hold one.
const CLI::Validator PathValidator(
    [](std::string& text) {
        return (std::string::npos == text.find(':')) ? std::string() : "a value path holds no ':'";
    },
    "PATH", "value path");

/// ';' separates the items and '=' the name from the value.
const CLI::Validator ItemValidator(
    [](std::string& text) {
        const size_t equals = text.find('=');
        if ((std::string::npos == equals) || (0 == equals) || (equals + 1 == text.size()))
        {
            return "'" + text + "' is no NAME=VALUE";
        }
        return (std::string::npos == text.find(';')) ? std::string() : "'" + text + "' holds a ';'";
    },
    "NAME=VALUE", "item");

void AddModesAndPath(CLI::App* command, ValueArguments* arguments, bool pathRequired)
{
    command->add_option("MODES", arguments->modes, "mode path, such as Default|Usecase.Video")
        ->required()
        ->check(ModesValidator);
    CLI::Option* path =
        command->add_option("PATH", arguments->path, "value path: module[.member[index]...]")->check(PathValidator);
    if (pathRequired)
    {
        path->required();
    }
}
} // namespace

void AddLiveCommand(CLI::App& app, int* status)
{
    auto      options   = std::make_shared<LiveOptions>();
    auto      arguments = std::make_shared<ValueArguments>();
    CLI::App* live      = app.add_subcommand("live", "ask a device's live tuning link: read and set values");
    live->add_option("--host", options->host, "the device's address")->capture_default_str();
    live->add_option("--port", options->port, "the link's port")->capture_default_str()->check(CLI::Range(1, 65535));
    live->add_option("--timeout", options->timeout, "seconds to wait for the reply")
        ->capture_default_str()
        ->check(CLI::PositiveNumber);
    live->add_flag("--json", options->json, "print the reply as JSON");
    live->require_subcommand(1);

    const auto run = [options, status](std::function<LiveQuery()> makeQuery) {
        return [options, status, makeQuery] { *status = RunLive(*options, makeQuery()); };
    };

    live->add_subcommand("info", "the device's name and protocol version")->callback(run([] {
        LiveQuery query;
        query.request      = ravlen::Header(ravlen::CommandDeviceInfo, ravlen::PlainHeaderSize);
        query.replyCommand = ravlen::CommandDeviceInfo;
        query.render       = [](const ravlen::Bytes& reply, bool json, std::string* text) {
            const std::optional<DeviceInfo> info = DecodeDeviceInfo(reply);
            *text                                = info.has_value() ? RenderDeviceInfo(*info, json) : std::string();
            return info.has_value();
        };
        return query;
    }));
    live->add_subcommand("active", "the active modes")->callback(run([] {
        return ListQuery(ravlen::CommandActiveModes, "active", ';', false);
    }));
    live->add_subcommand("controls", "the control values")->callback(run([] {
        return ListQuery(ravlen::CommandControlValues, "controls", ',', true);
    }));
    live->add_subcommand("triggers", "the trigger values")->callback(run([] {
        return ListQuery(ravlen::CommandTriggerValues, "triggers", ',', true);
    }));

    CLI::App* modes = live->add_subcommand("modes", "the child modes of a mode");
    modes->add_option("MODES", arguments->modes, "mode path, such as Default|Usecase.Video")
        ->required()
        ->check(ModesValidator);
    modes->callback(run([arguments] {
        return TextQuery(ravlen::CommandModes, WireModes(arguments->modes), [](const std::string& body, bool json) {
            return RenderList("modes", SplitItems(body, ','), json);
        });
    }));

    CLI::App* describe = live->add_subcommand("describe", "the rows of a module or a member; the modules without PATH");
    AddModesAndPath(describe, arguments.get(), false);
    describe->callback(run([arguments] {
        return TextQuery(ravlen::CommandInfo, WireModes(arguments->modes) + ":" + arguments->path,
                         [](const std::string& body, bool json) { return RenderInfoRows(ParseInfoRows(body), json); });
    }));

    CLI::App* get = live->add_subcommand("get", "values by path, all of a record or the NAMES given");
    AddModesAndPath(get, arguments.get(), true);
    get->add_option("NAMES", arguments->items, "member names below PATH");
    get->callback(run([arguments] {
        std::string payload = WireModes(arguments->modes) + ":" + arguments->path;
        if (!arguments->items.empty())
        {
            payload += ":" + Joined(arguments->items, ",");
        }
        return TextQuery(ravlen::CommandGetValues, payload, [](const std::string& body, bool json) {
            return RenderValues(ParseNamedValues(body, ';'), json);
        });
    }));

    CLI::App* set = live->add_subcommand("set", "set values and print them as the device reads them back");
    AddModesAndPath(set, arguments.get(), true);
    set->add_option("NAME=VALUE", arguments->items, "members below PATH and their new values")
        ->required()
        ->check(ItemValidator);
    set->callback(run([arguments] {
        const std::string payload =
            WireModes(arguments->modes) + ":" + arguments->path + ":" + Joined(arguments->items, ";");
        return TextQuery(ravlen::CommandSetValues, payload, [arguments](const std::string& body, bool json) {
            const std::vector<NamedValue> confirmed = ParseNamedValues(body, ';');
            ReportUnconfirmed(arguments->items, confirmed);
            return RenderValues(confirmed, json);
        });
    }));
}
} // namespace tonemetry
