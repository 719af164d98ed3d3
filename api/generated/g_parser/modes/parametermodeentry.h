// ModeEntry: one node of the mode tree, its walk and names, and the table of the modules that the
// mode holds.
#ifndef PARAMETERMODEENTRY_H
#define PARAMETERMODEENTRY_H

#include <atomic>
#include <cstdint>
#include <string>
#include <unordered_map>

#include "parametertypes.h"
#include "pdlibvark_export.h"

class ParameterModule;

/// A node owns its children through m_firstChild and its later siblings through m_nextSibling,
/// so deleting the root deletes the tree. m_link is a slot of the set manager's mode table, not
/// a node, so that a link may name a mode that the file defines later; the table and the tree
/// are freed together.
class PDLIBVARK_API ModeEntry
{
public:
    /// One entry of a mode's module table. The table owns no module. References are counted on
    /// the entry of the module's owner mode (its ModuleData's mode) only.
    struct ModuleReference
    {
        ModuleReference() = default;
        ModuleReference(ParameterModule* referenced, uint32_t references) : module(referenced), count(references) {}

        ParameterModule* module = nullptr;
        /// Atomic: look-ups add references under the shared side of the locks, from any thread.
        std::atomic<uint32_t> count{0};
    };

    ModeEntry(bool loaded, bool pinned);
    ~ModeEntry();
    ModeEntry(ModeEntry const&)            = delete;
    ModeEntry& operator=(ModeEntry const&) = delete;

    void Initialize(unsigned int id, ModeUnion const& mode, ModeEntry** link);
    void Initialize(unsigned int id, unsigned short mode, unsigned short subMode, ModeEntry** link);

    /// Appends `child` to the children and makes this its parent; null is ignored.
    void AddMode(ModeEntry* child);

    /// The mode at the end of the link chain, this mode when it has no link. Null when the chain
    /// runs into an empty slot or round a loop, which a valid file never has.
    ModeEntry* ResolveLink();

    /// The first child, after following the link, whose mode equals the low 16 bits of
    /// `mode->mode` and whose sub-mode equals `mode->subMode`.
    ModeEntry* FindMode(TuningMode const* mode);

    /// A descent of exactly `count - depth` levels below this mode (after its link), each level
    /// matching any element of `branch[0 .. count)`; the first element in branch order that
    /// completes the descent wins, and an element may match at several levels.
    ModeEntry* FindMode(TuningMode const* branch, unsigned int count, unsigned int depth);

    /// Appends the numeric path from the root ("0.0|2.1|3.1") to `out`, which should be empty,
    /// cut at `size`.
    void GetModePath(char* out, unsigned int size) const;

    /// Whether `mode` is among this mode's ancestors; a mode is not its own parent.
    bool IsParent(ModeEntry const* mode) const;

    char const* GetModeName() const { return GetModeName(m_mode.mode); }
    char const* GetSubModeName() const { return GetSubModeName(m_mode.mode, m_mode.subMode); }

    /// "Default", "Sensor", "Usecase", ...; null for a number without a name.
    static char const* GetModeName(unsigned int mode);
    /// The name of a sub-mode of `mode`; null where it has none (always for Default and Sensor).
    static char const* GetSubModeName(unsigned int mode, unsigned int subMode);

    /// Enters `module` under its name unless the name is already there; false for null.
    bool AddModule(ParameterModule* module);
    /// The module under `name` in the table of the mode at the end of the link chain, or null.
    ParameterModule* FindModule(std::string const* name);
    /// Sets the entry under the module's name to the module with no references, inserting it
    /// if the name is new. Returns the module that the entry held, or null.
    ParameterModule* ReplaceModule(ParameterModule* module);
    void             AddReference(ParameterModule const* module);
    void             ReleaseReference(ParameterModule const* module);
    /// Sum of the counts of this mode's own modules, from the entry of `module` (or the first
    /// entry, for null) to the end of the table, in table order: with a module the sum includes
    /// every owned entry that follows it, as intended.
    uint32_t GetReferenceCount(ParameterModule const* module) const;
    /// Zeroes the counts of this mode's own modules, logging every count that was not zero.
    void ReleaseReferences();
    /// Some module owned by this mode is referenced.
    bool IsActive() const;
    /// Some module in the table is owned by this mode.
    bool HasLocalModules() const;

    uint32_t                                         m_id = 0;
    ModeUnion                                        m_mode;
    bool                                             m_loaded      = false;
    bool                                             m_pinned      = false;
    ModeEntry**                                      m_link        = nullptr; ///< slot of the mode table, not owned
    ModeEntry*                                       m_parent      = nullptr;
    ModeEntry*                                       m_firstChild  = nullptr; ///< owned chain
    ModeEntry*                                       m_lastChild   = nullptr;
    ModeEntry*                                       m_nextSibling = nullptr; ///< owned chain
    std::unordered_map<std::string, ModuleReference> m_modules;               ///< keyed by module name

private:
    /// Whether this mode is `module`'s owner mode.
    bool Owns(ParameterModule const* module) const;
};

#endif // PARAMETERMODEENTRY_H
