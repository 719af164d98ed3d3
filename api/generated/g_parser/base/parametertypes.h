// The parameter store's primitive types: file-format versions, mode identifiers and selectors,
// the store's growing list, and the bookkeeping of a shared object.
#ifndef PARAMETERTYPES_H
#define PARAMETERTYPES_H

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <type_traits>

#include "pdlibvark_export.h"

// The unions below read their parts out of the whole by layout: fields low bits first, as the
// little-endian files store them.
static_assert(__BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__, "the store's unions assume a little-endian host");

/// A 64-bit file-format or module version, readable whole or as major.minor.patch.
union PDLIBVARK_API VersionUnion {
    struct
    {
        uint16_t major;
        uint16_t minor;
        uint32_t patch;
    };
    uint64_t value;

    VersionUnion();
    VersionUnion(unsigned long raw);
    VersionUnion(unsigned short majorPart, unsigned short minorPart, unsigned int patchPart);

    /// 1, -1 or 0: field by field, major first, each unsigned; never as one number.
    int Compare(VersionUnion const& other) const;

    bool operator==(VersionUnion const& other) const { return 0 == Compare(other); }
    bool operator!=(VersionUnion const& other) const { return 0 != Compare(other); }
    bool operator>(VersionUnion const& other) const { return Compare(other) > 0; }
    bool operator>=(VersionUnion const& other) const { return Compare(other) >= 0; }
    bool operator<(VersionUnion const& other) const { return Compare(other) < 0; }
    bool operator<=(VersionUnion const& other) const { return Compare(other) <= 0; }
};
static_assert(sizeof(VersionUnion) == 8, "VersionUnion is stored as 8 bytes");

/// A node name of the mode tree: mode number and sub-mode number, 32 spare bits carried along.
union PDLIBVARK_API ModeUnion {
    struct
    {
        uint16_t mode;
        uint16_t subMode;
        uint32_t spare;
    };
    uint64_t value;

    ModeUnion();
    ModeUnion(unsigned long raw);
    ModeUnion(unsigned short modePart, unsigned short subModePart);
};
static_assert(sizeof(ModeUnion) == 8, "ModeUnion is stored as 8 bytes");

/// One element of a mode branch: the request for sub-mode `subMode` of mode number `mode`.
struct PDLIBVARK_API TuningMode
{
    uint32_t mode    = 0; ///< matched against a ModeEntry by its low 16 bits, grouped by all 32
    uint16_t subMode = 0;
    uint16_t spare   = 0;
};

/// The store's own growable array. Elements are moved as bytes (realloc, memmove), so T must
/// be trivially copyable. Failures are silent: callers that care look at `count`.
template <typename T>
struct PDLIBVARK_API PList
{
    static_assert(std::is_trivially_copyable<T>::value, "PList moves its elements as bytes");

    T*       items    = nullptr;
    uint32_t count    = 0;
    uint32_t capacity = 0;
    uint32_t growBy   = 1;

    explicit PList(uint32_t growStep = 1) : growBy(growStep) {}

    // Frees its block at end of life so that no owner can leak it; a list is therefore not
    // copied, only moved.
    ~PList() { Clear(); }
    PList(PList const&)            = delete;
    PList& operator=(PList const&) = delete;
    PList(PList&& other) noexcept { TakeFrom(other); }
    PList& operator=(PList&& other) noexcept
    {
        if (this != &other)
        {
            Clear();
            TakeFrom(other);
        }
        return *this;
    }

    /// Inserts at `index`, moving later elements up. `index` is not checked against `count`:
    /// append is Insert(count, value), the only way the list grows at its end.
    void Insert(unsigned int index, T value)
    {
        if (count >= capacity)
        {
            capacity += growBy;
            void* grown = realloc(items, sizeof(T) * capacity);
            if (nullptr == grown)
            {
                // Nothing inserted. Safe variant: the capacity goes back down, since a raised one
                // over the old block would let the next insert write past it.
                capacity -= growBy;
                return;
            }
            items = static_cast<T*>(grown);
            memset(static_cast<void*>(items + capacity - growBy), 0, sizeof(T) * growBy);
        }
        else if (nullptr == items)
        {
            return;
        }
        if (index >= capacity)
        {
            return; // safe variant: an unchecked index past the block would write outside it
        }
        if (index < count)
        {
            memmove(static_cast<void*>(items + index + 1), items + index, sizeof(T) * (count - index));
        }
        memcpy(static_cast<void*>(items + index), &value, sizeof(T));
        ++count;
    }

    /// The element at `index`; a bad index yields the one shared dummy of this element type,
    /// which every later bad read sees, writes included.
    T& operator[](unsigned int index) const
    {
        static T dummy{};
        return (index < count) ? items[index] : dummy;
    }

    /// Drops the front element, moving the rest down.
    void RemoveFront() { RemoveAt(0); }

    /// Drops the element at `index`, moving later elements down; a bad index changes nothing.
    void RemoveAt(unsigned int index)
    {
        if (index >= count)
        {
            return;
        }
        --count;
        memmove(static_cast<void*>(items + index), items + index + 1, sizeof(T) * (count - index));
    }

    /// Frees the block; growBy survives.
    void Clear()
    {
        free(items);
        items    = nullptr;
        count    = 0;
        capacity = 0;
    }

private:
    void TakeFrom(PList& other)
    {
        items          = other.items;
        count          = other.count;
        capacity       = other.capacity;
        growBy         = other.growBy;
        other.items    = nullptr;
        other.count    = 0;
        other.capacity = 0;
    }
};

/// Bookkeeping of one object shared by several holders (the dup-object service of a symbol
/// table). The call site (file, line) and the element count form the key.
struct DupObjInfo
{
    void*       object   = nullptr;
    uint32_t    count    = 0;
    char const* file     = nullptr; ///< not owned; normally a string constant
    uint32_t    line     = 0;
    uint32_t    refCount = 0;

    DupObjInfo(unsigned int elementCount, char const* callFile, unsigned int callLine);

    /// Drops one holder. True when the caller held the last reference and may free the object
    /// (which is then cleared here); a null record is true. The record itself stays alive.
    static bool Release(DupObjInfo* info);
};

#endif // PARAMETERTYPES_H
