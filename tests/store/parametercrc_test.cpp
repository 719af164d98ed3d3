#include <gtest/gtest.h>

#include <cstring>
#include <random>
#include <vector>

#include "parameterbinaryfile.h"
#include "parametercrc.h"

namespace
{
// CRC-32 one bit at a time, straight from the polynomial: independent of every table.
uint32_t BitwiseCrc32(const unsigned char* bytes, size_t length)
{
    uint32_t crc = 0xFFFFFFFFu;
    for (size_t index = 0; index < length; ++index)
    {
        crc ^= bytes[index];
        for (int bit = 0; bit < 8; ++bit)
        {
            crc = (crc >> 1) ^ ((0 != (crc & 1u)) ? 0xEDB88320u : 0u);
        }
    }
    return ~crc;
}

std::vector<unsigned char> RandomBytes(size_t length, unsigned seed)
{
    std::mt19937               generator(seed);
    std::vector<unsigned char> bytes(length);
    for (unsigned char& byte : bytes)
    {
        byte = static_cast<unsigned char>(generator());
    }
    return bytes;
}

const unsigned char* Text(const char* text)
{
    return reinterpret_cast<const unsigned char*>(text);
}

// Every CRC path of the store gives `expected` over the bytes.
void ExpectEveryPath(uint32_t expected, const unsigned char* start, size_t length)
{
    SCOPED_TRACE(testing::Message() << "length " << length);
    ASSERT_EQ(expected, ParameterCrc::Crc32Portable(start, length));
    ASSERT_EQ(expected, ParameterBinaryFile::ComputeCRC(start, length));
#if defined(PARAMETER_CRC_HAS_HARDWARE_PATH)
    if (ParameterCrc::Crc32HardwareAvailable())
    {
        ASSERT_EQ(expected, ParameterCrc::Crc32Hardware(start, length));
    }
#endif
}

TEST(Crc32, CheckValueOfTheStandardStringAndOfNothing)
{
    ExpectEveryPath(0xCBF43926u, Text("123456789"), 9);
    EXPECT_EQ(0u, ParameterBinaryFile::ComputeCRC(Text(""), 0));
    EXPECT_EQ(0u, ParameterBinaryFile::ComputeCRC(nullptr, 100));
}

TEST(Crc32, LookupTableIsTheReflectedStandardTable)
{
    EXPECT_EQ(0x00000000u, ParameterBinaryFile::m_crcLookupTable[0]);
    EXPECT_EQ(0x77073096u, ParameterBinaryFile::m_crcLookupTable[1]);
    EXPECT_EQ(0x2D02EF8Du, ParameterBinaryFile::m_crcLookupTable[255]);
    for (unsigned int index = 0; index < 256; ++index)
    {
        unsigned char byte = static_cast<unsigned char>(index);
        // A table entry is the register after one byte from a zero start: the complement of
        // a CRC-32 with initial value 0xFFFFFFFF over that byte XOR 0xFF.
        unsigned char probe = static_cast<unsigned char>(byte ^ 0xFFu);
        EXPECT_EQ(ParameterBinaryFile::m_crcLookupTable[index], ~BitwiseCrc32(&probe, 1) ^ 0x00FFFFFFu)
            << "entry " << index;
    }
}

// Every length up to 300 crosses all the paths' block sizes and tails (8-byte slices, 16-byte
// folds, 64-byte blocks); every start offset up to 15 crosses all alignments; then a large buffer.
TEST(Crc32, EveryPathAgreesOnEveryLengthAndAlignment)
{
    std::vector<unsigned char> bytes = RandomBytes(300 + 16, 7);
    for (size_t offset = 0; offset < 16; ++offset)
    {
        for (size_t length = 0; length <= 300; ++length)
        {
            SCOPED_TRACE(testing::Message() << "offset " << offset);
            ExpectEveryPath(BitwiseCrc32(bytes.data() + offset, length), bytes.data() + offset, length);
            ASSERT_FALSE(HasFatalFailure());
        }
    }
    std::vector<unsigned char> large = RandomBytes((1u << 20) + 13, 11);
    ExpectEveryPath(BitwiseCrc32(large.data() + 3, large.size() - 3), large.data() + 3, large.size() - 3);
}

TEST(Crc32, FastestPathIsTheHardwareOneWhereTheCpuHasIt)
{
#if defined(__x86_64__)
    __builtin_cpu_init();
    const bool hasCarrylessMultiply = __builtin_cpu_supports("pclmul") && __builtin_cpu_supports("sse4.1");
    EXPECT_EQ(hasCarrylessMultiply ? ParameterCrc::Crc32Path::CarrylessMultiply : ParameterCrc::Crc32Path::Portable,
              ParameterCrc::FastestCrc32Path());
#elif defined(__aarch64__)
    // The devices' cores and the emulator that runs the cross-built suite all have the CRC32
    // instructions: the check value must be computed by them there.
    EXPECT_EQ(ParameterCrc::Crc32Path::Armv8CrcInstructions, ParameterCrc::FastestCrc32Path());
#else
    EXPECT_EQ(ParameterCrc::Crc32Path::Portable, ParameterCrc::FastestCrc32Path());
#endif
    std::vector<unsigned char> bytes = RandomBytes(4096, 3);
    EXPECT_EQ(ParameterCrc::Crc32(bytes.data(), bytes.size()), ParameterCrc::Crc32Portable(bytes.data(), bytes.size()));
}
} // namespace
