// tonemetry diff: what differs between two tunings, each a binary tuning file or a device's
// live tuning link.
#include <cstdio>
#include <memory>
#include <string>

#include <nlohmann/json.hpp>

#include "command.h"
#include "tuningdiff.h"

namespace tonemetry
{
namespace
{
struct DiffOptions
{
    std::string a;
    std::string b;
    bool        json    = false;
    double      timeout = 3.0; ///< seconds for each request to a device
};

nlohmann::ordered_json TextOrNull(const std::optional<std::string>& text)
{
    return text ? nlohmann::ordered_json(*text) : nlohmann::ordered_json(nullptr);
}

void PrintJson(const TuningDiff& diff)
{
    nlohmann::ordered_json out = {{"modes", nlohmann::ordered_json::array()},
                                  {"modules", nlohmann::ordered_json::array()},
                                  {"values", nlohmann::ordered_json::array()}};
    for (const ModeDifference& mode : diff.modes)
    {
        out["modes"].push_back({{"mode", mode.mode}, {"only_in", mode.onlyIn}});
    }
    for (const ModuleDifference& module : diff.modules)
    {
        out["modules"].push_back({{"mode", module.mode}, {"module", module.module}, {"only_in", module.onlyIn}});
    }
    for (const ValueDifference& value : diff.values)
    {
        out["values"].push_back({{"mode", value.mode},
                                 {"path", value.path},
                                 {"name", value.name},
                                 {"a", TextOrNull(value.a)},
                                 {"b", TextOrNull(value.b)}});
    }
    std::printf("%s\n", out.dump(2).c_str());
}

void PrintReadable(const TuningDiff& diff)
{
    for (const ModeDifference& mode : diff.modes)
    {
        std::printf("mode %s: only in %s\n", mode.mode.c_str(), mode.onlyIn.c_str());
    }
    for (const ModuleDifference& module : diff.modules)
    {
        std::printf("module %s in %s: only in %s\n", module.module.c_str(), module.mode.c_str(), module.onlyIn.c_str());
    }
    for (const ValueDifference& value : diff.values)
    {
        std::printf("value %s %s %s: a %s, b %s\n", value.mode.c_str(), value.path.c_str(), value.name.c_str(),
                    value.a ? value.a->c_str() : "(none)", value.b ? value.b->c_str() : "(none)");
    }
}

int RunDiff(const DiffOptions& options)
{
    std::string                 error;
    std::unique_ptr<TuningSide> a = OpenTuningSide(options.a, options.timeout, &error);
    std::unique_ptr<TuningSide> b = a ? OpenTuningSide(options.b, options.timeout, &error) : nullptr;
    if (!b)
    {
        std::fprintf(stderr, "tonemetry diff: %s\n", error.c_str());
        return ExitTrouble;
    }
    TuningDiff diff;
    if (!CompareTunings(*a, *b, &diff))
    {
        std::fprintf(stderr, "tonemetry diff: %s\n", (a->Trouble().empty() ? b : a)->Trouble().c_str());
        return ExitTrouble;
    }
    if (options.json)
    {
        PrintJson(diff);
    }
    else
    {
        PrintReadable(diff);
    }
    return diff.Equal() ? ExitSuccess : ExitFinding;
}
} // namespace

void AddDiffCommand(CLI::App& app, int* status)
{
    auto      options = std::make_shared<DiffOptions>();
    CLI::App* command = app.add_subcommand("diff", "Compare two tunings, each a file or a device (live:HOST[:PORT]).");
    command->add_option("A", options->a, "a binary tuning file or live:HOST[:PORT]")->required();
    command->add_option("B", options->b, "a binary tuning file or live:HOST[:PORT]")->required();
    command->add_flag("--json", options->json, "print one JSON object");
    command->add_option("--timeout", options->timeout, "seconds for each request to a device")
        ->capture_default_str()
        ->check(CLI::PositiveNumber);
    command->callback([options, status]() { *status = RunDiff(*options); });
}
} // namespace tonemetry
