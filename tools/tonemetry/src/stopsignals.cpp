#include "stopsignals.h"

#include <pthread.h>

namespace tonemetry
{
sigset_t BlockStopSignals()
{
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGINT);
    sigaddset(&signals, SIGTERM);
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);
    return signals;
}

void WaitForStopSignal(const sigset_t& signals)
{
    int received = 0;
    while ((0 != sigwait(&signals, &received)) || ((SIGINT != received) && (SIGTERM != received)))
    {
    }
}
} // namespace tonemetry
