#include "tuningfile/databuilder.h"

#include <cstring>
#include <new>

namespace tuningfile
{
namespace
{
/// A host-order value of 1, 2, 4 or 8 bytes, widened; the file is little-endian whatever the host.
uint64_t LoadHostValue(const uint8_t* pValue, size_t width)
{
    switch (width)
    {
        case 1:
            return *pValue;
        case 2: {
            uint16_t value;
            std::memcpy(&value, pValue, sizeof(value));
            return value;
        }
        case 4: {
            uint32_t value;
            std::memcpy(&value, pValue, sizeof(value));
            return value;
        }
        default: {
            uint64_t value;
            std::memcpy(&value, pValue, sizeof(value));
            return value;
        }
    }
}

template <typename Bits, typename Float>
Bits BitsOf(Float value)
{
    static_assert(sizeof(Bits) == sizeof(Float), "same width");
    Bits bits;
    std::memcpy(&bits, &value, sizeof(bits));
    return bits;
}
} // namespace

DataBuilder& DataBuilder::U8(uint8_t value) noexcept
{
    return AppendScalar(1, value);
}
DataBuilder& DataBuilder::U16(uint16_t value) noexcept
{
    return AppendScalar(2, value);
}
DataBuilder& DataBuilder::U32(uint32_t value) noexcept
{
    return AppendScalar(4, value);
}
DataBuilder& DataBuilder::U64(uint64_t value) noexcept
{
    return AppendScalar(8, value);
}
DataBuilder& DataBuilder::I8(int8_t value) noexcept
{
    return AppendScalar(1, static_cast<uint8_t>(value));
}
DataBuilder& DataBuilder::I16(int16_t value) noexcept
{
    return AppendScalar(2, static_cast<uint16_t>(value));
}
DataBuilder& DataBuilder::I32(int32_t value) noexcept
{
    return AppendScalar(4, static_cast<uint32_t>(value));
}
DataBuilder& DataBuilder::I64(int64_t value) noexcept
{
    return AppendScalar(8, static_cast<uint64_t>(value));
}
DataBuilder& DataBuilder::F32(float value) noexcept
{
    return AppendScalar(4, BitsOf<uint32_t>(value));
}
DataBuilder& DataBuilder::F64(double value) noexcept
{
    return AppendScalar(8, BitsOf<uint64_t>(value));
}
DataBuilder& DataBuilder::Enum(uint32_t value) noexcept
{
    return AppendScalar(4, value);
}

DataBuilder& DataBuilder::Record(const DataBuilder& members) noexcept
{
    m_outOfMemory = m_outOfMemory || members.m_outOfMemory;
    try
    {
        m_items.insert(m_items.end(), members.m_items.begin(), members.m_items.end());
    }
    catch (const std::exception&)
    {
        m_outOfMemory = true;
    }
    return *this;
}

DataBuilder& DataBuilder::String(std::string_view text) noexcept
{
    // The block keeps a terminator: an empty string then still has bytes, and the reader,
    // which counts the characters up to a zero byte or the length, reads the same text.
    DataBuilder characters;
    try
    {
        std::vector<uint8_t> terminated(text.begin(), text.end());
        terminated.push_back(0);
        characters.AppendArray(terminated.data(), terminated.size(), 1);
    }
    catch (const std::exception&)
    {
        characters.m_outOfMemory = true;
    }
    return AppendPointer(PointerKind::String, text.size(), characters);
}

DataBuilder& DataBuilder::Repeated(const std::vector<DataBuilder>& elements) noexcept
{
    DataBuilder block;
    for (const DataBuilder& element : elements)
    {
        block.Record(element);
    }
    return AppendPointer(PointerKind::Repeated, elements.size(), block);
}

DataBuilder& DataBuilder::Optional(const DataBuilder& value) noexcept
{
    return AppendPointer(PointerKind::Optional, 1, value);
}

DataBuilder& DataBuilder::OptionalAbsent() noexcept
{
    return AppendPointer(PointerKind::Optional, 0, DataBuilder());
}

DataBuilder& DataBuilder::AppendScalar(uint8_t width, uint64_t value) noexcept
{
    try
    {
        Item item;
        item.kind  = Item::Kind::Scalar;
        item.width = width;
        item.value = value;
        m_items.push_back(std::move(item));
    }
    catch (const std::exception&)
    {
        m_outOfMemory = true;
    }
    return *this;
}

DataBuilder& DataBuilder::AppendArray(const uint8_t* hostValues, size_t count, size_t width) noexcept
{
    try
    {
        Item item;
        item.kind = Item::Kind::Array;
        item.bytes.reserve(count * width);
        for (size_t index = 0; index < count; ++index)
        {
            const uint64_t value = LoadHostValue(hostValues + index * width, width);
            for (size_t byte = 0; byte < width; ++byte)
            {
                item.bytes.push_back(static_cast<uint8_t>(value >> (8 * byte)));
            }
        }
        m_items.push_back(std::move(item));
    }
    catch (const std::exception&)
    {
        m_outOfMemory = true;
    }
    return *this;
}

DataBuilder& DataBuilder::AppendPointer(PointerKind kind, uint64_t head, const DataBuilder& target) noexcept
{
    m_outOfMemory = m_outOfMemory || target.m_outOfMemory;
    try
    {
        Item item;
        item.kind    = Item::Kind::Pointer;
        item.value   = head;
        item.pointer = kind;
        item.target  = std::make_shared<const DataBuilder>(target);
        m_items.push_back(std::move(item));
    }
    catch (const std::exception&)
    {
        m_outOfMemory = true;
    }
    return *this;
}
} // namespace tuningfile
