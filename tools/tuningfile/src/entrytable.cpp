#include "entrytable.h"

#include <algorithm>
#include <limits>
#include <map>

#include "cellwriter.h"
#include "typename.h"

namespace tuningfile
{
namespace
{
constexpr uint64_t Max32 = std::numeric_limits<uint32_t>::max();

const char* KindName(DataBuilder::PointerKind kind)
{
    switch (kind)
    {
        case DataBuilder::PointerKind::String:
            return "String";
        case DataBuilder::PointerKind::Repeated:
            return "Repeated";
        default:
            return "Optional";
    }
}

/// What the reader could not take from a pointer item: a head wider than its 4-byte field, or
/// a string that the reader would cut at a zero byte.
std::string PointerProblem(const DataBuilder::Item& item)
{
    if (item.value > Max32)
    {
        return "its " + std::string(KindName(item.pointer)) + " head " + std::to_string(item.value) +
               " does not fit the 4-byte field";
    }
    if (item.pointer == DataBuilder::PointerKind::String)
    {
        const std::vector<uint8_t>& characters = item.target->Items().front().bytes;
        const auto                  zero       = std::find(characters.begin(), characters.end(), 0);
        if (static_cast<uint64_t>(zero - characters.begin()) < item.value)
        {
            return "the text holds a zero byte at " + std::to_string(zero - characters.begin()) +
                   ", where the reader would end it";
        }
    }
    return std::string();
}

void AppendValue(std::string* key, uint64_t value, uint32_t width)
{
    for (uint32_t byte = 0; byte < width; ++byte)
    {
        key->push_back(static_cast<char>(value >> (8 * byte)));
    }
}
} // namespace

bool EntryTable::Build(const TuningFileModel& model, std::string* error)
{
    if (!Collect(model, error))
    {
        return false;
    }
    AssignIds();
    GroupDuplicates();
    return PlaceData(error);
}

size_t EntryTable::SymbolCount() const
{
    return m_format.HasDataTable() ? m_moduleCount : m_entries.size();
}

size_t EntryTable::DataTableCount() const
{
    return m_format.HasDataTable() ? m_entries.size() - m_moduleCount : 0;
}

bool EntryTable::Collect(const TuningFileModel& model, std::string* error)
{
    for (size_t index = 0; index < model.modules.size(); ++index)
    {
        const Module& module = model.modules[index];
        Entry         entry;
        entry.data   = &module.data;
        entry.module = &module;
        entry.type   = ShortTypeName(module.name);
        entry.where  = "modules[" + std::to_string(index) + "] ('" + module.name + "')";
        m_entries.push_back(std::move(entry));
    }
    m_moduleCount = m_entries.size();

    // Breadth first: a target always comes after the entry that points to it.
    for (size_t index = 0; index < m_entries.size(); ++index)
    {
        if (m_entries[index].data->OutOfMemory())
        {
            *error = m_entries[index].where + ": its data ran out of memory while it was built";
            return false;
        }
        const std::vector<DataBuilder::Item>& items = m_entries[index].data->Items();
        for (size_t item = 0; item < items.size(); ++item)
        {
            if (items[item].kind != DataBuilder::Item::Kind::Pointer)
            {
                continue;
            }
            Entry target;
            target.data = items[item].target.get();
            target.where =
                m_entries[index].where + ", item " + std::to_string(item) + " (" + KindName(items[item].pointer) + ")";
            const std::string problem = PointerProblem(items[item]);
            if (!problem.empty())
            {
                *error = target.where + ": " + problem;
                return false;
            }
            m_entries[index].targets.push_back(m_entries.size());
            m_entries.push_back(std::move(target));
        }
    }
    return true;
}

void EntryTable::AssignIds()
{
    const size_t firstBlockId = m_format.HasDataTable() ? 1 : m_moduleCount + 1;
    for (size_t index = 0; index < m_entries.size(); ++index)
    {
        const size_t id     = (index < m_moduleCount) ? index + 1 : firstBlockId + (index - m_moduleCount);
        m_entries[index].id = static_cast<uint32_t>(id);
    }
}

void EntryTable::GroupDuplicates()
{
    std::map<std::string, uint32_t> groupOfContent;
    std::vector<uint32_t>           groupOfEntry(m_entries.size(), 0);
    std::vector<uint32_t>           firstIdOfGroup;

    // Targets first, so that a pointer's content is known by its target's group. Within one
    // kind ids rise with the index, so the last member met is the group's first id.
    for (size_t index = m_entries.size(); index-- > 0;)
    {
        const Entry&          entry = m_entries[index];
        std::vector<uint32_t> targetGroups;
        for (size_t target : entry.targets)
        {
            targetGroups.push_back(groupOfEntry[target]);
        }
        // Module entries group only with modules of the same type and version: the reader
        // hands the group's first instance to every member.
        std::string content(1, (nullptr != entry.module) ? 'M' : 'B');
        if (nullptr != entry.module)
        {
            content += entry.type;
            content.push_back('\0');
            AppendValue(&content, entry.module->version.Raw(), 8);
        }
        const std::vector<uint8_t> bytes = Encode(entry, targetGroups);
        content.append(bytes.begin(), bytes.end());

        const auto found = groupOfContent.emplace(content, static_cast<uint32_t>(firstIdOfGroup.size()));
        if (found.second)
        {
            firstIdOfGroup.push_back(entry.id);
        }
        else
        {
            firstIdOfGroup[found.first->second] = entry.id;
        }
        groupOfEntry[index] = found.first->second;
    }
    for (size_t index = 0; index < m_entries.size(); ++index)
    {
        m_entries[index].duplicateId = firstIdOfGroup[groupOfEntry[index]];
    }
}

bool EntryTable::PlaceData(std::string* error)
{
    std::map<std::vector<uint8_t>, uint32_t> placed;
    for (Entry& entry : m_entries)
    {
        std::vector<uint32_t> targetIds;
        for (size_t target : entry.targets)
        {
            targetIds.push_back(m_entries[target].id);
        }
        std::vector<uint8_t> bytes = Encode(entry, targetIds);
        auto                 found = placed.find(bytes);
        if (found == placed.end())
        {
            if (m_dataSection.size() + bytes.size() > Max32)
            {
                *error = entry.where + ": the data section passes 4 GiB, beyond the format's 32-bit offsets";
                return false;
            }
            const uint32_t offset = static_cast<uint32_t>(m_dataSection.size());
            m_dataSection.insert(m_dataSection.end(), bytes.begin(), bytes.end());
            found = placed.emplace(std::move(bytes), offset).first;
        }
        entry.dataOffset = found->second;
        entry.dataSize   = static_cast<uint32_t>(found->first.size());
    }
    return true;
}

std::vector<uint8_t> EntryTable::Encode(const Entry& entry, const std::vector<uint32_t>& pointerValues) const
{
    std::vector<uint8_t> bytes;
    CellWriter           writer(&bytes, 0, m_format.Alignment());
    size_t               pointer = 0;
    for (const DataBuilder::Item& item : entry.data->Items())
    {
        switch (item.kind)
        {
            case DataBuilder::Item::Kind::Scalar:
                writer.Value(item.value, item.width);
                break;
            case DataBuilder::Item::Kind::Array:
                writer.Block(item.bytes.data(), item.bytes.size(), item.bytes.size());
                break;
            case DataBuilder::Item::Kind::Pointer:
                writer.Value(item.value, 4);
                writer.Value(pointerValues[pointer++], 4);
                break;
        }
    }
    return bytes;
}
} // namespace tuningfile
