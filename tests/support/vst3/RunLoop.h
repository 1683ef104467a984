// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "support/vst3/HostObject.h"

#include <pluginterfaces/gui/iplugview.h>

#include <vector>

/** A host's run loop on Linux: it tells plug-ins of file descriptors that have something to read. It has no timers, and
    says so to whoever asks for one. Message thread only. */
class RunLoop : public HostObject<Steinberg::Linux::IRunLoop>
{
public:
    RunLoop() : HostObject (Steinberg::Linux::IRunLoop_iid) {}

    /** The one that a host runs for all of its windows. */
    static RunLoop& ofTheHost();

    /** One turn of the loop. */
    void turn();

    /** Whether it watches nothing. */
    bool isEmpty() const { return watched.empty(); }

    Steinberg::tresult PLUGIN_API registerEventHandler (Steinberg::Linux::IEventHandler* handler,
                                                        Steinberg::Linux::FileDescriptor descriptor) override;
    Steinberg::tresult PLUGIN_API unregisterEventHandler (Steinberg::Linux::IEventHandler* handler) override;

    Steinberg::tresult PLUGIN_API registerTimer (Steinberg::Linux::ITimerHandler*,
                                                 Steinberg::Linux::TimerInterval) override
    {
        return Steinberg::kNotImplemented;
    }

    Steinberg::tresult PLUGIN_API unregisterTimer (Steinberg::Linux::ITimerHandler*) override
    {
        return Steinberg::kNotImplemented;
    }

private:
    struct Watch
    {
        Steinberg::Linux::IEventHandler* handler;
        Steinberg::Linux::FileDescriptor descriptor;

        bool operator== (const Watch&) const = default;
    };

    std::vector<Watch> watched;
};
