// Tuning files for the store's reading tests: written by the writer, patched field by field,
// stored on disk; and the smallest concrete set manager.
#ifndef TESTS_STORE_STOREFILES_H
#define TESTS_STORE_STOREFILES_H

#include <cstdint>
#include <string>
#include <vector>

#include "opaquesetmanager.h"
#include "parametersetmanager.h"
#include "tempfile.h"
#include "tuningfile/writer.h"

namespace storetest
{
/// A set manager that takes every module type: each file entry becomes an opaque module.
using TestSetManager = OpaqueSetManager;

/// The image of `model`; a refusal fails the calling test.
std::vector<uint8_t> Written(const tuningfile::TuningFileModel& model);

uint32_t U32At(const std::vector<uint8_t>& image, size_t offset);
void     PutU32(std::vector<uint8_t>& image, size_t offset, uint32_t value);
void     PutU64(std::vector<uint8_t>& image, size_t offset, uint64_t value);

/// Puts the check value of the other bytes into the last four, as after an edit.
void Restamp(std::vector<uint8_t>& image);

/// Offset and size of a section of an image at version 3.0.0 or above, alignment 1.
struct Section
{
    uint32_t offset = 0;
    uint32_t size   = 0;
};
constexpr uint32_t HeaderSize = 168;
Section            FindSection(const std::vector<uint8_t>& image, uint32_t type);
/// Byte offset of the section-table entry of `type`.
size_t SectionEntryAt(const std::vector<uint8_t>& image, uint32_t type);
/// Mode record `id` of a 5.0.0 file: id at +0, modeUnion +4, parentId +12, linkId +16, flags +20.
size_t ModeRecordAt(const std::vector<uint8_t>& image, uint32_t id);

tuningfile::Mode   MakeMode(uint16_t mode, uint16_t subMode, uint32_t parentId, uint32_t linkId = tuningfile::NoLink,
                            bool pinned = false);
tuningfile::Module MakeModule(const std::string& name, uint32_t modeId, const tuningfile::DataBuilder& data,
                              const tuningfile::Version& version = {3, 4, 0});

/// The members of the test modules' top records (tests/store/schemas), in load order.
struct DemoRegion
{
    float    luxStart = 0.0f;
    float    luxEnd   = 0.0f;
    uint32_t strength = 0;
};
tuningfile::DataBuilder DemoData(float gain, const std::string& label = "demo",
                                 const std::vector<DemoRegion>& regions = {{0.0f, 100.0f, 7}},
                                 const std::vector<float>&      gamma   = {0.5f, 1.0f, 1.5f, 2.0f});
tuningfile::DataBuilder ConfigData(uint32_t maxFaces, float minScale, uint32_t accuracy);
/// A demo_1_0_0 module ("demo10_bps" or "demo10_ife") of `gain` and a testconfigdata module.
tuningfile::Module DemoModule(const std::string& name, uint32_t modeId, float gain);
tuningfile::Module ConfigModule(uint32_t modeId, uint32_t maxFaces);

/// The text of a string entry read through the dup-object service, given back at once.
std::string SharedText(ParameterFileSymbolTableEntry& entry, unsigned int length, unsigned char alignment);
} // namespace storetest

#endif // TESTS_STORE_STOREFILES_H
