// The link's life with its set manager: the port it takes, start by a load and not otherwise,
// stops bounded in time, edits that reach the host's records, and a manager that frees its
// file or goes away while the tool is busy.
#include <gtest/gtest.h>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdio>
#include <string>
#include <thread>

#include "linkfixture.h"
#include "parameterravlencom.h"
#include "runtimefixture.h"

namespace
{
using linktest::Bytes;
using linktest::DeviceInfoRequest;
using linktest::LinkClient;
using linktest::LinkTest;
using linktest::Request;
using linktest::TextAt;
using linktest::U16At;
using namespace std::chrono_literals;

std::string Hex(unsigned int value)
{
    char text[16];
    snprintf(text, sizeof(text), "0x%x", value);
    return text;
}

/// Listens on a port of every interface while it lives, as another program would. When someone
/// else listens there already, the port is taken all the same.
class PortHolder
{
public:
    explicit PortHolder(uint16_t port) : m_socket(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0))
    {
        int reuse = 1; // connections of earlier tests may wait out TIME_WAIT on the port
        setsockopt(m_socket, SOL_SOCKET, SO_REUSEADDR, &reuse, sizeof(reuse));
        sockaddr_in address{};
        address.sin_family      = AF_INET;
        address.sin_port        = htons(port);
        address.sin_addr.s_addr = htonl(INADDR_ANY);
        if (0 == bind(m_socket, reinterpret_cast<sockaddr*>(&address), sizeof(address)))
        {
            listen(m_socket, 1);
        }
    }
    ~PortHolder() { close(m_socket); }
    PortHolder(const PortHolder&)            = delete;
    PortHolder& operator=(const PortHolder&) = delete;

private:
    int m_socket;
};

class LinkLifecycle : public LinkTest
{
};

TEST_F(LinkLifecycle, ATakenPortMovesTheLinkToTheNextFreeOne)
{
    struct PortCase
    {
        bool     internal;
        uint16_t first;
    };
    for (PortCase item : {PortCase{false, 20803}, PortCase{true, 33127}})
    {
        SCOPED_TRACE(item.first);
        PortHolder holder(item.first);
        ParameterRavlenCom::UseInternalPort = item.internal;
        StartLink();
        ParameterRavlenCom::UseInternalPort = false;

        uint16_t port = m_manager->GetTuningLinkPort();
        EXPECT_GT(port, item.first);
        EXPECT_LT(port, item.first + 64);
        EXPECT_EQ(1u, m_log.Count("Ravlen Server INET socket created, "));
        EXPECT_EQ(1u, m_log.Count(", Port: " + Hex(item.first) + ": Result: -1, errno: " + std::to_string(EADDRINUSE)));
        EXPECT_EQ(1u, m_log.Count("Ravlen Server bound, "));
        EXPECT_EQ(1u, m_log.Count(", Port: " + Hex(port) + ": Result: 0, "));
        Bytes reply = m_client->Exchange(DeviceInfoRequest());
        EXPECT_EQ("rear-wide", TextAt(reply, 16)) << "the tool finds the link on the port reported";
        m_client.reset();
        m_manager.reset();
        m_log.Clear();
    }
}

TEST_F(LinkLifecycle, OnlyALoadStartsTheLinkAndOnlyWhenEnabled)
{
    TestModuleSetManager manager;
    manager.m_logDebug      = true;
    manager.m_tuningEnabled = false;
    EXPECT_EQ(0, manager.GetTuningLinkPort()) << "nothing listens before a load";
    std::vector<uint8_t> image = storetest::Written(linktest::DemoModel("quiet"));
    ASSERT_TRUE(manager.LoadBinaryParameters(image.data(), image.size()));
    EXPECT_EQ(0, manager.GetTuningLinkPort());
    EXPECT_EQ(0u, m_log.Count("Starting Ravlen server"));
}

TEST_F(LinkLifecycle, ASecondLoadKeepsTheRunningLink)
{
    StartLink();
    uint16_t port = m_manager->GetTuningLinkPort();
    m_manager->FreeBinaryParameters();
    std::vector<uint8_t> image = storetest::Written(linktest::DemoModel("second"));
    ASSERT_TRUE(m_manager->LoadBinaryParameters(image.data(), image.size()));
    EXPECT_EQ(port, m_manager->GetTuningLinkPort());
    EXPECT_EQ("second", TextAt(m_client->Exchange(DeviceInfoRequest()), 16)) << "the same client, the new file";
    EXPECT_EQ(1u, m_log.Count("Starting Ravlen server: "));
}

// A stop waits for the reader's poll turn, not for a client: idle, gone, or half-way through a
// packet, the link is down well within the bound of three seconds.
TEST_F(LinkLifecycle, StopsAreBoundedWithAndWithoutAClient)
{
    enum class Client
    {
        Gone,
        Idle,
        HalfAPacket,
    };
    for (Client client : {Client::Gone, Client::Idle, Client::HalfAPacket})
    {
        SCOPED_TRACE(static_cast<int>(client));
        StartLink();
        ASSERT_FALSE(m_client->Exchange(DeviceInfoRequest()).empty());
        if (Client::Gone == client)
        {
            m_client.reset();
            ASSERT_TRUE(WaitForLog("Ravlen client disconnected.  Resetting socket\n"));
        }
        else if (Client::HalfAPacket == client)
        {
            Bytes request = Request(5, 1, "Default:demo10_bps:gain");
            ASSERT_TRUE(m_client->Send(Bytes(request.begin(), request.begin() + 12)));
        }
        EXPECT_LT(DeleteManager(), 3000ms);
        EXPECT_EQ(1u, m_log.Count("Stopping TCP/IP Ravlen server: rear-wide\n"));
        m_client.reset();
        m_log.Clear();
    }

    StartLink();
    Worker().Stop();
    EXPECT_EQ(0, m_manager->GetTuningLinkPort()) << "a stopped link listens nowhere";
}

TEST_F(LinkLifecycle, AValueSetOverTheLinkIsWhatTheHostReadsAndCountsAsAChange)
{
    for (bool fileMode : {false, true})
    {
        SCOPED_TRACE(fileMode);
        StartLink({"rear-wide", fileMode, nullptr});
        std::vector<TuningMode> root   = storetest::Branch({{0, 0}});
        std::vector<TuningMode> video  = storetest::Branch({{0, 0}, {2, 2}});
        storetest::DemoRecord*  record = m_manager->GetModule_demo10_bps(video.data(), 2, nullptr);
        ASSERT_NE(nullptr, record);
        unsigned int modified = record->GetModified();

        Bytes reply = m_client->Exchange(Request(6, 1, "Default|Usecase.Video:demo10_bps:gain=4.5"));
        EXPECT_EQ("gain=4.5", TextAt(reply, 10));
        // The look-up takes the manager's lock, after the link's edit has left it.
        storetest::DemoRecord* again = m_manager->GetModule_demo10_bps(video.data(), 2, record);
        ASSERT_EQ(record, again) << "the same record, changed in place";
        EXPECT_EQ(4.5f, again->gain);
        EXPECT_EQ(modified + 1, again->GetModified());
        EXPECT_EQ(1u, m_manager->m_setValueCount.load());
        EXPECT_EQ(1.5f, storetest::BpsGain(*m_manager, root)) << "the root's instance is another";
        again->Release();
        m_client.reset();
        m_manager.reset();
    }
}

TEST_F(LinkLifecycle, AnUpdateLeavesOneLinkServingTheNewValues)
{
    StartLink();
    uint16_t                    port  = m_manager->GetTuningLinkPort();
    tuningfile::TuningFileModel model = linktest::DemoModel("update");
    model.modules[0]                  = storetest::MakeModule("demo10_bps", 0, storetest::DemoData(7.0f), {1, 0, 0});
    std::vector<uint8_t> image        = storetest::Written(model);
    ASSERT_TRUE(m_manager->UpdateBinaryParameters(image.data(), image.size()));

    ASSERT_EQ(1u, m_manager->m_updateSetManagers.size());
    ParameterSetManager* update = m_manager->m_updateSetManagers.front();
    EXPECT_NE(nullptr, update->m_tuningWorker) << "made as its receiver, with a link";
    EXPECT_EQ(0, update->GetTuningLinkPort()) << "which stays off";
    EXPECT_EQ(port, m_manager->GetTuningLinkPort());
    Bytes reply = m_client->Exchange(Request(5, 1, "Default:demo10_bps:gain"));
    EXPECT_EQ("gain=7.0", TextAt(reply, 10));
}

// The tool keeps editing while the host frees the file and then deletes the manager: no command
// reaches a freed module, and no log line of the link a freed tag (the sanitizers watch); the
// stop stays bounded.
TEST_F(LinkLifecycle, TheHostFreesAndDeletesWhileTheToolIsBusy)
{
    StartLink();
    uint16_t port = m_manager->GetTuningLinkPort();
    m_client.reset(); // one client at a time: the tool's
    std::atomic<int> replies{0};
    std::thread      tool([port, &replies] {
        LinkClient client(port);
        for (uint32_t id = 1; !client.Exchange(Request(6, id, "Default:demo10_ife:gain=2;label=x")).empty(); ++id)
        {
            ++replies;
        }
    });
    auto             waitForReplies = [&replies](int count) {
        for (int turn = 0; (turn < 500) && (replies < count); ++turn)
        {
            std::this_thread::sleep_for(10ms);
        }
        return replies >= count;
    };
    EXPECT_TRUE(waitForReplies(20));
    m_manager->FreeBinaryParameters();
    int beforeDelete = replies;
    EXPECT_TRUE(waitForReplies(beforeDelete + 20)) << "requests on a manager without a file are answered";
    EXPECT_LT(DeleteManager(), 3000ms);
    tool.join();
}
} // namespace
