// The store at scale: a tuning file of 2,797 modes (Default, 12 sensors, 8 use cases each, 7
// Feature1 modes each, 3 scenes each) with one tonemetryPDLib per mode whose repeated members
// are at the limits the PD half accepts, built with the writer from a pack source, and the same
// values as compact JSON. Shared by the scale benchmark and the floor program.
#ifndef BENCH_STORE_SCALEFILE_H
#define BENCH_STORE_SCALEFILE_H

#include <cstdint>
#include <string>
#include <vector>

#include "sourcefields.h"
#include "tuningfile/model.h"

namespace scalebench
{
using Json = nlohmann::ordered_json;

constexpr int Sensors = 12, Usecases = 8, Features = 7, Scenes = 3;

/// The pack source of the scale file.
Json ScaleSource();

/// The pack source of a file of one tonemetryPDLib in the Default mode.
Json OneModuleSource();

/// A tuning file made with the writer: its model, its image and its path on disk, which goes
/// with the object.
struct PackedFile
{
    std::vector<uint8_t>        image;
    std::string                 path;
    tuningfile::TuningFileModel model;

    explicit PackedFile(const Json& source);
    ~PackedFile();
    PackedFile(const PackedFile&)            = delete;
    PackedFile& operator=(const PackedFile&) = delete;
};

/// The scale file and its source as compact JSON, made at the first call.
struct ScaleFile : PackedFile
{
    std::string json;

    explicit ScaleFile(const Json& source) : PackedFile(source), json(source.dump()) {}
};
const ScaleFile& File();

/// The one-module file, made at the first call.
const PackedFile& OneModuleFile();
} // namespace scalebench

#endif // BENCH_STORE_SCALEFILE_H
