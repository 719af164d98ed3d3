// Symbol and data tables of a loaded file: look-ups by id, duplicate groups and the sharing of
// decoded objects, the entry cursor, and what damaged tables make of a load.
#include <gtest/gtest.h>

#include <memory>
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
using storetest::PutU32;
using storetest::Restamp;
using storetest::TestSetManager;
using testsupport::LogCapture;
using tuningfile::DataBuilder;
using tuningfile::TuningFileModel;

// Three modules hold the string "shared" (one duplicate group of data entries 1 to 3), a fourth
// holds "alone!" (data entry 4) and an enum.
TuningFileModel SharingModel()
{
    TuningFileModel model;
    model.modes   = {MakeMode(0, 0, 0), MakeMode(2, 2, 0)};
    model.modules = {MakeModule("tonemetry_abf34", 0, DataBuilder().String("shared").U32(11)),
                     MakeModule("tonemetry_anr10", 0, DataBuilder().String("shared").U32(22)),
                     MakeModule("tonemetry_abf34", 1, DataBuilder().String("shared").U32(33)),
                     MakeModule("tonemetry_tf20", 0, DataBuilder().String("alone!").Enum(5))};
    return model;
}

// Symbol record `id` of a 5.0.0 file: id +0, type +4, version +36, modeId +44, dataOffset +48,
// dataSize +52, duplicateId +56.
size_t SymbolRecordAt(const std::vector<uint8_t>& image, uint32_t id)
{
    return FindSection(image, ParameterSetManager::SectionSymbolTable).offset + (id - 1) * 60u;
}

size_t DataRecordAt(const std::vector<uint8_t>& image, uint32_t id)
{
    return FindSection(image, ParameterSetManager::SectionDataTable).offset + (id - 1) * 16u;
}

// Data entry 4 and module entry 2 name duplicates that do not exist.
std::vector<uint8_t> DuplicateIdsBeyondTheCount()
{
    std::vector<uint8_t> image = storetest::Written(SharingModel());
    PutU32(image, DataRecordAt(image, 4) + 12, 99);
    PutU32(image, SymbolRecordAt(image, 2) + 56, 77);
    Restamp(image);
    return image;
}

// A table that keeps its entries, read from the sections that the manager's load found.
class StoreSymbolTable : public testing::Test
{
protected:
    void SetUp() override { Read(storetest::Written(SharingModel())); }

    void Read(std::vector<uint8_t> image)
    {
        m_image = std::move(image);
        ASSERT_TRUE(m_manager.LoadBinaryParameters(m_image.data(), m_image.size())) << m_manager.m_errorText;
        m_table         = std::make_unique<ParameterFileSymbolTable>(&m_manager, m_manager.m_version);
        const auto size = static_cast<unsigned int>(m_image.size());
        ASSERT_TRUE(m_table->Load(m_image.data(), size, nullptr, nullptr, size, m_manager.m_symbolSize,
                                  m_manager.m_symbolOffset, m_manager.m_dataTableSize, m_manager.m_dataTableOffset,
                                  m_manager.m_dataSize, m_manager.m_dataOffset, &m_manager, 1));
        m_log.Clear();
    }

    // The pointer entry of the string that module `id` starts with.
    void FindText(ParameterFileSymbolTableEntry& text, uint32_t id)
    {
        ParameterFileSymbolTableEntry module;
        ASSERT_TRUE(m_table->Find(module, id, true));
        module.m_position = 4; // past the length
        ASSERT_TRUE(m_table->ReadPointerEntry(text, &module, 1));
    }

    LogCapture                                m_log;
    std::vector<uint8_t>                      m_image;
    TestSetManager                            m_manager;
    std::unique_ptr<ParameterFileSymbolTable> m_table;
    int                                       m_objects[3] = {};
};

TEST_F(StoreSymbolTable, FindTakesIdsFromOneToTheCount)
{
    ParameterFileSymbolTableEntry entry;
    EXPECT_FALSE(m_table->Find(entry, 0, true));
    EXPECT_EQ(1u, m_log.Count("Find: Symbol table entry ID 0 out of range 1 - 4\n"));
    ASSERT_TRUE(m_table->Find(entry, 4, true));
    EXPECT_EQ(4u, entry.m_id);
    EXPECT_EQ(0u, entry.m_position);
    EXPECT_EQ(12u, entry.m_length);
    EXPECT_EQ(nullptr, entry.m_moduleData) << "the table keeps the ModuleData";
    EXPECT_FALSE(m_table->Find(entry, 5, false));
    EXPECT_EQ(1u, m_log.Count("Find: Symbol table entry ID 5 out of range 1 - 4\n"));
}

TEST_F(StoreSymbolTable, OneDuplicateIdMakesOneGroupAndALoneEntryNone)
{
    EXPECT_EQ(2u, m_table->m_dataDuplicateCount);
    for (uint32_t id = 1; id <= 3; ++id)
    {
        EXPECT_EQ(1u, m_table->m_dataLookup[id].duplicate) << id;
    }
    EXPECT_EQ(0u, m_table->m_dataLookup[4].duplicate);
    // Module entries repeat nothing here: no groups on the symbol side.
    EXPECT_EQ(1u, m_table->m_symbolDuplicateCount);
    EXPECT_EQ(nullptr, m_table->m_symbolDuplicates);
    EXPECT_EQ(nullptr, m_table->GetDupObject(false, 4, 1, "site", 1));
    EXPECT_EQ(nullptr, m_table->SetDupObject(false, 4, &m_objects[0], 1, "site", 1));
    EXPECT_EQ(0u, m_log.Lines().size());
}

TEST_F(StoreSymbolTable, CallSiteAndCountKeyASharedObject)
{
    DupObjInfo* shared = m_table->SetDupObject(false, 1, &m_objects[0], 4, "a.cpp", 10);
    ASSERT_NE(nullptr, shared);
    EXPECT_EQ(1u, shared->refCount);
    // Any member of the group finds it from the same call site with the same count.
    EXPECT_EQ(shared, m_table->GetDupObject(false, 3, 4, "a.cpp", 10));
    EXPECT_EQ(2u, shared->refCount);
    EXPECT_EQ(nullptr, m_table->GetDupObject(false, 2, 4, "b.cpp", 10));
    EXPECT_EQ(nullptr, m_table->GetDupObject(false, 2, 4, "a.cpp", 11));
    EXPECT_EQ(nullptr, m_table->GetDupObject(false, 2, 5, "a.cpp", 10));
    EXPECT_EQ(1u, m_log.Count("GetDupObject found duplicate objects with differing counts: IsModule: 0, ID: 2, "
                              "Count: 5, Found: 4, Loc: a.cpp:10\n"));

    // Another site decodes the same bytes as another type: another object.
    DupObjInfo* other = m_table->SetDupObject(false, 2, &m_objects[1], 4, "b.cpp", 10);
    ASSERT_NE(nullptr, other);
    EXPECT_NE(shared, other);
    // A key that holds an object keeps it: the caller's stays private, and is counted in.
    EXPECT_EQ(nullptr, m_table->SetDupObject(false, 2, &m_objects[2], 4, "a.cpp", 10));
    EXPECT_EQ(3u, shared->refCount);
    EXPECT_EQ(2u, m_table->m_dupObjects.size());

    EXPECT_FALSE(m_table->ReleaseDupObject(&m_objects[0]));
    EXPECT_FALSE(m_table->ReleaseDupObject(&m_objects[0]));
    EXPECT_TRUE(m_table->ReleaseDupObject(&m_objects[0]));
    EXPECT_EQ(nullptr, shared->object);
    EXPECT_TRUE(m_table->ReleaseDupObject(&m_objects[1]));
    EXPECT_TRUE(m_table->ReleaseDupObject(&m_objects[2])) << "never shared";
    EXPECT_FALSE(m_table->ReleaseDupObject(nullptr));
    EXPECT_TRUE(m_table->m_dupObjects.empty());

    // After the last release the record serves the same key again.
    EXPECT_EQ(shared, m_table->SetDupObject(false, 3, &m_objects[2], 4, "a.cpp", 10));
    EXPECT_EQ(1u, shared->refCount);
    EXPECT_EQ(&m_objects[2], shared->object);
    EXPECT_TRUE(m_table->ReleaseDupObject(&m_objects[2]));
    EXPECT_EQ(2u, m_table->m_dataDuplicates[1].count) << "one record per key";
}

TEST_F(StoreSymbolTable, InvalidRequestsAreLogged)
{
    EXPECT_EQ(nullptr, m_table->GetDupObject(false, 9, 1, "site", 3));
    EXPECT_EQ(1u, m_log.Count("GetDupObject called with invalid values, This: "));
    EXPECT_EQ(1u, m_log.Count("LookupCnt: 4, DupEntries: "));
    EXPECT_EQ(nullptr, m_table->SetDupObject(false, 1, nullptr, 1, "site", 3));
    EXPECT_EQ(1u, m_log.Count("SetDupObject called with invalid values, This: "));
    // Module entries have no groups at all: a group number would have nowhere to go.
    m_table->m_symbolLookup[1].duplicate = 1;
    EXPECT_EQ(nullptr, m_table->GetDupObject(true, 1, 1, "site", 3));
    EXPECT_EQ(1u, m_log.Count("EntryLookup[id].Dup: 1, Loc: site:3\n"));
}

TEST_F(StoreSymbolTable, ReadStringSharesWithinAGroup)
{
    ParameterFileSymbolTableEntry first;
    ParameterFileSymbolTableEntry second;
    FindText(first, 1);
    FindText(second, 2);
    char* firstText  = nullptr;
    char* secondText = nullptr;
    // A miss reads the string, padded to the alignment; a hit moves by the length alone.
    ASSERT_TRUE(first.ReadString(&firstText, 6, 8));
    EXPECT_EQ(8u, first.m_position);
    ASSERT_TRUE(second.ReadString(&secondText, 6, 8));
    EXPECT_EQ(6u, second.m_position);
    EXPECT_EQ(firstText, secondText);
    EXPECT_STREQ("shared", secondText);

    EXPECT_FALSE(m_table->ReleaseDupObject(secondText));
    ASSERT_TRUE(m_table->ReleaseDupObject(firstText));
    OrvoFree(firstText, OrvoMemFlagsNone, __FILE__, __LINE__);

    ParameterFileSymbolTableEntry alone;
    FindText(alone, 4);
    EXPECT_EQ("alone!", storetest::SharedText(alone, 6, 1));

    ParameterFileSymbolTableEntry empty;
    empty.Init(m_table.get());
    char* nothing = nullptr;
    EXPECT_FALSE(empty.ReadString(&nothing, 6, 1));
}

TEST_F(StoreSymbolTable, ReadEnumAndReadPointerEntryNeedBytes)
{
    ParameterFileSymbolTableEntry module;
    ASSERT_TRUE(m_table->Find(module, 4, true));
    module.m_position = 8;
    bool success      = false;
    EXPECT_EQ(5u, module.ReadEnum(&success, 8));
    EXPECT_TRUE(success);
    EXPECT_EQ(16u, module.m_position);
    EXPECT_EQ(0u, module.ReadEnum(&success, 1));
    EXPECT_FALSE(success);
    EXPECT_EQ(1u, m_log.Count("Failed to read 4 bytes from binary file offset 16, length 12\n"));

    ParameterFileSymbolTableEntry blank;
    success = true;
    EXPECT_EQ(0u, blank.ReadEnum(&success, 1));
    EXPECT_TRUE(success) << "left alone without bytes";
    ParameterFileSymbolTableEntry target;
    EXPECT_FALSE(m_table->ReadPointerEntry(target, &blank, 1));
    EXPECT_FALSE(m_table->ReadPointerEntry(target, nullptr, 1));
    EXPECT_FALSE(m_table->ReadPointerEntry(target, &module, 1));
}

TEST_F(StoreSymbolTable, TableEndsWithItsFileAndReportsUnreleasedObjects)
{
    m_table->FileReference(1);
    EXPECT_EQ(1u, m_log.Count("FileReference called with null File object, Adjust: 1\n"));
    ASSERT_NE(nullptr, m_table->SetDupObject(false, 1, &m_objects[0], 1, "site", 1));
    m_table.reset();
    EXPECT_EQ(1u, m_log.Count("1 DupInfo object were not released\n"));
}

TEST_F(StoreSymbolTable, ADuplicateIdBeyondTheCountIsLoggedAndSharesNothing)
{
    std::vector<uint8_t> image = DuplicateIdsBeyondTheCount();
    m_table.reset();
    m_manager.FreeBinaryParameters();
    Read(image);
    EXPECT_EQ(0u, m_table->m_dataLookup[4].duplicate);
    EXPECT_EQ(0u, m_table->m_symbolLookup[2].duplicate);
    ParameterFileSymbolTableEntry entry;
    ASSERT_TRUE(m_table->Find(entry, 4, false));
    EXPECT_EQ(99u, entry.m_duplicateId) << "kept as the file says";
    EXPECT_EQ(nullptr, entry.GetDupObject(1, "site", 1));
    EXPECT_EQ(1u, m_log.Count("GetDupObject called with invalid values"));
}

class StoreDamagedTables : public testing::Test
{
protected:
    LogCapture     m_log;
    TestSetManager m_manager;
};

TEST_F(StoreDamagedTables, DuplicateIdBeyondTheCountOnlyLogs)
{
    std::vector<uint8_t> image = DuplicateIdsBeyondTheCount();
    EXPECT_TRUE(m_manager.LoadBinaryParameters(image.data(), image.size())) << m_manager.m_errorText;
    EXPECT_EQ(1u, m_log.Count("Invalid DuplicateID value 99, should be less than data table count: 4\n"));
    EXPECT_EQ(1u, m_log.Count("Invalid DuplicateID value 77, should be less than module table count: 4\n"));
}

TEST_F(StoreDamagedTables, AnIdOutOfRangeEndsTheTableWithALinePerRound)
{
    std::vector<uint8_t> image = storetest::Written(SharingModel());
    PutU32(image, SymbolRecordAt(image, 2), 9);
    Restamp(image);
    EXPECT_TRUE(m_manager.LoadBinaryParameters(image.data(), image.size())) << m_manager.m_errorText;
    EXPECT_EQ(3u, m_log.Count("Symbol table entry ID 9 out of range 1 - 4\n"));
    ASSERT_EQ(1u, m_manager.m_symbolTable->m_modules.count);
    EXPECT_EQ(1u, m_manager.m_symbolTable->m_modules[0]->ID);
}

TEST_F(StoreDamagedTables, EntriesWithoutAModeMakeNoModules)
{
    std::vector<uint8_t> image = storetest::Written(SharingModel());
    for (uint32_t id = 1; id <= 4; ++id)
    {
        PutU32(image, SymbolRecordAt(image, id) + 44, ParameterFileSymbolTable::NoModeId);
    }
    Restamp(image);
    EXPECT_TRUE(m_manager.LoadBinaryParameters(image.data(), image.size())) << m_manager.m_errorText;
    EXPECT_EQ(4u, m_manager.m_symbolTable->m_symbolCount);
    EXPECT_EQ(0u, m_manager.m_symbolTable->m_modules.count);
    EXPECT_EQ(0u, m_log.Count("[ERROR]"));
}
} // namespace
