#include "parameterdefaultmodule.h"

#include "parametermodule.h"

ModuleLink::~ModuleLink()
{
    delete module;
    // The rest of the chain goes link by link rather than recursively, so that a type with very
    // many instances cannot run the stack out.
    ModuleLink* rest = next;
    next             = nullptr;
    while (nullptr != rest)
    {
        ModuleLink* link = rest;
        rest             = link->next;
        link->next       = nullptr;
        delete link;
    }
}

DefaultModule::DefaultModule(ParameterModule* defaultInstance) : m_defaultInstance(defaultInstance) {}

DefaultModule::~DefaultModule()
{
    delete m_head;
    delete m_defaultInstance;
}

void DefaultModule::AddModule(ParameterModule* module)
{
    if (nullptr == module)
    {
        return;
    }
    ModuleLink* link = new ModuleLink(module);
    if (nullptr == module->Data)
    {
        m_firstWithoutData = (nullptr == m_firstWithoutData) ? link : m_firstWithoutData;
    }
    else
    {
        m_firstWithId.emplace(module->Data->ID, link); // an earlier link of the ID stays first
    }
    if (nullptr == m_head)
    {
        m_head = link;
    }
    else
    {
        m_tail->next = link;
    }
    m_tail = link;
}

bool DefaultModule::RemoveModule(ParameterModule const* module)
{
    ModuleLink* previous = nullptr;
    for (ModuleLink* link = m_head; nullptr != link; previous = link, link = link->next)
    {
        if (link->module != module)
        {
            continue;
        }
        Unindex(link);
        if (nullptr == previous)
        {
            m_head = link->next;
        }
        else
        {
            previous->next = link->next;
        }
        // Safe variant: the tail follows the removal of the last link. A tail left on the
        // destroyed link would make the next AddModule write through it.
        if (m_tail == link)
        {
            m_tail = previous;
        }
        link->module = nullptr;
        link->next   = nullptr;
        delete link;
        return true;
    }
    return false;
}

ParameterModule* DefaultModule::Find(unsigned int id) const
{
    if (nullptr != m_firstWithoutData)
    {
        // A module without ModuleData answers every ID where it stands first; rare enough to walk.
        for (ModuleLink* link = m_head; nullptr != link; link = link->next)
        {
            ParameterModule* module = link->module;
            if ((nullptr == module->Data) || (module->Data->ID == id))
            {
                return module;
            }
        }
        return nullptr;
    }
    auto first = m_firstWithId.find(id);
    return (m_firstWithId.end() == first) ? nullptr : first->second->module;
}

ModuleLink* DefaultModule::FirstMatch(ModuleLink* from, bool withoutData, unsigned int id)
{
    for (ModuleLink* link = from; nullptr != link; link = link->next)
    {
        ModuleData const* data = link->module->Data;
        if (withoutData ? (nullptr == data) : ((nullptr != data) && (data->ID == id)))
        {
            return link;
        }
    }
    return nullptr;
}

void DefaultModule::Unindex(ModuleLink* link)
{
    // A listed module's ModuleData is valid: its table is freed only after the lists gave it up.
    ModuleData const* data = link->module->Data;
    if (nullptr == data)
    {
        if (m_firstWithoutData == link)
        {
            m_firstWithoutData = FirstMatch(link->next, true, 0);
        }
        return;
    }
    auto first = m_firstWithId.find(data->ID);
    if ((m_firstWithId.end() == first) || (first->second != link))
    {
        return;
    }
    ModuleLink* successor = FirstMatch(link->next, false, data->ID);
    if (nullptr == successor)
    {
        m_firstWithId.erase(first);
    }
    else
    {
        first->second = successor;
    }
}

bool DefaultModule::Contains(ParameterModule const* module) const
{
    for (ModuleLink* link = m_head; nullptr != link; link = link->next)
    {
        if (link->module == module)
        {
            return true;
        }
    }
    return false;
}

void DefaultModule::MoveModules(std::list<ParameterModule*>& out)
{
    while (nullptr != m_head)
    {
        ModuleLink* link = m_head;
        m_head           = link->next;
        out.push_back(link->module);
        link->module = nullptr;
        link->next   = nullptr;
        delete link;
    }
    m_tail = nullptr;
    m_firstWithId.clear();
    m_firstWithoutData = nullptr;
}
