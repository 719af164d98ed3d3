// ParameterMutex: the store's reader-writer lock, recursive on both sides, and its scope guard.
#ifndef PARAMETERMUTEX_H
#define PARAMETERMUTEX_H

#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <thread>
#include <utility>
#include <vector>

#include "pdlibvark_export.h"

/// The store's entry points call one another while holding their locks, and a reader often
/// has to write; so both sides nest, a writer may read, and a thread that is the only reader
/// may take the write side without giving up its read. Two readers that both ask to write wait
/// for ever; the store never does that on one lock. No side has priority, no wait times out.
/// A failure of the underlying pthread mutex is raised as std::system_error.
class PDLIBVARK_API ParameterMutex
{
public:
    ParameterMutex()                                 = default;
    ParameterMutex(ParameterMutex const&)            = delete;
    ParameterMutex& operator=(ParameterMutex const&) = delete;

    /// `shared` true takes the read side, false the write side.
    void Lock(bool shared);

    /// Must pass the `shared` of the matching Lock. Write and read depths are counted apart,
    /// so a thread unlocks each side as often as it locked it, in any order.
    void Unlock(bool shared);

    /// Gives up every read lock that the calling thread holds and returns their depth, so that
    /// a thread that must wait for the write side does not hold off another that waits too.
    uint32_t SuspendShared();

    /// Takes back the read locks that SuspendShared gave up, once no other thread writes.
    void ResumeShared(uint32_t depth);

private:
    /// The reading threads and their depths. A handful at most, so a vector that keeps its
    /// room: taking and giving back a read lock allocates nothing.
    class ReaderDepths
    {
    public:
        /// The depth of `reader`, or null when it holds no read lock.
        uint32_t* Find(std::thread::id reader);
        /// The depth of `reader`, added at 0 when it held none.
        uint32_t& Of(std::thread::id reader);
        void      Erase(std::thread::id reader);
        /// Whether no thread but `self` reads.
        bool OnlyReaderIs(std::thread::id self) const;

    private:
        std::vector<std::pair<std::thread::id, uint32_t>> m_depths;
    };

    bool WriteAllowed(std::thread::id self) const;
    /// Waits on m_condition until `ready` holds, counted in m_waiting so that an unlock wakes
    /// only when somebody waits. `guard` holds m_mutex.
    template <typename Ready>
    void WaitUntil(std::unique_lock<std::mutex>& guard, Ready ready)
    {
        while (!ready())
        {
            ++m_waiting;
            m_condition.wait(guard);
            --m_waiting;
        }
    }
    /// Wakes the waiting threads, if any; called after m_mutex was released. `waiting` is
    /// m_waiting as read under it.
    void WakeWaiting(bool waiting)
    {
        if (waiting)
        {
            m_condition.notify_all();
        }
    }

    std::mutex              m_mutex;          ///< held only for the bookkeeping below
    uint32_t                m_writeCount = 0; ///< depth of the write side; 0: no writer
    std::thread::id         m_writeOwner;     ///< cleared when m_writeCount reaches 0
    ReaderDepths            m_readers;
    std::condition_variable m_condition;   ///< woken by an unlock while a thread waits
    uint32_t                m_waiting = 0; ///< threads blocked in WaitUntil
};

/// Locks a ParameterMutex for a scope, when `condition` holds (code whose need for the lock
/// depends on the state passes that state). Unlocks at the end of the scope if it locked.
class PDLIBVARK_API ParameterMutexLock
{
public:
    ParameterMutexLock(ParameterMutex* lock, bool sharedSide, bool condition);
    ~ParameterMutexLock();
    ParameterMutexLock(ParameterMutexLock const&)            = delete;
    ParameterMutexLock& operator=(ParameterMutexLock const&) = delete;

private:
    ParameterMutex* mutex;  ///< not owned
    bool            shared; ///< the side taken
    bool            locked; ///< whether this guard locked at all
};

#endif // PARAMETERMUTEX_H
