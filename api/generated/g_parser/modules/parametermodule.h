// ParameterModule, the base of every generated module class, and ModuleData, what one entry of a
// file's module table says about its module.
#ifndef PARAMETERMODULE_H
#define PARAMETERMODULE_H

#include <atomic>
#include <cstddef>
#include <cstdint>

#include "parametertypes.h"
#include "pdlibvark_export.h"

class DefaultModule;
class IModeTable;
class ModeEntry;
class ParameterFileSymbolTable;
class ParameterSetManager;
struct ParameterParserInfo;

/// Made while the module table of a file is read, and owned by the symbol table, so that it
/// lives exactly as long as the table.
class ModuleData
{
public:
    /// `version` is the raw 64-bit form of a VersionUnion. `Mode` comes from `modeTable`, and
    /// `ModePath` from that mode; `SymbolTable` is the manager's table at construction.
    ModuleData(unsigned int id, unsigned int duplicateId, IModeTable* modeTable, char const* type,
               unsigned long version, unsigned int modeId, ParameterSetManager* setManager);
    ~ModuleData();
    ModuleData(ModuleData const&)            = delete;
    ModuleData& operator=(ModuleData const&) = delete;

    /// Longest short type, in characters (ParameterShortType::MaxLength).
    static constexpr unsigned int MaxTypeLength = 32;

    /// Writes the short type of a registered module name into `out`, which must be a zeroed
    /// buffer of MaxTypeLength + 1: a leading "tonemetry_" or "tonemetry" (any case) goes, unless
    /// nothing would remain; a longer rest becomes its first 8 characters, '-' and its last 23.
    static void GetType(char* out, char const* name);

    uint32_t                  ID          = 0;
    uint32_t                  DuplicateID = 0;       ///< entry whose instance this entry shares, or 0
    char*                     Type        = nullptr; ///< owned; empty text for a null type
    VersionUnion              Version;
    uint32_t                  ModeId      = 0; ///< index into the manager's mode table
    ModeEntry*                Mode        = nullptr;
    char*                     ModePath    = nullptr; ///< owned
    ParameterSetManager*      SetManager  = nullptr;
    ParameterFileSymbolTable* SymbolTable = nullptr;

private:
    /// The empty mode that `Mode` points at when the table does not know `ModeId`. Owned here
    /// so that it goes with the entry instead of leaking.
    ModeEntry* m_standInMode = nullptr;
};

/// The base of every generated module class; a generated class adds its top record as a second
/// base. Slot order of the virtual operations is part of the interface.
class PDLIBVARK_API ParameterModule
{
public:
    /// Both copy `name`, derive `Type` from it, and take `Mode` from `data`'s mode (zero
    /// without one).
    ParameterModule(char const* name, VersionUnion const& version, ModuleData* data);
    ParameterModule(char const* name, unsigned short major, unsigned short minor, unsigned int patch, ModuleData* data);
    /// Frees `Name` and `Type`, nothing else.
    virtual ~ParameterModule();
    /// Instances live in the platform's tagged allocation, so that generated code may make them
    /// with OrvoCalloc and anyone may destroy them through the virtual deleting destructor.
    static void* operator new(size_t size);
    static void  operator delete(void* pointer);
    ParameterModule(ParameterModule const&)            = delete;
    ParameterModule& operator=(ParameterModule const&) = delete;

    /// Called on the default instance: the instance for one entry of the file.
    virtual ParameterModule* Create(ModuleData* data, DefaultModule* defaultModule) const = 0;
    virtual bool             LoadModule(ParameterFileSymbolTable* table)                  = 0;
    virtual void             UnloadModule()                                               = 0;
    /// Text access; a module class without it answers false.
    virtual bool GetValue(char const* path, char* value, unsigned int size);
    virtual bool SetValue(char const* path, char const* value);
    virtual bool GetInfo(char const* path, PList<ParameterParserInfo>& list);

    /// The references counted on this module's owner mode; 0 without one.
    unsigned int GetReferenceCount() const;

    /// Gives back a reference that GetModule took; nothing in buffer mode.
    void Release();

    char*        Name = nullptr; ///< owned copy; the key of a mode's module table
    char*        Type = nullptr; ///< owned short form of Name; the key of DefaultModuleMap
    VersionUnion Version;        ///< the version this class was generated for
    ModeUnion    Mode;
    ModuleData*  Data   = nullptr; ///< not owned; null for a default instance
    bool         Loaded = false;
    /// Change counter that records poll; atomic, as text access raises it under a shared lock.
    std::atomic<uint32_t> Modified{0};
};

#endif // PARAMETERMODULE_H
