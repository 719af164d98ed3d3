#include "scalefile.h"

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>

#include "packsource.h"
#include "schemacatalogue.h"
#include "tuningfile/writer.h"

namespace scalebench
{
/// A tonemetryPDLib whose every repeated member is at its limit, with values of its own per mode
/// so that the writer shares no block between modes.
namespace
{
Json PdTuning(int seed)
{
    Json patterns = Json::array();
    for (int pattern = 0; pattern < 2; ++pattern)
    {
        Json lines = Json::array();
        for (int line = 0; line < 16; ++line)
        {
            lines.push_back({{"XOffset", seed + line}, {"YOffset", pattern + line}, {"HalfLine", line % 2}});
        }
        Json instructions = Json::array();
        for (int index = 0; index < 32; ++index)
        {
            Json s = Json::array(), o = Json::array();
            for (int k = 0; k < 8; ++k)
            {
                s.push_back(seed + index + k);
            }
            for (int k = 0; k < 4; ++k)
            {
                o.push_back(0.25 * (seed % 97) + index + k);
            }
            instructions.push_back({{"S", s}, {"O", o}});
        }
        Json left = Json::array(), right = Json::array();
        for (int k = 0; k < 128; ++k)
        {
            left.push_back(seed + k);
            right.push_back(seed - k);
        }
        patterns.push_back({{"lineExtractor", lines},
                            {"pixelSeparator", {{"inputBlockWidth", 16}, {"L_map", left}, {"R_map", right}}},
                            {"resampler", {{"enable", 1}, {"instructions", instructions}}},
                            {"gridWidthScaleRatio", 1.0},
                            {"gridHeightScaleRatio", 1.0}});
    }
    Json weights = Json::array();
    for (int k = 0; k < 4; ++k)
    {
        weights.push_back({{"weight", 0.5 + k}, {"confThreshold", seed + k}});
    }
    return {{"parameter_version", {{"revision", "scale " + std::to_string(seed)}}},
            {"correlation", {{"defocusConfidenceThreshold", 100 + seed % 50}}},
            {"HVControl", {{"horizontalConfWeightTuning", weights}, {"verticalConfWeightTuning", weights}}},
            {"hardwarePattern", patterns}};
}

} // namespace

Json ScaleSource()
{
    Json modes   = Json::array({{{"name", "Default"}}});
    Json modules = Json::array();
    int  seed    = 0;
    auto addMode = [&](const std::string& name, const std::string& parent) {
        Json mode = {{"name", name}};
        if (!parent.empty())
        {
            mode["parent"] = parent;
        }
        modes.push_back(mode);
        const std::string path = parent.empty() ? name : parent + "|" + name;
        modules.push_back({{"name", "tonemetryPDLib"}, {"mode", path}, {"values", PdTuning(++seed)}});
        return path;
    };
    modules.push_back({{"name", "tonemetryPDLib"}, {"mode", "Default"}, {"values", PdTuning(0)}});
    for (int sensor = 0; sensor < Sensors; ++sensor)
    {
        const std::string sensorPath = addMode("Sensor." + std::to_string(sensor), "");
        for (int usecase = 0; usecase < Usecases; ++usecase)
        {
            const std::string usecasePath = addMode("Usecase." + std::to_string(usecase), sensorPath);
            for (int feature = 0; feature < Features; ++feature)
            {
                const std::string featurePath = addMode("Feature1." + std::to_string(feature), usecasePath);
                for (int scene = 0; scene < Scenes; ++scene)
                {
                    addMode("Scene." + std::to_string(scene), featurePath);
                }
            }
        }
    }
    return {{"setManager", "TuningSetManager"}, {"binaryTag", "scale"}, {"modes", modes}, {"modules", modules}};
}

PackedFile::PackedFile(const Json& source)
{
    modulegen::SchemaSet                schemas;
    std::vector<std::string>            problems;
    std::vector<tonemetry::EncodeError> errors;
    std::string                         refusal;
    if (!tonemetry::LoadSchemaCatalogue(tonemetry::DefaultSchemaFolder(), &schemas, &problems) ||
        !tonemetry::ReadPackSource(source, schemas, &model, &errors) || !tuningfile::Write(model, &image, &refusal))
    {
        std::fprintf(stderr, "scale benchmark: the file could not be made\n");
        std::abort();
    }
    char      pattern[]  = "/tmp/scale_bench.XXXXXX";
    const int descriptor = mkstemp(pattern);
    path                 = pattern;
    close(descriptor);
    std::ofstream(path, std::ios::binary)
        .write(reinterpret_cast<const char*>(image.data()), static_cast<std::streamsize>(image.size()));
}

PackedFile::~PackedFile()
{
    std::remove(path.c_str());
}

Json OneModuleSource()
{
    return {{"setManager", "TuningSetManager"},
            {"binaryTag", "one"},
            {"modes", Json::array({{{"name", "Default"}}})},
            {"modules", Json::array({{{"name", "tonemetryPDLib"}, {"mode", "Default"}, {"values", PdTuning(0)}}})}};
}

const ScaleFile& File()
{
    static const ScaleFile file(ScaleSource());
    return file;
}

const PackedFile& OneModuleFile()
{
    static const PackedFile file(OneModuleSource());
    return file;
}
} // namespace scalebench
