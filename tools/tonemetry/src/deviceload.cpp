#include "deviceload.h"

#include <algorithm>

#include "g_facedetection/fdsetmanager.h"
#include "g_sensor/imagesensormodulesetmanager.h"
#include "g_tonemetry/tuningsetmanager.h"
#include "modepath.h"
#include "orvolog.h"
#include "parametermodeentry.h"

namespace tonemetry
{
namespace
{
/// The store prefixes its lines with "file.cpp:123: "; what follows is its text.
std::string WithoutSourcePrefix(std::string line)
{
    while (!line.empty() && ('\n' == line.back()))
    {
        line.pop_back();
    }
    const size_t source = std::min(line.find(".cpp:"), line.find(".h:"));
    if (std::string::npos != source)
    {
        const size_t end = line.find(": ", source);
        if (std::string::npos != end)
        {
            return line.substr(end + 2);
        }
    }
    return line;
}
} // namespace

const std::vector<std::string>& SetManagerNames()
{
    static const std::vector<std::string> names = {"TuningSetManager", "ImageSensorModuleSetManager", "fdSetManager"};
    return names;
}

std::unique_ptr<ParameterSetManager> MakeSetManager(const std::string& name)
{
    std::unique_ptr<ParameterSetManager> manager;
    if ("TuningSetManager" == name)
    {
        manager = std::make_unique<TuningSetManager>();
    }
    else if ("ImageSensorModuleSetManager" == name)
    {
        manager = std::make_unique<ImageSensorModuleSetManager>();
    }
    else if ("fdSetManager" == name)
    {
        manager = std::make_unique<fdSetManager>();
    }
    if (manager)
    {
        manager->m_tuningEnabled = false; // nothing listens: parallel runs cannot race for a port
    }
    return manager;
}

StoreLogCapture::StoreLogCapture()
{
    Orvo::Log::SetLogSink(&StoreLogCapture::Sink, this);
}

StoreLogCapture::~StoreLogCapture()
{
    Orvo::Log::SetLogSink(nullptr, nullptr);
}

void StoreLogCapture::Sink(uint64_t, const char*, uint32_t level, const char* pLine, void* pContext)
{
    if ((OrvoLogError != level) || (nullptr == pLine))
    {
        return;
    }
    std::string text = WithoutSourcePrefix(pLine);
    if (text.empty())
    {
        return; // the store logs an empty error text as a line of its own: nothing to tell
    }
    // The store writes its warnings (an older file format) at error level.
    const bool warning = (0 == text.compare(0, 8, "Warning:"));
    static_cast<StoreLogCapture*>(pContext)->m_lines.push_back({warning ? "warning" : "error", std::move(text)});
}

std::string LikeliestManager(const std::vector<uint8_t>& image)
{
    std::string chosen;
    size_t      fewest = SIZE_MAX;
    for (const std::string& name : SetManagerNames())
    {
        std::vector<uint8_t>                 copy    = image; // the load may write to its buffer
        std::unique_ptr<ParameterSetManager> manager = MakeSetManager(name);
        StoreLogCapture                      capture;
        size_t                               unknown = SIZE_MAX - 1;
        if (manager->LoadBinaryParameters(copy.data(), static_cast<unsigned long>(copy.size())))
        {
            unknown = std::count_if(capture.Lines().begin(), capture.Lines().end(), [](const LoggedLine& line) {
                return 0 == line.text.rfind("Failed to find header module", 0);
            });
        }
        if (unknown < fewest)
        {
            fewest = unknown;
            chosen = name;
        }
    }
    return chosen;
}

std::string NamedModePath(const ModeEntry* mode)
{
    ModePath path;
    for (const ModeEntry* node = mode; (nullptr != node) && (nullptr != node->m_parent); node = node->m_parent)
    {
        path.insert(path.begin(), ModeElement{node->m_mode.mode, node->m_mode.subMode});
    }
    return ModePathText(path);
}
} // namespace tonemetry
