// The layout rules of one format version: which fields exist, cell widths, record sizes.
#ifndef TUNINGFILE_FILEFORMAT_H
#define TUNINGFILE_FILEFORMAT_H

#include <cstdint>

#include "cellwriter.h"
#include "tuningfile/model.h"

namespace tuningfile
{
/// The versions at which the layout changed, and the newest one the reader accepts.
namespace gate
{
constexpr Version Alignment8{1, 1, 0};      ///< alignment 8 from here ...
constexpr Version Alignment1Again{3, 0, 1}; ///< ... up to, not including, this
constexpr Version ModeTree{1, 0, 2};        ///< header has Tool and BinaryTag; modes beyond Default
constexpr Version LinkId{2, 0, 0};
constexpr Version HeaderFlags{3, 0, 0};
constexpr Version DuplicateIdAbove{3, 0, 1}; ///< table records have `duplicateId` above this
constexpr Version DataTable{4, 0, 0};        ///< also the 32-byte text ahead of the mode records
constexpr Version ModeFlags{5, 0, 0};
constexpr Version Newest{5, 0, 0};
} // namespace gate

/// Sizes in bytes of the fixed-width fields.
namespace field
{
constexpr uint32_t Tag       = 28;
constexpr uint32_t Tool      = 48;
constexpr uint32_t BinaryTag = 64;
constexpr uint32_t TypeName  = 32;
constexpr uint32_t ModeText  = 32;
} // namespace field

/// The tag every file starts with.
constexpr char HeaderTag[] = "ZVK Tonemetry Header";

/// The reader's file mode reads the first bytes of a file as its working buffer.
constexpr uint32_t FileModeHeadBytes = 316;

/// The section types of the section table.
enum class SectionType : uint32_t
{
    Symbols   = 0,
    Data      = 1,
    Modes     = 2,
    DataTable = 3,
};

/// Layout of a file of one supported version (at most `gate::Newest`).
class FileFormat
{
public:
    explicit FileFormat(const Version& version);

    static uint8_t AlignmentOf(const Version& version);

    const Version& GetVersion() const { return m_version; }
    uint8_t        Alignment() const { return m_alignment; }

    bool HasModeTree() const { return m_version >= gate::ModeTree; }
    bool HasToolAndTag() const { return m_version >= gate::ModeTree; }
    bool HasHeaderFlags() const { return m_version >= gate::HeaderFlags; }
    bool HasLinkId() const { return m_version >= gate::LinkId; }
    bool HasModeFlags() const { return m_version >= gate::ModeFlags; }
    bool HasDataTable() const { return m_version >= gate::DataTable; }
    bool HasDuplicateId() const { return m_version > gate::DuplicateIdAbove; }
    /// The oldest symbol records carry 8 reserved bytes behind the version.
    bool HasReservedSymbolField() const { return m_version < gate::Alignment8; }

    uint32_t Cell(uint32_t width) const { return static_cast<uint32_t>(CellSize(width, m_alignment)); }

    uint32_t HeaderSize() const;
    uint32_t SectionEntrySize() const { return 3 * Cell(4); }
    uint32_t ModeTextSize() const { return HasDataTable() ? field::ModeText : 0; }
    uint32_t ModeRecordSize() const;
    /// Bytes of one symbol record as the reader walks them.
    uint32_t SymbolRecordSize() const;
    /// The reader's `GetSymbolEntrySize`: the divisor of the section size, and the bytes that
    /// file mode reads at the start of every table record.
    uint32_t SymbolEntrySize() const;
    uint32_t DataTableRecordSize() const { return 16; }

private:
    Version m_version;
    uint8_t m_alignment;
};
} // namespace tuningfile

#endif // TUNINGFILE_FILEFORMAT_H
