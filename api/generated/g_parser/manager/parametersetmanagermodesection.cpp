// Reading the mode section of a tuning file into the mode tree and the mode table.
#include <new>
#include <utility>

#include "orvomem.h"
#include "parametersetmanager.h"

namespace
{
constexpr unsigned int ModeTextSize = 32;
// Mode numbers below this (Default, Sensor) are always loaded and pinned.
constexpr uint16_t FirstEvictableMode = 2;
constexpr uint32_t PinnedFlag         = 1;

VersionUnion const LinkIdVersion(2, 0, 0);
VersionUnion const ModeTextVersion(4, 0, 0);
VersionUnion const ModeFlagsVersion(5, 0, 0);
} // namespace

void ParameterSetManager::FreeModeTree()
{
    ModeTree tree = DetachModeTree();
    DeleteModeTree(tree);
}

ParameterSetManager::ModeTree ParameterSetManager::DetachModeTree()
{
    ModeTree tree;
    tree.root      = m_rootMode;
    tree.modes     = m_modes;
    tree.modeCount = m_modeCount;
    tree.detached  = std::move(m_detachedModes);
    m_rootMode     = nullptr;
    m_modes        = nullptr;
    m_modeCount    = 0;
    return tree;
}

void ParameterSetManager::DeleteModeTree(ModeTree& tree)
{
    if ((nullptr == tree.root) && (nullptr == tree.modes) && (0 == tree.detached.count))
    {
        return;
    }
    {
        // Safe variant: the recency list must not keep modes of a tree that is deleted.
        ParameterMutexLock lock(&m_loadLock, false, true);
        for (uint32_t index = 0; (nullptr != tree.modes) && (index < tree.modeCount); ++index)
        {
            RemoveLoadedMode(tree.modes[index]);
        }
    }
    delete tree.root;
    for (uint32_t index = 0; index < tree.detached.count; ++index)
    {
        delete tree.detached[index];
    }
    tree.detached.Clear();
    delete[] tree.modes;
    tree.root      = nullptr;
    tree.modes     = nullptr;
    tree.modeCount = 0;
}

void ParameterSetManager::CreateDefaultModeTree()
{
    m_modes = new (std::nothrow) ModeEntry*[1]();
    if (nullptr == m_modes)
    {
        return;
    }
    m_modeCount = 1;
    m_rootMode  = new ModeEntry(true, true);
    m_rootMode->Initialize(0, 0, 0, nullptr);
    m_modes[0] = m_rootMode;
}

bool ParameterSetManager::ReadModeRecord(unsigned char const* section, unsigned int length, unsigned int* pos,
                                         unsigned char alignment, ModeRecord& record) const
{
    bool read = ParameterUtils::Read(&record.id, section, length, pos, alignment) &&
                ParameterUtils::Read(&record.mode.value, section, length, pos, alignment) &&
                ParameterUtils::Read(&record.parentId, section, length, pos, alignment);
    if (read && (m_version >= LinkIdVersion))
    {
        read = ParameterUtils::Read(&record.linkId, section, length, pos, alignment);
    }
    if (read && (m_version >= ModeFlagsVersion))
    {
        read = ParameterUtils::Read(&record.modeFlags, section, length, pos, alignment);
    }
    return read;
}

bool ParameterSetManager::AddModeRecord(ModeRecord const& record)
{
    if (record.id >= m_modeCount)
    {
        SetError("ReadModeSection: Mode ID exceeds mode count", nullptr);
        return false;
    }
    if (record.parentId >= m_modeCount)
    {
        SetError("ReadModeSection: Parent Mode ID exceeds mode count", nullptr);
        return false;
    }
    if ((NoLink != record.linkId) && (record.linkId >= m_modeCount))
    {
        SetError("ReadModeSection: Link Mode ID exceeds mode count", nullptr);
        return false;
    }

    // A parent that was not read yet is null, as is the parent of a root.
    ModeEntry* parent  = (record.parentId == record.id) ? nullptr : m_modes[record.parentId];
    ModeEntry* entry   = parent;
    bool       created = (nullptr == parent) || (parent->m_mode.mode != record.mode.mode) ||
                   (parent->m_mode.subMode != record.mode.subMode);
    if (created)
    {
        entry = new ModeEntry(!IsFileMode(), 0 != (record.modeFlags & PinnedFlag));
        // The link is a slot, so that a mode that the file defines later is found.
        entry->Initialize(record.id, record.mode, (NoLink == record.linkId) ? nullptr : &m_modes[record.linkId]);
    }
    // Otherwise the record is a second name of its parent: the table holds the parent twice.

    m_modes[record.id] = entry;
    if (nullptr == m_rootMode)
    {
        m_rootMode      = entry;
        entry->m_loaded = true;
        entry->m_pinned = true;
        return true;
    }
    if (entry->m_mode.mode < FirstEvictableMode)
    {
        entry->m_loaded = true;
        entry->m_pinned = true;
    }
    if ((nullptr != parent) && (parent != entry))
    {
        parent->AddMode(entry);
    }
    else if (created)
    {
        // Safe variant: a mode outside the tree would leak; it is kept until the tree goes.
        uint32_t before = m_detachedModes.count;
        m_detachedModes.Insert(m_detachedModes.count, entry);
        if (m_detachedModes.count == before)
        {
            m_modes[record.id] = nullptr;
            delete entry;
        }
    }
    return true;
}

bool ParameterSetManager::ReadModeSection(unsigned char* buffer, unsigned int length, ParameterBinaryFile* file,
                                          unsigned char alignment)
{
    FreeModeTree(); // a tree of an earlier file must not be overwritten unfreed
    if ((0 == m_modeOffset) || (0 == m_modeSize))
    {
        PARAMETER_LOG_DEBUG(this,
                            "ReadModeSection: No mode table in binary, ModeOffset(%d) ModeSize(%d), creating "
                            "default\n",
                            m_modeOffset, m_modeSize);
        CreateDefaultModeTree();
        return nullptr != m_rootMode;
    }

    unsigned int textSize   = (m_version >= ModeTextVersion) ? ModeTextSize : 0u;
    unsigned int recordSize = (nullptr == m_symbolTable) ? 0u : m_symbolTable->GetModeEntrySize(alignment);
    unsigned int count    = ((0 == recordSize) || (m_modeSize < textSize)) ? 0u : (m_modeSize - textSize) / recordSize;
    uint64_t     expected = textSize + static_cast<uint64_t>(count) * recordSize;
    if (m_modeSize != expected)
    {
        PARAMETER_LOG_ERROR(this, "ReadModeSection: ModeSize %d does not match expected size %d\n", m_modeSize,
                            static_cast<int>(expected));
        return false;
    }
    // Safe variant: a section beyond the end of the file is refused before its table is made.
    uint64_t end = (nullptr != file) ? file->m_length : length;
    if (static_cast<uint64_t>(m_modeOffset) + m_modeSize > end)
    {
        PARAMETER_LOG_ERROR(this, "ReadModeSection: mode table (offset: %u, size: %u) exceeds the binary length %u\n",
                            m_modeOffset, m_modeSize, static_cast<unsigned int>(end));
        return false;
    }
    m_modes = new (std::nothrow) ModeEntry*[count + 1u]();
    if (nullptr == m_modes)
    {
        return false;
    }
    m_modeCount = count;

    unsigned char* section       = buffer;
    unsigned int   sectionLength = length;
    unsigned int   pos           = m_modeOffset;
    unsigned char* read          = nullptr;
    if (nullptr != file)
    {
        read = file->Read(m_modeOffset, m_modeSize);
        if (nullptr == read)
        {
            PARAMETER_LOG_ERROR(this, "ReadModeSection: Failed to read %d bytes for mode table from binary file\n",
                                m_modeSize);
        }
        section       = read;
        sectionLength = m_modeSize;
        pos           = 0;
    }
    if (nullptr == section)
    {
        SetError("ReadModeSection: Failed, buffer is nullptr", nullptr);
        return false;
    }
    if (0 == sectionLength)
    {
        SetError("ReadModeSection: Failed, buffer length is 0", nullptr);
        OrvoFree(read, OrvoMemFlagsNone, __FILE__, __LINE__);
        return false;
    }

    pos += textSize; // the text is read and dropped
    bool result = true;
    for (unsigned int index = 0; index < count; ++index)
    {
        ModeRecord record;
        if (!ReadModeRecord(section, sectionLength, &pos, alignment, record))
        {
            result = false;
            break;
        }
        // A bad record is reported and skipped, so that every one of them is reported.
        result = AddModeRecord(record) && result;
    }
    OrvoFree(read, OrvoMemFlagsNone, __FILE__, __LINE__);
    return result;
}
