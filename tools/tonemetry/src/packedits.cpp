#include "packedits.h"

#include <cstdlib>
#include <optional>

#include "modepath.h"

namespace tonemetry
{
namespace
{
using tuningencoder::JsonChild;

/// One step of an edit's path: a member by name, then an element by index when it has one.
struct PathStep
{
    std::string           name;
    std::optional<size_t> index;
};

std::optional<PathStep> ParseStep(const std::string& text)
{
    const size_t open = text.find('[');
    if (open == std::string::npos)
    {
        return text.empty() ? std::nullopt : std::optional<PathStep>(PathStep{text, std::nullopt});
    }
    if ((open == 0) || (text.back() != ']'))
    {
        return std::nullopt;
    }
    const std::string digits = text.substr(open + 1, text.size() - open - 2);
    if (digits.empty() || (digits.find_first_not_of("0123456789") != std::string::npos))
    {
        return std::nullopt;
    }
    return PathStep{text.substr(0, open), static_cast<size_t>(std::strtoull(digits.c_str(), nullptr, 10))};
}

/// The steps of `path` (records joined by '.') followed by `name`; nothing when one is malformed.
std::optional<std::vector<PathStep>> ParseSteps(const std::string& path, const std::string& name)
{
    std::vector<PathStep> steps;
    size_t                start = 0;
    while (!path.empty() && (start <= path.size()))
    {
        const size_t            dot  = std::min(path.find('.', start), path.size());
        std::optional<PathStep> step = ParseStep(path.substr(start, dot - start));
        if (!step)
        {
            return std::nullopt;
        }
        steps.push_back(*step);
        start = dot + 1;
    }
    std::optional<PathStep> last = ParseStep(name);
    if (!last)
    {
        return std::nullopt;
    }
    steps.push_back(*last);
    return steps;
}

/// The link's text of a value as the source would hold it: booleans and numbers where the text
/// reads as one, the text itself otherwise or where the source holds a text that is not a
/// "0x" number (a string member whose text happens to be digits stays a string).
Json ValueOfText(const std::string& text, const Json& current)
{
    if (current.is_string() && (current.get<std::string>().rfind("0x", 0) != 0))
    {
        return text;
    }
    if ((text == "true") || (text == "false"))
    {
        return text == "true";
    }
    Json number = Json::parse(text, nullptr, false);
    return number.is_number() ? number : Json(text);
}

class EditApplier
{
public:
    EditApplier(Json* source, std::vector<EncodeError>* errors) : m_source(source), m_errors(errors) {}

    void Apply(const Json& edit, const std::string& path)
    {
        if (!edit.is_object())
        {
            Fail(path, "expected an object with \"mode\", \"module\", \"path\", \"name\" and \"value\"");
            return;
        }
        RefuseUnknownKeys(edit, path, {"mode", "module", "path", "name", "value", "old"}, m_errors);
        std::string mode = "Default";
        std::string module;
        std::string memberPath;
        std::string name;
        std::string value;
        if (!Text(edit, "module", path, &module) || !Text(edit, "name", path, &name) ||
            !Text(edit, "value", path, &value) || (edit.contains("mode") && !Text(edit, "mode", path, &mode)) ||
            (edit.contains("path") && !Text(edit, "path", path, &memberPath)))
        {
            return;
        }
        Json* values = FindModuleValues(mode, module, path);
        if (nullptr == values)
        {
            return;
        }
        std::optional<std::vector<PathStep>> steps = ParseSteps(memberPath, name);
        if (!steps)
        {
            Fail(path + "/path", "'" + memberPath + "' '" + name + "' is no member path (records by '.', \"[index]\")");
            return;
        }
        Json* member = values;
        for (const PathStep& step : *steps)
        {
            member = Step(member, step, path);
            if (nullptr == member)
            {
                return;
            }
        }
        *member = ValueOfText(value, *member);
    }

private:
    void Fail(const std::string& path, const std::string& message) { m_errors->push_back({path, message}); }

    bool Text(const Json& edit, const char* key, const std::string& path, std::string* out)
    {
        if (!edit.contains(key))
        {
            Fail(path, std::string("missing key '") + key + "'");
            return false;
        }
        return ReadText(edit[key], path + "/" + key, out, m_errors);
    }

    /// The "values" of the source's module `name` held by `modeText`, made when left out.
    Json* FindModuleValues(const std::string& modeText, const std::string& name, const std::string& path)
    {
        std::string             error;
        std::optional<ModePath> mode = ParseModePath(modeText, &error);
        if (!mode)
        {
            Fail(path + "/mode", error);
            return nullptr;
        }
        Json* modules = m_source->is_object() && m_source->contains("modules") ? &(*m_source)["modules"] : nullptr;
        bool  named   = false;
        for (size_t index = 0; (nullptr != modules) && modules->is_array() && (index < modules->size()); ++index)
        {
            Json& module = (*modules)[index];
            if (!module.is_object() || (module.value("name", Json()) != name))
            {
                continue;
            }
            named                          = true;
            const Json              holder = module.value("mode", Json("Default"));
            std::optional<ModePath> held =
                holder.is_string() ? ParseModePath(holder.get<std::string>(), &error) : std::nullopt;
            if (held && (*held == *mode))
            {
                if (!module.contains("values") || module["values"].is_null())
                {
                    module["values"] = Json::object();
                }
                return &module["values"];
            }
        }
        if (named)
        {
            Fail(path + "/mode", "the source holds no '" + name + "' in mode '" + ModePathText(*mode) + "'");
        }
        else
        {
            Fail(path + "/module", "the source holds no module '" + name + "'");
        }
        return nullptr;
    }

    /// The member (and element) of `record` that `step` names; members left out of the source
    /// are made, so that the schema check refuses a name the record does not have.
    Json* Step(Json* record, const PathStep& step, const std::string& path)
    {
        if (record->is_null())
        {
            *record = Json::object();
        }
        if (!record->is_object())
        {
            Fail(path + "/path", "'" + step.name + "' is reached through a value that is no record");
            return nullptr;
        }
        Json* member = &(*record)[step.name];
        if (!step.index)
        {
            return member;
        }
        if (!member->is_array() || (*step.index >= member->size()))
        {
            Fail(path + "/path",
                 "the source holds no element " + std::to_string(*step.index) + " of '" + step.name + "'");
            return nullptr;
        }
        return &(*member)[*step.index];
    }

    Json*                     m_source;
    std::vector<EncodeError>* m_errors;
};
} // namespace

bool ApplyEdits(const Json& edits, Json* source, std::vector<EncodeError>* errors)
{
    const size_t before = errors->size();
    if (!edits.is_object() || !edits.contains("edits") || !edits["edits"].is_array())
    {
        errors->push_back({"", "an edit list is one JSON object with an array \"edits\""});
        return false;
    }
    RefuseUnknownKeys(edits, "", {"edits"}, errors);
    EditApplier applier(source, errors);
    for (size_t index = 0; index < edits["edits"].size(); ++index)
    {
        applier.Apply(edits["edits"][index], JsonChild("/edits", index));
    }
    return errors->size() == before;
}
} // namespace tonemetry
