// Rereading the bound file under running readers, and freeing what earlier reloads and updates
// took out of service.
#include "parametersetmanager.h"

#include <unordered_set>

#include "orvomem.h"
#include "orvoosutils.h"

bool ParameterSetManager::ReloadBinaryParameters(bool bufferMode)
{
    // Safe order: the name is tested under the lock, as an update on another thread clears it.
    ParameterMutexLock access(&m_accessLock, false, true);
    if (!IsFileMode())
    {
        SetError("ReloadBinaryParameters called with empty file name", nullptr);
        return false;
    }
    PARAMETER_LOG_DEBUG(this, "Reloading binary file %s%s\n", m_fileName, bufferMode ? " in buffer mode" : "");
    ++m_reloadGeneration;
    // The generation replaced last time dies here; the one in service now stays readable.
    FreeReplacedParameters();
    SaveAndClearModules();
    // Between walks the table holds no reference of its own that a buffer-mode reload could give
    // back: the file is open only while a walk reads it.
    if (nullptr != m_symbolTable)
    {
        uint32_t before = m_replacedSymbolTables.count;
        m_replacedSymbolTables.Insert(m_replacedSymbolTables.count, m_symbolTable);
        if (m_replacedSymbolTables.count == before)
        {
            // The replaced modules' ModuleData live in it: a table that cannot be kept is lost
            // rather than freed under them.
            PARAMETER_LOG_ERROR(this, "ReloadBinaryParameters: Failed to keep the replaced symbol table\n");
        }
        m_symbolTable = nullptr;
    }
    // Safe variant: the tree goes out of service with the modules whose ModuleData point into it,
    // and lives as long as they do; FreeBinaryParameters then frees the tag only.
    m_replacedTrees.push_back(DetachModeTree());
    FreeBinaryParameters();

    char fileName[MaxFileName];
    Orvo::OsUtils::StrLCpy(fileName, m_fileName, sizeof(fileName));
    if (!bufferMode)
    {
        return LoadBinaryParameters(fileName);
    }

    bool                 result = false;
    ParameterBinaryFile* file   = new ParameterBinaryFile(fileName, this, true);
    if (!file->m_valid)
    {
        SetError("ReloadBinaryParameters: Failed to open file", nullptr);
    }
    else if (!file->m_crcValid)
    {
        SetError("ReloadBinaryParameters: File CRC check failed", nullptr);
    }
    else
    {
        SetFileName(nullptr);
        unsigned int   length = file->m_length;
        unsigned char* image  = file->Read(0, length);
        if (nullptr == image)
        {
            SetError("ReloadBinaryParameters: Failed to allocate space to read data from file", nullptr);
        }
        else
        {
            result = LoadBinaryParameters(image, length);
            OrvoFree(image, OrvoMemFlagsNone, __FILE__, __LINE__);
        }
    }
    delete file;
    return result;
}

void ParameterSetManager::FreeReplacedParameters()
{
    PARAMETER_LOG_DEBUG(this, "FreeReplacedParameters called\n");
    FreeReplaced(true);
}

void ParameterSetManager::FreeReplaced(bool keepHeld)
{
    // Safe variant: under the access lock, as readers walk the tree that may hold these modules.
    ParameterMutexLock access(&m_accessLock, false, true);
    RetiredGeneration  retired = TakeReplaced();
    if (keepHeld && (0 != m_runningCalls))
    {
        // Safe variant: a reload inside a call would free what the call still holds (its
        // `previous`); the generation waits for the last running call to end.
        m_deferred.Append(retired);
        m_hasDeferred = true;
        return;
    }
    if (!keepHeld)
    {
        FreeRetired(m_deferred, false);
        m_hasDeferred = false;
    }
    FreeRetired(retired, keepHeld);
}

ParameterSetManager::RetiredGeneration ParameterSetManager::TakeReplaced()
{
    RetiredGeneration retired;
    retired.modules.swap(m_replacedModules);
    while (0 != m_replacedSymbolTables.count)
    {
        retired.symbolTables.push_back(m_replacedSymbolTables[0]);
        m_replacedSymbolTables.RemoveFront();
    }
    retired.trees.swap(m_replacedTrees);
    return retired;
}

void ParameterSetManager::FreeRetired(RetiredGeneration& retired, bool keepHeld)
{
    // Safe variant: an update can leave a mode of the present tree on a replaced instance (a
    // shared entry of another mode); such an instance stays until the tree goes.
    std::unordered_set<ParameterModule const*> held;
    for (uint32_t index = 0; keepHeld && (nullptr != m_modes) && (index < m_modeCount); ++index)
    {
        if (nullptr == m_modes[index])
        {
            continue;
        }
        for (auto const& entry : m_modes[index]->m_modules)
        {
            held.insert(entry.second.module);
        }
    }
    for (ParameterModule* module : retired.modules)
    {
        if (0 != held.count(module))
        {
            m_replacedModules.push_back(module);
        }
        else
        {
            delete module;
        }
    }
    retired.modules.clear();
    for (ParameterFileSymbolTable* table : retired.symbolTables)
    {
        delete table;
    }
    retired.symbolTables.clear();
    while (!retired.trees.empty())
    {
        DeleteModeTree(retired.trees.front());
        retired.trees.pop_front();
    }
}

void ParameterSetManager::FreeDeferred()
{
    ParameterMutexLock access(&m_accessLock, false, true);
    if ((0 != m_runningCalls) || !m_hasDeferred)
    {
        return; // a call that began since frees it when it ends
    }
    RetiredGeneration retired;
    retired.Append(m_deferred);
    m_hasDeferred = false;
    FreeRetired(retired, true);
}

void ParameterSetManager::RetiredGeneration::Append(RetiredGeneration& other)
{
    modules.splice(modules.end(), other.modules);
    symbolTables.splice(symbolTables.end(), other.symbolTables);
    trees.splice(trees.end(), other.trees);
}

ParameterSetManager::CallScope::CallScope(ParameterSetManager& manager) : m_manager(manager)
{
    ++m_manager.m_runningCalls;
}

ParameterSetManager::CallScope::~CallScope()
{
    if ((1 == m_manager.m_runningCalls.fetch_sub(1)) && m_manager.m_hasDeferred)
    {
        m_manager.FreeDeferred();
    }
}

char const* ParameterSetManager::InternName(char const* name)
{
    if (nullptr == name)
    {
        return nullptr;
    }
    std::lock_guard<std::mutex> guard(m_internLock);
    return m_internedNames.insert(std::string(name)).first->c_str();
}
