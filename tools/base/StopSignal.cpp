// SPDX-License-Identifier: AGPL-3.0-only
#include "base/StopSignal.h"

#include <atomic>
#include <csignal>

namespace larkspire
{

namespace
{
// The signal may arrive in a thread of the plug-in, hence an atomic and no sig_atomic_t.
std::atomic<int> stopSignal { 0 };
static_assert (std::atomic<int>::is_always_lock_free);

void requestStop (int signal)
{
    stopSignal.store (signal);
}

void setHandler (int signal, void (*handler) (int))
{
    struct sigaction action = {};
    action.sa_handler = handler;
    action.sa_flags = SA_RESTART;
    sigemptyset (&action.sa_mask);
    sigaction (signal, &action, nullptr);
}

bool isIgnored (int signal)
{
    struct sigaction present = {};
    sigaction (signal, nullptr, &present);
    return present.sa_handler == SIG_IGN;
}
} // namespace

void installSignalHandlers()
{
    setHandler (SIGINT, requestStop);
    setHandler (SIGTERM, requestStop);

    if (! isIgnored (SIGHUP))
        setHandler (SIGHUP, requestStop);

    setHandler (SIGXFSZ, SIG_IGN);
}

bool stopRequested() noexcept
{
    return stopSignal.load() != 0;
}

void endBySignal()
{
    if (const auto signal = stopSignal.load(); signal != 0)
    {
        setHandler (signal, SIG_DFL);
        std::raise (signal);
    }
}

} // namespace larkspire
