// SPDX-License-Identifier: AGPL-3.0-only
#include "support/vst3/RunLoop.h"

#include <algorithm>

#include <poll.h>

using namespace Steinberg;

RunLoop& RunLoop::ofTheHost()
{
    static RunLoop loop;
    return loop;
}

void RunLoop::turn()
{
    // All are asked before any is told, as loops do: one handler may read what another was to be told of.
    const auto now = watched;
    std::vector<pollfd> entries (now.size());

    for (std::size_t i = 0; i < now.size(); ++i)
        entries[i] = { .fd = now[i].descriptor, .events = POLLIN, .revents = 0 };

    poll (entries.data(), entries.size(), 0);

    for (std::size_t i = 0; i < now.size(); ++i)
        if (entries[i].revents != 0 && std::ranges::find (watched, now[i]) != watched.end())
            now[i].handler->onFDIsSet (now[i].descriptor);
}

tresult PLUGIN_API RunLoop::registerEventHandler (Linux::IEventHandler* handler, Linux::FileDescriptor descriptor)
{
    watched.push_back ({ handler, descriptor });
    return kResultOk;
}

tresult PLUGIN_API RunLoop::unregisterEventHandler (Linux::IEventHandler* handler)
{
    std::erase_if (watched, [=] (const Watch& watch) { return watch.handler == handler; });
    return kResultOk;
}
