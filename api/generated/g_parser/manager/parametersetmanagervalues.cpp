// Control and trigger values: two twin lists of numbered values that the host sets and the
// live tuning link reports. Each operation exists once here, for either list, under the one
// value lock; the store itself never reads them.
#include <cstring>

#include "parametersetmanager.h"

namespace
{
// Characters of one printed item, and of one piece of a list's text form.
constexpr unsigned int ItemTextSize  = 128;
constexpr unsigned int PieceTextSize = 64;

bool PrintList(PList<ParameterCTValue>& list, ParameterMutex& lock, char* out, unsigned int size)
{
    ParameterMutexLock guard(&lock, false, true);
    if ((nullptr == out) || (0 == size) || (0 == list.count))
    {
        return false;
    }
    out[0]            = '\0';
    unsigned int used = 0;
    for (uint32_t index = 0; index < list.count; ++index)
    {
        char item[ItemTextSize];
        if (!list[index].ToString(item, sizeof(item), true))
        {
            continue;
        }
        unsigned int length = static_cast<unsigned int>(strlen(item));
        // Room for a separator is kept even for the first item.
        if (used + 1 + length >= size)
        {
            return false; // what fitted stays
        }
        // Required: the separator goes by list index, so a list whose first entry is not valid
        // prints a leading comma; the receiving tool expects it.
        if (0 != index)
        {
            out[used++] = ',';
        }
        memcpy(out + used, item, length + 1);
        used += length;
    }
    return true;
}

void CopyList(PList<ParameterCTValue>& list, ParameterMutex& lock, PList<ParameterCTValue>& out)
{
    out.Clear(); // the caller's list, emptied before the lock is taken
    ParameterMutexLock guard(&lock, false, true);
    for (uint32_t index = 0; index < list.count; ++index)
    {
        out.Insert(out.count, list[index]); // an entry for which `out` cannot grow is dropped
    }
}

bool FindValue(PList<ParameterCTValue>& list, ParameterMutex& lock, unsigned int id, ParameterCTValue& out)
{
    ParameterMutexLock guard(&lock, false, true);
    for (uint32_t index = 0; index < list.count; ++index)
    {
        if (list[index].ID == id)
        {
            out = list[index];
            return true;
        }
    }
    return false;
}

void StoreValue(PList<ParameterCTValue>& list, ParameterMutex& lock, ParameterCTValue const& value)
{
    ParameterMutexLock guard(&lock, false, true);
    uint32_t           index = 0;
    for (; index < list.count; ++index)
    {
        if (list[index].ID == value.ID)
        {
            list[index] = value; // overwritten whole, validity and form included
            return;
        }
        if (list[index].ID > value.ID)
        {
            break;
        }
    }
    list.Insert(index, value); // a list that cannot grow drops the value
}

void StoreValues(PList<ParameterCTValue>& list, ParameterMutex& lock, ParameterCTValue const* values,
                 unsigned int count)
{
    ParameterMutexLock guard(&lock, false, true);
    if ((nullptr != values) && (values == list.items))
    {
        return; // the list itself: already sorted and unique, and clearing it would lose it
    }
    list.Clear();
    for (unsigned int index = 0; (nullptr != values) && (index < count); ++index)
    {
        StoreValue(list, lock, values[index]);
    }
}

void StoreText(PList<ParameterCTValue>& list, ParameterMutex& lock, char const* text)
{
    ParameterMutexLock guard(&lock, false, true);
    list.Clear();
    size_t length = (nullptr == text) ? 0u : strlen(text);
    // One value for all pieces: a piece that does not parse stores an invalid copy of the piece
    // before it (of a default value for the first), as the tool has always seen.
    ParameterCTValue value;
    for (size_t pos = 0; pos < length;)
    {
        char     piece[PieceTextSize];
        uint32_t used = ParameterUtils::GetSubString(text + pos, ',', piece, sizeof(piece));
        value.FromString(piece);
        StoreValue(list, lock, value);
        pos += used + 1; // a piece cut short loses the character behind the cut
    }
}
} // namespace

bool ParameterSetManager::GetControlValues(char* out, unsigned int size)
{
    return PrintList(m_controlValues, m_valueLock, out, size);
}

void ParameterSetManager::GetControlValues(PList<ParameterCTValue>& out)
{
    CopyList(m_controlValues, m_valueLock, out);
}

bool ParameterSetManager::GetControlValue(unsigned int id, ParameterCTValue& out)
{
    return FindValue(m_controlValues, m_valueLock, id, out);
}

void ParameterSetManager::SetControlValue(ParameterCTValue const& value)
{
    StoreValue(m_controlValues, m_valueLock, value);
}

void ParameterSetManager::SetControlValues(ParameterCTValue const* values, unsigned int count)
{
    StoreValues(m_controlValues, m_valueLock, values, count);
}

void ParameterSetManager::SetControlValues(PList<ParameterCTValue> const& values)
{
    StoreValues(m_controlValues, m_valueLock, values.items, values.count);
}

void ParameterSetManager::SetControlValues(char const* text)
{
    StoreText(m_controlValues, m_valueLock, text);
}

bool ParameterSetManager::GetTriggerValues(char* out, unsigned int size)
{
    return PrintList(m_triggerValues, m_valueLock, out, size);
}

void ParameterSetManager::GetTriggerValues(PList<ParameterCTValue>& out)
{
    CopyList(m_triggerValues, m_valueLock, out);
}

bool ParameterSetManager::GetTriggerValue(unsigned int id, ParameterCTValue& out)
{
    return FindValue(m_triggerValues, m_valueLock, id, out);
}

void ParameterSetManager::SetTriggerValue(ParameterCTValue const& value)
{
    StoreValue(m_triggerValues, m_valueLock, value);
}

void ParameterSetManager::SetTriggerValues(ParameterCTValue const* values, unsigned int count)
{
    StoreValues(m_triggerValues, m_valueLock, values, count);
}

void ParameterSetManager::SetTriggerValues(PList<ParameterCTValue> const& values)
{
    StoreValues(m_triggerValues, m_valueLock, values.items, values.count);
}

void ParameterSetManager::SetTriggerValues(char const* text)
{
    StoreText(m_triggerValues, m_valueLock, text);
}
