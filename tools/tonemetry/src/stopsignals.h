// The commands that serve until they are told to stop (serve, ui) stop on SIGINT and SIGTERM,
// waited for with sigwait, so that no signal handler runs anywhere.
#ifndef TONEMETRY_STOPSIGNALS_H
#define TONEMETRY_STOPSIGNALS_H

#include <csignal>

namespace tonemetry
{
/// Blocks SIGINT and SIGTERM in the calling thread. Call it before any thread starts: threads
/// inherit the mask, so the signals wait for WaitForStopSignal.
sigset_t BlockStopSignals();

/// Returns once SIGINT or SIGTERM has come.
void WaitForStopSignal(const sigset_t& signals);
} // namespace tonemetry

#endif // TONEMETRY_STOPSIGNALS_H
