// tonemetry live: the desktop side of the live tuning link. Each command is one request to a
// device that serves a tuning file (`tonemetry serve`, or a camera) and one decoded reply.
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "command.h"
#include "device.h"
#include "deviceclient.h"
#include "liveoutput.h"
#include "livereply.h"
#include "modepath.h"

namespace tonemetry
{
namespace
{
/// The ID of every request: one request a run, so any value tells our reply from a stray one.
constexpr uint32_t RequestId = 1;

struct LiveOptions
{
    DeviceAddress device  = {"127.0.0.1", DeviceAddress::DefaultPort};
    double        timeout = 3.0; ///< seconds for connecting, sending and the reply together
    bool          json    = false;
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
    /// The status of a reply that was read: a finding (1) where the reply lacks what was asked
    /// for. Success when not set.
    std::function<int(const ravlen::Bytes& reply)> verdict;
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

/// One request and its reply; trouble is said on standard error.
int Exchange(const LiveOptions& options, const LiveQuery& query, ravlen::Bytes* reply)
{
    std::string trouble;
    const auto  isReply = [&query](const ravlen::Bytes& packet) { return IsReplyTo(query, packet); };
    if (!ExchangeWithDevice(options.device, options.timeout, query.request, isReply, reply, &trouble))
    {
        std::fprintf(stderr, "tonemetry live: %s\n", trouble.c_str());
        return ExitTrouble;
    }
    return ExitSuccess;
}

int RunLive(const LiveOptions& options, const LiveQuery& query)
{
    ravlen::Bytes reply;
    const int     status = Exchange(options, query, &reply);
    if (ExitSuccess != status)
    {
        return status;
    }
    std::string text;
    if (!query.render(reply, options.json, &text))
    {
        std::fprintf(stderr, "tonemetry live: %s sent a reply of %zu bytes that cannot be read\n",
                     options.device.ToString().c_str(), reply.size());
        return ExitTrouble;
    }
    std::fputs(text.c_str(), stdout);
    return query.verdict ? query.verdict(reply) : ExitSuccess;
}

/// The value items of a get or set request's reply.
std::vector<NamedValue> ReplyValues(const ravlen::Bytes& reply)
{
    return ParseNamedValues(ReplyText(reply, ravlen::IdHeaderSize), ';');
}

/// Asks the device for something and hands back the text of its reply; trouble is said.
int Ask(const LiveOptions& options, ravlen::Command command, const std::string& payload, std::string* body)
{
    std::string trouble;
    if (!AskDevice(options.device, options.timeout, command, payload, body, &trouble))
    {
        std::fprintf(stderr, "tonemetry live: %s\n", trouble.c_str());
        return ExitTrouble;
    }
    return ExitSuccess;
}

/// A get came back empty: the device's info rows tell whether the module or the member is
/// missing in that mode.
int ExplainEmptyGet(const LiveOptions& options, const ValueArguments& arguments)
{
    const std::string modes  = WireModes(arguments.modes);
    const std::string module = arguments.path.substr(0, arguments.path.find('.'));
    std::string       body;
    int               status = Ask(options, ravlen::CommandInfo, modes + ":" + module, &body);
    if (ExitSuccess != status)
    {
        return status;
    }
    if (ParseInfoRows(body).empty())
    {
        std::fprintf(stderr, "tonemetry live: no module %s in %s\n", module.c_str(), modes.c_str());
        return ExitFinding;
    }
    if (module != arguments.path)
    {
        if (ExitSuccess != (status = Ask(options, ravlen::CommandInfo, modes + ":" + arguments.path, &body)))
        {
            return status;
        }
        if (ParseInfoRows(body).empty())
        {
            std::fprintf(stderr, "tonemetry live: %s in %s has no member %s\n", module.c_str(), modes.c_str(),
                         arguments.path.substr(module.size() + 1).c_str());
            return ExitFinding;
        }
    }
    if (arguments.items.empty())
    {
        std::fprintf(stderr, "tonemetry live: %s in %s gave no value\n", arguments.path.c_str(), modes.c_str());
    }
    else
    {
        std::fprintf(stderr, "tonemetry live: %s in %s has no member %s\n", arguments.path.c_str(), modes.c_str(),
                     Joined(arguments.items, ", ").c_str());
    }
    return ExitFinding;
}

/// Whether two value texts say the same: equal, or equal numbers ("175" and "175.0").
bool SameValue(const std::string& wanted, const std::string& held)
{
    if (wanted == held)
    {
        return true;
    }
    char*        wantedEnd = nullptr;
    char*        heldEnd   = nullptr;
    const double a         = std::strtod(wanted.c_str(), &wantedEnd);
    const double b         = std::strtod(held.c_str(), &heldEnd);
    return !wanted.empty() && !held.empty() && ('\0' == *wantedEnd) && ('\0' == *heldEnd) && (a == b);
}

/// The items of a set that the echo leaves out (the device echoes what it set) are read back:
/// a finding unless the device holds the new value after all.
int CheckSetEcho(const LiveOptions& options, const ValueArguments& arguments, const std::vector<NamedValue>& echoed)
{
    int status = ExitSuccess;
    for (const std::string& item : arguments.items)
    {
        const size_t      equals = item.find('=');
        const std::string name   = item.substr(0, equals);
        bool              seen   = false;
        for (const NamedValue& value : echoed)
        {
            seen = seen || (value.name == name);
        }
        if (seen)
        {
            continue;
        }
        std::string body;
        const int   asked = Ask(options, ravlen::CommandGetValues,
                                WireModes(arguments.modes) + ":" + arguments.path + ":" + name, &body);
        if (ExitSuccess != asked)
        {
            return asked;
        }
        const std::vector<NamedValue> held = ParseNamedValues(body, ';');
        if (held.empty())
        {
            std::fprintf(stderr, "tonemetry live: not confirmed: %s; the device holds no such value\n", name.c_str());
            status = ExitFinding;
        }
        else if (!SameValue(item.substr(equals + 1), held.front().value))
        {
            std::fprintf(stderr, "tonemetry live: not confirmed: %s; the device holds %s\n", name.c_str(),
                         held.front().value.c_str());
            status = ExitFinding;
        }
    }
    return status;
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

const CLI::Validator DeviceValidator(
    [](std::string& text) {
        std::string error;
        return ParseDevice(text, &error).has_value() ? std::string() : error;
    },
    "live:HOST[:PORT]", "device");

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
    live->add_option_function<std::string>(
            "DEVICE",
            [options](const std::string& text) {
                std::string error;
                options->device = *ParseDevice(text, &error); // the validator has accepted it
            },
            "the device, live:HOST[:PORT] (the port 20803 unless given)")
        ->default_str(options->device.ToString())
        ->check(DeviceValidator);
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
    get->callback(run([options, arguments] {
        std::string payload = WireModes(arguments->modes) + ":" + arguments->path;
        if (!arguments->items.empty())
        {
            payload += ":" + Joined(arguments->items, ",");
        }
        LiveQuery query = TextQuery(ravlen::CommandGetValues, payload, [](const std::string& body, bool json) {
            return RenderValues(ParseNamedValues(body, ';'), json);
        });
        query.verdict   = [options, arguments](const ravlen::Bytes& reply) {
            return ReplyValues(reply).empty() ? ExplainEmptyGet(*options, *arguments) : ExitSuccess;
        };
        return query;
    }));

    CLI::App* set = live->add_subcommand("set", "set values and print them as the device reads them back");
    AddModesAndPath(set, arguments.get(), true);
    set->add_option("NAME=VALUE", arguments->items, "members below PATH and their new values")
        ->required()
        ->check(ItemValidator);
    set->callback(run([options, arguments] {
        const std::string payload =
            WireModes(arguments->modes) + ":" + arguments->path + ":" + Joined(arguments->items, ";");
        LiveQuery query = TextQuery(ravlen::CommandSetValues, payload, [](const std::string& body, bool json) {
            return RenderValues(ParseNamedValues(body, ';'), json);
        });
        query.verdict   = [options, arguments](const ravlen::Bytes& reply) {
            return CheckSetEcho(*options, *arguments, ReplyValues(reply));
        };
        return query;
    }));
}
} // namespace tonemetry
