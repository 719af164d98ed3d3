#include "recordorder.h"

#include <map>
#include <set>

namespace modulegen
{
namespace
{
/// The record of the scope (whose records have `scopeOwner` as owner) that holds `type`, or
/// null when `type` lies outside the scope.
const Record* InScope(const Record* type, const Record* scopeOwner, const Schema* scopeSchema)
{
    for (const Record* level = type; level != nullptr; level = level->owner)
    {
        if ((level->owner == scopeOwner) && (level->schema == scopeSchema))
        {
            return level;
        }
    }
    return nullptr;
}

void CollectNeeds(const Record& record, const Record* scopeOwner, const Schema* scopeSchema,
                  std::set<const Record*>* needs)
{
    for (const Member& member : record.members)
    {
        if (const Record* needed =
                (nullptr == member.record) ? nullptr : InScope(member.record, scopeOwner, scopeSchema))
        {
            needs->insert(needed);
        }
    }
    for (const auto& nested : record.records)
    {
        CollectNeeds(*nested, scopeOwner, scopeSchema, needs);
    }
}
} // namespace

std::vector<const Record*> DeclarationOrder(const std::vector<std::unique_ptr<Record>>& records)
{
    if (records.empty())
    {
        return {};
    }
    const Record*                                    scopeOwner  = records.front()->owner;
    const Schema*                                    scopeSchema = records.front()->schema;
    std::map<const Record*, std::set<const Record*>> needs;
    for (const auto& record : records)
    {
        CollectNeeds(*record, scopeOwner, scopeSchema, &needs[record.get()]);
        needs[record.get()].erase(record.get());
    }

    // Repeatedly take the first record, in schema order, whose needs are all declared.
    std::vector<const Record*> order;
    std::set<const Record*>    declared;
    while (order.size() < records.size())
    {
        size_t before = order.size();
        for (const auto& record : records)
        {
            if (declared.count(record.get()) != 0)
            {
                continue;
            }
            bool ready = true;
            for (const Record* needed : needs[record.get()])
            {
                ready = ready && (declared.count(needed) != 0);
            }
            if (ready)
            {
                order.push_back(record.get());
                declared.insert(record.get());
                break;
            }
        }
        if (order.size() == before)
        {
            break; // a cycle, which the checker refuses before any emitting
        }
    }
    return order;
}
} // namespace modulegen
