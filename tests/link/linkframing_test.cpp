// Packets from the byte stream: several in one read, one over several reads, a wrong start tag
// that drops what is held, the stalls that the desktop tool relies on, and clients that come
// and go.
#include <gtest/gtest.h>

#include <cstdio>
#include <string>

#include "linkfixture.h"

namespace
{
using linktest::Bytes;
using linktest::DeviceInfoRequest;
using linktest::Header;
using linktest::LinkClient;
using linktest::LinkTest;
using linktest::Request;
using linktest::TextAt;
using linktest::U16At;
using linktest::U32At;
using namespace std::chrono_literals;

Bytes Joined(Bytes first, const Bytes& second)
{
    first.insert(first.end(), second.begin(), second.end());
    return first;
}

class LinkFraming : public LinkTest
{
protected:
    void SetUp() override { StartLink(); }

    /// Expects the reply of a get-values request with `id` and `text`.
    void ExpectValues(const Bytes& reply, uint32_t id, const std::string& text)
    {
        ASSERT_LE(11u, reply.size());
        EXPECT_EQ(5, U16At(reply, 2));
        EXPECT_EQ(id, U32At(reply, 6));
        EXPECT_EQ(text, TextAt(reply, 10));
    }
};

TEST_F(LinkFraming, TwoPacketsInOneReadAreServedInTurn)
{
    ASSERT_TRUE(
        m_client->Send(Joined(Request(5, 1, "Default:demo10_bps:gain"), Request(5, 2, "Default:demo10_ife:gain"))));
    ExpectValues(m_client->Receive(), 1, "gain=1.5");
    ExpectValues(m_client->Receive(), 2, "gain=10.0");
}

TEST_F(LinkFraming, APacketOverThreeReadsCompletesOnTheThird)
{
    Bytes request = Request(5, 3, "Default|Usecase.Video:demo10_bps:gain");
    ASSERT_TRUE(m_client->Send(Bytes(request.begin(), request.begin() + 4)));
    EXPECT_TRUE(m_client->Receive(150ms).empty()) << "not even a header";
    ASSERT_TRUE(m_client->Send(Bytes(request.begin() + 4, request.begin() + 20)));
    EXPECT_TRUE(m_client->Receive(150ms).empty()) << "a header, but not the whole packet";
    ASSERT_TRUE(m_client->Send(Bytes(request.begin() + 20, request.end())));
    ExpectValues(m_client->Receive(), 3, "gain=2.0");
}

TEST_F(LinkFraming, AWrongStartTagDropsEverythingHeldWithAGoodPacketBehindIt)
{
    Bytes junk = {0x4B, 0x5A, 0x05, 0x00, 0x06, 0x00};
    ASSERT_TRUE(m_client->Send(Joined(junk, Request(5, 4, "Default:demo10_bps:gain"))));
    EXPECT_TRUE(WaitForLog("Ravlen request missing start tag, Expected: 19290, Received: 23115: 0x4b5a050006\n"));
    Bytes reply = m_client->Exchange(DeviceInfoRequest());
    ASSERT_LE(6u, reply.size());
    EXPECT_EQ(0, U16At(reply, 2)) << "the good packet went with the junk";
}

// A command the reader refuses, or a length of 0, stays at the head of the held bytes: nothing
// behind it is served, not even for the next client.
struct StallCase
{
    Bytes       header;
    std::string error;
};

class LinkStall : public LinkTest
{
};

TEST_F(LinkStall, ARefusedHeaderStallsTheLinkForGoodEvenAcrossClients)
{
    const StallCase cases[] = {
        {Header(9, 6), "Ravlen request ID 9 exceeds Max 9\n"},
        {Header(5, 0), "Ravlen request length is zero: 0x5a4b050000\n"},
    };
    for (const StallCase& item : cases)
    {
        SCOPED_TRACE(item.error);
        StartLink();
        ASSERT_TRUE(m_client->Send(item.header));
        ASSERT_TRUE(WaitForLog(item.error));
        ASSERT_TRUE(m_client->Send(Request(5, 5, "Default:demo10_bps:gain")));
        EXPECT_TRUE(m_client->Receive(500ms).empty());

        m_client = std::make_unique<LinkClient>(m_manager->GetTuningLinkPort());
        ASSERT_TRUE(m_client->Send(DeviceInfoRequest()));
        EXPECT_TRUE(m_client->Receive(500ms).empty()) << "the held bytes outlive the connection";
        EXPECT_LE(2u, m_log.Count(item.error)) << "the error repeats on every turn";
    }
}

TEST_F(LinkFraming, OneClientAtATimeAndTheNextWhenItLeaves)
{
    Bytes deviceInfo = m_client->Exchange(DeviceInfoRequest());
    ASSERT_FALSE(deviceInfo.empty());

    // A second client waits in the backlog while the first is connected.
    LinkClient second(m_manager->GetTuningLinkPort());
    ASSERT_TRUE(second.Connected());
    ASSERT_TRUE(second.Send(DeviceInfoRequest()));
    EXPECT_TRUE(second.Receive(300ms).empty());

    m_client->Close();
    EXPECT_EQ(deviceInfo, second.Receive()) << "served once the first has gone";
    EXPECT_TRUE(WaitForLog("Ravlen client disconnected.  Resetting socket\n"));
    char portName[16];
    snprintf(portName, sizeof(portName), "0x%x", m_manager->GetTuningLinkPort());
    EXPECT_EQ(2u, m_log.Count(std::string("Ravlen accepted data connection on port ") + portName + "\n"));
}
} // namespace
