// `tonemetry serve` as a script runs it: the port line, a clean exit on SIGINT and SIGTERM within
// the link's bounded stop, a file that does not load; `tonemetry live` against it for what a
// TuningSetManager answers without any module; `live` with nobody or a mute peer listening, and
// its usage errors.
#include <gtest/gtest.h>

#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <fstream>
#include <string>
#include <vector>

#include "serverprocess.h"
#include "scratchdirectory.h"
#include "subprocess.h"

namespace
{
using std::chrono::milliseconds;
using testsupport::ProcessResult;
using testsupport::ServerProcess;

/// The link polls every 100 ms and its reads time out after 3 s: a stop ends well within this.
constexpr milliseconds StopBound(5000);
constexpr milliseconds StartBound(10000);

class TonemetryServe : public testing::Test
{
protected:
    void SetUp() override
    {
        // Modes only: the tuning modules are the catalogue's, and the link answers without them.
        std::ofstream(m_scratch.PathOf("modes.json"))
            << R"({"setManager": "TuningSetManager", "binaryTag": "bench camera",
                   "modes": [{"name": "Default"}, {"name": "Usecase.Video"}, {"name": "Usecase.Preview"}],
                   "modules": []})";
        ProcessResult packed = Run({"pack", m_scratch.PathOf("modes.json"), "-o", m_scratch.PathOf("modes.bin")});
        ASSERT_EQ(0, packed.exitStatus) << packed.err;
    }

    ProcessResult Run(const std::vector<std::string>& arguments) const
    {
        return testsupport::RunProcess(TONEMETRY_EXECUTABLE, arguments, m_directory);
    }

    ProcessResult Live(unsigned port, const std::vector<std::string>& arguments) const
    {
        std::vector<std::string> all = {"live", "live:127.0.0.1:" + std::to_string(port)};
        all.insert(all.end(), arguments.begin(), arguments.end());
        return Run(all);
    }

    testsupport::ScratchDirectory m_scratch{"tonemetryserve"};
    const std::string             m_directory = m_scratch.Path();
};

TEST_F(TonemetryServe, ServesUntilSigintOrSigtermInBothModes)
{
    struct Case
    {
        std::vector<std::string> arguments;
        int                      signal;
    };
    const Case cases[] = {
        {{"serve", "modes.bin"}, SIGINT},
        {{"serve", "modes.bin", "--buffer"}, SIGTERM},
    };
    for (const Case& run : cases)
    {
        std::vector<std::string> arguments = run.arguments;
        arguments[1]                       = m_scratch.PathOf(arguments[1]);
        SCOPED_TRACE(arguments.back());
        ServerProcess           server(TONEMETRY_EXECUTABLE, arguments, m_directory);
        std::optional<unsigned> port = server.WaitForPort(StartBound);
        ASSERT_TRUE(port.has_value()) << server.Err();
        EXPECT_EQ("listening on port " + std::to_string(*port) + "\n", server.Out());

        ProcessResult info = Live(*port, {"info"});
        EXPECT_EQ(0, info.exitStatus) << info.err;
        EXPECT_EQ(0u, info.out.find("name: bench camera\nversion: 1.0\nhandle: 0x")) << info.out;
        ProcessResult modes = Live(*port, {"--json", "modes", "Default"});
        EXPECT_EQ(0, modes.exitStatus) << modes.err;
        EXPECT_EQ("{\n  \"modes\": [\n    \"Usecase.Video\",\n    \"Usecase.Preview\"\n  ]\n}\n", modes.out);

        const auto stopStart = std::chrono::steady_clock::now();
        server.Signal(run.signal);
        EXPECT_EQ(std::optional<int>(0), server.WaitForExit(StopBound)) << server.Err();
        EXPECT_LT(std::chrono::steady_clock::now() - stopStart, StopBound);
    }
}

TEST_F(TonemetryServe, AFileThatDoesNotLoadExitsWithTheReason)
{
    std::ofstream(m_scratch.PathOf("junk.bin")) << "this is no tuning file";
    for (std::string name : {"junk.bin", "missing.bin"})
    {
        SCOPED_TRACE(name);
        ProcessResult served = Run({"serve", m_scratch.PathOf(name)});
        EXPECT_EQ(1, served.exitStatus);
        EXPECT_EQ("", served.out) << "no port line for a file that did not load";
        EXPECT_NE(std::string::npos, served.err.find("tonemetry serve: " + m_scratch.PathOf(name) + ": "))
            << served.err;
    }
    ProcessResult missing = Run({"serve", m_scratch.PathOf("missing.bin")});
    EXPECT_NE(std::string::npos, missing.err.find("Failed to load binary file")) << missing.err;
}

/// A port on which a socket listens but never answers, as a device whose link is stalled.
class MutePeer
{
public:
    MutePeer()
    {
        m_socket                = socket(AF_INET, SOCK_STREAM, 0);
        sockaddr_in address     = {};
        address.sin_family      = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t length        = sizeof(address);
        if ((0 == bind(m_socket, reinterpret_cast<sockaddr*>(&address), length)) && (0 == listen(m_socket, 4)) &&
            (0 == getsockname(m_socket, reinterpret_cast<sockaddr*>(&address), &length)))
        {
            m_port = ntohs(address.sin_port);
        }
    }
    ~MutePeer() { close(m_socket); }
    MutePeer(const MutePeer&)            = delete;
    MutePeer& operator=(const MutePeer&) = delete;

    unsigned Port() const { return m_port; }
    /// Stops listening: the port then refuses connections.
    void Close() { shutdown(m_socket, SHUT_RDWR); }

private:
    int      m_socket = -1;
    unsigned m_port   = 0;
};

TEST_F(TonemetryServe, LiveWithoutAnAnswerExitsTwoWithinItsTimeout)
{
    MutePeer peer;
    ASSERT_NE(0u, peer.Port());
    const auto    start = std::chrono::steady_clock::now();
    ProcessResult mute  = Live(peer.Port(), {"--timeout", "0.5", "get", "Default", "demo.gain"});
    const auto    spent = std::chrono::steady_clock::now() - start;
    EXPECT_EQ(2, mute.exitStatus);
    EXPECT_EQ("", mute.out);
    EXPECT_EQ("tonemetry live: no reply from live:127.0.0.1:" + std::to_string(peer.Port()) + " within 0.5 seconds\n",
              mute.err);
    EXPECT_GE(spent, milliseconds(500));
    EXPECT_LT(spent, milliseconds(3000));

    peer.Close();
    ProcessResult refused = Live(peer.Port(), {"--timeout", "1", "info"});
    EXPECT_EQ(2, refused.exitStatus);
    EXPECT_EQ(0u, refused.err.find("tonemetry live: cannot connect to live:127.0.0.1:" + std::to_string(peer.Port())))
        << refused.err;
}

TEST_F(TonemetryServe, UsageErrorsExitTwoWithoutConnecting)
{
    const std::vector<std::vector<std::string>> refused = {
        {"live"},
        {"live", "nosuch"},
        {"live", "modes"},
        {"live", "modes", "Usecase.Vidoe"},
        {"live", "get", "Default"},
        {"live", "get", "Default", "demo:gain"},
        {"live", "set", "Default", "demo10_bps"},
        {"live", "set", "Default", "demo10_bps", "gain"},
        {"live", "set", "Default", "demo10_bps", "gain="},
        {"live", "set", "Default", "demo10_bps", "gain=1;label=x"},
        {"live", "live:127.0.0.1:0", "info"},
        {"live", "live:127.0.0.1:65536", "info"},
        {"live", "live::20803", "info"},
        {"live", "live:[::1", "info"},
        {"live", "127.0.0.1:20803", "info"},
        {"live", "--timeout", "-1", "info"},
        {"serve"},
    };
    for (const std::vector<std::string>& arguments : refused)
    {
        SCOPED_TRACE(arguments.back());
        ProcessResult result = Run(arguments);
        EXPECT_EQ(2, result.exitStatus);
        EXPECT_NE("", result.err);
    }
    ProcessResult vidoe = Run({"live", "modes", "Usecase.Vidoe"});
    EXPECT_NE(std::string::npos, vidoe.err.find("unknown sub-mode 'Vidoe'")) << vidoe.err;
    ProcessResult bare = Run({"live", "camera-01", "info"});
    EXPECT_NE(std::string::npos, bare.err.find("'camera-01' is no device: write live:HOST[:PORT]")) << bare.err;
}
} // namespace
