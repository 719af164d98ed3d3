// ParameterBinaryFile: the store's handle on a tuning file, and the check value of the format.
#ifndef PARAMETERBINARYFILE_H
#define PARAMETERBINARYFILE_H

#include <array>
#include <cstddef>
#include <cstdint>

#include "pdlibvark_export.h"

class PDLIBVARK_API ParameterBinaryFile
{
public:
    /// Finished CRC-32 of the format (reflected 0xEDB88320, initial 0xFFFFFFFF, final
    /// complement) of `length` bytes, through the fastest path of this CPU. A null buffer
    /// counts as no bytes. The writer of tuning files stamps its images with this value.
    static uint32_t ComputeCRC(const unsigned char* pBuffer, size_t length);

    /// The standard reflected CRC-32 table of polynomial 0xEDB88320, fixed at compile time.
    static const std::array<uint32_t, 256> m_crcLookupTable;
};

#endif // PARAMETERBINARYFILE_H
