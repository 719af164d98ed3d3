// The live tuning link over loopback. A round trip of a GetValue of one scalar, 10,000 of them,
// beside a plain echo of the same request measured in the same run (goal: the link's p99 at
// most ten times the echo's). And the process's memory before and after 100,000 mixed requests
// (goal: growth under 1 MiB). The log gate is closed as on a device, and debug logging is off
// as in generated managers.
#include <benchmark/benchmark.h>

#include <arpa/inet.h>
#include <malloc.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <string>
#include <thread>
#include <vector>

#include "g_storetest/testmodulesetmanager.h"
#include "linkclient.h"
#include "orvolog.h"
#include "tuningfile/writer.h"

namespace
{
using linktest::Bytes;
using linktest::LinkClient;
using linktest::Request;

constexpr int RoundTrips    = 10000;
constexpr int MixedRequests = 100000;
constexpr int WarmUp        = 1000;

tuningfile::Module DemoModule(const std::string& name, uint32_t modeId, float gain)
{
    tuningfile::Module module;
    module.name    = name;
    module.version = {1, 0, 0};
    module.modeId  = modeId;
    module.data =
        tuningfile::DataBuilder()
            .Record(tuningfile::DataBuilder().I32(1).I32(0).I32(0))
            .F32(gain)
            .FixedArray(std::vector<float>{0.5f, 1.0f, 1.5f, 2.0f})
            .String("bench")
            .Repeated(std::vector<tuningfile::DataBuilder>{tuningfile::DataBuilder().F32(0.0f).F32(100.0f).U32(7)});
    return module;
}

/// A manager with its link, serving the root and a video mode of the demo modules.
class LinkServer
{
public:
    LinkServer()
    {
        Orvo::Log::LoadLogSettings(0);
        tuningfile::TuningFileModel model;
        tuningfile::Mode            video;
        video.mode    = 2;
        video.subMode = 2;
        model.modes   = {tuningfile::Mode(), video};
        model.modules = {DemoModule("demo10_bps", 0, 1.5f), DemoModule("demo10_ife", 0, 10.0f),
                         DemoModule("demo10_bps", 1, 2.0f)};
        std::vector<uint8_t> image;
        std::string          error;
        m_valid =
            tuningfile::Write(model, &image, &error) && m_manager.LoadBinaryParameters(image.data(), image.size());
        m_manager.SetControlValues("1=100,2=0.25");
    }

    bool     Valid() const { return m_valid && (0 != Port()); }
    uint16_t Port() const { return m_manager.GetTuningLinkPort(); }

private:
    TestModuleSetManager m_manager;
    bool                 m_valid = false;
};

/// One loopback connection that sends back whatever it receives, on its own thread.
class EchoServer
{
public:
    EchoServer() : m_listen(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0))
    {
        sockaddr_in address{};
        address.sin_family      = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t length        = sizeof(address);
        if ((0 != bind(m_listen, reinterpret_cast<sockaddr*>(&address), sizeof(address))) ||
            (0 != listen(m_listen, 1)) || (0 != getsockname(m_listen, reinterpret_cast<sockaddr*>(&address), &length)))
        {
            return;
        }
        m_port   = ntohs(address.sin_port);
        m_thread = std::thread([this] {
            int     client = accept(m_listen, nullptr, nullptr);
            uint8_t chunk[4096];
            for (ssize_t received; (received = recv(client, chunk, sizeof(chunk), 0)) > 0;)
            {
                send(client, chunk, static_cast<size_t>(received), MSG_NOSIGNAL);
            }
            close(client);
        });
    }
    ~EchoServer()
    {
        shutdown(m_listen, SHUT_RDWR);
        if (m_thread.joinable())
        {
            m_thread.join();
        }
        close(m_listen);
    }

    uint16_t Port() const { return m_port; }

private:
    int         m_listen;
    uint16_t    m_port = 0;
    std::thread m_thread;
};

struct Percentiles
{
    double median = 0.0;
    double p99    = 0.0;
};

Percentiles Of(std::vector<double>& micros)
{
    std::sort(micros.begin(), micros.end());
    return {micros[micros.size() / 2], micros[(micros.size() * 99 + 99) / 100 - 1]};
}

/// Microseconds of one exchange; negative when the reply failed to come.
double RoundTrip(LinkClient& client, const Bytes& request)
{
    auto start  = std::chrono::steady_clock::now();
    bool served = !client.Exchange(request).empty();
    auto micros = std::chrono::duration<double, std::micro>(std::chrono::steady_clock::now() - start).count();
    return served ? micros : -1.0;
}

void GetValueRoundTrip(benchmark::State& state)
{
    LinkServer server;
    EchoServer echo;
    if (!server.Valid() || (0 == echo.Port()))
    {
        state.SkipWithError("no link or no echo server");
        return;
    }
    LinkClient          linkClient(server.Port());
    LinkClient          echoClient(echo.Port());
    Bytes               request = Request(5, 1, "Default|Usecase.Video:demo10_bps:gain");
    std::vector<double> link;
    std::vector<double> plain;
    for (auto _ : state)
    {
        // Turn by turn, so that both see the same load of the machine.
        for (int turn = 0; turn < RoundTrips; ++turn)
        {
            link.push_back(RoundTrip(linkClient, request));
            plain.push_back(RoundTrip(echoClient, request));
        }
    }
    if ((*std::min_element(link.begin(), link.end()) < 0.0) || (*std::min_element(plain.begin(), plain.end()) < 0.0))
    {
        state.SkipWithError("a reply did not come");
        return;
    }
    Percentiles linkTimes            = Of(link);
    Percentiles echoTimes            = Of(plain);
    state.counters["link_median_us"] = linkTimes.median;
    state.counters["link_p99_us"]    = linkTimes.p99;
    state.counters["echo_median_us"] = echoTimes.median;
    state.counters["echo_p99_us"]    = echoTimes.p99;
    state.counters["p99_ratio"]      = linkTimes.p99 / echoTimes.p99; // goal: at most 10
}
BENCHMARK(GetValueRoundTrip)->Iterations(1)->Unit(benchmark::kMillisecond);

long ResidentKiB()
{
    long  pages    = 0;
    long  resident = 0;
    FILE* statm    = fopen("/proc/self/statm", "r");
    if (nullptr != statm)
    {
        if (2 != fscanf(statm, "%ld %ld", &pages, &resident))
        {
            resident = 0;
        }
        fclose(statm);
    }
    return resident * (sysconf(_SC_PAGESIZE) / 1024);
}

double HeapInUseKiB()
{
    return static_cast<double>(mallinfo2().uordblks) / 1024.0;
}

void MemoryOverMixedRequests(benchmark::State& state)
{
    LinkServer server;
    if (!server.Valid())
    {
        state.SkipWithError("no link");
        return;
    }
    LinkClient  client(server.Port());
    const Bytes mixed[] = {
        Request(5, 1, "Default|Usecase.Video:demo10_bps:gain,label"),
        Request(6, 2, "Default:demo10_ife:gain=3.5;label=edited"),
        Request(4, 3, "Default:"),
        Request(4, 4, "Default:demo10_bps.module_version"),
        Request(3, 5, "Default"),
        Request(5, 6, "Default:demo10_bps.gamma_tab"),
        linktest::Header(0, 6),
        linktest::Header(1, 6),
        linktest::Header(2, 6),
    };
    auto exchange = [&client, &mixed](int count) {
        for (int turn = 0; turn < count; ++turn)
        {
            if (client.Exchange(mixed[static_cast<size_t>(turn) % (sizeof(mixed) / sizeof(mixed[0]))]).empty())
            {
                return false;
            }
        }
        return true;
    };
    // The first requests grow what is then reused: the allocator's arenas, the threads' stacks.
    bool   served     = exchange(WarmUp);
    long   rssBefore  = ResidentKiB();
    double heapBefore = HeapInUseKiB();
    for (auto _ : state)
    {
        served = served && exchange(MixedRequests);
    }
    if (!served)
    {
        state.SkipWithError("a reply did not come");
        return;
    }
    state.counters["rss_before_KiB"]  = static_cast<double>(rssBefore);
    state.counters["rss_growth_KiB"]  = static_cast<double>(ResidentKiB() - rssBefore); // goal: under 1024
    state.counters["heap_growth_KiB"] = HeapInUseKiB() - heapBefore;
    state.counters["requests"]        = MixedRequests;
}
BENCHMARK(MemoryOverMixedRequests)->Iterations(1)->Unit(benchmark::kMillisecond);
} // namespace

BENCHMARK_MAIN();
