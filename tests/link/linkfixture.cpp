#include "linkfixture.h"

#include <thread>

#include "runtimefixture.h"

namespace linktest
{
tuningfile::TuningFileModel DemoModel(const std::string& binaryTag)
{
    tuningfile::TuningFileModel model;
    model.binaryTag = binaryTag;
    model.modes     = {storetest::MakeMode(0, 0, 0), storetest::MakeMode(2, 2, 0), storetest::MakeMode(3, 1, 1)};
    model.modules   = {storetest::MakeModule("demo10_bps", 0, storetest::DemoData(1.5f), {1, 0, 0}),
                       storetest::DemoModule("demo10_ife", 0, 10.0f), storetest::ConfigModule(0, 4),
                       storetest::DemoModule("demo10_bps", 1, 2.0f)};
    return model;
}

void LinkTest::StartLink(const LinkOptions& options)
{
    m_manager                 = std::make_unique<TestModuleSetManager>();
    m_manager->m_logDebug     = true;
    Worker().m_pCustomHandler = options.handler;
    ASSERT_TRUE(storetest::LoadImage(*m_manager, storetest::Written(DemoModel(options.tag)), options.fileMode, m_file))
        << m_manager->m_errorText;
    ASSERT_NE(0, m_manager->GetTuningLinkPort()) << "the link listens once the file is loaded";
    m_client = std::make_unique<LinkClient>(m_manager->GetTuningLinkPort());
    ASSERT_TRUE(m_client->Connected());
}

std::chrono::milliseconds LinkTest::DeleteManager()
{
    auto start = std::chrono::steady_clock::now();
    m_manager.reset();
    return std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() - start);
}

void LinkTest::ExpectNoReply(const Bytes& request)
{
    ASSERT_TRUE(m_client->Send(request));
    Bytes reply = m_client->Exchange(DeviceInfoRequest());
    ASSERT_LE(6u, reply.size()) << "the link answers again";
    EXPECT_EQ(0, U16At(reply, 2)) << "a reply came before the device info";
}

bool LinkTest::WaitForLog(const std::string& fragment) const
{
    auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(5);
    while (0 == m_log.Count(fragment))
    {
        if (std::chrono::steady_clock::now() > deadline)
        {
            return false;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    return true;
}
} // namespace linktest
