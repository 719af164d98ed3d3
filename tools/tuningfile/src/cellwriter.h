// Sequential little-endian writes of fields into a byte image, each field in its cell.
#ifndef TUNINGFILE_CELLWRITER_H
#define TUNINGFILE_CELLWRITER_H

#include <cstdint>
#include <string>
#include <vector>

namespace tuningfile
{
/// A single value of `width` bytes takes a cell of at least the alignment.
inline size_t CellSize(size_t width, uint32_t alignment)
{
    return (width > alignment) ? width : alignment;
}

/// A block of `size` bytes is padded up to a whole number of alignment units.
inline size_t PaddedSize(size_t size, uint32_t alignment)
{
    const size_t rest = size % alignment;
    return (rest == 0) ? size : size + (alignment - rest);
}

/// Writes at a moving position, growing the image when the position passes its end; bytes
/// between fields stay as they are (zero in a fresh image). A value of `width` bytes takes a
/// cell of the greater of `width` and the alignment; a fixed block is padded up to whole units.
class CellWriter
{
public:
    CellWriter(std::vector<uint8_t>* image, size_t position, uint32_t alignment)
        : m_image(image), m_position(position), m_alignment(alignment)
    {
    }

    void Value(uint64_t value, uint32_t width)
    {
        Reserve(CellSize(width, m_alignment));
        for (uint32_t byte = 0; byte < width; ++byte)
        {
            (*m_image)[m_position + byte] = static_cast<uint8_t>(value >> (8 * byte));
        }
        m_position += CellSize(width, m_alignment);
    }

    /// `bytes` zero-padded to `fieldSize`, which the caller has checked it fits.
    void Block(const uint8_t* bytes, size_t size, size_t fieldSize)
    {
        Reserve(PaddedSize(fieldSize, m_alignment));
        for (size_t index = 0; index < size; ++index)
        {
            (*m_image)[m_position + index] = bytes[index];
        }
        m_position += PaddedSize(fieldSize, m_alignment);
    }

    void Text(const std::string& text, size_t fieldSize)
    {
        Block(reinterpret_cast<const uint8_t*>(text.data()), text.size(), fieldSize);
    }

    void Skip(size_t bytes)
    {
        Reserve(bytes);
        m_position += bytes;
    }

    size_t Position() const { return m_position; }

private:
    void Reserve(size_t bytes)
    {
        if (m_image->size() < m_position + bytes)
        {
            m_image->resize(m_position + bytes, 0);
        }
    }

    std::vector<uint8_t>* m_image;
    size_t                m_position;
    uint32_t              m_alignment;
};
} // namespace tuningfile

#endif // TUNINGFILE_CELLWRITER_H
