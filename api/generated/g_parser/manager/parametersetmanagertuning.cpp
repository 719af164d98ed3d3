// The set manager's live tuning link: made by the tuning managers' constructor, started by a
// successful load, stopped before anything that it reaches is destroyed.
#include "parameterravlenworker.h"
#include "parametersetmanager.h"

void ParameterSetManager::CreateTuningWorker()
{
    if (nullptr != m_tuningWorker)
    {
        return;
    }
    m_tuningWorker  = new ParameterRavlenWorker*;
    *m_tuningWorker = new ParameterRavlenWorker(this);
}

void ParameterSetManager::StartTuningWorker()
{
    if ((nullptr != m_tuningWorker) && (nullptr != *m_tuningWorker) && m_tuningEnabled)
    {
        (*m_tuningWorker)->Start();
    }
}

void ParameterSetManager::StopTuningWorker()
{
    if ((nullptr != m_tuningWorker) && (nullptr != *m_tuningWorker))
    {
        (*m_tuningWorker)->Stop();
    }
}

void ParameterSetManager::DeleteTuningWorker()
{
    if (nullptr == m_tuningWorker)
    {
        return;
    }
    // Required: the worker is stopped once more just before it goes.
    StopTuningWorker();
    delete *m_tuningWorker;
    delete m_tuningWorker;
    m_tuningWorker = nullptr;
}

unsigned short ParameterSetManager::GetTuningLinkPort() const
{
    return ((nullptr != m_tuningWorker) && (nullptr != *m_tuningWorker)) ? (*m_tuningWorker)->GetListeningPort() : 0;
}
