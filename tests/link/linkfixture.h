// A set manager of the store's test modules serving a tuning file on its live tuning link, and
// a client connected to it. Every test is bounded by a watchdog: a hung link thread can be
// neither joined nor cleaned up.
#ifndef TESTS_LINK_LINKFIXTURE_H
#define TESTS_LINK_LINKFIXTURE_H

#include <gtest/gtest.h>

#include <chrono>
#include <memory>
#include <string>

#include "g_storetest/testmodulesetmanager.h"
#include "linkclient.h"
#include "logcapture.h"
#include "parameterravlenworker.h"
#include "storefiles.h"
#include "watchdog.h"

namespace linktest
{
/// "Default" holds demo10_bps (gain 1.5, label "demo"), demo10_ife (gain 10) and testconfigdata;
/// "Usecase.Video" its own demo10_bps (gain 2); "Feature1.ISPHDR" below Video holds nothing.
tuningfile::TuningFileModel DemoModel(const std::string& binaryTag);

/// The request of the device info, which every state of the link answers: a test that expects
/// no reply to a request sends it behind and finds its answer first.
inline Bytes DeviceInfoRequest()
{
    return Header(0, 6);
}

class LinkTest : public testing::Test
{
protected:
    struct LinkOptions
    {
        std::string            tag      = "rear-wide";
        bool                   fileMode = false;
        ICustomCommandHandler* handler  = nullptr; ///< installed before the link starts
    };

    /// Loads DemoModel into a new manager with its link, debug lines on, and connects m_client.
    void StartLink(const LinkOptions& options);
    void StartLink() { StartLink(LinkOptions()); }
    /// The link's worker.
    ParameterRavlenWorker& Worker() const { return **m_manager->m_tuningWorker; }
    /// Deletes the manager, which stops its link; the time that took.
    std::chrono::milliseconds DeleteManager();
    /// Sends `request`, then a device-info request, and expects the device info to be the next
    /// packet: `request` got no reply.
    void ExpectNoReply(const Bytes& request);
    /// Waits up to five seconds for a log line with `fragment`, as the link's threads log.
    bool WaitForLog(const std::string& fragment) const;

    storetest::Watchdog                   m_watchdog{std::chrono::seconds(60)};
    testsupport::LogCapture               m_log;
    storetest::TempFile                   m_file{"link"};
    std::unique_ptr<TestModuleSetManager> m_manager;
    std::unique_ptr<LinkClient>           m_client;
};
} // namespace linktest

#endif // TESTS_LINK_LINKFIXTURE_H
