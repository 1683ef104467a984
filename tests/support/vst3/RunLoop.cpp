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
    const auto now = watched;

    for (const auto& watch : now)
    {
        pollfd entry { .fd = watch.descriptor, .events = POLLIN, .revents = 0 };

        // What was told before may have ended this one.
        if (std::ranges::find (watched, watch) != watched.end() && poll (&entry, 1, 0) > 0)
            watch.handler->onFDIsSet (watch.descriptor);
    }
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
