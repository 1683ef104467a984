// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "support/vst3/Interface.h"
#include "support/vst3/ParameterQueue.h"
#include "support/vst3/Vst3Module.h"

#include <pluginterfaces/vst/ivstaudioprocessor.h>
#include <pluginterfaces/vst/ivstcomponent.h>
#include <pluginterfaces/vst/ivsteditcontroller.h>
#include <pluginterfaces/vst/ivsthostapplication.h>
#include <pluginterfaces/vst/ivstmessage.h>
#include <pluginterfaces/vst/ivstprocesscontext.h>

#include <cstddef>
#include <string>
#include <vector>

/** What the plug-in tells its host of edits, written down. Message thread only. */
class EditLog : public HostObject<Steinberg::Vst::IComponentHandler>
{
public:
    EditLog() : HostObject (Steinberg::Vst::IComponentHandler_iid) {}

    struct Edit
    {
        enum Kind
        {
            begin,
            perform,
            end
        };

        Kind kind;
        Steinberg::Vst::ParamID parameter;
        double value;
    };

    std::vector<Edit> edits;

    Steinberg::tresult PLUGIN_API beginEdit (Steinberg::Vst::ParamID id) override
    {
        return note (Edit::begin, id, 0.0);
    }
    Steinberg::tresult PLUGIN_API endEdit (Steinberg::Vst::ParamID id) override { return note (Edit::end, id, 0.0); }
    Steinberg::tresult PLUGIN_API restartComponent (Steinberg::int32) override { return Steinberg::kResultOk; }

    Steinberg::tresult PLUGIN_API performEdit (Steinberg::Vst::ParamID id, Steinberg::Vst::ParamValue value) override
    {
        return note (Edit::perform, id, value);
    }

private:
    Steinberg::tresult note (Edit::Kind kind, Steinberg::Vst::ParamID id, double value)
    {
        edits.push_back ({ kind, id, value });
        return Steinberg::kResultOk;
    }
};

/** The host itself. */
class HostApplication : public HostObject<Steinberg::Vst::IHostApplication>
{
public:
    HostApplication() : HostObject (Steinberg::Vst::IHostApplication_iid) {}

    Steinberg::tresult PLUGIN_API getName (Steinberg::Vst::String128 name) override;
    Steinberg::tresult PLUGIN_API createInstance (Steinberg::TUID, Steinberg::TUID, void**) override
    {
        return Steinberg::kNotImplemented;
    }
};

/** One instance of the plug-in: its component and its controller, made, connected and initialised, neither set up nor
    active, its buses on. Every operation is one call or a few of the VST 3 interface. */
class Vst3Instance
{
public:
    /** Makes an instance; the module must outlive it. Throws std::runtime_error if that fails. */
    explicit Vst3Instance (const Vst3Module& module);

    /** Makes one without turning its buses on. */
    struct BusesAsTheyAre
    {
    };

    Vst3Instance (const Vst3Module& module, BusesAsTheyAre);
    ~Vst3Instance();
    Vst3Instance (const Vst3Instance&) = delete;
    Vst3Instance& operator= (const Vst3Instance&) = delete;

    Steinberg::Vst::IComponent& component() const { return *pluginComponent; }
    Steinberg::Vst::IAudioProcessor& processor() const { return *audioProcessor; }
    Steinberg::Vst::IEditController& controller() const { return *editController; }

    /** The ids of "Mode" and of "Bypass". */
    Steinberg::Vst::ParamID modeId() const { return mode; }
    Steinberg::Vst::ParamID bypassId() const { return bypass; }

    /** Sets a parameter as hosts do: in the controller at once, in the processor with the next block. */
    void setParameter (Steinberg::Vst::ParamID id, double value);
    double getParameter (Steinberg::Vst::ParamID id) const { return editController->getParamNormalized (id); }

    /** What people read at a value of "Mode", and the value of what they type. */
    std::string text (double value) const;
    double valueOf (const std::string& text) const;

    /** Asks for a layout; whether the plug-in accepts it. */
    bool setLayout (Steinberg::Vst::SpeakerArrangement input, Steinberg::Vst::SpeakerArrangement output);

    /** Asks for mono (1) or stereo (2) on both sides; whether the plug-in accepts it. */
    bool setChannels (int channels);

    /** The channels that the layout in force has on each side. */
    int channels() const { return channelCount; }

    /** Sets the sample rate in Hz and the most frames of a block; whether the plug-in accepts it. */
    bool setUp (double sampleRate, int blockSize, Steinberg::int32 sampleSize = Steinberg::Vst::kSample32) const;

    void activate();
    void deactivate();
    bool isRunning() const { return isActive; }

    /** Whether the host plays, which it does at first: then the processor has its parameters from the blocks alone. */
    void setPlaying (bool isPlaying) { context.state = isPlaying ? playing : 0; }

    void setTime (const Steinberg::Vst::ProcessContext& time) { context = time; }

    /** Hands what was set to the processor, by a block without samples. */
    Steinberg::tresult flush();

    /** Processes frames on the channels that were asked for; the same buffers may be given for both sides. Allocates
        nothing. */
    Steinberg::tresult process (float* const* inputs, float* const* outputs, std::size_t frames);

    /** What the component saves. */
    std::string save() const;

    /** Hands a state to the component and lets the controller follow; whether the component took it. */
    bool load (const std::string& state);

    EditLog log;

private:
    static constexpr Steinberg::uint32 playing = Steinberg::Vst::ProcessContext::kPlaying;

    HostApplication application;
    Interface<Steinberg::Vst::IComponent> pluginComponent;
    Interface<Steinberg::Vst::IAudioProcessor> audioProcessor;
    Interface<Steinberg::Vst::IEditController> editController;
    Interface<Steinberg::Vst::IConnectionPoint> componentPoint;
    Interface<Steinberg::Vst::IConnectionPoint> controllerPoint;
    ParameterQueues changes;
    Steinberg::Vst::ProcessContext context {};
    Steinberg::Vst::ParamID mode = 0;
    Steinberg::Vst::ParamID bypass = 0;
    int channelCount = 2;
    bool isActive = false;
};

/** A text of the interface, which is UTF-16, in ASCII. */
std::string plainText (const Steinberg::Vst::TChar* text);
