// Little-endian fields of the live tuning link's packets, whatever the host's byte order.
#ifndef PARAMETERRAVLENWIRE_H
#define PARAMETERRAVLENWIRE_H

#include "orvotypes.h"

namespace RavlenWire
{
inline UINT16 ReadU16(UINT8 const* pBytes)
{
    return static_cast<UINT16>(pBytes[0] | (pBytes[1] << 8));
}

inline UINT32 ReadU32(UINT8 const* pBytes)
{
    return static_cast<UINT32>(ReadU16(pBytes)) | (static_cast<UINT32>(ReadU16(pBytes + 2)) << 16);
}

inline void WriteU16(UINT8* pBytes, UINT16 value)
{
    pBytes[0] = static_cast<UINT8>(value);
    pBytes[1] = static_cast<UINT8>(value >> 8);
}

inline void WriteU64(UINT8* pBytes, UINT64 value)
{
    for (int index = 0; index < 8; ++index)
    {
        pBytes[index] = static_cast<UINT8>(value >> (8 * index));
    }
}
} // namespace RavlenWire

#endif // PARAMETERRAVLENWIRE_H
