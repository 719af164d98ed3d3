#include "tuningdiff.h"

#include <algorithm>
#include <map>
#include <set>
#include <utility>

namespace tonemetry
{
namespace
{
/// The row types of the store's text access that hold no value of their own.
constexpr char StructureType[] = "Structure";
constexpr char ModuleType[]    = "Module";

/// A module's values in one mode: (path, name) to text.
using ValueTexts = std::map<std::pair<std::string, std::string>, std::string>;

/// Reads the values below `path` into `*texts`, records and arrays of records member by
/// member. False when the side could not be asked.
bool CollectValues(TuningSide& side, const std::string& mode, const std::string& path, const std::vector<InfoRow>& rows,
                   ValueTexts* texts)
{
    std::vector<std::string> leaves;
    for (const InfoRow& row : rows)
    {
        if (row.name.empty() || (ModuleType == row.type))
        {
            continue;
        }
        if (StructureType != row.type)
        {
            leaves.push_back(row.name);
            continue;
        }
        std::vector<std::string> records;
        if (row.count)
        {
            for (uint32_t index = 0; index < *row.count; ++index)
            {
                records.push_back(path + "." + row.name + "[" + std::to_string(index) + "]");
            }
        }
        else
        {
            records.push_back(path + "." + row.name);
        }
        for (const std::string& record : records)
        {
            const auto inner = side.Info(mode, record);
            if (!inner || !CollectValues(side, mode, record, *inner, texts))
            {
                return false;
            }
        }
    }
    if (leaves.empty())
    {
        return true;
    }
    const auto values = side.Values(mode, path, leaves);
    if (!values)
    {
        return false;
    }
    for (const NamedValue& value : *values)
    {
        texts->emplace(std::make_pair(path, value.name), value.value);
    }
    return true;
}

/// The module's values in `mode`, or nothing when it does not resolve there. False when the
/// side could not be asked.
bool ModuleValues(TuningSide& side, const std::string& mode, const std::string& module,
                  std::optional<ValueTexts>* values)
{
    const auto rows = side.Info(mode, module);
    if (!rows)
    {
        return false;
    }
    values->reset();
    if (rows->empty())
    {
        return true;
    }
    values->emplace();
    return CollectValues(side, mode, module, *rows, &**values);
}

/// a's modes in order, each of b's own modes placed behind the subtree of its parent.
std::vector<std::string> MergedModes(const std::vector<std::string>& a, const std::vector<std::string>& b)
{
    std::vector<std::string>    merged = a;
    const std::set<std::string> inA(a.begin(), a.end());
    for (const std::string& mode : b)
    {
        if (inA.count(mode))
        {
            continue;
        }
        const std::string parent = mode.substr(0, mode.rfind('|'));
        auto              place  = merged.end();
        for (auto it = merged.begin(); it != merged.end(); ++it)
        {
            if ((*it == parent) || (0 == it->rfind(parent + "|", 0)))
            {
                place = it + 1;
            }
        }
        merged.insert(place, mode);
    }
    return merged;
}

std::vector<std::string> MergedNames(TuningSide& a, TuningSide& b)
{
    std::set<std::string> names;
    for (TuningSide* side : {&a, &b})
    {
        for (const std::string& name : side->ModuleNames())
        {
            names.insert(name);
        }
    }
    return {names.begin(), names.end()};
}

/// Both maps are sorted alike: one walk through the two in step.
void CompareValues(const std::string& mode, const ValueTexts& a, const ValueTexts& b, TuningDiff* diff)
{
    auto inA = a.begin();
    auto inB = b.begin();
    while ((a.end() != inA) || (b.end() != inB))
    {
        const bool                 takeA = (b.end() == inB) || ((a.end() != inA) && (inA->first <= inB->first));
        const bool                 takeB = (a.end() == inA) || ((b.end() != inB) && (inB->first <= inA->first));
        const auto&                key   = takeA ? inA->first : inB->first;
        std::optional<std::string> textA, textB;
        if (takeA)
        {
            textA = (inA++)->second;
        }
        if (takeB)
        {
            textB = (inB++)->second;
        }
        if (textA != textB)
        {
            diff->values.push_back({mode, key.first, key.second, textA, textB});
        }
    }
}
} // namespace

bool CompareTunings(TuningSide& a, TuningSide& b, TuningDiff* diff)
{
    const std::vector<std::string> modesA = a.ModePaths();
    const std::vector<std::string> modesB = b.ModePaths();
    const std::set<std::string>    inA(modesA.begin(), modesA.end());
    const std::set<std::string>    inB(modesB.begin(), modesB.end());
    const std::vector<std::string> names = MergedNames(a, b);
    if (!a.Trouble().empty() || !b.Trouble().empty())
    {
        return false;
    }
    for (const std::string& mode : MergedModes(modesA, modesB))
    {
        if (!inA.count(mode) || !inB.count(mode))
        {
            diff->modes.push_back({mode, inA.count(mode) ? "a" : "b"});
            continue;
        }
        for (const std::string& module : names)
        {
            std::optional<ValueTexts> valuesA, valuesB;
            if (!ModuleValues(a, mode, module, &valuesA) || !ModuleValues(b, mode, module, &valuesB))
            {
                return false;
            }
            if (valuesA.has_value() != valuesB.has_value())
            {
                diff->modules.push_back({mode, module, valuesA ? "a" : "b"});
            }
            else if (valuesA)
            {
                CompareValues(mode, *valuesA, *valuesB, diff);
            }
        }
    }
    return true;
}
} // namespace tonemetry
