#include "fileformat.h"

namespace tuningfile
{
FileFormat::FileFormat(const Version& version) : m_version(version), m_alignment(AlignmentOf(version)) {}

uint8_t FileFormat::AlignmentOf(const Version& version)
{
    return (version >= gate::Alignment8 && version < gate::Alignment1Again) ? 8 : 1;
}

uint32_t FileFormat::HeaderSize() const
{
    // The header is never aligned: its fields follow one another whatever the version.
    uint32_t size = field::Tag + 4 + 8;
    if (HasToolAndTag())
    {
        size += field::Tool + field::BinaryTag;
    }
    if (HasHeaderFlags())
    {
        size += 8;
    }
    return size + 4 + 4;
}

uint32_t FileFormat::ModeRecordSize() const
{
    uint32_t size = Cell(4) + Cell(8) + Cell(4);
    if (HasLinkId())
    {
        size += Cell(4);
    }
    if (HasModeFlags())
    {
        size += Cell(4);
    }
    return size;
}

uint32_t FileFormat::SymbolRecordSize() const
{
    uint32_t size = Cell(4) + static_cast<uint32_t>(PaddedSize(field::TypeName, m_alignment)) + Cell(8);
    if (HasReservedSymbolField())
    {
        size += 8;
    }
    size += 3 * Cell(4);
    if (HasDuplicateId())
    {
        size += Cell(4);
    }
    return size;
}

uint32_t FileFormat::SymbolEntrySize() const
{
    // At alignment 8 the reader divides by 76 while a record takes 72: the section carries
    // 4 spare bytes per record at its end.
    if (HasDuplicateId())
    {
        return 60;
    }
    if (m_alignment != 1)
    {
        return 76;
    }
    return (m_version < gate::DuplicateIdAbove) ? 64 : 56;
}
} // namespace tuningfile
