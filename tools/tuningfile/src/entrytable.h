// The entries of a file: one per module and one per pointer entry, with their ids, duplicate
// groups and places in the data section.
#ifndef TUNINGFILE_ENTRYTABLE_H
#define TUNINGFILE_ENTRYTABLE_H

#include <cstdint>
#include <string>
#include <vector>

#include "fileformat.h"
#include "tuningfile/model.h"

namespace tuningfile
{
struct Entry
{
    const DataBuilder*  data   = nullptr;
    const Module*       module = nullptr; ///< null for a block that a pointer entry refers to
    std::string         type;             ///< a module's short type form; empty for a block
    std::string         where;            ///< names the entry in error texts
    std::vector<size_t> targets;          ///< entries that its pointer items refer to, in item order
    uint32_t            id          = 0;  ///< number in its table, from 1
    uint32_t            duplicateId = 0;  ///< id of the first entry with the same content
    uint32_t            dataOffset  = 0;  ///< from the start of the data section
    uint32_t            dataSize    = 0;
};

/// Every pointer item gets an entry of its own, because the reader shares a decoded block only
/// between distinct entries of one duplicate group. Entries of equal content form such a group;
/// content is equal when the bytes are, where a pointer counts as equal when its target's content
/// is, so that records holding identical lists are found identical too. Entries whose bytes are
/// the same share one place in the data section.
class EntryTable
{
public:
    explicit EntryTable(const FileFormat& format) : m_format(format) {}

    /// False, with a text naming the entry, when an entry cannot be expressed.
    bool Build(const TuningFileModel& model, std::string* error);

    /// Modules first, in model order; then the pointed-to blocks, breadth first.
    const std::vector<Entry>& Entries() const { return m_entries; }
    size_t                    ModuleCount() const { return m_moduleCount; }

    /// Modules, and below 4.0.0 the blocks as well: without a data table pointer look-ups go
    /// to the symbol table.
    size_t SymbolCount() const;
    size_t DataTableCount() const;

    const std::vector<uint8_t>& DataSection() const { return m_dataSection; }

private:
    bool                 Collect(const TuningFileModel& model, std::string* error);
    void                 AssignIds();
    void                 GroupDuplicates();
    bool                 PlaceData(std::string* error);
    std::vector<uint8_t> Encode(const Entry& entry, const std::vector<uint32_t>& pointerValues) const;

    const FileFormat&    m_format;
    std::vector<Entry>   m_entries;
    size_t               m_moduleCount = 0;
    std::vector<uint8_t> m_dataSection;
};
} // namespace tuningfile

#endif // TUNINGFILE_ENTRYTABLE_H
