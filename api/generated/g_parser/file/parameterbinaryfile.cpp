#include "parameterbinaryfile.h"

#include <sys/stat.h>

#include <cerrno>
#include <cstring>

#include "orvomem.h"
#include "orvoosutils.h"
#include "parameterutils.h"

namespace
{
// A read that fails is tried again after a reopen, this often in all.
constexpr int ReadAttempts = 4;

int32_t ClampToInt32(int64_t value)
{
    return (value > INT32_MAX) ? INT32_MAX : ((value < INT32_MIN) ? INT32_MIN : static_cast<int32_t>(value));
}

uint32_t ClampToUInt32(int64_t value)
{
    return (value < 0) ? 0u : ((value > UINT32_MAX) ? UINT32_MAX : static_cast<uint32_t>(value));
}

uint32_t LoadLittleEndian32(unsigned char const* bytes)
{
    return static_cast<uint32_t>(bytes[0]) | (static_cast<uint32_t>(bytes[1]) << 8) |
           (static_cast<uint32_t>(bytes[2]) << 16) | (static_cast<uint32_t>(bytes[3]) << 24);
}
} // namespace

ParameterBinaryFile::ParameterBinaryFile(char const* fileName, IParameterLoggingAPI* logger, bool validateCRC)
    : m_logger(logger)
{
    if (nullptr == fileName)
    {
        PARAMETER_LOG_ERROR(m_logger, "ParameterBinaryFile constructor called with null file name\n");
        return;
    }
    size_t nameLength = strlen(fileName);
    if (nameLength > MaxPathLength)
    {
        PARAMETER_LOG_ERROR(m_logger,
                            "ParameterBinaryFile constructor file name length (%lld) exceeds max length: %d\n",
                            static_cast<long long>(nameLength), static_cast<int>(MaxPathLength));
        return;
    }
    Orvo::OsUtils::StrLCpy(m_path, fileName, sizeof(m_path));
    Reference(1);
    m_valid = nullptr != m_file;
    if (m_valid && validateCRC)
    {
        ValidateCRC();
    }
}

ParameterBinaryFile::~ParameterBinaryFile()
{
    {
        ParameterMutexLock lock(&m_mutex, false, true);
        if (m_references > 0)
        {
            if (1 != m_references)
            {
                PARAMETER_LOG_ERROR(m_logger, "ParameterBinaryFile deleted with outstanding references: %d\n",
                                    m_references);
            }
            Reference(-m_references);
        }
    }
    Close(); // a stream that no count holds must not outlive the object either
}

void ParameterBinaryFile::Open(bool logFailure)
{
    if (nullptr != m_file)
    {
        return;
    }
    m_file = fopen(m_path, "rb");
    if (nullptr == m_file)
    {
        int openError = errno;
        if (logFailure)
        {
            PARAMETER_LOG_ERROR(m_logger, "ParameterBinaryFile::Open failed to open file, errno: %d, file name: %s\n",
                                openError, m_path);
        }
        return;
    }

    struct stat status;
    if (0 != fstat(fileno(m_file), &status))
    {
        return;
    }
    if (0 == m_modifiedTime)
    {
        m_length       = ClampToUInt32(status.st_size);
        m_modifiedTime = status.st_mtim.tv_sec;
    }
    else if (m_modifiedTime != status.st_mtim.tv_sec)
    {
        m_modified     = true;
        m_length       = ClampToUInt32(status.st_size);
        m_modifiedTime = status.st_mtim.tv_sec;
        PARAMETER_LOG_WARNING(m_logger, "ParameterBinaryFile::Open, file modified, must reload\n");
    }
}

void ParameterBinaryFile::Close()
{
    if (nullptr != m_file)
    {
        fclose(m_file);
        m_file = nullptr;
    }
}

int ParameterBinaryFile::Reference(int adjust)
{
    ParameterMutexLock lock(&m_mutex, false, true);
    if (adjust > 0)
    {
        if (nullptr == m_file)
        {
            if (0 != m_references)
            {
                PARAMETER_LOG_ERROR(m_logger,
                                    "FileReference Adjust: %d, RefCount: %d, Binary File was null when file reference "
                                    "was %u\n",
                                    adjust, m_references, static_cast<unsigned int>(m_references));
            }
            PARAMETER_LOG_DEBUG(m_logger, "FileReference Adjust: %d, RefCount: %u, opening the file\n", adjust,
                                static_cast<unsigned int>(m_references));
            Open(false);
            int openError = errno;
            if (nullptr == m_file)
            {
                PARAMETER_LOG_ERROR(m_logger,
                                    "FileReference Adjust: %d, RefCount: %d, Failed to open binary file '%s' errno: "
                                    "%d\n",
                                    adjust, m_references, m_path, openError);
            }
        }
        m_references = ClampToInt32(static_cast<int64_t>(m_references) + adjust);
    }
    else if ((adjust < 0) && (nullptr != m_file))
    {
        int64_t sum = static_cast<int64_t>(m_references) + adjust;
        if (sum < 0)
        {
            PARAMETER_LOG_ERROR(m_logger,
                                "FileReference Adjust: %d, RefCount: %d, File Reference is less than adjust amount\n",
                                adjust, m_references);
        }
        m_references = ClampToInt32(sum);
        if (m_references <= 0)
        {
            PARAMETER_LOG_DEBUG(m_logger, "FileReference Adjust: %d, RefCount: %u, closing the file\n", adjust,
                                static_cast<unsigned int>(m_references));
            Close();
            m_references = 0;
        }
    }
    else if (adjust < 0)
    {
        PARAMETER_LOG_ERROR(m_logger, "FileReference Remove: %d, Ref Cnt: %d, Called when file was already closed\n",
                            adjust, m_references);
    }
    return m_references;
}

bool ParameterBinaryFile::ReadAttempt(unsigned char* buffer, unsigned int offset, unsigned int pos, unsigned long count)
{
    unsigned int start  = offset + pos;
    int          result = fseek(m_file, static_cast<long>(start), SEEK_SET);
    if (0 != result)
    {
        PARAMETER_LOG_ERROR(m_logger,
                            "ParameterBinaryFile::Read fseek failed, ferror: %d, return value %d, offset: %d\n",
                            ferror(m_file), result, static_cast<int>(start));
        return false;
    }
    size_t actual = fread(buffer, 1, count, m_file);
    if (actual != count)
    {
        PARAMETER_LOG_ERROR(m_logger,
                            "Read failed to read from file, ferror: %d, offset: %u, pos: %u, requested: %lld, actual: "
                            "%lld\n",
                            ferror(m_file), offset, pos, static_cast<long long>(count), static_cast<long long>(actual));
        return false;
    }
    return true;
}

bool ParameterBinaryFile::Read(unsigned char* buffer, unsigned int offset, unsigned int* pos, unsigned long count,
                               unsigned char alignment)
{
    ParameterMutexLock lock(&m_mutex, false, true);
    if (nullptr == m_file)
    {
        PARAMETER_LOG_ERROR(m_logger, "ParameterBinaryFile::Read called with null file\n");
        return false;
    }
    if (nullptr == buffer)
    {
        PARAMETER_LOG_ERROR(m_logger, "ParameterBinaryFile::Read called with null value\n");
        return false;
    }
    if (nullptr == pos)
    {
        PARAMETER_LOG_ERROR(m_logger, "ParameterBinaryFile::Read called with null pos\n");
        return false;
    }
    if (0 == m_length)
    {
        PARAMETER_LOG_ERROR(m_logger, "ParameterBinaryFile::Read called with a zero length file\n");
        return false;
    }
    // The start is cut to 32 bits, as every offset of the format is.
    unsigned int start = offset + *pos;
    if (static_cast<uint64_t>(start) + count > m_length)
    {
        PARAMETER_LOG_ERROR(m_logger,
                            "ParameterBinaryFile::Read attempted to read past the end of the file, offset: %u, pos: "
                            "%u, count: %u, length: %u\n",
                            offset, *pos, static_cast<unsigned int>(count), m_length);
        return false;
    }
    if (!m_valid || m_modified)
    {
        return false;
    }

    for (int attempt = 1; (0 != count) && !ReadAttempt(buffer, offset, *pos, count); ++attempt)
    {
        if (ReadAttempts == attempt)
        {
            return false;
        }
        PARAMETER_LOG_ERROR(m_logger, "ParameterBinaryFile::Read failed, retrying\n");
        Close();
        Open(true);
        // A stream that would not reopen can't be sought: give up rather than seek on null.
        if (m_modified || (nullptr == m_file))
        {
            return false;
        }
    }
    *pos += static_cast<unsigned int>(ParameterUtils::PaddedSize(count, alignment));
    return !m_modified;
}

unsigned char* ParameterBinaryFile::Read(unsigned int offset, unsigned long count)
{
    ParameterMutexLock lock(&m_mutex, false, true);
    if (0 == count)
    {
        PARAMETER_LOG_ERROR(m_logger, "ParameterBinaryFile::Read called with 0 count\n");
        return nullptr;
    }
    if (!m_valid || m_modified)
    {
        return nullptr;
    }
    // Never more memory than the file holds: a longer count fails in the read below, with its
    // message, before a byte is stored.
    unsigned long  allocated = (count <= m_length) ? count : 1u;
    unsigned char* data =
        static_cast<unsigned char*>(OrvoCalloc(allocated, 8, OrvoMemFlagsNone, OrvoMemTypeAny, __FILE__, __LINE__));
    if (nullptr == data)
    {
        PARAMETER_LOG_ERROR(m_logger, "ParameterBinaryFile::Read failed, out of memory, errno: %d\n", errno);
        return nullptr;
    }
    unsigned int pos = 0;
    if (!Read(data, offset, &pos, count, 1))
    {
        OrvoFree(data, OrvoMemFlagsNone, __FILE__, __LINE__);
        return nullptr;
    }
    return data;
}

bool ParameterBinaryFile::ValidateCRC(unsigned char const* buffer, unsigned int length, IParameterLoggingAPI* logger)
{
    if ((nullptr == buffer) || (length < 5))
    {
        PARAMETER_LOG_ERROR(logger, "Binary file CRC validation failed. Buffer too small\n");
        return false;
    }
    uint32_t actual   = ComputeCRC(buffer, length - 4u);
    uint32_t expected = LoadLittleEndian32(buffer + length - 4u);
    if (actual != expected)
    {
        PARAMETER_LOG_ERROR(logger, "Binary file CRC validation failed. Expected: %8x, Actual: %8x\n", expected,
                            actual);
        return false;
    }
    return true;
}

void ParameterBinaryFile::ValidateCRC()
{
    if (!m_valid)
    {
        return;
    }
    unsigned char* image = Read(0, m_length);
    m_crcValid           = (nullptr != image) && ValidateCRC(image, m_length, m_logger);
    OrvoFree(image, OrvoMemFlagsNone, __FILE__, __LINE__);
}

bool ParameterBinaryFile::Reload()
{
    Close(); // safe variant: a stream still open would otherwise be dropped unclosed
    m_length       = 0;
    m_references   = 0;
    m_valid        = false;
    m_crcValid     = false;
    m_modified     = false;
    m_modifiedTime = 0;

    Open(true);
    m_valid = nullptr != m_file;
    if (m_valid)
    {
        ValidateCRC();
        fseek(m_file, 0, SEEK_END);
        m_length = ClampToUInt32(ftell(m_file));
        fseek(m_file, 0, SEEK_SET);
        Close(); // nobody holds a reference after a reload
    }
    return m_crcValid;
}
