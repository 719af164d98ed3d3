// Construction and destruction of a set manager, its error text and logging identity, and the
// release of what a file brought with it.
#include "parametersetmanager.h"

#include <algorithm>

#include "orvomem.h"
#include "orvoosutils.h"

ParameterSetManager::ParameterSetManager() = default;

ParameterSetManager::~ParameterSetManager()
{
    // Safe variant: the link stops before any module goes (the derived destructor has stopped
    // it already; this covers one that did not).
    StopTuningWorker();
    // A generated destructor has deleted the registered types already; a manager that did not
    // must not leave them (and the instances that point into its tables) behind.
    DeleteDefaultModules();
    PARAMETER_LOG_DEBUG(this, "ParameterSetManager deleting\n");
    PARAMETER_LOG_DEBUG(this, "FreeReplacedParameters called\n");
    FreeReplaced(false);
    FreeBinaryParameters();
    DeleteTuningWorker();
    while (!m_updateSetManagers.empty())
    {
        delete m_updateSetManagers.front();
        m_updateSetManagers.pop_front();
    }
}

void ParameterSetManager::SetFileName(char const* fileName)
{
    Orvo::OsUtils::StrLCpy(m_fileName, (nullptr == fileName) ? "" : fileName, sizeof(m_fileName));
    m_fileMode = '\0' != m_fileName[0];
}

void ParameterSetManager::SetError(char const* text, ModuleData const* data)
{
    std::lock_guard<std::mutex> guard(m_errorLock);
    char const*                 message = (nullptr == text) ? "" : text;
    if (nullptr != data)
    {
        // The mode is expected; a module without one reports mode 0 rather than crash.
        unsigned int mode = (nullptr == data->Mode) ? 0u : data->Mode->m_mode.mode;
        char         formatted[MaxErrorText];
        Orvo::OsUtils::SNPrintF(formatted, sizeof(formatted), "%s Type: %s, Major: %u, Minor: %u, Patch: %u, Mode: %u",
                                message, (nullptr == data->Type) ? "" : data->Type,
                                static_cast<unsigned int>(data->Version.major),
                                static_cast<unsigned int>(data->Version.minor), data->Version.patch, mode);
        Orvo::OsUtils::StrLCpy(m_errorText, formatted, sizeof(m_errorText));
    }
    else if (message != m_errorText)
    {
        Orvo::OsUtils::StrLCpy(m_errorText, message, sizeof(m_errorText));
    }
    PARAMETER_LOG_ERROR(this, "%s\n", m_errorText);
}

void ParameterSetManager::FreeBinaryParameters()
{
    // Safe variant: the live tuning link may be inside a module of this file on its own thread.
    ParameterMutexLock access(&m_accessLock, false, true);
    PARAMETER_LOG_DEBUG(this, "FreeBinaryParameters called\n");
    // Safe variant: instances still in service would keep ModuleData of the table freed below;
    // they came with this file and go with it (a reload has moved them out of service before).
    std::list<ParameterModule*> inService;
    for (auto& type : DefaultModuleMap)
    {
        if (nullptr != type.second)
        {
            type.second->MoveModules(inService);
        }
    }
    for (ParameterModule* module : inService)
    {
        delete module;
    }
    FreeModeTree();
    OrvoFree(m_tag, OrvoMemFlagsNone, __FILE__, __LINE__);
    delete m_symbolTable;
    m_tag         = nullptr;
    m_symbolTable = nullptr;
    PublishTag();
}

void ParameterSetManager::PublishTag()
{
    if (nullptr == m_tag)
    {
        m_loggingIdentifier = nullptr;
        return;
    }
    auto published = std::find(m_publishedTags.begin(), m_publishedTags.end(), m_tag);
    if (m_publishedTags.end() == published)
    {
        published = m_publishedTags.insert(m_publishedTags.end(), m_tag);
    }
    m_loggingIdentifier = published->c_str();
}

char const* ParameterSetManager::GetLoggingIdentifier()
{
    // Safe variant: the text of m_tag, from a copy that no load or free takes away.
    return m_loggingIdentifier;
}

bool ParameterSetManager::LoggingEnabled(ParameterLogging::ParameterLogLevel level)
{
    switch (level)
    {
        case ParameterLogging::LogLevelError:
            return m_logError;
        case ParameterLogging::LogLevelWarning:
            return m_logWarning;
        case ParameterLogging::LogLevelDebug:
            return m_logDebug;
        default:
            return true;
    }
}

ModeEntry* ParameterSetManager::GetModeEntry(unsigned int id)
{
    ParameterMutexLock lock(&m_accessLock, true, true);
    return ((nullptr != m_modes) && (id < m_modeCount)) ? m_modes[id] : nullptr;
}
