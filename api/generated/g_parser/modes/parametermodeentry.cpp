#include "parametermodeentry.h"

#include <cstring>

namespace
{
// Writes `value` in decimal without a terminator; returns the characters written (at most 5).
size_t FormatDecimal(uint16_t value, char* out)
{
    char   reversed[5];
    size_t count = 0;
    do
    {
        reversed[count++] = static_cast<char>('0' + value % 10);
        value             = static_cast<uint16_t>(value / 10);
    } while (0 != value);
    for (size_t index = 0; index < count; ++index)
    {
        out[index] = reversed[count - 1 - index];
    }
    return count;
}

// An element equal to an earlier one finds the same child and so the same descent; trying it
// again cannot change the answer but would make a long group of repeats exponential.
bool RepeatsEarlierSelector(TuningMode const* branch, unsigned int index)
{
    for (unsigned int earlier = 0; earlier < index; ++earlier)
    {
        if (((branch[earlier].mode & 0xFFFFu) == (branch[index].mode & 0xFFFFu)) &&
            (branch[earlier].subMode == branch[index].subMode))
        {
            return true;
        }
    }
    return false;
}
} // namespace

ModeEntry::ModeEntry(bool loaded, bool pinned) : m_loaded(loaded), m_pinned(pinned) {}

ModeEntry::~ModeEntry()
{
    // The children and later siblings are deleted one by one rather than recursively, so that
    // a file with a very deep or very wide tree cannot run the stack out. The node's children
    // are put in front of its siblings, which visits the same nodes as the recursion would.
    ModeEntry* pending = m_nextSibling;
    if (nullptr != m_firstChild)
    {
        m_lastChild->m_nextSibling = m_nextSibling;
        pending                    = m_firstChild;
    }
    m_firstChild  = nullptr;
    m_lastChild   = nullptr;
    m_nextSibling = nullptr;
    while (nullptr != pending)
    {
        ModeEntry* node = pending;
        pending         = node->m_nextSibling;
        if (nullptr != node->m_firstChild)
        {
            node->m_lastChild->m_nextSibling = pending;
            pending                          = node->m_firstChild;
        }
        node->m_firstChild  = nullptr;
        node->m_lastChild   = nullptr;
        node->m_nextSibling = nullptr;
        delete node;
    }
}

void ModeEntry::Initialize(unsigned int id, ModeUnion const& mode, ModeEntry** link)
{
    m_id   = id;
    m_mode = mode;
    m_link = link;
}

void ModeEntry::Initialize(unsigned int id, unsigned short mode, unsigned short subMode, ModeEntry** link)
{
    Initialize(id, ModeUnion(mode, subMode), link);
}

void ModeEntry::AddMode(ModeEntry* child)
{
    if (nullptr == child)
    {
        return;
    }
    child->m_parent = this;
    if (nullptr == m_lastChild)
    {
        m_firstChild = child;
    }
    else
    {
        m_lastChild->m_nextSibling = child;
    }
    m_lastChild = child;
}

ModeEntry* ModeEntry::ResolveLink()
{
    // Two walkers over the chain, one twice as fast: they meet only if the chain loops.
    ModeEntry* slow = this;
    ModeEntry* fast = this;
    while (nullptr != fast->m_link)
    {
        fast = *fast->m_link;
        if ((nullptr == fast) || (nullptr == fast->m_link))
        {
            return fast;
        }
        fast = *fast->m_link;
        if (nullptr == fast)
        {
            return nullptr;
        }
        slow = *slow->m_link;
        if (slow == fast)
        {
            return nullptr;
        }
    }
    return fast;
}

ModeEntry* ModeEntry::FindMode(TuningMode const* mode)
{
    ModeEntry* node = ResolveLink();
    if ((nullptr == node) || (nullptr == mode))
    {
        return nullptr;
    }
    for (ModeEntry* child = node->m_firstChild; nullptr != child; child = child->m_nextSibling)
    {
        if ((child->m_mode.mode == (mode->mode & 0xFFFFu)) && (child->m_mode.subMode == mode->subMode))
        {
            return child;
        }
    }
    return nullptr;
}

ModeEntry* ModeEntry::FindMode(TuningMode const* branch, unsigned int count, unsigned int depth)
{
    ModeEntry* node = ResolveLink();
    if ((nullptr == node) || (nullptr == branch) || (0 == count))
    {
        return nullptr;
    }
    for (unsigned int index = 0; index < count; ++index)
    {
        if (RepeatsEarlierSelector(branch, index))
        {
            continue;
        }
        ModeEntry* hit = node->FindMode(&branch[index]);
        if (nullptr == hit)
        {
            continue;
        }
        if (depth + 1 >= count)
        {
            return hit;
        }
        ModeEntry* deeper = hit->FindMode(branch, count, depth + 1);
        if (nullptr != deeper)
        {
            return deeper;
        }
    }
    return nullptr;
}

void ModeEntry::GetModePath(char* out, unsigned int size) const
{
    if ((nullptr == out) || (0 == size))
    {
        return;
    }
    // Printed from the root down without recursion, as a file may nest modes deeper than the
    // stack allows. Once the text is full no later element can change it, so the walk stops.
    unsigned int depth = 0;
    for (ModeEntry const* node = this; nullptr != node; node = node->m_parent)
    {
        ++depth;
    }
    size_t length = strlen(out);
    for (unsigned int level = 0; (level < depth) && (length + 1 < size); ++level)
    {
        ModeEntry const* node = this;
        for (unsigned int up = depth - 1 - level; up > 0; --up)
        {
            node = node->m_parent;
        }
        // "|" behind a non-empty text, then "mode.subMode", as far as it fits.
        char   element[16];
        size_t used = 0;
        if (0 != length)
        {
            element[used++] = '|';
        }
        used += FormatDecimal(node->m_mode.mode, element + used);
        element[used++] = '.';
        used += FormatDecimal(node->m_mode.subMode, element + used);
        size_t copied = (used < size - 1 - length) ? used : size - 1 - length;
        memcpy(out + length, element, copied);
        length += copied;
        out[length] = '\0';
    }
}

bool ModeEntry::IsParent(ModeEntry const* mode) const
{
    for (ModeEntry const* node = m_parent; nullptr != node; node = node->m_parent)
    {
        if (node == mode)
        {
            return true;
        }
    }
    return false;
}
