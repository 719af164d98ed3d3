// Reading a tuning file: header, check value, section table, and the sections in order.
#include <cstring>

#include "orvomem.h"
#include "orvoosutils.h"
#include "parametersetmanager.h"

namespace
{
constexpr char         HeaderTag[]    = "ZVK Tonemetry Header";
constexpr unsigned int TagSize        = 28;
constexpr unsigned int ToolSize       = 48;
constexpr unsigned int BinaryTagSize  = 64;
constexpr uint64_t     CompressedFlag = 2;
constexpr unsigned int MinSections    = 2;
constexpr unsigned int MaxSections    = 4;
constexpr unsigned int MaxNameLength  = 1023;

// The version gates of the header and of the file's alignment.
VersionUnion const ModeTreeMinVersion(1, 0, 2);
VersionUnion const AlignmentEightVersion(1, 1, 0);
VersionUnion const AlignmentOneAgainVersion(3, 0, 1);
VersionUnion const HeaderFlagsVersion(3, 0, 0);
VersionUnion const NewestVersion(5, 0, 0);

unsigned char AlignmentOf(VersionUnion const& version)
{
    return ((version >= AlignmentEightVersion) && (version < AlignmentOneAgainVersion)) ? 8 : 1;
}

void FreeText(char* text)
{
    OrvoFree(text, OrvoMemFlagsNone, __FILE__, __LINE__);
}
} // namespace

bool ParameterSetManager::LoadBinaryParameters(unsigned char* buffer, unsigned long length)
{
    // Safe variant: the live tuning link reads this manager on its own thread, so a load
    // excludes its readers.
    ParameterMutexLock access(&m_accessLock, false, true);
    PARAMETER_LOG_DEBUG(this, "Load Binary Parameters from buffer\n");
    m_parametersValid = false;
    if (nullptr != m_symbolTable)
    {
        SetError("Binary file already loaded", nullptr);
        return false;
    }
    if (length > 0xFFFFFFFFul)
    {
        PARAMETER_LOG_ERROR(this, "Buffer length (%llu) exceeds maximum %lu\n", static_cast<unsigned long long>(length),
                            0xFFFFFFFFul);
        return false;
    }
    SetFileName(nullptr); // a load from a buffer is buffer mode, whatever was loaded before

    unsigned int  size               = static_cast<unsigned int>(length);
    unsigned int  pos                = 0;
    unsigned int  sectionTableOffset = 0;
    unsigned char alignment          = 1;
    m_parametersValid                = ReadHeader(buffer, size, &pos, &sectionTableOffset, &alignment) &&
                        ReadSections(buffer, size, nullptr, nullptr, size, sectionTableOffset, this, alignment);
    if (m_parametersValid)
    {
        PARAMETER_LOG_DEBUG(this, "Load Binary Parameters completed: Tag: %s, Version: %d.%d.%d\n",
                            (nullptr == m_tag) ? "" : m_tag, m_version.major, m_version.minor, m_version.patch);
        StartTuningWorker();
    }
    return m_parametersValid;
}

bool ParameterSetManager::LoadBinaryParameters(char const* fileName)
{
    if (nullptr == fileName)
    {
        SetError("LoadBinaryParameters called with nullptr file name", nullptr);
        return false;
    }
    size_t nameLength = strlen(fileName);
    if (nameLength >= MaxNameLength)
    {
        PARAMETER_LOG_ERROR(this, "File name length (%lld) exceeds max file name length of %d\n",
                            static_cast<long long>(nameLength), static_cast<int>(MaxNameLength));
        return false;
    }
    // Safe variant: as for a buffer, the link's reads wait for the load.
    ParameterMutexLock access(&m_accessLock, false, true);
    PARAMETER_LOG_DEBUG(this, "Load Binary Parameters from file: %s\n", fileName);
    m_parametersValid = false;
    if (nullptr != m_symbolTable)
    {
        SetError("Binary file already loaded", nullptr);
        return false;
    }

    ParameterBinaryFile* file = new ParameterBinaryFile(fileName, this, true);
    if (!file->m_crcValid)
    {
        PARAMETER_LOG_ERROR(this, "Failed to load binary file %s\n", fileName);
        delete file;
        return false;
    }
    unsigned int   length = file->m_length;
    unsigned char* image  = file->Read(0, length);
    if (nullptr == image)
    {
        SetError("Unable to allocate space to read binary file", nullptr);
        delete file;
        return false;
    }

    if (!m_fileModeAllowed)
    {
        LoadBinaryParameters(image, length);
        OrvoFree(image, OrvoMemFlagsNone, __FILE__, __LINE__);
    }
    else
    {
        SetFileName(fileName);
        unsigned int  pos                = 0;
        unsigned int  sectionTableOffset = 0;
        unsigned char alignment          = 1;
        bool          headerValid        = ReadHeader(image, length, &pos, &sectionTableOffset, &alignment);
        OrvoFree(image, OrvoMemFlagsNone, __FILE__, __LINE__);
        // After the check the file's first bytes are the working buffer: only tables stay.
        unsigned char* head = headerValid ? file->Read(0, FileModeHeadBytes) : nullptr;
        if (headerValid && (nullptr == head))
        {
            PARAMETER_LOG_ERROR(this, "Failed to read %d bytes from binary file %s\n",
                                static_cast<int>(FileModeHeadBytes), fileName);
        }
        else if (headerValid && (0 != (m_flags & CompressedFlag)))
        {
            PARAMETER_LOG_ERROR(this, "Compressed binary files ssupport removed in V5.1.0\n"); // spelled so
            m_parametersValid = false;
        }
        else if (headerValid)
        {
            m_parametersValid = ReadSections(head, FileModeHeadBytes, m_fileName, file, file->m_length,
                                             sectionTableOffset, this, alignment);
            if (m_parametersValid)
            {
                PARAMETER_LOG_DEBUG(this, "Load Binary Parameters completed: Binary Version: %d.%d.%d\n",
                                    m_version.major, m_version.minor, m_version.patch);
                StartTuningWorker();
            }
        }
        OrvoFree(head, OrvoMemFlagsNone, __FILE__, __LINE__);
    }

    // The table owns the file from here on; giving back the constructor's reference closes it.
    if (nullptr != m_symbolTable)
    {
        m_symbolTable->FileReference(-1);
    }
    // Safe variant: a file that no table took (a buffer-mode load, or a failure before the
    // tables) is deleted rather than left open.
    if ((nullptr == m_symbolTable) || (m_symbolTable->m_file != file))
    {
        delete file;
    }
    return m_parametersValid;
}

bool ParameterSetManager::ReadHeader(unsigned char* buffer, unsigned int length, unsigned int* pos,
                                     unsigned int* sectionTableOffset, unsigned char* alignment)
{
    unsigned int  localPos         = 0;
    unsigned int  localTableOffset = 0;
    unsigned char localAlignment   = 1;
    pos                            = (nullptr == pos) ? &localPos : pos;
    sectionTableOffset             = (nullptr == sectionTableOffset) ? &localTableOffset : sectionTableOffset;
    alignment                      = (nullptr == alignment) ? &localAlignment : alignment;

    // Nothing of an earlier file may stand in for a field that this one lacks.
    m_version = VersionUnion();
    m_flags   = 0;

    char*    tag      = ParameterUtils::ReadString(buffer, length, pos, TagSize, 1);
    uint32_t dataSize = 0;
    bool     valid    = ParameterUtils::Read(&dataSize, buffer, length, pos) &&
                 ParameterUtils::Read(&m_version.value, buffer, length, pos);

    if (m_version >= ModeTreeMinVersion)
    {
        char* tool      = ParameterUtils::ReadString(buffer, length, pos, ToolSize, 1);
        char* binaryTag = ParameterUtils::ReadString(buffer, length, pos, BinaryTagSize, 1);
        FreeText(m_tag);
        m_tag = binaryTag;
        PublishTag();
        PARAMETER_LOG_DEBUG(this, "ReadHeader: Version %d.%d.%d BinaryTag: %s, Tool: %s\n", m_version.major,
                            m_version.minor, m_version.patch, (nullptr == m_tag) ? "" : m_tag,
                            (nullptr == tool) ? "" : tool);
        FreeText(tool);
    }
    else
    {
        PARAMETER_LOG_DEBUG(this, "ReadHeader: Version %d.%d.%d < ModeTreeMinVersion, BinaryTag not set\n",
                            m_version.major, m_version.minor, m_version.patch);
    }

    if (valid && (m_version >= HeaderFlagsVersion))
    {
        valid = ParameterUtils::Read(&m_flags, buffer, length, pos);
    }
    valid = valid && ParameterUtils::Read(sectionTableOffset, buffer, length, pos) &&
            ParameterUtils::Read(&m_sectionCount, buffer, length, pos);
    if (!valid)
    {
        FreeText(tag);
        SetError("General error parsing binary header data header", nullptr);
        return false;
    }

    char text[MaxErrorText];
    if (nullptr == tag)
    {
        SetError("Failed to read binary header tag", nullptr);
        return false;
    }
    bool tagValid = 0 == strcmp(tag, HeaderTag);
    if (!tagValid)
    {
        Orvo::OsUtils::SNPrintF(text, sizeof(text), "Invalid binary header tag: %s", tag);
    }
    FreeText(tag);
    if (!tagValid)
    {
        SetError(text, nullptr);
        return false;
    }
    if ((length < dataSize) && (0 == (m_flags & CompressedFlag)))
    {
        Orvo::OsUtils::SNPrintF(text, sizeof(text),
                                "Binary header data too small: Expected: %d bytes, Actual: %u bytes",
                                static_cast<int>(dataSize), length);
        SetError(text, nullptr);
        return false;
    }
    if (m_version < ModeTreeMinVersion)
    {
        // Not a failure: such files load with their Default data.
        SetError("Warning: This is an older binary format, only Default mode data is supported.\nTo support multiple "
                 "modes, please re-generate binary using the latest version of Tonemetry",
                 nullptr);
    }
    else if (m_version > NewestVersion)
    {
        Orvo::OsUtils::SNPrintF(
            text, sizeof(text),
            "Unsupported binary header version : %u.%u.%u. Please re-generate parser code using the "
            "latest version of ParameterParser",
            static_cast<unsigned int>(m_version.major), static_cast<unsigned int>(m_version.minor), m_version.patch);
        SetError(text, nullptr);
        return false;
    }

    *alignment = AlignmentOf(m_version);
    // The check value closes the whole image handed in, whatever dataSize says.
    if (!ParameterBinaryFile::ValidateCRC(buffer, length, this))
    {
        // Required: the text already recorded is logged again, whatever it is.
        SetError(m_errorText, nullptr);
        return false;
    }
    return true;
}

bool ParameterSetManager::ReadSectionInfo(unsigned char* buffer, unsigned int length, unsigned int* pos,
                                          unsigned char alignment)
{
    if (m_sectionCount < MinSections)
    {
        PARAMETER_LOG_ERROR(this, "ReadSectionInfo: Section count %d is less than Min sections %d\n", m_sectionCount,
                            MinSections);
        return false;
    }
    if (m_sectionCount > MaxSections)
    {
        PARAMETER_LOG_ERROR(this, "ReadSectionInfo: Section count %d is greater than Max sections %d\n", m_sectionCount,
                            MaxSections);
        return false;
    }
    if ((nullptr == buffer) || (nullptr == pos))
    {
        SetError("ReadSectionInfo: buffer is nullptr", nullptr);
        return false;
    }

    // A section that this file does not list must not keep the place it had in an earlier one.
    m_symbolOffset = m_symbolSize = m_dataOffset = m_dataSize = 0;
    m_modeOffset = m_modeSize = m_dataTableOffset = m_dataTableSize = 0;
    for (uint32_t index = 0; index < m_sectionCount; ++index)
    {
        uint32_t type   = 0;
        uint32_t offset = 0;
        uint32_t size   = 0;
        if (!ParameterUtils::Read(&type, buffer, length, pos, alignment) ||
            !ParameterUtils::Read(&offset, buffer, length, pos, alignment) ||
            !ParameterUtils::Read(&size, buffer, length, pos, alignment))
        {
            SetError("Error reading data from header sections", nullptr);
            m_parametersValid = false;
            return false;
        }
        // A second entry of a type overwrites the first.
        switch (type)
        {
            case SectionSymbolTable:
                m_symbolOffset = offset;
                m_symbolSize   = size;
                break;
            case SectionData:
                m_dataOffset = offset;
                m_dataSize   = size;
                break;
            case SectionModeTable:
                m_modeOffset = offset;
                m_modeSize   = size;
                break;
            case SectionDataTable:
                m_dataTableOffset = offset;
                m_dataTableSize   = size;
                break;
            default:
                PARAMETER_LOG_ERROR(this, "Invalid binary section type %d\n", type);
                m_parametersValid = false;
                return false;
        }
    }
    return true;
}

bool ParameterSetManager::ReadSections(unsigned char* buffer, unsigned int length, char const* fileName,
                                       ParameterBinaryFile* file, unsigned int fileLength,
                                       unsigned int sectionTableOffset, IModeTable* modeTable, unsigned char alignment)
{
    struct LoadingAloneScope
    {
        bool& flag;
        explicit LoadingAloneScope(bool& loading) : flag(loading) { flag = true; }
        ~LoadingAloneScope() { flag = false; }
    } alone(m_loadingAlone);
    unsigned int pos = sectionTableOffset;
    if (!ReadSectionInfo(buffer, length, &pos, alignment))
    {
        SetError("Invalid binary file section count", nullptr);
        m_parametersValid = false;
        return false;
    }
    if (0 != (m_flags & CompressedFlag))
    {
        SetError("Compressed binary file not supported (support ended with V5.1.0)", nullptr);
        m_parametersValid = false;
        return false;
    }

    delete m_symbolTable;
    m_symbolTable = new ParameterFileSymbolTable(this, m_version);
    if (!ReadModeSection(buffer, length, file, alignment))
    {
        return false;
    }
    if ((0 == m_symbolOffset) || (0 == m_symbolSize) || (0 == m_dataOffset) || (0 == m_dataSize))
    {
        // A file of modes without symbols loads, with no modules.
        PARAMETER_LOG_ERROR(this,
                            "ReadModeSection: Binary missing symbol table or data SymbolOffset(%d) && SymbolSize(%d) "
                            "&& DataOffset(%d) && DataSize(%d)\n",
                            m_symbolOffset, m_symbolSize, m_dataOffset, m_dataSize);
        return true;
    }

    bool fileMode = nullptr != file;
    bool loaded =
        m_symbolTable->Load(buffer, length, fileName, file, fileLength, m_symbolSize, m_symbolOffset, m_dataTableSize,
                            m_dataTableOffset, m_dataSize, m_dataOffset, modeTable, alignment);
    // File mode re-reads entries from the file from now on. Safe variant: a failed buffer load
    // drops them too, as they point into the caller's image.
    if (fileMode || !loaded)
    {
        m_symbolTable->FreeEntryData();
    }
    if (!loaded)
    {
        return false;
    }

    bool result = CreateModules(fileMode);

    // Modules have copied what they need of the image.
    if (!fileMode)
    {
        m_symbolTable->FreeEntryData();
        m_symbolTable->FreeLookupData();
    }
    return result;
}
