// ParameterSetManager: the owner of one loaded tuning file (header, sections, mode tree, symbol
// table and modules) and the base class of the generated set managers.
#ifndef PARAMETERSETMANAGER_H
#define PARAMETERSETMANAGER_H

#include <atomic>
#include <cstdint>
#include <list>
#include <mutex>
#include <string>
#include <unordered_map>
#include <unordered_set>

#include "parameterctvalue.h"
#include "parameterdataapi.h"
#include "parameterdefaultmodule.h"
#include "parameterfilesymboltable.h"
#include "parametermodeentry.h"
#include "parametermodetable.h"
#include "parametermodule.h"
#include "parameterparserinfo.h"
#include "parameterutils.h"
#include "pdlibvark_export.h"

class ParameterRavlenWorker;

/// A manager is in file mode while m_fileName is set: only header, modes and tables stay in
/// memory and modules read their data from the file on demand. Otherwise it is in buffer mode:
/// everything was read at load. Fields are public, as the generated set managers and the live
/// tuning link reach them directly.
class PDLIBVARK_API ParameterSetManager : public IModeTable, public IParameterDataAPI
{
public:
    /// True while a load reads its sections: the tables it makes are reached by nobody else
    /// until it returns (the load holds m_accessLock exclusive, and the link starts after).
    bool LoadingAlone() const { return m_loadingAlone; }

    /// Section types of the section table.
    enum SectionType : uint32_t
    {
        SectionSymbolTable = 0,
        SectionData        = 1,
        SectionModeTable   = 2,
        SectionDataTable   = 3,
    };

    static constexpr unsigned int MaxErrorText = 2048;
    static constexpr unsigned int MaxFileName  = 1024;
    /// File mode keeps the first bytes of the file as its working buffer; the section table
    /// must end within them.
    static constexpr unsigned int FileModeHeadBytes = 316;
    /// `linkId` of a mode record that links nowhere.
    static constexpr uint32_t NoLink = 0xFFFFFFFF;

    ParameterSetManager();
    ParameterSetManager(ParameterSetManager const&)            = delete;
    ParameterSetManager& operator=(ParameterSetManager const&) = delete;

    // Virtual operations, in slot order.

    /// `m_modes[id]`; null at or above m_modeCount.
    ModeEntry* GetModeEntry(unsigned int id) override;
    /// Frees replaced instances, the file's data and the managers of updates.
    ~ParameterSetManager() override;
    bool GetValue(char const* modePath, char const* path, char const* names, char* out, unsigned int size) override;
    bool SetValue(char const* modePath, char const* path, char const* name, char const* value) override;
    bool GetInfo(char const* modePath, char const* path, PList<ParameterParserInfo>& list) override;
    void GetActiveModes(char* out, unsigned int size) override;
    /// Named mode path to numeric ("Usecase.Video|Feature1.ADRC" to "2.2|3.2"), cut at `size`.
    void GetModeShorthand(char const* path, char* out, unsigned int size) override;
    bool GetControlValues(char* out, unsigned int size) override;
    bool GetTriggerValues(char* out, unsigned int size) override;
    /// The mode of a numeric mode path; null for a path that does not parse or a miss.
    virtual ModeEntry* GetModeEntry(char const* path);
    /// The mode that a branch resolves to from the root: element 0 stands for the root, and each
    /// run of elements with one mode number is one FindMode step. Null on a miss; the root for a
    /// branch of one element, none, or null.
    virtual ModeEntry* GetModeEntry(TuningMode const* modeBranch, unsigned int modeCount);
    /// The children of a mode (or of mode 0 when the path finds none) by name, joined by ",".
    /// Returns the bytes written with the terminator.
    unsigned int GetChildModes(char const* path, unsigned char* out, unsigned int size) override;
    /// The header's binary tag.
    char const* GetLoggingIdentifier() override;
    bool        LoggingEnabled(ParameterLogging::ParameterLogLevel level) override;
    /// The registered module type `type`, or null.
    virtual DefaultModule* GetDefaultModule(char* type) = 0;
    virtual void           SaveAndClearModules()        = 0;

    // Loading a file.

    /// File mode when m_fileModeAllowed, buffer mode otherwise.
    bool LoadBinaryParameters(char const* fileName);
    /// Buffer mode; the buffer need not outlive the call.
    bool LoadBinaryParameters(unsigned char* buffer, unsigned long length);
    /// Tag, size, version, section table place and the check value of a whole-file image.
    bool ReadHeader(unsigned char* buffer, unsigned int length, unsigned int* pos, unsigned int* sectionTableOffset,
                    unsigned char* alignment);
    bool ReadSectionInfo(unsigned char* buffer, unsigned int length, unsigned int* pos, unsigned char alignment);
    /// Section table, mode tree and symbol tables. `buffer` is the image in buffer mode and the
    /// file's first bytes in file mode (with `file` set).
    bool ReadSections(unsigned char* buffer, unsigned int length, char const* fileName, ParameterBinaryFile* file,
                      unsigned int fileLength, unsigned int sectionTableOffset, IModeTable* modeTable,
                      unsigned char alignment);
    bool ReadModeSection(unsigned char* buffer, unsigned int length, ParameterBinaryFile* file,
                         unsigned char alignment);

    /// Records `text` (with the module's type, version and mode when `data` is given) in
    /// m_errorText and logs it at error level.
    void SetError(char const* text, ModuleData const* data);
    /// Deletes the mode tree and table, the tag and the symbol table, and the instances in
    /// service, whose ModuleData the table owns.
    void FreeBinaryParameters();
    /// Deletes the instances, tables and mode trees that reloads and updates took out of
    /// service. Instances that a mode of the present tree still holds stay.
    void FreeReplacedParameters();

    // Modules and their life cycle.

    /// The instance of a file entry, made by the default instance of its type; loaded at once
    /// with `load`. Null when the type is unknown or refuses the entry.
    ParameterModule* CreateModule(ParameterFileSymbolTableEntry const* entry, ModuleData* data, bool load);
    /// Enters a created instance into the table of its mode.
    bool AddModule(ModuleData const* data, ParameterModule* module);
    /// Makes sure that every mode of the branch is loaded (file mode only); `moduleName` is for
    /// logs. A failed module load is taken for a changed file: the file is reloaded and the
    /// walk repeated, at most twice.
    bool LoadMode(TuningMode const* modeBranch, unsigned int modeCount, char const* moduleName);
    /// Unloads the deepest mode of the branch (file mode only); pinned modes stay.
    bool UnloadMode(TuningMode const* modeBranch, unsigned int modeCount);
    /// Loads or unloads one mode, keeps the recency list and trims it. `fileReferences` counts
    /// the file references taken, which the caller gives back.
    bool LoadModules(ModeEntry* mode, bool load, char const* moduleName, TuningMode const* modeBranch,
                     unsigned int modeCount, int& fileReferences);
    /// One load walk from the root along the branch; `reload` tells that a module failed.
    bool LoadModeInternal(TuningMode const* modeBranch, unsigned int modeCount, bool& reload, char const* moduleName);
    /// The set manager's half of ParameterModule::Release.
    void ReleaseModule(ParameterModule const* module);

    // Look-up and replacement.

    /// The loaded instance that the deepest mode of the branch holding `name` has. In file mode
    /// it carries one new reference, to be given back by Release or as the next `previous`.
    /// `previous` is given back in any case.
    ParameterModule* GetModule(char const* name, TuningMode const* modeBranch, unsigned int modeCount,
                               ParameterModule* previous);
    /// Rereads the bound file; `bufferMode` reads it whole and ends file mode for good. What
    /// was in service stays readable until the next reload.
    bool ReloadBinaryParameters(bool bufferMode);
    /// Moves every module of `other` into this tree.
    bool UpdateParameters(ParameterSetManager* other);
    /// The move from `source` and its following siblings into `target`, then down the children.
    bool UpdateParameters(ModeEntry* target, ModeEntry* source, ParameterSetManager* other);

    // Control and trigger values: two independent lists of numbered values, sorted by id.

    void GetControlValues(PList<ParameterCTValue>& out);
    bool GetControlValue(unsigned int id, ParameterCTValue& out);
    void SetControlValue(ParameterCTValue const& value);
    void SetControlValues(ParameterCTValue const* values, unsigned int count);
    void SetControlValues(PList<ParameterCTValue> const& values);
    void SetControlValues(char const* text);
    void GetTriggerValues(PList<ParameterCTValue>& out);
    bool GetTriggerValue(unsigned int id, ParameterCTValue& out);
    void SetTriggerValue(ParameterCTValue const& value);
    void SetTriggerValues(ParameterCTValue const* values, unsigned int count);
    void SetTriggerValues(PList<ParameterCTValue> const& values);
    void SetTriggerValues(char const* text);

    // Text access with a ready branch.

    bool GetValue(TuningMode const* modeBranch, unsigned int modeCount, char const* path, char const* names, char* out,
                  unsigned int size);
    bool SetValue(TuningMode const* modeBranch, unsigned int modeCount, char const* path, char const* name,
                  char const* value);
    bool GetInfo(TuningMode const* modeBranch, unsigned int modeCount, char const* path,
                 PList<ParameterParserInfo>& list);

    /// File mode: only tables stay in memory and modules load by mode.
    bool IsFileMode() const { return m_fileMode.load(); }

    /// The internet port on which the live tuning link listens (20803 unless that was taken),
    /// or 0 while it listens on none: no link, not started, or on the local fall-back socket.
    unsigned short GetTuningLinkPort() const;

    // Mode paths and names.

    /// Appends the elements of a numeric mode path to `branch`; false for a null path, a
    /// character other than a digit or ".", or an empty result.
    static bool GetModeBranchFromPath(char const* path, PList<TuningMode>& branch);
    /// Appends the numeric path of a branch to `out`.
    static void GetPathFromModeBranch(TuningMode const* modeBranch, unsigned int modeCount, char* out,
                                      unsigned int size);
    /// The mode number of a name, any case; 0 for an unknown name.
    static unsigned int GetModeIndex(char const* name);
    /// The sub-mode number of a name or of digits; 0 for an unknown name.
    static unsigned short GetSubModeIndex(unsigned short mode, char const* name);
    /// Numeric paths, joined by ";", to named ones ("0.0|2.1" to "Default|Usecase.Snapshot").
    static void GetRavlenModesString(char const* paths, char* out, unsigned int size);

    char*                                           m_tag = nullptr; ///< owned header tag; the logging identifier
    bool                                            m_parametersValid         = false; ///< result of the last load
    char                                            m_errorText[MaxErrorText] = {};
    bool                                            m_logError                = true;
    bool                                            m_logWarning              = true;
    bool                                            m_logDebug                = true;
    bool                                            m_quietMissingModules     = false;
    bool                                            m_tuningEnabled           = true;
    std::atomic<uint32_t>                           m_setValueCount{0}; ///< atomic: SetValue runs under a shared lock
    std::unordered_map<std::string, DefaultModule*> DefaultModuleMap;   ///< one entry per module type
    ParameterFileSymbolTable*                       m_symbolTable = nullptr; ///< owned
    ParameterMutex                                  m_loadLock;
    ParameterMutex                                  m_accessLock;
    uint32_t                                        m_maxLoadedModes  = 0; ///< 0 switches eviction off
    bool                                            m_fileModeAllowed = false;
    char                             m_fileName[MaxFileName]          = {}; ///< the bound file; empty in buffer mode
    std::list<ParameterModule*>      m_replacedModules;                     ///< owned
    std::list<ParameterSetManager*>  m_updateSetManagers;                   ///< owned
    ParameterRavlenWorker**          m_tuningWorker = nullptr;              ///< owned holder; tuning managers only
    ModeEntry*                       m_rootMode     = nullptr;              ///< owned tree
    ModeEntry**                      m_modes        = nullptr; ///< owned array; the entries belong to the tree
    uint32_t                         m_modeCount    = 0;
    PList<ModeEntry*>                m_loadedModes; ///< recency list, most recent first
    PList<ParameterCTValue>          m_controlValues;
    PList<ParameterCTValue>          m_triggerValues;
    ParameterMutex                   m_valueLock;
    PList<ParameterFileSymbolTable*> m_replacedSymbolTables; ///< owned

    // Header and section table of the loaded file.
    VersionUnion m_version;
    uint64_t     m_flags           = 0; ///< bit 1: compressed, which is refused
    uint32_t     m_sectionCount    = 0;
    uint32_t     m_symbolOffset    = 0;
    uint32_t     m_symbolSize      = 0;
    uint32_t     m_dataOffset      = 0;
    uint32_t     m_dataSize        = 0;
    uint32_t     m_modeOffset      = 0;
    uint32_t     m_modeSize        = 0;
    uint32_t     m_dataTableOffset = 0;
    uint32_t     m_dataTableSize   = 0;

    /// Modes built from records whose parent was not read (yet) or that name no parent: the
    /// tree does not hold them, so they are owned here and deleted with the tree.
    PList<ModeEntry*> m_detachedModes;

protected:
    /// Elements of a branch from `start` that form one step: the element and all directly
    /// following elements of the same mode number, compared on all 32 bits.
    static unsigned int GetModeGroupLength(TuningMode const* modeBranch, unsigned int modeCount, unsigned int start);

    // The duties of a generated set manager, so that each of its operations is one call.

    /// The settings of every generated manager: eviction bound 17, file mode allowed, error and
    /// warning logs on, debug logs off, missing modules reported.
    void UseGeneratedSettings();
    /// Registers a default instance under its type (generated AddModule). A second registration
    /// of a type replaces the first.
    void RegisterDefaultModule(ParameterModule* module);
    /// The registered type `type` under the shared access lock, or null with a log line
    /// (generated GetDefaultModule). A null `type` raises std::logic_error, as a string would.
    DefaultModule* FindDefaultModule(char* type);
    /// Moves every instance in service to m_replacedModules (generated SaveAndClearModules).
    void MoveModulesToReplaced();
    /// Destroys every registered type with its instances (generated destructor).
    void DeleteDefaultModules();
    /// Swaps in the parameters of `buffer` through a new manager from `create`, which this
    /// manager then owns (generated UpdateBinaryParameters). True unless the earlier load was
    /// invalid or the reload into buffer mode failed.
    bool UpdateFromBuffer(unsigned char* buffer, unsigned long size, ParameterSetManager* (*create)());

    /// Gives the manager its live tuning link (the tuning managers' constructor); a load
    /// starts it while m_tuningEnabled holds.
    void CreateTuningWorker();
    /// Stops the live tuning link for good. A derived destructor calls it first: the link
    /// serves through this object's modules and virtual operations, which go before the base
    /// destructor runs.
    void StopTuningWorker();

private:
    /// A mode tree that a reload took out of service: the replaced modules' ModuleData still
    /// point into it, so it lives as long as they do.
    struct ModeTree
    {
        ModeEntry*        root      = nullptr;
        ModeEntry**       modes     = nullptr;
        uint32_t          modeCount = 0;
        PList<ModeEntry*> detached;
    };

    /// What reloads took out of service and FreeReplacedParameters frees: instances, the symbol
    /// tables their data points into, and the trees their modes live in. Owned.
    struct RetiredGeneration
    {
        std::list<ParameterModule*>          modules;
        std::list<ParameterFileSymbolTable*> symbolTables;
        std::list<ModeTree>                  trees;

        void Append(RetiredGeneration& other);
    };

    bool m_loadingAlone = false; ///< see LoadingAlone

    /// Held for the whole of a public call that may reload the file. A generation replaced
    /// while calls run is freed when the last of them ends: a call's `previous`, or the instance
    /// it is reading, may belong to it. Declared before the call's lock guard, so that it ends
    /// after the lock is given up.
    class CallScope
    {
    public:
        explicit CallScope(ParameterSetManager& manager);
        ~CallScope();
        CallScope(CallScope const&)            = delete;
        CallScope& operator=(CallScope const&) = delete;

    private:
        ParameterSetManager& m_manager;
    };

    /// File mode follows m_fileName; every change of the name goes through here.
    void SetFileName(char const* fileName);
    /// Takes the present tree out of the manager.
    ModeTree DetachModeTree();
    /// Deletes a tree after taking its modes out of m_loadedModes.
    void DeleteModeTree(ModeTree& tree);
    /// ReadSections' last step: an instance for every module entry, entered in its mode.
    bool CreateModules(bool fileMode);
    /// The reload of LoadMode after a failed walk; passed over when another thread reloaded
    /// since the walk began (`generation`).
    void ReloadAfterFailedWalk(uint32_t generation);
    /// The mode reached from `start` by the groups of `modeBranch` from element 1, or null.
    ModeEntry* WalkBranch(ModeEntry* start, TuningMode const* modeBranch, unsigned int modeCount);
    /// LoadModules' load walk over the table of `target`.
    bool LoadModeModules(ModeEntry* target, bool trimming, PList<ModeEntry*>& touched);
    /// LoadModules' unload of `target`'s own modules and counts.
    void UnloadModeModules(ModeEntry* target);
    /// Moves the touched modes to the front of m_loadedModes.
    void MarkRecentlyUsed(PList<ModeEntry*> const& touched);
    /// Unloads idle modes beyond the bound of m_loadedModes.
    void TrimLoadedModes(bool trimming, char const* moduleName, TuningMode const* modeBranch, unsigned int modeCount,
                         int& fileReferences);
    void RemoveLoadedMode(ModeEntry const* mode);
    /// GetModule's walk of the branch below the root; returns the deepest loaded holder.
    ParameterModule* FindDeepestModule(std::string const& name, ParameterModule* candidate,
                                       TuningMode const* modeBranch, unsigned int modeCount);
    /// Loads `module` under the load lock unless it is loaded; whether it is loaded after.
    bool EnsureLoaded(ParameterModule* module);
    /// One module of `other` that UpdateParameters moves into `target`.
    void MoveModuleInto(ModeEntry* target, ParameterModule* module, ParameterSetManager* other);
    /// The registered type of `module` in this manager, or null, without logging.
    DefaultModule* RegisteredTypeOf(ParameterModule const* module);
    /// Takes `module` in service here, unless it already is.
    void AdoptModule(ParameterModule* module);
    /// Frees what FreeReplacedParameters frees; `keepHeld` keeps instances of the present tree.
    /// With `keepHeld`, while a public call runs, the generation is kept until the call ends.
    void FreeReplaced(bool keepHeld);
    /// Moves the replaced instances, tables and trees out of their members.
    RetiredGeneration TakeReplaced();
    /// Deletes a retired generation; with `keepHeld`, instances that the present tree still
    /// holds go back to m_replacedModules.
    void FreeRetired(RetiredGeneration& retired, bool keepHeld);
    /// Frees the generations kept for running calls, unless a call has begun since.
    void FreeDeferred();
    /// The manager's copy of a text that info rows point to: one per distinct text, kept until
    /// the manager goes, so a row outlives the instance it was read from.
    char const* InternName(char const* name);
    /// The pinning step of SetValue.
    void PinMode(ParameterModule const* module);
    /// Makes the present m_tag the logging identifier. The link's threads log through it while
    /// a load or a free replaces the tag, so the identifier is a copy that stays readable: one
    /// per distinct tag text, kept until the manager goes. Called under the access lock.
    void PublishTag();
    /// Starts the live tuning link after a successful load, if there is one and it is enabled.
    void StartTuningWorker();
    /// Stops the link once more and deletes it with its holder.
    void DeleteTuningWorker();

    /// One record of the mode section, as read.
    struct ModeRecord
    {
        uint32_t  id = 0;
        ModeUnion mode;
        uint32_t  parentId  = 0;
        uint32_t  linkId    = NoLink; ///< for records without the field too
        uint32_t  modeFlags = 0;      ///< bit 0: pinned
    };

    /// Deletes the mode tree, its detached modes and the mode table.
    void FreeModeTree();
    /// The one-node tree of a file without mode section.
    void CreateDefaultModeTree();
    /// Reads the fields of one mode record at `*pos`; false on a short section.
    bool ReadModeRecord(unsigned char const* section, unsigned int length, unsigned int* pos, unsigned char alignment,
                        ModeRecord& record) const;
    /// Checks one record and builds its mode into the tree; false for a bad id.
    bool AddModeRecord(ModeRecord const& record);

    std::atomic<bool>               m_fileMode{false};      ///< m_fileName is set
    uint32_t                        m_reloadGeneration = 0; ///< reloads so far; written under the access lock
    std::list<ModeTree>             m_replacedTrees;        ///< owned; freed with the replaced symbol tables
    std::mutex                      m_errorLock;            ///< SetError may be called from several threads
    std::list<std::string>          m_publishedTags;        ///< texts that m_loggingIdentifier has pointed to
    std::atomic<char const*>        m_loggingIdentifier{nullptr};
    std::atomic<uint32_t>           m_runningCalls{0};    ///< public calls under way, on any thread
    std::atomic<bool>               m_hasDeferred{false}; ///< m_deferred holds something
    RetiredGeneration               m_deferred;           ///< written under the access lock
    std::mutex                      m_internLock;
    std::unordered_set<std::string> m_internedNames;
};

#endif // PARAMETERSETMANAGER_H
