// Reading whole tuning files: every version gate at both alignments, in buffer and in file mode,
// and the refusal of every kind of damaged file.
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "logcapture.h"
#include "orvomem.h"
#include "storefiles.h"

namespace
{
using storetest::FindSection;
using storetest::MakeMode;
using storetest::MakeModule;
using storetest::ModeRecordAt;
using storetest::PutU32;
using storetest::PutU64;
using storetest::Restamp;
using storetest::SectionEntryAt;
using storetest::TempFile;
using storetest::TestSetManager;
using storetest::U32At;
using testsupport::LogCapture;
using tuningfile::DataBuilder;
using tuningfile::NoLink;
using tuningfile::TuningFileModel;
using tuningfile::Version;

constexpr char OldFormatWarning[] = "Warning: This is an older binary format, only Default mode data is supported.\nTo "
                                    "support multiple modes, please re-generate binary using the latest version of "
                                    "Tonemetry";

DataBuilder FilterData()
{
    return DataBuilder().U32(0xA1B2C3D4u).String("rev 7").Repeated(std::vector<uint16_t>{1, 2, 3});
}

// Root, Usecase.Video with Feature1.ISPHDR and Feature2.HLG below it, and Usecase.Snapshot
// linked to Video. The filter module stands in the root and, repeated, in Video.
TuningFileModel GateModel(const Version& version)
{
    TuningFileModel model;
    model.version = version;
    model.modules = {MakeModule("tonemetry_abf34", 0, FilterData()),
                     MakeModule("Tonemetry_anr10", 0, DataBuilder().U8(7).F64(2.5))};
    if (version < Version{1, 0, 2})
    {
        return model; // Default data only
    }
    const bool links  = version >= Version{2, 0, 0};
    const bool pinned = version >= Version{5, 0, 0};
    model.tool        = "store test tool";
    model.binaryTag   = "gate " + version.ToString();
    model.modes       = {MakeMode(0, 0, 0), MakeMode(2, 2, 0), MakeMode(3, 1, 1), MakeMode(2, 1, 0, links ? 1 : NoLink),
                         MakeMode(4, 2, 1, NoLink, pinned)};
    model.modules.push_back(MakeModule("tonemetry_abf34", 1, FilterData()));
    return model;
}

struct Gate
{
    Version  version;
    uint8_t  alignment;
    uint32_t symbolCount; // module entries, and below 4.0.0 the pointer entries too
};

void PrintTo(const Gate& gate, std::ostream* stream)
{
    *stream << gate.version.ToString();
}

bool HasTree(const Gate& gate)
{
    return gate.version >= Version{1, 0, 2};
}

bool SharesDuplicates(const Gate& gate)
{
    return gate.version > Version{3, 0, 1};
}

void ExpectTree(ParameterSetManager& manager, const Gate& gate, bool fileMode)
{
    ModeEntry* root = manager.m_rootMode;
    ASSERT_NE(nullptr, root);
    EXPECT_EQ(root, manager.GetModeEntry("0.0"));
    EXPECT_TRUE(root->m_loaded);
    EXPECT_TRUE(root->m_pinned);
    if (!HasTree(gate))
    {
        EXPECT_EQ(1u, manager.m_modeCount);
        EXPECT_EQ(nullptr, manager.GetModeEntry("0.0|2.2"));
        return;
    }
    ASSERT_EQ(5u, manager.m_modeCount);
    // File mode loads a mode when a branch first asks for it.
    EXPECT_EQ(!fileMode, manager.m_modes[1]->m_loaded);
    ModeEntry* video = manager.GetModeEntry("0.0|2.2");
    ASSERT_NE(nullptr, video);
    EXPECT_EQ(1u, video->m_id);
    EXPECT_TRUE(video->m_loaded);
    EXPECT_FALSE(video->m_pinned);
    ModeEntry* isphdr = manager.GetModeEntry("0.0|2.2|3.1");
    ASSERT_NE(nullptr, isphdr);
    EXPECT_EQ(2u, isphdr->m_id);
    // Snapshot shares Video's children from 2.0.0 on.
    EXPECT_EQ((gate.version >= Version{2, 0, 0}) ? isphdr : nullptr, manager.GetModeEntry("0.0|2.1|3.1"));
    ModeEntry* hlg = manager.GetModeEntry("0.0|2.2|4.2");
    ASSERT_NE(nullptr, hlg);
    EXPECT_EQ(gate.version >= Version({5, 0, 0}), hlg->m_pinned);
}

// The module entries' bytes, read as a generated record would, at `alignment`.
void ExpectEntries(ParameterFileSymbolTable& table, const Gate& gate, unsigned char alignment)
{
    ParameterFileSymbolTableEntry filter;
    ASSERT_TRUE(table.Find(filter, 1, true));
    uint32_t value  = 0;
    uint32_t length = 0;
    uint32_t count  = 0;
    ASSERT_TRUE(ParameterUtils::Read(&value, filter.m_data, filter.m_length, &filter.m_position, alignment));
    EXPECT_EQ(0xA1B2C3D4u, value);
    ASSERT_TRUE(ParameterUtils::Read(&length, filter.m_data, filter.m_length, &filter.m_position, alignment));
    ParameterFileSymbolTableEntry text;
    ASSERT_TRUE(table.ReadPointerEntry(text, &filter, alignment));
    char* first = nullptr;
    ASSERT_TRUE(text.ReadString(&first, length, alignment));
    EXPECT_STREQ("rev 7", first);
    ASSERT_TRUE(ParameterUtils::Read(&count, filter.m_data, filter.m_length, &filter.m_position, alignment));
    EXPECT_EQ(3u, count);
    ParameterFileSymbolTableEntry list;
    ASSERT_TRUE(table.ReadPointerEntry(list, &filter, alignment));
    uint16_t values[3] = {};
    EXPECT_TRUE(ParameterUtils::ReadBuffer(reinterpret_cast<unsigned char*>(values), list.m_data, list.m_length,
                                           &list.m_position, sizeof(values), alignment, nullptr));
    EXPECT_EQ(1, values[0]);
    EXPECT_EQ(3, values[2]);

    ParameterFileSymbolTableEntry noise;
    ASSERT_TRUE(table.Find(noise, 2, true));
    uint8_t strength = 0;
    double  scale    = 0.0;
    EXPECT_TRUE(ParameterUtils::Read(&strength, noise.m_data, noise.m_length, &noise.m_position, alignment));
    EXPECT_TRUE(ParameterUtils::Read(&scale, noise.m_data, noise.m_length, &noise.m_position, alignment));
    EXPECT_EQ(7, strength);
    EXPECT_EQ(2.5, scale);

    char* second = nullptr;
    if (HasTree(gate))
    {
        // The repeat in Video: its string comes from the same duplicate group from 3.0.2 on.
        ParameterFileSymbolTableEntry repeat;
        ASSERT_TRUE(table.Find(repeat, 3, true));
        repeat.m_position = 2 * ((alignment > 4) ? alignment : 4u);
        ParameterFileSymbolTableEntry repeatText;
        ASSERT_TRUE(table.ReadPointerEntry(repeatText, &repeat, alignment));
        ASSERT_TRUE(repeatText.ReadString(&second, length, alignment));
        EXPECT_STREQ("rev 7", second);
        EXPECT_EQ(SharesDuplicates(gate), first == second);
    }
    for (char* held : {second, first})
    {
        if ((nullptr != held) && table.ReleaseDupObject(held))
        {
            OrvoFree(held, OrvoMemFlagsNone, __FILE__, __LINE__);
        }
    }
    EXPECT_TRUE(table.m_dupObjects.empty());
}

void ExpectModuleData(ParameterFileSymbolTable& table, const Gate& gate)
{
    EXPECT_EQ(gate.symbolCount, table.m_symbolCount);
    ASSERT_EQ(HasTree(gate) ? 3u : 2u, table.m_modules.count);
    ModuleData* filter = table.m_modules[0];
    EXPECT_STREQ("abf34", filter->Type);
    EXPECT_EQ((Version{3, 4, 0}.Raw()), filter->Version.value);
    EXPECT_STREQ("0.0", filter->ModePath);
    EXPECT_STREQ("anr10", table.m_modules[1]->Type);
    if (HasTree(gate))
    {
        EXPECT_EQ(1u, table.m_modules[2]->ModeId);
        EXPECT_STREQ("0.0|2.2", table.m_modules[2]->ModePath);
        EXPECT_EQ(SharesDuplicates(gate) ? 1u : 3u, table.m_modules[2]->DuplicateID);
    }
}

class StoreVersionGates : public testing::TestWithParam<Gate>
{
protected:
    LogCapture m_log;
};

TEST_P(StoreVersionGates, BufferModeReadsHeaderModesTablesAndEntries)
{
    const Gate&          gate  = GetParam();
    std::vector<uint8_t> image = storetest::Written(GateModel(gate.version));
    TestSetManager       manager;
    ASSERT_TRUE(manager.LoadBinaryParameters(image.data(), image.size())) << manager.m_errorText;
    EXPECT_TRUE(manager.m_parametersValid);
    EXPECT_EQ(gate.version.Raw(), manager.m_version.value);
    EXPECT_EQ(gate.alignment, manager.m_symbolTable->GetDataAlignment());
    if (HasTree(gate))
    {
        EXPECT_STREQ(("gate " + gate.version.ToString()).c_str(), manager.m_tag);
        EXPECT_STREQ("", manager.m_errorText);
    }
    else
    {
        EXPECT_EQ(nullptr, manager.m_tag);
        EXPECT_STREQ(OldFormatWarning, manager.m_errorText);
        EXPECT_EQ(1u, m_log.Count("ReadHeader: Version 1.0.0 < ModeTreeMinVersion, BinaryTag not set\n"));
    }
    EXPECT_EQ(1u, m_log.Count("Load Binary Parameters completed: Tag: "));
    ExpectTree(manager, gate, false);
    ExpectModuleData(*manager.m_symbolTable, gate);

    // Buffer mode keeps no entries once loaded: the image was the caller's.
    ParameterFileSymbolTableEntry gone;
    EXPECT_FALSE(manager.m_symbolTable->Find(gone, 1, true));
    EXPECT_EQ(nullptr, manager.m_symbolTable->m_data);

    // The same sections read into a table that keeps its entries, as during a load.
    ParameterFileSymbolTable table(&manager, manager.m_version);
    ASSERT_TRUE(table.Load(image.data(), static_cast<unsigned int>(image.size()), nullptr, nullptr,
                           static_cast<unsigned int>(image.size()), manager.m_symbolSize, manager.m_symbolOffset,
                           manager.m_dataTableSize, manager.m_dataTableOffset, manager.m_dataSize, manager.m_dataOffset,
                           &manager, gate.alignment));
    ExpectEntries(table, gate, gate.alignment);
    // The warning of an old file is logged as an error; nothing else is.
    EXPECT_EQ(HasTree(gate) ? 0u : 1u, m_log.Count("[ERROR]"));
}

INSTANTIATE_TEST_SUITE_P(EveryGate, StoreVersionGates,
                         testing::Values(Gate{{1, 0, 0}, 1, 4}, Gate{{1, 0, 2}, 1, 7}, Gate{{1, 1, 0}, 8, 7},
                                         Gate{{2, 0, 0}, 8, 7}, Gate{{3, 0, 0}, 8, 7}, Gate{{3, 0, 1}, 1, 7},
                                         Gate{{3, 0, 2}, 1, 7}, Gate{{4, 0, 0}, 1, 3}, Gate{{5, 0, 0}, 1, 3}));

class StoreFileModeGates : public StoreVersionGates
{
};

TEST_P(StoreFileModeGates, FileModeKeepsLookupsAndReadsEntriesFromTheFile)
{
    const Gate& gate = GetParam();
    TempFile    file("gate");
    file.Store(storetest::Written(GateModel(gate.version)));
    TestSetManager manager;
    manager.m_fileModeAllowed = true;
    ASSERT_TRUE(manager.LoadBinaryParameters(file.Path().c_str())) << manager.m_errorText;
    EXPECT_STREQ(file.Path().c_str(), manager.m_fileName);
    EXPECT_EQ(1u, m_log.Count("Load Binary Parameters completed: Binary Version: " + gate.version.ToString() + "\n"));
    ExpectTree(manager, gate, true);

    ParameterFileSymbolTable& table = *manager.m_symbolTable;
    ExpectModuleData(table, gate);
    EXPECT_EQ(nullptr, table.m_symbolEntries);
    EXPECT_NE(nullptr, table.m_symbolLookup);
    ExpectEntries(table, gate, 1);
    // Between reads the file is closed.
    EXPECT_EQ(nullptr, table.m_file->m_file);
    EXPECT_EQ(0, table.m_file->m_references);
}

// File mode reads at alignment 1 only, and needs the first 316 bytes that every written file has.
INSTANTIATE_TEST_SUITE_P(AlignmentOneGates, StoreFileModeGates,
                         testing::Values(Gate{{1, 0, 0}, 1, 4}, Gate{{1, 0, 2}, 1, 7}, Gate{{3, 0, 1}, 1, 7},
                                         Gate{{3, 0, 2}, 1, 7}, Gate{{4, 0, 0}, 1, 3}, Gate{{5, 0, 0}, 1, 3}));

// -------------------------------------------------------------------------------------------------
// Damaged files: each refusal with its own text.

struct Damage
{
    const char*                                name;
    std::function<void(std::vector<uint8_t>&)> apply;
    std::string                                logLine;   // the more exact line, where there is one
    std::string                                errorText; // m_errorText after the load
};

void PrintTo(const Damage& damage, std::ostream* stream)
{
    *stream << damage.name;
}

std::vector<uint8_t> CurrentImage()
{
    return storetest::Written(GateModel({5, 0, 0}));
}

void PatchSectionSize(std::vector<uint8_t>& image, uint32_t type, uint32_t size)
{
    PutU32(image, SectionEntryAt(image, type) + 8, size);
}

class StoreDamagedFiles : public testing::TestWithParam<Damage>
{
protected:
    LogCapture m_log;
};

TEST_P(StoreDamagedFiles, LoadFailsWithItsText)
{
    const Damage&        damage = GetParam();
    std::vector<uint8_t> image  = CurrentImage();
    damage.apply(image);
    Restamp(image);
    TestSetManager manager;
    EXPECT_FALSE(manager.LoadBinaryParameters(image.data(), image.size()));
    EXPECT_FALSE(manager.m_parametersValid);
    EXPECT_STREQ(damage.errorText.c_str(), manager.m_errorText);
    if (!damage.errorText.empty())
    {
        EXPECT_EQ(1u, m_log.Count(damage.errorText + "\n"));
    }
    if (!damage.logLine.empty())
    {
        EXPECT_EQ(1u, m_log.Count(damage.logLine)) << damage.logLine;
    }
    EXPECT_EQ(0u, m_log.Count("Load Binary Parameters completed"));
}

INSTANTIATE_TEST_SUITE_P(
    EachRefusal, StoreDamagedFiles,
    testing::Values(
        Damage{"WrongTag", [](std::vector<uint8_t>& image) { image[0] = 'Y'; }, "",
               "Invalid binary header tag: YVK Tonemetry Header"},
        Damage{"NewerVersion",
               [](std::vector<uint8_t>& image) {
                   PutU64(image, 32, Version{5, 0, 1}.Raw());
               },
               "",
               "Unsupported binary header version : 5.0.1. Please re-generate parser code using the latest version "
               "of ParameterParser"},
        Damage{"OneSection", [](std::vector<uint8_t>& image) { PutU32(image, 164, 1); },
               "ReadSectionInfo: Section count 1 is less than Min sections 2\n", "Invalid binary file section count"},
        Damage{"FiveSections", [](std::vector<uint8_t>& image) { PutU32(image, 164, 5); },
               "ReadSectionInfo: Section count 5 is greater than Max sections 4\n",
               "Invalid binary file section count"},
        Damage{"UnknownSectionType", [](std::vector<uint8_t>& image) { PutU32(image, SectionEntryAt(image, 3), 7); },
               "Invalid binary section type 7\n", "Invalid binary file section count"},
        Damage{"Compressed", [](std::vector<uint8_t>& image) { PutU64(image, 152, 2); }, "",
               "Compressed binary file not supported (support ended with V5.1.0)"},
        Damage{"ModeId", [](std::vector<uint8_t>& image) { PutU32(image, ModeRecordAt(image, 3), 9); }, "",
               "ReadModeSection: Mode ID exceeds mode count"},
        Damage{"ParentId", [](std::vector<uint8_t>& image) { PutU32(image, ModeRecordAt(image, 3) + 12, 5); }, "",
               "ReadModeSection: Parent Mode ID exceeds mode count"},
        Damage{"LinkId", [](std::vector<uint8_t>& image) { PutU32(image, ModeRecordAt(image, 3) + 16, 5); }, "",
               "ReadModeSection: Link Mode ID exceeds mode count"},
        Damage{"ModeSize", [](std::vector<uint8_t>& image) { PatchSectionSize(image, 2, 32 + 5 * 24 + 1); },
               "ReadModeSection: ModeSize 153 does not match expected size 152\n", ""},
        Damage{"SymbolTableOf61Bytes", [](std::vector<uint8_t>& image) { PatchSectionSize(image, 0, 61); },
               "Invalid symbol table size: 61, expected: 60\n", ""},
        Damage{"DataTableSize", [](std::vector<uint8_t>& image) { PatchSectionSize(image, 3, 17); },
               "Invalid data table size: 17, expected: 16\n", ""},
        Damage{"SectionPastTheEnd",
               [](std::vector<uint8_t>& image) {
                   PatchSectionSize(image, 0, static_cast<uint32_t>(image.size() / 60 + 1) * 60);
               },
               "Binary sections exceed the binary length", ""},
        Damage{"EntryBytesPastTheEnd",
               [](std::vector<uint8_t>& image) {
                   PutU32(image, FindSection(image, 0).offset + 52, static_cast<uint32_t>(image.size()));
               },
               "Symbol table entry 1 data (offset: ", ""}),
    [](const testing::TestParamInfo<Damage>& info) { return std::string(info.param.name); });

// -------------------------------------------------------------------------------------------------
// Sizes, the check value, names and the life of a loaded file.

class StoreLoad : public testing::Test
{
protected:
    LogCapture m_log;
};

TEST_F(StoreLoad, BufferSizeAgainstTheHeader)
{
    std::vector<uint8_t> image = CurrentImage();
    const size_t         size  = image.size();
    {
        TestSetManager manager;
        EXPECT_FALSE(manager.LoadBinaryParameters(image.data(), size - 1));
        EXPECT_EQ("Binary header data too small: Expected: " + std::to_string(size) +
                      " bytes, Actual: " + std::to_string(size - 1) + " bytes",
                  std::string(manager.m_errorText));
    }
    {
        TestSetManager manager;
        EXPECT_FALSE(manager.LoadBinaryParameters(image.data(), 100));
        EXPECT_STREQ("General error parsing binary header data header", manager.m_errorText);
        EXPECT_EQ(1u, m_log.Count("Failed to read 8 bytes from binary file offset 152, length 100\n"));
    }
    {
        // The check value closes the whole image, whatever dataSize says: an image longer than
        // dataSize loads when its last four bytes close all of it, and fails on damage past dataSize.
        image.resize(size + 64, 0xEE);
        Restamp(image);
        TestSetManager manager;
        EXPECT_TRUE(manager.LoadBinaryParameters(image.data(), image.size())) << manager.m_errorText;
        image[size + 10] ^= 0x01;
        TestSetManager damaged;
        EXPECT_FALSE(damaged.LoadBinaryParameters(image.data(), image.size()));
        EXPECT_EQ(1u, m_log.Count("Binary file CRC validation failed. Expected: "));
    }
    {
        uint8_t        byte = 0;
        TestSetManager manager;
        EXPECT_FALSE(manager.LoadBinaryParameters(&byte, 0x100000000ul));
        EXPECT_EQ(1u, m_log.Count("Buffer length (4294967296) exceeds maximum 4294967295\n"));
    }
}

TEST_F(StoreLoad, CheckValueComesLastAndLogsTheRecordedTextAgain)
{
    std::vector<uint8_t> image = storetest::Written(GateModel({1, 0, 0}));
    image[image.size() - 10] ^= 0xFF;
    TestSetManager manager;
    EXPECT_FALSE(manager.LoadBinaryParameters(image.data(), image.size()));
    EXPECT_EQ(1u, m_log.Count("Binary file CRC validation failed. Expected: "));
    // An older file's warning was the last text: the failure repeats it.
    EXPECT_STREQ(OldFormatWarning, manager.m_errorText);
    EXPECT_EQ(2u, m_log.Count(std::string(OldFormatWarning) + "\n"));
    EXPECT_EQ(nullptr, manager.m_symbolTable);
}

TEST_F(StoreLoad, CompressedFilesAreRefusedAfterTheHeaderAcceptedThem)
{
    // A compressed file may be longer than the buffer: the header lets it pass, its sections not.
    std::vector<uint8_t> image = CurrentImage();
    PutU64(image, 152, 2);
    PutU32(image, 28, static_cast<uint32_t>(image.size() + 100));
    Restamp(image);
    TestSetManager manager;
    EXPECT_FALSE(manager.LoadBinaryParameters(image.data(), image.size()));
    EXPECT_STREQ("Compressed binary file not supported (support ended with V5.1.0)", manager.m_errorText);

    PutU32(image, 28, static_cast<uint32_t>(image.size()));
    Restamp(image);
    TempFile file("compressed");
    file.Store(image);
    TestSetManager fileManager;
    fileManager.m_fileModeAllowed = true;
    EXPECT_FALSE(fileManager.LoadBinaryParameters(file.Path().c_str()));
    EXPECT_EQ(1u, m_log.Count("Compressed binary files ssupport removed in V5.1.0\n"));
    EXPECT_EQ(nullptr, fileManager.m_symbolTable);
}

TEST_F(StoreLoad, FileNamesThatCannotBeLoaded)
{
    TestSetManager manager;
    EXPECT_FALSE(manager.LoadBinaryParameters(static_cast<char const*>(nullptr)));
    EXPECT_STREQ("LoadBinaryParameters called with nullptr file name", manager.m_errorText);

    EXPECT_FALSE(manager.LoadBinaryParameters(std::string(1023, 'a').c_str()));
    EXPECT_EQ(1u, m_log.Count("File name length (1023) exceeds max file name length of 1023\n"));

    TempFile missing("missing");
    EXPECT_FALSE(manager.LoadBinaryParameters(missing.Path().c_str()));
    EXPECT_EQ(1u, m_log.Count("Failed to load binary file " + missing.Path() + "\n"));
    EXPECT_STREQ("", manager.m_fileName);
}

TEST_F(StoreLoad, FileModeIsAnOptionOfTheManager)
{
    TempFile file("buffermode");
    file.Store(CurrentImage());
    TestSetManager manager;
    ASSERT_TRUE(manager.LoadBinaryParameters(file.Path().c_str()));
    EXPECT_STREQ("", manager.m_fileName);
    EXPECT_EQ(nullptr, manager.m_symbolTable->m_file);
    EXPECT_EQ(1u, m_log.Count("Load Binary Parameters completed: Tag: gate 5.0.0, Version: 5.0.0\n"));
}

TEST_F(StoreLoad, ASmallFileLoadsFromABufferButNotInFileMode)
{
    // No modes and no modules: the header, a section table of symbols and data, the check value.
    std::vector<uint8_t> image = storetest::Written(TuningFileModel());
    const size_t         data  = SectionEntryAt(image, ParameterSetManager::SectionData);
    image.resize(FindSection(image, ParameterSetManager::SectionData).offset + 4);
    PutU32(image, data + 8, 0);
    PutU32(image, 28, static_cast<uint32_t>(image.size()));
    Restamp(image);
    ASSERT_LT(image.size(), 316u);

    TestSetManager manager;
    EXPECT_TRUE(manager.LoadBinaryParameters(image.data(), image.size())) << manager.m_errorText;
    EXPECT_EQ(1u, m_log.Count("ReadModeSection: No mode table in binary, ModeOffset(0) ModeSize(0), creating "
                              "default\n"));
    EXPECT_EQ(1u, m_log.Count("ReadModeSection: Binary missing symbol table or data SymbolOffset("));
    ASSERT_NE(nullptr, manager.m_rootMode);
    EXPECT_EQ(0u, manager.m_symbolTable->m_modules.count);

    TempFile file("small");
    file.Store(image);
    TestSetManager fileManager;
    fileManager.m_fileModeAllowed = true;
    EXPECT_FALSE(fileManager.LoadBinaryParameters(file.Path().c_str()));
    EXPECT_EQ(1u, m_log.Count("Failed to read 316 bytes from binary file " + file.Path() + "\n"));
}

TEST_F(StoreLoad, ASecondLoadNeedsTheFirstFreed)
{
    std::vector<uint8_t> damaged = CurrentImage();
    PutU32(damaged, ModeRecordAt(damaged, 2), 9);
    Restamp(damaged);
    std::vector<uint8_t> image = CurrentImage();

    TestSetManager manager;
    EXPECT_FALSE(manager.LoadBinaryParameters(damaged.data(), damaged.size()));
    ASSERT_NE(nullptr, manager.m_symbolTable) << "a failed load can leave its table";
    EXPECT_FALSE(manager.LoadBinaryParameters(image.data(), image.size()));
    EXPECT_STREQ("Binary file already loaded", manager.m_errorText);

    manager.FreeBinaryParameters();
    EXPECT_EQ(1u, m_log.Count("FreeBinaryParameters called\n"));
    EXPECT_EQ(nullptr, manager.m_rootMode);
    EXPECT_EQ(0u, manager.m_modeCount);
    EXPECT_EQ(nullptr, manager.m_tag);
    EXPECT_TRUE(manager.LoadBinaryParameters(image.data(), image.size())) << manager.m_errorText;
    EXPECT_EQ(5u, manager.m_modeCount);
}

// File mode re-reads entries; a file that changed on disk since the load is no longer read.
class StoreFileMode : public StoreLoad
{
protected:
    void SetUp() override
    {
        m_file.Store(CurrentImage());
        m_manager.m_fileModeAllowed = true;
        ASSERT_TRUE(m_manager.LoadBinaryParameters(m_file.Path().c_str())) << m_manager.m_errorText;
        m_log.Clear();
    }

    TempFile       m_file{"filemode"};
    TestSetManager m_manager;
};

TEST_F(StoreFileMode, AFileChangedOnDiskIsNotReadAgain)
{
    ParameterFileSymbolTableEntry entry;
    ASSERT_TRUE(m_manager.m_symbolTable->Find(entry, 1, true));
    m_file.Store(CurrentImage());
    m_file.ShiftModifiedTime(10);
    EXPECT_FALSE(m_manager.m_symbolTable->Find(entry, 1, true));
    EXPECT_EQ(1u, m_log.Count("ParameterBinaryFile::Open, file modified, must reload\n"));
    EXPECT_TRUE(m_manager.m_symbolTable->m_file->m_modified);
    EXPECT_EQ(nullptr, m_manager.m_symbolTable->m_file->m_file) << "the reference is given back";
}

TEST_F(StoreFileMode, AShortReadIsTriedFourTimes)
{
    std::vector<uint8_t> image = CurrentImage();
    image.resize(200);
    m_file.StoreUnnoticed(image);
    ParameterFileSymbolTableEntry entry;
    EXPECT_FALSE(m_manager.m_symbolTable->Find(entry, 1, true));
    EXPECT_EQ(4u, m_log.Count("Read failed to read from file, ferror: "));
    EXPECT_EQ(3u, m_log.Count("ParameterBinaryFile::Read failed, retrying\n"));
    EXPECT_FALSE(m_manager.m_symbolTable->m_file->m_modified);
}
} // namespace
