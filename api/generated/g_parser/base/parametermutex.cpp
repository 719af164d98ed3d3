#include "parametermutex.h"

#include "parameterlogging.h"

bool ParameterMutex::WriteAllowed(std::thread::id self) const
{
    bool noOtherWriter = (0 == m_writeCount) || (m_writeOwner == self);
    bool noOtherReader = m_readers.empty() || ((1 == m_readers.size()) && (m_readers.begin()->first == self));
    return noOtherWriter && noOtherReader;
}

void ParameterMutex::Lock(bool shared)
{
    const std::thread::id        self = std::this_thread::get_id();
    std::unique_lock<std::mutex> guard(m_mutex);
    if (shared)
    {
        WaitUntil(guard, [&] { return (0 == m_writeCount) || (m_writeOwner == self); });
        ++m_readers[self];
        return;
    }

    WaitUntil(guard, [&] { return WriteAllowed(self); });
    if (m_writeOwner != self)
    {
        m_writeCount = 1;
        m_writeOwner = self;
    }
    else
    {
        ++m_writeCount;
    }
}

void ParameterMutex::Unlock(bool shared)
{
    const std::thread::id self      = std::this_thread::get_id();
    bool                  unmatched = false;
    bool                  waiting   = false;
    {
        std::lock_guard<std::mutex> guard(m_mutex);
        waiting = (0 != m_waiting);
        if (shared)
        {
            // A thread that holds no read lock changes nothing.
            auto reader = m_readers.find(self);
            if ((m_readers.end() != reader) && (0 == --reader->second))
            {
                m_readers.erase(reader);
            }
        }
        else if (0 != m_writeCount)
        {
            if (0 == --m_writeCount)
            {
                m_writeOwner = std::thread::id();
            }
        }
        else
        {
            unmatched = true;
        }
    }
    WakeWaiting(waiting);
    if (unmatched)
    {
        // The lock stays usable; the unmatched unlock is only reported.
        PARAMETER_LOG_ERROR(nullptr, "ParameterMutex::Unlock called when lock count is zero\n");
    }
}

uint32_t ParameterMutex::SuspendShared()
{
    const std::thread::id self    = std::this_thread::get_id();
    uint32_t              depth   = 0;
    bool                  waiting = false;
    {
        std::lock_guard<std::mutex> guard(m_mutex);
        waiting     = (0 != m_waiting);
        auto reader = m_readers.find(self);
        if (m_readers.end() != reader)
        {
            depth = reader->second;
            m_readers.erase(reader);
        }
    }
    WakeWaiting((0 != depth) && waiting);
    return depth;
}

void ParameterMutex::ResumeShared(uint32_t depth)
{
    if (0 == depth)
    {
        return;
    }
    const std::thread::id        self = std::this_thread::get_id();
    std::unique_lock<std::mutex> guard(m_mutex);
    WaitUntil(guard, [&] { return (0 == m_writeCount) || (m_writeOwner == self); });
    m_readers[self] += depth;
}

ParameterMutexLock::ParameterMutexLock(ParameterMutex* lock, bool sharedSide, bool condition)
    : mutex(lock), shared(sharedSide), locked(condition && (nullptr != lock))
{
    if (locked)
    {
        mutex->Lock(shared);
    }
}

ParameterMutexLock::~ParameterMutexLock()
{
    if (locked)
    {
        mutex->Unlock(shared);
    }
}
