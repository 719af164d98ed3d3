// What differs between two tunings, each a file or a device: modes, the modules that resolve in
// them, and the texts of their values, as the store's text access gives them, so that a file
// and a device compare alike.
#ifndef TONEMETRY_TUNINGDIFF_H
#define TONEMETRY_TUNINGDIFF_H

#include <optional>
#include <string>
#include <vector>

#include "tuningside.h"

namespace tonemetry
{
/// One finding; `onlyIn` names the side ("a" or "b") that alone has the mode or the module.
struct ModeDifference
{
    std::string mode;
    std::string onlyIn;
};

struct ModuleDifference
{
    std::string mode;
    std::string module;
    std::string onlyIn;
};

/// A value whose texts differ; a side without the value has none.
struct ValueDifference
{
    std::string                mode;
    std::string                path; ///< the module and the records above the value, as `live get` takes it
    std::string                name;
    std::optional<std::string> a;
    std::optional<std::string> b;
};

struct TuningDiff
{
    std::vector<ModeDifference>   modes;
    std::vector<ModuleDifference> modules;
    std::vector<ValueDifference>  values;

    bool Equal() const { return modes.empty() && modules.empty() && values.empty(); }
};

/// Compares `a` with `b`: modes in tree order (a's, with b's own modes behind their parent's
/// subtree), then modules by name, then values by path and name. False, with `*diff` partly
/// filled, when a side could not be asked.
bool CompareTunings(TuningSide& a, TuningSide& b, TuningDiff* diff);
} // namespace tonemetry

#endif // TONEMETRY_TUNINGDIFF_H
