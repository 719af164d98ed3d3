// tonemetry check: a tuning file loaded as a device loads it, in buffer mode and in file mode,
// with what the store said on the way and what became of each module.
#include <algorithm>
#include <cstdio>
#include <fstream>
#include <iostream>
#include <iterator>
#include <map>
#include <memory>
#include <regex>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "command.h"
#include "deviceload.h"
#include "parametermodeentry.h"
#include "parametermodule.h"

namespace tonemetry
{
namespace
{
struct CheckOptions
{
    std::string file;
    std::string manager; ///< empty: the one whose catalogue knows the file's modules
    bool        json = false;
};

struct ModuleOutcome
{
    std::string mode;   ///< named mode path; a refused module's mode kind only, as the store names it
    std::string module; ///< registered name; a refused module's type
    std::string result; ///< "loaded", "version mismatch", "unknown type" or "load failed"
    std::string text;   ///< the store's line about it, if any
};

struct LoadOutcome
{
    bool                       loaded = false;
    std::string                refusal; ///< the store's error text when the file was refused
    std::vector<LoggedLine>    log;
    std::vector<ModuleOutcome> modules;
};

/// The modules that the store refused while creating them, from its lines: an unknown type
/// ("Failed to find header module: ...") or a record it would not take ("Failed to parse binary
/// header data for: ..."), after a line about the version when that was the reason.
std::vector<ModuleOutcome> RefusedModules(const std::vector<LoggedLine>& log)
{
    static const std::regex refusal(
        R"(^(Failed to find header module|Failed to parse binary header data for): +Type: (\S*), Major: \d+, Minor: \d+, Patch: \d+, Mode: (\d+)$)");
    std::vector<ModuleOutcome> refused;
    for (size_t index = 0; index < log.size(); ++index)
    {
        std::smatch match;
        if (!std::regex_match(log[index].text, match, refusal))
        {
            continue;
        }
        std::string result = "unknown type";
        if ("Failed to parse binary header data for" == match[1].str())
        {
            const bool version = (index > 0) && (std::string::npos != log[index - 1].text.find("binary version"));
            result             = version ? "version mismatch" : "load failed";
        }
        const char* modeName = ModeEntry::GetModeName(static_cast<unsigned>(std::stoul(match[3].str())));
        refused.push_back({(nullptr == modeName) ? match[3].str() : modeName, match[2].str(), result,
                           (result == "version mismatch") ? log[index - 1].text : log[index].text});
    }
    return refused;
}

/// Why the store refused the file: its error text, or its last error line where it leaves the text
/// empty (a file it cannot open or whose check value fails).
std::string Refusal(const ParameterSetManager& manager, const std::vector<LoggedLine>& log)
{
    if ('\0' != manager.m_errorText[0])
    {
        return manager.m_errorText;
    }
    return log.empty() ? std::string("the file could not be loaded") : log.back().text;
}

/// Every module instance of the loaded tree, by mode and name, and whether its record loaded.
std::vector<ModuleOutcome> CreatedModules(ParameterSetManager& manager)
{
    std::vector<ModuleOutcome> created;
    for (unsigned id = 0; id < manager.m_modeCount; ++id)
    {
        ModeEntry* mode = manager.GetModeEntry(id);
        if (nullptr == mode)
        {
            continue;
        }
        std::map<std::string, const ParameterModule*> owned; // sorted by name
        for (const auto& [name, reference] : mode->m_modules)
        {
            const ParameterModule* module = reference.module;
            if ((nullptr != module) && (nullptr != module->Data) && (module->Data->ModeId == id))
            {
                owned.emplace(name, module);
            }
        }
        for (const auto& [name, module] : owned)
        {
            created.push_back({NamedModePath(mode), name, module->Loaded ? "loaded" : "load failed", ""});
        }
    }
    return created;
}

LoadOutcome LoadInBufferMode(const std::string& managerName, std::vector<uint8_t> image)
{
    LoadOutcome                          outcome;
    std::unique_ptr<ParameterSetManager> manager = MakeSetManager(managerName);
    {
        StoreLogCapture capture;
        outcome.loaded = manager->LoadBinaryParameters(image.data(), static_cast<unsigned long>(image.size()));
        outcome.log    = capture.Lines();
    }
    if (outcome.loaded)
    {
        outcome.modules = CreatedModules(*manager);
    }
    else
    {
        outcome.refusal = Refusal(*manager, outcome.log);
    }
    // A refused file still tells which of its modules the store would not take.
    std::vector<ModuleOutcome> refused = RefusedModules(outcome.log);
    outcome.modules.insert(outcome.modules.end(), refused.begin(), refused.end());
    return outcome;
}

/// File mode loads a mode's modules when it is first looked up: every mode is looked up once.
LoadOutcome LoadInFileMode(const std::string& managerName, const std::string& path)
{
    LoadOutcome                          outcome;
    std::unique_ptr<ParameterSetManager> manager = MakeSetManager(managerName);
    manager->m_fileModeAllowed                   = true;
    StoreLogCapture capture;
    outcome.loaded = manager->LoadBinaryParameters(path.c_str());
    if (outcome.loaded)
    {
        for (unsigned id = 0; id < manager->m_modeCount; ++id)
        {
            std::vector<TuningMode> branch;
            for (ModeEntry* node = manager->GetModeEntry(id); nullptr != node; node = node->m_parent)
            {
                branch.insert(branch.begin(), TuningMode{node->m_mode.mode, node->m_mode.subMode, 0});
            }
            PList<ParameterParserInfo> rows;
            manager->GetInfo(branch.data(), static_cast<unsigned>(branch.size()), nullptr, rows);
        }
    }
    outcome.log = capture.Lines();
    if (!outcome.loaded)
    {
        outcome.refusal = Refusal(*manager, outcome.log);
    }
    return outcome;
}

bool AllWell(const LoadOutcome& outcome)
{
    return outcome.loaded &&
           std::all_of(outcome.modules.begin(), outcome.modules.end(),
                       [](const ModuleOutcome& module) { return "loaded" == module.result; }) &&
           std::none_of(outcome.log.begin(), outcome.log.end(),
                        [](const LoggedLine& line) { return "error" == line.level; });
}

void PrintReadable(const CheckOptions& options, const std::string& manager, const LoadOutcome& buffer,
                   const LoadOutcome& file)
{
    std::printf("%s: set manager %s\n", options.file.c_str(), manager.c_str());
    for (const auto& [name, outcome] : {std::make_pair("buffer", &buffer), std::make_pair("file", &file)})
    {
        std::printf("%s mode: %s\n", name, outcome->loaded ? "loaded" : ("refused: " + outcome->refusal).c_str());
        for (const LoggedLine& line : outcome->log)
        {
            std::printf("  %s: %s\n", line.level.c_str(), line.text.c_str());
        }
    }
    for (const ModuleOutcome& module : buffer.modules)
    {
        std::printf("%s %s: %s%s%s\n", module.mode.c_str(), module.module.c_str(), module.result.c_str(),
                    module.text.empty() ? "" : ": ", module.text.c_str());
    }
}

void PrintJson(const CheckOptions& options, const std::string& manager, const LoadOutcome& buffer,
               const LoadOutcome& file)
{
    nlohmann::ordered_json report = {{"file", options.file},
                                     {"manager", manager},
                                     {"loads", {{"buffer", buffer.loaded}, {"file", file.loaded}}},
                                     {"log", nlohmann::ordered_json::array()},
                                     {"modules", nlohmann::ordered_json::array()}};
    for (const auto& [name, outcome] : {std::make_pair("buffer", &buffer), std::make_pair("file", &file)})
    {
        for (const LoggedLine& line : outcome->log)
        {
            report["log"].push_back({{"load", name}, {"level", line.level}, {"text", line.text}});
        }
    }
    for (const ModuleOutcome& module : buffer.modules)
    {
        report["modules"].push_back(
            {{"mode", module.mode}, {"module", module.module}, {"result", module.result}, {"text", module.text}});
    }
    std::cout << report.dump(2) << "\n";
}

int RunCheck(const CheckOptions& options)
{
    std::ifstream stream(options.file, std::ios::binary);
    if (!stream)
    {
        std::fprintf(stderr, "tonemetry check: %s: cannot be read\n", options.file.c_str());
        return ExitTrouble;
    }
    const std::vector<uint8_t> image((std::istreambuf_iterator<char>(stream)), std::istreambuf_iterator<char>());
    const std::string          manager = options.manager.empty() ? LikeliestManager(image) : options.manager;
    const LoadOutcome          buffer  = LoadInBufferMode(manager, image);
    const LoadOutcome          file    = LoadInFileMode(manager, options.file);
    if (options.json)
    {
        PrintJson(options, manager, buffer, file);
    }
    else
    {
        PrintReadable(options, manager, buffer, file);
    }
    return (AllWell(buffer) && AllWell(file)) ? ExitSuccess : ExitFinding;
}
} // namespace

void AddCheckCommand(CLI::App& app, int* status)
{
    auto      options = std::make_shared<CheckOptions>();
    CLI::App* command = app.add_subcommand("check", "Load a tuning file as a device would and say what became of it.");
    command->add_option("file", options->file, "the binary tuning file")->required();
    command->add_option("--manager", options->manager, "the set manager to load it into")
        ->check(CLI::IsMember(SetManagerNames()));
    command->add_flag("--json", options->json, "print one JSON object");
    command->callback([options, status]() { *status = RunCheck(*options); });
}
} // namespace tonemetry
