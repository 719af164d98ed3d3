// CRC-32 of the tuning-file format (IEEE 802.3, reflected, polynomial 0xEDB88320, initial value
// 0xFFFFFFFF, final complement), in every implementation the library carries. Internal to the
// store: callers outside it use ParameterBinaryFile::ComputeCRC, which picks the fastest path.
#ifndef PARAMETERCRC_H
#define PARAMETERCRC_H

#include <cstddef>
#include <cstdint>

#if defined(__x86_64__) || defined(__aarch64__)
/// Set where this build carries a hardware path (carry-less multiply on x86-64, the CRC32
/// instructions on AArch64); whether the running CPU has it is Crc32HardwareAvailable().
#define PARAMETER_CRC_HAS_HARDWARE_PATH 1
#endif

namespace ParameterCrc
{
/// Finished CRC-32 of `length` bytes by lookup tables only; runs on every CPU.
uint32_t Crc32Portable(const unsigned char* pBuffer, size_t length);

#if defined(PARAMETER_CRC_HAS_HARDWARE_PATH)
/// Finished CRC-32 through the CPU's CRC instructions. Only call it when
/// Crc32HardwareAvailable() is true.
uint32_t Crc32Hardware(const unsigned char* pBuffer, size_t length);
#endif

/// Whether the running CPU can take the hardware path. Asked once, at the first call.
bool Crc32HardwareAvailable();

enum class Crc32Path
{
    Portable,             ///< lookup tables
    CarrylessMultiply,    ///< x86-64 PCLMULQDQ folding
    Armv8CrcInstructions, ///< AArch64 CRC32B/CRC32X
};

/// The path that Crc32 takes on the running CPU.
Crc32Path FastestCrc32Path();

/// Finished CRC-32 through the fastest path of this CPU, chosen at the first call.
uint32_t Crc32(const unsigned char* pBuffer, size_t length);
} // namespace ParameterCrc

#endif // PARAMETERCRC_H
