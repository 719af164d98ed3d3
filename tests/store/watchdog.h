// Ends the whole test run when a test outlives its time: a deadlocked thread can be neither
// joined nor cleaned up, and a hang would cost the suite's whole time-out.
#ifndef TESTS_STORE_WATCHDOG_H
#define TESTS_STORE_WATCHDOG_H

#include <gtest/gtest.h>

#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <cstdlib>
#include <mutex>
#include <thread>

namespace storetest
{
class Watchdog
{
public:
    explicit Watchdog(std::chrono::seconds limit)
        : m_thread([this, limit] {
              std::unique_lock<std::mutex> guard(m_mutex);
              if (!m_finished.wait_for(guard, limit, [this] { return m_done; }))
              {
                  fprintf(stderr, "hang in %s\n", testing::UnitTest::GetInstance()->current_test_info()->name());
                  std::abort();
              }
          })
    {
    }
    ~Watchdog()
    {
        {
            std::lock_guard<std::mutex> guard(m_mutex);
            m_done = true;
        }
        m_finished.notify_all();
        m_thread.join();
    }
    Watchdog(const Watchdog&)            = delete;
    Watchdog& operator=(const Watchdog&) = delete;

private:
    std::mutex              m_mutex;
    std::condition_variable m_finished;
    bool                    m_done = false;
    std::thread             m_thread;
};
} // namespace storetest

#endif // TESTS_STORE_WATCHDOG_H
