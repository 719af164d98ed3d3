// Encoder of one record's members, in load order, into the bytes of a tuning-file entry.
#ifndef TUNINGFILE_DATABUILDER_H
#define TUNINGFILE_DATABUILDER_H

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>
#include <type_traits>
#include <vector>

namespace tuningfile
{
/// Collects the members of one record in the order in which the generated `Load` reads them.
/// Nothing is laid out here: the writer encodes the items with the file's alignment, so one
/// builder serves every format version. Members that the format keeps behind a pointer entry
/// (strings, repeated and optional members) carry the builder of the pointed-to block; the
/// writer gives each its own entry and finds identical blocks itself.
///
/// Calls never throw. A builder that ran out of memory remembers it, and `Write` refuses it.
class DataBuilder
{
public:
    /// How a pointer entry is used; it names the member in error texts.
    enum class PointerKind
    {
        String,
        Repeated,
        Optional,
    };

    /// One encoded member as the writer sees it.
    struct Item
    {
        enum class Kind
        {
            Scalar,  ///< `width` bytes of `value`, in a cell of at least the alignment
            Array,   ///< `bytes`, padded up to a whole number of alignment units
            Pointer, ///< `value` (length, count or present flag), then the entry id of `target`
        };
        Kind                               kind  = Kind::Scalar;
        uint8_t                            width = 0;
        uint64_t                           value = 0;
        std::vector<uint8_t>               bytes;
        PointerKind                        pointer = PointerKind::String;
        std::shared_ptr<const DataBuilder> target;
    };

    DataBuilder& U8(uint8_t value) noexcept;
    DataBuilder& U16(uint16_t value) noexcept;
    DataBuilder& U32(uint32_t value) noexcept;
    DataBuilder& U64(uint64_t value) noexcept;
    DataBuilder& I8(int8_t value) noexcept;
    DataBuilder& I16(int16_t value) noexcept;
    DataBuilder& I32(int32_t value) noexcept;
    DataBuilder& I64(int64_t value) noexcept;
    DataBuilder& F32(float value) noexcept;
    DataBuilder& F64(double value) noexcept;

    /// An enum takes a 4-byte cell. A fixed enum array is that many `Enum` calls: the reader
    /// reads its elements one by one, each in its own cell.
    DataBuilder& Enum(uint32_t value) noexcept;

    /// A fixed scalar array: the values packed, the whole padded up to the alignment.
    template <typename T>
    DataBuilder& FixedArray(const std::vector<T>& values) noexcept
    {
        static_assert(std::is_arithmetic<T>::value && !std::is_same<T, bool>::value &&
                          (sizeof(T) == 1 || sizeof(T) == 2 || sizeof(T) == 4 || sizeof(T) == 8),
                      "a fixed array holds scalars of 1, 2, 4 or 8 bytes");
        return AppendArray(reinterpret_cast<const uint8_t*>(values.data()), values.size(), sizeof(T));
    }

    /// A nested record, or one element of a fixed record array: its members in line.
    DataBuilder& Record(const DataBuilder& members) noexcept;

    /// A string: its length, then a pointer entry that holds the characters.
    DataBuilder& String(std::string_view text) noexcept;

    /// A repeated record, enum or string member: the count, then a pointer entry that holds
    /// the elements one after another, each encoded as a member of its own.
    DataBuilder& Repeated(const std::vector<DataBuilder>& elements) noexcept;

    /// A repeated scalar member: the count, then a pointer entry that holds the values packed,
    /// as one fixed array (the reader takes them in a single block read).
    template <typename T>
    DataBuilder& Repeated(const std::vector<T>& values) noexcept
    {
        DataBuilder elements;
        elements.FixedArray(values);
        return AppendPointer(PointerKind::Repeated, values.size(), elements);
    }

    /// An optional member that is present: flag 1, then a pointer entry that holds the value.
    DataBuilder& Optional(const DataBuilder& value) noexcept;

    /// An optional member that is absent: flag 0, and a pointer entry all the same, empty,
    /// because the reader looks the entry up before it tests the flag.
    DataBuilder& OptionalAbsent() noexcept;

    const std::vector<Item>& Items() const { return m_items; }

    /// True when an append failed for lack of memory, here or in a builder taken in.
    bool OutOfMemory() const { return m_outOfMemory; }

private:
    DataBuilder& AppendScalar(uint8_t width, uint64_t value) noexcept;
    DataBuilder& AppendArray(const uint8_t* hostValues, size_t count, size_t width) noexcept;
    DataBuilder& AppendPointer(PointerKind kind, uint64_t head, const DataBuilder& target) noexcept;

    std::vector<Item> m_items;
    bool              m_outOfMemory = false;
};
} // namespace tuningfile

#endif // TUNINGFILE_DATABUILDER_H
