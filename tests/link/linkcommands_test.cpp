// The nine commands of the live tuning link over loopback, reply byte by reply byte: device
// info, the value lists, child modes, info rows, reading and setting values, the custom command,
// and the requests too short to be answered.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <string>

#include "linkfixture.h"
#include "runtimefixture.h"

namespace
{
using linktest::Bytes;
using linktest::DeviceInfoRequest;
using linktest::Header;
using linktest::LinkTest;
using linktest::RawRequest;
using linktest::Request;
using linktest::TextAt;
using linktest::U16At;
using linktest::U32At;
using linktest::U64At;

/// The reply that echoes the request's 10-byte header, with the length of `text` and its NUL.
Bytes EchoReply(const Bytes& request, const std::string& text)
{
    Bytes reply(request.begin(), request.begin() + 10);
    reply.insert(reply.end(), text.begin(), text.end());
    reply.push_back(0);
    reply[4] = static_cast<uint8_t>(reply.size());
    reply[5] = static_cast<uint8_t>(reply.size() >> 8);
    return reply;
}

/// A 6-byte reply header of `command` with the text and its NUL.
Bytes ListReply(uint16_t command, const std::string& text)
{
    Bytes reply = Header(command, static_cast<uint16_t>(6 + text.size() + 1));
    reply.insert(reply.end(), text.begin(), text.end());
    reply.push_back(0);
    return reply;
}

class LinkCommands : public LinkTest
{
};

TEST_F(LinkCommands, DeviceInfoNamesTheDeviceByItsTagOrItsHandle)
{
    for (std::string tag : {"rear-wide", ""})
    {
        SCOPED_TRACE(tag);
        StartLink({tag, false, nullptr});
        IParameterDataAPI* handle = m_manager.get();
        char               pointerName[32];
        snprintf(pointerName, sizeof(pointerName), "0x%016lx", reinterpret_cast<unsigned long>(handle));
        std::string name = tag.empty() ? pointerName : tag;

        Bytes reply = m_client->Exchange(DeviceInfoRequest());
        ASSERT_EQ(17 + name.size(), reply.size());
        EXPECT_EQ(linktest::StartTag, U16At(reply, 0));
        EXPECT_EQ(0, U16At(reply, 2));
        EXPECT_EQ(17 + name.size(), U16At(reply, 4));
        EXPECT_EQ(1, reply[6]) << "version 1.0";
        EXPECT_EQ(0, reply[7]);
        EXPECT_EQ(reinterpret_cast<uint64_t>(handle), U64At(reply, 8));
        EXPECT_EQ(name, TextAt(reply, 16));
        EXPECT_EQ(0, reply.back());
        EXPECT_TRUE(WaitForLog("Ravlen queued command: Info(0), Version: 1.0, Name: " + name + "\n"));
        m_client.reset();
        m_manager.reset();
        m_log.Clear();
    }
}

TEST_F(LinkCommands, ARuntIsAnsweredWithTheDeviceInfo)
{
    StartLink();
    // A header that claims 3 bytes: the link takes three, answers with the device info, and
    // the three left over are dropped with the next bytes for want of a start tag.
    Bytes reply = m_client->Exchange(Header(5, 3));
    ASSERT_LE(16u, reply.size());
    EXPECT_EQ(0, U16At(reply, 2));
    EXPECT_EQ("rear-wide", TextAt(reply, 16));
    EXPECT_TRUE(WaitForLog("Failed to read 2 bytes from binary file offset 2, length 3\n"));
    ASSERT_TRUE(m_client->Send(Bytes{1, 2, 3}));
    EXPECT_TRUE(WaitForLog("Ravlen request missing start tag, Expected: 19290, Received: 768: 0x0003000102\n"));
    EXPECT_EQ(reply, m_client->Exchange(DeviceInfoRequest())) << "the link recovers";
}

TEST_F(LinkCommands, ListsOfModesAndValuesComeBehindASixByteHeader)
{
    LinkOptions options;
    options.fileMode = true;
    StartLink(options);
    m_manager->SetControlValues("12=0.5,3=17");
    m_manager->SetTriggerValues("5=-2");
    // In file mode a record that is held keeps its mode active.
    std::vector<TuningMode> video  = storetest::Branch({{0, 0}, {2, 2}});
    auto*                   record = m_manager->GetModule_demo10_bps(video.data(), 2, nullptr);
    ASSERT_NE(nullptr, record);

    EXPECT_EQ(ListReply(1, "Default|Usecase.Video"), m_client->Exchange(Header(1, 6)));
    EXPECT_EQ(ListReply(2, "3=17,12=0.500000"), m_client->Exchange(Header(2, 6)));
    EXPECT_EQ(ListReply(7, "5=-2"), m_client->Exchange(Header(7, 6)));
    record->Release();
    EXPECT_TRUE(WaitForLog("Ravlen queued command: Active Modes(1), Version: 1.0, Active: Default|Usecase.Video\n"));
    EXPECT_TRUE(WaitForLog("Ravlen queued command: Control Values(2), Version: 1.0, Name: 3=17,12=0.500000\n"));
    EXPECT_TRUE(WaitForLog("Ravlen queued command: Trigger Values(7), Version: 1.0, Name: 5=-2\n"));

    m_manager->SetControlValues("");
    EXPECT_EQ(ListReply(2, ""), m_client->Exchange(Header(2, 6))) << "an empty list is an empty text";
}

// Requests whose reply echoes their 10-byte header: the text that each gets. The set cases run
// in order on demo10_ife, the others read demo10_bps.
struct EchoCase
{
    uint16_t    command;
    std::string payload;
    std::string text;
};

TEST_F(LinkCommands, RequestsWithAPayloadEchoTheirHeaderAndAnswerWithText)
{
    const EchoCase cases[] = {
        {3, "Default", "Usecase.Video"},
        {3, "Default|Usecase.Video", "Feature1.ISPHDR"},
        {3, "Default|Usecase.Video|Feature1.ISPHDR", ""},
        {4, "Default:demo10_bps.module_version", "major_revision=1,Int32;minor_revision=0,Int32;incr_revision=0,Int32"},
        {4, "Default:demo10_bps.gamma_tab", "gamma,Float,4"},
        // An empty path lists the root's modules, each with the mode of the instance that wins.
        {4, "Default|Usecase.Video:",
         "testconfigdata=Default,Module;demo10_ife=Default,Module;demo10_bps=Default|Usecase.Video,Module"},
        {4, "Default:nosuch", ""},
        {5, "Default:demo10_bps:gain,label", "gain=1.5;label=demo"},
        {5, "Default|Usecase.Video:demo10_bps:gain", "gain=2.0"},
        {5, "Default|Usecase.Video||Feature1.ISPHDR:demo10_bps:gain", "gain=2.0"},
        {5, "Default:demo10_bps.gamma_tab", "gamma=0.5,1.0,1.5,2.0"},
        {5, "Default", ""},
        {6, "Default:demo10_ife:gain=3;label=;module_version.major_revision=4",
         "gain=3.0;module_version.major_revision=4"},
        {6, "Default:demo10_ife:nosuch=1;gain=;gain=x1", ""},
        {6, "Default:demo10_ife", ""},
        {5, "Default:demo10_ife:gain,module_version.major_revision", "gain=3.0;module_version.major_revision=4"},
    };
    StartLink();
    uint32_t id = 0x10203040;
    for (const EchoCase& item : cases)
    {
        SCOPED_TRACE(std::to_string(item.command) + " " + item.payload);
        Bytes request = Request(item.command, ++id, item.payload);
        EXPECT_EQ(EchoReply(request, item.text), m_client->Exchange(request));
    }
    EXPECT_TRUE(WaitForLog("Ravlen queued command: Modes(3), ID: 270544961, Payload: Usecase.Video...\n"));
    EXPECT_TRUE(WaitForLog("Ravlen queued command: GetValues(5), ID: 270544968, Payload: gain=1.5;label=demo\n"));
    EXPECT_TRUE(WaitForLog("Ravlen queued command: SetValues(6), ID: 270544973, Payload: gain=3.0;"));
    EXPECT_TRUE(WaitForLog("Ravlen queued command: Info(4), ID: 270544967, Payload: \n"));
}

TEST_F(LinkCommands, RequestsTooShortForTheirCommandGetNoReply)
{
    StartLink();
    for (uint16_t command : {3, 4, 5, 6, 8})
    {
        SCOPED_TRACE(command);
        ExpectNoReply(RawRequest(command, 7, {}));
    }
}

/// Answers with the request reversed and a result of 0xBEEF, or with the bytes 0x01 0xFF.
class ReversingHandler : public ICustomCommandHandler
{
public:
    UINT16 ProcessCommand(UINT8 const* pRequest, UINT32 requestSize, UINT32 capacity, UINT8* pReply,
                          UINT16* pReplySize) override
    {
        lastCapacity = capacity;
        if ((1 == requestSize) && ('b' == pRequest[0]))
        {
            pReply[0]   = 0x01;
            pReply[1]   = 0xFF;
            *pReplySize = 2;
            return 1;
        }
        std::reverse_copy(pRequest, pRequest + requestSize, pReply);
        *pReplySize = static_cast<UINT16>(requestSize);
        return 0xBEEF;
    }

    UINT32 lastCapacity = 0;
};

TEST_F(LinkCommands, TheCustomCommandAnswersWithTheHandlersResultAndBytes)
{
    StartLink();
    Bytes request = RawRequest(8, 99, {'x'});
    Bytes reply   = m_client->Exchange(request);
    ASSERT_EQ(12u, reply.size()) << "no handler: result 0 and no bytes";
    EXPECT_EQ(Bytes(request.begin() + 6, request.begin() + 10), Bytes(reply.begin() + 6, reply.begin() + 10));
    EXPECT_EQ(12, U16At(reply, 4));
    EXPECT_EQ(0, U16At(reply, 10));
    EXPECT_TRUE(WaitForLog("Ravlen queued Custom command received with no handler installed, sending result = 0\n"));
    m_client.reset();
    m_manager.reset();

    ReversingHandler handler;
    StartLink({"rear-wide", false, &handler});
    reply = m_client->Exchange(RawRequest(8, 100, {'a', 'b', 'c'}));
    EXPECT_EQ((Bytes{0x5A, 0x4B, 8, 0, 15, 0, 100, 0, 0, 0, 0xEF, 0xBE, 'c', 'b', 'a'}), reply);
    EXPECT_EQ(65523u, handler.lastCapacity) << "the room of the reply";
    EXPECT_TRUE(WaitForLog("Ravlen queued command: Custom(8), ID: 100, Payload: cba...\n"));
    reply = m_client->Exchange(RawRequest(8, 101, {'b'}));
    EXPECT_EQ((Bytes{0x5A, 0x4B, 8, 0, 14, 0, 101, 0, 0, 0, 1, 0, 0x01, 0xFF}), reply);
    EXPECT_TRUE(WaitForLog("Ravlen queued command: Custom(8), ID: 101, Payload: 01FF...\n"));
}

TEST(LinkPrintable, OnlyPrintableBytesAndNulsArePrintable)
{
    const UINT8 mixed[]   = {0x41, 0x00, 0x7E};
    const UINT8 control[] = {0x41, 0x1F};
    const UINT8 del[]     = {0x7F};
    EXPECT_TRUE(ParameterRavlenWorker::IsPrintable(mixed, 3));
    EXPECT_FALSE(ParameterRavlenWorker::IsPrintable(control, 2));
    EXPECT_FALSE(ParameterRavlenWorker::IsPrintable(del, 1));
    EXPECT_FALSE(ParameterRavlenWorker::IsPrintable(mixed, 0));
    EXPECT_FALSE(ParameterRavlenWorker::IsPrintable(nullptr, 3));
}
} // namespace
