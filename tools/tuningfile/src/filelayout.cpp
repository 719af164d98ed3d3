#include "filelayout.h"

#include <algorithm>

namespace tuningfile
{
namespace
{
constexpr uint64_t CheckValueSize = 4;
} // namespace

const Placement* FileLayout::Find(SectionType type) const
{
    for (const Placement& section : sections)
    {
        if (section.type == type)
        {
            return &section;
        }
    }
    return nullptr;
}

FileLayout PlanLayout(const FileFormat& format, size_t modeCount, const EntryTable& entries)
{
    FileLayout layout;
    if (modeCount > 0)
    {
        layout.sections.push_back(
            {SectionType::Modes, 0, format.ModeTextSize() + uint64_t{modeCount} * format.ModeRecordSize()});
    }
    layout.sections.push_back({SectionType::Symbols, 0, uint64_t{entries.SymbolCount()} * format.SymbolEntrySize()});
    if (entries.DataTableCount() > 0)
    {
        layout.sections.push_back(
            {SectionType::DataTable, 0, uint64_t{entries.DataTableCount()} * format.DataTableRecordSize()});
    }
    layout.sections.push_back({SectionType::Data, 0, entries.DataSection().size()});

    layout.sectionTableOffset = format.HeaderSize();
    uint64_t offset = layout.sectionTableOffset + uint64_t{layout.sections.size()} * format.SectionEntrySize();
    for (Placement& section : layout.sections)
    {
        section.offset = offset;
        offset += section.size;
    }

    // File mode reads the first 316 bytes as its working buffer, and a symbol-sized block at the
    // start of every table record, even of a 16-byte data-table record. The data section takes
    // the zeros that keep those reads inside the file; nothing reads them. It is never empty
    // while there are entries: the reader takes an empty data section for a missing one.
    Placement& data          = layout.sections.back();
    uint64_t   minimumLength = FileModeHeadBytes;
    if (const Placement* dataTable = layout.Find(SectionType::DataTable))
    {
        const uint64_t lastRecord = dataTable->offset + dataTable->size - format.DataTableRecordSize();
        minimumLength             = std::max<uint64_t>(minimumLength, lastRecord + format.SymbolEntrySize());
    }
    if (!entries.Entries().empty())
    {
        data.size = std::max<uint64_t>(data.size, 1);
    }
    data.size     = std::max(data.size, minimumLength - std::min(minimumLength, data.offset + CheckValueSize));
    layout.length = data.offset + data.size + CheckValueSize;
    return layout;
}
} // namespace tuningfile
