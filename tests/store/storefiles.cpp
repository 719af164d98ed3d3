#include "storefiles.h"

#include <gtest/gtest.h>

#include "orvomem.h"

namespace storetest
{
std::vector<uint8_t> Written(const tuningfile::TuningFileModel& model)
{
    std::vector<uint8_t> image;
    std::string          error;
    EXPECT_TRUE(tuningfile::Write(model, &image, &error)) << error;
    return image;
}

uint32_t U32At(const std::vector<uint8_t>& image, size_t offset)
{
    uint32_t value = 0;
    for (size_t byte = 0; byte < 4; ++byte)
    {
        value |= static_cast<uint32_t>(image.at(offset + byte)) << (8 * byte);
    }
    return value;
}

void PutU64(std::vector<uint8_t>& image, size_t offset, uint64_t value)
{
    for (size_t byte = 0; byte < 8; ++byte)
    {
        image.at(offset + byte) = static_cast<uint8_t>(value >> (8 * byte));
    }
}

void PutU32(std::vector<uint8_t>& image, size_t offset, uint32_t value)
{
    for (size_t byte = 0; byte < 4; ++byte)
    {
        image.at(offset + byte) = static_cast<uint8_t>(value >> (8 * byte));
    }
}

void Restamp(std::vector<uint8_t>& image)
{
    const size_t checked = image.size() - 4;
    PutU32(image, checked, ParameterBinaryFile::ComputeCRC(image.data(), checked));
}

size_t SectionEntryAt(const std::vector<uint8_t>& image, uint32_t type)
{
    const uint32_t tableOffset = U32At(image, HeaderSize - 8);
    const uint32_t count       = U32At(image, HeaderSize - 4);
    for (uint32_t index = 0; index < count; ++index)
    {
        const size_t entry = tableOffset + index * 12u;
        if (U32At(image, entry) == type)
        {
            return entry;
        }
    }
    ADD_FAILURE() << "no section of type " << type;
    return 0;
}

Section FindSection(const std::vector<uint8_t>& image, uint32_t type)
{
    const size_t entry = SectionEntryAt(image, type);
    return {U32At(image, entry + 4), U32At(image, entry + 8)};
}

size_t ModeRecordAt(const std::vector<uint8_t>& image, uint32_t id)
{
    return FindSection(image, ParameterSetManager::SectionModeTable).offset + 32 + id * 24u;
}

tuningfile::Mode MakeMode(uint16_t mode, uint16_t subMode, uint32_t parentId, uint32_t linkId, bool pinned)
{
    tuningfile::Mode entry;
    entry.mode     = mode;
    entry.subMode  = subMode;
    entry.parentId = parentId;
    entry.linkId   = linkId;
    entry.pinned   = pinned;
    return entry;
}

tuningfile::Module MakeModule(const std::string& name, uint32_t modeId, const tuningfile::DataBuilder& data,
                              const tuningfile::Version& version)
{
    tuningfile::Module module;
    module.name    = name;
    module.version = version;
    module.modeId  = modeId;
    module.data    = data;
    return module;
}

tuningfile::DataBuilder DemoData(float gain, const std::string& label, const std::vector<DemoRegion>& regions,
                                 const std::vector<float>& gamma)
{
    std::vector<tuningfile::DataBuilder> elements;
    for (const DemoRegion& region : regions)
    {
        elements.push_back(tuningfile::DataBuilder().F32(region.luxStart).F32(region.luxEnd).U32(region.strength));
    }
    return tuningfile::DataBuilder()
        .Record(tuningfile::DataBuilder().I32(1).I32(0).I32(0))
        .F32(gain)
        .FixedArray(gamma)
        .String(label)
        .Repeated(elements);
}

tuningfile::DataBuilder ConfigData(uint32_t maxFaces, float minScale, uint32_t accuracy)
{
    return tuningfile::DataBuilder()
        .Record(tuningfile::DataBuilder().I32(3).I32(4).I32(0))
        .U32(maxFaces)
        .F32(minScale)
        .Enum(accuracy);
}

tuningfile::Module DemoModule(const std::string& name, uint32_t modeId, float gain)
{
    return MakeModule(name, modeId, DemoData(gain), {1, 0, 0});
}

tuningfile::Module ConfigModule(uint32_t modeId, uint32_t maxFaces)
{
    return MakeModule("testconfigdata", modeId, ConfigData(maxFaces, 0.25f, 15), {3, 4, 0});
}

std::string SharedText(ParameterFileSymbolTableEntry& entry, unsigned int length, unsigned char alignment)
{
    char* text = nullptr;
    if (!entry.ReadString(&text, length, alignment))
    {
        return "<unread>";
    }
    std::string copy(text);
    if (entry.m_table->ReleaseDupObject(text))
    {
        OrvoFree(text, OrvoMemFlagsNone, __FILE__, __LINE__);
    }
    return copy;
}
} // namespace storetest
