// Where each section of a file goes, and how long the file is.
#ifndef TUNINGFILE_FILELAYOUT_H
#define TUNINGFILE_FILELAYOUT_H

#include <cstdint>
#include <vector>

#include "entrytable.h"
#include "fileformat.h"

namespace tuningfile
{
struct Placement
{
    SectionType type   = SectionType::Symbols;
    uint64_t    offset = 0;
    uint64_t    size   = 0;
};

/// Header, section table, then the sections back to back in the order of `sections`, then the
/// check value. Sizes are 64-bit so that a file too long for the format can be told.
struct FileLayout
{
    uint64_t               sectionTableOffset = 0;
    std::vector<Placement> sections;
    uint64_t               length = 0;

    const Placement* Find(SectionType type) const;
};

/// `modeCount` is 0 where the file has no mode section.
FileLayout PlanLayout(const FileFormat& format, size_t modeCount, const EntryTable& entries);
} // namespace tuningfile

#endif // TUNINGFILE_FILELAYOUT_H
