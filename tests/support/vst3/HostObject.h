// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include <pluginterfaces/base/funknown.h>

/** An object of the host's that a plug-in gets: one interface of VST 3, not counted, because what owns it outlives the
    plug-in's references. */
template <typename Interface>
class HostObject : public Interface
{
public:
    explicit HostObject (const Steinberg::TUID& interfaceId) : ownId (interfaceId) {}
    virtual ~HostObject() = default;

    Steinberg::tresult PLUGIN_API queryInterface (const Steinberg::TUID wanted, void** object) override
    {
        const bool isKnown = Steinberg::FUnknownPrivate::iidEqual (wanted, ownId)
                             || Steinberg::FUnknownPrivate::iidEqual (wanted, Steinberg::FUnknown_iid);
        *object = isKnown ? static_cast<Interface*> (this) : nullptr;
        return isKnown ? Steinberg::kResultOk : Steinberg::kNoInterface;
    }

    Steinberg::uint32 PLUGIN_API addRef() override { return 1; }
    Steinberg::uint32 PLUGIN_API release() override { return 1; }

private:
    const Steinberg::TUID& ownId;
};
