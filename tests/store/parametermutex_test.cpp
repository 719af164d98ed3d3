#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <future>
#include <mutex>
#include <optional>
#include <thread>
#include <vector>

#include "logcapture.h"
#include "parametermutex.h"
#include "watchdog.h"

namespace
{
using namespace std::chrono_literals;
using storetest::Watchdog;

// Long enough for a thread that is free to go to get there; a blocked one never does.
constexpr auto SettleTime = 100ms;
// A lock that does not come within this long is deadlocked.
constexpr auto DeadlockTime = 10s;
// A whole test that takes this long has a deadlocked thread in it.
constexpr auto WatchdogTime = 3 * DeadlockTime;

// A thread that takes one side of the lock when started and reports when it got it.
class Contender
{
public:
    Contender(ParameterMutex& mutex, bool shared)
        : m_thread([this, &mutex, shared] {
              mutex.Lock(shared);
              m_acquired = true;
              while (!m_release)
              {
                  std::this_thread::sleep_for(1ms);
              }
              mutex.Unlock(shared);
          })
    {
    }
    ~Contender()
    {
        m_release = true;
        m_thread.join();
    }

    bool AcquiredWithin(std::chrono::milliseconds time) const
    {
        auto deadline = std::chrono::steady_clock::now() + time;
        while (!m_acquired && (std::chrono::steady_clock::now() < deadline))
        {
            std::this_thread::sleep_for(1ms);
        }
        return m_acquired;
    }
    bool Acquired() const { return m_acquired; }
    void Release() { m_release = true; }

private:
    std::atomic<bool> m_acquired{false};
    std::atomic<bool> m_release{false};
    std::thread       m_thread;
};

TEST(ParameterMutex, ReadersHoldTheLockTogether)
{
    Watchdog         watchdog(WatchdogTime);
    ParameterMutex   mutex;
    std::atomic<int> inside{0};
    auto             reader = [&] {
        mutex.Lock(true);
        ++inside;
        auto deadline = std::chrono::steady_clock::now() + DeadlockTime;
        while ((inside < 2) && (std::chrono::steady_clock::now() < deadline))
        {
            std::this_thread::sleep_for(1ms);
        }
        bool together = (2 == inside);
        mutex.Unlock(true);
        return together;
    };
    auto first  = std::async(std::launch::async, reader);
    auto second = std::async(std::launch::async, reader);
    EXPECT_TRUE(first.get());
    EXPECT_TRUE(second.get());
}

TEST(ParameterMutex, WriterExcludesReadersAndWriters)
{
    Watchdog       watchdog(WatchdogTime);
    ParameterMutex mutex;
    mutex.Lock(false);
    Contender reader(mutex, true);
    Contender writer(mutex, false);
    std::this_thread::sleep_for(SettleTime);
    EXPECT_FALSE(reader.Acquired());
    EXPECT_FALSE(writer.Acquired());

    // Either may come first; each lets go as soon as it has the lock.
    reader.Release();
    writer.Release();
    mutex.Unlock(false);
    EXPECT_TRUE(reader.AcquiredWithin(DeadlockTime));
    EXPECT_TRUE(writer.AcquiredWithin(DeadlockTime));
}

// Either side nests and is held until its last unlock, shutting out the other side of another
// thread: a writer keeps readers out, a reader keeps writers out.
TEST(ParameterMutex, EachSideNestsAndIsHeldUntilTheLastUnlock)
{
    Watchdog watchdog(WatchdogTime);
    for (bool shared : {false, true})
    {
        SCOPED_TRACE(shared ? "read side" : "write side");
        ParameterMutex mutex;
        mutex.Lock(shared);
        mutex.Lock(shared);
        mutex.Unlock(shared);

        Contender other(mutex, !shared);
        std::this_thread::sleep_for(SettleTime);
        EXPECT_FALSE(other.Acquired()); // one unlock of two: the owner still holds its side

        mutex.Unlock(shared);
        EXPECT_TRUE(other.AcquiredWithin(DeadlockTime));
    }
}

TEST(ParameterMutex, WriterMayReadAndWriteAgainAtOnce)
{
    Watchdog       watchdog(WatchdogTime);
    ParameterMutex mutex;
    mutex.Lock(false);
    mutex.Lock(true);
    mutex.Lock(false);
    // Sides are counted apart and unlock in any order.
    mutex.Unlock(true);
    mutex.Unlock(false);
    mutex.Unlock(false);

    // Fully released: another thread writes at once.
    Contender writer(mutex, false);
    EXPECT_TRUE(writer.AcquiredWithin(DeadlockTime));
}

TEST(ParameterMutex, LoneReaderUpgradesWithoutDeadlock)
{
    Watchdog       watchdog(WatchdogTime);
    ParameterMutex mutex;
    mutex.Lock(true);
    mutex.Lock(false); // the only reader: granted at once, the read side kept

    Contender reader(mutex, true);
    std::this_thread::sleep_for(SettleTime);
    EXPECT_FALSE(reader.Acquired()); // now a writer as well

    mutex.Unlock(false);
    EXPECT_TRUE(reader.AcquiredWithin(DeadlockTime));
    mutex.Unlock(true);
}

TEST(ParameterMutex, UpgradeWaitsWhileAnotherThreadReads)
{
    Watchdog       watchdog(WatchdogTime);
    ParameterMutex mutex;
    Contender      otherReader(mutex, true);
    ASSERT_TRUE(otherReader.AcquiredWithin(DeadlockTime));

    std::atomic<bool> upgraded{false};
    std::thread       upgrader([&] {
        mutex.Lock(true);
        mutex.Lock(false);
        upgraded = true;
        mutex.Unlock(false);
        mutex.Unlock(true);
    });
    std::this_thread::sleep_for(SettleTime);
    EXPECT_FALSE(upgraded);

    otherReader.Release();
    upgrader.join();
    EXPECT_TRUE(upgraded);
}

TEST(ParameterMutex, ReadUnlockWithoutReadLockChangesNothing)
{
    Watchdog       watchdog(WatchdogTime);
    ParameterMutex mutex;
    mutex.Lock(true);
    std::thread([&] { mutex.Unlock(true); }).join();

    Contender writer(mutex, false);
    std::this_thread::sleep_for(SettleTime);
    EXPECT_FALSE(writer.Acquired()); // this thread's read lock still stands

    mutex.Unlock(true);
    EXPECT_TRUE(writer.AcquiredWithin(DeadlockTime));
}

TEST(ParameterMutex, UnmatchedWriteUnlockIsReportedAndTheLockStaysUsable)
{
    Watchdog                watchdog(WatchdogTime);
    testsupport::LogCapture capture;
    ParameterMutex          mutex;
    mutex.Unlock(false);

    auto lines = capture.Matching("ParameterMutex::Unlock called when lock count is zero\n");
    ASSERT_EQ(1u, lines.size());
    EXPECT_EQ("E", lines[0].levelLetter);

    mutex.Lock(false);
    mutex.Unlock(false);
    Contender reader(mutex, true);
    EXPECT_TRUE(reader.AcquiredWithin(DeadlockTime));
}

TEST(ParameterMutexLock, LocksOnlyWhenTheConditionHolds)
{
    Watchdog       watchdog(WatchdogTime);
    ParameterMutex mutex;
    {
        ParameterMutexLock skipped(&mutex, false, false);
        Contender          writer(mutex, false);
        EXPECT_TRUE(writer.AcquiredWithin(DeadlockTime));
    }

    std::optional<ParameterMutexLock> held;
    held.emplace(&mutex, false, true);
    Contender reader(mutex, true);
    std::this_thread::sleep_for(SettleTime);
    EXPECT_FALSE(reader.Acquired());
    held.reset(); // the end of the guard's scope releases
    EXPECT_TRUE(reader.AcquiredWithin(DeadlockTime));

    ParameterMutexLock nothing(nullptr, true, true); // a null lock is never locked
}

// Writers and nested readers on several threads: the writers' counts all arrive, and readers
// never see a half-done update (the two counters move together under the write side).
TEST(ParameterMutex, KeepsSharedStateConsistentUnderLoad)
{
    Watchdog         watchdog(WatchdogTime);
    ParameterMutex   mutex;
    long             first  = 0;
    long             second = 0;
    std::atomic<int> tornReads{0};
    constexpr int    Rounds = 2000;

    std::vector<std::thread> threads;
    for (int writer = 0; writer < 2; ++writer)
    {
        threads.emplace_back([&] {
            for (int round = 0; round < Rounds; ++round)
            {
                ParameterMutexLock outer(&mutex, false, true);
                ++first;
                ParameterMutexLock inner(&mutex, true, true);
                ++second;
            }
        });
    }
    for (int reader = 0; reader < 2; ++reader)
    {
        threads.emplace_back([&] {
            for (int round = 0; round < Rounds; ++round)
            {
                ParameterMutexLock outer(&mutex, true, true);
                ParameterMutexLock inner(&mutex, true, true);
                if (first != second)
                {
                    ++tornReads;
                }
            }
        });
    }
    for (std::thread& thread : threads)
    {
        thread.join();
    }
    EXPECT_EQ(2 * Rounds, first);
    EXPECT_EQ(2 * Rounds, second);
    EXPECT_EQ(0, tornReads);
}
} // namespace
