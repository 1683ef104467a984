// SPDX-License-Identifier: AGPL-3.0-only
#include "support/RawHost.h"
#include "support/vst3/ByteStream.h"
#include "support/vst3/Vst3Instance.h"
#include "windows/host/Commands.h"
#include "windows/host/HostedPlugin.h"

#include <pluginterfaces/base/iplugincompatibility.h>
#include <pluginterfaces/vst/ivstremapparamid.h>
#include <pluginterfaces/vst/ivstunits.h>

#include <array>
#include <cstdio>
#include <string_view>

using namespace Steinberg;

namespace
{
void identifyVst2 (const std::string& path)
{
    const RawHost plugin (path);
    const auto& effect = plugin.effect();
    std::printf ("id: %08x\nversion: %d\nflags: %d\n", effect.uniqueID, effect.version, effect.flags);
    std::printf ("programs: %d\nparameters: %d\n", effect.numPrograms, effect.numParams);
    std::printf ("inputs: %d\noutputs: %d\ndelay: %d\n", effect.numInputs, effect.numOutputs, effect.initialDelay);
    std::printf ("effect name: %s\n", plugin.text (Vst2::effGetEffectName).c_str());
    std::printf ("product: %s\n", plugin.text (Vst2::effGetProductString).c_str());
    std::printf ("vendor: %s\n", plugin.text (Vst2::effGetVendorString).c_str());
    std::printf ("vendor version: %d\n", static_cast<int> (plugin.dispatch (Vst2::effGetVendorVersion)));
    std::printf ("category: %d\n", static_cast<int> (plugin.dispatch (Vst2::effGetPlugCategory)));
    std::printf ("parameter: %s\n", plugin.text (Vst2::effGetParamName).c_str());

    for (int position = 0; position < 5; ++position)
    {
        plugin.setParameter (knobPosition (position));
        std::printf ("position %d: %s\n", position, plugin.text (Vst2::effGetParamDisplay).c_str());
    }
}

/** The bytes of a class id as they lie in memory on Windows, in the order in which the id is written, and back: the
    first eight bytes are a number of four bytes and two of two, the lowest byte first. */
constexpr std::array<std::size_t, 16> writtenOrder { 3, 2, 1, 0, 5, 4, 7, 6, 8, 9, 10, 11, 12, 13, 14, 15 };

std::string written (const TUID id)
{
    std::string text;

    for (const auto index : writtenOrder)
    {
        constexpr std::string_view digits = "0123456789ABCDEF";
        const auto byte = static_cast<unsigned char> (id[index]);
        text += digits[byte >> 4u];
        text += digits[byte & 15u];
    }

    return text;
}

/** The class id of the VST 2 plug-in: "VST", its id, and its name in small letters. */
std::array<char, sizeof (TUID)> classOfVst2()
{
    constexpr std::string_view text = "VSTTmwqquendal l";
    std::array<char, sizeof (TUID)> id {};

    for (std::size_t i = 0; i < id.size(); ++i)
        id[i] = text[writtenOrder[i]];

    return id;
}

void printClasses (IPluginFactory& factory)
{
    const auto extended = queryFor<IPluginFactory2> (factory, IPluginFactory2_iid);
    PFactoryInfo maker {};
    factory.getFactoryInfo (&maker);
    std::printf ("maker: %s\n", maker.vendor);

    for (int32 i = 0; i < factory.countClasses(); ++i)
    {
        PClassInfo2 info;
        require (extended->getClassInfo2 (i, &info), "asking for a class");
        std::printf ("class: %s %s\n", written (info.cid).c_str(), info.category);
        std::printf ("named: %s by %s, %s, %s\n", info.name, info.vendor, info.version, info.subCategories);

        if (std::string_view (info.category) == kPluginCompatibilityClass)
        {
            void* object = nullptr;
            require (factory.createInstance (info.cid, IPluginCompatibility_iid, &object), "making the compatibility");
            const Interface<IPluginCompatibility> compatibility (static_cast<IPluginCompatibility*> (object));
            ByteStream stream;
            require (compatibility->getCompatibilityJSON (&stream), "asking for the compatibility");
            std::string line = stream.content();
            std::erase_if (line, [] (char c) { return c == '\n' || c == '\r' || c == ' '; });
            std::printf ("compatibility: %s\n", line.c_str());
        }
    }
}

void printParameters (Vst3Instance& instance)
{
    auto& controller = instance.controller();

    for (int32 i = 0; i < controller.getParameterCount(); ++i)
    {
        Vst::ParameterInfo info {};
        require (controller.getParameterInfo (i, info), "asking for a parameter");
        std::printf ("parameter: %s, %d steps, %.6f, flags %d\n",
                     plainText (info.title).c_str(),
                     static_cast<int> (info.stepCount),
                     info.defaultNormalizedValue,
                     static_cast<int> (info.flags));
    }

    for (int position = 0; position < 10; ++position)
        std::printf (
            "position %d: %s\n", position, instance.text (static_cast<double> (knobPosition (position))).c_str());

    // The mapping is there once the controller has heard of a state.
    instance.load (instance.save());
    const auto remapping = queryFor<Vst::IRemapParamID> (controller, Vst::IRemapParamID_iid);
    Vst::ParamID mapped = 0;
    const bool isMapped = remapping->getCompatibleParamID (classOfVst2().data(), 0, mapped) == kResultTrue;
    std::printf ("parameter 0 of VST 2: %s\n", ! isMapped ? "none" : mapped == instance.modeId() ? "Mode" : "another");
}

void identifyVst3 (const std::string& path)
{
    const Vst3Module module (path);
    printClasses (module.factory());

    Vst3Instance instance (module);
    TUID controller {};
    require (instance.component().getControllerClassId (controller), "asking for the controller");
    std::printf ("controller: %s\n", written (controller).c_str());

    for (const auto direction : { Vst::kInput, Vst::kOutput })
    {
        const auto* name = direction == Vst::kInput ? "inputs" : "outputs";
        std::printf ("%s: %d\n", name, static_cast<int> (instance.component().getBusCount (Vst::kAudio, direction)));
        Vst::BusInfo bus {};
        require (instance.component().getBusInfo (Vst::kAudio, direction, 0, bus), "asking for a bus");
        std::printf ("channels of %s: %d\n", name, static_cast<int> (bus.channelCount));
    }

    const auto units = queryFor<Vst::IUnitInfo> (instance.controller(), Vst::IUnitInfo_iid);
    std::printf ("program lists: %d\n", static_cast<int> (units->getProgramListCount()));
    std::printf ("delay: %d\n", static_cast<int> (instance.processor().getLatencySamples()));
    printParameters (instance);
}
} // namespace

void commands::identity (const Arguments& arguments)
{
    isVst3 (arguments.at (0)) ? identifyVst3 (arguments[0]) : identifyVst2 (arguments[0]);
}
