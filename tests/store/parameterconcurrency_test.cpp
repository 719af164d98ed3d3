// Readers, reloads and updates on several threads at once, in file mode: reloads that several
// readers need at the same moment, and readers that go on while the file is rewritten and
// updates arrive. Each test is bounded: a watchdog ends the run if a thread hangs.
#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/stat.h>

#include <atomic>
#include <chrono>
#include <cstdio>
#include <mutex>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "logcapture.h"
#include "runtimefixture.h"
#include "watchdog.h"

namespace
{
using namespace std::chrono_literals;
using storetest::BpsGain;
using storetest::Branch;
using storetest::DemoModule;
using storetest::DemoRecord;
using storetest::MakeMode;
using storetest::NoLinkSetManager;
using storetest::TempFile;
using testsupport::LogCapture;
using tuningfile::TuningFileModel;

// Far longer than any of these tests takes, even under ThreadSanitizer.
constexpr auto WatchdogTime = 120s;

constexpr uint16_t UsecaseCount = 8;

constexpr float RootGain = 0.5f;

// The root and eight use cases; use case k's "demo10_bps" has the gain 100 * version + k. No two
// entries are equal, so none shares another's instance.
TuningFileModel VersionModel(uint32_t version)
{
    TuningFileModel model;
    model.modes   = {MakeMode(0, 0, 0)};
    model.modules = {DemoModule("demo10_bps", 0, RootGain)};
    for (uint16_t usecase = 0; usecase < UsecaseCount; ++usecase)
    {
        model.modes.push_back(MakeMode(2, usecase, 0));
        model.modules.push_back(DemoModule("demo10_bps", usecase + 1u, 100.0f * version + usecase));
    }
    return model;
}

std::vector<TuningMode> Usecase(uint16_t usecase)
{
    return Branch({{0, 0}, {2, usecase}});
}

// Replaces the file at once, as a tool writing a new one would, with the modification time
// `version` seconds after the first; a reader never sees half a file.
void Publish(const TempFile& file, uint32_t version)
{
    const std::string    staged = file.Path() + ".staged";
    std::vector<uint8_t> image  = storetest::Written(VersionModel(version));
    FILE*                out    = fopen(staged.c_str(), "wb");
    ASSERT_NE(nullptr, out);
    ASSERT_EQ(image.size(), fwrite(image.data(), 1, image.size(), out));
    fclose(out);
    struct timespec times[2] = {{1700000000 + static_cast<time_t>(version), 0},
                                {1700000000 + static_cast<time_t>(version), 0}};
    ASSERT_EQ(0, utimensat(AT_FDCWD, staged.c_str(), times, 0));
    ASSERT_EQ(0, rename(staged.c_str(), file.Path().c_str()));
}

class StoreConcurrency : public testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(storetest::LoadImage(m_manager, storetest::Written(VersionModel(0)), true, m_file));
        Publish(m_file, 0);
    }

    storetest::Watchdog m_watchdog{WatchdogTime};
    LogCapture          m_log;
    TempFile            m_file{"concurrency"};
    NoLinkSetManager    m_manager;
};

// Each round changes the file and unloads the use cases, then lets four readers ask at once:
// every one of them finds the file changed and needs the reload, while the others hold the
// access lock and wait for the load lock. Exactly one reload serves them all.
TEST_F(StoreConcurrency, ReadersThatAllNeedTheReloadDoNotWaitForEachOther)
{
    constexpr uint32_t Rounds  = 20;
    constexpr uint16_t Readers = 4;
    m_manager.m_logDebug       = true;
    for (uint32_t round = 1; round <= Rounds; ++round)
    {
        // The new file is published before the unloads, which take nothing from the file.
        Publish(m_file, round);
        for (uint16_t usecase = 0; usecase < Readers; ++usecase)
        {
            const std::vector<TuningMode> branch = Usecase(usecase);
            EXPECT_TRUE(m_manager.UnloadMode(branch.data(), 2));
        }
        std::atomic<uint16_t>    waiting{Readers};
        std::vector<float>       gains(Readers, 0.0f);
        std::vector<std::thread> readers;
        for (uint16_t reader = 0; reader < Readers; ++reader)
        {
            readers.emplace_back([&, reader] {
                --waiting;
                while (0 != waiting.load())
                {
                    std::this_thread::yield();
                }
                gains[reader] = BpsGain(m_manager, Usecase(reader));
            });
        }
        for (std::thread& reader : readers)
        {
            reader.join();
        }
        for (uint16_t reader = 0; reader < Readers; ++reader)
        {
            EXPECT_EQ(100.0f * round + reader, gains[reader]) << "round " << round << ", reader " << reader;
        }
    }
    EXPECT_EQ(Rounds, m_log.Count("Reloading binary file " + m_file.Path() + "\n"));
}

// Readers fetch, read and give back records and read values as text, on use cases that keep
// evicting each other, while the file is rewritten a dozen times and then updates arrive.
TEST_F(StoreConcurrency, ReadersGoOnThroughRewritesAndUpdates)
{
    constexpr uint32_t Versions   = 12;
    constexpr uint32_t Iterations = 400;
    constexpr uint16_t Readers    = 3;
    m_manager.m_maxLoadedModes    = 3; // five use cases stay loaded: the others load from the file
    m_manager.m_logDebug          = true;
    std::set<float> possible      = {RootGain}; // where a use case's module failed to load
    for (uint32_t version = 0; version <= Versions + 50; ++version)
    {
        for (uint16_t usecase = 0; usecase < UsecaseCount; ++usecase)
        {
            possible.insert(100.0f * version + usecase);
        }
    }

    std::atomic<uint32_t>    published{0};
    std::atomic<bool>        updated{false};
    std::atomic<uint32_t>    fetched{0};
    std::atomic<uint32_t>    wrong{0};
    std::vector<std::thread> threads;
    for (uint16_t reader = 0; reader < Readers; ++reader)
    {
        threads.emplace_back([&, reader] {
            // At least Iterations rounds, and on until the updates are through.
            for (uint32_t iteration = 0; (iteration < Iterations) || !updated.load(); ++iteration)
            {
                const std::vector<TuningMode> branch = Usecase((iteration + reader) % UsecaseCount);
                {
                    // The holder's side of the contract: while it holds the access lock no
                    // reload can take the record away, so at most one passes under its use.
                    ParameterMutexLock hold(&m_manager.m_accessLock, true, true);
                    DemoRecord*        record = m_manager.GetModule_demo10_bps(branch.data(), 2, nullptr);
                    if (nullptr != record)
                    {
                        ++fetched;
                        wrong += (0 == possible.count(record->gain)) ? 1u : 0u;
                        record->Release();
                    }
                }
                char text[64] = "";
                if (m_manager.GetValue(branch.data(), 2, "demo10_bps", "gain", text, sizeof(text)))
                {
                    wrong += (0 != std::string(text).compare(0, 5, "gain=")) ? 1u : 0u;
                }
                std::this_thread::sleep_for(50us);
            }
        });
    }
    threads.emplace_back([&] {
        for (uint32_t version = 1; version <= Versions; ++version)
        {
            Publish(m_file, version);
            published = version;
            std::this_thread::sleep_for(10ms);
        }
    });
    threads.emplace_back([&] {
        while (published.load() < Versions / 2)
        {
            std::this_thread::sleep_for(1ms);
        }
        for (uint32_t update = 0; update < 3; ++update)
        {
            std::vector<uint8_t> image = storetest::Written(VersionModel(Versions + 10 + update));
            EXPECT_TRUE(m_manager.UpdateBinaryParameters(image.data(), image.size()));
            std::this_thread::sleep_for(10ms);
        }
        updated = true;
    });
    for (std::thread& thread : threads)
    {
        thread.join();
    }
    EXPECT_EQ(0u, wrong.load());
    EXPECT_GT(fetched.load(), Iterations);
    EXPECT_LE(1u, m_log.Count("Reloading binary file " + m_file.Path() + "\n")) << "readers met a changed file";
    EXPECT_EQ(1u, m_log.Count("Reloading binary file " + m_file.Path() + " in buffer mode\n"));
    EXPECT_FALSE(m_manager.IsFileMode()) << "the first update ends file mode";
    EXPECT_EQ(3u, m_manager.m_updateSetManagers.size());
    // The last update's first use case took its siblings' modules; the others kept theirs.
    EXPECT_EQ(100.0f * (Versions + 12) + UsecaseCount - 1, BpsGain(m_manager, Usecase(0)));
    EXPECT_EQ(1u, possible.count(BpsGain(m_manager, Usecase(3))));
}
} // namespace
