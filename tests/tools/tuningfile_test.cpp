// The tuning-file writer against files built by hand from the layout tables, across the format's
// version gates and both alignments, and its refusals.
#include <cstdio>
#include <fstream>
#include <functional>
#include <iterator>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "parameterbinaryfile.h"
#include "tuningfile/writer.h"
#include "tuningfile_bytes.h"

namespace
{
using tuningfile::DataBuilder;
using tuningfile::Mode;
using tuningfile::Module;
using tuningfile::TuningFileModel;
using tuningfile::Version;
using tuningfile_test::HandImage;
using tuningfile_test::U32At;
using tuningfile_test::ValueAt;

constexpr uint32_t None = 0xFFFFFFFF;

std::vector<uint8_t> Written(const TuningFileModel& model)
{
    std::vector<uint8_t> image;
    std::string          error;
    EXPECT_TRUE(tuningfile::Write(model, &image, &error)) << error;
    return image;
}

Module MakeModule(const std::string& name, uint32_t modeId, const DataBuilder& data)
{
    Module module;
    module.name    = name;
    module.version = Version{3, 4, 0};
    module.modeId  = modeId;
    module.data    = data;
    return module;
}

Mode MakeMode(uint16_t mode, uint16_t subMode, uint32_t parentId)
{
    Mode entry;
    entry.mode     = mode;
    entry.subMode  = subMode;
    entry.parentId = parentId;
    return entry;
}

/// The section table of a written file, by type: offset and size.
struct Section
{
    uint32_t offset  = 0;
    uint32_t size    = 0;
    bool     present = false;
};

Section FindSection(const std::vector<uint8_t>& image, uint32_t headerSize, uint32_t cell, uint32_t type)
{
    const uint32_t tableOffset = U32At(image, headerSize - 8);
    const uint32_t count       = U32At(image, headerSize - 4);
    for (uint32_t index = 0; index < count; ++index)
    {
        const uint32_t entry = tableOffset + index * 3 * cell;
        if (U32At(image, entry) == type)
        {
            return {U32At(image, entry + cell), U32At(image, entry + 2 * cell), true};
        }
    }
    return {};
}

// ---------------------------------------------------------------------------------------------
// Whole files, byte for byte.

TEST(TuningFileLayout, CurrentVersionWithModeTreeMatchesTheHandBuiltFile)
{
    TuningFileModel model;
    model.tool            = "writer";
    model.binaryTag       = "unit";
    model.modes           = {MakeMode(0, 0, 0), MakeMode(2, 1, 0), MakeMode(2, 2, 0)};
    model.modes[1].pinned = true;
    model.modes[2].linkId = 1;
    model.modules         = {MakeModule("tonemetry_abf34", 1, DataBuilder().U32(7))};

    // Header 168, section table of 3 x 12 at 168, mode section (32 + 3 x 24) at 204, symbol
    // table (1 x 60) at 308, data (4) at 368, check value at 372.
    HandImage expected(376);
    expected.Text(0, "ZVK Tonemetry Header").U32(28, 376).Version(32, 5, 0, 0);
    expected.Text(40, "writer").Text(88, "unit").U32(160, 168).U32(164, 3);
    expected.U32(168, 2).U32(172, 204).U32(176, 104);
    expected.U32(180, 0).U32(184, 308).U32(188, 60);
    expected.U32(192, 1).U32(196, 368).U32(200, 4);
    expected.U32(236, 0).U32(248, 0).U32(252, None).U32(256, 0);
    expected.U32(260, 1).U16(264, 2).U16(266, 1).U32(272, 0).U32(276, None).U32(280, 1);
    expected.U32(284, 2).U16(288, 2).U16(290, 2).U32(296, 0).U32(300, 1).U32(304, 0);
    expected.U32(308, 1).Text(312, "abf34").Version(344, 3, 4, 0).U32(352, 1).U32(356, 0).U32(360, 4).U32(364, 1);
    expected.U32(368, 7);

    EXPECT_EQ(Written(model), expected.Finished());
}

TEST(TuningFileLayout, DataTableHoldsStringRepeatedAndOptionalEntries)
{
    TuningFileModel model;
    model.modules = {
        MakeModule("tonemetry_abf34", 0,
                   DataBuilder().U32(0xA1).String("hi").Repeated(std::vector<uint16_t>{5, 6, 7}).OptionalAbsent())};

    // No mode section. Symbol table at 204, data table (3 x 16) at 264, data at 312. File mode
    // reads 60 bytes at the last data-table record (296), so the data section runs to 352.
    HandImage expected(356);
    expected.Text(0, "ZVK Tonemetry Header").U32(28, 356).Version(32, 5, 0, 0).U32(160, 168).U32(164, 3);
    expected.U32(168, 0).U32(172, 204).U32(176, 60);
    expected.U32(180, 3).U32(184, 264).U32(188, 48);
    expected.U32(192, 1).U32(196, 312).U32(200, 40);
    expected.U32(204, 1).Text(208, "abf34").Version(240, 3, 4, 0).U32(248, 0).U32(252, 0).U32(256, 28).U32(260, 1);
    expected.U32(264, 1).U32(268, 28).U32(272, 3).U32(276, 1);
    expected.U32(280, 2).U32(284, 31).U32(288, 6).U32(292, 2);
    expected.U32(296, 3).U32(300, 37).U32(304, 0).U32(308, 3);
    // Module: scalar, string (length, id), repeated (count, id), optional (flag, id).
    expected.U32(312, 0xA1).U32(316, 2).U32(320, 1).U32(324, 3).U32(328, 2).U32(332, 0).U32(336, 3);
    expected.Text(340, "hi").U16(343, 5).U16(345, 6).U16(347, 7);

    EXPECT_EQ(Written(model), expected.Finished());
}

TEST(TuningFileLayout, AlignmentEightCellsPaddingAndPointersInTheSymbolTable)
{
    TuningFileModel model;
    model.version = Version{2, 0, 0};
    model.modes   = {MakeMode(0, 0, 0), MakeMode(2, 1, 0)};
    model.modules = {
        MakeModule("tonemetry_abf34", 1,
                   DataBuilder().U16(0x1234).FixedArray(std::vector<uint8_t>{1, 2, 3}).Enum(5).String("abc"))};

    // Header 160 (no flags below 3.0.0), section entries of 3 x 8, mode records of 32, symbol
    // records of 72 in a section of 76 per record; the string is symbol entry 2.
    HandImage expected(500);
    expected.Text(0, "ZVK Tonemetry Header").U32(28, 500).Version(32, 2, 0, 0).U32(152, 160).U32(156, 3);
    expected.U32(160, 2).U32(168, 232).U32(176, 64);
    expected.U32(184, 0).U32(192, 296).U32(200, 152);
    expected.U32(208, 1).U32(216, 448).U32(224, 48);
    expected.U32(232, 0).U32(240, 0).U32(248, 0).U32(256, None);
    expected.U32(264, 1).U16(272, 2).U16(274, 1).U32(280, 0).U32(288, None);
    expected.U32(296, 1).Text(304, "abf34").Version(336, 3, 4, 0).U32(344, 1).U32(352, 0).U32(360, 40);
    expected.U32(368, 2).U32(416, None).U32(424, 40).U32(432, 8);
    // Every single value in a cell of 8; the 3-byte array padded to 8.
    expected.U16(448, 0x1234).U8(456, 1).U8(457, 2).U8(458, 3).U32(464, 5).U32(472, 3).U32(480, 2);
    expected.Text(488, "abc");

    EXPECT_EQ(Written(model), expected.Finished());
}

TEST(TuningFileLayout, OldestVersionHasTheShortHeaderAndReservedSymbolBytes)
{
    TuningFileModel model;
    model.version = Version{1, 0, 0};
    model.modes   = {MakeMode(0, 0, 0)};
    model.modules = {MakeModule("sensordriver", 0, DataBuilder().U8(0x5A))};

    // Header 48 with the section table at 40 and its count at 44; a lone root needs no mode
    // section. Symbol record of 64 with 8 reserved bytes ahead of the mode id.
    HandImage expected(316);
    expected.Text(0, "ZVK Tonemetry Header").U32(28, 316).Version(32, 1, 0, 0).U32(40, 48).U32(44, 2);
    expected.U32(48, 0).U32(52, 72).U32(56, 64);
    expected.U32(60, 1).U32(64, 136).U32(68, 176);
    expected.U32(72, 1).Text(76, "sensordriver").Version(108, 3, 4, 0).U32(124, 0).U32(128, 0).U32(132, 1);
    expected.U8(136, 0x5A);

    EXPECT_EQ(Written(model), expected.Finished());
}

// ---------------------------------------------------------------------------------------------
// Every version gate: header, section entries, record sizes and cells.

struct GateCase
{
    Version  version;
    uint32_t headerSize;
    uint32_t cell;
    uint32_t modeSectionSize; // two mode records and the text where there is one; 0: no section
    uint32_t symbolEntrySize;
    uint32_t dataSizeAt; // of a symbol record
    bool     dataTable;
};

void PrintTo(const GateCase& gate, std::ostream* stream)
{
    *stream << "version " << gate.version.ToString();
}

class TuningFileGates : public ::testing::TestWithParam<GateCase>
{
};

TEST_P(TuningFileGates, SectionsRecordsAndCellsFollowTheVersion)
{
    const GateCase& gate = GetParam();
    TuningFileModel model;
    model.version = gate.version;
    model.modes   = {MakeMode(0, 0, 0)};
    if (gate.modeSectionSize > 0)
    {
        model.modes.push_back(MakeMode(3, 1, 0));
    }
    model.modules = {MakeModule("tonemetry_abf34", 0, DataBuilder().String("x"))};

    const std::vector<uint8_t> image = Written(model);
    ASSERT_GE(image.size(), 316u);
    EXPECT_EQ(U32At(image, 28), image.size());
    EXPECT_EQ(ValueAt(image, 32, 8), gate.version.Raw());
    EXPECT_EQ(U32At(image, gate.headerSize - 8), gate.headerSize);
    EXPECT_TRUE(ParameterBinaryFile::ValidateCRC(image.data(), static_cast<unsigned int>(image.size()), nullptr));

    const Section modes = FindSection(image, gate.headerSize, gate.cell, 2);
    EXPECT_EQ(modes.present, gate.modeSectionSize > 0);
    EXPECT_EQ(modes.size, gate.modeSectionSize);

    // The string's entry goes to the data table where there is one, else to the symbol table.
    const Section  symbols     = FindSection(image, gate.headerSize, gate.cell, 0);
    const Section  dataTable   = FindSection(image, gate.headerSize, gate.cell, 3);
    const uint32_t symbolCount = gate.dataTable ? 1 : 2;
    EXPECT_EQ(symbols.size, symbolCount * gate.symbolEntrySize);
    EXPECT_EQ(dataTable.present, gate.dataTable);
    EXPECT_EQ(dataTable.size, gate.dataTable ? 16u : 0u);

    // The module's bytes: a length cell and an id cell.
    const Section data = FindSection(image, gate.headerSize, gate.cell, 1);
    EXPECT_EQ(U32At(image, symbols.offset + gate.dataSizeAt), 2 * gate.cell);
    EXPECT_EQ(U32At(image, data.offset + gate.cell), gate.dataTable ? 1u : 2u);
}

INSTANTIATE_TEST_SUITE_P(EveryVersionGate, TuningFileGates,
                         ::testing::Values(GateCase{Version{1, 0, 0}, 48, 4, 0, 64, 60, false},
                                           GateCase{Version{1, 0, 2}, 160, 4, 2 * 16, 64, 60, false},
                                           GateCase{Version{1, 1, 0}, 160, 8, 2 * 24, 76, 64, false},
                                           GateCase{Version{2, 0, 0}, 160, 8, 2 * 32, 76, 64, false},
                                           GateCase{Version{3, 0, 0}, 168, 8, 2 * 32, 76, 64, false},
                                           GateCase{Version{3, 0, 1}, 168, 4, 2 * 20, 56, 52, false},
                                           GateCase{Version{3, 1, 0}, 168, 4, 2 * 20, 60, 52, false},
                                           GateCase{Version{4, 0, 0}, 168, 4, 32 + 2 * 20, 60, 52, true},
                                           GateCase{Version{5, 0, 0}, 168, 4, 32 + 2 * 24, 60, 52, true}));

// ---------------------------------------------------------------------------------------------
// Member encoding at both alignments.

/// A file written at 5.0.0 (alignment 1, with a data table) or at 2.0.0 (alignment 8, whose
/// pointer entries follow the modules in the symbol table), read back by entry id.
class WrittenFile
{
public:
    struct Table
    {
        uint32_t offset       = 0;
        uint32_t stride       = 0;
        uint32_t dataOffsetAt = 0; // the data size follows in the next cell
    };

    WrittenFile(TuningFileModel model, bool alignment8) : m_cell(alignment8 ? 8 : 4)
    {
        model.version             = alignment8 ? Version{2, 0, 0} : Version{5, 0, 0};
        m_image                   = Written(model);
        const uint32_t headerSize = alignment8 ? 160 : 168;
        m_data                    = FindSection(m_image, headerSize, m_cell, 1).offset;
        symbols = {FindSection(m_image, headerSize, m_cell, 0).offset, alignment8 ? 72u : 60u, alignment8 ? 56u : 48u};
        blocks  = alignment8 ? symbols : Table{FindSection(m_image, headerSize, m_cell, 3).offset, 16, 4};
    }

    uint32_t Field(const Table& table, uint32_t id, uint32_t at) const
    {
        return U32At(m_image, table.offset + (id - 1) * table.stride + at);
    }

    uint32_t DataOffset(const Table& table, uint32_t id) const { return Field(table, id, table.dataOffsetAt); }

    std::vector<uint8_t> Bytes(const Table& table, uint32_t id) const
    {
        const uint32_t offset = m_data + DataOffset(table, id);
        const uint32_t size   = Field(table, id, table.dataOffsetAt + m_cell);
        if (uint64_t{offset} + size > m_image.size())
        {
            ADD_FAILURE() << "entry " << id << " runs past the end of the file";
            return {};
        }
        return std::vector<uint8_t>(m_image.begin() + offset, m_image.begin() + offset + size);
    }

    Table symbols;
    Table blocks;

private:
    uint32_t             m_cell;
    uint32_t             m_data = 0;
    std::vector<uint8_t> m_image;
};

TuningFileModel OneModule(const DataBuilder& data)
{
    TuningFileModel model;
    model.modules = {MakeModule("tonemetry_abf34", 0, data)};
    return model;
}

using Bytes = std::vector<uint8_t>;

struct EncodingCase
{
    const char* name;
    DataBuilder data;
    Bytes       alignment1;
    Bytes       alignment8;
};

TEST(TuningFileData, InlineMembersTakeTheirCellsAndArraysArePadded)
{
    const std::vector<EncodingCase> cases = {
        {"UInt8", DataBuilder().U8(0xAB), {0xAB}, {0xAB, 0, 0, 0, 0, 0, 0, 0}},
        {"Int16", DataBuilder().I16(-2), {0xFE, 0xFF}, {0xFE, 0xFF, 0, 0, 0, 0, 0, 0}},
        {"Int32", DataBuilder().I32(-1), {0xFF, 0xFF, 0xFF, 0xFF}, {0xFF, 0xFF, 0xFF, 0xFF, 0, 0, 0, 0}},
        {"UInt64", DataBuilder().U64(0x0102030405060708), {8, 7, 6, 5, 4, 3, 2, 1}, {8, 7, 6, 5, 4, 3, 2, 1}},
        {"Int64",
         DataBuilder().I64(-2),
         {0xFE, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF},
         {0xFE, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF}},
        {"Float", DataBuilder().F32(1.0f), {0, 0, 0x80, 0x3F}, {0, 0, 0x80, 0x3F, 0, 0, 0, 0}},
        {"Double", DataBuilder().F64(-2.0), {0, 0, 0, 0, 0, 0, 0, 0xC0}, {0, 0, 0, 0, 0, 0, 0, 0xC0}},
        {"Enum", DataBuilder().Enum(6), {6, 0, 0, 0}, {6, 0, 0, 0, 0, 0, 0, 0}},
        {"UInt16 array of 3",
         DataBuilder().FixedArray(std::vector<uint16_t>{1, 2, 0x300}),
         {1, 0, 2, 0, 0, 3},
         {1, 0, 2, 0, 0, 3, 0, 0}},
        {"Float array of 2 fills a unit",
         DataBuilder().FixedArray(std::vector<float>{1.0f, -1.0f}),
         {0, 0, 0x80, 0x3F, 0, 0, 0x80, 0xBF},
         {0, 0, 0x80, 0x3F, 0, 0, 0x80, 0xBF}},
        {"Empty array", DataBuilder().FixedArray(std::vector<int32_t>{}).U8(1), {1}, {1, 0, 0, 0, 0, 0, 0, 0}},
        {"Nested record in line",
         DataBuilder().Record(DataBuilder().U8(1).U16(2)).U8(3),
         {1, 2, 0, 3},
         {1, 0, 0, 0, 0, 0, 0, 0, 2, 0, 0, 0, 0, 0, 0, 0, 3, 0, 0, 0, 0, 0, 0, 0}},
    };
    for (const EncodingCase& encoding : cases)
    {
        SCOPED_TRACE(encoding.name);
        const WrittenFile narrow(OneModule(encoding.data), false);
        const WrittenFile wide(OneModule(encoding.data), true);
        EXPECT_EQ(narrow.Bytes(narrow.symbols, 1), encoding.alignment1);
        EXPECT_EQ(wide.Bytes(wide.symbols, 1), encoding.alignment8);
    }
}

TEST(TuningFileData, RepeatedRecordsGetTheirStringsBreadthFirst)
{
    const DataBuilder data = DataBuilder().Repeated(
        std::vector<DataBuilder>{DataBuilder().U16(1).String("a"), DataBuilder().U16(2).String("bc")});

    // Entry 1 holds the elements, entries 2 and 3 their strings.
    const WrittenFile narrow(OneModule(data), false);
    EXPECT_EQ(narrow.Bytes(narrow.symbols, 1), (Bytes{2, 0, 0, 0, 1, 0, 0, 0}));
    EXPECT_EQ(narrow.Bytes(narrow.blocks, 1), (Bytes{1, 0, 1, 0, 0, 0, 2, 0, 0, 0, 2, 0, 2, 0, 0, 0, 3, 0, 0, 0}));
    EXPECT_EQ(narrow.Bytes(narrow.blocks, 2), (Bytes{'a', 0}));
    EXPECT_EQ(narrow.Bytes(narrow.blocks, 3), (Bytes{'b', 'c', 0}));

    // At alignment 8 the pointed-to entries follow the module in the symbol table: 2, 3, 4.
    const WrittenFile wide(OneModule(data), true);
    EXPECT_EQ(wide.Bytes(wide.symbols, 1), (Bytes{2, 0, 0, 0, 0, 0, 0, 0, 2, 0, 0, 0, 0, 0, 0, 0}));
    EXPECT_EQ(wide.Bytes(wide.symbols, 2),
              (Bytes{1, 0, 0, 0, 0, 0, 0, 0, 1, 0, 0, 0, 0, 0, 0, 0, 3, 0, 0, 0, 0, 0, 0, 0,
                     2, 0, 0, 0, 0, 0, 0, 0, 2, 0, 0, 0, 0, 0, 0, 0, 4, 0, 0, 0, 0, 0, 0, 0}));
    EXPECT_EQ(wide.Bytes(wide.symbols, 4), (Bytes{'b', 'c', 0, 0, 0, 0, 0, 0}));
}

TEST(TuningFileData, OptionalMembersPointToTheirValueOrToAnEmptyEntry)
{
    const DataBuilder data = DataBuilder().Optional(DataBuilder().U16(7)).OptionalAbsent().String("");

    const WrittenFile narrow(OneModule(data), false);
    EXPECT_EQ(narrow.Bytes(narrow.symbols, 1),
              (Bytes{1, 0, 0, 0, 1, 0, 0, 0, 0, 0, 0, 0, 2, 0, 0, 0, 0, 0, 0, 0, 3, 0, 0, 0}));
    EXPECT_EQ(narrow.Bytes(narrow.blocks, 1), (Bytes{7, 0}));
    EXPECT_EQ(narrow.Bytes(narrow.blocks, 2), Bytes{});
    // An empty string still has its terminator, so that its entry has bytes to read.
    EXPECT_EQ(narrow.Bytes(narrow.blocks, 3), Bytes{0});

    const WrittenFile wide(OneModule(data), true);
    EXPECT_EQ(wide.Bytes(wide.symbols, 2), (Bytes{7, 0, 0, 0, 0, 0, 0, 0}));
    EXPECT_EQ(wide.Bytes(wide.symbols, 4), (Bytes{0, 0, 0, 0, 0, 0, 0, 0}));
}

// ---------------------------------------------------------------------------------------------
// Duplicate groups.

TEST(TuningFileDuplicates, IdenticalContentSharesTheFirstIdAndIdenticalBytesOnePlace)
{
    const DataBuilder listOfTwo = DataBuilder().U8(9).Repeated(
        std::vector<DataBuilder>{DataBuilder().U32(1).String("x"), DataBuilder().U32(2).String("x")});
    TuningFileModel model;
    model.modes   = {MakeMode(0, 0, 0), MakeMode(2, 1, 0)};
    model.modules = {MakeModule("tonemetry_abf34", 0, listOfTwo), MakeModule("tonemetry_abf34", 1, listOfTwo),
                     MakeModule("tonemetry_tf20", 1, DataBuilder().String("x"))};
    const WrittenFile file(model, false);

    // Modules 1 and 2 have equal content: equal bytes but for the ids of lists that are equal
    // themselves. Module 3 has another type.
    EXPECT_EQ(file.Field(file.symbols, 1, 56), 1u);
    EXPECT_EQ(file.Field(file.symbols, 2, 56), 1u);
    EXPECT_EQ(file.Field(file.symbols, 3, 56), 3u);
    EXPECT_NE(file.DataOffset(file.symbols, 1), file.DataOffset(file.symbols, 2));

    // Data entries, breadth first: the two lists (1, 2), module 3's string (3), then the
    // strings of the lists (4 to 7). Both lists form one group, all strings another.
    const uint32_t expectedGroups[] = {1, 1, 3, 3, 3, 3, 3};
    for (uint32_t id = 1; id <= 7; ++id)
    {
        EXPECT_EQ(file.Field(file.blocks, id, 12), expectedGroups[id - 1]) << "data entry " << id;
    }
    for (uint32_t id = 4; id <= 7; ++id)
    {
        EXPECT_EQ(file.DataOffset(file.blocks, id), file.DataOffset(file.blocks, 3)) << "data entry " << id;
    }
}

TEST(TuningFileDuplicates, AnEntryAloneCarriesItsOwnIdAndGroupsFollowBytes)
{
    const WrittenFile file(OneModule(DataBuilder().String("a").String("b").Repeated(std::vector<uint8_t>{'a', 0})),
                           false);

    EXPECT_EQ(file.Field(file.symbols, 1, 56), 1u);
    // The list's bytes equal the string "a" with its terminator. The reader keys a decoded block
    // by the member that reads it as well, so one group serves both without mixing them.
    EXPECT_EQ(file.Field(file.blocks, 1, 12), 1u);
    EXPECT_EQ(file.Field(file.blocks, 2, 12), 2u);
    EXPECT_EQ(file.Field(file.blocks, 3, 12), 1u);
    EXPECT_EQ(file.DataOffset(file.blocks, 3), file.DataOffset(file.blocks, 1));
}

TEST(TuningFileDuplicates, WithoutTheDuplicateFieldIdenticalBytesStillShareOnePlace)
{
    const WrittenFile file(OneModule(DataBuilder().String("same").String("same")), true);

    // Symbol entries 2 and 3 are the strings; records of 72 bytes have no duplicateId.
    EXPECT_EQ(file.DataOffset(file.symbols, 2), file.DataOffset(file.symbols, 3));
    EXPECT_EQ(file.Bytes(file.symbols, 3), (Bytes{'s', 'a', 'm', 'e', 0, 0, 0, 0}));
}

// ---------------------------------------------------------------------------------------------
// Type names in the symbol table.

TEST(TuningFileSymbols, ModuleTypeIsTheShortFormOfTheRegisteredName)
{
    const std::string longName = "abcdefghijklmnopqrstuvwxyz0123456789";
    TuningFileModel   model;
    for (const std::string& name : {std::string("tonemetry_abf34"), std::string("Tonemetry_TF20"),
                                    std::string("TONEMETRYlsc"), std::string("tonemetry"), longName})
    {
        model.modules.push_back(MakeModule(name, 0, DataBuilder().U8(1)));
    }
    const std::vector<uint8_t> image   = Written(model);
    const uint32_t             symbols = FindSection(image, 168, 4, 0).offset;
    auto                       typeOf  = [&](uint32_t index) {
        const auto field = image.begin() + symbols + index * 60 + 4;
        return std::string(std::string(field, field + 32).c_str());
    };
    EXPECT_EQ(typeOf(0), "abf34");
    EXPECT_EQ(typeOf(1), "TF20");
    EXPECT_EQ(typeOf(2), "lsc");
    EXPECT_EQ(typeOf(3), "tonemetry");
    // 8 characters, '-', the last 23: all 32 bytes, no terminator in the field.
    EXPECT_EQ(std::string(image.begin() + symbols + 4 * 60 + 4, image.begin() + symbols + 4 * 60 + 36),
              "abcdefgh-nopqrstuvwxyz0123456789");
}

// ---------------------------------------------------------------------------------------------
// Refusals: what the reader could not read, named, with the output left alone.

struct RefusalCase
{
    const char*                           name;
    std::function<void(TuningFileModel*)> change;
    std::string                           error;
};

TuningFileModel ThreeModes()
{
    TuningFileModel model;
    model.modes   = {MakeMode(0, 0, 0), MakeMode(2, 1, 0), MakeMode(3, 1, 1)};
    model.modules = {MakeModule("tonemetry_abf34", 0, DataBuilder().U32(1))};
    return model;
}

TEST(TuningFileRefusals, EachRefusalNamesTheOffendingItem)
{
    const std::vector<RefusalCase> cases = {
        {"version",
         [](TuningFileModel* m) {
             m->version = Version{5, 0, 1};
         },
         "version 5.0.1 is above 5.0.0, the newest version the reader accepts"},
        {"alignment value", [](TuningFileModel* m) { m->alignment = 4; },
         "alignment 4 is not one of the format's alignments, 1 and 8"},
        {"alignment 8 at 5.0.0", [](TuningFileModel* m) { m->alignment = 8; },
         "alignment 8 does not match version 5.0.0, whose files have alignment 1; alignment 8 belongs to "
         "versions from 1.1.0 up to, not including, 3.0.1"},
        {"alignment 1 at 2.0.0",
         [](TuningFileModel* m) {
             m->version   = Version{2, 0, 0};
             m->alignment = 1;
         },
         "alignment 1 does not match version 2.0.0, whose files have alignment 8; alignment 1 belongs to "
         "versions below 1.1.0 and from 3.0.1 on"},
        {"tool length", [](TuningFileModel* m) { m->tool = std::string(49, 't'); },
         "tool text is 49 characters long; its header field holds 48"},
        {"binary tag length", [](TuningFileModel* m) { m->binaryTag = std::string(65, 'b'); },
         "binary tag is 65 characters long; its header field holds 64"},
        {"binary tag zero byte", [](TuningFileModel* m) { m->binaryTag = std::string("a\0b", 3); },
         "binary tag holds a zero byte, where the reader would end it"},
        {"tool before 1.0.2",
         [](TuningFileModel* m) {
             m->version = Version{1, 0, 0};
             m->modes.resize(1);
             m->tool = "writer";
         },
         "tool text needs version 1.0.2 or above; the header of 1.0.0 has no such field"},
        {"modes before 1.0.2",
         [](TuningFileModel* m) {
             m->version = Version{1, 0, 1};
         },
         "modes[1]: modes beyond the root need version 1.0.2 or above; older files have Default data only"},
        {"root", [](TuningFileModel* m) { m->modes[0].mode = 1; },
         "modes[0] must be the root: mode 0.0, parent 0, no link"},
        {"parent order", [](TuningFileModel* m) { m->modes[1].parentId = 2; },
         "modes[1]: parent 2 must be a mode that stands before it"},
        {"link before 2.0.0",
         [](TuningFileModel* m) {
             m->version         = Version{1, 5, 0};
             m->modes[2].linkId = 1;
         },
         "modes[2]: a link needs version 2.0.0 or above"},
        {"link range", [](TuningFileModel* m) { m->modes[1].linkId = 5; }, "modes[1]: link 5 is beyond the 3 modes"},
        {"link loop",
         [](TuningFileModel* m) {
             m->modes[1].linkId = 2;
             m->modes[2].linkId = 1;
         },
         "modes[1]: its links run in a loop"},
        {"pinned before 5.0.0",
         [](TuningFileModel* m) {
             m->version         = Version{4, 0, 0};
             m->modes[2].pinned = true;
         },
         "modes[2]: the pinned flag needs version 5.0.0 or above"},
        {"module name", [](TuningFileModel* m) { m->modules[0].name.clear(); }, "modules[0] has no name"},
        {"module mode", [](TuningFileModel* m) { m->modules[0].modeId = 3; },
         "modules[0] ('tonemetry_abf34'): mode id 3 is not below the file's mode count, 3"},
        {"module mode without mode section",
         [](TuningFileModel* m) {
             m->modes.clear();
             m->modules[0].modeId = 1;
         },
         "modules[0] ('tonemetry_abf34'): mode id 1 is not below the file's mode count, 1"},
        {"two modules of one type in a mode",
         [](TuningFileModel* m) { m->modules.push_back(MakeModule("Tonemetry_abf34", 0, DataBuilder())); },
         "modules[1] ('Tonemetry_abf34'): mode 0 already holds modules[0] of the same type 'abf34'"},
        {"string with a zero byte",
         [](TuningFileModel* m) { m->modules[0].data = DataBuilder().U8(1).String(std::string("a\0b", 3)); },
         "modules[0] ('tonemetry_abf34'), item 1 (String): the text holds a zero byte at 1, where the reader "
         "would end it"},
        {"nested string with a zero byte",
         [](TuningFileModel* m) {
             m->modules[0].data =
                 DataBuilder().Repeated(std::vector<DataBuilder>{DataBuilder().String(std::string(1, '\0'))});
         },
         "modules[0] ('tonemetry_abf34'), item 0 (Repeated), item 0 (String): the text holds a zero byte at 0, "
         "where the reader would end it"},
    };
    for (const RefusalCase& refusal : cases)
    {
        SCOPED_TRACE(refusal.name);
        TuningFileModel model = ThreeModes();
        refusal.change(&model);
        std::vector<uint8_t> image = {1, 2, 3};
        std::string          error;
        EXPECT_FALSE(tuningfile::Write(model, &image, &error));
        EXPECT_EQ(error, refusal.error);
        EXPECT_EQ(image, (std::vector<uint8_t>{1, 2, 3}));
    }
}

TEST(TuningFileRefusals, MissingOutputIsRefusedAndAnErrorTextIsOptional)
{
    std::string error;
    EXPECT_FALSE(tuningfile::Write(ThreeModes(), nullptr, &error));
    EXPECT_EQ(error, "no output buffer was given");

    TuningFileModel model = ThreeModes();
    model.version         = Version{6, 0, 0};
    std::vector<uint8_t> image;
    EXPECT_FALSE(tuningfile::Write(model, &image, nullptr));
    EXPECT_TRUE(image.empty());
}

TEST(TuningFileRefusals, WhatTheReaderImpliesAnywayIsAccepted)
{
    // Before 5.0.0 there is no pinned flag, but the reader pins modes 0 and 1 itself; a lone root
    // before 1.0.2 is the default tree the reader makes.
    TuningFileModel model = ThreeModes();
    model.version         = Version{4, 0, 0};
    model.modes[0].pinned = true;
    model.modes.push_back(MakeMode(1, 2, 0));
    model.modes.back().pinned = true;
    std::vector<uint8_t> image;
    std::string          error;
    EXPECT_TRUE(tuningfile::Write(model, &image, &error)) << error;

    TuningFileModel oldest = ThreeModes();
    oldest.version         = Version{1, 0, 0};
    oldest.modes.resize(1);
    EXPECT_TRUE(tuningfile::Write(oldest, &image, &error)) << error;
    EXPECT_EQ(U32At(image, 44), 2u);
}

// ---------------------------------------------------------------------------------------------
// Files on disk.

std::string ReadFile(const std::string& path)
{
    std::ifstream stream(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>());
}

TEST(TuningFileOnDisk, WriteFileStoresTheImageOfWriteRefusesWithoutAFileAndNamesBadPaths)
{
    const std::string path = ::testing::TempDir() + "tuningfile_on_disk.bin";
    std::string       error;
    ASSERT_TRUE(tuningfile::WriteFile(path, ThreeModes(), &error)) << error;
    const std::vector<uint8_t> image = Written(ThreeModes());
    EXPECT_EQ(ReadFile(path), std::string(image.begin(), image.end()));
    std::remove(path.c_str());

    TuningFileModel model = ThreeModes();
    model.version         = Version{5, 1, 0};
    EXPECT_FALSE(tuningfile::WriteFile(path, model, &error));
    EXPECT_EQ(error, "version 5.1.0 is above 5.0.0, the newest version the reader accepts");
    EXPECT_FALSE(std::ifstream(path).good());

    const std::string missing = ::testing::TempDir() + "no_such_directory/file.bin";
    EXPECT_FALSE(tuningfile::WriteFile(missing, ThreeModes(), &error));
    EXPECT_EQ(error, "cannot open '" + missing + "' for writing: No such file or directory");
}
} // namespace
