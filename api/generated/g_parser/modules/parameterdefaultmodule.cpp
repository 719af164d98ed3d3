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
    for (ModuleLink* link = m_head; nullptr != link; link = link->next)
    {
        ParameterModule* module = link->module;
        if ((nullptr != module) && ((nullptr == module->Data) || (module->Data->ID == id)))
        {
            return module;
        }
    }
    return nullptr;
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
}
