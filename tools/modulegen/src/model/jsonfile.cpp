#include "modulegen/jsonfile.h"

#include <fstream>
#include <set>
#include <sstream>
#include <vector>

namespace modulegen
{
namespace
{
/// Follows the parser's events to know the JSON pointer of the value being parsed, and the
/// keys already seen in each open object.
class PathTracker
{
public:
    using Event = nlohmann::ordered_json::parse_event_t;

    /// The pointer of a duplicate key, or empty when the event is fine.
    std::string OnEvent(Event event, const nlohmann::ordered_json& parsed)
    {
        switch (event)
        {
            case Event::object_start:
                m_frames.push_back(Frame{false, 0, {}, {}});
                break;
            case Event::array_start:
                m_frames.push_back(Frame{true, 0, {}, {}});
                break;
            case Event::key: {
                Frame& frame = m_frames.back();
                frame.key    = parsed.get<std::string>();
                if (!frame.keys.insert(frame.key).second)
                {
                    return CurrentPath();
                }
                break;
            }
            case Event::object_end:
            case Event::array_end:
                m_frames.pop_back();
                CountElement();
                break;
            case Event::value:
                CountElement();
                break;
        }
        return {};
    }

private:
    struct Frame
    {
        bool                  isArray;
        size_t                index;
        std::string           key;
        std::set<std::string> keys;
    };

    void CountElement()
    {
        if (!m_frames.empty() && m_frames.back().isArray)
        {
            ++m_frames.back().index;
        }
    }

    std::string CurrentPath() const
    {
        std::string path;
        for (const Frame& frame : m_frames)
        {
            path = frame.isArray ? JsonChild(path, frame.index) : JsonChild(path, frame.key);
        }
        return path;
    }

    std::vector<Frame> m_frames;
};
} // namespace

bool ReadJsonFile(const std::string& path, const std::string& displayPath, nlohmann::ordered_json* out,
                  DiagnosticSink& sink)
{
    std::ifstream stream(path, std::ios::binary);
    if (!stream)
    {
        sink.Add(displayPath, "", "cannot be read");
        return false;
    }
    std::ostringstream text;
    text << stream.rdbuf();

    PathTracker tracker;
    size_t      before   = sink.Count();
    auto        callback = [&](int, nlohmann::ordered_json::parse_event_t event, nlohmann::ordered_json& parsed) {
        std::string duplicate = tracker.OnEvent(event, parsed);
        if (!duplicate.empty())
        {
            sink.Add(displayPath, duplicate, "key given twice");
        }
        return true;
    };
    try
    {
        *out = nlohmann::ordered_json::parse(text.str(), callback);
    }
    catch (const nlohmann::ordered_json::parse_error& error)
    {
        sink.Add(displayPath, "", std::string("not valid JSON: ") + error.what());
        return false;
    }
    return sink.Count() == before;
}
std::string JsonKindName(const nlohmann::ordered_json& value)
{
    if (value.is_object())
    {
        return "an object";
    }
    if (value.is_array())
    {
        return "an array";
    }
    if (value.is_string())
    {
        return "a string";
    }
    if (value.is_number())
    {
        return "a number";
    }
    if (value.is_boolean())
    {
        return "a boolean";
    }
    return "null";
}
} // namespace modulegen
