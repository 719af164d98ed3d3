// ParameterBinaryFile: the store's handle on a tuning file in file mode, and the check value of
// the format.
#ifndef PARAMETERBINARYFILE_H
#define PARAMETERBINARYFILE_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdio>

#include "parameterlogging.h"
#include "parametermutex.h"
#include "pdlibvark_export.h"

/// A counted open file: the stream is held only while someone reads. Modes load long after the
/// file was parsed and the file may be replaced meanwhile, so every open compares the
/// modification time; once a change is seen, every read fails until Reload or a new object.
/// Read and Reference lock m_mutex; Open, Close and the ValidateCRC forms run under it or on an
/// object no other thread has yet.
class PDLIBVARK_API ParameterBinaryFile
{
public:
    /// Opens `fileName` and takes the first reference; with `validateCRC`, also reads the whole
    /// file and checks its CRC into m_crcValid.
    ParameterBinaryFile(char const* fileName, IParameterLoggingAPI* logger, bool validateCRC);
    /// Gives back outstanding references, which closes the stream.
    ~ParameterBinaryFile();
    ParameterBinaryFile(ParameterBinaryFile const&)            = delete;
    ParameterBinaryFile& operator=(ParameterBinaryFile const&) = delete;

    /// Opens the stream if closed; a changed modification time sets m_modified.
    void Open(bool logFailure);
    /// Closes the stream if open; nothing else changes.
    void Close();

    /// Reads `count` bytes at `offset + *pos` into `buffer`, then moves `*pos` by the padded
    /// count. False on any failure, and once the file is known to be modified.
    bool Read(unsigned char* buffer, unsigned int offset, unsigned int* pos, unsigned long count,
              unsigned char alignment);
    /// `count` bytes at `offset` in a new OrvoCalloc buffer that the caller frees with
    /// OrvoFree; null on failure.
    unsigned char* Read(unsigned int offset, unsigned long count);

    /// Adds `adjust` to the count of users, opening the stream on the way up and closing it at
    /// zero. Returns the count after the change.
    int Reference(int adjust);

    /// Whether the last four bytes of an image hold, little-endian, the CRC-32 of the others.
    static bool ValidateCRC(unsigned char const* buffer, unsigned int length, IParameterLoggingAPI* logger);
    /// Reads the whole file and sets m_crcValid from the static form.
    void ValidateCRC();

    /// Puts the object back onto the file as it is now on disk. Returns m_crcValid.
    bool Reload();

    /// Finished CRC-32 of the format (reflected 0xEDB88320, initial 0xFFFFFFFF, final
    /// complement) of `length` bytes, through the fastest path of this CPU. A null buffer
    /// counts as no bytes. The writer of tuning files stamps its images with this value.
    static uint32_t ComputeCRC(const unsigned char* pBuffer, size_t length);

    /// The standard reflected CRC-32 table of polynomial 0xEDB88320, fixed at compile time.
    static const std::array<uint32_t, 256> m_crcLookupTable;

    /// Longest file name kept, in characters.
    static constexpr size_t MaxPathLength = 1022;

    FILE*                 m_file         = nullptr; ///< open stream, null while closed
    uint32_t              m_length       = 0;       ///< file size from fstat at the first open
    int32_t               m_references   = 0;       ///< users that need the stream open
    char                  m_path[1024]   = {};
    bool                  m_valid        = false; ///< the file could be opened
    bool                  m_crcValid     = false; ///< the check value matched
    bool                  m_modified     = false; ///< modification time changed since the first open
    int64_t               m_modifiedTime = 0;     ///< st_mtim.tv_sec of the first open, 0 before it
    ParameterMutex        m_mutex;                ///< guards the stream and the count
    IParameterLoggingAPI* m_logger = nullptr;     ///< not owned

private:
    bool ReadAttempt(unsigned char* buffer, unsigned int offset, unsigned int pos, unsigned long count);
};

#endif // PARAMETERBINARYFILE_H
