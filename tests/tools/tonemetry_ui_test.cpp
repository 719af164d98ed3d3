// The JSON API of `tonemetry ui` over loopback: every route on a file, the refusals (token,
// Host, Origin, malformed requests), and a device that is busy with another client or goes
// away in the middle of a session.
#include <gtest/gtest.h>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <regex>
#include <string>
#include <vector>

#include <httplib.h>
#include <nlohmann/json.hpp>

#include "serverprocess.h"
#include "scratchdirectory.h"
#include "subprocess.h"

namespace
{
using nlohmann::json;
using testsupport::ProcessResult;
using testsupport::ServerProcess;

constexpr std::chrono::seconds StartBound(10);
const std::string              Threshold = "defocusConfidenceThreshold";

class TonemetryUi : public testing::Test
{
protected:
    void SetUp() override
    {
        m_file               = m_directory + "/tuning.bin";
        ProcessResult packed = testsupport::RunProcess(
            TONEMETRY_EXECUTABLE, {"pack", std::string(VARK_EXAMPLES_DIR) + "/tuning_sample.json", "-o", m_file},
            m_directory);
        ASSERT_EQ(0, packed.exitStatus) << packed.err;
    }

    /// `tonemetry ui SOURCE` on a free loopback port, and a client of it.
    void StartPage(const std::string& source, const std::vector<std::string>& extra = {})
    {
        std::vector<std::string> arguments = {"ui", source, "--listen", "127.0.0.1:0", "--no-open"};
        arguments.insert(arguments.end(), extra.begin(), extra.end());
        m_page = std::make_unique<ServerProcess>(TONEMETRY_EXECUTABLE, arguments, m_directory);
        const std::optional<std::string> address = m_page->WaitForLine("open http://127.0.0.1:", StartBound);
        ASSERT_TRUE(address.has_value()) << m_page->Err();
        m_port          = std::atoi(address->c_str());
        m_client        = std::make_unique<httplib::Client>("127.0.0.1", m_port);
        const auto page = m_client->Get("/");
        ASSERT_TRUE(page);
        std::smatch match;
        ASSERT_TRUE(
            std::regex_search(page->body, match, std::regex("name=\"tonemetry-token\" content=\"([0-9a-f]+)\"")));
        m_token = match[1];
    }

    /// The status and JSON body of a GET.
    std::pair<int, json> Get(const std::string& target, const httplib::Headers& headers = {})
    {
        const auto reply = m_client->Get(target.c_str(), headers);
        return reply ? std::make_pair(reply->status, json::parse(reply->body, nullptr, false))
                     : std::make_pair(0, json());
    }

    std::pair<int, json> Post(const std::string& target, const json& body, const std::string& token)
    {
        const auto reply =
            m_client->Post(target.c_str(), {{"X-Tonemetry-Token", token}}, body.dump(), "application/json");
        return reply ? std::make_pair(reply->status, json::parse(reply->body, nullptr, false))
                     : std::make_pair(0, json());
    }

    json SetThreshold(const std::string& value)
    {
        return Post("/api/set",
                    {{"mode", "Default|Usecase.Video"},
                     {"path", "tonemetryPDLib.correlation"},
                     {"name", Threshold},
                     {"value", value}},
                    m_token)
            .second;
    }

    testsupport::ScratchDirectory    m_scratch{"tonemetryui"};
    const std::string                m_directory = m_scratch.Path();
    std::string                      m_file;
    std::unique_ptr<ServerProcess>   m_page;
    std::unique_ptr<httplib::Client> m_client;
    int                              m_port = 0;
    std::string                      m_token;
};

const std::string VideoThreshold =
    "/api/values?mode=Default%7CUsecase.Video&path=tonemetryPDLib.correlation&names=" + Threshold;

TEST_F(TonemetryUi, EveryRouteOnAFile)
{
    ASSERT_NO_FATAL_FAILURE(StartPage(m_file));
    EXPECT_EQ(json({{"source", m_file}}), Get("/api/session").second);
    EXPECT_EQ(json({{"modes", {"Usecase.Video"}}}), Get("/api/modes?mode=Default").second);
    EXPECT_EQ(json({{"modules", {{{"name", "tonemetryPDLib"}, {"from", "Default|Usecase.Video"}}}}}),
              Get("/api/modules?mode=Default%7CUsecase.Video").second);
    EXPECT_EQ(json({{"rows",
                     {{{"name", "from"}, {"type", "Int32"}, {"value", "-32"}},
                      {{"name", "to"}, {"type", "Int32"}, {"value", "32"}}}}}),
              Get("/api/info?mode=Default&path=tonemetryPDLib.correlation.searchRange").second);
    EXPECT_EQ(json({{"values", {{{"name", Threshold}, {"value", "150.0"}}}}}), Get(VideoThreshold).second);
    EXPECT_EQ(json({{"name", "file " + m_file}, {"version", "0.0"}}), Get("/api/device").second);
    EXPECT_EQ(json({{"active", json::array()}}), Get("/api/active").second);
    EXPECT_EQ(json({{"controls", json::array()}}), Get("/api/controls").second);
    EXPECT_EQ(json({{"triggers", json::array()}}), Get("/api/triggers").second);
    for (const char* file : {"/page/app.js", "/page/style.css", "/chartjs/chart.min.js"})
    {
        const auto reply = m_client->Get(file);
        ASSERT_TRUE(reply) << file;
        EXPECT_EQ(200, reply->status) << file;
    }

    // An edit is logged against the mode that owns the instance; undo sets the old text back.
    const json edit = {{"mode", "Default|Usecase.Video"},
                       {"module", "tonemetryPDLib"},
                       {"path", "correlation"},
                       {"name", Threshold},
                       {"value", "175"},
                       {"old", "150.0"}};
    EXPECT_EQ(json({{"values", {{{"name", Threshold}, {"value", "175.0"}}}}, {"confirmed", true}, {"edits", {edit}}}),
              SetThreshold("175"));
    EXPECT_EQ(json({{"edits", {edit}}}), Get("/api/edits").second);
    EXPECT_EQ(json({{"values", {{{"name", Threshold}, {"value", "150.0"}}}}, {"edits", json::array()}}),
              Post("/api/undo", json::object(), m_token).second);
    EXPECT_EQ(json({{"values", {{{"name", Threshold}, {"value", "150.0"}}}}}), Get(VideoThreshold).second);

    // A member the module does not have: not taken, and nothing held.
    EXPECT_EQ(json({{"values", json::array()}, {"confirmed", false}, {"holds", nullptr}}),
              Post("/api/set",
                   {{"mode", "Default"}, {"path", "tonemetryPDLib.correlation"}, {"name", "nosuch"}, {"value", "1"}},
                   m_token)
                  .second);
    EXPECT_EQ(json({{"edits", json::array()}}), Get("/api/edits").second);
}

TEST_F(TonemetryUi, RefusesRequestsFromElsewhereAndMalformedOnes)
{
    ASSERT_NO_FATAL_FAILURE(StartPage(m_file));
    const std::string own = "127.0.0.1:" + std::to_string(m_port);
    struct Case
    {
        std::string      target;
        httplib::Headers headers;
        int              status;
        std::string      error;
    };
    const Case gets[] = {
        {"/api/session",
         {{"Host", "evil.example:" + std::to_string(m_port)}},
         403,
         "the request is not addressed to this server (Host: evil.example:" + std::to_string(m_port) + ")"},
        {"/api/session", {{"Origin", "http://evil.example"}}, 403, "requests from other pages are refused"},
        {"/api/session", {{"Origin", "https://" + own}}, 403, "requests from other pages are refused"},
        {"/api/modes", {}, 400, "mode is missing"},
        {"/api/info?mode=Default", {}, 400, "path is missing"},
        {"/api/info?mode=Default:1&path=x", {}, 400, "mode holds one of \":;,\""},
        {"/api/values?mode=Default&path=tonemetryPDLib&names=a;b", {}, 400, "names holds one of \":;\""},
    };
    for (const Case& request : gets)
    {
        SCOPED_TRACE(request.target);
        const auto [status, body] = Get(request.target, request.headers);
        EXPECT_EQ(request.status, status);
        EXPECT_EQ(json({{"error", request.error}}), body);
    }
    EXPECT_EQ(200, Get("/api/session", {{"Origin", "http://" + own}}).first);
    EXPECT_EQ(200, Get("/api/session", {{"Host", "localhost:" + std::to_string(m_port)}}).first);

    const json set = {{"mode", "Default"}, {"path", "tonemetryPDLib.correlation"}, {"name", Threshold}, {"value", "1"}};
    EXPECT_EQ(std::make_pair(403, json({{"error", "a change needs the token of the page"}})),
              Post("/api/set", set, ""));
    EXPECT_EQ(403, Post("/api/undo", json::object(), "0" + m_token).first);
    EXPECT_EQ(std::make_pair(400, json({{"error", "the body needs the text value"}})),
              Post("/api/set", {{"mode", "Default"}, {"path", "p"}, {"name", "n"}, {"value", 1}}, m_token));
    EXPECT_EQ(std::make_pair(400, json({{"error", "value holds one of \";\""}})),
              Post("/api/set", {{"mode", "Default"}, {"path", "p"}, {"name", "n"}, {"value", "1;x=2"}}, m_token));
    const auto garbage = m_client->Post("/api/set", {{"X-Tonemetry-Token", m_token}}, "{not json", "application/json");
    ASSERT_TRUE(garbage);
    EXPECT_EQ(400, garbage->status);
    // Nothing was set by any of them.
    EXPECT_EQ(json({{"values", {{{"name", Threshold}, {"value", "100.0"}}}}}),
              Get("/api/values?mode=Default&path=tonemetryPDLib.correlation&names=" + Threshold).second);
}

TEST_F(TonemetryUi, AFileItCannotReadOrAPortInUseIsTrouble)
{
    ASSERT_NO_FATAL_FAILURE(StartPage(m_file));
    const std::string taken = "127.0.0.1:" + std::to_string(m_port);
    struct Case
    {
        std::vector<std::string> arguments;
        std::string              error;
    };
    const Case cases[] = {
        {{"ui", m_scratch.PathOf("missing.bin"), "--no-open"},
         "tonemetry ui: " + m_scratch.PathOf("missing.bin") + ": cannot be read\n"},
        {{"ui", m_file, "--listen", taken, "--no-open"}, "tonemetry ui: cannot listen on " + taken + "\n"},
    };
    for (const Case& run : cases)
    {
        const ProcessResult result = testsupport::RunProcess(TONEMETRY_EXECUTABLE, run.arguments, m_directory);
        EXPECT_EQ(2, result.exitStatus);
        EXPECT_EQ(run.error, result.err);
        EXPECT_EQ("", result.out);
    }
}

/// A client of the device's link that holds it: the link serves one client at a time.
class LinkHolder
{
public:
    explicit LinkHolder(unsigned port) : m_socket(socket(AF_INET, SOCK_STREAM, 0))
    {
        sockaddr_in address{};
        address.sin_family      = AF_INET;
        address.sin_port        = htons(static_cast<uint16_t>(port));
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        m_connected             = 0 == connect(m_socket, reinterpret_cast<sockaddr*>(&address), sizeof(address));
    }
    ~LinkHolder() { close(m_socket); }
    LinkHolder(const LinkHolder&)            = delete;
    LinkHolder& operator=(const LinkHolder&) = delete;

    bool Connected() const { return m_connected; }

private:
    int  m_socket;
    bool m_connected = false;
};

TEST_F(TonemetryUi, ADeviceThatIsBusyOrGoesAwayIsShownSoAndFoundAgain)
{
    auto camera =
        std::make_unique<ServerProcess>(TONEMETRY_EXECUTABLE, std::vector<std::string>{"serve", m_file}, m_directory);
    std::optional<unsigned> port = camera->WaitForPort(StartBound);
    ASSERT_TRUE(port.has_value()) << camera->Err();
    const std::string device = "live:127.0.0.1:" + std::to_string(*port);
    ASSERT_NO_FATAL_FAILURE(StartPage(device, {"--timeout", "0.5"}));
    EXPECT_EQ(json({{"modes", {"Usecase.Video"}}}), Get("/api/modes?mode=Default").second);
    EXPECT_EQ(json({{"name", "vark sample tuning"}, {"version", "1.0"}}), Get("/api/device").second);
    EXPECT_EQ(json({{"values", {{{"name", Threshold}, {"value", "175.0"}}}},
                    {"confirmed", true},
                    {"edits",
                     {{{"mode", "Default|Usecase.Video"},
                       {"module", "tonemetryPDLib"},
                       {"path", "correlation"},
                       {"name", Threshold},
                       {"value", "175"},
                       {"old", "150.0"}}}}}),
              SetThreshold("175"));

    {
        LinkHolder other(*port);
        ASSERT_TRUE(other.Connected());
        const auto [status, body] = Get("/api/modes?mode=Default");
        EXPECT_EQ(503, status);
        EXPECT_EQ(json({{"error", "no reply from " + device + " within 0.5 seconds"},
                        {"disconnected", false},
                        {"busy", true}}),
                  body);
    }
    EXPECT_EQ(json({{"modes", {"Usecase.Video"}}}), Get("/api/modes?mode=Default").second) << "free again";

    camera.reset(); // killed
    const auto [status, body] = Get("/api/modes?mode=Default");
    EXPECT_EQ(503, status);
    EXPECT_EQ(true, body["disconnected"]);
    EXPECT_EQ(0u, body["error"].get<std::string>().find("cannot connect to " + device)) << body;

    camera =
        std::make_unique<ServerProcess>(TONEMETRY_EXECUTABLE, std::vector<std::string>{"serve", m_file}, m_directory);
    ASSERT_EQ(port, camera->WaitForPort(StartBound)) << "the port is free again";
    EXPECT_EQ(json({{"modes", {"Usecase.Video"}}}), Get("/api/modes?mode=Default").second);
}
} // namespace
