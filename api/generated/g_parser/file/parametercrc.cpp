#include "parametercrc.h"

#include <array>
#include <cstring>

#include "parameterbinaryfile.h"

#if defined(__x86_64__)
#include <immintrin.h>
#elif defined(__aarch64__)
#include <arm_acle.h>
#include <sys/auxv.h>
#ifndef HWCAP_CRC32
#define HWCAP_CRC32 (1 << 7)
#endif
#endif

namespace
{
using CrcTable = std::array<uint32_t, 256>;
// Four rows of a table that advances a 4-byte word at once: row 3 for its first byte, row 0
// for its last.
using WordTables = std::array<CrcTable, 4>;

constexpr uint32_t ReflectedPolynomial = 0xEDB88320u;

// The portable path keeps this many independent CRCs (lanes), each taking every
// BraidLanes-th 4-byte word: their look-ups overlap instead of waiting on one another.
constexpr size_t BraidLanes = 8;
constexpr size_t BraidBlock = 4 * BraidLanes;

constexpr CrcTable MakeByteTable()
{
    CrcTable table{};
    for (uint32_t index = 0; index < table.size(); ++index)
    {
        uint32_t crc = index;
        for (int bit = 0; bit < 8; ++bit)
        {
            crc = (0 != (crc & 1u)) ? ((crc >> 1) ^ ReflectedPolynomial) : (crc >> 1);
        }
        table[index] = crc;
    }
    return table;
}

// Row r advances a byte through (firstRow + r) further zero bytes.
constexpr WordTables MakeWordTables(const CrcTable& byteTable, size_t firstRow)
{
    CrcTable row = byteTable;
    for (size_t advanced = 0; advanced < firstRow; ++advanced)
    {
        for (uint32_t& entry : row)
        {
            entry = (entry >> 8) ^ byteTable[entry & 0xFFu];
        }
    }
    WordTables tables{};
    for (CrcTable& table : tables)
    {
        table = row;
        for (uint32_t& entry : row)
        {
            entry = (entry >> 8) ^ byteTable[entry & 0xFFu];
        }
    }
    return tables;
}
} // namespace

// A compile-time constant: building it at start-up would be work in a static initialiser.
constexpr CrcTable ParameterBinaryFile::m_crcLookupTable = MakeByteTable();

namespace
{
static_assert(0x77073096u == ParameterBinaryFile::m_crcLookupTable[1], "not the reflected CRC-32 table");
static_assert(0x2D02EF8Du == ParameterBinaryFile::m_crcLookupTable[255], "not the reflected CRC-32 table");

// Advances a CRC over the next word of its own stream, and a lane over the next word of its
// lane, BraidBlock bytes further on.
constexpr WordTables NextWord     = MakeWordTables(ParameterBinaryFile::m_crcLookupTable, 0);
constexpr WordTables NextLaneWord = MakeWordTables(ParameterBinaryFile::m_crcLookupTable, BraidBlock - 4);

inline uint32_t LoadLittleEndian32(const unsigned char* pBytes)
{
    return static_cast<uint32_t>(pBytes[0]) | (static_cast<uint32_t>(pBytes[1]) << 8) |
           (static_cast<uint32_t>(pBytes[2]) << 16) | (static_cast<uint32_t>(pBytes[3]) << 24);
}

inline uint32_t AdvanceWord(uint32_t word, const WordTables& rows)
{
    return (rows[3][word & 0xFFu] ^ rows[2][(word >> 8) & 0xFFu]) ^
           (rows[1][(word >> 16) & 0xFFu] ^ rows[0][word >> 24]);
}

// The running value is the register before the final complement.
uint32_t UpdateBytewise(uint32_t crc, const unsigned char* pBuffer, size_t length)
{
    for (size_t index = 0; index < length; ++index)
    {
        crc = ParameterBinaryFile::m_crcLookupTable[(pBuffer[index] ^ crc) & 0xFFu] ^ (crc >> 8);
    }
    return crc;
}

uint32_t UpdatePortable(uint32_t crc, const unsigned char* pBuffer, size_t length)
{
    if (length >= 2 * BraidBlock)
    {
        // Lane k holds what the words so far contribute, to be added to the k-th word of the
        // next block. The last block joins the lanes back into one CRC, word by word.
        uint32_t lanes[BraidLanes] = {crc};
        for (size_t blocks = length / BraidBlock - 1; blocks > 0; --blocks)
        {
            for (size_t lane = 0; lane < BraidLanes; ++lane)
            {
                lanes[lane] = AdvanceWord(lanes[lane] ^ LoadLittleEndian32(pBuffer + 4 * lane), NextLaneWord);
            }
            pBuffer += BraidBlock;
            length -= BraidBlock;
        }
        crc = 0;
        for (size_t lane = 0; lane < BraidLanes; ++lane)
        {
            crc = AdvanceWord(crc ^ lanes[lane] ^ LoadLittleEndian32(pBuffer + 4 * lane), NextWord);
        }
        pBuffer += BraidBlock;
        length -= BraidBlock;
    }
    for (; length >= 4; length -= 4)
    {
        crc = AdvanceWord(crc ^ LoadLittleEndian32(pBuffer), NextWord);
        pBuffer += 4;
    }
    return UpdateBytewise(crc, pBuffer, length);
}

#if defined(__x86_64__)
// Folding constants of the reflected polynomial: powers of x modulo P that carry 128 bits
// forward by 512 bits (four lanes) and by 128 bits (one lane), and 64 bits by 32, bit-reflected;
// then P and the Barrett constant floor(x^64 / P). The tests hold this path to a bitwise CRC.
alignas(16) constexpr uint64_t FoldBy4[2] = {0x0154442BD4ull, 0x01C6E41596ull};
alignas(16) constexpr uint64_t FoldBy1[2] = {0x01751997D0ull, 0x00CCAA009Eull};
alignas(16) constexpr uint64_t Fold64[2]  = {0x0163CD6124ull, 0x0000000000ull};
alignas(16) constexpr uint64_t Barrett[2] = {0x01DB710641ull, 0x01F7011641ull};

constexpr size_t FoldBlockBytes = 64;

// Carries a lane forward by the distance its constants stand for and adds the data found there.
__attribute__((target("pclmul,sse4.1"))) inline __m128i Fold(__m128i lane, __m128i constants, __m128i data)
{
    __m128i low  = _mm_clmulepi64_si128(lane, constants, 0x00);
    __m128i high = _mm_clmulepi64_si128(lane, constants, 0x11);
    return _mm_xor_si128(_mm_xor_si128(low, high), data);
}

// Folds a multiple of 16 bytes, at least 64, into the running value with carry-less multiplies.
__attribute__((target("pclmul,sse4.1"))) uint32_t UpdateFolded(uint32_t crc, const unsigned char* pBuffer,
                                                               size_t length)
{
    __m128i lane0 = _mm_loadu_si128(reinterpret_cast<const __m128i*>(pBuffer));
    __m128i lane1 = _mm_loadu_si128(reinterpret_cast<const __m128i*>(pBuffer + 16));
    __m128i lane2 = _mm_loadu_si128(reinterpret_cast<const __m128i*>(pBuffer + 32));
    __m128i lane3 = _mm_loadu_si128(reinterpret_cast<const __m128i*>(pBuffer + 48));
    lane0         = _mm_xor_si128(lane0, _mm_cvtsi32_si128(static_cast<int>(crc)));
    pBuffer += FoldBlockBytes;
    length -= FoldBlockBytes;

    const __m128i by4 = _mm_load_si128(reinterpret_cast<const __m128i*>(FoldBy4));
    while (length >= FoldBlockBytes)
    {
        lane0 = Fold(lane0, by4, _mm_loadu_si128(reinterpret_cast<const __m128i*>(pBuffer)));
        lane1 = Fold(lane1, by4, _mm_loadu_si128(reinterpret_cast<const __m128i*>(pBuffer + 16)));
        lane2 = Fold(lane2, by4, _mm_loadu_si128(reinterpret_cast<const __m128i*>(pBuffer + 32)));
        lane3 = Fold(lane3, by4, _mm_loadu_si128(reinterpret_cast<const __m128i*>(pBuffer + 48)));
        pBuffer += FoldBlockBytes;
        length -= FoldBlockBytes;
    }

    const __m128i by1 = _mm_load_si128(reinterpret_cast<const __m128i*>(FoldBy1));
    __m128i       acc = Fold(lane0, by1, lane1);
    acc               = Fold(acc, by1, lane2);
    acc               = Fold(acc, by1, lane3);
    while (length >= 16)
    {
        acc = Fold(acc, by1, _mm_loadu_si128(reinterpret_cast<const __m128i*>(pBuffer)));
        pBuffer += 16;
        length -= 16;
    }

    // 128 bits to 64, then 64 to 32 by Barrett reduction.
    const __m128i low32 = _mm_setr_epi32(~0, 0, ~0, 0);
    acc                 = _mm_xor_si128(_mm_srli_si128(acc, 8), _mm_clmulepi64_si128(acc, by1, 0x10));
    const __m128i by64  = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(Fold64));
    acc = _mm_xor_si128(_mm_srli_si128(acc, 4), _mm_clmulepi64_si128(_mm_and_si128(acc, low32), by64, 0x00));

    const __m128i barrett  = _mm_load_si128(reinterpret_cast<const __m128i*>(Barrett));
    __m128i       quotient = _mm_clmulepi64_si128(_mm_and_si128(acc, low32), barrett, 0x10);
    __m128i       product  = _mm_clmulepi64_si128(_mm_and_si128(quotient, low32), barrett, 0x00);
    return static_cast<uint32_t>(_mm_extract_epi32(_mm_xor_si128(acc, product), 1));
}

uint32_t UpdateHardware(uint32_t crc, const unsigned char* pBuffer, size_t length)
{
    if (length >= FoldBlockBytes)
    {
        size_t folded = length & ~static_cast<size_t>(15);
        crc           = UpdateFolded(crc, pBuffer, folded);
        pBuffer += folded;
        length -= folded;
    }
    return UpdatePortable(crc, pBuffer, length);
}

bool DetectHardware()
{
    __builtin_cpu_init();
    return __builtin_cpu_supports("pclmul") && __builtin_cpu_supports("sse4.1");
}
#elif defined(__aarch64__)
__attribute__((target("+crc"))) uint32_t UpdateHardware(uint32_t crc, const unsigned char* pBuffer, size_t length)
{
    for (; (length > 0) && (0 != (reinterpret_cast<uintptr_t>(pBuffer) & 7u)); --length)
    {
        crc = __crc32b(crc, *pBuffer++);
    }
    for (; length >= 8; length -= 8)
    {
        uint64_t word;
        memcpy(&word, pBuffer, sizeof(word));
        crc = __crc32d(crc, word);
        pBuffer += 8;
    }
    for (; length > 0; --length)
    {
        crc = __crc32b(crc, *pBuffer++);
    }
    return crc;
}

bool DetectHardware()
{
    return 0 != (getauxval(AT_HWCAP) & HWCAP_CRC32);
}
#endif
} // namespace

namespace ParameterCrc
{
uint32_t Crc32Portable(const unsigned char* pBuffer, size_t length)
{
    return ~UpdatePortable(0xFFFFFFFFu, pBuffer, length);
}

#if defined(PARAMETER_CRC_HAS_HARDWARE_PATH)
uint32_t Crc32Hardware(const unsigned char* pBuffer, size_t length)
{
    return ~UpdateHardware(0xFFFFFFFFu, pBuffer, length);
}

bool Crc32HardwareAvailable()
{
    // A function-local static: the CPU is asked at first use, never while the library loads.
    static const bool available = DetectHardware();
    return available;
}

Crc32Path FastestCrc32Path()
{
#if defined(__x86_64__)
    constexpr Crc32Path hardware = Crc32Path::CarrylessMultiply;
#else
    constexpr Crc32Path hardware = Crc32Path::Armv8CrcInstructions;
#endif
    return Crc32HardwareAvailable() ? hardware : Crc32Path::Portable;
}

uint32_t Crc32(const unsigned char* pBuffer, size_t length)
{
    using Crc32Function                = uint32_t (*)(const unsigned char*, size_t);
    static const Crc32Function fastest = Crc32HardwareAvailable() ? &Crc32Hardware : &Crc32Portable;
    return fastest(pBuffer, (nullptr == pBuffer) ? 0 : length);
}
#else
bool Crc32HardwareAvailable()
{
    return false;
}

Crc32Path FastestCrc32Path()
{
    return Crc32Path::Portable;
}

uint32_t Crc32(const unsigned char* pBuffer, size_t length)
{
    return Crc32Portable(pBuffer, (nullptr == pBuffer) ? 0 : length);
}
#endif
} // namespace ParameterCrc

uint32_t ParameterBinaryFile::ComputeCRC(const unsigned char* pBuffer, size_t length)
{
    return ParameterCrc::Crc32(pBuffer, length);
}
