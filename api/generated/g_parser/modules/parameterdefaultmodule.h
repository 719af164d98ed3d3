// DefaultModule and ModuleLink: the registered factory of one module type and the list of the
// instances that it made for the entries of a file.
#ifndef PARAMETERDEFAULTMODULE_H
#define PARAMETERDEFAULTMODULE_H

#include <list>
#include <unordered_map>

#include "pdlibvark_export.h"

class ParameterModule;

/// One node of a type's instance list. It owns its module and the rest of the chain.
struct ModuleLink
{
    ParameterModule* module = nullptr;
    ModuleLink*      next   = nullptr;

    ModuleLink() = default;
    explicit ModuleLink(ParameterModule* owned) : module(owned) {}
    /// Destroys the module and then the rest of the chain.
    ~ModuleLink();
    ModuleLink(ModuleLink const&)            = delete;
    ModuleLink& operator=(ModuleLink const&) = delete;
};

/// Owned by a set manager's DefaultModuleMap, under the type's short name. The default instance
/// (made by the generated constructor, with no ModuleData) is only a factory and never loaded.
class PDLIBVARK_API DefaultModule
{
public:
    explicit DefaultModule(ParameterModule* defaultInstance);
    /// Destroys the instances and then the default instance.
    ~DefaultModule();
    DefaultModule(DefaultModule const&)            = delete;
    DefaultModule& operator=(DefaultModule const&) = delete;

    /// Appends an instance; null is ignored.
    void AddModule(ParameterModule* module);
    /// Unlinks `module` without destroying it. Returns whether the list held it; an unknown
    /// module is no error.
    bool RemoveModule(ParameterModule const* module);
    /// The first instance made for file entry `id`, or the first without ModuleData; null past
    /// the end. The ID is compared, not the DuplicateID: a shared instance is found through the
    /// entry that the others point at.
    ParameterModule* Find(unsigned int id) const;
    /// Whether `module` is one of the instances.
    bool Contains(ParameterModule const* module) const;
    /// Moves every instance to the end of `out`, without destroying it, and empties the list.
    void MoveModules(std::list<ParameterModule*>& out);

    ParameterModule* m_defaultInstance = nullptr; ///< owned
    ModuleLink*      m_head            = nullptr; ///< owned chain
    ModuleLink*      m_tail            = nullptr;

private:
    /// The first link at or after `from` whose module has ModuleData of `id`, or none when
    /// `withoutData`, the first whose module has no ModuleData.
    static ModuleLink* FirstMatch(ModuleLink* from, bool withoutData, unsigned int id);
    /// Takes `link`, about to leave the chain, out of the index: its successor in the chain that
    /// matches as it does stands in for it.
    void Unindex(ModuleLink* link);

    // The index that makes Find independent of the list's length: a file gives one type many
    // thousand instances, and every one of them is looked up as it is created.
    std::unordered_map<unsigned int, ModuleLink*> m_firstWithId;
    ModuleLink*                                   m_firstWithoutData = nullptr;
};

#endif // PARAMETERDEFAULTMODULE_H
