// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include <pluginterfaces/vst/ivstcomponent.h>

namespace larkspire
{

/** Stands between a host and JUCE's VST 3 wrapper where a state is restored. The wrapper believes every size that it
    reads: a damaged state makes it read far behind the end, count to two thousand millions, or ask for four gigabytes.
    And of the bypass that VST 2 hosts wrap around a state it takes no notice.

    What goes on is put together anew (HostState.h); what holds less than it claims is refused. Message thread only. */
class StateGuard : public Steinberg::Vst::IComponent
{
public:
    virtual ~StateGuard() = default;

    /** The wrapper's own interface, which lives as long as hosts have this one. */
    void guard (IComponent& wrapper) { inner = &wrapper; }

    Steinberg::tresult PLUGIN_API setState (Steinberg::IBStream* stream) override;

    Steinberg::tresult PLUGIN_API queryInterface (const Steinberg::TUID id, void** object) override;
    Steinberg::uint32 PLUGIN_API addRef() override { return inner->addRef(); }
    Steinberg::uint32 PLUGIN_API release() override { return inner->release(); }

    Steinberg::tresult PLUGIN_API initialize (FUnknown* context) override { return inner->initialize (context); }
    Steinberg::tresult PLUGIN_API terminate() override { return inner->terminate(); }
    Steinberg::tresult PLUGIN_API getControllerClassId (Steinberg::TUID id) override;
    Steinberg::tresult PLUGIN_API setIoMode (Steinberg::Vst::IoMode mode) override { return inner->setIoMode (mode); }
    Steinberg::int32 PLUGIN_API getBusCount (Steinberg::Vst::MediaType type,
                                             Steinberg::Vst::BusDirection direction) override;
    Steinberg::tresult PLUGIN_API getBusInfo (Steinberg::Vst::MediaType type,
                                              Steinberg::Vst::BusDirection direction,
                                              Steinberg::int32 index,
                                              Steinberg::Vst::BusInfo& info) override;
    Steinberg::tresult PLUGIN_API getRoutingInfo (Steinberg::Vst::RoutingInfo& input,
                                                  Steinberg::Vst::RoutingInfo& output) override;
    Steinberg::tresult PLUGIN_API activateBus (Steinberg::Vst::MediaType type,
                                               Steinberg::Vst::BusDirection direction,
                                               Steinberg::int32 index,
                                               Steinberg::TBool state) override;
    Steinberg::tresult PLUGIN_API setActive (Steinberg::TBool state) override { return inner->setActive (state); }
    Steinberg::tresult PLUGIN_API getState (Steinberg::IBStream* stream) override { return inner->getState (stream); }

private:
    IComponent* inner = nullptr;
};

} // namespace larkspire
