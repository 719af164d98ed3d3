#include "modelcheck.h"

#include <map>
#include <utility>

#include "fileformat.h"
#include "typename.h"

namespace tuningfile
{
namespace
{
std::string AlignmentVersions(uint8_t alignment)
{
    return (alignment == 8) ? "versions from 1.1.0 up to, not including, 3.0.1"
                            : "versions below 1.1.0 and from 3.0.1 on";
}

bool CheckAlignment(const TuningFileModel& model, std::string* error)
{
    if (model.alignment == 0)
    {
        return true;
    }
    if (model.alignment != 1 && model.alignment != 8)
    {
        *error = "alignment " + std::to_string(model.alignment) + " is not one of the format's alignments, 1 and 8";
        return false;
    }
    const uint8_t implied = FileFormat::AlignmentOf(model.version);
    if (model.alignment != implied)
    {
        *error = "alignment " + std::to_string(model.alignment) + " does not match version " +
                 model.version.ToString() + ", whose files have alignment " + std::to_string(implied) + "; alignment " +
                 std::to_string(model.alignment) + " belongs to " + AlignmentVersions(model.alignment);
        return false;
    }
    return true;
}

bool CheckHeaderText(const char* what, const std::string& text, size_t fieldSize, const FileFormat& format,
                     std::string* error)
{
    if (text.empty())
    {
        return true;
    }
    if (!format.HasToolAndTag())
    {
        *error = std::string(what) + " needs version " + gate::ModeTree.ToString() + " or above; the header of " +
                 format.GetVersion().ToString() + " has no such field";
        return false;
    }
    if (text.size() > fieldSize)
    {
        *error = std::string(what) + " is " + std::to_string(text.size()) +
                 " characters long; its header field holds " + std::to_string(fieldSize);
        return false;
    }
    if (text.find('\0') != std::string::npos)
    {
        *error = std::string(what) + " holds a zero byte, where the reader would end it";
        return false;
    }
    return true;
}

bool CheckRoot(const Mode& root, std::string* error)
{
    if (root.mode != 0 || root.subMode != 0 || root.parentId != 0 || root.linkId != NoLink)
    {
        *error = "modes[0] must be the root: mode 0.0, parent 0, no link";
        return false;
    }
    return true;
}

bool CheckLinkLoops(const std::vector<Mode>& modes, std::string* error)
{
    // The reader follows links to their end without a guard.
    for (size_t start = 0; start < modes.size(); ++start)
    {
        uint32_t current = static_cast<uint32_t>(start);
        for (size_t steps = 0; modes[current].linkId != NoLink; ++steps)
        {
            if (steps == modes.size())
            {
                *error = "modes[" + std::to_string(start) + "]: its links run in a loop";
                return false;
            }
            current = modes[current].linkId;
        }
    }
    return true;
}

bool CheckMode(const std::vector<Mode>& modes, size_t id, const FileFormat& format, std::string* error)
{
    const Mode&       mode = modes[id];
    const std::string name = "modes[" + std::to_string(id) + "]";
    if (mode.parentId >= id)
    {
        *error = name + ": parent " + std::to_string(mode.parentId) + " must be a mode that stands before it";
        return false;
    }
    if (mode.linkId != NoLink && !format.HasLinkId())
    {
        *error = name + ": a link needs version " + gate::LinkId.ToString() + " or above";
        return false;
    }
    if (mode.linkId != NoLink && mode.linkId >= modes.size())
    {
        *error = name + ": link " + std::to_string(mode.linkId) + " is beyond the " + std::to_string(modes.size()) +
                 " modes";
        return false;
    }
    // Modes 0 and 1 are pinned by the reader whatever the file says.
    if (mode.pinned && mode.mode >= 2 && !format.HasModeFlags())
    {
        *error = name + ": the pinned flag needs version " + gate::ModeFlags.ToString() + " or above";
        return false;
    }
    return true;
}

bool CheckModes(const std::vector<Mode>& modes, const FileFormat& format, std::string* error)
{
    if (modes.empty())
    {
        return true;
    }
    if (modes.size() > 1 && !format.HasModeTree())
    {
        *error = "modes[1]: modes beyond the root need version " + gate::ModeTree.ToString() +
                 " or above; older files have Default data only";
        return false;
    }
    if (!CheckRoot(modes[0], error))
    {
        return false;
    }
    for (size_t id = 1; id < modes.size(); ++id)
    {
        if (!CheckMode(modes, id, format, error))
        {
            return false;
        }
    }
    return CheckLinkLoops(modes, error);
}

bool CheckModules(const TuningFileModel& model, std::string* error)
{
    // Without a mode section the reader makes a tree of the root alone.
    const size_t                                       modeCount = model.modes.empty() ? 1 : model.modes.size();
    std::map<std::pair<uint32_t, std::string>, size_t> moduleOfType;
    for (size_t index = 0; index < model.modules.size(); ++index)
    {
        const Module&     module = model.modules[index];
        const std::string name   = "modules[" + std::to_string(index) + "] ('" + module.name + "')";
        if (module.name.empty())
        {
            *error = "modules[" + std::to_string(index) + "] has no name";
            return false;
        }
        if (module.name.find('\0') != std::string::npos)
        {
            *error = name + ": its name holds a zero byte";
            return false;
        }
        if (module.modeId >= modeCount)
        {
            *error = name + ": mode id " + std::to_string(module.modeId) + " is not below the file's mode count, " +
                     std::to_string(modeCount);
            return false;
        }
        // A mode keeps the first module of a name, and the name comes from the type.
        const std::string type  = ShortTypeName(module.name);
        const auto        first = moduleOfType.emplace(std::make_pair(module.modeId, type), index);
        if (!first.second)
        {
            *error = name + ": mode " + std::to_string(module.modeId) + " already holds modules[" +
                     std::to_string(first.first->second) + "] of the same type '" + type + "'";
            return false;
        }
    }
    return true;
}
} // namespace

bool CheckModel(const TuningFileModel& model, std::string* error)
{
    if (model.version > gate::Newest)
    {
        *error = "version " + model.version.ToString() + " is above " + gate::Newest.ToString() +
                 ", the newest version the reader accepts";
        return false;
    }
    if (!CheckAlignment(model, error))
    {
        return false;
    }
    const FileFormat format(model.version);
    return CheckHeaderText("tool text", model.tool, field::Tool, format, error) &&
           CheckHeaderText("binary tag", model.binaryTag, field::BinaryTag, format, error) &&
           CheckModes(model.modes, format, error) && CheckModules(model, error);
}
} // namespace tuningfile
