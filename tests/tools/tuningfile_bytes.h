// Hand-built tuning-file images and little-endian field reads, for exact-byte tests of the writer.
#ifndef TESTS_TOOLS_TUNINGFILE_BYTES_H
#define TESTS_TOOLS_TUNINGFILE_BYTES_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "parameterbinaryfile.h"

namespace tuningfile_test
{
/// The little-endian value of `width` bytes at `offset`.
inline uint64_t ValueAt(const std::vector<uint8_t>& image, size_t offset, size_t width)
{
    uint64_t value = 0;
    for (size_t byte = 0; byte < width && offset + byte < image.size(); ++byte)
    {
        value |= uint64_t{image[offset + byte]} << (8 * byte);
    }
    return value;
}

inline uint32_t U32At(const std::vector<uint8_t>& image, size_t offset)
{
    return static_cast<uint32_t>(ValueAt(image, offset, 4));
}

/// A zeroed image of a given length whose fields are set at the offsets of the layout tables.
class HandImage
{
public:
    explicit HandImage(size_t length) : m_bytes(length, 0) {}

    HandImage& Value(size_t offset, uint64_t value, size_t width)
    {
        for (size_t byte = 0; byte < width; ++byte)
        {
            m_bytes.at(offset + byte) = static_cast<uint8_t>(value >> (8 * byte));
        }
        return *this;
    }

    HandImage& U8(size_t offset, uint8_t value) { return Value(offset, value, 1); }
    HandImage& U16(size_t offset, uint16_t value) { return Value(offset, value, 2); }
    HandImage& U32(size_t offset, uint32_t value) { return Value(offset, value, 4); }

    /// A version as the file stores it: major, minor, patch from `offset` on.
    HandImage& Version(size_t offset, uint16_t major, uint16_t minor, uint32_t patch)
    {
        return U16(offset, major).U16(offset + 2, minor).U32(offset + 4, patch);
    }

    HandImage& Text(size_t offset, const std::string& text)
    {
        for (size_t index = 0; index < text.size(); ++index)
        {
            m_bytes.at(offset + index) = static_cast<uint8_t>(text[index]);
        }
        return *this;
    }

    /// The image with the check value in its last four bytes: CRC-32 of all the others.
    std::vector<uint8_t> Finished() const
    {
        std::vector<uint8_t> bytes   = m_bytes;
        const size_t         checked = bytes.size() - 4;
        const uint32_t       crc     = ParameterBinaryFile::ComputeCRC(bytes.data(), checked);
        for (size_t byte = 0; byte < 4; ++byte)
        {
            bytes[checked + byte] = static_cast<uint8_t>(crc >> (8 * byte));
        }
        return bytes;
    }

private:
    std::vector<uint8_t> m_bytes;
};
} // namespace tuningfile_test

#endif // TESTS_TOOLS_TUNINGFILE_BYTES_H
