#include "parametermutex.h"

#include "parameterlogging.h"

uint32_t* ParameterMutex::ReaderDepths::Find(std::thread::id reader)
{
    for (auto& depth : m_depths)
    {
        if (depth.first == reader)
        {
            return &depth.second;
        }
    }
    return nullptr;
}

uint32_t& ParameterMutex::ReaderDepths::Of(std::thread::id reader)
{
    uint32_t* depth = Find(reader);
    if (nullptr != depth)
    {
        return *depth;
    }
    m_depths.emplace_back(reader, 0u);
    return m_depths.back().second;
}

void ParameterMutex::ReaderDepths::Erase(std::thread::id reader)
{
    for (auto& depth : m_depths)
    {
        if (depth.first == reader)
        {
            depth = m_depths.back();
            m_depths.pop_back();
            return;
        }
    }
}

bool ParameterMutex::ReaderDepths::OnlyReaderIs(std::thread::id self) const
{
    return m_depths.empty() || ((1 == m_depths.size()) && (m_depths.front().first == self));
}

bool ParameterMutex::WriteAllowed(std::thread::id self) const
{
    bool noOtherWriter = (0 == m_writeCount) || (m_writeOwner == self);
    return noOtherWriter && m_readers.OnlyReaderIs(self);
}

void ParameterMutex::Lock(bool shared)
{
    const std::thread::id        self = std::this_thread::get_id();
    std::unique_lock<std::mutex> guard(m_mutex);
    if (shared)
    {
        WaitUntil(guard, [&] { return (0 == m_writeCount) || (m_writeOwner == self); });
        ++m_readers.Of(self);
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
            uint32_t* depth = m_readers.Find(self);
            if ((nullptr != depth) && (0 == --*depth))
            {
                m_readers.Erase(self);
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
        waiting              = (0 != m_waiting);
        uint32_t const* held = m_readers.Find(self);
        if (nullptr != held)
        {
            depth = *held;
            m_readers.Erase(self);
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
    m_readers.Of(self) += depth;
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
