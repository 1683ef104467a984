// SPDX-License-Identifier: AGPL-3.0-only
#include "support/vst3/Vst3Instance.h"

#include "support/vst3/ByteStream.h"

#include <pluginterfaces/vst/vstspeaker.h>

#include <algorithm>
#include <array>

using namespace Steinberg;

namespace
{
/** Makes an object of a class of the bundle. */
template <typename T>
Interface<T> make (const Vst3Module& module, const TUID classId, const TUID interfaceId, const char* what)
{
    void* object = nullptr;
    require (module.factory().createInstance (classId, interfaceId, &object), std::string ("making the ") + what);
    return Interface<T> (static_cast<T*> (object));
}

/** The class of the audio effect. */
std::array<char, sizeof (TUID)> effectClass (const Vst3Module& module)
{
    for (int32 i = 0; i < module.factory().countClasses(); ++i)
    {
        PClassInfo info;
        require (module.factory().getClassInfo (i, &info), "asking for a class");

        if (std::string (info.category) == kVstAudioEffectClass)
            return std::to_array (info.cid);
    }

    throw std::runtime_error ("the bundle holds no audio effect");
}

constexpr std::array<Vst::BusDirection, 2> directions { Vst::kInput, Vst::kOutput };
} // namespace

std::string plainText (const Vst::TChar* text)
{
    std::string plain;

    for (; *text != 0; ++text)
        plain += static_cast<char> (*text);

    return plain;
}

tresult PLUGIN_API HostApplication::getName (Vst::String128 name)
{
    std::size_t i = 0;

    for (const char c : std::string_view ("Test host"))
        name[i++] = static_cast<Vst::TChar> (c);

    name[i] = 0;
    return kResultOk;
}

Vst3Instance::Vst3Instance (const Vst3Module& module, BusesAsTheyAre)
    : pluginComponent (make<Vst::IComponent> (module, effectClass (module).data(), Vst::IComponent_iid, "component")),
      audioProcessor (queryFor<Vst::IAudioProcessor> (*pluginComponent, Vst::IAudioProcessor_iid))
{
    TUID controllerClass {};
    require (pluginComponent->initialize (&application), "initialising the component");
    require (pluginComponent->getControllerClassId (controllerClass), "asking for the controller");
    editController = make<Vst::IEditController> (module, controllerClass, Vst::IEditController_iid, "controller");
    require (editController->initialize (&application), "initialising the controller");
    require (editController->setComponentHandler (&log), "giving the controller its handler");

    componentPoint = queryFor<Vst::IConnectionPoint> (*pluginComponent, Vst::IConnectionPoint_iid);
    controllerPoint = queryFor<Vst::IConnectionPoint> (*editController, Vst::IConnectionPoint_iid);
    require (componentPoint->connect (controllerPoint.get()), "connecting the component");
    require (controllerPoint->connect (componentPoint.get()), "connecting the controller");

    for (int32 i = 0; i < editController->getParameterCount(); ++i)
    {
        Vst::ParameterInfo info {};
        require (editController->getParameterInfo (i, info), "asking for a parameter");
        ((info.flags & Vst::ParameterInfo::kIsBypass) != 0 ? bypass : mode) = info.id;
    }

    setPlaying (true);
}

Vst3Instance::Vst3Instance (const Vst3Module& module) : Vst3Instance (module, BusesAsTheyAre {})
{
    for (const auto direction : directions)
        require (pluginComponent->activateBus (Vst::kAudio, direction, 0, 1), "turning a bus on");
}

Vst3Instance::~Vst3Instance()
{
    if (isActive)
        deactivate();

    componentPoint->disconnect (controllerPoint.get());
    controllerPoint->disconnect (componentPoint.get());
    editController->setComponentHandler (nullptr);
    editController->terminate();
    pluginComponent->terminate();
}

void Vst3Instance::setParameter (Vst::ParamID id, double value)
{
    editController->setParamNormalized (id, value);
    changes.add (id, value);
}

std::string Vst3Instance::text (double value) const
{
    Vst::String128 text {};
    require (editController->getParamStringByValue (mode, value, text), "asking for a text");
    return plainText (text);
}

double Vst3Instance::valueOf (const std::string& text) const
{
    std::array<Vst::TChar, 128> typed {};
    std::ranges::copy (text.substr (0, typed.size() - 1), typed.begin());
    double value = 0.0;
    require (editController->getParamValueByString (mode, typed.data(), value), "asking for a value");
    return value;
}

bool Vst3Instance::setLayout (Vst::SpeakerArrangement input, Vst::SpeakerArrangement output)
{
    const bool isAccepted = audioProcessor->setBusArrangements (&input, 1, &output, 1) == kResultTrue;
    Vst::SpeakerArrangement inForce = Vst::SpeakerArr::kEmpty;
    require (audioProcessor->getBusArrangement (Vst::kOutput, 0, inForce), "asking for the layout");
    channelCount = Vst::SpeakerArr::getChannelCount (inForce);
    return isAccepted;
}

bool Vst3Instance::setChannels (int channels)
{
    const auto wanted = channels == 1 ? Vst::SpeakerArr::kMono : Vst::SpeakerArr::kStereo;
    return setLayout (wanted, wanted);
}

bool Vst3Instance::setUp (double sampleRate, int blockSize, int32 sampleSize) const
{
    Vst::ProcessSetup setup { Vst::kRealtime, sampleSize, blockSize, sampleRate };
    return audioProcessor->setupProcessing (setup) == kResultOk;
}

void Vst3Instance::activate()
{
    require (pluginComponent->setActive (1), "activating");
    audioProcessor->setProcessing (1);
    isActive = true;
}

void Vst3Instance::deactivate()
{
    audioProcessor->setProcessing (0);
    pluginComponent->setActive (0);
    isActive = false;
}

tresult Vst3Instance::flush()
{
    return process (nullptr, nullptr, 0);
}

tresult Vst3Instance::process (float* const* inputs, float* const* outputs, std::size_t frames)
{
    // The interface takes pointers that it might write to, and plug-ins do not.
    Vst::AudioBusBuffers input;
    input.numChannels = channelCount;
    input.channelBuffers32 = const_cast<float**> (inputs);
    Vst::AudioBusBuffers output;
    output.numChannels = channelCount;
    output.channelBuffers32 = const_cast<float**> (outputs);

    Vst::ProcessData data;
    data.processMode = Vst::kRealtime;
    data.symbolicSampleSize = Vst::kSample32;
    data.numSamples = static_cast<int32> (frames);
    data.inputParameterChanges = &changes;
    data.processContext = &context;

    if (inputs != nullptr)
    {
        data.numInputs = data.numOutputs = 1;
        data.inputs = &input;
        data.outputs = &output;
    }

    const auto result = audioProcessor->process (data);
    changes.clear();
    return result;
}

std::string Vst3Instance::save() const
{
    ByteStream stream;
    require (pluginComponent->getState (&stream), "saving");
    return stream.content();
}

bool Vst3Instance::load (const std::string& state)
{
    changes.clear(); // what was set before the state is older than it
    ByteStream forComponent (state);
    ByteStream forController (state);
    const bool isTaken = pluginComponent->setState (&forComponent) == kResultOk;
    editController->setComponentState (&forController);
    return isTaken;
}
